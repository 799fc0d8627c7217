"""A package to install. What is in it does not matter to adb; that it arrives unchanged does."""

import random
from pathlib import Path

# Blanks, as downloads have them.
NAME = "Solvane Watch 2.1.apk"
SIZE = 4_000_037


def write_package(folder: Path, name: str = NAME, size: int = SIZE) -> Path:
    """The same bytes at every call, of no length that a block or buffer has."""
    file = folder / name
    file.write_bytes(random.Random(2_1).randbytes(size))
    return file
