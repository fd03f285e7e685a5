/*
 * kernel.cpp - the complex transform in pair-split form (fft/pair.h).  The
 * first pass turns interleaved input into pairs, and the last pass turns
 * the data back into interleaved form on the way to dst.
 *
 *   fused kernel    up to the column's direct limit, straight from src to
 *                   dst: the first pass gathers through the bit-reversal
 *                   table, so no separate permutation runs.
 *   leaf kernel     the same over rows that are already permuted, leaving
 *                   pair-split form for the level above.
 *   blocked driver  rows by the leaf kernel, then tiles of adjacent columns
 *                   copied to the work buffer, which run all the level's
 *                   outer passes with the cross table read in order.
 *
 * Loads and stores are unaligned: on the processors of the SSE2 columns
 * they cost the same on aligned data, and they let the kernels run in dst
 * whatever its alignment.
 *
 * Every column runs this code.  w7/t7 hold two doubles in an SSE2
 * register; px/a6 in a plain structure, which the compiler may keep in a
 * vector register where the target has one (the portable column carries
 * no intrinsics).
 */
#include "core/column.h"

#include <string.h>

#include "fft/codelet.h"
#include "fft/engine.h"
#include "fft/pair.h"
#include "fft/recombine.h"

OMN_COLUMN_BEGIN
namespace fft {

namespace {

/* ---- interleaved complex in one V (first pass) -------------------------- */

/* -i z forward, +i z inverse. */
template <bool Inv>
inline V rotI(V z) { return Inv ? negLo(swapHalves(z)) : negHi(swapHalves(z)); }

/* Four-point DFT of natural-order inputs. */
template <bool Inv>
inline void dft4(V x0, V x1, V x2, V x3, V& y0, V& y1, V& y2, V& y3)
{
    const V a = add(x0, x2), b = sub(x0, x2), c = add(x1, x3), d = rotI<Inv>(sub(x1, x3));
    y0 = add(a, c);
    y2 = sub(a, c);
    y1 = add(b, d);
    y3 = sub(b, d);
}

/* z times W(8)^1 and W(8)^3 (conjugates inverse), with h = (c, c). */
template <bool Inv>
inline V mulW8(V z, V h)
{
    const V s = swapHalves(z);   /* (im, re) */
    /* forward: ((re + im) c, (im - re) c); inverse: ((re - im) c, (im + re) c) */
    return Inv ? mul(add(z, negLo(s)), h) : mul(add(z, negHi(s)), h);
}
template <bool Inv>
inline V mulW83(V z, V h)
{
    /* W(8)^3 = -i W(8) forward, +i conj(W(8)) inverse */
    return rotI<Inv>(mulW8<Inv>(z, h));
}

/* ---- the first pass ----------------------------------------------------- */

/* Writes four interleaved results y0..y3 to positions 0..3 of w in
   pair-split form. */
inline void storeSplit4(double* w, V y0, V y1, V y2, V y3)
{
    st(w, unpackLo(y0, y1));
    st(w + 2, unpackHi(y0, y1));
    st(w + 4, unpackLo(y2, y3));
    st(w + 6, unpackHi(y2, y3));
}

template <int R>
using Radix = std::integral_constant<int, R>;

/* A first-pass group: the DFT of 4 natural-order inputs x(0) to x(3), or
   of 8 with h = (cos pi/4, cos pi/4); results to w in pair-split form.
   All inputs are read before the first store, so x may read the places
   the group writes. */
template <bool Inv, typename X>
inline void group4(double* w, X x)
{
    V y0, y1, y2, y3;
    dft4<Inv>(x(0), x(1), x(2), x(3), y0, y1, y2, y3);
    storeSplit4(w, y0, y1, y2, y3);
}

template <bool Inv, typename X>
inline void group8(double* w, X x, V h)
{
    V e0, e1, e2, e3, o0, o1, o2, o3;
    const V x0 = x(0), x1 = x(1), x2 = x(2), x3 = x(3), x4 = x(4), x5 = x(5), x6 = x(6), x7 = x(7);
    dft4<Inv>(x0, x2, x4, x6, e0, e1, e2, e3);
    dft4<Inv>(x1, x3, x5, x7, o0, o1, o2, o3);
    o1 = mulW8<Inv>(o1, h);
    o2 = rotI<Inv>(o2);
    o3 = mulW83<Inv>(o3, h);
    storeSplit4(w, add(e0, o0), add(e1, o1), add(e2, o2), add(e3, o3));
    storeSplit4(w + 8, sub(e0, o0), sub(e1, o1), sub(e2, o2), sub(e3, o3));
}

/* The order in which the first stages take their groups: step b of the
   walk runs group order(Radix<R>, b).  inIndexOrder runs them by index,
   so that the outputs go out in order; sourceOrder runs them by the place
   of their first input, so that the inputs come in order instead.  The
   results are the same either way. */
struct InIndexOrder {
    template <typename R>
    int64_t operator()(R, int64_t b) const { return b; }
};
constexpr InIndexOrder inIndexOrder{};

/* Group i of R inputs starts at source place rev(i) on k - log2 R bits,
   which is entry (R/4) i of a bit-reversal table on k - 2 bits, and rev is
   its own inverse: so the group that starts at place b is entry (R/4) b
   again.  For rows of a blocked level the core's own table serves, read
   at entry i << shift. */
inline auto sourceOrder(const Omn32s* rev, int shift)
{
    return [rev, shift](auto R, int64_t b) {
        return int64_t(static_cast<uint32_t>(rev[((R / 4) * b) << shift]) / 2);
    };
}

/* First pass: the DFT of 4 (even k) or 8 (odd k) natural-order inputs per
   group, input j of group i at at(Radix<R>, i, j); results to w in
   pair-split form, group i at its place i whatever the order of the walk. */
template <bool Inv, typename In, typename Order>
void firstPass(double* w, int k, In at, Order order)
{
    const int64_t n = int64_t(1) << k;
    if ((k & 1) == 0) {
        for (int64_t b = 0; b < n / 4; ++b) {
            const int64_t i = order(Radix<4>{}, b);
            group4<Inv>(w + 8 * i, [&](int j) { return ld(at(Radix<4>{}, i, j)); });
        }
        return;
    }
    const V h = set1(0.7071067811865476);
    for (int64_t b = 0; b < n / 8; ++b) {
        const int64_t i = order(Radix<8>{}, b);
        group8<Inv>(w + 16 * i, [&](int j) { return ld(at(Radix<8>{}, i, j)); }, h);
    }
}

/* The first pass of a real inverse's core, R = 4 or 8 by the parity of
   its order, computing its inputs by the recombination instead of reading
   them (forEachMirrorGroup): the recombined values never go to memory. */
template <bool Inv, int R, bool BySource>
void firstPassRecombined(double* w, const InverseInput& x, const Omn32s* rev)
{
    const V h = set1(0.7071067811865476);
    forEachMirrorGroup<R, BySource>(x, rev, [&](size_t i, const double* z) {
        auto val = [&](int j) { return ld(z + 2 * j); };
        if (R == 4)
            group4<Inv>(w + 2 * R * i, val);
        else
            group8<Inv>(w + 2 * R * i, val, h);
    });
}

/* The whole transform of order 4 or 5 by the scalar codelet of L = 16 or
   32 points, input j at in(Radix<L>, 0, j), the result interleaved to
   out.  All inputs are loaded before the first store, so out may be the
   input. */
template <bool Inv, int L, typename In>
__attribute__((flatten)) void codeletWhole(double* out, In in)
{
    using codelet::Cx;
    const auto load = [&](int j) {
        const double* p = in(Radix<L>{}, 0, j);
        return Cx{ p[0], p[1] };
    };
    const auto store = [&](int m, Cx y) {
        out[2 * m] = y.r;
        out[2 * m + 1] = y.i;
    };
    codelet::dft<L, Inv, double>(load, store);
}
template <bool Inv, typename In>
void codeletWhole(double* out, int k, In in)
{
    /* At order 6 the kernel's passes beat a 64-point codelet. */
    static_assert(kWholeCodeletsTo <= 5, "codelets stop at 32 points");
    if (k == 4)
        codeletWhole<Inv, 16>(out, in);
    else
        codeletWhole<Inv, 32>(out, in);
}

/* The first four stages of an even order k by 16-point codelets, two
   groups at a time: group g in the low lanes and group g + G/2 in the high
   lanes (G groups), so that the DFT runs on pairs with no shuffle.  The
   loads transpose; each output lane goes to its pair-split place with an
   8-byte store.  Input j of group g at in(Radix<16>, g, j).  The two
   groups of a step start at neighbouring places, 2 rev(g) and
   2 rev(g) + 1, which makes them one group of 32 for the order of the
   walk. */
template <bool Inv, typename In, typename Order>
__attribute__((flatten)) void codeletPairs(double* w, int k, In in, Order order)
{
    using C = codelet::CxT<V>;
    const int64_t n = int64_t(1) << k, half = n / 32;
    for (int64_t b = 0; b < half; ++b) {
        const int64_t g = order(Radix<32>{}, b);
        double* o0 = w + 32 * g;
        double* o1 = o0 + n;
        codelet::dft16<Inv, V>(
            [&](int j) {
                const V a = ld(in(Radix<16>{}, g, j)), b = ld(in(Radix<16>{}, g + half, j));
                return C{ unpackLo(a, b), unpackHi(a, b) };
            },
            [&](int m, C y) {
                const int at = 4 * (m / 2) + (m & 1);
                pd::st(o0 + at, pd::lo(y.r));
                pd::st(o0 + at + 2, pd::lo(y.i));
                pd::st(o1 + at, pd::hi(y.r));
                pd::st(o1 + at + 2, pd::hi(y.i));
            });
    }
}

/* The first stages of a kernel of order k: the radix-4/8 pass, or, where
   the column runs them, the 16-point codelets.  Returns the order of the
   first radix-4 pass still to run (above k when nothing is left, in which
   case the result is interleaved in out).  Whole: the column's whole-
   transform codelets may run (not in the rows of the blocked levels,
   which are never that short, so that they don't carry the code). */
template <bool Inv, bool Whole, typename In, typename Order = InIndexOrder>
int firstStages(double* w, double* out, int k, In in, Order order = inIndexOrder)
{
    if constexpr (Whole) {
        if (k <= kWholeCodeletsTo) {
            codeletWhole<Inv>(out, k, in);
            return k + 1;
        }
    }
    /* Only where the column runs them, so that the others don't carry
       their code. */
    if constexpr (kPairCodeletsFrom <= 30) {
        if ((k & 1) == 0 && k >= kPairCodeletsFrom) {
            codeletPairs<Inv>(w, k, in, order);
            return 6;
        }
    }
    firstPass<Inv>(w, k, in, order);
    return 4 + (k & 1);
}

/* ---- radix-4 passes in pair-split form ---------------------------------- */

/* The twiddles of one table entry (six pairs): a1 of the butterfly takes
   the second power, a2 the first, a3 the third (the quarters stand in
   bit-reversed order).  Read into locals, they stay in registers where a
   loop reuses them: read through the table pointer, the compiler would
   read them again after every store, which might write the table. */
struct Twiddles {
    V r1, i1, r2, i2, r3, i3;
};
inline Twiddles loadTwiddles(const double* t)
{
    return Twiddles{ ld(t + 4), ld(t + 6), ld(t), ld(t + 2), ld(t + 8), ld(t + 10) };
}

/* One radix-4 butterfly on a pair. */
template <bool Inv>
inline void butterfly(Split& a0, Split& a1, Split& a2, Split& a3, const Twiddles& w)
{
    const Split u1 = cmul<Inv>(a1, w.r1, w.i1);
    const Split u2 = cmul<Inv>(a2, w.r2, w.i2);
    const Split u3 = cmul<Inv>(a3, w.r3, w.i3);
    const Split s0{ add(a0.re, u1.re), add(a0.im, u1.im) }, d0{ sub(a0.re, u1.re), sub(a0.im, u1.im) };
    const Split s1{ add(u2.re, u3.re), add(u2.im, u3.im) }, d1{ sub(u2.re, u3.re), sub(u2.im, u3.im) };
    a0 = Split{ add(s0.re, s1.re), add(s0.im, s1.im) };
    a2 = Split{ sub(s0.re, s1.re), sub(s0.im, s1.im) };
    if (!Inv) {
        a1 = Split{ add(d0.re, d1.im), sub(d0.im, d1.re) };
        a3 = Split{ sub(d0.re, d1.im), add(d0.im, d1.re) };
    } else {
        a1 = Split{ sub(d0.re, d1.im), add(d0.im, d1.re) };
        a3 = Split{ add(d0.re, d1.im), sub(d0.im, d1.re) };
    }
}

/* A radix-4 pass of length 2^s over n points in w, with the table section
   of order s.  The last pass (2^s = n) may store interleaved to out.

   The walk takes the groups of a span of kTwiddleSpan points (16 KiB) side
   by side: each table entry is read once for the span and its twiddles
   stay in registers across the groups, which leaves the loads to the
   data.  The span keeps the lines of one entry's butterflies in the
   first-level cache for the next entry, which takes the other half of
   each: over the whole array, groups 4 KiB or more apart fill the same
   cache sets, and order 13 took three times as long.  Spans of 512 to
   2048 points measured the same. */
constexpr int64_t kTwiddleSpan = 1024;

template <bool Inv, bool Interleave>
void pass(double* w, int64_t n, int s, const double* sec, double* out)
{
    const int64_t len = int64_t(1) << s, q = len / 4;
    const int64_t span = len < kTwiddleSpan ? kTwiddleSpan : len;
    for (int64_t g0 = 0; g0 < n; g0 += span) {
        const int64_t g1 = g0 + span < n ? g0 + span : n;
        const double* t = sec;
        for (int64_t j = 0; j < q; j += 2, t += 12) {
            const Twiddles tw = loadTwiddles(t);
            for (int64_t g = g0; g < g1; g += len) {
                double* p = w + 2 * (g + j);
                double* o = out + 2 * (g + j);
                Split a0 = load(p), a1 = load(p + 2 * q), a2 = load(p + 4 * q), a3 = load(p + 6 * q);
                butterfly<Inv>(a0, a1, a2, a3, tw);
                if (Interleave) {
                    storeInterleaved(o, a0);
                    storeInterleaved(o + 2 * q, a1);
                    storeInterleaved(o + 4 * q, a2);
                    storeInterleaved(o + 6 * q, a3);
                } else {
                    store(o, a0);
                    store(o + 2 * q, a1);
                    store(o + 4 * q, a2);
                    store(o + 6 * q, a3);
                }
            }
        }
    }
}

/* Pair-split form to interleaved in place: the middle two doubles of each
   pair change places. */
inline void interleavePairs(double* d, int64_t n)
{
    for (int64_t i = 0; i < 2 * n; i += 4) {
        const double im0 = d[i + 1], re1 = d[i + 2];
        d[i + 1] = re1;
        d[i + 2] = im0;
    }
}

/* The passes after the first stages, from order s: the sections in order
   (those below s skipped), the last one writing out (interleaved or
   pair-split).  Nothing runs when s is above k. */
template <bool Inv>
void passes(double* w, int k, int s, const double* tw, double* out, bool interleave)
{
    const int64_t n = int64_t(1) << k;
    if (s > k)
        return;
    for (int skip = 4 + (k & 1); skip < s; skip += 2)
        tw += 3 * (int64_t(1) << skip) / 2;
    for (; s < k; s += 2) {
        pass<Inv, false>(w, n, s, tw, w);
        tw += 3 * (int64_t(1) << s) / 2;   /* 2^s / 4 entries of six doubles */
    }
    if (!interleave) {
        pass<Inv, false>(w, n, k, tw, out);
    } else if (kInterleaveInLastPass) {
        pass<Inv, true>(w, n, k, tw, out);
    } else {
        pass<Inv, false>(w, n, k, tw, out);
        interleavePairs(out, n);
    }
}

/* Fused kernel: src (natural order) to dst, order 4 up to the direct limit.
   The work area is dst when the arrays differ, else the buffer.  A group
   of R inputs starts at the bit reversal of its index on k - log2 R bits,
   which is the table's entry (R / 4) g, and steps by N / R. */
template <bool Inv>
void fused(const Omn64fc* src, Omn64fc* dst, int k, const OmnFftSpecRecord* spec, double* work)
{
    const int64_t n = int64_t(1) << k;
    const Omn32s* rev = static_cast<const Omn32s*>(spec->bitRev);
    const double* s = reinterpret_cast<const double*>(src);
    double* w = src != dst ? reinterpret_cast<double*>(dst) : work;
    double* out = reinterpret_cast<double*>(dst);
    const auto at = [&](auto R, int64_t g, int j) { return s + rev[(R / 4) * g] + 2 * j * (n / R); };
    const int next = k >= kSourceOrderFrom ? firstStages<Inv, false>(w, out, k, at, sourceOrder(rev, 0))
                                           : firstStages<Inv, true>(w, out, k, at);
    passes<Inv>(w, k, next, static_cast<const double*>(spec->leafTwiddle), out, true);
}

/* The fused kernel of one small order, compiled with its order known, so
   that the compiler lays out its short loops straight. */
template <bool Inv, int K>
__attribute__((flatten)) void fusedSmall(const Omn64fc* src, Omn64fc* dst, const OmnFftSpecRecord* spec, double* work)
{
    fused<Inv>(src, dst, K, spec, work);
}

/* The fused kernel, through fusedSmall at orders 4 and 5 where the pass
   kernel runs them (w7/t7: order 4 in 16 ns instead of 21; the codelets
   of px/a6 gain nothing by it). */
template <bool Inv>
void fusedAny(const Omn64fc* src, Omn64fc* dst, int k, const OmnFftSpecRecord* spec, double* work)
{
    if constexpr (kWholeCodeletsTo < 4) {
        if (k == 4)
            return fusedSmall<Inv, 4>(src, dst, spec, work);
        if (k == 5)
            return fusedSmall<Inv, 5>(src, dst, spec, work);
    }
    fused<Inv>(src, dst, k, spec, work);
}

/* j with its low log2 R bits reversed. */
constexpr int reverseLow(int j, int r)
{
    int v = 0;
    for (int b = 1; b < r; b <<= 1, j >>= 1)
        v = (v << 1) | (j & 1);
    return v;
}

/* Leaf kernel over an already permuted row of order k, in place; the
   result stays in pair-split form unless interleave is set.  Input j of
   group g stands at R g + the reversal of j. */
template <bool Inv>
void leaf(double* d, int k, const double* tw, bool interleave = false)
{
    const int next = firstStages<Inv, false>(d, d, k, [&](auto R, int64_t g, int j) { return d + 2 * (R * g + reverseLow(j, R)); });
    passes<Inv>(d, k, next, tw, d, interleave);
}

/* Leaf kernel that gathers its row straight from the natural-order source
   instead of from permuted data: row p of a level of outer order r is the
   transform of x[s + R m], s the bit reversal of p on r bits.  The core's
   own bit-reversal table serves the row's order c, since
   rev_(k-2)(i 2^r) = rev_(c-2)(i).  This spares the separate permutation
   of the whole array when src and dst differ. */
template <bool Inv>
void leafGather(const double* src, int64_t stride, double* out, int c, const double* tw, const Omn32s* rev, int shift)
{
    const int64_t cn = int64_t(1) << c;
    const int next = firstStages<Inv, false>(out, out, c, [&](auto R, int64_t g, int j) {
        return src + stride * (rev[((R / 4) * g) << shift] + 2 * j * (cn / R));
    }, sourceOrder(rev, shift));
    passes<Inv>(out, c, next, tw, out, false);
}

inline int64_t reverseBits(int64_t v, int bits)
{
    int64_t r = 0;
    for (int b = 0; b < bits; ++b, v >>= 1)
        r = (r << 1) | (v & 1);
    return r;
}

/* The bit reversal on k bits in place, by tiles through buf (room for
   2^(2t+1) values).  Place x = (a, b, c), a and c of t bits and b the
   k - 2t bits between, takes the value of (rev c, rev b, rev a): so the
   2^2t places of one b, 2^t runs of 2^t neighbours, take the values of
   the places of rev b, transposed with both indices reversed.  Each pair
   of middles b, rev b is copied into buf whole and written back from it,
   so every access to the array is a run of 2^t neighbours, where a swap
   of single values would touch two cache lines for every value. */
void reverseByTiles(Omn64fc* d, int k, int t, Omn64fc* buf)
{
    const int mid = k - 2 * t;
    const int64_t run = int64_t(1) << t, stride = int64_t(1) << (t + mid);
    int revT[32];
    for (int i = 0; i < run; ++i)
        revT[i] = static_cast<int>(reverseBits(i, t));
    Omn64fc* const t0 = buf;
    Omn64fc* const t1 = buf + run * run;
    for (int64_t b = 0; b < (int64_t(1) << mid); ++b) {
        const int64_t rb = reverseBits(b, mid);
        if (rb < b)
            continue;   /* done with its partner */
        Omn64fc* const p0 = d + (b << t);
        Omn64fc* const p1 = d + (rb << t);
        for (int64_t a = 0; a < run; ++a)
            memcpy(t0 + a * run, p0 + a * stride, sizeof(Omn64fc) * run);
        const Omn64fc* const from1 = rb == b ? t0 : t1;
        if (rb != b)
            for (int64_t a = 0; a < run; ++a)
                memcpy(t1 + a * run, p1 + a * stride, sizeof(Omn64fc) * run);
        for (int64_t a = 0; a < run; ++a)
            for (int64_t c = 0; c < run; ++c)
                p0[a * stride + c] = from1[revT[c] * run + revT[a]];
        if (rb != b)
            for (int64_t a = 0; a < run; ++a)
                for (int64_t c = 0; c < run; ++c)
                    p1[a * stride + c] = t0[revT[c] * run + revT[a]];
    }
}

/* Bit reversal with the w7/t7 table: element 4i + m comes from
   rev(i) + rev2(m) N/4.  In place it goes by tiles where the work memory
   (room bytes) holds two of at least 8 by 8 values, else by swaps (which
   is as fast where the array stays in the cache). */
void permute(const Omn64fc* src, Omn64fc* dst, int k, const Omn32s* rev, double* work, int64_t room)
{
    const int64_t n = int64_t(1) << k, q = n / 4;
    const int64_t off[4] = { 0, 2 * q, q, 3 * q };
    if (src == dst && work != nullptr) {
        int t = 0;
        while (t < 5 && 2 * (t + 1) <= k && (int64_t(sizeof(Omn64fc)) << (2 * (t + 1) + 1)) <= room)
            ++t;
        if (t >= 3) {
            reverseByTiles(dst, k, t, reinterpret_cast<Omn64fc*>(work));
            return;
        }
    }
    if (src != dst) {
        for (int64_t i = 0; i < q; ++i) {
            const Omn64fc* s = src + rev[i] / 2;
            Omn64fc* d = dst + 4 * i;
            d[0] = s[off[0]];
            d[1] = s[off[1]];
            d[2] = s[off[2]];
            d[3] = s[off[3]];
        }
        return;
    }
    for (int64_t i = 0; i < q; ++i)
        for (int m = 0; m < 4; ++m) {
            const int64_t a = 4 * i + m, b = rev[i] / 2 + off[m];
            if (a < b) {
                const Omn64fc t = dst[a];
                dst[a] = dst[b];
                dst[b] = t;
            }
        }
}

/* One level of blocking over permuted data of order k (interleaved in):
   rows by the leaf kernel (scaled there) or a deeper level, then tiles of
   T adjacent columns through the buffer.  Level 0 leaves interleaved data,
   deeper levels pair-split data for the level above. */
template <bool Inv>
void blocked(double* d, int k, int l, const OmnFftSpecRecord* spec, bool scaled, double* buf,
             const Omn64fc* gather = nullptr)
{
    /* The split tables reach order 30 in three levels. */
    if (l >= kOmnFftMaxLevels)
        __builtin_unreachable();
    const int r = kSplit[k];
    const int c = k - r;
    const int64_t rows = int64_t(1) << r, cols = int64_t(1) << c, span = int64_t(1) << (kTile[k] - r);
    if (gather != nullptr) {
        /* Rows in the order of their source offset s, so that neighbouring
           rows share the source's cache lines. */
        const double* tw = static_cast<const double*>(spec->leafTwiddle);
        const Omn32s* rev = static_cast<const Omn32s*>(spec->bitRev);
        for (int64_t s = 0; s < rows; ++s) {
            double* row = d + 2 * reverseBits(s, r) * cols;
            leafGather<Inv>(reinterpret_cast<const double*>(gather + s), rows, row, c, tw, rev, r);
            if (scaled)
                scaleDoubles(row, 2 * cols, spec->scale);
        }
    }
    for (int64_t p = 0; p < rows && gather == nullptr; ++p) {
        double* row = d + 2 * p * cols;
        if (c <= kDirectLimit) {
            leaf<Inv>(row, c, static_cast<const double*>(spec->leafTwiddle));
            if (scaled)
                scaleDoubles(row, 2 * cols, spec->scale);
        } else {
            blocked<Inv>(row, c, l + 1, spec, scaled, buf);
        }
    }
    const double* t = static_cast<const double*>(spec->levelCross[l]);
    const int64_t rowDoubles = 2 * span;
    for (int64_t a = 0; a < cols; a += span) {
        for (int64_t p = 0; p < rows; ++p)
            memcpy(buf + p * rowDoubles, d + 2 * (p * cols + a), sizeof(double) * rowDoubles);
        for (int v = c + 2; v <= k; v += 2) {
            const int64_t q = int64_t(1) << (v - 2 - c);   /* rows per quarter */
            for (int64_t b = 0; b < q; ++b)
                for (int64_t u = 0; u < span; u += 2, t += 12) {
                    const Twiddles tw = loadTwiddles(t);
                    for (int64_t g = 0; g < rows; g += 4 * q) {
                        double* p0 = buf + (g + b) * rowDoubles + 2 * u;
                        double* p1 = p0 + q * rowDoubles;
                        double* p2 = p1 + q * rowDoubles;
                        double* p3 = p2 + q * rowDoubles;
                        Split a0 = load(p0), a1 = load(p1), a2 = load(p2), a3 = load(p3);
                        butterfly<Inv>(a0, a1, a2, a3, tw);
                        store(p0, a0);
                        store(p1, a1);
                        store(p2, a2);
                        store(p3, a3);
                    }
                }
        }
        if (r & 1) {
            const int64_t half = rows / 2;
            for (int64_t b = 0; b < half; ++b)
                for (int64_t u = 0; u < span; u += 2, t += 4) {
                    double* p0 = buf + b * rowDoubles + 2 * u;
                    double* p1 = p0 + half * rowDoubles;
                    const Split a0 = load(p0);
                    const Split u1 = cmul<Inv>(load(p1), ld(t), ld(t + 2));
                    store(p0, Split{ add(a0.re, u1.re), add(a0.im, u1.im) });
                    store(p1, Split{ sub(a0.re, u1.re), sub(a0.im, u1.im) });
                }
        }
        if (l == 0) {
            for (int64_t p = 0; p < rows; ++p) {
                const double* s = buf + p * rowDoubles;
                double* o = d + 2 * (p * cols + a);
                for (int64_t u = 0; u < span; u += 2)
                    storeInterleaved(o + 2 * u, load(s + 2 * u));
            }
        } else {
            for (int64_t p = 0; p < rows; ++p)
                memcpy(d + 2 * (p * cols + a), buf + p * rowDoubles, sizeof(double) * rowDoubles);
        }
    }
}

/* The core over data already in bit-reversed order in dst. */
template <bool Inv>
void runPermuted(Omn64fc* dst, const OmnFftSpecRecord* spec, int k, bool scaled, double* work)
{
    double* d = reinterpret_cast<double*>(dst);
    if (k <= kDirectLimit) {
        /* The leaf kernel's last pass turns the pairs back to interleaved
           form. */
        leaf<Inv>(d, k, static_cast<const double*>(spec->leafTwiddle), true);
        if (scaled)
            scaleDoubles(d, size_t(2) << k, spec->scale);
        return;
    }
    blocked<Inv>(d, k, 0, spec, scaled, work);
}

template <bool Inv>
void run(const Omn64fc* src, Omn64fc* dst, const OmnFftSpecRecord* spec, int k, bool scaled, double* work)
{
    /* The whole-transform codelets read all their inputs before they
       write, so they run in place as they stand. */
    if (k <= kDirectLimit && (src != dst || k <= kWholeInWork || k <= kWholeCodeletsTo)) {
        fusedAny<Inv>(src, dst, k, spec, work);
        if (scaled)
            scaleDoubles(reinterpret_cast<double*>(dst), size_t(2) << k, spec->scale);
        return;
    }
    if (src != dst && k > kDirectLimit && k - kSplit[k] <= kDirectLimit) {
        blocked<Inv>(reinterpret_cast<double*>(dst), k, 0, spec, scaled, work, src);
        return;
    }
    /* In place without room for the whole transform in the work memory,
       and the larger orders whose rows can't gather: permute, then the
       core. */
    permute(src, dst, k, static_cast<const Omn32s*>(spec->bitRev), work, spec->bufSize - 16);
    runPermuted<Inv>(dst, spec, k, scaled, work);
}

} // namespace

void transform(const Omn64fc* src, Omn64fc* dst, const OmnFftSpecRecord* spec, int k, bool inv, bool scaled,
               double* work)
{
    /* A core below order 4 (a real spec of order 4 and less) is one of the
       straight-line routines. */
    if (k < 4) {
        kSmall[inv][scaled][k](src, dst, spec->scale);
        return;
    }
    if (inv)
        run<true>(src, dst, spec, k, scaled, work);
    else
        run<false>(src, dst, spec, k, scaled, work);
}

void transformPermuted(Omn64fc* dst, const OmnFftSpecRecord* spec, int k, bool inv, bool scaled, double* work)
{
    if (inv)
        runPermuted<true>(dst, spec, k, scaled, work);
    else
        runPermuted<false>(dst, spec, k, scaled, work);
}

bool recombinesInFirstPass(int k)
{
    /* Not where a whole-transform codelet runs the core: the transform in
       place, which goes through it, must give the same bits. */
    return k > kWholeCodeletsTo && k >= 4 && k <= kDirectLimit && ((k & 1) != 0 || k < kPairCodeletsFrom);
}

void transformInverseRecombined(const InverseInput& x, Omn64fc* dst, const OmnFftSpecRecord* spec, int k, bool scaled)
{
    double* out = reinterpret_cast<double*>(dst);
    const Omn32s* rev = static_cast<const Omn32s*>(spec->bitRev);
    /* By source from the order where the plain first pass walks so too. */
    const auto first = [&](auto radix) {
        constexpr int R = decltype(radix)::value;
        if (k >= kSourceOrderFrom)
            firstPassRecombined<true, R, true>(out, x, rev);
        else
            firstPassRecombined<true, R, false>(out, x, rev);
    };
    if (k & 1)
        first(Radix<8>{});
    else
        first(Radix<4>{});
    passes<true>(out, k, 4 + (k & 1), static_cast<const double*>(spec->leafTwiddle), out, true);
    if (scaled)
        scaleDoubles(out, size_t(2) << k, spec->scale);
}

} // namespace fft
OMN_COLUMN_END
