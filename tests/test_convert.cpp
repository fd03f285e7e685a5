// The integer and floating Convert forms in every column: argument checks,
// limits, ties, NaN and infinity per column, scale factors and their
// clamps, rndMode 0, 1, 2 and -1, against long double references; and the
// rounding bracket of the SSE kernels.
#include <gtest/gtest.h>

#include <float.h>
#include <limits.h>
#include <math.h>
#include <stdint.h>
#include <string.h>

#include <random>
#include <vector>

#if defined(__x86_64__) || defined(__i386__)
#include <xmmintrin.h>
#define OMN_TEST_X86 1
#endif

#include "tests/columns.h"

using namespace omn;

namespace {

uint32_t bitsOf(float x) { uint32_t b; memcpy(&b, &x, 4); return b; }

const int kRndModes[] = { 0, 1, 2, -1 };

// Scale factors around every clamp and range limit of the forms.
const int kFactors[] = { INT_MIN, -1100, -1024, -1023, -150, -128, -127, -126, -20, -3, -1, 0,
                         1, 2, 7, 15, 31, 126, 127, 149, 150, 1074, 1075, 1100, INT_MAX };

// 2^-sf by repeated halving or doubling from 1, in double or in single.
template <typename F>
F repeatedScale(int sf)
{
    F f = 1;
    const long n = sf < 0 ? -static_cast<long>(sf) : sf;
    for (long k = 0; k < n && k < 2000; ++k)
        f = sf > 0 ? f * F(0.5) : f * F(2);
    return f;
}

struct IntForm {
    const char* name;
    int32_t lo, hi;
    bool singleFactor;      // the unsigned forms keep the factor in single precision
    // Runs the column's variant over n elements and widens the results.
    OmnStatus (*run)(int col, const float* s, int32_t* out, int n, int rnd, int sf, int dstOffset);
};

template <typename D, OmnStatus (*const (&Fn)[4])(const Omn32f*, D*, int, int, int)>
OmnStatus runForm(int col, const float* s, int32_t* out, int n, int rnd, int sf, int off)
{
    std::vector<D> d(n + off + 8, D(0x5A));
    const OmnStatus st = Fn[col](s, d.data() + off, n, rnd, sf);
    for (int i = 0; i < n; ++i)
        out[i] = d[off + i];
    for (int i = 0; i < 8; ++i)
        if (d[off + n + i] != D(0x5A))
            ADD_FAILURE() << "wrote past the end";
    return st;
}

const IntForm kFloatToInt[] = {
    { "32f8s", -128, 127, false, runForm<Omn8s, test::omnsConvert_32f8s_Sfs> },
    { "32f8u", 0, 255, true, runForm<Omn8u, test::omnsConvert_32f8u_Sfs> },
    { "32f16s", -32768, 32767, false, runForm<Omn16s, test::omnsConvert_32f16s_Sfs> },
    { "32f16u", 0, 65535, true, runForm<Omn16u, test::omnsConvert_32f16u_Sfs> },
    { "32f32s", INT32_MIN, INT32_MAX, false, runForm<Omn32s, test::omnsConvert_32f32s_Sfs> },
};

// Where a NaN goes: the lower limit of the signed forms and the upper limit
// of the unsigned ones, except in the nearest, unscaled 32f16s kernel of w7
// and t7, which limits by a minimum first.
int32_t nanResult(const IntForm& f, int col, int rnd, int sf)
{
    if (f.hi == 32767 && rnd == 1 && sf == 0 && col >= 2)
        return 32767;
    return f.lo == 0 ? f.hi : f.lo;
}

int32_t reference(const IntForm& form, int col, float x, int rnd, int sf)
{
    const long double f = form.singleFactor ? repeatedScale<float>(sf) : repeatedScale<double>(sf);
    const long double y = sf == 0 ? x : x * f;
    if (y != y)
        return nanResult(form, col, rnd, sf);
    if (y >= form.hi)
        return form.hi;
    if (y <= form.lo)
        return form.lo;
    return static_cast<int32_t>(rnd == 1 ? nearbyintl(y) : truncl(y));
}

// Values around every limit, ties, specials, and ties after scaling.
std::vector<float> floatInputs(int sf)
{
    std::vector<float> v = { 0.0f, -0.0f, 1e-45f, -1e-45f, FLT_MIN, 0.49999997f, 0.5f, 0.50000006f, 1.5f, 2.5f, 3.5f,
                             126.5f, 127.0f, 127.5f, 128.0f, 128.5f, 254.5f, 255.0f, 255.5f, 256.0f, 32766.5f, 32767.0f,
                             32767.5f, 32768.0f, 32768.5f, 65534.5f, 65535.0f, 65535.5f, 65536.0f, 2147483520.0f,
                             2147483648.0f, 4294967296.0f, 1e30f, FLT_MAX, INFINITY, NAN };
    const size_t base = v.size();
    for (size_t i = 0; i < base; ++i)
        v.push_back(-v[i]);
    const int e = sf < -200 ? -200 : (sf > 200 ? 200 : sf);
    for (int k = -40; k <= 40; ++k)
        v.push_back(static_cast<float>(ldexp(k + 0.5, e)));
    std::mt19937 rng(static_cast<uint32_t>(sf) * 7919u + 1);
    for (int k = 0; k < 200; ++k) {
        const float m = std::uniform_real_distribution<float>(1.0f, 2.0f)(rng);
        const int ex = std::uniform_int_distribution<int>(-4, 34)(rng) + (e > 0 && e < 100 ? e : 0);
        v.push_back(ldexpf(rng() & 1 ? m : -m, ex));
    }
    return v;
}

} // namespace

