"""The installer's windows as a person sees them: which page, which buttons, which message box."""

from dataclasses import dataclass, field

from driver import pages
from driver.eyes import DIALOG_CLASS, View, Window


@dataclass(frozen=True)
class MessageBox:
    """A box that wants to be read and dismissed."""

    window: Window
    caption: str
    message: str
    buttons: tuple[str, ...]


@dataclass(frozen=True)
class Sight:
    """The wizard at one moment."""

    view: View = field(repr=False)
    frame: Window | None = field(repr=False)
    page: pages.Page | None
    boxes: tuple[MessageBox, ...]

    @property
    def number(self) -> int:
        """The page's number, 0 while there is none."""
        return self.page.number if self.page else 0

    @property
    def buttons(self) -> frozenset[str]:
        """The frame's buttons that are to be seen."""
        shown = (self.button(name) for name in pages.BUTTONS.values())
        return frozenset(pages.BUTTONS[button.id] for button in shown if button)

    def button(self, name: str) -> Window | None:
        """A button of the frame, when it is to be seen."""
        for window in self.frame.descendants() if self.frame else ():
            if window.visible and window.is_kind("Button") and pages.BUTTONS.get(window.id) == name:
                return window
        return None

    def control(self, control_id: int) -> Window:
        """A control of the page."""
        found = self.frame.find(control_id) if self.frame else None
        if not found:
            raise LookupError(f"no control {control_id} on page {self.number}")
        return found

    @property
    def page_window(self) -> Window:
        """The dialog of the page that is shown."""
        assert self.frame
        return next(window for window in self.frame.children if window.visible and window.is_kind(DIALOG_CLASS))

    @property
    def title(self) -> str:
        """What stands above the page, in the frame."""
        if not self.frame:
            return ""
        statics = (w for w in self.frame.children if w.visible and w.is_kind("Static"))
        return " ".join(static.text for static in statics if static.text and static.text != pages.TITLE)

    @property
    def status(self) -> str:
        """The status line; empty on a page without one, or whose windows are just going, one after the other."""
        line = self.frame.find(self.page.status) if self.frame and self.page and self.page.status else None
        return line.text if line else ""

    @property
    def focus_id(self) -> int:
        """The id of the control that has the keyboard, 0 where none has it. Of a field of an address, the address's."""
        for window in self.frame.descendants() if self.frame else ():
            if any(inner.handle == self.view.focus for inner in (window, *window.children)) and window.id:
                return window.id
        return 0


def recognise(view: View) -> Sight:
    """Finds the installer's windows among all that is on the screen."""
    frame = page = None
    for window in view.windows:
        shown = (w for w in window.descendants() if w.visible and w.is_kind("Static"))
        found = next(filter(None, (pages.page_with_body(w.id) for w in shown)), None)
        if window.text == pages.TITLE and found:
            frame, page = window, found
    boxes = tuple(_box(window) for window in view.windows if window is not frame and _is_message_box(window))
    return Sight(view, frame, page, boxes)


def _is_message_box(window: Window) -> bool:
    """A message box holds nothing but words, a picture and buttons."""
    kinds = {part.class_name.lower() for part in window.descendants()}
    return window.is_kind(DIALOG_CLASS) and kinds <= {"static", "button"}


def _box(window: Window) -> MessageBox:
    parts = [w for w in window.descendants() if w.visible]
    return MessageBox(
        window,
        window.text,
        "\n".join(w.text for w in parts if w.is_kind("Static") and w.text),
        tuple(w.text.replace("&", "") for w in parts if w.is_kind("Button")),
    )
