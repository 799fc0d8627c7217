# shellcheck shell=bash disable=SC2154 # checkout, cache and root are those of common.sh
# Which of the cache's roots are used. Sourced by scripts/setup, after common.sh; the caller holds the cache's lock.

# Each checkout leaves word in the cache of where it is and which root it uses. Those that did not do so yet called
# their roots root-*, and nobody knows whether they are used: they stay.
note_use() {
    mkdir -p "$cache/checkouts"
    printf '%s\n' "$checkout" "$(basename "$root")" \
        >"$cache/checkouts/$(printf '%s' "$checkout" | sha256sum | cut -c1-12)"
}

# Prints the roots' names. A checkout that is gone uses none.
roots_in_use() {
    local note folder name
    for note in "$cache"/checkouts/*; do
        { read -r folder && read -r name; } <"$note"
        if [ -d "$folder/scripts" ]; then echo "$name"; else rm "$note"; fi
    done
}

# Removes every root that no checkout uses and in which nothing runs, and what a set-up that was killed left over.
remove_unused() {
    local used old
    used=$(roots_in_use)
    for old in "$cache"/debian-*; do
        if [ -e "$old" ] && ! grep -qxF "${old##*/}" <<<"$used"; then remove_unless_locked "$old"; fi
    done
    for old in "$cache"/setup.*; do
        if [ -e "$old" ] && [ "$old" != "${scratch-}" ]; then remove "$old"; fi
    done
}

# scripts/in-root holds a root's lock for as long as something runs in it.
remove_unless_locked() ( # root
    exec 8<"$1"
    flock --exclusive --nonblock 8 || exit 0
    say "removing a root that is no longer used: ${1##*/}"
    mv "$1" "$cache/setup.old-${1##*/}"
)
