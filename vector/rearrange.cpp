/*
 * rearrange.cpp - Flip and SwapBytes.
 */
#include <stddef.h>

#include "core/column.h"
#include "core/checks.h"

OMN_COLUMN_BEGIN

namespace {

#if OMN_SIMD >= 2
inline __m128d swapHalves(__m128d v) { return _mm_shuffle_pd(v, v, 1); }
#endif

} // namespace

OmnStatus omnsFlip_64f(const Omn64f* pSrc, Omn64f* pDst, int len)
{
    if (const OmnStatus st = checkArgs(len, pSrc, pDst))
        return st;
    int i = 0;
#if OMN_SIMD >= 2
    /* Pairs, reversed within the pair, stored from the far end. */
    for (; i + 2 <= len; i += 2)
        _mm_storeu_pd(pDst + len - 2 - i, swapHalves(_mm_loadu_pd(pSrc + i)));
#endif
    for (; i < len; ++i)
        pDst[len - 1 - i] = pSrc[i];
    return omnStatusOk;
}

OmnStatus omnsFlip_64f_I(Omn64f* pSrcDst, int len)
{
    if (const OmnStatus st = checkArgs(len, pSrcDst))
        return st;
    int i = 0;
    const int half = len / 2;   /* the middle element of an odd length stays */
#if OMN_SIMD >= 2
    for (; i + 2 <= half; i += 2) {
        const __m128d lo = _mm_loadu_pd(pSrcDst + i);
        const __m128d hi = _mm_loadu_pd(pSrcDst + len - 2 - i);
        _mm_storeu_pd(pSrcDst + i, swapHalves(hi));
        _mm_storeu_pd(pSrcDst + len - 2 - i, swapHalves(lo));
    }
#endif
    for (; i < half; ++i) {
        const Omn64f t = pSrcDst[i];
        pSrcDst[i] = pSrcDst[len - 1 - i];
        pSrcDst[len - 1 - i] = t;
    }
    return omnStatusOk;
}

OmnStatus omnsSwapBytes_24u(const Omn8u* pSrc, Omn8u* pDst, int len)
{
    if (const OmnStatus st = checkArgs(len, pSrc, pDst))
        return st;
    for (size_t k = 0, n = static_cast<size_t>(len) * 3; k < n; k += 3) {
        const Omn8u b0 = pSrc[k], b1 = pSrc[k + 1], b2 = pSrc[k + 2];
        pDst[k] = b2;
        pDst[k + 1] = b1;
        pDst[k + 2] = b0;
    }
    return omnStatusOk;
}

OmnStatus omnsSwapBytes_24u_I(Omn8u* pSrcDst, int len)
{
    if (const OmnStatus st = checkArgs(len, pSrcDst))
        return st;
    for (size_t k = 0, n = static_cast<size_t>(len) * 3; k < n; k += 3) {
        const Omn8u t = pSrcDst[k];
        pSrcDst[k] = pSrcDst[k + 2];
        pSrcDst[k + 2] = t;
    }
    return omnStatusOk;
}

OMN_COLUMN_END
