// Complex parts and polar helpers in every column: splitting and joining bit
// for bit, the conjugate's signed zero, magnitude and phase against long
// double, the phase on all four axes and at zeros of both signs, the integer
// magnitude, squared magnitude and phase, CartToPolar's two statuses, and
// PolarToCart in both layouts.
#include <gtest/gtest.h>

#include <math.h>
#include <stdint.h>
#include <string.h>

#include <limits>
#include <vector>

#include "tests/columns.h"

using namespace omn;

namespace {

uint64_t bitsOf(double d) { uint64_t b; memcpy(&b, &d, 8); return b; }
double fromBits(uint64_t b) { double d; memcpy(&d, &b, 8); return d; }

// Parts with signed zeros, NaN payloads, infinities and denormals.
std::vector<double> oddParts(size_t n)
{
    const uint64_t special[] = { 0x0000000000000000ull, 0x8000000000000000ull, 0x7FF8000000000123ull, 0xFFF0000000000001ull,
                                 0x7FF0000000000000ull, 0x0000000000000001ull, 0x3FF0000000000000ull, 0xC008000000000000ull };
    std::vector<double> v(n);
    for (size_t i = 0; i < n; ++i)
        v[i] = i < 8 ? fromBits(special[i]) : static_cast<double>(i) * 1.25 - 40.0;
    return v;
}

double ulp(double x) { return nextafter(fabs(x), INFINITY) - fabs(x); }

} // namespace

class PolarTest : public test::ColumnTest {
protected:
    // The C runtime's atan2 of px and a6 is within one unit of the last
    // place; the packed arctangent of w7 and t7 within two.
    double phaseUlps() const { return col() < 2 ? 1.0 : 2.0; }
};

TEST_P(PolarTest, ArgumentChecks)
{
    Omn64fc c[2] = {};
    Omn64f r[2] = {}, m[2] = {};
    Omn32sc ic[2] = {};
    Omn32s id[2] = {};
    const int k = col();
    EXPECT_EQ(test::omnsConj_64fc[k](nullptr, c, 0), -8);
    EXPECT_EQ(test::omnsConj_64fc[k](c, c, 0), -6);
    EXPECT_EQ(test::omnsConj_64fc_I[k](nullptr, 1), -8);
    EXPECT_EQ(test::omnsReal_64fc[k](c, nullptr, 1), -8);
    EXPECT_EQ(test::omnsImag_64fc[k](c, r, -1), -6);
    EXPECT_EQ(test::omnsCplxToReal_64fc[k](c, r, nullptr, 0), -8);
    EXPECT_EQ(test::omnsMagnitude_64f[k](r, nullptr, m, 0), -8);
    EXPECT_EQ(test::omnsMagnitude_64fc[k](c, m, 0), -6);
    EXPECT_EQ(test::omnsPhase_64f[k](nullptr, r, m, 1), -8);
    EXPECT_EQ(test::omnsPhase_64fc[k](c, m, 0), -6);
    EXPECT_EQ(test::omnsMagnitude_32sc_Sfs[k](ic, nullptr, 0, 0), -8);
    EXPECT_EQ(test::omnsMagSquared_32sc32s_Sfs[k](ic, id, 0, 0), -6);
    EXPECT_EQ(test::omnsPhase_32sc_Sfs[k](nullptr, id, 1, 0), -8);
    EXPECT_EQ(test::omnsPolarToCart_64f[k](r, m, r, nullptr, 0), -8);
    EXPECT_EQ(test::omnsPolarToCart_64fc[k](nullptr, m, c, 0), -8);
    EXPECT_EQ(test::omnsPolarToCart_64fc[k](r, m, nullptr, 0), -8);
    EXPECT_EQ(test::omnsPolarToCart_64fc[k](r, m, c, 0), -6);
    // RealToCplx: the destination, the length, and then the two sources.
    EXPECT_EQ(test::omnsRealToCplx_64f[k](nullptr, nullptr, c, 1), -8);
    EXPECT_EQ(test::omnsRealToCplx_64f[k](nullptr, nullptr, c, 0), -6);
    EXPECT_EQ(test::omnsRealToCplx_64f[k](r, r, nullptr, 0), -8);
    EXPECT_EQ(test::omnsRealToCplx_64f[k](r, nullptr, c, -2), -6);
}

