/*
 * divide.cpp - Div and DivC on doubles and double complex.
 *
 * Div divides the second source by the first: pDst[i] = pSrc2[i] / pSrc1[i],
 * and the in-place form divides pSrcDst by pSrc.  A zero divisor is a
 * warning, not an error: every element is written and the call returns 6.
 *
 * Column points:
 *   zeroQuotient / kZeroDivisorNaN   what a zero divisor stores (below);
 *   divisorIsZero                    whether a NaN divisor counts as zero;
 *   kBatchedReciprocals              w7 and t7 divide blocks through one
 *                                    reciprocal for several elements.
 *
 * DivC goes through the reciprocal of the constant and then the MulC of the
 * column, so its results differ from true division in the last place.
 */
#include "core/column.h"
#include "core/checks.h"
#include "vector/f64x2.h"

#include <stdint.h>

OMN_COLUMN_BEGIN

namespace {

using pd::Pd;
using pd::ld;
using pd::st;

constexpr bool kBatchedReciprocals = OMN_COLUMN_INDEX >= 2;

/* px and a6 give a zero divisor the sign of the dividend: +inf for a
   positive one, a negative quiet NaN for 0/0, and -inf for a negative or NaN
   dividend; they treat a NaN divisor as zero.  w7 and t7 store a positive
   quiet NaN for every zero divisor, and divide by a NaN like by any number. */
constexpr uint64_t kLowColumnsNaN = 0xFFF8000000000000ull;
constexpr uint64_t kZeroDivisorNaN = 0x7FF8000000000000ull;

inline bool divisorIsZero(double d)
{
#if OMN_COLUMN_INDEX <= 1
    return !(d < 0) && !(d > 0);
#else
    return d == 0;
#endif
}

inline double zeroQuotient(double n)
{
#if OMN_COLUMN_INDEX <= 1
    if (n > 0)
        return HUGE_VAL;
    if (n == 0)
        return pd::fromBits(kLowColumnsNaN);
    return -HUGE_VAL;
#else
    (void)n;
    return pd::fromBits(kZeroDivisorNaN);
#endif
}

/* One real element; returns true for a zero divisor. */
inline bool divideOne(const double* num, const double* den, double* dst, size_t i)
{
    const double d = ld(den + i), n = ld(num + i);
    if (divisorIsZero(d)) {
        st(dst + i, zeroQuotient(n));
        return true;
    }
    st(dst + i, n / d);
    return false;
}

/* One complex element, with the complex NaN of the column for m == 0. */
inline bool divideOneComplex(const double* num, const double* den, double* dst, size_t i)
{
    const double dr = ld(den + 2 * i), di = ld(den + 2 * i + 1);
    const double nr = ld(num + 2 * i), ni = ld(num + 2 * i + 1);
    const double m = dr * dr + di * di;
    if (divisorIsZero(m)) {
        const double nan = pd::fromBits(OMN_COLUMN_INDEX <= 1 ? kLowColumnsNaN : kZeroDivisorNaN);
        st(dst + 2 * i, nan);
        st(dst + 2 * i + 1, nan);
        return true;
    }
    const double r = 1 / m;
    st(dst + 2 * i, (dr * nr + di * ni) * r);
    st(dst + 2 * i + 1, (dr * ni - di * nr) * r);
    return false;
}

/* ---- px, a6: one division per element, unrolled by four ---------------- */

bool divideScalar(const double* num, const double* den, double* dst, size_t n)
{
    bool zero = false;
    size_t i = 0;
    for (; i + 4 <= n; i += 4) {
        zero |= divideOne(num, den, dst, i);
        zero |= divideOne(num, den, dst, i + 1);
        zero |= divideOne(num, den, dst, i + 2);
        zero |= divideOne(num, den, dst, i + 3);
    }
    for (; i < n; ++i)
        zero |= divideOne(num, den, dst, i);
    return zero;
}

bool divideScalarComplex(const double* num, const double* den, double* dst, size_t n)
{
    bool zero = false;
    for (size_t i = 0; i < n; ++i)
        zero |= divideOneComplex(num, den, dst, i);
    return zero;
}

/* ---- w7, t7: batched reciprocals ----------------------------------------- */

inline Pd one() { return pd::set1(1.0); }

/* Plain division of one pair, with zero divisors replaced by 1 for the
   division (no exception is raised) and the NaN put in their place after. */
inline Pd dividePairGuarded(Pd n, Pd d, bool* zero)
{
    const Pd z = pd::cmpEq(d, pd::set1(0.0));
    if (pd::signs(z) == 0)
        return n / d;
    *zero = true;
    return pd::select(z, pd::set1(pd::fromBits(kZeroDivisorNaN)), n / pd::select(z, one(), d));
}

inline bool productIsNormal(Pd s)
{
    int zeros, ones;
    pd::exponentClass(s, &zeros, &ones);
    return zeros == 0 && ones == 0;
}

/* Both lanes of every pair within (2^-kRange, 2^kRange) in magnitude.  A
   NaN may slip through the min and max; the callers have ruled NaN out by
   the exponent of the product already. */
template <int kRange>
inline bool withinRange(Pd a, Pd b, Pd c, Pd d)
{
    static_assert(kRange > 0 && kRange < 1023, "a normal power of two");
    const Pd sign = pd::set1(-0.0);
    const Pd lo = pd::set1(pd::fromBits(static_cast<uint64_t>(1023 - kRange) << 52));
    const Pd hi = pd::set1(pd::fromBits(static_cast<uint64_t>(1023 + kRange) << 52));
    const Pd ma = pd::andNot(sign, a), mb = pd::andNot(sign, b), mc = pd::andNot(sign, c), md = pd::andNot(sign, d);
    const Pd least = pd::min(pd::min(ma, mb), pd::min(mc, md));
    const Pd most = pd::max(pd::max(ma, mb), pd::max(mc, md));
    return pd::signs(pd::cmpGt(least, lo) & pd::cmpLt(most, hi)) == 3;
}

/* Eight elements.  The four divisor pairs b0..b3 share one packed division:
   with p = b0*b2, q = b1*b3 and t = 1/(p*q), the reciprocal of each divisor
   is the product of the other three times t.  It costs a few units in the
   last place, and is taken when p*q has a normal exponent; otherwise (a zero,
   infinite or NaN divisor, or a product out of range) the pairs are divided
   one by one.  The path also asks every divisor to lie within 2^-255 to
   2^255, which keeps p, q, t and the recovered reciprocals normal: a
   denormal or huge divisor beside ordinary ones would otherwise lose its
   reciprocal to overflow or underflow although s is normal. */
enum BlockStore { kAlignedStore, kStreamStore, kUnalignedStore };

template <BlockStore kStore>
inline void storeBlock(double* dst, Pd r0, Pd r1, Pd r2, Pd r3)
{
    if (kStore == kAlignedStore) {
        pd::storeA(dst, r0); pd::storeA(dst + 2, r1); pd::storeA(dst + 4, r2); pd::storeA(dst + 6, r3);
    } else if (kStore == kStreamStore) {
        pd::storeStream(dst, r0); pd::storeStream(dst + 2, r1);
        pd::storeStream(dst + 4, r2); pd::storeStream(dst + 6, r3);
    } else {
        pd::storeU(dst, r0); pd::storeU(dst + 2, r1); pd::storeU(dst + 4, r2); pd::storeU(dst + 6, r3);
    }
}

template <BlockStore kStore>
inline bool divideBlock(const double* num, const double* den, double* dst)
{
    const Pd b0 = pd::loadU(den), b1 = pd::loadU(den + 2), b2 = pd::loadU(den + 4), b3 = pd::loadU(den + 6);
    const Pd n0 = pd::loadU(num), n1 = pd::loadU(num + 2), n2 = pd::loadU(num + 4), n3 = pd::loadU(num + 6);
    const Pd p = b0 * b2, q = b1 * b3, s = p * q;
    Pd r0, r1, r2, r3;
    bool zero = false;
    if (productIsNormal(s) && withinRange<255>(b0, b1, b2, b3)) {
        const Pd t = one() / s;
        const Pd qt = q * t, pt = p * t;
        r0 = n0 * (b2 * qt);
        r2 = n2 * (b0 * qt);
        r1 = n1 * (b3 * pt);
        r3 = n3 * (b1 * pt);
    } else {
        r0 = dividePairGuarded(n0, b0, &zero);
        r1 = dividePairGuarded(n1, b1, &zero);
        r2 = dividePairGuarded(n2, b2, &zero);
        r3 = dividePairGuarded(n3, b3, &zero);
    }
    storeBlock<kStore>(dst, r0, r1, r2, r3);
    return zero;
}

bool divideBatched(const double* num, const double* den, double* dst, size_t n)
{
    bool zero = false;
    size_t i = 0;
    /* One scalar element first when the destination isn't 16-aligned. */
    if (reinterpret_cast<uintptr_t>(dst) % 16 != 0 && n > 0) {
        zero |= divideOne(num, den, dst, 0);
        i = 1;
    }
    const bool aligned = reinterpret_cast<uintptr_t>(dst + i) % 16 == 0;
    /* A result of a megabyte or more goes past the caches, as in the other
       packed loops, unless it overwrites a source (the in-place form). */
    const bool stream = aligned && dst != num && dst != den && n * sizeof(double) >= (size_t(1) << 20);
    for (; i + 8 <= n; i += 8) {
        pd::prefetch(num + i + 16);
        pd::prefetch(den + i + 16);
        if (stream)
            zero |= divideBlock<kStreamStore>(num + i, den + i, dst + i);
        else if (aligned)
            zero |= divideBlock<kAlignedStore>(num + i, den + i, dst + i);
        else
            zero |= divideBlock<kUnalignedStore>(num + i, den + i, dst + i);
    }
    if (stream)
        pd::endStreaming();
    for (; i < n; ++i)
        zero |= divideOne(num, den, dst, i);
    return zero;
}

/* Two complex elements through one reciprocal: with m1 and m2 their squared
   magnitudes, 1/m1 = m2 / (m1*m2) and 1/m2 = m1 / (m1*m2).  Taken when m1*m2
   is normal and both magnitudes lie within 2^-510 to 2^510; otherwise each
   element has its own reciprocal. */
inline bool dividePairComplex(const double* num, const double* den, double* dst)
{
    const Pd d1 = pd::loadU(den), d2 = pd::loadU(den + 2);
    const Pd n1 = pd::loadU(num), n2 = pd::loadU(num + 2);
    const Pd sq1 = d1 * d1, sq2 = d2 * d2;
    const Pd m = pd::unpackLo(sq1, sq2) + pd::unpackHi(sq1, sq2);      /* (m1, m2) */
    const Pd s = m * pd::swap(m);
    const Pd zmask = pd::cmpEq(m, pd::set1(0.0));
    const bool zero = pd::signs(zmask) != 0;
    Pd r;
    if (productIsNormal(s) && withinRange<510>(m, m, m, m))
        r = pd::swap(m) * (one() / s);
    else
        r = one() / pd::select(zmask, one(), m);
    const Pd p1 = d1 * n1, p2 = d2 * n2;                         /* (dr*nr, di*ni) */
    const Pd q1 = d1 * pd::swap(n1), q2 = d2 * pd::swap(n2);     /* (dr*ni, di*nr) */
    const Pd re = (pd::unpackLo(p1, p2) + pd::unpackHi(p1, p2)) * r;
    const Pd im = (pd::unpackLo(q1, q2) - pd::unpackHi(q1, q2)) * r;
    const Pd nan = pd::set1(pd::fromBits(kZeroDivisorNaN));
    const Pd reOut = zero ? pd::select(zmask, nan, re) : re;
    const Pd imOut = zero ? pd::select(zmask, nan, im) : im;
    pd::storeU(dst, pd::unpackLo(reOut, imOut));
    pd::storeU(dst + 2, pd::unpackHi(reOut, imOut));
    return zero;
}

bool divideBatchedComplex(const double* num, const double* den, double* dst, size_t n)
{
    bool zero = false;
    size_t i = 0;
    for (; i + 2 <= n; i += 2)
        zero |= dividePairComplex(num + 2 * i, den + 2 * i, dst + 2 * i);
    if (i < n)
        zero |= divideOneComplex(num, den, dst, i);
    return zero;
}

inline bool divideReal(const double* num, const double* den, double* dst, size_t n)
{
    return kBatchedReciprocals ? divideBatched(num, den, dst, n) : divideScalar(num, den, dst, n);
}

inline bool divideComplex(const double* num, const double* den, double* dst, size_t n)
{
    return kBatchedReciprocals ? divideBatchedComplex(num, den, dst, n) : divideScalarComplex(num, den, dst, n);
}

inline const double* dp(const Omn64fc* p) { return reinterpret_cast<const double*>(p); }
inline double* dp(Omn64fc* p) { return reinterpret_cast<double*>(p); }

/* DivC: "neither less nor greater than 0" refuses zero of either sign and a
   NaN constant alike. */
inline bool unusableDivisor(double m) { return !(m < 0) && !(m > 0); }

} // namespace

