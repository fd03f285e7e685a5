/*
 * convert.cpp - conversions among 8-, 16- and 32-bit integers, single and
 * double precision: widening, saturation, float to integer with rounding
 * and a scale factor, integer to float with a scale factor.
 *
 * The element rules are in convert_rules.h.  w7 and t7 have SSE2 kernels
 * for the float-to-small-integer forms and for 64f32f; the other forms are
 * plain loops that the compiler is free to vectorise.
 */
#include "core/column.h"
#include "core/cpu.h"
#include "vector/convert_rules.h"

OMN_COLUMN_BEGIN

using namespace cvt;

namespace {

template <typename S, typename D>
OmnStatus widen(const S* pSrc, D* pDst, int len)
{
    if (const OmnStatus st = checkArgs(len, pSrc, pDst))
        return st;
    for (int i = 0; i < len; ++i)
        pDst[i] = static_cast<D>(pSrc[i]);
    return omnStatusOk;
}

/* ---- float to integer ------------------------------------------------------ */

/* Destination forms of the float-to-integer conversions. */
struct Dst8s  { using T = Omn8s;  static constexpr int32_t lo = -128,   hi = 127;   static constexpr bool kSigned = true; };
struct Dst8u  { using T = Omn8u;  static constexpr int32_t lo = 0,      hi = 255;   static constexpr bool kSigned = false; };
struct Dst16s { using T = Omn16s; static constexpr int32_t lo = -32768, hi = 32767; static constexpr bool kSigned = true; };
struct Dst16u { using T = Omn16u; static constexpr int32_t lo = 0,      hi = 65535; static constexpr bool kSigned = false; };

/* One element by the library's definition, in double precision: used where
   2^-sf is not a normal single, which the kernels below need. */
template <typename Dst>
inline typename Dst::T floatToSmall(float x, double scale, bool scaled, bool nearest, bool nanToMax)
{
    const double y = scaled ? static_cast<double>(x) * scale : static_cast<double>(x);
    if (nanToMax && y != y)
        return static_cast<typename Dst::T>(Dst::hi);
    if (Dst::kSigned)
        return static_cast<typename Dst::T>(toSigned(y, nearest, Dst::hi, Dst::lo, Dst::hi));
    return static_cast<typename Dst::T>(toUnsigned(y, nearest, Dst::hi));
}

template <typename Dst>
void floatToSmallScalar(const float* s, typename Dst::T* d, int n, double scale, bool scaled, bool nearest, bool nanToMax)
{
    for (int i = 0; i < n; ++i)
        d[i] = floatToSmall<Dst>(s[i], scale, scaled, nearest, nanToMax);
}

/* The same elements in single precision, written without branches so that
   the compiler can vectorise it, and independent of the rounding mode.
   While 2^-sf is a normal single (|sf| <= 126) this is exact: the product
   of a single and a power of two is exact, or overflows to an infinity that
   saturates like the huge double would, or is so small that it gives 0;
   the clamp to [lo, hi] is the rule's saturation, its order decides where
   a NaN goes (a minimum first: the upper limit), and nearest with ties to
   even is the truncation moved by the exact remainder.  The selections are
   masks on the bits (see select in convert_rules.h). */
template <typename Dst, bool kScaled, bool kMinFirst, bool kNearest>
void floatToSmallPortable(const float* s, typename Dst::T* d, int n, float f)
{
    const float lo = static_cast<float>(Dst::lo), hi = static_cast<float>(Dst::hi);
    for (int i = 0; i < n; ++i) {
        float y = kScaled ? s[i] * f : s[i];
        if (kMinFirst) {
            y = select(y < hi, y, hi);
            y = select(y > lo, y, lo);
        } else {
            y = select(y > lo, y, lo);
            y = select(y < hi, y, hi);
        }
        int32_t r = static_cast<int32_t>(y);
        if (kNearest) {
            const float rem = y - static_cast<float>(r);
            const uint32_t remBits = bitsOf(rem);
            const float mag = floatOf(remBits & 0x7FFFFFFFu);
            const int32_t away = (static_cast<int32_t>(mag > 0.5f) | (static_cast<int32_t>(mag == 0.5f) & r)) & 1;
            const int32_t neg = -static_cast<int32_t>(remBits >> 31);
            r += (away ^ neg) - neg;   /* one step away from zero, in the remainder's direction */
        }
        d[i] = static_cast<typename Dst::T>(r);
    }
}

template <typename Dst, bool kMinFirst>
void floatToSmallPortable(const float* s, typename Dst::T* d, int n, float f, bool scaled, bool nearest)
{
    if (scaled) {
        if (nearest) floatToSmallPortable<Dst, true, kMinFirst, true>(s, d, n, f);
        else         floatToSmallPortable<Dst, true, kMinFirst, false>(s, d, n, f);
    } else {
        if (nearest) floatToSmallPortable<Dst, false, kMinFirst, true>(s, d, n, f);
        else         floatToSmallPortable<Dst, false, kMinFirst, false>(s, d, n, f);
    }
}

#if OMN_SIMD >= 2

/* Eight elements a round: scale in single precision, clamp, convert.  The
   clamp order decides where a NaN goes: a minimum with the element first
   gives the upper limit, a maximum first gives the lower one.  Nearest uses
   the rounding of the control register, which the caller has set. */
template <bool kScaled, bool kMinFirst, bool kNearest>
inline __m128i clampConvert(__m128 x, __m128 f, __m128 lo, __m128 hi)
{
    if (kScaled)
        x = _mm_mul_ps(x, f);
    x = kMinFirst ? _mm_max_ps(_mm_min_ps(x, hi), lo) : _mm_min_ps(_mm_max_ps(x, lo), hi);
    return kNearest ? _mm_cvtps_epi32(x) : _mm_cvttps_epi32(x);
}

template <typename Dst> inline void store8(typename Dst::T* d, __m128i a, __m128i b);
template <> inline void store8<Dst16s>(Omn16s* d, __m128i a, __m128i b)
{
    _mm_storeu_si128(reinterpret_cast<__m128i*>(d), _mm_packs_epi32(a, b));
}
template <> inline void store8<Dst16u>(Omn16u* d, __m128i a, __m128i b)
{
    /* No unsigned 32-to-16 pack before SSE4.1: bias into the signed range. */
    const __m128i bias = _mm_set1_epi32(32768);
    const __m128i p = _mm_packs_epi32(_mm_sub_epi32(a, bias), _mm_sub_epi32(b, bias));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(d), _mm_xor_si128(p, _mm_set1_epi16(-32768)));
}
template <> inline void store8<Dst8s>(Omn8s* d, __m128i a, __m128i b)
{
    const __m128i w = _mm_packs_epi32(a, b);
    _mm_storel_epi64(reinterpret_cast<__m128i*>(d), _mm_packs_epi16(w, w));
}
template <> inline void store8<Dst8u>(Omn8u* d, __m128i a, __m128i b)
{
    const __m128i w = _mm_packs_epi32(a, b);
    _mm_storel_epi64(reinterpret_cast<__m128i*>(d), _mm_packus_epi16(w, w));
}

