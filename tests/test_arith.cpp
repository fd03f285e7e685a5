// Element-wise arithmetic in every column: the argument checks and their
// order, operand order, the constant short cuts, and every form against a
// naive reference at lengths 1 to 20 (and one long run) with each array at
// each alignment, so that the scalar loop, the head, every source-alignment
// instance of the blocks, the unaligned stores and the tail all run.
#include <gtest/gtest.h>

#include <limits.h>
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

namespace {

using Call = OmnStatus (*)(int c, double* const* a, int len);
using Ref = void (*)(const double* v, double* out);

inline const Omn64fc* cc(const double* p) { return reinterpret_cast<const Omn64fc*>(p); }
inline Omn64fc* cm(double* p) { return reinterpret_cast<Omn64fc*>(p); }

constexpr double K = 1.75;                  // real constant of the constant forms
constexpr Omn64fc KC = { 0.5, -1.25 };      // complex constant
constexpr double KD = 3.0;                  // DivC constant: 1/3 is inexact

// One form: its arrays in argument order (the last one is written), whether
// the last is read as well, doubles per element, the call and the reference
// for one element.  ref reads v[k*w + j], part j of array k.
struct Form {
    const char* name;
    int nArr;
    bool lastRead;
    int w;
    Call call;
    Ref ref;
};

#define OUT2(fn, body)  { #fn, 3, false, 1, [](int c, double* const* a, int n) { return test::fn[c](a[0], a[1], a[2], n); }, \
                          [](const double* v, double* o) { const double x = v[0], y = v[1]; o[0] = (body); } }
#define IN2(fn, body)   { #fn, 2, true, 1, [](int c, double* const* a, int n) { return test::fn[c](a[0], a[1], n); }, \
                          [](const double* v, double* o) { const double x = v[0], y = v[1]; o[0] = (body); } }
#define OUT1(fn, body)  { #fn, 2, false, 1, [](int c, double* const* a, int n) { return test::fn[c](a[0], a[1], n); }, \
                          [](const double* v, double* o) { const double x = v[0]; o[0] = (body); } }
#define IN1(fn, body)   { #fn, 1, true, 1, [](int c, double* const* a, int n) { return test::fn[c](a[0], n); }, \
                          [](const double* v, double* o) { const double x = v[0]; o[0] = (body); } }
#define OUTK(fn, k, body) { #fn, 2, false, 1, [](int c, double* const* a, int n) { return test::fn[c](a[0], k, a[1], n); }, \
                          [](const double* v, double* o) { const double x = v[0]; o[0] = (body); } }
#define INK(fn, k, body) { #fn, 1, true, 1, [](int c, double* const* a, int n) { return test::fn[c](k, a[0], n); }, \
                          [](const double* v, double* o) { const double x = v[0]; o[0] = (body); } }

// Complex references, in the evaluation order that the library states.
void cAdd(const double* v, double* o) { o[0] = v[0] + v[2]; o[1] = v[1] + v[3]; }
void cSub(const double* v, double* o) { o[0] = v[2] - v[0]; o[1] = v[3] - v[1]; }
void cMulOf(double xr, double xi, double yr, double yi, double* o)
{
    o[0] = xr * yr - xi * yi;
    o[1] = xr * yi + xi * yr;
}
void cMul(const double* v, double* o) { cMulOf(v[0], v[1], v[2], v[3], o); }
void cAddProduct(const double* v, double* o)
{
    o[0] = (v[0] * v[2] + v[4]) - v[1] * v[3];
    o[1] = (v[0] * v[3] + v[5]) + v[1] * v[2];
}
void cSqr(const double* v, double* o)
{
    o[0] = (v[0] - v[1]) * (v[0] + v[1]);
    o[1] = (v[0] * v[1]) * 2;
}
void cAddC(const double* v, double* o) { o[0] = v[0] + KC.re; o[1] = v[1] + KC.im; }
void cSubC(const double* v, double* o) { o[0] = v[0] - KC.re; o[1] = v[1] - KC.im; }
void cSubCRev(const double* v, double* o) { o[0] = KC.re - v[0]; o[1] = KC.im - v[1]; }
void cMulC(const double* v, double* o) { cMulOf(v[0], v[1], KC.re, KC.im, o); }
void cDivC(const double* v, double* o)
{
    const double m = KC.re * KC.re + KC.im * KC.im, r = 1 / m;
    cMulOf(v[0], v[1], KC.re * r, -KC.im * r, o);
}

