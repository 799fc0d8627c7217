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

from commander import ADB, Answer, Commander
from driver import network, places
from driver.places import windows_path
from driver.waiting import wait_for
from driver.watch import SecondWatch, Watch

# The watch has taken the package, and says nothing about it, or no more than adb has taken of it by now.
SILENT = "install: stays silent"
STOPPED = "install: stops after "

NO_SERVER = (
    "cannot connect to daemon at tcp:5037: cannot connect to 127.0.0.1:5037: Connection refused. (10061)"
)
PERFORMING = "Performing Streamed Install"
NOBODY = "192.168.1.55"
CLOSED_PORT = 43299
QUIET = subprocess.DEVNULL


def debugging(watch: Watch) -> str:
    return f"{watch.address}:{watch.port}"


def pairing(watch: Watch) -> str:
    return f"{watch.address}:{watch.pairing_port}"


def stop_server() -> None:
    """Stops adb's server from outside, as another program that uses adb may."""
    subprocess.run(["wine", ADB, "kill-server"], check=True, timeout=30, stdin=QUIET, stdout=QUIET, stderr=QUIET)


def wait_until_offline(watch: Watch) -> None:
    """Until adb has noticed that the connection to the watch is broken."""

    def is_offline() -> bool:
        listed = subprocess.run(["wine", ADB, "devices"], check=True, timeout=30, stdin=QUIET, stdout=subprocess.PIPE)
        return f"{debugging(watch)}\toffline" in listed.stdout.decode().splitlines()

    wait_for("adb to call the watch offline", is_offline)


class CommandTest(unittest.TestCase):
    """Every test begins without a server of adb and with a key that no watch knows."""

    commander: Commander

    @classmethod
    def setUpClass(cls) -> None:
        cls.commander = cls.enterClassContext(Commander())

    def setUp(self) -> None:
        self.assertIn(self.commander.kill_server().name, ("ADB_SUCCESS", "KILL_SEVER_NOT_STARTED"))

    def watch(self, *switches: str) -> Watch:
        return self.enterContext(Watch(*switches))

    def connected_watch(self, *switches: str) -> Watch:
        watch = self.watch("--trust-all", *switches)
        self.expect(self.commander.connect(debugging(watch)), 0, "ADB_SUCCESS", f"connected to {debugging(watch)}")
        return watch

    def expect(self, answer: Answer, outcome: int, name: str, *lines: str) -> None:
        """That outcome without a box, after two seconds, from these lines of adb."""
        self.expect_outcome(answer, outcome, name)
        self.assertEqual(answer.lines, list(lines))

    def expect_outcome(self, answer: Answer, outcome: int, name: str) -> None:
        self.assertEqual((answer.outcome, answer.name), (outcome, name), answer)
        self.assertEqual(answer.boxes, ())
        self.assertEqual(answer.sleeps, (2000,))


class TheServer(CommandTest):
    def test_that_does_not_run(self) -> None:
        self.expect(self.commander.kill_server(), 400, "KILL_SEVER_NOT_STARTED", NO_SERVER)

    def test_that_runs_is_stopped_and_then_not_there(self) -> None:
        self.commander.connect(f"127.0.0.1:{CLOSED_PORT}")
        answer = self.commander.kill_server()
        self.expect(answer, 0, "ADB_SUCCESS")
        self.assertEqual(answer.output, "")
        self.expect(self.commander.kill_server(), 400, "KILL_SEVER_NOT_STARTED", NO_SERVER)

    def test_is_started_by_the_first_command_and_its_lines_passed_over(self) -> None:
        watch = self.watch("--trust-all")
        answer = self.commander.connect(debugging(watch))
        self.assertEqual(
            answer.output,
            "* daemon not running; starting now at tcp:5037\r\n* daemon started successfully\r\n"
            "connected to 192.168.1.100:43210\r\n",
        )
        self.expect(answer, 0, "ADB_SUCCESS", "connected to 192.168.1.100:43210")
        again = self.commander.connect(debugging(watch))
        self.assertEqual(again.output, "already connected to 192.168.1.100:43210\r\n")


