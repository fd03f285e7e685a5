#!/usr/bin/env python3
"""Ratio table of the arithmetic benchmarks, from one run's JSON output.

    omns_bench --benchmark_filter='Arith/' --benchmark_min_time=0.1 \
               --benchmark_repetitions=5 --benchmark_enable_random_interleaving=true \
               --benchmark_format=json > arith.json
    tools/arith-ratios.py arith.json

In cache (4,096 elements): the plain loop's CPU time over each kernel's, so
that a figure of 1.00 or more means the kernel is at least as fast (CPU
time, since the machine may be shared).  Out of
cache (4 Mi elements): each kernel's bytes per second over memcpy's for the
same bytes moved.  With repetitions, each benchmark counts with its best
repetition.
"""
import json
import sys

def main(path):
    runs = json.load(open(path))["benchmarks"]
    time, rate = {}, {}
    for r in runs:
        if r.get("run_type", "iteration") != "iteration":
            continue
        parts = r["name"].split("/")
        if len(parts) != 4 or parts[0] != "Arith":
            continue
        _, op, who, n = parts
        # With repetitions, the best of them: the machine is shared, and
        # interference only ever slows a run down.
        key = (op, who, int(n))
        time[key] = min(time.get(key, float("inf")), r["cpu_time"])
        rate[key] = max(rate.get(key, 0.0), r.get("bytes_per_second", 0.0))
    ops = []
    for (op, _, _) in time:
        if op not in ops:
            ops.append(op)
    sizes = sorted({n for (_, _, n) in time})
    small, large = sizes[0], sizes[-1]
    who = ["px", "a6", "w7", "t7", "volk"]

    def cell(v):
        return "%.2f" % v if v is not None else "-"

    print("In cache, %d elements: plain-loop time / kernel time (>= 1.00: kernel at least as fast)\n" % small)
    print("| Function | " + " | ".join(who) + " |")
    print("|---|" + "---|" * len(who))
    for op in ops:
        base = time.get((op, "plain", small))
        row = [cell(base / time[(op, w, small)]) if (op, w, small) in time else "-" for w in who]
        print("| %s | %s |" % (op, " | ".join(row)))
    print("\nOut of cache, %d elements: kernel bandwidth / memcpy bandwidth for the same bytes moved (target for w7: >= 0.90)\n" % large)
    print("| Function | " + " | ".join(who + ["plain"]) + " |")
    print("|---|" + "---|" * (len(who) + 1))
    for op in ops:
        base = rate.get((op, "memcpy", large))
        row = [cell(rate[(op, w, large)] / base) if (op, w, large) in rate and base else "-" for w in who + ["plain"]]
        print("| %s | %s |" % (op, " | ".join(row)))

if __name__ == "__main__":
    main(sys.argv[1])
