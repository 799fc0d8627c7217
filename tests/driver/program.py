"""The installer as the user has it: a downloaded program with the package beside it."""

import os
import re
import shutil
import subprocess
from pathlib import Path

import places
from waiting import WaitedTooLong, wait_for


def downloads() -> Path:
    """The user's folder of downloads, made when it is missing."""
    folder = places.prefix() / "drive_c" / "users" / "root" / "Downloads"
    folder.mkdir(parents=True, exist_ok=True)
    return folder


def own_folder() -> Path:
    """A folder right on drive C, for pictures that show a path and nobody's name in it."""
    folder = places.prefix() / "drive_c" / "Solvane"
    folder.mkdir(exist_ok=True)
    return folder


def windows_path(path: Path) -> str:
    """How a program of the home's Windows names a file on its drive C."""
    return "C:\\" + "\\".join(path.relative_to(places.prefix() / "drive_c").parts)


def home_path(path: Path) -> str:
    """How a program of the home's Windows names a file of this machine."""
    return "Z:" + str(path).replace("/", "\\")


def remove_folder(folder: Path) -> None:
    """Removes it with all that is in it, if it is there."""
    if folder.exists():
        shutil.rmtree(folder)


class Program:
    """The installer, copied into a folder and started there. A context manager: it does not outlive the test."""

    def __init__(self, folder: Path | None = None) -> None:
        self.folder = folder or downloads()
        self.file = self.folder / "KalvoApkInstaller.exe"
        self._log = Path("/tmp/installer.log")
        self._transcript = Path("/tmp/installer-and-adb.txt")

    def __enter__(self) -> "Program":
        shutil.copy(places.installer(), self.file)
        self._transcript.unlink(missing_ok=True)
        # Into a file: adb's server would hold a pipe open for as long as it lives.
        with self._log.open("w") as log:
            self._process = subprocess.Popen(
                ["wine", places.launcher(), windows_path(self.file)],
                cwd=self.folder,
                env={**os.environ, "KALVO_TRANSCRIPT": home_path(self._transcript)},
                stdin=subprocess.DEVNULL,
                stdout=log,
                stderr=subprocess.STDOUT,
            )
        return self

    def __exit__(self, *_: object) -> None:
        if self._process.poll() is None:
            # The installer is a child of the launcher and adb's server one of the installer: with the
            # home's Windows all of them end.
            subprocess.run(["wineserver", "--kill"], check=False, timeout=30)
            self._process.wait(30)

    def wait(self, seconds: float = 60.0) -> int:
        """Until the program has ended; returns its exit code."""
        try:
            return self._process.wait(seconds)
        except subprocess.TimeoutExpired:
            raise AssertionError(f"the installer did not end within {seconds:g} s") from None

    @property
    def has_ended(self) -> bool:
        return self._process.poll() is not None

    @property
    def said(self) -> str:
        """What it, its launcher or Windows printed, which is nothing when all is well."""
        return self._log.read_text()

    @property
    def transcript(self) -> str:
        """What it asked adb, and what adb answered."""
        return self._transcript.read_text(errors="replace") if self._transcript.is_file() else ""


def working_folder() -> Path:
    """Where the installer keeps its tools while it runs."""
    return places.prefix() / "drive_c" / "users" / "root" / "AppData" / "Local" / "KALVO_ApkInstaller"


def left_behind() -> list[str]:
    """What is in the working folder, and an adb that goes on running."""
    folder = working_folder()
    files = [str(path.relative_to(folder)) for path in folder.rglob("*")] if folder.is_dir() else []
    return files + ["a running adb.exe"] * (not _adb_ends())


def _adb_ends() -> bool:
    # Its server has been told to end; it does so a moment later.
    try:
        wait_for("adb to end", lambda: not adb_is_running(), 5)
    except WaitedTooLong:
        return False
    return True


def stop_adb() -> None:
    """Stops adb's server as somebody else would who uses adb on this computer."""
    adb = working_folder() / "platform-tools" / "adb.exe"
    quiet = subprocess.DEVNULL
    subprocess.run(["wine", adb, "kill-server"], check=True, timeout=30, stdin=quiet, stdout=quiet, stderr=quiet)


def adb_processes() -> list[int]:
    """The ids of this home's processes of adb. Its server goes by the bare name."""
    processes = Path("/proc").glob("[0-9]*")
    return [int(process.name) for process in processes if _program_name(process) in ("adb", "adb.exe")]


def adb_is_running() -> bool:
    """Whether adb's server is among the processes of this home."""
    return bool(adb_processes())


def _program_name(process: Path) -> str:
    try:
        program = (process / "cmdline").read_text(errors="replace").split("\0")[0]
    except OSError:  # it has just ended
        return ""
    return re.split(r"[\\/]", program)[-1].lower()
