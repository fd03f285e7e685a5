/*
 * engine.h - the FFT engine inside one column: the column's shape constants,
 * the table builders (tables.cpp) and the kernels (small.cpp, kernel.cpp).
 * Include from column sources only, after core/column.h.
 *
 * Column points of the engine (everything else is common code):
 *   kDirectLimit    largest core order that runs without blocking.
 *   kWholeInWork    the largest order whose whole transform fits in the work
 *                   memory the column reports (w7 13, t7 14, none in
 *                   px/a6): an in-place direct transform runs through the
 *                   work memory there; elsewhere it permutes in place and
 *                   runs the kernel over dst.
 *   kLeafRoom       what w7/t7 add to bufSize on the blocked path: one leaf
 *                   transform plus 16 bytes of alignment slack.
 *   kReportSplit, kReportTile  the levels the reported bufSize counts.
 *   kWholeCodeletsTo  orders 4 up to this one run whole as one scalar 16-
 *                   or 32-point codelet, in place too (px/a6 to 5, where
 *                   it beats the pair kernel's passes; 3 elsewhere, none).
 *   kInterleaveInLastPass  whether the last pass stores interleaved values
 *                   itself (w7/t7) or stores pairs and leaves the
 *                   interleaving to a sweep of its own (px/a6, whose
 *                   compiler vectorises an interleaving pass badly).
 *   kStackCoreTo    the largest core order of a real inverse whose
 *                   recombined values go on the stack (px/a6 to 9, 8 KiB:
 *                   their reported work memory holds none there; 0 in
 *                   w7/t7, whose work memory holds them).
 *   kPairCodeletsFrom  the even orders from which the first four stages run
 *                   as 16-point codelets on pairs (w7/t7 at order 14,
 *                   where the pass they save goes out to the second-level
 *                   cache; in the first-level cache a codelet costs as
 *                   much as the two passes it stands for).
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

/* The order from which the first stages of a direct transform walk their
   groups in the order of the source (sourceOrder in kernel.cpp) instead
   of the order of their outputs.  In index order, neighbouring groups
   read at bit-reversed places 2^k / 16 apart: from order 13 that is 8 KiB
   or more, so the inputs of a run of groups all fall into one set of the
   first-level cache and evict each other before the neighbouring groups
   come back for the rest of their lines.  Below it the index order is the
   faster. */
constexpr int kSourceOrderFrom = 13;

/* Outer order and tile order of a blocking level by core order, the same
   in every column: tiles of at most 2^11 points (32 KiB) keep a tile's
   passes in the first-level cache. */
constexpr signed char kSplit[31] = { 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 4, 4, 4, 4, 5, 6,
                                     7, 8, 4, 5, 6, 7, 8, 8, 8, 8, 8 };
constexpr signed char kTile[31] = { 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 8, 8, 9, 10, 10, 11,
                                    11, 10, 10, 11, 11, 11, 11, 11, 11, 11, 11 };

#if OMN_COLUMN_INDEX <= 1
/* px/a6 hold two doubles in a plain structure, which the compiler may keep
   in a vector register where the target has one.  Their reported bufSize
   keeps its own rule (nothing up to order 9, then 64 << outer order + 16
   by kReportSplit), and the kernel fits in it: no work memory up to the
   direct limit, in place included, and tiles no larger than the reported
   buffer above. */
constexpr int kDirectLimit = 13;
constexpr int kWholeInWork = -1;
constexpr int kWholeCodeletsTo = 5;
constexpr int kStackCoreTo = 9;
constexpr int kPairCodeletsFrom = 99;
constexpr bool kInterleaveInLastPass = false;
/* Outer order by core order of the reported work memory: 0 below 12, and
   at 10 and 11, which report 16 bytes. */
constexpr signed char kReportSplit[31] = { 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 4, 5, 6, 7, 7, 8, 9, 9,
                                           9, 8, 8, 9, 9, 9, 9, 9, 9, 9, 9 };
inline double tableNeg(double x) { return -x; }
#else
/* w7/t7 report room for the whole transform up to kWholeInWork, and above
   it the largest tile of kReportSplit/kReportTile plus kLeafRoom; the tiles
   they run are smaller, and w7 runs order 14 unblocked too. */
inline double tableNeg(double x) { return 0.0 - x; }
constexpr int kWholeCodeletsTo = 3;
constexpr int kStackCoreTo = 0;
constexpr int kPairCodeletsFrom = 14;
constexpr bool kInterleaveInLastPass = true;
#if OMN_COLUMN_INDEX == 2
constexpr int kDirectLimit = 14;
constexpr int kWholeInWork = 13;
constexpr int kLeafRoom = 0x20010;
constexpr signed char kReportSplit[31] = { 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 4, 4, 4, 4, 5, 6,
                                           7, 8, 4, 5, 6, 7, 8, 8, 8, 8, 8 };
constexpr signed char kReportTile[31] = { 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 8, 8, 10, 10, 12, 13,
                                          13, 13, 10, 12, 13, 13, 13, 13, 13, 13, 13 };
#else
constexpr int kDirectLimit = 14;
constexpr int kWholeInWork = 14;
constexpr int kLeafRoom = 0x40010;
constexpr signed char kReportSplit[31] = { 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 6, 6, 4, 4, 6,
                                           6, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8 };
constexpr signed char kReportTile[31] = { 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 8, 10, 10, 10, 13,
                                          13, 14, 14, 14, 14, 14, 14, 14, 14, 14, 14 };
#endif
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

/* The same transform of order 4 and up over data that stand in dst in
   bit-reversed order already: element 4i + m of the permuted array is
   input z = rev(i) + off(m) N/4, off = 0, 2, 1, 3, where bitRev holds
   2 rev(i) at entry i and rev is its own inverse. */
void transformPermuted(Omn64fc* dst, const OmnFftSpecRecord* spec, int k, bool inv, bool scaled, double* work);

/* The core of a real inverse with the recombination taken into its first
   pass, from the Perm or Pack values to dst (out of place), order k at
   most the direct limit where recombinesInFirstPass(k).  The recombined
   values never stand in memory, and no permutation runs. */
struct InverseInput;
bool recombinesInFirstPass(int k);
void transformInverseRecombined(const InverseInput& x, Omn64fc* dst, const OmnFftSpecRecord* spec, int k, bool scaled);

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
