/*
 * convert24.cpp - the packed 24-bit forms: three bytes a sample, low byte
 * first, no padding; lengths count samples.  Packing always rounds to
 * nearest; the integer forms work in runs of four samples (twelve bytes)
 * with a loop for the tail.
 */
#include <string.h>

#include "core/column.h"
#include "vector/convert_rules.h"

OMN_COLUMN_BEGIN

using namespace cvt;

namespace {

constexpr int32_t k24sMin = -8388608, k24sMax = 8388607;
constexpr uint32_t k24uMax = 0xFFFFFF;

inline uint32_t load24u(const Omn8u* p) { return uint32_t(p[0]) | uint32_t(p[1]) << 8 | uint32_t(p[2]) << 16; }

inline void store24(Omn8u* p, uint32_t v)
{
    p[0] = static_cast<Omn8u>(v);
    p[1] = static_cast<Omn8u>(v >> 8);
    p[2] = static_cast<Omn8u>(v >> 16);
}

/* Four samples are twelve bytes: on a little-endian target one 8-byte and
   one 4-byte access instead of twelve byte accesses. */
#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
inline void store4x24(Omn8u* p, uint32_t a, uint32_t b, uint32_t c, uint32_t d)
{
    const uint64_t lo = (a & 0xFFFFFFu) | (uint64_t(b & 0xFFFFFFu) << 24) | (uint64_t(c & 0xFFFFu) << 48);
    const uint32_t hi = ((c >> 16) & 0xFFu) | (d << 8);
    memcpy(p, &lo, 8);
    memcpy(p + 8, &hi, 4);
}
inline void load4x24(const Omn8u* p, uint32_t v[4])
{
    uint64_t lo;
    uint32_t hi;
    memcpy(&lo, p, 8);
    memcpy(&hi, p + 8, 4);
    v[0] = static_cast<uint32_t>(lo) & 0xFFFFFFu;
    v[1] = static_cast<uint32_t>(lo >> 24) & 0xFFFFFFu;
    v[2] = static_cast<uint32_t>(lo >> 48) | ((hi & 0xFFu) << 16);
    v[3] = hi >> 8;
}
#else
inline void store4x24(Omn8u* p, uint32_t a, uint32_t b, uint32_t c, uint32_t d)
{
    store24(p, a); store24(p + 3, b); store24(p + 6, c); store24(p + 9, d);
}
inline void load4x24(const Omn8u* p, uint32_t v[4])
{
    v[0] = load24u(p); v[1] = load24u(p + 3); v[2] = load24u(p + 6); v[3] = load24u(p + 9);
}
#endif

/* Applies one element rule to every sample, four a round. */
template <typename Rule>
void packAll(Omn8u* d, int len, Rule rule)
{
    int i = 0;
    for (; i + 4 <= len; i += 4)
        store4x24(d + 3 * i, rule(i), rule(i + 1), rule(i + 2), rule(i + 3));
    for (; i < len; ++i)
        store24(d + 3 * i, rule(i));
}

/* The unsigned sample as it stands, or sign-extended from bit 23. */
inline uint32_t asUnsigned(uint32_t v) { return v; }
inline int32_t asSigned(uint32_t v) { return static_cast<int32_t>(v ^ 0x800000u) - 0x800000; }

template <typename D, typename Extend>
OmnStatus unpack(const Omn8u* pSrc, D* pDst, int len, Extend extend)
{
    if (const OmnStatus st = checkArgs(len, pSrc, pDst))
        return st;
    int i = 0;
    for (; i + 4 <= len; i += 4) {
        uint32_t v[4];
        load4x24(pSrc + 3 * i, v);
        pDst[i] = static_cast<D>(extend(v[0]));
        pDst[i + 1] = static_cast<D>(extend(v[1]));
        pDst[i + 2] = static_cast<D>(extend(v[2]));
        pDst[i + 3] = static_cast<D>(extend(v[3]));
    }
    for (; i < len; ++i)
        pDst[i] = static_cast<D>(extend(load24u(pSrc + 3 * i)));
    return omnStatusOk;
}

/* The float packings: f = 2^-sf put into a single's exponent field after a
   clamp to -127..127, so that sf = 127 gives the field 0 (f = 0). */
inline double pack24Scale(int sf) { return floatOf(static_cast<uint32_t>(127 - clampInt(sf, -127, 127)) << 23); }

/* Nearest, ties to even, of a y strictly inside the 24-bit range. */
inline int32_t round24(double y, bool negative)
{
    const double t = negative ? y - 0.5 : y + 0.5;
    int32_t n = static_cast<int32_t>(t);
    if ((n & 1) != 0 && static_cast<double>(n) == t)
        n += n > 0 ? -1 : 1;
    return n;
}

} // namespace