class ConvertTest : public test::ColumnTest {};

TEST_P(ConvertTest, FloatToIntegerFormsMatchTheReference)
{
    for (const IntForm& form : kFloatToInt) {
        for (int sf : kFactors) {
            const std::vector<float> in = floatInputs(sf);
            const int n = static_cast<int>(in.size());
            std::vector<int32_t> got(n);
            for (int rnd : kRndModes) {
                for (int off : { 0, 1 }) {
                    ASSERT_EQ(form.run(col(), in.data(), got.data(), n, rnd, sf, off), 0);
                    for (int i = 0; i < n; ++i)
                        ASSERT_EQ(got[i], reference(form, col(), in[i], rnd, sf))
                            << form.name << " x " << in[i] << " sf " << sf << " rndMode " << rnd << " at " << i;
                }
            }
        }
    }
}

TEST_P(ConvertTest, NaNDestinyPerColumnInEveryPathOfTheKernels)
{
    // NaNs at the head, in the eight-element body and in the tail.
    std::vector<float> in(45, 1.0f);
    for (int i : { 0, 3, 9, 20, 31, 44 })
        in[i] = (i % 2) ? -NAN : NAN;
    std::vector<int32_t> got(in.size());
    for (const IntForm& form : kFloatToInt) {
        for (int sf : { 0, 1, -2 }) {
            for (int rnd : kRndModes) {
                ASSERT_EQ(form.run(col(), in.data(), got.data(), 45, rnd, sf, 0), 0);
                for (int i : { 0, 3, 9, 20, 31, 44 })
                    EXPECT_EQ(got[i], nanResult(form, col(), rnd, sf)) << form.name << " sf " << sf << " rndMode " << rnd;
            }
        }
    }
    // The 64-bit source form and the packings have no column difference.
    const double dn[20] = { NAN, -NAN, NAN, NAN, NAN, NAN, NAN, NAN, NAN, NAN, NAN, NAN, NAN, NAN, NAN, NAN, NAN, NAN, NAN, NAN };
    Omn32s di[20];
    for (int rnd : kRndModes) {
        ASSERT_EQ(V(omnsConvert_64f32s_Sfs)(dn, di, 20, rnd, 0), 0);
        for (Omn32s v : di)
            EXPECT_EQ(v, INT32_MIN);
    }
}

