"""What the linker is given besides our own objects, asked of the build and of the compiler themselves."""

import shlex
import subprocess
from pathlib import Path

PROGRAM = "KalvoApkInstaller.exe"


def _link_command(build: Path) -> list[str]:
    commands = subprocess.run(
        ["ninja", "-C", str(build), "-t", "commands", PROGRAM], check=True, capture_output=True, text=True
    ).stdout
    for line in reversed(commands.splitlines()):
        # "&&" stands between the link and what is done before and after it.
        for command in line.split(" && "):
            words = shlex.split(command)
            if PROGRAM in words and words[words.index(PROGRAM) - 1] == "-o":
                return words
    raise LookupError(f"no command in {build} links {PROGRAM}")


def _linker_command(build: Path) -> list[str]:
    """The command by which the compiler would start the linker, or its own collect2, which starts it."""
    answer = subprocess.run([*_link_command(build), "-###"], cwd=build, check=True, capture_output=True, text=True)
    # Commands are indented by a blank; linking is the last.
    commands = [line for line in answer.stderr.splitlines() if line.startswith(" ")]
    if not commands:
        raise LookupError("the compiler does not say how it starts the linker")
    return shlex.split(commands[-1])


def _named(word: str, folders: list[Path]) -> Path:
    """The file that a library's name stands for; a static one, as the program is linked."""
    for folder in folders:
        if (file := folder / f"lib{word.removeprefix('-l')}.a").is_file():
            return file
    raise LookupError(f"no folder of the linker holds {word}")


def system_files(build: Path) -> list[Path]:
    """The libraries and start files of the system that the program is linked with.

    All that the linker is offered, also what it may have taken nothing from: a license too many
    does no harm, one too few does.
    """
    words = _linker_command(build)
    folders = [build / word.removeprefix("-L") for word in words if word.startswith("-L")]
    offered = set()
    for word in words:
        if word.startswith("-l"):
            offered.add(_named(word, folders).resolve())
        elif word.endswith((".o", ".a")) and not word.startswith("-"):
            offered.add((build / word).resolve())
    return sorted(file for file in offered if not file.is_relative_to(build.resolve()))


def compiler(build: Path) -> Path:
    return Path(_link_command(build)[0]).resolve()


def linker(build: Path) -> Path:
    started = Path(_linker_command(build)[0])
    if not started.name.startswith("collect2"):
        return started.resolve()
    # Asked for the linker's version, collect2 also prints the command by which it asks.
    words = _link_command(build)
    choosing = [word for word in words if word.startswith(("-fuse-ld", "-B"))]
    answer = subprocess.run([words[0], *choosing, "-Wl,--version"], cwd=build, capture_output=True, text=True)
    for line in answer.stderr.splitlines():
        if line.startswith("/") and "--version" in line:
            return Path(shlex.split(line)[0]).resolve()
    raise LookupError("the compiler does not say which linker it starts")
