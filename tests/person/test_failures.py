"""Every failure that a user can cause or meet: what the box says, what the status line says, and that the page stays."""

import unittest

import network
import pages
from installation import InstallationTest
from journey import go_to_page
from program import stop_adb
from watch import Watch

RESTART = (
    "Steps to restart installation:\n1. Close this installer program.\n"
    "2. Power the watch off and then turn it on again.\n3. Run the installer program again.\n"
)
NOT_FOUND = (
    "Did not find a watch at the IP address you entered.\n\nPlease verify your workstation and watch are on the same "
    "network. Also verify you entered the correct watch IP address.\n\nIf you entered the correct IP address then \n"
) + RESTART
NO_CONNECTION = (
    "Could not connect to a watch at the IP address and port you entered.\nPlease verify your workstation and watch are "
    "on the same network.\nAlso verify you entered the correct IP address and port.\n\nIf the above does not work, "
) + RESTART
NOT_PAIRED = (
    "Could not connect to a watch at the IP address and port you entered.\n\nVerify you entered the correct IP address "
    "and pairing port.\n\nIf the IP address and pairing port are correct, then:\n1. Pressing the Cancel button on the "
    "watch for pairing\n2. Repeat the pairing process using the new values.\n\nIf the above does not work, "
) + RESTART
NOT_TRUSTED = (
    "Unable to connect to watch.  Please try again, if that does not work, then:\nSteps to revoke debugging "
    "authorizations:\n1. Open the watch's Settings.\n2. Scroll down and tap Developer options.\n3. Scroll down and tap "
    "Revoke debugging authorizations.\n4. Tap the blue button to confirm you are sure.\n"
)
BAD_PORT = "Please enter a port value in the range of 1024 through 65535."


class FailureTest(InstallationTest):
    def expect_box(self, caption: str, message: str, page: int, status: str) -> None:
        """Reads the box, dismisses it, and finds the same page below."""
        box = self.person.wait_for_box(caption)
        self.assertEqual(box.message, message)
        self.assertEqual(box.buttons, ("OK",))
        self.person.dismiss(box)
        self.person.wait_until_it_listens()
        sight = self.person.wait_for_page(page)
        self.assertEqual(sight.status, status)
        self.assertIn("Next", sight.buttons)

    def restart_watch(self, *switches: str) -> None:
        """Another watch in the same place, with switches of its own."""
        self.watch.switch_off()
        self.watch = self.enterContext(Watch(*self.watch_switches, *switches))

    def seen(self, page: int) -> list[str]:
        """The status lines that were seen on a page."""
        return [line for number, line in self.person.statuses if number == page]


class TheAddress(FailureTest):
    def setUp(self) -> None:
        super().setUp()
        go_to_page(self.person, 5, self.watch)

    def enter(self, last: str, port: str) -> None:
        self.person.type(last)
        self.person.write(pages.PORT, port)
        self.person.enter_when_offered()

    def test_of_nobody(self) -> None:
        self.enter("55", "43210")
        self.expect_box("Invalid IP address", NOT_FOUND, 5, "Unreachable")
        # Some of them are gone before anybody can read them.
        pings = [f"Pinging 192.168.1.55 ({attempt} of 6)" for attempt in range(1, 7)]
        seen = [line for line in self.seen(5) if line.startswith("Pinging ")]
        self.assertGreater(len(seen), 1)
        self.assertEqual(seen, [line for line in pings if line in seen])

    def test_with_a_closed_port(self) -> None:
        self.enter("100", "43299")
        self.expect_box(
            "Wireless Debugging Connection", NO_CONNECTION, 5, "Could not connect to 192.168.1.100:43299"
        )
        tries = [line for line in self.seen(5) if line.startswith("Connecting to 192.168.1.100:43299 (")]
        self.assertGreater(len(tries), 1)

    def test_with_a_port_below_or_above_the_range(self) -> None:
        status = self.person.look().status
        self.enter("100", "1023")
        self.expect_box("Invalid Port Value", BAD_PORT, 5, status)
        self.person.click_control(pages.PORT)
        self.person.press("ctrl+a")
        self.person.type("65536")
        self.person.enter_when_offered()
        self.expect_box("Invalid Port Value", BAD_PORT, 5, status)

    def test_when_the_network_is_down(self) -> None:
        self.addCleanup(network.plug_in_computer)
        network.unplug_computer()
        self.enter("100", "43210")
        # Windows says here that the network is unreachable, and the box is the one about the missing
        # network; Wine has one code for all that goes wrong with an echo, and no words for it.
        self.expect_box(
            "Win32 Error",
            "CWirelessDebuggingOnPage::OnNotify_PSN_WIZNEXT_Ping() > icmp.SendEchoRequest() failed with error "
            "0x00002B2A: \r\n",
            5,
            "Pinging 192.168.1.100 (1 of 6)",
        )


