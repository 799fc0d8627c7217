#!/usr/bin/env bash
# Builds the program twice, in two new folders of different depth, and compares the bytes. The
# helpers that run during the build are taken from the build at hand.
#
#   reproducible.sh CHECKOUT HOST_BUILD
set -euo pipefail

checkout=$1
host_build=$2
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

build() { # folder
    mkdir -p "$1"
    tar -C "$checkout" --exclude=./build --exclude=./.git -c . | tar -C "$1" -x
    cd "$1"
    if ! { cmake --preset windows -DKALVO_TESTS=OFF -DKALVO_HOST_BUILD="$host_build" && cmake --build --preset windows; } \
        >"$scratch/log" 2>&1; then
        tail -n 20 "$scratch/log"
        exit 1
    fi
}

build "$scratch/one"
build "$scratch/two/deeper"
cmp "$scratch/one/build/KalvoApkInstaller.exe" "$scratch/two/deeper/build/KalvoApkInstaller.exe"
printf 'both have SHA-256 %s\n' "$(sha256sum <"$scratch/one/build/KalvoApkInstaller.exe" | cut -d' ' -f1)"
