"""Every failure while the tools are put on the disk: the box, the exit code, the teardown and what is left there."""

import unittest

from bystander import hold
from driver.evidence import one_test_for_each
from processtest import (
    ADB, CANCELLED, CREATE_FILE, CREATE_FOLDER, CREATE_PROCESS, DELETE_FOLDER, FOLDER, MEMBERS, NOT_INSTALLED, SOCKETS,
    TOOLS, ZIP, Box, ProcessTest, exit_process, last_error, sudden_end, way_out, win32_error
)

OTHER_ZIP = "platform-tools_other.zip"


def no_archive(call: str, function: str) -> tuple:
    box = last_error(f"CPlatformTools::LockZipFileResource() > {function}()", 1813)
    return sudden_end(f"{call}=null:1813", box, disk=(FOLDER,))


@one_test_for_each(
    folder_cannot_be_made=sudden_end("SHCreateDirectoryExW=ret:3", win32_error(CREATE_FOLDER, 3)),
    archive_not_in_the_program=no_archive("FindResourceW", "FindResource"),
    archive_not_loaded=no_archive("LoadResource", "LoadResource"),
    archive_not_locked=no_archive("LockResource", "LockResource"),
    archive_cannot_be_made=way_out(
        f"CreateFileW#{ZIP}=fail:5", 0, last_error(CREATE_FILE, 5), NOT_INSTALLED, *SOCKETS, disk=(FOLDER,)
    ),
    archive_cannot_be_closed=way_out(f"CloseHandle#{ZIP}=fail:6", 0, NOT_INSTALLED, *SOCKETS, disk=(FOLDER, ZIP)),
    path_that_cannot_be_narrowed_ends_the_process_without_a_word=way_out(
        "WideCharToMultiByte=null:87", 3, exit_process(3), disk=(FOLDER, ZIP)
    ),
    # The first text is the title, the second the body of the first page.
    memory_that_runs_out_on_a_page_ends_the_process_without_a_word=way_out(
        "HeapAlloc@2=null:8", 3, exit_process(3), disk=TOOLS
    ),
)
class Failing(ProcessTest):
    def test_archive_cannot_be_written_and_is_out_of_reach_until_the_end(self) -> None:
        start = self.start(f"WriteFile#{ZIP}=fail:112")
        self.wait_for_box(start)
        with self.assertRaisesRegex(AssertionError, "cannot hold"), hold(self.folder / ZIP):
            pass
        self.expect_boxes_and_end(start, 0, NOT_INSTALLED, *SOCKETS)
        self.expect_left(FOLDER, ZIP)
        with hold(self.folder / ZIP):
            pass
        # It can be started again.
        self.expect_good_run()


class InTheWay(ProcessTest):
    """What lies already where the tools are to be."""

    def expect_not_installed(self, disk: tuple[str, ...], *boxes: Box) -> None:
        self.expect_way_out("", 0, *boxes, NOT_INSTALLED, *SOCKETS, disk=disk)

    def test_folder_that_exists_already_is_no_failure(self) -> None:
        for code in (183, 80):
            with self.step(code):
                (self.folder / FOLDER).mkdir(parents=True)
                self.expect_way_out(f"SHCreateDirectoryExW=ret:{code};PropertySheetW=ret:0", 0, *CANCELLED)

    def test_folder_named_as_the_archive(self) -> None:
        (self.folder / ZIP).mkdir(parents=True)
        self.expect_not_installed((FOLDER, ZIP), last_error(CREATE_FILE, 5))

    def test_folder_named_as_a_member(self) -> None:
        for last, name in enumerate(MEMBERS[1:], 1):
            with self.step(name):
                self.clean_account()
                (self.folder / name).mkdir(parents=True)
                self.expect_not_installed((FOLDER, ZIP, *MEMBERS[: last + 1]))

    def test_folder_named_as_adb_is_told_by_the_attempt_to_stop_its_server(self) -> None:
        (self.folder / ADB).mkdir(parents=True)
        # Windows says here that access is denied, and has another number for it.
        self.check(*sudden_end("", last_error(CREATE_PROCESS, 6), disk=(FOLDER, ADB)))

    def test_file_named_as_the_folder(self) -> None:
        self.lay(FOLDER)
        self.expect_not_installed((FOLDER, ZIP))
        self.assertEqual((self.folder / FOLDER).read_text(), "mine")

    def test_archive_held_open_by_another_process(self) -> None:
        self.expect_not_replaced_while_held(ZIP, (FOLDER, ZIP), last_error(CREATE_FILE, 32))

    def test_member_held_open_by_another_process(self) -> None:
        self.expect_not_replaced_while_held(MEMBERS[1], (FOLDER, ZIP, *MEMBERS[:2]))

    def expect_not_replaced_while_held(self, name: str, disk: tuple[str, ...], *boxes: Box) -> None:
        self.lay(name)
        with hold(self.folder / name):
            self.expect_not_installed(disk, *boxes)
        self.assertEqual((self.folder / name).read_text(), "mine")
        self.expect_good_run()


class LeftOver(ProcessTest):
    """Tools of a run that was killed are removed before the new ones come."""

    def leave_more_behind(self) -> None:
        self.leave_tools_behind()
        self.lay(f"{FOLDER}/more.txt", OTHER_ZIP)

    def test_tools_and_more(self) -> None:
        self.leave_more_behind()
        self.expect_good_run()

    def test_removed_before_anything_is_written(self) -> None:
        self.leave_more_behind()
        self.check(*sudden_end("SHCreateDirectoryExW=ret:5", win32_error(CREATE_FOLDER, 5)))

    def test_tools_that_stay_are_written_over(self) -> None:
        for fault in ("SHFileOperationW@1=ret:2", "DeleteFileW@1=fail:5", "GetExitCodeProcess@1=fail:6"):
            with self.step(fault):
                self.leave_tools_behind()
                self.lay(ZIP, *MEMBERS[1:])
                start = self.start_wizard(fault)
                self.expect_whole_tools()
                self.cancel(start)
                self.expect_left()

    def test_tools_held_open_end_the_process(self) -> None:
        self.leave_tools_behind()
        with hold(self.folder / MEMBERS[2]):
            self.expect_boxes_and_end(self.start(), 13, win32_error(DELETE_FOLDER, 13), exit_process(13))
        self.expect_good_run()

    def test_archive_alone_is_written_over_and_goes_with_the_others(self) -> None:
        self.lay(ZIP, text="left over" * 1_000_000)
        self.lay(OTHER_ZIP)
        start = self.start_wizard()
        self.assertTrue((self.folder / OTHER_ZIP).is_file())
        (self.folder / OTHER_ZIP).rename(self.folder / "platform-tools_another.zip")
        self.cancel(start)
        self.expect_left()


if __name__ == "__main__":
    unittest.main()
