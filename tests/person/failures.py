"""What the tests of failures have in common: one wizard that fails again and again, as a person with bad luck has it.

Every failure ends in a box, which is read, kept as a picture and dismissed, and on the page where it began.
"""

from typing import Any

from driver import wine
from driver.evidence import crash_of_another
from driver.waiting import wait_for
from driver.watch import Watch
from wizardtest import WizardTest

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

# Status lines of the install page.
CONNECTING = "Connecting to 192.168.1.100:43210 (attempt {} of 3)"
INSTALLING = "Installing Solvane Watch 2.1.apk (attempt {} of 3)"


class FailureTest(WizardTest):
    """A wizard and a watch that can be made another one at any time, in the same place."""

    def restart_watch(self, *switches: str, port: int = 43210) -> None:
        """From now on the watch behaves as these switches say."""
        self.watch.switch_off()
        self.watch = self.enterContext(Watch(*self.watch_switches, *switches, port=port))

    def press_next(self) -> None:
        """From here on status lines count as new."""
        self._seen_before = len(self.person.statuses)
        self.person.enter_when_offered()

    def seen(self) -> list[str]:
        """The status lines since Next was pressed that were there long enough to be read."""
        return [line for _, line in self.person.statuses[self._seen_before :]]

    def expect_box(self, picture: str, caption: str, message: str, status: str, owned: bool = True) -> None:
        """The next box: its words, the status line behind it, its picture. Ends with the box dismissed."""
        box = self.person.wait_for_box(caption)
        self.assertEqual(box.message, message)
        sight = self.person.look()
        self.assertEqual(sight.status, status)
        assert sight.frame
        self.assertEqual(box.window.owner, sight.frame.handle if owned else 0)
        self.expect_sound(box, picture)
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

    def expect_next_to_fail(self, picture: str, caption: str, message: str, status: str, **how: Any) -> None:
        """The same, of the next step."""
        self.press_next()
        self.expect_failure(picture, caption, message, status, **how)

    def expect_next_to_lead_to(self, number: int) -> None:
        self.press_next()
        self.person.wait_for_page(number)

    def expect_installation(self) -> None:
        """The next step leads on, with the package on the watch byte for byte."""
        self.expect_next_to_lead_to(8)
        self.assertTrue(self.watch.has_received(self.package))

    def expect_unexpected_connect(self, picture: str, port: int) -> None:
        """Two boxes in a row, and adb's server goes on."""
        self.press_next()
        connecting = f"Connecting to {self.watch.address}:{port} (attempt 1 of 3)"
        self.expect_box(f"{picture}-1", "ADB Install", UNEXPECTED_CONNECT.format(*PARSE_ERROR), connecting)
        self.expect_failure(f"{picture}-2", "Install APK", NOT_TRUSTED, PARSE_ERROR[0])
        self.expect_adb(runs=True)

    def expect_seen(self, *lines: str) -> None:
        """These lines were seen, in this order."""
        self.assertEqual([line for line in self.seen() if line in lines], list(lines), self.seen())

    def expect_some_seen(self, *lines: str) -> None:
        """The same, of lines that may be gone too soon: more than one was seen, in this order, none twice."""
        seen = [line for line in self.seen() if line in lines]
        self.assertGreater(len(seen), 1)
        self.assertEqual(seen, [line for line in lines if line in seen])

    def expect_adb(self, runs: bool) -> None:
        """Whether the installer leaves adb's server running. A server that crashed, as adb's does now and then when a
        watch has refused the key, was not stopped by the installer."""
        asked = [line for line in self.program.transcript.splitlines() if line.startswith("> ")]
        self.assertEqual(asked[-1].endswith(" kill-server"), not runs, asked)
        if not (runs and crash_of_another(self.program.said)):
            wait_for(f"adb's server {'to run' if runs else 'to end'}", lambda: bool(wine.adb_processes()) == runs)


def attempts(line: str, most: int = 3) -> list[str]:
    """The lines of so many attempts."""
    return [line.format(attempt) for attempt in range(1, most + 1)]
