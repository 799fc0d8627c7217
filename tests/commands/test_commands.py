"""The four commands, with the adb that the product carries, on a watch in every state: what they come to and what adb
said.

The product waits two seconds before each command; here it only says so.
"""

import os
import subprocess
import unittest
from collections.abc import Callable
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path
from typing import Any

from commander import ADB, Answer, Commander
from driver import network, places, wine
from driver.places import windows_path
from driver.waiting import wait_for
from driver.watch import SecondWatch, Watch

# The watch has taken the package, and says nothing about it, or no more than adb has taken of it by now.
SILENT = "install: stays silent"
STOPPED = "install: stops after "

NO_SERVER = "cannot connect to daemon at tcp:5037: cannot connect to 127.0.0.1:5037: Connection refused. (10061)"
PERFORMING = "Performing Streamed Install"
FAILED = "adb: failed to install C:\\solvane.apk: "
OFFLINE = "adb.exe: device offline"
# Where the watch listens, and where nobody does.
DEBUGGING = "192.168.1.100:43210"
PAIRING = "192.168.1.100:37099"
CLOSED = "192.168.1.100:43299"
NOBODY = "192.168.1.55:43210"
ALREADY_CONNECTED = f"already connected to {DEBUGGING}"


def wait_until_offline() -> None:
    """Until adb has noticed that the connection to the watch is broken."""

    def is_offline() -> bool:
        listed = subprocess.check_output(["wine", ADB, "devices"], timeout=30, stdin=subprocess.DEVNULL, text=True)
        return f"{DEBUGGING}\toffline" in listed.splitlines()

    wait_for("adb to call the watch offline", is_offline)


class CommandTest(unittest.TestCase):
    """Every test begins without a server of adb and with a key that no watch knows."""

    commander: Commander

    @classmethod
    def setUpClass(cls) -> None:
        cls.commander = cls.enterClassContext(Commander())

    def setUp(self) -> None:
        self.assertIn(self.commander.kill_server().outcome, ("ADB_SUCCESS", "KILL_SEVER_NOT_STARTED"))

    def watch(self, *switches: str, **numbers: Any) -> Watch:
        """What happened to it is printed at the end, for whoever reads why the test failed."""
        watch = self.enterContext(Watch(*switches, **numbers))
        self.addCleanup(lambda: print("", *watch.events, sep="\n", flush=True))
        return watch

    def connected_watch(self, *switches: str) -> Watch:
        watch = self.watch("--trust-all", *switches)
        self.expect(self.commander.connect(DEBUGGING), "ADB_SUCCESS", f"connected to {DEBUGGING}")
        return watch

    def expect(self, answer: Answer, outcome: str, *lines: str) -> None:
        """That outcome without a box, after two seconds, from these lines of adb."""
        self.expect_outcome(answer, outcome)
        self.assertEqual(answer.lines, list(lines))

    def expect_outcome(self, answer: Answer, outcome: str) -> None:
        self.assertEqual((answer.outcome, answer.boxes, answer.sleeps), (outcome, (), (2000,)), answer)


class TheServer(CommandTest):
    def test_that_runs_is_stopped_and_then_not_there(self) -> None:
        self.commander.connect(CLOSED)
        answer = self.commander.kill_server()
        self.expect(answer, "ADB_SUCCESS")
        self.assertEqual(answer.output, "")
        self.expect(self.commander.kill_server(), "KILL_SEVER_NOT_STARTED", NO_SERVER)

    def test_is_started_by_the_first_command_and_its_lines_passed_over(self) -> None:
        self.watch("--trust-all")
        answer = self.commander.connect(DEBUGGING)
        self.assertEqual(
            answer.output,
            "* daemon not running; starting now at tcp:5037\r\n* daemon started successfully\r\n"
            "connected to 192.168.1.100:43210\r\n",
        )
        self.expect(answer, "ADB_SUCCESS", "connected to 192.168.1.100:43210")
        again = self.commander.connect(DEBUGGING)
        self.assertEqual(again.output, "already connected to 192.168.1.100:43210\r\n")


