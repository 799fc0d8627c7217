"""Every way out before the tools are touched: the box, the exit code, what is torn down and in which order."""

import unittest

from driver.evidence import one_test_for_each
from processtest import (
    APPEND, CANCELLED, COM, FINISHED, KNOWN_FOLDER, LOCK, OLD_WINDOWS, SOCKETS, TITLE, TOOLS, Box, ProcessTest,
    com_error, sudden_end, way_out
)

NO_TITLE = Box("Error", "Unable to load application title")
NO_COM = Box(TITLE, "Unable to initalize COM Library")
NO_SOCKETS = Box(TITLE, "Unable to start WinSock Library")
NO_PATH = Box(TITLE, "Unable to initalize Application Path")
NO_TOOLS = Box(TITLE, "Unable to initalize Platform Tools")
NO_WIZARD = Box(TITLE, "A Property Sheet error has occurred")
NO_WORDS = Box("COM Error", f"Unknown error: {0x8123ABCD - 2**32}", 0x8123ABCD)


@one_test_for_each(
    lock_that_cannot_be_made_is_a_second_instance=way_out("CreateMutexW=null:5", 0),
    windows_too_old=way_out("VerifyVersionInfoW=null:1150", 0, OLD_WINDOWS, *LOCK),
    no_com=way_out("CoInitializeEx=fail:0x80010106", 0, NO_COM, *COM),
    # What ends this run is what comes next.
    com_that_was_there_already=way_out("CoInitializeEx=ret:1;WSAStartup=ret:10091", 0, NO_SOCKETS, *COM),
    no_sockets=way_out("WSAStartup=fail:10091", 0, NO_SOCKETS, *COM),
    own_path_unknown=way_out("QueryFullProcessImageNameW=null:31", 0, NO_PATH, *SOCKETS),
    account_without_local_folder=sudden_end(
        "SHGetKnownFolderPath=fail:0x80070002", com_error(KNOWN_FOLDER, 0x80070002)
    ),
    account_without_local_folder_for_a_reason_without_words=sudden_end(
        "SHGetKnownFolderPath=fail:0x8123ABCD", NO_WORDS
    ),
    working_folder_without_a_name=sudden_end("PathCchAppend=fail:0x8007007A", com_error(APPEND, 0x8007007A)),
    archive_without_a_name=way_out("PathCchCombine@1=fail:0x8007007A", 0, NO_TOOLS, *SOCKETS),
    folder_of_tools_without_a_name=way_out("PathCchCombine@2=fail:0x8007007A", 0, NO_TOOLS, *SOCKETS),
    adb_without_a_name=way_out("PathCchCombine@3=fail:0x8007007A", 0, NO_TOOLS, *SOCKETS),
    no_wizard_leaves_the_tools=way_out(
        "PropertySheetW=fail:0", 0, "PropertySheetW result=-1", NO_WIZARD, *SOCKETS, disk=TOOLS
    ),
)
class WaysOut(ProcessTest):
    pass


class WithoutTitle(ProcessTest):
    """The run goes on; its boxes have no caption."""

    def test_later_box(self) -> None:
        later = Box("", NO_SOCKETS.form)
        self.expect_way_out("LoadStringW#201=null:1813;WSAStartup=fail:10091", 0, NO_TITLE, later, *COM)

    def test_wizard(self) -> None:
        start = self.start("LoadStringW#201=null:1813")
        self.dismiss_box(start, NO_TITLE)
        self.wait_for_wizard(start)
        self.press_escape()
        self.expect_end(start, 0, NO_TITLE, *CANCELLED)


@one_test_for_each(
    finished=way_out("PropertySheetW=ret:1", 0, *FINISHED),
    cancelled=way_out("PropertySheetW=ret:0", 0, *CANCELLED),
)
class Leaving(ProcessTest):
    """The wizard finished and the wizard cancelled end alike."""

    def test_escape(self) -> None:
        self.expect_good_run()

    def test_close_box(self) -> None:
        start = self.start_wizard()
        self.person.press("alt+F4")
        self.expect_end(start, 0, *CANCELLED)


if __name__ == "__main__":
    unittest.main()