#define COUT2(fn, ref) { #fn, 3, false, 2, [](int c, double* const* a, int n) { return test::fn[c](cc(a[0]), cc(a[1]), cm(a[2]), n); }, ref }
#define CIN2(fn, ref)  { #fn, 2, true, 2, [](int c, double* const* a, int n) { return test::fn[c](cc(a[0]), cm(a[1]), n); }, ref }
#define COUT1(fn, ref) { #fn, 2, false, 2, [](int c, double* const* a, int n) { return test::fn[c](cc(a[0]), cm(a[1]), n); }, ref }
#define CIN1(fn, ref)  { #fn, 1, true, 2, [](int c, double* const* a, int n) { return test::fn[c](cm(a[0]), n); }, ref }
#define COUTK(fn, ref) { #fn, 2, false, 2, [](int c, double* const* a, int n) { return test::fn[c](cc(a[0]), KC, cm(a[1]), n); }, ref }
#define CINK(fn, ref)  { #fn, 1, true, 2, [](int c, double* const* a, int n) { return test::fn[c](KC, cm(a[0]), n); }, ref }

const Form kForms[] = {
    OUT2(omnsAdd_64f, x + y), OUT2(omnsSub_64f, y - x), OUT2(omnsMul_64f, x * y),
    IN2(omnsAdd_64f_I, x + y), IN2(omnsSub_64f_I, y - x), IN2(omnsMul_64f_I, x * y),
    { "omnsAddProduct_64f", 3, true, 1, [](int c, double* const* a, int n) { return test::omnsAddProduct_64f[c](a[0], a[1], a[2], n); },
      [](const double* v, double* o) { o[0] = v[2] + v[0] * v[1]; } },
    OUT1(omnsSqr_64f, x * x), IN1(omnsSqr_64f_I, x * x),
    OUT1(omnsAbs_64f, fabs(x)), IN1(omnsAbs_64f_I, fabs(x)),
    OUTK(omnsAddC_64f, K, x + K), INK(omnsAddC_64f_I, K, x + K),
    OUTK(omnsSubC_64f, K, x - K), INK(omnsSubC_64f_I, K, x - K),
    OUTK(omnsSubCRev_64f, K, K - x), INK(omnsSubCRev_64f_I, K, K - x),
    OUTK(omnsMulC_64f, K, x * K), INK(omnsMulC_64f_I, K, x * K),
    OUTK(omnsDivC_64f, KD, x * (1 / KD)), INK(omnsDivC_64f_I, KD, x * (1 / KD)),
    COUT2(omnsAdd_64fc, cAdd), COUT2(omnsSub_64fc, cSub), COUT2(omnsMul_64fc, cMul),
    CIN2(omnsAdd_64fc_I, cAdd), CIN2(omnsSub_64fc_I, cSub), CIN2(omnsMul_64fc_I, cMul),
    { "omnsAddProduct_64fc", 3, true, 2, [](int c, double* const* a, int n) { return test::omnsAddProduct_64fc[c](cc(a[0]), cc(a[1]), cm(a[2]), n); },
      cAddProduct },
    COUT1(omnsSqr_64fc, cSqr), CIN1(omnsSqr_64fc_I, cSqr),
    COUTK(omnsAddC_64fc, cAddC), CINK(omnsAddC_64fc_I, cAddC),
    COUTK(omnsSubC_64fc, cSubC), CINK(omnsSubC_64fc_I, cSubC),
    COUTK(omnsSubCRev_64fc, cSubCRev), CINK(omnsSubCRev_64fc_I, cSubCRev),
    COUTK(omnsMulC_64fc, cMulC), CINK(omnsMulC_64fc_I, cMulC),
    { "omnsDivC_64fc", 2, false, 2, [](int c, double* const* a, int n) { return test::omnsDivC_64fc[c](cc(a[0]), KC, cm(a[1]), n); }, cDivC },
    { "omnsDivC_64fc_I", 1, true, 2, [](int c, double* const* a, int n) { return test::omnsDivC_64fc_I[c](KC, cm(a[0]), n); }, cDivC },
};

