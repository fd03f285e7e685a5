// Sqrt in every column: each column's table row by row, with the special
// argument at every position of short runs and at every destination
// alignment, so that it lands in a6's blocks of four and tail, and in w7's
// head, pairs and tail; the accuracy of the seed-and-refine root and its
// denormal behaviour; the SSE control word of w7 and t7; the complex root by
// both roads against long double.
#include <gtest/gtest.h>

#include <math.h>
#include <stdint.h>

#include <complex>
#include <vector>

#include "core/cpu.h"
#include "tests/arith_support.h"
#include "tests/columns.h"

using namespace omn;
using test::bits;
using test::Buf;
using test::fromBits;

namespace {

// Relative accuracy of the seed-and-refine root: the refined single
// estimate and the two double steps end within a couple of units in the last
// place (2^-51 was the worst seen over the whole exponent range).
constexpr long double kFastRootTolerance = 0x1p-50L;

constexpr uint64_t kAnyNaN = 1;
constexpr uint64_t kSameBits = 2;     // the argument, stored as it stands
constexpr uint64_t kTrueRoot = 3;     // the correctly rounded root
constexpr uint64_t kHiddenBit = 4;    // a denormal rooted as if it were normal
constexpr uint64_t kNegNaN = 0xFFF8000000000000ull;

struct Expect {
    uint64_t value;
    int warn;   // 0 no, 1 yes, -1 not part of the contract
};

// What each place of each column stores for an argument.
struct SqrtRow {
    const char* what;
    double x;
    Expect px, a6Block, a6Tail, w7Pair, w7Scalar;
};

const SqrtRow kRows[] = {
    { "+0", 0.0, { 0, 0 }, { 0, 0 }, { 0, 0 }, { 0, 0 }, { 0, 0 } },
    { "-0", -0.0, { bits(-0.0), 0 }, { 0, 0 }, { kAnyNaN, 1 }, { bits(-0.0), 1 }, { bits(-0.0), 1 } },
    { "-4", -4.0, { kNegNaN, 1 }, { kNegNaN, 1 }, { kNegNaN, 1 }, { kAnyNaN, 1 }, { kAnyNaN, 1 } },
    { "-inf", -INFINITY, { kNegNaN, 1 }, { kNegNaN, 1 }, { kNegNaN, 1 }, { kAnyNaN, 1 }, { kAnyNaN, 1 } },
    { "+NaN", fromBits(0x7FF8000000000123ull), { kNegNaN, 1 }, { kSameBits, 0 }, { kAnyNaN, -1 }, { kAnyNaN, 0 },
      { kAnyNaN, 0 } },
    { "-NaN", fromBits(0xFFF8000000000123ull), { kNegNaN, 1 }, { kSameBits, 0 }, { kAnyNaN, 1 }, { kAnyNaN, 1 },
      { kAnyNaN, 1 } },
    { "+inf", INFINITY, { bits(INFINITY), 0 }, { bits(INFINITY), 0 }, { bits(INFINITY), 0 }, { bits(0x1p512), 0 },
      { bits(INFINITY), 0 } },
    { "denormal", fromBits(0x000C000000000000ull), { kTrueRoot, 0 }, { kHiddenBit, 0 }, { kTrueRoot, 0 },
      { kHiddenBit, 0 }, { kTrueRoot, 0 } },
    { "least denormal", fromBits(1), { kTrueRoot, 0 }, { kHiddenBit, 0 }, { kTrueRoot, 0 }, { kHiddenBit, 0 },
      { kTrueRoot, 0 } },
};

long double relErr(double got, long double want) { return fabsl((got - want) / want); }

bool matches(double got, uint64_t want, double x)
{
    switch (want) {
    case kAnyNaN:   return isnan(got);
    case kSameBits: return bits(got) == bits(x);
    case kTrueRoot: return bits(got) == bits(sqrt(x));
    case kHiddenBit: {
        // The exponent field is 0, read as if the hidden bit were there.
        const uint64_t f = bits(x) & 0x000FFFFFFFFFFFFFull;
        const long double v = ldexpl(1.0L + ldexpl(static_cast<long double>(f), -52), -1023);
        return relErr(got, sqrtl(v)) <= kFastRootTolerance;
    }
    default:        return bits(got) == want;
    }
}

// Where element i of a run of len falls in column c.
enum Place { kPx, kA6Block, kA6Tail, kW7Pair, kW7Scalar };
Place placeOf(int c, int i, int len, const void* dst)
{
    if (c == 0)
        return kPx;
    if (c == 1)
        return i < len / 4 * 4 ? kA6Block : kA6Tail;
    const int head = reinterpret_cast<uintptr_t>(dst) % 16 == 8 ? 1 : 0;
    const int pairsEnd = head + (len - head) / 2 * 2;
    return i >= head && i < pairsEnd ? kW7Pair : kW7Scalar;
}

const Expect& expectFor(const SqrtRow& r, Place p)
{
    switch (p) {
    case kPx:      return r.px;
    case kA6Block: return r.a6Block;
    case kA6Tail:  return r.a6Tail;
    case kW7Pair:  return r.w7Pair;
    default:       return r.w7Scalar;
    }
}

} // namespace

