"""Accounts whose folder has a name beyond ASCII, or a long one."""

import subprocess
import unittest
from pathlib import Path

import places
from processtest import (
    APPEND,
    FOLDER,
    MEMBERS,
    NOT_INSTALLED,
    SOCKETS,
    TITLE,
    ZIP,
    ProcessTest,
    com_error,
    exit_process,
)
from program import windows_path
from start import Start

USERS = "users"
KEY = r"HKCU\Software\Microsoft\Windows\CurrentVersion\Explorer\User Shell Folders"

# The longest folder of local application data with room for the longest of the tools' paths, for the
# working folder: a path has 259 characters.
LONGEST_FOR_THE_TOOLS = 259 - len(r"\KALVO_ApkInstaller\platform-tools_kalvo.zip")
LONGEST_FOR_THE_FOLDER = 259 - len(r"\KALVO_ApkInstaller")


class AccountTest(ProcessTest):
    def move_to(self, local: Path) -> None:
        """Makes that the account's folder of local application data."""
        local.mkdir(parents=True)
        path = windows_path(local)
        command = ["wine", "reg", "add", KEY, "/v", "Local AppData", "/t", "REG_SZ", "/d", path, "/f"]
        quiet = subprocess.DEVNULL
        subprocess.run(command, check=True, timeout=30, stdin=quiet, stdout=quiet)
        self.folder = local / "KALVO_ApkInstaller"

    def users(self) -> Path:
        return places.prefix() / "drive_c" / USERS

    def files(self) -> list[str]:
        """What is in the working folder."""
        return sorted(str(path.relative_to(self.folder)) for path in self.folder.rglob("*"))


class BeyondAscii(AccountTest):
    """The archive is written there, but its reader takes the narrowed path for another."""

    def expect_not_installed(self, name: str) -> None:
        self.move_to(self.users() / name / "AppData" / "Local")
        start = self.start()
        self.dismiss_box(start, TITLE, NOT_INSTALLED)
        self.expect_end(start, 0, (TITLE, NOT_INSTALLED), *SOCKETS)
        self.assertEqual(self.files(), sorted((FOLDER, ZIP)))
        self.assertIn((self.folder / ZIP).read_bytes(), places.installer().read_bytes())

    def users_before_and_after(self, name: str) -> tuple[set[str], set[str]]:
        before = {path.name for path in self.users().iterdir()} | {name}
        self.expect_not_installed(name)
        return before, {path.name for path in self.users().iterdir()}

    def test_in_the_code_page(self) -> None:
        self.assertEqual(*self.users_before_and_after("Jürgen"))

    def test_not_in_the_code_page(self) -> None:
        self.assertEqual(*self.users_before_and_after("Ольга"))

    def test_whose_narrowed_name_is_another_in_utf_8(self) -> None:
        # Narrowed to code page 1252 this is "ü" in UTF-8, a folder that is not there and is not made.
        self.assertEqual(*self.users_before_and_after("Ã¼"))

    def test_can_be_repeated(self) -> None:
        self.expect_not_installed("Zoë")
        start = self.start()
        self.dismiss_box(start, TITLE, NOT_INSTALLED)
        self.expect_end(start, 0, (TITLE, NOT_INSTALLED), *SOCKETS)


class Long(AccountTest):
    def local_of(self, length: int) -> Path:
        """A folder whose path has so many characters in Windows."""
        stem = len(windows_path(self.users())) + 1
        path = self.users() / ("n" * 90) / ("n" * (length - stem - 91))
        self.assertEqual(len(windows_path(path)), length)
        return path

    def expect_good_account(self, length: int) -> None:
        self.move_to(self.local_of(length))
        start = self.start_wizard()
        self.assertEqual(self.files(), sorted((FOLDER, ZIP, *MEMBERS)))
        self.cancel(start)
        self.assertEqual(self.files(), [])

    def test_of_200_characters(self) -> None:
        self.expect_good_account(200)

    def test_with_just_no_room_for_the_tools(self) -> None:
        self.move_to(self.local_of(LONGEST_FOR_THE_TOOLS + 1))
        box = (TITLE, "Unable to initalize Platform Tools")
        self.expect_box_and_end(box, 0, *SOCKETS)

    def test_with_just_no_room_for_the_folder(self) -> None:
        self.move_to(self.local_of(LONGEST_FOR_THE_FOLDER + 1))
        code = 0x800700CE
        self.expect_box_and_end(com_error(APPEND, code), code, exit_process(code))

    def expect_box_and_end(self, box: tuple[str, str], code: int, *teardown: str) -> Start:
        start = self.start()
        self.dismiss_box(start, *box)
        self.expect_end(start, code, box, *teardown)
        self.assertFalse(self.folder.exists())
        return start


if __name__ == "__main__":
    unittest.main()
