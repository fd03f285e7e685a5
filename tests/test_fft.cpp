// The complex FFT engine and both kinds of spec, in every column: checks,
// flags, work memory, tables at their edges, accuracy against a long-double
// DFT and against exactly known spectra, the shape changes of each column,
// creation failures by fault injection, and specs shared by threads.
#include <gtest/gtest.h>

#include <math.h>
#include <stdint.h>
#include <stdio.h>
#include <string.h>

#include <complex>
#include <map>
#include <thread>
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

// Deterministic inputs in [-1, 1).
struct Rng {
    uint64_t s;
    explicit Rng(uint64_t seed) : s(seed * 2862933555777941757ULL + 3037000493ULL) {}
    double next()
    {
        s = s * 6364136223846793005ULL + 1442695040888963407ULL;
        return static_cast<double>(static_cast<int64_t>(s >> 11) - (int64_t(1) << 52)) / 4503599627370496.0;
    }
};

std::vector<Omn64fc> randomSignal(int order)
{
    Rng rng(static_cast<uint64_t>(order) + 11);
    std::vector<Omn64fc> x(size_t(1) << order);
    for (Omn64fc& v : x) {
        v.re = rng.next();
        v.im = rng.next();
    }
    return x;
}

// The DFT in long double: sign -1 forward, +1 inverse, unscaled.
std::vector<Cld> longDoubleDft(const std::vector<Omn64fc>& x, bool inv)
{
    const size_t n = x.size();
    std::vector<Cld> w(n), y(n);
    for (size_t j = 0; j < n; ++j) {
        const long double a = kTwoPi * static_cast<long double>(j) / static_cast<long double>(n);
        w[j] = Cld(cosl(a), inv ? sinl(a) : -sinl(a));
    }
    for (size_t k = 0; k < n; ++k) {
        Cld s = 0;
        for (size_t m = 0; m < n; ++m)
            s += Cld(x[m].re, x[m].im) * w[(m * k) % n];
        y[k] = s;
    }
    return y;
}

// rms of the error over rms of the reference.
double rmsRelative(const Omn64fc* y, const std::vector<Cld>& ref, long double scale = 1)
{
    long double e = 0, r = 0;
    for (size_t k = 0; k < ref.size(); ++k) {
        const Cld want = ref[k] * scale;
        const Cld d = Cld(y[k].re, y[k].im) - want;
        e += std::norm(d);
        r += std::norm(want);
    }
    return static_cast<double>(sqrtl(e / r));
}

double errorBound(int order) { return 5e-16 * (order < 1 ? 1 : order); }

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

// A spec of one column, freed at the end of the scope.
struct CplxSpec {
    int col;
    OmnCplxFftSpec* p = nullptr;
    CplxSpec(int c, int order, int flag) : col(c)
    {
        EXPECT_EQ(tf::omnsCplxFftCreate_64fc[c](&p, order, flag, 0), 0) << "order " << order << " flag " << flag;
    }
    ~CplxSpec()
    {
        if (p != nullptr) {
            EXPECT_EQ(tf::omnsCplxFftFree_64fc[col](p), 0);
        }
    }
    int bufSize() const
    {
        int s = -1;
        EXPECT_EQ(tf::omnsCplxFftGetBufSize_64fc[col](p, &s), 0);
        return s;
    }
};

enum Placement { kOutOfPlace, kInPlace, kOffsetDst };
const char* const kPlacementNames[] = { "out of place", "in place", "dst 8 bytes off 16" };

// Runs one transform with the given placement and returns the result.  The
// caller's buffer (when given) is exactly bufSize bytes and starts 5 bytes
// off alignment, so the engine must move it up and stay inside.
std::vector<Omn64fc> run(int c, const CplxSpec& spec, const std::vector<Omn64fc>& x, bool inv, Placement pl,
                         bool callerBuffer)
{
    const size_t n = x.size();
    std::vector<double> store(2 * n + 4);
    uintptr_t base = (reinterpret_cast<uintptr_t>(store.data()) + 15) & ~uintptr_t(15);
    if (pl == kOffsetDst)
        base += 8;
    Omn64fc* dst = reinterpret_cast<Omn64fc*>(base);
    const Omn64fc* src = x.data();
    if (pl != kOutOfPlace) {
        memcpy(static_cast<void*>(dst), x.data(), n * sizeof(Omn64fc));
        if (pl == kInPlace)
            src = dst;
    }
    std::vector<Omn8u> buf;
    Omn8u* pBuf = nullptr;
    if (callerBuffer) {
        buf.resize(static_cast<size_t>(spec.bufSize()) + 5);
        pBuf = buf.data() + 5;
    }
    const auto fn = inv ? tf::omnsCplxFftInv_64fc[c] : tf::omnsCplxFftFwd_64fc[c];
    EXPECT_EQ(fn(src, dst, spec.p, pBuf), 0);
    return std::vector<Omn64fc>(dst, dst + n);
}

