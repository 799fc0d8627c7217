"""One start of the installer as it ships, with faults from outside and a journal of how it ended."""

import itertools
import os
import re
import shutil
import signal
import subprocess
from pathlib import Path

import places
from program import downloads, home_path, windows_path
from waiting import wait_for

_numbers = itertools.count(1)

# From the press of a key to the end: adb's server is stopped, the tools are deleted.
END = 30.0


class Start:
    """The installer, started under the launcher. A context manager: it does not outlive the test.

    `faults` as the stand-ins read them. `largest_file`: from that size on, a file that it writes to is the end of it,
    in the midst of the write.
    """

    def __init__(self, faults: str = "", largest_file: int | None = None, folder: Path | None = None) -> None:
        self._faults = faults
        self._largest_file = largest_file
        self._file = (folder or downloads()) / "KalvoApkInstaller.exe"
        self._journal = Path(f"/tmp/journal-{next(_numbers)}.txt")
        self._log = self._journal.with_suffix(".log")
        self._transcript = self._journal.with_suffix(".adb")

    def __enter__(self) -> "Start":
        if not self._file.is_file():
            shutil.copy(places.installer(), self._file)
        environment = {
            "KALVO_FAULTS": self._faults,
            "KALVO_JOURNAL": home_path(self._journal),
            "KALVO_TRANSCRIPT": home_path(self._transcript),
        }
        with self._log.open("w") as log:
            self._launcher = subprocess.Popen(
                [*self._limits(), "wine", places.launcher(), windows_path(self._file)],
                cwd=self._file.parent,
                env={**os.environ, **environment},
                stdin=subprocess.DEVNULL,
                stdout=log,
                stderr=subprocess.STDOUT,
            )
        return self

    def __exit__(self, *_: object) -> None:
        if not self.has_ended:
            self.kill()

    def _limits(self) -> list[str]:
        # The kernel ends a process that writes beyond it.
        return [] if self._largest_file is None else ["prlimit", f"--fsize={self._largest_file}"]

    @property
    def has_ended(self) -> bool:
        return self._launcher.poll() is not None

    def find_process(self) -> int | None:
        """The installer's own process: not its launcher, nor what it starts."""
        own = str(self._journal.name).encode()
        for process in Path("/proc").glob("[0-9]*"):
            try:
                is_installer = (process / "cmdline").read_bytes().startswith(windows_path(self._file).encode())
                if is_installer and own in (process / "environ").read_bytes():
                    return int(process.name)
            except OSError:  # it has just ended
                continue
        return None

    def wait_for_fault(self, function: str) -> None:
        """Until a call of that function has failed, or hangs, as the faults want it."""
        wait_for(f"the call of {function}", lambda: f"fault {function}" in self._lines(), END)

    def kill(self) -> None:
        """Ends it as a power failure does: at once, in the midst of whatever it does."""
        process = self.find_process()
        if process:
            os.kill(process, signal.SIGKILL)
        try:
            self.wait()
        except AssertionError:
            self._launcher.kill()
            self._launcher.wait()
            raise

    def wait(self, seconds: float = END) -> None:
        """Until it has ended. What has not is left as it is, for a look at it."""
        try:
            self._launcher.wait(seconds)
        except subprocess.TimeoutExpired:
            raise AssertionError(f"the installer did not end within {seconds:g} s: {self._lines()}") from None

    @property
    def exit_code(self) -> int:
        """All 32 bits of it."""
        ended = re.fullmatch(r"ended code=(\d+)", self._lines()[-1])
        assert ended, self._lines()
        return int(ended[1])

    @property
    def journal(self) -> list[str]:
        """What it did on its way out, in order, the exit code last. What was made to fail is not in it."""
        return [line for line in self._lines() if not line.startswith("fault ")]

    def check_faults(self) -> None:
        """Every fault that was given must have come to pass."""
        wanted = {re.split("[@#=]", fault)[0] for fault in filter(None, self._faults.split(";"))}
        seen = {line.removeprefix("fault ") for line in self._lines() if line.startswith("fault ")}
        assert wanted == seen, f"{wanted - seen} never came to pass"

    @property
    def said(self) -> str:
        """What it, its launcher or Windows printed, which is nothing when all is well."""
        return self._log.read_text()

    @property
    def transcript(self) -> str:
        """What it asked adb, and what adb answered."""
        return self._transcript.read_text(errors="replace") if self._transcript.is_file() else ""

    def _lines(self) -> list[str]:
        return self._journal.read_text().splitlines() if self._journal.is_file() else []


def running() -> list[str]:
    """The programs that no run may leave behind and that run now: the installer, its launcher, adb."""
    names = {"kalvoapkinstaller.exe", "launcher.exe", "adb.exe", "adb"}
    return [name for name in _programs().values() if name in names]


def processes_called(name: str) -> set[int]:
    """The home's processes that run a program of that name, in lower case."""
    return {process for process, called in _programs().items() if called == name}


def start_adb_server(adb: Path) -> None:
    """Starts adb's server as any of its commands does that needs one. It holds its own file open."""
    quiet = subprocess.DEVNULL
    subprocess.run(["wine", adb, "start-server"], check=True, timeout=30, stdin=quiet, stdout=quiet, stderr=quiet)
    wait_for("adb's server", lambda: processes_called("adb"))


def _programs() -> dict[int, str]:
    """Every process of the home, and the name that it was called by; adb's server calls itself just "adb"."""
    return {int(process.name): _program_name(process) for process in Path("/proc").glob("[0-9]*")}


def _program_name(process: Path) -> str:
    try:
        arguments = (process / "cmdline").read_text(errors="replace").split("\0")
    except OSError:  # it has just ended
        return ""
    # The installer gives adb a command line that begins with a blank instead of a name.
    is_command = not arguments[0] and any(arguments)
    return "adb.exe" if is_command else re.split(r"[\\/]", arguments[0])[-1].lower()
