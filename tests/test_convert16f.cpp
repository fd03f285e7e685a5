// The 16-bit float and packed 24-bit conversions in every column, checked
// exhaustively against references written here from the formats' bit
// layouts and plain arithmetic: every 16-bit float pattern, every 16-bit
// integer, every 24-bit sample.
#include <gtest/gtest.h>

#include <limits.h>
#include <math.h>
#include <stdint.h>
#include <string.h>

#include <vector>

#include "tests/columns.h"

using namespace omn;

namespace {

uint32_t bitsOf(float x) { uint32_t b; memcpy(&b, &x, 4); return b; }
float floatOf(uint32_t b) { float x; memcpy(&x, &b, 4); return x; }

bool halfIsNaN(uint16_t h) { return (h & 0x7C00) == 0x7C00 && (h & 0x3FF) != 0; }

// The value of a finite 16-bit float: sign, exponent of bias 15, ten
// fraction bits; exponent 0 is subnormal, fraction * 2^-24.
double halfValue(uint16_t h)
{
    const int e = (h >> 10) & 31, m = h & 0x3FF;
    const double mag = e == 0 ? ldexp(m, -24) : ldexp(1024 + m, e - 25);
    return (h & 0x8000) ? -mag : mag;
}

// The single-precision pattern a 16-bit float widens to: its value, and for
// infinities and NaNs the all-ones exponent with the fraction kept.
uint32_t widenedBits(uint16_t h)
{
    if ((h & 0x7C00) == 0x7C00)
        return (uint32_t(h & 0x8000) << 16) | 0x7F800000u | (uint32_t(h & 0x3FF) << 13);
    return bitsOf(static_cast<float>(halfValue(h)));
}

// The nearest (ties to even) or truncated 16-bit float of a finite float,
// from its value: the grid step is 2^-24 below 2^-14 and 2^(E-10) above.
// Half the smallest subnormal (2^-25) rounds up to it rather than to zero.
// Overflow gives infinity.
uint16_t halfOfFloat(float x, bool nearest)
{
    const uint16_t sign = std::signbit(x) ? 0x8000 : 0;
    const double a = fabs(static_cast<double>(x));
    if (a == 0)
        return sign;
    int E;
    frexp(a, &E);                 // a in [2^(E-1), 2^E)
    const int step = (E - 1 < -14 ? -14 : E - 1) - 10;
    double q = ldexp(a, -step);   // exact
    q = nearest ? nearbyint(q) : trunc(q);
    if (nearest && a == ldexp(1.0, -25))
        q = 1;
    const double v = ldexp(q, step);
    if (v >= 65536.0)
        return sign | 0x7C00;
    // Encode v, which lies on the grid.
    if (v < ldexp(1.0, -14))
        return sign | static_cast<uint16_t>(ldexp(v, 24));
    int ve;
    const double fr = frexp(v, &ve);   // v = fr * 2^ve, fr in [0.5, 1)
    return sign | static_cast<uint16_t>((ve - 1 + 15) << 10) | static_cast<uint16_t>(ldexp(fr, 11) - 1024);
}

// Saturating nearest-even or truncating conversion of a long double.
int32_t roundSat(long double y, bool nearest, int32_t lo, int32_t hi)
{
    if (y >= hi)
        return hi;
    if (y <= lo)
        return lo;
    const long double r = nearest ? nearbyintl(y) : truncl(y);
    return r >= hi ? hi : (r <= lo ? lo : static_cast<int32_t>(r));
}

const int kRndModes[] = { 0, 1, 2, -1 };

} // namespace

class Convert16fTest : public test::ColumnTest {};

TEST_P(Convert16fTest, EveryHalfPatternWidensExactlyAndComesBack)
{
    std::vector<Omn16f> all(65536), back(65536, 0xAAAA);
    for (int i = 0; i < 65536; ++i)
        all[i] = static_cast<Omn16f>(i);
    std::vector<Omn32f> wide(65536);
    ASSERT_EQ(V(omnsConvert_16f32f)(all.data(), wide.data(), 65536), 0);
    for (int i = 0; i < 65536; ++i)
        ASSERT_EQ(bitsOf(wide[i]), widenedBits(static_cast<uint16_t>(i))) << std::hex << i;
    for (int mode : kRndModes) {
        ASSERT_EQ(V(omnsConvert_32f16f)(wide.data(), back.data(), 65536, mode), 0);
        for (int i = 0; i < 65536; ++i) {
            const uint16_t h = static_cast<uint16_t>(i);
            const uint16_t expect = halfIsNaN(h) ? ((h & 0x8000) | 0x7DFF) : h;
            ASSERT_EQ(back[i], expect) << std::hex << "pattern " << i << " rndMode " << std::dec << mode;
        }
    }
}

