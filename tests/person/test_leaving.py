"""Leaving the wizard before its end: at once, without a question, with nothing left behind."""

import unittest
from collections.abc import Callable

import pages
from installation import InstallationTest
from journey import go_to_page
from person import Person

LAST = len(pages.PAGES)

# The first page of each kind: the start, steps to tick, the address, the pairing, the package, what comes after it.
ONE_OF_EACH_KIND = (1, 2, 5, 6, 7, 8)


class LeavingTest(InstallationTest):
    # So that an earlier pairing is not needed on the way to the later pages.
    watch_switches = ("--trust-all",)

    def leave(self, page: int, how: Callable[[Person], None]) -> None:
        go_to_page(self.person, page, self.watch, pair=False)
        how(self.person)
        self.finish()


class EachKindOfPage(LeavingTest):
    def test_cancel_is_not_offered_on_the_last(self) -> None:
        sight = go_to_page(self.person, LAST, self.watch, pair=False)
        self.assertEqual(sight.buttons, {"Back", "Finish"})
        self.person.click_button("Finish")
        self.finish()


class OtherPages(LeavingTest):
    """Long, since the pages behind the package are reached by installing it."""


def _click_cancel(person: Person) -> None:
    person.click_button("Cancel")


def _press_escape(person: Person) -> None:
    person.press("Escape")


def _add_tests() -> None:
    """One test for each way out of each page."""
    for page in range(1, LAST):
        owner = EachKindOfPage if page in ONE_OF_EACH_KIND else OtherPages
        for name, how in (("cancel", _click_cancel), ("escape", _press_escape)):

            def test(self: LeavingTest, page: int = page, how: Callable[[Person], None] = how) -> None:
                self.leave(page, how)

            setattr(owner, f"test_{name}_on_page_{page:02}", test)


_add_tests()


if __name__ == "__main__":
    unittest.main()
