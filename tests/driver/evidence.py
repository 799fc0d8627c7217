"""Tests that leave what explains their failure: the screen, the words of adb and of the watch; and what crashed."""

import re
import unittest
from collections.abc import Callable, Iterable, Iterator
from contextlib import contextmanager
from pathlib import Path
from typing import Any, Protocol, TypeVar

from driver import guide, hands, looks, pixels
from driver.eyes import View
from driver.person import Person
from driver.wizard import MessageBox

# The last of what adb and the watch said. A whole run of the wizard says less.
MOST_LINES = 60

Owner = TypeVar("Owner", bound=type[unittest.TestCase])


class Observable(Protocol):
    """A run of the installer."""

    @property
    def said(self) -> str: ...

    @property
    def transcript(self) -> str: ...


def describe_front(view: View) -> str:
    """What is in front, what has the keyboard, and what else is to be seen, from top to bottom."""
    number, name = hands.keys_go_to()
    parts = [f"in front: {_name(view, view.foreground)}", f"with the keyboard: {_name(view, view.focus)}"]
    parts += [f"where the screen sends keys: {number} {name}"]
    return "\n".join(parts + [f"on the screen: {_name(view, window.handle)}" for window in view.windows])


def _name(view: View, handle: int) -> str:
    if not (window := view.window(handle)):
        return f"no window that is to be seen ({handle:#x})"
    text = " ".join(window.text.split())
    return f'{window.class_name} "{text[:100]}" (id {window.id}, process {window.process})'


def report(view: View, program: Observable, watch_events: Iterable[str]) -> str:
    """All of it, to be printed with the failure."""
    parts = {
        "the installer asked adb, and adb said": program.transcript.splitlines(),
        "the watch": list(watch_events),
        "the installer and Windows printed": program.said.splitlines(),
    }
    told = ["\n   ".join((f"{what}:", *lines[-MOST_LINES:])) for what, lines in parts.items()]
    return "\n".join([describe_front(view), *told])


def leave_evidence(picture: Path, person: Person, program: Observable, watch_events: Iterable[str]) -> None:
    """What explains a failure, as long as all is still there: the screen as a picture, everything else printed."""
    pixels.save_screen(picture)
    print(report(person.eyes.look(), program, watch_events), flush=True)


def crash_of_program(said: str) -> str:
    """What the stand-ins told of a crash of the installer, with the calls that led to it; empty where none was."""
    return "\n".join(line for line in said.splitlines() if line.startswith("crash: "))


def crash_of_another(said: str) -> str:
    """What Windows told of the crash of another program, which then is adb; empty where none was."""
    crashes = re.findall(r"^wine: Unhandled .*$", said, re.MULTILINE)
    return "" if crash_of_program(said) else "\n".join(crashes)


class ObservedTest(unittest.TestCase):
    """A test that leaves what is needed to understand its failure, and that fails when the installer crashed."""

    person: Person

    def run(self, result: unittest.TestResult | None = None) -> unittest.TestResult | None:
        self._result = result
        return super().run(result)

    @contextmanager
    def observed(self, program: Observable, watch_events: Callable[[], Iterable[str]] = lambda: ()) -> Iterator[None]:
        """While it lasts. It must end before the program is ended: what is on the screen belongs to the evidence."""
        before = self._count_faults()
        failed = False
        try:
            yield
        except Exception:
            failed = True
            raise
        finally:
            if failed or self._count_faults() > before:
                leave_evidence(pixels.of_failure(self.id()), self.person, program, watch_events())
        crash = crash_of_program(program.said)
        self.assertFalse(crash, f"the installer crashed:\n{crash}")
        if noted := crash_of_another(program.said):
            print(f"noted: adb crashed, which the installer does not notice: {noted}", flush=True)

    def _count_faults(self) -> int:
        return len(self._result.failures) + len(self._result.errors) if self._result else 0

    @contextmanager
    def step(self, name: object) -> Iterator[None]:
        """One part of a test. Its failure names it, leaves a picture of what was on the screen just then, and ends the
        test."""
        try:
            yield
        except Exception as error:
            error.add_note(f"in the step: {name}")
            pixels.save_screen(pixels.of_failure(self.id(), str(name)))
            raise

    def expect_sound(self, box: MessageBox, picture: str) -> None:
        """A box that the guide explains, of which nothing is cut, with one button. Its picture is kept."""
        # A caption that could not be loaded is in no row of the guide.
        self.assertTrue(guide.explains(box) or not box.caption, f"the guide does not explain {box}")
        self.assertEqual(box.buttons, ("OK",))
        self.assertEqual(looks.look_at_box(self.person.eyes, box), [])
        self.person.picture(pixels.kept(f"boxes/{picture}"), box.window)


def one_test_for_each(**rows: tuple) -> Callable[[Owner], Owner]:
    """Gives a class a test for each row, which is called by its name and calls `check` with what is in it."""

    def add_to(owner: Owner) -> Owner:
        for name, row in rows.items():

            def test(self: Any, row: tuple = row) -> None:
                self.check(*row)

            setattr(owner, f"test_{name}", test)
        return owner

    return add_to
