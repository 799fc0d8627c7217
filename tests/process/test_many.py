"""Many starts, one after the other and all at once: one wizard, nothing left, one handle lost to each adb command."""

import unittest

import bystander
from driver import pages, wine
from driver.journey import go_to_page
from driver.program import Program
from driver.waiting import wait_for
from driver.watch import Watch
from processtest import CANCELLED, TITLE, ProcessTest

# A home's share of the fifty; every end takes two seconds by itself, in which adb is stopped.
STARTS_IN_A_ROW = 10

STARTS_AT_ONCE = 20

# The server is stopped once, then there are three attempts.
COMMANDS_TO_PAIR_IN_VAIN = 4


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
        titled = [window for window in self.eyes.look().windows if window.text == TITLE]
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


class Handles(ProcessTest):
    """Each adb command keeps the end of a pipe open. Of all handles together there is now and then one more."""

    def test_without_a_command_there_is_no_pipe(self) -> None:
        self.expect_pipes(0)

    def test_left_over_tools_cost_one(self) -> None:
        """They are removed by an adb command."""
        self.leave_tools_behind()
        self.expect_pipes(1)

    def expect_pipes(self, count: int) -> None:
        start = self.start_wizard()
        self.assertEqual(bystander.count_handles(self.wizard_process())["Pipe"], count)
        self.cancel(start)

    def test_one_for_each_adb_command(self) -> None:
        watch = self.enterContext(Watch())
        start = self.start_wizard()
        go_to_page(self.person, 6, watch)
        self.person.write(pages.PAIRING_CODE, watch.code)
        self.person.write(pages.PAIRING_PORT, "37098")
        for presses in (1, 2):
            self.person.enter_when_offered()
            self.person.dismiss(self.person.wait_for_box("Pair Connection"))
            self.person.wait_until_it_listens()
            handles = bystander.count_handles(self.wizard_process())
            self.assertEqual((handles["Pipe"], handles["Process"]), (presses * COMMANDS_TO_PAIR_IN_VAIN, 0))
        self.press_escape()
        start.wait()
        self.assertEqual(tuple(start.journal[-len(CANCELLED) - 1 :]), (*CANCELLED, "ended code=0"))
        self.assertEqual(wine.running(), [])


if __name__ == "__main__":
    unittest.main()
