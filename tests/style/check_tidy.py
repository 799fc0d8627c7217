#!/usr/bin/env python3
"""Lets clang-tidy look at the sources of some folders, all of them in one go.

    check_tidy.py CLANG_TIDY CHECKOUT BUILD NAME [--no-analyzer] FOLDER...

Each source alone would have the system's headers read and searched anew, which is nearly all of the time it takes. So
the sources are included by one that is made here, NAME.cpp, and no name of an unnamed namespace stands in two of them.
Folders called "tests" are left out: some of their names stand in the sources that they test, too, so that all of it
does not go together in one.
"""

import json
import re
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
# Options that are followed by what they name.
PAIRED = {"-isystem", "-include"}


def sources_of(folders: list[Path]) -> list[Path]:
    found = {source: folder for folder in folders for source in folder.rglob("*.cpp")}
    if empty := set(folders) - set(found.values()):
        sys.exit(f"no sources there: {', '.join(map(str, sorted(empty)))}")
    return sorted(source for source, folder in found.items() if "tests" not in source.relative_to(folder).parts)


def compiled(file: Path) -> list[Path]:
    """A file that is compiled, or, where CMake made it to compile several as one, those."""
    if file.parent.name != "Unity":
        return [file]
    return [Path(name) for name in re.findall(r'^#include "(.+)"', file.read_text(encoding="utf-8"), re.MULTILINE)]


def compilations(build: Path, sources: list[Path]) -> dict[Path, list[str]]:
    """How each source is compiled, without its name and output; a source that tests compile once more counts as its own
    folder has it."""
    found: dict[Path, list[str]] = {}
    for entry in json.loads((build / "compile_commands.json").read_text(encoding="utf-8")):
        words = shlex.split(entry["command"])
        for source in compiled(Path(entry["file"])):
            if source in sources:
                found.setdefault(source, words[: words.index("-o")])
    return found


def joined(commands: list[list[str]]) -> list[str]:
    """One command with the arguments of all, but for the header that CMake had GCC read ahead."""
    arguments: dict[tuple[str, ...], None] = {}
    for command in commands:
        words = iter(command)
        for word in words:
            arguments.setdefault((word, next(words)) if word in PAIRED else (word,))
    return [word for argument in arguments for word in argument if argument[0] != "-include"]


def prepare(checkout: Path, build: Path, sources: list[Path], everything: Path) -> None:
    """Makes the source that includes all others, and says how it is compiled."""
    commands = compilations(build, sources)
    if missing := set(sources) - set(commands):
        sys.exit(f"not compiled, so not looked at: {', '.join(map(str, sorted(missing)))}")
    scratch = everything.parent
    scratch.mkdir(parents=True, exist_ok=True)
    (scratch / ".clang-tidy").write_text((checkout / ".clang-tidy").read_text(encoding="utf-8"), encoding="utf-8")
    (scratch / ONCE).write_text(f"#pragma once\n#pragma GCC system_header\n#include_next <{ONCE}>\n", encoding="utf-8")
    everything.write_text("".join(f'#include "{source}"\n' for source in sources), encoding="utf-8")
    arguments = [*joined(list(commands.values())), *ANALYZER, f"-I{scratch}", "-c", str(everything)]
    entry = {"directory": str(build), "arguments": arguments, "file": str(everything)}
    (scratch / "compile_commands.json").write_text(json.dumps([entry]), encoding="utf-8")


def main(clang_tidy: str, checkout: str, build: str, name: str, *folders: str) -> int:
    everything = Path(build, "tidy", name, f"{name}.cpp")
    analyzed = folders[0] != "--no-analyzer"
    sources = sources_of([Path(checkout, folder) for folder in folders[0 if analyzed else 1 :]])
    prepare(Path(checkout), Path(build), sources, everything)
    checks = CHECKS if analyzed else f"{CHECKS},-clang-analyzer-*"
    command = [clang_tidy, "-p", str(everything.parent), "--quiet", f"--checks={checks}", str(everything)]
    return subprocess.run(command, check=False).returncode


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
