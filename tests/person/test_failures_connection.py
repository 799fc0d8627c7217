"""The install page before anything is installed: a watch that cannot be reached, is not trusted, or says nothing."""

import unittest

import network
from failures import (
    NO_NETWORK,
    NOT_FOUND,
    NOT_TRUSTED,
    PARSE_ERROR,
    TRY_AGAIN,
    UNEXPECTED_CONNECT,
    UNEXPECTED_INSTALL,
    FailureTest,
    attempts,
)
from journey import go_to_page
from program import stop_adb
from steps import step

CONNECTING = "Connecting to 192.168.1.100:43210 (attempt {} of 3)"
INSTALLING = "Installing Solvane Watch 2.1.apk (attempt {} of 3)"
UNABLE = "Unable to connect to 192.168.1.100:43210"


class Connection(FailureTest):
    # The first echo belongs to the address page; the second meets the missing network, see test_failures_address.py.
    faults = "IcmpSendEcho2@2=fail:1231"

    def test_page_7(self) -> None:
        go_to_page(self.person, 7, self.watch, pair=False)
        network.unplug_computer()
        self.press_next()
        self.expect_failure("install-no-network", "No Network Connection", NO_NETWORK, "Unreachable")
        network.plug_in_computer()
        network.unplug_watch()
        self.press_next()
        self.expect_failure("install-watch-away", "Invalid IP address", NOT_FOUND, "Unreachable")
        network.plug_in_watch()

        with step(self, "the skipped pairing was needed: adb says 'failed to connect to', which is not known"):
            self.press_next()
            self.expect_unexpected_connect("not-trusted")
            self.watch.wait_for_event("debugging: key not trusted")
            self.expect_not_seen(CONNECTING.format(2))
        with step(self, "the connection is taken and nothing is said"):
            self.restart_watch("--mute")
            self.press_next()
            self.expect_unexpected_connect("mute")

        with step(self, "debugging was turned off meanwhile"):
            self.watch.switch_off()
            self.press_next()
            self.expect_failure("debugging-off", "Install APK", NOT_TRUSTED, UNABLE)
            self.expect_seen(*attempts(CONNECTING), UNABLE)
            self.expect_adb(runs=True)

        # A server that knows the watch already would take up its connection.
        stop_adb()
        with step(self, "the watch asks for consent: the second attempt finds the connection of the first"):
            self.restart_watch("--unauthorized")
            self.press_next()
            message = UNEXPECTED_INSTALL.format(*PARSE_ERROR)
            behind = INSTALLING.format(1)
            self.expect_failure("not-authorized", "ADB Install", message, PARSE_ERROR[0], behind)
            self.expect_seen(CONNECTING.format(1), CONNECTING.format(2), INSTALLING.format(1))
            self.expect_adb(runs=False)

        with step(self, "the watch goes offline as soon as it is connected"):
            self.restart_watch("--trust-all", "--offline")
            self.press_next()
            status = "adb install - device offline"
            self.expect_failure("offline", "ADB Install", TRY_AGAIN, status)
            self.expect_seen(CONNECTING.format(1), *attempts(INSTALLING), status)
            self.expect_adb(runs=False)

        self.restart_watch("--trust-all")
        self.press_next()
        self.person.wait_for_page(8)
        self.assertTrue(self.watch.has_received(self.package))
        self.person.press("Escape")
        self.finish()

    def expect_unexpected_connect(self, picture: str) -> None:
        """Two boxes in a row, and adb's server goes on."""
        self.expect_box(
            f"{picture}-1", "ADB Install", UNEXPECTED_CONNECT.format(*PARSE_ERROR), CONNECTING.format(1)
        )
        self.expect_failure(f"{picture}-2", "Install APK", NOT_TRUSTED, PARSE_ERROR[0])
        self.expect_adb(runs=True)


if __name__ == "__main__":
    unittest.main()
