#!/usr/bin/env python3
"""Measures what the two transpositions of the pair-split FFT kernel cost.

The complex kernel of every column works in pair-split form (fft/pair.h):
its first pass turns interleaved input into pairs, with one shuffle per
point, and its last pass turns pairs back into interleaved output, again
with one shuffle per point.  This tool builds fft/kernel.cpp for one column
three more times, each with one or both of those transpositions replaced by
plain stores of the same registers, and times the forward transform of
orders 4 to 14 of every build, alternating between them.

The changed builds compute wrong spectra: they exist only to put a number
on the shuffles.  Nothing of them goes into the library.

usage: tools/fft-transpose-cost.py BUILD_DIR [COLUMN] [ROUNDS]

BUILD_DIR is a configured build tree in which the target omns_static has
been built (libomns.a); COLUMN is px, a6, w7 (the default) or t7.  Prints
ns per transform (minimum over ROUNDS rounds, default 5) of each build and
its speed over the unchanged kernel.
"""
import os
import subprocess
import sys
import tempfile

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))

# The first pass's transposition: four interleaved results to two pairs.
FIRST_PASS = ("""    st(w, unpackLo(y0, y1));
    st(w + 2, unpackHi(y0, y1));
    st(w + 4, unpackLo(y2, y3));
    st(w + 6, unpackHi(y2, y3));""", """    st(w, y0);
    st(w + 2, y1);
    st(w + 4, y2);
    st(w + 6, y3);""")

# The last pass's transposition: the interleaving stores.
LAST_PASS = ("""                if (Interleave) {
                    storeInterleaved(o, a0);""", """                if (false) {
                    storeInterleaved(o, a0);""")

VARIANTS = [
    ("kernel", []),
    ("no-first", [FIRST_PASS]),
    ("no-last", [LAST_PASS]),
    ("neither", [FIRST_PASS, LAST_PASS]),
]

TIMER = r"""
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <vector>
#include "core/variants.h"
#include "fft/fft.h"
using namespace omn;
int main(int argc, char** argv)
{
    const int col = atoi(argv[1]);
    typedef OmnStatus (*Create)(OmnCplxFftSpec**, int, int, int);
    typedef OmnStatus (*Fwd)(const Omn64fc*, Omn64fc*, const OmnCplxFftSpec*, Omn8u*);
    const Create create[4] = { px::omnsCplxFftCreate_64fc, a6::omnsCplxFftCreate_64fc,
                               w7::omnsCplxFftCreate_64fc, t7::omnsCplxFftCreate_64fc };
    const Fwd fwd[4] = { px::omnsCplxFftFwd_64fc, a6::omnsCplxFftFwd_64fc, w7::omnsCplxFftFwd_64fc,
                         t7::omnsCplxFftFwd_64fc };
    for (int k = 4; k <= 14; ++k) {
        const int n = 1 << k;
        std::vector<Omn64fc> a(n), b(n);
        for (int i = 0; i < n; ++i)
            a[i] = Omn64fc{ (i % 7) * 0.25, (i % 5) * -0.5 };
        OmnCplxFftSpec* spec;
        create[col](&spec, k, 8, 0);
        std::vector<Omn8u> buf(size_t(1) << 22);
        const long reps = n < 4096 ? 4000000 / n : 1000;
        double best = 1e30;
        for (int r = 0; r < 9; ++r) {
            const auto t0 = std::chrono::steady_clock::now();
            for (long i = 0; i < reps; ++i)
                fwd[col](a.data(), b.data(), spec, buf.data());
            const auto t1 = std::chrono::steady_clock::now();
            const double t = std::chrono::duration<double, std::nano>(t1 - t0).count() / reps;
            best = t < best ? t : best;
        }
        printf("%d %.1f\n", k, best);
    }
    return 0;
}
"""

FLAGS = ["-O3", "-DNDEBUG", "-fPIC", "-fno-exceptions", "-fno-rtti", "-ffp-contract=off", "-fno-math-errno",
         "-std=c++17"]


def main():
    if len(sys.argv) < 2:
        print(__doc__)
        return 2
    build = os.path.abspath(sys.argv[1])
    column = sys.argv[2] if len(sys.argv) > 2 else "w7"
    rounds = int(sys.argv[3]) if len(sys.argv) > 3 else 5
    lib = os.path.join(build, "libomns.a")
    isa = ["-msse3"] if column == "t7" else []
    index = ["px", "a6", "w7", "t7"].index(column)
    source = open(os.path.join(ROOT, "fft", "kernel.cpp")).read()
    with tempfile.TemporaryDirectory() as tmp:
        timer = os.path.join(tmp, "timer.cpp")
        open(timer, "w").write(TIMER)
        inc = ["-I" + ROOT, "-I" + os.path.join(ROOT, "include")]
        subprocess.run(["g++", "-O2"] + inc + ["-c", timer, "-o", timer + ".o"], check=True)
        programs = []
        for name, edits in VARIANTS:
            text = source
            for old, new in edits:
                if old not in text:
                    sys.exit(f"fft/kernel.cpp no longer has the code this tool changes for {name}")
                text = text.replace(old, new)
            # Compiled next to the real source so that its includes resolve the same way.
            src = os.path.join(tmp, f"kernel-{name}.cpp")
            open(src, "w").write(text)
            obj = src + ".o"
            subprocess.run(["g++"] + FLAGS + isa + [f"-DOMN_COLUMN_{column}=1"] + inc + ["-c", src, "-o", obj],
                           check=True)
            exe = os.path.join(tmp, name)
            subprocess.run(["g++", timer + ".o", obj, lib, "-o", exe], check=True)
            programs.append((name, exe))
        best = {}
        for _ in range(rounds):
            for name, exe in programs:
                out = subprocess.run([exe, str(index)], check=True, capture_output=True, text=True).stdout
                for line in out.split("\n"):
                    if line:
                        k, t = line.split()
                        key = (name, int(k))
                        best[key] = min(best.get(key, 1e30), float(t))
    orders = sorted({k for _, k in best})
    print(f"{column} forward, ns per transform (minimum of {rounds} rounds); in brackets the speed over 'kernel'")
    print("| order | " + " | ".join(name for name, _ in VARIANTS) + " |")
    print("|---" * (len(VARIANTS) + 1) + "|")
    for k in orders:
        base = best[("kernel", k)]
        cells = [f"{best[(name, k)]:.0f}" + ("" if name == "kernel" else f" ({base / best[(name, k)]:.2f})")
                 for name, _ in VARIANTS]
        print(f"| {k} | " + " | ".join(cells) + " |")
    return 0


if __name__ == "__main__":
    sys.exit(main())
