"""Writes the archive fuzzer's seeds to a new folder: recipes, and whole archives as zip tools write them.

    archive_seeds.py FOLDER
"""
import io
import sys
import zipfile
from pathlib import Path

DEFLATED, METHOD, CRC, SIZES, ATTRIBUTES, EXTRA, FLAGS, HEADER = (1 << n for n in range(8))
UNIX_LINK = 0o120777 << 16
NO_LIES = bytes(4)

# The first byte of an input.
RAW, LONG_PATHS, CLOSE_FAILS, SMALL_DISK = 1, 2, 4, 8
FOLDERS = 8


def piece(data) -> bytes:
    """A length and so many bytes; long pieces must be one byte repeated."""
    data = data.encode() if isinstance(data, str) else data
    if len(data) < 255:
        return bytes([len(data)]) + data
    assert len(set(data)) == 1
    return b"\xff" + len(data).to_bytes(2, "little") + b"\x01" + data[:1]


def entry(name, content=b"content", choices: int = 0, more: bytes = b"") -> bytes:
    return bytes([choices]) + piece(name) + piece(content) + more


def attributes(host: int, value: int) -> bytes:
    return bytes([host]) + value.to_bytes(4, "little")


def sizes(compressed: int, plain: int) -> bytes:
    return compressed.to_bytes(4, "little") + plain.to_bytes(4, "little")


def recipe(*entries: bytes, start: int = 0, longer: int = 0, lies: bytes = NO_LIES) -> bytes:
    return bytes([start, longer]) + lies + b"".join(entries)


def raw(archive: bytes, start: int = 0) -> bytes:
    return bytes([start | RAW, 0]) + archive


def whole_archive(method: int, force_zip64: bool = False, seekable: bool = True) -> bytes:
    class Pipe(io.BytesIO):
        def seekable(self) -> bool:
            return False

        def seek(self, *_):
            raise io.UnsupportedOperation

        def tell(self):
            raise io.UnsupportedOperation

    out = io.BytesIO() if seekable else Pipe()
    with zipfile.ZipFile(out, "w", method) as archive:
        for name, content in (("platform-tools/adb.exe", b"MZ" + bytes(range(256)) * 3 + b"abcabcabc" * 90),
                              ("platform-tools/AdbWinApi.dll", b"MZ"), ("platform-tools/empty/", b"")):
            info = zipfile.ZipInfo(name, (1980, 1, 1, 0, 0, 0))
            info.compress_type = method
            with archive.open(info, "w", force_zip64=force_zip64) as member:
                member.write(content)
    return out.getvalue()


UGLY_NAMES = {
    "up": "../../up", "up-back": "..\\..\\up", "up-inside": "a/../../up", "root": "/root", "drive": "C:\\Windows\\x",
    "drive-relative": "C:x", "share": "\\\\host\\share\\x", "device-path": "\\\\?\\C:\\x", "dots": "...", "dots-deep": ".../x",
    "dot-blank": ".. /x", "blank-dot": ". ./x", "trailing-dot": "a./b.", "only-dots": "..", "only-slashes": "//\\\\",
    "stream": "a:b", "data-stream": "a::$DATA", "nul": "NUL", "con-txt": "con.txt", "com-deep": "a/COM1", "reserved": "a<b>|?*",
    "control": "a\nb", "folder": "a/b/", "not-folder-back": "a\\", "double": "a//b\\\\c", "empty-middle": "a/./b/../c",
    "511": "n" * 511, "513": "n" * 513, "65535": "n" * 65535, "slashes": "/" * 300, "deep": "a/" * 120, "dots-300": "." * 300,
    "empty": "",
}

UGLY_BYTES = {
    "nul-inside": b"a\0b", "nul-first": b"\0", "half-utf8": b"a\xe6\x89", "long-form": b"\xc0\xae\xc0\xae/x", "surrogate": b"\xed\xa0\x80",
    "four-bytes": "\U0001f600/x".encode(), "full-width": "．．／x".encode(), "high": b"\xff\xfe/x",
}


