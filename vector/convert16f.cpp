/*
 * convert16f.cpp - the 16-bit float forms: 1 sign bit, 5 exponent bits of
 * bias 15, 10 fraction bits, held as the bit pattern.  Everything is done
 * on the bits, so every column gives the same patterns on every target.
 *
 * The NaN the conversions write is 0x7DFF, with the sign kept (0xFDFF).
 */
#include "core/column.h"
#include "core/cpu.h"
#include "vector/convert_rules.h"

OMN_COLUMN_BEGIN

using namespace cvt;

namespace {

constexpr uint16_t kHalfInf = 0x7C00, kHalfNaN = 0x7DFF;

/* Widening: the pattern, sign-extended and shifted left 13, has fraction
   and exponent at their single-precision places; the exponent is rebased
   (to 255 for infinities and NaNs, keeping the payload).  Zeros and
   subnormals are the fraction bits as an integer times +-2^-37. */
inline float halfToFloat(uint16_t h)
{
    const uint32_t w = static_cast<uint32_t>(static_cast<int32_t>(static_cast<int16_t>(h))) << 13;
    const uint32_t e = (h >> 10) & 0x1F;
    if (e != 0)
        return floatOf((w & ~0x70000000u) + (e == 31 ? 0x70000000u : 0x38000000u));
    const float unit = floatOf((w & 0x80000000u) | 0x2D000000u);
    return static_cast<float>(w & 0x7FFFFFu) * unit;
}

/* The infinity or NaN of a pattern whose exponent field is 255. */
inline uint16_t halfSpecial(uint32_t absBits) { return (absBits & 0x7FFFFFu) != 0 ? kHalfNaN : kHalfInf; }

/* Nearest: ties to even, but for the two smallest subnormal shifts (k of
   10 and 11) ties round up, so that half the smallest subnormal rounds to
   it instead of to zero.  A carry out of the largest finite single reaches
   exponent 255 and takes the pattern of its fraction, as an infinity or
   NaN source does. */
inline uint16_t floatToHalfNearest(uint32_t bits)
{
    const uint16_t sign = static_cast<uint16_t>((bits >> 16) & 0x8000u);
    const uint32_t a = bits & 0x7FFFFFFFu;
    const uint32_t e = a >> 23;
    if (e == 255)
        return sign | halfSpecial(a);
    if (e < 102)
        return sign;
    if (e <= 112) {
        const uint32_t k = 113 - e;
        uint32_t add = (4095u << k) | 0xFFFu;
        if (((a >> (13 + k)) & 1u) != 0 || k >= 10)
            ++add;
        const uint32_t r = a + add;
        const uint32_t ne = r >> 23;
        return sign | static_cast<uint16_t>(((r & 0xFFFFFFu) | 0x800000u) >> (126 - ne));
    }
    const uint32_t r = a + 4095u + ((a >> 13) & 1u);
    const uint32_t ne = r >> 23;
    if (ne >= 143)
        return sign | (ne >= 255 ? halfSpecial(r) : kHalfInf);
    return sign | static_cast<uint16_t>((r - 0x38000000u) >> 13);
}

/* Truncation: overflow still gives infinity. */
inline uint16_t floatToHalfTrunc(uint32_t bits)
{
    const uint16_t sign = static_cast<uint16_t>((bits >> 16) & 0x8000u);
    const uint32_t a = bits & 0x7FFFFFFFu;
    const uint32_t e = a >> 23;
    if (e == 255)
        return sign | halfSpecial(a);
    if (e >= 143)
        return sign | kHalfInf;
    if (e > 112)
        return sign | static_cast<uint16_t>((a - 0x38000000u) >> 13);
    if (e > 102)
        return sign | static_cast<uint16_t>(((a & 0xFFFFFFu) | 0x800000u) >> (126 - e));
    return sign;
}

/* A 16-bit integer is exact in single precision and never overflows or
   goes subnormal in half precision. */
inline uint16_t shortToHalf(int16_t x, bool nearest)
{
    if (x == 0)
        return 0;
    uint32_t b = bitsOf(static_cast<float>(x));
    if (nearest)
        b += ((b >> 13) & 1u) + 4095u;
    const uint16_t sign = static_cast<uint16_t>((b >> 16) & 0x8000u);
    const uint32_t e = (b >> 23) & 0xFF;
    return sign | static_cast<uint16_t>((e - 112) << 10) | static_cast<uint16_t>((b >> 13) & 0x3FFu);
}

/* M * 2^-n for a magnitude M and a shift n >= 1: nearest with ties to even
   (half = 2^(n-1) - 1 plus the kept low bit), or truncation. */
inline int32_t shiftDown(int32_t m, int64_t n, int32_t halfMinusOne, bool nearest)
{
    if (!nearest)
        return m >> n;
    return (halfMinusOne + ((m >> n) & 1) + m) >> n;
}

inline int16_t halfToShort(uint16_t h, bool nearest, int sf)
{
    const uint32_t e = (h >> 10) & 0x1F;
    const int32_t m = h & 0x3FF;
    const bool neg = (h & 0x8000u) != 0;
    if (e == 31)
        return (m == 0 && !neg) ? 32767 : -32768;   /* -inf and every NaN to the lower limit */
    int32_t mag;
    if (e != 0) {
        const int32_t M = m | 0x400;
        const int64_t d = int64_t(e) - 25 - sf;   /* 64 bits: sf may be any int */
        if (d < 0) {
            const int64_t n = -d;
            mag = n >= 12 ? 0 : shiftDown(M, n, 1023 >> (11 - n), nearest);
        } else if (d <= 4) {
            mag = M << d;
        } else {
            return neg ? -32768 : 32767;
        }
    } else if (m != 0) {
        const int64_t d = int64_t(-24) - sf;
        if (d < 0) {
            const int64_t n = -d;
            mag = n > 10 ? 0 : shiftDown(m, n, 511 >> (10 - n), nearest);
        } else if (d <= 15) {
            mag = m << d;
            if (mag >= 32768)
                return neg ? -32768 : 32767;
        } else {
            return neg ? -32768 : 32767;
        }
    } else {
        return 0;
    }
    return static_cast<int16_t>(neg ? -mag : mag);
}

#if OMN_SIMD >= 2

inline __m128i blend(__m128i m, __m128i a, __m128i b) { return _mm_or_si128(_mm_and_si128(m, a), _mm_andnot_si128(m, b)); }
inline __m128i splat(uint32_t v) { return _mm_set1_epi32(static_cast<int>(v)); }

/* Four elements of floatToHalfNearest / floatToHalfTrunc, without the sign:
   the normal range on the bits as the scalar rule does it; the subnormal
   range (exponent 112 and below) as |x| * 2^24 converted to an integer,
   which is the same shift with the same rounding (nearest under the
   caller's bracket, or truncation), with 2^-25 rounding up to 1. */
template <bool kNearest>
inline __m128i halfMagnitude4(__m128i u)
{
    const __m128i a = _mm_and_si128(u, splat(0x7FFFFFFFu));
    __m128i normal;
    if (kNearest) {
        const __m128i r = _mm_add_epi32(_mm_add_epi32(a, splat(0xFFF)), _mm_and_si128(_mm_srli_epi32(a, 13), splat(1)));
        normal = _mm_srli_epi32(_mm_sub_epi32(r, splat(0x38000000u)), 13);
        /* Past the largest half: infinity, or the pattern of the fraction
           when the sum reached exponent 255. */
        const __m128i reached255 = _mm_cmpgt_epi32(r, splat(0x7F7FFFFFu));
        const __m128i fracZero = _mm_cmpeq_epi32(_mm_and_si128(r, splat(0x7FFFFFu)), _mm_setzero_si128());
        const __m128i overValue = blend(_mm_andnot_si128(fracZero, reached255), splat(kHalfNaN), splat(kHalfInf));
        normal = blend(_mm_cmpgt_epi32(r, splat(0x477FFFFFu)), overValue, normal);
    } else {
        normal = _mm_srli_epi32(_mm_sub_epi32(a, splat(0x38000000u)), 13);
        normal = blend(_mm_cmpgt_epi32(a, splat(0x477FFFFFu)), splat(kHalfInf), normal);
    }
    const __m128 scaled = _mm_mul_ps(_mm_castsi128_ps(a), _mm_set1_ps(16777216.0f));
    __m128i sub = kNearest ? _mm_cvtps_epi32(scaled) : _mm_cvttps_epi32(scaled);
    if (kNearest)
        sub = blend(_mm_cmpeq_epi32(a, splat(0x33000000u)), splat(1), sub);
    __m128i res = blend(_mm_cmplt_epi32(a, splat(0x38800000u)), sub, normal);
    /* Infinities and NaNs of the source. */
    const __m128i special = blend(_mm_cmpgt_epi32(a, splat(0x7F800000u)), splat(kHalfNaN), splat(kHalfInf));
    return blend(_mm_cmpgt_epi32(a, splat(0x7F7FFFFFu)), special, res);
}

template <bool kNearest>
void floatToHalfBlocks(const float* s, uint16_t* d, int n)
{
    const __m128i signMask = splat(0xFFFF8000u);
    for (int i = 0; i + 8 <= n; i += 8) {
        const __m128i u0 = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + i));
        const __m128i u1 = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + i + 4));
        /* Magnitudes are at most 0x7DFF, and the sign as -32768 packs to
           0x8000: both fit the signed pack. */
        const __m128i mag = _mm_packs_epi32(halfMagnitude4<kNearest>(u0), halfMagnitude4<kNearest>(u1));
        const __m128i sign = _mm_packs_epi32(_mm_and_si128(_mm_srai_epi32(u0, 16), signMask),
                                             _mm_and_si128(_mm_srai_epi32(u1, 16), signMask));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(d + i), _mm_or_si128(mag, sign));
    }
}