TEST_P(PolarTest, SplitJoinAndConjugateKeepEveryBit)
{
    for (int n = 1; n <= 13; ++n) {
        const std::vector<double> re = oddParts(n + 3), im = oddParts(n + 7);
        std::vector<Omn64fc> c(n);
        for (int i = 0; i < n; ++i)
            c[i] = { re[i], im[i + 4] };
        std::vector<double> gotRe(n + 1, 9.0), gotIm(n + 1, 9.0);
        ASSERT_EQ(V(omnsCplxToReal_64fc)(c.data(), gotRe.data(), gotIm.data(), n), 0);
        for (int i = 0; i < n; ++i) {
            ASSERT_EQ(bitsOf(gotRe[i]), bitsOf(re[i])) << n;
            ASSERT_EQ(bitsOf(gotIm[i]), bitsOf(im[i + 4])) << n;
        }
        EXPECT_EQ(gotRe[n], 9.0);
        EXPECT_EQ(gotIm[n], 9.0);
        std::fill(gotRe.begin(), gotRe.end(), 9.0);
        ASSERT_EQ(V(omnsReal_64fc)(c.data(), gotRe.data(), n), 0);
        ASSERT_EQ(V(omnsImag_64fc)(c.data(), gotIm.data(), n), 0);
        for (int i = 0; i < n; ++i) {
            ASSERT_EQ(bitsOf(gotRe[i]), bitsOf(re[i]));
            ASSERT_EQ(bitsOf(gotIm[i]), bitsOf(im[i + 4]));
        }
        EXPECT_EQ(gotRe[n], 9.0);
        // Joining is the inverse of splitting; a missing source is +0.0.
        std::vector<Omn64fc> back(n);
        ASSERT_EQ(V(omnsRealToCplx_64f)(gotRe.data(), gotIm.data(), back.data(), n), 0);
        EXPECT_EQ(0, memcmp(back.data(), c.data(), n * sizeof(Omn64fc)));
        ASSERT_EQ(V(omnsRealToCplx_64f)(gotRe.data(), nullptr, back.data(), n), 0);
        for (int i = 0; i < n; ++i) {
            ASSERT_EQ(bitsOf(back[i].re), bitsOf(re[i]));
            ASSERT_EQ(bitsOf(back[i].im), 0u);
        }
        ASSERT_EQ(V(omnsRealToCplx_64f)(nullptr, gotIm.data(), back.data(), n), 0);
        for (int i = 0; i < n; ++i) {
            ASSERT_EQ(bitsOf(back[i].re), 0u);
            ASSERT_EQ(bitsOf(back[i].im), bitsOf(im[i + 4]));
        }
        // The conjugate flips the sign bit of the imaginary part only, so
        // 0 becomes -0; twice is the identity.
        std::vector<Omn64fc> cj(n);
        ASSERT_EQ(V(omnsConj_64fc)(c.data(), cj.data(), n), 0);
        for (int i = 0; i < n; ++i) {
            ASSERT_EQ(bitsOf(cj[i].re), bitsOf(c[i].re));
            ASSERT_EQ(bitsOf(cj[i].im), bitsOf(c[i].im) ^ 0x8000000000000000ull) << n << " " << i;
        }
        ASSERT_EQ(V(omnsConj_64fc_I)(cj.data(), n), 0);
        EXPECT_EQ(0, memcmp(cj.data(), c.data(), n * sizeof(Omn64fc)));
    }
}

