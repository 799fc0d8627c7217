"""The whole way with Space and Enter, as the first page promises, and back and forth again."""

import unittest

import pages
from installation import InstallationTest
from journey import fill_in, go_to_page
from wizard import Sight

LAST = len(pages.PAGES)


class TheKeyboardAlone(InstallationTest):
    def test_space_and_enter_lead_through_all_pages(self) -> None:
        for page in pages.PAGES[:-1]:
            if page.box:
                self.assertEqual(self.person.look().focus_id, page.box, f"the box of page {page.number} has no keyboard")
                self.person.press("space")
            else:
                fill_in(self.person, page, self.watch)
            self.person.enter_when_offered()
            self.person.wait_for_page(page.number + 1)
        self.person.enter_when_offered("Finish")
        self.finish()
        self.assertTrue(self.watch.has_received(self.package), self.watch.events)

    def test_space_ticks_and_unticks(self) -> None:
        go_to_page(self.person, 2, self.watch)
        self.assertEqual(self.person.look().buttons, {"Back", "Cancel"})
        self.person.press("space")
        self.person.wait_until("Next", lambda sight: sight.buttons == {"Back", "Next", "Cancel"})
        self.person.press("space")
        self.person.wait_until("Next to go", lambda sight: sight.buttons == {"Back", "Cancel"})

    def test_enter_does_nothing_while_next_is_hidden(self) -> None:
        go_to_page(self.person, 2, self.watch)
        self.assertEqual(self.person.look().buttons, {"Back", "Cancel"})
        # The keys arrive in their order: where Enter led on, the tick would be on another page.
        self.person.press("Return", "space")
        sight = self.person.wait_until("Next", lambda sight: "Next" in sight.buttons)
        self.assertEqual(sight.number, 2)
        self.assertEqual(sight.boxes, ())
        assert sight.page and sight.page.box
        self.assertIs(self.person.holds(sight.page.box), True)


class BackAndForth(InstallationTest):
    def test_ticks_are_kept_back_to_the_first_page_and_forward_again(self) -> None:
        go_to_page(self.person, LAST, self.watch)
        for number in range(LAST - 1, 0, -1):
            self.person.click_button("Back")
            sight = self.person.wait_for_page(number)
            self.assert_kept(sight)
        self.assertNotIn("Back", sight.buttons)
        for number in range(2, LAST + 1):
            if sight.number == 6:
                # The watch shows a new code for every pairing; this one is paired.
                self.person.click_control(pages.SKIP_PAIRING)
            self.person.enter_when_offered()
            sight = self.person.wait_for_page(number)
            self.assert_kept(sight)
        self.person.click_button("Finish")
        self.finish()

    def assert_kept(self, sight: Sight) -> None:
        """What was filled in is still there, and Next with it."""
        page = sight.page
        assert page
        if page.box:
            self.assertIs(self.person.holds(page.box), True, f"page {page.number} lost its tick")
        if page.number == 5:
            self.assertEqual(self.person.holds(pages.ADDRESS), self.watch.address)
            self.assertEqual(self.person.holds(pages.PORT), str(self.watch.port))
        if page.number == 6:
            self.assertEqual(self.person.holds(pages.PAIRING_CODE), self.watch.code)
        if page.number < LAST:
            self.assertIn("Next", sight.buttons, f"page {page.number} lost its Next button")


if __name__ == "__main__":
    unittest.main()
