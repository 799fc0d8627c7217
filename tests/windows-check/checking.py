"""The check for Windows, as somebody runs it who has its archive and nothing else: in this home's own Windows."""

import json
import os
import subprocess
import sys
import unittest
import zipfile
from dataclasses import dataclass, field
from pathlib import Path

from driver import places
from driver.places import CHECKOUT, drive_c, windows_path

SURROUNDINGS = CHECKOUT / "check" / "wine.txt"

# How Check.exe ends.
ALL_HOLD, SOME_DO_NOT, REFUSED, CANCELLED, NO_REPORT = range(5)


def archive() -> Path:
    """What scripts/windows-check makes, made of the build at hand."""
    return Path(os.environ["KALVO_WINDOWS_CHECK"])


@dataclass(frozen=True)
class Report:
    """What the check came to, by the ids of the claims."""

    status: int
    text: str = field(repr=False)
    whole: dict = field(repr=False)

    @property
    def claims(self) -> dict[str, dict]:
        return {claim["id"]: claim for claim in self.whole["claims"]}

    def ids(self, answer: str) -> list[str]:
        return [claim["id"] for claim in self.whole["claims"] if claim["answer"] == answer]

    def say_what_does_not_hold(self) -> str:
        return "\n".join(
            f"{claim['id']}: {claim['claim']}\n   expected: {claim['expected']}\n   seen: {claim['seen']}"
            for claim in self.whole["claims"]
            if claim["answer"] == "does not hold"
        )


class WindowsCheck:
    """The unpacked archive, on drive C, with the launcher of the stand-ins elsewhere on it."""

    def __init__(self) -> None:
        self.folder = drive_c("WindowsCheck")
        with zipfile.ZipFile(archive()) as packed:
            packed.extractall(self.folder)
        standins = drive_c("StandIns")
        standins.mkdir(exist_ok=True)
        for name in ("launcher.exe", "standins.dll"):
            (standins / name).write_bytes((places.launcher().parent / name).read_bytes())
        self._log = Path("/tmp/check.log")
        text = SURROUNDINGS.read_text(encoding="utf-8").replace("%LAUNCHER%", windows_path(standins / "launcher.exe"))
        told = (line.split(" ", 1) for line in text.splitlines() if not line.startswith("#"))
        self.surroundings = [word for option, value in told for word in (f"--{option}", value)]

    def start(self, *arguments: str) -> subprocess.Popen[bytes]:
        """Away from the checkout."""
        command = ["wine", windows_path(self.folder / "Check.exe"), "--unattended", *self.surroundings, *arguments]
        with self._log.open("w") as log:
            return subprocess.Popen(command, cwd=self.folder, stdin=subprocess.DEVNULL, stdout=log, stderr=log)

    def run(self, *arguments: str, seconds: float = 600) -> Report:
        return self.report(self.start(*arguments).wait(seconds))

    def report(self, status: int) -> Report:
        file = self.folder / "report.json"
        assert file.is_file(), f"there is no report, the check ended with status {status}: {self.said()}"
        text = file.read_text(encoding="utf-8")
        return Report(status, text, json.loads(text))

    def said(self) -> str:
        """What it, or Windows, printed."""
        return self._log.read_text(encoding="utf-8", errors="replace")

    def refusal(self) -> str:
        file = self.folder / "refused.txt"
        return file.read_text(encoding="utf-8") if file.is_file() else ""


def main() -> None:
    """For a script of tests whose first argument is the archive."""
    os.environ["KALVO_WINDOWS_CHECK"] = sys.argv.pop(1)
    unittest.main(module="__main__")
