// Scaled integer arithmetic in every column, against an exact model of the
// scale rule in 128-bit integers: every operation over every factor from
// -70 to 70 and operands at and around 0, +-1, +-2^30, +-2^31 and the 32-bit
// extremes; the listed cases; the argument-check order; short cuts and zero
// fills that must not touch memory; division; absolute value and shifts.
#include <gtest/gtest.h>

#include <fenv.h>
#include <math.h>
#include <stdint.h>
#include <string.h>
#include <sys/mman.h>
#include <unistd.h>

#include <functional>
#include <vector>

#include "tests/columns.h"

using namespace omn;

namespace {

using i128 = __int128;

constexpr Omn32s kMin = INT32_MIN, kMax = INT32_MAX;

Omn32s sat(i128 v) { return v > kMax ? kMax : v < kMin ? kMin : static_cast<Omn32s>(v); }

// The rule: s times 2^-sf, to nearest with ties to even, saturated, and 0
// for every factor above the operation's last rounding one (32 additive, 62
// real products and AddProduct, 63 complex products), which is more than
// rounding gives only for AddProduct.  Written as quotient and remainder,
// independently of the library's form.
Omn32s refScale(i128 s, int sf, int lastRound)
{
    if (sf > lastRound)
        return 0;
    if (sf <= 0) {
        if (s == 0)
            return 0;
        if (-sf >= 64)
            return s > 0 ? kMax : kMin;
        return sat(s * (static_cast<i128>(1) << -sf));
    }
    if (sf >= 100)
        return 0;
    const i128 div = static_cast<i128>(1) << sf;
    i128 q = s / div, r = s % div;        // truncating
    if (r < 0) { q -= 1; r += div; }      // floor
    if (2 * r > div || (2 * r == div && (q & 1) != 0))
        q += 1;
    return sat(q);
}

// The one replacement of the rule: the complex product's 2^63 stands as
// 2^63 - 1.
i128 capped(i128 s) { return s == (static_cast<i128>(1) << 63) ? INT64_MAX : s; }

const Omn32s kVals[] = { 0, 1, -1, 2, -2, 3, -3, 7, -8, 46341, -46341, 0x7FFF, 1 << 30, -(1 << 30), (1 << 30) + 1,
                         -(1 << 30) - 1, 123456789, -987654321, kMax - 1, kMax, kMin, kMin + 1, kMin + 2 };
const Omn32s kFew[] = { 0, 1, -1, 3, 1 << 30, kMax, kMin, kMin + 1 };

// Every factor of the sweep.
std::vector<int> factors()
{
    std::vector<int> f;
    for (int sf = -70; sf <= 70; ++sf)
        f.push_back(sf);
    f.push_back(INT32_MIN);
    f.push_back(INT32_MAX);
    return f;
}

// A guarded allocation: one page we may use, followed by one that faults.
struct Guard {
    long page = sysconf(_SC_PAGESIZE);
    uint8_t* base;
    Guard() { base = static_cast<uint8_t*>(mmap(nullptr, 2 * page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0)); }
    ~Guard() { munmap(base, 2 * page); }
    // A pointer into a page that faults on any access.
    template <typename T> T* noAccess() { mprotect(base + page, page, PROT_NONE); return reinterpret_cast<T*>(base + page); }
    // The first page, made read-only after it was filled.
    template <typename T> T* readOnly() { mprotect(base, page, PROT_READ); return reinterpret_cast<T*>(base); }
    template <typename T> T* writable() { return reinterpret_cast<T*>(base); }
};

} // namespace

class IntArithTest : public test::ColumnTest {};

// ---- two-source real operations ------------------------------------------

