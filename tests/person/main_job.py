"""The main job, as a user does it: through all pages of the wizard, with a package that a watch receives.

    main_job.py FOLDER    keeps a picture of every page in the folder

Prints every page's title, the status lines and what came of it. Ends with 0 only when all of it is right.
"""

import sys
from pathlib import Path

from driver import pages, pixels, places
from driver.evidence import leave_evidence
from driver.journey import fill_in
from driver.package import write_package
from driver.person import Person
from driver.program import Program, left_behind
from driver.watch import Watch

LAST = len(pages.PAGES)


def check(right: bool, good: str, bad: str) -> int:
    """Says what is, and counts what is wrong."""
    print(f"   {good}" if right else f"   WRONG: {bad}", flush=True)
    return 0 if right else 1


def go_through(person: Person, page: pages.Page, watch: Watch, folder: Path) -> int:
    """To the next page, or to the end."""
    fill_in(person, page, watch)
    button = "Finish" if page.number == LAST else "Next"
    person.wait_for_next(button=button)
    title = person.rest().title
    print(f"page {page.number:2}: {title}", flush=True)
    faults = 0 if title == page.title else check(False, "", f'its title should be "{page.title}"')
    person.picture(folder / f"page-{page.number:02}.png")
    person.enter_when_offered(button)
    if page.number != LAST:
        person.wait_for_page(page.number + 1)
    said = [line for number, line in person.statuses if number == page.number]
    print(*(f"   status: {line}\n" for line in said), sep="", end="", flush=True)
    return faults


def install(folder: Path) -> int:
    person = Person()
    with Watch() as watch, Program(folder=places.own_folder()) as program:
        package = write_package(program.folder)
        try:
            person.wait_for_first_page()
            faults = sum([go_through(person, page, watch, folder) for page in pages.PAGES])
            code = program.wait()
        except Exception:
            leave_evidence(pixels.of_failure(""), person, program, watch.events)
            raise
        faults += check(code == 0, "the program ended with 0", f"the program ended with {code}: {program.said}")
        good = f"the watch received the package byte for byte ({package.stat().st_size} bytes)"
        faults += check(watch.has_received(package), good, f"the watch did not receive the package: {watch.events}")
        left = left_behind()
        return faults + check(not left, "nothing is left in the working folder", f"left behind: {', '.join(left)}")


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
