"""Space and Enter, where they tick and where they do nothing; back and forth again. The whole way is main_job.py's."""

import unittest

from driver import pages
from driver.wizard import Sight
from wizardtest import WizardTest

LAST = len(pages.PAGES)


class TheKeyboardAlone(WizardTest):
    def test_space_ticks_and_unticks_and_enter_does_nothing_while_next_is_hidden(self) -> None:
        page = self.go_to_page(2).page
        assert page and page.box
        self.assertEqual(self.person.wait_for_next(False).buttons, {"Back", "Cancel"})
        # The keys arrive in their order: where Enter led on, the tick would be on another page.
        self.person.press("Return", "space")
        sight = self.person.wait_for_next()
        self.assertEqual((sight.number, sight.boxes, sight.buttons), (2, (), {"Back", "Next", "Cancel"}))
        self.person.expect(page.box, True)
        self.person.press("space")
        self.assertEqual(self.person.wait_for_next(False).buttons, {"Back", "Cancel"})


class BackAndForth(WizardTest):
    def test_ticks_are_kept_back_to_the_first_page_and_forward_again(self) -> None:
        self.go_to_page(LAST)
        for number in range(LAST - 1, 0, -1):
            self.person.click_button("Back")
            sight = self.person.wait_for_page(number)
            self.assert_kept(sight)
        self.person.wait_for_next(False, "Back")
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
        kept: dict[int, str | bool] = {}
        if sight.page and sight.page.box:
            kept = {sight.page.box: True}
        elif sight.number == 5:
            kept = {pages.ADDRESS: self.watch.address, pages.PORT: str(self.watch.port)}
        elif sight.number == 6:
            kept = {pages.PAIRING_CODE: self.watch.code}
        self.assertEqual({control: self.person.holds(control) for control in kept}, kept, f"of page {sight.number}")
        if sight.number < LAST:
            self.person.wait_for_next()


if __name__ == "__main__":
    unittest.main()
