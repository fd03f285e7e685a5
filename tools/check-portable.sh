#!/usr/bin/env bash
# Compiles every column source, in all four columns, and the frame for a
# non-x86 target (aarch64), to show that the portable paths stand on their
# own: px has no intrinsics, and the other columns keep their behaviour with
# portable kernels there.  Needs g++-aarch64-linux-gnu; skips without it.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
cxx=${CROSS_CXX:-aarch64-linux-gnu-g++}
if ! command -v "$cxx" >/dev/null 2>&1; then
  echo "no $cxx: portability check skipped"
  exit 0
fi
out=$(mktemp -d)
trap 'rm -rf "$out"' EXIT
flags=(-std=c++17 -O1 -fno-exceptions -fno-rtti -ffp-contract=off -Wall -Werror -I"$root" -I"$root/include")
n=0
for src in "$root"/vector/*.cpp "$root"/fft/*.cpp "$root"/transforms/*.cpp "$root"/filters/*.cpp \
           "$root"/generators/*.cpp "$root"/vecmath/*.cpp "$root"/core/version.cpp; do
  [ -e "$src" ] || continue
  for col in px a6 w7 t7; do
    "$cxx" "${flags[@]}" -DOMN_COLUMN_$col=1 -c "$src" -o "$out/$n.o"
    n=$((n + 1))
  done
done
for src in "$root"/core/*.cpp; do
  [ "$(basename "$src")" = version.cpp ] && continue
  "$cxx" "${flags[@]}" -c "$src" -o "$out/$n.o"
  n=$((n + 1))
done
"$cxx" -I"$root/include" -c "$root/core/stubs.S" -o "$out/stubs.o"
echo "portable build for $($cxx -dumpmachine): $n objects and the stubs compiled"
