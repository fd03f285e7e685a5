#!/usr/bin/env bash
# Installs the built library into a scratch prefix, then builds the example
# consumer against that copy twice: through find_package(omns) and through
# pkg-config.  Both programs must run and print the same line.
set -euo pipefail
build=$1 example=$2 work=$3
rm -rf "$work"
mkdir -p "$work"
prefix="$work/prefix"
cmake --install "$build" --prefix "$prefix" >/dev/null

cmake -S "$example" -B "$work/cmake-build" -DCMAKE_PREFIX_PATH="$prefix" >/dev/null
cmake --build "$work/cmake-build" >/dev/null
out_cmake=$(LD_LIBRARY_PATH="$prefix/lib" "$work/cmake-build/omns-consumer")

libdir=$(dirname "$(find "$prefix" -name omns.pc)")
export PKG_CONFIG_PATH="$libdir"
cc -o "$work/pc-consumer" "$example/main.c" $(pkg-config --cflags --libs omns)
out_pc=$(LD_LIBRARY_PATH="$(pkg-config --variable=libdir omns)" "$work/pc-consumer")

echo "cmake:      $out_cmake"
echo "pkg-config: $out_pc"
[ "$out_cmake" = "$out_pc" ]
case "$out_cmake" in
  "omns "*" column "*" ramp ok") ;;
  *) echo "unexpected output"; exit 1 ;;
esac
