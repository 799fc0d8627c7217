"""What the guide says about boxes: which of them its tables explain."""

import re
from functools import cache

import places
from wizard import MessageBox


@cache
def _explained() -> list[list[str]]:
    """What stands in quotation marks in the first columns, in parts where it is left out what varies."""
    guide = (places.CHECKOUT / "docs" / "guide.md").read_text()
    rows = re.findall(r"^\| (.+?) \|", guide, re.MULTILINE)
    return [quoted.split(" … ") for row in rows for quoted in re.findall('"([^"]+)"', row)]


def explains(box: MessageBox) -> bool:
    """Whether somebody who sees this box finds it there."""
    words = f"{box.caption}\n{box.message}"
    return any(all(part in words for part in parts) for parts in _explained())
