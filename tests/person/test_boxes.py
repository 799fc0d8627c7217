"""The boxes that no user can bring about with the watch and the network alone: what is to be seen of them, measured.

At 96 dpi the pictures are beside those of all boxes, at any other resolution in a folder of its own.

Calls of the program are made to fail, one for each box. What else comes of such a failure, other tests hold.
"""

import os
import unittest
import unittest.mock
from collections.abc import Callable

import guide
import hands
import looks
import network
import pages
import places
from evidence import ObservedTest
from eyes import Eyes
from journey import fill_in, go_to_page
from person import Person
from program import Program, remove_folder, working_folder
from steps import step
from waiting import wait_for
from watch import Watch

GATEWAY = "CWinSockHelper::GetDefaultGateway()"
TCP = "CWirelessDebuggingOnPage::OnNotify_PSN_WIZNEXT_TcpConnect()"

# The picture, what fails, words of the box or of its caption. While the program starts.
STARTING = (
    ("start-old-windows", "VerifyVersionInfoW=null:1150", "requires Windows 10 Version 2004"),
    ("start-no-com", "CoInitializeEx=fail:0x80010106", "Unable to initalize COM Library"),
    ("start-no-sockets", "WSAStartup=fail:10091", "Unable to start WinSock Library"),
    ("start-own-path-unknown", "QueryFullProcessImageNameW=null:31", "Unable to initalize Application Path"),
    ("start-no-local-folder", "SHGetKnownFolderPath=fail:0x80070002", "> SHGetKnownFolderPath()"),
    ("start-no-local-folder-without-words", "SHGetKnownFolderPath=fail:0x8123ABCD", "Unknown error: "),
    ("start-no-working-folder", "PathCchAppend=fail:0x8007007A", "> PathCchAppend()"),
    ("start-no-path-of-tools", "PathCchCombine@1=fail:0x8007007A", "Unable to initalize Platform Tools"),
    ("start-no-title", "LoadStringW#201=null:1813", "Unable to load application title"),
    ("start-no-folder-of-tools", "SHCreateDirectoryExW=ret:5", "SHCreateDirectoryEx() failed with error 0x00000005"),
    ("start-no-archive", "FindResourceW=null:1813", "FindResource() failed with error 1813"),
    ("start-archive-not-loaded", "LoadResource=null:1813", "LoadResource() failed with error 1813"),
    ("start-archive-not-locked", "LockResource=null:1813", "LockResource() failed with error 1813"),
    ("start-archive-not-made", "CreateFileW#platform-tools_kalvo=fail:5", "CreateFile() failed with error 5"),
    ("start-no-room", "WriteFile#platform-tools_kalvo=fail:112", "Unable to install Platform Tools"),
    ("start-no-wizard", "PropertySheetW=fail:0", "A Property Sheet error has occurred"),
    ("end-tools-not-removed", "PropertySheetW=ret:0;SHFileOperationW=ret:2", "Unable to unistall Platform Tools"),
    ("end-folder-not-deleted", "PropertySheetW=ret:0;SHFileOperationW=ret:5", "SHFileOperation() failed with error"),
    ("end-no-pipe", "PropertySheetW=ret:0;CreatePipe=null:8", "CreatePipe("),
    ("end-pipe-inherited", "PropertySheetW=ret:0;SetHandleInformation=null:8", "SetHandleInformation("),
    ("end-no-adb", "PropertySheetW=ret:0;CreateProcessW=null:2", "CreateProcess("),
)

# When page 5 is opened.
OPENING = (
    ("no-ipv4", "GetBestInterfaceEx=ret:50", "IPv4 is not available on the local computer"),
    ("gateway-wrong-parameter", "GetBestInterfaceEx=ret:87", "Invalid parameter passed"),
    ("gateway-not-completed", "GetBestInterfaceEx=ret:1003", "The operation could not be completed"),
    ("no-interface", "GetBestRoute2=ret:1168", "The network interface could not be found, e.g. Wi-Fi turned off."),
    ("address-no-subclass", "SetWindowSubclass@1=null:8", "CIntegerEdit::SetWindowSubclass(hwndCtl, NULL)"),
)

# When the next page is wanted there.
CONNECTING = (
    ("tcp-no-socket", "socket@1=fail:10024", f"{TCP} > socket.Socket()"),
    ("tcp-no-mode", "ioctlsocket@1=fail:10035", f"{TCP} > socket.Ioctlsocket()"),
    ("tcp-not-started", "connect@1=fail:10051", f"{TCP} > socket.Connect()"),
    ("tcp-no-poll", "WSAPoll@1=fail:10022", f"{TCP} > socket.Connect()"),
    ("tcp-no-shutdown", "shutdown@1=fail:10057", f"{TCP} > socket.Shutdown()"),
    ("tcp-not-closed", "closesocket@1=fail:10038", f"{TCP} > socket.CloseSocket()"),
    ("tcp-not-closed-after-failure", "connect@1=fail:10051;closesocket@1=fail:10038", f"{TCP} > socket.Connect()"),
    ("pairing-no-subclass-of-port", "SetWindowSubclass@2=null:8", "CIntegerEdit::SetWindowSubclass(PORT, NULL)"),
    ("pairing-no-subclass-of-code", "SetWindowSubclass@3=null:8", "CIntegerEdit::SetWindowSubclass(CODE, NULL)"),
)