TEST_P(PolarTest, MagnitudeAndPhaseAgainstLongDouble)
{
    std::vector<double> re, im;
    for (double a : { 0.0, -0.0, 1.0, -1.0, 3.0, -4.0, 1e-300, 2.5e-310, 1e150, -7.25e100, 0.1, 123456.789, -9.87e-5 })
        for (double b : { 0.0, -0.0, 1.0, -2.0, 4.0, 1e-300, 1e150, -3.3e-200, 0.7, 55555.5 }) {
            re.push_back(a);
            im.push_back(b);
        }
    const int n = static_cast<int>(re.size());
    std::vector<Omn64fc> c(n);
    for (int i = 0; i < n; ++i)
        c[i] = { re[i], im[i] };
    std::vector<double> mag(n), mag2(n), ph(n), ph2(n);
    ASSERT_EQ(V(omnsMagnitude_64f)(re.data(), im.data(), mag.data(), n), 0);
    ASSERT_EQ(V(omnsMagnitude_64fc)(c.data(), mag2.data(), n), 0);
    ASSERT_EQ(V(omnsPhase_64f)(re.data(), im.data(), ph.data(), n), 0);
    ASSERT_EQ(V(omnsPhase_64fc)(c.data(), ph2.data(), n), 0);
    for (int i = 0; i < n; ++i) {
        // The plain formula: products in double, so tiny parts underflow
        // before the root; compare where the squares are normal.
        const long double r = re[i], m = im[i];
        const long double want = sqrtl(r * r + m * m);
        const double sq = re[i] * re[i] + im[i] * im[i];
        if ((re[i] == 0 && im[i] == 0) || sq > 1e-290) {
            EXPECT_LE(fabsl(mag[i] - want), ulp(static_cast<double>(want))) << re[i] << " " << im[i];
        } else {
            EXPECT_EQ(mag[i], sqrt(sq)) << "the plain formula underflows alike in every column";
        }
        EXPECT_EQ(bitsOf(mag[i]), bitsOf(mag2[i]));
        EXPECT_LE(fabsl(ph[i] - atan2l(m, r)), phaseUlps() * ulp(static_cast<double>(atan2l(m, r)))) << re[i] << " " << im[i];
        EXPECT_EQ(bitsOf(ph[i]), bitsOf(ph2[i]));
    }
    // No scaling against overflow: beyond about 1.3e154 the square is
    // infinite.
    const Omn64fc big = { 2e154, 0.0 };
    double out;
    ASSERT_EQ(V(omnsMagnitude_64fc)(&big, &out, 1), 0);
    EXPECT_TRUE(isinf(out));
}

TEST_P(PolarTest, PhaseWithinTheLastPlacesEverywhere)
{
    // Parts of every sign and of magnitudes from 1e-30 to 1e30, so that
    // every octant and every range of the ratio is met, in pairs.
    const int n = 20000;
    std::vector<Omn64fc> c(n);
    uint64_t x = 88172645463325252ull;
    auto next = [&] { x ^= x << 13; x ^= x >> 7; x ^= x << 17; return x; };
    for (int i = 0; i < n; ++i) {
        const double a = ldexp(static_cast<double>(next() >> 11) * 0x1p-53 + 0.5, static_cast<int>(next() % 40) - 20);
        const double b = ldexp(static_cast<double>(next() >> 11) * 0x1p-53 + 0.5, static_cast<int>(next() % 40) - 20);
        c[i] = { (next() & 1) ? a : -a, (next() & 1) ? b : -b };
    }
    std::vector<double> ph(n);
    ASSERT_EQ(V(omnsPhase_64fc)(c.data(), ph.data(), n), 0);
    double worst = 0;
    for (int i = 0; i < n; ++i) {
        const long double want = atan2l(static_cast<long double>(c[i].im), static_cast<long double>(c[i].re));
        worst = fmax(worst, static_cast<double>(fabsl(ph[i] - want) / ulp(static_cast<double>(want))));
    }
    EXPECT_LE(worst, phaseUlps());
}

