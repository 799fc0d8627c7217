"""The page of the watch's address: everything that can be wrong with the address, its port and the network."""

import os
import subprocess
import sys
import unittest
from contextlib import contextmanager
from collections.abc import Iterator

import network
import pages
from eyes import Window
from failures import BAD_PORT, NO_CONNECTION, NO_NETWORK, NOT_FOUND, FailureTest
from journey import go_to_page

# Nobody listens here, and nobody has this address.
CLOSED_PORT = 43299
NOBODY = "192.168.1.55"

# A program that is too busy to take a connection: the network swallows what comes to its port.
DEAF_PORT = 43298
DEAF = f"""
import socket, sys
server = socket.create_server(("192.168.1.100", {DEAF_PORT}), backlog=0)
waiting = [socket.socket() for _ in range(4)]
for s in waiting:
    s.setblocking(False)
    s.connect_ex(("192.168.1.100", {DEAF_PORT}))
print("deaf", flush=True)
sys.stdin.read()
"""


@contextmanager
def deaf_port() -> Iterator[None]:
    """A port of the watch that answers nothing, neither yes nor no."""
    command = [*os.environ["KALVO_WATCH_HOST"].split(), sys.executable, "-c", DEAF]
    with subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True) as process:
        assert process.stdin and process.stdout
        assert process.stdout.readline() == "deaf\n"
        yield
        process.stdin.close()


class Address(FailureTest):
    def test_page_5(self) -> None:
        go_to_page(self.person, 5, self.watch)
        initial = "Enter watch IP address and port, then press next."
        self.person.type("55")
        self.person.write(pages.PORT, "1023")

        self.press_next()
        self.expect_failure("address-port-too-low", "Invalid Port Value", BAD_PORT, initial)
        self.rewrite(pages.PORT, "65536")
        self.press_next()
        self.expect_failure("address-port-too-high", "Invalid Port Value", BAD_PORT, initial)

        self.rewrite(pages.PORT, "43210")
        self.press_next()
        self.expect_failure("address-of-nobody", "Invalid IP address", NOT_FOUND, "Unreachable")
        self.expect_pings(NOBODY)

        self.person.click(self.last_field(), times=2)
        self.person.type("100")
        self.person.expect(pages.ADDRESS, "192.168.1.100")
        network.unplug_watch()
        self.press_next()
        self.expect_failure("address-watch-away", "Invalid IP address", NOT_FOUND, "Unreachable")
        self.expect_pings("192.168.1.100")
        network.plug_in_watch()

        caption = "Wireless Debugging Connection"
        closed = f"192.168.1.100:{CLOSED_PORT}"
        self.rewrite(pages.PORT, str(CLOSED_PORT))
        self.press_next()
        self.expect_failure("address-closed-port", caption, NO_CONNECTION, f"Could not connect to {closed}")
        self.expect_tries(closed)

        deaf = f"192.168.1.100:{DEAF_PORT}"
        self.rewrite(pages.PORT, str(DEAF_PORT))
        with deaf_port():
            self.press_next()
            self.expect_failure("address-silent-port", caption, NO_CONNECTION, f"Could not connect to {deaf}")
            self.expect_seen(*(f"Connecting to {deaf} ({attempt} of 7)" for attempt in range(1, 8)))

        # The watch has turned debugging off and on again, which gives it another port.
        self.watch.switch_off()
        self.rewrite(pages.PORT, "43210")
        self.press_next()
        self.expect_failure(
            "address-debugging-off", caption, NO_CONNECTION, "Could not connect to 192.168.1.100:43210"
        )
        self.restart_watch()
        self.press_next()
        self.person.wait_for_page(6)
        self.person.press("Escape")
        self.finish()

    def last_field(self) -> Window:
        return max(self.person.look().control(pages.ADDRESS).children, key=lambda window: window.x)

    def expect_pings(self, address: str) -> None:
        # When the network finds out that nobody is there, several fail at once.
        self.expect_some_seen(*(f"Pinging {address} ({attempt} of 6)" for attempt in range(1, 7)), "Unreachable")

    def expect_tries(self, address: str) -> None:
        # Each is there for a fifth of a second.
        self.expect_some_seen(*(f"Connecting to {address} ({attempt} of 7)" for attempt in range(1, 8)))


class Offline(FailureTest):
    # Where Windows says that the network cannot be reached, Wine has one code for all that goes wrong
    # with an echo. The first echo gets the one, the second the other.
    faults = "IcmpSendEcho2@1=fail:1231"

    def test_page_5(self) -> None:
        go_to_page(self.person, 5, self.watch)
        self.person.type("100")
        self.person.write(pages.PORT, "43210")
        network.unplug_computer()
        pinging = "Pinging 192.168.1.100 (1 of 6)"
        self.press_next()
        self.expect_failure("no-network", "No Network Connection", NO_NETWORK, "Unreachable")
        self.press_next()
        self.expect_failure(
            "echo-not-sent",
            "Win32 Error",
            "CWirelessDebuggingOnPage::OnNotify_PSN_WIZNEXT_Ping() > icmp.SendEchoRequest() failed with error "
            "0x00002B2A: \r\n",
            pinging,
        )
        network.plug_in_computer()

        self.press_next()
        self.person.wait_for_page(6)
        self.person.press("Escape")
        self.finish()


if __name__ == "__main__":
    unittest.main()
