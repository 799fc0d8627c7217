# shellcheck shell=bash disable=SC2034 # the names are for the script that sources this
# What the toolchain root is made of. Its hash names the root, so that every change here
# takes effect with the next scripts/setup. Sourced by scripts/setup.

root_suite=trixie

root_packages=(
    # the compilers and what the lists files call
    g++-mingw-w64-x86-64 g++ cmake ninja-build
    lld clang clang-format clang-tidy libclang-rt-19-dev shellcheck
    # libraries: the watch's TLS and SPAKE2, expressions, the archive's encoder, the tests' framework
    android-libboringssl-dev libctre-dev libzopfli-dev googletest
    # Windows to run on, and a display to look at
    wine wine64 wine32:i386 xvfb xdotool imagemagick
    fonts-wine fonts-liberation fonts-urw-base35
    # the icon
    librsvg2-bin icoutils
    # the download: the guide from its Markdown, the signature
    python3-markdown osslsigncode
    # the home network, the person and the measurements
    iproute2 nftables iputils-ping python3 procps zip unzip gcovr
)

# The dialogs ask for "MS Shell Dlg". Wine answers with Tahoma, whose letters it draws wider than it
# measures them, so that words lose their ends; Nimbus Sans fits the templates from 96 to 288 DPI.
windows_dialog_font="Nimbus Sans"

# name, SHA-256
miniz_source_package=woof-doom
miniz_files=(
    "miniz.c 0fcdc9888cb3a29ca8f176bac087e5fe6c7258a6ab06b1c271c1e109a11d3740"
    "miniz.h 295d1a0041aea09609598c0f1f35c1977ca05ad662acbadcfdaac44c140af37b"
)

adb_npm_package=android-tools-bin@2.0.1
adb_npm_folder=package/dist/win32/x86
adb_files=(
    "adb.exe bce1f6f6f6532266837b66d719bfbd177d406d6d7d8d5adfd5e7c59fcde651a5"
    "AdbWinApi.dll d60103a5e99bc9888f786ee916f5d6e45493c3247972cb053833803de7e95cf9"
    "AdbWinUsbApi.dll 25207c506d29c4e8dceb61b4bd50e8669ba26012988a43fbf26a890b1e60fc97"
)