class ThePairing(FailureTest):
    def setUp(self) -> None:
        super().setUp()
        go_to_page(self.person, 6, self.watch)

    def enter(self, code: str, port: int) -> None:
        self.person.write(pages.PAIRING_CODE, code)
        self.person.write(pages.PAIRING_PORT, str(port))
        self.person.enter_when_offered()

    def test_with_a_wrong_code(self) -> None:
        self.enter("000001", self.watch.pairing_port)
        self.expect_box(
            "Pairing Error",
            "An unexpected error has occurred, please send a screenshot of this message to KALVO",
            6,
            "Error parsing command output",
        )
        self.assertNotIn("Pairing attempt 2 of 3", self.seen(6))

    def test_with_a_wrong_port(self) -> None:
        self.enter(self.watch.code, 37098)
        self.expect_box("Pair Connection", NOT_PAIRED, 6, "adb pair - pair failed")
        attempts = [f"Pairing attempt {attempt} of 3" for attempt in (1, 2, 3)]
        self.assertEqual([line for line in self.seen(6) if line in attempts], attempts)

    def test_with_a_port_out_of_range(self) -> None:
        self.enter(self.watch.code, 1023)
        self.expect_box("Invalid Port Value", BAD_PORT, 6, "Stopping ADB server")

    def test_when_the_watch_has_left(self) -> None:
        self.addCleanup(network.plug_in_watch)
        network.unplug_watch()
        self.enter(self.watch.code, self.watch.pairing_port)
        self.expect_box("Invalid IP address", NOT_FOUND, 6, "Unreachable")


class TheConnection(FailureTest):
    def test_with_a_watch_that_does_not_trust_this_computer(self) -> None:
        go_to_page(self.person, 7, self.watch, pair=False)
        self.person.enter_when_offered()
        # adb says "failed to connect to", which is none of the lines that are known.
        first = self.person.wait_for_box("ADB Install")
        self.assertEqual(
            first.message,
            "An unexpected error has occurred when connecting to the device:\n\nError parsing command output\n\n"
            "ADB_PARSE_ERROR (6)",
        )
        self.person.dismiss(first)
        self.expect_box("Install APK", NOT_TRUSTED, 7, "Error parsing command output")

    def test_with_a_watch_that_has_left(self) -> None:
        go_to_page(self.person, 7, self.watch, pair=False)
        self.addCleanup(network.plug_in_watch)
        network.unplug_watch()
        self.person.enter_when_offered()
        self.expect_box("Invalid IP address", NOT_FOUND, 7, "Unreachable")

    def test_with_debugging_turned_off_meanwhile(self) -> None:
        go_to_page(self.person, 7, self.watch, pair=False)
        self.watch.switch_off()
        self.person.enter_when_offered()
        self.expect_box("Install APK", NOT_TRUSTED, 7, "Unable to connect to 192.168.1.100:43210")
        self.assertIn("Connecting to 192.168.1.100:43210 (attempt 3 of 3)", self.seen(7))


