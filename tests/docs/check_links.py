#!/usr/bin/env python3
"""Checks what the Markdown pages point at: files, pictures and headings, and the hashes that README repeats.

    check_links.py CHECKOUT
"""

import re
import sys
from pathlib import Path

PINS = "scripts/lib/recipe.sh"

_LINK = re.compile(r"\]\(([^()\s]+)\)")
_CODE = re.compile(r"^```.*?^```|`[^`\n]*`", re.MULTILINE | re.DOTALL)


def pages_in(checkout: Path) -> list[Path]:
    """All but those of what a build has made or fetched."""
    tops = [path for path in checkout.iterdir() if path.is_dir() and path.name not in ("build", ".git")]
    return sorted([*checkout.glob("*.md"), *(page for top in tops for page in top.rglob("*.md"))])


def anchors(page: str) -> set[str]:
    headings = re.findall(r"^#+ (.+)$", _CODE.sub(lambda code: code[0].strip("`"), page), re.MULTILINE)
    return {re.sub(r"[^\w\- ]", "", heading.lower()).replace(" ", "-") for heading in headings}


def faults_of_links(page: Path) -> list[str]:
    faults = []
    for link in _LINK.findall(_CODE.sub("", page.read_text(encoding="utf-8"))):
        if "://" in link:
            continue
        name, _, anchor = link.partition("#")
        target = page.parent / name if name else page
        if not target.exists():
            faults.append(f"{page}: there is no {link}")
        elif anchor and anchor not in anchors(target.read_text(encoding="utf-8")):
            faults.append(f"{page}: {link} has no such heading")
    return faults


def faults_of_pins(checkout: Path) -> list[str]:
    """Who builds without scripts/setup compares with README."""
    pinned = re.findall(r'"([\w.]+) ([0-9a-f]{64})"', (checkout / PINS).read_text(encoding="utf-8"))
    readme = (checkout / "README.md").read_text(encoding="utf-8")
    rows = re.findall(r"^ *\| `([\w.]+)` \| `([0-9a-f]{64})` \|$", readme, re.MULTILINE)
    good = pinned and sorted(pinned) == sorted(rows)
    return [] if good else [f"README.md: its hashes are not those of {PINS}: {pinned}"]


def main() -> int:
    checkout = Path(sys.argv[1])
    pages = pages_in(checkout)
    faults = [fault for page in pages for fault in faults_of_links(page)] + faults_of_pins(checkout)
    for fault in faults:
        print(fault, file=sys.stderr)
    print(f"{len(pages)} pages")
    return 1 if faults or not pages else 0


if __name__ == "__main__":
    sys.exit(main())