TEST_P(PolarTest, PhaseOnTheAxesAndAtSignedZeros)
{
    struct Case { double re, im, phase; };
    const double pi = 3.14159265358979323846;
    const Case cases[] = {
        { 1.0, 0.0, 0.0 },      { 0.0, 1.0, pi / 2 },     { -1.0, 0.0, pi },      { 0.0, -1.0, -pi / 2 },
        { 2.0, -0.0, -0.0 },    { -2.0, -0.0, -pi },
        { 0.0, 0.0, 0.0 },      { 0.0, -0.0, -0.0 },      { -0.0, 0.0, pi },      { -0.0, -0.0, -pi },
    };
    for (const Case& k : cases) {
        const Omn64fc c = { k.re, k.im };
        double got;
        ASSERT_EQ(V(omnsPhase_64fc)(&c, &got, 1), 0);
        EXPECT_EQ(bitsOf(got), bitsOf(k.phase)) << k.re << " " << k.im;
        ASSERT_EQ(V(omnsPhase_64f)(&k.re, &k.im, &got, 1), 0);
        EXPECT_EQ(bitsOf(got), bitsOf(k.phase)) << k.re << " " << k.im;
    }
}

TEST_P(PolarTest, IntegerMagnitudeSquaredMagnitudeAndPhase)
{
    auto mag = [&](Omn32sc v, int sf) { Omn32s d = -7; EXPECT_EQ(V(omnsMagnitude_32sc_Sfs)(&v, &d, 1, sf), 0); return d; };
    auto sq = [&](Omn32sc v, int sf) { Omn32s d = -7; EXPECT_EQ(V(omnsMagSquared_32sc32s_Sfs)(&v, &d, 1, sf), 0); return d; };
    auto ph = [&](Omn32sc v, int sf) { Omn32s d = -7; EXPECT_EQ(V(omnsPhase_32sc_Sfs)(&v, &d, 1, sf), 0); return d; };
    // The listed cases.
    EXPECT_EQ(mag({ 3, 4 }, 0), 5);
    EXPECT_EQ(mag({ 3, 4 }, 1), 3);     // 2.5 rounds up
    EXPECT_EQ(mag({ 3, 4 }, 33), 0);
    EXPECT_EQ(mag({ 3, 4 }, -31), INT32_MAX);
    EXPECT_EQ(mag({ 0, 0 }, -31), 0);
    EXPECT_EQ(mag({ 0, -1 }, -100), INT32_MAX);
    EXPECT_EQ(mag({ 3, 4 }, -29), INT32_MAX);
    EXPECT_EQ(mag({ 3, 4 }, -26), 5 << 26);
    EXPECT_EQ(sq({ 1, 1 }, 1), 1);
    EXPECT_EQ(sq({ 1, 2 }, 1), 2);      // 2.5 truncates
    EXPECT_EQ(sq({ INT32_MIN, INT32_MIN }, 0), INT32_MAX);
    EXPECT_EQ(sq({ INT32_MIN, INT32_MIN }, 32), INT32_MAX);   // 2^63 / 2^32 = 2^31
    EXPECT_EQ(sq({ INT32_MIN, INT32_MIN }, 33), 1 << 30);
    EXPECT_EQ(sq({ 5, 0 }, 3000), 0);
    EXPECT_EQ(sq({ 5, 0 }, -3000), INT32_MAX);
    EXPECT_EQ(sq({ 0, 0 }, -3000), INT32_MAX);   // 0 times an infinite factor is no value at most the limit
    EXPECT_EQ(ph({ 0, 1 }, 0), 2);      // pi/2 = 1.57 rounds up
    EXPECT_EQ(ph({ 0, 1 }, -1), 3);
    EXPECT_EQ(ph({ -1, 0 }, 0), 3);
    EXPECT_EQ(ph({ -1, -1 }, 0), -2);   // -3pi/4 = -2.36
    EXPECT_EQ(ph({ 0, -1 }, 0), -2);
    EXPECT_EQ(ph({ -1, 0 }, -29), 1686629713);   // pi * 2^29 = 1686629713.06
    EXPECT_EQ(ph({ -1, 0 }, -30), INT32_MAX);
    EXPECT_EQ(ph({ -1, -1 }, -30), INT32_MIN);
    EXPECT_EQ(ph({ 1, 1 }, 3), 0);      // 0.098 rounds to 0
    // A phase of 0 times an infinite factor is NaN, which converts to the
    // integer indefinite value.
    EXPECT_EQ(ph({ 1, 0 }, -3000), INT32_MIN);
    EXPECT_EQ(ph({ 0, 0 }, -3000), INT32_MIN);
    EXPECT_EQ(ph({ 0, 1 }, -3000), INT32_MAX);
    // A sweep against long double: the magnitude rounds half up, the
    // squared magnitude truncates, the phase rounds half away from zero.
    const Omn32s parts[] = { 0, 1, -1, 3, -4, 1000, 46340, -46341, 1 << 20, INT32_MAX, INT32_MIN };
    for (Omn32s a : parts)
        for (Omn32s b : parts)
            for (int sf = -32; sf <= 34; ++sf) {
                const Omn32sc v = { a, b };
                const long double s2 = static_cast<long double>(a) * a + static_cast<long double>(b) * b;   // exact
                const long double k = ldexpl(1.0L, -sf);
                long double m = sf < -30 ? (s2 > 0 ? 1e30L : 0) : sf >= 33 ? 0 : floorl(sqrtl(s2) * k + 0.5L);
                const Omn32s got = mag(v, sf);
                if (m > INT32_MAX) {
                    EXPECT_EQ(got, INT32_MAX);
                } else {
                    EXPECT_LE(fabsl(got - m), sf >= -30 && sf <= 32 && s2 > 9007199254740992.0L ? 1 : 0) << a << " " << b << " sf " << sf;
                }
                const long double q = s2 * k;
                const Omn32s gotSq = sq(v, sf);
                if (q > INT32_MAX + 1.0L) {
                    EXPECT_EQ(gotSq, INT32_MAX);
                } else if (s2 <= 9007199254740992.0L && q <= INT32_MAX) {
                    EXPECT_EQ(gotSq, static_cast<Omn32s>(floorl(q))) << a << " " << b << " sf " << sf;
                }
                long double p = atan2l(static_cast<long double>(b), static_cast<long double>(a)) * k;
                p = p < 0 ? ceill(p - 0.5L) : floorl(p + 0.5L);
                const Omn32s gotPh = ph(v, sf);
                if (p >= 2147483648.0L)
                    EXPECT_EQ(gotPh, INT32_MAX);
                else if (p < -2147483648.0L)
                    EXPECT_EQ(gotPh, INT32_MIN);
                else
                    EXPECT_EQ(gotPh, static_cast<Omn32s>(p)) << a << " " << b << " sf " << sf;
            }
}

