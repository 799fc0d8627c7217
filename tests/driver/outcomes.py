"""What the program calls the outcomes of adb, read from the product's own table."""

import re

from driver import places

_ROW = re.compile(r'ROW\((\d+), (\w+),\s*((?:"(?:[^"\\]|\\.)*"\s*)+)\)')


def table() -> list[tuple[int, str, str]]:
    """Number, name and message of every outcome, by number."""
    source = (places.CHECKOUT / "adb" / "AdbExitCode.h").read_text().replace("\\\n", "\n")
    rows = _ROW.findall(source)
    found = sorted((int(number), name, "".join(re.findall(r'"(.*?)"', text))) for number, name, text in rows)
    assert len(found) == 59, f"{len(found)} outcomes in the table"
    return found


def messages() -> dict[int, str]:
    """The message of each outcome, by its number: what status lines and boxes say."""
    return {number: message for number, _, message in table()}