namespace {

struct Binary {
    const char* name;
    bool inPlace;
    bool product;  // Mul_32s: w7/t7 go through doubles
    int lastRound;
    i128 (*acc)(Omn32s a, Omn32s b, Omn32s d);   // a = first source, b = second
    OmnStatus (*call)(int c, const Omn32s* a, const Omn32s* b, Omn32s* d, int n, int sf);
};

const Binary kBinary[] = {
    { "Add_32s_Sfs", false, false, 32, [](Omn32s a, Omn32s b, Omn32s) -> i128 { return i128(a) + b; },
      [](int c, const Omn32s* a, const Omn32s* b, Omn32s* d, int n, int sf) { return test::omnsAdd_32s_Sfs[c](a, b, d, n, sf); } },
    { "Sub_32s_Sfs", false, false, 32, [](Omn32s a, Omn32s b, Omn32s) -> i128 { return i128(b) - a; },
      [](int c, const Omn32s* a, const Omn32s* b, Omn32s* d, int n, int sf) { return test::omnsSub_32s_Sfs[c](a, b, d, n, sf); } },
    { "Mul_32s_Sfs", false, true, 62, [](Omn32s a, Omn32s b, Omn32s) -> i128 { return i128(a) * b; },
      [](int c, const Omn32s* a, const Omn32s* b, Omn32s* d, int n, int sf) { return test::omnsMul_32s_Sfs[c](a, b, d, n, sf); } },
    { "Add_32s_ISfs", true, false, 32, [](Omn32s a, Omn32s b, Omn32s) -> i128 { return i128(b) + a; },
      [](int c, const Omn32s* a, const Omn32s*, Omn32s* d, int n, int sf) { return test::omnsAdd_32s_ISfs[c](a, d, n, sf); } },
    { "Sub_32s_ISfs", true, false, 32, [](Omn32s a, Omn32s b, Omn32s) -> i128 { return i128(b) - a; },
      [](int c, const Omn32s* a, const Omn32s*, Omn32s* d, int n, int sf) { return test::omnsSub_32s_ISfs[c](a, d, n, sf); } },
    { "Mul_32s_ISfs", true, true, 62, [](Omn32s a, Omn32s b, Omn32s) -> i128 { return i128(a) * b; },
      [](int c, const Omn32s* a, const Omn32s*, Omn32s* d, int n, int sf) { return test::omnsMul_32s_ISfs[c](a, d, n, sf); } },
    { "AddProduct_32s_Sfs", true, false, 62, [](Omn32s a, Omn32s b, Omn32s d) -> i128 { return i128(a) * b + d; },
      [](int c, const Omn32s* a, const Omn32s* b, Omn32s* d, int n, int sf) { return test::omnsAddProduct_32s_Sfs[c](a, b, d, n, sf); } },
};

// w7/t7's product: (a * 2^-sf) * b in double, clamped, to nearest even.
// Computed here with the C library's rounding instead of the conversion.
Omn32s doubleModel(Omn32s a, Omn32s b, int sf)
{
    double x = ldexp(static_cast<double>(a), -sf) * static_cast<double>(b);
    x = x < -2147483648.0 ? -2147483648.0 : x > 2147483647.0 ? 2147483647.0 : x;
    return static_cast<Omn32s>(nearbyint(x));
}

bool productFitsDouble(Omn32s a, Omn32s b)
{
    const double p = static_cast<double>(a) * static_cast<double>(b);
    return static_cast<i128>(p) == i128(a) * b;
}

} // namespace

TEST_P(IntArithTest, TwoSourceRealFormsFollowTheExactRuleOverEverySfAndExtreme)
{
    // All pairs of the operand set (and the third operand of AddProduct
    // from a rotation of it), one extra element for the scalar tail.
    std::vector<Omn32s> A, B, D;
    const size_t nv = sizeof kVals / sizeof kVals[0];
    for (size_t i = 0; i < nv; ++i)
        for (size_t j = 0; j < nv; ++j) {
            A.push_back(kVals[i]);
            B.push_back(kVals[j]);
            D.push_back(kVals[(i * 7 + j * 3) % nv]);
        }
    A.push_back(kMax); B.push_back(kMax); D.push_back(kMin);
    const int n = static_cast<int>(A.size());
    const bool dbl = col() >= 2;
    std::vector<Omn32s> out(A.size());
    for (const Binary& op : kBinary) {
        for (int sf : factors()) {
            out = D;
            if (op.inPlace && !strstr(op.name, "AddProduct"))
                out = B;   // in place: the array that is changed is the second operand
            ASSERT_EQ(op.call(col(), A.data(), B.data(), out.data(), n, sf), 0) << op.name;
            for (int i = 0; i < n; ++i) {
                const Omn32s want = refScale(op.acc(A[i], B[i], D[i]), sf, op.lastRound);
                if (op.product && dbl && sf != INT32_MIN && sf >= -31 && sf <= 62) {
                    // The documented difference: the double model exactly,
                    // which is the exact rule wherever the product fits 53
                    // bits and within one otherwise.
                    ASSERT_EQ(out[i], doubleModel(A[i], B[i], sf)) << op.name << " sf " << sf << " a " << A[i] << " b " << B[i];
                    if (productFitsDouble(A[i], B[i]))
                        ASSERT_EQ(out[i], want) << op.name << " sf " << sf << " a " << A[i] << " b " << B[i];
                    else
                        ASSERT_LE(llabs(int64_t(out[i]) - want), 1) << op.name << " sf " << sf;
                } else {
                    ASSERT_EQ(out[i], want) << op.name << " sf " << sf << " a " << A[i] << " b " << B[i] << " d " << D[i];
                }
            }
        }
    }
}

TEST_P(IntArithTest, DoubleProductDiffersOnlyWhereTheProductIsWiderThan53Bits)
{
    // (2^30 + 1) * (2^30 + 3) = 2^60 + 2^32 + 3 needs 61 bits.  With sf 33
    // the exact quotient is 2^27 + 0.5 + 3 * 2^-33, which rounds up; the
    // double product loses the 3 and leaves a tie, which goes to the even
    // 2^27.
    const Omn32s a[1] = { (1 << 30) + 1 }, b[1] = { (1 << 30) + 3 };
    Omn32s d[1];
    ASSERT_EQ(V(omnsMul_32s_Sfs)(a, b, d, 1, 33), 0);
    EXPECT_EQ(d[0], col() >= 2 ? (1 << 27) : (1 << 27) + 1);
    // The constant and complex products stay exact in every column.
    ASSERT_EQ(V(omnsMulC_32s_Sfs)(a, b[0], d, 1, 33), 0);
    EXPECT_EQ(d[0], (1 << 27) + 1);
}

