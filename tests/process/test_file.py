"""What the program's file asks of the loader: nothing from beside it, no address known beforehand, no data executed.

    test_file.py PROGRAM
"""

import struct
import sys
import unittest
from pathlib import Path

from driver.executable import Executable

PE32_PLUS = 0x20B
GUI = 2

HIGH_ENTROPY_VA, DYNAMIC_BASE, NX_COMPAT = 0x20, 0x40, 0x100
EXECUTE, WRITE = 0x20000000, 0x80000000

LOAD_CONFIG, BASE_RELOCATIONS, DELAY_IMPORTS = 10, 5, 13
LOAD_LIBRARY_SEARCH_SYSTEM32 = 0x800

# In the load configuration: after the size, ten fields and the version of the service pack.
DEPENDENT_LOAD_FLAGS = 78

# The folder of the system holds each of these, or the system itself stands for it.
SYSTEM_LIBRARIES = {
    "api-ms-win-core-path-l1-1-0.dll", "comctl32.dll", "iphlpapi.dll", "kernel32.dll", "msvcrt.dll", "ole32.dll",
    "shell32.dll", "shlwapi.dll", "user32.dll", "version.dll", "ws2_32.dll"
}


class TheFile(unittest.TestCase):
    program: Executable

    def test_is_a_64_bit_program_of_todays_with_the_stack_that_the_tests_have_tried(self) -> None:
        self.assertEqual((self.program.magic, self.program.subsystem), (PE32_PLUS, GUI))
        self.assertEqual(self.program.subsystem_version, (6, 0))
        self.assertEqual(self.program.stack, 2 << 20)

    def test_is_loaded_at_a_random_address_out_of_many(self) -> None:
        wanted = HIGH_ENTROPY_VA | DYNAMIC_BASE
        self.assertEqual(self.program.characteristics & wanted, wanted)
        # Without these it could not be moved, whatever it says.
        self.assertGreater(self.program.directory(BASE_RELOCATIONS)[1], 0)

    def test_does_not_execute_data(self) -> None:
        self.assertTrue(self.program.characteristics & NX_COMPAT)
        both = [s.name for s in self.program.sections if s.characteristics & EXECUTE and s.characteristics & WRITE]
        self.assertEqual(both, [])
        self.assertEqual([s.name for s in self.program.sections if s.characteristics & EXECUTE], [".text"])

    def test_takes_libraries_from_the_system_folder_alone(self) -> None:
        address, size = self.program.directory(LOAD_CONFIG)
        config = self.program.read(address, size)
        (own_size,) = struct.unpack_from("<I", config)
        (flags,) = struct.unpack_from("<H", config, DEPENDENT_LOAD_FLAGS)
        self.assertEqual(size, own_size)
        self.assertGreaterEqual(own_size, DEPENDENT_LOAD_FLAGS + 2)
        self.assertEqual(flags, LOAD_LIBRARY_SEARCH_SYSTEM32)

    def test_needs_no_library_that_is_not_the_systems(self) -> None:
        self.assertEqual({name.lower() for name in self.program.imported_libraries()}, SYSTEM_LIBRARIES)
        self.assertEqual(self.program.directory(DELAY_IMPORTS), (0, 0))


if __name__ == "__main__":
    TheFile.program = Executable(Path(sys.argv.pop(1)))
    unittest.main()
