"""The archive that users download, and the hashes beside it."""

import os
import re
import shutil
import time
import unittest
import zipfile
from pathlib import Path

from packing import CHECKOUT, PROGRAM, PackageTest, hashes, make_package, run, sha256

IN_THE_FIRST_FOLDER = {"Guide.html", "KalvoApkInstaller.exe", "README.txt"}
NOTEPAD_COLUMNS = 80


def contents(folder: Path) -> dict[str, str]:
    files = (file for file in folder.rglob("*") if file.is_file())
    return {str(file.relative_to(folder)): sha256(file.read_bytes()) for file in files}


class Archive(PackageTest):
    def test_the_same_from_another_folder_hour_zone_and_umask(self) -> None:
        elsewhere = self.folder / "of another/depth and name"
        shutil.copytree(CHECKOUT, elsewhere, ignore=shutil.ignore_patterns("build", ".git", "__pycache__"))
        for file in elsewhere.rglob("*"):
            os.utime(file, (0, 0))
        time.sleep(2)  # the times in archives go by two seconds
        surroundings = {"PATH": os.environ["PATH"], "TZ": "Pacific/Kiritimati", "PYTHONHASHSEED": "7"}
        make_package(self.folder / "again", checkout=elsewhere, cwd="/", umask=0o077, env=surroundings)
        self.assertEqual(contents(self.output), contents(self.folder / "again"))

    def test_unpacked_the_program_is_the_built_one(self) -> None:
        folder = self.folder / "unpacked"
        run("unzip", "-q", self.archive, "-d", folder)
        self.assertEqual(sha256(PROGRAM.read_bytes()), contents(folder)[PROGRAM.name])
        self.assertEqual(hashes(self.entries), contents(folder))

    def test_holds_the_program_the_guide_the_first_words_and_licenses(self) -> None:
        others = {name for name in self.entries if not name.startswith("LICENSES/")}
        self.assertEqual(IN_THE_FIRST_FOLDER, others)

    def test_entries_are_sorted_readable_and_of_the_release_day(self) -> None:
        day = re.search(r"^## \S+ - (\d+)-(\d+)-(\d+)$", (CHECKOUT / "CHANGELOG.md").read_text(), re.MULTILINE)
        assert day
        with zipfile.ZipFile(self.archive) as archive:
            entries = archive.infolist()
        self.assertEqual(sorted(self.entries), [entry.filename for entry in entries])
        for entry in entries:
            with self.subTest(entry.filename):
                self.assertEqual((*map(int, day.groups()), 0, 0, 0), entry.date_time)
                self.assertEqual(0o100644, entry.external_attr >> 16)
                self.assertEqual(zipfile.ZIP_DEFLATED, entry.compress_type)

    def test_version_is_the_programs(self) -> None:
        named = re.fullmatch(r"KalvoApkInstaller-(\d+\.\d+\.\d+)-x64\.zip", self.archive.name)
        assert named, self.archive
        version = named[1]
        value = PROGRAM.read_bytes().partition("ProductVersion\0".encode("utf-16-le"))[2]
        # Padding up to 32 bits stands before a value.
        self.assertEqual(f"{version}.0", value[:32].decode("utf-16-le").lstrip("\0").partition("\0")[0])
        self.assertIn(f"version {version}\r\n".encode(), self.entries["README.txt"])

    def test_first_words_are_ten_lines_that_notepad_shows(self) -> None:
        text = self.entries["README.txt"].decode("ascii")
        self.assertEqual(text.count("\n"), text.count("\r\n"))
        lines = text.removesuffix("\r\n").split("\r\n")
        self.assertEqual(10, len(lines))
        self.assertLessEqual(max(map(len, lines)), NOTEPAD_COLUMNS)
        self.assertNotIn("@", text)

    def test_hashes_are_those_of_the_files(self) -> None:
        run("sha256sum", "--check", "--strict", "--quiet", "SHA256SUMS", cwd=self.output)
        named = {line.split()[1] for line in (self.output / "SHA256SUMS").read_text().splitlines()}
        self.assertEqual(set(contents(self.output)) - {"SHA256SUMS"}, named)

    def test_a_version_without_its_changes_is_not_packed(self) -> None:
        checkout = self.folder / "without changes"
        shutil.copytree(CHECKOUT / "package", checkout / "package")
        (checkout / "CHANGELOG.md").write_text("# Changes\n\n## 1.3.9 - 2026-01-01\n", encoding="ascii")
        said = make_package(self.folder / "none", checkout=checkout, well=False)
        self.assertIn("CHANGELOG.md does not begin with", said)
        self.assertFalse((self.folder / "none").exists())


if __name__ == "__main__":
    unittest.main()