// A signal whose spectrum is known exactly at any length: two tones and an
// impulse.  Forward: N a at f1, N b at f2, and c W^(n0 k); the inverse uses
// tones of the opposite sign, so the peaks stand at the same bins.
struct Known {
    std::vector<Omn64fc> x;
    std::vector<Cld> spectrum;
};

// e^(2 pi i j / N) in long double for any j, from one eighth of the circle
// computed once per length (the octant symmetries are exact).
class UnitRoots {
public:
    explicit UnitRoots(size_t n) : n_(n), oct_(n / 8 + 1)
    {
        for (size_t j = 0; j < oct_.size(); ++j) {
            const long double a = kTwoPi * static_cast<long double>(j) / static_cast<long double>(n);
            oct_[j] = Cld(cosl(a), sinl(a));
        }
    }
    Cld operator()(size_t j) const
    {
        j %= n_;
        const size_t q = n_ / 8;
        if (n_ < 8) {
            const long double a = kTwoPi * static_cast<long double>(j) / static_cast<long double>(n_);
            return Cld(cosl(a), sinl(a));
        }
        if (j >= 4 * q)
            return -(*this)(j - 4 * q);
        if (j > 2 * q) {
            const Cld v = (*this)(j - 2 * q);   // times i
            return Cld(-v.imag(), v.real());
        }
        if (j > q) {
            const Cld v = oct_[2 * q - j];      // mirrored about pi/4
            return Cld(v.imag(), v.real());
        }
        return oct_[j];
    }

private:
    size_t n_;
    std::vector<Cld> oct_;
};

Known knownSignal(int order, bool inv)
{
    const size_t n = size_t(1) << order;
    const size_t f1 = 3 % n, f2 = (n / 2 + n / 8 + 5) % n, n0 = (n / 4 + 7) % n;
    const Cld a(0.75L, -0.25L), b(-0.5L, 0.125L), c(0.3L, 0.6L);
    const UnitRoots roots(n);
    auto expi = [&](size_t num, bool negative) { return negative ? std::conj(roots(num)) : roots(num); };
    Known k;
    k.x.resize(n);
    k.spectrum.resize(n);
    for (size_t m = 0; m < n; ++m) {
        Cld v = a * expi(f1 * m, inv) + b * expi(f2 * m, inv);
        if (m == n0)
            v += c;
        k.x[m] = Omn64fc{ static_cast<double>(v.real()), static_cast<double>(v.imag()) };
        // The spectrum of the rounded input would differ by rounding only.
        k.spectrum[m] = c * expi(n0 * m, !inv);
    }
    k.spectrum[f1] += a * static_cast<long double>(n);
    k.spectrum[f2] += b * static_cast<long double>(n);
    return k;
}

bool sameBits(const std::vector<Omn64fc>& a, const std::vector<Omn64fc>& b)
{
    return a.size() == b.size() && memcmp(a.data(), b.data(), a.size() * sizeof(Omn64fc)) == 0;
}

} // namespace

class FftTest : public test::ColumnTest {};

