# Shared by the scripts of the project; sourced, never run. Everything it says goes to the error
# stream, so that a piped console stays clean.

top=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

as_root() {
    if [ "$(id -u)" -eq 0 ]; then "$@"; else sudo "$@"; fi
}

# need COMMAND=PACKAGE...: installs the packages of commands, or of files, that aren't there.
need() {
    local pair missing=()
    for pair in "$@"; do
        [ -e "${pair%%=*}" ] || command -v "${pair%%=*}" >/dev/null || missing+=("${pair#*=}")
    done
    [ ${#missing[@]} -gt 0 ] || return 0
    echo "installing ${missing[*]}" >&2
    as_root env DEBIAN_FRONTEND=noninteractive apt-get -qq update </dev/null >&2
    as_root env DEBIAN_FRONTEND=noninteractive \
        apt-get -qq install -y --no-install-recommends "${missing[@]}" </dev/null >&2
}

need_compiler() {
    need g++=g++ cmake=cmake ninja=ninja-build
}

# build PRESET TARGET [CMAKE-OPTION...]: configures and builds; silent when all goes well, but for
# what is being built.
build() {
    local preset=$1 target=$2 log
    shift 2
    log=$(mktemp)
    if ! (cd "$top" && cmake --preset "$preset" "$@" && cmake --build --preset "$preset" \
        --target "$target") </dev/null >"$log" 2>&1; then
        cat "$log" >&2
        rm -f "$log"
        return 1
    fi
    rm -f "$log"
}
