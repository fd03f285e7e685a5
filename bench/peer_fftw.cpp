// FFTW 3 as the peer of the complex forward FFT and of the real transforms: its best plan
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

// r2c and c2r, the peers of the real transforms, planned with FFTW's
// defaults.  c2r may use its input as scratch, so from the second iteration
// on it transforms what it left there; those values only grow (no
// denormals), and large or infinite operands cost SSE and AVX arithmetic
// nothing extra, so the loop does not restore them.
void realPeer(benchmark::State& st, int order, unsigned flags, bool inv)
{
    const int n = 1 << order;
    omn::bench::FftArrays a(order);
    omn::bench::FftArrays keep(order);
    double* real = reinterpret_cast<double*>(a.src);
    fftw_complex* half = reinterpret_cast<fftw_complex*>(a.dst);
    memcpy(keep.src, a.src, sizeof(Omn64fc) * n);
    fftw_plan p = inv ? fftw_plan_dft_c2r_1d(n, half, real, FFTW_MEASURE | flags)
                      : fftw_plan_dft_r2c_1d(n, real, half, FFTW_MEASURE | flags);
    if (p == nullptr) {
        st.SkipWithError("no plan");
        return;
    }
    memcpy(a.src, keep.src, sizeof(Omn64fc) * n);
    if (inv) {
        fftw_plan f = fftw_plan_dft_r2c_1d(n, real, half, FFTW_ESTIMATE);
        fftw_execute(f);
        fftw_destroy_plan(f);
    }
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
        for (bool inv : { false, true }) {
            configureFft(benchmark::RegisterBenchmark(realFftName(inv, "ref-fftw", order).c_str(),
                                                      [order, inv](benchmark::State& st) {
                                                          realPeer(st, order, 0, inv);
                                                      }),
                         order);
            configureFft(benchmark::RegisterBenchmark(realFftName(inv, "ref-fftw-nosimd", order).c_str(),
                                                      [order, inv](benchmark::State& st) {
                                                          realPeer(st, order, FFTW_NO_SIMD, inv);
                                                      }),
                         order);
        }
    }
}

const bool kRegistered = (registerAll(), true);

} // namespace
