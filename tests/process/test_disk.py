"""A disk that is full, that is read-only, or that becomes so while the wizard is open."""

import subprocess
import unittest
from collections.abc import Iterator
from contextlib import contextmanager

from processtest import (
    CREATE_FILE, CREATE_FOLDER, DELETE_FOLDER, FOLDER, MEMBERS, NOT_INSTALLED, SOCKETS, ZIP, ProcessTest, exit_process,
    last_error, sudden_end, win32_error
)

# How Wine says that a disk is read-only. Windows has a word of its own for it, ERROR_WRITE_PROTECT.
READ_ONLY = 5

ENOUGH = "40m"

# When the folder cannot be deleted.
STAYS = (win32_error(DELETE_FOLDER, 13), exit_process(13))


class DiskTest(ProcessTest):
    @contextmanager
    def disk(self, size: str) -> Iterator[None]:
        """A disk of that size in place of the working folder."""
        self.folder.mkdir(parents=True, exist_ok=True)
        self.mount("-t", "tmpfs", "-o", f"size={size}", "tmpfs")
        try:
            yield
        finally:
            subprocess.run(["umount", "--lazy", self.folder], check=True, timeout=10)

    def mount(self, *how: str) -> None:
        subprocess.run(["mount", *how, self.folder], check=True, timeout=10)

    def write_protect(self) -> None:
        self.mount("-o", "remount,ro")


class Full(DiskTest):
    """The tools cannot be installed; once there is room they can. The file that found no room is gone, but for the
    archive."""

    def expect_not_installed(self, size: str, *disk: str) -> None:
        with self.disk(size):
            self.expect_way_out("", 0, NOT_INSTALLED, *SOCKETS, disk=disk)
            self.mount("-o", f"remount,size={ENOUGH}")
            self.expect_good_run()

    def test_no_room_for_the_archive(self) -> None:
        self.expect_not_installed("1m", FOLDER, ZIP)

    def test_no_room_for_adb(self) -> None:
        self.expect_not_installed("5m", FOLDER, ZIP)

    def test_no_room_for_the_last_library(self) -> None:
        with self.disk(ENOUGH):
            start = self.start_wizard()
            needed = sum((self.folder / name).stat().st_size for name in (ZIP, *MEMBERS))
            self.cancel(start)
        pages = needed // 4096 - 8
        self.expect_not_installed(f"{pages * 4}k", FOLDER, ZIP, *MEMBERS[:2])


class ReadOnly(DiskTest):
    def setUp(self) -> None:
        super().setUp()
        self.enterContext(self.disk(ENOUGH))

    def test_without_the_folder(self) -> None:
        self.write_protect()
        self.check(*sudden_end("", win32_error(CREATE_FOLDER, READ_ONLY)))

    def test_with_the_folder(self) -> None:
        (self.folder / FOLDER).mkdir()
        self.write_protect()
        self.expect_way_out("", 0, last_error(CREATE_FILE, READ_ONLY), NOT_INSTALLED, *SOCKETS, disk=(FOLDER,))

    def test_with_tools_left_over(self) -> None:
        self.leave_tools_behind()
        self.write_protect()
        self.expect_boxes_and_end(self.start(), 13, *STAYS)
        self.expect_whole_tools()

    def test_since_the_wizard_opened(self) -> None:
        start = self.start_wizard()
        self.write_protect()
        self.press_escape()
        self.expect_boxes_and_end(start, 13, "PropertySheetW result=0", *STAYS)
        self.expect_whole_tools()
        self.mount("-o", "remount,rw")
        self.expect_good_run()


if __name__ == "__main__":
    unittest.main()
