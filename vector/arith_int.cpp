/*
 * arith_int.cpp - element-wise arithmetic on Omn32s and Omn32sc with a scale
 * factor, integer division, absolute value and shifts.
 *
 * The scale rule itself is vector/scale.h.  Column points of this file:
 *   kPackedAdditive  w7/t7 run Add, Sub and the additive constant forms
 *                    through packed integer kernels, one per branch; the
 *                    results are those of the scalar rule.
 *   kMulInDouble     w7/t7 multiply Mul_32s_Sfs/_ISfs in double precision,
 *                    which is allowed to differ from the 64-bit rule in the
 *                    low bit where the exact product needs more than 53 bits.
 * Everything else (constant and complex products, AddProduct, Div) is the
 * same code in every column.
 */
#include "core/column.h"
#include "core/checks.h"

#include <math.h>
#include <stdint.h>
#include <string.h>

#include "core/cpu.h"
#include "vector/memkernels.h"
#include "vector/scale.h"

OMN_COLUMN_BEGIN

namespace {

using scale::Branch;

#if OMN_SIMD >= 2
constexpr bool kPackedAdditive = true;
#else
constexpr bool kPackedAdditive = false;   /* px, a6 and portable builds: scalar loops */
#endif

/* The product of Mul_32s goes through doubles in w7 and t7, on every
   target: the difference is part of what these columns compute, not of
   their instruction set. */
constexpr bool kMulInDouble = OMN_COLUMN_INDEX >= 2;

inline size_t count(int len) { return static_cast<size_t>(len); }

/* The complex sums test the length first and then run the real form on
   twice as many parts; the doubling wraps at 2^32 like the length it
   stands for, so 2^30 elements or more come back as a bad size. */
inline int twice(int len) { return static_cast<int>(static_cast<uint32_t>(len) * 2u); }

inline void zeroParts(Omn32s* d, size_t n) { mem::zeroBytes(d, n * sizeof(Omn32s)); }

/* ---- operand sources of the additive kernels --------------------------- */

/* A source array of 32-bit parts. */
struct Arr {
    const Omn32s* p;
    int64_t at(size_t i) const { return p[i]; }
#if OMN_SIMD >= 2
    __m128i load(size_t i) const { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + i)); }
#endif
};

/* A constant: one value for real forms, re/im alternating for complex ones. */
struct Pat {
    Omn32s v[2];
#if OMN_SIMD >= 2
    __m128i vec;
#endif
    Pat(Omn32s even, Omn32s odd) : v{ even, odd }
#if OMN_SIMD >= 2
        , vec(_mm_set_epi32(odd, even, odd, even))
#endif
    {}
    int64_t at(size_t i) const { return v[i & 1]; }
#if OMN_SIMD >= 2
    __m128i load(size_t) const { return vec; }   /* blocks start at even parts */
#endif
};

/* ---- packed additive kernels (w7, t7) ---------------------------------- */
#if OMN_SIMD >= 2

inline __m128i select(__m128i m, __m128i a, __m128i b)
{
    return _mm_or_si128(_mm_and_si128(m, a), _mm_andnot_si128(m, b));
}

template <bool kSub>
inline __m128i op32(__m128i x, __m128i y) { return kSub ? _mm_sub_epi32(x, y) : _mm_add_epi32(x, y); }

template <bool kSub>
inline __m128i op64(__m128i x, __m128i y) { return kSub ? _mm_sub_epi64(x, y) : _mm_add_epi64(x, y); }

/* All ones where the wrapped 32-bit result r of x op y has lost its sign:
   a sum of two like signs, or a difference of unlike ones, that changed
   sign.  The true sign is then the sign of x. */
template <bool kSub>
inline __m128i overflow32(__m128i x, __m128i y, __m128i r)
{
    const __m128i t = kSub ? _mm_and_si128(_mm_xor_si128(x, y), _mm_xor_si128(x, r))
                           : _mm_andnot_si128(_mm_xor_si128(x, y), _mm_xor_si128(x, r));
    return _mm_srai_epi32(t, 31);
}

/* The saturated value for a sign mask (all ones when negative). */
inline __m128i saturatedFor(__m128i signMask)
{
    return _mm_xor_si128(signMask, _mm_set1_epi32(0x7FFFFFFF));
}

/* Sign-extends four parts into two vectors of two 64-bit lanes. */
inline void widen(__m128i v, __m128i& lo, __m128i& hi)
{
    const __m128i s = _mm_srai_epi32(v, 31);
    lo = _mm_unpacklo_epi32(v, s);
    hi = _mm_unpackhi_epi32(v, s);
}

inline __m128i lowHalves(__m128i lo, __m128i hi)
{
    return _mm_unpacklo_epi64(_mm_shuffle_epi32(lo, _MM_SHUFFLE(3, 1, 2, 0)),
                              _mm_shuffle_epi32(hi, _MM_SHUFFLE(3, 1, 2, 0)));
}