OmnStatus omnsDiv_64f(const Omn64f* pSrc1, const Omn64f* pSrc2, Omn64f* pDst, int len)
{
    if (const OmnStatus st = checkArgs(len, pSrc1, pSrc2, pDst))
        return st;
    return divideReal(pSrc2, pSrc1, pDst, static_cast<size_t>(len)) ? omnStatusDivZeroValues : omnStatusOk;
}

OmnStatus omnsDiv_64fc(const Omn64fc* pSrc1, const Omn64fc* pSrc2, Omn64fc* pDst, int len)
{
    if (const OmnStatus st = checkArgs(len, pSrc1, pSrc2, pDst))
        return st;
    return divideComplex(dp(pSrc2), dp(pSrc1), dp(pDst), static_cast<size_t>(len)) ? omnStatusDivZeroValues
                                                                                   : omnStatusOk;
}

OmnStatus omnsDiv_64f_I(const Omn64f* pSrc, Omn64f* pSrcDst, int len)
{
    if (const OmnStatus st = checkArgs(len, pSrc, pSrcDst))
        return st;
    return OMN_COL::omnsDiv_64f(pSrc, pSrcDst, pSrcDst, len);
}

OmnStatus omnsDiv_64fc_I(const Omn64fc* pSrc, Omn64fc* pSrcDst, int len)
{
    if (const OmnStatus st = checkArgs(len, pSrc, pSrcDst))
        return st;
    return OMN_COL::omnsDiv_64fc(pSrc, pSrcDst, pSrcDst, len);
}

