/*
 * sqrt.cpp - Sqrt on doubles and double complex.
 *
 * A real run that meets a negative argument (or what the column counts as
 * one, below) writes every element and returns 3.  Complex roots never warn.
 *
 * Column points:
 *   px    rootPx: the correctly rounded root; -0 stays -0 without a warning,
 *         a negative or NaN argument stores the NaN 0xFFF8000000000000 and
 *         warns.  In place, zeros are left as they stand.
 *   a6    rootsA6: blocks of kA6Block elements from the start through the
 *         seed-and-refine root, with a packed single-precision seed.  A block
 *         holding anything but finite positive numbers goes element by
 *         element (blockFallbackA6): +0 for a zero of either sign, the NaN
 *         and the warning for a negative number, a NaN stored as it stands.
 *         The tail takes the hardware root, and a set sign bit there (-0
 *         too) stores the NaN and warns.
 *   w7/t7 rootsPacked: pairs through the seed-and-refine root, with one
 *         scalar element first when the destination is 8 past a 16-byte
 *         boundary, and one at the end.  A pair holding anything not
 *         strictly positive takes the packed hardware root, and the sign
 *         bits of its elements are the warning; so are the signs of the
 *         scalar elements, which take the hardware root too.  An infinity in
 *         a pair comes out as 2^512, and a denormal is rooted as if it had
 *         the hidden bit of a normal number: both are what the seed path
 *         gives, and are accepted for its speed.  The SSE control word is
 *         set for the call (kRootMxcsrBits) and put back.
 *
 * The seed-and-refine root: x = m * 2^(2k) with m in [0.5, 2) (the low bit
 * of the exponent stays with the mantissa); a single-precision estimate y of
 * 1/sqrt(m) is refined twice, y1 = 0.5*y*(3 - m*y*y), s = m*y1, root =
 * 0.5*s*(3 - s*y1), and k is added to the exponent of the result as an
 * integer.  No division and no full-precision root.  The estimate is the
 * processor's single-precision one, refined once in single precision
 * (pd::rsqrtRefined), so that the two double steps end within a couple of
 * units in the last place.
 */
#include "core/column.h"
#include "core/checks.h"
#include "core/cpu.h"
#include "vector/f64x2.h"

#include <stdint.h>

OMN_COLUMN_BEGIN

