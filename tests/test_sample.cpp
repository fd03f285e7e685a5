// SampleUp and SampleDown in every column: against slicing models written
// here, every factor and phase on short and long signals, the phase chained
// over calls cut anywhere, and every status in its check order.
#include <gtest/gtest.h>

#include <limits.h>

#include <random>
#include <vector>

#include "tests/columns.h"

using namespace omn;

namespace {

std::vector<Omn64f> signal(int n, unsigned seed)
{
    std::mt19937 rng(seed);
    std::uniform_real_distribution<double> u(-1.0, 1.0);
    std::vector<Omn64f> v(static_cast<size_t>(n));
    for (auto& x : v)
        x = u(rng);
    return v;
}

// The stream view: sample k of the whole input is kept when k = phase0 + j*factor.
std::vector<Omn64f> downModel(const std::vector<Omn64f>& x, int factor, int phase0)
{
    std::vector<Omn64f> y;
    for (size_t k = static_cast<size_t>(phase0); k < x.size(); k += static_cast<size_t>(factor))
        y.push_back(x[k]);
    return y;
}

// Each input sample at place phase of its group of factor outputs, zeros elsewhere.
std::vector<Omn64f> upModel(const std::vector<Omn64f>& x, int factor, int phase)
{
    std::vector<Omn64f> y(x.size() * static_cast<size_t>(factor), 0.0);
    for (size_t i = 0; i < x.size(); ++i)
        y[i * static_cast<size_t>(factor) + static_cast<size_t>(phase)] = x[i];
    return y;
}

} // namespace

class SampleTest : public test::ColumnTest {};

TEST_P(SampleTest, DocumentedCases)
{
    const std::vector<Omn64f> x = { 10, 11, 12, 13, 14, 15, 16, 17, 18, 19 };
    std::vector<Omn64f> d(32, -1.0);
    int dstLen = -5, phase = 1;
    ASSERT_EQ(V(omnsSampleDown_64f)(x.data(), 10, d.data(), &dstLen, 3, &phase), 0);
    EXPECT_EQ(dstLen, 3);
    EXPECT_EQ(phase, 0);
    EXPECT_EQ(d[0], 11);
    EXPECT_EQ(d[1], 14);
    EXPECT_EQ(d[2], 17);
    EXPECT_EQ(d[3], -1.0);

    std::fill(d.begin(), d.end(), -1.0);
    phase = 4;
    ASSERT_EQ(V(omnsSampleDown_64f)(x.data(), 2, d.data(), &dstLen, 5, &phase), 0);
    EXPECT_EQ(dstLen, 0);
    EXPECT_EQ(phase, 2);
    EXPECT_EQ(d[0], -1.0);

    phase = 1;
    ASSERT_EQ(V(omnsSampleUp_64f)(x.data(), 2, d.data(), &dstLen, 3, &phase), 0);
    EXPECT_EQ(dstLen, 6);
    EXPECT_EQ(phase, 1);
    const Omn64f want[] = { 0, 10, 0, 0, 11, 0 };
    for (int i = 0; i < 6; ++i)
        EXPECT_EQ(d[i], want[i]) << i;
    EXPECT_EQ(d[6], -1.0);
}

TEST_P(SampleTest, AgainstSlicingEveryFactorAndPhase)
{
    for (int n : { 1, 2, 3, 7, 64, 1001 }) {
        const std::vector<Omn64f> x = signal(n, static_cast<unsigned>(n));
        for (int factor : { 1, 2, 3, 4, 5, 7, 16, 1000, 5000 }) {
            for (int phase = 0; phase < factor; phase += (factor > 20 ? factor / 7 : 1)) {
                SCOPED_TRACE(testing::Message() << "n " << n << " factor " << factor << " phase " << phase);
                // Down.
                std::vector<Omn64f> d(static_cast<size_t>(n) + 1, -7.0);
                int dstLen = -1, ph = phase;
                ASSERT_EQ(V(omnsSampleDown_64f)(x.data(), n, d.data(), &dstLen, factor, &ph), 0);
                const std::vector<Omn64f> want = downModel(x, factor, phase);
                ASSERT_EQ(dstLen, static_cast<int>(want.size()));
                for (size_t i = 0; i < want.size(); ++i)
                    ASSERT_EQ(d[i], want[i]);
                EXPECT_EQ(d[want.size()], -7.0);
                // The next kept sample, counted from the end of this source.
                if (factor > 1)
                    EXPECT_EQ(ph, static_cast<int>(phase + want.size() * factor - n));
                else
                    EXPECT_EQ(ph, phase);
                // Up, real and complex.
                if (static_cast<long>(n) * factor > 200000)
                    continue;
                std::vector<Omn64f> u(static_cast<size_t>(n) * factor + 1, -7.0);
                ph = phase;
                ASSERT_EQ(V(omnsSampleUp_64f)(x.data(), n, u.data(), &dstLen, factor, &ph), 0);
                EXPECT_EQ(dstLen, n * factor);
                EXPECT_EQ(ph, phase);
                const std::vector<Omn64f> wantUp = upModel(x, factor, phase);
                for (size_t i = 0; i < wantUp.size(); ++i)
                    ASSERT_EQ(u[i], wantUp[i]) << i;
                EXPECT_EQ(u[wantUp.size()], -7.0);

                std::vector<Omn64fc> xc(static_cast<size_t>(n)), uc(static_cast<size_t>(n) * factor + 1,
                                                                     Omn64fc{ -7.0, -7.0 });
                for (int i = 0; i < n; ++i)
                    xc[static_cast<size_t>(i)] = Omn64fc{ x[static_cast<size_t>(i)], -x[static_cast<size_t>(i)] };
                ASSERT_EQ(V(omnsSampleUp_64fc)(xc.data(), n, uc.data(), &dstLen, factor, &ph), 0);
                for (size_t i = 0; i < wantUp.size(); ++i) {
                    ASSERT_EQ(uc[i].re, wantUp[i]);
                    ASSERT_EQ(uc[i].im, wantUp[i] == 0 ? 0.0 : -wantUp[i]);
                }
                EXPECT_EQ(uc[wantUp.size()].re, -7.0);
            }
        }
    }
}

