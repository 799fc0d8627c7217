"""What a careful eye finds in a window: words that are cut, things that cover each other or stand outside.

Every function returns its findings as sentences; none is good news. A text that cannot be measured is an error.
"""

import contextlib
import itertools
from collections.abc import Iterable, Sequence

from driver import pages
from driver.eyes import DIALOG_CLASS, TAB_STOP, Area, Eyes, Measure, Window
from driver.pixels import Pixels
from driver.waiting import WaitedTooLong, wait_for
from driver.wizard import MessageBox, Sight

# What the fields can hold at most. The last one scrolls its text: only the height counts.
FULLEST = {pages.PORT: "65535", pages.PAIRING_PORT: "65535", pages.PAIRING_CODE: "888888", pages.APK_PATH: "C:"}
FULLEST_ADDRESS_FIELD = "255"

# The templates place these over the lower end of the body, whose text ends above them.
PLACED_OVER_BODY = {
    6: "Skip this step, the watch is already paired to this workstation.",
    7: "APK file to install on watch",
}

# No room in a window holds this: what is not cut when it says so was not measured.
ENDLESS = "W" * 400

# An edge of a letter is sharper or softer depending on where it stands.
SOFT = 1


def name_of(window: Window) -> str:
    text = window.text.strip()
    shown = f'"{text if len(text) <= 60 else text[:57] + "..."}"' if text else f"control {window.id}"
    return f"{window.class_name} {shown}"


def _visible(windows: Iterable[Window]) -> list[Window]:
    return [window for window in windows if window.visible]


def cut_text(eyes: Eyes, window: Window, font: str, text: str = "") -> list[str]:
    """A control that has no room for its text, or for another one in its place."""
    measure = _measure(eyes, window, font, text)
    room, extent, ink = measure.room, measure.extent, measure.ink
    what = f'{name_of(window)}, saying "{text}",' if text else name_of(window)
    if extent.right > room.right or extent.bottom > room.bottom:
        return [f"{what} is cut: it takes {extent} and has {room}"]
    return [] if ink.is_empty or room.holds(ink) else [f"{what} is cut: it is drawn in {ink} and has {room}"]


def _measure(eyes: Eyes, window: Window, font: str, text: str = "") -> Measure:
    """Never of nothing: words leave ink."""
    measure = eyes.measure(window, font, text)
    said = text or window.text
    assert not measure.ink.is_empty or not said.strip(), f'nothing is drawn when {name_of(window)} says "{said}"'
    return measure


def _cut_texts(eyes: Eyes, windows: Iterable[Window], font: str) -> list[str]:
    """All that have no room for what they say, or may come to say; and all that seem to have room without end."""
    findings = []
    for window, text in [pair for window in windows for pair in _texts(window)]:
        findings += cut_text(eyes, window, font, text)
        if not cut_text(eyes, window, font, ENDLESS):
            findings.append(f"{name_of(window)} has room for anything: it was not measured")
    return findings


def _texts(window: Window) -> list[tuple[Window, str]]:
    """The windows in which its texts stand, with the text that has to have room there; empty for its own."""
    if window.fields:
        return [(field, FULLEST_ADDRESS_FIELD) for field in window.fields]
    # The page inside the frame, and the arrow, which draws itself.
    if window.is_kind(DIALOG_CLASS) or window.id == pages.BACK:
        return []
    return [(window, FULLEST.get(window.id, ""))]


def _painted_texts(eyes: Eyes, screen: Pixels, windows: Iterable[tuple[Window, str, Sequence[Window]]]) -> list[str]:
    """Statics whose words are not on the screen where they were measured: each with its font and with what covers it.

    A program paints when it has nothing else to do, and no look at its windows tells whether it has: a word that is
    missing on the screen as it was may still come.
    """
    texts = [
        (window, measured, [cover.area for cover in covers])
        for window, font, covers in windows
        if not (measured := _measure(eyes, window, font).ink).is_empty
    ]
    findings: list[str] = []
    screens = itertools.chain((screen,), iter(Pixels.now, None))

    def all_painted() -> bool:
        now = next(screens)
        findings[:] = filter(None, (_painted_elsewhere(now, *text) for text in texts))
        return not findings

    with contextlib.suppress(WaitedTooLong):
        wait_for("the words to be painted", all_painted)
    return findings


