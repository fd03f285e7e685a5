/*
 * f64x2.h - a pair of doubles, the unit of work of the packed kernels.
 *
 * With SSE2 (w7, and t7 on top of SSE3) a Pd is one XMM register and every
 * operation is one or two instructions.  Where the column has no packed
 * double arithmetic (any column on a target that is not x86), Pd is two plain
 * doubles with the same operations, so that the packed kernels keep their
 * structure and their results there.  px and a6 don't use this header for
 * their double kernels: theirs are scalar loops.
 *
 * Memory access goes through memcpy or unaligned vector moves only: the
 * library accepts arrays of any alignment to 8 bytes or less.
 */
#ifndef OMN_VECTOR_F64X2_H
#define OMN_VECTOR_F64X2_H

#include <math.h>
#include <stdint.h>
#include <string.h>

#include "core/column.h"

OMN_COLUMN_BEGIN
namespace pd {

/* One double, read or written at any alignment. */
inline double ld(const double* p) { double v; memcpy(&v, p, sizeof v); return v; }
inline void   st(double* p, double v) { memcpy(p, &v, sizeof v); }

inline uint64_t bitsOf(double x) { uint64_t b; memcpy(&b, &x, sizeof b); return b; }
inline double   fromBits(uint64_t b) { double x; memcpy(&x, &b, sizeof x); return x; }

#if OMN_SIMD >= 1
/* Reciprocal root of four singles: the hardware's 12-bit estimate and one
   Newton step, y = 0.5*y0*(3 - m*y0*y0), for some 22 bits.  The estimate of
   every processor is brought this close, so the double steps that follow
   end within a couple of units in the last place everywhere. */
inline __m128 rsqrtRefined(__m128 m)
{
    const __m128 y0 = _mm_rsqrt_ps(m);
    return _mm_mul_ps(_mm_mul_ps(_mm_set1_ps(0.5f), y0),
                      _mm_sub_ps(_mm_set1_ps(3.0f), _mm_mul_ps(_mm_mul_ps(m, y0), y0)));
}
#endif

inline void prefetch(const void* p)
{
#if OMN_SIMD >= 1
    _mm_prefetch(static_cast<const char*>(p), _MM_HINT_T0);
#else
    (void)p;
#endif
}

#if OMN_SIMD >= 2

struct Pd { __m128d v; };

inline Pd set1(double x) { return { _mm_set1_pd(x) }; }
inline Pd set(double lo, double hi) { return { _mm_set_pd(hi, lo) }; }
inline Pd fromBits2(uint64_t lo, uint64_t hi)
{
    return { _mm_castsi128_pd(_mm_set_epi32(static_cast<int>(hi >> 32), static_cast<int>(hi),
                                            static_cast<int>(lo >> 32), static_cast<int>(lo))) };
}
inline double lo(Pd a) { return _mm_cvtsd_f64(a.v); }
inline double hi(Pd a) { return _mm_cvtsd_f64(_mm_unpackhi_pd(a.v, a.v)); }

inline Pd loadA(const double* p) { return { _mm_load_pd(p) }; }
inline Pd loadU(const double* p) { return { _mm_loadu_pd(p) }; }
inline void storeA(double* p, Pd a) { _mm_store_pd(p, a.v); }
inline void storeU(double* p, Pd a) { _mm_storeu_pd(p, a.v); }
/* Past the caches, to a 16-aligned address; endStreaming orders the
   streamed stores before whatever the caller does next. */
inline void storeStream(double* p, Pd a) { _mm_stream_pd(p, a.v); }
inline void endStreaming() { _mm_sfence(); }

inline Pd operator+(Pd a, Pd b) { return { _mm_add_pd(a.v, b.v) }; }
inline Pd operator-(Pd a, Pd b) { return { _mm_sub_pd(a.v, b.v) }; }
inline Pd operator*(Pd a, Pd b) { return { _mm_mul_pd(a.v, b.v) }; }
inline Pd operator/(Pd a, Pd b) { return { _mm_div_pd(a.v, b.v) }; }
inline Pd sqrt(Pd a) { return { _mm_sqrt_pd(a.v) }; }
/* a < b ? a : b and a > b ? a : b, lane by lane (b where either is NaN). */
inline Pd min(Pd a, Pd b) { return { _mm_min_pd(a.v, b.v) }; }
inline Pd max(Pd a, Pd b) { return { _mm_max_pd(a.v, b.v) }; }

inline Pd operator&(Pd a, Pd b) { return { _mm_and_pd(a.v, b.v) }; }
inline Pd operator|(Pd a, Pd b) { return { _mm_or_pd(a.v, b.v) }; }
inline Pd operator^(Pd a, Pd b) { return { _mm_xor_pd(a.v, b.v) }; }
inline Pd andNot(Pd a, Pd b) { return { _mm_andnot_pd(a.v, b.v) }; }   /* ~a & b */
/* One lane negated (its sign bit flipped). */
inline Pd negLo(Pd a) { return { _mm_xor_pd(a.v, _mm_set_pd(0.0, -0.0)) }; }
inline Pd negHi(Pd a) { return { _mm_xor_pd(a.v, _mm_set_pd(-0.0, 0.0)) }; }

/* Comparisons give all-ones lanes where they hold. */
inline Pd cmpEq(Pd a, Pd b) { return { _mm_cmpeq_pd(a.v, b.v) }; }
inline Pd cmpGt(Pd a, Pd b) { return { _mm_cmpgt_pd(a.v, b.v) }; }
inline Pd cmpLt(Pd a, Pd b) { return { _mm_cmplt_pd(a.v, b.v) }; }
/* Bit 0 for the low lane's sign bit (or mask), bit 1 for the high lane's. */
inline int signs(Pd a) { return _mm_movemask_pd(a.v); }

/* Lanes swapped: (hi, lo). */
inline Pd swap(Pd a) { return { _mm_shuffle_pd(a.v, a.v, 1) }; }
inline Pd unpackLo(Pd a, Pd b) { return { _mm_unpacklo_pd(a.v, b.v) }; }   /* (a.lo, b.lo) */
inline Pd unpackHi(Pd a, Pd b) { return { _mm_unpackhi_pd(a.v, b.v) }; }   /* (a.hi, b.hi) */
inline Pd loHi(Pd a, Pd b) { return { _mm_shuffle_pd(a.v, b.v, 2) }; }     /* (a.lo, b.hi) */
inline Pd dupLo(Pd a) { return unpackLo(a, a); }
inline Pd dupHi(Pd a) { return unpackHi(a, a); }

/* (a.lo - b.lo, a.hi + b.hi): one instruction with SSE3. */
inline Pd subAdd(Pd a, Pd b)
{
#if OMN_SIMD >= 3
    return { _mm_addsub_pd(a.v, b.v) };
#else
    /* a - b is a + (-b) exactly, so the flipped sign gives the same result. */
    return a + (b ^ fromBits2(0x8000000000000000ull, 0));
#endif
}

/* Arithmetic on the 32-bit halves of the bit patterns, for the exponent
   work of the root: the high half holds the sign and the exponent. */
inline Pd sub32(Pd a, Pd b) { return { _mm_castsi128_pd(_mm_sub_epi32(_mm_castpd_si128(a.v), _mm_castpd_si128(b.v))) }; }
inline Pd add32(Pd a, Pd b) { return { _mm_castsi128_pd(_mm_add_epi32(_mm_castpd_si128(a.v), _mm_castpd_si128(b.v))) }; }
inline Pd sra32By1(Pd a) { return { _mm_castsi128_pd(_mm_srai_epi32(_mm_castpd_si128(a.v), 1)) }; }

/* Which lanes have an exponent field of all zeros (bit 0 low, bit 1 high),
   and which of all ones. */
inline void exponentClass(Pd a, int* zeros, int* ones)
{
    const __m128i expMask = _mm_set_epi32(0x7FF00000, 0, 0x7FF00000, 0);
    const __m128i e = _mm_and_si128(_mm_castpd_si128(a.v), expMask);
    /* Only the high dwords (1 and 3) carry the exponent. */
    const int z = _mm_movemask_ps(_mm_castsi128_ps(_mm_cmpeq_epi32(e, _mm_setzero_si128())));
    const int o = _mm_movemask_ps(_mm_castsi128_ps(_mm_cmpeq_epi32(e, expMask)));
    *zeros = ((z >> 1) & 1) | ((z >> 2) & 2);
    *ones  = ((o >> 1) & 1) | ((o >> 2) & 2);
}

/* Single-precision reciprocal-root estimate of both lanes, widened back:
   the hardware estimate and one Newton step in single precision. */
inline Pd rsqrtEstimate(Pd m)
{
    /* The unused upper lanes hold 1, so that they raise nothing. */
    const __m128 mf = _mm_movelh_ps(_mm_cvtpd_ps(m.v), _mm_set1_ps(1.0f));
    return { _mm_cvtps_pd(rsqrtRefined(mf)) };
}

#else  /* two plain doubles */

struct Pd { double l, h; };

inline Pd set1(double x) { return { x, x }; }
inline Pd set(double l, double h) { return { l, h }; }
inline Pd fromBits2(uint64_t l, uint64_t h) { return { fromBits(l), fromBits(h) }; }
inline double lo(Pd a) { return a.l; }
inline double hi(Pd a) { return a.h; }

inline Pd loadA(const double* p) { return { ld(p), ld(p + 1) }; }
inline Pd loadU(const double* p) { return { ld(p), ld(p + 1) }; }
inline void storeA(double* p, Pd a) { st(p, a.l); st(p + 1, a.h); }
inline void storeU(double* p, Pd a) { st(p, a.l); st(p + 1, a.h); }
inline void storeStream(double* p, Pd a) { st(p, a.l); st(p + 1, a.h); }
inline void endStreaming() {}

inline Pd operator+(Pd a, Pd b) { return { a.l + b.l, a.h + b.h }; }
inline Pd operator-(Pd a, Pd b) { return { a.l - b.l, a.h - b.h }; }
inline Pd operator*(Pd a, Pd b) { return { a.l * b.l, a.h * b.h }; }
inline Pd operator/(Pd a, Pd b) { return { a.l / b.l, a.h / b.h }; }
inline Pd sqrt(Pd a) { return { ::sqrt(a.l), ::sqrt(a.h) }; }
inline Pd min(Pd a, Pd b) { return { a.l < b.l ? a.l : b.l, a.h < b.h ? a.h : b.h }; }
inline Pd max(Pd a, Pd b) { return { a.l > b.l ? a.l : b.l, a.h > b.h ? a.h : b.h }; }

inline Pd bitwise(Pd a, Pd b, int op)
{
    const uint64_t al = bitsOf(a.l), ah = bitsOf(a.h), bl = bitsOf(b.l), bh = bitsOf(b.h);
    switch (op) {
    case 0:  return fromBits2(al & bl, ah & bh);
    case 1:  return fromBits2(al | bl, ah | bh);
    case 2:  return fromBits2(al ^ bl, ah ^ bh);
    default: return fromBits2(~al & bl, ~ah & bh);
    }
}
inline Pd operator&(Pd a, Pd b) { return bitwise(a, b, 0); }
inline Pd operator|(Pd a, Pd b) { return bitwise(a, b, 1); }
inline Pd operator^(Pd a, Pd b) { return bitwise(a, b, 2); }
inline Pd andNot(Pd a, Pd b) { return bitwise(a, b, 3); }
/* One lane negated.  Negation flips the sign bit as the bit operation
   would, but stays floating-point arithmetic, so that the compiler can
   fold a negated addend into a subtraction instead of moving the value
   through an integer register. */
inline Pd negLo(Pd a) { return { -a.l, a.h }; }
inline Pd negHi(Pd a) { return { a.l, -a.h }; }

inline double maskOf(bool c) { return fromBits(c ? ~0ull : 0ull); }
inline Pd cmpEq(Pd a, Pd b) { return { maskOf(a.l == b.l), maskOf(a.h == b.h) }; }
inline Pd cmpGt(Pd a, Pd b) { return { maskOf(a.l > b.l), maskOf(a.h > b.h) }; }
inline Pd cmpLt(Pd a, Pd b) { return { maskOf(a.l < b.l), maskOf(a.h < b.h) }; }
inline int signs(Pd a) { return static_cast<int>((bitsOf(a.l) >> 63) | ((bitsOf(a.h) >> 63) << 1)); }

inline Pd swap(Pd a) { return { a.h, a.l }; }
inline Pd unpackLo(Pd a, Pd b) { return { a.l, b.l }; }
inline Pd unpackHi(Pd a, Pd b) { return { a.h, b.h }; }
inline Pd loHi(Pd a, Pd b) { return { a.l, b.h }; }
inline Pd dupLo(Pd a) { return { a.l, a.l }; }
inline Pd dupHi(Pd a) { return { a.h, a.h }; }
inline Pd subAdd(Pd a, Pd b) { return { a.l - b.l, a.h + b.h }; }

inline uint64_t halves(uint64_t a, uint64_t b, int op)
{
    const uint32_t al = static_cast<uint32_t>(a), ah = static_cast<uint32_t>(a >> 32);
    const uint32_t bl = static_cast<uint32_t>(b), bh = static_cast<uint32_t>(b >> 32);
    uint32_t rl, rh;
    if (op == 0) { rl = al - bl; rh = ah - bh; }
    else if (op == 1) { rl = al + bl; rh = ah + bh; }
    else {
        /* arithmetic shift right by one, written without relying on the
           shift of a negative value */
        rl = (al >> 1) | (al & 0x80000000u);
        rh = (ah >> 1) | (ah & 0x80000000u);
    }
    return static_cast<uint64_t>(rh) << 32 | rl;
}
inline Pd sub32(Pd a, Pd b) { return fromBits2(halves(bitsOf(a.l), bitsOf(b.l), 0), halves(bitsOf(a.h), bitsOf(b.h), 0)); }
inline Pd add32(Pd a, Pd b) { return fromBits2(halves(bitsOf(a.l), bitsOf(b.l), 1), halves(bitsOf(a.h), bitsOf(b.h), 1)); }
inline Pd sra32By1(Pd a) { return fromBits2(halves(bitsOf(a.l), 0, 2), halves(bitsOf(a.h), 0, 2)); }

inline void exponentClass(Pd a, int* zeros, int* ones)
{
    const uint64_t el = bitsOf(a.l) & 0x7FF0000000000000ull, eh = bitsOf(a.h) & 0x7FF0000000000000ull;
    *zeros = (el == 0) | ((eh == 0) << 1);
    *ones  = (el == 0x7FF0000000000000ull) | ((eh == 0x7FF0000000000000ull) << 1);
}

/* Without a hardware estimate the seed is the single-precision root. */
inline Pd rsqrtEstimate(Pd m)
{
    return { static_cast<double>(1.0f / sqrtf(static_cast<float>(m.l))),
             static_cast<double>(1.0f / sqrtf(static_cast<float>(m.h))) };
}

#endif

/* Lanes of a where mask is set, of b elsewhere. */
inline Pd select(Pd mask, Pd a, Pd b) { return (mask & a) | andNot(mask, b); }

/* A pair stored as two 8-byte stores, for destinations that are not even
   8-aligned. */
inline void storeHalves(double* p, Pd a) { st(p, lo(a)); st(p + 1, hi(a)); }

/* Complex arithmetic, one element (re, im) per pair. */

/* x * y: (x.re*y.re - x.im*y.im, x.re*y.im + x.im*y.re). */
inline Pd cmul(Pd x, Pd y)
{
    const Pd a = x * y;            /* (xr*yr, xi*yi) */
    const Pd b = x * swap(y);      /* (xr*yi, xi*yr) */
    return subAdd(unpackLo(a, b), unpackHi(a, b));
}

/* d + x * y in the order ((xr*yr + d.re) - xi*yi, (xr*yi + d.im) + xi*yr). */
inline Pd caddProduct(Pd x, Pd y, Pd d)
{
    const Pd a = x * y;
    const Pd b = x * swap(y);
    return subAdd(unpackLo(a, b) + d, unpackHi(a, b));
}

/* x squared with the factored real part: ((re - im)*(re + im), (re*im)*2). */
inline Pd csqr(Pd x)
{
    const Pd s = swap(x);
    const Pd diff = x - s, sum = x + s, prod = x * s;   /* prod.hi = im*re */
    return loHi(diff, prod) * loHi(sum, set1(2.0));
}

} // namespace pd
OMN_COLUMN_END

#endif /* OMN_VECTOR_F64X2_H */