// Runs a form at one length with the given byte offset per array and checks
// every element against the reference, the guards and the sources.
void checkForm(int c, const Form& f, int len, const size_t* offs, uint64_t seed)
{
    const size_t nd = static_cast<size_t>(len) * f.w;
    std::vector<Buf> bufs;
    test::Rng rng(seed);
    for (int k = 0; k < f.nArr; ++k) {
        bufs.emplace_back(nd, offs[k]);
        for (size_t i = 0; i < nd; ++i)
            bufs[k].set(i, rng.uniform(k == 0 ? 8.0 : 100.0));
    }
    const std::vector<Buf> before = bufs;
    double* ptrs[3];
    for (int k = 0; k < f.nArr; ++k)
        ptrs[k] = bufs[k].p();
    ASSERT_EQ(f.call(c, ptrs, len), 0) << f.name;
    const int nRead = f.lastRead ? f.nArr : f.nArr - 1;
    Buf& out = bufs[f.nArr - 1];
    for (int e = 0; e < len; ++e) {
        double v[6], want[2];
        for (int k = 0; k < nRead; ++k)
            for (int j = 0; j < f.w; ++j)
                v[k * f.w + j] = before[k].get(e * f.w + j);
        f.ref(v, want);
        for (int j = 0; j < f.w; ++j)
            ASSERT_EQ(bits(out.get(e * f.w + j)), bits(want[j]))
                << f.name << " len " << len << " element " << e << " part " << j << " offsets " << offs[0] << ","
                << offs[1] << "," << offs[2] << ": " << out.get(e * f.w + j) << " vs " << want[j];
    }
    for (int k = 0; k < f.nArr; ++k) {
        ASSERT_TRUE(bufs[k].guardsIntact()) << f.name << " array " << k << " len " << len;
        if (k < f.nArr - 1) {
            for (size_t i = 0; i < nd; ++i)
                ASSERT_EQ(bits(bufs[k].get(i)), bits(before[k].get(i))) << f.name << " source " << k << " written";
        }
    }
}

// Every export of the family with its pointer arguments, for the check order.
struct Checked {
    const char* name;
    int nPtr;
    bool lengthFirst;   // the complex Add and Sub forms
    Call call;
};

#define CK(fn, n, body) { #fn, n, false, [](int c, double* const* a, int len) { return test::fn[c] body; } }
#define CKL(fn, n, body) { #fn, n, true, [](int c, double* const* a, int len) { return test::fn[c] body; } }