TEST_P(ConvertTest, TiesScalesAndNaNsOfSingleElements)
{
    const float s[] = { 2.5f, 3.5f, -2.5f };
    Omn16s d[3];
    ASSERT_EQ(V(omnsConvert_32f16s_Sfs)(s, d, 3, 1, 0), 0);
    EXPECT_EQ(d[0], 2); EXPECT_EQ(d[1], 4); EXPECT_EQ(d[2], -2);
    for (int rnd : { 0, 2 }) {
        ASSERT_EQ(V(omnsConvert_32f16s_Sfs)(s, d, 3, rnd, 0), 0);
        EXPECT_EQ(d[0], 2); EXPECT_EQ(d[1], 3); EXPECT_EQ(d[2], -2);
    }
    const float three = 3.0f, big = 20000.0f;
    ASSERT_EQ(V(omnsConvert_32f16s_Sfs)(&three, d, 1, 1, 1), 0);
    EXPECT_EQ(d[0], 2);
    ASSERT_EQ(V(omnsConvert_32f16s_Sfs)(&big, d, 1, 1, -1), 0);
    EXPECT_EQ(d[0], 32767);
    const Omn32s ints[] = { 3, 1, -3 };
    ASSERT_EQ(V(omnsConvert_32s16s_Sfs)(ints, d, 3, 1), 0);
    EXPECT_EQ(d[0], 2); EXPECT_EQ(d[1], 0); EXPECT_EQ(d[2], -2);
    const float nan = NAN;
    Omn8s s8; Omn8u u8;
    ASSERT_EQ(V(omnsConvert_32f8u_Sfs)(&nan, &u8, 1, 1, 0), 0);
    EXPECT_EQ(u8, 255);
    ASSERT_EQ(V(omnsConvert_32f8s_Sfs)(&nan, &s8, 1, 1, 0), 0);
    EXPECT_EQ(s8, -128);
}

TEST_P(ConvertTest, DoubleToInt32RoundsLikeTheRule)
{
    const double in[] = { 0.5, 1.5, 2.5, -0.5, -1.5, -2.5, 0.49999999999999994, 2147483646.5, 2147483647.0, 2147483646.9,
                          -2147483647.5, -2147483648.0, -2147483648.5, 1e300, -1e300, INFINITY, -INFINITY, -0.0,
                          4503599627370497.0, 12345.678, -98765.4321 };
    const int n = sizeof in / sizeof in[0];
    Omn32s out[n];
    for (int sf : kFactors) {
        for (int rnd : kRndModes) {
            ASSERT_EQ(V(omnsConvert_64f32s_Sfs)(in, out, n, rnd, sf), 0);
            const double f = repeatedScale<double>(sf);
            for (int i = 0; i < n; ++i) {
                const long double y = sf == 0 ? in[i] : static_cast<long double>(in[i]) * f;
                int32_t expect;
                if (y != y || y <= INT32_MIN)
                    expect = INT32_MIN;
                else if (y >= INT32_MAX)
                    expect = INT32_MAX;
                else
                    expect = static_cast<int32_t>(rnd == 1 ? nearbyintl(y) : truncl(y));
                EXPECT_EQ(out[i], expect) << in[i] << " sf " << sf << " rndMode " << rnd;
            }
        }
    }
    // y + 0.5 is a double addition: for 0.5 + 2^-53 it gives exactly 1.0,
    // which counts as a tie and goes to the even 0.
    const double justAbove[] = { 0.5 + ldexp(1, -53), -(0.5 + ldexp(1, -53)), 0.5 + ldexp(1, -52) };
    Omn32s r[3];
    ASSERT_EQ(V(omnsConvert_64f32s_Sfs)(justAbove, r, 3, 1, 0), 0);
    EXPECT_EQ(r[0], 0);
    EXPECT_EQ(r[1], 0);
    EXPECT_EQ(r[2], 1);
}