class Pairing(CommandTest):
    def test_with_the_right_code_and_again(self) -> None:
        watch = self.watch("--name", "adb-R5CT-abcdef")
        for _ in range(2):
            answer = self.commander.pair(PAIRING, watch.code)
            self.expect(answer, "ADB_SUCCESS", f"Successfully paired to {PAIRING} [guid=adb-R5CT-abcdef]")
        watch.wait_for_event("pairing: paired ")

    def test_with_a_code_of_noughts(self) -> None:
        self.watch(code="000000")
        self.assertEqual(self.commander.pair(PAIRING, "000000").outcome, "ADB_SUCCESS")

    def test_with_a_wrong_code_or_at_a_wrong_place(self) -> None:
        watch = self.watch()
        wrong = ("ADB_PARSE_ERROR", "Failed: Wrong password or connection was dropped.")
        nobody = ("PAIR_FAILED", "Failed: Unable to start pairing client.")
        self.expect(self.commander.pair(PAIRING, "000001"), *wrong)
        watch.wait_for_event("pairing: wrong code")
        for address, expected in ((DEBUGGING, wrong), (CLOSED, nobody), (NOBODY, nobody)):
            with self.subTest(address):
                self.expect(self.commander.pair(address, watch.code), *expected)

    def test_without_a_network(self) -> None:
        self.addCleanup(network.plug_in_computer)
        network.unplug_computer()
        answer = self.commander.pair(PAIRING, "482915")
        self.expect(answer, "PAIR_FAILED", "Failed: Unable to start pairing client.")


class Connecting(CommandTest):
    def test_after_pairing_and_again(self) -> None:
        watch = self.watch()
        self.assertEqual(self.commander.pair(PAIRING, watch.code).outcome, "ADB_SUCCESS")
        self.expect(self.commander.connect(DEBUGGING), "ADB_SUCCESS", "connected to 192.168.1.100:43210")
        self.expect(self.commander.connect(DEBUGGING), "CONNECT_ALREADY_CONNECTED", ALREADY_CONNECTED)

    def test_with_a_watch_that_never_paired(self) -> None:
        watch = self.watch()
        for _ in range(2):
            answer = self.commander.connect(DEBUGGING)
            self.expect(answer, "ADB_PARSE_ERROR", "failed to connect to 192.168.1.100:43210")
        watch.wait_for_event("debugging: key not trusted")

    def test_at_a_closed_port(self) -> None:
        reason = "cannot connect to 192.168.1.100:43299: Connection refused. (10061)"
        self.expect(self.commander.connect(CLOSED), "CONNECT_CANNOT_CONNECT", reason)

    def test_with_nobody(self) -> None:
        self.expect_unreachable(NOBODY, "10065")

    def test_without_a_network(self) -> None:
        self.addCleanup(network.plug_in_computer)
        network.unplug_computer()
        self.expect_unreachable(DEBUGGING, "10051")

    def expect_unreachable(self, address: str, code: str) -> None:
        # In between are the system's words, which are another's on another Windows.
        answer = self.commander.connect(address)
        self.expect_outcome(answer, "CONNECT_CANNOT_CONNECT")
        self.assertRegex(" ".join(answer.lines), f"^cannot connect to {address}: .*{code}")

    def test_with_a_watch_that_asks_for_consent(self) -> None:
        self.watch("--unauthorized")
        answer = self.commander.connect(DEBUGGING)
        self.expect(answer, "CONNECT_FAILED_TO_AUTHENTICATE", "failed to authenticate to 192.168.1.100:43210")
        self.expect_kept(
            DEBUGGING,
            "ADB_PARSE_ERROR",
            "adb.exe: device unauthorized.",
            "This adb server's $ADB_VENDOR_KEYS is not set",
            "Try 'adb kill-server' if that seems wrong.",
            "Otherwise check for a confirmation dialog on your device.",
        )

    def test_with_a_watch_that_takes_the_connection_and_says_nothing(self) -> None:
        self.watch("--mute")
        self.expect(self.commander.connect(DEBUGGING), "ADB_PARSE_ERROR", f"failed to connect to {DEBUGGING}")
        self.expect_kept(DEBUGGING, "INSTALL_DEVICE_OFFLINE", OFFLINE)

    def test_at_the_port_of_pairing(self) -> None:
        self.watch()
        self.expect(self.commander.connect(PAIRING), "ADB_PARSE_ERROR", f"failed to connect to {PAIRING}")
        self.expect_kept(PAIRING, "INSTALL_DEVICE_OFFLINE", OFFLINE)

    def expect_kept(self, address: str, outcome: str, *lines: str) -> None:
        """adb keeps the connection, and the next attempt finds it; an install comes to that outcome."""
        self.expect(self.commander.connect(address), "CONNECT_ALREADY_CONNECTED", f"already connected to {address}")
        self.expect(self.commander.install(address, "C:\\any.apk"), outcome, *lines)


