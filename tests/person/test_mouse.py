"""The whole way with the mouse; only digits are typed."""

import unittest

import pages
from installation import InstallationTest


class TheMouseAlone(InstallationTest):
    def test_clicks_lead_through_all_pages(self) -> None:
        for page in pages.PAGES[:-1]:
            self.fill_in(page)
            self.person.click_button("Next")
            self.person.wait_for_page(page.number + 1)
        self.person.click_button("Finish")
        self.finish()
        self.assertTrue(self.watch.has_received(self.package), self.watch.events)

    def test_a_click_on_a_tick_takes_it_away(self) -> None:
        self.person.click_button("Next")
        self.person.wait_for_page(2)
        box = pages.PAGES[1].box
        assert box
        for expected in (True, False, True):
            self.person.click_control(box)
            self.person.expect(box, expected)
            self.person.wait_until("Next to follow", lambda sight: ("Next" in sight.buttons) is expected)

    def test_two_quick_clicks_on_the_arrow_go_back_twice(self) -> None:
        for page in pages.PAGES[:2]:
            self.fill_in(page)
            self.person.click_button("Next")
            self.person.wait_for_page(page.number + 1)
        arrow = self.person.look().button("Back")
        assert arrow
        self.person.click(arrow, times=2)
        self.person.wait_until("page 1", lambda sight: sight.number == 1)

    def fill_in(self, page: pages.Page) -> None:
        if page.box:
            self.person.click_control(page.box)
            self.person.expect(page.box, True)
        if page.number == 5:
            last = max(self.person.look().control(pages.ADDRESS).children, key=lambda field: field.x)
            self.person.click(last)
            self.person.type(self.watch.address.rsplit(".", 1)[1])
            self.person.expect(pages.ADDRESS, self.watch.address)
            self.write(pages.PORT, str(self.watch.port))
        if page.number == 6:
            self.write(pages.PAIRING_CODE, self.watch.code)
            self.write(pages.PAIRING_PORT, str(self.watch.pairing_port))

    def write(self, control: int, digits: str) -> None:
        self.person.click_control(control)
        self.person.type(digits)
        self.person.expect(control, digits)


if __name__ == "__main__":
    unittest.main()
