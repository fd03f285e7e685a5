/*
 * scale.h - the scale-factor rule of the integer family, element by element.
 * Include only from column sources (after core/column.h); everything here
 * lands in namespace omn::<column>::scale.
 *
 * Every operation first forms its exact result in a signed 64-bit
 * accumulator s, then stores s times 2^-sf, rounded to nearest with ties to
 * even and saturated to 32 bits.  The factor is split into branches whose
 * limits depend on how wide the accumulator can get:
 *
 *   class         sign only    left shift   rounds up to   above: zero fill
 *   additive      sf <= -31    -30 .. -1    32             sf > 32
 *   AddProduct    sf <= -31    -30 .. -1    62             sf > 62
 *   products      sf <= -32    -31 .. -1    62             sf > 62
 *   complex prod  sf <= -32    -31 .. -1    63             sf > 63
 *
 * Each branch is a small function object, so that a loop instantiated with
 * one of them carries no test on sf in its body.
 */
#ifndef OMN_VECTOR_SCALE_H
#define OMN_VECTOR_SCALE_H

#include <stddef.h>
#include <stdint.h>

#include "core/column.h"
#include "vector/memkernels.h"

OMN_COLUMN_BEGIN
namespace scale {

constexpr int64_t kMax32 = 2147483647;
constexpr int64_t kMin32 = -2147483647 - 1;

inline Omn32s sat32(int64_t s)
{
    return static_cast<Omn32s>(s > kMax32 ? kMax32 : s < kMin32 ? kMin32 : s);
}

/* The branch limits of one accumulator class. */
struct Limits {
    int lastShift;     /* the most negative factor that still shifts */
    int lastRound;     /* the largest factor that still rounds */
    bool clampFirst;   /* products clamp to 32 bits before the left shift */
    bool narrow;       /* a sum of two 32-bit values: from sf 2 up the
                          rounded value fits 32 bits as it stands */
};

constexpr Limits kAdditive    = { -30, 32, false, true };
constexpr Limits kAddProduct  = { -30, 62, true, false };
constexpr Limits kProduct     = { -31, 62, true, false };
constexpr Limits kCplxProduct = { -31, 63, true, false };

enum class Branch { None, ShiftLeft, Sign, RoundOne, Round, ZeroFill };

constexpr Branch branchOf(int sf, const Limits& lim)
{
    return sf == 0               ? Branch::None
         : sf < 0                ? (sf >= lim.lastShift ? Branch::ShiftLeft : Branch::Sign)
         : sf == 1               ? Branch::RoundOne
         : sf <= lim.lastRound   ? Branch::Round
                                 : Branch::ZeroFill;
}

/* ---- the branches, one function object each --------------------------- */

/* sf = 0: saturate. */
struct NoScale {
    Omn32s operator()(int64_t s) const { return sat32(s); }
};

/* -sf = k bits up.  Products are clamped first: a value that is out of
   range already must stay saturated with its sign, and a 64-bit shift of a
   full product would wrap.  Additive sums have at most 33 bits, so 30 more
   still fit. */
template <bool kClampFirst>
struct ShiftUp {
    unsigned k;
    Omn32s operator()(int64_t s) const
    {
        if (kClampFirst)
            s = sat32(s);
        return sat32(static_cast<int64_t>(static_cast<uint64_t>(s) << k));
    }
};

/* Below the sign limit every nonzero value saturates. */
struct SignOnly {
    Omn32s operator()(int64_t s) const
    {
        return static_cast<Omn32s>(s > 0 ? kMax32 : s < 0 ? kMin32 : 0);
    }
};

/* Rounding by k bits: (s + 2^(k-1) - 1 + parity) >> k, where the parity
   ((s >> k) & 1) of the truncated quotient turns ties to the even value.
   It is computed as q + carry, with q = s >> k and the carry of the
   discarded bits plus the parity over the half, which gives the same value
   but cannot overflow: the complex product reaches 2^63 - 1. */
inline int64_t roundShift(int64_t s, unsigned k)
{
    const int64_t q = s >> k;
    const uint64_t rem = static_cast<uint64_t>(s) & ((uint64_t(1) << k) - 1);
    const uint64_t half = uint64_t(1) << (k - 1);
    return q + static_cast<int64_t>(rem + static_cast<uint64_t>(q & 1) > half);
}

/* sf = 1: (s + ((s >> 1) & 1)) >> 1, i.e. up by one when both the
   discarded bit and the parity are set. */
struct RoundOne {
    Omn32s operator()(int64_t s) const { return sat32((s >> 1) + (s & (s >> 1) & 1)); }
};

struct RoundBy {
    unsigned k;
    Omn32s operator()(int64_t s) const { return sat32(roundShift(s, k)); }
};

/* The same for a sum of at most 33 bits and k from 2 to 32, in the plain
   form: nothing overflows and the result needs no saturation. */
struct RoundNarrow {
    unsigned k;
    int64_t bias;   /* 2^(k-1) - 1 */
    Omn32s operator()(int64_t s) const { return static_cast<Omn32s>((s + bias + ((s >> k) & 1)) >> k); }
};

/* ---- the complex product's accumulators -------------------------------- */

/* Real part: a.re*b.re - a.im*b.im always fits 64 bits. */
inline int64_t cplxMulRe(int64_t are, int64_t aim, int64_t bre, int64_t bim)
{
    return are * bre - aim * bim;
}

/* Imaginary part: a.re*b.im + a.im*b.re exceeds 64 bits only when all four
   factors are the minimum, where the sum is 2^63; it stands as the largest
   64-bit value in every branch. */
inline int64_t cplxMulIm(int64_t are, int64_t aim, int64_t bre, int64_t bim)
{
    int64_t s;
    return __builtin_add_overflow(are * bim, aim * bre, &s) ? INT64_MAX : s;
}

/* ---- loops ------------------------------------------------------------- */

/* n elements of kPer parts each: acc(i, s) forms the kPer accumulators of
   element i, and dst receives them scaled, part after part. */
template <int kPer, typename Acc, typename Sc>
inline void mapEach(Omn32s* dst, size_t n, const Acc& acc, const Sc& sc)
{
    for (size_t i = 0; i < n; ++i) {
        int64_t s[kPer];
        acc(i, s);
        for (int j = 0; j < kPer; ++j)
            dst[i * kPer + j] = sc(s[j]);
    }
}

/* Runs acc over n elements through the branch that sf selects: one loop
   per branch, none of them looking at sf.  The zero fill reads nothing. */
template <const Limits& kLim, int kPer, typename Acc>
inline void scaleEach(Omn32s* dst, size_t n, int sf, const Acc& acc)
{
    switch (branchOf(sf, kLim)) {
    case Branch::None:      mapEach<kPer>(dst, n, acc, NoScale{}); break;
    case Branch::ShiftLeft: mapEach<kPer>(dst, n, acc, ShiftUp<kLim.clampFirst>{ static_cast<unsigned>(-sf) }); break;
    case Branch::Sign:      mapEach<kPer>(dst, n, acc, SignOnly{}); break;
    case Branch::RoundOne:  mapEach<kPer>(dst, n, acc, RoundOne{}); break;
    case Branch::Round:
        if (kLim.narrow)
            mapEach<kPer>(dst, n, acc, RoundNarrow{ static_cast<unsigned>(sf), (int64_t(1) << (sf - 1)) - 1 });
        else
            mapEach<kPer>(dst, n, acc, RoundBy{ static_cast<unsigned>(sf) });
        break;
    case Branch::ZeroFill:  mem::zeroBytes(dst, n * kPer * sizeof(Omn32s)); break;
    }
}

} // namespace scale
OMN_COLUMN_END

#endif /* OMN_VECTOR_SCALE_H */