const Checked kChecked[] = {
    CK(omnsAdd_64f, 3, (a[0], a[1], a[2], len)), CK(omnsSub_64f, 3, (a[0], a[1], a[2], len)),
    CK(omnsMul_64f, 3, (a[0], a[1], a[2], len)), CK(omnsDiv_64f, 3, (a[0], a[1], a[2], len)),
    CK(omnsAdd_64f_I, 2, (a[0], a[1], len)), CK(omnsSub_64f_I, 2, (a[0], a[1], len)),
    CK(omnsMul_64f_I, 2, (a[0], a[1], len)), CK(omnsDiv_64f_I, 2, (a[0], a[1], len)),
    CKL(omnsAdd_64fc, 3, (cc(a[0]), cc(a[1]), cm(a[2]), len)), CKL(omnsSub_64fc, 3, (cc(a[0]), cc(a[1]), cm(a[2]), len)),
    CKL(omnsAdd_64fc_I, 2, (cc(a[0]), cm(a[1]), len)), CKL(omnsSub_64fc_I, 2, (cc(a[0]), cm(a[1]), len)),
    CK(omnsMul_64fc, 3, (cc(a[0]), cc(a[1]), cm(a[2]), len)), CK(omnsDiv_64fc, 3, (cc(a[0]), cc(a[1]), cm(a[2]), len)),
    CK(omnsMul_64fc_I, 2, (cc(a[0]), cm(a[1]), len)), CK(omnsDiv_64fc_I, 2, (cc(a[0]), cm(a[1]), len)),
    CK(omnsAddProduct_64f, 3, (a[0], a[1], a[2], len)), CK(omnsAddProduct_64fc, 3, (cc(a[0]), cc(a[1]), cm(a[2]), len)),
    CK(omnsAddC_64f, 2, (a[0], 2.5, a[1], len)), CK(omnsSubC_64f, 2, (a[0], 2.5, a[1], len)),
    CK(omnsSubCRev_64f, 2, (a[0], 2.5, a[1], len)), CK(omnsMulC_64f, 2, (a[0], 2.5, a[1], len)),
    CK(omnsDivC_64f, 2, (a[0], 2.5, a[1], len)),
    CK(omnsAddC_64f_I, 1, (2.5, a[0], len)), CK(omnsSubC_64f_I, 1, (2.5, a[0], len)),
    CK(omnsSubCRev_64f_I, 1, (2.5, a[0], len)), CK(omnsMulC_64f_I, 1, (2.5, a[0], len)),
    CK(omnsDivC_64f_I, 1, (2.5, a[0], len)),
    CK(omnsAddC_64fc, 2, (cc(a[0]), KC, cm(a[1]), len)), CK(omnsSubC_64fc, 2, (cc(a[0]), KC, cm(a[1]), len)),
    CK(omnsSubCRev_64fc, 2, (cc(a[0]), KC, cm(a[1]), len)), CK(omnsMulC_64fc, 2, (cc(a[0]), KC, cm(a[1]), len)),
    CK(omnsDivC_64fc, 2, (cc(a[0]), KC, cm(a[1]), len)),
    CK(omnsAddC_64fc_I, 1, (KC, cm(a[0]), len)), CK(omnsSubC_64fc_I, 1, (KC, cm(a[0]), len)),
    CK(omnsSubCRev_64fc_I, 1, (KC, cm(a[0]), len)), CK(omnsMulC_64fc_I, 1, (KC, cm(a[0]), len)),
    CK(omnsDivC_64fc_I, 1, (KC, cm(a[0]), len)),
    CK(omnsSqr_64f, 2, (a[0], a[1], len)), CK(omnsSqr_64fc, 2, (cc(a[0]), cm(a[1]), len)),
    CK(omnsSqr_64f_I, 1, (a[0], len)), CK(omnsSqr_64fc_I, 1, (cm(a[0]), len)),
    CK(omnsSqrt_64f, 2, (a[0], a[1], len)), CK(omnsSqrt_64fc, 2, (cc(a[0]), cm(a[1]), len)),
    CK(omnsSqrt_64f_I, 1, (a[0], len)), CK(omnsSqrt_64fc_I, 1, (cm(a[0]), len)),
    CK(omnsAbs_64f, 2, (a[0], a[1], len)), CK(omnsAbs_64f_I, 1, (a[0], len)),
};

} // namespace

class ArithTest : public test::ColumnTest {};