def write_package(name: str, size: int = 300_001) -> Path:
    """A package on drive C; the name may lead through folders."""
    file = places.prefix() / "drive_c" / name
    file.parent.mkdir(parents=True, exist_ok=True)
    file.write_bytes(os.urandom(size))
    return file


class InstallingTest(CommandTest):
    def install(self, package: Path) -> Answer:
        return self.commander.install(DEBUGGING, windows_path(package))

    def install_and(self, watch: Watch, event: str, interrupt: Callable[[], None]) -> Answer:
        """Installs on a watch that does not come to an end, until something interrupts it after that event."""
        with ThreadPoolExecutor(1) as another:
            answer = another.submit(self.install, write_package("solvane.apk"))
            watch.wait_for_event(event, 30)
            interrupt()
            return answer.result()

    def expect_installed(self, watch: Watch, package: Path) -> None:
        answer = self.commander.install(f"{watch.address}:{watch.port}", windows_path(package))
        self.expect(answer, "ADB_SUCCESS", PERFORMING, "Success")
        self.assertTrue(watch.has_received(package), package.name)


class Installing(InstallingTest):
    def test_brings_the_package_byte_for_byte(self) -> None:
        watch = self.connected_watch()
        # One byte, the length of a block of adb's transport, one more, and several megabytes.
        for size in (1, 65536, 65537, 4_000_037):
            with self.subTest(size):
                self.expect_installed(watch, write_package("solvane.apk", size))

    def test_takes_a_path_with_blanks_and_letters_of_any_language(self) -> None:
        watch = self.connected_watch()
        names = (
            "My Downloads/Solvane 2.1 (new) & more.apk",
            "Téléchargements/Uhr für Łukasz.apk",
            "Two  blanks.APK",
        )
        for name in names:
            self.expect_installed(watch, write_package(name))

    def test_names_the_watch_among_several(self) -> None:
        # The serial is always given, so adb never finds more than one device, nor none at all:
        # 343 and 345 have rows, but these commands cannot come to them.
        watch = self.connected_watch()
        with SecondWatch("--trust-all") as second:
            self.expect(self.commander.connect("192.168.1.1:43210"), "ADB_SUCCESS", "connected to 192.168.1.1:43210")
            self.expect_installed(second, write_package("solvane.apk"))
            self.assertFalse(watch.store.exists())

    def test_without_any_device(self) -> None:
        answer = self.commander.install(DEBUGGING, "C:\\any.apk")
        self.expect(answer, "ADB_PARSE_ERROR", "adb.exe: device '192.168.1.100:43210' not found")

    def test_of_what_is_no_package(self) -> None:
        watch = self.connected_watch()
        write_package("solvane.zip")
        (places.prefix() / "drive_c" / "folder.apk").mkdir(exist_ok=True)
        for path, outcome, line in (
            ("C:\\no such file.apk", "INSTALL_FAILED_STAT", "adb: failed to stat {}: No such file or directory"),
            ("C:\\solvane.zip", "ADB_PARSE_ERROR", "adb.exe: filename doesn't end .apk or .apex: {}"),
            ("C:\\folder.apk", "ADB_PARSE_ERROR", "adb: failed to open {}: No such file or directory"),
        ):
            with self.subTest(path):
                self.expect(self.commander.install(DEBUGGING, path), outcome, PERFORMING, line.format(path))
        self.assertFalse(watch.store.exists())

    def test_on_a_watch_that_is_offline(self) -> None:
        self.connected_watch("--offline")
        wait_until_offline()
        self.expect(self.commander.connect(DEBUGGING), "CONNECT_ALREADY_CONNECTED", ALREADY_CONNECTED)
        self.expect(self.install(write_package("solvane.apk")), "INSTALL_DEVICE_OFFLINE", OFFLINE)

    def test_on_a_watch_that_was_switched_off(self) -> None:
        self.connected_watch().switch_off()
        wait_until_offline()
        self.expect(self.install(write_package("solvane.apk")), "INSTALL_DEVICE_OFFLINE", OFFLINE)

    def test_whose_watch_is_switched_off_meanwhile(self) -> None:
        watch = self.connected_watch("--silent-install")
        self.expect_broken_off(self.install_and(watch, SILENT, watch.switch_off))
        answer = self.commander.install(DEBUGGING, "C:\\solvane.apk")
        self.expect(answer, "INSTALL_DEVICE_OFFLINE", OFFLINE)

    def test_whose_server_is_stopped_meanwhile(self) -> None:
        watch = self.connected_watch("--silent-install")
        # By another program that uses adb.
        self.expect_broken_off(self.install_and(watch, SILENT, lambda: wine.run(ADB, "kill-server")))
        answer = self.commander.install(DEBUGGING, "C:\\solvane.apk")
        self.expect(answer, "ADB_PARSE_ERROR", "adb.exe: device '192.168.1.100:43210' not found")

    def expect_broken_off(self, answer: Answer) -> None:
        # The reason is missing, and so is the end of the line.
        self.expect(answer, "INSTALL_FAILED", PERFORMING, FAILED)
        self.assertFalse(answer.output.endswith("\n"))

    def test_that_breaks_off_half_way(self) -> None:
        watch = self.connected_watch("--drop-on-install")
        self.expect_broken_off(self.install(write_package("solvane.apk", 4_000_037)))
        self.assertFalse(watch.store.exists())