TEST_P(PolarTest, CartToPolarRunsBothPartsAndReportsTheMagnitudeFirst)
{
    const Omn64fc c[3] = { { 3, 4 }, { -1, 0 }, { 0, -2 } };
    const double re[3] = { 3, -1, 0 }, im[3] = { 4, 0, -2 };
    double m[3] = { 9, 9, 9 }, p[3] = { 9, 9, 9 };
    ASSERT_EQ(V(omnsCartToPolar_64fc)(c, m, p, 3), 0);
    EXPECT_EQ(m[0], 5.0);
    EXPECT_EQ(m[2], 2.0);
    EXPECT_EQ(p[1], atan2(0.0, -1.0));
    // A null phase: the magnitude is written and -8 comes back.
    double m2[3] = { 9, 9, 9 };
    EXPECT_EQ(V(omnsCartToPolar_64f)(re, im, m2, nullptr, 3), -8);
    EXPECT_EQ(m2[0], 5.0);
    // A null magnitude stops only the magnitude: the phase is written.
    double p2[3] = { 9, 9, 9 };
    EXPECT_EQ(V(omnsCartToPolar_64fc)(c, nullptr, p2, 3), -8);
    EXPECT_EQ(p2[2], atan2(-2.0, 0.0));
    double p3[3] = { 9, 9, 9 };
    EXPECT_EQ(V(omnsCartToPolar_64f)(re, nullptr, m2, p3, 3), -8);
    EXPECT_EQ(p3[0], 9.0);
    EXPECT_EQ(V(omnsCartToPolar_64f)(re, im, m2, p3, 0), -6);
}

