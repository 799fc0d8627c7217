"""The installer as the user has it, a downloaded program: one start of it, with what it does on its way out."""

import itertools
import os
import re
import shutil
import subprocess
from pathlib import Path

from driver import places, wine
from driver.places import home_path, windows_path
from driver.waiting import WaitedTooLong, wait_for

# From the press of a key to the end: adb's server is stopped, the tools are deleted.
END = 60.0

_numbers = itertools.count(1)


class Program:
    """The installer, copied into a folder and started there. A context manager: it does not outlive the test.

    `faults` are calls that are to fail, as the stand-ins read them. `largest_file`: from that size on, a file that it
    writes to is the end of it, in the midst of the write.
    """

    def __init__(self, faults: str = "", folder: Path | None = None, largest_file: int | None = None) -> None:
        self.folder = folder or places.downloads()
        self._file = self.folder / "KalvoApkInstaller.exe"
        self._faults = faults
        # The kernel ends a process that writes beyond it.
        self._limits = [] if largest_file is None else ["prlimit", f"--fsize={largest_file}"]
        self._journal = Path(f"/tmp/journal-{next(_numbers)}.txt")
        self._log = self._journal.with_suffix(".log")
        self._transcript = self._journal.with_suffix(".adb")

    def __enter__(self) -> "Program":
        if not self._file.is_file():
            shutil.copy(places.installer(), self._file)
        environment = {**os.environ, "KALVO_FAULTS": self._faults, "KALVO_JOURNAL": home_path(self._journal)}
        environment["KALVO_TRANSCRIPT"] = home_path(self._transcript)
        command = [*self._limits, "wine", str(places.launcher()), windows_path(self._file)]
        # Into a file: adb's server would hold a pipe open for as long as it lives.
        with self._log.open("w") as log:
            self._launcher = subprocess.Popen(
                command, cwd=self.folder, env=environment, stdin=subprocess.DEVNULL, stdout=log, stderr=log
            )
        return self

    def __exit__(self, *_: object) -> None:
        if not self.has_ended:
            self.kill()
        # Its server, which no test is to find that did not start it.
        wine.end_at_once(*wine.adb_processes())

    @property
    def has_ended(self) -> bool:
        return self._launcher.poll() is not None

    def wait(self, seconds: float = END) -> int:
        """Until it has ended; returns its exit code. What has not ended is left as it is, for a look at it."""
        try:
            self._launcher.wait(seconds)
        except subprocess.TimeoutExpired:
            raise AssertionError(f"the installer did not end within {seconds:g} s: {self._lines()}") from None
        return self.exit_code

    @property
    def exit_code(self) -> int:
        """All 32 bits of it."""
        ended = re.fullmatch(r"ended code=(\d+)", (self._lines() or [""])[-1])
        assert ended, f"nobody noted an end: {self._lines()}, {self.said}"
        return int(ended[1])

    def kill(self) -> None:
        """Ends it as a power failure does: at once, in the midst of whatever it does."""

        def is_gone() -> bool:
            # One that has only just been started may have no process yet.
            wine.end_at_once(*self._processes())
            return self.has_ended

        wait_for("the killed installer to be gone", is_gone, END)

    def _processes(self) -> list[int]:
        """The installer's own process: not its launcher, nor what it starts."""
        return [int(process.name) for process in Path("/proc").glob("[0-9]*") if self._is_own(process)]

    def _is_own(self, process: Path) -> bool:
        try:
            is_installer = (process / "cmdline").read_bytes().startswith(windows_path(self._file).encode())
            return is_installer and self._journal.name.encode() in (process / "environ").read_bytes()
        except OSError:  # it has just ended
            return False

    def wait_for_fault(self, function: str) -> None:
        """Until a call of that function has failed, or hangs, as the faults want it."""
        wait_for(f"the call of {function}", lambda: f"fault {function}" in self._lines(), END)

    def check_faults(self) -> None:
        """Every fault that was given must have come to pass."""
        wanted = {re.split("[@#=]", fault)[0] for fault in filter(None, self._faults.split(";"))}
        seen = {line.removeprefix("fault ") for line in self._lines() if line.startswith("fault ")}
        assert wanted == seen, f"{wanted - seen} never came to pass"

    @property
    def journal(self) -> list[str]:
        """What it did on its way out, in order, the exit code last. What was made to fail is not in it."""
        return [line for line in self._lines() if not line.startswith("fault ")]

    def _lines(self) -> list[str]:
        return self._journal.read_text().splitlines() if self._journal.is_file() else []

    @property
    def said(self) -> str:
        """What it, its launcher or Windows printed, which is nothing when all is well."""
        return self._log.read_text()

    @property
    def transcript(self) -> str:
        """What it asked adb, and what adb answered."""
        return self._transcript.read_text(errors="replace") if self._transcript.is_file() else ""


def remove_folder(folder: Path) -> None:
    """Removes it with all that is in it, if it is there."""
    if folder.exists():
        shutil.rmtree(folder)


def left_behind(folder: Path | None = None) -> list[str]:
    """What is in the working folder, by default the usual one, and an adb that goes on running."""
    folder = folder or places.working_folder()
    files = [str(path.relative_to(folder)) for path in folder.rglob("*")]
    return files + ["a running adb.exe"] * (not _adb_ends())


def _adb_ends() -> bool:
    # Its server has been told to end; it does so a moment later.
    try:
        wait_for("adb to end", lambda: not wine.adb_processes())
    except WaitedTooLong:
        return False
    return True