template <typename Dst, bool kScaled, bool kMinFirst, bool kNearest>
void floatToSmallBlocks(const float* s, typename Dst::T* d, int n, float f)
{
    const __m128 vf = _mm_set1_ps(f);
    const __m128 lo = _mm_set1_ps(static_cast<float>(Dst::lo)), hi = _mm_set1_ps(static_cast<float>(Dst::hi));
    for (int i = 0; i + 8 <= n; i += 8) {
        const __m128i a = clampConvert<kScaled, kMinFirst, kNearest>(_mm_loadu_ps(s + i), vf, lo, hi);
        const __m128i b = clampConvert<kScaled, kMinFirst, kNearest>(_mm_loadu_ps(s + i + 4), vf, lo, hi);
        store8<Dst>(d + i, a, b);
    }
}

#endif

/* The float-to-small-integer forms. */
template <typename Dst>
OmnStatus floatToSmallForm(const Omn32f* pSrc, typename Dst::T* pDst, int len, int rndMode, int sf)
{
    if (const OmnStatus st = checkArgs(len, pSrc, pDst))
        return st;
    const bool nearest = rndMode == 1;
    const bool scaled = sf != 0;
    /* Where a NaN goes: the lower limit in the signed forms and the upper
       one in the unsigned forms, except for the nearest,
       unscaled 32f16s kernel of w7 and t7. */
    const bool nanToMax16s = kNanToMax16sNearest && Dst::kSigned && Dst::hi == 32767 && nearest && !scaled;
    if (sf < -126 || sf > 126) {
        const double scale = Dst::kSigned ? scaleDouble(sf) : static_cast<double>(scaleFloat(sf));
        floatToSmallScalar<Dst>(pSrc, pDst, len, scale, scaled, nearest, nanToMax16s);
        return omnStatusOk;
    }
    const float f = static_cast<float>(scaleDouble(sf));
    const bool minFirst = !Dst::kSigned || nanToMax16s;
    int i = 0;
#if OMN_SIMD >= 2
    if (len >= 16) {
        /* A portable head up to a 16-byte destination, then eight a round. */
        const uintptr_t a = reinterpret_cast<uintptr_t>(pDst);
        const int head = a % sizeof(typename Dst::T) != 0 ? 0
                       : static_cast<int>(((16 - a % 16) % 16) / sizeof(typename Dst::T));
        if (minFirst)
            floatToSmallPortable<Dst, true>(pSrc, pDst, head, f, scaled, nearest);
        else
            floatToSmallPortable<Dst, false>(pSrc, pDst, head, f, scaled, nearest);
        i = head;
        const int body = (len - head) & ~7;
        constexpr bool kMinFirst = !Dst::kSigned;
        if (nearest) {
            const uint32_t saved = omnSetMxcsrRounding(0);   /* nearest, ties to even */
            if (nanToMax16s)
                floatToSmallBlocks<Dst, false, true, true>(pSrc + i, pDst + i, body, f);
            else if (scaled)
                floatToSmallBlocks<Dst, true, kMinFirst, true>(pSrc + i, pDst + i, body, f);
            else
                floatToSmallBlocks<Dst, false, kMinFirst, true>(pSrc + i, pDst + i, body, f);
            omnRestoreMxcsr(saved);
        } else if (scaled) {
            floatToSmallBlocks<Dst, true, kMinFirst, false>(pSrc + i, pDst + i, body, f);
        } else {
            floatToSmallBlocks<Dst, false, kMinFirst, false>(pSrc + i, pDst + i, body, f);
        }
        i += body;
    }
#endif
    if (minFirst)
        floatToSmallPortable<Dst, true>(pSrc + i, pDst + i, len - i, f, scaled, nearest);
    else
        floatToSmallPortable<Dst, false>(pSrc + i, pDst + i, len - i, f, scaled, nearest);
    return omnStatusOk;
}