TEST_P(PolarTest, PolarToCartAgainstLongDoubleInBothLayouts)
{
    std::vector<double> mag, ph;
    const double phases[] = { 0.0, -0.0, 0.5, -1.0, 1.5707963267948966, 3.141592653589793, -3.141592653589793, 4.71238898038469,
                              10.0, -100.25, 1000.0, 12345.678, 7.0e5, -3.0e6, 1e-8 };
    for (double p : phases)
        for (double m : { 1.0, 2.5, 1e-3, 7e10 }) {
            mag.push_back(m);
            ph.push_back(p);
        }
    const int n = static_cast<int>(mag.size());
    std::vector<double> re(n), im(n);
    std::vector<Omn64fc> c(n);
    ASSERT_EQ(V(omnsPolarToCart_64f)(mag.data(), ph.data(), re.data(), im.data(), n), 0);
    ASSERT_EQ(V(omnsPolarToCart_64fc)(mag.data(), ph.data(), c.data(), n), 0);
    for (int i = 0; i < n; ++i) {
        const long double wr = mag[i] * cosl(ph[i]), wi = mag[i] * sinl(ph[i]);
        // A few units of the magnitude's last place; px and a6 take the
        // x87 sine, whose reduction by a 66-bit pi drifts in proportion to
        // the phase.
        const double tol = 4 * ulp(mag[i]) + (col() < 2 ? mag[i] * fabs(ph[i]) * 0x1p-62 : 0.0);
        EXPECT_LE(fabsl(re[i] - wr), tol) << mag[i] << " " << ph[i];
        EXPECT_LE(fabsl(im[i] - wi), tol) << mag[i] << " " << ph[i];
        EXPECT_EQ(bitsOf(c[i].re), bitsOf(re[i]));
        EXPECT_EQ(bitsOf(c[i].im), bitsOf(im[i]));
    }
    // A phase of -0 keeps its sign in the imaginary part, in pairs and
    // alone.
    const double ones[3] = { 1.0, 1.0, 1.0 }, negZero[3] = { -0.0, -0.0, -0.0 };
    double r[3], m[3];
    ASSERT_EQ(V(omnsPolarToCart_64f)(ones, negZero, r, m, 3), 0);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(r[i], 1.0);
        EXPECT_EQ(bitsOf(m[i]), bitsOf(-0.0)) << i;
    }
    // Round trip through CartToPolar.
    std::vector<double> m2(n), p2(n);
    ASSERT_EQ(V(omnsCartToPolar_64fc)(c.data(), m2.data(), p2.data(), n), 0);
    for (int i = 0; i < n; ++i)
        EXPECT_NEAR(m2[i], mag[i], 8 * ulp(mag[i]));
}

TEST_P(PolarTest, ProcessorSineOfPxAndA6LeavesHugePhasesUnchanged)
{
    // The x87 sine and cosine return an operand beyond 2^63 as it stands;
    // w7 and t7 reduce it like any other phase.
    const double m = 3.0, p = 0x1p70;
    double re, im;
    ASSERT_EQ(V(omnsPolarToCart_64f)(&m, &p, &re, &im, 1), 0);
    if (col() < 2) {
        EXPECT_EQ(re, m * p);
        EXPECT_EQ(im, m * p);
    } else {
        EXPECT_LE(fabs(re), 3.0);
        EXPECT_NEAR(re * re + im * im, 9.0, 1e-12);
    }
}

OMN_ALL_COLUMNS(PolarTest);
