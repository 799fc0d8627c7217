"""The boxes of the wizard that no user can bring about with the watch and the network alone: what is to be seen of
them, measured. Those from before and after the wizard are measured where tests/process meets them.

Calls of the program are made to fail, one for each box. What else comes of such a failure, other tests hold.
"""

import unittest

from driver import hands, journey, network, pages
from driver.evidence import one_test_for_each
from driver.person import START
from driver.waiting import wait_for
from wizardtest import WizardTest

GATEWAY = "CWinSockHelper::GetDefaultGateway()"
TCP = "CWirelessDebuggingOnPage::OnNotify_PSN_WIZNEXT_TcpConnect()"

# It belongs to no window, and while it is there the field of the address takes the keyboard, as the page has asked it
# to: the wizard comes before it.
BEHIND_THE_WIZARD = "SetWindowSubclass@1=null:8"

# What fails, the page that Next leads on from when it does, words of the box.
BOXES = {
    "no_ipv4": ("GetBestInterfaceEx=ret:50", 4, "IPv4 is not available on the local computer"),
    "gateway_wrong_parameter": ("GetBestInterfaceEx=ret:87", 4, "Invalid parameter passed"),
    "gateway_not_completed": ("GetBestInterfaceEx=ret:1003", 4, "The operation could not be completed"),
    "no_interface": ("GetBestRoute2=ret:1168", 4, "The network interface could not be found, e.g. Wi-Fi turned off."),
    "address_no_subclass": (BEHIND_THE_WIZARD, 4, "CIntegerEdit::SetWindowSubclass(hwndCtl, NULL)"),
    # None: the network has no way out.
    "no_gateway": ("", 4, f"{GATEWAY} failed with error"),
    "tcp_no_socket": ("socket@1=fail:10024", 5, f"{TCP} > socket.Socket()"),
    "tcp_no_mode": ("ioctlsocket@1=fail:10035", 5, f"{TCP} > socket.Ioctlsocket()"),
    "tcp_not_started": ("connect@1=fail:10051", 5, f"{TCP} > socket.Connect()"),
    "tcp_no_poll": ("WSAPoll@1=fail:10022", 5, f"{TCP} > socket.Connect()"),
    "tcp_no_shutdown": ("shutdown@1=fail:10057", 5, f"{TCP} > socket.Shutdown()"),
    "tcp_not_closed": ("closesocket@1=fail:10038", 5, f"{TCP} > socket.CloseSocket()"),
    "tcp_not_closed_after_failure": ("connect@1=fail:10051;closesocket@1=fail:10038", 5, f"{TCP} > socket.Connect()"),
    "pairing_no_subclass_of_port": ("SetWindowSubclass@2=null:8", 5, "CIntegerEdit::SetWindowSubclass(PORT, NULL)"),
    "pairing_no_subclass_of_code": ("SetWindowSubclass@3=null:8", 5, "CIntegerEdit::SetWindowSubclass(CODE, NULL)"),
    "pairing_port_not_read": ("GetDlgItemInt@2=null:0", 6, "Somehow you entered an invalid port number."),
    "pairing_code_not_read": ("GetDlgItemTextW@1=null:0", 6, "You have entered an invalid pairing code."),
    "pairing_server_not_stopped": ("GetExitCodeProcess@1=null:6", 6, "Unable to stop the adb service."),
}

# Below the upper edge of the wizard, between the arrow and the close box.
CAPTION_MIDDLE = 14


@one_test_for_each(**BOXES)
class Boxes(WizardTest):
    def setUp(self) -> None:
        """Each starts with faults of its own."""

    def check(self, faults: str, page: int, words: str) -> None:
        self.start_wizard(faults)
        self.go_to_page(page)
        journey.fill_in(self.person, pages.PAGES[page - 1], self.watch)
        if not faults:
            self.addCleanup(network.plug_in_computer)
            network.remove_gateway()
        self.person.enter_when_offered()
        self.person.wait_until("a box", lambda sight: sight.boxes, START)
        if faults == BEHIND_THE_WIZARD:
            self.move_wizard_aside()
        hands.move_mouse_away()
        box = self.person.rest().boxes[0]
        self.assertIn(words, f"{box.caption}\n{box.message}")
        self.expect_sound(box, self.id().rpartition(".test_")[2])
        wait_for("the program to end", self.gets_out, START, every=0.3)

    def move_wizard_aside(self) -> None:
        sight = self.person.rest()
        frame, box = sight.frame, sight.boxes[0].window
        assert frame
        self.assertLess(sight.view.windows.index(frame), sight.view.windows.index(box))
        # Right of the middle, so that the mouse has room for the way.
        hold, caption = frame.x + frame.width * 4 // 5, frame.y + CAPTION_MIDDLE
        hands.drag(hold, caption, hold - (frame.x + frame.width - box.x), caption)
        self.person.wait_until("the box to be seen", lambda now: now.frame and not now.frame.area.meets(box.area))

    def gets_out(self) -> bool:
        """Some boxes are followed by others, some by the wizard."""
        sight = self.person.look()
        if sight.boxes:
            # Not with a key: a box that belongs to no window need not have the keyboard.
            self.person.click(next(part for part in sight.boxes[0].window.descendants() if part.is_kind("Button")))
        elif sight.frame:
            self.person.press("Escape")
        return self.program.has_ended


if __name__ == "__main__":
    unittest.main()