/* ---- double to float --------------------------------------------------------- */

#if OMN_SIMD >= 2
/* Minimum against the largest single first, with the element as first
   operand: a NaN becomes +FLT_MAX (see kNanToMax64f32f). */
inline __m128 clampNarrow4(const double* s, __m128d lo, __m128d hi)
{
    const __m128 a = _mm_cvtpd_ps(_mm_max_pd(_mm_min_pd(_mm_loadu_pd(s), hi), lo));
    const __m128 b = _mm_cvtpd_ps(_mm_max_pd(_mm_min_pd(_mm_loadu_pd(s + 2), hi), lo));
    return _mm_movelh_ps(a, b);
}
#endif

} // namespace

/* ---- widening and saturation ----------------------------------------------- */

OmnStatus omnsConvert_8s16s(const Omn8s* pSrc, Omn16s* pDst, int len)   { return widen(pSrc, pDst, len); }
OmnStatus omnsConvert_16s32s(const Omn16s* pSrc, Omn32s* pDst, int len) { return widen(pSrc, pDst, len); }
OmnStatus omnsConvert_8s32f(const Omn8s* pSrc, Omn32f* pDst, int len)   { return widen(pSrc, pDst, len); }
OmnStatus omnsConvert_8u32f(const Omn8u* pSrc, Omn32f* pDst, int len)   { return widen(pSrc, pDst, len); }
OmnStatus omnsConvert_16s32f(const Omn16s* pSrc, Omn32f* pDst, int len)
{
#if OMN_SIMD >= 2
    if (const OmnStatus st = checkArgs(len, pSrc, pDst))
        return st;
    /* Eight a round: each 16-bit value in the high half of a 32-bit lane,
       shifted down arithmetically, converted exactly. */
    int i = 0;
    for (; i + 8 <= len; i += 8) {
        const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(pSrc + i));
        _mm_storeu_ps(pDst + i, _mm_cvtepi32_ps(_mm_srai_epi32(_mm_unpacklo_epi16(v, v), 16)));
        _mm_storeu_ps(pDst + i + 4, _mm_cvtepi32_ps(_mm_srai_epi32(_mm_unpackhi_epi16(v, v), 16)));
    }
    for (; i < len; ++i)
        pDst[i] = static_cast<float>(pSrc[i]);
    return omnStatusOk;
