#!/usr/bin/env bash
# Builds and runs all tests under the presets given; release and asan without any.
set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/scripts/common.sh"

need_compiler
need python3=python3 /usr/include/gtest/gtest.h=libgtest-dev
[ $# -gt 0 ] || set -- release asan

failed=()
for preset in "$@"; do
    echo "building for $preset" >&2
    build "$preset" all -DTESSOR_TESTS=ON
    # Counts of an earlier build would be added up, with a complaint on standard error.
    find "$top/build/$preset" -name '*.gcda' -delete
    (cd "$top" && ctest --preset "$preset" -j "$(nproc)") || failed+=("$preset")
done
if [ ${#failed[@]} -gt 0 ]; then
    echo "failed: ${failed[*]}" >&2
    exit 1
fi
