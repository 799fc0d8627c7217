"""License texts, from where those who wrote them put them."""

import re
from pathlib import Path

import debian

RULE = b"\n" + b"=" * 78 + b"\n\n"


def verbatim(file: Path) -> bytes:
    return file.read_bytes()  # bytes, for some are in no known encoding


def joined(*texts: bytes) -> bytes:
    return RULE.join(texts)


def statements_in(source: Path) -> bytes:
    """Every comment of a C source that states terms, once each, as it stands there."""
    comments = re.findall(rb"/\*.*?\*/", source.read_bytes(), re.DOTALL)
    terms = [c for c in comments if re.search(rb"Permission is hereby granted|public domain", c)]
    if not terms:
        raise LookupError(f"{source} states no terms")
    return b"\n\n".join(dict.fromkeys(terms)) + b"\n"


def llvm_exception() -> bytes:
    """The exceptions that LLVM and others add to the Apache License 2.0.

    Only LLVM's own packages have their words here. In their copyright file every line is indented
    by a blank, and a full stop stands for an empty line.
    """
    # Any of them: the compiler of the fuzzers and the linker bring some.
    file = min(debian.DOCUMENTS.glob("libllvm*/copyright"))
    heading = r"^ ---- LLVM Exceptions to the Apache 2\.0 License ----\n"
    found = re.search(heading + r"(?: .*\n)+", file.read_text(encoding="utf-8"), re.MULTILINE)
    if not found:
        raise LookupError(f"{file} has no exceptions to the Apache License")
    return "".join("\n" if line == " ." else line[1:] + "\n" for line in found[0].splitlines()).encode()
