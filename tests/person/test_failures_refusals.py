"""The install page when the watch takes the package and refuses it: each answer that the user sees differently."""

import unittest

from failures import INSTALLING, UNEXPECTED_INSTALL, FailureTest, attempts

REINSTALL = (
    "There is a version of Solvane Watch 2.1.apk already installed on the device.\n\n"
    "Please manually uninstall it and then press Next."
)
OLDER_SDK = "The new package failed because the current SDK version is older than that required by the package."
UNKNOWN = "Unknown error, please report this message to KALVO."

# What the watch answers, the picture's name, the status line, the box.
REFUSALS = (
    ("INSTALL_FAILED_ALREADY_EXISTS", "already-exists", "The package is already installed.", REINSTALL),
    (
        "INSTALL_FAILED_UPDATE_INCOMPATIBLE",
        "update-incompatible",
        "A previously installed package of the same name has a different signature than the new package(and the old "
        "package's data was not removed.",
        REINSTALL,
    ),
    (
        "INSTALL_FAILED_INVALID_APK",
        "invalid-apk",
        "The package archive file is invalid.",
        "The APK file is invalid. Please try downloading it again or ask KALVO for another copy.",
    ),
    (
        "INSTALL_FAILED_INSUFFICIENT_STORAGE",
        "insufficient-storage",
        "The package manager service found that the device didn't have enough storage space to install the app.",
        "There is not enough storage space on the device to install the APK.\n\nRemove data (e.g. pictures) or "
        "applications to free up storage space",
    ),
    (
        "INSTALL_FAILED_OLDER_SDK",
        "older-sdk",
        OLDER_SDK,
        UNEXPECTED_INSTALL.format(OLDER_SDK, "INSTALL_FAILED_OLDER_SDK (313)"),
    ),
)
REPLIES = [f"Failure [{name}: the watch says so]" for name, *_ in REFUSALS]
REPLIES.append("Failure [INSTALL_FAILED_BAD_MOOD: the watch says so]")
# Without a colon no reason can be read, and it is tried three times.
REPLIES += 3 * ["Failure [INSTALL_FAILED_ABORTED]"]
REPLIES.append("Success")


class Refusals(FailureTest):
    watch_switches = ("--trust-all", *(word for reply in REPLIES for word in ("--reply", reply)))

    def test_page_7(self) -> None:
        self.go_to_page(7, pair=False)
        for name, picture, status, message in REFUSALS:
            with self.step(name):
                self.expect_next_to_fail(picture, "ADB Install", message, status, behind=INSTALLING.format(1))
                self.assertNotIn(INSTALLING.format(2), self.seen())
                self.expect_adb(runs=False)

        with self.step("a name that nobody knows"):
            self.press_next()
            caption, message = "GetFailedToInstallExitCode()", "Unknown ADB_EXIT_CODE, please report to KALVO"
            self.expect_box("unknown-name-1", caption, message, INSTALLING.format(1), owned=False)
            message = UNEXPECTED_INSTALL.format(UNKNOWN, "INSTALL_FAILED_KALVO_UNKNOWN_ERROR (301)")
            self.expect_failure("unknown-name-2", "ADB Install", message, UNKNOWN, behind=INSTALLING.format(1))

        with self.step("a failure without a readable name has no box"):
            self.press_next()
            self.person.wait_until("the last word", lambda sight: sight.boxes or sight.status == "Install failed.", 90)
            self.expect_page(7, "Install failed.")
            self.expect_seen(*attempts(INSTALLING), "Install failed.")

        self.expect_installation()
        self.leave()


if __name__ == "__main__":
    unittest.main()