class TheInstallation(FailureTest):
    """The watch takes the package and refuses it."""

    watch_switches = ("--trust-all",)

    REINSTALL = (
        "There is a version of Solvane Watch 2.1.apk already installed on the device.\n\n"
        "Please manually uninstall it and then press Next."
    )

    def refuse(self, name: str, status: str, message: str, answer: str = "Failure [{}: the watch says so]") -> None:
        self.restart_watch("--reply", answer.format(name))
        go_to_page(self.person, 7, self.watch, pair=False)
        self.person.enter_when_offered()
        self.expect_box("ADB Install", message, 7, status)

    def test_already_exists(self) -> None:
        self.refuse("INSTALL_FAILED_ALREADY_EXISTS", "The package is already installed.", self.REINSTALL)

    def test_update_incompatible(self) -> None:
        self.refuse(
            "INSTALL_FAILED_UPDATE_INCOMPATIBLE",
            "A previously installed package of the same name has a different signature than the new package(and the old "
            "package's data was not removed.",
            self.REINSTALL,
        )

    def test_invalid_apk(self) -> None:
        self.refuse(
            "INSTALL_FAILED_INVALID_APK",
            "The package archive file is invalid.",
            "The APK file is invalid. Please try downloading it again or ask KALVO for another copy.",
        )

    def test_insufficient_storage(self) -> None:
        self.refuse(
            "INSTALL_FAILED_INSUFFICIENT_STORAGE",
            "The package manager service found that the device didn't have enough storage space to install the app.",
            "There is not enough storage space on the device to install the APK.\n\nRemove data (e.g. pictures) or "
            "applications to free up storage space",
        )

    def test_another_known_name(self) -> None:
        status = "The new package failed because the current SDK version is older than that required by the package."
        self.refuse(
            "INSTALL_FAILED_OLDER_SDK",
            status,
            f"An unexpected error has occurred when installing the APK:\n\n{status}\n\nINSTALL_FAILED_OLDER_SDK (313)",
        )

    def test_unknown_name(self) -> None:
        self.restart_watch("--reply", "Failure [INSTALL_FAILED_BAD_MOOD: the watch says so]")
        go_to_page(self.person, 7, self.watch, pair=False)
        self.person.enter_when_offered()
        first = self.person.wait_for_box("GetFailedToInstallExitCode()")
        self.assertEqual(first.message, "Unknown ADB_EXIT_CODE, please report to KALVO")
        self.person.dismiss(first)
        status = "Unknown error, please report this message to KALVO."
        self.expect_box(
            "ADB Install",
            f"An unexpected error has occurred when installing the APK:\n\n{status}\n\n"
            "INSTALL_FAILED_KALVO_UNKNOWN_ERROR (301)",
            7,
            status,
        )

    def test_failure_without_a_reason_is_tried_three_times(self) -> None:
        self.restart_watch("--reply", "Failure [INSTALL_FAILED_ABORTED]")
        go_to_page(self.person, 7, self.watch, pair=False)
        self.person.enter_when_offered()
        sight = self.person.wait_until("the last word", lambda sight: sight.status == "Install failed.", 90)
        self.assertEqual((sight.number, sight.boxes), (7, ()))
        self.assertIn("Installing Solvane Watch 2.1.apk (attempt 3 of 3)", self.seen(7))

    def test_works_after_the_reason_is_mended(self) -> None:
        self.refuse("INSTALL_FAILED_ALREADY_EXISTS", "The package is already installed.", self.REINSTALL)
        self.restart_watch()
        self.person.enter_when_offered()
        self.person.wait_for_page(8)
        self.assertTrue(self.watch.has_received(self.package))


class TheUnforeseen(FailureTest):
    """What happens to the package, adb or the watch while the page is there."""

    watch_switches = ("--trust-all",)

    def test_package_that_has_gone(self) -> None:
        go_to_page(self.person, 7, self.watch, pair=False)
        self.package.unlink()
        self.person.enter_when_offered()
        self.expect_unexpected("adb install - failed to stat", "INSTALL_FAILED_STAT (342)")

    def test_adb_server_that_is_stopped_from_outside(self) -> None:
        self.restart_watch("--silent-install")
        go_to_page(self.person, 7, self.watch, pair=False)
        self.person.enter_when_offered()
        self.watch.wait_for_event("install: stays silent", 60)
        stop_adb()
        # The next attempt starts a new server, which knows nothing of the watch.
        self.expect_unexpected("Error parsing command output", "ADB_PARSE_ERROR (6)")
        self.assertIn("Installing Solvane Watch 2.1.apk (attempt 2 of 3)", self.seen(7))

    def test_watch_that_goes_offline(self) -> None:
        self.restart_watch("--offline")
        go_to_page(self.person, 7, self.watch, pair=False)
        self.person.enter_when_offered()
        self.expect_box(
            "ADB Install",
            "Unable to install the APK, please press Next to try again",
            7,
            "adb install - device offline",
        )
        attempts = [f"Installing Solvane Watch 2.1.apk (attempt {attempt} of 3)" for attempt in (1, 2, 3)]
        self.assertEqual([line for line in self.seen(7) if line in attempts], attempts)

    def expect_unexpected(self, message: str, name: str) -> None:
        text = f"An unexpected error has occurred when installing the APK:\n\n{message}\n\n{name}"
        self.expect_box("ADB Install", text, 7, message)


if __name__ == "__main__":
    unittest.main()
