"""The person at the computer. Looks at the screen, presses keys, moves the mouse; has no other way in."""

import time
from collections.abc import Callable
from pathlib import Path

from driver import hands, pixels
from driver.eyes import Window, open_eyes
from driver.waiting import wait_for, wait_for_value
from driver.wizard import MessageBox, Sight, recognise

# From a start to the first window. Wine itself starts in this time, too.
START = 60.0

# The slowest step of the wizard: an address that stays silent, three times adb, each with its pauses.
LONGEST_STEP = 90.0

# A screen that has not changed for so long has come to rest.
REST = 0.15

# Tabs from any control of a page to any other, and then some.
MOST_TABS = 12


class Person:
    """Someone with the watch in one hand. Every wait ends, with what was waited for in the message."""

    def __init__(self) -> None:
        self.eyes = open_eyes()
        # The status lines that were seen, each with its page's number, in the order of their appearance.
        self.statuses: list[tuple[int, str]] = []

    # Looking

    def look(self) -> Sight:
        """One look at the wizard. A status line that is new is remembered."""
        sight = recognise(self.eyes.look())
        line = (sight.number, sight.status)
        if line[1] and (not self.statuses or self.statuses[-1] != line):
            self.statuses.append(line)
        return sight

    def wait_until(self, what: str, seen: Callable[[Sight], object], seconds: float = 10.0) -> Sight:
        """Looks until what is seen pleases."""
        last: Sight | None = None

        def look() -> Sight | None:
            nonlocal last
            last = self.look()
            return last if seen(last) else None

        try:
            found = wait_for(what, look, seconds)
        except AssertionError as error:
            raise type(error)(f"{error}; on the screen: {last}") from None
        assert found
        return found

    def wait_for_page(self, number: int, seconds: float = LONGEST_STEP) -> Sight:
        """Until the wizard shows that page and has come to rest. A message box in between is a failure."""
        self.wait_until(f"page {number}", lambda sight: sight.number == number or sight.boxes, seconds)
        sight = self.rest()
        assert sight.number == number and not sight.boxes, f"page {number} was to come, but there is {sight}"
        return sight

    def wait_for_first_page(self) -> None:
        self.wait_for_page(1, START)
        self.wait_for_keyboard()

    def wait_for_keyboard(self) -> None:
        """Until keys go to the wizard. A window is to be seen before it has the keyboard."""

        def has_keyboard(sight: Sight) -> bool:
            return sight.frame is not None and sight.view.foreground == sight.frame.handle and sight.focus_id != 0

        self.wait_until("the wizard to have the keyboard", has_keyboard)

    def wait_for_box(self, caption: str, seconds: float = LONGEST_STEP) -> MessageBox:
        """Until a message box is there; it must be the one with that caption."""
        self.wait_until(f'the box "{caption}"', lambda sight: sight.boxes, seconds)
        box = self.rest().boxes[0]
        assert box.caption == caption, f'the box "{caption}" was to come, but there is {box}'
        return box

    def wait_until_it_listens(self, seconds: float = LONGEST_STEP) -> None:
        """Until the wizard takes input again. It is deaf while it works, and may still work when its words are said."""

        def listens() -> bool:
            frame = self.look().frame
            buttons = [window for window in frame.descendants() if window.is_kind("Button")] if frame else []
            return bool(buttons) and self.eyes.read(buttons[0]) is not None

        wait_for("the wizard to listen", listens, seconds)

    def rest(self) -> Sight:
        """Until nothing changes any more on the screen."""
        last = self.look()
        since = time.monotonic()

        def at_rest() -> bool:
            nonlocal last, since
            now = self.look()
            if now.view != last.view:
                last, since = now, time.monotonic()
            return time.monotonic() - since >= REST

        wait_for("the screen to come to rest", at_rest)
        return last

    def holds(self, control_id: int) -> str | bool:
        """What a control of the page holds: an edit's text, a check box's state, an address as far as it is there."""
        control = self.look().control(control_id)
        if control.fields:
            return ".".join(str(self._read(field)) for field in control.fields)
        return self._read(control)

    def _read(self, control: Window) -> str | bool:
        """As soon as the program has the time to say it."""

        def answer() -> list[str | bool]:
            content = self.eyes.read(control)
            return [] if content is None else [content]

        return wait_for(f"control {control.id} to answer", answer)[0]

    def expect(self, control_id: int, content: str | bool) -> None:
        """Until a control of the page holds that."""
        wait_for_value(f"control {control_id}", lambda: self.holds(control_id), content)

    def wait_for_next(self, is_there: bool = True, button: str = "Next") -> Sight:
        """Until the Next button, or another one of the frame, has come; or gone."""
        what = f"the {button} button" if is_there else f"the {button} button to go"
        return self.wait_until(what, lambda sight: (button in sight.buttons) is is_there)

    def picture(self, file: Path, window: Window | None = None) -> None:
        """Keeps a picture of a window, by default the wizard's."""
        window = window or self.look().frame
        assert window, "there is no wizard to take a picture of"
        hands.move_mouse_away()
        self.rest()
        pixels.save_picture(window, file)

    # Acting

    def press(self, *keys: str) -> None:
        self._face_what_is_in_front()
        hands.press(*keys)

    def type(self, text: str) -> None:
        self._face_what_is_in_front()
        hands.type_text(text)

    def _face_what_is_in_front(self) -> None:
        """Each program of Windows moves the screen's own focus to its window by itself. When two do so at a time, the
        last need not be the one that Windows has in front, and keys that reach the other's window are lost."""
        view = self.eyes.look()
        front = view.window(view.foreground)
        if front and front.screen_window:
            hands.send_keys_to(front.screen_window)

    def click(self, window: Window, times: int = 1) -> None:
        hands.click(*window.middle, times)

    def click_control(self, control_id: int) -> None:
        self.click(self.look().control(control_id))

    def click_button(self, name: str) -> None:
        """Clicks a button of the wizard's frame, as soon as it is there."""
        button = self.wait_for_next(button=name).button(name)
        assert button
        self.click(button)

    def tab_to(self, control_id: int) -> None:
        """Presses Tab until the control has the keyboard."""
        for _ in range(MOST_TABS):
            before = self.look()
            if before.focus_id == control_id:
                return
            self.press("Tab")
            self.wait_until("the keyboard to move on", lambda sight: sight.view.focus != before.view.focus)
        raise AssertionError(f"{MOST_TABS} tabs did not lead to control {control_id}")

    def write(self, control_id: int, text: str) -> None:
        """Goes to an empty field with Tab, types, and looks whether the text is there."""
        self.tab_to(control_id)
        self.type(text)
        self.expect(control_id, text)

    def rewrite(self, control_id: int, text: str) -> None:
        """Replaces what an edit holds."""
        self.click_control(control_id)
        self.press("ctrl+a")
        self.type(text)
        self.expect(control_id, text)

    def tick_by_key(self, control_id: int) -> None:
        """Ticks a check box with the Space bar."""
        self.tab_to(control_id)
        self.press("space")
        self.expect(control_id, True)

    def enter_when_offered(self, button: str = "Next") -> None:
        """Waits for a button to appear, then presses Enter."""
        self.wait_for_next(button=button)
        self.press("Return")

    def dismiss(self, box: MessageBox) -> None:
        """Presses Enter on a message box, which comes to the front, and waits until it is gone."""
        handle = box.window.handle
        self.wait_until(f'the box "{box.caption}" in front', lambda sight: sight.view.foreground == handle)
        self.press("Return")
        self.wait_until(f'the box "{box.caption}" to go', lambda sight: not sight.view.window(handle))
