"""The check as its users run it, in a home's Windows, with the stand-ins' launcher and nothing else of the checkout."""

import getpass
import os
import re
import time
import unittest
from collections.abc import Callable

import checking
from checking import ALL_HOLD, CANCELLED, NO_REPORT, REFUSED, SURROUNDINGS, Report, WindowsCheck
from driver import places, wine
from driver.eyes import View
from driver.notepad import copy_to_clipboard
from driver.person import Person
from driver.places import drive_c
from driver.program import Program
from driver.waiting import wait_for
from driver.wizard import Sight

# What Wine may be unable to answer, and how many claims there must be.
MOST_NOT_TRIED = 15
FEWEST_CLAIMS = 120

# What a user is promised, of a machine that has little else to do. Where more programs want the processors the time
# tells of them: it is printed, and bounded only so that a walk that hangs is told from a slow one.
LONGEST = 6 * 60
QUIET = 2
LONGEST_ANYWHERE = 20 * 60

PROGRESS = "KALVO Windows check"
FIRST_PAGES = re.compile(
    r"about\.|box\.|page-0[1-4]\.|frame\.(?!by-number|escape-|back-from-last|last-again|enter-last)"
)

# The sentences of these claims tell what is expected.
SAID_BY_THE_PAGE = re.compile(r"page-\d\d\.(title|buttons|focus)$")

ADDRESS = re.compile(r"\b\d{1,3}\.\d{1,3}\.\d{1,3}\.\d{1,3}\b")


def excluded() -> set[str]:
    lines = SURROUNDINGS.read_text(encoding="utf-8").splitlines()
    return {line.split(" ", 2)[1] for line in lines if line.startswith("not-tried ")}


def in_front(view: View) -> str:
    window = view.window(view.foreground)
    return window.text if window else ""


class CheckTest(unittest.TestCase):
    def setUp(self) -> None:
        self.check = WindowsCheck()
        self.person = Person()

    def expect_nothing_left(self) -> None:
        """No process, no file but the reports, no key of adb."""
        wait_for("the end of all that was started", lambda: not wine.running())
        self.assertFalse(places.working_folder().exists())
        self.assertFalse(drive_c("users", "Public", "KalvoWindowsCheck").exists())
        self.assertEqual(list(drive_c().rglob(".android")) + list(drive_c().rglob("adb.log")), [])

    def expect_all_holds(self, report: Report) -> None:
        """The reports name nobody, and nothing else is left."""
        self.assertEqual(report.say_what_does_not_hold(), "")
        self.assertEqual(report.status, ALL_HOLD)
        for text in (report.text, (self.check.folder / "report.html").read_text(encoding="utf-8")):
            words = set(re.findall(r"\w+", re.sub(r'"data:image[^"]*"', "", text).lower()))
            self.assertNotIn(getpass.getuser().lower(), words)
            self.assertNotIn(os.uname().nodename.lower(), words)
            self.assertEqual(set(ADDRESS.findall(text)) - {"127.0.0.1"}, set())
        for claim in report.whole["claims"]:
            if SAID_BY_THE_PAGE.match(claim["id"]) and claim["answer"] == "holds":
                self.assertIn(claim["expected"], claim["claim"])
        self.expect_nothing_left()


class FirstPages(CheckTest):
    def test_frame_and_first_pages_hold(self) -> None:
        report = self.check.run("--only", "first-pages", seconds=200)
        self.expect_all_holds(report)
        wanted = {claim for claim in report.claims if FIRST_PAGES.match(claim)} - excluded()
        self.assertGreater(len(wanted), 40)
        self.assertEqual(wanted - set(report.ids("holds")), set())


class Whole(CheckTest):
    def test_everything_holds_but_what_wine_cannot_answer(self) -> None:
        start = time.monotonic()
        report = self.check.run(seconds=LONGEST_ANYWHERE)
        took, load = time.monotonic() - start, os.getloadavg()[1]
        print(f"{len(report.claims)} claims in {took:.0f} s at a load of {load:.1f}", flush=True)
        self.expect_all_holds(report)
        # Wine need not have a high contrast on, a second route and the like: all that is left out is named.
        not_tried = {claim: report.claims[claim]["why"] for claim in report.ids("not tried")}
        self.assertEqual(not_tried.keys(), excluded(), not_tried)
        self.assertGreaterEqual(len(report.claims), FEWEST_CLAIMS)
        self.assertLessEqual(len(excluded()), MOST_NOT_TRIED)
        if load <= QUIET * len(os.sched_getaffinity(0)):
            self.assertLess(took, LONGEST)
        self.assertGreater(len(report.whole["cases"]), 300)
        self.assertTrue(all(case["passed"] for case in report.whole["cases"]))


