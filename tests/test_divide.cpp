// Div in every column: the zero-divisor table of each column row by row,
// with the special divisor at every position of lengths 1 to 20 and at every
// destination alignment (so at every place of a block of eight, in the head
// and in the tail); the batched reciprocals of w7 and t7 against true
// division; the complex table; in-place against out-of-place.
#include <gtest/gtest.h>

#include <math.h>
#include <stdint.h>

#include <complex>
#include <vector>

#include "tests/arith_support.h"
#include "tests/columns.h"

using namespace omn;
using test::bits;
using test::Buf;
using test::fromBits;
using test::ulps;

namespace {

constexpr uint64_t kAnyNaN = 1;               // any NaN will do
constexpr uint64_t kTrue = 2;                 // the IEEE quotient n / d
constexpr uint64_t kNegNaN = 0xFFF8000000000000ull;
constexpr uint64_t kPosNaN = 0x7FF8000000000000ull;
const uint64_t kPlusInf = bits(INFINITY), kMinusInf = bits(-INFINITY);

// The accuracy that w7 and t7 accept for the quotients of a block (3 was the
// worst seen over divisors and dividends from 2^-60 to 2^60).
constexpr uint64_t kBatchUlps = 4;

struct DivRow {
    double d, n;
    uint64_t low, high;         // px/a6, w7/t7: bits, kAnyNaN or kTrue
    bool warnLow, warnHigh;
};

const double kNaN = NAN;
const DivRow kRows[] = {
    { 0.0, 5, kPlusInf, kPosNaN, true, true },
    { -0.0, 5, kPlusInf, kPosNaN, true, true },
    { 0.0, -5, kMinusInf, kPosNaN, true, true },
    { 0.0, 0.0, kNegNaN, kPosNaN, true, true },
    { -0.0, -0.0, kNegNaN, kPosNaN, true, true },
    { 0.0, kNaN, kMinusInf, kAnyNaN, true, true },
    { kNaN, 5, kPlusInf, kAnyNaN, true, false },
    { kNaN, -5, kMinusInf, kAnyNaN, true, false },
    { kNaN, 0.0, kNegNaN, kAnyNaN, true, false },
    { INFINITY, 5, kTrue, kTrue, false, false },
    { -INFINITY, 5, kTrue, kTrue, false, false },
    { 5, INFINITY, kTrue, kTrue, false, false },
    { INFINITY, -INFINITY, kAnyNaN, kAnyNaN, false, false },
    { 1e-310, 1e-300, kTrue, kTrue, false, false },
    { 1e300, 1e-300, kTrue, kTrue, false, false },
};

bool matches(double got, uint64_t want, double n, double d, uint64_t tolerance)
{
    if (want == kAnyNaN)
        return isnan(got);
    if (want == kTrue)
        return isnan(n / d) ? isnan(got) : ulps(got, n / d) <= tolerance;
    return bits(got) == want;
}

} // namespace

class DivideTest : public test::ColumnTest {
protected:
    bool high() const { return col() >= 2; }
    uint64_t tolerance() const { return high() ? kBatchUlps : 0; }
};

TEST_P(DivideTest, ZeroDivisorTableAtEveryPosition)
{
    for (const DivRow& row : kRows) {
        for (int len = 1; len <= 20; ++len) {
            for (size_t dOff : test::kOffsets) {
                for (int at = 0; at < len; ++at) {
                    Buf den(len, 8), num(len, 0), dst(len, dOff);
                    test::Rng rng(static_cast<uint64_t>(len * 100 + at));
                    for (int i = 0; i < len; ++i) {
                        den.set(i, rng.uniform(50));
                        num.set(i, rng.uniform(1000));
                    }
                    den.set(at, row.d);
                    num.set(at, row.n);
                    const OmnStatus st = V(omnsDiv_64f)(den.p(), num.p(), dst.p(), len);
                    const bool warn = high() ? row.warnHigh : row.warnLow;
                    ASSERT_EQ(st, warn ? 6 : 0) << "d " << row.d << " n " << row.n << " len " << len << " at " << at;
                    ASSERT_TRUE(matches(dst.get(at), high() ? row.high : row.low, row.n, row.d, tolerance()))
                        << "d " << row.d << " n " << row.n << " len " << len << " at " << at << " off " << dOff
                        << " got " << dst.get(at) << " bits " << std::hex << bits(dst.get(at));
                    for (int i = 0; i < len; ++i) {
                        if (i == at)
                            continue;
                        ASSERT_LE(ulps(dst.get(i), num.get(i) / den.get(i)), tolerance())
                            << "neighbour " << i << " of " << at << " len " << len;
                    }
                    ASSERT_TRUE(dst.guardsIntact());
                }
            }
        }
    }
}

