"""A package to look at, made for one test file from the build at hand."""

import hashlib
import json
import os
import subprocess
import sys
import tempfile
import unittest
import zipfile
from pathlib import Path

CHECKOUT = Path(os.environ["KALVO_CHECKOUT"])
BUILD = Path(os.environ["KALVO_BUILD"])
PROGRAM = BUILD / "KalvoApkInstaller.exe"


def sha256(data: bytes) -> str:
    return hashlib.sha256(data).hexdigest()


def run(*words: str | Path, well: bool = True, **surroundings) -> str:
    """What a command says that is to end well, or is not to."""
    done = subprocess.run(words, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, **surroundings)
    assert (done.returncode == 0) == well, f"{words} ended with {done.returncode}: {done.stdout}"
    return done.stdout


def make_package(output: Path, *more: str | Path, checkout: Path = CHECKOUT, **surroundings) -> str:
    maker = checkout / "package/make_package.py"
    return run(sys.executable, "-B", maker, checkout, BUILD, output, *more, **surroundings)


def entries_of(archive: Path) -> dict[str, bytes]:
    with zipfile.ZipFile(archive) as opened:
        return {name: opened.read(name) for name in opened.namelist()}


def hashes(entries: dict[str, bytes]) -> dict[str, str]:
    return {name: sha256(data) for name, data in entries.items()}


def bill_in(output: Path) -> dict:
    (paper,) = output.glob("*.spdx.json")
    return json.loads(paper.read_text(encoding="utf-8"))


class PackageTest(unittest.TestCase):
    """Holds a package in the class's folder."""

    folder: Path
    output: Path
    archive: Path
    entries: dict[str, bytes]
    bill: dict

    @classmethod
    def setUpClass(cls) -> None:
        cls.folder = Path(cls.enterClassContext(tempfile.TemporaryDirectory()))
        cls.output = cls.folder / "package"
        make_package(cls.output)
        (cls.archive,) = cls.output.glob("*.zip")
        cls.entries = entries_of(cls.archive)
        cls.bill = bill_in(cls.output)
