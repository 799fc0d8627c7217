"""The program: what somebody who starts it by hand relies on, and a script that does."""

import re
import signal
import socket
import subprocess
import unittest
from pathlib import Path

from driver import places

README = Path(__file__).resolve().parents[1] / "README.md"
# Port 0 is one that is free.
REQUIRED = ("--address", "127.0.0.1", "--port", "0", "--pairing-port", "0", "--code", "123456", "--store", "/dev/null")


def run(*arguments: str) -> tuple[int, str, str]:
    """One that is not to stay: its exit status, its output, its errors."""
    command = [str(places.emulated_watch()), *arguments]
    done = subprocess.run(command, capture_output=True, text=True, timeout=30, check=False)
    return done.returncode, done.stdout, done.stderr


class Program(unittest.TestCase):
    def test_serves_until_it_is_told_to_stop(self) -> None:
        for stop in (signal.SIGTERM, signal.SIGINT):
            with self.subTest(stop.name):
                self.stop_by(stop)

    def stop_by(self, stop: signal.Signals) -> None:
        command = [str(places.emulated_watch()), *REQUIRED]
        with subprocess.Popen(command, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True) as watch:
            try:
                assert watch.stdout
                first = watch.stdout.readline()
                self.assertRegex(first, r"^listening 127\.0\.0\.1 debugging [1-9]\d* pairing [1-9]\d* code 123456\n$")
                with socket.create_connection(("127.0.0.1", int(first.split()[3]))):
                    self.assertTrue(watch.stdout.readline().startswith("debugging: connection from 127.0.0.1:"))
                    watch.send_signal(stop)
                    self.assertEqual(watch.communicate(timeout=30), ("debugging: closed\nstopped\n", ""))
                self.assertEqual(watch.returncode, 0)
            finally:
                watch.kill()

    def test_says_in_one_line_why_it_does_not_start(self) -> None:
        with socket.create_server(("127.0.0.1", 0)) as taken:
            port = str(taken.getsockname()[1])
            for arguments, reason in (
                (REQUIRED[2:], "--address is missing"),
                ((*REQUIRED, "--port", port), f"cannot listen on 127.0.0.1:{port}: Address already in use"),
                ((*REQUIRED, "--pairings", str(README)), "not a key of adb's"),
            ):
                with self.subTest(reason):
                    self.assertEqual(run(*arguments), (1, "", f"emulated-watch: {reason}; --help tells more\n"))

    def test_its_help_explains_every_switch(self) -> None:
        status, said, errors = run("--help")
        self.assertEqual((status, errors), (0, ""))
        usage, *lines = said.splitlines()
        self.assertEqual(usage, "usage: emulated-watch SWITCHES; the first five must be given")
        switches = []
        for line in lines:
            # A column for the switch and its value, one for what it does.
            self.assertRegex(line, r"^  (?=.{19}\S)--[a-z-]+( [A-Z]+)? +\S.*")
            switches.append(line.split()[0])
        self.assertEqual(tuple(switches[:5]), REQUIRED[::2])
        named = set(re.findall(r"--[a-z][a-z-]+", README.read_text(encoding="utf-8"))) - {"--help"}
        self.assertIn("--reply", named)
        self.assertLessEqual(named, set(switches))


if __name__ == "__main__":
    unittest.main()