namespace {

using pd::Pd;
using pd::bitsOf;
using pd::fromBits;
using pd::ld;
using pd::st;

constexpr uint64_t kDefaultNaN = 0xFFF8000000000000ull;
constexpr uint64_t kMantissaAndLowExponent = 0x001FFFFFFFFFFFFFull;
constexpr uint64_t kHalfExponent = 0x3FE0000000000000ull;
constexpr uint64_t kInfinityBits = 0x7FF0000000000000ull;

inline bool signBit(double x) { return (bitsOf(x) >> 63) != 0; }

/* ---- the seed-and-refine root, one element at a time (a6) ------------- */

inline double refine(double m, double y)
{
    const double y1 = 0.5 * y * (3 - m * y * y);
    const double s = m * y1;
    return 0.5 * s * (3 - s * y1);
}

/* Half the exponent distance between x and its mantissa m, as an addend for
   the high word of m's root. */
inline uint32_t halfExponentStep(uint64_t xb, uint64_t mb)
{
    const uint32_t diff = static_cast<uint32_t>(xb >> 32) - static_cast<uint32_t>(mb >> 32);
    return (diff >> 1) | (diff & 0x80000000u);   /* arithmetic shift by one */
}

inline double addToHighWord(double r, uint32_t step)
{
    const uint64_t rb = bitsOf(r);
    const uint32_t hi = static_cast<uint32_t>(rb >> 32) + step;
    return fromBits(static_cast<uint64_t>(hi) << 32 | (rb & 0xFFFFFFFFull));
}

constexpr size_t kA6Block = 4;

/* Single-precision reciprocal-root estimates of four mantissas. */
inline void seedA6(const double* m, double* y)
{
#if OMN_SIMD == 1
    alignas(16) float out[4];
    const __m128 f = _mm_set_ps(static_cast<float>(m[3]), static_cast<float>(m[2]),
                                static_cast<float>(m[1]), static_cast<float>(m[0]));
    _mm_store_ps(out, pd::rsqrtRefined(f));
    for (size_t k = 0; k < 4; ++k)
        y[k] = out[k];
#else
    for (size_t k = 0; k < 4; ++k)
        y[k] = static_cast<double>(1.0f / sqrtf(static_cast<float>(m[k])));
#endif
}

/* Finite and strictly positive, denormals included: what the seed path
   takes. */
inline bool seedable(double x)
{
    const uint64_t b = bitsOf(x);
    return b != 0 && b < kInfinityBits;
}

inline double blockFallbackA6(double x, bool* warn)
{
    if (x > 0)
        return ::sqrt(x);
    if (x == 0)
        return 0.0;
    if (x < 0) {
        *warn = true;
        return fromBits(kDefaultNaN);
    }
    return x;   /* NaN */
}

inline bool rootsA6(const double* src, double* dst, size_t n)
{
    bool warn = false;
    size_t i = 0;
    for (; i + kA6Block <= n; i += kA6Block) {
        double x[4];
        bool fast = true;
        for (size_t k = 0; k < 4; ++k) {
            x[k] = ld(src + i + k);
            fast = fast && seedable(x[k]);
        }
        if (!fast) {
            for (size_t k = 0; k < 4; ++k)
                st(dst + i + k, blockFallbackA6(x[k], &warn));
            continue;
        }
        double m[4], y[4];
        uint64_t mb[4];
        for (size_t k = 0; k < 4; ++k) {
            mb[k] = (bitsOf(x[k]) & kMantissaAndLowExponent) | kHalfExponent;
            m[k] = fromBits(mb[k]);
        }
        seedA6(m, y);
        for (size_t k = 0; k < 4; ++k)
            st(dst + i + k, addToHighWord(refine(m[k], y[k]), halfExponentStep(bitsOf(x[k]), mb[k])));
    }
    for (; i < n; ++i) {
        const double x = ld(src + i);
        if (signBit(x)) {
            warn = true;
            st(dst + i, fromBits(kDefaultNaN));
        } else {
            st(dst + i, ::sqrt(x));
        }
    }
    return warn;
}

/* ---- px ------------------------------------------------------------------ */

inline double rootPx(double x, bool* warn)
{
    if (x > 0)
        return ::sqrt(x);
    if (x == 0)
        return x;
    *warn = true;
    return fromBits(kDefaultNaN);
}

inline bool rootsPx(const double* src, double* dst, size_t n, bool inPlace)
{
    bool warn = false;
    size_t i = 0;
    for (; i + 4 <= n; i += 4) {
        for (size_t k = 0; k < 4; ++k) {
            const double x = ld(src + i + k);
            if (!(inPlace && x == 0))
                st(dst + i + k, rootPx(x, &warn));
        }
    }
    for (; i < n; ++i) {
        const double x = ld(src + i);
        if (!(inPlace && x == 0))
            st(dst + i, rootPx(x, &warn));
    }
    return warn;
}

/* ---- w7, t7 ------------------------------------------------------------------ */

/* Invalid and denormal exceptions masked, denormals-are-zero off: the pair
   test must see a denormal as positive. */
constexpr uint32_t kRootMxcsrMask = kMxcsrDaz | kMxcsrInvalidMask | kMxcsrDenormalMask;
constexpr uint32_t kRootMxcsrBits = kMxcsrInvalidMask | kMxcsrDenormalMask;

inline Pd seedRoot(Pd x)
{
    const Pd m = (x & pd::fromBits2(kMantissaAndLowExponent, kMantissaAndLowExponent)) |
                 pd::fromBits2(kHalfExponent, kHalfExponent);
    const Pd step = pd::sra32By1(pd::sub32(x, m));
    const Pd y = pd::rsqrtEstimate(m);
    const Pd half = pd::set1(0.5), three = pd::set1(3.0);
    const Pd y1 = half * y * (three - m * y * y);
    const Pd s = m * y1;
    return pd::add32(half * s * (three - s * y1), step);
}

inline bool seedable(Pd x) { return pd::signs(pd::cmpGt(x, pd::set1(0.0))) == 3; }

/* A pair that is not all strictly positive: the hardware root, and the signs
   as the warning. */
inline Pd hardwareRoot(Pd x, bool* warn)
{
    *warn |= pd::signs(x) != 0;
    return pd::sqrt(x);
}

inline void storePair(double* dst, Pd r, bool aligned)
{
    if (aligned)
        pd::storeA(dst, r);
    else
        pd::storeU(dst, r);
}

/* Two pairs a turn, so that the long chain of the seed path of one pair
   overlaps the other's. */
inline bool rootTwoPairs(const double* src, double* dst, bool aligned)
{
    const Pd x0 = pd::loadU(src), x1 = pd::loadU(src + 2);
    bool warn = false;
    Pd r0, r1;
    if (seedable(x0) && seedable(x1)) {
        r0 = seedRoot(x0);
        r1 = seedRoot(x1);
    } else {
        r0 = seedable(x0) ? seedRoot(x0) : hardwareRoot(x0, &warn);
        r1 = seedable(x1) ? seedRoot(x1) : hardwareRoot(x1, &warn);
    }
    storePair(dst, r0, aligned);
    storePair(dst + 2, r1, aligned);
    return warn;
}

inline bool rootPair(const double* src, double* dst, bool aligned)
{
    const Pd x = pd::loadU(src);
    bool warn = false;
    storePair(dst, seedable(x) ? seedRoot(x) : hardwareRoot(x, &warn), aligned);
    return warn;
}

inline bool rootScalar(const double* src, double* dst)
{
    const double x = ld(src);
    st(dst, ::sqrt(x));
    return signBit(x);
}

inline bool rootsPacked(const double* src, double* dst, size_t n)
{
    const uint32_t saved = omnReadMxcsr();
    const uint32_t wanted = (saved & ~kRootMxcsrMask) | kRootMxcsrBits;
    if (wanted != saved)
        omnRestoreMxcsr(wanted);
    bool warn = false;
    size_t i = 0;
    if (reinterpret_cast<uintptr_t>(dst) % 16 == 8) {
        warn |= rootScalar(src, dst);
        i = 1;
    }
    const bool aligned = reinterpret_cast<uintptr_t>(dst + i) % 16 == 0;
    for (; i + 4 <= n; i += 4) {
        pd::prefetch(src + i + 16);
        warn |= rootTwoPairs(src + i, dst + i, aligned);
    }
    if (i + 2 <= n) {
        warn |= rootPair(src + i, dst + i, aligned);
        i += 2;
    }
    if (i < n)
        warn |= rootScalar(src + i, dst + i);
    if (wanted != saved)
        omnRestoreMxcsr(saved);
    return warn;
}

inline bool roots(const double* src, double* dst, size_t n, bool inPlace)
{
#if OMN_COLUMN_INDEX == 0
    return rootsPx(src, dst, n, inPlace);
#elif OMN_COLUMN_INDEX == 1
    (void)inPlace;
    return rootsA6(src, dst, n);
#else
    (void)inPlace;
    return rootsPacked(src, dst, n);
#endif
}

/* ---- complex roots ------------------------------------------------------------ */

/* px and a6: with x = re/2 and y = im/2 (the halving keeps x*x + y*y from
   overflowing early), by the sign of x. */
inline void complexRootScalar(double re, double im, double* outRe, double* outIm)
{
    const double x = re * 0.5, y = im * 0.5;
    if (x > 0) {
        const double h = ::sqrt(x * x + y * y);
        const double r = ::sqrt(x + h);
        *outRe = r;
        *outIm = y / r;
    } else if (x < 0) {
        const double h = ::sqrt(x * x + y * y);
        double t = ::sqrt(h - x);
        if (y < 0)
            t = -t;
        *outIm = t;
        *outRe = y / t;
    } else if (y < 0) {   /* x is 0 or NaN */
        const double r = ::sqrt(-y);
        *outRe = r;
        *outIm = -r;
    } else {
        const double r = ::sqrt(y);
        *outRe = r;
        *outIm = r;
    }
}

/* w7 and t7: two elements at a time, without branches on the data.
   t = |x| + sqrt(x*x + y*y) and s = sqrt(t) are the larger part in
   magnitude; the smaller is |y| / s, and one reciprocal of s1*s2 serves both
   elements.  A t of 0 divides by 0.5 instead, so a zero gives a zero.  When
   s1*s2 is out of the normal range the two quotients are formed apart. */
inline void complexRootPair(Pd z1, Pd z2, Pd* out1, Pd* out2)
{
    const Pd half = pd::set1(0.5), zero = pd::set1(0.0), sign = pd::set1(-0.0);
    const Pd x = pd::unpackLo(z1, z2) * half, y = pd::unpackHi(z1, z2) * half;
    const Pd ax = pd::andNot(sign, x), ay = pd::andNot(sign, y);
    const Pd t = ax + pd::sqrt(x * x + y * y);
    const Pd s = pd::sqrt(t);
    const Pd d = pd::select(pd::cmpEq(t, zero), half, s);
    const Pd p = d * pd::swap(d);
    int zeros, ones;
    pd::exponentClass(p, &zeros, &ones);
    const Pd q = (zeros | ones) == 0 ? ay * ((pd::set1(1.0) / p) * pd::swap(d)) : ay / d;
    const Pd neg = pd::cmpLt(x, zero);
    const Pd re = pd::select(neg, q, s);
    const Pd w = pd::select(neg, s, q);
    const Pd im = pd::andNot(sign, w) | (y & sign);
    *out1 = pd::unpackLo(re, im);
    *out2 = pd::unpackHi(re, im);
}

inline void complexRoots(const double* src, double* dst, size_t n)
{
#if OMN_COLUMN_INDEX <= 1
    for (size_t i = 0; i < n; ++i) {
        double re, im;
        complexRootScalar(ld(src + 2 * i), ld(src + 2 * i + 1), &re, &im);
        st(dst + 2 * i, re);
        st(dst + 2 * i + 1, im);
    }
#else
    size_t i = 0;
    for (; i + 2 <= n; i += 2) {
        Pd a, b;
        complexRootPair(pd::loadU(src + 2 * i), pd::loadU(src + 2 * i + 2), &a, &b);
        pd::storeU(dst + 2 * i, a);
        pd::storeU(dst + 2 * i + 2, b);
    }
    if (i < n) {
        /* The last element alone: paired with itself. */
        const Pd z = pd::loadU(src + 2 * i);
        Pd a, b;
        complexRootPair(z, z, &a, &b);
        pd::storeHalves(dst + 2 * i, a);
    }
#endif
}

} // namespace

