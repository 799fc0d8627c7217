#!/usr/bin/env bash
# Builds the program anew in another folder, and compares its bytes with those of the build at hand.
# The helpers that run during the build are taken from the build at hand.
#
#   reproducible.sh CHECKOUT PROGRAM HOST_BUILD
set -euo pipefail

checkout=$1
program=$2
host_build=$3
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

elsewhere=$scratch/of/another/depth
mkdir -p "$elsewhere"
tar -C "$checkout" --exclude=./build --exclude=./.git -c . | tar -C "$elsewhere" -x
cd "$elsewhere"
if ! { cmake --preset windows -DKALVO_TESTS=OFF -DKALVO_HOST_BUILD="$host_build" && cmake --build --preset windows; } \
    >"$scratch/log" 2>&1; then
    tail -n 20 "$scratch/log"
    exit 1
fi

cmp "$program" build/KalvoApkInstaller.exe
printf 'both have SHA-256 %s\n' "$(sha256sum <"$program" | cut -d' ' -f1)"
