/*
 * real.cpp - real transforms of N = 2^order points to and from the packed
 * spectra Perm and Pack.
 *
 * Orders 0 to 3 are straight-line routines.  From order 4 the N reals are
 * taken as M = N/2 complex values z[j] = x[2j] + i x[2j+1] and go through
 * the complex core of order - 1; the recombination turns the core's
 * spectrum Z into X (forward) or X into the Z whose inverse is x (inverse),
 * with the tables recombFwd and recombInv built at creation.
 *
 * The forward scale is applied by the core, before the recombination; the
 * inverse scale likewise by the core, after it.  So the scale costs no sweep
 * of its own in either direction.
 *
 * The tables hold two neighbours per group from k = 1, and the loop runs
 * through k = M/2, where the closing table entry (A = B = 0, and cos = 0,
 * -sin = -1) makes the general step produce the middle term.
 */
#include "core/column.h"

#include <string.h>

#include "core/alloc.h"
#include "fft/engine.h"
#include "fft/pair.h"
#include "fft/recombine.h"

OMN_COLUMN_BEGIN
namespace fft {
namespace {

constexpr double kHalfRoot2 = 0.7071067811865476;
constexpr double kRoot2 = 1.4142135623730951;

/* ---- orders 0 to 3 ------------------------------------------------------ */

template <bool Scaled>
inline double in(const double* src, int i, double s)
{
    return Scaled ? src[i] * s : src[i];
}

/* One point: a copy, in both directions. */
template <bool Inv, bool Scaled>
void real0(const double* src, double* dst, double s)
{
    dst[0] = in<Scaled>(src, 0, s);
}

/* Two points: sum and difference, in both directions. */
template <bool Inv, bool Scaled>
void real1(const double* src, double* dst, double s)
{
    const double x0 = in<Scaled>(src, 0, s), x1 = in<Scaled>(src, 1, s);
    dst[0] = x0 + x1;
    dst[1] = x0 - x1;
}

/* Four points.  Forward: X0, X2, then X1 = (x0 - x2, x3 - x1).  Inverse
   from Perm a, b, c, d = X0, X2, Re X1, Im X1. */
template <bool Inv, bool Scaled>
void real2(const double* src, double* dst, double s)
{
    const double x0 = in<Scaled>(src, 0, s), x1 = in<Scaled>(src, 1, s);
    const double x2 = in<Scaled>(src, 2, s), x3 = in<Scaled>(src, 3, s);
    if (!Inv) {
        const double e = x0 + x2, o = x1 + x3;
        dst[0] = e + o;
        dst[1] = e - o;
        dst[2] = x0 - x2;
        dst[3] = x3 - x1;
    } else {
        const double p = x0 + x1, m = x0 - x1, c2 = x2 + x2, d2 = x3 + x3;
        dst[0] = p + c2;
        dst[1] = m - d2;
        dst[2] = p - c2;
        dst[3] = m + d2;
    }
}

/* Eight points, Perm R0, R4, R1, I1, R2, I2, R3, I3.  The inverse is the
   mirror of the forward: its odd terms are rotated by sqrt(2) where the
   forward's are by sqrt(2)/2, since the inverse counts each conjugate pair
   twice. */
template <bool Inv, bool Scaled>
void real3(const double* src, double* dst, double s)
{
    double x[8];
    for (int i = 0; i < 8; ++i)
        x[i] = in<Scaled>(src, i, s);
    if (!Inv) {
        const double s04 = x[0] + x[4], d04 = x[0] - x[4], s26 = x[2] + x[6], d26 = x[2] - x[6];
        const double s15 = x[1] + x[5], d15 = x[1] - x[5], s37 = x[3] + x[7], d37 = x[3] - x[7];
        const double e = s04 + s26, o = s15 + s37;
        const double c = (d15 - d37) * kHalfRoot2, d = (d15 + d37) * -kHalfRoot2;
        dst[0] = e + o;
        dst[1] = e - o;
        dst[2] = d04 + c;
        dst[3] = d - d26;
        dst[4] = s04 - s26;
        dst[5] = s37 - s15;
        dst[6] = d04 - c;
        dst[7] = d26 + d;
    } else {
        const double r0 = x[0], r4 = x[1], r1 = x[2], i1 = x[3], r2 = x[4], i2 = x[5], r3 = x[6], i3 = x[7];
        const double s04 = r0 + r4, d04 = r0 - r4;
        const double e = s04 + (r2 + r2), f = s04 - (r2 + r2);
        const double g = (r1 + r3) + (r1 + r3), h = (i1 - i3) + (i1 - i3);
        const double u = r1 - r3, v = i1 + i3;
        const double c = (u - v) * kRoot2, d = (u + v) * -kRoot2;
        const double lo = d04 - (i2 + i2), hi = d04 + (i2 + i2);
        dst[0] = e + g;
        dst[4] = e - g;
        dst[2] = f - h;
        dst[6] = f + h;
        dst[1] = lo + c;
        dst[5] = lo - c;
        dst[3] = hi + d;
        dst[7] = hi - d;
    }
}

/* ---- the recombination, order 4 and up ------------------------------------ */

/* The recombination runs on two neighbours k, k+1 (k odd, from 1 to
   M/2 - 1) and their mirrors M-k, M-k-1 at once, in pair-split form; the
   table holds the group's factors the same way.  Each group reads its four
   complex values before it writes, and the last group (k+1 = M/2 = M-k-1)
   writes the middle term twice with the same value. */

/* Z (the core's spectrum, in d) to Perm, in place. */
void recombineForward(double* d, size_t m, const double* t)
{
    const double p = d[0], q = d[1];
    d[0] = p + q;
    d[1] = p - q;
    for (size_t k = 1; k < m / 2; k += 2, t += 4) {
        const size_t j = m - k;
        const V A = ld(t), B = ld(t + 2);
        const Split x = loadInterleaved(d + 2 * k);
        const V y1 = ld(d + 2 * (j - 1)), y0 = ld(d + 2 * j);
        const V a = x.re, c = x.im, b = unpackLo(y0, y1), e = unpackHi(y0, y1);
        const V amb = sub(a, b), cpe = add(c, e);
        const V P = add(mul(B, amb), mul(A, cpe));
        const V Q = sub(mul(B, cpe), mul(A, amb));
        storeInterleaved(d + 2 * k, Split{ add(b, P), sub(Q, e) });
        const V re = sub(a, P), im = sub(Q, c);
        st(d + 2 * j, unpackLo(re, im));
        st(d + 2 * (j - 1), unpackHi(re, im));
    }
}

/* Perm or Pack to the Z of the inverse core in natural order in d (s may
   equal d only for Perm), two neighbours and their mirrors at a time.  The
   walk keeps its own copies of the input's fields and its own pointers:
   d may be the memory of the input, so the compiler would otherwise read
   M again after every store. */
void recombineInverse(const InverseInput& in, double* d)
{
    const size_t m = in.m;
    const double* t = in.table;
    const double* sk = in.s + 2 - in.shift;             /* X_k, X_(k+1) */
    const double* sj = in.s + 2 * (m - 2) - in.shift;   /* X_(j-1), X_j, j = M - k */
    double* dk = d + 2;
    double* dj = d + 2 * (m - 2);
    in.zero(d);
    for (size_t g = 0; g < m / 4; ++g, t += 4, sk += 4, sj -= 4, dk += 4, dj -= 4) {
        const V C = ld(t), S = ld(t + 2);
        const Split x = loadInterleaved(sk);
        const V y1 = ld(sj), y0 = ld(sj + 2);
        V kre, kim, jre, jim;
        inverseStep(x.re, x.im, unpackLo(y0, y1), unpackHi(y0, y1), C, S, kre, kim, jre, jim);
        storeInterleaved(dk, Split{ kre, kim });
        st(dj + 2, unpackLo(jre, jim));
        st(dj, unpackHi(jre, jim));
    }
}

/* The same into the bit-reversed places the core reads (s and d apart):
   element b + u M/4 stands at 4 rev(b) + off(u), off = 0, 2, 1, 3, so the
   walk goes by the first pass's groups of four places with their mirror
   groups, and no place is computed element by element. */
void recombineInversePermuted(const InverseInput& x, double* d, const Omn32s* rev)
{
    static const int off[4] = { 0, 2, 1, 3 };
    forEachMirrorGroup<4, true>(x, rev, [&](size_t i, const double* z) {
        double* g = d + 8 * i;
        for (int u = 0; u < 4; ++u) {
            g[2 * off[u]] = z[2 * u];
            g[2 * off[u] + 1] = z[2 * u + 1];
        }
    });
}

/* Perm to Pack in place: R(N/2) goes from the second place to the last. */
void permToPack(double* d, size_t n)
{
    if (n <= 2)
        return;
    const double nyq = d[1];
    memmove(d + 1, d + 2, (n - 2) * sizeof(double));
    d[n - 1] = nyq;
}

/* Pack in s to Perm in d, from the top down so that s may equal d. */
void packToPerm(const double* s, double* d, size_t n)
{
    if (n <= 2) {
        if (s != d)
            memcpy(d, s, n * sizeof(double));
        return;
    }
    const double nyq = s[n - 1];
    for (size_t i = n - 2; i >= 1; --i)
        d[i + 1] = s[i];
    d[1] = nyq;
    d[0] = s[0];
}

OmnStatus checkSpec(const double* pSrc, const double* pDst, const OmnRealFftSpec* spec)
{
    if (spec == nullptr)
        return omnStatusNullPointer;
    if (spec->id != kOmnRealFftSpecId)
        return omnStatusContextMismatch;
    if (pSrc == nullptr || pDst == nullptr)
        return omnStatusNullPointer;
    return omnStatusOk;
}

OmnStatus forward(const double* pSrc, double* pDst, const OmnRealFftSpec* spec, Omn8u* pBuf, bool pack)
{
    if (const OmnStatus st = checkSpec(pSrc, pDst, spec))
        return st;
    const int order = spec->order;
    const size_t n = size_t(1) << order;
    const bool scaled = spec->scaleFwd != 0;
    if (order < 4) {
        kRealSmall[0][scaled][order](pSrc, pDst, spec->scale);
    } else {
        void* own;
        double* work;
        if (const OmnStatus st = acquireWork(spec, pBuf, &work, &own))
            return st;
        transform(reinterpret_cast<const Omn64fc*>(pSrc), reinterpret_cast<Omn64fc*>(pDst), spec, order - 1, false,
                  scaled, work);
        common::omnsFree(own);
        recombineForward(pDst, n / 2, static_cast<const double*>(spec->recombFwd));
    }
    if (pack)
        permToPack(pDst, n);
    return omnStatusOk;
}

OmnStatus inverse(const double* pSrc, double* pDst, const OmnRealFftSpec* spec, Omn8u* pBuf, bool pack)
{
    if (const OmnStatus st = checkSpec(pSrc, pDst, spec))
        return st;
    const int order = spec->order;
    const size_t n = size_t(1) << order;
    const bool scaled = spec->scaleInv != 0;
    /* Work memory first: a failed allocation leaves dst unwritten. */
    void* own = nullptr;
    double* work = nullptr;
    if (order >= 4) {
        if (const OmnStatus st = acquireWork(spec, pBuf, &work, &own))
            return st;
    }
    const size_t m = n / 2;
    const double* t = static_cast<const double*>(spec->recombInv);
    const int k = order - 1;
    const bool coreInMemory = k <= kWholeInWork || k <= kStackCoreTo;
    if (order >= 4 && (pSrc != pDst || coreInMemory)) {
        /* Pack is read where it stands.  Where the work memory holds a
           whole core (w7/t7, kWholeInWork), or else the stack does (px/a6,
           kStackCoreTo), the recombination goes there in natural order and
           the core runs from it to dst, like the forward from src; in place
           too.  Otherwise, out of place: up to the direct limit the core's
           first pass computes its own inputs by the recombination; above
           it the recombination writes straight into the bit-reversed
           places the core reads.  None runs a permutation pass. */
        const InverseInput x{ pSrc, pack ? 1 : 0, pSrc[0], pack ? pSrc[n - 1] : pSrc[1], t, m };
        if (coreInMemory) {
            alignas(16) double stack[size_t(2) << kStackCoreTo];
            double* z = k <= kWholeInWork ? work : stack;
            recombineInverse(x, z);
            transform(reinterpret_cast<const Omn64fc*>(z), reinterpret_cast<Omn64fc*>(pDst), spec, k, true, scaled,
                      nullptr);
        } else if (recombinesInFirstPass(k)) {
            transformInverseRecombined(x, reinterpret_cast<Omn64fc*>(pDst), spec, k, scaled);
        } else {
            recombineInversePermuted(x, pDst, static_cast<const Omn32s*>(spec->bitRev));
            transformPermuted(reinterpret_cast<Omn64fc*>(pDst), spec, k, true, scaled, work);
        }
        common::omnsFree(own);
        return omnStatusOk;
    }
    const double* src = pSrc;
    if (pack) {
        packToPerm(pSrc, pDst, n);
        src = pDst;
    }
    if (order < 4) {
        kRealSmall[1][scaled][order](src, pDst, spec->scale);
        return omnStatusOk;
    }
    recombineInverse(InverseInput{ src, 0, src[0], src[1], t, m }, pDst);
    Omn64fc* z = reinterpret_cast<Omn64fc*>(pDst);
    transform(z, z, spec, order - 1, true, scaled, work);
    common::omnsFree(own);
    return omnStatusOk;
}

} // namespace

const RealSmallFn kRealSmall[2][2][4] = {
    { { real0<false, false>, real1<false, false>, real2<false, false>, real3<false, false> },
      { real0<false, true>, real1<false, true>, real2<false, true>, real3<false, true> } },
    { { real0<true, false>, real1<true, false>, real2<true, false>, real3<true, false> },
      { real0<true, true>, real1<true, true>, real2<true, true>, real3<true, true> } },
};

} // namespace fft

OmnStatus omnsRealFftFwdPerm_64f(const Omn64f* pSrc, Omn64f* pDst, const OmnRealFftSpec* pSpec, Omn8u* pBuf)
{
    return fft::forward(pSrc, pDst, pSpec, pBuf, false);
}

OmnStatus omnsRealFftFwdPack_64f(const Omn64f* pSrc, Omn64f* pDst, const OmnRealFftSpec* pSpec, Omn8u* pBuf)
{
    return fft::forward(pSrc, pDst, pSpec, pBuf, true);
}

OmnStatus omnsRealFftInvPerm_64f(const Omn64f* pSrc, Omn64f* pDst, const OmnRealFftSpec* pSpec, Omn8u* pBuf)
{
    return fft::inverse(pSrc, pDst, pSpec, pBuf, false);
}

OmnStatus omnsRealFftInvPack_64f(const Omn64f* pSrc, Omn64f* pDst, const OmnRealFftSpec* pSpec, Omn8u* pBuf)
{
    return fft::inverse(pSrc, pDst, pSpec, pBuf, true);
}

OMN_COLUMN_END
