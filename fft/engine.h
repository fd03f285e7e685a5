/*
 * engine.h - the FFT engine inside one column: the column's shape constants,
 * the table builders (tables.cpp) and the kernels (small.cpp, kernel_px.cpp,
 * kernel_w7.cpp).  Include from column sources only, after core/column.h.
 *
 * Column points of the engine (everything else is common code):
 *   kPairSplit      w7/t7 run their passes on pairs of complex values held
 *                   as re, re, im, im; px/a6 on interleaved values.
 *   kDirectLimit    largest core order that runs without blocking.
 *   kSplit, kTile   outer order of a blocking level by core order, and the
 *                   tile order of a level (w7/t7 only).
 *   kLeafRoom       what w7/t7 add to bufSize on the blocked path: one leaf
 *                   transform plus 16 bytes of alignment slack.
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
constexpr bool kPairSplit = false;
constexpr int kDirectLimit = 9;
constexpr int kLeafRoom = 0;
/* Outer order by core order; 0 below 12 (10 and 11 run the radix-2 top
   passes over blocks of 512). */
constexpr signed char kSplit[31] = { 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 4, 5, 6, 7, 7, 8, 9, 9,
                                     9, 8, 8, 9, 9, 9, 9, 9, 9, 9, 9 };
constexpr signed char kTile[31] = {};
inline double tableNeg(double x) { return -x; }
#elif OMN_COLUMN_INDEX == 2
constexpr bool kPairSplit = true;
constexpr int kDirectLimit = 13;
constexpr int kLeafRoom = 0x20010;
constexpr signed char kSplit[31] = { 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 4, 4, 4, 4, 5, 6,
                                     7, 8, 4, 5, 6, 7, 8, 8, 8, 8, 8 };
constexpr signed char kTile[31] = { 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 8, 8, 10, 10, 12, 13,
                                    13, 13, 10, 12, 13, 13, 13, 13, 13, 13, 13 };
inline double tableNeg(double x) { return 0.0 - x; }
#else
constexpr bool kPairSplit = true;
constexpr int kDirectLimit = 14;
constexpr int kLeafRoom = 0x40010;
constexpr signed char kSplit[31] = { 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 6, 6, 4, 4, 6,
                                     6, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8 };
constexpr signed char kTile[31] = { 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 8, 10, 10, 10, 13,
                                    13, 14, 14, 14, 14, 14, 14, 14, 14, 14, 14 };
inline double tableNeg(double x) { return 0.0 - x; }
#endif

/* px/a6: the largest order one kernel call handles; 10 and 11 add radix-2
   top passes over blocks of this order. */
constexpr int kPxLeafOrder = 9;

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
   the work area (16-aligned, or null when bufSize is 0) in hand: px/a6 in
   kernel_px.cpp, w7/t7 in kernel_w7.cpp.  k is the core order: the spec's
   order for the complex kind, one less for the real kind. */
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