class Pairing(CommandTest):
    def test_with_the_right_code(self) -> None:
        watch = self.watch("--name", "adb-R5CT-abcdef")
        answer = self.commander.pair(pairing(watch), watch.code)
        self.expect(answer, 0, "ADB_SUCCESS", "Successfully paired to 192.168.1.100:37099 [guid=adb-R5CT-abcdef]")
        watch.wait_for_event("pairing: paired ")

    def test_again_is_no_fault(self) -> None:
        watch = self.watch()
        for _ in range(2):
            self.assertEqual(self.commander.pair(pairing(watch), watch.code).outcome, 0)

    def test_with_a_code_of_noughts(self) -> None:
        watch = self.enterContext(Watch(code="000000"))
        self.assertEqual(self.commander.pair(pairing(watch), "000000").outcome, 0)

    def test_with_a_wrong_code(self) -> None:
        watch = self.watch()
        answer = self.commander.pair(pairing(watch), "000001")
        self.expect(answer, 6, "ADB_PARSE_ERROR", "Failed: Wrong password or connection was dropped.")
        watch.wait_for_event("pairing: wrong code")

    def test_at_the_port_of_debugging(self) -> None:
        watch = self.watch()
        answer = self.commander.pair(debugging(watch), watch.code)
        self.expect(answer, 6, "ADB_PARSE_ERROR", "Failed: Wrong password or connection was dropped.")

    def test_at_a_closed_port(self) -> None:
        watch = self.watch()
        answer = self.commander.pair(f"{watch.address}:{CLOSED_PORT}", watch.code)
        self.expect(answer, 501, "PAIR_FAILED", "Failed: Unable to start pairing client.")

    def test_with_nobody(self) -> None:
        answer = self.commander.pair(f"{NOBODY}:37099", "482915")
        self.expect(answer, 501, "PAIR_FAILED", "Failed: Unable to start pairing client.")

    def test_without_a_network(self) -> None:
        self.addCleanup(network.plug_in_computer)
        network.unplug_computer()
        answer = self.commander.pair("192.168.1.100:37099", "482915")
        self.expect(answer, 501, "PAIR_FAILED", "Failed: Unable to start pairing client.")


