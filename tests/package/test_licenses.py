"""Every part that is inside has its license's text in the package, and the notices say so."""

import re
import unittest
from pathlib import Path
from unittest import mock

import link
import parts
from packing import BUILD, CHECKOUT, PackageTest

# Words without which the text is not the license's.
KEY_WORDS = {
    "adb": ["Apache License", "sdk-repo-windows-platform-tools.zip"],
    "miniz": ["Permission is hereby granted, free of charge", "unencumbered software", "Martin Raiber"],
    "ctre": ["TERMS AND CONDITIONS FOR USE, REPRODUCTION, AND DISTRIBUTION", "Hana Dusíková", "LLVM Exceptions",
             "in their entirety and only with respect to the Combined\nSoftware."],
    "gcc-runtime": ["GCC RUNTIME LIBRARY EXCEPTION", "TERMS AND CONDITIONS", "GNU GENERAL PUBLIC LICENSE"],
    "mingw-w64-runtime": ["Redistributions in binary form must reproduce", "mingw-w64 project"],
}


def notices() -> dict[str, str]:
    """The table of the works that are inside: the name of its text, and the work."""
    page = (CHECKOUT / "THIRD-PARTY-NOTICES.md").read_text(encoding="utf-8")
    section = page.partition("\n## Inside the package\n")[2].partition("\n## ")[0]
    rows = [line.strip("|").split("|") for line in section.splitlines() if line.startswith("|")]
    return {cells[-1].strip().strip("`"): cells[0].strip() for cells in rows[2:]}


class Licenses(PackageTest):
    def test_the_package_the_notices_and_the_bill_name_the_same_texts(self) -> None:
        texts = {name for name in self.entries if name.startswith("LICENSES/")}
        self.assertEqual({f"LICENSES/{key}.txt" for key in KEY_WORDS}, texts)
        self.assertEqual(texts, set(notices()))
        comments = "\n".join(each.get("comment", "") for each in self.bill["packages"])
        self.assertEqual(sorted(texts), sorted(re.findall(r"LICENSES/\S+", comments)))

    def test_versions_in_the_notices_are_those_of_the_bill(self) -> None:
        for package in self.bill["packages"]:
            work = notices().get(f"LICENSES/{package['SPDXID'].removeprefix('SPDXRef-Part-')}.txt", "")
            for version in re.findall(r"\d+\.\d+\.\d+", work):
                with self.subTest(work):
                    self.assertEqual(package["versionInfo"], version)

    def test_texts_are_the_licenses(self) -> None:
        for key, words in KEY_WORDS.items():
            text = self.entries[f"LICENSES/{key}.txt"].decode("utf-8", "replace")
            for each in words:
                with self.subTest(key):
                    self.assertIn(each, text)

    def test_every_linked_file_of_the_system_is_billed(self) -> None:
        billed = {file["fileName"] for file in self.bill["files"]}
        linked = link.system_files(BUILD)
        # Whatever the linker: the compiler's own libraries and start files are among them.
        self.assertLessEqual({"libstdc++.a", "libgcc.a", "libmingwex.a", "crt2u.o"}, {file.name for file in linked})
        self.assertEqual(set(), {f".{file}" for file in linked} - billed)

    def test_what_is_linked_without_a_known_license_is_not_packed(self) -> None:
        unknown = Path("/bin/true")
        with mock.patch.object(link, "system_files", lambda build: [unknown]):
            with self.assertRaisesRegex(LookupError, f"{unknown} is linked, and nothing is known of the license"):
                parts.all_parts(BUILD)


if __name__ == "__main__":
    unittest.main()
