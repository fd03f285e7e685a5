// Shared helpers of the benchmark programs.
//
// Benchmarks are named  <function>/<impl>/<size>  where impl is a column
// (px, a6, w7, t7) or ref-<peer> for the comparison it is measured against;
// tools/bench-ratios.py turns a JSON run into ratio tables from these names.
#ifndef OMN_BENCH_COMMON_H
#define OMN_BENCH_COMMON_H

#include <benchmark/benchmark.h>

#include <stddef.h>

#include <string>
#include <vector>

namespace omn {
namespace bench {

inline const char* const kColumnNames[4] = { "px", "a6", "w7", "t7" };

struct Size {
    const char* label;
    size_t bytes;   // per array
};

// 4 KiB stays in the first-level cache; 128 MiB is far beyond any cache.
inline const Size kInCache{ "4KiB", 4096 };
inline const Size kOutOfCache{ "128MiB", size_t(128) << 20 };

inline std::string name(const char* fn, const std::string& impl, const Size& s)
{
    return std::string(fn) + "/" + impl + "/" + s.label;
}

// Out-of-cache runs are long per iteration; a few suffice.
inline void configure(benchmark::internal::Benchmark* b, const Size& s)
{
    b->UseRealTime();
    if (s.bytes > (size_t(1) << 24))
        b->MinTime(0.3);
    else
        b->MinTime(0.1);
}

} // namespace bench
} // namespace omn

#endif /* OMN_BENCH_COMMON_H */
