"""Libraries that somebody has put beside the installer: none is loaded.

The loader of Windows obeys what test_file.py finds in the program's file. Wine's does not read it, but prefers its
own libraries to others of their names; so here the program is held to libraries of the system, the compiler's included.
What is loaded by its name while the program runs Wine's loader takes from where the program has told it to.
"""

import shutil
import unittest
from pathlib import Path

from bystander import ASKED_FOR, load_library
from driver import places, wine
from driver.executable import Executable
from driver.places import downloads, windows_path
from processtest import ProcessTest

# What the compiler would link if it were not told otherwise, and what parts of the system load on their own.
COMPILERS = ("libgcc_s_seh-1.dll", "libstdc++-6.dll", "libwinpthread-1.dll")
LOADED_LATER = (
    "cfgmgr32.dll", "cryptbase.dll", "dwmapi.dll", "profapi.dll", "propsys.dll", "textshaping.dll", "uxtheme.dll",
    "wldp.dll"
)


class Planted(ProcessTest):
    def plant(self, name: str) -> Path:
        library = downloads() / name
        self.addCleanup(library.unlink)
        shutil.copy(places.build() / "tests" / "process" / "planted.dll", library)
        return library

    def loaded(self) -> list[str]:
        """The libraries that left a trace of being loaded, which goes with this look."""
        traces = list(downloads().glob("*.loaded"))
        for trace in traces:
            trace.unlink()
        return [trace.stem for trace in traces]

    def test_none_is_loaded(self) -> None:
        imported = Executable(places.installer()).imported_libraries()
        self.assertGreater(len(imported), 5)
        for name in {*map(str.lower, imported), *COMPILERS, *LOADED_LATER}:
            self.plant(name)
        self.expect_good_run()
        self.assertEqual(self.loaded(), [])

    def test_none_is_loaded_by_its_name_later(self) -> None:
        self.plant(ASKED_FOR)
        start = self.start_wizard()
        self.assertFalse(load_library(self.wizard_process()))
        self.cancel(start)
        self.assertEqual(self.loaded(), [])

    def test_library_that_is_loaded_leaves_a_trace(self) -> None:
        """Otherwise the others could not fail."""
        library = self.plant("planted.dll")
        wine.run("rundll32", windows_path(library) + ",Nothing", check=False)
        self.assertEqual(self.loaded(), ["planted.dll"])


if __name__ == "__main__":
    unittest.main()
