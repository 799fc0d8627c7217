"""The tables of messages in the guide: what they hold, and which boxes they explain."""

import re
from functools import cache

from driver import places
from driver.wizard import MessageBox

# How the guide writes what differs from time to time.
VARIES = "…"


def text() -> str:
    return (places.CHECKOUT / "docs" / "guide.md").read_text(encoding="utf-8")


@cache
def rows(*columns: str) -> list[list[str]]:
    """The rows of the table whose first columns have these names, cell by cell."""
    head = "| " + " | ".join(columns) + " |"
    lines = text().splitlines()
    starts = [number for number, line in enumerate(lines) if line.startswith(head)]
    assert len(starts) == 1, f"the guide has {len(starts)} tables that begin with {head}"
    found = []
    for line in lines[starts[0] + 2 :]:
        if not line.startswith("|"):
            break
        found.append([cell.strip().replace(r"\|", "|") for cell in re.split(r"(?<!\\)\|", line)[1:-1]])
    return found


def quoted(cell: str) -> list[str]:
    """What stands in quotation marks."""
    return re.findall('"([^"]+)"', cell)


def boxes() -> list[tuple[list[str], list[str]]]:
    """The beginnings of texts and the captions that go with them, one pair a row."""
    return [(quoted(row[0]), quoted(row[1])) for row in rows("box", "caption")]


def _is_said(quote: str, words: str) -> bool:
    """Whether the words begin as the quote does, with anything for what varies."""
    pattern = ".*".join(re.escape(" ".join(part.split())) for part in quote.split(VARIES))
    return re.match(pattern, " ".join(words.split())) is not None


def explains(box: MessageBox) -> bool:
    """Whether somebody who sees this box finds its text and its caption in one row."""
    return any(
        any(_is_said(quote, box.message) for quote in texts) and box.caption in captions
        for texts, captions in boxes()
    )
