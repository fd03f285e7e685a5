/*
 * engine.h - the FFT engine inside one column: the column's shape constants,
 * the table builders (tables.cpp) and the kernels (small.cpp, kernel.cpp).
 * Include from column sources only, after core/column.h.
 *
 * Column points of the engine (everything else is common code):
 *   kDirectLimit    largest core order that runs without blocking.
 *   kInPlaceThroughWork  w7/t7 run an in-place direct transform through the
 *                   work buffer; px/a6, whose buffer is smaller, permute in
 *                   place and run the kernel over dst.
 *   kSplit, kTile   outer order of a blocking level by core order, and the
 *                   tile order of a level.
 *   kLeafRoom       what w7/t7 add to bufSize on the blocked path: one leaf
 *                   transform plus 16 bytes of alignment slack.
 *   kReportSplit    px/a6 only: the levels their reported bufSize counts.
 *   tableNeg        how tables negate: px/a6 flip the sign bit, w7/t7
 *                   compute 0.0 - x (the two differ only in the sign of a
 *                   zero).
 */
#ifndef OMN_FFT_ENGINE_H
#define OMN_FFT_ENGINE_H

#include <stddef.h>
#include <stdint.h>

#include "core/column.h"
#include "fft/fft.h"

OMN_COLUMN_BEGIN
namespace fft {

#if OMN_COLUMN_INDEX <= 1
/* px/a6 run the same pair-split kernel as w7/t7, on plain two-double
   structures that the compiler may keep in vector registers where the
   target has them.  Their reported bufSize keeps its own rule (nothing up
   to order 9, then 64 << outer order + 16 by kReportSplit), and the kernel
   is shaped to fit in it: no work memory up to the direct limit, in place
   included, and tiles no larger than the reported buffer above. */
constexpr int kDirectLimit = 13;
constexpr int kLeafRoom = 0;
constexpr bool kInPlaceThroughWork = false;
constexpr signed char kSplit[31] = { 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 4, 4, 4, 4, 5, 6,
                                     7, 8, 4, 5, 6, 7, 8, 8, 8, 8, 8 };
constexpr signed char kTile[31] = { 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 8, 8, 9, 10, 10, 11,
                                    11, 10, 10, 11, 11, 11, 11, 11, 11, 11, 11 };
/* Outer order by core order of the reported work memory: 0 below 12, and
   at 10 and 11, which report 16 bytes. */
constexpr signed char kReportSplit[31] = { 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 4, 5, 6, 7, 7, 8, 9, 9,
                                           9, 8, 8, 9, 9, 9, 9, 9, 9, 9, 9 };
inline double tableNeg(double x) { return -x; }
#elif OMN_COLUMN_INDEX == 2
constexpr int kDirectLimit = 13;
constexpr int kLeafRoom = 0x20010;
constexpr bool kInPlaceThroughWork = true;
constexpr signed char kSplit[31] = { 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 4, 4, 4, 4, 5, 6,
                                     7, 8, 4, 5, 6, 7, 8, 8, 8, 8, 8 };
constexpr signed char kTile[31] = { 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 8, 8, 10, 10, 12, 13,
                                    13, 13, 10, 12, 13, 13, 13, 13, 13, 13, 13 };
inline double tableNeg(double x) { return 0.0 - x; }
#else
constexpr int kDirectLimit = 14;
constexpr int kLeafRoom = 0x40010;
constexpr bool kInPlaceThroughWork = true;
constexpr signed char kSplit[31] = { 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 6, 6, 4, 4, 6,
                                     6, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8 };
constexpr signed char kTile[31] = { 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 8, 10, 10, 10, 13,
                                    13, 14, 14, 14, 14, 14, 14, 14, 14, 14, 14 };
inline double tableNeg(double x) { return 0.0 - x; }
#endif

/* ---- tables (tables.cpp) ------------------------------------------------ */

/* Temporary sine table of order m: 2^m / 4 + 1 entries. */
double* makeSineTable(int m);
/* The complex core's tables of order k into spec (bitRev, twiddles, blocked
   levels, bufSize).  sine may be null (one of order k is made and freed). */
OmnStatus buildComplexTables(OmnFftSpecRecord* spec, int k, const double* sine, int sineOrder);
/* The real kind's recombination tables, both, of order m. */
OmnStatus buildRecombTables(OmnFftSpecRecord* spec, int m, const double* sine);

/* ---- kernels ---------------------------------------------------------- */

/* Orders 0 to 3: [inverse][scaled][order]. */
typedef void (*SmallFn)(const Omn64fc* src, Omn64fc* dst, double scale);
extern const SmallFn kSmall[2][2][4];

/* The whole complex transform of order 4 and up, after the checks and with
   the work area (16-aligned, or null when bufSize is 0) in hand.  k is the
   core order: the spec's order for the complex kind, one less for the real
   kind. */
void transform(const Omn64fc* src, Omn64fc* dst, const OmnFftSpecRecord* spec, int k, bool inv, bool scaled,
               double* work);

/* Work memory of a transform of order 4 and up: none when bufSize is 0,
   else the caller's buffer moved up to 16 bytes, or (null buffer) a block
   of bufSize bytes that the caller of this function frees through *own
   once the transform is done.  Fails only with -9. */
OmnStatus acquireWork(const OmnFftSpecRecord* spec, Omn8u* pBuf, double** work, void** own);

/* Real transforms of orders 0 to 3, Perm in or out: [inverse][scaled][order].
   The scaled forms multiply the inputs by the factor before the butterflies;
   src may equal dst. */
typedef void (*RealSmallFn)(const double* src, double* dst, double scale);
extern const RealSmallFn kRealSmall[2][2][4];

/* Multiplies n doubles by s. */
inline void scaleDoubles(double* p, size_t n, double s)
{
    for (size_t i = 0; i < n; ++i)
        p[i] *= s;
}

} // namespace fft
OMN_COLUMN_END

#endif /* OMN_FFT_ENGINE_H */
