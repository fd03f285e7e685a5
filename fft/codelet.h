/*
 * codelet.h - straight-line 16-, 32- and 64-point DFTs, for the first stages of the
 * complex kernel.  Every twiddle is a compile-time constant, so the
 * trivial ones (1, -i, the eighth roots) cost no general multiplication.
 * The lanes are doubles (one complex value each) or pairs of doubles (two
 * independent transforms side by side, with no shuffle inside the DFT).
 * Include from column sources only.
 */
#ifndef OMN_FFT_CODELET_H
#define OMN_FFT_CODELET_H

#include <atomic>
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

/* cos(2 pi e / 64) for e = 0 .. 16. */
constexpr double kCos64[17] = { 1.0,
                               0.995184726672196886245,
                               0.980785280403230449126,
                               0.956940335732208864936,
                               0.923879532511286756128,
                               0.881921264348355029713,
                               0.831469612302545237079,
                               0.773010453362736960811,
                               0.707106781186547524401,
                               0.634393284163645498215,
                               0.555570233019602224743,
                               0.471396736825997648556,
                               0.382683432365089771728,
                               0.290284677254462367636,
                               0.195090322016128267848,
                               0.0980171403295606019942,
                               0.0 };

/* z W(N)^E forward, z conj(W(N)^E) inverse, W(N) = exp(-2 pi i / N), for
   N = 16, 32 or 64. */
template <int N, int E, bool Inv, typename T>
inline CxT<T> mulW(CxT<T> z)
{
    constexpr int e = E % N;
    if constexpr (e >= N / 2) {
        const CxT<T> m = mulW<N, e - N / 2, Inv>(z);
        return CxT<T>{ neg(m.r), neg(m.i) };
    } else if constexpr (e >= N / 4) {
        /* W^(N/4) = -i forward, +i inverse */
        const CxT<T> m = mulW<N, e - N / 4, Inv>(z);
        return Inv ? CxT<T>{ neg(m.i), m.r } : CxT<T>{ m.i, neg(m.r) };
    } else if constexpr (e == 0) {
        return z;
    } else if constexpr (e == N / 8) {
        const T h = konst(kCos64[8], z.r);
        return Inv ? CxT<T>{ (z.r - z.i) * h, (z.i + z.r) * h } : CxT<T>{ (z.r + z.i) * h, (z.i - z.r) * h };
    } else {
        const T c = konst(kCos64[e * (64 / N)], z.r), s = konst(kCos64[(N / 4 - e) * (64 / N)], z.r);
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

/* The address of a stage buffer, published so that the buffer counts as
   memory the compiler cannot see through: with stageFence, every 4-point
   DFT of the codelet then ends in its stores before the next begins.  Left
   to itself the compiler interleaves all sixteen, and the live values
   outrun the registers: the 16-point codelet in scalar doubles spilled some
   150 values and took half as long again.  The store is a relaxed atomic
   one, so that threads running codelets at once don't race on it. */
inline void publishStage(void* p)
{
    static std::atomic<void*> sink;
    sink.store(p, std::memory_order_relaxed);
}
inline void stageFence() { std::atomic_signal_fence(std::memory_order_seq_cst); }

/* Sixteen-point DFT: input j from in(j), output m to out(m, value), both in
   natural order.  Every input is read before the first output is written,
   so out may write where in reads. */
template <bool Inv, typename T, typename In, typename Out>
inline void dft16(In in, Out out)
{
    CxT<T> t[16];
    publishStage(t);
    unroll<4>([&](auto n1) {
        CxT<T> a[4];
        dft4<Inv>(in(n1), in(n1 + 4), in(n1 + 8), in(n1 + 12), a[0], a[1], a[2], a[3]);
        unroll<4>([&](auto k1) { t[4 * k1 + n1] = mulW<16, n1 * k1, Inv>(a[k1]); });
        stageFence();
    });
    unroll<4>([&](auto k1) {
        CxT<T> y0, y1, y2, y3;
        dft4<Inv>(t[4 * k1], t[4 * k1 + 1], t[4 * k1 + 2], t[4 * k1 + 3], y0, y1, y2, y3);
        out(k1, y0);
        out(k1 + 4, y1);
        out(k1 + 8, y2);
        out(k1 + 12, y3);
        stageFence();
    });
}

/* N-point DFT, N = 16, 32 or 64, in(j) and out(m, value) as for dft16 (out
   may write where in reads): from 32 points on, the two DFTs of N/2 points
   of the even and the odd inputs, then N/2 2-point butterflies, four at a
   time. */
template <int N, bool Inv, typename T, typename In, typename Out>
inline void dft(In in, Out out)
{
    if constexpr (N == 16) {
        dft16<Inv, T>(in, out);
    } else {
        CxT<T> u[N];
        publishStage(u);
        dft<N / 2, Inv, T>([&](int j) { return in(2 * j); }, [&](int m, CxT<T> y) { u[m] = y; });
        dft<N / 2, Inv, T>([&](int j) { return in(2 * j + 1); }, [&](int m, CxT<T> y) { u[N / 2 + m] = y; });
        unroll<N / 8>([&](auto b) {
            unroll<4>([&](auto i) {
                constexpr int m = 4 * b + i;
                const CxT<T> o = mulW<N, m, Inv>(u[N / 2 + m]);
                out(m, u[m] + o);
                out(m + N / 2, u[m] - o);
            });
            stageFence();
        });
    }
}

} // namespace codelet
} // namespace fft
OMN_COLUMN_END

#endif /* OMN_FFT_CODELET_H */
