"""Every way out before the tools are touched: the box, the exit code, what is torn down and in which order."""

import unittest

from processtest import (
    APPEND,
    CANCELLED,
    COM,
    FINISHED,
    KNOWN_FOLDER,
    LOCK,
    OLD_WINDOWS,
    SOCKETS,
    TITLE,
    TOOLS,
    ProcessTest,
    com_error,
    exit_process,
)
from steps import step

NO_TITLE = ("Error", "Unable to load application title")
NO_SOCKETS = "Unable to start WinSock Library"


class WaysOut(ProcessTest):
    def test_lock_that_cannot_be_made_is_a_second_instance(self) -> None:
        self.expect_way_out("CreateMutexW=null:5", 0)

    def test_windows_too_old(self) -> None:
        self.expect_way_out("VerifyVersionInfoW=null:1150", 0, (TITLE, OLD_WINDOWS), *LOCK)

    def test_no_com(self) -> None:
        box = (TITLE, "Unable to initalize COM Library")
        self.expect_way_out("CoInitializeEx=fail:0x80010106", 0, box, *COM)

    def test_com_that_was_there_already_is_no_failure(self) -> None:
        # What ends this run is what comes next.
        self.expect_way_out("CoInitializeEx=ret:1;WSAStartup=ret:10091", 0, (TITLE, NO_SOCKETS), *COM)

    def test_no_sockets(self) -> None:
        self.expect_way_out("WSAStartup=fail:10091", 0, (TITLE, NO_SOCKETS), *COM)

    def test_own_path_unknown(self) -> None:
        box = (TITLE, "Unable to initalize Application Path")
        self.expect_way_out("QueryFullProcessImageNameW=null:31", 0, box, *SOCKETS)

    def test_account_without_local_folder(self) -> None:
        code = 0x80070002
        box = com_error(KNOWN_FOLDER, code)
        self.expect_way_out(f"SHGetKnownFolderPath=fail:{code}", code, box, exit_process(code))

    def test_account_without_local_folder_for_a_reason_that_has_no_words(self) -> None:
        code = 0x8123ABCD
        box = ("COM Error", f"Unknown error: {code - 2**32}")
        self.expect_way_out(f"SHGetKnownFolderPath=fail:{code}", code, box, exit_process(code))

    def test_working_folder_that_cannot_be_named(self) -> None:
        code = 0x8007007A
        self.expect_way_out(f"PathCchAppend=fail:{code}", code, com_error(APPEND, code), exit_process(code))

    def test_tools_that_cannot_be_named(self) -> None:
        box = (TITLE, "Unable to initalize Platform Tools")
        for path, call in (("archive", 1), ("folder", 2), ("adb", 3)):
            with step(self, path):
                self.expect_way_out(f"PathCchCombine@{call}=fail:0x8007007A", 0, box, *SOCKETS)

    def test_no_wizard_leaves_the_tools(self) -> None:
        box = (TITLE, "A Property Sheet error has occurred")
        self.expect_way_out("PropertySheetW=fail:0", 0, "PropertySheetW result=-1", box, *SOCKETS, disk=TOOLS)


class WithoutTitle(ProcessTest):
    """The run goes on; its boxes have no caption."""

    def test_later_box(self) -> None:
        self.expect_way_out("LoadStringW#201=null:1813;WSAStartup=fail:10091", 0, NO_TITLE, ("", NO_SOCKETS), *COM)

    def test_wizard(self) -> None:
        start = self.start("LoadStringW#201=null:1813")
        self.dismiss_box(start, *NO_TITLE)
        self.wait_for_wizard(start)
        self.press_escape()
        self.expect_end(start, 0, NO_TITLE, *CANCELLED)


class Leaving(ProcessTest):
    """The wizard finished and the wizard cancelled end alike."""

    def test_finished(self) -> None:
        self.expect_way_out("PropertySheetW=ret:1", 0, *FINISHED)

    def test_cancelled(self) -> None:
        self.expect_way_out("PropertySheetW=ret:0", 0, *CANCELLED)

    def test_escape(self) -> None:
        self.expect_good_run()

    def test_close_box(self) -> None:
        start = self.start_wizard()
        self.person.press("alt+F4")
        self.expect_end(start, 0, *CANCELLED)


if __name__ == "__main__":
    unittest.main()