inline __m128i highHalves(__m128i lo, __m128i hi)
{
    return _mm_unpacklo_epi64(_mm_shuffle_epi32(lo, _MM_SHUFFLE(2, 0, 3, 1)),
                              _mm_shuffle_epi32(hi, _MM_SHUFFLE(2, 0, 3, 1)));
}

/* sf = 0: the 32-bit result, or the limit of the true sign. */
template <bool kSub>
struct PackedNone {
    __m128i operator()(__m128i x, __m128i y) const
    {
        const __m128i r = op32<kSub>(x, y);
        const __m128i ovf = overflow32<kSub>(x, y, r);
        return select(ovf, saturatedFor(_mm_srai_epi32(x, 31)), r);
    }
};

/* sf = -k, k from 1 to 30: shift the 32-bit result up; it saturates when
   the 33-bit sum overflowed already or when shifting back doesn't restore
   it. */
template <bool kSub>
struct PackedShift {
    __m128i cnt;
    __m128i operator()(__m128i x, __m128i y) const
    {
        const __m128i r = op32<kSub>(x, y);
        const __m128i ovf = overflow32<kSub>(x, y, r);
        const __m128i up = _mm_sll_epi32(r, cnt);
        const __m128i kept = _mm_cmpeq_epi32(_mm_sra_epi32(up, cnt), r);
        const __m128i sat = _mm_or_si128(ovf, _mm_xor_si128(kept, _mm_set1_epi32(-1)));
        const __m128i sign = _mm_srai_epi32(select(ovf, x, r), 31);
        return select(sat, saturatedFor(sign), up);
    }
};

/* sf from 1 to 32, in 64-bit lanes: r = (s + bias + parity) >> sf.  The
   logical 64-bit shift gives the low 32 bits of the arithmetic one, since
   sf + 31 < 64, and these are all that is stored.  bias is 0 for sf = 1. */
template <bool kSub, bool kOne>
struct PackedRound {
    __m128i cnt, bias;
    __m128i scaled(__m128i s) const
    {
        const __m128i parity = _mm_and_si128(_mm_srl_epi64(s, cnt), _mm_set_epi32(0, 1, 0, 1));
        __m128i t = _mm_add_epi64(s, parity);
        if (!kOne)
            t = _mm_add_epi64(t, bias);
        return _mm_srl_epi64(t, cnt);
    }
    __m128i operator()(__m128i x, __m128i y) const
    {
        __m128i xl, xh, yl, yh;
        widen(x, xl, xh);
        widen(y, yl, yh);
        const __m128i sl = op64<kSub>(xl, yl), sh = op64<kSub>(xh, yh);
        __m128i r = lowHalves(scaled(sl), scaled(sh));
        if (kSub && kOne) {
            /* 2^32 - 1 halves to 2^31, which reads as negative in 32 bits:
               a nonnegative s with a negative result saturates. */
            const __m128i wrapped = _mm_srai_epi32(_mm_andnot_si128(highHalves(sl, sh), r), 31);
            r = _mm_xor_si128(r, wrapped);
        }
        return r;
    }
};

template <bool kSub, typename X, typename Y, typename PK, typename SK>
void packedRun(const X& x, const Y& y, Omn32s* d, size_t n, const PK& pk, const SK& sk)
{
    size_t i = 0;
    for (; i + 4 <= n; i += 4)
        _mm_storeu_si128(reinterpret_cast<__m128i*>(d + i), pk(x.load(i), y.load(i)));
    for (; i < n; ++i)
        d[i] = sk(kSub ? x.at(i) - y.at(i) : x.at(i) + y.at(i));
}

#endif /* OMN_SIMD >= 2 */

/* s = x + y or x - y over n parts, scaled.  The packed columns take one
   kernel per branch; the sign path stays a scalar loop. */
template <bool kSub, typename X, typename Y>
void additive(const X& x, const Y& y, Omn32s* d, size_t n, int sf)
{
    const auto acc = [&](size_t i, int64_t* s) { s[0] = kSub ? x.at(i) - y.at(i) : x.at(i) + y.at(i); };
    if constexpr (kPackedAdditive) {
#if OMN_SIMD >= 2
        switch (scale::branchOf(sf, scale::kAdditive)) {
        case Branch::None:
            packedRun<kSub>(x, y, d, n, PackedNone<kSub>{}, scale::NoScale{});
            return;
        case Branch::ShiftLeft:
            packedRun<kSub>(x, y, d, n, PackedShift<kSub>{ _mm_cvtsi32_si128(-sf) },
                            scale::ShiftUp<false>{ static_cast<unsigned>(-sf) });
            return;
        case Branch::RoundOne:
            packedRun<kSub>(x, y, d, n, PackedRound<kSub, true>{ _mm_cvtsi32_si128(1), _mm_setzero_si128() },
                            scale::RoundOne{});
            return;
        case Branch::Round: {
            const uint32_t b = (uint32_t(1) << (sf - 1)) - 1;   /* below 2^31 for sf <= 32 */
            packedRun<kSub>(x, y, d, n, PackedRound<kSub, false>{ _mm_cvtsi32_si128(sf), _mm_set_epi32(0, b, 0, b) },
                            scale::RoundNarrow{ static_cast<unsigned>(sf), b });
            return;
        }
        case Branch::Sign:
            scale::mapEach<1>(d, n, acc, scale::SignOnly{});
            return;
        case Branch::ZeroFill:
            zeroParts(d, n);
            return;
        }
#endif
    } else {
        scale::scaleEach<scale::kAdditive, 1>(d, n, sf, acc);
    }
}

