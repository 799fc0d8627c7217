"""A program of the home's Windows that answers requests, a line each."""

import contextlib
import subprocess
import tempfile
import threading
from pathlib import Path
from typing import Self


class Answering:
    """A context manager: the program ends with its input."""

    def __init__(self, program: Path, *arguments: str, patience: float) -> None:
        """`patience` is how many seconds an answer may take, and is followed by the program's end."""
        self._command = ["wine", str(program), *arguments]
        self._patience = patience

    def __enter__(self) -> Self:
        # Not a pipe for its complaints: adb's server would hold it open.
        self._complaints = tempfile.TemporaryFile("w+", encoding="utf-8", errors="replace")
        pipe = subprocess.PIPE
        self._process = subprocess.Popen(
            self._command, stdin=pipe, stdout=pipe, stderr=self._complaints, text=True, encoding="utf-8"
        )
        return self

    def __exit__(self, *_: object) -> None:
        assert self._process.stdin and self._process.stdout
        with contextlib.suppress(BrokenPipeError):  # it has ended, with a request on its way
            self._process.stdin.close()
        self._process.stdout.close()
        self._complaints.close()
        try:
            self._process.wait(20)
        except subprocess.TimeoutExpired:
            self._process.kill()
            self._process.wait()
            raise AssertionError(f"{self._command[1]} did not end with its input") from None

    @property
    def answers(self) -> bool:
        """Whether it still runs."""
        return self._process.poll() is None

    def ask(self, request: str) -> str:
        """Its answer, a line without the end."""
        assert self._process.stdin and self._process.stdout
        patience = threading.Timer(self._patience, self._process.kill)
        patience.start()
        answer = ""
        with contextlib.suppress(BrokenPipeError):  # it has ended
            self._process.stdin.write(request + "\n")
            self._process.stdin.flush()
            answer = self._process.stdout.readline()
        patience.cancel()
        if not answer:
            code = self._process.wait(20)
            self._complaints.seek(0)
            raise RuntimeError(f"no answer to {request!r}, exit {code}: {self._complaints.read()}")
        return answer.rstrip("\r\n")