TEST_P(DivideTest, BatchedReciprocalsStayWithinAFewUlps)
{
    // Divisors over a wide range of magnitudes and signs; px and a6 divide
    // exactly, w7 and t7 go through one reciprocal per block of eight.
    // 140001 elements: long enough for w7 and t7 to stream the result.
    const int n = 140001;
    test::Rng rng(7);
    for (size_t dOff : test::kOffsets) {
        Buf den(n, 0), num(n, 8), dst(n, dOff);
        for (int i = 0; i < n; ++i) {
            den.set(i, ldexp(rng.uniform(1), static_cast<int>(rng.next() % 120) - 60));
            num.set(i, ldexp(rng.uniform(1), static_cast<int>(rng.next() % 120) - 60));
        }
        ASSERT_EQ(V(omnsDiv_64f)(den.p(), num.p(), dst.p(), n), 0);
        uint64_t worst = 0;
        int inexact = 0;
        for (int i = 0; i < n; ++i) {
            const uint64_t u = ulps(dst.get(i), num.get(i) / den.get(i));
            worst = u > worst ? u : worst;
            inexact += u != 0;
        }
        EXPECT_LE(worst, tolerance()) << "offset " << dOff;
        if (high()) {
            EXPECT_GT(inexact, 0) << "the blocks should go through the shared reciprocal";
        }
        RecordProperty(std::string("worst_ulps_off") + std::to_string(dOff), static_cast<int>(worst));
    }
}

TEST_P(DivideTest, InPlaceMatchesOutOfPlace)
{
    for (int len = 1; len <= 40; ++len) {
        for (size_t off : test::kOffsets) {
            Buf den(len, 8), num(len, off), dst(len, off);
            test::Rng rng(static_cast<uint64_t>(len));
            for (int i = 0; i < len; ++i) {
                den.set(i, i % 7 == 3 ? 0.0 : rng.uniform(9));
                num.set(i, rng.uniform(9));
            }
            const OmnStatus a = V(omnsDiv_64f)(den.p(), num.p(), dst.p(), len);
            const OmnStatus b = V(omnsDiv_64f_I)(den.p(), num.p(), len);
            ASSERT_EQ(a, b);
            ASSERT_EQ(a, len > 3 ? 6 : 0);
            for (int i = 0; i < len; ++i)
                ASSERT_EQ(bits(dst.get(i)), bits(num.get(i))) << len << " " << i;
            Buf cden(2 * len, 0), cnum(2 * len, off), cdst(2 * len, off);
            for (int i = 0; i < 2 * len; ++i) {
                cden.set(i, i % 9 == 4 ? 0.0 : rng.uniform(9));
                cnum.set(i, rng.uniform(9));
            }
            const OmnStatus ca = V(omnsDiv_64fc)(cden.pc(), cnum.pc(), cdst.pc(), len);
            const OmnStatus cb = V(omnsDiv_64fc_I)(cden.pc(), cnum.pc(), len);
            ASSERT_EQ(ca, cb);
            for (int i = 0; i < 2 * len; ++i)
                ASSERT_EQ(bits(cdst.get(i)), bits(cnum.get(i))) << len << " " << i;
        }
    }
}

TEST_P(DivideTest, ComplexZeroAndNaNDivisorsAtEveryPosition)
{
    using LC = std::complex<long double>;
    struct Row { double re, im; bool nanDivisor; };
    const Row rows[] = { { 0.0, 0.0, false }, { -0.0, 0.0, false }, { 0.0, -0.0, false }, { kNaN, 1.0, true },
                         { 1.0, kNaN, true } };
    for (const Row& row : rows) {
        for (int len = 1; len <= 9; ++len) {
            for (int at = 0; at < len; ++at) {
                std::vector<Omn64fc> den(len), num(len), dst(len);
                test::Rng rng(static_cast<uint64_t>(len * 10 + at));
                for (int i = 0; i < len; ++i) {
                    den[i] = { rng.uniform(5), rng.uniform(5) };
                    num[i] = { rng.uniform(5), rng.uniform(5) };
                }
                den[at] = { row.re, row.im };
                const OmnStatus st = V(omnsDiv_64fc)(den.data(), num.data(), dst.data(), len);
                // m of a NaN divisor is NaN: px and a6 take it as zero.
                const bool zeroPath = !row.nanDivisor || !high();
                ASSERT_EQ(st, zeroPath ? 6 : 0) << len << " at " << at;
                if (zeroPath) {
                    const uint64_t nan = high() ? kPosNaN : kNegNaN;
                    EXPECT_EQ(bits(dst[at].re), nan);
                    EXPECT_EQ(bits(dst[at].im), nan);
                } else {
                    EXPECT_TRUE(isnan(dst[at].re) && isnan(dst[at].im));
                }
                for (int i = 0; i < len; ++i) {
                    if (i == at)
                        continue;
                    const LC q = LC(num[i].re, num[i].im) / LC(den[i].re, den[i].im);
                    const long double tol = abs(q) * 1e-14L + 1e-300L;
                    ASSERT_LE(fabsl(dst[i].re - q.real()), tol) << i;
                    ASSERT_LE(fabsl(dst[i].im - q.imag()), tol) << i;
                }
            }
        }
    }
}

OMN_ALL_COLUMNS(DivideTest);