class Connecting(CommandTest):
    def test_after_pairing_and_again(self) -> None:
        watch = self.watch()
        self.assertEqual(self.commander.pair(pairing(watch), watch.code).outcome, 0)
        self.expect(self.commander.connect(debugging(watch)), 0, "ADB_SUCCESS", "connected to 192.168.1.100:43210")
        again = self.commander.connect(debugging(watch))
        self.expect(again, 100, "CONNECT_ALREADY_CONNECTED", "already connected to 192.168.1.100:43210")

    def test_with_a_watch_that_never_paired(self) -> None:
        watch = self.watch()
        for _ in range(2):
            answer = self.commander.connect(debugging(watch))
            self.expect(answer, 6, "ADB_PARSE_ERROR", "failed to connect to 192.168.1.100:43210")
        watch.wait_for_event("debugging: key not trusted")

    def test_at_a_closed_port(self) -> None:
        answer = self.commander.connect(f"{Watch.address}:{CLOSED_PORT}")
        reason = "cannot connect to 192.168.1.100:43299: Connection refused. (10061)"
        self.expect(answer, 101, "CONNECT_CANNOT_CONNECT", reason)

    def test_at_the_port_of_pairing(self) -> None:
        watch = self.watch()
        answer = self.commander.connect(pairing(watch))
        self.expect(answer, 6, "ADB_PARSE_ERROR", "failed to connect to 192.168.1.100:37099")
        again = self.commander.connect(pairing(watch))
        self.expect(again, 100, "CONNECT_ALREADY_CONNECTED", "already connected to 192.168.1.100:37099")
        installed = self.commander.install(pairing(watch), "C:\\any.apk")
        self.expect(installed, 344, "INSTALL_DEVICE_OFFLINE", "adb.exe: device offline")

    def test_with_nobody(self) -> None:
        self.expect_unreachable(
            self.commander.connect(f"{NOBODY}:43210"), f"cannot connect to {NOBODY}:43210: ", "10065"
        )

    def test_without_a_network(self) -> None:
        self.addCleanup(network.plug_in_computer)
        network.unplug_computer()
        self.expect_unreachable(
            self.commander.connect("192.168.1.100:43210"), "cannot connect to 192.168.1.100:43210: ", "10051"
        )

    def expect_unreachable(self, answer: Answer, start: str, code: str) -> None:
        # In between are the system's words, which are another's on another Windows.
        self.expect_outcome(answer, 101, "CONNECT_CANNOT_CONNECT")
        self.assertRegex(" ".join(answer.lines), f"^{start}.*{code}")

    def test_with_a_watch_that_asks_for_consent(self) -> None:
        watch = self.watch("--unauthorized")
        answer = self.commander.connect(debugging(watch))
        self.expect(answer, 102, "CONNECT_FAILED_TO_AUTHENTICATE", "failed to authenticate to 192.168.1.100:43210")
        # adb keeps the connection, and the next attempt finds it.
        again = self.commander.connect(debugging(watch))
        self.expect(again, 100, "CONNECT_ALREADY_CONNECTED", "already connected to 192.168.1.100:43210")
        self.expect(
            self.commander.install(debugging(watch), "C:\\any.apk"),
            6,
            "ADB_PARSE_ERROR",
            "adb.exe: device unauthorized.",
            "This adb server's $ADB_VENDOR_KEYS is not set",
            "Try 'adb kill-server' if that seems wrong.",
            "Otherwise check for a confirmation dialog on your device.",
        )

    def test_with_a_watch_that_takes_the_connection_and_says_nothing(self) -> None:
        watch = self.watch("--mute")
        answer = self.commander.connect(debugging(watch))
        self.expect(answer, 6, "ADB_PARSE_ERROR", "failed to connect to 192.168.1.100:43210")
        again = self.commander.connect(debugging(watch))
        self.expect(again, 100, "CONNECT_ALREADY_CONNECTED", "already connected to 192.168.1.100:43210")
        installed = self.commander.install(debugging(watch), "C:\\any.apk")
        self.expect(installed, 344, "INSTALL_DEVICE_OFFLINE", "adb.exe: device offline")


def write_package(name: str, size: int = 300_001) -> Path:
    """A package on drive C; the name may lead through folders."""
    file = places.prefix() / "drive_c" / name
    file.parent.mkdir(parents=True, exist_ok=True)
    file.write_bytes(os.urandom(size))
    return file


class InstallingTest(CommandTest):
    def install(self, watch: Watch, package: Path) -> Answer:
        return self.commander.install(debugging(watch), windows_path(package))

    def install_and(self, watch: Watch, event: str, interrupt: Callable[[], None]) -> Answer:
        """Installs on a watch that does not come to an end, until something interrupts it after that event."""
        with ThreadPoolExecutor(1) as another:
            answer = another.submit(self.install, watch, write_package("solvane.apk"))
            watch.wait_for_event(event, 30)
            interrupt()
            return answer.result()