/* ---- the double-precision product of w7 and t7 ------------------------- */

/* 2^e from its exponent field, e from -1022 to 1023. */
inline double pow2(int e)
{
    const uint64_t bits = static_cast<uint64_t>(1023 + e) << 52;
    double d;
    memcpy(&d, &bits, sizeof d);
    return d;
}

#if OMN_SIMD < 2
/* To nearest with ties to even, whatever the hardware rounding mode, for a
   value already clamped to the 32-bit range: the portable build has no
   rounding field to set. */
inline Omn32s nearestEven(double x)
{
    const double f = floor(x);
    const double frac = x - f;
    int64_t i = static_cast<int64_t>(f);
    if (frac > 0.5 || (frac == 0.5 && (i & 1) != 0))
        ++i;
    return static_cast<Omn32s>(i);
}
#endif

/* (a * 2^-sf) * b in double, clamped to the 32-bit limits and converted to
   nearest.  a * 2^-sf is exact; the product is rounded once to 53 bits, so
   that where the exact product is wider the stored value may differ from
   the 64-bit rule in its lowest bit. */
void mulDoubleKernel(const Omn32s* a, const Omn32s* b, Omn32s* d, size_t n, double f)
{
    size_t i = 0;
#if OMN_SIMD >= 2
    const __m128d vf = _mm_set1_pd(f);
    const __m128d lo = _mm_set1_pd(-2147483648.0), hi = _mm_set1_pd(2147483647.0);
    for (; i + 4 <= n; i += 4) {
        const __m128i va = _mm_loadu_si128(reinterpret_cast<const __m128i*>(a + i));
        const __m128i vb = _mm_loadu_si128(reinterpret_cast<const __m128i*>(b + i));
        __m128d x0 = _mm_mul_pd(_mm_mul_pd(_mm_cvtepi32_pd(va), vf), _mm_cvtepi32_pd(vb));
        __m128d x1 = _mm_mul_pd(_mm_mul_pd(_mm_cvtepi32_pd(_mm_srli_si128(va, 8)), vf),
                                _mm_cvtepi32_pd(_mm_srli_si128(vb, 8)));
        x0 = _mm_min_pd(_mm_max_pd(x0, lo), hi);
        x1 = _mm_min_pd(_mm_max_pd(x1, lo), hi);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(d + i),
                         _mm_unpacklo_epi64(_mm_cvtpd_epi32(x0), _mm_cvtpd_epi32(x1)));
    }
#endif
    for (; i < n; ++i) {
        double x = (static_cast<double>(a[i]) * f) * static_cast<double>(b[i]);
        x = x < -2147483648.0 ? -2147483648.0 : x > 2147483647.0 ? 2147483647.0 : x;
#if OMN_SIMD >= 2
        d[i] = _mm_cvtsd_si32(_mm_set_sd(x));
#else
        d[i] = nearestEven(x);
#endif
    }
}

/* Mul_32s of the double-precision columns: the sign path and the zero fill
   stay as in every column; the other branches are one kernel with the
   factor 2^-sf.  With sf = 0 every stored value is an integer in double
   already, so no rounding mode is involved; otherwise the rounding field is
   forced to nearest for the call and put back. */
void mulInDouble(const Omn32s* a, const Omn32s* b, Omn32s* d, size_t n, int sf)
{
    switch (scale::branchOf(sf, scale::kProduct)) {
    case Branch::Sign:
        scale::mapEach<1>(d, n, [&](size_t i, int64_t* s) { s[0] = int64_t(a[i]) * b[i]; }, scale::SignOnly{});
        return;
    case Branch::ZeroFill:
        zeroParts(d, n);
        return;
    case Branch::None:
        mulDoubleKernel(a, b, d, n, 1.0);
        return;
    default: {
        const uint32_t saved = omnSetMxcsrRounding(0);   /* round to nearest */
        mulDoubleKernel(a, b, d, n, pow2(-sf));
        if ((saved & kMxcsrRounding) != 0)
            omnRestoreMxcsr(saved);
        return;
    }
    }
}

