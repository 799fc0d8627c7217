"""Killed at any point, the installer comes up at the next start, replaces what was left, and leaves nothing."""

import socket
import unittest
from collections.abc import Callable, Iterator
from contextlib import ExitStack, contextmanager
from pathlib import Path

from processtest import ADB, CREATE_PROCESS, FOLDER, MEMBERS, TOOLS, ZIP, ProcessTest, exit_process, last_error
from program import left_behind
from start import Start, running, start_adb_server
from steps import step
from waiting import wait_for


class Killed(ProcessTest):
    def size(self, name: str) -> int:
        return (self.folder / name).stat().st_size

    def kill_in(self, start: Start, function: str) -> None:
        """Kills it where it hangs in a call of that function."""
        start.wait_for_fault(function)
        start.kill()

    def kill_at(self, offset: int, file: str) -> None:
        """Kills it in the midst of a write, when just so many bytes of that file are written."""
        start = self.start(largest_file=offset)
        start.wait()
        self.assertEqual(self.size(file), offset)


class Installing(Killed):
    def test_in_the_archive(self) -> None:
        whole = self.size_of_archive()
        for offset in (4096, 1 << 20, whole - 1):
            with step(self, offset):
                self.kill_at(offset, ZIP)
                self.assertEqual(sorted(left_behind()), sorted((FOLDER, ZIP)))
                self.expect_good_run()

    def size_of_archive(self) -> int:
        self.start_wizard().kill()
        whole = self.size(ZIP)
        self.clean_account()
        return whole

    def test_between_members(self) -> None:
        """The first is there, the others are not."""
        self.kill_in(self.start(f"_wfopen_s#{Path(MEMBERS[1]).name}=hang"), "_wfopen_s")
        self.assertEqual(sorted(left_behind()), sorted((FOLDER, ZIP, ADB)))
        self.expect_good_run()

    def test_in_adb_itself(self) -> None:
        """Half an adb.exe cannot be started to stop its server, and each later start ends with saying so."""
        for offset in (3 << 20, 5 << 20):
            with step(self, offset):
                self.clean_account()
                self.kill_at(offset, ADB)
                box = last_error(CREATE_PROCESS, 193)
                for _ in range(2):
                    self.expect_way_out("", 193, box, exit_process(193), disk=(FOLDER, ZIP, ADB))
                (self.folder / ADB).unlink()
                self.expect_good_run()


class Running(Killed):
    def test_with_the_wizard_open(self) -> None:
        self.start_wizard().kill()
        self.expect_good_run()

    def test_with_the_wizard_open_and_a_server_of_adb_that_stays(self) -> None:
        start = self.start_wizard()
        start_adb_server(self.folder / ADB)
        start.kill()
        self.assertIn("adb", running())
        self.expect_good_run()

    def test_again_and_again(self) -> None:
        for _ in range(3):
            self.start_wizard().kill()
        self.expect_good_run()

    def test_with_a_box_open(self) -> None:
        start = self.start("PropertySheetW=fail:0")
        self.wait_for_box(start)
        start.kill()
        self.expect_good_run()


class Removing(Killed):
    def leave_wizard(self, faults: str = "") -> Start:
        start = self.start_wizard(faults)
        self.press_escape()
        return start

    @contextmanager
    def silent_server(self) -> Iterator[Callable[[], None]]:
        """Something in the place of adb's server that lets adb wait. Gives a way to wait until adb does."""
        with socket.create_server(("127.0.0.1", 5037)) as server, ExitStack() as connections:
            server.settimeout(20)

            def wait_for_adb() -> None:
                connections.enter_context(server.accept()[0])
                self.assertIn("adb.exe", running())

            yield wait_for_adb

    def expect_good_run_after_adb(self) -> None:
        wait_for("adb to end", lambda: not running())
        self.expect_good_run()

    def test_before_adb_runs(self) -> None:
        self.kill_in(self.leave_wizard("CreateProcessW=hang"), "CreateProcessW")
        self.assertEqual(sorted(left_behind()), TOOLS)
        self.expect_good_run()

    def test_while_adb_runs(self) -> None:
        with self.silent_server() as wait_for_adb:
            start = self.leave_wizard()
            wait_for_adb()
            start.kill()
        self.expect_good_run_after_adb()

    def test_before_the_folder_is_deleted(self) -> None:
        self.kill_in(self.leave_wizard("SHFileOperationW=hang"), "SHFileOperationW")
        self.assertEqual(sorted(left_behind()), TOOLS)
        self.expect_good_run()

    def test_while_the_folder_is_deleted(self) -> None:
        """Each member may be the first to go."""
        for name in MEMBERS:
            with step(self, name):
                self.kill_in(self.leave_wizard("SHFileOperationW=hang"), "SHFileOperationW")
                (self.folder / name).unlink()
                self.expect_good_run()

    def test_between_folder_and_archive(self) -> None:
        self.kill_in(self.leave_wizard("DeleteFileW=hang"), "DeleteFileW")
        self.assertEqual(left_behind(), [ZIP])
        self.expect_good_run()

    def test_of_tools_left_over(self) -> None:
        self.leave_tools_behind()
        with self.silent_server() as wait_for_adb:
            start = self.start()
            wait_for_adb()
            start.kill()
        self.expect_good_run_after_adb()


if __name__ == "__main__":
    unittest.main()
