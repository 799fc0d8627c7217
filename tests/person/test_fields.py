"""The fields that take digits, and the address that is there before anything is typed."""

import unittest

from driver import pages
from driver.eyes import Window
from driver.notepad import copy_to_clipboard
from wizardtest import WizardTest


class FieldsTest(WizardTest):
    page: int

    def setUp(self) -> None:
        super().setUp()
        self.go_to_page(self.page)

    def expect_all(self, control: int, text: str) -> None:
        """The field holds that when all input has arrived. The next key shows it, and takes the last character."""
        self.person.expect(control, text)
        self.person.press("BackSpace")
        self.person.expect(control, text[:-1])

    def expect_no_next(self, control: int, text: str) -> None:
        """There is no Next button when the field holds that."""
        self.person.expect(control, text)
        self.assertEqual(self.person.rest().buttons, {"Back", "Cancel"})

    def enter(self, control: int, *keys: str) -> None:
        """Empties a field, then presses keys in it."""
        self.person.click_control(control)
        self.person.press("ctrl+a", "BackSpace", *keys)


class TheWatchsAddress(FieldsTest):
    page = 5

    def test_begins_like_the_gateway_with_the_caret_in_the_last_field(self) -> None:
        self.person.expect(pages.ADDRESS, "192.168.1.")
        last = self.last_field().handle
        self.person.wait_until("the caret there", lambda sight: sight.view.focus == sight.view.caret == last)
        self.person.type("7")
        self.person.expect(pages.ADDRESS, "192.168.1.7")

    def test_next_needs_four_numbers_and_four_digits_of_a_port(self) -> None:
        self.person.type("100")
        self.enter(pages.PORT, *"432")
        self.expect_no_next(pages.PORT, "432")
        self.person.press("1")
        self.person.wait_for_next()
        self.person.click(self.last_field(), times=2)
        self.person.press("BackSpace")
        self.person.expect(pages.ADDRESS, "192.168.1.")
        self.enter(pages.PORT, *"4321")
        self.expect_no_next(pages.PORT, "4321")
        # And follows every key in the address.
        self.person.click(self.last_field())
        for key, number, offered in (("7", "7", True), ("BackSpace", "", False), ("1", "1", True), ("0", "10", True)):
            self.person.press(key)
            self.person.expect(pages.ADDRESS, f"192.168.1.{number}")
            self.person.wait_for_next(offered)

    def last_field(self) -> Window:
        return self.person.look().control(pages.ADDRESS).fields[-1]

    def test_the_port_takes_digits_only_and_five_of_them(self) -> None:
        self.enter(pages.PORT, "a", "4", "minus", "3", "period", "x", "2", "space", "1", "0", "9")
        self.person.expect(pages.PORT, "43210")
        self.person.press("BackSpace", "BackSpace")
        self.person.expect(pages.PORT, "432")

    def test_pasting_keeps_the_digits(self) -> None:
        for copied, expected in (("43210", "43210"), ("port 4-3-2-1-0!", "43210"), ("4321099", "43210")):
            with self.step(copied):
                copy_to_clipboard(self.person, copied)
                self.enter(pages.PORT, "ctrl+v")
                self.expect_all(pages.PORT, expected)


class ThePairing(FieldsTest):
    page = 6

    def test_shows_the_address_and_takes_digits_only(self) -> None:
        self.person.expect(pages.ADDRESS_SHOWN, self.watch.address)
        self.assertFalse(self.person.look().control(pages.ADDRESS_SHOWN).enabled)
        self.enter(pages.PAIRING_CODE, "o", "0", "1", "2", "x", "3", "4", "5", "6")
        self.expect_all(pages.PAIRING_CODE, "012345")
        self.person.press("5")
        self.enter(pages.PAIRING_PORT, "3", "7", "h", "0")
        self.expect_no_next(pages.PAIRING_PORT, "370")
        self.person.press("9")
        self.person.wait_for_next()
        self.enter(pages.PAIRING_CODE, *"12345")
        self.expect_no_next(pages.PAIRING_CODE, "12345")

    def test_a_short_paste_arrives_twice(self) -> None:
        copy_to_clipboard(self.person, "12")
        self.enter(pages.PAIRING_CODE, "ctrl+v")
        self.expect_all(pages.PAIRING_CODE, "1212")

    def test_skipping_empties_both_and_offers_next(self) -> None:
        for control, digits in ((pages.PAIRING_CODE, "123"), (pages.PAIRING_PORT, "45")):
            self.enter(control, *digits)
            self.person.expect(control, digits)
        for skip in (True, False):
            self.person.click_control(pages.SKIP_PAIRING)
            self.person.wait_for_next(skip)
            for control in (pages.PAIRING_CODE, pages.PAIRING_PORT):
                self.person.expect(control, "")
                self.assertIs(self.person.look().control(control).enabled, not skip)


if __name__ == "__main__":
    unittest.main()
