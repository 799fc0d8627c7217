"""Many starts, one after the other and all at once: one wizard, nothing left."""

import unittest

from driver.program import Program
from driver.waiting import wait_for
from processtest import TITLE, ProcessTest

# A home's share of the fifty; every end takes two seconds by itself, in which adb is stopped.
STARTS_IN_A_ROW = 10

STARTS_AT_ONCE = 20


class InARow(ProcessTest):
    def test_each_start_ends_as_the_first_did(self) -> None:
        for number in range(STARTS_IN_A_ROW):
            with self.step(number):
                self.expect_good_run()


class AtOnce(ProcessTest):
    def test_one_wizard(self) -> None:
        starts = [self.start() for _ in range(STARTS_AT_ONCE)]
        wait_for("all but one to end", lambda: sum(start.has_ended for start in starts) == len(starts) - 1, 90)
        (first,) = (start for start in starts if not start.has_ended)
        self.wait_for_wizard(first)
        titled = [window for window in self.person.eyes.look().windows if window.text == TITLE]
        self.assertEqual(len(titled), 1, titled)
        self.expect_whole_tools()
        for start in starts:
            if start is not first:
                self.expect_refusal(start)
        self.cancel(first)
        self.expect_nothing_left()

    def expect_refusal(self, start: Program) -> None:
        # Whether the first had its window yet is a matter of chance.
        front = [line for line in start.journal if line == f'SetForegroundWindow title="{TITLE}"']
        self.assertLessEqual(len(front), 1)
        self.expect_end(start, 0, "CloseHandle mutex", *front)


if __name__ == "__main__":
    unittest.main()
