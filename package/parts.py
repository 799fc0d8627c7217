"""The works of others that are inside the package or made it, as the bill and the license texts need them.

THIRD-PARTY-NOTICES.md tells people the same.
"""

from collections.abc import Callable
from dataclasses import dataclass
from pathlib import Path

import debian
import licenses
import link

THIRD_PARTY = Path("/third-party")
ADB_FILES = ("adb.exe", "AdbWinApi.dll", "AdbWinUsbApi.dll")

# How a part comes into the program, in the words of SPDX 2.3.
CONTAINED = "CONTAINS"
LINKED = "STATIC_LINK"
BUILD_TOOL = "BUILD_TOOL_OF"


@dataclass(frozen=True)
class Part:
    key: str  # part of its id; its license text is LICENSES/KEY.txt
    name: str
    version: str
    license: str
    home: str
    origin: str
    purls: tuple[str, ...]
    files: tuple[Path, ...]
    relations: tuple[str, ...]
    text: Callable[[], bytes] | None = None  # of what is inside; build tools need none


def _adb() -> Part:
    properties = (THIRD_PARTY / "adb-notice/source.properties").read_text(encoding="ascii")
    return Part(
        key="adb",
        name="Android platform tools (adb)",
        version=dict(line.split("=", 1) for line in properties.splitlines() if "=" in line)["Pkg.Revision"],
        license="Apache-2.0",
        home="https://developer.android.com/tools/releases/platform-tools",
        origin="Taken unchanged from the npm package android-tools-bin, which carries the platform tools for Windows. "
        "The wrapper around them, GPL-3.0, is not used.",
        purls=("pkg:npm/android-tools-bin@2.0.1",),
        files=tuple(THIRD_PARTY / "adb" / name for name in ADB_FILES),
        relations=(CONTAINED,),
        text=lambda: licenses.verbatim(THIRD_PARTY / "adb-notice/NOTICE.txt"),
    )


def _miniz() -> Part:
    source = THIRD_PARTY / "miniz/miniz.c"
    return Part(
        key="miniz",
        name="miniz",
        version="3.0.2",
        license="MIT",
        home="https://github.com/richgel999/miniz",
        origin="Taken from third-party/miniz in Debian's source package woof-doom, which carries the release's "
        "two files.",
        purls=("pkg:github/richgel999/miniz@3.0.2", "pkg:deb/debian/woof-doom?arch=source"),
        files=(source, source.with_suffix(".h")),
        relations=(LINKED, BUILD_TOOL),
        text=lambda: licenses.statements_in(source),
    )


def _ctre(build: Path) -> Part:
    package = debian.installed("libctre-dev")
    return Part(
        key="ctre",
        name="Compile time regular expressions (ctre)",
        version=package.version,
        license="Apache-2.0 WITH LLVM-exception",
        home="https://github.com/hanickadot/compile-time-regular-expressions",
        origin="Headers of Debian's package libctre-dev, compiled into the program.",
        purls=(package.purl,),
        files=tuple(path for path in sorted((build / "ctre").rglob("*")) if path.is_file()),
        relations=(LINKED,),
        text=lambda: licenses.joined(
            licenses.verbatim(package.copyright),
            licenses.verbatim(debian.COMMON_LICENSES / "Apache-2.0"),
            licenses.llvm_exception(),
        ),
    )


def _gcc_runtime(files: tuple[Path, ...]) -> Part:
    package = debian.installed("g++-mingw-w64-x86-64-win32")
    return Part(
        key="gcc-runtime",
        name="GCC runtime libraries (libstdc++, libgcc)",
        version=package.version,
        license="GPL-3.0-or-later WITH GCC-exception-3.1",
        home="https://gcc.gnu.org",
        origin="Static libraries and start files of Debian's cross compiler.",
        purls=(package.purl,),
        files=files,
        relations=(LINKED,),
        text=lambda: licenses.joined(
            licenses.verbatim(debian.DOCUMENTS / "gcc-mingw-w64-base/copyright"),
            licenses.verbatim(debian.COMMON_LICENSES / "GPL-3"),
        ),
    )


def _mingw_runtime(files: tuple[Path, ...]) -> Part:
    package = debian.installed("mingw-w64-x86-64-dev")
    return Part(
        key="mingw-w64-runtime",
        name="mingw-w64 runtime",
        version=package.version,
        license="LicenseRef-mingw-w64-runtime",
        home="https://www.mingw-w64.org",
        origin="Static libraries, import libraries and start files of Debian's package mingw-w64-x86-64-dev.",
        purls=(package.purl,),
        files=files,
        relations=(LINKED,),
        text=lambda: licenses.verbatim(package.copyright),
    )


# Each part that the linker takes files from, by the Debian package that brought them. A file of any other package
# has no license text here yet: nothing is packed then.
_LINKED_PACKAGES = {
    "gcc-mingw-w64-x86-64-win32": _gcc_runtime,
    "g++-mingw-w64-x86-64-win32": _gcc_runtime,
    "mingw-w64-x86-64-dev": _mingw_runtime,
}


def _linked_by_the_compiler(build: Path) -> list[Part]:
    taken: dict[Callable[[tuple[Path, ...]], Part], list[Path]] = {}
    for file, package in sorted(debian.owners(link.system_files(build)).items()):
        if package not in _LINKED_PACKAGES:
            raise LookupError(f"{file} is linked, and nothing is known of the license of {package}")
        taken.setdefault(_LINKED_PACKAGES[package], []).append(file)
    return [make(tuple(files)) for make, files in taken.items()]


def _tool(key: str, name: str, license: str, home: str, file: Path) -> Part:
    package = debian.installed(debian.owners([file])[file])
    return Part(
        key=key,
        name=name,
        version=package.version,
        license=license,
        home=home,
        origin=f"Debian's package {package.name}.",
        purls=(package.purl,),
        files=(file,),
        relations=(BUILD_TOOL,),
    )


def _build_tools(build: Path) -> list[Part]:
    zopfli = next(file for file in debian.files("libzopfli1") if file.name.startswith("libzopfli.so"))
    windres = Path("/usr/bin/x86_64-w64-mingw32-windres")
    tools = [
        _tool("zopfli", "zopfli, the archive's encoder", "Apache-2.0", "https://github.com/google/zopfli", zopfli),
        _tool("gcc", "GCC, the compiler", "GPL-3.0-or-later", "https://gcc.gnu.org", link.compiler(build)),
        _tool("binutils", "GNU Binutils", "GPL-3.0-or-later", "https://www.gnu.org/software/binutils", windres),
    ]
    linker = link.linker(build)
    if linker.name.startswith(("lld", "ld.lld")):
        license = "Apache-2.0 WITH LLVM-exception"
        tools.append(_tool("lld", "LLVM linker (lld)", license, "https://lld.llvm.org", linker))
    return tools


def all_parts(build: Path) -> list[Part]:
    return [_adb(), _miniz(), _ctre(build), *_linked_by_the_compiler(build), *_build_tools(build)]
