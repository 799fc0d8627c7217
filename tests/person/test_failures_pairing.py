"""The pairing page: wrong codes and ports, and a network or watch that went after the page before."""

import unittest

import network
import pages
from failures import BAD_PORT, NO_NETWORK, NOT_FOUND, NOT_PAIRED, PAIRING_ERROR, PARSE_ERROR, FailureTest, attempts
from journey import go_to_page

CLOSED_PORT = "37098"
ATTEMPT = "Pairing attempt {} of 3"


class Pairing(FailureTest):
    # The first echo belongs to the page before; the second meets the missing network, see test_failures_address.py.
    faults = "IcmpSendEcho2@2=fail:1231"

    def test_page_6(self) -> None:
        go_to_page(self.person, 6, self.watch)
        self.person.write(pages.PAIRING_CODE, "000001")
        self.person.write(pages.PAIRING_PORT, "1023")
        self.press_next()
        self.expect_failure("pairing-port-too-low", "Invalid Port Value", BAD_PORT, "Stopping ADB server")
        self.rewrite(pages.PAIRING_PORT, "65536")
        self.press_next()
        self.expect_failure("pairing-port-too-high", "Invalid Port Value", BAD_PORT, "Stopping ADB server")

        self.rewrite(pages.PAIRING_PORT, str(self.watch.pairing_port))
        network.unplug_computer()
        self.press_next()
        self.expect_failure("pairing-no-network", "No Network Connection", NO_NETWORK, "Unreachable")
        network.plug_in_computer()
        network.unplug_watch()
        self.press_next()
        self.expect_failure("pairing-watch-away", "Invalid IP address", NOT_FOUND, "Unreachable")
        network.plug_in_watch()

        # adb says "Failed: Wrong password or connection was dropped.", which is none of the known lines.
        self.press_next()
        self.expect_failure(
            "pairing-wrong-code", "Pairing Error", PAIRING_ERROR, PARSE_ERROR[0], behind=ATTEMPT.format(1)
        )
        self.watch.wait_for_event("pairing: wrong code")
        self.expect_not_seen(ATTEMPT.format(2))

        self.rewrite(pages.PAIRING_CODE, self.watch.code)
        self.rewrite(pages.PAIRING_PORT, CLOSED_PORT)
        self.press_next()
        self.expect_failure("pairing-wrong-port", "Pair Connection", NOT_PAIRED, "adb pair - pair failed")
        self.expect_seen(*attempts(ATTEMPT), "adb pair - pair failed")

        # The two ports of the watch mistaken for each other.
        self.rewrite(pages.PAIRING_PORT, str(self.watch.port))
        self.press_next()
        self.expect_failure(
            "pairing-at-debugging-port", "Pairing Error", PAIRING_ERROR, PARSE_ERROR[0], behind=ATTEMPT.format(1)
        )
        self.assertFalse([event for event in self.watch.events if event.startswith("pairing: paired")])

        self.rewrite(pages.PAIRING_PORT, str(self.watch.pairing_port))
        self.press_next()
        self.person.wait_for_page(7)
        self.watch.wait_for_event("pairing: paired")
        self.person.press("Escape")
        self.finish()


if __name__ == "__main__":
    unittest.main()
