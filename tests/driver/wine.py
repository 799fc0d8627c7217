"""Other programs of the home's Windows, quiet ones: started, asked for, ended."""

import contextlib
import os
import re
import signal
import subprocess
from pathlib import Path

from driver import places
from driver.waiting import wait_for


def start(*command: str | Path, folder: Path | None = None) -> subprocess.Popen[bytes]:
    """Starts a program of which nothing is wanted but that it runs."""
    quiet = subprocess.DEVNULL
    return subprocess.Popen(["wine", *command], cwd=folder, stdin=quiet, stdout=quiet, stderr=quiet)


def run(*command: str | Path, check: bool = True) -> None:
    """Runs one to its end, which must be a success."""
    with start(*command) as process:
        try:
            code = process.wait(30)
        except subprocess.TimeoutExpired:
            process.kill()
            raise
    assert code == 0 or not check, f"{command} ended with {code}"


def run_adb(*words: str) -> None:
    """The installer's own adb, as somebody else runs it who uses adb on this computer."""
    run(places.working_folder() / "platform-tools" / "adb.exe", *words)


def start_adb_server() -> None:
    """As any command of adb does that needs a server. It holds its own file open."""
    run_adb("start-server")
    wait_for("adb's server", lambda: processes_called("adb"))


def processes_called(*names: str) -> list[int]:
    """The home's processes that run a program of such a name, in lower case."""
    return [process for process, name in _programs().items() if name in names]


def adb_processes() -> list[int]:
    """Those of adb. Its server calls itself just "adb"."""
    return processes_called("adb", "adb.exe")


def running() -> list[str]:
    """The programs that no run may leave behind and that run now: the installer, its launcher, adb."""
    names = {"kalvoapkinstaller.exe", "launcher.exe", "adb.exe", "adb"}
    return [name for name in _programs().values() if name in names]


def end_at_once(*processes: int) -> None:
    """As the task manager does, or a power failure."""
    for process in processes:
        with contextlib.suppress(ProcessLookupError):  # it has just ended
            os.kill(process, signal.SIGKILL)


def _programs() -> dict[int, str]:
    """Every process of the home, and the name that it was called by."""
    return {int(process.name): _name_of(process) for process in Path("/proc").glob("[0-9]*")}


def _name_of(process: Path) -> str:
    try:
        arguments = (process / "cmdline").read_text(errors="replace").split("\0")
    except OSError:  # it has just ended
        return ""
    # The installer gives adb a command line that begins with a blank instead of a name.
    is_command = not arguments[0] and any(arguments)
    return "adb.exe" if is_command else re.split(r"[\\/]", arguments[0])[-1].lower()
