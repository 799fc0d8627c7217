"""What the system that builds knows about its own packages."""

import subprocess
from dataclasses import dataclass
from pathlib import Path
from urllib.parse import quote

DOCUMENTS = Path("/usr/share/doc")
COMMON_LICENSES = Path("/usr/share/common-licenses")


@dataclass(frozen=True)
class DebianPackage:
    name: str
    version: str

    @property
    def purl(self) -> str:
        return f"pkg:deb/debian/{quote(self.name, safe='')}@{quote(self.version, safe='')}"

    @property
    def copyright(self) -> Path:
        return DOCUMENTS / self.name / "copyright"


def _query(*words: str) -> str:
    return subprocess.run(["dpkg-query", *words], check=True, capture_output=True, text=True).stdout


def installed(name: str) -> DebianPackage:
    return DebianPackage(name, _query("--show", "--showformat=${Version}", name))


def owners(files: list[Path]) -> dict[Path, str]:
    """The name of the package that brought each file. Asked for together: every question reads all lists anew."""
    paths = {str(file.resolve()): file for file in files}
    found = {}
    for line in _query("--search", *paths).splitlines():
        # "package: path" or "package:architecture: path".
        packages, _, path = line.partition(": ")
        found[paths[path]] = packages.partition(":")[0]
    return found


def files(name: str) -> list[Path]:
    paths = map(Path, _query("--listfiles", name).splitlines())
    return [path for path in paths if path.is_file() and not path.is_symlink()]