void mulReal(const Omn32s* a, const Omn32s* b, Omn32s* d, size_t n, int sf)
{
    if constexpr (kMulInDouble)
        mulInDouble(a, b, d, n, sf);
    else
        scale::scaleEach<scale::kProduct, 1>(d, n, sf, [&](size_t i, int64_t* s) { s[0] = int64_t(a[i]) * b[i]; });
}

/* ---- complex products --------------------------------------------------- */

void mulCplx(const Omn32sc* a, const Omn32sc* b, Omn32s* d, size_t n, int sf)
{
    scale::scaleEach<scale::kCplxProduct, 2>(d, n, sf, [&](size_t i, int64_t* s) {
        const Omn32sc x = a[i], y = b[i];
        s[0] = scale::cplxMulRe(x.re, x.im, y.re, y.im);
        s[1] = scale::cplxMulIm(x.re, x.im, y.re, y.im);
    });
}

void mulCplxConst(const Omn32sc* a, Omn32sc v, Omn32s* d, size_t n, int sf)
{
    scale::scaleEach<scale::kCplxProduct, 2>(d, n, sf, [&](size_t i, int64_t* s) {
        const Omn32sc x = a[i];
        s[0] = scale::cplxMulRe(x.re, x.im, v.re, v.im);
        s[1] = scale::cplxMulIm(x.re, x.im, v.re, v.im);
    });
}

inline Omn32s* parts(Omn32sc* p) { return reinterpret_cast<Omn32s*>(p); }
inline const Omn32s* parts(const Omn32sc* p) { return reinterpret_cast<const Omn32s*>(p); }

/* ---- division ------------------------------------------------------------ */

inline Omn32s bySign(Omn32s v)
{
    return static_cast<Omn32s>(v > 0 ? scale::kMax32 : v < 0 ? scale::kMin32 : 0);
}

/* To nearest with ties to even, as the division rounds its double quotient:
   q -/+ 0.5 truncated, and a truncation that landed exactly on an odd value
   was a tie and moves back to the even one.  |q| < 2^31 + 1, so q -/+ 0.5 is
   exact and its truncation fits. */
inline Omn32s divRound(double q)
{
    if (q < 0) {
        const double h = q - 0.5;
        int64_t t = static_cast<int64_t>(h);
        if ((t & 1) != 0 && static_cast<double>(t) == h)
            t += 1;
        return static_cast<Omn32s>(t);
    }
    const double h = q + 0.5;
    int64_t t = static_cast<int64_t>(h);
    if ((t & 1) != 0 && static_cast<double>(t) == h)
        t -= 1;
    return static_cast<Omn32s>(t);
}

/* den divides num.  Returns whether any divisor was zero. */
bool divide(const Omn32s* den, const Omn32s* num, Omn32s* dst, size_t n, int sf)
{
    bool zero = false;
    if (sf < -62) {
        /* So large a factor saturates any nonzero quotient. */
        for (size_t i = 0; i < n; ++i) {
            const Omn32s d = den[i], v = num[i];
            if (d == 0) {
                zero = true;
                dst[i] = bySign(v);
            } else {
                dst[i] = v == 0 ? 0 : static_cast<Omn32s>((v > 0) == (d > 0) ? scale::kMax32 : scale::kMin32);
            }
        }
    } else if (sf > 32) {
        /* ... and so small a one leaves nothing. */
        for (size_t i = 0; i < n; ++i) {
            const Omn32s d = den[i];
            if (d == 0) {
                zero = true;
                dst[i] = bySign(num[i]);
            } else {
                dst[i] = 0;
            }
        }
    } else {
        double k = 1.0;   /* 2^-sf, exact */
        for (int j = 0; j < sf; ++j)
            k *= 0.5;
        for (int j = 0; j < -sf; ++j)
            k *= 2.0;
        if (sf <= 0) {
            for (size_t i = 0; i < n; ++i) {
                const Omn32s d = den[i];
                if (d == 0) {
                    zero = true;
                    dst[i] = bySign(num[i]);
                    continue;
                }
                const double q = (static_cast<double>(num[i]) * k) / static_cast<double>(d);
                dst[i] = q < -2147483648.0 ? static_cast<Omn32s>(scale::kMin32)
                       : q > 2147483647.0  ? static_cast<Omn32s>(scale::kMax32)
                                           : divRound(q);
            }
        } else {
            /* |q| <= 2^30: no range test. */
            for (size_t i = 0; i < n; ++i) {
                const Omn32s d = den[i];
                if (d == 0) {
                    zero = true;
                    dst[i] = bySign(num[i]);
                    continue;
                }
                dst[i] = divRound((static_cast<double>(num[i]) * k) / static_cast<double>(d));
            }
        }
    }
    return zero;
}

/* ---- absolute value and shifts -------------------------------------------- */

/* |x|, with the minimum saturating to the maximum: (x ^ m) - m with m the
   sign mask, and the one result that is still negative flipped to 0x7FFFFFFF. */
