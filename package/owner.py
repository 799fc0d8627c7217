#!/usr/bin/env python3
"""Prints what the owner of the product has still to fill in: the boxes nobody ticked in README's section for the owner.

    owner.py README.md
"""

import re
import sys
from pathlib import Path


def open_points(readme: str) -> list[str]:
    """Each point with the lines that continue it, as they stand in the text."""
    section = re.search(r"^#+ For the owner *\n(.*?)(?=^#|\Z)", readme, re.MULTILINE | re.DOTALL)
    return re.findall(r"^- \[ \] .*(?:\n  .*)*", section[1], re.MULTILINE) if section else []


def main() -> None:
    for point in open_points(Path(sys.argv[1]).read_text(encoding="utf-8")):
        print(point)


if __name__ == "__main__":
    main()
