# shellcheck shell=bash disable=SC2034 # the names are for the scripts that source this
# What the toolchain root is made of, and the third parties' files.

root_suite=trixie

root_packages=(
    # the compilers and what the lists files call; the cross compiler in the one thread model that is used
    g++-mingw-w64-x86-64-win32 g++ cmake ninja-build
    lld clang clang-format clang-tidy libclang-rt-19-dev shellcheck mypy python3-typeshed pyflakes3
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

# How mmdebstrap makes it, without what nobody reads there. Of the documents, the license texts stay: scripts/package takes them from here.
root_options=(
    --variant=minbase "--architectures=amd64,i386"
    --dpkgopt=path-exclude=/usr/share/doc/* --dpkgopt=path-include=/usr/share/doc/*/copyright
    --dpkgopt=path-exclude=/usr/share/man/* --dpkgopt=path-exclude=/usr/share/info/*
    --dpkgopt=path-exclude=/usr/share/locale/*
    # Nothing is lost when the machine stops in the middle: the root is then made anew.
    --dpkgopt=force-unsafe-io
)

# The dialogs ask for "MS Shell Dlg". Wine answers with Tahoma, whose letters it draws wider than it
# measures them, so that words lose their ends; Nimbus Sans fits the templates from 96 to 288 DPI.
windows_dialog_font="Nimbus Sans"

# Runs in the root when the packages are there.
finish_root() { # the dialogs' font
    mkdir /src /third-party
    touch /etc/hosts /etc/resolv.conf
    make_wine_small
    make_windows "$1"
    link_copies_to_wine /wine-prefix/drive_c
}

# Two thirds of Wine are debugging information. Wine maps a library only where its sections lie at whole pages of the
# file; others it reads into memory as a whole, in every process anew.
make_wine_small() {
    find /usr/lib/*/wine/*-windows -type f ! -name '*16' ! -name '*.vxd' -print0 |
        xargs -0 -P "$(nproc)" -n 1 x86_64-w64-mingw32-objcopy --strip-debug --file-alignment 4096
}

# The template that every test's own prefix starts from; the first start takes long.
make_windows() {
    export WINEPREFIX=/wine-prefix WINEDEBUG=-all WINEDLLOVERRIDES=mscoree,mshtml=
    local number screen
    mkfifo /tmp/display
    Xvfb -displayfd 3 -screen 0 1024x768x24 -nolisten tcp 3>/tmp/display &
    screen=$!
    read -r number </tmp/display
    export DISPLAY=:$number
    wineboot -i
    wine reg add 'HKLM\Software\Microsoft\Windows NT\CurrentVersion\FontSubstitutes' /v 'MS Shell Dlg' /d "$1" /f
    wineserver --kill --wait
    kill "$screen"
    wait "$screen" || true
    grep -q "\"MS Shell Dlg\"=\"$1\"" /wine-prefix/system.reg
}

# Nearly all of a new prefix are copies of Wine's own files. As links they cost a home next to nothing.
link_copies_to_wine() { # folder
    local own copy
    {
        find /usr/lib/*/wine/*-windows /usr/share/wine -type f -exec sha256sum {} +
        printf 'copies\n'
        find "$1" -type f -size +0 -exec sha256sum {} +
    } | awk '
        $0 == "copies" { copies = 1; next }
        { hash = substr($0, 1, 64); path = substr($0, 67) }
        !copies { own[hash] = path }
        copies && hash in own { print own[hash] "\t" path }' |
        while IFS=$'\t' read -r own copy; do ln -sf "$own" "$copy"; done
}

# All that makes one root another than the next, which names it. Comments are no part of it.
root_contents() {
    printf '%s\n' "$root_suite" "$windows_dialog_font" "${root_options[@]}"
    printf '%s\n' "${root_packages[@]}" | LC_ALL=C sort
    declare -f finish_root make_wine_small make_windows link_copies_to_wine
}

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