#else
    return widen(pSrc, pDst, len);
#endif
}
OmnStatus omnsConvert_16u32f(const Omn16u* pSrc, Omn32f* pDst, int len) { return widen(pSrc, pDst, len); }
OmnStatus omnsConvert_32s64f(const Omn32s* pSrc, Omn64f* pDst, int len) { return widen(pSrc, pDst, len); }
OmnStatus omnsConvert_32f64f(const Omn32f* pSrc, Omn64f* pDst, int len) { return widen(pSrc, pDst, len); }
/* Rounds in the processor's current mode, like any int-to-float conversion. */
OmnStatus omnsConvert_32s32f(const Omn32s* pSrc, Omn32f* pDst, int len) { return widen(pSrc, pDst, len); }

OmnStatus omnsConvert_32s16s(const Omn32s* pSrc, Omn16s* pDst, int len)
{
    if (const OmnStatus st = checkArgs(len, pSrc, pDst))
        return st;
    for (int i = 0; i < len; ++i)
        pDst[i] = static_cast<Omn16s>(sat(pSrc[i], -32768, 32767));
    return omnStatusOk;
}

/* ---- float to integer ------------------------------------------------------ */

OmnStatus omnsConvert_32f8s_Sfs(const Omn32f* pSrc, Omn8s* pDst, int len, int rndMode, int scaleFactor)
{
    return floatToSmallForm<Dst8s>(pSrc, pDst, len, rndMode, scaleFactor);
}

OmnStatus omnsConvert_32f8u_Sfs(const Omn32f* pSrc, Omn8u* pDst, int len, int rndMode, int scaleFactor)
{
    return floatToSmallForm<Dst8u>(pSrc, pDst, len, rndMode, scaleFactor);
}

OmnStatus omnsConvert_32f16s_Sfs(const Omn32f* pSrc, Omn16s* pDst, int len, int rndMode, int scaleFactor)
{
    return floatToSmallForm<Dst16s>(pSrc, pDst, len, rndMode, scaleFactor);
}

OmnStatus omnsConvert_32f16u_Sfs(const Omn32f* pSrc, Omn16u* pDst, int len, int rndMode, int scaleFactor)
{
    return floatToSmallForm<Dst16u>(pSrc, pDst, len, rndMode, scaleFactor);
}

OmnStatus omnsConvert_32f32s_Sfs(const Omn32f* pSrc, Omn32s* pDst, int len, int rndMode, int scaleFactor)
{
    if (const OmnStatus st = checkArgs(len, pSrc, pDst))
        return st;
    const bool nearest = rndMode == 1;
    if (scaleFactor == 0) {
        /* A single can't hold 2147483647: the unscaled path compares with 2^31. */
        for (int i = 0; i < len; ++i)
            pDst[i] = toSigned(pSrc[i], nearest, 2147483648.0, INT32_MIN, INT32_MAX);
    } else {
        const double f = scaleDouble(scaleFactor);
        for (int i = 0; i < len; ++i)
            pDst[i] = toSigned(static_cast<double>(pSrc[i]) * f, nearest, 2147483647.0, INT32_MIN, INT32_MAX);
    }
    return omnStatusOk;
}

OmnStatus omnsConvert_64f32s_Sfs(const Omn64f* pSrc, Omn32s* pDst, int len, int rndMode, int scaleFactor)
{
    if (const OmnStatus st = checkArgs(len, pSrc, pDst))
        return st;
    const bool nearest = rndMode == 1;
    const bool scaled = scaleFactor != 0;
    const double f = scaleDouble(scaleFactor);
    for (int i = 0; i < len; ++i)
        pDst[i] = toSigned(scaled ? pSrc[i] * f : pSrc[i], nearest, 2147483647.0, INT32_MIN, INT32_MAX);
    return omnStatusOk;
}

/* ---- double to float --------------------------------------------------------- */

