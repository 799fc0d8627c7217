#!/usr/bin/env python3
"""Makes the guide that goes into the download: one HTML file with everything in it.

    make_guide.py OUTPUT.html

Reads guide.md beside this file and the pictures that it names. The same text and pictures give the same bytes. Needs
Python's markdown package. Headings get the anchors that the places where Markdown is shown give them, so that the
links of the text lead to the same places in both.
"""

import base64
import html
import re
import sys
import xml.etree.ElementTree as ET
from pathlib import Path

import markdown
from markdown.extensions import Extension
from markdown.extensions.toc import TocExtension
from markdown.treeprocessors import Treeprocessor

FOLDER = Path(__file__).resolve().parent
KINDS = {".png": "image/png", ".svg": "image/svg+xml"}


def anchor(heading: str, _separator: str = "-") -> str:
    """Lower case, blanks as hyphens, without punctuation."""
    return re.sub(r"[^\w\- ]", "", heading.lower()).replace(" ", "-")


def embedded(picture: Path) -> str:
    data = base64.b64encode(picture.read_bytes()).decode("ascii")
    return f"data:{KINDS[picture.suffix]};base64,{data}"


def size_of(picture: Path) -> tuple[int, int]:
    """Width and height in pixels, so that nothing moves while the page comes up."""
    if picture.suffix == ".svg":
        _, _, width, height = ET.fromstring(picture.read_bytes()).attrib["viewBox"].split()
        return int(width), int(height)
    header = picture.read_bytes()[16:24]
    return int.from_bytes(header[:4]), int.from_bytes(header[4:])


class OneFile(Treeprocessor):
    """Puts the pictures into the page, and into each cell of a table the name of its column, for narrow screens."""

    def run(self, root: ET.Element) -> None:
        for image in root.iter("img"):
            picture = FOLDER / image.attrib["src"]
            width, height = size_of(picture)
            image.attrib.update(src=embedded(picture), width=str(width), height=str(height))
        for paragraph in root.iter("p"):
            if len(paragraph) and all(child.tag == "img" for child in paragraph):
                paragraph.set("class", "pictures")
        for table in root.iter("table"):
            names = ["".join(cell.itertext()) for cell in table.iter("th")]
            table.set("class", f"columns-{len(names)}")
            for row in table.findall("tbody/tr"):
                for name, cell in zip(names, row, strict=True):
                    cell.set("data-column", name)


class OneFileExtension(Extension):
    def extendMarkdown(self, md: markdown.Markdown) -> None:
        # After the inline texts, which make the images.
        md.treeprocessors.register(OneFile(md), "one_file", 5)


def make_guide() -> str:
    text = (FOLDER / "guide.md").read_text(encoding="utf-8")
    toc = TocExtension(slugify=anchor, toc_depth="2-3")
    body = markdown.markdown(text, extensions=["tables", "sane_lists", toc, OneFileExtension()], output_format="html")
    title = re.search(r"^# (.+)$", text, re.MULTILINE)
    assert title, "guide.md has no title"
    style = (FOLDER / "guide.css").read_text(encoding="utf-8")
    return f"""<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<meta name="color-scheme" content="light dark">
<title>{html.escape(title[1])}</title>
<style>
{style}</style>
</head>
<body>
<main>
{body}
</main>
</body>
</html>
"""


def main() -> int:
    if len(sys.argv) != 2:
        print("usage: make_guide.py OUTPUT.html", file=sys.stderr)
        return 2
    Path(sys.argv[1]).write_text(make_guide(), encoding="utf-8", newline="\n")
    return 0


if __name__ == "__main__":
    sys.exit(main())
