"""Asks the product's adb commands one by one; see commands.cpp."""

import json
from dataclasses import dataclass

from driver import places
from driver.answering import Answering

# Where its tools are; the blank is meant.
FOLDER = "C:\\adb tools"
ADB = FOLDER + "\\platform-tools\\adb.exe"

# The slowest command, a connect to a watch that says nothing, takes adb ten seconds.
PATIENCE = 60.0


@dataclass(frozen=True)
class Answer:
    """What a command came to; the outcome is the name of its row."""

    outcome: str
    boxes: tuple[tuple[str, str], ...]
    sleeps: tuple[int, ...]
    output: str

    @property
    def lines(self) -> list[str]:
        """What adb printed, without what it tells of its server's start. Lines end with CR LF, nothing else is cut."""
        lines = self.output.removesuffix("\r\n").split("\r\n") if self.output else []
        return [line for line in lines if not line.startswith("* daemon ")]


class Commander(Answering):
    """The program that issues the commands. A context manager; adb's server does not outlive it."""

    def __init__(self) -> None:
        super().__init__(places.helper("commands/commands"), FOLDER, patience=PATIENCE)

    def __exit__(self, *reason: object) -> None:
        if self.answers:
            self.kill_server()
        super().__exit__(*reason)

    def kill_server(self) -> Answer:
        return self._issue("kill-server")

    def pair(self, address: str, code: str) -> Answer:
        return self._issue("pair", address, code)

    def connect(self, address: str) -> Answer:
        return self._issue("connect", address)

    def install(self, address: str, path: str) -> Answer:
        return self._issue("install", address, path)

    def _issue(self, *words: str) -> Answer:
        told = json.loads(self.ask("\t".join(words)))
        boxes = tuple((caption, text) for caption, text in told["boxes"])
        return Answer(told["outcome"], boxes, tuple(told["sleeps"]), told["output"])
