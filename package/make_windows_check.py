#!/usr/bin/env python3
"""Makes the archive with which anybody can check the program on their own Windows.

    make_windows_check.py CHECKOUT BUILD OUTPUT

OUTPUT is emptied first. The same build gives the same bytes, whatever folder, hour, time zone and umask.
Runs inside the toolchain root, whose license texts it takes.
"""

import json
import os
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

import debian
import licenses
import parts
from make_package import PROGRAM, find_release, sha256, write_archive

ARCHIVE = "KalvoWindowsCheck.zip"
CHECK = "check/Check.exe"
STRIP = "x86_64-w64-mingw32-strip"

# What unit tests start, and what the check plants beside the installer.
HELPERS = ("tests/kit/children/child.exe", "tests/process/planted.dll")


def unit_tests(build: Path) -> list[Path]:
    """Every program of unit tests, as CTest knows it."""
    command = ["ctest", "--test-dir", str(build), "--show-only=json-v1"]
    listed = subprocess.run(command, check=True, capture_output=True, text=True).stdout
    words = {Path(word) for test in json.loads(listed)["tests"] for word in test.get("command", [])}
    programs = sorted(word for word in words if word.name.startswith("unit-") and word.suffix == ".exe")
    if not programs:
        raise LookupError(f"{build} has no unit tests")
    return programs


def without_symbols(program: Path, folder: Path) -> bytes:
    """Nobody debugs them where they are sent to, and they are half as large."""
    stripped = folder / program.name
    # Else the hour would stand in the program's header.
    hour = {**os.environ, "SOURCE_DATE_EPOCH": "0"}
    subprocess.run([STRIP, "-o", str(stripped), str(program)], check=True, env=hour)
    return stripped.read_bytes()


def main() -> None:
    if len(sys.argv) != 4:
        sys.exit("usage: make_windows_check.py CHECKOUT BUILD OUTPUT")
    checkout, build, output = (Path(argument).resolve() for argument in sys.argv[1:])
    release = find_release(checkout, build)
    entries = {
        "Check.exe": (build / CHECK).read_bytes(),
        f"parts/{PROGRAM}": (build / PROGRAM).read_bytes(),
        **{f"LICENSES/{part.key}.txt": part.text() for part in parts.all_parts(build) if part.text},
        "LICENSES/googletest.txt": licenses.verbatim(debian.DOCUMENTS / "googletest/copyright"),
    }
    with tempfile.TemporaryDirectory() as folder:
        for program in (*unit_tests(build), *(build / helper for helper in HELPERS)):
            entries[f"parts/{program.name}"] = without_symbols(program, Path(folder))
    shutil.rmtree(output, ignore_errors=True)
    output.mkdir(parents=True)
    write_archive(output / ARCHIVE, entries, release)
    print(f"{sha256(output / ARCHIVE)}  {ARCHIVE}")


if __name__ == "__main__":
    main()
