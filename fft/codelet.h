/*
 * codelet.h - a straight-line 16-point DFT, for the first stages of the
 * complex kernel.  Every twiddle is a compile-time constant, so the
 * trivial ones (1, -i, the eighth roots) cost no general multiplication.
 * The lanes are doubles (one complex value each) or pairs of doubles (two
 * independent transforms side by side, with no shuffle inside the DFT).
 * Include from column sources only.
 */
#ifndef OMN_FFT_CODELET_H
#define OMN_FFT_CODELET_H

#include <utility>

#include "core/column.h"
#include "vector/f64x2.h"

OMN_COLUMN_BEGIN
namespace fft {
namespace codelet {

template <typename T>
struct CxT {
    T r, i;
};
template <typename T>
inline CxT<T> operator+(CxT<T> a, CxT<T> b) { return CxT<T>{ a.r + b.r, a.i + b.i }; }
template <typename T>
inline CxT<T> operator-(CxT<T> a, CxT<T> b) { return CxT<T>{ a.r - b.r, a.i - b.i }; }
typedef CxT<double> Cx;

/* A constant in every lane, and the lanes negated (by the sign bit). */
inline double konst(double c, double) { return c; }
inline pd::Pd konst(double c, pd::Pd) { return pd::set1(c); }
inline double neg(double x) { return -x; }
inline pd::Pd neg(pd::Pd x) { return x ^ pd::set1(-0.0); }

/* Calls f(integral_constant<int, I>) for I = 0 .. N-1, so that each index
   is a constant in f's body. */
template <typename F, int... I>
inline void unrollSeq(F&& f, std::integer_sequence<int, I...>)
{
    (f(std::integral_constant<int, I>{}), ...);
}
template <int N, typename F>
inline void unroll(F&& f)
{
    unrollSeq(f, std::make_integer_sequence<int, N>{});
}

/* cos(2 pi e / 16) for e = 0 .. 4. */
constexpr double kCos16[5] = { 1.0, 0.92387953251128675613, 0.70710678118654752440, 0.38268343236508977173, 0.0 };

/* z W(16)^E forward, z conj(W(16)^E) inverse, W(16) = exp(-2 pi i / 16). */
template <int E, bool Inv, typename T>
inline CxT<T> mulW16(CxT<T> z)
{
    constexpr int e = E & 15;
    if constexpr (e >= 8) {
        const CxT<T> m = mulW16<e - 8, Inv>(z);
        return CxT<T>{ neg(m.r), neg(m.i) };
    } else if constexpr (e >= 4) {
        /* W^4 = -i forward, +i inverse */
        const CxT<T> m = mulW16<e - 4, Inv>(z);
        return Inv ? CxT<T>{ neg(m.i), m.r } : CxT<T>{ m.i, neg(m.r) };
    } else if constexpr (e == 0) {
        return z;
    } else if constexpr (e == 2) {
        const T h = konst(kCos16[2], z.r);
        return Inv ? CxT<T>{ (z.r - z.i) * h, (z.i + z.r) * h } : CxT<T>{ (z.r + z.i) * h, (z.i - z.r) * h };
    } else {
        const T c = konst(kCos16[e], z.r), s = konst(kCos16[4 - e], z.r);
        /* forward z (c - i s), inverse z (c + i s) */
        return Inv ? CxT<T>{ z.r * c - z.i * s, z.i * c + z.r * s } : CxT<T>{ z.r * c + z.i * s, z.i * c - z.r * s };
    }
}

/* Four-point DFT in natural order. */
template <bool Inv, typename T>
inline void dft4(CxT<T> x0, CxT<T> x1, CxT<T> x2, CxT<T> x3, CxT<T>& y0, CxT<T>& y1, CxT<T>& y2, CxT<T>& y3)
{
    /* b -/+ i e and b +/- i e as sums and differences, so that the
       rotation costs nothing. */
    const CxT<T> a = x0 + x2, b = x0 - x2, c = x1 + x3, e = x1 - x3;
    y0 = a + c;
    y2 = a - c;
    if (Inv) {
        y1 = CxT<T>{ b.r - e.i, b.i + e.r };
        y3 = CxT<T>{ b.r + e.i, b.i - e.r };
    } else {
        y1 = CxT<T>{ b.r + e.i, b.i - e.r };
        y3 = CxT<T>{ b.r - e.i, b.i + e.r };
    }
}

/* Sixteen-point DFT, x and y in natural order (x may be y). */
template <bool Inv, typename T>
inline void dft16(const CxT<T>* x, CxT<T>* y)
{
    CxT<T> a[4][4];
    unroll<4>([&](auto n1) { dft4<Inv>(x[n1], x[n1 + 4], x[n1 + 8], x[n1 + 12], a[n1][0], a[n1][1], a[n1][2], a[n1][3]); });
    unroll<4>([&](auto n1) { unroll<4>([&](auto k1) { a[n1][k1] = mulW16<n1 * k1, Inv>(a[n1][k1]); }); });
    unroll<4>([&](auto k1) { dft4<Inv>(a[0][k1], a[1][k1], a[2][k1], a[3][k1], y[k1], y[k1 + 4], y[k1 + 8], y[k1 + 12]); });
}

} // namespace codelet
} // namespace fft
OMN_COLUMN_END

#endif /* OMN_FFT_CODELET_H */