TEST_P(ConvertTest, DoubleToFloatSaturatesInsteadOfInfinity)
{
    const double fmax = FLT_MAX;
    std::vector<double> in = { INFINITY, -INFINITY, 1e300, -1e300, fmax, -fmax, fmax * (1 + ldexp(1, -30)), nextafter(fmax, 0),
                               1.0 + ldexp(1, -30), 1.0 / 3, -0.0, 0.0, 1e-50, -1e-50, 1e-320, 12345.6789 };
    const size_t specials = in.size();
    while (in.size() < 53)
        in.push_back(static_cast<double>(in.size()) * 1.1e37 - 2.9e38);
    in.push_back(NAN);
    in.push_back(-NAN);
    in[20] = NAN;   // one in the SSE body
    const float nanTo = col() >= 2 ? FLT_MAX : -FLT_MAX;
    std::vector<float> out(in.size() + 1, 7.0f);
    for (int off : { 0, 1 }) {
        ASSERT_EQ(V(omnsConvert_64f32f)(in.data(), out.data() + off, static_cast<int>(in.size())), 0);
        for (size_t i = 0; i < in.size(); ++i) {
            float expect;
            if (in[i] != in[i])
                expect = nanTo;
            else if (in[i] >= fmax)
                expect = FLT_MAX;
            else if (in[i] <= -fmax)
                expect = -FLT_MAX;
            else
                expect = static_cast<float>(in[i]);
            EXPECT_EQ(bitsOf(out[off + i]), bitsOf(expect)) << "at " << i << " value " << in[i];
        }
        (void)specials;
    }
    // Widening back is exact.
    std::vector<double> back(in.size());
    ASSERT_EQ(V(omnsConvert_32f64f)(out.data() + 1, back.data(), static_cast<int>(in.size())), 0);
    for (size_t i = 0; i < in.size(); ++i)
        EXPECT_EQ(back[i], static_cast<double>(out[1 + i]));
}

TEST_P(ConvertTest, IntegerToFloatScaleClamps)
{
    const Omn16s s16[] = { 1, -1, 3, 32767, -32768, 0, 12345 };
    const Omn32s s32[] = { 1, -1, 3, INT32_MAX, INT32_MIN, 0, 16777217, 123456789 };
    Omn32f f[8];
    Omn64f d[8];
    struct { int lo, hi; } c16f = { -112, 126 }, c32f = { -96, 126 }, c16d = { -1008, 1022 }, c32d = { -992, 1022 };
    const auto clampTo = [](int sf, int lo, int hi) { return sf < lo ? lo : (sf > hi ? hi : sf); };
    for (int sf : { INT_MIN, -2000, -1009, -1008, -993, -992, -200, -113, -112, -97, -96, -10, -1, 0, 1, 5, 30, 126, 127,
                    1022, 1023, 2000, INT_MAX }) {
        ASSERT_EQ(V(omnsConvert_16s32f_Sfs)(s16, f, 7, sf), 0);
        for (int i = 0; i < 7; ++i)
            EXPECT_EQ(f[i], static_cast<float>(ldexpl(s16[i], -clampTo(sf, c16f.lo, c16f.hi)))) << s16[i] << " sf " << sf;
        ASSERT_EQ(V(omnsConvert_32s32f_Sfs)(s32, f, 8, sf), 0);
        for (int i = 0; i < 8; ++i)
            EXPECT_EQ(f[i], static_cast<float>(ldexpl(s32[i], -clampTo(sf, c32f.lo, c32f.hi)))) << s32[i] << " sf " << sf;
        ASSERT_EQ(V(omnsConvert_16s64f_Sfs)(s16, d, 7, sf), 0);
        for (int i = 0; i < 7; ++i)
            EXPECT_EQ(d[i], static_cast<double>(ldexpl(s16[i], -clampTo(sf, c16d.lo, c16d.hi)))) << s16[i] << " sf " << sf;
        ASSERT_EQ(V(omnsConvert_32s64f_Sfs)(s32, d, 8, sf), 0);
        for (int i = 0; i < 8; ++i)
            EXPECT_EQ(d[i], static_cast<double>(ldexpl(s32[i], -clampTo(sf, c32d.lo, c32d.hi)))) << s32[i] << " sf " << sf;
    }
}

