"""What a careful eye finds in a window: words that are cut, things that cover each other or stand outside.

Every function returns its findings as sentences; none is good news.
"""

import itertools
from collections.abc import Iterable, Sequence

import pages
from eyes import DIALOG_CLASS, TAB_STOP, Area, Eyes, Window
from screen import Screen
from wizard import MessageBox, Sight

# What the fields can hold at most.
FULLEST = {pages.PORT: "65535", pages.PAIRING_PORT: "65535", pages.PAIRING_CODE: "888888"}
FULLEST_ADDRESS_FIELD = "255"

# Scrolls its text: only the height counts.
SCROLLED = {pages.APK_PATH: "C:"}

# The templates place these over the lower end of the body, whose text ends above them.
PLACED_OVER_BODY = {
    6: "Skip this step, the watch is already paired to this workstation.",
    7: "APK file to install on watch",
}

# An edge of a letter is sharper or softer depending on where it stands.
SOFT = 1


def name_of(window: Window) -> str:
    text = window.text.strip()
    shown = f'"{text if len(text) <= 60 else text[:57] + "..."}"' if text else f"control {window.id}"
    return f"{window.class_name} {shown}"


def _visible(windows: Iterable[Window]) -> list[Window]:
    return [window for window in windows if window.visible]


def page_window(sight: Sight) -> Window:
    """The dialog of the page that is shown."""
    assert sight.frame
    return next(window for window in _visible(sight.frame.children) if window.is_kind(DIALOG_CLASS))


def cut_text(eyes: Eyes, window: Window, font: str, text: str = "") -> list[str]:
    """A control that has no room for its text, or for another one in its place."""
    measure = eyes.measure(window, font, text)
    if not measure:
        return []
    room, extent, ink = measure.room, measure.extent, measure.ink
    what = f'{name_of(window)}, saying "{text}",' if text else name_of(window)
    findings = []
    if extent.right > room.right or extent.bottom > room.bottom:
        findings.append(f"{what} is cut: it takes {extent} and has {room}")
    elif ink.left < ink.right and not room.holds(ink):
        findings.append(f"{what} is cut: it is drawn in {ink} and has {room}")
    return findings


def _painted_text(eyes: Eyes, screen: Screen, window: Window, font: str, covers: Sequence[Window] = ()) -> list[str]:
    """A static whose words are not on the screen where they were measured."""
    measure = eyes.measure(window, font)
    if not measure or measure.ink.left == measure.ink.right:
        return []
    ink = screen.ink(window.area, [cover.area for cover in covers])
    if ink and all(abs(a - b) <= SOFT for a, b in zip(_edges(ink), _edges(measure.ink), strict=True)):
        return []
    return [f"{name_of(window)} is painted in {ink}, but measured in {measure.ink}"]


def _edges(area: Area) -> tuple[int, int, int, int]:
    return area.left, area.top, area.right, area.bottom


def _overlaps(windows: Sequence[Window], placed: Sequence[Window] = ()) -> list[str]:
    """Pairs of windows that share pixels; `placed` is a pair that is meant to."""
    return [
        f"{name_of(one)} and {name_of(other)} overlap: {one.area}, {other.area}"
        for one, other in itertools.combinations(windows, 2)
        if one.area.meets(other.area) and not (one in placed and other in placed)
    ]


def _outside(windows: Sequence[Window], area: Area, whose: str) -> list[str]:
    return [
        f"{name_of(window)} is outside of {whose}: {window.area}, {area}"
        for window in windows
        if not area.holds(window.area)
    ]


def look_at_page(eyes: Eyes, sight: Sight) -> list[str]:
    """All about the page that is shown, and about the frame around it."""
    assert sight.frame and sight.page
    screen = Screen.now()
    page = page_window(sight)
    controls = _visible(page.children)
    parts = _visible(sight.frame.children)
    body = sight.control(sight.page.body)
    covers = [control for control in controls if control.text == PLACED_OVER_BODY.get(sight.number)]
    findings = _outside([sight.frame], screen.area, "the screen")
    findings += _outside(parts, sight.frame.area, "the frame") + _outside(controls, page.area, "the page")
    findings += _overlaps(parts) + _overlaps(controls, [body, *covers])
    for control in controls:
        findings += _cut_control(eyes, control)
        if control.is_kind("Static"):
            findings += _painted_text(eyes, screen, control, "page", covers if control is body else ())
    for part in parts:
        font = "title" if part.is_kind("Static") else "frame"
        findings += cut_text(eyes, part, font)
        if part.is_kind("Static"):
            findings += _painted_text(eyes, screen, part, font)
    for cover in covers:
        findings += _words_under(eyes, body, cover)
    return findings


def _cut_control(eyes: Eyes, control: Window) -> list[str]:
    if control.is_kind("SysIPAddress32"):
        findings = _outside(control.children, control.area, name_of(control)) + _overlaps(control.children)
        for field in control.children:
            findings += cut_text(eyes, field, "page", FULLEST_ADDRESS_FIELD)
        return findings
    return cut_text(eyes, control, "page", FULLEST.get(control.id, SCROLLED.get(control.id, "")))


def _words_under(eyes: Eyes, body: Window, cover: Window) -> list[str]:
    """Words of the body text where another control stands."""
    measure = eyes.measure(body, "page")
    assert measure
    return [f"{name_of(cover)} covers words of the body"] if measure.ink.meets(cover.area) else []


def look_at_box(eyes: Eyes, box: MessageBox) -> list[str]:
    """All about a message box."""
    screen = Screen.now()
    parts = _visible(box.window.children)
    findings = _outside([box.window], screen.area, "the screen") + _outside(parts, box.window.area, "the box")
    findings += _overlaps(parts)
    for part in parts:
        findings += cut_text(eyes, part, "box")
        if part.is_kind("Static"):
            findings += _painted_text(eyes, screen, part, "box")
    return findings


def default_buttons(window: Window) -> list[int]:
    """The ids of the visible buttons with the outline of the one that Enter presses."""
    return [button.id for button in window.descendants() if button.visible and button.is_default_button]


def stops_in_reading_order(sight: Sight) -> list[int]:
    """The ids of what the Tab key is to reach, from the frame's arrow through the page to the frame's buttons."""
    assert sight.frame
    page = page_window(sight)
    on_page = _stops(page.children)
    in_frame = _stops(sight.frame.children)
    above = [stop for stop in in_frame if stop.y < page.y]
    below = [stop for stop in in_frame if stop.y >= page.y]
    return [stop.id for stop in (*_read(above), *_read(on_page), *_read(below))]


def _stops(windows: Iterable[Window]) -> list[Window]:
    return [w for w in windows if w.visible and w.enabled and w.style & TAB_STOP and not w.is_kind(DIALOG_CLASS)]


def _read(windows: Sequence[Window]) -> list[Window]:
    """Line by line: what stands at the height of another's middle is on its line."""
    lines: list[list[Window]] = []
    for window in sorted(windows, key=lambda w: w.middle[1]):
        if lines and window.y < lines[-1][0].middle[1]:
            lines[-1].append(window)
        else:
            lines.append([window])
    return [window for line in lines for window in sorted(line, key=lambda w: w.x)]