class SqrtTest : public test::ColumnTest {};

TEST_P(SqrtTest, TableOfTheColumnAtEveryPlace)
{
    for (const SqrtRow& row : kRows) {
        for (int len = 1; len <= 13; ++len) {
            for (size_t dOff : test::kOffsets) {
                for (int at = 0; at < len; ++at) {
                    for (bool inPlace : { false, true }) {
                        Buf src(len, 0), dst(len, dOff);
                        test::Rng rng(static_cast<uint64_t>(len * 50 + at));
                        for (int i = 0; i < len; ++i)
                            src.set(i, fabs(rng.uniform(1e6)));
                        src.set(at, row.x);
                        const Buf& out = dst;
                        OmnStatus st;
                        if (inPlace) {
                            for (int i = 0; i < len; ++i)
                                dst.set(i, src.get(i));
                            st = V(omnsSqrt_64f_I)(dst.p(), len);
                        } else {
                            st = V(omnsSqrt_64f)(src.p(), dst.p(), len);
                        }
                        const Expect& e = expectFor(row, placeOf(col(), at, len, dst.p()));
                        const std::string where = std::string(row.what) + " len " + std::to_string(len) + " at " +
                                                  std::to_string(at) + " off " + std::to_string(dOff) +
                                                  (inPlace ? " in place" : "");
                        if (e.warn >= 0) {
                            ASSERT_EQ(st, e.warn ? 3 : 0) << where;
                        } else {
                            ASSERT_TRUE(st == 0 || st == 3) << where;
                        }
                        ASSERT_TRUE(matches(out.get(at), e.value, row.x))
                            << where << " got " << out.get(at) << " bits " << std::hex << bits(out.get(at));
                        for (int i = 0; i < len; ++i) {
                            if (i == at)
                                continue;
                            ASSERT_LE(relErr(out.get(i), sqrtl(src.get(i))), kFastRootTolerance) << where << " " << i;
                        }
                        ASSERT_TRUE(dst.guardsIntact()) << where;
                    }
                }
            }
        }
    }
}

TEST_P(SqrtTest, RootAccuracyOverTheWholeRange)
{
    // px is correctly rounded; the others are the seed-and-refine root in
    // their blocks and the hardware root elsewhere.
    const int n = 2051;
    test::Rng rng(5);
    Buf src(n, 0), dst(n, 0);
    for (int i = 0; i < n; ++i)
        src.set(i, ldexp(fabs(rng.uniform(1)), static_cast<int>(rng.next() % 2040) - 1020));
    ASSERT_EQ(V(omnsSqrt_64f)(src.p(), dst.p(), n), 0);
    long double worst = 0;
    for (int i = 0; i < n; ++i) {
        if (col() == 0) {
            ASSERT_EQ(bits(dst.get(i)), bits(sqrt(src.get(i)))) << i;
        }
        const long double e = relErr(dst.get(i), sqrtl(src.get(i)));
        worst = e > worst ? e : worst;
    }
    EXPECT_LE(worst, kFastRootTolerance);
    RecordProperty("worst_relative_error_log2", static_cast<int>(log2l(worst > 0 ? worst : 1e-30L)));
}

TEST_P(SqrtTest, SpecialRunsFromTheContract)
{
    double x[3] = { 4, -1, 9 }, y[3];
    alignas(16) double d[4];
    ASSERT_EQ(V(omnsSqrt_64f)(x, d, 3), 3);
    EXPECT_EQ(d[0], 2);
    EXPECT_TRUE(isnan(d[1]));
    EXPECT_EQ(d[2], 3);
    ASSERT_EQ(V(omnsSqrt_64f_I)(x, 3), 3);
    EXPECT_EQ(x[0], 2);
    EXPECT_TRUE(isnan(x[1]));
    EXPECT_EQ(x[2], 3);
    y[0] = 16;
    ASSERT_EQ(V(omnsSqrt_64f)(y, d, 1), 0);
    EXPECT_EQ(d[0], 4);
}

