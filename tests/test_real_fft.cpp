// Real transforms to and from Perm and Pack in every column: checks, the
// spectrum of every order 0 to 20 and every flag against the complex
// transform of the same data, orders 0 to 12 against a long-double DFT both
// ways, round trips in and out of place, and the work memory's -9 path.
#include <gtest/gtest.h>

#include <math.h>
#include <stdint.h>
#include <string.h>

#include <complex>
#include <map>
#include <vector>

#include "core/alloc.h"
#include "fft/fft.h"
#include "tests/alloc_faults.h"
#include "tests/columns.h"
#include "tests/fft_columns.h"

using namespace omn;
namespace tf = omn::test::fft;

namespace {

using Cld = std::complex<long double>;
const long double kTwoPi = 6.283185307179586476925286766559L;
const int kFlags[] = { 1, 2, 4, 8 };

struct Rng {
    uint64_t s;
    explicit Rng(uint64_t seed) : s(seed * 2862933555777941757ULL + 99) {}
    double next()
    {
        s = s * 6364136223846793005ULL + 1442695040888963407ULL;
        return static_cast<double>(static_cast<int64_t>(s >> 11) - (int64_t(1) << 52)) / 4503599627370496.0;
    }
};

std::vector<double> realSignal(int order)
{
    Rng rng(uint64_t(order) + 5);
    std::vector<double> x(size_t(1) << order);
    for (double& v : x)
        v = rng.next();
    return x;
}

long double flagScale(int flag, int order, bool inv)
{
    const long double n = ldexpl(1, order);
    switch (flag) {
    case 1: return inv ? 1 : 1 / n;
    case 2: return inv ? 1 / n : 1;
    case 4: return 1 / sqrtl(n);
    default: return 1;
    }
}

// Unscaled long-double DFT of a real signal (forward) or of a full
// spectrum (inverse, real part of the result), computed once per order.
const std::vector<Cld>& referenceSpectrum(int order)
{
    static std::map<int, std::vector<Cld>> cache;
    auto it = cache.find(order);
    if (it != cache.end())
        return it->second;
    const std::vector<double> x = realSignal(order);
    const size_t n = x.size();
    std::vector<Cld> w(n), y(n);
    for (size_t j = 0; j < n; ++j) {
        const long double a = kTwoPi * static_cast<long double>(j) / static_cast<long double>(n);
        w[j] = Cld(cosl(a), -sinl(a));
    }
    for (size_t k = 0; k < n; ++k) {
        Cld s = 0;
        for (size_t j = 0; j < n; ++j)
            s += static_cast<long double>(x[j]) * w[(j * k) % n];
        y[k] = s;
    }
    return cache[order] = y;
}

struct RealSpec {
    int col;
    OmnRealFftSpec* p = nullptr;
    RealSpec(int c, int order, int flag) : col(c)
    {
        EXPECT_EQ(tf::omnsRealFftCreate_64f[c](&p, order, flag, 0), 0) << "order " << order << " flag " << flag;
    }
    ~RealSpec()
    {
        if (p != nullptr) {
            EXPECT_EQ(tf::omnsRealFftFree_64f[col](p), 0);
        }
    }
    RealSpec(const RealSpec&) = delete;
    RealSpec& operator=(const RealSpec&) = delete;
};

// sqrt(sum |y - ref|^2 / sum |ref|^2).
double rmsRelative(const std::vector<Omn64fc>& y, const std::vector<Cld>& ref, long double scale)
{
    long double num = 0, den = 0;
    for (size_t k = 0; k < y.size(); ++k) {
        const Cld r = ref[k] * scale;
        num += std::norm(Cld(y[k].re, y[k].im) - r);
        den += std::norm(r);
    }
    return double(sqrtl(num / den));
}

double bound(int order) { return 1e-15 * (order + 1); }

std::vector<Omn64fc> expandPerm(int c, const std::vector<double>& perm)
{
    std::vector<Omn64fc> full(perm.size());
    EXPECT_EQ(test::omnsConjPerm_64fc[c](perm.data(), full.data(), int(perm.size())), 0);
    return full;
}

class RealFftTest : public test::ColumnTest {};

TEST_P(RealFftTest, ChecksComeInTheirOrder)
{
    const int c = col();
    RealSpec spec(c, 5, 8);
    OmnCplxFftSpec* cplx = nullptr;
    ASSERT_EQ(tf::omnsCplxFftCreate_64fc[c](&cplx, 5, 8, 0), 0);
    const OmnRealFftSpec* wrong = reinterpret_cast<const OmnRealFftSpec*>(cplx);
    double x[32] = {}, y[32] = {};
    for (auto fn : { tf::omnsRealFftFwdPerm_64f, tf::omnsRealFftInvPerm_64f, tf::omnsRealFftFwdPack_64f,
                     tf::omnsRealFftInvPack_64f }) {
        EXPECT_EQ(fn[c](nullptr, nullptr, nullptr, nullptr), -8);
        EXPECT_EQ(fn[c](nullptr, nullptr, wrong, nullptr), -17);
        EXPECT_EQ(fn[c](nullptr, y, spec.p, nullptr), -8);
        EXPECT_EQ(fn[c](x, nullptr, spec.p, nullptr), -8);
        EXPECT_EQ(fn[c](x, y, spec.p, nullptr), 0);
    }
    EXPECT_EQ(tf::omnsCplxFftFree_64fc[c](cplx), 0);
}

// Every order and flag: the Perm spectrum, expanded, against the complex
// transform of the same data (imaginary parts zero) with the same flag, and
// Pack against Perm moved by one place, bit for bit.
TEST_P(RealFftTest, ForwardMatchesTheComplexTransform)
{
    const int c = col();
    for (int order = 0; order <= 20; ++order) {
        const std::vector<double> x = realSignal(order);
        const size_t n = x.size();
        std::vector<Omn64fc> xc(n);
        for (size_t i = 0; i < n; ++i)
            xc[i] = Omn64fc{ x[i], 0.0 };
        for (int flag : kFlags) {
            SCOPED_TRACE(testing::Message() << "order " << order << " flag " << flag);
            RealSpec spec(c, order, flag);
            OmnCplxFftSpec* cs = nullptr;
            ASSERT_EQ(tf::omnsCplxFftCreate_64fc[c](&cs, order, flag, 0), 0);
            std::vector<Omn64fc> want(n);
            ASSERT_EQ(tf::omnsCplxFftFwd_64fc[c](xc.data(), want.data(), cs, nullptr), 0);
            EXPECT_EQ(tf::omnsCplxFftFree_64fc[c](cs), 0);

            std::vector<double> perm(n), pack(n);
            ASSERT_EQ(tf::omnsRealFftFwdPerm_64f[c](x.data(), perm.data(), spec.p, nullptr), 0);
            ASSERT_EQ(tf::omnsRealFftFwdPack_64f[c](x.data(), pack.data(), spec.p, nullptr), 0);
            const std::vector<Omn64fc> got = expandPerm(c, perm);
            std::vector<Cld> ref(n);
            for (size_t k = 0; k < n; ++k)
                ref[k] = Cld(want[k].re, want[k].im);
            // X[0] and X[N/2] of a real signal are real; the complex
            // transform's rounding may leave a trace there.
            EXPECT_LT(rmsRelative(got, ref, 1), bound(order));

            std::vector<Omn64fc> fromPack(n);
            ASSERT_EQ(test::omnsConjPack_64fc[c](pack.data(), fromPack.data(), int(n)), 0);
            EXPECT_EQ(memcmp(fromPack.data(), got.data(), n * sizeof(Omn64fc)), 0);
        }
    }
}

// Orders 0 to 12 against the long-double DFT, forward and inverse: the
// inverse of the exact spectrum (rounded to double) must give N x.
TEST_P(RealFftTest, MatchesLongDoubleDftBothWays)
{
    const int c = col();
    for (int order = 0; order <= 12; ++order) {
        SCOPED_TRACE(order);
        const std::vector<double> x = realSignal(order);
        const size_t n = x.size();
        const std::vector<Cld>& ref = referenceSpectrum(order);
        for (int flag : kFlags) {
            RealSpec spec(c, order, flag);
            std::vector<double> perm(n);
            ASSERT_EQ(tf::omnsRealFftFwdPerm_64f[c](x.data(), perm.data(), spec.p, nullptr), 0);
            EXPECT_LT(rmsRelative(expandPerm(c, perm), ref, flagScale(flag, order, false)), bound(order)) << flag;

            // The reference spectrum in Perm form, through the inverse.
            std::vector<double> in(n);
            in[0] = double(ref[0].real());
            if (n > 1)
                in[1] = double(ref[n / 2].real());
            for (size_t k = 1; 2 * k < n; ++k) {
                in[2 * k] = double(ref[k].real());
                in[2 * k + 1] = double(ref[k].imag());
            }
            std::vector<double> back(n);
            ASSERT_EQ(tf::omnsRealFftInvPerm_64f[c](in.data(), back.data(), spec.p, nullptr), 0);
            const long double s = flagScale(flag, order, true) * static_cast<long double>(n);
            long double num = 0, den = 0;
            for (size_t i = 0; i < n; ++i) {
                const long double w = static_cast<long double>(x[i]) * s;
                num += (back[i] - w) * (back[i] - w);
                den += w * w;
            }
            EXPECT_LT(double(sqrtl(num / den)), bound(order)) << flag;
        }
    }
}

enum Placement { kOutOfPlace, kInPlace, kOffset };

// Forward and inverse with every flag, in Perm and in Pack, out of place,
// in place and with arrays and buffer off their alignment: x comes back (N x
// with flag 8), and every placement gives the same bits.
TEST_P(RealFftTest, RoundTripsInEveryPlacement)
{
    const int c = col();
    for (int order = 0; order <= 20; order += (order < 16 ? 1 : 2)) {
        const std::vector<double> x = realSignal(order);
        const size_t n = x.size();
        for (int flag : kFlags) {
            RealSpec spec(c, order, flag);
            int bufSize = -1;
            ASSERT_EQ(tf::omnsRealFftGetBufSize_64f[c](spec.p, &bufSize), 0);
            std::vector<Omn8u> buf(size_t(bufSize) + 8);
            const long double want = flag == 8 ? static_cast<long double>(n) : 1;
            for (bool pack : { false, true }) {
                auto fwd = pack ? tf::omnsRealFftFwdPack_64f[c] : tf::omnsRealFftFwdPerm_64f[c];
                auto inv = pack ? tf::omnsRealFftInvPack_64f[c] : tf::omnsRealFftInvPerm_64f[c];
                std::vector<double> first;
                std::vector<double> firstSpectrum;
                for (Placement pl : { kOutOfPlace, kInPlace, kOffset }) {
                    SCOPED_TRACE(testing::Message() << "order " << order << " flag " << flag << " pack " << pack
                                                    << " placement " << int(pl));
                    std::vector<double> a(n + 1), b(n + 1);
                    double* src = a.data() + (pl == kOffset ? 1 : 0);
                    double* dst = pl == kInPlace ? src : b.data() + (pl == kOffset ? 1 : 0);
                    memcpy(src, x.data(), n * sizeof(double));
                    Omn8u* pb = pl == kOffset ? buf.data() + 3 : nullptr;
                    ASSERT_EQ(fwd(src, dst, spec.p, pb), 0);
                    std::vector<double> spectrum(dst, dst + n);
                    double* back = pl == kInPlace ? dst : src;
                    ASSERT_EQ(inv(dst, back, spec.p, pb), 0);
                    long double num = 0, den = 0;
                    for (size_t i = 0; i < n; ++i) {
                        const long double w = static_cast<long double>(x[i]) * want;
                        num += (back[i] - w) * (back[i] - w);
                        den += w * w;
                    }
                    EXPECT_LT(double(sqrtl(num / den)), bound(order));
                    if (pl == kOutOfPlace) {
                        first.assign(back, back + n);
                        firstSpectrum = spectrum;
                    } else {
                        EXPECT_EQ(memcmp(spectrum.data(), firstSpectrum.data(), n * sizeof(double)), 0);
                        EXPECT_EQ(memcmp(back, first.data(), n * sizeof(double)), 0);
                    }
                }
            }
        }
    }
}

// Flag 8 both ways gives N x exactly where the arithmetic is exact: small
// integers through the routines of orders 0 to 3 and the recombined core.
TEST_P(RealFftTest, UnscaledRoundTripOfIntegersIsExactForSmallOrders)
{
    const int c = col();
    for (int order = 0; order <= 5; ++order) {
        const size_t n = size_t(1) << order;
        RealSpec spec(c, order, 8);
        std::vector<double> x(n), y(n), z(n);
        for (size_t i = 0; i < n; ++i)
            x[i] = double(int(i * 7 % 11) - 5);
        ASSERT_EQ(tf::omnsRealFftFwdPerm_64f[c](x.data(), y.data(), spec.p, nullptr), 0);
        ASSERT_EQ(tf::omnsRealFftInvPerm_64f[c](y.data(), z.data(), spec.p, nullptr), 0);
        for (size_t i = 0; i < n; ++i)
            EXPECT_NEAR(z[i], x[i] * double(n), order <= 2 ? 0.0 : 1e-12 * double(n)) << order << " " << i;
    }
}

// A null buffer costs one block per transform of order 4 and up when the
// core needs work memory; if it can't be had the transform returns -9 and
// leaves dst unwritten.
TEST_P(RealFftTest, NullBufferAllocatesOrFailsCleanly)
{
    const int c = col();
    for (int order : { 4, 11, 15, 16 }) {
        RealSpec spec(c, order, 2);
        int bufSize = -1;
        ASSERT_EQ(tf::omnsRealFftGetBufSize_64f[c](spec.p, &bufSize), 0);
        const std::vector<double> x = realSignal(order);
        for (auto fn : { tf::omnsRealFftFwdPerm_64f, tf::omnsRealFftInvPerm_64f, tf::omnsRealFftFwdPack_64f,
                         tf::omnsRealFftInvPack_64f }) {
            std::vector<double> y(x.size(), 7.0);
            test::AllocTracking tracking;
            const OmnAllocStats before = omnAllocTestStats();
            ASSERT_EQ(fn[c](x.data(), y.data(), spec.p, nullptr), 0);
            const OmnAllocStats after = omnAllocTestStats();
            const uint64_t blocks = bufSize > 0 ? 1 : 0;
            EXPECT_EQ(after.allocated - before.allocated, blocks) << order;
            EXPECT_EQ(after.freed - before.freed, blocks) << order;
            if (blocks == 0)
                continue;
            std::vector<double> z(x.size(), 7.0);
            omnAllocTestFailAt(1);
            EXPECT_EQ(fn[c](x.data(), z.data(), spec.p, nullptr), -9);
            omnAllocTestFailAt(0);
            for (double v : z)
                ASSERT_EQ(v, 7.0) << "dst written by a failed transform, order " << order;
        }
    }
}

OMN_ALL_COLUMNS(RealFftTest);

} // namespace
