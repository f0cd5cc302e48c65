# shellcheck shell=bash
# Sourced by the scripts beside it: where the tree is, which files it has, how a step is announced.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd -P)
# shellcheck disable=SC2034 # for scripts that take paths
caller=$PWD
cd "$root"
export QT_QPA_PLATFORM=offscreen

say() { printf '%s\n' "$*"; }
fail() {
    printf '%s: %s\n' "$(basename "$0")" "$*" >&2
    exit 1
}
wrong_usage() {
    printf '%s: %s\n' "$(basename "$0")" "$*" >&2
    usage >&2
    exit 2
}

# git, whoever owns the checkout.
tree_git() { git -c safe.directory="$root" -C "$root" "$@"; }

# The files of the tree that match the patterns, NUL after each: tracked ones and new ones.
tree_files() {
    local file
    tree_git ls-files -z --cached --others --exclude-standard -- "$@" |
        while IFS= read -r -d '' file; do
            if [[ -e $file ]]; then
                printf '%s\0' "$file"
            fi
        done
}

# Builds targets of a preset (all of them when none is named) in build/<preset>.
build() {
    local preset=$1 log=build/configure-$1.log
    shift
    mkdir -p build
    if ! cmake --preset "$preset" >"$log" 2>&1; then
        cat "$log" >&2
        return 1
    fi
    cmake --build --preset "$preset" ${1:+--target "$@"}
}
