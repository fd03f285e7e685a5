/*
 * tables.cpp - every table of the engine, made once per spec at creation.
 *
 * All trigonometry happens here: one sine table per creation, read through
 * the quadrant rule, gives every other table by copying and sign changes,
 * so that a transform holds no sine or cosine call.  Tables hold forward
 * twiddles W(n)^e = e^(-2 pi i e / n); the inverse kernels conjugate in
 * their arithmetic.
 *
 * Every column builds the same layouts, laid out in the order the
 * pair-split passes read them, two neighbouring twiddles side by side; the
 * columns differ only in how a table value is negated (tableNeg) and in
 * the bufSize they report.
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

/* Bit reversal of the middle k - 2 bits, by the carry walk: 2 rev(i) at
   entry i, which the first pass reads in order. */
Omn32s* makeBitRev(int k)
{
    const int64_t n4 = k < 2 ? 0 : (int64_t(1) << k) / 4;
    Omn32s* t = allocTable<Omn32s>(4 * (n4 + 1));
    if (t == nullptr)
        return nullptr;
    t[0] = 0;
    if (n4 == 0)
        return t;
    int64_t j = 0;
    for (int64_t i = 1; i < n4; ++i) {
        int64_t b = n4 / 2;
        while (b > 0 && b <= j) {
            j -= b;
            b >>= 1;
        }
        j += b;
        t[i] = static_cast<Omn32s>(2 * j);
    }
    t[n4] = 0;
    return t;
}

/* Butterfly table of order k: 16 N bytes of sections of orders 4 + k % 2,
   +2, ... k, one per radix-4 pass; a section of order s holds, for t = 0,
   2, 4 ... below 2^s/4, re1 re1' im1 im1' re2 re2' im2 im2' re3 re3' im3
   im3' of t and t + 1. */
double* makeButterfly(int k, const double* sine, int sineOrder)
{
    const int64_t n = int64_t(1) << k;
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

/* Cross table of level l: the twiddles of the level's outer passes in
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
    return omnStatusOk;
}

/* Blocked tables: the leaf table at the bottom of the recursion, then
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

#if OMN_COLUMN_INDEX <= 1
/* px/a6 report the largest column buffer of their levels, 64 << outer
   order bytes; the radix-2 orders 10 and 11 have none, and order 9 and
   below report nothing at all. */
constexpr int64_t reportedScratch(int k)
{
    const int r = kReportSplit[k];
    if (r == 0)
        return 0;
    const int64_t inner = k - r > 9 ? reportedScratch(k - r) : 0;
    return (int64_t(64) << r) > inner ? int64_t(64) << r : inner;
}
#else
/* w7/t7 report the largest tile of their levels, 16 << tile order. */
constexpr int64_t reportedScratch(int k)
{
    if (k <= kWholeInWork)
        return 0;
    const int64_t inner = reportedScratch(k - kReportSplit[k]);
    return (int64_t(16) << kReportTile[k]) > inner ? int64_t(16) << kReportTile[k] : inner;
}
#endif

/* The largest tile of the levels the kernel runs at order k. */
constexpr int runTile(int k)
{
    if (k <= kDirectLimit)
        return 0;
    const int inner = runTile(k - kSplit[k]);
    return kTile[k] > inner ? kTile[k] : inner;
}

constexpr bool tilesFitTheReportedBuffer()
{
    for (int k = kDirectLimit + 1; k <= 30; ++k)
        if ((int64_t(16) << runTile(k)) > reportedScratch(k))
            return false;
    return true;
}
static_assert(tilesFitTheReportedBuffer(), "a tile would outgrow the work memory the column reports");

OmnStatus buildByColumn(OmnFftSpecRecord* spec, int k, const double* sine, int sineOrder)
{
    if (k <= kDirectLimit) {
        if ((spec->leafTwiddle = makeButterfly(k, sine, sineOrder)) == nullptr)
            return omnStatusNoMemory;
    } else if (const OmnStatus st = buildLevelsPairSplit(spec, k, 0, sine, sineOrder)) {
        return st;
    }
#if OMN_COLUMN_INDEX <= 1
    spec->bufSize = k < 10 ? 0 : static_cast<Omn32s>(reportedScratch(k) + 16);
#else
    /* w7/t7: room for the whole transform when it can't run in dst; above
       that the largest tile and one leaf transform. */
    spec->bufSize = k <= kWholeInWork ? (16 << k) + 16 : static_cast<Omn32s>(reportedScratch(k) + kLeafRoom);
#endif
    return omnStatusOk;
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
   -sin(theta); theta = 2 pi k / N.  From k = 1, two neighbours at a time
   (first k, first k+1, second k, second k+1), so that the last group,
   k = N/4 - 1 and N/4, closes the table. */
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
