"""Somebody who gets stuck, does what the guide says, and gets out. Makes the guide's pictures.

    guide_pictures.py FOLDER    keeps the pictures in the folder: page-NN-empty.png, page-05-vpn.png and box-NAME.png

Three symptoms of the guide's index are played through: other numbers of the address on page 5 than on the watch, the
port of pairing typed on page 5, a port that has changed. Ends with 0 only when the guide's advice led out of each.
"""

import sys
import tempfile
from collections.abc import Iterator
from contextlib import contextmanager
from pathlib import Path

from driver import guide, network, pages
from driver.eyes import Eyes
from driver.journey import go_to_page
from driver.package import write_package
from driver.person import Person
from driver.places import own_folder, windows_path
from driver.program import Program
from driver.watch import Watch

TRUST = "--pairings"
NEW_PORT = 41877


class Stuck(Person):
    """A person who keeps pictures of what stops them."""

    def __init__(self, eyes: Eyes, folder: Path) -> None:
        super().__init__(eyes)
        self._folder = folder

    def keep(self, name: str) -> None:
        self.picture(self._folder / f"{name}.png")

    def next(self, page: int | None = None) -> None:
        self.wait_until_it_listens()
        self.click_button("Next")
        if page:
            self.wait_for_page(page)

    def next_in_vain(self, *boxes: tuple[str, str]) -> None:
        """Next leads to boxes, by their pictures and captions, that the guide explains, and no further."""
        self.next()
        for name, caption in boxes:
            box = self.wait_for_box(caption)
            assert guide.explains(box), f"the guide does not explain {box}"
            self.wait_until(f"{caption} in front", lambda now: now.view.foreground == box.window.handle)
            self.picture(self._folder / f"box-{name}.png", box.window)
            self.dismiss(box)
            print(f"   stuck: {box.message.splitlines()[0]}", flush=True)

    def rewrite_address(self, address: str) -> None:
        """Number by number: a double click chooses what stands there."""
        fields = self.look().control(pages.ADDRESS).fields
        for field, part in zip(fields, address.split("."), strict=True):
            self.click(field, times=2)
            self.type(part)
        self.expect(pages.ADDRESS, address)

    def correct_port(self, port: int) -> None:
        """Back to page 5, type the port, skip the pairing: what the guide says for a port that is no longer right."""
        self.wait_until_it_listens()
        while (number := self.look().number) != 5:
            self.click_button("Back")
            self.wait_for_page(number - 1)
        self.rewrite(pages.PORT, str(port))
        self.next(page=6)
        if not self.holds(pages.SKIP_PAIRING):
            self.tick_by_key(pages.SKIP_PAIRING)
        self.next(page=7)


@contextmanager
def stuck_on_page_5(folder: Path, watch: Watch) -> Iterator[Stuck]:
    """Somebody who comes to that page; at the end they leave."""
    with Eyes() as eyes, Program(folder=own_folder()) as program:
        stuck = Stuck(eyes, folder)
        stuck.wait_for_first_page()
        go_to_page(stuck, 5, watch)
        yield stuck
        stuck.press("Escape")
        assert program.wait() == 0


def other_numbers(folder: Path) -> None:
    print("the first three numbers on page 5 are others than on the watch", flush=True)
    network.add_vpn()
    with Watch() as watch, stuck_on_page_5(folder, watch) as stuck:
        stuck.expect(pages.ADDRESS, "10.8.0.")
        stuck.keep("page-05-vpn")
        stuck.rewrite_address(watch.address)
        stuck.rewrite(pages.PORT, str(watch.port))
        stuck.next(page=6)
        print("   out: typed over, and page 6 came")
    network.plug_in_computer()


def wrong_ports(folder: Path) -> None:
    with tempfile.TemporaryDirectory() as memory:
        trust = [TRUST, str(Path(memory) / "pairings")]
        refusal = "Failure [INSTALL_FAILED_UPDATE_INCOMPATIBLE: signatures do not match]"
        watch = Watch(*trust, "--reply", refusal)
        with stuck_on_page_5(folder, watch) as stuck:
            with watch:
                find_the_watch(stuck, watch)
                pair(stuck, watch)
                port_of_pairing_on_page_5(stuck, watch)
                stuck.next_in_vain(("already-installed", "ADB Install"))
            port_has_changed(stuck, trust)


def find_the_watch(stuck: Stuck, watch: Watch) -> None:
    print("page 5", flush=True)
    stuck.keep("page-05-empty")
    stuck.type("55")
    stuck.write(pages.PORT, str(watch.port + 1))
    stuck.next_in_vain(("not-found", "Invalid IP address"))
    stuck.rewrite_address(watch.address)
    stuck.next_in_vain(("no-connection", "Wireless Debugging Connection"))


def pair(stuck: Stuck, watch: Watch) -> None:
    """With the port of pairing on page 5, which passes it."""
    stuck.rewrite(pages.PORT, str(watch.pairing_port))
    stuck.next(page=6)
    print("page 6", flush=True)
    stuck.keep("page-06-empty")
    stuck.write(pages.PAIRING_CODE, "111111")
    stuck.write(pages.PAIRING_PORT, str(watch.pairing_port))
    stuck.next_in_vain(("pairing-error", "Pairing Error"))
    stuck.rewrite(pages.PAIRING_CODE, watch.code)
    stuck.rewrite(pages.PAIRING_PORT, str(watch.pairing_port + 1))
    stuck.next_in_vain(("pair-connection", "Pair Connection"))
    stuck.rewrite(pages.PAIRING_PORT, str(watch.pairing_port))
    stuck.next(page=7)


def port_of_pairing_on_page_5(stuck: Stuck, watch: Watch) -> None:
    print("the port of pairing was typed on page 5", flush=True)
    stuck.keep("page-07-empty")
    package = write_package(own_folder().parent)
    stuck.write(pages.APK_PATH, windows_path(package))
    stuck.next_in_vain(("unexpected-connect", "ADB Install"), ("unable-to-connect", "Install APK"))
    said = [line for number, line in stuck.statuses if number == 7]
    assert f"Connecting to {watch.address}:{watch.pairing_port} (attempt 1 of 3)" in said, said
    stuck.correct_port(watch.port)
    print("   out: back to page 5 with the other port; pairing skipped")


def port_has_changed(stuck: Stuck, trust: list[str]) -> None:
    print("wireless debugging was turned off and on: the port has changed", flush=True)
    with Watch(*trust, "--offline", port=NEW_PORT) as watch:
        stuck.next_in_vain(("unable-to-connect", "Install APK"))
        stuck.correct_port(watch.port)
        stuck.next_in_vain(("try-again", "ADB Install"))
    with Watch(*trust, port=NEW_PORT) as watch:
        stuck.next(page=8)
        assert watch.has_received(write_package(own_folder().parent)), watch.events
        print("   out: back to page 5 with the new port; pairing skipped; installed")


def main() -> int:
    if len(sys.argv) != 2:
        print("usage: guide_pictures.py FOLDER", file=sys.stderr)
        return 2
    folder = Path(sys.argv[1])
    other_numbers(folder)
    wrong_ports(folder)
    return 0


if __name__ == "__main__":
    sys.exit(main())
