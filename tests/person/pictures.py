"""Pictures of windows, frame included, nothing around them."""

import subprocess
from pathlib import Path

from eyes import Window


def save_picture(window: Window, file: Path) -> None:
    """Writes what the screen shows where the window is."""
    save_screen(file, "-crop", f"{window.width}x{window.height}{window.x:+d}{window.y:+d}", "+repage")


def save_screen(file: Path, *changes: str) -> None:
    """Writes what the whole screen shows."""
    file.parent.mkdir(parents=True, exist_ok=True)
    subprocess.run(["import", "-silent", "-window", "root", *changes, file], check=True, timeout=20)