TEST_P(IntArithTest, DoubleProductRoundsToNearestWhateverTheModeAndRestoresIt)
{
    const Omn32s a[5] = { 3, 5, -3, 7, 1 }, b[5] = { 1, 1, 1, 1, 1 };
    for (int mode : { FE_TOWARDZERO, FE_UPWARD, FE_DOWNWARD }) {
        ASSERT_EQ(fesetround(mode), 0);
        Omn32s d[5];
        const OmnStatus st = V(omnsMul_32s_Sfs)(a, b, d, 5, 1);
        const int after = fegetround();
        fesetround(FE_TONEAREST);
        ASSERT_EQ(st, 0);
        EXPECT_EQ(after, mode);
        // 1.5, 2.5, -1.5, 3.5, 0.5 to nearest even.
        const Omn32s want[5] = { 2, 2, -2, 4, 0 };
        for (int i = 0; i < 5; ++i)
            EXPECT_EQ(d[i], want[i]) << "mode " << mode << " i " << i;
    }
}

// ---- constant forms, real --------------------------------------------------

namespace {

struct WithConst {
    const char* name;
    bool inPlace;
    int lastRound;
    i128 (*acc)(Omn32s a, Omn32s v);
    OmnStatus (*call)(int c, const Omn32s* s, Omn32s v, Omn32s* d, int n, int sf);
};

const WithConst kWithConst[] = {
    { "AddC_32s_Sfs", false, 32, [](Omn32s a, Omn32s v) -> i128 { return i128(a) + v; },
      [](int c, const Omn32s* s, Omn32s v, Omn32s* d, int n, int sf) { return test::omnsAddC_32s_Sfs[c](s, v, d, n, sf); } },
    { "SubC_32s_Sfs", false, 32, [](Omn32s a, Omn32s v) -> i128 { return i128(a) - v; },
      [](int c, const Omn32s* s, Omn32s v, Omn32s* d, int n, int sf) { return test::omnsSubC_32s_Sfs[c](s, v, d, n, sf); } },
    { "SubCRev_32s_Sfs", false, 32, [](Omn32s a, Omn32s v) -> i128 { return i128(v) - a; },
      [](int c, const Omn32s* s, Omn32s v, Omn32s* d, int n, int sf) { return test::omnsSubCRev_32s_Sfs[c](s, v, d, n, sf); } },
    { "MulC_32s_Sfs", false, 62, [](Omn32s a, Omn32s v) -> i128 { return i128(a) * v; },
      [](int c, const Omn32s* s, Omn32s v, Omn32s* d, int n, int sf) { return test::omnsMulC_32s_Sfs[c](s, v, d, n, sf); } },
    { "AddC_32s_ISfs", true, 32, [](Omn32s a, Omn32s v) -> i128 { return i128(a) + v; },
      [](int c, const Omn32s*, Omn32s v, Omn32s* d, int n, int sf) { return test::omnsAddC_32s_ISfs[c](v, d, n, sf); } },
    { "SubC_32s_ISfs", true, 32, [](Omn32s a, Omn32s v) -> i128 { return i128(a) - v; },
      [](int c, const Omn32s*, Omn32s v, Omn32s* d, int n, int sf) { return test::omnsSubC_32s_ISfs[c](v, d, n, sf); } },
    { "SubCRev_32s_ISfs", true, 32, [](Omn32s a, Omn32s v) -> i128 { return i128(v) - a; },
      [](int c, const Omn32s*, Omn32s v, Omn32s* d, int n, int sf) { return test::omnsSubCRev_32s_ISfs[c](v, d, n, sf); } },
    { "MulC_32s_ISfs", true, 62, [](Omn32s a, Omn32s v) -> i128 { return i128(a) * v; },
      [](int c, const Omn32s*, Omn32s v, Omn32s* d, int n, int sf) { return test::omnsMulC_32s_ISfs[c](v, d, n, sf); } },
};

} // namespace

TEST_P(IntArithTest, ConstantRealFormsFollowTheExactRule)
{
    std::vector<Omn32s> src(std::begin(kVals), std::end(kVals));
    const int n = static_cast<int>(src.size());
    std::vector<Omn32s> out(src.size());
    for (const WithConst& op : kWithConst)
        for (Omn32s v : kVals)
            for (int sf : factors()) {
                out = op.inPlace ? src : std::vector<Omn32s>(src.size(), 0x5A5A5A5A);
                ASSERT_EQ(op.call(col(), src.data(), v, out.data(), n, sf), 0) << op.name;
                for (int i = 0; i < n; ++i)
                    ASSERT_EQ(out[i], refScale(op.acc(src[i], v), sf, op.lastRound)) << op.name << " v " << v << " sf " << sf << " a " << src[i];
            }
}

// ---- complex forms -----------------------------------------------------------

