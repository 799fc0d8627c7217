# shellcheck shell=bash disable=SC2034 # some of the names are for the scripts that source this
# Shared by every script here: where things are, how they speak, how they stop.
# Sourced, never run. Expects bash with `set -euo pipefail`.

checkout=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
recipe=$checkout/scripts/lib/recipe.sh
cache=${KALVO_CACHE:-${XDG_CACHE_HOME:-${HOME:-/root}/.cache}/kalvo-apk-installer}
third_party=$cache/third-party

# The toolchain root is named after its recipe: a changed recipe makes a new root, and
# checkouts of different age share the cache without disturbing each other.
root=$cache/root-$(sha256sum "$recipe" | cut -c1-12)

say() { printf '== %s\n' "$*"; }

die() {
    printf '%s: %s\n' "$(basename "$0")" "$*" >&2
    exit 1
}