TEST_P(FftTest, ChecksComeInTheirOrder)
{
    const int c = col();
    OmnCplxFftSpec* cs = nullptr;
    OmnRealFftSpec* rs = nullptr;
    ASSERT_EQ(tf::omnsCplxFftCreate_64fc[c](&cs, 5, 8, 0), 0);
    ASSERT_EQ(tf::omnsRealFftCreate_64f[c](&rs, 5, 8, 0), 0);
    // A real spec seen through the complex operations, and the other way.
    OmnCplxFftSpec* rsAsCplx = reinterpret_cast<OmnCplxFftSpec*>(rs);
    OmnRealFftSpec* csAsReal = reinterpret_cast<OmnRealFftSpec*>(cs);
    Omn64fc a[32] = {}, b[32] = {};
    int size = 0;
    OmnCplxFftSpec* untouched = reinterpret_cast<OmnCplxFftSpec*>(&size);
    OmnCplxFftSpec* out = untouched;
    struct Row { const char* what; OmnStatus got; OmnStatus want; };
    const Row rows[] = {
        { "create null", tf::omnsCplxFftCreate_64fc[c](nullptr, 40, 0, 0), -8 },
        { "create order -1", tf::omnsCplxFftCreate_64fc[c](&out, -1, 0, 0), -15 },
        { "create order 31 flag 0", tf::omnsCplxFftCreate_64fc[c](&out, 31, 0, 0), -15 },
        { "create flag 0", tf::omnsCplxFftCreate_64fc[c](&out, 4, 0, 0), -16 },
        { "create flag 3", tf::omnsCplxFftCreate_64fc[c](&out, 30, 3, 0), -16 },
        { "real create null", tf::omnsRealFftCreate_64f[c](nullptr, 3, 1, 0), -8 },
        { "real create order 31", tf::omnsRealFftCreate_64f[c](reinterpret_cast<OmnRealFftSpec**>(&out), 31, 8, 0), -15 },
        { "real create flag 16", tf::omnsRealFftCreate_64f[c](reinterpret_cast<OmnRealFftSpec**>(&out), 0, 16, 0), -16 },
        { "bufsize null spec", tf::omnsCplxFftGetBufSize_64fc[c](nullptr, nullptr), -8 },
        { "bufsize other kind before null size", tf::omnsCplxFftGetBufSize_64fc[c](rsAsCplx, nullptr), -17 },
        { "bufsize null size", tf::omnsCplxFftGetBufSize_64fc[c](cs, nullptr), -8 },
        { "real bufsize other kind", tf::omnsRealFftGetBufSize_64f[c](csAsReal, &size), -17 },
        { "real bufsize null size", tf::omnsRealFftGetBufSize_64f[c](rs, nullptr), -8 },
        { "fwd null spec", tf::omnsCplxFftFwd_64fc[c](nullptr, nullptr, nullptr, nullptr), -8 },
        { "fwd other kind before null data", tf::omnsCplxFftFwd_64fc[c](nullptr, nullptr, rsAsCplx, nullptr), -17 },
        { "fwd null src", tf::omnsCplxFftFwd_64fc[c](nullptr, b, cs, nullptr), -8 },
        { "fwd null dst", tf::omnsCplxFftFwd_64fc[c](a, nullptr, cs, nullptr), -8 },
        { "inv null spec", tf::omnsCplxFftInv_64fc[c](a, b, nullptr, nullptr), -8 },
        { "inv other kind", tf::omnsCplxFftInv_64fc[c](a, b, rsAsCplx, nullptr), -17 },
        { "inv null src", tf::omnsCplxFftInv_64fc[c](nullptr, b, cs, nullptr), -8 },
        { "inv null dst", tf::omnsCplxFftInv_64fc[c](a, nullptr, cs, nullptr), -8 },
        { "free null", tf::omnsCplxFftFree_64fc[c](nullptr), -8 },
        { "real free null", tf::omnsRealFftFree_64f[c](nullptr), -8 },
        { "free other kind", tf::omnsCplxFftFree_64fc[c](rsAsCplx), -17 },
        { "real free other kind", tf::omnsRealFftFree_64f[c](csAsReal), -17 },
        { "free no kind", tf::omnsCplxFftFree_64fc[c](reinterpret_cast<OmnCplxFftSpec*>(a)), -17 },
    };
    for (const Row& r : rows)
        EXPECT_EQ(r.got, r.want) << r.what;
    EXPECT_EQ(out, untouched) << "a failed creation wrote *spec";
    // The refused frees left both objects alive.
    EXPECT_EQ(tf::omnsCplxFftFwd_64fc[c](a, b, cs, nullptr), 0);
    EXPECT_EQ(tf::omnsRealFftGetBufSize_64f[c](rs, &size), 0);
    EXPECT_EQ(tf::omnsCplxFftFree_64fc[c](cs), 0);
    EXPECT_EQ(tf::omnsRealFftFree_64f[c](rs), 0);
}

