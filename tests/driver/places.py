"""Where things are: the built programs, each missed in one clear sentence, and the folders of the home's Windows."""

import os
from pathlib import Path

CHECKOUT = Path(__file__).resolve().parents[2]


def build() -> Path:
    """Where everything that is made goes."""
    return Path(os.environ.get("KALVO_BUILD", CHECKOUT / "build"))


def _built(path: Path) -> Path:
    if not path.is_file():
        raise FileNotFoundError(f"{path} is not built")
    return path


def installer() -> Path:
    """The product, as shipped."""
    return _built(build() / "KalvoApkInstaller.exe")


def launcher() -> Path:
    """Starts a program with the stand-ins for what Wine lacks; their library is beside it."""
    return _built(build() / "wine" / "launcher.exe")


def helper(name: str) -> Path:
    """A program of the folder of tests that its name begins with: "driver/eyes"."""
    return _built(build() / "tests" / f"{name}.exe")


def emulated_watch() -> Path:
    """Plays the watch's side of wireless debugging; a program of this machine."""
    return _built(Path(os.environ.get("KALVO_HOST_BUILD", CHECKOUT / "build" / "host")) / "watch" / "emulated-watch")


def prefix() -> Path:
    """Drive C of the home's own Windows lies in here."""
    return Path(os.environ["WINEPREFIX"])


def drive_c(*names: str) -> Path:
    return prefix().joinpath("drive_c", *names)


def account(*names: str) -> Path:
    """The user's own folders, made when they are missing."""
    folder = drive_c("users", "root", *names)
    folder.mkdir(parents=True, exist_ok=True)
    return folder


def downloads() -> Path:
    return account("Downloads")


def own_folder() -> Path:
    """A folder right on drive C, for pictures that show a path and nobody's name in it."""
    folder = drive_c("Solvane")
    folder.mkdir(exist_ok=True)
    return folder


def working_folder() -> Path:
    """Where the installer keeps its tools while it runs."""
    return account("AppData", "Local") / "KALVO_ApkInstaller"


def windows_path(path: Path) -> str:
    """How a program of the home's Windows names a file on its drive C."""
    return "C:\\" + "\\".join(path.relative_to(drive_c()).parts)


def home_path(path: Path) -> str:
    """How a program of the home's Windows names a file of this machine."""
    return "Z:" + str(path).replace("/", "\\")
