"""Every failure while the tools are removed at the end: the box, the exit code, the teardown and what is left."""

import shutil
import unittest

import bystander
from processtest import (
    ADB,
    CANCELLED,
    CREATE_PROCESS,
    DELETE_FOLDER,
    FOLDER,
    MEMBERS,
    NOT_REMOVED,
    SOCKETS,
    TITLE,
    TOOLS,
    ZIP,
    ProcessTest,
    exit_process,
    last_error,
    win32_error,
)
from program import left_behind
from start import start_adb_server
from steps import step

OTHER_ZIP = "platform-tools_other.zip"

# The wizard closes at once.
CLOSES = "PropertySheetW=ret:0"
CLOSED = "PropertySheetW result=0"
BOX = (TITLE, NOT_REMOVED)


class Failing(ProcessTest):
    def expect_not_removed(self, fault: str, *disk: str) -> None:
        self.expect_way_out(f"{CLOSES};{fault}", 0, CLOSED, BOX, *SOCKETS, disk=disk)

    def expect_sudden_end(self, fault: str, code: int, box: tuple[str, str]) -> None:
        """Nothing is torn down and nothing is removed."""
        self.expect_way_out(f"{CLOSES};{fault}", code, CLOSED, box, exit_process(code), disk=TOOLS)

    def test_folder_that_is_gone(self) -> None:
        self.expect_not_removed("SHFileOperationW=ret:2", FOLDER, *MEMBERS)

    def test_folder_that_stays(self) -> None:
        for code in (5, 124, 0x402):
            with step(self, code):
                self.clean_account()
                self.expect_sudden_end(f"SHFileOperationW=ret:{code}", 13, win32_error(DELETE_FOLDER, 13))

    def test_archive_that_stays(self) -> None:
        self.expect_not_removed("DeleteFileW=fail:5", ZIP)

    def test_archives_after_one_that_stays_stay_too(self) -> None:
        for fault, disk in (("DeleteFileW@1=fail:5", (ZIP, OTHER_ZIP)), ("DeleteFileW@2=fail:5", (OTHER_ZIP,))):
            with step(self, fault):
                self.clean_account()
                self.folder.mkdir(parents=True)
                (self.folder / OTHER_ZIP).write_text("another build's")
                self.expect_not_removed(fault, *disk)

    def test_archives_that_cannot_be_named(self) -> None:
        for what, call in (("pattern", 4), ("file", 5)):
            with step(self, what):
                self.clean_account()
                self.expect_not_removed(f"PathCchCombine@{call}=fail:0x8007007A", ZIP)

    def test_archives_that_cannot_be_looked_for_are_none(self) -> None:
        self.expect_way_out(f"{CLOSES};FindFirstFileW=fail:5", 0, *CANCELLED, disk=(ZIP,))

    def test_end_of_adb_that_cannot_be_told_stops_nothing_else(self) -> None:
        # Calls 4 and 5: adb's thread, adb's process.
        for fault in ("GetExitCodeProcess=fail:6", "CloseHandle@4=fail:6", "CloseHandle@5=fail:6"):
            with step(self, fault):
                self.expect_not_removed(fault)

    def test_output_of_adb_that_cannot_be_read_at_first(self) -> None:
        self.expect_way_out(f"{CLOSES};ReadFile@1=fail:5", 0, *CANCELLED)

    def test_adb_that_cannot_be_started(self) -> None:
        pipe = "CreatePipe(&m_hStandardOutputRead, &m_hStandardOutputWrite, &m_sa, 0)"
        inheritance = "SetHandleInformation(m_hStandardOutputRead, HANDLE_FLAG_INHERIT, 0)"
        for function, method in (
            ("CreatePipe", pipe),
            ("SetHandleInformation", inheritance),
            ("CreateProcessW", CREATE_PROCESS),
        ):
            with step(self, function):
                self.clean_account()
                self.expect_sudden_end(f"{function}=fail:8", 8, last_error(method, 8))


class Meanwhile(ProcessTest):
    """What somebody does to the tools while the wizard is open."""

    def leave_wizard(self, start, code: int, *events) -> None:
        self.press_escape()
        for event in events:
            if not isinstance(event, str):
                self.dismiss_box(start, *event)
        self.expect_end(start, code, CLOSED, *events)

    def test_adb_deleted(self) -> None:
        start = self.start_wizard()
        (self.folder / ADB).unlink()
        self.leave_wizard(start, 2, last_error(CREATE_PROCESS, 2), exit_process(2))
        self.assertEqual(sorted(left_behind()), sorted(set(TOOLS) - {ADB}))
        self.expect_good_run()

    def test_adb_that_says_something_unheard_of(self) -> None:
        start = self.start_wizard()
        shutil.copy(bystander.program(), self.folder / ADB)
        self.leave_wizard(start, 0, BOX, *SOCKETS)
        self.assertEqual(left_behind(), [])

    def test_file_held_open(self) -> None:
        start = self.start_wizard()
        with bystander.hold(self.folder / MEMBERS[2]):
            self.leave_wizard(start, 13, win32_error(DELETE_FOLDER, 13), exit_process(13))
        self.assertIn(MEMBERS[2], left_behind())
        self.assertIn(ZIP, left_behind())

    def test_archive_held_open(self) -> None:
        start = self.start_wizard()
        with bystander.hold(self.folder / ZIP):
            self.leave_wizard(start, 0, BOX, *SOCKETS)
        self.assertEqual(left_behind(), [ZIP])
        self.expect_good_run()

    def test_folder_named_as_an_archive(self) -> None:
        start = self.start_wizard()
        (self.folder / OTHER_ZIP).mkdir()
        self.leave_wizard(start, 0, BOX, *SOCKETS)
        self.assertEqual(left_behind(), [OTHER_ZIP])

    def test_files_added(self) -> None:
        start = self.start_wizard()
        (self.folder / FOLDER / "deeper" / "still").mkdir(parents=True)
        (self.folder / FOLDER / "deeper" / "more.txt").write_text("added")
        (self.folder / "mine.zip").write_text("stays")
        self.leave_wizard(start, 0, *SOCKETS)
        self.assertEqual(left_behind(), ["mine.zip"])

    def test_server_of_adb_started(self) -> None:
        start = self.start_wizard()
        start_adb_server(self.folder / ADB)
        self.leave_wizard(start, 0, *SOCKETS)
        self.expect_nothing_left()


if __name__ == "__main__":
    unittest.main()
