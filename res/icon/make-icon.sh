#!/bin/sh
# Makes the application icon, in all the sizes that Windows shows, from the drawings beside this script.
#
#   make-icon.sh OUT.ico
#
# Needs rsvg-convert and icotool. The same drawings give the same bytes.
set -eu

[ $# = 1 ] || { echo "usage: make-icon.sh OUT.ico" >&2; exit 2; }
out=$1
drawings=$(cd "$(dirname "$0")" && pwd)
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

render() { # drawing, size
    rsvg-convert --width "$2" --height "$2" --output "$scratch/$2.png" "$drawings/$1.svg"
}

# Up to 32 pixels as bitmaps, which every reader of icons knows; larger as PNG, which Windows reads too: as bitmaps
# these would be larger than the program.
set --
for size in 16 20 24; do
    render KalvoApkInstaller-small $size
    set -- "$@" "$scratch/$size.png"
done
render KalvoApkInstaller 32
set -- "$@" "$scratch/32.png"
for size in 40 48 64 96 128 256; do
    render KalvoApkInstaller $size
    set -- "$@" "--raw=$scratch/$size.png"
done

icotool --create --output "$scratch/icon.ico" "$@"
mv "$scratch/icon.ico" "$out"
