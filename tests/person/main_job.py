"""The main job, as a user does it: through all pages of the wizard, with a package that a watch receives.

    main_job.py FOLDER    keeps a picture of every page in the folder

Prints every page's title, the status lines and what came of it. Ends with 0 only when all of it is right.
"""

import sys
from pathlib import Path

from driver import pages, places
from driver.eyes import Eyes
from driver.journey import fill_in
from driver.package import write_package
from driver.person import Person
from driver.program import Program, left_behind
from driver.watch import Watch
from driver.wizard import Sight


class Report:
    """Says what happens, and remembers what is wrong."""

    def __init__(self, folder: Path) -> None:
        self._folder = folder
        self._page = 0
        self._early: list[str] = []
        self.faults = 0

    def check(self, right: bool, good: str, bad: str) -> None:
        print(f"   {good}" if right else f"   WRONG: {bad}", flush=True)
        self.faults += not right

    def page(self, person: Person, sight: Sight) -> None:
        """A page that is filled in and about to be left."""
        assert sight.page
        self._page = sight.number
        print(f"page {sight.number:2}: {sight.title}", flush=True)
        if sight.title != sight.page.title:
            self.check(False, "", f'its title should be "{sight.page.title}"')
        for line in self._early:
            self.status(self._page, line)
        self._early = []
        person.picture(self._folder / f"page-{sight.number:02}.png")

    def status(self, page: int, line: str) -> None:
        """A new status line. What a page says at first waits for its title."""
        if page == self._page:
            print(f"   status: {line}", flush=True)
        else:
            self._early.append(line)


def install(folder: Path) -> int:
    with Watch() as watch, Eyes() as eyes, Program(folder=places.own_folder()) as program:
        package = write_package(program.folder)
        report = Report(folder)
        person = Person(eyes, report.status)
        person.wait_for_first_page()
        for page in pages.PAGES:
            person.wait_for_page(page.number)
            fill_in(person, page, watch)
            button = "Finish" if page is pages.PAGES[-1] else "Next"
            person.wait_for_next(button=button)
            report.page(person, person.rest())
            person.enter_when_offered(button)
        code = program.wait()
        report.check(code == 0, "the program ended with 0", f"the program ended with {code}: {program.said}")
        report.check(
            watch.has_received(package),
            f"the watch received the package byte for byte ({package.stat().st_size} bytes)",
            f"the watch did not receive the package: {watch.events}",
        )
        left = left_behind()
        report.check(not left, "nothing is left in the working folder", f"left behind: {', '.join(left)}")
        return report.faults


def main() -> int:
    if len(sys.argv) != 2:
        print("usage: main_job.py FOLDER", file=sys.stderr)
        return 2
    folder = Path(sys.argv[1])
    for old in folder.glob("page-*.png"):
        old.unlink()
    return 1 if install(folder) else 0


if __name__ == "__main__":
    sys.exit(main())
