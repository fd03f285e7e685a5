/*
 * pair.h - the FFT's view of a pair of doubles (vector/f64x2.h): the names
 * its kernels use, and the pair-split complex pair.
 *
 * Pair-split form holds two neighbouring complex values k, k+1 as re(k)
 * re(k+1) im(k) im(k+1), so that one pair takes both real parts and one
 * both imaginary parts, and a complex product is four multiplications and
 * two additions with no shuffle.  Include from column sources only.
 */
#ifndef OMN_FFT_PAIR_H
#define OMN_FFT_PAIR_H

#include "core/column.h"
#include "vector/f64x2.h"

OMN_COLUMN_BEGIN
namespace fft {

typedef pd::Pd V;
inline V ld(const double* p) { return pd::loadU(p); }
inline void st(double* p, V v) { pd::storeU(p, v); }
inline V add(V a, V b) { return a + b; }
inline V sub(V a, V b) { return a - b; }
inline V mul(V a, V b) { return a * b; }
inline V set1(double x) { return pd::set1(x); }
using pd::unpackHi;   /* (a.hi, b.hi) */
using pd::unpackLo;   /* (a.lo, b.lo) */
inline V swapHalves(V a) { return pd::swap(a); }
/* (x0, -x1) and (-x0, x1). */
using pd::negHi;
using pd::negLo;

struct Split {
    V re, im;
};

inline Split load(const double* p) { return Split{ ld(p), ld(p + 2) }; }
inline void store(double* p, Split a)
{
    st(p, a.re);
    st(p + 2, a.im);
}
/* Interleaved store of the pair: p gets (re k, im k), (re k+1, im k+1). */
inline void storeInterleaved(double* p, Split a)
{
    st(p, unpackLo(a.re, a.im));
    st(p + 2, unpackHi(a.re, a.im));
}
/* The pair from interleaved values at p (k, then k+1). */
inline Split loadInterleaved(const double* p)
{
    const V a = ld(p), b = ld(p + 2);
    return Split{ unpackLo(a, b), unpackHi(a, b) };
}

inline Split add(Split a, Split b) { return Split{ add(a.re, b.re), add(a.im, b.im) }; }
inline Split sub(Split a, Split b) { return Split{ sub(a.re, b.re), sub(a.im, b.im) }; }

/* a times w (conj(w) for the inverse), w = wr + i wi. */
template <bool Inv>
inline Split cmul(Split a, V wr, V wi)
{
    if (Inv)
        return Split{ add(mul(a.re, wr), mul(a.im, wi)), sub(mul(a.im, wr), mul(a.re, wi)) };
    return Split{ sub(mul(a.re, wr), mul(a.im, wi)), add(mul(a.re, wi), mul(a.im, wr)) };
}

} // namespace fft
OMN_COLUMN_END

#endif /* OMN_FFT_PAIR_H */