# Those that the install page tells the user about in words of their own, and others from the first row to the last.
NAMES = (
    "INSTALL_FAILED_ALREADY_EXISTS",
    "INSTALL_FAILED_INVALID_APK",
    "INSTALL_FAILED_INSUFFICIENT_STORAGE",
    "INSTALL_FAILED_UPDATE_INCOMPATIBLE",
    "INSTALL_FAILED_VERSION_DOWNGRADE",
    "INSTALL_PARSE_FAILED_INCONSISTENT_CERTIFICATES",
    "INSTALL_FAILED_NO_MATCHING_ABIS",
    "INSTALL_FAILED_ABORTED",
)
UNKNOWN = ("GetFailedToInstallExitCode()", "Unknown ADB_EXIT_CODE, please report to KALVO")


class Refusing(InstallingTest):
    """The watch takes the package and the package installer refuses it, in words of its own."""

    def install_for(self, *replies: str) -> list[Answer]:
        """One package after the other to a watch that gives these answers."""
        self.connected_watch(*(word for reply in replies for word in ("--reply", reply)))
        package = write_package("solvane.apk", 10_000)
        answers = [self.install(package) for _ in replies]
        for answer, reply in zip(answers, replies, strict=True):
            self.assertEqual(answer.lines, [PERFORMING, FAILED + reply])
        return answers

    def test_with_a_name_that_is_known(self) -> None:
        answers = self.install_for(*(f"Failure [{name}: Scanning Failed.: reason [1]]" for name in NAMES))
        for name, answer in zip(NAMES, answers, strict=True):
            self.expect_outcome(answer, name)

    def test_with_a_name_that_is_unknown(self) -> None:
        # The last one is a name of the product's own, which no package installer prints.
        names = ("INSTALL_FAILED_DEPRECATED_SDK_VERSION", "A", "INSTALL_FAILED_STAT")
        for answer in self.install_for(*(f"Failure [{name}: the watch says so]" for name in names)):
            self.assertEqual((answer.outcome, answer.boxes), ("INSTALL_FAILED_KALVO_UNKNOWN_ERROR", (UNKNOWN,)))

    def test_without_a_readable_name(self) -> None:
        replies = (
            "Failure [INSTALL_FAILED_ABORTED]",
            "Failure [install_failed_aborted: the watch says so]",
            "Failure [INSTALL-FAILED: the watch says so]",
            "Failure [: the watch says so]",
            "Failure",
            "Error: java.lang.SecurityException",
        )
        for answer in self.install_for(*replies):
            self.expect_outcome(answer, "INSTALL_FAILED")

    def test_with_a_reason_that_is_too_long_for_adb(self) -> None:
        # adb hands 511 bytes of it on; the name is in time.
        reason = "Failure [INSTALL_FAILED_OLDER_SDK: " + 900 * "."
        self.connected_watch("--reply", reason)
        answer = self.install(write_package("solvane.apk", 10_000))
        self.expect(answer, "INSTALL_FAILED_OLDER_SDK", PERFORMING, FAILED + reason[:511])

    def test_once_and_then_no_more(self) -> None:
        watch = self.connected_watch("--reply", "Failure [INSTALL_FAILED_ALREADY_EXISTS: x]", "--reply", "Success")
        package = write_package("solvane.apk")
        self.assertEqual(self.install(package).outcome, "INSTALL_FAILED_ALREADY_EXISTS")
        self.expect_installed(watch, package)