# When the next page is wanted on the page of the pairing.
PAIRING = (
    ("pairing-port-not-read", "GetDlgItemInt@2=null:0", "Somehow you entered an invalid port number."),
    ("pairing-code-not-read", "GetDlgItemTextW@1=null:0", "You have entered an invalid pairing code."),
    ("pairing-server-not-stopped", "GetExitCodeProcess@1=null:6", "Unable to stop the adb service."),
)


# It belongs to no window, and while it is there the field of the address takes the keyboard, as the page has asked it
# to: the wizard comes before it.
BEHIND_THE_WIZARD = "address-no-subclass"

# Below the upper edge of the wizard, between the arrow and the close box.
CAPTION_MIDDLE = 14

# Wine itself starts in this time, too.
START = 60.0


class Boxes(ObservedTest):
    def test_starting_and_ending(self) -> None:
        for picture, faults, words in STARTING:
            self.look_at(picture, faults, words, page=0)

    def test_opening_the_page_of_the_address(self) -> None:
        for picture, faults, words in OPENING:
            self.look_at(picture, faults, words, page=4)

    def test_opening_it_without_a_way_out_of_the_network(self) -> None:
        self.addCleanup(network.plug_in_computer)
        self.look_at("no-gateway", "", f"{GATEWAY} failed with error", page=4, before_next=network.remove_gateway)

    def test_leaving_the_page_of_the_address(self) -> None:
        for picture, faults, words in CONNECTING:
            self.look_at(picture, faults, words, page=5)

    def test_leaving_the_page_of_the_pairing(self) -> None:
        for picture, faults, words in PAIRING:
            self.look_at(picture, faults, words, page=6)

    def look_at(
        self, picture: str, faults: str, words: str, page: int, before_next: Callable[[], None] = lambda: None
    ) -> None:
        """A new start of the program, on to the page and then one further, until there is the box."""
        with self.subTest(picture), unittest.mock.patch.dict(os.environ, {"KALVO_FAULTS": faults}):
            with Watch() as watch, Eyes() as eyes, Program() as program, step(self, picture), self.observed(
                eyes, program, lambda: watch.events
            ):
                person = Person(eyes)
                if page:
                    person.wait_for_page(1, START)
                    go_to_page(person, page, watch)
                    fill_in(person, pages.PAGES[page - 1], watch)
                    before_next()
                    person.enter_when_offered()
                person.wait_until("a box", lambda sight: sight.boxes, START)
                if picture == BEHIND_THE_WIZARD:
                    self.move_wizard_aside(person)
                self.see(person, picture, words)
                self.leave(person, program)
            remove_folder(working_folder())

    def move_wizard_aside(self, person: Person) -> None:
        sight = person.rest()
        frame, box = sight.frame, sight.boxes[0].window
        assert frame
        self.assertLess(sight.view.windows.index(frame), sight.view.windows.index(box))
        # Right of the middle, so that the mouse has room for the way.
        hold, caption = frame.x + frame.width * 4 // 5, frame.y + CAPTION_MIDDLE
        hands.drag(hold, caption, hold - (frame.x + frame.width - box.x), caption)
        person.wait_until("the box to be seen", lambda sight: sight.frame and not sight.frame.area.meets(box.area))

    def see(self, person: Person, picture: str, words: str) -> None:
        hands.move_mouse_away()
        box = person.rest().boxes[0]
        self.assertTrue(words, "any box has no words")
        self.assertIn(words, f"{box.caption}\n{box.message}")
        self.assertEqual(box.buttons, ("OK",))
        self.assertTrue(guide.explains(box), f"the guide does not explain {box}")
        self.assertEqual(looks.look_at_box(person.eyes, box), [])
        resolution = os.environ["KALVO_DPI"]
        folder = places.build() / "run" / ("" if resolution == "96" else f"{resolution}dpi") / "boxes"
        person.picture(folder / f"{picture}.png", box.window)

    def leave(self, person: Person, program: Program) -> None:
        """Some boxes are the last word, some are followed by others or by the wizard."""

        def left() -> bool:
            sight = person.look()
            if sight.boxes:
                # Not with a key: a box that belongs to no window need not have the keyboard.
                person.click(next(part for part in sight.boxes[0].window.descendants() if part.is_kind("Button")))
            elif sight.frame:
                person.press("Escape")
            return program.has_ended

        wait_for("the program to end", left, START, every=0.3)


if __name__ == "__main__":
    unittest.main()
