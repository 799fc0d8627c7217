#!/usr/bin/env python3
"""Checks the guide as people get it: one HTML file in which everything is found, and which asks for nothing outside.

    check_guide_page.py CONVERTER

Runs the converter twice, from different folders, and reads what it made.
"""

import base64
import re
import subprocess
import sys
import tempfile
import xml.etree.ElementTree as ET
from html.parser import HTMLParser
from pathlib import Path

# What makes a browser fetch something when the page is opened, besides pictures.
FETCHING = {"script", "link", "iframe", "frame", "object", "embed", "audio", "video", "source", "base", "image", "use"}
WITHOUT_END = {"meta", "img", "br", "hr"}
PNG = b"\x89PNG\r\n\x1a\n"


class Page(HTMLParser):
    """Collects what is to be checked while it reads."""

    def __init__(self, text: str) -> None:
        super().__init__()
        self.faults: list[str] = []
        self.ids: list[str] = []
        self.links: list[str] = []
        self.pictures: list[dict[str, str]] = []
        self.headings: list[int] = []
        self.language = ""
        self.metas: list[str] = []
        self.texts: dict[str, str] = {}
        self._open: list[str] = []
        self.feed(text)
        self.close()
        self.faults += [f"<{tag}> is not closed" for tag in self._open]

    def handle_starttag(self, tag: str, attrs: list[tuple[str, str | None]]) -> None:
        values = {name: value or "" for name, value in attrs}
        if tag not in WITHOUT_END:
            self._open.append(tag)
        if tag in FETCHING:
            self.faults.append(f"<{tag}> fetches something")
        for name, value in values.items():
            if name.startswith("on") or name in ("srcset", "style", "background"):
                self.faults.append(f"<{tag}> has {name}")
            if name == "src" and not value.startswith("data:"):
                self.faults.append(f"<{tag}> fetches {value[:60]}")
        if "id" in values:
            self.ids.append(values["id"])
        if tag == "a":
            self.links.append(values.get("href", ""))
        elif tag == "img":
            self.pictures.append(values)
        elif tag == "html":
            self.language = values.get("lang", "")
        elif tag == "meta":
            self.metas.append(values.get("name", ""))
        elif re.fullmatch(r"h[1-6]", tag):
            self.headings.append(int(tag[1]))

    def handle_endtag(self, tag: str) -> None:
        if not self._open or self._open.pop() != tag:
            self.faults.append(f"</{tag}> closes nothing, line {self.getpos()[0]}")

    def handle_data(self, data: str) -> None:
        if self._open:
            self.texts[self._open[-1]] = self.texts.get(self._open[-1], "") + data


def faults_of_head(page: Page) -> list[str]:
    faults = [] if page.language == "en" else [f"its language is '{page.language}'"]
    faults += [] if page.texts.get("title", "").strip() else ["it has no title"]
    faults += [] if "viewport" in page.metas else ["it has no viewport, phones would show it tiny"]
    outside = re.findall(r"@import[^;]*|url\((?!['\"]?data:)[^)]*", page.texts.get("style", ""))
    return faults + [f"its style fetches {what}" for what in outside]


def faults_of_links(page: Page) -> list[str]:
    faults = [f"the anchor {name} is there more than once" for name in sorted(set(page.ids)) if page.ids.count(name) > 1]
    faults += [f"the link {link or '(empty)'} leads nowhere" for link in page.links if link[:1] != "#" or link[1:] not in page.ids]
    return faults + ["it has no links"] * (not page.links)


def faults_of_headings(page: Page) -> list[str]:
    faults = [] if page.headings[:1] == [1] and page.headings.count(1) == 1 else ["the first heading is not the only h1"]
    for above, below in zip(page.headings, page.headings[1:], strict=False):
        if below > above + 1:
            faults.append(f"an h{below} follows an h{above}")
    return faults


def faults_of_picture(attributes: dict[str, str]) -> list[str]:
    text = attributes.get("alt", "").strip()
    name = f"the picture '{text[:50]}'"
    faults = [] if text else ["a picture has no text"]
    faults += [] if attributes.get("width", "").isdigit() and attributes.get("height", "").isdigit() else [f"{name} has no size"]
    match = re.fullmatch(r"data:(image/[a-z+]+);base64,([A-Za-z0-9+/=]+)", attributes.get("src", ""))
    if not match:
        return [*faults, f"{name} is not inside the page"]
    data = base64.b64decode(match[2], validate=True)
    if match[1] == "image/png":
        size = tuple(int.from_bytes(data[at : at + 4]) for at in (16, 20))
        good = data.startswith(PNG) and size == (int(attributes["width"]), int(attributes["height"]))
        return faults + ([] if good else [f"{name} is no picture of {size}"])
    # A drawing may refer to others as well.
    root = ET.fromstring(data)
    if root.tag != "{http://www.w3.org/2000/svg}svg":
        faults.append(f"{name} is no drawing")
    outside = [value for part in root.iter() for key, value in part.attrib.items() if key.endswith("href") or "url(" in value]
    outside += re.findall(r"@import|url\(", data.decode())
    return faults + [f"{name} refers to {value}" for value in outside]


def faults_of(text: str) -> list[str]:
    page = Page(text)
    faults = page.faults + faults_of_head(page) + faults_of_links(page) + faults_of_headings(page)
    faults += [] if page.pictures else ["it has no pictures"]
    for picture in page.pictures:
        faults += faults_of_picture(picture)
    # Markdown that was not understood stays as it was typed.
    shown = "".join(text for tag, text in page.texts.items() if tag not in ("style", "title", "code"))
    faults += [f"it shows '{mark}'" for mark in ("](", "**", "| --", "|---", "```") if mark in shown]
    return faults


def made(converter: Path, folder: str) -> bytes:
    file = Path(folder) / "Guide.html"
    subprocess.run([sys.executable, "-B", converter, file], cwd=folder, check=True, timeout=30)
    return file.read_bytes()


def main() -> int:
    converter = Path(sys.argv[1]).resolve()
    with tempfile.TemporaryDirectory() as one, tempfile.TemporaryDirectory() as other:
        first, second = made(converter, one), made(converter, other)
    faults = faults_of(first.decode("utf-8"))
    if first != second:
        faults.append("made twice, it is not the same")
    for fault in faults:
        print(f"Guide.html: {fault}", file=sys.stderr)
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
