#!/usr/bin/env python3
"""Makes the package that users download, its bill of materials and their hashes.

    make_package.py CHECKOUT BUILD OUTPUT [--program SIGNED]

OUTPUT is emptied first. BUILD is the folder of a finished build; its program is packed unless it
was signed since. The hashes then also name that of the program without its signature. The same
program gives the same bytes, whatever the folder, the hour, the time zone and the umask. Runs
inside the toolchain root, whose license texts it takes.
"""

import argparse
import hashlib
import json
import re
import shutil
import subprocess
import sys
import tempfile
import zipfile
from dataclasses import dataclass
from pathlib import Path

import bill
import parts

PROGRAM = "KalvoApkInstaller.exe"


@dataclass(frozen=True)
class Release:
    version: str
    date: str  # as YYYY-MM-DD

    @property
    def name(self) -> str:
        return f"KalvoApkInstaller-{self.version}-x64"


def find_release(checkout: Path, build: Path) -> Release:
    """The build's version, and the day that the list of changes gives for it."""
    cache = (build / "CMakeCache.txt").read_text(encoding="utf-8")
    built = re.search(r"^CMAKE_PROJECT_VERSION:STATIC=(.+)$", cache, re.MULTILINE)
    changes = (checkout / "CHANGELOG.md").read_text(encoding="utf-8")
    newest = re.search(r"^## (\S+) - (\d{4}-\d\d-\d\d)$", changes, re.MULTILINE)
    if not built:
        raise SystemExit("the build does not know its version")
    if not newest or newest[1] != built[1]:
        raise SystemExit(f'CHANGELOG.md does not begin with "## {built[1]} - " and a date')
    return Release(built[1], newest[2])


def make_guide(checkout: Path) -> bytes:
    with tempfile.TemporaryDirectory() as folder:
        guide = Path(folder) / "Guide.html"
        subprocess.run([sys.executable, "-B", "docs/make_guide.py", str(guide)], cwd=checkout, check=True)
        return guide.read_bytes()


def make_readme(checkout: Path, release: Release) -> bytes:
    text = (checkout / "package/README.txt").read_text(encoding="ascii")
    return text.replace("@VERSION@", release.version).replace("\n", "\r\n").encode("ascii")


def write_archive(file: Path, entries: dict[str, bytes], release: Release) -> None:
    year, month, day = map(int, release.date.split("-"))
    with zipfile.ZipFile(file, "w") as archive:
        for name, data in sorted(entries.items()):
            entry = zipfile.ZipInfo(name, (year, month, day, 0, 0, 0))
            entry.create_system = 3  # Unix, on whatever system this runs: the permissions below are its
            entry.external_attr = 0o100644 << 16
            entry.compress_type = zipfile.ZIP_DEFLATED
            archive.writestr(entry, data, compresslevel=9)


def sha256(file: Path) -> str:
    return hashlib.sha256(file.read_bytes()).hexdigest()


def write_hashes(file: Path, files: list[Path], remarks: list[str]) -> None:
    """In the form that sha256sum checks; it passes over the remarks."""
    lines = [f"{sha256(each)}  {each.name}\n" for each in files] + [f"# {remark}\n" for remark in remarks]
    file.write_text("".join(lines), encoding="ascii", newline="\n")


def main() -> None:
    arguments = argparse.ArgumentParser()
    arguments.add_argument("checkout", type=Path)
    arguments.add_argument("build", type=Path)
    arguments.add_argument("output", type=Path)
    arguments.add_argument("--program", type=Path, metavar="SIGNED")
    given = arguments.parse_args()
    checkout, build, output = given.checkout.resolve(), given.build.resolve(), given.output
    program = given.program or build / PROGRAM

    release = find_release(checkout, build)
    contents = parts.all_parts(build)
    entries = {
        PROGRAM: program.read_bytes(),
        "Guide.html": make_guide(checkout),
        "README.txt": make_readme(checkout, release),
        **{f"LICENSES/{part.key}.txt": part.text() for part in contents if part.text},
    }

    shutil.rmtree(output, ignore_errors=True)
    output.mkdir(parents=True)
    archive = output / f"{release.name}.zip"
    write_archive(archive, entries, release)
    paper = output / f"{release.name}.spdx.json"
    materials = bill.make_bill(archive, entries, release.version, release.date, contents, build)
    paper.write_text(json.dumps(materials, indent=2, ensure_ascii=False) + "\n", encoding="utf-8")
    # The program lies beside the archive too, for whoever compares it with a build of their own.
    shutil.copyfile(program, output / PROGRAM)
    remarks = [f"{PROGRAM} without its signature: {sha256(build / PROGRAM)}"] if given.program else []
    write_hashes(output / "SHA256SUMS", [archive, paper, output / PROGRAM], remarks)


if __name__ == "__main__":
    main()
