"""Where the built programs are. Each is looked for once and missed in one clear sentence."""

import os
from pathlib import Path

CHECKOUT = Path(__file__).resolve().parents[2]


def build() -> Path:
    """Where everything that is made goes."""
    return Path(os.environ.get("KALVO_BUILD", CHECKOUT / "build"))


def _host_build() -> Path:
    return Path(os.environ.get("KALVO_HOST_BUILD", CHECKOUT / "build" / "host"))


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


def eyes() -> Path:
    """Reads the windows on the screen."""
    return _built(build() / "tests" / "person" / "eyes.exe")


def commands() -> Path:
    """Issues the product's adb commands on request."""
    return _built(build() / "tests" / "commands" / "commands.exe")


def bench(name: str) -> Path:
    """One of the programs that scripts/bench measures with."""
    return _built(build() / "tests" / "bench" / f"bench-{name}.exe")


def emulated_watch() -> Path:
    """Plays the watch's side of wireless debugging; a program of this machine."""
    return _built(_host_build() / "watch" / "emulated-watch")


def prefix() -> Path:
    """Drive C of the home's own Windows lies in here."""
    return Path(os.environ["WINEPREFIX"])
