"""Killed at any point, the installer comes up at the next start, replaces what was left, and leaves nothing."""

import socket
import unittest
from collections.abc import Callable, Iterator
from contextlib import ExitStack, contextmanager
from pathlib import Path

from driver import wine
from driver.person import START
from driver.program import Program
from driver.waiting import wait_for
from processtest import ADB, CREATE_PROCESS, FOLDER, MEMBERS, TOOLS, ZIP, ProcessTest, last_error, sudden_end


class Killed(ProcessTest):
    def kill_in(self, start: Program, function: str, *left: str) -> None:
        """Kills it where it hangs in a call of that function, when just that is on the disk."""
        start.wait_for_fault(function)
        start.kill()
        self.expect_left(*left)

    def kill_at(self, offset: int, *left: str) -> None:
        """Kills it in the midst of a write, when just so many bytes of the last of these files are written."""
        # What answers has started Windows, which the limit is not for.
        self.person.look()
        self.start(largest_file=offset).wait()
        self.expect_left(*left)
        self.assertEqual((self.folder / left[-1]).stat().st_size, offset)


class Installing(Killed):
    def test_in_the_archive(self) -> None:
        self.leave_tools_behind()
        whole = (self.folder / ZIP).stat().st_size
        self.clean_account()
        for offset in (4096, 1 << 20, whole - 1):
            with self.step(offset):
                self.kill_at(offset, FOLDER, ZIP)
                self.expect_good_run()

    def test_between_members(self) -> None:
        """The first is there, the others are not."""
        self.kill_in(self.start(f"_wfopen_s#{Path(MEMBERS[1]).name}=hang"), "_wfopen_s", FOLDER, ZIP, ADB)
        self.expect_good_run()

    def test_in_adb_itself(self) -> None:
        """Half an adb.exe cannot be started to stop its server, and each later start ends with saying so."""
        for offset in (3 << 20, 5 << 20):
            with self.step(offset):
                self.clean_account()
                self.kill_at(offset, FOLDER, ZIP, ADB)
                for _ in range(2):
                    self.check(*sudden_end("", last_error(CREATE_PROCESS, 193), disk=(FOLDER, ZIP, ADB)))
                (self.folder / ADB).unlink()
                self.expect_good_run()


class Running(Killed):
    def test_with_the_wizard_open_again_and_again(self) -> None:
        for _ in range(3):
            self.start_wizard().kill()
        self.expect_good_run()

    def test_with_the_wizard_open_and_a_server_of_adb_that_stays(self) -> None:
        start = self.start_wizard()
        wine.start_adb_server()
        start.kill()
        self.assertIn("adb", wine.running())
        self.expect_good_run()

    def test_with_a_box_open(self) -> None:
        start = self.start("PropertySheetW=fail:0")
        self.wait_for_box(start)
        start.kill()
        self.expect_good_run()


class Removing(Killed):
    def kill_leaving(self, function: str, *left: str) -> None:
        """Kills it after its wizard, in a call of that function."""
        start = self.start_wizard(f"{function}=hang")
        self.press_escape()
        self.kill_in(start, function, *left)

    @contextmanager
    def silent_server(self) -> Iterator[Callable[[Program], None]]:
        """Something in the place of adb's server that lets adb wait. Gives a way to kill the installer meanwhile."""
        with socket.create_server(("127.0.0.1", 5037)) as server, ExitStack() as connections:
            server.settimeout(START)

            def kill_while_adb_waits(start: Program) -> None:
                connections.enter_context(server.accept()[0])
                self.assertIn("adb.exe", wine.running())
                start.kill()

            yield kill_while_adb_waits
        wait_for("adb to end", lambda: not wine.running())

    def test_before_adb_runs(self) -> None:
        self.kill_leaving("CreateProcessW", *TOOLS)
        self.expect_good_run()

    def test_while_adb_runs(self) -> None:
        with self.silent_server() as kill_while_adb_waits:
            start = self.start_wizard()
            self.press_escape()
            kill_while_adb_waits(start)
        self.expect_good_run()

    def test_before_and_while_the_folder_is_deleted(self) -> None:
        """Each member may be the first to go."""
        for name in (None, *MEMBERS):
            with self.step(name):
                self.kill_leaving("SHFileOperationW", *TOOLS)
                if name:
                    (self.folder / name).unlink()
                self.expect_good_run()

    def test_between_folder_and_archive(self) -> None:
        self.kill_leaving("DeleteFileW", ZIP)
        self.expect_good_run()

    def test_of_tools_left_over(self) -> None:
        self.leave_tools_behind()
        with self.silent_server() as kill_while_adb_waits:
            kill_while_adb_waits(self.start())
        self.expect_good_run()


if __name__ == "__main__":
    unittest.main()