OmnStatus omnsSqrt_64f(const Omn64f* pSrc, Omn64f* pDst, int len)
{
    if (const OmnStatus st = checkArgs(len, pSrc, pDst))
        return st;
    return roots(pSrc, pDst, static_cast<size_t>(len), false) ? omnStatusSqrtNegative : omnStatusOk;
}

OmnStatus omnsSqrt_64f_I(Omn64f* pSrcDst, int len)
{
    if (const OmnStatus st = checkArgs(len, pSrcDst))
        return st;
    return roots(pSrcDst, pSrcDst, static_cast<size_t>(len), true) ? omnStatusSqrtNegative : omnStatusOk;
}

OmnStatus omnsSqrt_64fc(const Omn64fc* pSrc, Omn64fc* pDst, int len)
{
    if (const OmnStatus st = checkArgs(len, pSrc, pDst))
        return st;
    complexRoots(reinterpret_cast<const double*>(pSrc), reinterpret_cast<double*>(pDst), static_cast<size_t>(len));
    return omnStatusOk;
}

OmnStatus omnsSqrt_64fc_I(Omn64fc* pSrcDst, int len)
{
    if (const OmnStatus st = checkArgs(len, pSrcDst))
        return st;
    complexRoots(reinterpret_cast<const double*>(pSrcDst), reinterpret_cast<double*>(pSrcDst), static_cast<size_t>(len));
    return omnStatusOk;
}

OMN_COLUMN_END
