"""Libraries that somebody has put beside the installer: none is loaded.

The loader of Windows obeys what test_file.py finds in the program's file. Wine's does not read it, but prefers its
own libraries to others of their names; so here the program is held to libraries of the system, the compiler's included.
What is loaded by its name while the program runs Wine's loader takes from where the program has told it to.
"""

import shutil
import subprocess
import unittest
from pathlib import Path

import places
from bystander import ASKED_FOR, load_library
from executable import Executable
from processtest import ProcessTest
from program import downloads, windows_path

# What the compiler would link if it were not told otherwise, and what parts of the system load on their own.
COMPILERS = ("libgcc_s_seh-1.dll", "libstdc++-6.dll", "libwinpthread-1.dll")
LOADED_LATER = (
    "cfgmgr32.dll",
    "cryptbase.dll",
    "dwmapi.dll",
    "profapi.dll",
    "propsys.dll",
    "textshaping.dll",
    "uxtheme.dll",
    "wldp.dll",
)


def planted() -> Path:
    return places.build() / "tests" / "process" / "planted.dll"


class Planted(ProcessTest):
    def plant(self, name: str) -> Path:
        library = downloads() / name
        self.addCleanup(library.unlink)
        shutil.copy(planted(), library)
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
        frame = self.person.rest().frame
        assert frame, "there is no wizard"
        self.assertFalse(load_library(frame.process))
        self.cancel(start)
        self.assertEqual(self.loaded(), [])

    def test_library_that_is_loaded_leaves_a_trace(self) -> None:
        """Otherwise the others could not fail."""
        library = self.plant("planted.dll")
        command = ["wine", "rundll32", windows_path(library) + ",Nothing"]
        quiet = subprocess.DEVNULL
        subprocess.run(command, check=False, timeout=30, stdin=quiet, stdout=quiet, stderr=quiet)
        self.assertEqual(self.loaded(), ["planted.dll"])


if __name__ == "__main__":
    unittest.main()
