"""Builds what one CTest test needs, no more, and runs it, or those of its cases that fit a pattern.

    one.py BUILD HOST_BUILD NAME [PATTERN]

PATTERN is what the test's own framework takes: GoogleTest's filter ('*Pair*'), or a part of the names of Python tests.
"""

import os
import subprocess
import sys
from pathlib import Path

from running import ctest_tests, property_of

# What a test in Python starts besides the programs that its command names.
STARTED_BY_SCRIPTS = ("wizard", "bystander", "commands", "planted", "probe")
HELPERS_OF_SCRIPTS = ("wizard",)


def find(build: Path, name: str) -> dict:
    tests = {test["name"]: test for test in ctest_tests(build)}
    if name not in tests:
        near = [other for other in tests if name.lower() in other.lower()]
        sys.exit(f"one: there is no test {name}" + (f"; there are {', '.join(near)}" if near else ""))
    return tests[name]


def make(build: Path, targets: tuple[str, ...]) -> None:
    subprocess.run(["ninja", "--quiet", "-C", build, *targets], check=True)


def build_for(test: dict, build: Path, host_build: Path) -> None:
    words = [Path(word) for word in test["command"]]
    programs = [word for word in words if word.is_relative_to(build) and not word.is_dir()]
    native = [word for word in programs if word.is_relative_to(host_build)]
    if any(word.suffix == ".py" for word in words):
        make(host_build, HELPERS_OF_SCRIPTS)
        make(build, STARTED_BY_SCRIPTS)
    if native:
        make(host_build, tuple(str(program.relative_to(host_build)) for program in native))
    if others := [program for program in programs if program not in native]:
        make(build, tuple(str(program.relative_to(build)) for program in others))


def chosen(test: dict, pattern: str) -> list[str]:
    is_python = any(word.endswith(".py") for word in test["command"])
    return ["-k", pattern] if is_python else [f"--gtest_filter={pattern}"]


def main() -> int:
    if len(sys.argv) not in (4, 5):
        sys.exit("usage: one.py BUILD HOST_BUILD NAME [PATTERN]")
    build, host_build, name = Path(sys.argv[1]), Path(sys.argv[2]), sys.argv[3]
    test = find(build, name)
    build_for(test, build, host_build)
    environment = dict(setting.split("=", 1) for setting in property_of(test, "ENVIRONMENT", []))
    command = test["command"] + [word for pattern in sys.argv[4:] for word in chosen(test, pattern)]
    folder = property_of(test, "WORKING_DIRECTORY", str(build))
    return subprocess.run(command, cwd=folder, env={**os.environ, **environment}, check=False).returncode


if __name__ == "__main__":
    sys.exit(main())
