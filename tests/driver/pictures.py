"""Pictures of windows, frame included, nothing around them."""

import os
import re
import subprocess
import sys
import unittest
from pathlib import Path

import places
from eyes import Window


def save_picture(window: Window, file: Path) -> None:
    """Writes what the screen shows where the window is."""
    save_screen(file, "-crop", f"{window.width}x{window.height}{window.x:+d}{window.y:+d}", "+repage")


def save_screen(file: Path, *changes: str) -> None:
    """Writes what the whole screen shows."""
    file.parent.mkdir(parents=True, exist_ok=True)
    subprocess.run(["import", "-silent", "-window", "root", *changes, file], check=True, timeout=20)


def of_failure(test: unittest.TestCase, step: str = "") -> Path:
    """Where the picture of a failed test goes, or that of the step that failed. Every resolution has its own."""
    words = [test.id().replace("__main__", Path(sys.argv[0]).stem), f"{os.environ['KALVO_DPI']}dpi"]
    words += [re.sub(r"\W+", "-", step).strip("-")] if step else []
    return places.build() / "failures" / f"{'-'.join(words)}.png"
