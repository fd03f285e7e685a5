/*
 * convert_rules.h - the element rules of the Convert family, one inline
 * function per rule, compiled into each column.  Include only from column
 * sources (after core/column.h); everything lands in omn::<column>::cvt.
 *
 * These are the definitions: the SIMD kernels of the higher columns are
 * speed-ups that must agree with them element for element, and they run the
 * heads and tails of those kernels.  Nothing here depends on the processor's
 * rounding mode except where a rule says "the current mode" (int to float,
 * double to float), so the results are the same on every target.
 *
 * Column points (everything else is the same in all columns):
 *   kNanToMax16sNearest  w7 and t7 limit by a minimum against 32767.0 first
 *                        in the nearest, unscaled 32f16s kernel;
 *   kNanToMax64f32f      w7 and t7 clamp 64f32f with minimum, then maximum.
 */
#ifndef OMN_VECTOR_CONVERT_RULES_H
#define OMN_VECTOR_CONVERT_RULES_H

#include <float.h>
#include <math.h>
#include <stdint.h>
#include <string.h>

#include "core/column.h"
#include "core/checks.h"

OMN_COLUMN_BEGIN
namespace cvt {

/* The SSE2 kernels of w7 and t7 clamp before they convert, and the clamp is
   a minimum whose first operand is the element: a NaN element yields the
   second operand.  So in those columns a NaN becomes the upper limit where
   the kernel takes the minimum first.  px converts with compares (NaN to the
   lower limit), and a6, which has no packed double or packed integer
   instructions, converts like px. */
constexpr bool kNanToMax16sNearest = OMN_COLUMN_INDEX >= 2;
constexpr bool kNanToMax64f32f     = OMN_COLUMN_INDEX >= 2;

inline uint32_t bitsOf(float x)    { uint32_t b; memcpy(&b, &x, 4); return b; }
inline float    floatOf(uint32_t b) { float x; memcpy(&x, &b, 4); return x; }

/* ---- float to integer ---------------------------------------------------- */

/* 2^-sf in double precision, as repeated halving or doubling from 1.0 would
   give it: no clamp, so it underflows to 0 past 2^-1074 and overflows to
   infinity from 2^1024. */
inline double scaleDouble(int sf)
{
    if (sf >= 1075)
        return 0.0;
    if (sf <= -1024)
        return HUGE_VAL;
    return ldexp(1.0, -sf);
}

/* The same in single precision, for the unsigned forms. */
inline float scaleFloat(int sf)
{
    if (sf >= 150)
        return 0.0f;
    if (sf <= -128)
        return HUGE_VALF;
    return ldexpf(1.0f, -sf);
}

/* Round y, strictly inside the destination's range, to an integer: with
   nearest, y +- 0.5 truncated and a tie (an odd result that converts back
   to exactly y +- 0.5) moved back toward zero to its even neighbour; else
   truncated.  The +- 0.5 is a double addition and may round, which is part
   of the rule for double sources. */
inline int32_t roundInside(double y, bool nearest)
{
    if (!nearest)
        return static_cast<int32_t>(y);
    const double t = y >= 0.0 ? y + 0.5 : y - 0.5;
    int32_t n = static_cast<int32_t>(t);
    if ((n & 1) != 0 && static_cast<double>(n) == t)
        n += n > 0 ? -1 : 1;
    return n;
}

/* Signed forms: the upper compare first (a NaN fails it), then everything
   at or below the lower limit, NaN included, is the lower limit. */
inline int32_t toSigned(double y, bool nearest, double hiCompare, int32_t lo, int32_t hi)
{
    if (y >= hiCompare)
        return hi;
    if (!(y > static_cast<double>(lo)))
        return lo;
    return roundInside(y, nearest);
}

/* Unsigned forms: NaN goes to the upper limit, unlike the signed ones. */
inline int32_t toUnsigned(double y, bool nearest, int32_t hi)
{
    if (!(y < static_cast<double>(hi)))
        return hi;
    if (y <= 0.0)
        return 0;
    return roundInside(y, nearest);
}

/* ---- double to float ----------------------------------------------------- */

/* Narrowed first, then the infinities and NaNs that the narrowing gave are
   replaced on the bits.  This is the rule: a double at or beyond a bound
   narrows to that bound's infinity or to the largest finite single (by the
   rounding mode), and one inside narrows to a finite single.  Written with
   integer masks so that the compiler can vectorise it: a compare-and-select
   on floating values keeps a branch while traps are honoured. */
inline float toFloatSaturated(double x)
{
    /* px lets a NaN fall to the lowest finite single; w7 and t7 send it to
       the largest (kNanToMax64f32f). */
    constexpr uint32_t kNanBits = kNanToMax64f32f ? 0x7F7FFFFFu : 0xFF7FFFFFu;
    const uint32_t u = bitsOf(static_cast<float>(x));
    const int32_t mag = static_cast<int32_t>(u & 0x7FFFFFFFu);
    const uint32_t special = 0u - static_cast<uint32_t>(mag >= 0x7F800000);
    const uint32_t nan = 0u - static_cast<uint32_t>(mag > 0x7F800000);
    const uint32_t bound = (((u & 0x80000000u) | 0x7F7FFFFFu) & ~nan) | (kNanBits & nan);
    return floatOf((u & ~special) | (bound & special));
}

/* a where c holds, else b, as a mask on the bits (see above). */
inline float select(bool c, float a, float b)
{
    const uint32_t m = 0u - static_cast<uint32_t>(c);
    return floatOf((bitsOf(a) & m) | (bitsOf(b) & ~m));
}

/* ---- integer to float with a scale factor ------------------------------- */

inline int clampInt(int v, int lo, int hi) { return v < lo ? lo : (v > hi ? hi : v); }

/* 2^-sf written into the exponent field, sf already clamped to a range that
   keeps it a normal number. */
inline float  pow2Float(int e)  { return floatOf(static_cast<uint32_t>(127 + e) << 23); }
inline double pow2Double(int e)
{
    const uint64_t b = static_cast<uint64_t>(1023 + e) << 52;
    double x;
    memcpy(&x, &b, 8);
    return x;
}

/* ---- integer shifts with rounding --------------------------------------- */

/* v = (2^(sf-1) - 1) + x + ((x >> sf) & 1), shifted right by sf: nearest,
   ties to even.  sf from 1 to 31; arithmetic shifts. */
inline int64_t shiftRoundSigned(int32_t x, int sf)
{
    const int64_t v = ((int64_t(1) << (sf - 1)) - 1) + x + ((x >> sf) & 1);
    return v >> sf;
}

inline uint64_t shiftRoundUnsigned(uint32_t x, int sf)
{
    const uint64_t v = ((uint64_t(1) << (sf - 1)) - 1) + x + ((x >> sf) & 1u);
    return v >> sf;
}

/* x << n as the 32-bit register computes it (no overflow trap, no UB). */
inline int32_t shl32(int32_t x, int n) { return static_cast<int32_t>(static_cast<uint32_t>(x) << n); }

inline int32_t sat(int64_t v, int32_t lo, int32_t hi) { return v < lo ? lo : (v > hi ? hi : static_cast<int32_t>(v)); }

} // namespace cvt
OMN_COLUMN_END

#endif /* OMN_VECTOR_CONVERT_RULES_H */
