"""docs/windows-check.md: the rows of its tables."""

import re
from dataclasses import dataclass
from pathlib import Path

PAGE = Path("docs/windows-check.md")


@dataclass(frozen=True)
class Row:
    """A claim as the page tells it, and what holds it here: stand-ins, and tests as CTest names them."""

    id: str
    claim: str
    how: str
    standins: tuple[str, ...]
    tests: tuple[str, ...]


def rows(checkout: Path) -> list[Row]:
    found = []
    for line in (checkout / PAGE).read_text(encoding="utf-8").splitlines():
        cells = [cell.strip() for cell in line.strip("|").split("|")]
        if line.startswith("| `") and len(cells) == 5:
            standins, tests = (tuple(re.findall(r"`([^`]+)`", cell)) for cell in cells[3:])
            found.append(Row(cells[0].strip("`"), cells[1], cells[2], standins, tests))
    return found
