#!/usr/bin/env python3
"""Checks docs/guide.md against the program: whatever the program can say, the guide explains.

Texts that users see are wide literals of the sources, rows of the table of outcomes, and titles and status lines of the
resources. A literal that is neither explained nor named below as one that nobody sees is a fault.
"""

import re
import sys

from driver import guide, outcomes, places

# Where the product's sources are.
FOLDERS = ("app", "tools", "adb", "net", "wizard")

# Wide literals that no box and no status line shows: what adb is told, names of files and things, addresses, ...
UNSEEN = {
    " kill-server", " pair … …", " connect …", ' -s … install "…"',
    "adb.exe", "platform-tools", "platform-tools_kalvo.zip", "platform-tools_*.zip", "KALVO_ApkInstaller",
    "KALVO_APK_INSTALLER_MUTEX", "8.8.8.8", "^(?:[A-F0-9]{1,4}:){7}[A-F0-9]{1,4}$", "000000", "\\",
    # ... the list of kinds in the dialog behind "Browse ...",
    "Android Package", "*.apk", "All Files", "*.*", "solvane.apk",
    # and forms around texts that are explained.
    "…", "……", "… …", "….….…", "… failed with error …: …", "… failed with error 0x…: …", "Unknown Method",
}  # fmt: skip

# Texts of which one part is a literal of its own, and what it may be.
ASSEMBLED = {
    "An unexpected error has occurred when …: … … (…)": ("connecting to the device", "installing the APK"),
    "… … (… of …)": ("Pinging", "Connecting to"),
}
PARTS = {part for parts in ASSEMBLED.values() for part in parts}

# So much of a text that it cannot be another's by chance.
SHORTEST_BEGINNING = 10

_QUOTED = r'"((?:[^"\\\n]|\\.)*)"'
_LITERALS = rf"(?:\bL)?{_QUOTED}(?:\s*L?{_QUOTED})*"
_COMMENT_OR_LITERALS = re.compile(r'//[^\n]*|/\*.*?\*/|\bLR"\(.*?\)"|' + _LITERALS, re.DOTALL)
_CONVERSION = re.compile(r"%[-+0# ]*\d*(?:h|l|ll)?[a-zA-Z]")
_IN_A_BOX = re.compile(rf"\bL{_QUOTED},\s*L{_QUOTED},\s*MB_OK")


def plain(literal: str) -> str:
    """A literal of C++ as the user reads it, on one line, with what varies left out."""
    for escape, meaning in ((r"\r", " "), (r"\n", " "), (r"\t", " "), (r"\"", '"'), (r"\\", "\\")):
        literal = literal.replace(escape, meaning)
    shown = _CONVERSION.sub(guide.VARIES, literal)
    return re.sub(r"\s+", " ", shown).rstrip()


def joined(match: re.Match[str]) -> str:
    """Neighbouring literals as one; nothing of comments and of raw literals."""
    if match[0].startswith(("/", "LR")):
        return ""
    return "L" * match[0].startswith("L") + '"' + "".join(re.findall(_QUOTED, match[0])) + '"'


def literals(source: str) -> tuple[list[str], list[tuple[str, str]]]:
    """The wide literals of a source and the pairs of text and caption among them."""
    source = re.sub(r"^\s*#\s*include.*$", "", source, flags=re.MULTILINE).replace("\\\n", "\n")
    source = _COMMENT_OR_LITERALS.sub(joined, source)
    # A name that a macro makes of its argument begins with an empty literal.
    found = [plain(literal) for literal in re.findall(r"\bL" + _QUOTED, source) if literal]
    return found, [(plain(text), plain(caption)) for text, caption in _IN_A_BOX.findall(source)]


def begins(text: str, quote: str) -> bool:
    return text == quote or (len(quote) >= SHORTEST_BEGINNING and text.startswith(quote))


def whole(shown: str) -> list[str]:
    """What users see of a literal; nothing of one that is a part of others."""
    if shown in ASSEMBLED:
        return [shown.replace(guide.VARIES, part, 1) for part in ASSEMBLED[shown]]
    return [] if shown in PARTS else [shown]


def known_quotes() -> set[str]:
    """All that the tables of boxes and status lines quote, whole and in the parts between what varies."""
    quotes = {quote for row in guide.boxes() for cell in row for quote in cell}
    quotes |= {part.strip() for quote in quotes for part in quote.split(guide.VARIES) if len(part) >= SHORTEST_BEGINNING}
    return quotes | {quote for row in guide.rows("status line", "page") for quote in guide.quoted(row[0])}


