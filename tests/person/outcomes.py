"""What the status lines and boxes say about an outcome of adb, read from the product's own table."""

import re

import places

_ROW = re.compile(r'ROW\((\d+), \w+,\s*((?:"(?:[^"\\]|\\.)*"\s*)+)\)')


def messages() -> dict[int, str]:
    """The message of each outcome, by its number."""
    table = (places.CHECKOUT / "adb" / "AdbExitCode.h").read_text().replace("\\\n", "\n")
    found = {int(number): "".join(re.findall(r'"(.*?)"', text)) for number, text in _ROW.findall(table)}
    assert len(found) == 59, f"{len(found)} outcomes in the table"
    return found
