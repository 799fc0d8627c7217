"""Small mistakes that one could make in a line of C++: what each looks like, and where in a text they are possible."""

import re
from collections.abc import Callable, Iterator
from dataclasses import dataclass
from pathlib import Path

LITERAL = re.compile(r"""L?R"\(.*?\)"|L?"(?:\\.|[^"\\])*"|L?'(?:\\.|[^'\\])*'|//.*|/\*.*?\*/""")

# Lines in which a mistake changes nothing that runs, or nothing but the build.
WITHOUT_CODE = re.compile(r"\s*(//|#|using |namespace |static_assert|template|extern |\}[^(]*$|\{$|public:|private:|$)")

# Each is tried at every place of the line's code where it fits.
REPLACEMENTS: list[tuple[str, re.Pattern[str], str | Callable[[re.Match[str]], str]]] = [
    ("another comparison", re.compile(r" == "), " != "),
    ("another comparison", re.compile(r" != "), " == "),
    ("another comparison", re.compile(r" < "), " <= "),
    ("another comparison", re.compile(r" <= "), " < "),
    ("another comparison", re.compile(r" > "), " >= "),
    ("another comparison", re.compile(r" >= "), " > "),
    ("and for or", re.compile(r" && "), " || "),
    ("or for and", re.compile(r" \|\| "), " && "),
    ("another operator", re.compile(r" \+ "), " - "),
    ("another operator", re.compile(r" - "), " + "),
    ("another operator", re.compile(r"\+\+"), "--"),
    ("another operator", re.compile(r" \| "), " & "),
    ("another operator", re.compile(r" & "), " | "),
    ("the other truth", re.compile(r"\btrue\b"), "false"),
    ("the other truth", re.compile(r"\bfalse\b"), "true"),
    ("the other truth", re.compile(r"\bTRUE\b"), "FALSE"),
    ("the other truth", re.compile(r"\bFALSE\b"), "TRUE"),
    ("the other truth", re.compile(r"(?<=[(\s])!(?=\w)"), ""),
    ("swapped arguments", re.compile(r"(?<=[(\s])(&?\w[\w.\->]*), (&?\w[\w.\->]*)(?=[,)])"), r"\2, \1"),
    ("one too many", re.compile(r"(?<![\w.])\d+(?=U?L?\b)(?![.x])"), lambda m: str(int(m[0]) + 1)),
    ("one too few", re.compile(r"(?<![\w.])[1-9]\d*(?=U?L?\b)(?![.x])"), lambda m: str(int(m[0]) - 1)),
]

STATEMENT = re.compile(r"(\s*)(?:\w[\w:.]*(?:->\w+)*\(.*\)|[\w.:\[\]]+(?:->\w+)* [-+|&]?= [^{]*|break|continue);\s*(?://.*)?$")


@dataclass(frozen=True)
class Change:
    file: Path
    line: int  # from 0
    kind: str
    before: str
    after: str


def changes_of_line(line: str) -> Iterator[tuple[str, str]]:
    """Each as the kind of mistake and the line with it."""
    if WITHOUT_CODE.match(line):
        return
    # What is no code is hidden behind as many characters that fit nowhere.
    code = LITERAL.sub(lambda match: "\0" * len(match[0]), line)
    for kind, pattern, replacement in REPLACEMENTS:
        for match in pattern.finditer(code):
            text = replacement(match) if callable(replacement) else match.expand(replacement)
            yield kind, line[: match.start()] + text + line[match.end() :]
    condition = re.match(r"\s*(?:\} else )?(?:if|while) \(", code)
    end = code.rfind(") {")
    if condition and end > 0 and "= GetDlgItem" not in code:
        yield "a negated condition", f"{line[: condition.end()]}!({line[condition.end() : end]}){line[end:]}"
    statement = STATEMENT.match(code)
    if statement and code.count("(") == code.count(")"):
        yield "a missing statement", f"{statement[1]}{{}}"
    for match in LITERAL.finditer(line):
        if '"' in match[0][:3]:
            for letter in re.finditer(r"(?<!\\)(?<!%)[A-Za-z .:]", match[0][match[0].index('"') + 1 : -1]):
                at = match.start() + match[0].index('"') + 1 + letter.start()
                yield "another character", line[:at] + ("_" if letter[0] != "x" else "y") + line[at + 1 :]


def changes_of(checkout: Path, file: Path) -> Iterator[list[Change]]:
    """The changes that are possible in each line that has any."""
    for number, line in enumerate((checkout / file).read_text(encoding="utf-8").split("\n")):
        changes = [Change(file, number, kind, line, after) for kind, after in changes_of_line(line) if after != line]
        if changes:
            yield changes
