#!/usr/bin/env python3
"""Checks that the product's folders stand on each other as the picture in CONTRIBUTING.md shows.

    check_layers.py CHECKOUT FOLDER=LIBRARY,LIBRARY,... ...

The picture is true when its arrows are just those that the includes make, when the folder's library is linked with
just the libraries of the folders that it may use, and when no arrow leads up. Within one storey arrows are drawn for
the pair alone that needs each other.
"""

import re
import sys
from dataclasses import dataclass
from pathlib import Path

PAGE = "CONTRIBUTING.md"
HEADER = ["storey", "folder", "includes"]
PAIR = {"tools", "adb"}
LIBRARIES = {"kalvo_ground": "app/ground", "kalvo_resource_ids": "res"}


@dataclass
class Floor:
    storey: int
    arrows: set[str]


def picture_of(page: str) -> dict[str, Floor]:
    lines = iter(page.splitlines())
    if not any(line.split() == HEADER for line in lines):
        return {}
    floors = {}
    for line in lines:
        row = re.fullmatch(r"(\d) +(\S+) *(.*)", line)
        if not row:
            break
        floors[row[2]] = Floor(int(row[1]), set(row[3].split()))
    return floors


def folder_of(path: str, folders: list[str]) -> str:
    """The innermost of the folders that a path from the top begins with; empty where it begins with none."""
    inside = [folder for folder in folders if path.startswith(folder + "/")]
    return max(inside, key=len, default="")


def included(checkout: Path, folders: list[str]) -> tuple[dict[str, set[str]], list[str]]:
    """What each folder's sources include of the others, and the includes that are not spelled from the top."""
    arrows: dict[str, set[str]] = {folder: set() for folder in folders}
    strange = []
    for top in {folder.split("/")[0] for folder in folders}:
        for source in sorted((checkout / top).rglob("*.[ch]*")):
            path = source.relative_to(checkout).as_posix()
            own = folder_of(path, folders)
            if source.suffix not in {".cpp", ".h"} or path.startswith("res/pack/"):
                continue
            for name in re.findall(r'^ *# *include *"([^"]+)"', source.read_text(encoding="utf-8"), re.MULTILINE):
                other = folder_of(name, folders)
                if not other:
                    strange.append(f'{path} includes "{name}", which lies in no folder of the picture')
                elif other != own:
                    arrows[own].add(other)
    return arrows, strange


def linked(library_list: str, folders: list[str]) -> set[str]:
    names = {name: LIBRARIES.get(name, name.removeprefix("kalvo_")) for name in library_list.split(",")}
    return {folder for name, folder in names.items() if name.startswith("kalvo_") and folder in folders}


def faults_of(floors: dict[str, Floor], arrows: dict[str, set[str]], links: dict[str, set[str]]) -> list[str]:
    faults = []
    for folder, floor in floors.items():
        for other in sorted(arrows[folder] - floor.arrows):
            faults.append(f"{folder}/ includes {other}/, and the picture does not allow it")
        for other in sorted(floor.arrows - arrows[folder]):
            faults.append(f"{folder}/ includes nothing of {other}/, and the picture says that it does")
        if folder in links and links[folder] != floor.arrows:
            faults.append(f"{folder}/ is linked with {sorted(links[folder])}, the picture shows {sorted(floor.arrows)}")
        for other in sorted(floor.arrows):
            if other not in floors:
                faults.append(f"an arrow leads from {folder}/ to {other}/, which is not in the picture")
            elif floors[other].storey >= floor.storey and {folder, other} != PAIR:
                faults.append(f"an arrow leads up, from {folder}/ to {other}/")
    return faults


def main() -> int:
    checkout = Path(sys.argv[1])
    floors = picture_of((checkout / PAGE).read_text(encoding="utf-8"))
    folders = list(floors)
    links = {folder: linked(libraries, folders) for folder, libraries in (a.split("=") for a in sys.argv[2:])}
    arrows, faults = included(checkout, folders)
    missing = set(links) - set(floors)
    faults += [f"the picture lacks {folder}/" for folder in sorted(missing)]
    faults += faults_of(floors, arrows, links)
    for fault in faults:
        print(f"{PAGE}: {fault}", file=sys.stderr)
    print(f"{len(folders)} folders, {sum(len(floor.arrows) for floor in floors.values())} arrows")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
