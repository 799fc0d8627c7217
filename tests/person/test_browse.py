"""Choosing a package: what stands in the field at first, the file dialog, paths typed by hand."""

import unittest

from driver import pages, places
from driver.eyes import View, Window
from driver.package import write_package
from driver.places import windows_path
from driver.waiting import wait_for_value
from wizardtest import WizardTest


class ThePackage(WizardTest):
    def setUp(self) -> None:
        super().setUp()
        self.go_to_page(7, pair=False)

    def test_next_is_there_while_the_field_names_a_file(self) -> None:
        self.person.click_control(pages.APK_PATH)
        self.person.press("End", "BackSpace")
        self.person.wait_for_next(False)
        self.person.type("k")
        self.person.wait_for_next()
        self.person.rewrite(pages.APK_PATH, windows_path(self.program.folder))
        self.assertEqual(self.person.rest().buttons, {"Back", "Cancel"})

    def test_the_dialog_filters_packages_or_nothing(self) -> None:
        # The lowest of the dialog's lists to choose from.
        lists = [w for w in self.browse().descendants() if w.visible and w.is_kind("ComboBox")]
        kinds = max(lists, key=lambda window: window.y)
        self.person.click(kinds)
        self.person.press("Return")
        wait_for_value("the kind at first", lambda: self.person.eyes.read(kinds), "Android Package")
        # A key that leads nowhere is told by where the next one leads.
        ways = ((("Down",), "All Files"), (("Down", "Up"), "Android Package"), (("Up", "Down"), "All Files"))
        for keys, expected in ways:
            self.person.press(*keys)
            wait_for_value(f"the kind after {keys}", lambda: self.person.eyes.read(kinds), expected)

    def test_the_chosen_path_arrives(self) -> None:
        folder = places.account("Downloads", "From the office")
        other = write_package(folder, "Solvane 3.0 beta.apk", 1000)
        self.browse()
        name = self.person.look().view.focused()
        assert name
        self.person.press("ctrl+a")
        self.person.type(windows_path(other))
        wait_for_value("the path in the dialog", lambda: self.person.eyes.read(name), windows_path(other))
        self.expect_closed_by("Return")
        self.person.expect(pages.APK_PATH, windows_path(other))
        self.person.wait_for_next()

    def test_is_there_at_once_beside_the_installer_and_a_cancelled_dialog_changes_nothing(self) -> None:
        for cancelled in (False, True):
            if cancelled:
                self.browse()
                self.expect_closed_by("Escape")
            self.person.expect(pages.APK_PATH, windows_path(self.package))
            self.person.wait_for_next()

    def browse(self) -> Window:
        """Opens the file dialog, which has the keyboard in the field of the name."""
        self.person.click_control(pages.BROWSE)
        self.person.wait_until("the file dialog to take a name", lambda sight: _takes_a_name(sight.view), 20)
        dialog = _file_dialog(self.person.rest().view)
        assert dialog
        return dialog

    def expect_closed_by(self, key: str) -> None:
        self.person.press(key)
        self.person.wait_until("the file dialog to close", lambda sight: not _file_dialog(sight.view))


def _file_dialog(view: View) -> Window | None:
    """The window that shows files."""
    return next((w for w in view.windows if any(c.is_kind("SHELLDLL_DefView") for c in w.descendants())), None)


def _takes_a_name(view: View) -> bool:
    dialog, focused = _file_dialog(view), view.focused()
    return bool(dialog and focused and focused.is_kind("Edit") and focused in dialog.descendants())


if __name__ == "__main__":
    unittest.main()
