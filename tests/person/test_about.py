"""The box behind the About button of the first page."""

import unittest

import pages
import places
from installation import InstallationTest

TEXT = f"{pages.TITLE}\n\nApplication to install APK on Android Device\n\nVersion: 1.4.0"


class About(InstallationTest):
    def test_a_click_shows_it(self) -> None:
        self.person.click_control(pages.ABOUT)
        self.expect_box()

    def test_the_space_bar_shows_it(self) -> None:
        self.person.tab_to(pages.ABOUT)
        self.person.press("space")
        self.expect_box()

    def test_enter_shows_it_when_the_button_has_the_keyboard(self) -> None:
        self.person.tab_to(pages.ABOUT)
        self.person.press("Return")
        self.expect_box()

    def expect_box(self) -> None:
        box = self.person.wait_for_box("About")
        self.assertEqual(box.message, TEXT)
        self.assertEqual(box.buttons, ("OK",))
        self.person.picture(places.build() / "run" / "boxes" / "about.png", box.window)
        self.person.dismiss(box)
        self.assertEqual(self.person.look().number, 1)


if __name__ == "__main__":
    unittest.main()
