"""Another program on the user's computer."""

import functools
import subprocess
from collections.abc import Iterator
from contextlib import contextmanager
from pathlib import Path

import places
from program import windows_path


def program() -> Path:
    """Itself, as a file."""
    return places.build() / "tests" / "process" / "bystander.exe"


def _ask(*arguments: str) -> bytes:
    command = ["wine", program(), *arguments]
    return subprocess.run(command, check=True, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, timeout=30).stdout


@functools.cache
def describe(code: int) -> str:
    """The system's own words about an error, with the line break at their end."""
    return _ask("describe", str(code)).decode()


def count_handles(process: int) -> int:
    """How many handles a process, named by the number that its windows tell, has open."""
    return int(_ask("handles", str(process)))


# What load_library has loaded.
ASKED_FOR = "asked-for.dll"


def load_library(process: int) -> bool:
    """Has a process, named as above, load a library by its name alone, as parts of the system do. Whether it did."""
    return {b"yes": True, b"no": False}[_ask("ask", str(process)).strip()]


@contextmanager
def hold(file: Path) -> Iterator[None]:
    """Keeps a file open so that nobody else can open or delete it."""
    command = ["wine", program(), "hold", windows_path(file)]
    with subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True) as holder:
        assert holder.stdin and holder.stdout
        assert holder.stdout.readline() == "holding\n", f"{file} cannot be held"
        yield
        holder.stdin.close()
        holder.wait(10)
