"""What the tests of failures have in common: one wizard that fails again and again, as a person with bad luck has it.

Every failure ends in a box, which is read, kept as a picture and dismissed, and on the page where it began.
"""

import os
import unittest.mock

import guide
import looks
import places
from evidence import crash_of_another
from installation import InstallationTest
from program import adb_is_running
from waiting import wait_for
from watch import Watch

RESTART = (
    "Steps to restart installation:\n1. Close this installer program.\n"
    "2. Power the watch off and then turn it on again.\n3. Run the installer program again.\n"
)
NOT_FOUND = (
    "Did not find a watch at the IP address you entered.\n\nPlease verify your workstation and watch are on the same "
    "network. Also verify you entered the correct watch IP address.\n\nIf you entered the correct IP address then \n"
) + RESTART
NO_NETWORK = (
    "It looks like your computer does not have a network connection.\n\nCheck your Wi-Fi settings or make certain your "
    "Ethernet cable is plugged in."
)
NO_CONNECTION = (
    "Could not connect to a watch at the IP address and port you entered.\nPlease verify your workstation and watch "
    "are on the same network.\nAlso verify you entered the correct IP address and port.\n\nIf the above does not work, "
) + RESTART
BAD_PORT = "Please enter a port value in the range of 1024 through 65535."
NOT_PAIRED = (
    "Could not connect to a watch at the IP address and port you entered.\n\nVerify you entered the correct IP address "
    "and pairing port.\n\nIf the IP address and pairing port are correct, then:\n1. Pressing the Cancel button on the "
    "watch for pairing\n2. Repeat the pairing process using the new values.\n\nIf the above does not work, "
) + RESTART
PAIRING_ERROR = "An unexpected error has occurred, please send a screenshot of this message to KALVO"
NOT_TRUSTED = (
    "Unable to connect to watch.  Please try again, if that does not work, then:\nSteps to revoke debugging "
    "authorizations:\n1. Open the watch's Settings.\n2. Scroll down and tap Developer options.\n3. Scroll down and tap "
    "Revoke debugging authorizations.\n4. Tap the blue button to confirm you are sure.\n"
)
UNEXPECTED_CONNECT = "An unexpected error has occurred when connecting to the device:\n\n{}\n\n{}"
UNEXPECTED_INSTALL = "An unexpected error has occurred when installing the APK:\n\n{}\n\n{}"
TRY_AGAIN = "Unable to install the APK, please press Next to try again"
NOT_STOPPED = "Unable to stop the adb service. Please report this error to KALVO\n"
PARSE_ERROR = ("Error parsing command output", "ADB_PARSE_ERROR (6)")


class FailureTest(InstallationTest):
    """A wizard and a watch that can be made another one at any time, in the same place."""

    # Calls of the program that fail besides what goes wrong in the home, as the stand-ins read them.
    faults = ""

    def setUp(self) -> None:
        self.enterContext(unittest.mock.patch.dict(os.environ, {"KALVO_FAULTS": self.faults}))
        super().setUp()
        self._seen_before = 0

    def restart_watch(self, *switches: str) -> None:
        """From now on the watch behaves as these switches say."""
        self.watch.switch_off()
        self.watch = self.enterContext(Watch(*self.watch_switches, *switches))

    def rewrite(self, control_id: int, text: str) -> None:
        """Replaces what an edit holds."""
        self.person.click_control(control_id)
        self.person.press("ctrl+a")
        self.person.type(text)
        self.person.expect(control_id, text)

    def press_next(self) -> None:
        """From here on status lines count as new."""
        self._seen_before = len(self.person.statuses)
        self.person.enter_when_offered()

    def expect_box(self, picture: str, caption: str, message: str, status: str, owned: bool = True) -> None:
        """The next box: its words, the status line behind it, its picture. Ends with the box dismissed."""
        box = self.person.wait_for_box(caption)
        self.assertEqual(box.message, message)
        self.assertEqual(box.buttons, ("OK",))
        sight = self.person.look()
        self.assertEqual(sight.status, status)
        assert sight.frame
        self.assertEqual(box.window.owner, sight.frame.handle if owned else 0)
        self.assertEqual(sight.view.foreground, box.window.handle)
        self.assertTrue(guide.explains(box), f"the guide does not explain {box}")
        self.assertEqual(looks.look_at_box(self.person.eyes, box), [])
        self.person.picture(places.build() / "run" / "boxes" / f"{picture}.png", box.window)
        self.person.dismiss(box)

    def expect_page(self, number: int, status: str) -> None:
        """All is said: the page is still there, can be left again, and its status line is this."""
        self.person.wait_until_it_listens()
        sight = self.person.wait_for_page(number)
        self.assertEqual(sight.status, status)
        self.assertEqual(sight.buttons, {"Back", "Next", "Cancel"})

    def expect_failure(
        self, picture: str, caption: str, message: str, status: str, behind: str | None = None, owned: bool = True
    ) -> None:
        """One box, and then the page with that status line. `behind` the box the line may be another one."""
        number = self.person.look().number
        self.expect_box(picture, caption, message, status if behind is None else behind, owned)
        self.expect_page(number, status)

    def expect_seen(self, *lines: str) -> None:
        """The status lines since Next was pressed that were there long enough to be read, in this order."""
        seen = [line for _, line in self.person.statuses[self._seen_before :]]
        self.assertEqual([line for line in seen if line in lines], list(lines), seen)

    def expect_some_seen(self, *lines: str) -> None:
        """The same, of lines that may be gone too soon: more than one was seen, in this order, none twice."""
        seen = [line for _, line in self.person.statuses[self._seen_before :] if line in lines]
        self.assertGreater(len(seen), 1)
        self.assertEqual(seen, [line for line in lines if line in seen])

    def expect_not_seen(self, line: str) -> None:
        self.assertNotIn(line, [seen for _, seen in self.person.statuses[self._seen_before :]])

    def expect_adb(self, runs: bool) -> None:
        """Whether the installer leaves adb's server running. A server that crashed, as adb's does now and then when a
        watch has refused the key, was not stopped by the installer."""
        asked = [line for line in self.program.transcript.splitlines() if line.startswith("> ")]
        self.assertEqual(asked[-1].endswith(" kill-server"), not runs, asked)
        if not (runs and crash_of_another(self.program.said)):
            wait_for(f"adb's server {'to run' if runs else 'to end'}", lambda: adb_is_running() == runs)


def attempts(line: str) -> list[str]:
    """The three lines of three attempts."""
    return [line.format(attempt) for attempt in (1, 2, 3)]
