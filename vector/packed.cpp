/*
 * packed.cpp - products of packed real spectra and their expansion to the
 * full complex spectrum.
 *
 * A real sequence of len points has a conjugate-symmetric spectrum X, so
 * half of it is stored: Pack (R0, R1, I1, ..., and R(len/2) last when len is
 * even), Perm (the same with R(len/2) moved to the second place) and Ccs
 * (complex X[0] to X[len/2]).  The imaginary parts of X[0] and of the
 * Nyquist term have no room in Pack and Perm and read as zero.
 *
 * The same loops serve every column: the work is a few operations per
 * element on data that is streamed once, and the compiler's code for the
 * plain loop is what the column's instruction set allows.
 */
#include "core/column.h"

#include <stddef.h>

#include "core/checks.h"

OMN_COLUMN_BEGIN

namespace {

/* Complex products of the pairs a[2i], a[2i+1] and b[2i], b[2i+1], i below
   n, into d (which may be a or b).  With SSE2 a pair is one register: the
   products are formed as (r1 r2, r1 i2) + (-(i1 i2), i1 r2), which rounds
   exactly as the scalar expressions do, so all columns agree to the bit. */
inline void mulPairs(const double* a, const double* b, double* d, size_t n)
{
    /* Two pairs a round: the loop of one pair ran at 4 or at 2.3 cycles a
       pair by where the linker happened to place it (the same instructions
       in the px and a6 copies, and in w7's, took either time). */
    const auto byTwo = [n](auto f) {
        size_t i = 0;
        for (; i + 2 <= n; i += 2) {
            f(i);
            f(i + 1);
        }
        if (i < n)
            f(i);
    };
#if OMN_SIMD >= 2
    const __m128d negLo = _mm_set_pd(0.0, -0.0);
    byTwo([&](size_t k) {
        const __m128d x = _mm_loadu_pd(a + 2 * k), y = _mm_loadu_pd(b + 2 * k);
        const __m128d t1 = _mm_mul_pd(_mm_unpacklo_pd(x, x), y);
        const __m128d t2 = _mm_mul_pd(_mm_unpackhi_pd(x, x), _mm_shuffle_pd(y, y, 1));
        _mm_storeu_pd(d + 2 * k, _mm_add_pd(t1, _mm_xor_pd(t2, negLo)));
    });
#else
    byTwo([&](size_t k) {
        const double r1 = a[2 * k], i1 = a[2 * k + 1];
        const double r2 = b[2 * k], i2 = b[2 * k + 1];
        d[2 * k] = r1 * r2 - i1 * i2;
        d[2 * k + 1] = r1 * i2 + i1 * r2;
    });
#endif
}

/* Both forms hold (len - 1) / 2 complex pairs, whether len is odd (from
   element 1) or even (from element 1 in Pack, 2 in Perm). */
inline size_t pairCount(int len) { return size_t(len - 1) / 2; }

OmnStatus mulPack(const double* a, const double* b, double* d, int len)
{
    const size_t n = size_t(len);
    d[0] = a[0] * b[0];
    if ((len & 1) == 0)
        d[n - 1] = a[n - 1] * b[n - 1];
    mulPairs(a + 1, b + 1, d + 1, pairCount(len));
    return omnStatusOk;
}

OmnStatus mulPerm(const double* a, const double* b, double* d, int len)
{
    d[0] = a[0] * b[0];
    size_t first = 1;
    if ((len & 1) == 0) {
        d[1] = a[1] * b[1];
        first = 2;
    }
    mulPairs(a + first, b + first, d + first, pairCount(len));
    return omnStatusOk;
}

/* Pairs of the expansion: the highest k below the Nyquist term. */
inline size_t topPair(int len) { return (len & 1) ? size_t(len / 2) : size_t(len / 2) - 1; }

} // namespace

OmnStatus omnsMulPack_64f(const Omn64f* pSrc1, const Omn64f* pSrc2, Omn64f* pDst, int len)
{
    if (const OmnStatus st = checkArgs(len, pSrc1, pSrc2, pDst))
        return st;
    return mulPack(pSrc1, pSrc2, pDst, len);
}

OmnStatus omnsMulPack_64f_I(const Omn64f* pSrc, Omn64f* pSrcDst, int len)
{
    if (const OmnStatus st = checkArgs(len, pSrc, pSrcDst))
        return st;
    return mulPack(pSrc, pSrcDst, pSrcDst, len);
}

OmnStatus omnsMulPerm_64f(const Omn64f* pSrc1, const Omn64f* pSrc2, Omn64f* pDst, int len)
{
    if (const OmnStatus st = checkArgs(len, pSrc1, pSrc2, pDst))
        return st;
    return mulPerm(pSrc1, pSrc2, pDst, len);
}

OmnStatus omnsMulPerm_64f_I(const Omn64f* pSrc, Omn64f* pSrcDst, int len)
{
    if (const OmnStatus st = checkArgs(len, pSrc, pSrcDst))
        return st;
    return mulPerm(pSrc, pSrcDst, pSrcDst, len);
}

/* The kept factor is pSrc; the conjugate falls on the array that is
   overwritten, which is the order cross-correlation needs.  With the same
   array on both sides every imaginary part is s.im s.re - s.re s.im, an
   exact zero. */
OmnStatus omnsMulPackConj_64f_I(const Omn64f* pSrc, Omn64f* pSrcDst, int len)
{
    if (const OmnStatus st = checkArgs(len, pSrc, pSrcDst))
        return st;
    const size_t n = size_t(len);
    pSrcDst[0] = pSrc[0] * pSrcDst[0];
    if ((len & 1) == 0)
        pSrcDst[n - 1] = pSrc[n - 1] * pSrcDst[n - 1];
    const double* s = pSrc + 1;
    double* d = pSrcDst + 1;
    for (size_t i = 0, m = pairCount(len); i < m; ++i) {
        const double sr = s[2 * i], si = s[2 * i + 1];
        const double dr = d[2 * i], di = d[2 * i + 1];
        d[2 * i] = sr * dr + si * di;
        d[2 * i + 1] = si * dr - sr * di;
    }
    return omnStatusOk;
}

