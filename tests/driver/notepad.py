"""Text on its way to the clipboard, through a program that everybody has."""

from collections.abc import Iterator
from contextlib import contextmanager

from driver import wine
from driver.eyes import View, Window
from driver.person import START, Person
from driver.waiting import wait_for_value

CLASS = "Notepad"


@contextmanager
def notepad(person: Person) -> Iterator[Window]:
    """A new Notepad, in front and with the keyboard; gives where its text goes. It does not outlive the block."""
    with wine.start("notepad") as process:
        try:
            person.wait_until("Notepad", lambda sight: sheet_in_front(sight.view), START)
            sheet = sheet_in_front(person.rest().view)
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


def sheet_in_front(view: View) -> Window | None:
    """Where text goes, once Notepad has the keyboard."""
    front, focused = view.window(view.foreground), view.focused()
    return focused if focused and front and front.is_kind(CLASS) and focused.is_kind("Edit") else None
