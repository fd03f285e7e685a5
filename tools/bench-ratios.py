#!/usr/bin/env python3
"""Turns a Google Benchmark JSON run of omns_bench into ratio tables.

Benchmarks are named <function>/<impl>/<size>; impl is a column (px, a6,
w7, t7) or ref-<peer>.  For every function and size, each column's speed is
divided by each peer's speed measured in the same run: above 1 the column is
faster.  Speed is bytes per second where the benchmark counts bytes, else
the inverse of the time per iteration.

With repetitions, the median of each benchmark is used; run with random
interleaving so that a drifting load on the machine falls on all alike:

usage: omns_bench --benchmark_repetitions=5 --benchmark_enable_random_interleaving=true \
                  --benchmark_out=run.json --benchmark_out_format=json
       tools/bench-ratios.py run.json [--filter REGEX]
"""
import json
import re
import sys
from collections import OrderedDict

COLUMNS = ["px", "a6", "w7", "t7"]


def speed(b):
    if "bytes_per_second" in b:
        return b["bytes_per_second"]
    return 1.0 / b["real_time"]


def main():
    if len(sys.argv) < 2:
        print(__doc__)
        return 2
    data = json.load(open(sys.argv[1]))
    flt = re.compile(sys.argv[3]) if len(sys.argv) > 3 and sys.argv[2] == "--filter" else None
    groups = OrderedDict()
    benches = data["benchmarks"]
    if any(b.get("aggregate_name") == "median" for b in benches):
        benches = [b for b in benches if b.get("aggregate_name") == "median"]
    else:
        benches = [b for b in benches if b.get("run_type") != "aggregate"]
    for b in benches:
        parts = b.get("run_name", b["name"]).split("/")
        if len(parts) < 3:
            continue
        fn, impl, size = parts[0], parts[1], parts[2]
        if flt and not flt.search(b["name"]):
            continue
        groups.setdefault((fn, size), {})[impl] = b
    print("| function | size | against | " + " | ".join(COLUMNS) + " |")
    print("|---|---|---|" + "---|" * len(COLUMNS))
    def order(key):
        fn, size = key
        digits = "".join(ch for ch in size if ch.isdigit())
        scale = 1 << 20 if "MiB" in size else 1 << 10 if "KiB" in size else 1
        return (fn, int(digits or 0) * scale, size)

    for (fn, size), impls in sorted(groups.items(), key=lambda kv: order(kv[0])):
        refs = [k for k in impls if k.startswith("ref-")]
        for ref in refs:
            base = speed(impls[ref])
            cells = []
            for c in COLUMNS:
                cells.append("%.2f" % (speed(impls[c]) / base) if c in impls else "-")
            print("| %s | %s | %s | %s |" % (fn, size, ref[4:], " | ".join(cells)))
    return 0


if __name__ == "__main__":
    sys.exit(main())
