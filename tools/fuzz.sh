#!/usr/bin/env bash
# Builds the differential fuzz target with clang (ASan + UBSan, libFuzzer) and
# runs it for the given number of seconds (default 300) on as many jobs as
# there are cores, starting from the seed corpus in tests/fuzz/corpus.  New
# inputs go to a scratch corpus, never into the repository; a finding stops
# the run and leaves its input as build-fuzz/findings/crash-*.
#   tools/fuzz.sh [seconds] [build-dir]
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
secs=${1:-300}
build=${2:-$root/build-fuzz}
if ! command -v clang++ >/dev/null 2>&1; then
  echo "no clang++: fuzzing skipped"
  exit 0
fi
CC=clang CXX=clang++ cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DOMNS_FUZZ=ON \
  -DOMNS_BUILD_BENCHMARKS=OFF >/dev/null
cmake --build "$build" -j"$(nproc)" --target omns_fuzz_differential >/dev/null
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -p "$build/findings"
jobs=$(nproc)
cd "$build/findings"
# -fork keeps one process per core running until the time is up, and counts
# the executions of all of them in its final line.
"$build/tests/omns_fuzz_differential" -fork="$jobs" -ignore_crashes=0 -max_total_time="$secs" \
  -print_final_stats=1 "$work" "$root/tests/fuzz/corpus" 2>&1 | tee "$build/findings/log.txt" | \
  grep -E "differs|returned|ERROR|runtime error|stat::|INFO: fuzzed for|DONE" || true
if ls "$build"/findings/crash-* >/dev/null 2>&1; then
  echo "fuzzing found inputs on which the columns disagree or a sanitizer fired: $build/findings"
  exit 1
fi
echo "fuzzing: no finding in ${secs}s"
