/*
 * tables.cpp - every table of the engine, made once per spec at creation.
 *
 * All trigonometry happens here: one sine table per creation, read through
 * the quadrant rule, gives every other table by copying and sign changes,
 * so that a transform holds no sine or cosine call.  Tables hold forward
 * twiddles W(n)^e = e^(-2 pi i e / n); the inverse kernels conjugate in
 * their arithmetic.
 *
 * px/a6 and w7/t7 build different layouts of the same values: px/a6 one
 * table per order read at a stride, w7/t7 tables laid out in the order
 * their passes read them, two neighbouring twiddles side by side.
 *
 * Sizes are formed in 64 bits and refused from 2^31 bytes up, which is what
 * a signed 32-bit byte count allows: very large orders end in -9.
 */
#include "core/column.h"

#include <math.h>
#include <string.h>

#include "core/alloc.h"
#include "fft/engine.h"

OMN_COLUMN_BEGIN
namespace fft {

void permuteInPlaceInterleaved(double* d, int k, const Omn32s* bitRev);

namespace {

struct Cx {
    double re, im;
};

/* A table block of bytes bytes, or null when the allocator refuses it or
   the count doesn't fit a signed 32-bit size. */
template <typename T>
T* allocTable(int64_t bytes)
{
    if (bytes < 1 || bytes >= (int64_t(1) << 31))
        return nullptr;
    return static_cast<T*>(omnAllocBytes(static_cast<int>(bytes)));
}

/* W(2^k)^e through the quarter-wave sine table of order sineOrder (k at most
   sineOrder, k at least 2). */
inline Cx quadrant(int64_t e, int k, const double* s, int sineOrder)
{
    const int64_t n = int64_t(1) << k;
    const int64_t q = n / 4;
    const int step = sineOrder - k;
    e &= n - 1;
    auto S = [&](int64_t i) { return s[i << step]; };
    if (e <= q)
        return { S(q - e), tableNeg(S(e)) };
    if (e <= 2 * q)
        return { tableNeg(S(e - q)), tableNeg(S(2 * q - e)) };
    if (e <= 3 * q)
        return { tableNeg(S(3 * q - e)), S(e - 2 * q) };
    return { S(e - 3 * q), S(4 * q - e) };
}

/* Bit reversal of the middle k - 2 bits, by the carry walk.  px/a6 keep
   the swap list (pairs, a zero, the self-reversed values falling, a zero);
   w7/t7 keep 2 rev(i) at entry i, which their first pass reads in order. */
Omn32s* makeBitRev(int k)
{
    const int64_t n4 = k < 2 ? 0 : (int64_t(1) << k) / 4;
    Omn32s* t = allocTable<Omn32s>(4 * (n4 + 1));
    if (t == nullptr)
        return nullptr;
    t[0] = 0;
    if (n4 == 0)
        return t;
    int64_t front = 0, back = n4 - 1, j = 0;
    for (int64_t i = 1; i < n4; ++i) {
        int64_t b = n4 / 2;
        while (b > 0 && b <= j) {
            j -= b;
            b >>= 1;
        }
        j += b;
        if (kPairSplit) {
            t[i] = static_cast<Omn32s>(2 * j);
        } else if (i < j) {
            t[front++] = static_cast<Omn32s>(4 * i);
            t[front++] = static_cast<Omn32s>(4 * j);
        } else if (i == j) {
            t[back--] = static_cast<Omn32s>(4 * i);
        }
    }
    if (!kPairSplit)
        t[front] = 0;
    t[n4] = 0;
    return t;
}

/* Butterfly table of order k.
   px/a6: N/4 + 1 entries of W^t, W^2t, W^3t (re, im each); a pass of span L
   reads every N/L-th entry.
   w7/t7: 16 N bytes of sections of orders 4 + k % 2, +2, ... k, one per
   radix-4 pass; a section of order s holds, for t = 0, 2, 4 ... below 2^s/4,
   re1 re1' im1 im1' re2 re2' im2 im2' re3 re3' im3 im3' of t and t + 1. */
double* makeButterfly(int k, const double* sine, int sineOrder)
{
    const int64_t n = int64_t(1) << k;
    if (!kPairSplit) {
        const int64_t n4 = n / 4;
        double* t = allocTable<double>(48 * (n4 + 1));
        if (t == nullptr)
            return nullptr;
        for (int64_t e = 0; e <= n4; ++e)
            for (int p = 1; p <= 3; ++p) {
                const Cx w = quadrant(p * e, k, sine, sineOrder);
                t[6 * e + 2 * (p - 1)] = w.re;
                t[6 * e + 2 * (p - 1) + 1] = w.im;
            }
        return t;
    }
    double* t = allocTable<double>(n < 9 ? 16 : 16 * n);
    if (t == nullptr)
        return nullptr;
    if (n < 9) {
        memset(t, 0, 16);
        return t;
    }
    double* o = t;
    for (int s = 4 + (k & 1); s <= k; s += 2)
        for (int64_t e = 0; e < (int64_t(1) << s) / 4; e += 2)
            for (int p = 1; p <= 3; ++p) {
                const Cx a = quadrant(p * e, s, sine, sineOrder), b = quadrant(p * (e + 1), s, sine, sineOrder);
                o[0] = a.re;
                o[1] = b.re;
                o[2] = a.im;
                o[3] = b.im;
                o += 4;
            }
    /* The sections leave the end of the block unused; it is cleared so
       that every byte of a table is defined. */
    memset(o, 0, static_cast<size_t>(reinterpret_cast<char*>(t + 2 * n) - reinterpret_cast<char*>(o)));
    return t;
}

/* px/a6: quarter circle W(N)^t, t below N/4, for the radix-2 top passes. */
double* makeQuad(int k, const double* sine, int sineOrder)
{
    const int64_t n4 = (int64_t(1) << k) / 4;
    double* t = allocTable<double>(n4 < 1 ? 16 : 16 * n4);
    if (t == nullptr)
        return nullptr;
    for (int64_t e = 0; e < n4; ++e) {
        const Cx w = quadrant(e, k, sine, sineOrder);
        t[2 * e] = w.re;
        t[2 * e + 1] = w.im;
    }
    return t;
}

void raiseBufSize(OmnFftSpecRecord* spec, int64_t bytes)
{
    if (spec->bufSize < bytes)
        spec->bufSize = static_cast<Omn32s>(bytes);
}

/* px/a6 cross table of level l (order k, outer order r): R rows of C
   columns, by groups of four columns: for each row p, W(N)^(g q) for the
   four columns g of the group, q the bit reversal of p.  Each column's R
   values are made in natural row order and bit-reversed in place with the
   engine's own permutation; that scratch (64 << r bytes) is the size a
   transform later needs for its column buffer. */
OmnStatus makeCrossPx(OmnFftSpecRecord* spec, int l, int k, int r, const double* sine, int sineOrder)
{
    const int64_t rows = int64_t(1) << r, cols = int64_t(1) << (k - r);
    Cx* table = allocTable<Cx>(16 * (rows * cols));
    if (table == nullptr)
        return omnStatusNoMemory;
    spec->levelCross[l] = table;
    Cx* tmp = allocTable<Cx>(64 * rows);
    Omn32s* rev = tmp != nullptr ? makeBitRev(r) : nullptr;
    if (rev == nullptr) {
        common::omnsFree(tmp);
        return omnStatusNoMemory;
    }
    for (int64_t j = 0; j < cols; j += 4) {
        for (int g = 0; g < 4; ++g) {
            for (int64_t p = 0; p < rows; ++p)
                tmp[g * rows + p] = quadrant((j + g) * p, k, sine, sineOrder);
            permuteInPlaceInterleaved(reinterpret_cast<double*>(tmp + g * rows), r, rev);
        }
        for (int64_t p = 0; p < rows; ++p)
            for (int g = 0; g < 4; ++g)
                table[j * rows + 4 * p + g] = tmp[g * rows + p];
    }
    common::omnsFree(rev);
    common::omnsFree(tmp);
    raiseBufSize(spec, 64 * rows);
    return omnStatusOk;
}

/* w7/t7 cross table of level l: the twiddles of the level's outer passes in
   the order the tiles read them.  For each tile (T columns from a), each
   radix-4 pass of span order v, each row offset b within a quarter, each
   column pair u: for the powers 1, 2, 3, re re' im im' of W(2^v)^(p x) and
   W(2^v)^(p (x + 1)), x = a + b C + u.  An odd outer order ends with a
   radix-2 pass of W(N)^x, W(N)^(x + 1). */
OmnStatus makeCrossPairSplit(OmnFftSpecRecord* spec, int l, int k, int r, int tile, const double* sine,
                             int sineOrder)
{
    const int c = k - r;
    const int64_t n = int64_t(1) << k, cols = int64_t(1) << c, span = int64_t(1) << (tile - r);
    double* const table = allocTable<double>(16 * n);
    if (table == nullptr)
        return omnStatusNoMemory;
    spec->levelCross[l] = table;
    double* o = table;
    for (int64_t a = 0; a < cols; a += span) {
        for (int v = c + 2; v <= k; v += 2)
            for (int64_t b = 0; b < (int64_t(1) << (v - 2 - c)); ++b)
                for (int64_t u = 0; u < span; u += 2) {
                    const int64_t x = a + b * cols + u;
                    for (int p = 1; p <= 3; ++p) {
                        const Cx w0 = quadrant(p * x, v, sine, sineOrder), w1 = quadrant(p * (x + 1), v, sine, sineOrder);
                        o[0] = w0.re;
                        o[1] = w1.re;
                        o[2] = w0.im;
                        o[3] = w1.im;
                        o += 4;
                    }
                }
        if (r & 1)
            for (int64_t b = 0; b < (int64_t(1) << (r - 1)); ++b)
                for (int64_t u = 0; u < span; u += 2) {
                    const int64_t x = a + b * cols + u;
                    const Cx w0 = quadrant(x, k, sine, sineOrder), w1 = quadrant(x + 1, k, sine, sineOrder);
                    o[0] = w0.re;
                    o[1] = w1.re;
                    o[2] = w0.im;
                    o[3] = w1.im;
                    o += 4;
                }
    }
    memset(o, 0, static_cast<size_t>(reinterpret_cast<char*>(table + 2 * n) - reinterpret_cast<char*>(o)));
    raiseBufSize(spec, int64_t(16) << tile);
    return omnStatusOk;
}

/* px/a6 blocked tables of a level (core order k of 10 and up). */
OmnStatus buildLevelsPx(OmnFftSpecRecord* spec, int k, int l, const double* sine, int sineOrder)
{
    const int r = kSplit[k];
    const int c = k - r;
    const int radix2 = r == 0 ? k : (c > kPxLeafOrder && kSplit[c] == 0 ? c : 0);
    if (radix2 != 0) {
        if ((spec->quadTwiddle = makeQuad(radix2, sine, sineOrder)) == nullptr)
            return omnStatusNoMemory;
        if ((spec->leafTwiddle = makeButterfly(kPxLeafOrder, sine, sineOrder)) == nullptr)
            return omnStatusNoMemory;
        if (r == 0)
            return omnStatusOk;
    } else if (c <= kPxLeafOrder) {
        if ((spec->leafTwiddle = makeButterfly(c, sine, sineOrder)) == nullptr)
            return omnStatusNoMemory;
    } else if (const OmnStatus st = buildLevelsPx(spec, c, l + 1, sine, sineOrder)) {
        return st;
    }
    if ((spec->levelTwiddle[l] = makeButterfly(r, sine, sineOrder)) == nullptr)
        return omnStatusNoMemory;
    return makeCrossPx(spec, l, k, r, sine, sineOrder);
}

/* w7/t7 blocked tables: the leaf table at the bottom of the recursion, then
   each level's cross table. */
OmnStatus buildLevelsPairSplit(OmnFftSpecRecord* spec, int k, int l, const double* sine, int sineOrder)
{
    const int r = kSplit[k];
    const int c = k - r;
    if (c > kDirectLimit) {
        if (const OmnStatus st = buildLevelsPairSplit(spec, c, l + 1, sine, sineOrder))
            return st;
    } else if ((spec->leafTwiddle = makeButterfly(c, sine, sineOrder)) == nullptr) {
        return omnStatusNoMemory;
    }
    return makeCrossPairSplit(spec, l, k, r, kTile[k], sine, sineOrder);
}

OmnStatus buildByColumn(OmnFftSpecRecord* spec, int k, const double* sine, int sineOrder)
{
    if (k <= kDirectLimit) {
        if ((spec->leafTwiddle = makeButterfly(k, sine, sineOrder)) == nullptr)
            return omnStatusNoMemory;
        /* w7/t7: room for the whole transform when it can't run in dst. */
        spec->bufSize = kPairSplit ? (16 << k) + 16 : 0;
        return omnStatusOk;
    }
    spec->bufSize = 0;
    if (!kPairSplit) {
        const OmnStatus st = buildLevelsPx(spec, k, 0, sine, sineOrder);
        spec->bufSize += 16;
        return st;
    }
    const OmnStatus st = buildLevelsPairSplit(spec, k, 0, sine, sineOrder);
    spec->bufSize += kLeafRoom;
    return st;
}

} // namespace

double* makeSineTable(int m)
{
    const int64_t n = int64_t(1) << m;
    double* s = allocTable<double>(8 * (n / 4 + 1));
    if (s == nullptr)
        return nullptr;
    /* Sine up to the eighth of the circle, cosine of the complement above
       it: each call stays where its argument is small and exact. */
    const double d = 6.283185307179586 / static_cast<double>(n);
    for (int64_t i = 0; i <= n / 8; ++i)
        s[i] = sin(static_cast<double>(i) * d);
    for (int64_t i = n / 8 + 1; i <= n / 4; ++i)
        s[i] = cos(static_cast<double>(n / 4 - i) * d);
    return s;
}

OmnStatus buildComplexTables(OmnFftSpecRecord* spec, int k, const double* sine, int sineOrder)
{
    if ((spec->bitRev = makeBitRev(k)) == nullptr)
        return omnStatusNoMemory;
    double* own = nullptr;
    if (sine == nullptr) {
        if ((own = makeSineTable(k)) == nullptr)
            return omnStatusNoMemory;
        sine = own;
        sineOrder = k;
    }
    const OmnStatus st = buildByColumn(spec, k, sine, sineOrder);
    common::omnsFree(own);
    return st;
}

/* Recombination of a real transform of N = 2^m points, for k below N/4:
   forward A = cos(theta) / 2, B = (1 - sin(theta)) / 2; inverse cos(theta),
   -sin(theta); theta = 2 pi k / N.  px/a6 store the pairs in order; w7/t7
   from k = 1, two neighbours at a time (first k, first k+1, second k,
   second k+1), so that the last group, k = N/4 - 1 and N/4, closes the
   table. */
OmnStatus buildRecombTables(OmnFftSpecRecord* spec, int m, const double* s)
{
    const int64_t n4 = (int64_t(1) << m) / 4;
    /* Built from order 4 up (smaller real specs hold no table), so N/4 is
       at least 4 and even. */
    const int64_t bytes = 16 * n4;
    double* f = allocTable<double>(bytes);
    if ((spec->recombFwd = f) == nullptr)
        return omnStatusNoMemory;
    double* v = allocTable<double>(bytes);
    if ((spec->recombInv = v) == nullptr)
        return omnStatusNoMemory;
    auto fwd = [&](int64_t k) { return Cx{ s[n4 - k] * 0.5, s[k] * -0.5 + 0.5 }; };
    auto inv = [&](int64_t k) { return Cx{ s[n4 - k], tableNeg(s[k]) }; };
    if (!kPairSplit) {
        for (int64_t k = 0; k < n4; ++k) {
            f[2 * k] = fwd(k).re;
            f[2 * k + 1] = fwd(k).im;
            v[2 * k] = inv(k).re;
            v[2 * k + 1] = inv(k).im;
        }
        return omnStatusOk;
    }
    for (int64_t k = 1, o = 0; k < n4; k += 2, o += 4) {
        const Cx f0 = fwd(k), f1 = fwd(k + 1), v0 = inv(k), v1 = inv(k + 1);
        f[o] = f0.re;
        f[o + 1] = f1.re;
        f[o + 2] = f0.im;
        f[o + 3] = f1.im;
        v[o] = v0.re;
        v[o + 1] = v1.re;
        v[o + 2] = v0.im;
        v[o + 3] = v1.im;
    }
    return omnStatusOk;
}

} // namespace fft
OMN_COLUMN_END
