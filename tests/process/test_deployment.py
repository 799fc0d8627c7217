"""Every failure while the tools are put on the disk: the box, the exit code, the teardown and what is left there."""

import unittest

from bystander import hold
from processtest import (
    ADB,
    CANCELLED,
    CREATE_FILE,
    CREATE_FOLDER,
    CREATE_PROCESS,
    DELETE_FOLDER,
    FOLDER,
    MEMBERS,
    NOT_INSTALLED,
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
from steps import step


class Failing(ProcessTest):
    def test_folder_cannot_be_made(self) -> None:
        self.expect_way_out("SHCreateDirectoryExW=ret:3", 3, win32_error(CREATE_FOLDER, 3), exit_process(3))

    def test_folder_that_exists_already_is_no_failure(self) -> None:
        for code in (183, 80):
            with step(self, code):
                (self.folder / FOLDER).mkdir(parents=True)
                faults = f"SHCreateDirectoryExW=ret:{code};PropertySheetW=ret:0"
                self.expect_way_out(faults, 0, *CANCELLED)

    def test_archive_not_in_the_program(self) -> None:
        for function in ("FindResource", "LoadResource", "LockResource"):
            with step(self, function):
                name = "FindResourceW" if function == "FindResource" else function
                box = last_error(f"CPlatformTools::LockZipFileResource() > {function}()", 1813)
                self.expect_way_out(f"{name}=null:1813", 1813, box, exit_process(1813), disk=(FOLDER,))

    def test_archive_cannot_be_made(self) -> None:
        boxes = (last_error(CREATE_FILE, 5), (TITLE, NOT_INSTALLED))
        self.expect_way_out(f"CreateFileW#{ZIP}=fail:5", 0, *boxes, *SOCKETS, disk=(FOLDER,))

    def test_archive_cannot_be_written_and_is_out_of_reach_until_the_end(self) -> None:
        start = self.start(f"WriteFile#{ZIP}=fail:112")
        self.wait_for_box(start)
        with self.assertRaisesRegex(AssertionError, "cannot hold"), hold(self.folder / ZIP):
            pass
        self.dismiss_box(start, TITLE, NOT_INSTALLED)
        self.expect_end(start, 0, (TITLE, NOT_INSTALLED), *SOCKETS)
        self.assertEqual(sorted(left_behind()), sorted((FOLDER, ZIP)))
        with hold(self.folder / ZIP):
            pass

    def test_archive_cannot_be_closed(self) -> None:
        faults = f"CloseHandle#{ZIP}=fail:6"
        self.expect_way_out(faults, 0, (TITLE, NOT_INSTALLED), *SOCKETS, disk=(FOLDER, ZIP))

    def test_path_that_cannot_be_narrowed_ends_the_process_without_a_word(self) -> None:
        self.expect_way_out("WideCharToMultiByte=null:87", 3, exit_process(3), disk=(FOLDER, ZIP))

    def test_memory_that_runs_out_on_a_page_ends_the_process_without_a_word(self) -> None:
        # The first text is the title, the second the body of the first page.
        self.expect_way_out("HeapAlloc@2=null:8", 3, exit_process(3), disk=TOOLS)

    def test_failing_start_can_be_repeated(self) -> None:
        self.expect_way_out(f"WriteFile#{ZIP}=fail:112", 0, (TITLE, NOT_INSTALLED), *SOCKETS, disk=(FOLDER, ZIP))
        self.expect_good_run()


class InTheWay(ProcessTest):
    """What lies already where the tools are to be."""

    def expect_not_installed(self, disk: tuple[str, ...], *boxes: tuple[str, str]) -> None:
        self.expect_way_out("", 0, *boxes, (TITLE, NOT_INSTALLED), *SOCKETS, disk=disk)

    def test_folder_named_as_the_archive(self) -> None:
        (self.folder / ZIP).mkdir(parents=True)
        self.expect_not_installed((FOLDER, ZIP), last_error(CREATE_FILE, 5))

    def test_folder_named_as_a_member(self) -> None:
        for last, name in enumerate(MEMBERS[1:], 1):
            with step(self, name):
                self.clean_account()
                (self.folder / name).mkdir(parents=True)
                self.expect_not_installed((FOLDER, ZIP, *MEMBERS[: last + 1]))

    def test_file_named_as_the_folder(self) -> None:
        self.folder.mkdir(parents=True)
        (self.folder / FOLDER).write_text("mine")
        self.expect_not_installed((FOLDER, ZIP))
        self.assertEqual((self.folder / FOLDER).read_text(), "mine")

    def test_folder_named_as_adb_is_told_by_the_attempt_to_stop_its_server(self) -> None:
        (self.folder / ADB).mkdir(parents=True)
        # Windows says here that access is denied, and has another number for it.
        box = last_error(CREATE_PROCESS, 6)
        self.expect_way_out("", 6, box, exit_process(6), disk=(FOLDER, ADB))

    def test_archive_held_open_by_another_process(self) -> None:
        self.folder.mkdir(parents=True)
        (self.folder / ZIP).write_text("mine")
        with hold(self.folder / ZIP):
            self.expect_not_installed((FOLDER, ZIP), last_error(CREATE_FILE, 32))
        self.assertEqual((self.folder / ZIP).read_text(), "mine")
        self.expect_good_run()

    def test_member_held_open_by_another_process(self) -> None:
        (self.folder / FOLDER).mkdir(parents=True)
        (self.folder / MEMBERS[1]).write_text("mine")
        with hold(self.folder / MEMBERS[1]):
            self.expect_not_installed((FOLDER, ZIP, *MEMBERS[:2]))
        self.assertEqual((self.folder / MEMBERS[1]).read_text(), "mine")
        self.expect_good_run()


class LeftOver(ProcessTest):
    """Tools of a run that was killed are removed before the new ones come."""

    def leave_more_behind(self) -> None:
        self.leave_tools_behind()
        (self.folder / FOLDER / "more.txt").write_text("left over")
        (self.folder / "platform-tools_other.zip").write_text("left over")

    def test_tools_and_more(self) -> None:
        self.leave_more_behind()
        self.expect_good_run()

    def test_removed_before_anything_is_written(self) -> None:
        self.leave_more_behind()
        self.expect_way_out("SHCreateDirectoryExW=ret:5", 5, win32_error(CREATE_FOLDER, 5), exit_process(5))

    def test_tools_that_stay_are_written_over(self) -> None:
        for fault in ("SHFileOperationW@1=ret:2", "DeleteFileW@1=fail:5", "GetExitCodeProcess@1=fail:6"):
            with step(self, fault):
                self.leave_tools_behind()
                for name in (ZIP, *MEMBERS[1:]):
                    (self.folder / name).write_text("left over")
                start = self.start_wizard(fault)
                self.expect_whole_tools()
                self.cancel(start)
                self.assertEqual(left_behind(), [])

    def test_tools_held_open_end_the_process(self) -> None:
        self.leave_tools_behind()
        with hold(self.folder / MEMBERS[2]):
            start = self.start()
            self.dismiss_box(start, *win32_error(DELETE_FOLDER, 13))
            self.expect_end(start, 13, win32_error(DELETE_FOLDER, 13), exit_process(13))
        self.expect_good_run()

    def test_archive_alone_is_written_over_and_goes_with_the_others(self) -> None:
        self.folder.mkdir(parents=True)
        (self.folder / ZIP).write_bytes(b"left over" * 1_000_000)
        (self.folder / "platform-tools_other.zip").write_text("left over")
        start = self.start_wizard()
        self.assertIn("platform-tools_other.zip", left_behind())
        (self.folder / "platform-tools_other.zip").rename(self.folder / "platform-tools_another.zip")
        self.cancel(start)
        self.assertEqual(left_behind(), [])


if __name__ == "__main__":
    unittest.main()
