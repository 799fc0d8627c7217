"""The pairing page: wrong codes and ports, and a network or watch that went after the page before."""

import unittest

from driver import network, pages
from failures import BAD_PORT, NO_NETWORK, NOT_FOUND, NOT_PAIRED, PAIRING_ERROR, PARSE_ERROR, FailureTest, attempts

CLOSED_PORT = 37098
ATTEMPT = "Pairing attempt {} of 3"


class Pairing(FailureTest):
    # The first echo belongs to the page before; the second meets the missing network, see test_failures_address.py.
    faults = "IcmpSendEcho2@2=fail:1231"

    def test_page_6(self) -> None:
        self.go_to_page(6)
        self.person.write(pages.PAIRING_CODE, "000001")
        self.person.write(pages.PAIRING_PORT, "1023")
        self.expect_next_to_fail("pairing-port-too-low", "Invalid Port Value", BAD_PORT, "Stopping ADB server")
        self.rewrite_port(65536)
        self.expect_next_to_fail("pairing-port-too-high", "Invalid Port Value", BAD_PORT, "Stopping ADB server")

        self.rewrite_port(self.watch.pairing_port)
        network.unplug_computer()
        self.expect_next_to_fail("pairing-no-network", "No Network Connection", NO_NETWORK, "Unreachable")
        network.plug_in_computer()
        network.unplug_watch()
        self.expect_next_to_fail("pairing-watch-away", "Invalid IP address", NOT_FOUND, "Unreachable")
        network.plug_in_watch()

        # adb says "Failed: Wrong password or connection was dropped.", which is none of the known lines.
        self.expect_pairing_error("pairing-wrong-code")
        self.watch.wait_for_event("pairing: wrong code")
        self.assertNotIn(ATTEMPT.format(2), self.seen())

        self.person.rewrite(pages.PAIRING_CODE, self.watch.code)
        self.rewrite_port(CLOSED_PORT)
        self.expect_next_to_fail("pairing-wrong-port", "Pair Connection", NOT_PAIRED, "adb pair - pair failed")
        self.expect_seen(*attempts(ATTEMPT), "adb pair - pair failed")

        # The two ports of the watch mistaken for each other.
        self.rewrite_port(self.watch.port)
        self.expect_pairing_error("pairing-at-debugging-port")
        self.assertFalse([event for event in self.watch.events if event.startswith("pairing: paired")])

        self.rewrite_port(self.watch.pairing_port)
        self.expect_next_to_lead_to(7)
        self.watch.wait_for_event("pairing: paired")
        self.leave()

    def rewrite_port(self, port: int) -> None:
        self.person.rewrite(pages.PAIRING_PORT, str(port))

    def expect_pairing_error(self, picture: str) -> None:
        self.expect_next_to_fail(picture, "Pairing Error", PAIRING_ERROR, PARSE_ERROR[0], behind=ATTEMPT.format(1))


if __name__ == "__main__":
    unittest.main()
