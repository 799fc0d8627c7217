"""Programs with one fault each: the claim that stands for it does not hold, and no other."""

import shutil
import unittest

import checking
from checking import SOME_DO_NOT, WindowsCheck
from driver import places
from driver.evidence import one_test_for_each
from driver.places import windows_path


# Which program, the step that meets the fault, the claim.
@one_test_for_each(
    wrong_default_button=("default", "working-pages", "page-07.default"),
    text_that_is_cut=("text", "first-pages", "page-01.texts"),
    page_without_its_title=("title", "first-pages", "page-02.title"),
    planted_library_that_is_taken=("planted", "loader", "loader.by-name"),
    exit_code=("code", "ends", "end.uncaught-code"),
)
class Faults(unittest.TestCase):
    def check(self, fault: str, step: str, claim: str) -> None:
        check = WindowsCheck()
        program = shutil.copy(places.helper(f"windows-check/faulty-{fault}"), check.folder / "Faulty.exe")
        report = check.run("--only", step, "--program", windows_path(program), seconds=300)
        self.assertEqual(report.status, SOME_DO_NOT)
        self.assertEqual(report.ids("does not hold"), [claim], report.say_what_does_not_hold())


if __name__ == "__main__":
    checking.main()
