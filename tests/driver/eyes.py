"""What is on the screen, read without asking the programs that show it."""

import atexit
import functools
import json
from collections.abc import Iterator
from dataclasses import dataclass, field
from typing import Any, NamedTuple

from driver import places
from driver.answering import Answering

# A look at a screen takes far less on the busiest machine.
PATIENCE = 30.0

# Windows' own numbers.
BUTTON_KINDS = 0xF
DEFAULT_BUTTON = 0x1
CHECK_BOXES = (0x2, 0x3)
TAB_STOP = 0x10000
DIALOG_CLASS = "#32770"


class Area(NamedTuple):
    """A rectangle of the screen; right and bottom are the first pixels outside."""

    left: int
    top: int
    right: int
    bottom: int

    def holds(self, other: "Area") -> bool:
        return self & other == other

    def meets(self, other: "Area") -> bool:
        """Whether any pixel is in both."""
        return not (self & other).is_empty

    @property
    def is_empty(self) -> bool:
        return self.left >= self.right or self.top >= self.bottom

    def __and__(self, other: "Area") -> "Area":
        left, top = max(self.left, other.left), max(self.top, other.top)
        return Area(left, top, min(self.right, other.right), min(self.bottom, other.bottom))


@dataclass(frozen=True)
class Measure:
    """The room that a control has for its text, the text as the system measures it, and what is drawn of it uncut."""

    room: Area
    extent: Area
    ink: Area


@dataclass(frozen=True)
class Window:
    """A window or control as it was when looked at. Rectangles are pixels of the screen."""

    handle: int
    owner: int
    process: int
    screen_window: int
    class_name: str
    id: int
    text: str
    x: int
    y: int
    width: int
    height: int
    style: int
    visible: bool
    enabled: bool
    children: tuple["Window", ...] = field(repr=False)

    @classmethod
    def from_json(cls, answer: dict[str, Any]) -> "Window":
        own = {**answer, "class_name": answer["class"], "children": tuple(map(cls.from_json, answer["children"]))}
        del own["class"]
        return cls(**own)

    def descendants(self) -> Iterator["Window"]:
        """Everything inside it, in tab order."""
        for child in self.children:
            yield child
            yield from child.descendants()

    def find(self, control_id: int) -> "Window | None":
        """The control with that id, at any depth."""
        return next((window for window in self.descendants() if window.id == control_id), None)

    def is_kind(self, class_name: str) -> bool:
        """Windows compares the names of classes without regard to case."""
        return self.class_name.lower() == class_name.lower()

    @property
    def fields(self) -> list["Window"]:
        """Of an address those of its numbers, from the first to the last; none of anything else."""
        return sorted(self.children, key=lambda field: field.x) if self.is_kind("SysIPAddress32") else []

    @property
    def is_check_box(self) -> bool:
        return self.is_kind("Button") and self.style & BUTTON_KINDS in CHECK_BOXES

    @property
    def is_default_button(self) -> bool:
        return self.is_kind("Button") and self.style & BUTTON_KINDS == DEFAULT_BUTTON

    @property
    def area(self) -> Area:
        return Area(self.x, self.y, self.x + self.width, self.y + self.height)

    @property
    def middle(self) -> tuple[int, int]:
        return self.x + self.width // 2, self.y + self.height // 2


@dataclass(frozen=True)
class View:
    """One look at the screen: the visible top-level windows from top to bottom, and who has the keyboard."""

    foreground: int
    focus: int
    caret: int
    windows: tuple[Window, ...]

    def focused(self) -> Window | None:
        """The control that the keyboard goes to."""
        return self.window(self.focus)

    def window(self, handle: int) -> Window | None:
        """The window or control with that handle."""
        every = (window for top in self.windows for window in (top, *top.descendants()))
        return next((window for window in every if window.handle == handle), None)


class Eyes(Answering):
    """The reader of windows, see open_eyes."""

    def __init__(self) -> None:
        super().__init__(places.helper("driver/eyes"), patience=PATIENCE)

    def look(self) -> View:
        """The whole screen."""
        answer = self._answer("look")
        return View(**{**answer, "windows": tuple(map(Window.from_json, answer["windows"]))})

    def read(self, control: Window) -> str | bool | None:
        """An edit's text, a check box's state. None when the program is too busy to say."""
        return self._answer(f"read {control.handle}")["holds"]

    def measure(self, control: Window, font: str, text: str = "") -> Measure:
        """How a control shows its text, or another one in its place. An error for one that shows none.

        Windows keeps fonts to the program that made them, so the font is named: "page", "frame", "title" or "box".
        """
        answer = self._answer(f"measure {control.handle} {font} {text}".rstrip())
        return Measure(**{name: Area(*edges) for name, edges in answer.items()})

    def _answer(self, request: str) -> dict[str, Any]:
        answer = json.loads(self.ask(request))
        if "error" in answer:
            raise RuntimeError(f"{request!r}: {answer['error']}")
        return answer


@functools.cache
def open_eyes() -> Eyes:
    """Opened once and closed with the script.

    They keep Windows' desktop as well. A second after the last program on it has ended it goes; the installer that was
    started just then drew on a window that was no more, and X ended it.
    """
    eyes = Eyes().__enter__()
    atexit.register(eyes.__exit__)
    return eyes