class Installing(InstallingTest):
    def test_brings_the_package_byte_for_byte(self) -> None:
        watch = self.connected_watch()
        # One byte, the length of a block of adb's transport, one more, and several megabytes.
        for size in (1, 65536, 65537, 4_000_037):
            package = write_package("solvane.apk", size)
            self.expect(self.install(watch, package), 0, "ADB_SUCCESS", PERFORMING, "Success")
            self.assertTrue(watch.has_received(package), f"{size} bytes")

    def test_takes_a_path_with_blanks_and_letters_of_any_language(self) -> None:
        watch = self.connected_watch()
        names = (
            "My Downloads/Solvane 2.1 (new) & more.apk",
            "Téléchargements/Uhr für Łukasz.apk",
            "Two  blanks.APK",
        )
        for name in names:
            package = write_package(name)
            self.expect(self.install(watch, package), 0, "ADB_SUCCESS", PERFORMING, "Success")
            self.assertTrue(watch.has_received(package), name)

    def test_names_the_watch_among_several(self) -> None:
        # The serial is always given, so adb never finds more than one device, nor none at all:
        # 343 and 345 have rows, but these commands cannot come to them.
        watch = self.connected_watch()
        with SecondWatch("--trust-all") as second:
            self.expect(self.commander.connect(debugging(second)), 0, "ADB_SUCCESS", "connected to 192.168.1.1:43210")
            package = write_package("solvane.apk")
            self.expect(self.install(second, package), 0, "ADB_SUCCESS", PERFORMING, "Success")
            self.assertTrue(second.has_received(package))
            self.assertFalse(watch.store.exists())

    def test_without_any_device(self) -> None:
        answer = self.commander.install("192.168.1.100:43210", "C:\\any.apk")
        self.expect(answer, 6, "ADB_PARSE_ERROR", "adb.exe: device '192.168.1.100:43210' not found")

    def test_of_a_file_that_is_not_there(self) -> None:
        watch = self.connected_watch()
        answer = self.commander.install(debugging(watch), "C:\\no such file.apk")
        missing = "adb: failed to stat C:\\no such file.apk: No such file or directory"
        self.expect(answer, 342, "INSTALL_FAILED_STAT", PERFORMING, missing)

    def test_of_a_file_with_another_extension(self) -> None:
        watch = self.connected_watch()
        answer = self.install(watch, write_package("solvane.zip"))
        wrong = "adb.exe: filename doesn't end .apk or .apex: C:\\solvane.zip"
        self.expect(answer, 6, "ADB_PARSE_ERROR", PERFORMING, wrong)
        self.assertFalse(watch.store.exists())

    def test_of_a_folder(self) -> None:
        watch = self.connected_watch()
        (places.prefix() / "drive_c" / "folder.apk").mkdir(exist_ok=True)
        answer = self.commander.install(debugging(watch), "C:\\folder.apk")
        unopened = "adb: failed to open C:\\folder.apk: No such file or directory"
        self.expect(answer, 6, "ADB_PARSE_ERROR", PERFORMING, unopened)

    def test_on_a_watch_that_is_offline(self) -> None:
        watch = self.connected_watch("--offline")
        wait_until_offline(watch)
        again = self.commander.connect(debugging(watch))
        self.expect(again, 100, "CONNECT_ALREADY_CONNECTED", "already connected to 192.168.1.100:43210")
        package = write_package("solvane.apk")
        self.expect(self.install(watch, package), 344, "INSTALL_DEVICE_OFFLINE", "adb.exe: device offline")

    def test_on_a_watch_that_was_switched_off(self) -> None:
        watch = self.connected_watch()
        watch.switch_off()
        wait_until_offline(watch)
        package = write_package("solvane.apk")
        self.expect(self.install(watch, package), 344, "INSTALL_DEVICE_OFFLINE", "adb.exe: device offline")

    def test_whose_watch_is_switched_off_meanwhile(self) -> None:
        watch = self.connected_watch("--silent-install")
        self.expect_broken_off(self.install_and(watch, SILENT, watch.switch_off))
        answer = self.commander.install(debugging(watch), "C:\\solvane.apk")
        self.expect(answer, 344, "INSTALL_DEVICE_OFFLINE", "adb.exe: device offline")

    def test_whose_server_is_stopped_meanwhile(self) -> None:
        watch = self.connected_watch("--silent-install")
        self.expect_broken_off(self.install_and(watch, SILENT, stop_server))
        answer = self.commander.install(debugging(watch), "C:\\solvane.apk")
        self.expect(answer, 6, "ADB_PARSE_ERROR", "adb.exe: device '192.168.1.100:43210' not found")

    def expect_broken_off(self, answer: Answer) -> None:
        # The reason is missing, and so is the end of the line.
        self.expect(answer, 300, "INSTALL_FAILED", PERFORMING, "adb: failed to install C:\\solvane.apk: ")
        self.assertFalse(answer.output.endswith("\n"))

    def test_that_breaks_off_half_way(self) -> None:
        watch = self.connected_watch("--drop-on-install")
        self.expect_broken_off(self.install(watch, write_package("solvane.apk", 4_000_037)))
        self.assertFalse(watch.store.exists())


