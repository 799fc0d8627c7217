"""Choosing a package: what stands in the field at first, the file dialog, paths typed by hand."""

import unittest
from pathlib import Path

import pages
from eyes import Window
from installation import InstallationTest
from journey import go_to_page
from package import write_package
from program import downloads, windows_path
from waiting import wait_for


class ThePackage(InstallationTest):
    def setUp(self) -> None:
        super().setUp()
        go_to_page(self.person, 7, self.watch, pair=False)

    def test_beside_the_installer_is_there_at_once(self) -> None:
        self.person.expect(pages.APK_PATH, windows_path(self.package))
        self.assertIn("Next", self.person.rest().buttons)

    def test_next_is_there_while_the_field_names_a_file(self) -> None:
        self.person.click_control(pages.APK_PATH)
        self.person.press("End", "BackSpace")
        self.person.wait_until("Next to go", lambda sight: "Next" not in sight.buttons)
        self.person.type("k")
        self.person.wait_until("Next", lambda sight: "Next" in sight.buttons)
        self.person.press("ctrl+a")
        self.person.type(windows_path(self.program.folder))
        self.person.expect(pages.APK_PATH, windows_path(self.program.folder))
        self.assertEqual(self.person.rest().buttons, {"Back", "Cancel"})

    def test_the_dialog_filters_packages_or_nothing(self) -> None:
        dialog = self.browse()
        kinds = self.filter_box(dialog)
        self.person.click(kinds)
        self.person.press("Return")
        self.assertEqual(self.person.eyes.read(kinds), "Android Package")
        # A key that leads nowhere is told by where the next one leads.
        ways = ((("Down",), "All Files"), (("Down", "Up"), "Android Package"), (("Up", "Down"), "All Files"))
        for keys, expected in ways:
            self.person.press(*keys)
            wait_for(f"{expected} after {keys}", lambda: self.person.eyes.read(kinds) == expected)

    def test_the_chosen_path_arrives(self) -> None:
        folder = downloads() / "From the office"
        folder.mkdir(exist_ok=True)
        other = write_package(folder, "Solvane 3.0 beta.apk", 1000)
        self.choose(self.browse(), other)
        self.person.expect(pages.APK_PATH, windows_path(other))
        self.assertIn("Next", self.person.rest().buttons)

    def test_a_cancelled_dialog_changes_nothing(self) -> None:
        dialog = self.browse()
        self.person.press("Escape")
        self.wait_until_closed(dialog)
        self.person.expect(pages.APK_PATH, windows_path(self.package))

    def browse(self) -> Window:
        """Opens the file dialog."""
        self.person.click_control(pages.BROWSE)
        self.person.wait_until("the file dialog", lambda sight: _file_dialog(sight.view.windows), 20)
        dialog = _file_dialog(self.person.rest().view.windows)
        assert dialog
        return dialog

    def choose(self, dialog: Window, file: Path) -> None:
        name = next(w for w in dialog.descendants() if w.visible and w.is_kind("Edit") and w.handle == self.person.look().view.focus)
        self.person.press("ctrl+a")
        self.person.type(windows_path(file))
        wait_for("the path in the dialog", lambda: self.person.eyes.read(name) == windows_path(file))
        self.person.press("Return")
        self.wait_until_closed(dialog)

    def wait_until_closed(self, dialog: Window) -> None:
        self.person.wait_until(
            "the file dialog to close", lambda sight: all(w.handle != dialog.handle for w in sight.view.windows)
        )

    def filter_box(self, dialog: Window) -> Window:
        """The lowest of the dialog's lists to choose from."""
        lists = [w for w in dialog.descendants() if w.visible and w.is_kind("ComboBox")]
        return max(lists, key=lambda window: window.y)


def _file_dialog(windows: tuple[Window, ...]) -> Window | None:
    """The window that shows files."""
    return next((w for w in windows if any(c.is_kind("SHELLDLL_DefView") for c in w.descendants())), None)


if __name__ == "__main__":
    unittest.main()