#if defined(__x86_64__) || defined(__i386__)
TEST_P(SqrtTest, ControlWordIsSetForTheCallAndPutBack)
{
    // Denormals-are-zero on, and the invalid and denormal exceptions
    // unmasked: w7 and t7 must mask them for the call (or the NaN cases would
    // trap), see denormals as numbers, and restore the word.  px and a6 don't
    // touch the word; they are checked with it at its default.
    const uint32_t original = omnReadMxcsr();
    const double denormal = fromBits(0x000C000000000000ull);
    Buf src(8, 0), dst(8, 0), ref(8, 0);
    const double xs[8] = { 4, denormal, denormal, 9, -1, 2, -0.0, 25 };
    for (int i = 0; i < 8; ++i)
        src.set(i, xs[i]);
    ASSERT_EQ(V(omnsSqrt_64f)(src.p(), ref.p(), 8), 3);
    const uint32_t strict = (original | kMxcsrDaz) & ~uint32_t(kMxcsrInvalidMask | kMxcsrDenormalMask);
    const uint32_t word = col() >= 2 ? strict : original;
    omnRestoreMxcsr(word);
    const OmnStatus st = V(omnsSqrt_64f)(src.p(), dst.p(), 8);
    const uint32_t after = omnReadMxcsr();
    omnRestoreMxcsr(original);
    EXPECT_EQ(st, 3);
    EXPECT_EQ(after & ~0x3Fu, word & ~0x3Fu);   // the flag bits may gather what was raised
    for (int i = 0; i < 8; ++i)
        EXPECT_EQ(bits(dst.get(i)), bits(ref.get(i))) << i;
}
#endif

TEST_P(SqrtTest, ComplexRootCasesAndNoWarning)
{
    struct Case { double re, im, wre, wim; };
    const Case cases[] = { { -4, 0, 0, 2 }, { 0, 2, 1, 1 }, { 0, -2, 1, -1 }, { 0, 0, 0, 0 }, { 4, 0, 2, 0 },
                           { -9, 0, 0, 3 }, { 3, 4, 2, 1 }, { 3, -4, 2, -1 }, { -3, 4, 1, 2 }, { -3, -4, 1, -2 } };
    const int n = sizeof cases / sizeof cases[0];
    for (int len = 1; len <= n; ++len) {
        for (int first = 0; first + len <= n; ++first) {
            std::vector<Omn64fc> in(len), out(len), io(len);
            for (int i = 0; i < len; ++i)
                in[i] = io[i] = { cases[first + i].re, cases[first + i].im };
            ASSERT_EQ(V(omnsSqrt_64fc)(in.data(), out.data(), len), 0);
            ASSERT_EQ(V(omnsSqrt_64fc_I)(io.data(), len), 0);
            for (int i = 0; i < len; ++i) {
                const Case& k = cases[first + i];
                EXPECT_EQ(out[i].re, k.wre) << k.re << " " << k.im;
                EXPECT_EQ(out[i].im, k.wim) << k.re << " " << k.im;
                EXPECT_EQ(bits(io[i].re), bits(out[i].re));
                EXPECT_EQ(bits(io[i].im), bits(out[i].im));
            }
        }
    }
}

TEST_P(SqrtTest, ComplexRootAgreesWithLongDouble)
{
    using LC = std::complex<long double>;
    test::Rng rng(9);
    for (int len = 1; len <= 17; ++len) {
        for (size_t off : test::kOffsets) {
            Buf src(2 * len, off), dst(2 * len, 8 - off % 8);
            for (int i = 0; i < 2 * len; ++i)
                src.set(i, ldexp(rng.uniform(1), static_cast<int>(rng.next() % 200) - 100));
            if (len > 3)
                src.set(2, 0.0);   // a real part of zero in the middle
            ASSERT_EQ(V(omnsSqrt_64fc)(src.pc(), dst.pc(), len), 0);
            for (int i = 0; i < len; ++i) {
                const LC z(src.get(2 * i), src.get(2 * i + 1));
                const LC w = sqrt(z);
                const long double tol = abs(w) * 1e-15L;
                ASSERT_LE(fabsl(dst.get(2 * i) - w.real()), tol) << len << " " << i;
                ASSERT_LE(fabsl(dst.get(2 * i + 1) - w.imag()), tol) << len << " " << i;
            }
            ASSERT_TRUE(dst.guardsIntact());
        }
    }
}

OMN_ALL_COLUMNS(SqrtTest);
