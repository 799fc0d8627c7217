"""Every failure while the tools are removed at the end: the box, the exit code, the teardown and what is left."""

import shutil
import unittest

import bystander
from driver import wine
from driver.evidence import one_test_for_each
from driver.program import Program
from processtest import (
    ADB, CANCELLED, CREATE_PROCESS, DELETE_FOLDER, FOLDER, MEMBERS, NOT_REMOVED, SOCKETS, TOOLS, ZIP, Box, Event,
    ProcessTest, exit_process, last_error, sudden_end, way_out, win32_error
)

OTHER_ZIP = "platform-tools_other.zip"

# The wizard closes at once.
CLOSES = "PropertySheetW=ret:0"
CLOSED = "PropertySheetW result=0"


def not_removed(fault: str, *disk: str) -> tuple:
    return way_out(f"{CLOSES};{fault}", 0, CLOSED, NOT_REMOVED, *SOCKETS, disk=disk)


def ends(fault: str, box: Box) -> tuple:
    return sudden_end(f"{CLOSES};{fault}", box, CLOSED, disk=TOOLS)


@one_test_for_each(
    folder_that_is_gone=not_removed("SHFileOperationW=ret:2", FOLDER, *MEMBERS),
    **{
        f"folder_that_stays_for_reason_{code}": ends(f"SHFileOperationW=ret:{code}", win32_error(DELETE_FOLDER, 13))
        for code in (5, 124, 0x402)
    },
    archive_that_stays=not_removed("DeleteFileW=fail:5", ZIP),
    # Calls 4 and 5: the pattern, the file.
    archives_whose_pattern_has_no_name=not_removed("PathCchCombine@4=fail:0x8007007A", ZIP),
    archives_that_have_no_name=not_removed("PathCchCombine@5=fail:0x8007007A", ZIP),
    archives_that_cannot_be_looked_for_are_none=way_out(f"{CLOSES};FindFirstFileW=fail:5", 0, *CANCELLED, disk=(ZIP,)),
    # An end that cannot be told stops nothing else. Calls 4 and 5: adb's thread, adb's process.
    exit_code_of_adb_unknown=not_removed("GetExitCodeProcess=fail:6"),
    thread_of_adb_not_closed=not_removed("CloseHandle@4=fail:6"),
    process_of_adb_not_closed=not_removed("CloseHandle@5=fail:6"),
    output_of_adb_that_cannot_be_read_at_first=way_out(f"{CLOSES};ReadFile@1=fail:5", 0, *CANCELLED),
    adb_without_a_pipe=ends(
        "CreatePipe=fail:8", last_error("CreatePipe(&m_hStandardOutputRead, &m_hStandardOutputWrite, &m_sa, 0)", 8)
    ),
    adb_without_an_own_end_of_the_pipe=ends(
        "SetHandleInformation=fail:8",
        last_error("SetHandleInformation(m_hStandardOutputRead, HANDLE_FLAG_INHERIT, 0)", 8),
    ),
    adb_that_cannot_be_started=ends("CreateProcessW=fail:8", last_error(CREATE_PROCESS, 8)),
)
class Failing(ProcessTest):
    def test_archives_after_one_that_stays_stay_too(self) -> None:
        for fault, disk in (("DeleteFileW@1=fail:5", (ZIP, OTHER_ZIP)), ("DeleteFileW@2=fail:5", (OTHER_ZIP,))):
            with self.step(fault):
                self.clean_account()
                self.lay(OTHER_ZIP)
                self.check(*not_removed(fault, *disk))


class Meanwhile(ProcessTest):
    """What somebody does to the tools while the wizard is open."""

    def leave_wizard(self, start: Program, code: int, *events: Event) -> None:
        self.press_escape()
        self.expect_boxes_and_end(start, code, CLOSED, *events)

    def test_adb_deleted(self) -> None:
        start = self.start_wizard()
        (self.folder / ADB).unlink()
        self.leave_wizard(start, 2, last_error(CREATE_PROCESS, 2), exit_process(2))
        self.expect_left(*set(TOOLS) - {ADB})
        self.expect_good_run()

    def test_adb_that_says_something_unheard_of(self) -> None:
        start = self.start_wizard()
        shutil.copy(bystander.program(), self.folder / ADB)
        self.leave_wizard(start, 0, NOT_REMOVED, *SOCKETS)
        self.expect_left()

    def test_file_held_open(self) -> None:
        start = self.start_wizard()
        with bystander.hold(self.folder / MEMBERS[2]):
            self.leave_wizard(start, 13, win32_error(DELETE_FOLDER, 13), exit_process(13))
        for name in (MEMBERS[2], ZIP):
            self.assertTrue((self.folder / name).is_file(), name)

    def test_archive_held_open(self) -> None:
        start = self.start_wizard()
        with bystander.hold(self.folder / ZIP):
            self.leave_wizard(start, 0, NOT_REMOVED, *SOCKETS)
        self.expect_left(ZIP)
        self.expect_good_run()

    def test_folder_named_as_an_archive(self) -> None:
        start = self.start_wizard()
        (self.folder / OTHER_ZIP).mkdir()
        self.leave_wizard(start, 0, NOT_REMOVED, *SOCKETS)
        self.expect_left(OTHER_ZIP)

    def test_files_added(self) -> None:
        start = self.start_wizard()
        (self.folder / FOLDER / "deeper" / "still").mkdir(parents=True)
        self.lay(f"{FOLDER}/deeper/more.txt", "mine.zip")
        self.leave_wizard(start, 0, *SOCKETS)
        self.expect_left("mine.zip")

    def test_server_of_adb_started(self) -> None:
        start = self.start_wizard()
        wine.start_adb_server()
        self.leave_wizard(start, 0, *SOCKETS)
        self.expect_nothing_left()


if __name__ == "__main__":
    unittest.main()