TEST_P(Convert16fTest, NarrowingRoundsAroundEveryHalfValue)
{
    // For every finite half h: the float midpoint to the next half up, one
    // float step on each side of it, and one float step from h itself.
    std::vector<Omn32f> src;
    for (uint32_t h = 0; h < 0x7C00; ++h) {
        const double lo = halfValue(static_cast<uint16_t>(h));
        const double hi = h + 1 == 0x7C00 ? 65536.0 : halfValue(static_cast<uint16_t>(h + 1));
        const float mid = static_cast<float>((lo + hi) / 2);   // exact
        const float l = static_cast<float>(lo);
        for (float f : { mid, nextafterf(mid, 0.0f), nextafterf(mid, 1e30f), nextafterf(l, 1e30f), nextafterf(l, 0.0f) }) {
            src.push_back(f);
            src.push_back(-f);
        }
    }
    // Below the subnormals, across the overflow bound, and the largest singles.
    for (float f : { 1e-30f, ldexpf(1, -26), ldexpf(1, -25), ldexpf(1.5f, -26), ldexpf(1.5f, -25), ldexpf(1, -24),
                     65504.0f, 65519.99f, 65520.0f, 65535.0f, 65536.0f, 1e10f, ldexpf(1, 127) }) {
        src.push_back(f);
        src.push_back(-f);
    }
    std::vector<Omn16f> got(src.size());
    for (int mode : kRndModes) {
        ASSERT_EQ(V(omnsConvert_32f16f)(src.data(), got.data(), static_cast<int>(src.size()), mode), 0);
        for (size_t i = 0; i < src.size(); ++i)
            ASSERT_EQ(got[i], halfOfFloat(src[i], mode == 1))
                << std::hex << "float bits " << bitsOf(src[i]) << " rndMode " << std::dec << mode;
    }
}

TEST_P(Convert16fTest, NarrowingSpecialPatterns)
{
    const struct { uint32_t in; uint16_t nearest, trunc; } cases[] = {
        { 0x477FF000, 0x7C00, 0x7BFF },   // 65520: up to infinity, truncated to the largest half
        { 0x7F800000, 0x7C00, 0x7C00 },   // infinities stay
        { 0xFF800000, 0xFC00, 0xFC00 },
        { 0x7FC00000, 0x7DFF, 0x7DFF },   // NaNs become the library's NaN with their sign
        { 0xFF800001, 0xFDFF, 0xFDFF },
        { 0x7FBFFFFF, 0x7DFF, 0x7DFF },
        // The nearest sum carrying out of the largest exponent takes the
        // pattern of its fraction: infinity if it is zero, else NaN.
        { 0x7F7FF000, 0x7C00, 0x7C00 },
        { 0x7F7FF001, 0x7DFF, 0x7C00 },
        { 0x7F7FFFFF, 0x7DFF, 0x7C00 },   // the largest single
        { 0xFF7FFFFF, 0xFDFF, 0xFC00 },
        { 0x33000000, 0x0001, 0x0000 },   // 2^-25: a tie that rounds up
        { 0xB3000000, 0x8001, 0x8000 },
        { 0x32FFFFFF, 0x0000, 0x0000 },   // just below it
        { 0x33C00000, 0x0002, 0x0001 },   // 1.5 * 2^-24: tie, up to the even 2
        { 0x80000000, 0x8000, 0x8000 },
    };
    // One at a time, and all in one array long enough for the block kernels.
    const int n = sizeof cases / sizeof cases[0];
    std::vector<Omn32f> all;
    for (int rep = 0; rep < 4; ++rep)
        for (const auto& tc : cases)
            all.push_back(floatOf(tc.in));
    std::vector<Omn16f> outAll(all.size());
    for (int mode : kRndModes) {
        ASSERT_EQ(V(omnsConvert_32f16f)(all.data(), outAll.data(), static_cast<int>(all.size()), mode), 0);
        for (size_t i = 0; i < all.size(); ++i) {
            const auto& tc = cases[i % n];
            EXPECT_EQ(outAll[i], mode == 1 ? tc.nearest : tc.trunc) << std::hex << tc.in << " rndMode " << std::dec << mode;
            Omn16f one = 0x1234;
            ASSERT_EQ(V(omnsConvert_32f16f)(&all[i], &one, 1, mode), 0);
            EXPECT_EQ(one, outAll[i]);
        }
    }
}