OmnStatus omnsConvert_24u32u(const Omn8u* pSrc, Omn32u* pDst, int len) { return unpack(pSrc, pDst, len, asUnsigned); }
OmnStatus omnsConvert_24s32s(const Omn8u* pSrc, Omn32s* pDst, int len) { return unpack(pSrc, pDst, len, asSigned); }
OmnStatus omnsConvert_24u32f(const Omn8u* pSrc, Omn32f* pDst, int len) { return unpack(pSrc, pDst, len, asUnsigned); }
OmnStatus omnsConvert_24s32f(const Omn8u* pSrc, Omn32f* pDst, int len) { return unpack(pSrc, pDst, len, asSigned); }

OmnStatus omnsConvert_32u24u_Sfs(const Omn32u* pSrc, Omn8u* pDst, int len, int scaleFactor)
{
    if (const OmnStatus st = checkArgs(len, pSrc, pDst))
        return st;
    if (scaleFactor == 0) {
        packAll(pDst, len, [&](int i) { return pSrc[i] < k24uMax ? pSrc[i] : k24uMax; });
    } else if (scaleFactor < 0) {
        const int n = scaleFactor < -31 ? 31 : -scaleFactor;
        const uint32_t hi = k24uMax >> n;
        packAll(pDst, len, [&](int i) { return pSrc[i] > hi ? k24uMax : pSrc[i] << n; });
    } else {
        const int sf = scaleFactor > 31 ? 31 : scaleFactor;
        packAll(pDst, len, [&](int i) {
            const uint64_t v = shiftRoundUnsigned(pSrc[i], sf);
            return v > k24uMax ? k24uMax : static_cast<uint32_t>(v);
        });
    }
    return omnStatusOk;
}

/* A left shift that leaves the 24-bit range without passing the compare
   (n of 24 and more, where -8388608 >> n is -1) keeps its low 24 bits:
   the limits are tested against -8388608 >> n and 8388607 >> n only. */
OmnStatus omnsConvert_32s24s_Sfs(const Omn32s* pSrc, Omn8u* pDst, int len, int scaleFactor)
{
    if (const OmnStatus st = checkArgs(len, pSrc, pDst))
        return st;
    if (scaleFactor == 0) {
        packAll(pDst, len, [&](int i) { return static_cast<uint32_t>(sat(pSrc[i], k24sMin, k24sMax)); });
    } else if (scaleFactor < 0) {
        const int n = scaleFactor < -31 ? 31 : -scaleFactor;
        const int32_t lo = k24sMin >> n, hi = k24sMax >> n;
        packAll(pDst, len, [&](int i) {
            const int32_t x = pSrc[i];
            return static_cast<uint32_t>(x < lo ? k24sMin : (x > hi ? k24sMax : shl32(x, n)));
        });
    } else {
        const int sf = scaleFactor > 31 ? 31 : scaleFactor;
        packAll(pDst, len, [&](int i) {
            return static_cast<uint32_t>(sat(shiftRoundSigned(pSrc[i], sf), k24sMin, k24sMax));
        });
    }
    return omnStatusOk;
}

OmnStatus omnsConvert_32f24s_Sfs(const Omn32f* pSrc, Omn8u* pDst, int len, int scaleFactor)
{
    if (const OmnStatus st = checkArgs(len, pSrc, pDst))
        return st;
    const bool scaled = scaleFactor != 0;
    const double f = pack24Scale(scaleFactor);
    packAll(pDst, len, [&](int i) {
        const float x = pSrc[i];
        const double y = scaled ? static_cast<double>(x) * f : static_cast<double>(x);
        if (y >= 8388607.0)
            return static_cast<uint32_t>(k24sMax);
        if (!(y > -8388608.0))   /* at or below the limit, or NaN */
            return static_cast<uint32_t>(k24sMin);
        return static_cast<uint32_t>(round24(y, x < 0.0f));
    });
    return omnStatusOk;
}

OmnStatus omnsConvert_32f24u_Sfs(const Omn32f* pSrc, Omn8u* pDst, int len, int scaleFactor)
{
    if (const OmnStatus st = checkArgs(len, pSrc, pDst))
        return st;
    const bool scaled = scaleFactor != 0;
    const double f = pack24Scale(scaleFactor);
    packAll(pDst, len, [&](int i) {
        const double y = scaled ? static_cast<double>(pSrc[i]) * f : static_cast<double>(pSrc[i]);
        if (y >= 16777215.0)
            return k24uMax;
        if (!(y > 0.0))   /* at or below zero, or NaN */
            return 0u;
        const double t = y + 0.5;
        uint32_t n = static_cast<uint32_t>(static_cast<int32_t>(t));
        if ((n & 1) != 0 && static_cast<double>(n) == t)
            --n;   /* a tie: down to the even neighbour */
        return n;
    });
    return omnStatusOk;
}

OMN_COLUMN_END