TEST_P(ArithTest, ChecksPointersThenLengthExceptComplexAddAndSub)
{
    EXPECT_EQ(sizeof kChecked / sizeof kChecked[0], 48u);   // the whole family
    double mem[3][8] = {};
    for (const Checked& e : kChecked) {
        double* ok[3] = { mem[0], mem[1], mem[2] };
        for (int len : { 0, -1, INT_MIN })
            EXPECT_EQ(e.call(col(), ok, len), -6) << e.name << " len " << len;
        for (int k = 0; k < e.nPtr; ++k) {
            double* p[3] = { mem[0], mem[1], mem[2] };
            p[k] = nullptr;
            EXPECT_EQ(e.call(col(), p, 0), e.lengthFirst ? -6 : -8) << e.name << " null " << k;
            EXPECT_EQ(e.call(col(), p, -7), e.lengthFirst ? -6 : -8) << e.name << " null " << k;
            EXPECT_EQ(e.call(col(), p, 1), -8) << e.name << " null " << k;
        }
        double* none[3] = { nullptr, nullptr, nullptr };
        EXPECT_EQ(e.call(col(), none, 0), e.lengthFirst ? -6 : -8) << e.name;
        const OmnStatus one = e.call(col(), ok, 1);
        EXPECT_GE(one, 0) << e.name;
        if (e.lengthFirst) {
            // The doubled length wraps: the real form sees a negative length.
            for (int len : { 1 << 30, INT_MAX, (1 << 30) + 5 })
                EXPECT_EQ(e.call(col(), ok, len), -6) << e.name << " len " << len;
            EXPECT_EQ(e.call(col(), none, 1 << 30), -8) << e.name;
        }
    }
}

TEST_P(ArithTest, DivCRefusesAZeroOrNaNDivisorAfterTheOtherChecks)
{
    const double nan = NAN;
    const Omn64fc czero[] = { { 0, 0 }, { -0.0, 0 }, { nan, 0 }, { 0, nan }, { 1e-200, 1e-200 } };
    for (double v : { 0.0, -0.0, nan }) {
        double src[3] = { 1, 2, 3 }, dst[3] = { 7, 7, 7 };
        EXPECT_EQ(V(omnsDivC_64f)(nullptr, v, dst, 3), -8);
        EXPECT_EQ(V(omnsDivC_64f)(src, v, nullptr, 0), -8);
        EXPECT_EQ(V(omnsDivC_64f)(src, v, dst, 0), -6);
        EXPECT_EQ(V(omnsDivC_64f)(src, v, dst, 3), -10);
        EXPECT_EQ(V(omnsDivC_64f_I)(v, nullptr, 3), -8);
        EXPECT_EQ(V(omnsDivC_64f_I)(v, dst, -1), -6);
        EXPECT_EQ(V(omnsDivC_64f_I)(v, dst, 3), -10);
        EXPECT_EQ(dst[0], 7);
        EXPECT_EQ(dst[2], 7);
    }
    for (const Omn64fc& v : czero) {   // 1e-200 squared underflows to a zero magnitude
        Omn64fc src[2] = { { 1, 2 }, { 3, 4 } }, dst[2] = { { 7, 7 }, { 7, 7 } };
        EXPECT_EQ(V(omnsDivC_64fc)(nullptr, v, dst, 2), -8);
        EXPECT_EQ(V(omnsDivC_64fc)(src, v, dst, 0), -6);
        EXPECT_EQ(V(omnsDivC_64fc)(src, v, dst, 2), -10);
        EXPECT_EQ(V(omnsDivC_64fc_I)(v, dst, 0), -6);
        EXPECT_EQ(V(omnsDivC_64fc_I)(v, dst, 2), -10);
        EXPECT_EQ(dst[1].im, 7);
    }
}

