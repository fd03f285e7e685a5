// Copy, Move, Set and Zero in every column against the C and C++ libraries,
// in cache and out of cache.  Bytes processed count what is read plus what
// is written.
#include <string.h>

#include <algorithm>
#include <vector>

#include "bench/bench_common.h"
#include "core/variants.h"

using namespace omn;
using omn::bench::Size;

namespace {

using CopyFn = OmnStatus (*)(const Omn64f*, Omn64f*, int);
using SetFn = OmnStatus (*)(Omn64f, Omn64f*, int);
using ZeroFn = OmnStatus (*)(Omn64f*, int);

const CopyFn kCopy[4] = { px::omnsCopy_64f, a6::omnsCopy_64f, w7::omnsCopy_64f, t7::omnsCopy_64f };
const CopyFn kMove[4] = { px::omnsMove_64f, a6::omnsMove_64f, w7::omnsMove_64f, t7::omnsMove_64f };
const SetFn kSet[4] = { px::omnsSet_64f, a6::omnsSet_64f, w7::omnsSet_64f, t7::omnsSet_64f };
const ZeroFn kZero[4] = { px::omnsZero_64f, a6::omnsZero_64f, w7::omnsZero_64f, t7::omnsZero_64f };

struct Arrays {
    std::vector<double> src, dst;
    explicit Arrays(size_t bytes) : src(bytes / 8, 1.5), dst(bytes / 8, 0.0) {}
    int len() const { return static_cast<int>(src.size()); }
};

template <typename Body>
void run(benchmark::State& st, const Size& s, double bytesPerByte, Body body)
{
    Arrays a(s.bytes);
    for (auto _ : st) {
        body(a);
        benchmark::ClobberMemory();
    }
    st.SetBytesProcessed(static_cast<int64_t>(st.iterations() * bytesPerByte * s.bytes));
}

void registerAll()
{
    for (const Size* s : { &bench::kInCache, &bench::kOutOfCache }) {
        const Size size = *s;
        for (int c = 0; c < 4; ++c) {
            const std::string col = bench::kColumnNames[c];
            bench::configure(benchmark::RegisterBenchmark(bench::name("Copy_64f", col, size).c_str(),
                [c, size](benchmark::State& st) { run(st, size, 2, [c](Arrays& a) { kCopy[c](a.src.data(), a.dst.data(), a.len()); }); }), size);
            bench::configure(benchmark::RegisterBenchmark(bench::name("Move_64f", col, size).c_str(),
                [c, size](benchmark::State& st) { run(st, size, 2, [c](Arrays& a) { kMove[c](a.src.data(), a.dst.data(), a.len()); }); }), size);
            bench::configure(benchmark::RegisterBenchmark(bench::name("Set_64f", col, size).c_str(),
                [c, size](benchmark::State& st) { run(st, size, 1, [c](Arrays& a) { kSet[c](2.5, a.dst.data(), a.len()); }); }), size);
            bench::configure(benchmark::RegisterBenchmark(bench::name("Zero_64f", col, size).c_str(),
                [c, size](benchmark::State& st) { run(st, size, 1, [c](Arrays& a) { kZero[c](a.dst.data(), a.len()); }); }), size);
        }
        bench::configure(benchmark::RegisterBenchmark(bench::name("Copy_64f", "ref-memcpy", size).c_str(),
            [size](benchmark::State& st) { run(st, size, 2, [](Arrays& a) { memcpy(a.dst.data(), a.src.data(), a.src.size() * 8); }); }), size);
        bench::configure(benchmark::RegisterBenchmark(bench::name("Move_64f", "ref-memmove", size).c_str(),
            [size](benchmark::State& st) { run(st, size, 2, [](Arrays& a) { memmove(a.dst.data(), a.src.data(), a.src.size() * 8); }); }), size);
        bench::configure(benchmark::RegisterBenchmark(bench::name("Move_64f", "ref-memcpy", size).c_str(),
            [size](benchmark::State& st) { run(st, size, 2, [](Arrays& a) { memcpy(a.dst.data(), a.src.data(), a.src.size() * 8); }); }), size);
        bench::configure(benchmark::RegisterBenchmark(bench::name("Set_64f", "ref-fill", size).c_str(),
            [size](benchmark::State& st) { run(st, size, 1, [](Arrays& a) { std::fill(a.dst.begin(), a.dst.end(), 2.5); }); }), size);
        bench::configure(benchmark::RegisterBenchmark(bench::name("Zero_64f", "ref-fill", size).c_str(),
            [size](benchmark::State& st) { run(st, size, 1, [](Arrays& a) { std::fill(a.dst.begin(), a.dst.end(), 0.0); }); }), size);
        bench::configure(benchmark::RegisterBenchmark(bench::name("Zero_64f", "ref-memset", size).c_str(),
            [size](benchmark::State& st) { run(st, size, 1, [](Arrays& a) { memset(a.dst.data(), 0, a.dst.size() * 8); }); }), size);
        bench::configure(benchmark::RegisterBenchmark(bench::name("Set_64f", "ref-memcpy", size).c_str(),
            [size](benchmark::State& st) { run(st, size, 2, [](Arrays& a) { memcpy(a.dst.data(), a.src.data(), a.src.size() * 8); }); }), size);
    }
}

const bool kRegistered = (registerAll(), true);

} // namespace
