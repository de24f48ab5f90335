#!/usr/bin/env bash
# Starts the console, with the options given. Builds it first if a source is newer, and installs
# what the build needs if it isn't there.
set -euo pipefail
top=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
console=$top/build/release/tessor
built=$top/build/release/.built

newer_source() {
    find "$top/src" "$top/cmake" "$top/CMakeLists.txt" "$top/CMakePresets.json" \
        -newer "$built" -print -quit
}

if [ ! -x "$console" ] || [ ! -e "$built" ] || [ -n "$(newer_source)" ]; then
    . "$top/scripts/common.sh"
    need_compiler
    echo "building $console" >&2
    mkdir -p "${built%/*}"
    touch "$built.now"
    build release tessor -DTESSOR_TESTS=OFF
    mv "$built.now" "$built"
fi
exec "$console" "$@"
