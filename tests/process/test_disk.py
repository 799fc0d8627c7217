"""A disk that is full, that is read-only, or that becomes so while the wizard is open."""

import subprocess
import unittest
from collections.abc import Iterator
from contextlib import contextmanager

from processtest import (
    CREATE_FILE,
    CREATE_FOLDER,
    DELETE_FOLDER,
    FOLDER,
    MEMBERS,
    NOT_INSTALLED,
    SOCKETS,
    TITLE,
    ZIP,
    ProcessTest,
    exit_process,
    last_error,
    win32_error,
)
from program import left_behind

# How Wine says that a disk is read-only. Windows has a word of its own for it, ERROR_WRITE_PROTECT.
READ_ONLY = 5


def mount(*arguments: str) -> None:
    subprocess.run(["mount", *arguments], check=True, timeout=10)


class DiskTest(ProcessTest):
    @contextmanager
    def disk(self, size: str) -> Iterator[None]:
        """A disk of that size in place of the working folder."""
        self.folder.mkdir(parents=True, exist_ok=True)
        mount("-t", "tmpfs", "-o", f"size={size}", "tmpfs", str(self.folder))
        try:
            yield
        finally:
            subprocess.run(["umount", "--lazy", self.folder], check=True, timeout=10)

    def resize(self, size: str) -> None:
        mount("-o", f"remount,size={size}", str(self.folder))

    def write_protect(self) -> None:
        mount("-o", "remount,ro", str(self.folder))

    def allow_writing(self) -> None:
        mount("-o", "remount,rw", str(self.folder))


class Full(DiskTest):
    """The tools cannot be installed; once there is room they can. The file that found no room is gone, but for the
    archive."""

    def expect_not_installed(self, size: str, *disk: str) -> None:
        with self.disk(size):
            start = self.start()
            self.dismiss_box(start, TITLE, NOT_INSTALLED)
            self.expect_end(start, 0, (TITLE, NOT_INSTALLED), *SOCKETS)
            self.assertEqual(sorted(left_behind()), sorted(disk))
            self.resize("40m")
            self.expect_good_run()

    def test_no_room_for_the_archive(self) -> None:
        self.expect_not_installed("1m", FOLDER, ZIP)

    def test_no_room_for_adb(self) -> None:
        self.expect_not_installed("5m", FOLDER, ZIP)

    def test_no_room_for_the_last_library(self) -> None:
        with self.disk("40m"):
            start = self.start_wizard()
            needed = sum((self.folder / name).stat().st_size for name in (ZIP, *MEMBERS))
            self.cancel(start)
        pages = needed // 4096 - 8
        self.expect_not_installed(f"{pages * 4}k", FOLDER, ZIP, *MEMBERS[:2])


class ReadOnly(DiskTest):
    def test_without_the_folder(self) -> None:
        with self.disk("40m"):
            self.write_protect()
            box = win32_error(CREATE_FOLDER, READ_ONLY)
            self.expect_way_out("", READ_ONLY, box, exit_process(READ_ONLY))

    def test_with_the_folder(self) -> None:
        with self.disk("40m"):
            (self.folder / FOLDER).mkdir()
            self.write_protect()
            boxes = (last_error(CREATE_FILE, READ_ONLY), (TITLE, NOT_INSTALLED))
            self.expect_way_out("", 0, *boxes, *SOCKETS, disk=(FOLDER,))

    def test_with_tools_left_over(self) -> None:
        with self.disk("40m"):
            self.leave_tools_behind()
            self.write_protect()
            start = self.start()
            self.dismiss_box(start, *win32_error(DELETE_FOLDER, 13))
            self.expect_end(start, 13, win32_error(DELETE_FOLDER, 13), exit_process(13))
            self.expect_whole_tools()

    def test_since_the_wizard_opened(self) -> None:
        with self.disk("40m"):
            start = self.start_wizard()
            self.write_protect()
            self.press_escape()
            self.dismiss_box(start, *win32_error(DELETE_FOLDER, 13))
            self.expect_end(start, 13, "PropertySheetW result=0", win32_error(DELETE_FOLDER, 13), exit_process(13))
            self.expect_whole_tools()
            self.allow_writing()
            self.expect_good_run()


if __name__ == "__main__":
    unittest.main()