#if !defined(__SANITIZE_ADDRESS__)
// Reads the freed block on purpose: only without AddressSanitizer.
TEST_P(FftTest, FreedSpecIsRefused)
{
    const int c = col();
    for (int order : { 2, 12 }) {
        OmnCplxFftSpec* s = nullptr;
        ASSERT_EQ(tf::omnsCplxFftCreate_64fc[c](&s, order, 8, 0), 0);
        ASSERT_EQ(tf::omnsCplxFftFree_64fc[c](s), 0);
        // The block went back to the allocator; its id word was cleared first.
        EXPECT_EQ(s->id, 0u) << "order " << order;
    }
}
#endif

TEST_P(FftTest, FlagsGiveTheScale)
{
    const int c = col();
    struct Row { int flag; int fwd; int inv; double scale; };
    for (int order : { 0, 3, 5, 13 }) {
        const double n = ldexp(1.0, order);
        const Row rows[] = { { 8, 0, 0, 0.0 }, { 1, 1, 0, 1 / n }, { 2, 0, 1, 1 / n }, { 4, 1, 1, 1 / sqrt(n) } };
        for (const Row& r : rows) {
            for (bool real : { false, true }) {
                OmnFftSpecRecord* s = nullptr;
                if (real) {
                    OmnRealFftSpec* p = nullptr;
                    ASSERT_EQ(tf::omnsRealFftCreate_64f[c](&p, order, r.flag, 77), 0);
                    s = p;
                } else {
                    OmnCplxFftSpec* p = nullptr;
                    ASSERT_EQ(tf::omnsCplxFftCreate_64fc[c](&p, order, r.flag, 77), 0);
                    s = p;
                }
                EXPECT_EQ(s->id, real ? 9u : 7u);
                EXPECT_EQ(s->order, order);
                EXPECT_EQ(s->hint, 77);
                EXPECT_EQ(s->scaleFwd != 0, r.fwd != 0) << "flag " << r.flag;
                EXPECT_EQ(s->scaleInv != 0, r.inv != 0) << "flag " << r.flag;
                EXPECT_EQ(s->scale, r.scale) << "flag " << r.flag << " order " << order;
                EXPECT_EQ(s->quadTwiddleHigh, nullptr);
                EXPECT_EQ(s->recombFwd != nullptr, real && order >= 4);
                if (order < 4) {
                    EXPECT_EQ(s->bitRev, nullptr) << "order " << order << " holds a table";
                }
                const OmnStatus freed = real ? tf::omnsRealFftFree_64f[c](static_cast<OmnRealFftSpec*>(s))
                                             : tf::omnsCplxFftFree_64fc[c](static_cast<OmnCplxFftSpec*>(s));
                EXPECT_EQ(freed, 0);
            }
        }
    }
    // Order 0 is a copy, times 1.0 under every scaling flag.
    for (int flag : { 1, 2, 4, 8 }) {
        CplxSpec s(c, 0, flag);
        const Omn64fc x{ 0.1, -3e-300 };
        Omn64fc y{ 0, 0 }, z = x;
        EXPECT_EQ(tf::omnsCplxFftFwd_64fc[c](&x, &y, s.p, nullptr), 0);
        EXPECT_EQ(tf::omnsCplxFftInv_64fc[c](&z, &z, s.p, nullptr), 0);
        EXPECT_TRUE(y.re == x.re && y.im == x.im && z.re == x.re && z.im == x.im) << "flag " << flag;
    }
}

