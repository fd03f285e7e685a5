// What the FFT benchmarks of the columns and of the peers share: names,
// orders, run times and the data arrays.
#ifndef OMN_BENCH_FFT_H
#define OMN_BENCH_FFT_H

#include <stdlib.h>
#include <string.h>

#include <string>

#include "bench/bench_common.h"
#include "omns.h"

namespace omn {
namespace bench {

constexpr int kFftMinOrder = 4;
constexpr int kFftMaxOrder = 20;

inline std::string fftName(const std::string& impl, int order)
{
    return "CplxFftFwd/" + impl + "/order" + std::to_string(order);
}

inline std::string realFftName(bool inv, const std::string& impl, int order)
{
    return std::string(inv ? "RealFftInv" : "RealFftFwd") + "/" + impl + "/order" + std::to_string(order);
}

inline void configureFft(benchmark::internal::Benchmark* b, int order)
{
    b->UseRealTime()->Unit(benchmark::kNanosecond);
    b->MinTime(order >= 16 ? 0.2 : 0.05);
}

// Source and destination, 64-byte aligned, the source a fixed pseudo-random
// signal (the same for every implementation).
struct FftArrays {
    Omn64fc* src;
    Omn64fc* dst;
    explicit FftArrays(int order)
    {
        const size_t n = size_t(1) << order;
        src = static_cast<Omn64fc*>(aligned_alloc(64, n * sizeof(Omn64fc)));
        dst = static_cast<Omn64fc*>(aligned_alloc(64, n * sizeof(Omn64fc)));
        unsigned s = 12345;
        for (size_t i = 0; i < n; ++i) {
            s = s * 1103515245u + 12345u;
            src[i].re = static_cast<double>(s >> 8) / 16777216.0 - 0.5;
            s = s * 1103515245u + 12345u;
            src[i].im = static_cast<double>(s >> 8) / 16777216.0 - 0.5;
        }
        memset(static_cast<void*>(dst), 0, n * sizeof(Omn64fc));
    }
    ~FftArrays()
    {
        free(src);
        free(dst);
    }
    FftArrays(const FftArrays&) = delete;
    FftArrays& operator=(const FftArrays&) = delete;
};

} // namespace bench
} // namespace omn

#endif /* OMN_BENCH_FFT_H */
