"""What a failed test leaves for whoever reads it: the screen, the words of adb and of the watch; and what ended by a crash."""

import re
import unittest
from collections.abc import Callable, Iterable, Iterator
from contextlib import contextmanager
from typing import Protocol

import hands
import pictures
from eyes import Eyes, View, Window

# The last of what adb and the watch said. A whole run of the wizard says less.
MOST_LINES = 60


def describe_front(view: View) -> str:
    """What is in front, what has the keyboard, and what else is to be seen, from top to bottom."""
    every = [window for top in view.windows for window in (top, *top.descendants())]
    by_handle = {window.handle: window for window in every}
    return "\n".join(
        (
            f"in front: {_name(by_handle.get(view.foreground), view.foreground)}",
            f"with the keyboard: {_name(by_handle.get(view.focus), view.focus)}",
            f"where the screen sends keys: {hands.keys_go_to()}",
            *(f"on the screen: {_name(window, 0)}" for window in view.windows),
        )
    )


def _name(window: Window | None, handle: int) -> str:
    if not window:
        return f"no window that is to be seen ({handle:#x})"
    text = " ".join(window.text.split())
    return f'{window.class_name} "{text[:100]}" (id {window.id}, process {window.process})'


def _last(lines: Iterable[str]) -> str:
    return "\n".join(f"   {line}" for line in list(lines)[-MOST_LINES:])


def report(view: View, transcript: str, said: str, watch_events: Iterable[str]) -> str:
    """All of it, to be printed with the failure."""
    return "\n".join(
        (
            describe_front(view),
            f"the installer asked adb, and adb said:\n{_last(transcript.splitlines())}",
            f"the watch:\n{_last(watch_events)}",
            f"the installer and Windows printed:\n{_last(said.splitlines())}",
        )
    )


def crash_of_program(said: str) -> str:
    """What the stand-ins told of a crash of the installer, with the calls that led to it; empty where there was none."""
    return "\n".join(line for line in said.splitlines() if line.startswith("crash: "))


def crash_of_another(said: str) -> str:
    """What Windows told of the crash of a program that is not the installer, which then is adb; empty where none was."""
    crashes = re.findall(r"^wine: Unhandled .*$", said, re.MULTILINE)
    return "" if crash_of_program(said) else "\n".join(crashes)


class Observable(Protocol):
    """A run of the installer."""

    @property
    def said(self) -> str: ...

    @property
    def transcript(self) -> str: ...


class ObservedTest(unittest.TestCase):
    """A test that leaves what is needed to understand its failure, and that fails when the installer crashed."""

    def run(self, result: unittest.TestResult | None = None) -> unittest.TestResult | None:
        self._result = result
        return super().run(result)

    @contextmanager
    def observed(
        self, eyes: Eyes, program: Observable, watch_events: Callable[[], Iterable[str]] = lambda: ()
    ) -> Iterator[None]:
        """While it lasts. It must end before the program is ended: what is on the screen then is part of the evidence."""
        before = self._count_faults()
        failed = False
        try:
            yield
        except Exception:
            failed = True
            raise
        finally:
            if failed or self._count_faults() > before:
                pictures.save_screen(pictures.of_failure(self))
                print(report(eyes.look(), program.transcript, program.said, watch_events()), flush=True)
        crash = crash_of_program(program.said)
        self.assertFalse(crash, f"the installer crashed:\n{crash}")
        if noted := crash_of_another(program.said):
            print(f"noted: adb crashed, which the installer does not notice: {noted}", flush=True)

    def _count_faults(self) -> int:
        return len(self._result.failures) + len(self._result.errors) if self._result else 0
