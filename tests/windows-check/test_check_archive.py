"""The archive for Windows: what is in it, the same each time; and what the page that lists the claims names."""

import filecmp
import os
import subprocess
import sys
import tempfile
import unittest
import zipfile
from pathlib import Path

import checking
import page
from checking import CHECKOUT, archive
from driver import places
from running import ctest_tests


class Archive(unittest.TestCase):
    def test_is_the_same_at_another_hour_zone_and_umask(self) -> None:
        with tempfile.TemporaryDirectory() as folder:
            maker = CHECKOUT / "package/make_windows_check.py"
            subprocess.run(
                [sys.executable, "-B", maker, CHECKOUT, places.build(), folder + "/again"],
                check=True,
                cwd="/",
                umask=0o077,
                stdout=subprocess.DEVNULL,
                env={"PATH": os.environ["PATH"], "TZ": "Pacific/Kiritimati", "PYTHONHASHSEED": "7"},
            )
            again = Path(folder, "again", archive().name)
            self.assertTrue(filecmp.cmp(again, archive(), shallow=False))

    def test_holds_the_program_unmodified_and_every_unit_test(self) -> None:
        with zipfile.ZipFile(archive()) as packed:
            names = set(packed.namelist())
            self.assertEqual(packed.read("parts/KalvoApkInstaller.exe"), places.installer().read_bytes())
        programs = {Path(word).name for test in ctest_tests(places.build()) for word in test.get("command", [])}
        units = {f"parts/{name}" for name in programs if name.startswith("unit-") and name.endswith(".exe")}
        self.assertGreater(len(units), 5)
        others = {name for name in names if not name.startswith("LICENSES/")}
        helpers = {"parts/KalvoApkInstaller.exe", "parts/child.exe", "parts/planted.dll"}
        self.assertEqual(others, units | helpers | {"Check.exe"})


class ThePage(unittest.TestCase):
    def test_names_stand_ins_that_are_there_and_tests_that_run(self) -> None:
        tests = {test["name"] for test in ctest_tests(places.build())}
        rows = page.rows(CHECKOUT)
        self.assertGreater(len(rows), 100)
        for row in rows:
            with self.subTest(row.id):
                self.assertEqual([name for name in row.standins if not (CHECKOUT / name).is_file()], [])
                self.assertEqual([name for name in row.tests if name not in tests], [])

    def test_tells_how_many_claims_there_are(self) -> None:
        self.assertIn(f"## Claims: {len(page.rows(CHECKOUT))}\n", (CHECKOUT / page.PAGE).read_text(encoding="utf-8"))


if __name__ == "__main__":
    checking.main()
