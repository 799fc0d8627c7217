"""Leaving the wizard before its end: at once, without a question, with nothing left behind."""

import unittest
from collections.abc import Callable

from driver import pages
from driver.evidence import one_test_for_each
from driver.person import Person
from wizardtest import WizardTest

LAST = len(pages.PAGES)

# The first page of each kind: the start, steps to tick, the address, the pairing, the package, what comes after it.
ONE_OF_EACH_KIND = {1, 2, 5, 6, 7, 8}


def _ways_out_of(numbers: set[int]) -> dict[str, tuple[int, Callable[[Person], None]]]:
    ways: dict[str, Callable[[Person], None]] = {
        "cancel": lambda person: person.click_button("Cancel"),
        "escape": lambda person: person.press("Escape"),
    }
    return {f"{name}_on_page_{page:02}": (page, way) for page in sorted(numbers) for name, way in ways.items()}


class LeavingTest(WizardTest):
    # So that an earlier pairing is not needed on the way to the later pages.
    watch_switches = ("--trust-all",)

    def check(self, page: int, leave: Callable[[Person], None]) -> None:
        self.go_to_page(page, pair=False)
        leave(self.person)
        self.finish()


@one_test_for_each(**_ways_out_of(ONE_OF_EACH_KIND))
class EachKindOfPage(LeavingTest):
    def test_cancel_is_not_offered_on_the_last(self) -> None:
        self.go_to_page(LAST, pair=False)
        self.person.wait_until("its two buttons", lambda sight: sight.buttons == {"Back", "Finish"})
        self.person.click_button("Finish")
        self.finish()


@one_test_for_each(**_ways_out_of(set(range(1, LAST)) - ONE_OF_EACH_KIND))
class OtherPages(LeavingTest):
    """Long, since the pages behind the package are reached by installing it."""


if __name__ == "__main__":
    unittest.main()
