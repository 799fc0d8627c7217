"""The install page before anything is installed: a watch that cannot be reached, is not trusted, or says nothing."""

import unittest

from driver import network, wine
from failures import (
    CONNECTING, INSTALLING, NO_NETWORK, NOT_FOUND, NOT_TRUSTED, PARSE_ERROR, TRY_AGAIN, UNEXPECTED_INSTALL, FailureTest,
    attempts
)

UNABLE = "Unable to connect to 192.168.1.100:43210"


class Connection(FailureTest):
    # The first echo belongs to the address page; the second meets the missing network, see test_failures_address.py.
    faults = "IcmpSendEcho2@2=fail:1231"

    def test_page_7(self) -> None:
        self.go_to_page(7, pair=False)
        network.unplug_computer()
        self.expect_next_to_fail("install-no-network", "No Network Connection", NO_NETWORK, "Unreachable")
        network.plug_in_computer()
        network.unplug_watch()
        self.expect_next_to_fail("install-watch-away", "Invalid IP address", NOT_FOUND, "Unreachable")
        network.plug_in_watch()

        with self.step("the skipped pairing was needed: adb says 'failed to connect to', which is not known"):
            self.expect_unexpected_connect("not-trusted", self.watch.port)
            self.watch.wait_for_event("debugging: key not trusted")
            self.assertNotIn(CONNECTING.format(2), self.seen())
        with self.step("the connection is taken and nothing is said"):
            self.restart_watch("--mute")
            self.expect_unexpected_connect("mute", self.watch.port)
        with self.step("debugging was turned off meanwhile"):
            self.watch.switch_off()
            self.expect_next_to_fail("debugging-off", "Install APK", NOT_TRUSTED, UNABLE)
            self.expect_seen(*attempts(CONNECTING), UNABLE)
            self.expect_adb(runs=True)

        # A server that knows the watch already would take up its connection.
        wine.run_adb("kill-server")
        with self.step("the watch asks for consent: the second attempt finds the connection of the first"):
            self.restart_watch("--unauthorized")
            message = UNEXPECTED_INSTALL.format(*PARSE_ERROR)
            behind = INSTALLING.format(1)
            self.expect_next_to_fail("not-authorized", "ADB Install", message, PARSE_ERROR[0], behind=behind)
            self.expect_seen(CONNECTING.format(1), CONNECTING.format(2), INSTALLING.format(1))
            self.expect_adb(runs=False)
        with self.step("the watch goes offline as soon as it is connected"):
            self.restart_watch("--trust-all", "--offline")
            status = "adb install - device offline"
            self.expect_next_to_fail("offline", "ADB Install", TRY_AGAIN, status)
            self.expect_seen(CONNECTING.format(1), *attempts(INSTALLING), status)
            self.expect_adb(runs=False)

        self.restart_watch("--trust-all")
        self.expect_installation()
        self.leave()


if __name__ == "__main__":
    unittest.main()
