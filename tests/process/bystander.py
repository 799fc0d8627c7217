"""Another program on the user's computer."""

import functools
import subprocess
from collections.abc import Iterator
from contextlib import contextmanager
from pathlib import Path

from driver import places
from driver.places import windows_path


def program() -> Path:
    """Itself, as a file."""
    return places.helper("process/bystander")


def _ask(*arguments: str) -> bytes:
    command = ["wine", str(program()), *arguments]
    return subprocess.run(command, check=True, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, timeout=30).stdout


@functools.cache
def describe(code: int) -> str:
    """The system's own words about an error, with the line break at their end."""
    return _ask("describe", str(code)).decode()


@contextmanager
def watch() -> Iterator[dict[int, str]]:
    """Afterwards the windows that have been shown meanwhile, by whomever and however shortly, with their titles."""
    shown: dict[int, str] = {}
    with _beside("watch", "watching") as watcher:
        yield shown
        lines = watcher.communicate(timeout=20)[0].splitlines()
    shown.update((int(handle), title) for handle, title in (line.split(" ", 1) for line in lines))


def crash(process: int) -> None:
    """Makes a process, named by the number that its windows tell, do what no program may."""
    _ask("crash", str(process))


# What load_library has loaded.
ASKED_FOR = "asked-for.dll"


def load_library(process: int) -> bool:
    """Has a process, named as above, load a library by its name alone, as parts of the system do. Whether it did."""
    return {b"yes": True, b"no": False}[_ask("ask", str(process)).strip()]


@contextmanager
def hold(file: Path) -> Iterator[None]:
    """Keeps a file open so that nobody else can open or delete it."""
    with _beside("hold", windows_path(file), "holding") as holder:
        yield
        holder.communicate(timeout=20)
    assert holder.returncode == 0, f"{file} was not given back"


@contextmanager
def _beside(*arguments: str) -> Iterator[subprocess.Popen[str]]:
    """It does that, the last argument being what it says when it does, until the end of its input."""
    *words, begins = arguments
    command = ["wine", str(program()), *words]
    with subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True) as beside:
        assert beside.stdout
        assert beside.stdout.readline() == f"{begins}\n", f"it cannot {' '.join(words)}"
        yield beside
