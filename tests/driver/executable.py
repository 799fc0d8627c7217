"""A Windows program as a file, read with nothing but the layout of its headers."""

import struct
from pathlib import Path
from typing import NamedTuple

OPTIONAL_HEADER = 24
SECTION_BYTES = 40
IMPORT_BYTES = 20
IMPORTS = 1


class Section(NamedTuple):
    name: str
    address: int
    size: int
    offset: int
    characteristics: int


class Executable:
    """A 64-bit program. Addresses are those of the loaded program, counted from its start."""

    def __init__(self, file: Path) -> None:
        self._bytes = file.read_bytes()
        self._header = self._number("<I", 0x3C)
        assert self._bytes[self._header : self._header + 4] == b"PE\0\0", f"{file} is no Windows program"
        self._optional = self._header + OPTIONAL_HEADER
        self.magic = self._number("<H", self._optional)
        self.subsystem_version = (self._number("<H", self._optional + 48), self._number("<H", self._optional + 50))
        self.subsystem = self._number("<H", self._optional + 68)
        self.characteristics = self._number("<H", self._optional + 70)
        self.stack = self._number("<Q", self._optional + 72)
        start = self._optional + self._number("<H", self._header + 20)
        end = start + self._number("<H", self._header + 6) * SECTION_BYTES
        rows = struct.iter_unpack("<8s2I4xI12xI", self._bytes[start:end])
        self.sections = [
            Section(name.rstrip(b"\0").decode("ascii"), address, size, offset, characteristics)
            for name, size, address, offset, characteristics in rows
        ]

    def directory(self, index: int) -> tuple[int, int]:
        """The address and size of one of the tables that the loader uses; zeros where there is none."""
        assert index < self._number("<I", self._optional + 108)
        return struct.unpack_from("<II", self._bytes, self._optional + 112 + 8 * index)

    def read(self, address: int, size: int) -> bytes:
        """What is loaded to that address."""
        offset = self._offset(address, size)
        return self._bytes[offset : offset + size]

    def _offset(self, address: int, size: int) -> int:
        section = next(s for s in self.sections if s.address <= address and address + size <= s.address + s.size)
        return section.offset + address - section.address

    def imported_libraries(self) -> list[str]:
        """The libraries that it is linked with, in order."""
        address, size = self.directory(IMPORTS)
        table = self.read(address, size)
        names = [fields[3] for fields in struct.iter_unpack("<5I", table[: size - size % IMPORT_BYTES])]
        end = names.index(0)
        return [self._text(name) for name in names[:end]]

    def _text(self, address: int) -> str:
        start = self._offset(address, 1)
        return self._bytes[start : self._bytes.index(b"\0", start)].decode("ascii")

    def _number(self, kind: str, offset: int) -> int:
        return struct.unpack_from(kind, self._bytes, offset)[0]
