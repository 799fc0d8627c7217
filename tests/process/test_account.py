"""Accounts whose folder has a name beyond ASCII, or a long one."""

import unittest
from pathlib import Path

from driver import places, wine
from driver.places import windows_path
from processtest import (
    APPEND, FOLDER, NOT_INSTALLED, SOCKETS, TITLE, TOOLS, ZIP, Box, ProcessTest, com_error, sudden_end
)

KEY = r"HKCU\Software\Microsoft\Windows\CurrentVersion\Explorer\User Shell Folders"

# The longest folder of local application data with room for the longest of the tools' paths, for the
# working folder: a path has 259 characters.
LONGEST_FOR_THE_TOOLS = 259 - len(r"\KALVO_ApkInstaller\platform-tools_kalvo.zip")
LONGEST_FOR_THE_FOLDER = 259 - len(r"\KALVO_ApkInstaller")


class AccountTest(ProcessTest):
    def move_to(self, local: Path) -> None:
        """Makes that the account's folder of local application data."""
        local.mkdir(parents=True)
        wine.run("reg", "add", KEY, "/v", "Local AppData", "/t", "REG_SZ", "/d", windows_path(local), "/f")
        self.folder = local / "KALVO_ApkInstaller"


class BeyondAscii(AccountTest):
    """The archive is written there, but its reader takes the narrowed path for another."""

    def test_in_the_code_page(self) -> None:
        self.expect_not_installed("Jürgen")

    def test_not_in_the_code_page(self) -> None:
        self.expect_not_installed("Ольга")

    def test_whose_narrowed_name_is_another_in_utf_8(self) -> None:
        # Narrowed to code page 1252 this is "ü" in UTF-8, a folder that is not there and is not made.
        self.expect_not_installed("Ã¼")

    def expect_not_installed(self, name: str) -> None:
        users = places.drive_c("users")
        expected = {name, *(path.name for path in users.iterdir())}
        self.move_to(users / name / "AppData" / "Local")
        # It can be repeated.
        for _ in range(2):
            self.expect_way_out("", 0, NOT_INSTALLED, *SOCKETS, disk=(FOLDER, ZIP))
            self.assertIn((self.folder / ZIP).read_bytes(), places.installer().read_bytes())
        self.assertEqual({path.name for path in users.iterdir()}, expected)


class Long(AccountTest):
    def move_to_length(self, length: int) -> None:
        """To a folder whose path has so many characters in Windows."""
        path = places.drive_c("users", "n" * 90)
        path /= "n" * (length - len(windows_path(path)) - 1)
        self.assertEqual(len(windows_path(path)), length)
        self.move_to(path)

    def test_of_200_characters(self) -> None:
        self.move_to_length(200)
        start = self.start_wizard()
        self.expect_left(*TOOLS)
        self.cancel(start)
        self.expect_left()

    def test_with_just_no_room_for_the_tools(self) -> None:
        self.move_to_length(LONGEST_FOR_THE_TOOLS + 1)
        self.expect_way_out("", 0, Box(TITLE, "Unable to initalize Platform Tools"), *SOCKETS)
        self.assertFalse(self.folder.exists())

    def test_with_just_no_room_for_the_folder(self) -> None:
        self.move_to_length(LONGEST_FOR_THE_FOLDER + 1)
        self.check(*sudden_end("", com_error(APPEND, 0x800700CE)))
        self.assertFalse(self.folder.exists())


if __name__ == "__main__":
    unittest.main()
