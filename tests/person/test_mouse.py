"""The whole way with the mouse; only digits are typed."""

import unittest

from driver import pages
from wizardtest import WizardTest


class TheMouseAlone(WizardTest):
    def test_clicks_lead_through_all_pages(self) -> None:
        for page in pages.PAGES[:-1]:
            self.click_on(page)
        self.person.click_button("Finish")
        self.finish()
        self.assertTrue(self.watch.has_received(self.package), self.watch.events)

    def test_a_click_on_a_tick_takes_it_away(self) -> None:
        self.click_on(pages.PAGES[0])
        box = pages.PAGES[1].box
        assert box
        for expected in (True, False, True):
            self.person.click_control(box)
            self.person.expect(box, expected)
            self.person.wait_for_next(expected)

    def test_two_quick_clicks_on_the_arrow_go_back_twice(self) -> None:
        for page in pages.PAGES[:2]:
            self.click_on(page)
        arrow = self.person.look().button("Back")
        assert arrow
        self.person.click(arrow, times=2)
        self.person.wait_until("page 1", lambda sight: sight.number == 1)

    def click_on(self, page: pages.Page) -> None:
        """Through a page and on to the next."""
        if page.box:
            self.person.click_control(page.box)
            self.person.expect(page.box, True)
        if page.number == 5:
            self.person.click(self.person.look().control(pages.ADDRESS).fields[-1])
            self.person.type(self.watch.address.rsplit(".", 1)[1])
            self.person.expect(pages.ADDRESS, self.watch.address)
            self.write(pages.PORT, str(self.watch.port))
        if page.number == 6:
            self.write(pages.PAIRING_CODE, self.watch.code)
            self.write(pages.PAIRING_PORT, str(self.watch.pairing_port))
        self.person.click_button("Next")
        self.person.wait_for_page(page.number + 1)

    def write(self, control: int, digits: str) -> None:
        self.person.click_control(control)
        self.person.type(digits)
        self.person.expect(control, digits)


if __name__ == "__main__":
    unittest.main()
