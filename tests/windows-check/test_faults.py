"""Programs with one fault each: the claim that stands for it does not hold, and no other."""

import unittest
from pathlib import Path

import checking
import places
from checking import SOME_DO_NOT, WindowsCheck
from program import windows_path


class Faults(unittest.TestCase):
    def expect_found(self, fault: str, step: str, *claims: str) -> None:
        check = WindowsCheck()
        program = check.folder / "Faulty.exe"
        program.write_bytes((places.build() / "tests/windows-check" / Path(f"faulty-{fault}.exe")).read_bytes())
        report = check.run("--only", step, "--program", windows_path(program), seconds=300)
        self.assertEqual(report.status, SOME_DO_NOT)
        self.assertEqual(tuple(report.ids("does not hold")), claims, report.say_what_does_not_hold())

    def test_wrong_default_button(self) -> None:
        self.expect_found("default", "working-pages", "page-07.default")

    def test_text_that_is_cut(self) -> None:
        self.expect_found("text", "first-pages", "page-01.texts")

    def test_page_without_its_title(self) -> None:
        self.expect_found("title", "first-pages", "page-02.title")

    def test_planted_library_that_is_taken(self) -> None:
        self.expect_found("planted", "loader", "loader.by-name")

    def test_exit_code(self) -> None:
        self.expect_found("code", "ends", "end.uncaught-code")


if __name__ == "__main__":
    checking.main()