TEST_P(SampleTest, DownPhaseChainsOverCallsCutAnywhere)
{
    const int n = 5000;
    const std::vector<Omn64f> x = signal(n, 99);
    std::mt19937 rng(5);
    for (int factor : { 2, 3, 7, 147, 160 }) {
        for (int phase0 : { 0, factor - 1, factor / 2 }) {
            const std::vector<Omn64f> want = downModel(x, factor, phase0);
            std::vector<Omn64fc> xc(x.size());
            for (size_t i = 0; i < x.size(); ++i)
                xc[i] = Omn64fc{ x[i], 2 * x[i] };
            std::vector<Omn64f> got;
            std::vector<Omn64fc> gotc;
            int ph = phase0, phc = phase0;
            for (int at = 0; at < n;) {
                const int len = std::min(n - at, 1 + static_cast<int>(rng() % 400));
                std::vector<Omn64f> d(static_cast<size_t>(len));
                std::vector<Omn64fc> dc(static_cast<size_t>(len));
                int dl = -1, dlc = -1;
                ASSERT_EQ(V(omnsSampleDown_64f)(x.data() + at, len, d.data(), &dl, factor, &ph), 0);
                ASSERT_EQ(V(omnsSampleDown_64fc)(xc.data() + at, len, dc.data(), &dlc, factor, &phc), 0);
                ASSERT_EQ(dl, dlc);
                got.insert(got.end(), d.begin(), d.begin() + dl);
                gotc.insert(gotc.end(), dc.begin(), dc.begin() + dlc);
                ASSERT_TRUE(ph >= 0 && ph < factor) << ph;
                at += len;
            }
            ASSERT_EQ(got.size(), want.size());
            for (size_t i = 0; i < want.size(); ++i) {
                ASSERT_EQ(got[i], want[i]);
                ASSERT_EQ(gotc[i].re, want[i]);
                ASSERT_EQ(gotc[i].im, 2 * want[i]);
            }
        }
    }
}

TEST_P(SampleTest, StatusesInCheckOrder)
{
    Omn64f s[4] = { 1, 2, 3, 4 }, d[16] = {};
    Omn64fc sc[4] = {}, dc[16] = {};
    using Fn = OmnStatus (*)(int c, const void*, int, void*, int*, int, int*);
    const Fn forms[] = {
        [](int c, const void* a, int n, void* b, int* l, int f, int* p) {
            return test::omnsSampleUp_64f[c](static_cast<const Omn64f*>(a), n, static_cast<Omn64f*>(b), l, f, p); },
        [](int c, const void* a, int n, void* b, int* l, int f, int* p) {
            return test::omnsSampleDown_64f[c](static_cast<const Omn64f*>(a), n, static_cast<Omn64f*>(b), l, f, p); },
        [](int c, const void* a, int n, void* b, int* l, int f, int* p) {
            return test::omnsSampleUp_64fc[c](static_cast<const Omn64fc*>(a), n, static_cast<Omn64fc*>(b), l, f, p); },
        [](int c, const void* a, int n, void* b, int* l, int f, int* p) {
            return test::omnsSampleDown_64fc[c](static_cast<const Omn64fc*>(a), n, static_cast<Omn64fc*>(b), l, f, p); },
    };
    for (int k = 0; k < 4; ++k) {
        const void* src = k < 2 ? static_cast<const void*>(s) : static_cast<const void*>(sc);
        void* dst = k < 2 ? static_cast<void*>(d) : static_cast<void*>(dc);
        const Fn f = forms[k];
        const int c = col();
        int len = 77, ph = 0, badPh = 5;
        // Pointers first, in argument order, even with everything else bad.
        EXPECT_EQ(f(c, nullptr, 0, dst, &len, 0, &badPh), -8);
        EXPECT_EQ(f(c, src, 0, nullptr, &len, 0, &badPh), -8);
        EXPECT_EQ(f(c, src, 0, dst, nullptr, 0, &badPh), -8);
        EXPECT_EQ(f(c, src, 0, dst, &len, 0, nullptr), -8);
        // Then the length, then the factor, then the phase.
        for (int n : { 0, -1, INT_MIN })
            EXPECT_EQ(f(c, src, n, dst, &len, 0, &badPh), -6);
        EXPECT_EQ(f(c, src, 4, dst, &len, 0, &badPh), -31);
        EXPECT_EQ(f(c, src, 4, dst, &len, INT_MIN, &ph), -31);
        EXPECT_EQ(f(c, src, 4, dst, &len, 3, &badPh), -30);
        ph = 3;
        EXPECT_EQ(f(c, src, 4, dst, &len, 3, &ph), -30);   // phase equal to factor
        ph = -1;
        EXPECT_EQ(f(c, src, 4, dst, &len, 3, &ph), -30);
        // Nothing was written by any of the rejected calls.
        EXPECT_EQ(len, 77);
        EXPECT_EQ(ph, -1);
        for (int i = 0; i < 16; ++i) {
            EXPECT_EQ(d[i], 0.0);
            EXPECT_EQ(dc[i].re, 0.0);
        }
    }
}

OMN_ALL_COLUMNS(SampleTest);
