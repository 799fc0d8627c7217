"""Somebody who gets stuck, looks the trouble up in the guide, does what it says, and gets out. Makes the guide's pictures.

    stuck.py FOLDER    keeps the pictures in the folder: page-NN-empty.png, page-05-vpn.png and box-NAME.png

Three symptoms of the guide's index are played through: other numbers of the address on page 5 than on the watch, the
port of pairing typed on page 5, a port that has changed. Ends with 0 only when the guide's advice led out of each.
"""

import sys
import tempfile
from pathlib import Path

import guide
import network
import pages
from eyes import Eyes
from journey import go_to_page
from package import write_package
from person import Person
from program import Program, own_folder, windows_path
from watch import Watch

# Wine itself starts in this time, too.
START = 60.0

TRUST = "--pairings"
NEW_PORT = 41877


class Stuck:
    """A person at one wizard who keeps pictures of what stops them."""

    def __init__(self, person: Person, folder: Path) -> None:
        self.person = person
        self._folder = folder

    def picture(self, name: str) -> None:
        self.person.picture(self._folder / f"{name}.png")

    def next(self, page: int | None = None) -> None:
        self.person.wait_until_it_listens()
        self.person.click_button("Next")
        if page:
            self.person.wait_for_page(page)

    def back_to(self, page: int) -> None:
        self.person.wait_until_it_listens()
        while (number := self.person.look().number) != page:
            self.person.click_button("Back")
            self.person.wait_for_page(number - 1)

    def rewrite(self, control_id: int, text: str) -> None:
        self.person.click_control(control_id)
        self.person.press("ctrl+a")
        self.person.type(text)
        self.person.expect(control_id, text)

    def rewrite_address(self, address: str) -> None:
        """Number by number: a double click chooses what stands there."""
        fields = sorted(self.person.look().control(pages.ADDRESS).children, key=lambda window: window.x)
        for one, part in zip(fields, address.split("."), strict=True):
            self.person.click(one, times=2)
            self.person.type(part)
        self.person.expect(pages.ADDRESS, address)

    def box(self, name: str, caption: str) -> None:
        """A box that the guide explains: its picture is kept, and OK pressed."""
        box = self.person.wait_for_box(caption)
        assert guide.explains(box), f"the guide does not explain {box}"
        self.person.wait_until(f"{caption} in front", lambda now: now.view.foreground == box.window.handle)
        self.person.picture(self._folder / f"box-{name}.png", box.window)
        self.person.dismiss(box)
        print(f"   stuck: {box.message.splitlines()[0]}", flush=True)


def other_numbers(folder: Path) -> None:
    print("the first three numbers on page 5 are others than on the watch", flush=True)
    network.add_vpn()
    with Watch() as watch, Eyes() as eyes, Program(own_folder()) as program:
        stuck = Stuck(Person(eyes), folder)
        stuck.person.wait_for_page(1, START)
        go_to_page(stuck.person, 5, watch)
        stuck.person.expect(pages.ADDRESS, "10.8.0.")
        stuck.picture("page-05-vpn")
        stuck.rewrite_address(watch.address)
        stuck.rewrite(pages.PORT, str(watch.port))
        stuck.next(page=6)
        print("   out: typed over, and page 6 came")
        stuck.person.press("Escape")
        assert program.wait() == 0
    network.plug_in_computer()


def wrong_ports(folder: Path) -> None:
    with tempfile.TemporaryDirectory() as memory, Eyes() as eyes, Program(own_folder()) as program:
        stuck = Stuck(Person(eyes), folder)
        trust = [TRUST, str(Path(memory) / "pairings")]
        refusal = "Failure [INSTALL_FAILED_UPDATE_INCOMPATIBLE: signatures do not match]"
        with Watch(*trust, "--reply", refusal) as watch:
            stuck.person.wait_for_page(1, START)
            go_to_page(stuck.person, 5, watch)
            find_the_watch(stuck, watch)
            pair(stuck, watch)
            port_of_pairing_on_page_5(stuck, watch)
            stuck.next()
            stuck.box("already-installed", "ADB Install")
        port_has_changed(stuck, trust)
        stuck.person.press("Escape")
        assert program.wait() == 0


def find_the_watch(stuck: Stuck, watch: Watch) -> None:
    print("page 5", flush=True)
    stuck.picture("page-05-empty")
    stuck.person.type("55")
    stuck.person.write(pages.PORT, str(watch.port + 1))
    stuck.next()
    stuck.box("not-found", "Invalid IP address")
    stuck.rewrite_address(watch.address)
    stuck.next()
    stuck.box("no-connection", "Wireless Debugging Connection")


def pair(stuck: Stuck, watch: Watch) -> None:
    """With the port of pairing on page 5, which passes it."""
    stuck.rewrite(pages.PORT, str(watch.pairing_port))
    stuck.next(page=6)
    print("page 6", flush=True)
    stuck.picture("page-06-empty")
    stuck.person.write(pages.PAIRING_CODE, "111111")
    stuck.person.write(pages.PAIRING_PORT, str(watch.pairing_port))
    stuck.next()
    stuck.box("pairing-error", "Pairing Error")
    stuck.rewrite(pages.PAIRING_CODE, watch.code)
    stuck.rewrite(pages.PAIRING_PORT, str(watch.pairing_port + 1))
    stuck.next()
    stuck.box("pair-connection", "Pair Connection")
    stuck.rewrite(pages.PAIRING_PORT, str(watch.pairing_port))
    stuck.next(page=7)


def port_of_pairing_on_page_5(stuck: Stuck, watch: Watch) -> None:
    print("the port of pairing was typed on page 5", flush=True)
    stuck.picture("page-07-empty")
    package = write_package(own_folder().parent)
    stuck.person.write(pages.APK_PATH, windows_path(package))
    stuck.next()
    stuck.box("unexpected-connect", "ADB Install")
    stuck.box("unable-to-connect", "Install APK")
    said = [line for number, line in stuck.person.statuses if number == 7]
    assert f"Connecting to {watch.address}:{watch.pairing_port} (attempt 1 of 3)" in said, said
    correct_port(stuck, watch.port)
    print("   out: back to page 5 with the other port; pairing skipped")


def correct_port(stuck: Stuck, port: int) -> None:
    """Back to page 5, type the port, skip the pairing: what the guide says for every port that is no longer right."""
    stuck.back_to(5)
    stuck.rewrite(pages.PORT, str(port))
    stuck.next(page=6)
    if not stuck.person.holds(pages.SKIP_PAIRING):
        stuck.person.tick_by_key(pages.SKIP_PAIRING)
    stuck.next(page=7)


def port_has_changed(stuck: Stuck, trust: list[str]) -> None:
    print("wireless debugging was turned off and on: the port has changed", flush=True)
    with Watch(*trust, "--offline", port=NEW_PORT) as watch:
        stuck.next()
        stuck.box("unable-to-connect", "Install APK")
        correct_port(stuck, watch.port)
        stuck.next()
        stuck.box("try-again", "ADB Install")
    with Watch(*trust, port=NEW_PORT) as watch:
        stuck.next(page=8)
        assert watch.has_received(write_package(own_folder().parent)), watch.events
        print("   out: back to page 5 with the new port; pairing skipped; installed")


def main() -> int:
    if len(sys.argv) != 2:
        print("usage: stuck.py FOLDER", file=sys.stderr)
        return 2
    folder = Path(sys.argv[1])
    other_numbers(folder)
    wrong_ports(folder)
    return 0


if __name__ == "__main__":
    sys.exit(main())
