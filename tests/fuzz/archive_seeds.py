"""Writes the archive fuzzer's seeds to a new folder: lists of entries, archives that lie, archives of zip tools.

    archive_seeds.py FOLDER
"""
import io
import struct
import sys
import zipfile
import zlib
from collections.abc import Iterator
from pathlib import Path

FOLDERS = 8
ROOT, LONG = 4, 6

CRC_WRONG, RECORD_UNREADABLE = 1, 2
UNIX, MAC = 3 << 8, 19 << 8
LINK, DIRECTORY = 0o120777 << 16, 0x10

NAMES = {
    "up": b"../../up", "up-back": b"..\\..\\up", "up-inside": b"a/../../up", "root": b"/root",
    "drive": b"C:\\Windows\\x", "share": b"\\\\host\\share\\x", "device-path": b"\\\\?\\C:\\x", "dots": b"...",
    "dots-deep": b".../x", "dot-blank": b".. /x", "blank-dot": b". ./x", "trailing-dot": b"a./b.", "only-dot": b".",
    "only-dots": b"..", "only-slashes": b"//\\\\", "stream": b"a:b", "colon": b":x", "reserved": b"a<b>|?*",
    "control": b"a\nb", "folder": b"a/b/", "not-folder-back": b"a\\", "double": b"a//b\\\\c", "middle": b"a/./b/../c",
    "511": b"n" * 511, "513": b"n" * 513, "20000": b"n" * 20000, "slashes": b"/" * 300, "deep": b"a/" * 120,
    "dots-300": b"." * 300, "dot-folders": b"./" * 250 + b"a/b", "empty": b"", "nul-inside": b"a\0b",
    "nul-first": b"\0", "half-utf8": b"a\xe6\x89", "long-form": b"\xc0\xae\xc0\xae/x", "surrogate": b"\xed\xa0\x80",
    "four-bytes": "\U0001f600/x".encode(), "full-width": "．．／x".encode(), "high": b"\xff\xfe/x",
}


def entry(name: bytes, text: bytes = b"text", faults: int = 0, made_by: int = 0, attributes: int = 0) -> bytes:
    pieces = (struct.pack("<H", len(piece)) + piece for piece in (name, text))
    return struct.pack("<BHI", faults, made_by, attributes) + b"".join(pieces)


def listed(*entries: bytes, folder: int = 0, longer: int = 0, small_disk: bool = False) -> bytes:
    return bytes([folder << 4 | small_disk << 3, longer]) + b"".join(entries)


def raw(archive: bytes, small_disk: bool = False) -> bytes:
    return bytes([small_disk << 3 | 1, 0]) + archive


def lying(text: bytes = b"content", extra: bytes = b"", **lies: int) -> bytes:
    """An archive of one entry, true but for the lies. "more", "larger" and "later" are of the directory, and added."""
    size = len(text)
    sizes = lies.get("crc", zlib.crc32(text)), lies.get("packed", size), lies.get("plain", size)
    entry = struct.pack("<3HI3IH", 20, lies.get("flags", 0), lies.get("method", 0), 0x210000, *sizes, 1)
    data = b"PK\3\4" + entry + b"\0\0a" + text
    places = struct.pack("<4H2I", len(extra), 0, 0, 0, 0, lies.get("offset", 0))
    record = b"PK\1\2\x14\0" + entry + places + b"a" + extra
    entries = 1 + lies.get("more", 0)
    directory = len(record) + lies.get("larger", 0), len(data) + lies.get("later", 0)
    return raw(data + record + b"PK\5\6" + struct.pack("<4H2IH", 0, 0, entries, entries, *directory, 0))


def whole(method: int, force_zip64: bool = False) -> bytes:
    """As zip tools write it."""
    out = io.BytesIO()
    with zipfile.ZipFile(out, "w") as archive:
        for name, content in (("a/adb.exe", b"MZ" + bytes(range(256)) * 3 + b"abcabcabc" * 90), ("a/empty/", b"")):
            info = zipfile.ZipInfo(name)
            info.compress_type = method
            with archive.open(info, "w", force_zip64=force_zip64) as member:
                member.write(content)
    return out.getvalue()


