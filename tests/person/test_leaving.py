"""Leaving the wizard before its end: at once, without a question, with nothing left behind."""

import unittest
from collections.abc import Callable

import pages
from installation import InstallationTest
from journey import go_to_page
from person import Person

INSTALL = 7
LAST = len(pages.PAGES)


class LeavingTest(InstallationTest):
    # So that an earlier pairing is not needed on the way to the later pages.
    watch_switches = ("--trust-all",)

    def leave(self, page: int, how: Callable[[Person], None]) -> None:
        go_to_page(self.person, page, self.watch, pair=False)
        how(self.person)
        self.finish()


def _click_cancel(person: Person) -> None:
    person.click_button("Cancel")


def _press_escape(person: Person) -> None:
    person.press("Escape")


def _add_tests() -> None:
    """One test for each way out of each page, named so that those which need an install can run beside the others."""
    for page in range(1, LAST):
        when = "before" if page <= INSTALL else "after"
        for name, how in (("cancel", _click_cancel), ("escape", _press_escape)):

            def test(self: LeavingTest, page: int = page, how: Callable[[Person], None] = how) -> None:
                self.leave(page, how)

            setattr(LeavingTest, f"test_{name}_{when}_installing_on_page_{page:02}", test)


_add_tests()


class TheLastPage(InstallationTest):
    watch_switches = ("--trust-all",)

    def test_cancel_after_installing_is_not_offered(self) -> None:
        sight = go_to_page(self.person, LAST, self.watch, pair=False)
        self.assertEqual(sight.buttons, {"Back", "Finish"})
        self.person.click_button("Finish")
        self.finish()


if __name__ == "__main__":
    unittest.main()
