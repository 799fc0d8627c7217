"""Runs tests of this folder side by side, each in a home of its own: most of their time they wait for adb's pauses.

    side_by_side.py HOME SECONDS SCRIPT [ARGUMENT...] [, SCRIPT [ARGUMENT...]]...

HOME is the program that makes homes; all must be done after SECONDS. Fails when one of them does.
"""

import itertools
import subprocess
import sys
import time
from pathlib import Path


def start(home: str, script: str, *arguments: str) -> subprocess.Popen:
    command = [home, "python3", "-B", Path(__file__).with_name(script), *arguments]
    return subprocess.Popen(
        command, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True
    )


def finish(test: subprocess.Popen, end: float) -> tuple[bool, str]:
    """Whether it passed, and what it said."""
    try:
        said = test.communicate(timeout=max(0.0, end - time.monotonic()))[0]
    except subprocess.TimeoutExpired:
        # The home goes with it, and all that is in the home.
        test.kill()
        return False, test.communicate()[0] + "\nnot done in time"
    return test.returncode == 0, said


def main(home: str, seconds: str, *tests: str) -> int:
    commands = [list(words) for is_end, words in itertools.groupby(tests, lambda word: word == ",") if not is_end]
    end = time.monotonic() + float(seconds)
    results = [finish(test, end) for test in [start(home, *command) for command in commands]]
    for command, (passed, said) in zip(commands, results, strict=True):
        print(*command, "passed" if passed else "FAILED")
        print(said)
    return 0 if results and all(passed for passed, _ in results) else 1


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