# Those that the install page tells the user about in words of their own, and others from the first row to the last.
NAMES = {
    302: "INSTALL_FAILED_ALREADY_EXISTS",
    303: "INSTALL_FAILED_INVALID_APK",
    305: "INSTALL_FAILED_INSUFFICIENT_STORAGE",
    308: "INSTALL_FAILED_UPDATE_INCOMPATIBLE",
    326: "INSTALL_FAILED_VERSION_DOWNGRADE",
    331: "INSTALL_PARSE_FAILED_INCONSISTENT_CERTIFICATES",
    340: "INSTALL_FAILED_NO_MATCHING_ABIS",
    341: "INSTALL_FAILED_ABORTED",
}
UNKNOWN = ("GetFailedToInstallExitCode()", "Unknown ADB_EXIT_CODE, please report to KALVO")


class Refusing(CommandTest):
    """The watch takes the package and the package installer refuses it, in words of its own."""

    def install_for(self, *replies: str) -> list[Answer]:
        """One package after the other to a watch that gives these answers."""
        watch = self.connected_watch(*(word for reply in replies for word in ("--reply", reply)))
        path = windows_path(write_package("solvane.apk", 10_000))
        answers = [self.commander.install(debugging(watch), path) for _ in replies]
        for answer, reply in zip(answers, replies, strict=True):
            self.assertEqual(answer.lines, [PERFORMING, f"adb: failed to install C:\\solvane.apk: {reply}"])
        return answers

    def test_with_a_name_that_is_known(self) -> None:
        replies = [f"Failure [{name}: Scanning Failed.: reason [1]]" for name in NAMES.values()]
        for (value, name), answer in zip(NAMES.items(), self.install_for(*replies), strict=True):
            self.assertEqual((answer.outcome, answer.name, answer.boxes), (value, name, ()))

    def test_with_a_name_that_is_unknown(self) -> None:
        # The last one is a name of the product's own, which no package installer prints.
        names = ("INSTALL_FAILED_DEPRECATED_SDK_VERSION", "A", "INSTALL_FAILED_STAT")
        for answer in self.install_for(*(f"Failure [{name}: the watch says so]" for name in names)):
            self.assertEqual((answer.outcome, answer.boxes), (301, (UNKNOWN,)))

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
            self.assertEqual((answer.outcome, answer.boxes), (300, ()))

    def test_with_a_reason_that_is_too_long_for_adb(self) -> None:
        # adb hands 511 bytes of it on; the name is in time.
        reason = "Failure [INSTALL_FAILED_OLDER_SDK: " + 900 * "."
        watch = self.connected_watch("--reply", reason)
        answer = self.commander.install(debugging(watch), windows_path(write_package("solvane.apk", 10_000)))
        cut = f"adb: failed to install C:\\solvane.apk: {reason[:511]}"
        self.expect(answer, 313, "INSTALL_FAILED_OLDER_SDK", PERFORMING, cut)

    def test_once_and_then_no_more(self) -> None:
        watch = self.connected_watch("--reply", "Failure [INSTALL_FAILED_ALREADY_EXISTS: x]", "--reply", "Success")
        package = write_package("solvane.apk")
        path = windows_path(package)
        self.assertEqual(self.commander.install(debugging(watch), path).outcome, 302)
        self.expect(self.commander.install(debugging(watch), path), 0, "ADB_SUCCESS", PERFORMING, "Success")
        self.assertTrue(watch.has_received(package))


