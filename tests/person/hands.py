"""Keyboard and mouse: input events as the devices themselves make them."""

import subprocess

# Between two keys. A practised typist's pace, with room for programs that look at every key.
KEY_DELAY_MS = 12


def _act(*arguments: str) -> None:
    subprocess.run(["xdotool", *arguments], check=True, timeout=30, stdout=subprocess.DEVNULL)


def press(*keys: str) -> None:
    """Presses keys one after the other: "Return", "space", "shift+Tab"."""
    _act("key", "--delay", str(KEY_DELAY_MS), *keys)


def type_text(text: str) -> None:
    """Types a text on the keyboard."""
    _act("type", "--delay", str(KEY_DELAY_MS), "--", text)


def click(x: int, y: int, times: int = 1) -> None:
    """Moves the mouse there and clicks."""
    _act("mousemove", "--sync", str(x), str(y), "click", "--repeat", str(times), "--delay", "40", "1")


def move_mouse_away() -> None:
    """To the corner of the screen, so that nothing looks hovered over."""
    _act("mousemove", "1279", "1023")
