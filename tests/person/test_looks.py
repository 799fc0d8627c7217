"""What is to be seen on each page and on the About box, measured, at the resolution of the home that it runs in."""

import unittest

from driver import hands, journey, looks, pages, pixels
from driver.outcomes import messages
from driver.waiting import wait_for_value
from driver.wizard import Sight
from wizardtest import WizardTest

# Where the keyboard is when a page is shown for the first time, where that is not the box to tick.
FIRST_FOCUS = {
    1: pages.NEXT, 5: pages.ADDRESS, 6: pages.PAIRING_CODE, 7: pages.APK_PATH, 8: pages.NEXT, 14: pages.FINISH
}
# The buttons: Back and Cancel until the page has what it needs, then Next as well; but on these pages.
WAITING, READY = {"Back", "Cancel"}, {"Back", "Next", "Cancel"}
ALWAYS = {1: {"Next", "Cancel"}, 7: READY, 8: READY, 14: {"Back", "Finish"}}

# The keyboard comes to the box that makes the fields needless after the fields, as the template has it.
FIELDS_OF_PAIRING = [pages.PAIRING_CODE, pages.PAIRING_PORT]

LONGEST_ADDRESS = "255.255.255.255"
LONGEST = f"{LONGEST_ADDRESS}:65535"
PINGING = (f"Pinging {LONGEST_ADDRESS} (6 of 6)", "Unreachable")
PACKAGE = "Solvane Watch Client 2.1 for Galaxy Watch.apk"
OUTCOMES = messages()

# Everything that the status lines come to say: what the page does, and the outcomes of adb.
STATUS_LINES = {
    5: [*PINGING, f"Connecting to {LONGEST} (7 of 7)", f"Could not connect to {LONGEST}"],
    6: [
        *PINGING, "Stopping ADB server", "Pairing attempt 3 of 3", f"Pairing to {LONGEST} | 888888",
        "Unknown ADB Exit Code", *(OUTCOMES[number] for number in (4, 5, 6, 501))
    ],
    7: [
        *PINGING, f"Connecting to {LONGEST} (attempt 3 of 3)", f"Connected to {LONGEST}",
        f"Unable to connect to {LONGEST}", f"Installing {PACKAGE} (attempt 3 of 3)", f"Installed {PACKAGE}",
        "Unable to stop adb service", "Unknown ADB Exit Code", *OUTCOMES.values()
    ],
}
# Reasons of the watch for which the line of page 7 has no room at any resolution, and one for which it has at some. A
# box, which has, tells them as well.
WORDY = [OUTCOMES[number] for number in (308, 309, 312, 314, 316, 339, 340)]
WORDY_AT_SOME = OUTCOMES[327]

ABOUT = f"{pages.TITLE}\n\nApplication to install APK on Android Device\n\nVersion: 1.4.0"


class Pages(WizardTest):
    def test_every_page(self) -> None:
        for page in pages.PAGES:
            with self.step(f"page {page.number}"):
                self.look_before(page)
            journey.fill_in(self.person, page, self.watch)
            with self.step(f"page {page.number}, filled in"):
                self.look_after(page)
            if page is pages.PAGES[-1]:
                break
            self.person.enter_when_offered()
            self.person.wait_for_page(page.number + 1)
        self.person.press("Return")
        self.finish()

    def look_before(self, page: pages.Page) -> None:
        """A page as it is shown for the first time."""
        focus = FIRST_FOCUS.get(page.number, page.box)
        self.person.wait_until(f"the keyboard to be at control {focus}", lambda sight: sight.focus_id == focus)
        sight = self.look(ALWAYS.get(page.number, WAITING))
        self.look_at_status_lines(sight)
        # The way around would end in the first field of the address.
        if page.number != 5:
            self.walk(sight)
        if page.number == 6:
            self.look_at_skipped_pairing()

    def look_after(self, page: pages.Page) -> None:
        """A page that has all that it needs."""
        sight = self.look(ALWAYS.get(page.number, READY))
        self.person.picture(pixels.kept(f"page-{page.number:02}"))
        self.walk(sight)

    def look(self, buttons: set[str]) -> Sight:
        """All that can be seen, once the frame has exactly these buttons."""
        self.person.wait_until(f"the buttons {buttons}", lambda sight: sight.buttons == buttons)
        hands.move_mouse_away()
        sight = self.person.rest()
        self.assertEqual(looks.look_at_page(self.person.eyes, sight), [])
        self.expect_default()
        return sight

    def expect_default(self) -> None:
        """One button has the outline of the one that Enter presses; none has where Enter does nothing."""

        def wrong() -> set[int]:
            sight = self.person.look()
            assert sight.frame
            return set(looks.default_buttons(sight.frame)) ^ self.pressed_by_enter(sight)

        wait_for_value("the buttons whose outline is wrong", wrong, set())

    def pressed_by_enter(self, sight: Sight) -> set[int]:
        focused = sight.view.focused()
        if focused and focused.is_kind("Button") and not focused.is_check_box:
            # The arrow draws itself, without that outline.
            return {focused.id} - {pages.BACK}
        return {pages.BUTTONS_BY_NAME[name] for name in ("Next", "Finish") if name in sight.buttons}

    def look_at_status_lines(self, sight: Sight) -> None:
        if not sight.page or not sight.page.status:
            return
        status = sight.control(sight.page.status)
        cut = [line for line in STATUS_LINES[sight.number] if looks.cut_text(self.person.eyes, status, "page", line)]
        wordy = WORDY if sight.number == 7 else []
        self.assertEqual([line for line in cut if line != WORDY_AT_SOME], wordy)

    def look_at_skipped_pairing(self) -> None:
        """Both fields are grey and out of the way of the keyboard."""
        self.person.click_control(pages.SKIP_PAIRING)
        sight = self.look(READY)
        self.person.picture(pixels.kept("page-06-skipped"))
        self.walk(sight)
        self.person.click_control(pages.SKIP_PAIRING)
        self.person.wait_for_next(False)

    def walk(self, sight: Sight) -> None:
        """Once around with the Tab key, through everything that can be reached, in the order of reading."""
        stops = looks.stops_in_reading_order(sight)
        if pages.PAIRING_CODE in stops:
            stops.remove(pages.SKIP_PAIRING)
            stops.insert(stops.index(FIELDS_OF_PAIRING[-1]) + 1, pages.SKIP_PAIRING)
        start = stops.index(sight.focus_id)
        for expected in (*stops[start + 1 :], *stops[: start + 1]):
            self.person.press("Tab")
            what = f"the keyboard at control {expected} of {stops}"
            self.person.wait_until(what, lambda sight: sight.focus_id == expected)
            self.expect_default()


class About(WizardTest):
    def test_a_click_the_space_bar_and_enter_show_it(self) -> None:
        for key in ("", "space", "Return"):
            with self.step(f"by {key or 'a click'}"):
                if key:
                    self.person.tab_to(pages.ABOUT)
                    self.person.press(key)
                else:
                    self.person.click_control(pages.ABOUT)
                self.expect_box()
        self.leave()

    def expect_box(self) -> None:
        """It has the text, nothing of it is cut, and the keyboard is where it was when it goes."""
        box = self.person.wait_for_box("About")
        hands.move_mouse_away()
        self.assertEqual(box.message, ABOUT)
        self.expect_sound(box, "about")
        self.person.dismiss(box)
        self.person.wait_until("the page", lambda sight: sight.focus_id == pages.ABOUT)
        self.assertEqual(self.person.rest().number, 1)


if __name__ == "__main__":
    unittest.main()
