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


def make_package(output: Path, *more: str, checkout: Path = CHECKOUT, **surroundings) -> None:
    maker = checkout / "package/make_package.py"
    subprocess.run([sys.executable, "-B", maker, checkout, BUILD, output, *more], check=True, **surroundings)


class PackageTest(unittest.TestCase):
    """Holds a package in the class's folder."""

    folder: Path
    output: Path
    archive: Path
    bill: dict
    entries: dict[str, bytes]

    @classmethod
    def setUpClass(cls) -> None:
        cls.folder = Path(cls.enterClassContext(tempfile.TemporaryDirectory()))
        cls.output = cls.folder / "package"
        make_package(cls.output)
        (cls.archive,) = cls.output.glob("*.zip")
        (paper,) = cls.output.glob("*.spdx.json")
        cls.bill = json.loads(paper.read_text(encoding="utf-8"))
        with zipfile.ZipFile(cls.archive) as archive:
            cls.entries = {name: archive.read(name) for name in archive.namelist()}
