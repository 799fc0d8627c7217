"""A second start: shows nothing, brings the first to the front and ends."""

import unittest

import bystander
from driver import wine
from driver.notepad import sheet_in_front
from driver.person import START
from processtest import LOCK, OLD_WINDOWS, TITLE, ProcessTest

FRONT = f'SetForegroundWindow title="{TITLE}"'
HANDLE = "CloseHandle mutex"


class Second(ProcessTest):
    def expect_nothing(self, *events: str, faults: str = "") -> None:
        """A start that ends with these calls and puts nothing on the screen, not for a moment."""
        before = {window.handle for window in self.person.eyes.look().windows}
        with bystander.watch() as shown:
            start = self.start(faults)
            start.wait()
        self.assertEqual({handle: title for handle, title in shown.items() if handle not in before}, {})
        self.expect_end(start, 0, *events)

    def test_what_a_start_shows_is_seen_even_when_it_is_gone(self) -> None:
        """Otherwise the others could not fail."""
        with bystander.watch() as shown:
            self.expect_way_out("VerifyVersionInfoW=null:1150", 0, OLD_WINDOWS, *LOCK)
        self.assertEqual(len(shown), 1, shown)

    def test_while_the_wizard_is_open(self) -> None:
        first = self.start_wizard()
        self.expect_nothing(HANDLE, FRONT)
        # Also one whose own lock cannot be made.
        self.expect_nothing(FRONT, faults="CreateMutexW=null:5")
        self.cancel(first)

    def test_brings_the_wizard_to_the_front(self) -> None:
        first = self.start_wizard()
        wizard = self.person.look().frame
        assert wizard
        # Another program comes in front of all others.
        self.addCleanup(self.enterContext(wine.start("notepad")).kill)
        self.person.wait_until("Notepad", lambda sight: sheet_in_front(sight.view), START)
        self.expect_nothing(HANDLE, FRONT)
        self.person.wait_until("it in front", lambda sight: sight.view.foreground == wizard.handle)
        self.cancel(first)

    def test_while_the_first_shows_a_box_with_the_title(self) -> None:
        first = self.start("VerifyVersionInfoW=null:1150")
        self.wait_for_box(first)
        self.expect_nothing(HANDLE, FRONT)
        self.expect_boxes_and_end(first, 0, OLD_WINDOWS, *LOCK)

    def test_while_the_first_has_no_window(self) -> None:
        # After its wizard, about to stop adb's server.
        first = self.start("PropertySheetW=ret:0;CreateProcessW=hang")
        first.wait_for_fault("CreateProcessW")
        self.expect_nothing(HANDLE)
        first.kill()

    def test_while_the_first_shows_a_box_without_the_title(self) -> None:
        first = self.start("SHGetKnownFolderPath=fail:0x80070002")
        self.wait_for_box(first)
        self.expect_nothing(HANDLE)


if __name__ == "__main__":
    unittest.main()
