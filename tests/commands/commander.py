"""Asks the product's adb commands one by one; see commands.cpp."""

import json
import subprocess
import threading
from dataclasses import dataclass
from pathlib import Path

import places

# Where its tools are; the blank is meant.
FOLDER = "C:\\adb tools"
ADB = FOLDER + "\\platform-tools\\adb.exe"

# adb gives an address that stays silent this much and more.
PATIENCE = 60.0


@dataclass(frozen=True)
class Answer:
    """What a command came to."""

    outcome: int
    name: str
    boxes: tuple[tuple[str, str], ...]
    sleeps: tuple[int, ...]
    output: str

    @property
    def lines(self) -> list[str]:
        """What adb printed, without what it tells of its server's start. Lines end with CR LF, nothing else is cut."""
        lines = self.output.removesuffix("\r\n").split("\r\n") if self.output else []
        return [line for line in lines if not line.startswith("* daemon ")]


class Commander:
    """The program that issues the commands. A context manager; adb's server does not outlive it."""

    def __enter__(self) -> "Commander":
        program = places.build() / "tests" / "commands" / "commands.exe"
        if not program.is_file():
            raise FileNotFoundError(f"{program} is not built")
        # Not a pipe for its complaints: adb's server would hold it open.
        self._complaints = Path("/tmp/commands.txt")
        with self._complaints.open("w") as complaints:
            self._process = subprocess.Popen(
                ["wine", program, FOLDER],
                stdin=subprocess.PIPE,
                stdout=subprocess.PIPE,
                stderr=complaints,
                text=True,
                encoding="utf-8",
            )
        return self

    def __exit__(self, *_: object) -> None:
        assert self._process.stdin and self._process.stdout
        if self._process.poll() is None:
            self.kill_server()
        self._process.stdin.close()
        self._process.stdout.close()
        self._process.wait(20)

    def kill_server(self) -> Answer:
        return self._ask("kill-server")

    def pair(self, address: str, code: str) -> Answer:
        return self._ask("pair", address, code)

    def connect(self, address: str) -> Answer:
        return self._ask("connect", address)

    def install(self, address: str, path: str) -> Answer:
        return self._ask("install", address, path)

    def _ask(self, *words: str) -> Answer:
        assert self._process.stdin and self._process.stdout
        patience = threading.Timer(PATIENCE, self._process.kill)
        patience.start()
        self._process.stdin.write("\t".join(words) + "\n")
        self._process.stdin.flush()
        answer = self._process.stdout.readline()
        patience.cancel()
        if not answer:
            raise AssertionError(f"no answer to {words}: {self._complaints.read_text()}, exit {self._process.wait(20)}")
        told = json.loads(answer)
        boxes = tuple((caption, text) for caption, text in told["boxes"])
        return Answer(told["outcome"], told["name"], boxes, tuple(told["sleeps"]), told["output"])