class Attacking(InstallingTest):
    """The watch wants to harm: it says too much or breaks off. Each run ends, and with an outcome."""

    # What adb takes of an answer to a streamed install.
    TAKEN = 511
    LARGE = 10_000_000

    def expect_cut(self, outcome: str, before: str, reply: str, *switches: str) -> None:
        """That outcome from as much of the watch's reply as adb takes."""
        self.connected_watch(*switches)
        answer = self.install(write_package("solvane.apk"))
        self.expect(answer, outcome, PERFORMING, before + reply.ljust(self.TAKEN, "."))

    def test_with_an_endless_success(self) -> None:
        self.expect_cut("ADB_SUCCESS", "", "Success", "--endless-reply")

    def test_with_a_failure_of_ten_megabytes(self) -> None:
        reply = "Failure [INSTALL_FAILED_ABORTED: "
        self.expect_cut("INSTALL_FAILED_ABORTED", FAILED, reply, "--reply", reply, "--reply-size", str(self.LARGE))

    def test_with_nothing_that_could_be_a_failure_in_ten_megabytes(self) -> None:
        self.expect_cut("INSTALL_FAILED", FAILED, "x", "--reply", "x", "--reply-size", str(self.LARGE))

    def test_with_a_failure_that_stops_in_its_name(self) -> None:
        self.expect_stopped(20, "INSTALL_FAILED")

    def test_with_a_failure_that_stops_after_its_name(self) -> None:
        self.expect_stopped(34, "INSTALL_FAILED_ABORTED")

    def expect_stopped(self, taken: int, outcome: str) -> None:
        """That outcome when the watch goes after so many bytes of its answer."""
        reply = "Failure [INSTALL_FAILED_ABORTED: the watch says so]"
        watch = self.connected_watch("--reply", reply, "--stop-after", str(taken))
        answer = self.install_and(watch, STOPPED, watch.switch_off)
        self.expect(answer, outcome, PERFORMING, FAILED + reply[:taken])

    def test_with_a_shell_that_says_ten_megabytes(self) -> None:
        # Of a shell adb hands everything on: its answer to the install, and that to the removal of the copy.
        # One that never ends, or a watch that is gone meanwhile, keeps adb waiting without end.
        self.connected_watch("--flood", str(self.LARGE))
        answer = self.install(write_package("solvane.apk"))
        # The words of adb about a watch that takes no streamed install, which are unknown.
        self.expect_outcome(answer, "ADB_PARSE_ERROR")
        self.assertEqual(answer.lines[0], "Performing Push Install")
        self.assertRegex(answer.lines[1], r"^C:\\solvane\.apk: 1 file pushed, 0 skipped\.")
        self.assertTrue(answer.lines[2].startswith("Success...."))
        said = 2 * (self.LARGE - len("Success\n"))
        self.assertEqual(answer.output.count("."), said + sum(line.count(".") for line in answer.lines[:2]))


if __name__ == "__main__":
    unittest.main()