class Attacking(InstallingTest):
    """The watch wants to harm: it says too much or breaks off. Each run ends, and with an outcome."""

    # What adb takes of an answer to a streamed install.
    TAKEN = 511
    LARGE = 10_000_000

    def expect_cut(self, answer: Answer, outcome: int, name: str, before: str, reply: str) -> None:
        """That outcome from as much of the reply as adb takes."""
        self.expect(answer, outcome, name, PERFORMING, before + reply.ljust(self.TAKEN, "."))

    def test_with_an_endless_success(self) -> None:
        watch = self.connected_watch("--endless-reply")
        self.expect_cut(self.install(watch, write_package("solvane.apk")), 0, "ADB_SUCCESS", "", "Success")

    def test_with_a_failure_of_ten_megabytes(self) -> None:
        reply = "Failure [INSTALL_FAILED_ABORTED: "
        watch = self.connected_watch("--reply", reply, "--reply-size", str(self.LARGE))
        answer = self.install(watch, write_package("solvane.apk"))
        before = "adb: failed to install C:\\solvane.apk: "
        self.expect_cut(answer, 341, "INSTALL_FAILED_ABORTED", before, reply)

    def test_with_nothing_that_could_be_a_failure_in_ten_megabytes(self) -> None:
        watch = self.connected_watch("--reply", "x", "--reply-size", str(self.LARGE))
        answer = self.install(watch, write_package("solvane.apk"))
        self.expect_cut(answer, 300, "INSTALL_FAILED", "adb: failed to install C:\\solvane.apk: ", "x")

    def test_with_a_failure_that_stops_in_its_name(self) -> None:
        self.expect_stopped(20, 300, "INSTALL_FAILED")

    def test_with_a_failure_that_stops_after_its_name(self) -> None:
        self.expect_stopped(34, 341, "INSTALL_FAILED_ABORTED")

    def test_with_a_shell_that_says_ten_megabytes(self) -> None:
        # Of a shell adb hands everything on: its answer to the install, and that to the removal of the copy.
        # One that never ends, or a watch that is gone meanwhile, keeps adb waiting without end.
        watch = self.connected_watch("--flood", str(self.LARGE))
        answer = self.install(watch, write_package("solvane.apk"))
        self.expect_pushed(answer)
        self.assertEqual(answer.output.count("."), 2 * (self.LARGE - len("Success\n")) + self.dots_before(answer))

    def expect_stopped(self, taken: int, outcome: int, name: str) -> None:
        """That outcome when the watch goes after so many bytes of its answer."""
        reply = "Failure [INSTALL_FAILED_ABORTED: the watch says so]"
        watch = self.connected_watch("--reply", reply, "--stop-after", str(taken))
        answer = self.install_and(watch, STOPPED, watch.switch_off)
        before = "adb: failed to install C:\\solvane.apk: "
        self.expect(answer, outcome, name, PERFORMING, before + reply[:taken])

    def expect_pushed(self, answer: Answer) -> None:
        """The words of adb about a watch that takes no streamed install, which are unknown."""
        self.assertEqual((answer.outcome, answer.name, answer.boxes), (6, "ADB_PARSE_ERROR", ()))
        self.assertEqual(answer.lines[0], "Performing Push Install")
        self.assertRegex(answer.lines[1], r"^C:\\solvane\.apk: 1 file pushed, 0 skipped\.")
        self.assertTrue(answer.lines[2].startswith("Success...."))

    def dots_before(self, answer: Answer) -> int:
        return sum(line.count(".") for line in answer.lines[:2])


if __name__ == "__main__":
    unittest.main()