def faults_of_sources() -> list[str]:
    known = known_quotes()
    faults, seen, literal = [], [0, 0], set()
    for source in sorted(file for folder in FOLDERS for file in (places.CHECKOUT / folder).rglob("*.[ch]*")):
        name = source.relative_to(places.CHECKOUT)
        texts, pairs = literals(source.read_text(encoding="utf-8"))
        seen = [seen[0] + len(texts), seen[1] + len(pairs)]
        literal.update(texts)
        for shown in (text for text_or_part in texts for text in whole(text_or_part)):
            if shown not in UNSEEN and not any(begins(shown, quote) for quote in known):
                faults.append(f"{name}: nothing explains '{shown}'")
        for shown, caption in pairs:
            if not any(caption in captions and any(begins(shown, quote) for quote in quotes) for quotes, captions in guide.boxes()):
                faults.append(f"{name}: no row has '{shown}' with the caption '{caption}'")
    faults += [f"no source has '{part}'" for part in sorted({*ASSEMBLED, *PARTS} - literal)]
    return faults + ["no texts, or no boxes with their captions, were found in the sources"] * (not all(seen))


def faults_of_outcomes() -> list[str]:
    """Each outcome has a row of its own: number, name and text as the program has them, and advice."""
    explained = {tuple(row[:3]): row[3:] for row in guide.rows("number", "name", "text")}
    rows = {(str(number), f"`{name}`", f'"{message}"') for number, name, message in outcomes.table()}
    faults = [f"outcome {' '.join(row)} is not in the guide" for row in sorted(rows - explained.keys())]
    faults += [f"the guide has {' '.join(row)}, which is no outcome" for row in sorted(explained.keys() - rows)]
    return faults + [f"outcome {' '.join(row)} has no advice" for row, advice in explained.items() if not all(advice)]


def faults_of_resources() -> list[str]:
    """Status lines of the dialogs and, as headings, the titles of the pages."""
    source = (places.CHECKOUT / "res" / "KalvoApkInstaller.rc").read_text(encoding="utf-8")
    lines = [quote for row in guide.rows("status line", "page") for quote in guide.quoted(row[0])]
    shown = re.findall(r'LTEXT "([^"]+)", IDC_\w+_STATUS\b', source)
    faults = [f"nothing explains the status line '{line}'" for line in shown if line not in lines]
    titles = dict(re.findall(r'^ +IDS_(\w+)_TITLE "([^"]+)"', source, re.MULTILINE))
    captions = [caption for _, captions in guide.boxes() for caption in captions]
    if titles.pop("APPLICATION") not in captions:
        faults.append("no box has the application's title as its caption")
    headings = re.findall(r"^### Page (\d+): (.+)$", guide.text(), re.MULTILINE)
    if [number for number, _ in headings] != [str(number) for number in range(1, len(titles) + 1)]:
        faults.append(f"the pages' headings are not numbered from 1 to {len(titles)}")
    if sorted(title for _, title in headings) != sorted(titles.values()):
        faults.append(f"the pages' headings are not the titles: {sorted(titles.values())}")
    return faults + ["no status lines were found in the resources"] * (len(shown) == 0)


def faults_of_index() -> list[str]:
    """Each symptom leads to one way out, and no way out is forgotten."""
    text = guide.text()
    ways = re.findall(r"^### (.+)$", text.split("\n## Ways out\n")[1].split("\n## ")[0], re.MULTILINE)
    index = text.split("\n## Find your trouble\n")[1].split("\n## ")[0]
    symptoms = [line for line in index.splitlines() if line.startswith("| ") and not line.startswith("| what you see")]
    led = [re.findall(r"\[([^\]]+)\]\(#[\w-]+\)", line) for line in symptoms]
    faults = [f"not one way out: {line}" for line, ways_of_line in zip(symptoms, led, strict=True) if len(ways_of_line) != 1]
    reached = {way for found in led for way in found}
    faults += [f"the index leads to '{way}', which is no way out" for way in sorted(reached - set(ways))]
    return faults + [f"no symptom leads to '{way}'" for way in sorted(set(ways) - reached)]


def main() -> int:
    faults = faults_of_sources() + faults_of_outcomes() + faults_of_resources() + faults_of_index()
    for fault in faults:
        print(f"docs/guide.md: {fault}", file=sys.stderr)
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