namespace {

struct Cplx {
    const char* name;
    int kind;   // 0 add, 1 sub (second minus first), 2 product
    bool inPlace;
    OmnStatus (*call)(int c, const Omn32sc* a, const Omn32sc* b, Omn32sc* d, int n, int sf);
};

const Cplx kCplx[] = {
    { "Add_32sc_Sfs", 0, false, [](int c, const Omn32sc* a, const Omn32sc* b, Omn32sc* d, int n, int sf) { return test::omnsAdd_32sc_Sfs[c](a, b, d, n, sf); } },
    { "Sub_32sc_Sfs", 1, false, [](int c, const Omn32sc* a, const Omn32sc* b, Omn32sc* d, int n, int sf) { return test::omnsSub_32sc_Sfs[c](a, b, d, n, sf); } },
    { "Mul_32sc_Sfs", 2, false, [](int c, const Omn32sc* a, const Omn32sc* b, Omn32sc* d, int n, int sf) { return test::omnsMul_32sc_Sfs[c](a, b, d, n, sf); } },
    { "Add_32sc_ISfs", 0, true, [](int c, const Omn32sc* a, const Omn32sc*, Omn32sc* d, int n, int sf) { return test::omnsAdd_32sc_ISfs[c](a, d, n, sf); } },
    { "Sub_32sc_ISfs", 1, true, [](int c, const Omn32sc* a, const Omn32sc*, Omn32sc* d, int n, int sf) { return test::omnsSub_32sc_ISfs[c](a, d, n, sf); } },
    { "Mul_32sc_ISfs", 2, true, [](int c, const Omn32sc* a, const Omn32sc*, Omn32sc* d, int n, int sf) { return test::omnsMul_32sc_ISfs[c](a, d, n, sf); } },
};

struct CplxConst {
    const char* name;
    int kind;   // 0 add, 1 a - v, 2 v - a, 3 product
    bool inPlace;
    OmnStatus (*call)(int c, const Omn32sc* s, Omn32sc v, Omn32sc* d, int n, int sf);
};

const CplxConst kCplxConst[] = {
    { "AddC_32sc_Sfs", 0, false, [](int c, const Omn32sc* s, Omn32sc v, Omn32sc* d, int n, int sf) { return test::omnsAddC_32sc_Sfs[c](s, v, d, n, sf); } },
    { "SubC_32sc_Sfs", 1, false, [](int c, const Omn32sc* s, Omn32sc v, Omn32sc* d, int n, int sf) { return test::omnsSubC_32sc_Sfs[c](s, v, d, n, sf); } },
    { "SubCRev_32sc_Sfs", 2, false, [](int c, const Omn32sc* s, Omn32sc v, Omn32sc* d, int n, int sf) { return test::omnsSubCRev_32sc_Sfs[c](s, v, d, n, sf); } },
    { "MulC_32sc_Sfs", 3, false, [](int c, const Omn32sc* s, Omn32sc v, Omn32sc* d, int n, int sf) { return test::omnsMulC_32sc_Sfs[c](s, v, d, n, sf); } },
    { "AddC_32sc_ISfs", 0, true, [](int c, const Omn32sc*, Omn32sc v, Omn32sc* d, int n, int sf) { return test::omnsAddC_32sc_ISfs[c](v, d, n, sf); } },
    { "SubC_32sc_ISfs", 1, true, [](int c, const Omn32sc*, Omn32sc v, Omn32sc* d, int n, int sf) { return test::omnsSubC_32sc_ISfs[c](v, d, n, sf); } },
    { "SubCRev_32sc_ISfs", 2, true, [](int c, const Omn32sc*, Omn32sc v, Omn32sc* d, int n, int sf) { return test::omnsSubCRev_32sc_ISfs[c](v, d, n, sf); } },
    { "MulC_32sc_ISfs", 3, true, [](int c, const Omn32sc*, Omn32sc v, Omn32sc* d, int n, int sf) { return test::omnsMulC_32sc_ISfs[c](v, d, n, sf); } },
};

void cplxRef(int kind, Omn32sc x, Omn32sc y, i128& re, i128& im)
{
    switch (kind) {
    case 0: re = i128(x.re) + y.re; im = i128(x.im) + y.im; break;
    case 1: re = i128(y.re) - x.re; im = i128(y.im) - x.im; break;
    default:
        re = i128(x.re) * y.re - i128(x.im) * y.im;
        im = capped(i128(x.re) * y.im + i128(x.im) * y.re);
        break;
    }
}

std::vector<Omn32sc> complexValues()
{
    std::vector<Omn32sc> v;
    for (Omn32s re : kFew)
        for (Omn32s im : kFew)
            v.push_back({ re, im });
    return v;
}

} // namespace

TEST_P(IntArithTest, ComplexFormsFollowTheExactRuleWithTheOneReplacement)
{
    const std::vector<Omn32sc> cv = complexValues();
    std::vector<Omn32sc> A, B;
    for (const Omn32sc& x : cv)
        for (const Omn32sc& y : cv) {
            A.push_back(x);
            B.push_back(y);
        }
    const int n = static_cast<int>(A.size());
    std::vector<Omn32sc> out(A.size());
    for (const Cplx& op : kCplx)
        for (int sf : factors()) {
            out = B;
            ASSERT_EQ(op.call(col(), A.data(), B.data(), out.data(), n, sf), 0) << op.name;
            for (int i = 0; i < n; ++i) {
                i128 re, im;
                cplxRef(op.kind, A[i], B[i], re, im);
                const int last = op.kind == 2 ? 63 : 32;
                ASSERT_EQ(out[i].re, refScale(re, sf, last)) << op.name << " sf " << sf << " i " << i;
                ASSERT_EQ(out[i].im, refScale(im, sf, last)) << op.name << " sf " << sf << " i " << i;
            }
        }
    const int m = static_cast<int>(cv.size());
    for (const CplxConst& op : kCplxConst)
        for (const Omn32sc& v : cv)
            for (int sf : factors()) {
                out.assign(cv.begin(), cv.end());
                ASSERT_EQ(op.call(col(), cv.data(), v, out.data(), m, sf), 0) << op.name;
                for (int i = 0; i < m; ++i) {
                    i128 re, im;
                    const int kind = op.kind == 3 ? 2 : 0;
                    Omn32sc x = cv[i], y = v;
                    if (op.kind == 1) {   // a - v: v subtracted from a
                        x = v; y = cv[i]; cplxRef(1, x, y, re, im);
                    } else if (op.kind == 2) {
                        cplxRef(1, x, y, re, im);
                    } else {
                        cplxRef(kind, x, y, re, im);
                    }
                    const int last = op.kind == 3 ? 63 : 32;
                    ASSERT_EQ(out[i].re, refScale(re, sf, last)) << op.name << " sf " << sf << " i " << i;
                    ASSERT_EQ(out[i].im, refScale(im, sf, last)) << op.name << " sf " << sf << " i " << i;
                }
            }
}

