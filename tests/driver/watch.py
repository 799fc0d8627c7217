"""The watch on the other host of the home: a program that plays its side."""

import subprocess
import tempfile
from pathlib import Path

from driver import network, places
from driver.waiting import wait_for


class Watch:
    """An emulated watch with wireless debugging turned on. A context manager: it is switched off at the end."""

    address = "192.168.1.100"

    def __init__(self, *switches: str, port: int = 43210, pairing_port: int = 37099, code: str = "482915") -> None:
        self.port = port
        self.pairing_port = pairing_port
        self.code = code
        self._switches = switches
        folder = Path(tempfile.mkdtemp(prefix="watch-"))
        self.store = folder / "installed.apk"
        self._log = folder / "events.txt"

    def __enter__(self) -> "Watch":
        command = [str(places.emulated_watch()), "--address", self.address, "--port", str(self.port)]
        command += ["--pairing-port", str(self.pairing_port), "--code", self.code, "--store", str(self.store)]
        with self._log.open("w") as log:
            self._process = subprocess.Popen(
                network.on_watch(*command, *self._switches), stdout=log, stderr=subprocess.STDOUT
            )
        self.wait_for_event("listening ")
        return self

    def __exit__(self, *_: object) -> None:
        self.switch_off()

    def switch_off(self) -> None:
        """Ends wireless debugging and everything that goes on with it. One that is off already stays so."""
        if self._process.returncode is not None:
            return
        self._check_that_it_runs()
        self._process.terminate()
        try:
            self._process.wait(10)
        except subprocess.TimeoutExpired:
            self._process.kill()
            self._process.wait()
            raise AssertionError(f"the watch could not be switched off: {self.events}") from None

    def _check_that_it_runs(self) -> None:
        code = self._process.poll()
        assert code is None, f"the watch ended with {code}: {self.events}"

    @property
    def events(self) -> list[str]:
        """What happened to it, a line each, from the start."""
        return self._log.read_text().splitlines()

    def wait_for_event(self, start: str, seconds: float = 10.0) -> str:
        """Until an event that starts so has happened; returns the first."""

        def find() -> str:
            self._check_that_it_runs()
            return next((event for event in self.events if event.startswith(start)), "")

        return wait_for(f'the watch to say "{start}"', find, seconds)

    def has_received(self, package: Path) -> bool:
        """Whether what was installed is that package, byte for byte."""
        return self.store.is_file() and self.store.read_bytes() == package.read_bytes()


class SecondWatch(Watch):
    """Another watch of the same home, at the other address of that host."""

    address = "192.168.1.1"
