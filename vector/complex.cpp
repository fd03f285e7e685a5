/*
 * complex.cpp - taking complex vectors apart and putting them together:
 * Conj, Real, Imag, CplxToReal and RealToCplx on doubles.
 *
 * px and a6 run plain loops in groups of four; w7 and t7 move pairs of
 * doubles with packed unpacks.  No column changes a bit of the values: the
 * conjugate flips the sign bit, so 0 becomes -0 and a NaN keeps its payload.
 */
#include "core/column.h"
#include "core/checks.h"

#include <stdint.h>
#include <string.h>

OMN_COLUMN_BEGIN

namespace {

inline size_t count(int len) { return static_cast<size_t>(len); }

inline const double* parts(const Omn64fc* p) { return reinterpret_cast<const double*>(p); }
inline double* parts(Omn64fc* p) { return reinterpret_cast<double*>(p); }

void conjKernel(const double* s, double* d, size_t n)
{
    size_t i = 0;
#if OMN_SIMD >= 2
    const __m128d sign = _mm_set_pd(-0.0, 0.0);   /* imaginary half only */
    for (; i + 2 <= n; i += 2) {
        _mm_storeu_pd(d + 2 * i, _mm_xor_pd(_mm_loadu_pd(s + 2 * i), sign));
        _mm_storeu_pd(d + 2 * i + 2, _mm_xor_pd(_mm_loadu_pd(s + 2 * i + 2), sign));
    }
#else
    for (; i + 4 <= n; i += 4) {
        d[2 * i] = s[2 * i];         d[2 * i + 1] = -s[2 * i + 1];
        d[2 * i + 2] = s[2 * i + 2]; d[2 * i + 3] = -s[2 * i + 3];
        d[2 * i + 4] = s[2 * i + 4]; d[2 * i + 5] = -s[2 * i + 5];
        d[2 * i + 6] = s[2 * i + 6]; d[2 * i + 7] = -s[2 * i + 7];
    }
#endif
    for (; i < n; ++i) {
        d[2 * i] = s[2 * i];
        d[2 * i + 1] = -s[2 * i + 1];
    }
}

/* One part (0 real, 1 imaginary) of each element. */
void partKernel(const double* s, double* d, size_t n, int which)
{
    size_t i = 0;
#if OMN_SIMD >= 2
    for (; i + 2 <= n; i += 2) {
        const __m128d a = _mm_loadu_pd(s + 2 * i), b = _mm_loadu_pd(s + 2 * i + 2);
        _mm_storeu_pd(d + i, which == 0 ? _mm_unpacklo_pd(a, b) : _mm_unpackhi_pd(a, b));
    }
#else
    for (; i + 4 <= n; i += 4) {
        d[i] = s[2 * i + which];
        d[i + 1] = s[2 * i + 2 + which];
        d[i + 2] = s[2 * i + 4 + which];
        d[i + 3] = s[2 * i + 6 + which];
    }
#endif
    for (; i < n; ++i)
        d[i] = s[2 * i + which];
}

void splitKernel(const double* s, double* re, double* im, size_t n)
{
#if OMN_SIMD >= 2
    size_t i = 0;
    for (; i + 2 <= n; i += 2) {
        const __m128d a = _mm_loadu_pd(s + 2 * i), b = _mm_loadu_pd(s + 2 * i + 2);
        _mm_storeu_pd(re + i, _mm_unpacklo_pd(a, b));
        _mm_storeu_pd(im + i, _mm_unpackhi_pd(a, b));
    }
    for (; i < n; ++i) {
        re[i] = s[2 * i];
        im[i] = s[2 * i + 1];
    }
#else
    /* The real parts of all whole blocks of four, then their imaginary
       parts, then the tail. */
    const size_t blocks = n & ~size_t(3);
    partKernel(s, re, blocks, 0);
    partKernel(s, im, blocks, 1);
    for (size_t i = blocks; i < n; ++i) {
        re[i] = s[2 * i];
        im[i] = s[2 * i + 1];
    }
#endif
}

/* Joins re and im; a null source stands for +0.0 in every element. */
void joinKernel(const double* re, const double* im, double* d, size_t n)
{
    size_t i = 0;
#if OMN_SIMD >= 2
    const __m128d zero = _mm_setzero_pd();
    for (; i + 2 <= n; i += 2) {
        const __m128d r = re ? _mm_loadu_pd(re + i) : zero;
        const __m128d m = im ? _mm_loadu_pd(im + i) : zero;
        _mm_storeu_pd(d + 2 * i, _mm_unpacklo_pd(r, m));
        _mm_storeu_pd(d + 2 * i + 2, _mm_unpackhi_pd(r, m));
    }
#endif
    for (; i < n; ++i) {
        d[2 * i] = re ? re[i] : 0.0;
        d[2 * i + 1] = im ? im[i] : 0.0;
    }
}

} // namespace

OmnStatus omnsConj_64fc(const Omn64fc* pSrc, Omn64fc* pDst, int len)
{
    const OmnStatus st = checkArgs(len, pSrc, pDst);
    if (st == omnStatusOk)
        conjKernel(parts(pSrc), parts(pDst), count(len));
    return st;
}

OmnStatus omnsConj_64fc_I(Omn64fc* pSrcDst, int len)
{
    const OmnStatus st = checkArgs(len, pSrcDst);
    if (st == omnStatusOk)
        conjKernel(parts(pSrcDst), parts(pSrcDst), count(len));
    return st;
}

OmnStatus omnsReal_64fc(const Omn64fc* pSrc, Omn64f* pDstRe, int len)
{
    const OmnStatus st = checkArgs(len, pSrc, pDstRe);
    if (st == omnStatusOk)
        partKernel(parts(pSrc), pDstRe, count(len), 0);
    return st;
}

OmnStatus omnsImag_64fc(const Omn64fc* pSrc, Omn64f* pDstIm, int len)
{
    const OmnStatus st = checkArgs(len, pSrc, pDstIm);
    if (st == omnStatusOk)
        partKernel(parts(pSrc), pDstIm, count(len), 1);
    return st;
}

OmnStatus omnsCplxToReal_64fc(const Omn64fc* pSrc, Omn64f* pDstRe, Omn64f* pDstIm, int len)
{
    const OmnStatus st = checkArgs(len, pSrc, pDstRe, pDstIm);
    if (st == omnStatusOk)
        splitKernel(parts(pSrc), pDstRe, pDstIm, count(len));
    return st;
}

/* The destination first, then the length, and only then the sources, of
   which one may be missing. */
OmnStatus omnsRealToCplx_64f(const Omn64f* pSrcRe, const Omn64f* pSrcIm, Omn64fc* pDst, int len)
{
    if (const OmnStatus st = checkArgs(len, pDst))
        return st;
    if (pSrcRe == nullptr && pSrcIm == nullptr)
        return omnStatusNullPointer;
    joinKernel(pSrcRe, pSrcIm, parts(pDst), count(len));
    return omnStatusOk;
}

OMN_COLUMN_END
