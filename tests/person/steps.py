"""Tests of several parts. Where one builds on those before it, the first that fails ends the test."""

import unittest
from collections.abc import Iterator
from contextlib import contextmanager

import pictures


@contextmanager
def step(test: unittest.TestCase, name: object) -> Iterator[None]:
    """One part: its failure names it, and leaves a picture of what was on the screen just then."""
    try:
        yield
    except Exception as error:
        error.add_note(f"in the step: {name}")
        pictures.save_screen(pictures.of_failure(test, str(name)))
        raise
