#!/usr/bin/env python3
"""Lets clang-tidy look at the product, all of its sources in one go.

    check_tidy.py CLANG_TIDY CHECKOUT BUILD FOLDER...

Each source alone would have the system's headers read and searched anew, which is nearly all of the time it takes. So
the sources are included by one that is made here, and no name of an unnamed namespace stands in two of them.
"""

import json
import shlex
import subprocess
import sys
from pathlib import Path

# A header of mingw-w64 that cannot be included twice.
ONCE = "pathcch.h"
# This one source includes others on purpose.
CHECKS = "-bugprone-suspicious-include"
# The analyzer leaves out what stands in files that are included.
ANALYZER = ["-Xclang", "-analyzer-opt-analyze-headers"]


def compilations(build: Path, folders: list[Path]) -> dict[Path, list[str]]:
    """How each source of the folders is compiled, without its name and output; a source that tests compile once more
    counts as the product has it."""
    found: dict[Path, list[str]] = {}
    for entry in json.loads((build / "compile_commands.json").read_text(encoding="utf-8")):
        source = Path(entry["file"])
        if any(source.is_relative_to(folder) for folder in folders):
            words = shlex.split(entry["command"])
            found.setdefault(source, words[: words.index("-o")])
    return found


def joined(commands: list[list[str]]) -> list[str]:
    """One command with the arguments of all; `-isystem` and its folder stay together."""
    arguments: dict[tuple[str, ...], None] = {}
    for command in commands:
        words = iter(command)
        for word in words:
            arguments.setdefault((word, next(words)) if word == "-isystem" else (word,))
    return [word for argument in arguments for word in argument]


def prepare(checkout: Path, build: Path, folders: list[Path], scratch: Path) -> Path:
    """Makes the source that includes all others, and says how it is compiled."""
    commands = compilations(build, folders)
    written = {source for folder in folders for source in folder.rglob("*.cpp")}
    if missing := written - set(commands):
        sys.exit(f"not compiled, so not looked at: {', '.join(map(str, sorted(missing)))}")
    scratch.mkdir(exist_ok=True)
    (scratch / ".clang-tidy").write_text((checkout / ".clang-tidy").read_text(encoding="utf-8"), encoding="utf-8")
    (scratch / ONCE).write_text(f"#pragma once\n#include_next <{ONCE}>\n", encoding="utf-8")
    everything = scratch / "product.cpp"
    everything.write_text("".join(f'#include "{source}"\n' for source in sorted(written)), encoding="utf-8")
    arguments = [*joined(list(commands.values())), *ANALYZER, f"-I{scratch}", "-c", str(everything)]
    entry = {"directory": str(build), "arguments": arguments, "file": str(everything)}
    (scratch / "compile_commands.json").write_text(json.dumps([entry]), encoding="utf-8")
    return everything


def main(clang_tidy: str, checkout: str, build: str, *names: str) -> int:
    scratch = Path(build) / "tidy"
    everything = prepare(Path(checkout), Path(build), [Path(checkout) / name for name in names], scratch)
    command = [clang_tidy, "-p", str(scratch), "--quiet", f"--checks={CHECKS}", str(everything)]
    return subprocess.run(command, check=False).returncode


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
