// Scaled integer arithmetic and the polar helpers in every column against
// plain loops that compute the same values, in cache and out of cache.
// Bytes processed count what is read plus what is written.
#include <math.h>
#include <stdint.h>

#include <vector>

#include "bench/bench_common.h"
#include "core/variants.h"

using namespace omn;
using omn::bench::Size;

namespace {

using Int2Fn = OmnStatus (*)(const Omn32s*, const Omn32s*, Omn32s*, int, int);
using CplxFn = OmnStatus (*)(const Omn64fc*, Omn64f*, int);
using PolarFn = OmnStatus (*)(const Omn64fc*, Omn64f*, Omn64f*, int);

const Int2Fn kAdd[4] = { px::omnsAdd_32s_Sfs, a6::omnsAdd_32s_Sfs, w7::omnsAdd_32s_Sfs, t7::omnsAdd_32s_Sfs };
const Int2Fn kMul[4] = { px::omnsMul_32s_Sfs, a6::omnsMul_32s_Sfs, w7::omnsMul_32s_Sfs, t7::omnsMul_32s_Sfs };
const CplxFn kMagn[4] = { px::omnsMagnitude_64fc, a6::omnsMagnitude_64fc, w7::omnsMagnitude_64fc, t7::omnsMagnitude_64fc };
const CplxFn kPhase[4] = { px::omnsPhase_64fc, a6::omnsPhase_64fc, w7::omnsPhase_64fc, t7::omnsPhase_64fc };
const PolarFn kPolar[4] = { px::omnsCartToPolar_64fc, a6::omnsCartToPolar_64fc, w7::omnsCartToPolar_64fc,
                            t7::omnsCartToPolar_64fc };

// ---- the plain loops -------------------------------------------------------

inline int32_t sat(int64_t s) { return s > INT32_MAX ? INT32_MAX : s < INT32_MIN ? INT32_MIN : static_cast<int32_t>(s); }

inline int64_t roundShift(int64_t s, int sf)
{
    return (s + (int64_t(1) << (sf - 1)) - 1 + ((s >> sf) & 1)) >> sf;
}

void loopAdd0(const int32_t* a, const int32_t* b, int32_t* d, size_t n)
{
    for (size_t i = 0; i < n; ++i)
        d[i] = sat(int64_t(a[i]) + b[i]);
}

void loopAdd3(const int32_t* a, const int32_t* b, int32_t* d, size_t n)
{
    for (size_t i = 0; i < n; ++i)
        d[i] = static_cast<int32_t>(roundShift(int64_t(a[i]) + b[i], 3));
}

void loopMul3(const int32_t* a, const int32_t* b, int32_t* d, size_t n)
{
    for (size_t i = 0; i < n; ++i)
        d[i] = sat(roundShift(int64_t(a[i]) * b[i], 3));
}

void loopMagn(const Omn64fc* s, double* d, size_t n)
{
    for (size_t i = 0; i < n; ++i)
        d[i] = sqrt(s[i].re * s[i].re + s[i].im * s[i].im);
}

void loopPhase(const Omn64fc* s, double* d, size_t n)
{
    for (size_t i = 0; i < n; ++i)
        d[i] = atan2(s[i].im, s[i].re);
}

void loopPolar(const Omn64fc* s, double* m, double* p, size_t n)
{
    for (size_t i = 0; i < n; ++i) {
        m[i] = sqrt(s[i].re * s[i].re + s[i].im * s[i].im);
        p[i] = atan2(s[i].im, s[i].re);
    }
}

// ---- data --------------------------------------------------------------------

struct IntArrays {
    std::vector<int32_t> a, b, d;
    explicit IntArrays(size_t bytes) : a(bytes / 4), b(bytes / 4), d(bytes / 4)
    {
        uint32_t x = 1;
        for (size_t i = 0; i < a.size(); ++i) {
            x = x * 1103515245u + 12345u;
            // Fixed-point samples of up to 17 bits: sums and products
            // scaled by 2^-3 stay in range, as in ordinary use, so that no
            // loop is timed on its saturation branch.
            a[i] = static_cast<int32_t>(x) >> 15;
            x = x * 1103515245u + 12345u;
            b[i] = static_cast<int32_t>(x) >> 15;
        }
    }
    int len() const { return static_cast<int>(a.size()); }
};

struct CplxArrays {
    std::vector<Omn64fc> s;
    std::vector<double> m, p;
    explicit CplxArrays(size_t bytes) : s(bytes / 16), m(bytes / 16), p(bytes / 16)
    {
        for (size_t i = 0; i < s.size(); ++i)
            s[i] = { static_cast<double>(i % 1000) - 499.5, static_cast<double>((i * 7) % 977) - 300.25 };
    }
    int len() const { return static_cast<int>(s.size()); }
};

template <typename Data, typename Body>
void run(benchmark::State& st, const Size& s, double bytesPerByte, Body body)
{
    Data data(s.bytes);
    body(data);   // one untimed pass, so that a single long iteration isn't the first touch
    for (auto _ : st) {
        body(data);
        benchmark::ClobberMemory();
    }
    st.SetBytesProcessed(static_cast<int64_t>(st.iterations() * bytesPerByte * s.bytes));
}

// Timed by the CPU time of the thread rather than by the wall clock: these
// kernels are compute-bound in cache, and on a machine shared with other
// work the wall clock mostly measures the other work.
template <typename Data, typename Body>
void add(const char* fn, const std::string& impl, const Size& size, double bytesPerByte, Body body)
{
    benchmark::RegisterBenchmark(bench::name(fn, impl, size).c_str(),
        [size, bytesPerByte, body](benchmark::State& st) { run<Data>(st, size, bytesPerByte, body); })
        ->MinTime(size.bytes > (size_t(1) << 24) ? 0.3 : 0.1);
}

void registerAll()
{
    for (const Size* sp : { &bench::kInCache, &bench::kOutOfCache }) {
        const Size size = *sp;
        // Integer forms: two sources and a destination of the same size;
        // complex forms: the source, and outputs half its size each.
        for (int c = 0; c < 4; ++c) {
            const std::string col = bench::kColumnNames[c];
            add<IntArrays>("Add_32s_Sfs.sf0", col, size, 3, [c](IntArrays& a) { kAdd[c](a.a.data(), a.b.data(), a.d.data(), a.len(), 0); });
            add<IntArrays>("Add_32s_Sfs.sf3", col, size, 3, [c](IntArrays& a) { kAdd[c](a.a.data(), a.b.data(), a.d.data(), a.len(), 3); });
            add<IntArrays>("Mul_32s_Sfs.sf3", col, size, 3, [c](IntArrays& a) { kMul[c](a.a.data(), a.b.data(), a.d.data(), a.len(), 3); });
            add<CplxArrays>("Magnitude_64fc", col, size, 1.5, [c](CplxArrays& a) { kMagn[c](a.s.data(), a.m.data(), a.len()); });
            add<CplxArrays>("Phase_64fc", col, size, 1.5, [c](CplxArrays& a) { kPhase[c](a.s.data(), a.p.data(), a.len()); });
            add<CplxArrays>("CartToPolar_64fc", col, size, 2, [c](CplxArrays& a) { kPolar[c](a.s.data(), a.m.data(), a.p.data(), a.len()); });
        }
        add<IntArrays>("Add_32s_Sfs.sf0", "ref-loop", size, 3, [](IntArrays& a) { loopAdd0(a.a.data(), a.b.data(), a.d.data(), a.a.size()); });
        add<IntArrays>("Add_32s_Sfs.sf3", "ref-loop", size, 3, [](IntArrays& a) { loopAdd3(a.a.data(), a.b.data(), a.d.data(), a.a.size()); });
        add<IntArrays>("Mul_32s_Sfs.sf3", "ref-loop", size, 3, [](IntArrays& a) { loopMul3(a.a.data(), a.b.data(), a.d.data(), a.a.size()); });
        add<CplxArrays>("Magnitude_64fc", "ref-loop", size, 1.5, [](CplxArrays& a) { loopMagn(a.s.data(), a.m.data(), a.s.size()); });
        add<CplxArrays>("Phase_64fc", "ref-loop", size, 1.5, [](CplxArrays& a) { loopPhase(a.s.data(), a.p.data(), a.s.size()); });
        add<CplxArrays>("CartToPolar_64fc", "ref-loop", size, 2, [](CplxArrays& a) { loopPolar(a.s.data(), a.m.data(), a.p.data(), a.s.size()); });
    }
}

const bool kRegistered = (registerAll(), true);

} // namespace