inline Omn32s absSat(Omn32s x)
{
    const uint32_t m = static_cast<uint32_t>(x >> 31);
    uint32_t r = (static_cast<uint32_t>(x) ^ m) - m;
    r ^= static_cast<uint32_t>(static_cast<int32_t>(r) >> 31);
    return static_cast<Omn32s>(r);
}

void absKernel(const Omn32s* s, Omn32s* d, size_t n)
{
    size_t i = 0;
#if OMN_SIMD >= 2
    for (; i + 4 <= n; i += 4) {
        const __m128i x = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + i));
        const __m128i m = _mm_srai_epi32(x, 31);
        __m128i r = _mm_sub_epi32(_mm_xor_si128(x, m), m);
        r = _mm_xor_si128(r, _mm_srai_epi32(r, 31));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(d + i), r);
    }
#endif
    for (; i < n; ++i)
        d[i] = absSat(s[i]);
}

/* Arithmetic shift right by k from 0 to 31. */
void shiftRightKernel(const Omn32s* s, Omn32s* d, size_t n, int k)
{
    size_t i = 0;
#if OMN_SIMD >= 2
    const __m128i cnt = _mm_cvtsi32_si128(k);
    for (; i + 4 <= n; i += 4)
        _mm_storeu_si128(reinterpret_cast<__m128i*>(d + i),
                         _mm_sra_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(s + i)), cnt));
#endif
    for (; i < n; ++i)
        d[i] = s[i] >> k;
}

/* Shift left by k from 0 to 31; bits leave at the top. */
void shiftLeftKernel(const Omn32s* s, Omn32s* d, size_t n, int k)
{
    size_t i = 0;
#if OMN_SIMD >= 2
    const __m128i cnt = _mm_cvtsi32_si128(k);
    for (; i + 4 <= n; i += 4)
        _mm_storeu_si128(reinterpret_cast<__m128i*>(d + i),
                         _mm_sll_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(s + i)), cnt));
#endif
    for (; i < n; ++i)
        d[i] = static_cast<Omn32s>(static_cast<uint32_t>(s[i]) << k);
}

OmnStatus rshift(const Omn32s* s, Omn32s val, Omn32s* d, size_t n)
{
    if (val < 0)
        return omnStatusNegativeShift;
    /* From 32 up every bit is the sign, as with 31. */
    shiftRightKernel(s, d, n, val > 31 ? 31 : val);
    return omnStatusOk;
}

OmnStatus lshift(const Omn32s* s, Omn32s val, Omn32s* d, size_t n)
{
    if (val < 0)
        return omnStatusNegativeShift;
    if (val > 31)
        zeroParts(d, n);
    else
        shiftLeftKernel(s, d, n, val);
    return omnStatusOk;
}

} // namespace

/* ---- additive forms ------------------------------------------------------- */

OmnStatus omnsAdd_32s_Sfs(const Omn32s* pSrc1, const Omn32s* pSrc2, Omn32s* pDst, int len, int scaleFactor)
{
    if (const OmnStatus st = checkArgs(len, pSrc1, pSrc2, pDst))
        return st;
    additive<false>(Arr{ pSrc1 }, Arr{ pSrc2 }, pDst, count(len), scaleFactor);
    return omnStatusOk;
}

OmnStatus omnsSub_32s_Sfs(const Omn32s* pSrc1, const Omn32s* pSrc2, Omn32s* pDst, int len, int scaleFactor)
{
    if (const OmnStatus st = checkArgs(len, pSrc1, pSrc2, pDst))
        return st;
    additive<true>(Arr{ pSrc2 }, Arr{ pSrc1 }, pDst, count(len), scaleFactor);
    return omnStatusOk;
}

OmnStatus omnsAdd_32s_ISfs(const Omn32s* pSrc, Omn32s* pSrcDst, int len, int scaleFactor)
{
    if (const OmnStatus st = checkArgs(len, pSrc, pSrcDst))
        return st;
    additive<false>(Arr{ pSrc }, Arr{ pSrcDst }, pSrcDst, count(len), scaleFactor);
    return omnStatusOk;
}

OmnStatus omnsSub_32s_ISfs(const Omn32s* pSrc, Omn32s* pSrcDst, int len, int scaleFactor)
{
    if (const OmnStatus st = checkArgs(len, pSrc, pSrcDst))
        return st;
    additive<true>(Arr{ pSrcDst }, Arr{ pSrc }, pSrcDst, count(len), scaleFactor);
    return omnStatusOk;
}

OmnStatus omnsAdd_32sc_Sfs(const Omn32sc* pSrc1, const Omn32sc* pSrc2, Omn32sc* pDst, int len, int scaleFactor)
{
    if (len < 1)
        return omnStatusBadSize;
    return omn::OMN_COL::omnsAdd_32s_Sfs(parts(pSrc1), parts(pSrc2), parts(pDst), twice(len), scaleFactor);
}