TEST_P(ConvertTest, WideningIsExactAndSaturationHoldsTheLimits)
{
    std::vector<Omn8s> s8(256);
    std::vector<Omn8u> u8(256);
    std::vector<Omn16s> s16(65536), w16(256);
    std::vector<Omn16u> u16(65536);
    for (int i = 0; i < 256; ++i) { s8[i] = static_cast<Omn8s>(i - 128); u8[i] = static_cast<Omn8u>(i); }
    for (int i = 0; i < 65536; ++i) { s16[i] = static_cast<Omn16s>(i - 32768); u16[i] = static_cast<Omn16u>(i); }
    std::vector<Omn32f> f(65536);
    std::vector<Omn32s> i32(65536);
    ASSERT_EQ(V(omnsConvert_8s16s)(s8.data(), w16.data(), 256), 0);
    for (int i = 0; i < 256; ++i) ASSERT_EQ(w16[i], i - 128);
    ASSERT_EQ(V(omnsConvert_8s32f)(s8.data(), f.data(), 256), 0);
    for (int i = 0; i < 256; ++i) ASSERT_EQ(f[i], i - 128);
    ASSERT_EQ(V(omnsConvert_8u32f)(u8.data(), f.data(), 256), 0);
    for (int i = 0; i < 256; ++i) ASSERT_EQ(f[i], i);
    ASSERT_EQ(V(omnsConvert_16s32f)(s16.data(), f.data(), 65536), 0);
    for (int i = 0; i < 65536; ++i) ASSERT_EQ(f[i], i - 32768);
    ASSERT_EQ(V(omnsConvert_16u32f)(u16.data(), f.data(), 65536), 0);
    for (int i = 0; i < 65536; ++i) ASSERT_EQ(f[i], i);
    ASSERT_EQ(V(omnsConvert_16s32s)(s16.data(), i32.data(), 65536), 0);
    for (int i = 0; i < 65536; ++i) ASSERT_EQ(i32[i], i - 32768);

    const Omn32s wide[] = { INT32_MIN, -32769, -32768, -32767, -1, 0, 1, 32766, 32767, 32768, INT32_MAX };
    const int n = sizeof wide / sizeof wide[0];
    Omn16s out[n];
    ASSERT_EQ(V(omnsConvert_32s16s)(wide, out, n), 0);
    for (int i = 0; i < n; ++i)
        EXPECT_EQ(out[i], wide[i] < -32768 ? -32768 : (wide[i] > 32767 ? 32767 : wide[i]));
    Omn64f d[n];
    ASSERT_EQ(V(omnsConvert_32s64f)(wide, d, n), 0);
    for (int i = 0; i < n; ++i)
        EXPECT_EQ(d[i], static_cast<double>(wide[i]));
}

TEST_P(ConvertTest, ScaledShortNarrowingRoundsToEvenAndSaturates)
{
    std::vector<Omn32s> in = { INT32_MIN, INT32_MIN + 1, -1048577, -65536, -98304, -32769, -32768, -5, -4, -3, -2, -1, 0, 1, 2,
                               3, 4, 5, 6, 7, 32767, 32768, 98304, 65535, 1048575, INT32_MAX - 1, INT32_MAX };
    std::mt19937 rng(5);
    for (int k = 0; k < 200; ++k)
        in.push_back(static_cast<Omn32s>(rng()));
    const int n = static_cast<int>(in.size());
    std::vector<Omn16s> out(n);
    for (int sf : { INT_MIN, -40, -16, -15, -14, -8, -1, 0, 1, 2, 3, 8, 15, 16, 17, 30, 31, 32, 100, INT_MAX }) {
        ASSERT_EQ(V(omnsConvert_32s16s_Sfs)(in.data(), out.data(), n, sf), 0);
        const int e = sf > 31 ? 31 : (sf < -15 ? -15 : sf);
        for (int i = 0; i < n; ++i) {
            const long double y = ldexpl(in[i], -e);
            const long double r = nearbyintl(y);
            EXPECT_EQ(out[i], r >= 32767 ? 32767 : (r <= -32768 ? -32768 : static_cast<int>(r))) << in[i] << " sf " << sf;
        }
    }
}

