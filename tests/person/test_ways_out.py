"""Somebody who gets stuck, does what the guide says, and gets out: the troubles of its index that lead back some pages.

Keeps the guide's pictures of pages that are empty or begin otherwise; its boxes are those of the other failures.
"""

import tempfile
import unittest
from pathlib import Path

from driver import network, pages, pixels, places
from driver.journey import fill_in
from driver.places import windows_path
from failures import INSTALLING, NOT_TRUSTED, FailureTest

NEW_PORT = 41877
REFUSAL = "Failure [INSTALL_FAILED_UPDATE_INCOMPATIBLE: signatures do not match]"


class WaysOut(FailureTest):
    def setUp(self) -> None:
        memory = self.enterContext(tempfile.TemporaryDirectory())
        self.watch_switches = ("--pairings", str(Path(memory) / "pairings"))
        super().setUp()

    def keep(self, name: str) -> None:
        self.person.picture(pixels.kept(f"guide/{name}"))

    def test_other_numbers_on_page_5_than_on_the_watch(self) -> None:
        self.addCleanup(network.plug_in_computer)
        network.add_vpn()
        self.go_to_page(5)
        self.person.expect(pages.ADDRESS, "10.8.0.")
        self.keep("page-05-vpn")
        fields = self.person.look().control(pages.ADDRESS).fields
        for field, part in zip(fields, self.watch.address.split("."), strict=True):
            # A double click chooses the number that stands there.
            self.person.click(field, times=2)
            self.person.type(part)
        self.person.expect(pages.ADDRESS, self.watch.address)
        self.person.rewrite(pages.PORT, str(self.watch.port))
        self.expect_next_to_lead_to(6)
        self.leave()

    def test_wrong_ports(self) -> None:
        # Not beside the program, so that the page begins empty.
        self.package = self.package.rename(places.own_folder() / self.package.name)
        self.restart_watch("--reply", REFUSAL)
        self.go_to_page(5)
        self.keep("page-05-empty")
        with self.step("the port of pairing is typed on page 5, which passes it"):
            self.person.type("100")
            self.person.write(pages.PORT, str(self.watch.pairing_port))
            self.expect_next_to_lead_to(6)
            self.keep("page-06-empty")
            fill_in(self.person, pages.PAGES[5], self.watch)
            self.expect_next_to_lead_to(7)
            self.keep("page-07-empty")
            self.person.write(pages.APK_PATH, windows_path(self.package))
            self.expect_unexpected_connect("port-of-pairing", self.watch.pairing_port)
            self.correct_port(self.watch.port)
            self.press_next()
            self.person.dismiss(self.person.wait_for_box("ADB Install"))
            self.person.wait_until_it_listens()
            self.assertIn(INSTALLING.format(1), self.seen())
        with self.step("wireless debugging was turned off and on: the port has changed"):
            unable = f"Unable to connect to {self.watch.address}:{self.watch.port}"
            self.restart_watch(port=NEW_PORT)
            self.expect_next_to_fail("port-changed", "Install APK", NOT_TRUSTED, unable)
            self.correct_port(NEW_PORT)
            self.expect_installation()
        self.leave()

    def correct_port(self, port: int) -> None:
        """Back to page 5, type the port, skip the pairing: what the guide says for a port that is no longer right."""
        self.person.wait_until_it_listens()
        while (number := self.person.look().number) != 5:
            self.person.click_button("Back")
            self.person.wait_for_page(number - 1)
        self.person.rewrite(pages.PORT, str(port))
        self.expect_next_to_lead_to(6)
        if not self.person.holds(pages.SKIP_PAIRING):
            self.person.tick_by_key(pages.SKIP_PAIRING)
        self.expect_next_to_lead_to(7)


if __name__ == "__main__":
    unittest.main()