OmnStatus omnsSub_32sc_Sfs(const Omn32sc* pSrc1, const Omn32sc* pSrc2, Omn32sc* pDst, int len, int scaleFactor)
{
    if (len < 1)
        return omnStatusBadSize;
    return omn::OMN_COL::omnsSub_32s_Sfs(parts(pSrc1), parts(pSrc2), parts(pDst), twice(len), scaleFactor);
}

OmnStatus omnsAdd_32sc_ISfs(const Omn32sc* pSrc, Omn32sc* pSrcDst, int len, int scaleFactor)
{
    if (len < 1)
        return omnStatusBadSize;
    return omn::OMN_COL::omnsAdd_32s_ISfs(parts(pSrc), parts(pSrcDst), twice(len), scaleFactor);
}

OmnStatus omnsSub_32sc_ISfs(const Omn32sc* pSrc, Omn32sc* pSrcDst, int len, int scaleFactor)
{
    if (len < 1)
        return omnStatusBadSize;
    return omn::OMN_COL::omnsSub_32s_ISfs(parts(pSrc), parts(pSrcDst), twice(len), scaleFactor);
}

/* ---- additive constant forms ---------------------------------------------- */

OmnStatus omnsAddC_32s_Sfs(const Omn32s* pSrc, Omn32s val, Omn32s* pDst, int len, int scaleFactor)
{
    if (const OmnStatus st = checkArgs(len, pSrc, pDst))
        return st;
    if (scaleFactor == 0 && val == 0)   /* the same 32-bit words */
        return omn::OMN_COL::omnsCopy_32f(reinterpret_cast<const Omn32f*>(pSrc), reinterpret_cast<Omn32f*>(pDst), len);
    additive<false>(Arr{ pSrc }, Pat{ val, val }, pDst, count(len), scaleFactor);
    return omnStatusOk;
}

OmnStatus omnsSubC_32s_Sfs(const Omn32s* pSrc, Omn32s val, Omn32s* pDst, int len, int scaleFactor)
{
    if (const OmnStatus st = checkArgs(len, pSrc, pDst))
        return st;
    if (scaleFactor == 0 && val == 0)
        return omn::OMN_COL::omnsCopy_32f(reinterpret_cast<const Omn32f*>(pSrc), reinterpret_cast<Omn32f*>(pDst), len);
    additive<true>(Arr{ pSrc }, Pat{ val, val }, pDst, count(len), scaleFactor);
    return omnStatusOk;
}

OmnStatus omnsSubCRev_32s_Sfs(const Omn32s* pSrc, Omn32s val, Omn32s* pDst, int len, int scaleFactor)
{
    if (const OmnStatus st = checkArgs(len, pSrc, pDst))
        return st;
    additive<true>(Pat{ val, val }, Arr{ pSrc }, pDst, count(len), scaleFactor);
    return omnStatusOk;
}

OmnStatus omnsAddC_32s_ISfs(Omn32s val, Omn32s* pSrcDst, int len, int scaleFactor)
{
    if (const OmnStatus st = checkArgs(len, pSrcDst))
        return st;
    if (scaleFactor == 0 && val == 0)
        return omnStatusOk;
    additive<false>(Arr{ pSrcDst }, Pat{ val, val }, pSrcDst, count(len), scaleFactor);
    return omnStatusOk;
}

OmnStatus omnsSubC_32s_ISfs(Omn32s val, Omn32s* pSrcDst, int len, int scaleFactor)
{
    if (const OmnStatus st = checkArgs(len, pSrcDst))
        return st;
    if (scaleFactor == 0 && val == 0)
        return omnStatusOk;
    additive<true>(Arr{ pSrcDst }, Pat{ val, val }, pSrcDst, count(len), scaleFactor);
    return omnStatusOk;
}

OmnStatus omnsSubCRev_32s_ISfs(Omn32s val, Omn32s* pSrcDst, int len, int scaleFactor)
{
    if (const OmnStatus st = checkArgs(len, pSrcDst))
        return st;
    additive<true>(Pat{ val, val }, Arr{ pSrcDst }, pSrcDst, count(len), scaleFactor);
    return omnStatusOk;
}

/* Complex constants run the loop whatever the constant. */
OmnStatus omnsAddC_32sc_Sfs(const Omn32sc* pSrc, Omn32sc val, Omn32sc* pDst, int len, int scaleFactor)
{
    if (const OmnStatus st = checkArgs(len, pSrc, pDst))
        return st;
    additive<false>(Arr{ parts(pSrc) }, Pat{ val.re, val.im }, parts(pDst), 2 * count(len), scaleFactor);
    return omnStatusOk;
}

OmnStatus omnsSubC_32sc_Sfs(const Omn32sc* pSrc, Omn32sc val, Omn32sc* pDst, int len, int scaleFactor)
{
    if (const OmnStatus st = checkArgs(len, pSrc, pDst))
        return st;
    additive<true>(Arr{ parts(pSrc) }, Pat{ val.re, val.im }, parts(pDst), 2 * count(len), scaleFactor);
    return omnStatusOk;
}