TEST_P(FftTest, BufSizeByOrderAndColumn)
{
    const int c = col();
    // Direct: px/a6 need nothing below order 10; w7/t7 room for the whole
    // transform, (16 << k) + 16.  Blocked: px/a6 the largest column buffer,
    // 64 << outer order, + 16; w7/t7 the largest tile, 16 << tile order,
    // plus 0x20010 (w7) or 0x40010 (t7).
    const int pxCol = 16, w7Leaf = 0x20010, t7Leaf = 0x40010;
    struct Row { int k; int px; int w7; int t7; };
    const Row rows[] = {
        { 3, 0, (16 << 3) + 16, (16 << 3) + 16 },
        { 4, 0, (16 << 4) + 16, (16 << 4) + 16 },
        { 9, 0, (16 << 9) + 16, (16 << 9) + 16 },
        { 10, pxCol, (16 << 10) + 16, (16 << 10) + 16 },
        { 11, pxCol, (16 << 11) + 16, (16 << 11) + 16 },
        { 12, (64 << 4) + 16, (16 << 12) + 16, (16 << 12) + 16 },
        { 13, (64 << 5) + 16, (16 << 13) + 16, (16 << 13) + 16 },
        { 14, (64 << 6) + 16, (16 << 8) + w7Leaf, (16 << 14) + 16 },
        { 15, (64 << 7) + 16, (16 << 8) + w7Leaf, (16 << 8) + t7Leaf },
        { 16, (64 << 7) + 16, (16 << 10) + w7Leaf, (16 << 10) + t7Leaf },
        { 17, (64 << 8) + 16, (16 << 10) + w7Leaf, (16 << 10) + t7Leaf },
        { 18, (64 << 9) + 16, (16 << 12) + w7Leaf, (16 << 10) + t7Leaf },
        { 19, (64 << 9) + 16, (16 << 13) + w7Leaf, (16 << 13) + t7Leaf },
        { 21, (64 << 8) + 16, (16 << 13) + w7Leaf, (16 << 14) + t7Leaf },
        // Two levels: 8 over 6 (px), 4 over 5 with tiles of 10 and 12 (w7),
        // 8 over 14 with a tile of 14 (t7).
        { 22, (64 << 8) + 16, (16 << 12) + w7Leaf, (16 << 14) + t7Leaf },
    };
    for (const Row& r : rows) {
        const int want = c <= 1 ? r.px : c == 2 ? r.w7 : r.t7;
        if (r.k >= 4) {
            CplxSpec s(c, r.k, 2);
            EXPECT_EQ(s.bufSize(), want) << "complex order " << r.k;
        }
        // A real spec reports its half-length core (checked up to core order
        // 18, where each column has taken its blocked shape).
        if (r.k > 18)
            continue;
        OmnRealFftSpec* rs = nullptr;
        ASSERT_EQ(tf::omnsRealFftCreate_64f[c](&rs, r.k + 1, 8, 0), 0);
        int size = -1;
        EXPECT_EQ(tf::omnsRealFftGetBufSize_64f[c](rs, &size), 0);
        EXPECT_EQ(size, want) << "real order " << r.k + 1;
        EXPECT_EQ(tf::omnsRealFftFree_64f[c](rs), 0);
    }
    for (int order = 0; order < 4; ++order) {
        CplxSpec s(c, order, 8);
        EXPECT_EQ(s.bufSize(), 0) << "order " << order;
    }
}

TEST_P(FftTest, TablesAtTheirEdges)
{
    const int c = col();
    // The bit-reversal table of order 3 (core of a real spec of order 4):
    // 2 rev(i) with zeros at both ends.
    OmnRealFftSpec* rs = nullptr;
    ASSERT_EQ(tf::omnsRealFftCreate_64f[c](&rs, 4, 8, 0), 0);
    const Omn32s* rev3 = static_cast<const Omn32s*>(rs->bitRev);
    EXPECT_EQ(rev3[0], 0);
    EXPECT_EQ(rev3[1], 2);
    EXPECT_EQ(rev3[2], 0);
    // Recombination: groups from k = 1 to N/4 with first parts, then second
    // parts, side by side.
    const double* rf = static_cast<const double*>(rs->recombFwd);
    const double* ri = static_cast<const double*>(rs->recombInv);
    const double c1 = cos(kTwoPi / 16), s1 = sin(kTwoPi / 16);
    EXPECT_NEAR(rf[0], 0.5 * c1, 1e-16);
    EXPECT_NEAR(rf[2], 0.5 - 0.5 * s1, 1e-16);
    EXPECT_NEAR(ri[0], c1, 1e-16);
    EXPECT_NEAR(ri[2], -s1, 1e-16);
    // The last group closes on k = N/4: A = B = 0, cos = 0, -sin = -1.
    EXPECT_EQ(rf[5], 0.0);
    EXPECT_EQ(rf[7], 0.0);
    EXPECT_EQ(ri[5], 0.0);
    EXPECT_EQ(ri[7], -1.0);
    EXPECT_EQ(tf::omnsRealFftFree_64f[c](rs), 0);

    // Order 4: 0, 4, 2, 6, 0.
    CplxSpec s4(c, 4, 8);
    const Omn32s* rev4 = static_cast<const Omn32s*>(s4.p->bitRev);
    const std::vector<Omn32s> got(rev4, rev4 + 5);
    EXPECT_EQ(got, (std::vector<Omn32s>{ 0, 4, 2, 6, 0 }));

    // Entry 0 of a butterfly table is 1 and a zero three times: -0 where
    // the sign bit is flipped (px/a6), +0 where 0.0 - x is computed (w7/t7).
    const double* tw = static_cast<const double*>(s4.p->leafTwiddle);
    EXPECT_EQ(tw[0], 1.0);
    EXPECT_EQ(tw[2], 0.0);
    EXPECT_EQ(signbit(tw[2]) != 0, c <= 1) << "sign of the zero in entry 0";

    // Sections of the table of order 6: orders 4 and 6, the second starting
    // after 16 / 4 * 12 doubles.
    CplxSpec s6(c, 6, 8);
    const double* t = static_cast<const double*>(s6.p->leafTwiddle);
    EXPECT_NEAR(t[1], cos(kTwoPi / 16), 1e-16);
    EXPECT_NEAR(t[24 + 1], cos(kTwoPi / 64), 2e-16);
    EXPECT_NEAR(t[24 + 3], -sin(kTwoPi / 64), 2e-16);
    EXPECT_NEAR(t[24 + 5], cos(2 * kTwoPi / 64), 2e-16);
}

