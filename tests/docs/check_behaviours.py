#!/usr/bin/env python3
"""Checks docs/behaviours.md: every test that it names runs, and each table is as long as it says. The tests that
SECURITY.md names run as well.

    check_behaviours.py CHECKOUT BUILD HOST_BUILD
"""

import re
import sys
from dataclasses import dataclass
from pathlib import Path

from running import running

PAGE = "docs/behaviours.md"
HELD_BY = "held by"
OTHER_PAGE = "SECURITY.md"


@dataclass
class Row:
    line: int
    cells: list[str]

    @property
    def names(self) -> list[str]:
        return re.findall(r"`([^`]+)`", self.cells[-1])


@dataclass
class Section:
    """A heading that tells the number of rows of the tables below it."""

    title: str
    promised: int
    rows: list[Row]
    tables: int = 0


def sections_of(page: str) -> list[Section]:
    """The parts of the page whose heading ends in a number of cases, with the rows of their tables."""
    sections: list[Section] = []
    current: Section | None = None
    for number, line in enumerate(page.splitlines(), start=1):
        if line.startswith("## "):
            heading = re.fullmatch(r"## (.+): (\d+) \w+", line)
            current = Section(heading[1], int(heading[2]), []) if heading else None
            if current:
                sections.append(current)
        elif current and line.startswith("|"):
            cells = [cell.strip() for cell in line.strip("|").split("|")]
            if cells[-1] == HELD_BY:
                current.tables += 1
            elif not set(line) <= set("|- "):
                current.rows.append(Row(number, cells))
    return sections


def faults_of(page: str, sections: list[Section], known: set[str]) -> list[str]:
    faults = []
    if not sections:
        faults.append("no heading tells how many cases follow")
    tables = [line for line in page.splitlines() if line.startswith("|") and line.endswith(f"| {HELD_BY} |")]
    counted = sum(section.tables for section in sections)
    if counted != len(tables):
        faults.append(f"{len(tables) - counted} tables stand below no heading that tells how many cases follow")
    for section in sections:
        if len(section.rows) != section.promised:
            faults.append(f"'{section.title}' promises {section.promised} rows and has {len(section.rows)}")
        for row in section.rows:
            if not row.names:
                faults.append(f"line {row.line} names no test")
            faults += [f"line {row.line}: no test {name} runs" for name in row.names if name not in known]
            rest = re.sub(r"`[^`]+`", "", row.cells[-1])
            if rest.strip(", "):
                faults.append(f"line {row.line}: between the names stands '{rest.strip(', ')}'")
    return faults


def unknown_tests_in(page: str, known: set[str]) -> list[str]:
    """Names of a page that look like tests, since others begin so, and are none; a name may stand for a whole class
    or, ending in a star, for a whole group."""
    begins = {name.partition(".")[0] for name in known}
    wholes = known | {name.rpartition(".")[0] for name in known}
    names = [name for name in re.findall(r"`([^` ]+)`", page) if name.partition(".")[0] in begins or name[:5] == "unit-"]
    assert names, f"{OTHER_PAGE} names no test"
    return [name for name in names if name.removesuffix(".*") not in wholes]


def main() -> int:
    checkout, build, host_build = map(Path, sys.argv[1:])
    known = running(checkout, build, host_build).names
    page = (checkout / PAGE).read_text(encoding="utf-8")
    sections = sections_of(page)
    faults = faults_of(page, sections, known)
    for fault in faults:
        print(f"{PAGE}: {fault}", file=sys.stderr)
    unknown = unknown_tests_in((checkout / OTHER_PAGE).read_text(encoding="utf-8"), known)
    for name in unknown:
        print(f"{OTHER_PAGE}: no test {name} runs", file=sys.stderr)
    rows = [row for section in sections for row in section.rows]
    print(f"{len(rows)} cases, held by {len({name for row in rows for name in row.names})} tests")
    return 1 if faults or unknown else 0


if __name__ == "__main__":
    sys.exit(main())
