#!/usr/bin/env python3
"""Checks docs/behaviours.md: every test that it names runs, and each table is as long as it says. The tests that
SECURITY.md names run as well.

    check_behaviours.py CHECKOUT BUILD HOST_BUILD
"""

import re
import sys
from pathlib import Path

from running import running

PAGE = "docs/behaviours.md"
HEAD = "| held by |"
OTHER_PAGE = "SECURITY.md"


def rows_of(section: str) -> list[str]:
    """The last cells of the tables in a section."""
    lines = [line for line in section.splitlines() if line.startswith("|") and not line.endswith(HEAD)]
    return [line.strip("|").rsplit("|", 1)[1].strip() for line in lines if not set(line) <= set("|- ")]


def faults_of(page: str, known: set[str]) -> list[str]:
    """Each section's heading ends in the number of rows of its tables, and each row names tests and nothing else."""
    faults, promises = [], 0
    for section in re.split(r"^## ", page, flags=re.MULTILINE):
        heading = section.partition("\n")[0]
        promise = re.fullmatch(r".+: (\d+) \w+", heading)
        promises += promise is not None
        if HEAD not in section and not promise:
            continue
        rows = rows_of(section)
        if not promise or int(promise[1]) != len(rows):
            faults.append(f"the tables below '{heading}' have {len(rows)} rows")
        for row in rows:
            names = re.findall(r"`([^`]+)`", row)
            faults += [f"no test {name} runs" for name in names if name not in known]
            if not names or re.sub(r"`[^`]+`", "", row).strip(", "):
                faults.append(f"'{row}' is not the names of tests")
    return faults if promises else ["no heading tells how many cases follow"]


def unknown_tests_in(page: str, known: set[str]) -> list[str]:
    """Names of a page that look like tests, since others begin so, and are none; a name may stand for a whole class
    or, ending in a star, for a whole group."""
    begins = {name.partition(".")[0] for name in known}
    wholes = known | {name.rpartition(".")[0] for name in known}
    quoted = re.findall(r"`([^` ]+)`", page)
    names = [name for name in quoted if name.partition(".")[0] in begins or name[:5] == "unit-"]
    assert names, f"{OTHER_PAGE} names no test"
    return [f"no test {name} runs" for name in names if name.removesuffix(".*") not in wholes]


def main() -> int:
    checkout, build, host_build = map(Path, sys.argv[1:])
    known = running(checkout, build, host_build).names
    page = (checkout / PAGE).read_text(encoding="utf-8")
    faults = [f"{PAGE}: {fault}" for fault in faults_of(page, known)]
    other = (checkout / OTHER_PAGE).read_text(encoding="utf-8")
    faults += [f"{OTHER_PAGE}: {fault}" for fault in unknown_tests_in(other, known)]
    for fault in faults:
        print(fault, file=sys.stderr)
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
