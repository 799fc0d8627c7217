"""The install page when the package, adb or the watch is not what it was a moment ago."""

import shutil
import unittest

from driver import pages, wine
from driver.places import windows_path
from driver.waiting import wait_for
from driver.watch import SecondWatch
from failures import INSTALLING, NOT_STOPPED, PARSE_ERROR, TRY_AGAIN, UNEXPECTED_INSTALL, FailureTest, attempts

INSTALLED = "Installed Solvane Watch 2.1.apk"


class Unforeseen(FailureTest):
    watch_switches = ("--trust-all",)

    def test_page_7(self) -> None:
        self.go_to_page(7, pair=False)
        path = windows_path(self.package)

        with self.step("the package was there when its path was read"):
            aside = self.package.rename(self.package.with_suffix(".aside"))
            self.press_next()
            self.expect_unexpected("package-gone", "adb install - failed to stat", "INSTALL_FAILED_STAT (342)")
            aside.rename(self.package)

        with self.step("a file that adb takes for no package by its name"):
            other = shutil.copy(self.package, self.package.with_suffix(".zip"))
            self.person.rewrite(pages.APK_PATH, windows_path(other))
            self.press_next()
            line = "Installing Solvane Watch 2.1.zip (attempt 1 of 3)"
            self.expect_unexpected("not-a-package", *PARSE_ERROR, behind=line)
            self.person.rewrite(pages.APK_PATH, path)

        with self.step("adb's server is stopped while it installs: the next attempt's knows no watch"):
            self.install_in_silence()
            wine.run_adb("kill-server")
            self.expect_unexpected("adb-stopped-while-installing", *PARSE_ERROR, behind=INSTALLING.format(2))
            self.expect_seen(INSTALLING.format(1), INSTALLING.format(2))

        with self.step("the watch is switched off while it installs"):
            self.install_in_silence()
            self.watch.switch_off()
            status = "adb install - device offline"
            self.expect_failure("switched-off-while-installing", "ADB Install", TRY_AGAIN, status)
            self.expect_seen(*attempts(INSTALLING), status)
            self.expect_adb(runs=False)

        with self.step("adb's server has gone when it is to be stopped"):
            self.restart_watch()
            self.press_next()
            # The command that is to stop the server comes two seconds later.
            wait_for("adb's success", lambda: self.program.transcript.rstrip().endswith("\nSuccess"), 60)
            (server,) = wine.processes_called("adb")
            wine.end_at_once(server)
            caption = "CInstallApkPage::OnNotify_PSN_WIZNEXT"
            self.expect_failure("adb-gone", caption, NOT_STOPPED, "Unable to stop adb service", behind=INSTALLED)
            self.assertTrue(self.watch.has_received(self.package))

        with self.step("another watch is connected as well: adb is told which one is meant"):
            self.restart_watch()
            with SecondWatch("--trust-all") as second:
                # As somebody does who uses adb for something else.
                wine.run_adb("connect", f"{second.address}:{second.port}")
                second.wait_for_event("debugging: trusted")
                self.expect_installation()
                self.assertFalse(second.store.exists())

        self.leave()

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
