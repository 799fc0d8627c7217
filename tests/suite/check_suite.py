#!/usr/bin/env python3
"""Every test that stands in the sources runs: each class and method, and each program of unit tests as a whole.

    check_suite.py CHECKOUT BUILD HOST_BUILD
"""

import sys
from pathlib import Path

from running import running


def main() -> int:
    found = running(*map(Path, sys.argv[1:]))
    for fault in found.faults:
        print(fault, file=sys.stderr)
    print(f"{len(found.names)} tests run")
    return 1 if found.faults else 0


if __name__ == "__main__":
    sys.exit(main())