TEST_P(ArithTest, SecondSourceIsMinuendAndDividend)
{
    double a[1] = { 1 }, b[1] = { 5 }, d[1] = { 0 };
    ASSERT_EQ(V(omnsSub_64f)(a, b, d, 1), 0);
    EXPECT_EQ(d[0], 4);
    ASSERT_EQ(V(omnsSub_64f_I)(a, b, 1), 0);
    EXPECT_EQ(b[0], 4);
    double two[1] = { 2 }, ten[1] = { 10 };
    ASSERT_EQ(V(omnsDiv_64f)(two, ten, d, 1), 0);
    EXPECT_EQ(d[0], 5);
    ASSERT_EQ(V(omnsDiv_64f_I)(two, ten, 1), 0);
    EXPECT_EQ(ten[0], 5);
    ASSERT_EQ(V(omnsSubCRev_64f)(a, 5, d, 1), 0);
    EXPECT_EQ(d[0], 4);
    ASSERT_EQ(V(omnsSubC_64f)(a, 5, d, 1), 0);
    EXPECT_EQ(d[0], -4);

    Omn64fc x[1] = { { 1, 2 } }, y[1] = { { 5, 10 } }, z[1] = {};
    ASSERT_EQ(V(omnsSub_64fc)(x, y, z, 1), 0);
    EXPECT_EQ(z[0].re, 4);
    EXPECT_EQ(z[0].im, 8);
    Omn64fc dv[1] = { { 0, 2 } }, nv[1] = { { 4, 6 } };   // (4 + 6i) / 2i = 3 - 2i
    ASSERT_EQ(V(omnsDiv_64fc)(dv, nv, z, 1), 0);
    EXPECT_EQ(z[0].re, 3);
    EXPECT_EQ(z[0].im, -2);
    ASSERT_EQ(V(omnsDiv_64fc_I)(dv, nv, 1), 0);
    EXPECT_EQ(nv[0].re, 3);
    EXPECT_EQ(nv[0].im, -2);
    ASSERT_EQ(V(omnsSubCRev_64fc)(x, Omn64fc{ 5, 5 }, z, 1), 0);
    EXPECT_EQ(z[0].re, 4);
    EXPECT_EQ(z[0].im, 3);
    Omn64fc s[1] = { { 3, 4 } };
    ASSERT_EQ(V(omnsSqr_64fc)(s, z, 1), 0);
    EXPECT_EQ(z[0].re, -7);
    EXPECT_EQ(z[0].im, 24);
}

TEST_P(ArithTest, EveryFormMatchesItsReferenceAtEveryLengthAndAlignment)
{
    // Lengths 1 to 20 with every combination of offsets; then runs long
    // enough to prefetch (9001) and to stream their results (140001), with
    // all arrays 16-aligned, and with the destination 8 past (a head first).
    const int kLong[] = { 1001, 9001, 140001 };
    for (const Form& f : kForms) {
        for (int len = 1; len <= 23; ++len) {
            const int n = len <= 20 ? len : kLong[len - 21];
            const size_t combos = f.nArr == 3 ? 27 : f.nArr == 2 ? 9 : 3;
            for (size_t k = 0; k < combos; ++k) {
                const size_t dstAt8 = f.nArr == 3 ? 9 : f.nArr == 2 ? 3 : 1;
                if (n > 1001 && k != 0 && k != dstAt8)
                    continue;
                const size_t offs[3] = { test::kOffsets[k % 3], test::kOffsets[(k / 3) % 3], test::kOffsets[k / 9] };
                checkForm(col(), f, n, offs, static_cast<uint64_t>(n * 31 + k));
                if (HasFatalFailure())
                    return;
            }
        }
    }
}