def seeds():
    for what, name in (UGLY_NAMES | UGLY_BYTES).items():
        yield f"name-{what}", recipe(entry("before"), entry(name), entry("after"))
        yield f"name-{what}-long-paths", recipe(entry(name), start=LONG_PATHS)
    for folder in range(FOLDERS):
        for start in (0, LONG_PATHS):
            yield f"folder-{folder}-{start}", recipe(entry("a/b\\c"), entry("../d"), start=start | folder << 4, longer=150)
    for longer in range(146, 154):
        yield f"longest-folder-{longer}", recipe(entry("x/y"), start=LONG_PATHS | 6 << 4, longer=longer)

    yield "no-entries", recipe()
    yield "twice-the-same", recipe(entry("a", b"first and longer"), entry("A", b"second"))
    yield "file-as-folder", recipe(entry("a"), entry("a/b"))
    yield "folder-as-file", recipe(entry("a/b"), entry("a"))
    yield "unix-link", recipe(entry("a", "/etc", ATTRIBUTES, attributes(3, UNIX_LINK)), entry("a/x"))
    yield "mac-link", recipe(entry("a", "/etc", ATTRIBUTES, attributes(19, UNIX_LINK)), entry("a/x"))
    yield "dos-link", recipe(entry("a", "/etc", ATTRIBUTES, attributes(0, UNIX_LINK)), entry("a/x"))
    yield "directory-attribute", recipe(entry("a/b", "", ATTRIBUTES, attributes(0, 0x10)))
    yield "deflated", recipe(entry("a", "text", DEFLATED), entry("b", b"x" * 65535, DEFLATED))
    yield "torn-deflate", recipe(entry("a", b"\x01\x05\x00\xfa\xff", METHOD, b"\x08"))
    yield "bad-deflate", recipe(entry("a", b"\x07\xff\xff", METHOD | SIZES, b"\x08" + sizes(3, 100)))
    yield "bad-huffman", recipe(entry("a", b"\x05\xe0\x81\x00\xff", METHOD | SIZES, b"\x08" + sizes(5, 100)))
    yield "other-method", recipe(entry("a", b"x", METHOD, b"\x0c"))
    yield "wrong-crc", recipe(entry("before"), entry("a", b"x", CRC, b"\x01"), entry("after"))
    yield "size-beyond", recipe(entry("a", b"x", SIZES, sizes(0x7FFFFFFF, 0x7FFFFFFF)))
    yield "size-4g", recipe(entry("a", b"x", SIZES, sizes(0xFFFFFFFF, 0xFFFFFFFF)))
    yield "size-smaller", recipe(entry("a", b"content", SIZES, sizes(1, 1)))
    yield "size-zero", recipe(entry("a", b"content", SIZES, sizes(0, 0)))
    yield "plain-larger", recipe(entry("a", b"x", DEFLATED | SIZES, sizes(6, 1000)))
    yield "plain-smaller", recipe(entry("a", b"xyz", DEFLATED | SIZES, sizes(8, 1)))
    yield "zip64-sizes", recipe(entry("a", b"x", SIZES | EXTRA, sizes(0xFFFFFFFF, 0xFFFFFFFF)
                                      + piece(b"\x01\x00\x10\x00" + (1).to_bytes(8, "little") * 2)))
    yield "zip64-torn", recipe(entry("a", b"x", SIZES | EXTRA, sizes(0xFFFFFFFF, 0xFFFFFFFF) + piece(b"\x01\x00\x10\x00\x01")))
    yield "zip64-empty", recipe(entry("a", b"x", SIZES | EXTRA, sizes(0xFFFFFFFF, 0xFFFFFFFF) + piece(b"\x01\x00\x00\x00")))
    yield "extra-torn", recipe(entry("a", b"x", EXTRA, piece(b"\x75\x70\xff\x00\x01")))
    yield "unicode-path", recipe(entry("a", b"x", EXTRA, piece(b"\x75\x70\x07\x00\x01\x00\x00\x00\x00..")))
    yield "encrypted", recipe(entry("a", b"x", FLAGS, b"\x01\x00"))
    yield "patched", recipe(entry("a", b"x", FLAGS, b"\x20\x00"))
    yield "utf8-flag", recipe(entry("\u00f6", b"x", FLAGS, b"\x00\x08"))
    yield "descriptor-flag", recipe(entry("a", b"x", FLAGS, b"\x08\x00"))
    yield "other-name-in-header", recipe(entry("a", b"x", HEADER, piece("../b") + b"\0"))
    yield "misplaced-header", recipe(entry("a"), entry("b", b"x", HEADER, piece("b") + b"\xff"))
    yield "close-fails", recipe(entry("a"), start=CLOSE_FAILS)
    yield "close-fails-too", recipe(entry("a", b"x", CRC, b"\x01"), start=CLOSE_FAILS)
    yield "disk-full", recipe(entry("a", b"x" * 1025), start=SMALL_DISK)
    yield "disk-just-full", recipe(entry("a", b"x" * 1024), entry("b", b""), entry("c", b"x"), start=SMALL_DISK)
    for cut in (1, 4, 22, 23, 60, 100):
        yield f"cut-{cut}", recipe(entry("a"), entry("b"), lies=bytes([cut, 0, 0, 0]))
    for what, lies in {"more": b"\0\1\0\0", "fewer": b"\0\xff\0\0", "dir-later": b"\0\0\1\0", "dir-earlier": b"\0\0\xff\0",
                       "dir-larger": b"\0\0\0\1", "dir-smaller": b"\0\0\0\xff"}.items():
        yield f"lie-{what}", recipe(entry("a"), entry("b"), lies=lies)

    stored, deflated = whole_archive(zipfile.ZIP_STORED), whole_archive(zipfile.ZIP_DEFLATED)
    yield "whole-stored", raw(stored)
    yield "whole-deflated", raw(deflated)
    yield "whole-zip64", raw(whole_archive(zipfile.ZIP_DEFLATED, force_zip64=True))
    yield "whole-piped", raw(whole_archive(zipfile.ZIP_DEFLATED, seekable=False))
    yield "whole-small-disk", raw(deflated, SMALL_DISK)
    yield "whole-behind-text", raw(b"#!/bin/sh\n" + deflated)
    yield "whole-before-text", raw(deflated + b"#!/bin/sh\n")
    yield "whole-half", raw(deflated[:len(deflated) // 2])
    yield "whole-nothing", raw(b"")
    yield "whole-end-alone", raw(deflated[-22:])
    zip64_end = (b"PK\x06\x06" + (44).to_bytes(8, "little") + b"\x2d\x00\x2d\x00" + bytes(8) + (1).to_bytes(8, "little") * 2
                 + (46).to_bytes(8, "little") + bytes(8) + b"PK\x06\x07" + bytes(4) + bytes(8) + (1).to_bytes(4, "little"))
    yield "whole-zip64-end", raw(zip64_end + b"PK\x05\x06" + bytes(4) + b"\xff" * 12 + bytes(2))


def main() -> None:
    folder = Path(sys.argv[1])
    folder.mkdir(parents=True)
    for name, data in seeds():
        (folder / name).write_bytes(data)


if __name__ == "__main__":
    main()
