"""The install page when the package, adb or the watch is not what it was a moment ago."""

import os
import shutil
import signal
import subprocess
import unittest

import pages
from failures import NOT_STOPPED, PARSE_ERROR, TRY_AGAIN, UNEXPECTED_INSTALL, FailureTest, attempts
from journey import go_to_page
from program import adb_processes, stop_adb, windows_path, working_folder
from steps import step
from watch import Watch

INSTALLING = "Installing Solvane Watch 2.1.apk (attempt {} of 3)"
INSTALLED = "Installed Solvane Watch 2.1.apk"


class SecondWatch(Watch):
    """Another watch of the same home, at the other address of that host."""

    address = "192.168.1.1"


def connect_adb(watch: Watch) -> None:
    """Connects the server of adb to a watch, as somebody does who uses adb for something else."""
    adb = working_folder() / "platform-tools" / "adb.exe"
    quiet = subprocess.DEVNULL
    address = f"{watch.address}:{watch.port}"
    subprocess.run(["wine", adb, "connect", address], check=True, timeout=30, stdin=quiet, stdout=quiet, stderr=quiet)
    watch.wait_for_event("debugging: trusted")


def end_adb() -> None:
    """Ends adb's server at once, as the task manager does."""
    servers = adb_processes()
    assert len(servers) == 1, f"{len(servers)} programs of adb run"
    os.kill(servers[0], signal.SIGKILL)


class Unforeseen(FailureTest):
    watch_switches = ("--trust-all",)

    def test_page_7(self) -> None:
        go_to_page(self.person, 7, self.watch, pair=False)
        path = windows_path(self.package)

        with step(self, "the package was there when its path was read"):
            aside = self.package.rename(self.package.with_suffix(".aside"))
            self.press_next()
            self.expect_unexpected("package-gone", "adb install - failed to stat", "INSTALL_FAILED_STAT (342)")
            aside.rename(self.package)

        with step(self, "a file that adb takes for no package by its name"):
            other = shutil.copy(self.package, self.package.with_suffix(".zip"))
            self.rewrite(pages.APK_PATH, windows_path(other))
            self.press_next()
            line = "Installing Solvane Watch 2.1.zip (attempt 1 of 3)"
            self.expect_unexpected("not-a-package", *PARSE_ERROR, behind=line)
            self.rewrite(pages.APK_PATH, path)

        with step(self, "adb's server is stopped while it installs: the next attempt's knows no watch"):
            self.install_in_silence()
            stop_adb()
            self.expect_unexpected("adb-stopped-while-installing", *PARSE_ERROR, behind=INSTALLING.format(2))
            self.expect_seen(INSTALLING.format(1), INSTALLING.format(2))

        with step(self, "the watch is switched off while it installs"):
            self.install_in_silence()
            self.watch.switch_off()
            status = "adb install - device offline"
            self.expect_failure("switched-off-while-installing", "ADB Install", TRY_AGAIN, status)
            self.expect_seen(*attempts(INSTALLING), status)
            self.expect_adb(runs=False)

        with step(self, "adb's server has gone when it is to be stopped"):
            self.restart_watch()
            self.press_next()
            self.person.wait_until("the package to be installed", lambda sight: sight.status == INSTALLED, 60)
            end_adb()
            self.expect_failure(
                "adb-gone",
                "CInstallApkPage::OnNotify_PSN_WIZNEXT",
                NOT_STOPPED,
                "Unable to stop adb service",
                behind=INSTALLED,
            )
            self.assertTrue(self.watch.has_received(self.package))

        with step(self, "another watch is connected as well: adb is told which one is meant"):
            self.restart_watch()
            with SecondWatch("--trust-all") as second:
                connect_adb(second)
                self.press_next()
                self.person.wait_for_page(8)
                self.assertFalse(second.store.exists())
            self.assertTrue(self.watch.has_received(self.package))

        self.person.press("Escape")
        self.finish()

    def install_in_silence(self) -> None:
        """Until the watch has the package and does not say what it thinks of it."""
        self.restart_watch("--silent-install")
        self.press_next()
        self.person.wait_until("the first attempt", lambda sight: sight.status == INSTALLING.format(1), 60)
        self.watch.wait_for_event("install: stays silent", 60)

    def expect_unexpected(self, picture: str, message: str, name: str, behind: str = INSTALLING.format(1)) -> None:
        text = UNEXPECTED_INSTALL.format(message, name)
        self.expect_failure(picture, "ADB Install", text, message, behind)
        self.expect_adb(runs=False)


if __name__ == "__main__":
    unittest.main()