// A real spec of order m builds its core of order m - 1 over the sine table
// of order m read at step 2: the same values as a complex spec of order
// m - 1 makes from its own table, bit for bit.
TEST_P(FftTest, RealCoreTablesMatchTheComplexOnes)
{
    const int c = col();
    for (int k : { 5, 15 }) {
        CplxSpec cs(c, k, 8);
        OmnRealFftSpec* rs = nullptr;
        ASSERT_EQ(tf::omnsRealFftCreate_64f[c](&rs, k + 1, 8, 0), 0);
        const int64_t n = int64_t(1) << k;
        const size_t revBytes = 4 * (n / 4 + 1);
        EXPECT_EQ(memcmp(cs.p->bitRev, rs->bitRev, revBytes), 0) << "bit reversal, core order " << k;
        if (k == 5) {
            EXPECT_EQ(memcmp(cs.p->leafTwiddle, rs->leafTwiddle, 16 * n), 0) << "butterfly table, core order 5";
        } else {
            EXPECT_EQ(memcmp(cs.p->levelCross[0], rs->levelCross[0], 16 * n), 0) << "cross table, core order 15";
        }
        EXPECT_EQ(tf::omnsRealFftFree_64f[c](rs), 0);
    }
}

// Every order up to 12, both directions, every flag and placement, against
// the long-double DFT.  The worst rms relative error per order goes to the
// test's output.
TEST_P(FftTest, MatchesLongDoubleDft)
{
    const int c = col();
    static std::map<std::pair<int, bool>, std::vector<Cld>> refs;
    for (int order = 0; order <= 12; ++order) {
        const std::vector<Omn64fc> x = randomSignal(order);
        double worst = 0;
        for (bool inv : { false, true }) {
            auto it = refs.find({ order, inv });
            if (it == refs.end())
                it = refs.emplace(std::make_pair(order, inv), longDoubleDft(x, inv)).first;
            for (int flag : { 1, 2, 4, 8 }) {
                CplxSpec spec(c, order, flag);
                for (Placement pl : { kOutOfPlace, kInPlace, kOffsetDst }) {
                    const std::vector<Omn64fc> y = run(c, spec, x, inv, pl, pl == kOffsetDst);
                    const double e = rmsRelative(y.data(), it->second, flagScale(flag, order, inv));
                    EXPECT_LT(e, errorBound(order)) << "order " << order << (inv ? " inverse" : " forward") << " flag "
                                                    << flag << ", " << kPlacementNames[pl];
                    worst = e > worst ? e : worst;
                }
            }
        }
        if (order == 0) {
            EXPECT_EQ(worst, 0.0);
        }
        RecordProperty("rms_order_" + std::to_string(order), std::to_string(worst));
        printf("  %s order %2d: rms relative error %.3g (bound %.3g)\n", test::kColumnNames[c], order, worst,
               errorBound(order));
    }
}

