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
    """Writes what the screen shows where the window is, with what the window manager draws around it."""
    left, right, top, bottom = _frame_widths(window)
    x, y, width, height = _place(window)
    size = f"{left + width + right}x{top + height + bottom}"
    save_screen(file, "-crop", f"{size}{x - left:+d}{y - top:+d}", "+repage")


def save_screen(file: Path, *changes: str) -> None:
    """Writes what the whole screen shows."""
    file.parent.mkdir(parents=True, exist_ok=True)
    subprocess.run(["import", "-silent", "-window", "root", *changes, file], check=True, timeout=20)


def of_failure(test: unittest.TestCase, step: str = "") -> Path:
    """Where the picture of a failed test goes, or that of the step that failed. Every resolution has its own."""
    words = [test.id().replace("__main__", Path(sys.argv[0]).stem), f"{os.environ['KALVO_DPI']}dpi"]
    words += [re.sub(r"\W+", "-", step).strip("-")] if step else []
    return places.build() / "failures" / f"{'-'.join(words)}.png"


def _frame_widths(window: Window) -> tuple[int, ...]:
    """Left, right, top, bottom; all zero around a window that draws its own frame."""
    said = _ask("xprop", window, "_NET_FRAME_EXTENTS")
    widths = re.search(r"= (\d+), (\d+), (\d+), (\d+)$", said)
    return tuple(map(int, widths.groups())) if widths else (0, 0, 0, 0)


def _place(window: Window) -> list[int]:
    """The inside of its frame: upper left corner, width, height."""
    said = _ask("xwininfo", window)
    names = ("Absolute upper-left X", "Absolute upper-left Y", "Width", "Height")
    places = [re.search(rf"^ *{name}: *(-?\d+)$", said, re.MULTILINE) for name in names]
    return [int(place[1]) for place in places if place]


def _ask(program: str, window: Window, *arguments: str) -> str:
    command = [program, "-id", str(window.screen_window), *arguments]
    return subprocess.run(command, check=True, capture_output=True, text=True, timeout=10).stdout.rstrip()