TEST_P(IntArithTest, RealTimesComplexFollowsTheExactRule)
{
    const std::vector<Omn32sc> cv = complexValues();
    std::vector<Omn32s> A;
    std::vector<Omn32sc> B;
    for (Omn32s a : kVals)
        for (const Omn32sc& y : cv) {
            A.push_back(a);
            B.push_back(y);
        }
    const int n = static_cast<int>(A.size());
    std::vector<Omn32sc> out(B.size()), inPlace(B.size());
    for (int sf : factors()) {
        ASSERT_EQ(V(omnsMul_32s32sc_Sfs)(A.data(), B.data(), out.data(), n, sf), 0);
        inPlace = B;
        ASSERT_EQ(V(omnsMul_32s32sc_ISfs)(A.data(), inPlace.data(), n, sf), 0);
        for (int i = 0; i < n; ++i) {
            ASSERT_EQ(out[i].re, refScale(i128(A[i]) * B[i].re, sf, 62)) << "sf " << sf << " i " << i;
            ASSERT_EQ(out[i].im, refScale(i128(A[i]) * B[i].im, sf, 62)) << "sf " << sf << " i " << i;
            ASSERT_EQ(inPlace[i].re, out[i].re);
            ASSERT_EQ(inPlace[i].im, out[i].im);
        }
    }
}

TEST_P(IntArithTest, PackedKernelsHandleEveryLengthAndAlignment)
{
    // Lengths across the blocks of four and their tails, at element
    // offsets that leave the arrays unaligned against each other.
    std::vector<Omn32s> a(80), b(80), d(80);
    uint32_t x = 12345;
    for (size_t i = 0; i < a.size(); ++i) {
        x = x * 1103515245u + 12345u;
        a[i] = static_cast<Omn32s>(x);
        x = x * 1103515245u + 12345u;
        b[i] = static_cast<Omn32s>(x) >> (i % 5 == 0 ? 0 : 3);
    }
    for (int sf : { 0, -1, -7, -30, 1, 2, 9, 31, 32 })
        for (int n = 1; n <= 37; ++n)
            for (int oa : { 0, 1, 3 })
                for (int od : { 0, 2 }) {
                    std::fill(d.begin(), d.end(), 0x11111111);
                    ASSERT_EQ(V(omnsSub_32s_Sfs)(a.data() + oa, b.data() + 1, d.data() + od, n, sf), 0);
                    for (int i = 0; i < n; ++i)
                        ASSERT_EQ(d[od + i], refScale(i128(b[1 + i]) - a[oa + i], sf, 32)) << "n " << n << " sf " << sf;
                    ASSERT_EQ(d[od + n], 0x11111111) << "wrote past the end";
                    if (od > 0) {
                        ASSERT_EQ(d[od - 1], 0x11111111);
                    }
                    ASSERT_EQ(V(omnsAddC_32s_Sfs)(a.data() + oa, b[n], d.data() + od, n, sf), 0);
                    for (int i = 0; i < n; ++i)
                        ASSERT_EQ(d[od + i], refScale(i128(a[oa + i]) + b[n], sf, 32));
                    ASSERT_EQ(V(omnsMul_32s_Sfs)(a.data() + oa, b.data() + 1, d.data() + od, n, sf), 0);
                    for (int i = 0; i < n; ++i)
                        ASSERT_EQ(d[od + i], col() >= 2 ? doubleModel(a[oa + i], b[1 + i], sf)
                                                        : refScale(i128(a[oa + i]) * b[1 + i], sf, 62));
                }
}

// ---- the listed cases ---------------------------------------------------------

