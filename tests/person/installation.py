"""What the person's tests have in common: a watch, an installer with a package beside it, and somebody in front of it."""

import unittest
from pathlib import Path

import pictures
import program as programs
from eyes import Eyes
from package import write_package
from person import Person
from program import Program, left_behind
from watch import Watch

# Wine itself starts in this time, too.
START = 60.0


class InstallationTest(unittest.TestCase):
    """Every test starts the installer anew; a test that fails leaves a picture of the screen in the build folder."""

    # For the emulated watch.
    watch_switches: tuple[str, ...] = ()

    def run(self, result: unittest.TestResult | None = None) -> unittest.TestResult | None:
        self._result = result
        return super().run(result)

    def setUp(self) -> None:
        faults = self._faults()
        self.addCleanup(programs.remove_folder, programs.working_folder())
        self.watch = self.enterContext(Watch(*self.watch_switches))
        self.program = self.enterContext(Program())
        self.package = write_package(self.program.folder)
        self.person = Person(self.enterContext(Eyes()))
        # Runs before the installer is stopped.
        self.addCleanup(self._keep_picture_of_failure, faults)
        self.person.wait_for_page(1, START)

    def finish(self) -> None:
        """Checks that the installer ended as it should, with nothing left behind."""
        self.assertEqual(self.program.wait(), 0)
        self.assertEqual(left_behind(), [])

    def _faults(self) -> int:
        return len(self._result.failures) + len(self._result.errors) if self._result else 0

    def _keep_picture_of_failure(self, faults_before: int) -> None:
        if self._faults() > faults_before:
            pictures.save_screen(pictures.of_failure(self))
            print("the installer printed:", self.program.said)