/* Expansions.  Every member goes from the highest pair down, so that the
   in-place forms, which find the packed values at the start of their
   complex array, read each value before they overwrite it. */

OmnStatus omnsConjPack_64fc(const Omn64f* pSrc, Omn64fc* pDst, int len)
{
    if (const OmnStatus st = checkArgs(len, pSrc, pDst))
        return st;
    const size_t n = size_t(len);
    pDst[0] = Omn64fc{ pSrc[0], 0.0 };
    if ((len & 1) == 0)
        pDst[n / 2] = Omn64fc{ pSrc[n - 1], 0.0 };
    for (size_t k = topPair(len); k >= 1; --k) {
        const double re = pSrc[2 * k - 1], im = pSrc[2 * k];
        pDst[k] = Omn64fc{ re, im };
        pDst[n - k] = Omn64fc{ re, -im };
    }
    return omnStatusOk;
}

OmnStatus omnsConjPack_64fc_I(Omn64fc* pSrcDst, int len)
{
    if (const OmnStatus st = checkArgs(len, pSrcDst))
        return st;
    const size_t n = size_t(len);
    double* d = reinterpret_cast<double*>(pSrcDst);
    /* The Nyquist value is the last packed double, which the pair below it
       overwrites; its own place lies beyond the packed values. */
    if ((len & 1) == 0)
        pSrcDst[n / 2] = Omn64fc{ d[n - 1], 0.0 };
    for (size_t k = topPair(len); k >= 1; --k) {
        const double re = d[2 * k - 1], im = d[2 * k];
        pSrcDst[n - k] = Omn64fc{ re, -im };
        pSrcDst[k] = Omn64fc{ re, im };
    }
    /* R1 sat in the second double: the zero of X[0]'s imaginary part goes
       there last. */
    d[1] = 0.0;
    return omnStatusOk;
}

OmnStatus omnsConjPerm_64fc(const Omn64f* pSrc, Omn64fc* pDst, int len)
{
    if (const OmnStatus st = checkArgs(len, pSrc, pDst))
        return st;
    const size_t n = size_t(len);
    /* Pair k starts at 2k when R(len/2) takes the second place, at 2k - 1
       when len is odd and Perm is Pack. */
    const size_t base = (len & 1) ? 1 : 0;
    pDst[0] = Omn64fc{ pSrc[0], 0.0 };
    if ((len & 1) == 0)
        pDst[n / 2] = Omn64fc{ pSrc[1], 0.0 };
    for (size_t k = topPair(len); k >= 1; --k) {
        const double re = pSrc[2 * k - base], im = pSrc[2 * k + 1 - base];
        pDst[k] = Omn64fc{ re, im };
        pDst[n - k] = Omn64fc{ re, -im };
    }
    return omnStatusOk;
}

OmnStatus omnsConjPerm_64fc_I(Omn64fc* pSrcDst, int len)
{
    if (const OmnStatus st = checkArgs(len, pSrcDst))
        return st;
    if (len & 1)
        return OMN_COL::omnsConjPack_64fc_I(pSrcDst, len);
    const size_t n = size_t(len);
    double* d = reinterpret_cast<double*>(pSrcDst);
    /* Even len: the pairs already stand at their complex places; the
       Nyquist value in the second double is picked up first. */
    const double nyq = d[1];
    pSrcDst[n / 2] = Omn64fc{ nyq, 0.0 };
    for (size_t k = topPair(len); k >= 1; --k) {
        const double re = d[2 * k], im = d[2 * k + 1];
        pSrcDst[n - k] = Omn64fc{ re, -im };
    }
    d[1] = 0.0;
    return omnStatusOk;
}

/* Ccs has room for the imaginary parts of X[0] and X[len/2], and they are
   kept as they are. */
OmnStatus omnsConjCcs_64fc(const Omn64fc* pSrc, Omn64fc* pDst, int len)
{
    if (const OmnStatus st = checkArgs(len, pSrc, pDst))
        return st;
    const size_t n = size_t(len);
    pDst[0] = pSrc[0];
    if ((len & 1) == 0)
        pDst[n / 2] = pSrc[n / 2];
    for (size_t k = topPair(len); k >= 1; --k) {
        const Omn64fc x = pSrc[k];
        pDst[k] = x;
        pDst[n - k] = Omn64fc{ x.re, -x.im };
    }
    return omnStatusOk;
}

/* In place only the upper half is written: entries 0 to len/2 stay. */
OmnStatus omnsConjCcs_64fc_I(Omn64fc* pSrcDst, int len)
{
    if (const OmnStatus st = checkArgs(len, pSrcDst))
        return st;
    const size_t n = size_t(len);
    for (size_t k = topPair(len); k >= 1; --k) {
        const Omn64fc x = pSrcDst[k];
        pSrcDst[n - k] = Omn64fc{ x.re, -x.im };
    }
    return omnStatusOk;
}

OmnStatus omnsConjFlip_64fc(const Omn64fc* pSrc, Omn64fc* pDst, int len)
{
    if (const OmnStatus st = checkArgs(len, pSrc, pDst))
        return st;
    const size_t n = size_t(len);
    for (size_t i = 0; i < n; ++i)
        pDst[n - 1 - i] = Omn64fc{ pSrc[i].re, -pSrc[i].im };
    return omnStatusOk;
}

OMN_COLUMN_END
