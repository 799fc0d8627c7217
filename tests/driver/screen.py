"""The screen as it is painted: where it is dark."""

import subprocess
from collections.abc import Iterable
from dataclasses import dataclass

from eyes import Area

# Darker is a letter, lighter its soft edge; measured with the same number in Measure.cpp.
DARK = 160


@dataclass(frozen=True)
class Screen:
    """The brightness of every pixel."""

    width: int
    height: int
    pixels: bytes

    @classmethod
    def now(cls) -> "Screen":
        command = ["import", "-silent", "-window", "root", "-colorspace", "Gray", "-depth", "8", "pgm:-"]
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
