// FFTW 3 as the peer of the complex forward FFT: its best plan
// (FFTW_MEASURE), and the same planned with FFTW_NO_SIMD, the fair peer of
// the portable column.  Out of place, like the columns' runs.  Built only
// when the configure step found FFTW; the library never links it.
#include <fftw3.h>
#include <string.h>

#include "bench/bench_fft.h"

namespace {

void peer(benchmark::State& st, int order, unsigned flags)
{
    const int n = 1 << order;
    omn::bench::FftArrays a(order);
    fftw_complex* in = reinterpret_cast<fftw_complex*>(a.src);
    fftw_complex* out = reinterpret_cast<fftw_complex*>(a.dst);
    // Measuring overwrites the arrays: keep the signal aside.
    omn::bench::FftArrays keep(order);
    memcpy(keep.src, a.src, sizeof(Omn64fc) * n);
    fftw_plan p = fftw_plan_dft_1d(n, in, out, FFTW_FORWARD, FFTW_MEASURE | flags);
    if (p == nullptr) {
        st.SkipWithError("no plan");
        return;
    }
    memcpy(a.src, keep.src, sizeof(Omn64fc) * n);
    for (auto _ : st) {
        fftw_execute(p);
        benchmark::ClobberMemory();
    }
    fftw_destroy_plan(p);
}

void registerAll()
{
    using namespace omn::bench;
    for (int order = kFftMinOrder; order <= kFftMaxOrder; ++order) {
        configureFft(benchmark::RegisterBenchmark(fftName("ref-fftw", order).c_str(),
                                                  [order](benchmark::State& st) { peer(st, order, 0); }),
                     order);
        configureFft(benchmark::RegisterBenchmark(fftName("ref-fftw-nosimd", order).c_str(),
                                                  [order](benchmark::State& st) { peer(st, order, FFTW_NO_SIMD); }),
                     order);
    }
}

const bool kRegistered = (registerAll(), true);

} // namespace
