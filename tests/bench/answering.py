"""A program of the home's Windows that answers requests, a line each."""

import subprocess
import threading
from pathlib import Path

import places

# Longer than any request takes.
PATIENCE = 120.0


class Answering:
    """One of this folder's programs. A context manager: it ends with its input."""

    def __init__(self, name: str, *arguments: str) -> None:
        self._program = places.build() / "tests" / "bench" / f"{name}.exe"
        self._arguments = arguments
        self._complaints = Path(f"/tmp/{name}.txt")

    def __enter__(self) -> "Answering":
        # Not a pipe for its complaints: adb's server would hold it open.
        with self._complaints.open("w") as complaints:
            self._process = subprocess.Popen(
                ["wine", self._program, *self._arguments],
                stdin=subprocess.PIPE,
                stdout=subprocess.PIPE,
                stderr=complaints,
                text=True,
                encoding="utf-8",
            )
        return self

    def __exit__(self, *_: object) -> None:
        assert self._process.stdin and self._process.stdout
        self._process.stdin.close()
        self._process.stdout.close()
        self._process.wait(20)

    def ask(self, *words: object, between: str = "\t") -> list[float]:
        """The numbers of the answer."""
        assert self._process.stdin and self._process.stdout
        patience = threading.Timer(PATIENCE, self._process.kill)
        patience.start()
        self._process.stdin.write(between.join(map(str, words)) + "\n")
        self._process.stdin.flush()
        answer = self._process.stdout.readline()
        patience.cancel()
        if not answer:
            raise RuntimeError(f"no answer to {words}: {self._complaints.read_text()}exit {self._process.wait(20)}")
        return [float(number) for number in answer.split()]