TEST_P(Convert16fTest, EveryShortToHalf)
{
    std::vector<Omn16s> src(65536);
    for (int i = 0; i < 65536; ++i)
        src[i] = static_cast<Omn16s>(i - 32768);
    std::vector<Omn16f> got(65536);
    for (int mode : kRndModes) {
        ASSERT_EQ(V(omnsConvert_16s16f)(src.data(), got.data(), 65536, mode), 0);
        for (int i = 0; i < 65536; ++i)
            ASSERT_EQ(got[i], halfOfFloat(static_cast<float>(src[i]), mode == 1)) << src[i] << " rndMode " << mode;
    }
    const Omn16s big = 32767;
    Omn16f h;
    ASSERT_EQ(V(omnsConvert_16s16f)(&big, &h, 1, 1), 0);
    EXPECT_EQ(h, 0x7800);   // 32768.0
    ASSERT_EQ(V(omnsConvert_16s16f)(&big, &h, 1, 0), 0);
    EXPECT_EQ(h, 0x77FF);   // 32752.0
}

TEST_P(Convert16fTest, EveryHalfToShortAcrossScaleFactors)
{
    std::vector<Omn16f> all(65536);
    for (int i = 0; i < 65536; ++i)
        all[i] = static_cast<Omn16f>(i);
    std::vector<Omn16s> got(65536);
    const int factors[] = { INT_MIN, -1000, -31, -16, -15, -14, -10, -5, -1, 0, 1, 2, 5, 9, 10, 11, 13, 14, 15, 20, 24, 25, 26, 40, INT_MAX };
    for (int sf : factors) {
        for (int mode : kRndModes) {
            ASSERT_EQ(V(omnsConvert_16f16s_Sfs)(all.data(), got.data(), 65536, mode, sf), 0);
            for (int i = 0; i < 65536; ++i) {
                const uint16_t h = static_cast<uint16_t>(i);
                int32_t expect;
                if ((h & 0x7C00) == 0x7C00)
                    expect = h == 0x7C00 ? 32767 : -32768;   // +inf; -inf and every NaN
                else
                    expect = roundSat(ldexpl(halfValue(h), sf < -100 ? 100 : (sf > 100 ? -100 : -sf)), mode == 1, -32768, 32767);
                ASSERT_EQ(got[i], expect) << std::hex << "pattern " << i << std::dec << " sf " << sf << " rndMode " << mode;
            }
        }
    }
}

TEST_P(Convert16fTest, Every24BitSampleUnpacksAndPacksBack)
{
    const int n = 1 << 24;
    std::vector<Omn8u> packed(3 * size_t(n));
    for (int i = 0; i < n; ++i) {
        packed[3 * size_t(i)] = static_cast<Omn8u>(i);
        packed[3 * size_t(i) + 1] = static_cast<Omn8u>(i >> 8);
        packed[3 * size_t(i) + 2] = static_cast<Omn8u>(i >> 16);
    }
    std::vector<Omn32u> u(n);
    std::vector<Omn32s> s(n);
    std::vector<Omn32f> f(n);
    std::vector<Omn8u> back(3 * size_t(n));
    ASSERT_EQ(V(omnsConvert_24u32u)(packed.data(), u.data(), n), 0);
    ASSERT_EQ(V(omnsConvert_24s32s)(packed.data(), s.data(), n), 0);
    for (int i = 0; i < n; ++i) {
        ASSERT_EQ(u[i], uint32_t(i));
        ASSERT_EQ(s[i], i < (1 << 23) ? i : i - (1 << 24));
    }
    ASSERT_EQ(V(omnsConvert_32u24u_Sfs)(u.data(), back.data(), n, 0), 0);
    ASSERT_TRUE(back == packed);
    ASSERT_EQ(V(omnsConvert_32s24s_Sfs)(s.data(), back.data(), n, 0), 0);
    ASSERT_TRUE(back == packed);
    ASSERT_EQ(V(omnsConvert_24u32f)(packed.data(), f.data(), n), 0);
    for (int i = 0; i < n; ++i)
        ASSERT_EQ(f[i], static_cast<float>(i));
    ASSERT_EQ(V(omnsConvert_32f24u_Sfs)(f.data(), back.data(), n, 0), 0);
    ASSERT_TRUE(back == packed);
    ASSERT_EQ(V(omnsConvert_24s32f)(packed.data(), f.data(), n), 0);
    for (int i = 0; i < n; ++i)
        ASSERT_EQ(f[i], static_cast<float>(s[i]));
    ASSERT_EQ(V(omnsConvert_32f24s_Sfs)(f.data(), back.data(), n, 0), 0);
    ASSERT_TRUE(back == packed);
}

