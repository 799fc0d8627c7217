"""What the other tests rest on: a crash of the installer fails a test, and a failure tells what was to be seen."""

import contextlib
import io
import unittest
from dataclasses import dataclass

import bystander
from driver import hands, pixels
from driver.notepad import notepad
from driver.program import Program
from driver.waiting import wait_for_value
from processtest import ProcessTest

CRASH_OF_ADB = "wine: Unhandled page fault on read access to 0000001F at address 7A19499C (thread 0190), starting ..."


@dataclass
class Said:
    """A run that printed this."""

    said: str
    transcript: str = ""


class Observed(ProcessTest):
    def test_a_crash_of_the_installer_fails_the_test(self) -> None:
        crash = "the installer crashed:\ncrash: exception 0xC0000005 at 0x10\ncrash: called"
        with self.assertRaisesRegex(AssertionError, crash):
            with Program() as start, self.observed(start):
                self.wait_for_wizard(start)
                bystander.crash(self.wizard_process())
                start.wait()
        self.assertEqual(start.exit_code, 0xC0000005)

    def test_a_crash_of_adb_is_noted(self) -> None:
        with contextlib.redirect_stdout(io.StringIO()) as printed, self.observed(Said(CRASH_OF_ADB)):
            pass
        self.assertIn(CRASH_OF_ADB, printed.getvalue())

    def test_a_failure_tells_what_was_to_be_seen_and_what_was_said(self) -> None:
        start = self.start_wizard()
        picture = pixels.of_failure(self.id())
        picture.unlink(missing_ok=True)
        with contextlib.redirect_stdout(io.StringIO()) as printed, self.assertRaises(ZeroDivisionError):
            with self.observed(Said("a word", "> adb kill-server"), lambda: ["listening"]):
                raise ZeroDivisionError
        # Nobody is to look for the cause of this one.
        picture.unlink()
        self.cancel(start)
        # What adb is asked and says is kept.
        self.assertRegex(start.transcript, r"> .*kill-server\s+cannot connect to daemon at tcp:5037")
        told = printed.getvalue()
        self.assertRegex(told, 'in front: NativeHWNDHost "KALVO Solvane Android Watch Installer"')
        self.assertRegex(told, 'with the keyboard: Button "&Next"')
        for words in ("a word", "> adb kill-server", "listening"):
            self.assertIn(words, told)

    def test_keys_go_to_what_windows_has_in_front_wherever_the_screen_sends_them(self) -> None:
        start = self.start_wizard()
        of_wizard, _ = hands.keys_go_to()
        with notepad(self.person) as sheet:
            hands.send_keys_to(of_wizard)
            wait_for_value("where keys go", lambda: hands.keys_go_to()[0], of_wizard)
            self.person.type("a")
            wait_for_value("the text in Notepad", lambda: self.person.eyes.read(sheet), "a")
            self.person.press("BackSpace")
            wait_for_value("the text in Notepad", lambda: self.person.eyes.read(sheet), "")
        self.cancel(start)


if __name__ == "__main__":
    unittest.main()
