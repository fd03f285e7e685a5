// Element-wise arithmetic in every column against a plain loop compiled with
// the library's flags, against VOLK's kernel where one exists and VOLK was
// found at configure time, and against memcpy moving the same number of
// bytes.  Two sizes: 4,096 elements (in cache) and 4 Mi elements (out of
// cache).  Every benchmark reports bytes moved per second (reads plus
// writes), so that the out-of-cache figures compare directly with memcpy's.
//
//   omns_bench --benchmark_filter='Arith/' --benchmark_min_time=0.1
//
// tools/bench-ratios.py turns the JSON output into the ratio table.
#include <benchmark/benchmark.h>

#include <stdlib.h>
#include <string.h>

#include <string>

#include "bench/plain_loops.h"
#include "core/variants.h"

#ifdef OMNS_BENCH_HAVE_VOLK
#include <volk/volk.h>
#endif

namespace {

using namespace omn;

constexpr int kInCache = 4096;
constexpr int kOutOfCache = 4 << 20;
const char* const kColumns[4] = { "px", "a6", "w7", "t7" };

// Three arrays big enough for the largest case (memcpy standing in for 4 Mi
// complex products copies 24 bytes an element), aligned to 64 bytes and
// touched once, shared by all benchmarks.
struct Pool {
    double* a;
    double* b;
    double* d;
    Pool()
    {
        const size_t n = 3 * static_cast<size_t>(kOutOfCache);
        a = alloc(n, 1.0);
        b = alloc(n, 1.5);
        d = alloc(n, 0.0);
    }
    static double* alloc(size_t n, double base)
    {
        void* p = nullptr;
        if (posix_memalign(&p, 64, n * sizeof(double)) != 0)
            abort();
        double* v = static_cast<double*>(p);
        for (size_t i = 0; i < n; ++i)
            v[i] = base + static_cast<double>(i % 1000) / 1024.0;   // in [1, 2.5): no zeros, no negatives
        return v;
    }
};

Pool& pool()
{
    static Pool p;
    return p;
}

// A kernel on the pool's arrays: (a, b, d, n); unary kernels ignore b.
using Kernel = void (*)(const double* a, const double* b, double* d, int n);

void reg(const std::string& op, const std::string& who, int n, double bytesPerElem, Kernel k)
{
    const std::string name = "Arith/" + op + "/" + who + "/" + std::to_string(n);
    benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State& st) {
        Pool& p = pool();
        for (auto _ : st) {
            k(p.a, p.b, p.d, n);
            benchmark::ClobberMemory();
        }
        st.SetBytesProcessed(static_cast<int64_t>(st.iterations() * n * bytesPerElem));
    });
}

// memcpy moving the same bytes: half of them read, half written.
void regMemcpy(const std::string& op, int n, double bytesPerElem)
{
    const std::string name = "Arith/" + op + "/memcpy/" + std::to_string(n);
    benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State& st) {
        Pool& p = pool();
        const size_t bytes = static_cast<size_t>(n * bytesPerElem / 2);
        for (auto _ : st) {
            memcpy(p.d, p.a, bytes);
            benchmark::ClobberMemory();
        }
        st.SetBytesProcessed(static_cast<int64_t>(st.iterations() * n * bytesPerElem));
    });
}

const Omn64fc* cx(const double* p) { return reinterpret_cast<const Omn64fc*>(p); }
Omn64fc* cx(double* p) { return reinterpret_cast<Omn64fc*>(p); }

#define COLS(body) \
    { [](const double* a, const double* b, double* d, int n) { (void)a; (void)b; px::body; }, \
      [](const double* a, const double* b, double* d, int n) { (void)a; (void)b; a6::body; }, \
      [](const double* a, const double* b, double* d, int n) { (void)a; (void)b; w7::body; }, \
      [](const double* a, const double* b, double* d, int n) { (void)a; (void)b; t7::body; } }

struct Op {
    const char* name;
    double bytesPerElem;   // read and written per element
    Kernel column[4];
    Kernel plain;
    Kernel volk;           // null where VOLK has no such kernel
};

const Op kOps[] = {
    { "Add_64f", 24, COLS(omnsAdd_64f(a, b, d, n)),
      [](const double* a, const double* b, double* d, int n) { bench::plainAdd(a, b, d, n); },
#ifdef OMNS_BENCH_HAVE_VOLK
      [](const double* a, const double* b, double* d, int n) { volk_64f_x2_add_64f(d, a, b, static_cast<unsigned>(n)); } },
#else
      nullptr },
#endif
    { "Mul_64f", 24, COLS(omnsMul_64f(a, b, d, n)),
      [](const double* a, const double* b, double* d, int n) { bench::plainMul(a, b, d, n); },
#ifdef OMNS_BENCH_HAVE_VOLK
      [](const double* a, const double* b, double* d, int n) { volk_64f_x2_multiply_64f(d, a, b, static_cast<unsigned>(n)); } },
#else
      nullptr },
#endif
    { "Div_64f", 24, COLS(omnsDiv_64f(a, b, d, n)),
      [](const double* a, const double* b, double* d, int n) { bench::plainDiv(a, b, d, n); }, nullptr },
    { "Sqrt_64f", 16, COLS(omnsSqrt_64f(a, d, n)),
      [](const double* a, const double*, double* d, int n) { bench::plainSqrt(a, d, n); }, nullptr },
    { "Mul_64fc", 48, COLS(omnsMul_64fc(cx(a), cx(b), cx(d), n)),
      [](const double* a, const double* b, double* d, int n) { bench::plainMulComplex(cx(a), cx(b), cx(d), n); }, nullptr },
    { "AddProduct_64f", 32, COLS(omnsAddProduct_64f(a, b, d, n)),
      [](const double* a, const double* b, double* d, int n) { bench::plainAddProduct(a, b, d, n); }, nullptr },
};

int registerAll()
{
    for (int n : { kInCache, kOutOfCache }) {
        for (const Op& op : kOps) {
            for (int c = 0; c < 4; ++c)
                reg(op.name, kColumns[c], n, op.bytesPerElem, op.column[c]);
            reg(op.name, "plain", n, op.bytesPerElem, op.plain);
            if (op.volk != nullptr)
                reg(op.name, "volk", n, op.bytesPerElem, op.volk);
            regMemcpy(op.name, n, op.bytesPerElem);
        }
    }
    return 0;
}

const int kRegistered = registerAll();

} // namespace