namespace {

int32_t unpack24s(const Omn8u* p) { const int32_t v = p[0] | p[1] << 8 | p[2] << 16; return v >= (1 << 23) ? v - (1 << 24) : v; }
uint32_t unpack24u(const Omn8u* p) { return p[0] | p[1] << 8 | uint32_t(p[2]) << 16; }

} // namespace

TEST_P(Convert16fTest, PackingBoundariesAndScaleFactors)
{
    const int32_t sv[] = { INT32_MIN, INT32_MIN + 1, -16777216, -8388609, -8388608, -8388607, -65536, -3, -2, -1, 0, 1, 2, 3,
                           5, 6, 7, 65535, 8388606, 8388607, 8388608, 16777215, 16777216, INT32_MAX - 1, INT32_MAX };
    const int factors[] = { INT_MIN, -40, -31, -30, -24, -23, -22, -9, -8, -1, 0, 1, 2, 3, 8, 23, 24, 30, 31, 32, INT_MAX };
    const int n = sizeof sv / sizeof sv[0];
    Omn8u out[3 * n + 3];
    for (int sf : factors) {
        out[3 * n] = 0xEE;
        ASSERT_EQ(V(omnsConvert_32s24s_Sfs)(sv, out, n, sf), 0);
        EXPECT_EQ(out[3 * n], 0xEE) << "wrote past the end";
        const int e = sf > 31 ? 31 : (sf < -31 ? -31 : sf);
        for (int i = 0; i < n; ++i) {
            int32_t expect = roundSat(ldexpl(sv[i], -e), true, -8388608, 8388607);
            // The negative limit is tested as -8388608 >> n, which is -1 for
            // shifts of 24 and more: -1 passes, and its shifted value keeps
            // only its low 24 bits, which are 0.
            if (sv[i] == -1 && e <= -24)
                expect = 0;
            EXPECT_EQ(unpack24s(out + 3 * i), expect) << sv[i] << " sf " << sf;
        }
        ASSERT_EQ(V(omnsConvert_32u24u_Sfs)(reinterpret_cast<const Omn32u*>(sv), out, n, sf), 0);
        for (int i = 0; i < n; ++i) {
            const uint32_t x = static_cast<uint32_t>(sv[i]);
            EXPECT_EQ(unpack24u(out + 3 * i), uint32_t(roundSat(ldexpl(x, -e), true, 0, 0xFFFFFF))) << x << " sf " << sf;
        }
    }
    // Float packing: the factor is clamped to -127..127 and written into a
    // single's exponent field, so 127 gives a factor of 0.
    const float fv[] = { -1e30f, -8388609.0f, -8388608.0f, -8388607.5f, -8388606.5f, -2.5f, -1.5f, -0.5f, -0.0f, 0.0f, 0.5f,
                         1.5f, 2.5f, 3.49f, 8388606.5f, 8388607.0f, 16777214.5f, 16777215.0f, 1e30f, INFINITY, -INFINITY, NAN, -NAN };
    const int m = sizeof fv / sizeof fv[0];
    Omn8u fo[3 * m];
    for (int sf : { INT_MIN, -200, -127, -1, 0, 1, 2, 126, 127, 200 }) {
        const int e = sf > 127 ? 127 : (sf < -127 ? -127 : sf);
        const long double scale = e == 127 ? 0.0L : ldexpl(1.0L, -e);
        ASSERT_EQ(V(omnsConvert_32f24s_Sfs)(fv, fo, m, sf), 0);
        for (int i = 0; i < m; ++i) {
            const long double y = fv[i] * scale;
            const int32_t expect = y != y ? -8388608 : roundSat(y, true, -8388608, 8388607);
            EXPECT_EQ(unpack24s(fo + 3 * i), expect) << fv[i] << " sf " << sf;
        }
        ASSERT_EQ(V(omnsConvert_32f24u_Sfs)(fv, fo, m, sf), 0);
        for (int i = 0; i < m; ++i) {
            const long double y = fv[i] * scale;
            const int32_t expect = y != y ? 0 : roundSat(y, true, 0, 0xFFFFFF);   // NaN packs as 0 here
            EXPECT_EQ(unpack24u(fo + 3 * i), uint32_t(expect)) << fv[i] << " sf " << sf;
        }
    }
    // Bytes FF FF FF.
    const Omn8u ones[3] = { 0xFF, 0xFF, 0xFF };
    Omn32s s1; Omn32u u1;
    ASSERT_EQ(V(omnsConvert_24s32s)(ones, &s1, 1), 0);
    ASSERT_EQ(V(omnsConvert_24u32u)(ones, &u1, 1), 0);
    EXPECT_EQ(s1, -1);
    EXPECT_EQ(u1, 16777215u);
}

OMN_ALL_COLUMNS(Convert16fTest);