TEST_P(IntArithTest, ListedCases)
{
    struct Case { Omn32s a, b; int sf; Omn32s add, mul; };
    const Case cases[] = {
        { 1, 2, 1, 2, 1 },               // s = 3: (3 + 1) >> 1
        { 1, 0, 1, 0, 0 },               // a tie goes to the even 0
        { -1, 0, 1, 0, 0 },
        { 3, 0, 1, 2, 0 },
        { kMax, 1, 0, kMax, kMax },
        { kMax, 1, 1, 1073741824, 1073741824 },
        { 1, 0, -31, kMax, 0 },          // Add: sign path
        { 1, 1, -31, kMax, kMax },       // Mul: shift and clamp
        { 0, 0, -31, 0, 0 },
        { 5, 7, 33, 0, 0 },              // Add zero fill; Mul rounds 35 / 2^33 to 0
        { kMax, kMax, 33, 0, 536870912 },  // Mul still rounds the product at 33
    };
    for (const Case& k : cases) {
        Omn32s d[1];
        ASSERT_EQ(V(omnsAdd_32s_Sfs)(&k.a, &k.b, d, 1, k.sf), 0);
        EXPECT_EQ(d[0], k.add) << "Add " << k.a << " " << k.b << " sf " << k.sf;
        ASSERT_EQ(V(omnsMul_32s_Sfs)(&k.a, &k.b, d, 1, k.sf), 0);
        EXPECT_EQ(d[0], k.mul) << "Mul " << k.a << " " << k.b << " sf " << k.sf;
    }
    // Sub at sf 1: 2^32 - 1 halves to 2^31 + 0 (tie to even), saturated.
    const Omn32s lo = kMin, hi = kMax;
    Omn32s d[1];
    ASSERT_EQ(V(omnsSub_32s_Sfs)(&lo, &hi, d, 1, 1), 0);
    EXPECT_EQ(d[0], kMax);
    ASSERT_EQ(V(omnsSubCRev_32s_Sfs)(&lo, kMax, d, 1, 1), 0);
    EXPECT_EQ(d[0], kMax);
    // The complex product's 2^63, all four factors the minimum.
    const Omn32sc m = { kMin, kMin };
    Omn32sc p[1];
    for (int sf : { 63, 62, 1, 0, -31 }) {
        ASSERT_EQ(V(omnsMul_32sc_Sfs)(&m, &m, p, 1, sf), 0);
        EXPECT_EQ(p[0].re, 0) << sf;
        EXPECT_EQ(p[0].im, sf == 63 ? 1 : sf == 62 ? 2 : kMax) << sf;
    }
    ASSERT_EQ(V(omnsMul_32sc_Sfs)(&m, &m, p, 1, 64), 0);
    EXPECT_EQ(p[0].im, 0);
}

// ---- argument checks -----------------------------------------------------------

TEST_P(IntArithTest, PointersFirstThenLengthAndTheComplexSumsTestTheLengthFirst)
{
    Omn32s a[4] = {}, b[4] = {}, d[4] = {};
    Omn32sc ca[4] = {}, cb[4] = {}, cd[4] = {};
    const int c = col();
    // Real forms: each pointer position, even with a bad length.
    EXPECT_EQ(test::omnsAdd_32s_Sfs[c](nullptr, b, d, 0, 0), -8);
    EXPECT_EQ(test::omnsAdd_32s_Sfs[c](a, nullptr, d, 0, 0), -8);
    EXPECT_EQ(test::omnsAdd_32s_Sfs[c](a, b, nullptr, 0, 0), -8);
    EXPECT_EQ(test::omnsAdd_32s_Sfs[c](a, b, d, 0, 0), -6);
    EXPECT_EQ(test::omnsAdd_32s_Sfs[c](a, b, d, -1, 0), -6);
    EXPECT_EQ(test::omnsMul_32s_Sfs[c](a, b, nullptr, -1, 5), -8);
    EXPECT_EQ(test::omnsMulC_32s_Sfs[c](nullptr, 0, d, 0, 0), -8);
    EXPECT_EQ(test::omnsMulC_32s_ISfs[c](0, d, 0, 0), -6);
    EXPECT_EQ(test::omnsAddProduct_32s_Sfs[c](a, b, nullptr, 0, 0), -8);
    EXPECT_EQ(test::omnsDiv_32s_Sfs[c](nullptr, b, d, 0, 0), -8);
    EXPECT_EQ(test::omnsDiv_32s_ISfs[c](a, d, 0, 0), -6);
    // Complex sums: the length before any pointer, and the doubled length
    // wraps at 2^32.
    EXPECT_EQ(test::omnsAdd_32sc_Sfs[c](nullptr, nullptr, nullptr, 0, 0), -6);
    EXPECT_EQ(test::omnsSub_32sc_ISfs[c](nullptr, nullptr, 0, 0), -6);
    EXPECT_EQ(test::omnsAdd_32sc_Sfs[c](nullptr, cb, cd, 1, 0), -8);
    EXPECT_EQ(test::omnsAdd_32sc_Sfs[c](ca, cb, cd, 1 << 30, 0), -6);
    EXPECT_EQ(test::omnsSub_32sc_Sfs[c](ca, cb, cd, 0x60000000, 0), -6);
    // ... while the complex products follow the ordinary order.
    EXPECT_EQ(test::omnsMul_32sc_Sfs[c](nullptr, nullptr, nullptr, 0, 0), -8);
    EXPECT_EQ(test::omnsMulC_32sc_Sfs[c](nullptr, { 1, 1 }, cd, 0, 0), -8);
    EXPECT_EQ(test::omnsAddC_32sc_ISfs[c]({ 1, 1 }, nullptr, 0, 0), -8);
    EXPECT_EQ(test::omnsMul_32s32sc_Sfs[c](a, nullptr, cd, 0, 0), -8);
    // Shifts: the negative shift after the pointers and the length.
    EXPECT_EQ(test::omnsRShiftC_32s[c](nullptr, -1, d, 0), -8);
    EXPECT_EQ(test::omnsRShiftC_32s[c](a, -1, d, 0), -6);
    EXPECT_EQ(test::omnsRShiftC_32s[c](a, -1, d, 1), -32);
    EXPECT_EQ(test::omnsLShiftC_32s_I[c](-1, nullptr, 1), -8);
    EXPECT_EQ(test::omnsLShiftC_32s_I[c](-5, d, 1), -32);
    EXPECT_EQ(test::omnsAbs_32s[c](a, nullptr, 1), -8);
    EXPECT_EQ(test::omnsAbs_32s_I[c](d, 0), -6);
}

