"""What these tests have in common: a watch, an installer with a package beside it, and somebody in front of it."""

from driver import journey, places
from driver.evidence import ObservedTest
from driver.package import write_package
from driver.person import Person
from driver.program import Program, left_behind, remove_folder
from driver.watch import Watch
from driver.wizard import Sight


class WizardTest(ObservedTest):
    """Every test starts the installer anew."""

    # For the emulated watch.
    watch_switches: tuple[str, ...] = ()

    # Calls of the program that fail besides what goes wrong in the home, as the stand-ins read them.
    faults = ""

    def setUp(self) -> None:
        self.start_wizard(self.faults)

    def start_wizard(self, faults: str) -> None:
        self.addCleanup(remove_folder, places.working_folder())
        self.person = Person()
        self.watch = self.enterContext(Watch(*self.watch_switches))
        self.program = self.enterContext(Program(faults))
        self.package = write_package(self.program.folder)
        self.enterContext(self.observed(self.program, lambda: self.watch.events))
        self.person.wait_for_first_page()

    def go_to_page(self, number: int, pair: bool = True) -> Sight:
        return journey.go_to_page(self.person, number, self.watch, pair=pair)

    def finish(self) -> None:
        """Checks that the installer ended as it should, with nothing left behind."""
        self.assertEqual(self.program.wait(), 0)
        self.assertEqual(left_behind(), [])

    def leave(self) -> None:
        self.person.press("Escape")
        self.finish()
