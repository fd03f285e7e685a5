// The complex forward FFT of every column, orders 4 to 20, out of place with
// the caller's work buffer: ns per transform.  The peers (bench/peer_fftw.cpp,
// built when FFTW 3 is found) use the same names with ref-<peer> as impl, so
// that tools/bench-ratios.py divides each column by them.
#include <stdlib.h>
#include <string.h>

#include <string>
#include <vector>

#include "bench/bench_common.h"
#include "bench/bench_fft.h"
#include "fft/fft.h"

using namespace omn;

namespace {

using CreateFn = OmnStatus (*)(OmnCplxFftSpec**, int, int, int);
using BufFn = OmnStatus (*)(const OmnCplxFftSpec*, int*);
using FwdFn = OmnStatus (*)(const Omn64fc*, Omn64fc*, const OmnCplxFftSpec*, Omn8u*);
using FreeFn = OmnStatus (*)(OmnCplxFftSpec*);

const CreateFn kCreate[4] = { px::omnsCplxFftCreate_64fc, a6::omnsCplxFftCreate_64fc, w7::omnsCplxFftCreate_64fc,
                              t7::omnsCplxFftCreate_64fc };
const BufFn kBuf[4] = { px::omnsCplxFftGetBufSize_64fc, a6::omnsCplxFftGetBufSize_64fc,
                        w7::omnsCplxFftGetBufSize_64fc, t7::omnsCplxFftGetBufSize_64fc };
const FwdFn kFwd[4] = { px::omnsCplxFftFwd_64fc, a6::omnsCplxFftFwd_64fc, w7::omnsCplxFftFwd_64fc,
                        t7::omnsCplxFftFwd_64fc };
const FreeFn kFree[4] = { px::omnsCplxFftFree_64fc, a6::omnsCplxFftFree_64fc, w7::omnsCplxFftFree_64fc,
                          t7::omnsCplxFftFree_64fc };

void column(benchmark::State& st, int c, int order)
{
    OmnCplxFftSpec* spec = nullptr;
    if (kCreate[c](&spec, order, 8, 0) != 0) {
        st.SkipWithError("creation failed");
        return;
    }
    int bufSize = 0;
    kBuf[c](spec, &bufSize);
    bench::FftArrays a(order);
    std::vector<Omn8u> buf(static_cast<size_t>(bufSize) + 1);
    for (auto _ : st) {
        kFwd[c](a.src, a.dst, spec, buf.data());
        benchmark::ClobberMemory();
    }
    kFree[c](spec);
}

void registerAll()
{
    for (int order = bench::kFftMinOrder; order <= bench::kFftMaxOrder; ++order)
        for (int c = 0; c < 4; ++c)
            bench::configureFft(benchmark::RegisterBenchmark(bench::fftName(bench::kColumnNames[c], order).c_str(),
                                                             [c, order](benchmark::State& st) { column(st, c, order); }),
                                order);
}

const bool kRegistered = (registerAll(), true);

} // namespace