/* Infinities become the largest finite single instead of an infinity. */
OmnStatus omnsConvert_64f32f(const Omn64f* pSrc, Omn32f* pDst, int len)
{
    if (const OmnStatus st = checkArgs(len, pSrc, pDst))
        return st;
    int i = 0;
#if OMN_SIMD >= 2
    if (len >= 16) {
        const uintptr_t a = reinterpret_cast<uintptr_t>(pDst);
        const int head = a % 4 != 0 ? 0 : static_cast<int>(((16 - a % 16) % 16) / 4);
        for (; i < head; ++i)
            pDst[i] = toFloatSaturated(pSrc[i]);
        const __m128d lo = _mm_set1_pd(-static_cast<double>(FLT_MAX)), hi = _mm_set1_pd(FLT_MAX);
        for (; i + 8 <= len; i += 8) {
            _mm_storeu_ps(pDst + i, clampNarrow4(pSrc + i, lo, hi));
            _mm_storeu_ps(pDst + i + 4, clampNarrow4(pSrc + i + 4, lo, hi));
        }
    }
#endif
    for (; i < len; ++i)
        pDst[i] = toFloatSaturated(pSrc[i]);
    return omnStatusOk;
}

/* ---- integer to float with a scale factor ---------------------------------- */

/* 2^-sf goes straight into the exponent field after a clamp that differs by
   form; one multiplication, one rounding. */
OmnStatus omnsConvert_16s32f_Sfs(const Omn16s* pSrc, Omn32f* pDst, int len, int scaleFactor)
{
    if (const OmnStatus st = checkArgs(len, pSrc, pDst))
        return st;
    if (scaleFactor == 0)
        return widen(pSrc, pDst, len);
    const float f = pow2Float(-clampInt(scaleFactor, -112, 126));
    for (int i = 0; i < len; ++i)
        pDst[i] = static_cast<float>(pSrc[i]) * f;
    return omnStatusOk;
}

OmnStatus omnsConvert_32s32f_Sfs(const Omn32s* pSrc, Omn32f* pDst, int len, int scaleFactor)
{
    if (const OmnStatus st = checkArgs(len, pSrc, pDst))
        return st;
    if (scaleFactor == 0)
        return widen(pSrc, pDst, len);
    /* In double the product is exact, so the one rounding is the narrowing. */
    const double f = pow2Double(-clampInt(scaleFactor, -96, 126));
    for (int i = 0; i < len; ++i)
        pDst[i] = static_cast<float>(static_cast<double>(pSrc[i]) * f);
    return omnStatusOk;
}

OmnStatus omnsConvert_16s64f_Sfs(const Omn16s* pSrc, Omn64f* pDst, int len, int scaleFactor)
{
    if (const OmnStatus st = checkArgs(len, pSrc, pDst))
        return st;
    if (scaleFactor == 0)
        return widen(pSrc, pDst, len);
    const double f = pow2Double(-clampInt(scaleFactor, -1008, 1022));
    for (int i = 0; i < len; ++i)
        pDst[i] = static_cast<double>(pSrc[i]) * f;
    return omnStatusOk;
}

OmnStatus omnsConvert_32s64f_Sfs(const Omn32s* pSrc, Omn64f* pDst, int len, int scaleFactor)
{
    if (const OmnStatus st = checkArgs(len, pSrc, pDst))
        return st;
    if (scaleFactor == 0)
        return widen(pSrc, pDst, len);
    const double f = pow2Double(-clampInt(scaleFactor, -992, 1022));
    for (int i = 0; i < len; ++i)
        pDst[i] = static_cast<double>(pSrc[i]) * f;
    return omnStatusOk;
}

/* ---- integer shift with rounding ----------------------------------------------- */

OmnStatus omnsConvert_32s16s_Sfs(const Omn32s* pSrc, Omn16s* pDst, int len, int scaleFactor)
{
    if (const OmnStatus st = checkArgs(len, pSrc, pDst))
        return st;
    if (scaleFactor == 0)
        return omnsConvert_32s16s(pSrc, pDst, len);
    if (scaleFactor < 0) {
        const int n = scaleFactor < -15 ? 15 : -scaleFactor;
        const int32_t lo = -32768 >> n, hi = 32767 >> n;
        for (int i = 0; i < len; ++i) {
            const int32_t x = pSrc[i];
            pDst[i] = static_cast<Omn16s>(x < lo ? -32768 : (x > hi ? 32767 : shl32(x, n)));
        }
    } else {
        const int sf = scaleFactor > 31 ? 31 : scaleFactor;
        for (int i = 0; i < len; ++i)
            pDst[i] = static_cast<Omn16s>(sat(shiftRoundSigned(pSrc[i], sf), -32768, 32767));
    }
    return omnStatusOk;
}

OMN_COLUMN_END
