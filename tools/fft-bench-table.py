#!/usr/bin/env python3
"""Turns a Google Benchmark JSON run of the CplxFftFwd benchmarks into the
FFT table of the README: ns per transform (medians) of every
column and peer, and the ratios the targets name, each from one run:

  px / fftw-nosimd   the portable column against FFTW planned without SIMD
  w7, t7 / fftw      the SSE2/SSE3 columns against FFTW's best plan

A ratio above 1 means the column is faster.  Ratios are given from real
time (what tools/bench-ratios.py uses) and from CPU time, which is steadier
on a shared machine.

usage: tools/fft-bench-table.py run.json [FUNCTION]

FUNCTION is the first part of the benchmark names: CplxFftFwd (the
default), RealFftFwd or RealFftInv.
"""
import json
import sys

IMPLS = ["px", "a6", "w7", "t7", "ref-fftw", "ref-fftw-nosimd"]


def main():
    if len(sys.argv) < 2:
        print(__doc__)
        return 2
    benches = json.load(open(sys.argv[1]))["benchmarks"]
    if any(b.get("aggregate_name") == "median" for b in benches):
        benches = [b for b in benches if b.get("aggregate_name") == "median"]
    else:
        benches = [b for b in benches if b.get("run_type") != "aggregate"]
    function = sys.argv[2] if len(sys.argv) > 2 else "CplxFftFwd"
    t = {}
    for b in benches:
        parts = b.get("run_name", b["name"]).split("/")
        if len(parts) < 3 or parts[0] != function:
            continue
        t.setdefault(int(parts[2][5:]), {})[parts[1]] = (b["real_time"], b["cpu_time"])
    print("| order | " + " | ".join(i.replace("ref-", "") + " ns" for i in IMPLS) +
          " | px/nosimd real | cpu | w7/fftw real | cpu | t7/fftw real | cpu |")
    print("|---" * (1 + len(IMPLS) + 6) + "|")
    for order in sorted(t):
        r = t[order]
        cells = ["%.0f" % r[i][0] if i in r else "-" for i in IMPLS]

        def ratio(col, peer, k):
            if col in r and peer in r:
                return "%.2f" % (r[peer][k] / r[col][k])
            return "-"
        cells += [ratio("px", "ref-fftw-nosimd", 0), ratio("px", "ref-fftw-nosimd", 1),
                  ratio("w7", "ref-fftw", 0), ratio("w7", "ref-fftw", 1),
                  ratio("t7", "ref-fftw", 0), ratio("t7", "ref-fftw", 1)]
        print("| %d | %s |" % (order, " | ".join(cells)))
    return 0


if __name__ == "__main__":
    sys.exit(main())