#endif

} // namespace

OmnStatus omnsConvert_16f32f(const Omn16f* pSrc, Omn32f* pDst, int len)
{
    if (const OmnStatus st = checkArgs(len, pSrc, pDst))
        return st;
    for (int i = 0; i < len; ++i)
        pDst[i] = halfToFloat(pSrc[i]);
    return omnStatusOk;
}

OmnStatus omnsConvert_32f16f(const Omn32f* pSrc, Omn16f* pDst, int len, int rndMode)
{
    if (const OmnStatus st = checkArgs(len, pSrc, pDst))
        return st;
    const bool nearest = rndMode == 1;
    int i = 0;
#if OMN_SIMD >= 2
    if (len >= 16) {
        /* A scalar head up to a 16-byte destination, then eight a round. */
        const uintptr_t a = reinterpret_cast<uintptr_t>(pDst);
        const int head = a % 2 != 0 ? 0 : static_cast<int>(((16 - a % 16) % 16) / 2);
        for (; i < head; ++i)
            pDst[i] = nearest ? floatToHalfNearest(bitsOf(pSrc[i])) : floatToHalfTrunc(bitsOf(pSrc[i]));
        const int body = (len - head) & ~7;
        if (nearest) {
            const uint32_t saved = omnSetMxcsrRounding(0);   /* the subnormal range rounds to nearest */
            floatToHalfBlocks<true>(pSrc + i, pDst + i, body);
            omnRestoreMxcsr(saved);
        } else {
            floatToHalfBlocks<false>(pSrc + i, pDst + i, body);
        }
        i += body;
    }
#endif
    if (nearest) {
        for (; i < len; ++i)
            pDst[i] = floatToHalfNearest(bitsOf(pSrc[i]));
    } else {
        for (; i < len; ++i)
            pDst[i] = floatToHalfTrunc(bitsOf(pSrc[i]));
    }
    return omnStatusOk;
}

OmnStatus omnsConvert_16s16f(const Omn16s* pSrc, Omn16f* pDst, int len, int rndMode)
{
    if (const OmnStatus st = checkArgs(len, pSrc, pDst))
        return st;
    const bool nearest = rndMode == 1;
    for (int i = 0; i < len; ++i)
        pDst[i] = shortToHalf(pSrc[i], nearest);
    return omnStatusOk;
}

OmnStatus omnsConvert_16f16s_Sfs(const Omn16f* pSrc, Omn16s* pDst, int len, int rndMode, int scaleFactor)
{
    if (const OmnStatus st = checkArgs(len, pSrc, pDst))
        return st;
    const bool nearest = rndMode == 1;
    /* Unscaled, subnormals (at most 2^-14) simply give 0 - the same as the
       general path, where their shift is 24. */
    for (int i = 0; i < len; ++i)
        pDst[i] = halfToShort(pSrc[i], nearest, scaleFactor);
    return omnStatusOk;
}

OMN_COLUMN_END