OmnStatus omnsSubCRev_32sc_Sfs(const Omn32sc* pSrc, Omn32sc val, Omn32sc* pDst, int len, int scaleFactor)
{
    if (const OmnStatus st = checkArgs(len, pSrc, pDst))
        return st;
    additive<true>(Pat{ val.re, val.im }, Arr{ parts(pSrc) }, parts(pDst), 2 * count(len), scaleFactor);
    return omnStatusOk;
}

OmnStatus omnsAddC_32sc_ISfs(Omn32sc val, Omn32sc* pSrcDst, int len, int scaleFactor)
{
    if (const OmnStatus st = checkArgs(len, pSrcDst))
        return st;
    additive<false>(Arr{ parts(pSrcDst) }, Pat{ val.re, val.im }, parts(pSrcDst), 2 * count(len), scaleFactor);
    return omnStatusOk;
}

OmnStatus omnsSubC_32sc_ISfs(Omn32sc val, Omn32sc* pSrcDst, int len, int scaleFactor)
{
    if (const OmnStatus st = checkArgs(len, pSrcDst))
        return st;
    additive<true>(Arr{ parts(pSrcDst) }, Pat{ val.re, val.im }, parts(pSrcDst), 2 * count(len), scaleFactor);
    return omnStatusOk;
}

OmnStatus omnsSubCRev_32sc_ISfs(Omn32sc val, Omn32sc* pSrcDst, int len, int scaleFactor)
{
    if (const OmnStatus st = checkArgs(len, pSrcDst))
        return st;
    additive<true>(Pat{ val.re, val.im }, Arr{ parts(pSrcDst) }, parts(pSrcDst), 2 * count(len), scaleFactor);
    return omnStatusOk;
}

/* ---- products --------------------------------------------------------------- */

OmnStatus omnsMul_32s_Sfs(const Omn32s* pSrc1, const Omn32s* pSrc2, Omn32s* pDst, int len, int scaleFactor)
{
    if (const OmnStatus st = checkArgs(len, pSrc1, pSrc2, pDst))
        return st;
    mulReal(pSrc1, pSrc2, pDst, count(len), scaleFactor);
    return omnStatusOk;
}

OmnStatus omnsMul_32s_ISfs(const Omn32s* pSrc, Omn32s* pSrcDst, int len, int scaleFactor)
{
    if (const OmnStatus st = checkArgs(len, pSrc, pSrcDst))
        return st;
    mulReal(pSrc, pSrcDst, pSrcDst, count(len), scaleFactor);
    return omnStatusOk;
}

OmnStatus omnsMul_32sc_Sfs(const Omn32sc* pSrc1, const Omn32sc* pSrc2, Omn32sc* pDst, int len, int scaleFactor)
{
    if (const OmnStatus st = checkArgs(len, pSrc1, pSrc2, pDst))
        return st;
    mulCplx(pSrc1, pSrc2, parts(pDst), count(len), scaleFactor);
    return omnStatusOk;
}

OmnStatus omnsMul_32sc_ISfs(const Omn32sc* pSrc, Omn32sc* pSrcDst, int len, int scaleFactor)
{
    if (const OmnStatus st = checkArgs(len, pSrc, pSrcDst))
        return st;
    mulCplx(pSrc, pSrcDst, parts(pSrcDst), count(len), scaleFactor);
    return omnStatusOk;
}

/* A zero constant clears the destination before the factor is looked at;
   one, unscaled, copies the source. */
OmnStatus omnsMulC_32s_Sfs(const Omn32s* pSrc, Omn32s val, Omn32s* pDst, int len, int scaleFactor)
{
    if (const OmnStatus st = checkArgs(len, pSrc, pDst))
        return st;
    if (val == 0) {
        zeroParts(pDst, count(len));
        return omnStatusOk;
    }
    if (scaleFactor == 0 && val == 1)
        return omn::OMN_COL::omnsCopy_32f(reinterpret_cast<const Omn32f*>(pSrc), reinterpret_cast<Omn32f*>(pDst), len);
    scale::scaleEach<scale::kProduct, 1>(pDst, count(len), scaleFactor,
                                         [&](size_t i, int64_t* s) { s[0] = int64_t(pSrc[i]) * val; });
    return omnStatusOk;
}

OmnStatus omnsMulC_32s_ISfs(Omn32s val, Omn32s* pSrcDst, int len, int scaleFactor)
{
    if (const OmnStatus st = checkArgs(len, pSrcDst))
        return st;
    if (val == 0) {
        zeroParts(pSrcDst, count(len));
        return omnStatusOk;
    }
    scale::scaleEach<scale::kProduct, 1>(pSrcDst, count(len), scaleFactor,
                                         [&](size_t i, int64_t* s) { s[0] = int64_t(pSrcDst[i]) * val; });
    return omnStatusOk;
}

