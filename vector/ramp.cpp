/*
 * ramp.cpp - VectorRamp and VectorJaehne, the two test-vector generators.
 */
#include <math.h>
#include <stdint.h>

#include "core/column.h"
#include "core/checks.h"

OMN_COLUMN_BEGIN

namespace {

/* Truncation toward zero as the processor's conversion does it: a value it
   cannot represent (only NaN reaches here) gives the integer indefinite. */
inline Omn32s truncOrIndefinite(double w)
{
    if (w != w)
        return INT32_MIN;
    return static_cast<Omn32s>(w);
}

/* Round half away from zero, with saturation. */
inline Omn32s rampRound(double v)
{
    const double w = v <= 0.0 ? v - 0.5 : v + 0.5;
    if (w >= 2147483647.0)
        return INT32_MAX;
    if (w <= -2147483648.0)
        return INT32_MIN;
    return truncOrIndefinite(w);
}

/* c = (pi/2) / len; element i is sin(i * (c * i)). */
inline double jaehneAngle(int i, double c)
{
    const double x = static_cast<double>(i);
    return x * (c * x);
}

constexpr double kHalfPi = 1.5707963267948966;

} // namespace

/* pDst[i] = i * slope + offset, computed from i so that errors don't pile up. */
OmnStatus omnsVectorRamp_64f(Omn64f* pDst, int len, Omn32f offset, Omn32f slope)
{
    if (const OmnStatus st = checkArgs(len, pDst))
        return st;
    const double o = offset, s = slope;
    int i = 0;
#if OMN_SIMD >= 2
    const __m128d vs = _mm_set1_pd(s), vo = _mm_set1_pd(o), two = _mm_set1_pd(2.0);
    __m128d idx = _mm_set_pd(1.0, 0.0);
    for (; i + 2 <= len; i += 2) {
        _mm_storeu_pd(pDst + i, _mm_add_pd(_mm_mul_pd(idx, vs), vo));
        idx = _mm_add_pd(idx, two);
    }
#endif
    for (; i < len; ++i)
        pDst[i] = static_cast<double>(i) * s + o;
    return omnStatusOk;
}

OmnStatus omnsVectorRamp_32s(Omn32s* pDst, int len, Omn32f offset, Omn32f slope)
{
    if (const OmnStatus st = checkArgs(len, pDst))
        return st;
    const double o = offset, s = slope;
    for (int i = 0; i < len; ++i)
        pDst[i] = rampRound(static_cast<double>(i) * s + o);
    return omnStatusOk;
}

/* The chirp: pDst[i] = sin(i * (c * i)) * magn with c = (pi/2) / len; the
   integer form rounds half away from zero and needs no saturation, since
   |v| <= magn. */
template <typename T, typename M, typename Store>
OmnStatus jaehne(T* pDst, int len, M magn, Store store)
{
    if (const OmnStatus st = checkArgs(len, pDst))
        return st;
    if (magn < 0)
        return omnStatusNegativeMagnitude;
    if (len == 1) {
        pDst[0] = 0;
        return omnStatusOk;
    }
    const double c = kHalfPi / static_cast<double>(len);
    const double m = static_cast<double>(magn);
    for (int i = 0; i < len; ++i)
        pDst[i] = store(sin(jaehneAngle(i, c)) * m);
    return omnStatusOk;
}

OmnStatus omnsVectorJaehne_64f(Omn64f* pDst, int len, Omn64f magn)
{
    return jaehne(pDst, len, magn, [](double v) { return v; });
}

OmnStatus omnsVectorJaehne_32s(Omn32s* pDst, int len, Omn32s magn)
{
    return jaehne(pDst, len, magn, [](double v) { return static_cast<Omn32s>(v >= 0.0 ? v + 0.5 : v - 0.5); });
}

OMN_COLUMN_END
