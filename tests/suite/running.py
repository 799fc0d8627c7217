"""Which tests CTest runs, asked of CTest and of the tests themselves. As a script it fails over those that stand in the
sources and do not run: each class and method, and each program of unit tests as a whole.

    running.py CHECKOUT BUILD HOST_BUILD
"""

import ast
import json
import os
import re
import subprocess
import sys
from collections.abc import Iterator
from concurrent.futures import ThreadPoolExecutor
from dataclasses import dataclass, field
from pathlib import Path

FOLDERS = ("tests", "wine", "watch")
SELECTED = Path(__file__).with_name("selected.py")
TEST_OF_CPP = re.compile(r"^(?:TYPED_)?TEST(?:_F|_P)?\((\w+),\s*(\w+)\)", re.MULTILINE)


@dataclass
class Running:
    """The names of all tests that run, and what does not run though it stands in the sources."""

    names: set[str] = field(default_factory=set)
    faults: list[str] = field(default_factory=list)


@dataclass(frozen=True)
class Call:
    """A script of tests with its arguments, as a CTest test calls it."""

    script: Path
    arguments: tuple[str, ...]
    environment: tuple[str, ...]


def sources(checkout: Path, pattern: str) -> list[Path]:
    return sorted(path for folder in FOLDERS for path in (checkout / folder).rglob(pattern))


def ctest_tests(build: Path) -> list[dict]:
    command = ["ctest", "--test-dir", str(build), "--show-only=json-v1"]
    listing = subprocess.run(command, check=True, capture_output=True, text=True).stdout
    return [test for test in json.loads(listing)["tests"] if not property_of(test, "DISABLED", False)]


def property_of(test: dict, name: str, default):
    return next((item["value"] for item in test["properties"] if item["name"] == name), default)


def running(checkout: Path, build: Path, host_build: Path) -> Running:
    tests = ctest_tests(build)
    found = Running({test["name"] for test in tests})
    add_python_tests(found, checkout, tests)
    add_unit_tests(found, checkout, [build, host_build], tests)
    return found


# Python: each script says itself what its arguments choose.


def calls_of(test: dict) -> Iterator[Call]:
    """The script of tests in a command, with what follows it."""
    words = test.get("command", [])
    environment = tuple(property_of(test, "ENVIRONMENT", []))
    for number, word in enumerate(words):
        if Path(word).name.startswith("test_") and word.endswith(".py"):
            yield Call(Path(word).resolve(), tuple(words[number + 1 :]), environment)


def ask(call: Call) -> dict:
    command = [sys.executable, "-B", str(SELECTED), str(call.script), *call.arguments]
    environment = {**os.environ, **dict(setting.split("=", 1) for setting in call.environment)}
    answer = subprocess.run(command, capture_output=True, text=True, env=environment, check=False)
    if answer.returncode != 0:
        raise RuntimeError(f"{call.script.name} {' '.join(call.arguments)}:\n{answer.stderr}")
    return json.loads(answer.stdout)


def bodies_in(source: Path) -> Iterator[tuple[str, str]]:
    for item in ast.parse(source.read_text(encoding="utf-8")).body:
        if isinstance(item, ast.ClassDef):
            for part in item.body:
                if isinstance(part, ast.FunctionDef | ast.AsyncFunctionDef) and part.name.startswith("test"):
                    yield str(source.resolve()), f"{item.name}.{part.name}"


def add_python_tests(found: Running, checkout: Path, tests: list[dict]) -> None:
    calls = sorted({call for test in tests for call in calls_of(test)}, key=str)
    with ThreadPoolExecutor(os.cpu_count()) as pool:
        answers = list(pool.map(ask, calls))
    whole = {(call.script.stem, name) for call, answer in zip(calls, answers, strict=True) for name in answer["all"]}
    run = {(call.script.stem, name) for call, answer in zip(calls, answers, strict=True) for name in answer["selected"]}
    found.names |= {f"{script}.{name}" for script, name in run}
    found.faults += [f"no CTest test runs {script}.{name}" for script, name in sorted(whole - run)]

    reached = {tuple(body) for answer in answers for body in answer["bodies"]}
    written = {body for source in sources(checkout, "*.py") for body in bodies_in(source)}
    for file, name in sorted(written - reached):
        if (Path(file).stem, name) not in whole:
            found.faults.append(f"no CTest test runs {name} of {Path(file).relative_to(checkout.resolve())}")


# C++: a test runs where the program that its file is compiled into is a CTest test, whole.


def programs_by_source(builds: list[Path]) -> dict[Path, set[str]]:
    programs: dict[Path, set[str]] = {}
    for commands in (build / "compile_commands.json" for build in builds):
        for entry in json.loads(commands.read_text(encoding="utf-8")) if commands.exists() else []:
            program = re.search(r"([^/]+)\.dir/", entry["output"])
            if program:
                programs.setdefault(Path(entry["file"]).resolve(), set()).add(program[1])
    return programs


def programs_run_whole(tests: list[dict]) -> set[str]:
    programs = set()
    for test in tests:
        settings = property_of(test, "ENVIRONMENT", [])
        words = test.get("command", [])
        if not any("gtest_filter" in word for word in words) and not any("GTEST_" in item for item in settings):
            programs |= {Path(word).name.removesuffix(".exe") for word in words}
    return programs


def add_unit_tests(found: Running, checkout: Path, builds: list[Path], tests: list[dict]) -> None:
    programs = programs_by_source(builds)
    run = programs_run_whole(tests)
    for source in sources(checkout, "*.cpp"):
        cases = TEST_OF_CPP.findall(source.read_text(encoding="utf-8"))
        if not cases:
            continue
        where = source.relative_to(checkout)
        of_source = programs.get(source.resolve(), set())
        if not of_source:
            found.faults.append(f"no program has the tests of {where}")
        for program in sorted(of_source - run):
            found.faults.append(f"no CTest test runs the whole of {program}, which has the tests of {where}")
        for suite, case in cases:
            if suite.startswith("DISABLED_") or case.startswith("DISABLED_"):
                found.faults.append(f"{suite}.{case} is disabled")
            elif of_source & run:
                found.names.add(f"{suite}.{case}")


def main() -> int:
    found = running(*map(Path, sys.argv[1:]))
    for fault in found.faults:
        print(fault, file=sys.stderr)
    print(f"{len(found.names)} tests run")
    return 1 if found.faults else 0


if __name__ == "__main__":
    sys.exit(main())
