#!/usr/bin/env bash
# Builds and runs all benchmarks: the console beside CPython, programs beside CPython, Lua, gforth
# and Ghostscript, arrays beside plain loops and NumPy.
#   bench/run.sh [ROUNDS]
set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/../scripts/common.sh"

need_compiler
need /usr/bin/python3=python3 /usr/lib/python3/dist-packages/numpy=python3-numpy
need lua5.4=lua5.4 gforth=gforth gs=ghostscript
echo "building the benchmarks" >&2
build release all -DTESSOR_TESTS=OFF -DTESSOR_BENCH=ON

release=$top/build/release
/usr/bin/python3 "$top/bench/console.py" "$release/tessor"
/usr/bin/python3 "$top/bench/programs.py" "$release/tessor"
"$release/bench/bench_arrays" /usr/bin/python3 "$top/bench/numpy_side.py" "${1:-9}"
"$release/bench/bench_operators" /usr/bin/python3 "$top/bench/numpy_side.py" "${1:-7}"
"$release/bench/bench_streams" "${1:-7}"