namespace {

// Every Convert form, with its argument list filled in.
struct AnyForm {
    const char* name;
    OmnStatus (*call)(int col, const void* s, void* d, int len);
};

#define CV(fn, S, D, ...) \
    { #fn, [](int c, const void* s, void* d, int n) { \
          return test::fn[c](static_cast<const S*>(s), static_cast<D*>(d), n __VA_ARGS__); } }

const AnyForm kAllForms[] = {
    CV(omnsConvert_8s16s, Omn8s, Omn16s), CV(omnsConvert_16s32s, Omn16s, Omn32s), CV(omnsConvert_32s16s, Omn32s, Omn16s),
    CV(omnsConvert_8s32f, Omn8s, Omn32f), CV(omnsConvert_8u32f, Omn8u, Omn32f), CV(omnsConvert_16s32f, Omn16s, Omn32f),
    CV(omnsConvert_16u32f, Omn16u, Omn32f), CV(omnsConvert_32s64f, Omn32s, Omn64f), CV(omnsConvert_32s32f, Omn32s, Omn32f),
    CV(omnsConvert_32f8s_Sfs, Omn32f, Omn8s, , 1, 0), CV(omnsConvert_32f8u_Sfs, Omn32f, Omn8u, , 1, 0),
    CV(omnsConvert_32f16s_Sfs, Omn32f, Omn16s, , 1, 0), CV(omnsConvert_32f16u_Sfs, Omn32f, Omn16u, , 1, 0),
    CV(omnsConvert_64f32s_Sfs, Omn64f, Omn32s, , 1, 0), CV(omnsConvert_32f32s_Sfs, Omn32f, Omn32s, , 1, 0),
    CV(omnsConvert_32f64f, Omn32f, Omn64f), CV(omnsConvert_64f32f, Omn64f, Omn32f),
    CV(omnsConvert_16s32f_Sfs, Omn16s, Omn32f, , 1), CV(omnsConvert_16s64f_Sfs, Omn16s, Omn64f, , 1),
    CV(omnsConvert_32s32f_Sfs, Omn32s, Omn32f, , 1), CV(omnsConvert_32s64f_Sfs, Omn32s, Omn64f, , 1),
    CV(omnsConvert_32s16s_Sfs, Omn32s, Omn16s, , 1), CV(omnsConvert_24u32u, Omn8u, Omn32u),
    CV(omnsConvert_32u24u_Sfs, Omn32u, Omn8u, , 0), CV(omnsConvert_24u32f, Omn8u, Omn32f),
    CV(omnsConvert_32f24u_Sfs, Omn32f, Omn8u, , 0), CV(omnsConvert_24s32s, Omn8u, Omn32s),
    CV(omnsConvert_32s24s_Sfs, Omn32s, Omn8u, , 0), CV(omnsConvert_24s32f, Omn8u, Omn32f),
    CV(omnsConvert_32f24s_Sfs, Omn32f, Omn8u, , 0), CV(omnsConvert_16s16f, Omn16s, Omn16f, , 1),
    CV(omnsConvert_16f16s_Sfs, Omn16f, Omn16s, , 1, 0), CV(omnsConvert_32f16f, Omn32f, Omn16f, , 1),
    CV(omnsConvert_16f32f, Omn16f, Omn32f),
};

} // namespace