def _painted_elsewhere(screen: Pixels, window: Window, measured: Area, covers: Sequence[Area]) -> str:
    ink = screen.ink(window.area, covers)
    if ink and all(abs(a - b) <= SOFT for a, b in zip(ink, measured, strict=True)):
        return ""
    return f"{name_of(window)} is painted in {ink}, but measured in {measured}"


def _overlaps(windows: Sequence[Window], placed: Sequence[Window] = ()) -> list[str]:
    """Pairs of windows that share pixels; `placed` is a pair that is meant to."""
    return [
        f"{name_of(one)} and {name_of(other)} overlap: {one.area}, {other.area}"
        for one, other in itertools.combinations(windows, 2)
        if one.area.meets(other.area) and not (one in placed and other in placed)
    ]


def _outside(windows: Sequence[Window], area: Area, whose: str) -> list[str]:
    outside = [window for window in windows if not area.holds(window.area)]
    return [f"{name_of(window)} is outside of {whose}: {window.area}, {area}" for window in outside]


def look_at_page(eyes: Eyes, sight: Sight) -> list[str]:
    """All about the page that is shown, and about the frame around it."""
    assert sight.frame and sight.page
    page, screen = sight.page_window, Pixels.now()
    controls = _visible(page.children)
    parts = _visible(sight.frame.children)
    body = sight.control(sight.page.body)
    assert body in controls and sight.title, "there is nothing to look at"
    covers = [control for control in controls if control.text == PLACED_OVER_BODY.get(sight.number)]
    findings = _outside([sight.frame], screen.area, "the screen")
    findings += _outside(parts, sight.frame.area, "the frame") + _outside(controls, page.area, "the page")
    findings += _overlaps(parts) + _overlaps(controls, [body, *covers])
    findings += _cut_texts(eyes, controls, "page")
    for control in controls:
        findings += _outside(control.fields, control.area, name_of(control)) + _overlaps(control.fields)
    titles = [part for part in parts if part.is_kind("Static")]
    findings += _cut_texts(eyes, titles, "title")
    findings += _cut_texts(eyes, [part for part in parts if part not in titles], "frame")
    painted = [(static, "page", covers if static is body else []) for static in controls if static.is_kind("Static")]
    findings += _painted_texts(eyes, screen, painted + [(title, "title", []) for title in titles])
    words = _measure(eyes, body, "page").ink
    return findings + [f"{name_of(cover)} covers words of the body" for cover in covers if words.meets(cover.area)]


def look_at_box(eyes: Eyes, box: MessageBox) -> list[str]:
    """All about a message box."""
    assert box.message and box.buttons, "there is nothing to look at"
    parts, screen = _visible(box.window.children), Pixels.now()
    findings = _outside([box.window], screen.area, "the screen") + _outside(parts, box.window.area, "the box")
    findings += _overlaps(parts) + _cut_texts(eyes, parts, "box")
    return findings + _painted_texts(eyes, screen, [(part, "box", ()) for part in parts if part.is_kind("Static")])


def default_buttons(window: Window) -> list[int]:
    """The ids of the visible buttons with the outline of the one that Enter presses."""
    return [button.id for button in window.descendants() if button.visible and button.is_default_button]


def stops_in_reading_order(sight: Sight) -> list[int]:
    """The ids of what the Tab key is to reach, from the frame's arrow through the page to the frame's buttons."""
    assert sight.frame
    page, in_frame = sight.page_window, _stops(sight.frame.children)
    above = [stop for stop in in_frame if stop.y < page.y]
    below = [stop for stop in in_frame if stop.y >= page.y]
    return [stop.id for stop in (*_read(above), *_read(_stops(page.children)), *_read(below))]


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