// Above order 12: exactly known spectra in both directions under every
// flag (orders 19 and 20: flags 2 and 8), the three placements taking
// turns, and a round trip.
TEST_P(FftTest, KnownSpectraAndRoundTripsToOrder20)
{
    const int c = col();
    const int flags[] = { 1, 2, 4, 8 };
    for (int order = 13; order <= 20; ++order) {
        double worst = 0;
        const Known known[2] = { knownSignal(order, false), knownSignal(order, true) };
        for (int f = 0; f < 4; ++f) {
            // The two largest orders take two flags only: the scaling is the
            // same code at every order, and they are the costly ones.
            if (order > 18 && (flags[f] == 1 || flags[f] == 4))
                continue;
            CplxSpec spec(c, order, flags[f]);
            for (bool inv : { false, true }) {
                const Known& k = known[inv];
                const Placement pl = static_cast<Placement>((order + f + inv) % 3);
                const std::vector<Omn64fc> y = run(c, spec, k.x, inv, pl, f % 2 == 0);
                const double e = rmsRelative(y.data(), k.spectrum, flagScale(flags[f], order, inv));
                EXPECT_LT(e, errorBound(order)) << "order " << order << (inv ? " inverse" : " forward") << " flag "
                                                << flags[f] << ", " << kPlacementNames[pl];
                worst = e > worst ? e : worst;
            }
        }
        const std::vector<Omn64fc> x = randomSignal(order);
        CplxSpec spec(c, order, 4);
        const std::vector<Omn64fc> y = run(c, spec, x, false, kOffsetDst, false);
        const std::vector<Omn64fc> z = run(c, spec, y, true, kInPlace, true);
        std::vector<Cld> xl(x.size());
        for (size_t i = 0; i < x.size(); ++i)
            xl[i] = Cld(x[i].re, x[i].im);
        const double e = rmsRelative(z.data(), xl);
        EXPECT_LT(e, 2 * errorBound(order)) << "round trip, order " << order;
        printf("  %s order %2d: rms relative error %.3g on known spectra, %.3g on the round trip\n",
               test::kColumnNames[c], order, worst, e);
    }
}

// The orders at which a column changes its shape: px/a6 one scalar codelet
// at 4, direct up to 13 (in place without work memory), blocked from 14,
// with a radix-2 outer pass at 18 and two levels at 22; w7 in place through
// the work memory up to 13, direct at 14 (in place without it, first stages
// by codelets on pairs), blocked from 15; t7 direct up to 14 (codelets on
// pairs at 14), blocked from 15.  Each against its exact spectrum, and in place, out of place
// and with an offset dst giving the same bits.
struct Shape {
    int col;
    int order;
    const char* name;
};

const Shape kShapes[] = {
    { 0, 4, "px_codelet" },        { 1, 4, "a6_codelet" },        { 0, 9, "px_direct" },         { 0, 13, "px_direct" },        { 0, 14, "px_blocked" },
    { 0, 18, "px_odd_outer" },     { 0, 22, "px_two_levels" },    { 1, 13, "a6_direct" },
    { 1, 14, "a6_blocked" },       { 2, 13, "w7_direct" },        { 2, 14, "w7_direct_in_dst" },
    { 2, 15, "w7_blocked" },       { 2, 22, "w7_two_levels" },    { 3, 14, "t7_direct" },
    { 3, 15, "t7_blocked" },       { 3, 17, "t7_outer_of_4" },    { 2, 18, "w7_odd_outer" },
};

class FftShapeTest : public ::testing::TestWithParam<Shape> {};

