"""What scripts/windows-check compare prints."""

import json
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

import checking
import page
from checking import CHECKOUT


def own_answers() -> list[dict]:
    """A report that is just like ours."""
    lines = (CHECKOUT / "check/wine.txt").read_text(encoding="utf-8").splitlines()
    why = dict(line.split(" ", 2)[1:] for line in lines if line.startswith("not-tried "))
    return [
        {"id": row.id, "answer": "not tried", "why": why[row.id]}
        if row.id in why
        else {"id": row.id, "answer": "holds", "expected": "a", "seen": "a"}
        for row in page.rows(CHECKOUT)
    ]


class Compare(unittest.TestCase):
    def compare(self, claims: list[dict], *ours: list[dict]) -> tuple[int, str]:
        with tempfile.TemporaryDirectory() as folder:
            files = [Path(folder, f"{number}.json") for number in range(1 + len(ours))]
            for file, each in zip(files, (claims, *ours), strict=True):
                file.write_text(json.dumps({"claims": each}), encoding="utf-8")
            command: list[str | Path] = [sys.executable, "-B", CHECKOUT / "check/compare.py", CHECKOUT, *files]
            done = subprocess.run(command, check=False, capture_output=True, text=True)
            self.assertEqual(done.stderr, "")
            return done.returncode, done.stdout

    def changed(self, claim: str, **answer: str) -> list[dict]:
        claims = [{"id": claim, **answer} if each["id"] == claim else each for each in own_answers()]
        self.assertNotEqual(claims, own_answers())
        return claims

    def test_a_report_like_ours_is_no_different(self) -> None:
        self.assertEqual(self.compare(own_answers()), (0, "nothing is different\n"))

    def test_a_claim_that_does_not_hold_names_the_stand_in_and_the_tests(self) -> None:
        other = self.changed("frame.tab", answer="does not hold", expected="1 2", seen="2 1")
        row = next(row for row in page.rows(CHECKOUT) if row.id == "frame.tab")
        said = (
            f"frame.tab: {row.claim}\n   theirs: does not hold; expected 1 2; seen 2 1\n   ours: holds\n"
            f"   stand-in: wine/frame/FrameKeyboard.cpp\n   tests: wine.standins, person.looks_96\n"
        )
        self.assertEqual(self.compare(other), (1, said))
        # With another report as ours.
        self.assertEqual(self.compare(other, other)[0], 0)
        self.assertEqual(self.compare(own_answers(), other)[0], 1)

    def test_what_wine_cannot_answer_may_hold_elsewhere(self) -> None:
        status, said = self.compare(self.changed("frame.icon", answer="holds", expected="a", seen="a"))
        self.assertEqual(status, 1)
        self.assertIn("theirs: holds", said)
        self.assertIn("ours: not tried; a window of another program tells no icon", said)

    def test_a_claim_that_is_missing_or_unknown_is_told(self) -> None:
        claims = [each for each in own_answers() if each["id"] != "frame.tab"]
        status, said = self.compare([*claims, {"id": "frame.new", "answer": "holds", "expected": "", "seen": ""}])
        self.assertEqual(status, 1)
        self.assertIn("frame.tab", said)
        self.assertIn("frame.new: holds", said)


if __name__ == "__main__":
    checking.main()
