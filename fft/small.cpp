/*
 * small.cpp - complex transforms of 1, 2, 4 and 8 points: straight-line
 * butterflies that read every input into locals before the first store, so
 * that src may equal dst.  The scaled forms multiply at the first sums and
 * differences, not in a pass behind the transform.
 */
#include "core/column.h"

#include "fft/engine.h"

OMN_COLUMN_BEGIN
namespace fft {
namespace {

struct C {
    double re, im;
};

inline C add(C a, C b) { return { a.re + b.re, a.im + b.im }; }
inline C sub(C a, C b) { return { a.re - b.re, a.im - b.im }; }
inline C mul(C a, double s) { return { a.re * s, a.im * s }; }
/* -i z forward, +i z inverse. */
template <bool Inv>
inline C rot(C z) { return Inv ? C{ -z.im, z.re } : C{ z.im, -z.re }; }

template <bool Scaled>
inline void sumDiff(C a, C b, double s, C& sum, C& diff)
{
    sum = add(a, b);
    diff = sub(a, b);
    if (Scaled) {
        sum = mul(sum, s);
        diff = mul(diff, s);
    }
}

template <bool Inv, bool Scaled>
void order0(const Omn64fc* src, Omn64fc* dst, double s)
{
    const C x{ src[0].re, src[0].im };
    const C y = Scaled ? mul(x, s) : x;
    dst[0].re = y.re;
    dst[0].im = y.im;
}

template <bool Inv, bool Scaled>
void order1(const Omn64fc* src, Omn64fc* dst, double s)
{
    C a, b;
    sumDiff<Scaled>(C{ src[0].re, src[0].im }, C{ src[1].re, src[1].im }, s, a, b);
    dst[0] = Omn64fc{ a.re, a.im };
    dst[1] = Omn64fc{ b.re, b.im };
}

/* Four points from first sums and differences e0 = x0 + x2, e1 = x0 - x2,
   o0 = x1 + x3, o1 = x1 - x3. */
template <bool Inv>
inline void combine4(C e0, C e1, C o0, C o1, C out[4])
{
    const C t = rot<Inv>(o1);
    out[0] = add(e0, o0);
    out[2] = sub(e0, o0);
    out[1] = add(e1, t);
    out[3] = sub(e1, t);
}

template <bool Inv, bool Scaled>
void order2(const Omn64fc* src, Omn64fc* dst, double s)
{
    C x[4];
    for (int i = 0; i < 4; ++i)
        x[i] = C{ src[i].re, src[i].im };
    C e0, e1, o0, o1, y[4];
    sumDiff<Scaled>(x[0], x[2], s, e0, e1);
    sumDiff<Scaled>(x[1], x[3], s, o0, o1);
    combine4<Inv>(e0, e1, o0, o1, y);
    for (int i = 0; i < 4; ++i)
        dst[i] = Omn64fc{ y[i].re, y[i].im };
}

template <bool Inv, bool Scaled>
void order3(const Omn64fc* src, Omn64fc* dst, double s)
{
    const double h = 0.7071067811865476;
    C x[8];
    for (int i = 0; i < 8; ++i)
        x[i] = C{ src[i].re, src[i].im };
    C a0, a1, b0, b1, c0, c1, d0, d1, e[4], o[4];
    sumDiff<Scaled>(x[0], x[4], s, a0, a1);
    sumDiff<Scaled>(x[2], x[6], s, b0, b1);
    sumDiff<Scaled>(x[1], x[5], s, c0, c1);
    sumDiff<Scaled>(x[3], x[7], s, d0, d1);
    combine4<Inv>(a0, a1, b0, b1, e);
    combine4<Inv>(c0, c1, d0, d1, o);
    /* Odd results times W(8), W(8)^2 and W(8)^3 (conjugates inverse). */
    C w[4];
    w[0] = o[0];
    if (!Inv) {
        w[1] = C{ (o[1].re + o[1].im) * h, (o[1].im - o[1].re) * h };
        w[3] = C{ (o[3].im - o[3].re) * h, (o[3].re + o[3].im) * -h };
    } else {
        w[1] = C{ (o[1].re - o[1].im) * h, (o[1].re + o[1].im) * h };
        w[3] = C{ (o[3].re + o[3].im) * -h, (o[3].re - o[3].im) * h };
    }
    w[2] = rot<Inv>(o[2]);
    for (int i = 0; i < 4; ++i) {
        const C p = add(e[i], w[i]), m = sub(e[i], w[i]);
        dst[i] = Omn64fc{ p.re, p.im };
        dst[i + 4] = Omn64fc{ m.re, m.im };
    }
}

} // namespace

const SmallFn kSmall[2][2][4] = {
    { { order0<false, false>, order1<false, false>, order2<false, false>, order3<false, false> },
      { order0<false, true>, order1<false, true>, order2<false, true>, order3<false, true> } },
    { { order0<true, false>, order1<true, false>, order2<true, false>, order3<true, false> },
      { order0<true, true>, order1<true, true>, order2<true, true>, order3<true, true> } },
};

} // namespace fft
OMN_COLUMN_END
