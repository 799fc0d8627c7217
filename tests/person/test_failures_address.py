"""The page of the watch's address: everything that can be wrong with the address, its port and the network."""

import subprocess
import sys
import unittest
from collections.abc import Iterator
from contextlib import contextmanager

from driver import network, pages
from failures import BAD_PORT, NO_CONNECTION, NO_NETWORK, NOT_FOUND, FailureTest, attempts

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

INITIAL = "Enter watch IP address and port, then press next."


@contextmanager
def deaf_port() -> Iterator[None]:
    """A port of the watch that answers nothing, neither yes nor no."""
    command = network.on_watch(sys.executable, "-c", DEAF)
    with subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True) as process:
        assert process.stdin and process.stdout
        assert process.stdout.readline() == "deaf\n"
        yield
        process.stdin.close()


class Address(FailureTest):
    def test_page_5(self) -> None:
        self.go_to_page(5)
        self.person.type("55")
        self.person.write(pages.PORT, "1023")
        self.expect_next_to_fail("address-port-too-low", "Invalid Port Value", BAD_PORT, INITIAL)
        self.person.rewrite(pages.PORT, "65536")
        self.expect_next_to_fail("address-port-too-high", "Invalid Port Value", BAD_PORT, INITIAL)

        self.person.rewrite(pages.PORT, "43210")
        self.expect_nobody("address-of-nobody", NOBODY)
        self.person.click(self.person.look().control(pages.ADDRESS).fields[-1], times=2)
        self.person.type("100")
        self.person.expect(pages.ADDRESS, "192.168.1.100")
        network.unplug_watch()
        self.expect_nobody("address-watch-away", "192.168.1.100")
        network.plug_in_watch()

        # Each try is there for a fifth of a second; at a port that stays silent, for two seconds.
        self.expect_some_seen(*self.expect_no_connection("address-closed-port", CLOSED_PORT))
        with deaf_port():
            self.expect_seen(*self.expect_no_connection("address-silent-port", DEAF_PORT))

        # The watch has turned debugging off and on again, which gives it another port.
        self.watch.switch_off()
        self.expect_no_connection("address-debugging-off", 43210)
        self.restart_watch()
        self.expect_next_to_lead_to(6)
        self.leave()

    def expect_nobody(self, picture: str, address: str) -> None:
        self.expect_next_to_fail(picture, "Invalid IP address", NOT_FOUND, "Unreachable")
        # When the network finds out that nobody is there, several fail at once.
        self.expect_some_seen(*attempts(f"Pinging {address} ({{}} of 6)", 6), "Unreachable")

    def expect_no_connection(self, picture: str, port: int) -> list[str]:
        """Gives the lines of the tries and the last one."""
        self.person.rewrite(pages.PORT, str(port))
        place = f"192.168.1.100:{port}"
        caption, last = "Wireless Debugging Connection", f"Could not connect to {place}"
        self.expect_next_to_fail(picture, caption, NO_CONNECTION, last)
        return [*attempts(f"Connecting to {place} ({{}} of 7)", 7), last]


class Offline(FailureTest):
    # Where Windows says that the network cannot be reached, Wine has one code for all that goes wrong
    # with an echo. The first echo gets the one, the second the other.
    faults = "IcmpSendEcho2@1=fail:1231"

    def test_page_5(self) -> None:
        self.go_to_page(5)
        self.person.type("100")
        self.person.write(pages.PORT, "43210")
        network.unplug_computer()
        self.expect_next_to_fail("no-network", "No Network Connection", NO_NETWORK, "Unreachable")
        call = "CWirelessDebuggingOnPage::OnNotify_PSN_WIZNEXT_Ping() > icmp.SendEchoRequest()"
        message = f"{call} failed with error 0x00002B2A: \r\n"
        self.expect_next_to_fail("echo-not-sent", "Win32 Error", message, "Pinging 192.168.1.100 (1 of 6)")
        network.plug_in_computer()

        self.expect_next_to_lead_to(6)
        self.leave()


if __name__ == "__main__":
    unittest.main()