OmnStatus omnsMulC_32sc_Sfs(const Omn32sc* pSrc, Omn32sc val, Omn32sc* pDst, int len, int scaleFactor)
{
    if (const OmnStatus st = checkArgs(len, pSrc, pDst))
        return st;
    mulCplxConst(pSrc, val, parts(pDst), count(len), scaleFactor);
    return omnStatusOk;
}

OmnStatus omnsMulC_32sc_ISfs(Omn32sc val, Omn32sc* pSrcDst, int len, int scaleFactor)
{
    if (const OmnStatus st = checkArgs(len, pSrcDst))
        return st;
    mulCplxConst(pSrcDst, val, parts(pSrcDst), count(len), scaleFactor);
    return omnStatusOk;
}

OmnStatus omnsMul_32s32sc_Sfs(const Omn32s* pSrc1, const Omn32sc* pSrc2, Omn32sc* pDst, int len, int scaleFactor)
{
    if (const OmnStatus st = checkArgs(len, pSrc1, pSrc2, pDst))
        return st;
    scale::scaleEach<scale::kProduct, 2>(parts(pDst), count(len), scaleFactor, [&](size_t i, int64_t* s) {
        const int64_t a = pSrc1[i];
        const Omn32sc y = pSrc2[i];
        s[0] = a * y.re;
        s[1] = a * y.im;
    });
    return omnStatusOk;
}

OmnStatus omnsMul_32s32sc_ISfs(const Omn32s* pSrc, Omn32sc* pSrcDst, int len, int scaleFactor)
{
    if (const OmnStatus st = checkArgs(len, pSrc, pSrcDst))
        return st;
    return omn::OMN_COL::omnsMul_32s32sc_Sfs(pSrc, pSrcDst, pSrcDst, len, scaleFactor);
}

OmnStatus omnsAddProduct_32s_Sfs(const Omn32s* pSrc1, const Omn32s* pSrc2, Omn32s* pSrcDst, int len, int scaleFactor)
{
    if (const OmnStatus st = checkArgs(len, pSrc1, pSrc2, pSrcDst))
        return st;
    scale::scaleEach<scale::kAddProduct, 1>(pSrcDst, count(len), scaleFactor, [&](size_t i, int64_t* s) {
        s[0] = int64_t(pSrc1[i]) * pSrc2[i] + pSrcDst[i];
    });
    return omnStatusOk;
}

/* ---- division ------------------------------------------------------------------- */

OmnStatus omnsDiv_32s_Sfs(const Omn32s* pSrc1, const Omn32s* pSrc2, Omn32s* pDst, int len, int scaleFactor)
{
    if (const OmnStatus st = checkArgs(len, pSrc1, pSrc2, pDst))
        return st;
    return divide(pSrc1, pSrc2, pDst, count(len), scaleFactor) ? omnStatusDivZeroValues : omnStatusOk;
}

OmnStatus omnsDiv_32s_ISfs(const Omn32s* pSrc, Omn32s* pSrcDst, int len, int scaleFactor)
{
    if (const OmnStatus st = checkArgs(len, pSrc, pSrcDst))
        return st;
    return divide(pSrc, pSrcDst, pSrcDst, count(len), scaleFactor) ? omnStatusDivZeroValues : omnStatusOk;
}

/* ---- absolute value and shifts -------------------------------------------------- */

OmnStatus omnsAbs_32s(const Omn32s* pSrc, Omn32s* pDst, int len)
{
    if (const OmnStatus st = checkArgs(len, pSrc, pDst))
        return st;
    absKernel(pSrc, pDst, count(len));
    return omnStatusOk;
}

OmnStatus omnsAbs_32s_I(Omn32s* pSrcDst, int len)
{
    if (const OmnStatus st = checkArgs(len, pSrcDst))
        return st;
    absKernel(pSrcDst, pSrcDst, count(len));
    return omnStatusOk;
}

OmnStatus omnsRShiftC_32s(const Omn32s* pSrc, Omn32s val, Omn32s* pDst, int len)
{
    if (const OmnStatus st = checkArgs(len, pSrc, pDst))
        return st;
    return rshift(pSrc, val, pDst, count(len));
}

OmnStatus omnsRShiftC_32s_I(Omn32s val, Omn32s* pSrcDst, int len)
{
    if (const OmnStatus st = checkArgs(len, pSrcDst))
        return st;
    return rshift(pSrcDst, val, pSrcDst, count(len));
}

OmnStatus omnsLShiftC_32s(const Omn32s* pSrc, Omn32s val, Omn32s* pDst, int len)
{
    if (const OmnStatus st = checkArgs(len, pSrc, pDst))
        return st;
    return lshift(pSrc, val, pDst, count(len));
}

OmnStatus omnsLShiftC_32s_I(Omn32s val, Omn32s* pSrcDst, int len)
{
    if (const OmnStatus st = checkArgs(len, pSrcDst))
        return st;
    return lshift(pSrcDst, val, pSrcDst, count(len));
}

OMN_COLUMN_END
