/*
 * sample.cpp - SampleUp and SampleDown: rate change by an integer factor
 * with no filtering, the phase carried through the caller's pointer so that
 * a stream may be cut into calls anywhere.
 *
 * The arithmetic on positions is 64-bit: a phase near the length plus a
 * factor near the largest int would wrap in 32 bits.  The output is the same
 * in every column; the loops are plain strided stores that every column
 * compiles alike.
 */
#include <stddef.h>
#include <stdint.h>

#include "core/column.h"

OMN_COLUMN_BEGIN

namespace {

template <typename T>
OmnStatus copyAll(const T* pSrc, T* pDst, int len);

template <>
OmnStatus copyAll<Omn64f>(const Omn64f* pSrc, Omn64f* pDst, int len) { return OMN_COL::omnsCopy_64f(pSrc, pDst, len); }
template <>
OmnStatus copyAll<Omn64fc>(const Omn64fc* pSrc, Omn64fc* pDst, int len) { return OMN_COL::omnsCopy_64fc(pSrc, pDst, len); }

/* pSrc, pDst, pDstLen, pPhase (-8); srcLen (-6); factor (-31); phase (-30). */
template <typename T>
OmnStatus checkRate(const T* pSrc, int srcLen, const T* pDst, const int* pDstLen, int factor, const int* pPhase)
{
    if (!pSrc || !pDst || !pDstLen || !pPhase)
        return omnStatusNullPointer;
    if (srcLen < 1)
        return omnStatusBadSize;
    if (factor < 1)
        return omnStatusBadSampleFactor;
    if (*pPhase < 0 || *pPhase >= factor)
        return omnStatusBadSamplePhase;
    return omnStatusOk;
}

template <typename T>
OmnStatus sampleDown(const T* pSrc, int srcLen, T* pDst, int* pDstLen, int factor, int* pPhase)
{
    if (const OmnStatus st = checkRate(pSrc, srcLen, pDst, pDstLen, factor, pPhase))
        return st;
    if (factor == 1) {
        copyAll(pSrc, pDst, srcLen);
        *pDstLen = srcLen;
        return omnStatusOk;
    }
    int64_t p = *pPhase;
    int written = 0;
    for (; p < srcLen; p += factor)
        pDst[written++] = pSrc[p];
    *pPhase = static_cast<int>(p - srcLen);
    *pDstLen = written;
    return omnStatusOk;
}

template <typename T>
OmnStatus sampleUp(const T* pSrc, int srcLen, T* pDst, int* pDstLen, int factor, int* pPhase)
{
    if (const OmnStatus st = checkRate(pSrc, srcLen, pDst, pDstLen, factor, pPhase))
        return st;
    /* The count is reported as the 32-bit product, as a caller computing
       factor * srcLen in int would; the writes cover the true product. */
    *pDstLen = static_cast<int>(static_cast<uint32_t>(factor) * static_cast<uint32_t>(srcLen));
    if (factor == 1)
        return copyAll(pSrc, pDst, srcLen);
    const size_t f = static_cast<size_t>(factor);
    const size_t n = static_cast<size_t>(srcLen);
    const size_t p = static_cast<size_t>(*pPhase);
    /* Zeros first (a plain fill the compiler vectorises), then each sample at
       position p of its group of f. */
    T* __restrict d = pDst;
    for (size_t i = 0; i < f * n; ++i)
        d[i] = T{};
    for (size_t i = 0; i < n; ++i)
        d[i * f + p] = pSrc[i];
    return omnStatusOk;
}

} // namespace

OmnStatus omnsSampleUp_64f(const Omn64f* pSrc, int srcLen, Omn64f* pDst, int* pDstLen, int factor, int* pPhase)
{
    return sampleUp(pSrc, srcLen, pDst, pDstLen, factor, pPhase);
}

OmnStatus omnsSampleUp_64fc(const Omn64fc* pSrc, int srcLen, Omn64fc* pDst, int* pDstLen, int factor, int* pPhase)
{
    return sampleUp(pSrc, srcLen, pDst, pDstLen, factor, pPhase);
}

OmnStatus omnsSampleDown_64f(const Omn64f* pSrc, int srcLen, Omn64f* pDst, int* pDstLen, int factor, int* pPhase)
{
    return sampleDown(pSrc, srcLen, pDst, pDstLen, factor, pPhase);
}

OmnStatus omnsSampleDown_64fc(const Omn64fc* pSrc, int srcLen, Omn64fc* pDst, int* pDstLen, int factor,
                              int* pPhase)
{
    return sampleDown(pSrc, srcLen, pDst, pDstLen, factor, pPhase);
}

OMN_COLUMN_END
