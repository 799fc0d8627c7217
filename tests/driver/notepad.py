"""Text on its way to the clipboard, through a program that everybody has."""

import subprocess
from collections.abc import Iterator
from contextlib import contextmanager

from eyes import View, Window
from person import Person
from waiting import wait_for_value

CLASS = "Notepad"


@contextmanager
def notepad(person: Person) -> Iterator[Window]:
    """A new Notepad, in front and with the keyboard; gives where its text goes. It does not outlive the block."""
    quiet = subprocess.DEVNULL
    with subprocess.Popen(["wine", "notepad"], stdin=quiet, stdout=quiet, stderr=quiet) as process:
        try:
            person.wait_until("Notepad", lambda sight: _sheet(sight.view), 20)
            sheet = _sheet(person.rest().view)
            assert sheet, "Notepad went away"
            yield sheet
            person.press("alt+F4")
            process.wait(20)
        finally:
            process.kill()


def copy_to_clipboard(person: Person, text: str) -> None:
    """Types the text into a new Notepad, copies it and closes Notepad. The window before comes back to the front."""
    before = person.look().view.foreground
    with notepad(person) as sheet:
        person.type(text)
        wait_for_value("the text in Notepad", lambda: person.eyes.read(sheet), text)
        person.press("ctrl+a", "ctrl+c", "BackSpace")
        # Emptied, it closes without a question.
        wait_for_value("the text in Notepad", lambda: person.eyes.read(sheet), "")
    person.wait_until("the window before in front again", lambda sight: sight.view.foreground == before)


def _sheet(view: View) -> Window | None:
    """Where text goes, once Notepad has the keyboard."""
    focused = view.focused()
    in_front = any(window.handle == view.foreground and window.is_kind(CLASS) for window in view.windows)
    return focused if focused and in_front and focused.is_kind("Edit") else None