TEST_P(ArithTest, ConstantShortCutsOnZeroOneAndNaN)
{
    const double nan = NAN, snanLike = fromBits(0x7FF4000000000001ull);
    // Values that an arithmetic pass would change: -0 + 0 is +0, and the
    // NaN payloads would not survive a multiplication unchanged.
    const double src[5] = { -0.0, snanLike, 3.0, -INFINITY, fromBits(0xFFF8000000000123ull) };
    auto same = [](const double* a, const double* b, int n) { return memcmp(a, b, n * sizeof(double)) == 0; };
    struct Case { const char* what; double val; int kind; };   // kind 0 copy, 1 zeros
    const Case cases[] = { { "AddC 0", 0.0, 0 }, { "AddC -0", -0.0, 0 }, { "AddC NaN", nan, 0 } };
    for (const Case& cs : cases) {
        double d[5], io[5];
        memcpy(io, src, sizeof src);
        ASSERT_EQ(V(omnsAddC_64f)(src, cs.val, d, 5), 0);
        EXPECT_TRUE(same(d, src, 5)) << cs.what;
        ASSERT_EQ(V(omnsSubC_64f)(src, cs.val, d, 5), 0);
        EXPECT_TRUE(same(d, src, 5)) << cs.what;
        ASSERT_EQ(V(omnsAddC_64f_I)(cs.val, io, 5), 0);
        ASSERT_EQ(V(omnsSubC_64f_I)(cs.val, io, 5), 0);
        EXPECT_TRUE(same(io, src, 5)) << cs.what;
    }
    for (double one : { 1.0, nan }) {   // MulC's first test holds for 1 and for NaN
        double d[5], io[5];
        memcpy(io, src, sizeof src);
        ASSERT_EQ(V(omnsMulC_64f)(src, one, d, 5), 0);
        EXPECT_TRUE(same(d, src, 5)) << one;
        ASSERT_EQ(V(omnsMulC_64f_I)(one, io, 5), 0);
        EXPECT_TRUE(same(io, src, 5)) << one;
    }
    for (double zero : { 0.0, -0.0 }) {   // zeros without reading: NaN and -inf give +0
        double d[5] = { 9, 9, 9, 9, 9 }, io[5];
        memcpy(io, src, sizeof src);
        ASSERT_EQ(V(omnsMulC_64f)(src, zero, d, 5), 0);
        ASSERT_EQ(V(omnsMulC_64f_I)(zero, io, 5), 0);
        for (int i = 0; i < 5; ++i) {
            EXPECT_EQ(bits(d[i]), 0u) << i;
            EXPECT_EQ(bits(io[i]), 0u) << i;
        }
    }
    {   // DivC: 1 copies, an infinite divisor has reciprocal 0 and fills zeros
        double d[5];
        ASSERT_EQ(V(omnsDivC_64f)(src, 1.0, d, 5), 0);
        EXPECT_TRUE(same(d, src, 5));
        ASSERT_EQ(V(omnsDivC_64f)(src, INFINITY, d, 5), 0);
        for (int i = 0; i < 5; ++i)
            EXPECT_EQ(bits(d[i]), 0u) << i;
    }
    {   // No short cut: SubCRev with 0 negates, the complex forms run the loop
        double d[5];
        ASSERT_EQ(V(omnsSubCRev_64f)(src, 0.0, d, 5), 0);
        EXPECT_EQ(bits(d[0]), 0u);   // 0 - (-0) is +0
        EXPECT_EQ(d[2], -3.0);
        const Omn64fc cs[2] = { { -0.0, -0.0 }, { INFINITY, 2 } };
        Omn64fc cd[2];
        ASSERT_EQ(V(omnsAddC_64fc)(cs, Omn64fc{ 0, 0 }, cd, 2), 0);
        EXPECT_EQ(bits(cd[0].re), 0u);
        EXPECT_EQ(bits(cd[0].im), 0u);
        ASSERT_EQ(V(omnsSubC_64fc)(cs, Omn64fc{ 0, 0 }, cd, 2), 0);
        EXPECT_EQ(bits(cd[0].re), bits(-0.0));   // -0 - 0 keeps its sign
        ASSERT_EQ(V(omnsMulC_64fc)(cs, Omn64fc{ 1, 0 }, cd, 2), 0);
        EXPECT_TRUE(isnan(cd[1].im));            // inf * 0 in the imaginary part
        ASSERT_EQ(V(omnsMulC_64fc)(cs, Omn64fc{ 0, 0 }, cd, 2), 0);
        EXPECT_TRUE(isnan(cd[1].re));
        Omn64fc io[2] = { cs[0], cs[1] };
        ASSERT_EQ(V(omnsAddC_64fc_I)(Omn64fc{ 0, 0 }, io, 2), 0);
        EXPECT_EQ(bits(io[0].re), 0u);
    }
}