// ---- short cuts and zero fills ------------------------------------------------

TEST_P(IntArithTest, ZeroFillsAndShortCutsDoNotTouchWhatTheyMustNot)
{
    const int c = col();
    Guard g;
    const Omn32s* none = g.noAccess<Omn32s>();
    Omn32s* dst = g.writable<Omn32s>();
    auto allZero = [&](int n) { for (int i = 0; i < n; ++i) if (dst[i] != 0) return false; return true; };
    auto dirty = [&](int n) { for (int i = 0; i < n; ++i) dst[i] = 77; };
    const int n = 9;

    // Beyond the last rounding factor the source isn't read.
    dirty(n); ASSERT_EQ(test::omnsAdd_32s_Sfs[c](none, none, dst, n, 33), 0); EXPECT_TRUE(allZero(n));
    dirty(n); ASSERT_EQ(test::omnsSubCRev_32s_Sfs[c](none, 5, dst, n, 40), 0); EXPECT_TRUE(allZero(n));
    dirty(n); ASSERT_EQ(test::omnsAdd_32s_ISfs[c](none, dst, n, 33), 0); EXPECT_TRUE(allZero(n));
    dirty(n); ASSERT_EQ(test::omnsMul_32s_Sfs[c](none, none, dst, n, 63), 0); EXPECT_TRUE(allZero(n));
    dirty(n); ASSERT_EQ(test::omnsMul_32s32sc_Sfs[c](none, reinterpret_cast<const Omn32sc*>(none), reinterpret_cast<Omn32sc*>(dst), n / 2, 63), 0);
    EXPECT_TRUE(allZero(n / 2 * 2));
    dirty(n); ASSERT_EQ(test::omnsMul_32sc_Sfs[c](reinterpret_cast<const Omn32sc*>(none), reinterpret_cast<const Omn32sc*>(none),
                                                  reinterpret_cast<Omn32sc*>(dst), n / 2, 64), 0);
    EXPECT_TRUE(allZero(n / 2 * 2));
    dirty(n); ASSERT_EQ(test::omnsAddProduct_32s_Sfs[c](none, none, dst, n, 63), 0); EXPECT_TRUE(allZero(n));
    // A zero constant clears before the factor is looked at.
    for (int sf : { -40, -5, 0, 3, 100 }) {
        dirty(n); ASSERT_EQ(test::omnsMulC_32s_Sfs[c](none, 0, dst, n, sf), 0); EXPECT_TRUE(allZero(n)) << sf;
    }
    // Shifts above 31 to the left clear without reading.
    dirty(n); ASSERT_EQ(test::omnsLShiftC_32s[c](none, 32, dst, n), 0); EXPECT_TRUE(allZero(n));
    dirty(n); ASSERT_EQ(test::omnsMagnitude_32sc_Sfs[c](reinterpret_cast<const Omn32sc*>(none), dst, n, 33), 0); EXPECT_TRUE(allZero(n));

    // In place with sf 0 and val 0 nothing is written: the array is read-only.
    for (int i = 0; i < n; ++i)
        dst[i] = i - 4;
    Omn32s* ro = g.readOnly<Omn32s>();
    EXPECT_EQ(test::omnsAddC_32s_ISfs[c](0, ro, n, 0), 0);
    EXPECT_EQ(test::omnsSubC_32s_ISfs[c](0, ro, n, 0), 0);
}

TEST_P(IntArithTest, ShortCutsGiveTheRuleResult)
{
    const Omn32s src[6] = { kMin, -1, 0, 1, kMax, 12345 };
    Omn32s d[6];
    ASSERT_EQ(V(omnsAddC_32s_Sfs)(src, 0, d, 6, 0), 0);
    EXPECT_EQ(0, memcmp(d, src, sizeof d));
    ASSERT_EQ(V(omnsSubC_32s_Sfs)(src, 0, d, 6, 0), 0);
    EXPECT_EQ(0, memcmp(d, src, sizeof d));
    ASSERT_EQ(V(omnsMulC_32s_Sfs)(src, 1, d, 6, 0), 0);
    EXPECT_EQ(0, memcmp(d, src, sizeof d));
    // SubCRev has none: 0 - a, with the minimum saturating.
    ASSERT_EQ(V(omnsSubCRev_32s_Sfs)(src, 0, d, 6, 0), 0);
    const Omn32s neg[6] = { kMax, 1, 0, -1, -kMax, -12345 };
    EXPECT_EQ(0, memcmp(d, neg, sizeof d));
    // MulC with val 0 and sf -5 gives zeros.
    ASSERT_EQ(V(omnsMulC_32s_Sfs)(src, 0, d, 6, -5), 0);
    for (Omn32s v : d)
        EXPECT_EQ(v, 0);
}

// ---- division -------------------------------------------------------------------

