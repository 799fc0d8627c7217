"""Tells which tests a script of tests would run when it is called with these arguments; runs none of them.

    selected.py SCRIPT [ARGUMENT...]

The script chooses by itself, down to where it would begin. Prints JSON: `all` and `selected` are the script's tests
and those chosen among them, as Class.method; `bodies` says for each chosen one where its code stands, as
[file, Class.method].
"""

import inspect
import json
import runpy
import sys
import unittest
from collections.abc import Iterator
from pathlib import Path
from typing import Any


def cases_of(suite: unittest.TestSuite) -> Iterator[unittest.TestCase]:
    for test in suite:
        if isinstance(test, unittest.TestSuite):
            yield from cases_of(test)
        else:
            yield test


def name_of(case: unittest.TestCase) -> str:
    return f"{type(case).__qualname__}.{case.id().rpartition('.')[2]}"


def body_of(case: unittest.TestCase) -> tuple[str, str]:
    method = inspect.unwrap(getattr(type(case), case.id().rpartition(".")[2]))
    return str(Path(method.__code__.co_filename).resolve()), method.__qualname__


def tell(program: Any) -> None:
    """In place of the run."""
    whole = unittest.TestLoader().loadTestsFromModule(program.module)
    selected = list(cases_of(program.test))
    json.dump(
        {
            "all": sorted(map(name_of, cases_of(whole))),
            "selected": sorted(map(name_of, selected)),
            "bodies": sorted(set(map(body_of, selected))),
        },
        sys.stdout,
    )


def main(script: str) -> None:
    sys.argv.pop(0)
    sys.path[0] = str(Path(script).parent)
    setattr(unittest.TestProgram, "runTests", tell)
    runpy.run_path(script, run_name="__main__")


if __name__ == "__main__":
    main(sys.argv[1])
