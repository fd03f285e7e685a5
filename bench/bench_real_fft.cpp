// The real transforms of every column, orders 4 to 20: forward to Perm and
// inverse from Perm, out of place, flag 8, the caller's work buffer passed
// in; ns per transform.  Peers (bench/peer_fftw.cpp) are FFTW's r2c and c2r
// under the same names with ref-<peer> as impl.  And MulPerm_64f in cache
// against a plain loop over the same layout.
#include <stdlib.h>
#include <string.h>

#include <string>
#include <vector>

#include "bench/bench_common.h"
#include "bench/bench_fft.h"
#include "bench/plain_loops.h"
#include "core/variants.h"
#include "fft/fft.h"

using namespace omn;

namespace {

using CreateFn = OmnStatus (*)(OmnRealFftSpec**, int, int, int);
using BufFn = OmnStatus (*)(const OmnRealFftSpec*, int*);
using RunFn = OmnStatus (*)(const Omn64f*, Omn64f*, const OmnRealFftSpec*, Omn8u*);
using FreeFn = OmnStatus (*)(OmnRealFftSpec*);
using MulFn = OmnStatus (*)(const Omn64f*, const Omn64f*, Omn64f*, int);

const CreateFn kCreate[4] = { px::omnsRealFftCreate_64f, a6::omnsRealFftCreate_64f, w7::omnsRealFftCreate_64f,
                              t7::omnsRealFftCreate_64f };
const BufFn kBuf[4] = { px::omnsRealFftGetBufSize_64f, a6::omnsRealFftGetBufSize_64f, w7::omnsRealFftGetBufSize_64f,
                        t7::omnsRealFftGetBufSize_64f };
const RunFn kFwd[4] = { px::omnsRealFftFwdPerm_64f, a6::omnsRealFftFwdPerm_64f, w7::omnsRealFftFwdPerm_64f,
                        t7::omnsRealFftFwdPerm_64f };
const RunFn kInv[4] = { px::omnsRealFftInvPerm_64f, a6::omnsRealFftInvPerm_64f, w7::omnsRealFftInvPerm_64f,
                        t7::omnsRealFftInvPerm_64f };
const FreeFn kFree[4] = { px::omnsRealFftFree_64f, a6::omnsRealFftFree_64f, w7::omnsRealFftFree_64f,
                          t7::omnsRealFftFree_64f };
const MulFn kMulPerm[4] = { px::omnsMulPerm_64f, a6::omnsMulPerm_64f, w7::omnsMulPerm_64f, t7::omnsMulPerm_64f };

void column(benchmark::State& st, int c, int order, bool inv)
{
    OmnRealFftSpec* spec = nullptr;
    if (kCreate[c](&spec, order, 8, 0) != 0) {
        st.SkipWithError("creation failed");
        return;
    }
    int bufSize = 0;
    kBuf[c](spec, &bufSize);
    // The complex arrays hold twice the reals needed; the first half is
    // the real signal (or the spectrum, for the inverse).
    bench::FftArrays a(order);
    double* src = reinterpret_cast<double*>(a.src);
    double* dst = reinterpret_cast<double*>(a.dst);
    if (inv)
        kFwd[c](src, src, spec, nullptr);
    std::vector<Omn8u> buf(static_cast<size_t>(bufSize) + 1);
    const RunFn run = inv ? kInv[c] : kFwd[c];
    for (auto _ : st) {
        run(src, dst, spec, buf.data());
        benchmark::ClobberMemory();
    }
    kFree[c](spec);
}

void mulPerm(benchmark::State& st, int c)
{
    // Three arrays of 4 KiB: all in the first-level cache.
    const int n = int(bench::kInCache.bytes / sizeof(double));
    std::vector<double> a(n), b(n), d(n);
    for (int i = 0; i < n; ++i) {
        a[i] = 0.5 + i * 1e-3;
        b[i] = 1.5 - i * 1e-3;
    }
    for (auto _ : st) {
        if (c < 4)
            kMulPerm[c](a.data(), b.data(), d.data(), n);
        else
            bench::plainMulPerm(a.data(), b.data(), d.data(), n);
        benchmark::ClobberMemory();
    }
    st.SetBytesProcessed(static_cast<int64_t>(st.iterations()) * n * 3 * int64_t(sizeof(double)));
}

void registerAll()
{
    for (int order = bench::kFftMinOrder; order <= bench::kFftMaxOrder; ++order)
        for (int c = 0; c < 4; ++c)
            for (bool inv : { false, true })
                bench::configureFft(
                    benchmark::RegisterBenchmark(bench::realFftName(inv, bench::kColumnNames[c], order).c_str(),
                                                 [c, order, inv](benchmark::State& st) { column(st, c, order, inv); }),
                    order);
    for (int c = 0; c <= 4; ++c)
        bench::configure(benchmark::RegisterBenchmark(
                             bench::name("MulPerm_64f", c < 4 ? bench::kColumnNames[c] : "ref-plain", bench::kInCache)
                                 .c_str(),
                             [c](benchmark::State& st) { mulPerm(st, c); }),
                         bench::kInCache);
}

const bool kRegistered = (registerAll(), true);

} // namespace