OmnStatus omnsDivC_64f(const Omn64f* pSrc, Omn64f val, Omn64f* pDst, int len)
{
    if (const OmnStatus st = checkArgs(len, pSrc, pDst))
        return st;
    if (unusableDivisor(val))
        return omnStatusDivideByZero;
    return OMN_COL::omnsMulC_64f(pSrc, 1 / val, pDst, len);
}

OmnStatus omnsDivC_64f_I(Omn64f val, Omn64f* pSrcDst, int len)
{
    if (const OmnStatus st = checkArgs(len, pSrcDst))
        return st;
    if (unusableDivisor(val))
        return omnStatusDivideByZero;
    return OMN_COL::omnsMulC_64f_I(1 / val, pSrcDst, len);
}

/* (a + bi) / val is (a + bi) * conj(val) / |val|^2. */
static inline Omn64fc reciprocalConstant(Omn64fc val, double m)
{
    const double r = 1 / m;
    return Omn64fc{ val.re * r, -val.im * r };
}

OmnStatus omnsDivC_64fc(const Omn64fc* pSrc, Omn64fc val, Omn64fc* pDst, int len)
{
    if (const OmnStatus st = checkArgs(len, pSrc, pDst))
        return st;
    const double m = val.re * val.re + val.im * val.im;
    if (unusableDivisor(m))
        return omnStatusDivideByZero;
    return OMN_COL::omnsMulC_64fc(pSrc, reciprocalConstant(val, m), pDst, len);
}

OmnStatus omnsDivC_64fc_I(Omn64fc val, Omn64fc* pSrcDst, int len)
{
    if (const OmnStatus st = checkArgs(len, pSrcDst))
        return st;
    const double m = val.re * val.re + val.im * val.im;
    if (unusableDivisor(m))
        return omnStatusDivideByZero;
    return OMN_COL::omnsMulC_64fc_I(reciprocalConstant(val, m), pSrcDst, len);
}

OMN_COLUMN_END
