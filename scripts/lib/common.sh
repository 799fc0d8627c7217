# shellcheck shell=bash disable=SC2034 # some of the names are for the scripts that source this
# Shared by every script here: where things are, how they speak, how they stop, how they enter a Debian root.
# Sourced, never run. Expects bash with `set -euo pipefail`.

checkout=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
cache=${KALVO_CACHE:-${XDG_CACHE_HOME:-${HOME:-/root}/.cache}/kalvo-apk-installer}
third_party=$cache/third-party

# The toolchain root is named after what is in it: a changed recipe makes a new root, and checkouts of
# different age share the cache without disturbing each other.
# shellcheck source=recipe.sh
. "$checkout/scripts/lib/recipe.sh"
root=$cache/debian-$(root_contents | sha256sum | cut -c1-12)

# Where an ordinary user does not look for programs there are some that are needed.
PATH=$PATH:/usr/sbin:/sbin

say() { printf '== %s\n' "$*"; }

die() {
    printf '%s: %s\n' "$(basename "$0")" "$*" >&2
    exit 1
}

# Put before a command, these run it where it may mount, and nothing that it mounts or starts outlives it. Root
# may as it is; anybody else, or root where it was denied this, becomes root of a user namespace: their own files
# are root's there, and those of a Debian's other accounts belong to their subordinate ids.
in_user_namespace=
namespaces=(unshare --mount --pid --fork --kill-child)
if [ "$(id -u)" != 0 ] || ! unshare --mount true 2>/dev/null; then
    in_user_namespace=yes
    namespaces+=(--user --map-root-user --map-auto)
fi

# Removes folders with all that is in them, also what belongs to subordinate ids.
remove() {
    rm -rf --one-file-system "$@" 2>/dev/null || "${namespaces[@]}" rm -rf --one-file-system "$@"
}