def lists() -> Iterator[tuple[str, bytes]]:
    for what, name in NAMES.items():
        yield f"name-{what}", listed(entry(b"before"), entry(name), entry(b"after"))
        yield f"name-{what}-in-root", listed(entry(name), folder=ROOT)
    for folder in range(FOLDERS):
        yield f"folder-{folder}", listed(entry(b"a/b\\c"), entry(b"../d"), folder=folder)
    for longer in range(124, 132):
        yield f"longest-folder-{longer}", listed(entry(b"x/y"), folder=LONG, longer=longer)
    yield "no-entries", listed()
    yield "twice-the-same", listed(entry(b"a", b"first and longer"), entry(b"A", b"second"))
    yield "file-as-folder", listed(entry(b"a"), entry(b"a/b"))
    yield "folder-as-file", listed(entry(b"a/b"), entry(b"a"))
    for what, made_by in {"dos": 0, "unix": UNIX, "mac": MAC}.items():
        yield f"{what}-link", listed(entry(b"a", b"/etc", made_by=made_by, attributes=LINK), entry(b"a/x"))
    yield "directory-attribute", listed(entry(b"a/b", attributes=DIRECTORY))
    yield "wrong-crc", listed(entry(b"before"), entry(b"a", faults=CRC_WRONG), entry(b"after"))
    yield "unreadable-record", listed(entry(b"before"), entry(b"a", faults=RECORD_UNREADABLE))
    yield "disk-full", listed(entry(b"a", b"x" * 1025), small_disk=True)
    yield "disk-just-full", listed(entry(b"a", b"x" * 1024), entry(b"b", b""), small_disk=True)


def lies() -> Iterator[tuple[str, bytes]]:
    for what, text, level in (("deflated", b"text", 9), ("blocks", b"text" * 17000, 0), ("large", b"text" * 50000, 9)):
        deflated, crc = zlib.compress(text, level, wbits=-15), zlib.crc32(text)
        yield what, lying(deflated, method=8, crc=crc, plain=len(text))
        yield f"{what}-plain-larger", lying(deflated, method=8, crc=crc, plain=len(text) + 1000)
        yield f"{what}-plain-smaller", lying(deflated, method=8, crc=crc, plain=1)
        yield f"{what}-torn", lying(deflated, method=8, crc=crc, plain=len(text), packed=len(deflated) - 3)
    yield "torn-deflate", lying(b"\x01\x05\x00\xfa\xff", method=8)
    yield "bad-deflate", lying(b"\x07\xff\xff", method=8, plain=100)
    yield "bad-huffman", lying(b"\x05\xe0\x81\x00\xff", method=8, plain=100)
    yield "other-method", lying(method=12)
    for what, size in {"zero": 0, "smaller": 1, "beyond": 2**31 - 1, "4g": 2**32 - 1}.items():
        yield f"size-{what}", lying(packed=size, plain=size)
    for what, sizes in {"sizes": b"\x10\0" + struct.pack("<2Q", 7, 7), "torn": b"\x10\0\1", "empty": b"\0\0"}.items():
        yield f"zip64-{what}", lying(extra=b"\1\0" + sizes, packed=2**32 - 1, plain=2**32 - 1)
    yield "extra-torn", lying(extra=b"\x75\x70\xff\0\1")
    yield "unicode-path", lying(extra=b"\x75\x70\x07\0\1\0\0\0\0..")
    for what, flags in {"encrypted": 1, "descriptor": 8, "patched": 0x20, "utf8": 0x800}.items():
        yield f"{what}-flag", lying(flags=flags)
    yield "misplaced-header", lying(offset=1)
    for what, by in {"earlier": -1, "later": 1}.items():
        yield f"directory-{what}", lying(later=by)
        yield f"directory-of-{by}-more", lying(more=by)
        yield f"directory-{by}-larger", lying(larger=by)


def wholes() -> Iterator[tuple[str, bytes]]:
    deflated = whole(zipfile.ZIP_DEFLATED)
    yield "whole-stored", raw(whole(zipfile.ZIP_STORED))
    yield "whole-deflated", raw(deflated)
    yield "whole-zip64", raw(whole(zipfile.ZIP_DEFLATED, force_zip64=True))
    yield "whole-small-disk", raw(deflated, small_disk=True)
    yield "whole-behind-text", raw(b"#!/bin/sh\n" + deflated)
    yield "whole-before-text", raw(deflated + b"#!/bin/sh\n")
    for cut in (1, 22, 23, 100, len(deflated) // 2, len(deflated)):
        yield f"whole-without-{cut}", raw(deflated[:-cut])
    yield "whole-end-alone", raw(deflated[-22:])
    directory = struct.pack("<4sQ2HI", b"PK\6\6", 44, 45, 45, 0) + struct.pack("<I4Q", 0, 1, 1, 46, 0)
    locator = struct.pack("<4sIQI", b"PK\6\7", 0, 0, 1)
    yield "whole-zip64-end", raw(directory + locator + b"PK\5\6" + bytes(4) + b"\xff" * 12 + bytes(2))


def main() -> None:
    folder = Path(sys.argv[1])
    folder.mkdir(parents=True)
    for seeds in (lists, lies, wholes):
        for name, data in seeds():
            (folder / name).write_bytes(data)


if __name__ == "__main__":
    main()