TEST_P(ConvertTest, EveryFormChecksPointersFirstThenLength)
{
    ASSERT_EQ(sizeof kAllForms / sizeof kAllForms[0], 34u);
    alignas(16) uint8_t src[64] = {}, dst[64];
    for (const AnyForm& form : kAllForms) {
        memset(dst, 0xCC, sizeof dst);
        EXPECT_EQ(form.call(col(), nullptr, dst, 0), -8) << form.name;
        EXPECT_EQ(form.call(col(), src, nullptr, 0), -8) << form.name;
        EXPECT_EQ(form.call(col(), nullptr, nullptr, -1), -8) << form.name;
        EXPECT_EQ(form.call(col(), src, dst, 0), -6) << form.name;
        EXPECT_EQ(form.call(col(), src, dst, -1), -6) << form.name;
        EXPECT_EQ(form.call(col(), src, dst, INT_MIN), -6) << form.name;
        for (uint8_t b : dst)
            ASSERT_EQ(b, 0xCC) << form.name << " wrote on a refused call";
        EXPECT_EQ(form.call(col(), src, dst, 1), 0) << form.name;
    }
}

#if defined(OMN_TEST_X86)

// The kernels that round with the SSE control register set its rounding
// field for the call and put the caller's word back; the forms whose rule
// is the current mode follow it in every column.
TEST_P(ConvertTest, RoundingBracketAndCurrentMode)
{
    std::vector<float> ties(64);
    for (int i = 0; i < 64; ++i)
        ties[i] = (i - 32) + 0.5f;
    const unsigned saved = _mm_getcsr();
    for (unsigned mode : { 0x0000u, 0x2000u, 0x4000u, 0x6000u }) {
        const unsigned word = (saved & ~0x6000u) | mode;
        _mm_setcsr(word);
        std::vector<Omn16s> s16(64);
        std::vector<Omn8u> u8(64);
        const OmnStatus a = V(omnsConvert_32f16s_Sfs)(ties.data(), s16.data(), 64, 1, 0);
        const unsigned after16s = _mm_getcsr();
        const OmnStatus b = V(omnsConvert_32f8u_Sfs)(ties.data(), u8.data(), 64, 1, -1);
        const unsigned after8u = _mm_getcsr();
        // Current mode: 2^24 + 1 and 1 + 2^-30 are between two singles.
        const Omn32s odd = 16777217;
        Omn32f f32;
        V(omnsConvert_32s32f)(&odd, &f32, 1);
        std::vector<double> near1(20, 1.0 + ldexp(1, -30));
        std::vector<float> narrowed(20);
        V(omnsConvert_64f32f)(near1.data(), narrowed.data(), 20);
        _mm_setcsr(saved);
        ASSERT_EQ(a, 0);
        ASSERT_EQ(b, 0);
        // The sticky exception flags (bits 0-5) may pick up an inexact.
        EXPECT_EQ(after16s & ~0x3Fu, word & ~0x3Fu) << "control word not restored, mode " << mode;
        EXPECT_EQ(after8u & ~0x3Fu, word & ~0x3Fu) << "control word not restored, mode " << mode;
        for (int i = 0; i < 64; ++i) {
            EXPECT_EQ(s16[i], static_cast<int>(nearbyint(ties[i]))) << ties[i] << " mode " << mode;
            const double y = ties[i] * 2.0;   // scale factor -1
            EXPECT_EQ(u8[i], y <= 0 ? 0 : static_cast<int>(nearbyint(y))) << ties[i] << " mode " << mode;
        }
        const bool up = mode == 0x4000u, down = mode == 0x2000u || mode == 0x6000u;
        EXPECT_EQ(f32, up ? 16777218.0f : 16777216.0f) << "mode " << mode;
        for (float x : narrowed)
            EXPECT_EQ(x, up ? 1.0f + ldexpf(1, -23) : 1.0f) << "mode " << mode;
        (void)down;
    }
}

#endif

OMN_ALL_COLUMNS(ConvertTest);