namespace {

// The division's rule, by an independent road: the quotient in double with
// ldexp, then the C library's rounding to nearest even.
Omn32s refDiv(Omn32s d, Omn32s v, int sf, bool& zero)
{
    if (d == 0) {
        zero = true;
        return v > 0 ? kMax : v < 0 ? kMin : 0;
    }
    if (sf < -62)
        return v == 0 ? 0 : ((v > 0) == (d > 0) ? kMax : kMin);
    if (sf > 32)
        return 0;
    const double q = ldexp(static_cast<double>(v), -sf) / static_cast<double>(d);
    if (sf <= 0 && q < -2147483648.0)
        return kMin;
    if (sf <= 0 && q > 2147483647.0)
        return kMax;
    return static_cast<Omn32s>(nearbyint(q));
}

} // namespace

TEST_P(IntArithTest, DivisionGoesThroughDoubleWithItsOwnRounding)
{
    std::vector<Omn32s> den, num;
    for (Omn32s d : kVals)
        for (Omn32s v : kVals) {
            den.push_back(d);
            num.push_back(v);
        }
    // Ties of the quotient itself: 5/2, 7/2, -5/2, -7/2, 1/2.
    for (Omn32s v : { 5, 7, -5, -7, 1, -1 }) {
        den.push_back(2);
        num.push_back(v);
    }
    const int n = static_cast<int>(den.size());
    std::vector<Omn32s> out(den.size()), inPlace(den.size());
    for (int sf : factors()) {
        bool zero = false;
        std::vector<Omn32s> want(den.size());
        for (int i = 0; i < n; ++i)
            want[i] = refDiv(den[i], num[i], sf, zero);
        ASSERT_EQ(V(omnsDiv_32s_Sfs)(den.data(), num.data(), out.data(), n, sf), zero ? 6 : 0);
        inPlace = num;
        ASSERT_EQ(V(omnsDiv_32s_ISfs)(den.data(), inPlace.data(), n, sf), zero ? 6 : 0);
        for (int i = 0; i < n; ++i) {
            ASSERT_EQ(out[i], want[i]) << "sf " << sf << " " << num[i] << " / " << den[i];
            ASSERT_EQ(inPlace[i], want[i]);
        }
    }
    // The listed cases, and no warning without a zero divisor.
    const Omn32s zero[2] = { 0, 0 }, five[2] = { 5, 0 };
    Omn32s d[2];
    ASSERT_EQ(V(omnsDiv_32s_Sfs)(zero, five, d, 2, 0), 6);
    EXPECT_EQ(d[0], kMax);
    EXPECT_EQ(d[1], 0);
    const Omn32s two[1] = { 2 }, nine[1] = { 9 };
    ASSERT_EQ(V(omnsDiv_32s_Sfs)(two, nine, d, 1, 0), 0);
    EXPECT_EQ(d[0], 4);   // 4.5 to even
}

// ---- absolute value and shifts ------------------------------------------------

TEST_P(IntArithTest, AbsAndShiftsOverEveryCount)
{
    std::vector<Omn32s> src(std::begin(kVals), std::end(kVals)), out(src.size());
    const int n = static_cast<int>(src.size());
    ASSERT_EQ(V(omnsAbs_32s)(src.data(), out.data(), n), 0);
    for (int i = 0; i < n; ++i)
        EXPECT_EQ(out[i], src[i] == kMin ? kMax : (src[i] < 0 ? -src[i] : src[i]));
    out = src;
    ASSERT_EQ(V(omnsAbs_32s_I)(out.data(), n), 0);
    EXPECT_EQ(out[20], kMax);   // kVals[20] is the minimum
    for (Omn32s k = 0; k <= 70; ++k) {
        ASSERT_EQ(V(omnsRShiftC_32s)(src.data(), k, out.data(), n), 0);
        for (int i = 0; i < n; ++i)
            ASSERT_EQ(out[i], static_cast<Omn32s>(static_cast<int64_t>(src[i]) >> (k > 40 ? 40 : k))) << "k " << k;
        ASSERT_EQ(V(omnsLShiftC_32s)(src.data(), k, out.data(), n), 0);
        for (int i = 0; i < n; ++i)
            ASSERT_EQ(out[i], k > 31 ? 0 : static_cast<Omn32s>(static_cast<uint32_t>(src[i]) << k)) << "k " << k;
        std::vector<Omn32s> ip = src;
        ASSERT_EQ(V(omnsRShiftC_32s_I)(k, ip.data(), n), 0);
        for (int i = 0; i < n; ++i)
            ASSERT_EQ(ip[i], static_cast<Omn32s>(static_cast<int64_t>(src[i]) >> (k > 40 ? 40 : k)));
        ip = src;
        ASSERT_EQ(V(omnsLShiftC_32s_I)(k, ip.data(), n), 0);
        for (int i = 0; i < n; ++i)
            ASSERT_EQ(ip[i], k > 31 ? 0 : static_cast<Omn32s>(static_cast<uint32_t>(src[i]) << k));
    }
    const Omn32s m5 = -5, p5 = 5;
    Omn32s d;
    ASSERT_EQ(V(omnsRShiftC_32s)(&m5, 40, &d, 1), 0);
    EXPECT_EQ(d, -1);
    ASSERT_EQ(V(omnsRShiftC_32s)(&p5, 40, &d, 1), 0);
    EXPECT_EQ(d, 0);
    EXPECT_EQ(V(omnsRShiftC_32s)(&p5, -1, &d, 1), -32);
}

OMN_ALL_COLUMNS(IntArithTest);
