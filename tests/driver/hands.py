"""Keyboard and mouse: input events as the devices themselves make them."""

import re
import subprocess
import time

# Between two keys. A practised typist's pace, with room for programs that look at every key.
KEY_DELAY_MS = 12

# Two clicks on one place are a double click to Windows unless so much time is between them.
SEPARATE_CLICKS = 0.6

_last_click = (0, 0, 0.0)


def _act(*arguments: str) -> None:
    subprocess.run(["xdotool", *arguments], check=True, timeout=30, stdout=subprocess.DEVNULL)


def send_keys_to(screen_window: int) -> None:
    """From now on the screen sends keys to that window of its own."""
    _act("windowfocus", str(screen_window))


def keys_go_to() -> tuple[int, str]:
    """The window of the screen that gets the keys, whatever Windows has in front: its number and its name."""
    command = ["xdotool", "getwindowfocus", "-f", "getwindowgeometry", "--shell", "%@", "getwindowname", "%@"]
    said = subprocess.run(command, capture_output=True, text=True, timeout=30)
    number = re.match(r"WINDOW=(\d+)\n", said.stdout)
    return (int(number[1]), said.stdout.splitlines()[-1]) if number else (0, said.stderr.strip())


def press(*keys: str) -> None:
    """Presses keys one after the other: "Return", "space", "shift+Tab"."""
    _act("key", "--delay", str(KEY_DELAY_MS), *keys)


def type_text(text: str) -> None:
    """Types a text on the keyboard."""
    _act("type", "--delay", str(KEY_DELAY_MS), "--", text)


def click(x: int, y: int, times: int = 1) -> None:
    """Moves the mouse there and clicks; twice is a double click."""
    global _last_click
    last_x, last_y, when = _last_click
    if (x, y) == (last_x, last_y):
        time.sleep(max(0.0, when + SEPARATE_CLICKS - time.monotonic()))
    _act("mousemove", str(x), str(y), "click", "--repeat", str(times), "--delay", "40", "1")
    _last_click = (x, y, time.monotonic())


def drag(x: int, y: int, to_x: int, to_y: int) -> None:
    """Takes hold of what is there and lets it go elsewhere."""
    _act("mousemove", str(x), str(y), "mousedown", "1", "mousemove", str(to_x), str(to_y), "mouseup", "1")


def move_mouse_away() -> None:
    """To the corner of the screen, so that nothing looks hovered over."""
    _act("mousemove", "1279", "1023")
