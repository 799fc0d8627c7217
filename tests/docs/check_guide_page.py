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
from collections import Counter
from pathlib import Path

# What makes a browser fetch something when the page is opened, besides pictures.
FETCHING = {"script", "link", "iframe", "frame", "object", "embed", "audio", "video", "source", "base", "image", "use"}
# These have no end in HTML.
VOID = re.compile(r"<((?:meta|img|br|hr)\b[^>]*?)/?>")
PNG = b"\x89PNG\r\n\x1a\n"


def faults_of_fetching(page: ET.Element) -> list[str]:
    faults = []
    for part in page.iter():
        faults += [f"<{part.tag}> fetches something"] * (part.tag in FETCHING)
        for name, value in part.attrib.items():
            if name.startswith("on") or name in ("srcset", "style", "background"):
                faults.append(f"<{part.tag}> has {name}")
            if name == "src" and not value.startswith("data:"):
                faults.append(f"<{part.tag}> fetches {value[:60]}")
    outside = re.findall(r"@import[^;]*|url\((?!['\"]?data:)[^)]*", page.findtext("head/style", ""))
    return faults + [f"its style fetches {what}" for what in outside]


def faults_of_head(page: ET.Element) -> list[str]:
    faults = [] if page.get("lang") == "en" else [f"its language is '{page.get('lang')}'"]
    faults += [] if page.findtext("head/title", "").strip() else ["it has no title"]
    viewport = page.find("head/meta[@name='viewport']") is not None
    return faults + ([] if viewport else ["it has no viewport, phones would show it tiny"])


def faults_of_links(page: ET.Element) -> list[str]:
    ids = Counter(part.get("id") for part in page.iter() if "id" in part.attrib)
    links = [link.get("href", "") for link in page.iter("a")]
    faults = [f"the anchor {name} is there more than once" for name, count in ids.items() if count > 1]
    faults += [f"the link '{link}' leads nowhere" for link in links if link[:1] != "#" or link[1:] not in ids]
    return faults + ["it has no links"] * (not links)


def faults_of_headings(page: ET.Element) -> list[str]:
    levels = [int(part.tag[1]) for part in page.iter() if re.fullmatch("h[1-6]", part.tag)]
    faults = [] if levels[:1] == [1] and levels.count(1) == 1 else ["the first heading is not the only h1"]
    jumps = [(above, below) for above, below in zip(levels, levels[1:], strict=False) if below > above + 1]
    return faults + [f"an h{below} follows an h{above}" for above, below in jumps]


def faults_of_picture(picture: ET.Element) -> list[str]:
    text, width, height = (picture.get(name, "").strip() for name in ("alt", "width", "height"))
    name = f"the picture '{text[:50]}'"
    faults = [] if text else ["a picture has no text"]
    faults += [] if width.isdigit() and height.isdigit() else [f"{name} has no size"]
    match = re.fullmatch(r"data:(image/[a-z+]+);base64,([A-Za-z0-9+/=]+)", picture.get("src", ""))
    if not match:
        return [*faults, f"{name} is not inside the page"]
    data = base64.b64decode(match[2], validate=True)
    if match[1] == "image/png":
        size = [str(int.from_bytes(data[at : at + 4])) for at in (16, 20)]
        good = data.startswith(PNG) and size == [width, height]
        return faults + ([] if good else [f"{name} is no picture of {size}"])
    # A drawing may refer to others as well.
    root = ET.fromstring(data)
    faults += [] if root.tag == "{http://www.w3.org/2000/svg}svg" else [f"{name} is no drawing"]
    values = [(key, value) for part in root.iter() for key, value in part.attrib.items()]
    outside = [value for key, value in values if key.endswith("href") or "url(" in value]
    outside += re.findall(r"@import|url\(", data.decode())
    return faults + [f"{name} fetches {what}" for what in outside]


def faults_of(text: str) -> list[str]:
    try:
        page = ET.fromstring(VOID.sub(r"<\1/>", text))
    except ET.ParseError as error:
        return [f"a tag is not closed or closes nothing: {error}"]
    faults = faults_of_fetching(page) + faults_of_head(page) + faults_of_links(page) + faults_of_headings(page)
    pictures = list(page.iter("img"))
    faults += [fault for picture in pictures for fault in faults_of_picture(picture)]
    faults += ["it has no pictures"] * (not pictures)
    # Markdown that was not understood stays as it was typed.
    texts = [part.text for part in page.iter() if part.tag not in ("style", "title", "code")]
    shown = "".join(text or "" for text in [*texts, *(part.tail for part in page.iter())])
    return faults + [f"it shows '{mark}'" for mark in ("](", "**", "| --", "|---", "```") if mark in shown]


def made(converter: Path, folder: str) -> bytes:
    file = Path(folder) / "Guide.html"
    subprocess.run([sys.executable, "-B", converter, file], cwd=folder, check=True, timeout=30)
    return file.read_bytes()


def main() -> int:
    converter = Path(sys.argv[1]).resolve()
    with tempfile.TemporaryDirectory() as one, tempfile.TemporaryDirectory() as other:
        first, second = made(converter, one), made(converter, other)
    faults = faults_of(first.decode("utf-8")) + ["made twice, it is not the same"] * (first != second)
    for fault in faults:
        print(f"Guide.html: {fault}", file=sys.stderr)
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
