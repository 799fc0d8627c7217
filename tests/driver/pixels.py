"""The screen as it is painted: where it is dark, and pictures of it, of windows with their frame and nothing around."""

import os
import re
import subprocess
import sys
from collections.abc import Iterable
from dataclasses import dataclass
from pathlib import Path

from driver import places
from driver.eyes import Area, Window

# Darker is a letter, lighter its soft edge; measured with the same number in Measure.cpp.
DARK = 160

IMPORT = ("import", "-silent", "-window", "root")


@dataclass(frozen=True)
class Pixels:
    """The brightness of every pixel of the screen."""

    width: int
    height: int
    pixels: bytes

    @classmethod
    def now(cls) -> "Pixels":
        command = [*IMPORT, "-colorspace", "Gray", "-depth", "8", "pgm:-"]
        said = subprocess.run(command, check=True, capture_output=True, timeout=20).stdout
        kind, size, depth, pixels = said.split(b"\n", 3)
        width, height = map(int, size.split())
        assert (kind, depth, len(pixels)) == (b"P5", b"255", width * height), said[:32]
        return cls(width, height, pixels)

    @property
    def area(self) -> Area:
        return Area(0, 0, self.width, self.height)

    def ink(self, area: Area, covers: Iterable[Area] = ()) -> Area | None:
        """What is dark in an area, but for what is covered. None when nothing is."""
        covers = [cover for cover in covers if cover.meets(area)]
        dark = [
            (x, y)
            for y in range(area.top, area.bottom)
            for x in range(area.left, area.right)
            if self.pixels[y * self.width + x] < DARK
        ]
        dark = [(x, y) for x, y in dark if not any(cover.holds(Area(x, y, x + 1, y + 1)) for cover in covers)]
        if not dark:
            return None
        across, down = zip(*dark, strict=True)
        return Area(min(across), min(down), max(across) + 1, max(down) + 1)


def save_picture(window: Window, file: Path) -> None:
    """Writes what the screen shows where the window is."""
    save_screen(file, "-crop", f"{window.width}x{window.height}{window.x:+d}{window.y:+d}", "+repage")


def save_screen(file: Path, *changes: str) -> None:
    """Writes what the whole screen shows."""
    file.parent.mkdir(parents=True, exist_ok=True)
    subprocess.run([*IMPORT, *changes, file], check=True, timeout=20)


def kept(name: str) -> Path:
    """Where a picture goes that is there to be looked at. Every resolution has its own."""
    return places.build() / "run" / f"{os.environ['KALVO_DPI']}dpi" / f"{name}.png"


def of_failure(test: str, step: str = "") -> Path:
    """Where the picture of a failed test goes, or of its step. A test that several CTest tests run has one for each."""
    name = f"{os.environ.get('KALVO_TEST', Path(sys.argv[0]).stem)} {test.removeprefix('__main__.')} {step}"
    return places.build() / "failures" / (re.sub(r"[^\w.]+", "-", name).strip("-") + ".png")
