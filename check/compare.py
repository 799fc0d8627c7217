#!/usr/bin/env python3
"""What a report says differently from ours, claim by claim, and what would have to change here for it.

    compare.py CHECKOUT REPORT.json [OURS.json]

Without OURS.json ours is what the tests hold our own run to: everything holds, but for what check/wine.txt excludes.
Ends with 1 when anything is different.
"""

import json
import sys
from dataclasses import dataclass
from pathlib import Path

import page

HOLDS, NOT_TRIED = "holds", "not tried"


@dataclass(frozen=True)
class Answer:
    answer: str
    words: str  # what was expected and seen, or why it was not tried


def answers_of(report: Path) -> dict[str, Answer]:
    claims = json.loads(report.read_text(encoding="utf-8"))["claims"]
    return {
        claim["id"]: Answer(
            claim["answer"],
            claim["why"] if claim["answer"] == NOT_TRIED else f"expected {claim['expected']}; seen {claim['seen']}",
        )
        for claim in claims
    }


def ours_as_tested(checkout: Path, rows: list[page.Row]) -> dict[str, Answer]:
    answers = {row.id: Answer(HOLDS, "") for row in rows}
    for line in (checkout / "check/wine.txt").read_text(encoding="utf-8").splitlines():
        if line.startswith("not-tried "):
            _, claim, why = line.split(" ", 2)
            answers[claim] = Answer(NOT_TRIED, why)
    return answers


def differences(theirs: dict[str, Answer], ours: dict[str, Answer], rows: list[page.Row]) -> list[str]:
    found = []
    for row in rows:
        their = theirs.get(row.id, Answer("missing", "the report is of another version of the check"))
        our = ours.get(row.id, Answer("missing", "our report is of another version of the check"))
        if their.answer == our.answer:
            continue
        found.append(f"{row.id}: {row.claim}\n   theirs: {their.answer}; {their.words}\n   ours: {our.answer}"
                     + (f"; {our.words}" if our.words else ""))
        if their.answer != HOLDS:
            standins, tests = (", ".join(names) or "none" for names in (row.standins, row.tests))
            found.append(f"   stand-in: {standins}\n   tests: {tests}")
    unknown = theirs.keys() - {row.id for row in rows}
    return found + [f"{claim}: {theirs[claim].answer}; {page.PAGE} does not know it" for claim in sorted(unknown)]


def main() -> int:
    if len(sys.argv) not in (3, 4):
        sys.exit("usage: compare.py CHECKOUT REPORT.json [OURS.json]")
    checkout = Path(sys.argv[1])
    rows = page.rows(checkout)
    ours = answers_of(Path(sys.argv[3])) if len(sys.argv) == 4 else ours_as_tested(checkout, rows)
    found = differences(answers_of(Path(sys.argv[2])), ours, rows)
    print("\n".join(found) if found else "nothing is different")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