class Cancelled(CheckTest):
    def cancel(self, step: str, what: str, seen: Callable[[Sight], object]) -> Report:
        """Lets it do one step, and clicks on its Cancel as soon as that is to be seen."""
        started = self.check.start("--only", step)
        sight = self.person.wait_until(what, seen, 240)
        progress = next(window for window in sight.view.windows if window.text == PROGRESS)
        cancel = next(child for child in progress.children if child.text == "Cancel")
        self.person.click(cancel)
        return self.check.report(started.wait(60))

    def expect_tidy(self, report: Report) -> None:
        self.assertEqual((report.status, report.whole["cancelled"]), (CANCELLED, True))
        for claim in ("tidy.processes", "tidy.files", "tidy.port", "tidy.clipboard"):
            self.assertEqual(report.claims[claim]["answer"], "holds", report.claims[claim])
        self.assertIn("not tried", {claim["answer"] for claim in report.claims.values()})
        self.expect_nothing_left()

    def test_on_the_address_page_gives_the_focus_back(self) -> None:
        other = wine.start("winemine")
        self.addCleanup(other.wait)
        self.addCleanup(other.kill)
        self.person.wait_until("another program in front", lambda sight: in_front(sight.view) == "WineMine")
        before = self.person.rest().view.foreground
        copy_to_clipboard(self.person, "kept")
        report = self.cancel("working-pages", "page 5", lambda sight: sight.number == 5)
        self.person.wait_until("the other program in front", lambda sight: sight.view.foreground == before)
        self.expect_tidy(report)

    def test_while_adb_pairs(self) -> None:
        def pairs(sight: Sight) -> bool:
            return sight.number == 6 and "Pairing attempt" in sight.status and bool(wine.adb_processes())

        self.expect_tidy(self.cancel("working-pages", "adb at work", pairs))

    def test_while_the_file_dialog_of_a_copy_is_open(self) -> None:
        def browses(sight: Sight) -> bool:
            return sight.number == 7 and any(window.text == "Open" for window in sight.view.windows)

        self.expect_tidy(self.cancel("loader", "the file dialog", browses))


class Refused(CheckTest):
    def expect_refused(self, word: str) -> None:
        self.assertEqual(self.check.start().wait(60), REFUSED)
        self.assertIn(word, self.check.refusal())
        self.assertFalse((self.check.folder / "report.json").exists())

    def test_while_the_installer_runs(self) -> None:
        with Program() as installer:
            self.person.wait_for_first_page()
            self.expect_refused("The installer is running")
            self.assertFalse(installer.has_ended)

    def test_while_another_check_runs(self) -> None:
        self.addCleanup((self.check.folder / "report.json").unlink, missing_ok=True)
        first = self.check.start("--only", "first-pages")
        self.person.wait_until("the first check", lambda sight: PROGRESS in (w.text for w in sight.view.windows), 60)
        self.expect_refused("The check is running already")
        self.expect_all_holds(self.check.report(first.wait(200)))

    def test_with_an_administrators_rights(self) -> None:
        # A copy that asks Windows for them.
        program_file = self.check.folder / "Check.exe"
        own, asked = b'level="asInvoker" uiAccess="false"', b'level="requireAdministrator"'
        text = program_file.read_bytes()
        self.assertEqual(text.count(own), 1)
        program_file.write_bytes(text.replace(own, asked.ljust(len(own))))
        self.expect_refused("administrator")

    def test_where_the_archive_was_not_unpacked(self) -> None:
        (self.check.folder / "parts" / "KalvoApkInstaller.exe").unlink()
        self.expect_refused("unpack all of the archive")

    def test_with_options_that_make_no_sense(self) -> None:
        surroundings = self.check.surroundings
        self.check.surroundings = [*surroundings, "--not-tried", "nonsense"]
        self.expect_refused("There is no claim nonsense")
        self.check.surroundings = [*surroundings, "--nonsense"]
        self.expect_refused("The argument --nonsense makes no sense")
        self.check.surroundings = [*surroundings, "--only", "nonsense"]
        self.expect_refused("There is no step nonsense")

    def test_a_report_that_cannot_be_written_is_named(self) -> None:
        in_the_way = self.check.folder / "report.json"
        in_the_way.mkdir()
        self.addCleanup(in_the_way.rmdir)
        self.assertEqual(self.check.start("--only", "system").wait(120), NO_REPORT)
        self.assertIn("cannot write report.json (error ", self.check.said())
        self.assertIn("cannot write report.json (error ", self.check.refusal())


if __name__ == "__main__":
    checking.main()
