// Packed real spectra in every column: the expansions of Pack, Perm and Ccs
// against a conjugate-symmetric spectrum laid out by hand, in place against
// out of place, the products against complex products of the expanded
// spectra, and the argument checks of all twelve exports.
#include <gtest/gtest.h>

#include <math.h>
#include <stdint.h>
#include <string.h>

#include <complex>
#include <vector>

#include "tests/columns.h"

using namespace omn;

namespace {

using Cld = std::complex<long double>;

struct Rng {
    uint64_t s;
    explicit Rng(uint64_t seed) : s(seed * 2862933555777941757ULL + 7) {}
    double next()
    {
        s = s * 6364136223846793005ULL + 1442695040888963407ULL;
        return static_cast<double>(static_cast<int64_t>(s >> 11) - (int64_t(1) << 52)) / 4503599627370496.0;
    }
};

// A random spectrum of len points with X[len-k] = conj X[k] and real X[0]
// (and real X[len/2] for even len).
std::vector<Omn64fc> hermitian(int len, uint64_t seed)
{
    Rng rng(seed + size_t(len));
    std::vector<Omn64fc> x(static_cast<size_t>(len));
    x[0] = Omn64fc{ rng.next(), 0.0 };
    for (int k = 1; 2 * k < len; ++k) {
        x[k] = Omn64fc{ rng.next(), rng.next() };
        x[len - k] = Omn64fc{ x[k].re, -x[k].im };
    }
    if (len % 2 == 0)
        x[len / 2] = Omn64fc{ rng.next(), 0.0 };
    return x;
}

// The layouts written out from their definitions.
std::vector<double> toPack(const std::vector<Omn64fc>& x)
{
    const int n = int(x.size());
    std::vector<double> p;
    p.push_back(x[0].re);
    for (int k = 1; 2 * k < n; ++k) {
        p.push_back(x[k].re);
        p.push_back(x[k].im);
    }
    if (n % 2 == 0 && n > 1)
        p.push_back(x[n / 2].re);
    return p;
}

std::vector<double> toPerm(const std::vector<Omn64fc>& x)
{
    const int n = int(x.size());
    std::vector<double> p;
    p.push_back(x[0].re);
    if (n % 2 == 0)
        p.push_back(x[n / 2].re);
    for (int k = 1; 2 * k < n; ++k) {
        p.push_back(x[k].re);
        p.push_back(x[k].im);
    }
    return p;
}

std::vector<Omn64fc> toCcs(const std::vector<Omn64fc>& x)
{
    return std::vector<Omn64fc>(x.begin(), x.begin() + x.size() / 2 + 1);
}

bool sameBits(const Omn64fc* a, const Omn64fc* b, size_t n) { return memcmp(a, b, n * sizeof(Omn64fc)) == 0; }

const int kLengths[] = { 1, 2, 3, 4, 5, 8, 1001, 1024 };

class PackedTest : public omn::test::ColumnTest {};

TEST_P(PackedTest, ChecksPointersThenLength)
{
    double r[4] = {};
    Omn64fc z[4] = {};
    struct Case {
        const char* what;
        OmnStatus got;
        OmnStatus want;
    };
    const Case cases[] = {
        { "MulPack null src1, len 0", V(omnsMulPack_64f)(nullptr, r, r, 0), omnStatusNullPointer },
        { "MulPack null src2", V(omnsMulPack_64f)(r, nullptr, r, 4), omnStatusNullPointer },
        { "MulPack null dst", V(omnsMulPack_64f)(r, r, nullptr, 4), omnStatusNullPointer },
        { "MulPack len 0", V(omnsMulPack_64f)(r, r, r, 0), omnStatusBadSize },
        { "MulPerm null src1, len -1", V(omnsMulPerm_64f)(nullptr, r, r, -1), omnStatusNullPointer },
        { "MulPerm null dst", V(omnsMulPerm_64f)(r, r, nullptr, 4), omnStatusNullPointer },
        { "MulPerm len -1", V(omnsMulPerm_64f)(r, r, r, -1), omnStatusBadSize },
        { "MulPack_I null src", V(omnsMulPack_64f_I)(nullptr, r, 0), omnStatusNullPointer },
        { "MulPack_I null srcDst", V(omnsMulPack_64f_I)(r, nullptr, 4), omnStatusNullPointer },
        { "MulPack_I len 0", V(omnsMulPack_64f_I)(r, r, 0), omnStatusBadSize },
        { "MulPerm_I null src", V(omnsMulPerm_64f_I)(nullptr, r, 0), omnStatusNullPointer },
        { "MulPerm_I null srcDst", V(omnsMulPerm_64f_I)(r, nullptr, 4), omnStatusNullPointer },
        { "MulPerm_I len 0", V(omnsMulPerm_64f_I)(r, r, 0), omnStatusBadSize },
        { "MulPackConj null src", V(omnsMulPackConj_64f_I)(nullptr, r, 0), omnStatusNullPointer },
        { "MulPackConj null srcDst", V(omnsMulPackConj_64f_I)(r, nullptr, 4), omnStatusNullPointer },
        { "MulPackConj len 0", V(omnsMulPackConj_64f_I)(r, r, 0), omnStatusBadSize },
        { "ConjPack null src", V(omnsConjPack_64fc)(nullptr, z, 0), omnStatusNullPointer },
        { "ConjPack null dst", V(omnsConjPack_64fc)(r, nullptr, 4), omnStatusNullPointer },
        { "ConjPack len 0", V(omnsConjPack_64fc)(r, z, 0), omnStatusBadSize },
        { "ConjPack_I null", V(omnsConjPack_64fc_I)(nullptr, 0), omnStatusNullPointer },
        { "ConjPack_I len 0", V(omnsConjPack_64fc_I)(z, 0), omnStatusBadSize },
        { "ConjPerm null src", V(omnsConjPerm_64fc)(nullptr, z, 0), omnStatusNullPointer },
        { "ConjPerm null dst", V(omnsConjPerm_64fc)(r, nullptr, 4), omnStatusNullPointer },
        { "ConjPerm len -3", V(omnsConjPerm_64fc)(r, z, -3), omnStatusBadSize },
        { "ConjPerm_I null", V(omnsConjPerm_64fc_I)(nullptr, 0), omnStatusNullPointer },
        { "ConjPerm_I len 0", V(omnsConjPerm_64fc_I)(z, 0), omnStatusBadSize },
        { "ConjCcs null src", V(omnsConjCcs_64fc)(nullptr, z, 0), omnStatusNullPointer },
        { "ConjCcs null dst", V(omnsConjCcs_64fc)(z, nullptr, 4), omnStatusNullPointer },
        { "ConjCcs len 0", V(omnsConjCcs_64fc)(z, z + 2, 0), omnStatusBadSize },
        { "ConjCcs_I null", V(omnsConjCcs_64fc_I)(nullptr, 0), omnStatusNullPointer },
        { "ConjCcs_I len 0", V(omnsConjCcs_64fc_I)(z, 0), omnStatusBadSize },
        { "ConjFlip null src", V(omnsConjFlip_64fc)(nullptr, z, 0), omnStatusNullPointer },
        { "ConjFlip null dst", V(omnsConjFlip_64fc)(z, nullptr, 4), omnStatusNullPointer },
        { "ConjFlip len 0", V(omnsConjFlip_64fc)(z, z + 2, 0), omnStatusBadSize },
    };
    for (const Case& c : cases)
        EXPECT_EQ(c.got, c.want) << c.what;
    // A failed call writes nothing.
    for (double v : r)
        EXPECT_EQ(v, 0.0);
}

// Each expansion of the layout written out by hand gives back the whole
// spectrum exactly; the in-place forms, whose packed input sits at the start
// of the complex array with garbage behind it, give the same bits.
TEST_P(PackedTest, ExpansionsGiveTheFullSpectrum)
{
    const Omn64fc garbage{ nan(""), 1e300 };
    for (int len : kLengths) {
        SCOPED_TRACE(len);
        const size_t n = size_t(len);
        const std::vector<Omn64fc> x = hermitian(len, 1);
        const std::vector<double> pack = toPack(x), perm = toPerm(x);
        ASSERT_EQ(pack.size(), n);
        ASSERT_EQ(perm.size(), n);
        struct Form {
            const char* name;
            const std::vector<double>& packed;
            OmnStatus (*const* out)(const Omn64f*, Omn64fc*, int);
            OmnStatus (*const* in)(Omn64fc*, int);
        };
        const Form forms[] = { { "Pack", pack, test::omnsConjPack_64fc, test::omnsConjPack_64fc_I },
                               { "Perm", perm, test::omnsConjPerm_64fc, test::omnsConjPerm_64fc_I } };
        for (const Form& f : forms) {
            SCOPED_TRACE(f.name);
            std::vector<Omn64fc> out(n + 1, garbage);
            ASSERT_EQ(f.out[col()](f.packed.data(), out.data(), len), omnStatusOk);
            EXPECT_TRUE(sameBits(out.data(), x.data(), n));
            EXPECT_TRUE(sameBits(&out[n], &garbage, 1)) << "wrote past len";

            std::vector<Omn64fc> io(n + 1, garbage);
            memcpy(io.data(), f.packed.data(), n * sizeof(double));
            ASSERT_EQ(f.in[col()](io.data(), len), omnStatusOk);
            EXPECT_TRUE(sameBits(io.data(), out.data(), n + 1));
        }

        // Ccs keeps the imaginary parts it has room for.
        std::vector<Omn64fc> ccs = toCcs(x);
        ccs[0].im = 0.25;
        if (len % 2 == 0)
            ccs[n / 2].im = -0.5;
        std::vector<Omn64fc> want = x;
        want[0].im = 0.25;
        if (len % 2 == 0)
            want[n / 2].im = -0.5;
        std::vector<Omn64fc> out(n + 1, garbage);
        ASSERT_EQ(V(omnsConjCcs_64fc)(ccs.data(), out.data(), len), omnStatusOk);
        EXPECT_TRUE(sameBits(out.data(), want.data(), n));
        EXPECT_TRUE(sameBits(&out[n], &garbage, 1));
        std::vector<Omn64fc> io(n + 1, garbage);
        memcpy(io.data(), ccs.data(), ccs.size() * sizeof(Omn64fc));
        ASSERT_EQ(V(omnsConjCcs_64fc_I)(io.data(), len), omnStatusOk);
        EXPECT_TRUE(sameBits(io.data(), out.data(), n + 1));
    }
}

// Entries 0 to len/2 of the in-place Ccs expansion are not written at all,
// and the conjugate in the upper half comes from the stored lower half.
TEST_P(PackedTest, CcsInPlaceWritesOnlyTheUpperHalf)
{
    const Omn64fc mark{ nan(""), -0.0 };
    for (int len : { 1, 2, 5, 6 }) {
        std::vector<Omn64fc> a(size_t(len), mark);
        for (int k = 1; 2 * k < len; ++k)
            a[k] = Omn64fc{ double(k), double(10 * k) };
        std::vector<Omn64fc> before = a;
        ASSERT_EQ(V(omnsConjCcs_64fc_I)(a.data(), len), omnStatusOk);
        EXPECT_TRUE(sameBits(a.data(), before.data(), size_t(len / 2 + 1))) << len;
        for (int k = 1; 2 * k < len; ++k) {
            EXPECT_EQ(a[len - k].re, double(k));
            EXPECT_EQ(a[len - k].im, -10.0 * k);
        }
    }
}

TEST_P(PackedTest, SmallLengthsTouchOnlyTheirElements)
{
    // Perm and Pack coincide for len 1 and 2; len 1 writes dst[0] only and
    // len 2 dst[0] and dst[1], all with a zero imaginary part.
    const double p[2] = { 3.0, -4.0 };
    for (int len : { 1, 2 }) {
        for (auto fn : { test::omnsConjPack_64fc, test::omnsConjPerm_64fc }) {
            Omn64fc d[3] = { { 9, 9 }, { 9, 9 }, { 9, 9 } };
            ASSERT_EQ(fn[col()](p, d, len), omnStatusOk);
            EXPECT_EQ(d[0].re, 3.0);
            EXPECT_EQ(d[0].im, 0.0);
            EXPECT_EQ(d[1].re, len == 2 ? -4.0 : 9.0);
            EXPECT_EQ(d[1].im, len == 2 ? 0.0 : 9.0);
            EXPECT_EQ(d[2].re, 9.0);
        }
        for (auto fn : { test::omnsMulPack_64f, test::omnsMulPerm_64f }) {
            const double a[3] = { 2.0, 3.0, 5.0 }, b[3] = { 7.0, 11.0, 13.0 };
            double d[3] = { -1, -1, -1 };
            ASSERT_EQ(fn[col()](a, b, d, len), omnStatusOk);
            EXPECT_EQ(d[0], 14.0);
            EXPECT_EQ(d[1], len == 2 ? 33.0 : -1.0);
            EXPECT_EQ(d[2], -1.0);
        }
    }
    // Odd len in Perm has no Nyquist value: element 1 is R1 as in Pack.
    const double q[3] = { 1.0, 2.0, 3.0 };
    Omn64fc d[3];
    ASSERT_EQ(V(omnsConjPerm_64fc)(q, d, 3), omnStatusOk);
    EXPECT_EQ(d[1].re, 2.0);
    EXPECT_EQ(d[1].im, 3.0);
    EXPECT_EQ(d[2].im, -3.0);
}

TEST_P(PackedTest, ConjFlipReversesAndConjugates)
{
    for (int len : { 1, 2, 5, 64 }) {
        std::vector<Omn64fc> s(static_cast<size_t>(len)), d(static_cast<size_t>(len) + 1, Omn64fc{ 7, 7 });
        for (int i = 0; i < len; ++i)
            s[i] = Omn64fc{ i + 0.5, -(i + 0.25) };
        ASSERT_EQ(V(omnsConjFlip_64fc)(s.data(), d.data(), len), omnStatusOk);
        for (int i = 0; i < len; ++i) {
            EXPECT_EQ(d[len - 1 - i].re, s[i].re);
            EXPECT_EQ(d[len - 1 - i].im, -s[i].im);
        }
        EXPECT_EQ(d[len].re, 7.0);
    }
}

// Products in packed form, expanded, against the long-double complex
// products of the full spectra: this is what convolution relies on.  The
// in-place forms give the same bits as the out-of-place ones.
TEST_P(PackedTest, ProductsMatchComplexProductsOfTheSpectra)
{
    for (int len : kLengths) {
        SCOPED_TRACE(len);
        const size_t n = size_t(len);
        const std::vector<Omn64fc> x = hermitian(len, 2), y = hermitian(len, 3);
        struct Form {
            const char* name;
            std::vector<double> (*layout)(const std::vector<Omn64fc>&);
            OmnStatus (*const* mul)(const Omn64f*, const Omn64f*, Omn64f*, int);
            OmnStatus (*const* mulI)(const Omn64f*, Omn64f*, int);
            OmnStatus (*const* expand)(const Omn64f*, Omn64fc*, int);
        };
        const Form forms[] = {
            { "Pack", toPack, test::omnsMulPack_64f, test::omnsMulPack_64f_I, test::omnsConjPack_64fc },
            { "Perm", toPerm, test::omnsMulPerm_64f, test::omnsMulPerm_64f_I, test::omnsConjPerm_64fc },
        };
        for (const Form& f : forms) {
            SCOPED_TRACE(f.name);
            const std::vector<double> a = f.layout(x), b = f.layout(y);
            std::vector<double> d(n);
            ASSERT_EQ(f.mul[col()](a.data(), b.data(), d.data(), len), omnStatusOk);
            std::vector<double> io = b;
            ASSERT_EQ(f.mulI[col()](a.data(), io.data(), len), omnStatusOk);
            EXPECT_EQ(memcmp(io.data(), d.data(), n * sizeof(double)), 0);
            // Vector and scalar products round alike: every column gives
            // the portable column's bits.
            std::vector<double> portable(n);
            ASSERT_EQ(f.mul[0](a.data(), b.data(), portable.data(), len), omnStatusOk);
            EXPECT_EQ(memcmp(portable.data(), d.data(), n * sizeof(double)), 0);
            std::vector<Omn64fc> full(n);
            ASSERT_EQ(f.expand[col()](d.data(), full.data(), len), omnStatusOk);
            for (size_t k = 0; k < n; ++k) {
                const Cld want = Cld(x[k].re, x[k].im) * Cld(y[k].re, y[k].im);
                EXPECT_NEAR(full[k].re, double(want.real()), 4e-16) << k;
                EXPECT_NEAR(full[k].im, double(want.imag()), 4e-16) << k;
            }
        }

        // MulPackConj keeps src and conjugates srcDst.
        const std::vector<double> a = toPack(x), b = toPack(y);
        std::vector<double> io = b;
        ASSERT_EQ(V(omnsMulPackConj_64f_I)(a.data(), io.data(), len), omnStatusOk);
        std::vector<Omn64fc> full(n);
        ASSERT_EQ(V(omnsConjPack_64fc)(io.data(), full.data(), len), omnStatusOk);
        for (size_t k = 0; k < n; ++k) {
            const Cld want = Cld(x[k].re, x[k].im) * std::conj(Cld(y[k].re, y[k].im));
            EXPECT_NEAR(full[k].re, double(want.real()), 4e-16) << k;
            EXPECT_NEAR(full[k].im, double(want.imag()), 4e-16) << k;
        }

        // With itself: the power spectrum, every imaginary part exactly 0.
        io = a;
        ASSERT_EQ(V(omnsMulPackConj_64f_I)(a.data(), io.data(), len), omnStatusOk);
        EXPECT_EQ(io[0], x[0].re * x[0].re);
        for (int k = 1; 2 * k < len; ++k) {
            EXPECT_EQ(io[2 * k - 1], x[k].re * x[k].re + x[k].im * x[k].im) << k;
            EXPECT_EQ(io[2 * k], 0.0) << "imaginary part of pair " << k;
        }
    }
}

OMN_ALL_COLUMNS(PackedTest);

} // namespace
