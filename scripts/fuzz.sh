#!/usr/bin/env bash
# fuzz.sh TARGET [SECONDS [CORPUS]]: fuzzes one of the targets in tests/fuzz (scanner, programs, saving,
# source_form, directory_rule), for half an hour if nothing else is said. What was found is written
# to build/finds/TARGET, what covers new code to the corpus (build/corpus/TARGET).
set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

target=$1
seconds=${2:-1800}
corpus=$(realpath -m "${3:-$top/build/corpus/$target}")
finds=$top/build/finds/$target
place=$top/build/fuzz/tests/fuzz

need clang++=clang cmake=cmake ninja=ninja-build
build fuzz "fuzz_$target" -DTESSOR_TESTS=ON
build fuzz fuzz_dictionary

mkdir -p "$corpus" "$finds"
"$place/fuzz_dictionary" >"$place/dictionary"
cp "$top/tests/fuzz/cases/$target"/* "$corpus"
case $target in
programs | saving)
    for seed in "$top"/tests/transcripts/*/*.tessor; do
        cp "$seed" "$corpus/$(basename "$(dirname "$seed")")_$(basename "$seed")"
    done
    ;;
esac

# Tables that hold themselves, by way of the addresses in them, are never released.
export ASAN_OPTIONS=allocator_may_return_null=1:max_allocation_size_mb=64:detect_leaks=0
export UBSAN_OPTIONS=print_stacktrace=1
exec "$place/fuzz_$target" -dict="$place/dictionary" -max_total_time="$seconds" -timeout=20 \
    -rss_limit_mb=6000 -malloc_limit_mb=8000 -max_len=4096 -artifact_prefix="$finds/" "$corpus"
