"""What the person's tests have in common: a watch, an installer with a package beside it, and somebody in front of it."""

import program as programs
from evidence import ObservedTest
from eyes import Eyes
from package import write_package
from person import Person
from program import Program, left_behind
from watch import Watch

# Wine itself starts in this time, too.
START = 60.0


class InstallationTest(ObservedTest):
    """Every test starts the installer anew."""

    # For the emulated watch.
    watch_switches: tuple[str, ...] = ()

    def setUp(self) -> None:
        self.addCleanup(programs.remove_folder, programs.working_folder())
        self.watch = self.enterContext(Watch(*self.watch_switches))
        self.program = self.enterContext(Program())
        self.package = write_package(self.program.folder)
        self.person = Person(self.enterContext(Eyes()))
        self.enterContext(self.observed(self.person.eyes, self.program, lambda: self.watch.events))
        self.person.wait_for_page(1, START)

    def finish(self) -> None:
        """Checks that the installer ended as it should, with nothing left behind."""
        self.assertEqual(self.program.wait(), 0)
        self.assertEqual(left_behind(), [])