TEST_P(FftShapeTest, ExactSpectrumAndSameBitsInEveryPlacement)
{
    const Shape& r = GetParam();
    // Above order 20 only the forward, and no in-place run: these orders
    // permute the whole array in both placements, so in place runs the
    // same code as out of place.
    const bool large = r.order > 20;
    for (bool inv : { false, true }) {
        if (inv && large)
            continue;
        const Known k = knownSignal(r.order, inv);
        CplxSpec spec(r.col, r.order, inv ? 2 : 8);
        const std::vector<Omn64fc> a = run(r.col, spec, k.x, inv, kOutOfPlace, false);
        const std::vector<Omn64fc> d = run(r.col, spec, k.x, inv, kOffsetDst, true);
        const double e = rmsRelative(a.data(), k.spectrum, inv ? ldexpl(1, -r.order) : 1);
        EXPECT_LT(e, errorBound(r.order)) << r.name << " order " << r.order << (inv ? " inverse" : " forward");
        EXPECT_TRUE(sameBits(a, d)) << r.name << ": the offset dst differs";
        if (!large) {
            const std::vector<Omn64fc> b = run(r.col, spec, k.x, inv, kInPlace, false);
            EXPECT_TRUE(sameBits(a, b)) << r.name << ": in place differs from out of place";
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Shapes, FftShapeTest, ::testing::ValuesIn(kShapes),
                         [](const ::testing::TestParamInfo<Shape>& info) {
                             return std::string(info.param.name) + "_" + std::to_string(info.param.order);
                         });

// A null buffer: one block allocated and freed per transform; its failure
// is -9 with dst untouched.  A spec with bufSize 0 allocates nothing.
TEST_P(FftTest, NullBufferAllocatesAndFreesPerCall)
{
    const int c = col();
    for (int order : { 4, 9, 10, 12, 15 }) {
        CplxSpec spec(c, order, 1);
        const std::vector<Omn64fc> x = randomSignal(order);
        std::vector<Omn64fc> y(x.size(), Omn64fc{ 7, 7 });
        test::AllocTracking tracking;
        const OmnAllocStats before = omnAllocTestStats();
        ASSERT_EQ(tf::omnsCplxFftFwd_64fc[c](x.data(), y.data(), spec.p, nullptr), 0);
        const OmnAllocStats after = omnAllocTestStats();
        const uint64_t blocks = spec.bufSize() > 0 ? 1 : 0;
        EXPECT_EQ(after.allocated - before.allocated, blocks) << "order " << order;
        EXPECT_EQ(after.freed - before.freed, blocks) << "order " << order;
        if (blocks == 0)
            continue;
        EXPECT_EQ(after.lastRequest, uint32_t(spec.bufSize()) + kAllocOverhead);
        std::vector<Omn64fc> z(x.size(), Omn64fc{ 7, 7 });
        omnAllocTestFailAt(1);
        EXPECT_EQ(tf::omnsCplxFftInv_64fc[c](x.data(), z.data(), spec.p, nullptr), -9);
        omnAllocTestFailAt(0);
        for (const Omn64fc& v : z)
            ASSERT_TRUE(v.re == 7 && v.im == 7) << "dst written by a failed transform, order " << order;
    }
}

// Every allocation of every creation from order 4 to 22 fails in turn:
// -9, *spec unwritten, and nothing left behind.
TEST_P(FftTest, CreationFailsCleanlyAtEveryAllocation)
{
    const int c = col();
    for (int order = 4; order <= 22; ++order) {
        const unsigned cplx = test::expectNoMemoryPaths([&](bool* ok) {
            OmnCplxFftSpec* s = reinterpret_cast<OmnCplxFftSpec*>(ok);
            const OmnStatus st = tf::omnsCplxFftCreate_64fc[c](&s, order, 4, 0);
            if (st == 0) {
                EXPECT_EQ(tf::omnsCplxFftFree_64fc[c](s), 0);
            } else {
                EXPECT_EQ(s, reinterpret_cast<OmnCplxFftSpec*>(ok)) << "*spec written on failure";
            }
            *ok = st == 0;
            return st;
        });
        const unsigned real = test::expectNoMemoryPaths([&](bool* ok) {
            OmnRealFftSpec* s = nullptr;
            const OmnStatus st = tf::omnsRealFftCreate_64f[c](&s, order, 2, 0);
            if (st == 0)
                EXPECT_EQ(tf::omnsRealFftFree_64f[c](s), 0);
            else
                EXPECT_EQ(s, nullptr);
            *ok = st == 0;
            return st;
        });
        // object, bit reversal, sine table and at least one twiddle table
        EXPECT_GE(cplx, 4u) << "order " << order;
        EXPECT_GE(real, 5u) << "order " << order;   // and both recombination tables
    }
}

// One spec, two threads, each with its own buffer and dst: the same bits
// as one thread alone.
TEST_P(FftTest, SpecSharedByTwoThreads)
{
    const int c = col();
    for (int order : { 11, 16 }) {
        CplxSpec spec(c, order, 4);
        const std::vector<Omn64fc> x = randomSignal(order);
        const std::vector<Omn64fc> want = run(c, spec, x, false, kOutOfPlace, true);
        std::vector<Omn64fc> got[2];
        std::thread t[2];
        for (int i = 0; i < 2; ++i)
            t[i] = std::thread([&, i] {
                for (int rep = 0; rep < 3; ++rep)
                    got[i] = run(c, spec, x, false, kOutOfPlace, true);
            });
        for (std::thread& th : t)
            th.join();
        EXPECT_TRUE(sameBits(got[0], want)) << "order " << order;
        EXPECT_TRUE(sameBits(got[1], want)) << "order " << order;
    }
}

OMN_ALL_COLUMNS(FftTest);
