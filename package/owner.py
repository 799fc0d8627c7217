#!/usr/bin/env python3
"""Prints what the owner of the product has still to fill in: the boxes nobody ticked in README's section for the owner.

    owner.py README.md

Prints nothing when there are none.
"""

import re
import sys
from pathlib import Path

HEADING = re.compile(r"#+ For the owner\s*$")


def open_points(readme: str) -> list[str]:
    """Each point with the lines that continue it, as they stand in the text."""
    points: list[str] = []
    inside = wanted = False
    for line in readme.splitlines():
        if line.startswith("#"):
            inside, wanted = HEADING.match(line) is not None, False
        elif line.startswith("- ["):
            wanted = inside and line.startswith("- [ ] ")
            if wanted:
                points.append(line)
        elif wanted and line.startswith("  "):
            points[-1] += "\n" + line
        else:
            wanted = False
    return points


def main() -> None:
    for point in open_points(Path(sys.argv[1]).read_text(encoding="utf-8")):
        print(point)


if __name__ == "__main__":
    main()