TEST_P(ArithTest, DivCMultipliesByTheReciprocal)
{
    // x * (1/3) and x / 3 differ in the last place for some x: DivC gives the
    // former everywhere.
    test::Rng rng(3);
    std::vector<double> x(257), d(257);
    int differs = 0;
    for (double& v : x)
        v = rng.uniform(1000);
    ASSERT_EQ(V(omnsDivC_64f)(x.data(), 3.0, d.data(), 257), 0);
    for (size_t i = 0; i < x.size(); ++i) {
        EXPECT_EQ(bits(d[i]), bits(x[i] * (1 / 3.0))) << i;
        differs += d[i] != x[i] / 3.0;
    }
    EXPECT_GT(differs, 0);
}

TEST_P(ArithTest, ComplexResultsAgreeWithLongDouble)
{
    using LC = std::complex<long double>;
    test::Rng rng(11);
    const int n = 67;
    std::vector<Omn64fc> a(n), b(n), acc(n), out(n), ap(n);
    for (int i = 0; i < n; ++i) {
        a[i] = { rng.uniform(10), rng.uniform(10) };
        b[i] = { rng.uniform(10), rng.uniform(10) };
        acc[i] = { rng.uniform(10), rng.uniform(10) };
    }
    auto lc = [](const Omn64fc& z) { return LC(z.re, z.im); };
    auto close = [](const Omn64fc& got, LC want, long double scale) {
        const long double tol = scale * 8 * 1.1102230246251565e-16L;
        return fabsl(got.re - want.real()) <= tol && fabsl(got.im - want.imag()) <= tol;
    };
    ASSERT_EQ(V(omnsMul_64fc)(a.data(), b.data(), out.data(), n), 0);
    for (int i = 0; i < n; ++i)
        EXPECT_TRUE(close(out[i], lc(a[i]) * lc(b[i]), abs(lc(a[i])) * abs(lc(b[i])))) << "Mul " << i;
    ap = acc;
    ASSERT_EQ(V(omnsAddProduct_64fc)(a.data(), b.data(), ap.data(), n), 0);
    for (int i = 0; i < n; ++i)
        EXPECT_TRUE(close(ap[i], lc(acc[i]) + lc(a[i]) * lc(b[i]), abs(lc(a[i])) * abs(lc(b[i])) + abs(lc(acc[i]))))
            << "AddProduct " << i;
    ASSERT_EQ(V(omnsSqr_64fc)(a.data(), out.data(), n), 0);
    for (int i = 0; i < n; ++i)
        EXPECT_TRUE(close(out[i], lc(a[i]) * lc(a[i]), norm(lc(a[i])))) << "Sqr " << i;
    ASSERT_EQ(V(omnsDivC_64fc)(a.data(), KC, out.data(), n), 0);
    for (int i = 0; i < n; ++i)
        EXPECT_TRUE(close(out[i], lc(a[i]) / lc(KC), abs(lc(a[i])) / abs(lc(KC)))) << "DivC " << i;
    ASSERT_EQ(V(omnsDiv_64fc)(b.data(), a.data(), out.data(), n), 0);
    for (int i = 0; i < n; ++i)
        EXPECT_TRUE(close(out[i], lc(a[i]) / lc(b[i]), abs(lc(a[i])) / abs(lc(b[i])))) << "Div " << i;
}

TEST_P(ArithTest, AbsClearsTheSignBitOnly)
{
    const double in[6] = { -0.0, 0.0, -INFINITY, fromBits(0xFFF8000000000042ull), -3.5, 2.25 };
    const uint64_t want[6] = { 0, 0, 0x7FF0000000000000ull, 0x7FF8000000000042ull, bits(3.5), bits(2.25) };
    double out[6], io[6];
    memcpy(io, in, sizeof in);
    ASSERT_EQ(V(omnsAbs_64f)(in, out, 6), 0);
    ASSERT_EQ(V(omnsAbs_64f_I)(io, 6), 0);
    for (int i = 0; i < 6; ++i) {
        EXPECT_EQ(bits(out[i]), want[i]) << i;
        EXPECT_EQ(bits(io[i]), want[i]) << i;
    }
}

OMN_ALL_COLUMNS(ArithTest);
