"""The bill of materials: a valid SPDX 2.3 document, and true."""

import hashlib
import io
import re
import unittest
import zipfile
from pathlib import Path

from packing import BUILD, PROGRAM, PackageTest

THIRD_PARTY = Path("/third-party")

# What SPDX 2.3 requires of each kind of element where files were looked into, and what else it knows of them.
KINDS = {
    "document": (
        "spdxVersion dataLicense SPDXID name documentNamespace creationInfo",
        "packages files relationships hasExtractedLicensingInfos",
    ),
    "creation": ("created creators", "comment licenseListVersion"),
    "package": (
        "SPDXID name downloadLocation packageVerificationCode",
        "builtDate checksums comment copyrightText description externalRefs filesAnalyzed homepage licenseComments "
        "licenseConcluded licenseDeclared licenseInfoFromFiles originator packageFileName primaryPackagePurpose "
        "releaseDate sourceInfo summary supplier validUntilDate versionInfo",
    ),
    "file": (
        "SPDXID fileName checksums",
        "comment copyrightText fileTypes licenseConcluded licenseInfoInFiles noticeText",
    ),
    "checksum": ("algorithm checksumValue", ""),
    "relationship": ("spdxElementId relationshipType relatedSpdxElement", ""),
    "reference": ("referenceCategory referenceType referenceLocator", "comment"),
    "extracted": ("licenseId extractedText", "comment name seeAlsos"),
}

RELATIONS = {"DESCRIBES", "CONTAINS", "STATIC_LINK", "BUILD_TOOL_OF"}
NO_VALUE = {"NOASSERTION", "NONE"}
# Those of SPDX's list of licenses and exceptions that are used here.
LICENSES = {"Apache-2.0", "GPL-3.0-or-later", "MIT"}
EXCEPTIONS = {"LLVM-exception", "GCC-exception-3.1"}

INSIDE = {
    "adb": "CONTAINS",
    "miniz": "STATIC_LINK",
    "ctre": "STATIC_LINK",
    "gcc-runtime": "STATIC_LINK",
    "mingw-w64-runtime": "STATIC_LINK",
}
BUILD_TOOLS = {"miniz", "zopfli", "gcc", "binutils"}  # the linker is one more where it is not of binutils
PROGRAM_ID = "SPDXRef-File-KalvoApkInstaller.exe"
PART = "SPDXRef-Part-"


def sums(element: dict) -> dict[str, str]:
    return {each["algorithm"]: each["checksumValue"] for each in element["checksums"]}


def sums_of(data: bytes) -> dict[str, str]:
    return {"SHA1": hashlib.sha1(data).hexdigest(), "SHA256": hashlib.sha256(data).hexdigest()}


class Bill(PackageTest):
    @property
    def elements(self) -> dict[str, dict]:
        return {each["SPDXID"]: each for each in [self.bill, *self.bill["packages"], *self.bill["files"]]}

    @property
    def relations(self) -> set[tuple[str, str, str]]:
        relations = self.bill["relationships"]
        return {(each["spdxElementId"], each["relationshipType"], each["relatedSpdxElement"]) for each in relations}

    @property
    def parts(self) -> list[dict]:
        return [each for each in self.bill["packages"] if each["SPDXID"].startswith(PART)]

    def related(self, one: str, kind: str) -> list[dict]:
        return [self.elements[other] for first, relation, other in self.relations if (first, relation) == (one, kind)]

    def data(self, file: dict) -> bytes:
        """Of a file in the archive, in the build, among what was fetched, or in the system."""
        name = file["fileName"].removeprefix("./")
        places = (BUILD / name, THIRD_PARTY / name, Path("/", name))
        if name in self.entries:
            return self.entries[name]
        return next(place for place in places if place.is_file()).read_bytes()

    def by_kind(self) -> dict[str, list[dict]]:
        packages, files = self.bill["packages"], self.bill["files"]
        return {
            "document": [self.bill],
            "creation": [self.bill["creationInfo"]],
            "package": packages,
            "file": files,
            "checksum": [checksum for each in [*packages, *files] for checksum in each.get("checksums", [])],
            "relationship": self.bill["relationships"],
            "reference": [reference for each in packages for reference in each.get("externalRefs", [])],
            "extracted": self.bill["hasExtractedLicensingInfos"],
        }

    def test_has_what_spdx_requires_and_nothing_that_it_does_not_know(self) -> None:
        for kind, elements in self.by_kind().items():
            required, more = (set(fields.split()) for fields in KINDS[kind])
            self.assertTrue(elements, kind)
            for element in elements:
                with self.subTest(kind, element=element.get("SPDXID", str(element)[:60])):
                    self.assertLessEqual(required, element.keys())
                    self.assertLessEqual(element.keys(), required | more)
                    self.assertEqual([], [field for field in required if not element[field]])

    def test_values_have_the_forms_that_spdx_wants(self) -> None:
        creation = self.bill["creationInfo"]
        ids = [each["SPDXID"] for each in [self.bill, *self.bill["packages"], *self.bill["files"]]]
        self.assertEqual(len(ids), len(set(ids)), "an id twice")
        for form, values in {
            r"SPDX-2\.3": [self.bill["spdxVersion"]],
            r"CC0-1\.0": [self.bill["dataLicense"]],
            r"SPDXRef-DOCUMENT": [self.bill["SPDXID"]],
            r"[a-z]+:[^#]+": [self.bill["documentNamespace"]],
            r"\d{4}-\d\d-\d\dT\d\d:\d\d:\d\dZ": [creation["created"]],
            r"(Person|Organization|Tool): \S.*": creation["creators"],
            r"SPDXRef-[A-Za-z0-9.-]+": ids,
            r"\./[^/].*": [file["fileName"] for file in self.bill["files"]],
        }.items():
            self.assertEqual([], [value for value in values if not re.fullmatch(form, value)], form)

    def test_relationships_lead_from_the_document_to_every_element(self) -> None:
        reached, left = set(), {"SPDXRef-DOCUMENT"}
        edges = {(other, one) if kind.endswith("_OF") else (one, other) for one, kind, other in self.relations}
        while left:
            reached |= left
            left = {other for one, other in edges if one in left} - reached
        self.assertEqual(set(self.elements), reached)
        self.assertLessEqual({kind for _, kind, _ in self.relations}, RELATIONS)

    def test_licenses_are_of_spdxs_list_or_their_text_is_there(self) -> None:
        extracted = {each["licenseId"] for each in self.bill["hasExtractedLicensingInfos"]}
        used = set()
        for package in self.bill["packages"]:
            for expression in (package["licenseDeclared"], package["licenseConcluded"]):
                license_id, _, exception = expression.partition(" WITH ")
                self.assertIn(license_id, LICENSES | NO_VALUE | extracted)
                self.assertIn(exception, EXCEPTIONS | {""})
                used.add(license_id)
        self.assertEqual(set(), extracted - used)
        self.assertEqual([], [each["name"] for each in self.parts if each["licenseDeclared"] in NO_VALUE])

    def test_the_package_is_the_archive(self) -> None:
        (package,) = self.related("SPDXRef-DOCUMENT", "DESCRIBES")
        self.assertEqual(self.archive.name, package["packageFileName"])
        self.assertEqual(sums_of(self.archive.read_bytes()), sums(package))
        self.assertIn(f"-{package['versionInfo']}-", self.archive.name)
        files = {file["fileName"] for file in self.related(package["SPDXID"], "CONTAINS")}
        self.assertEqual({f"./{name}" for name in self.entries}, files)

    def test_files_have_the_hashes_of_those_that_were_used(self) -> None:
        for package in self.bill["packages"]:
            files = self.related(package["SPDXID"], "CONTAINS")
            self.assertTrue(files, package["name"])
            for file in files:
                with self.subTest(package["name"], file=file["fileName"]):
                    self.assertEqual(sums_of(self.data(file)), sums(file))
            hashes = "".join(sorted(sums(file)["SHA1"] for file in files))
            code = package["packageVerificationCode"]["packageVerificationCodeValue"]
            self.assertEqual(hashlib.sha1(hashes.encode()).hexdigest(), code, package["name"])

    def test_adb_in_the_program_is_that_of_the_bill(self) -> None:
        data = PROGRAM.read_bytes()
        # The program's resources hold the archive of the tools, uncompressed; its last record is 22 bytes long.
        end = data.rindex(b"PK\5\6") + 22
        with zipfile.ZipFile(io.BytesIO(data[:end])) as tools:
            packed = {Path(name).name: sums_of(tools.read(name)) for name in tools.namelist() if not name.endswith("/")}
        files = self.related(PART + "adb", "CONTAINS")
        self.assertEqual(packed, {Path(file["fileName"]).name: sums(file) for file in files})
        version = self.elements[PART + "adb"]["versionInfo"]
        self.assertGreaterEqual((THIRD_PARTY / "adb/adb.exe").read_bytes().find(f"\0{version}\0".encode()), 0, version)

    def test_says_how_each_part_comes_into_the_program(self) -> None:
        inside = {(PROGRAM_ID, kind, PART + part) for part, kind in INSIDE.items()}
        tools = {(PART + tool, "BUILD_TOOL_OF", PROGRAM_ID) for tool in BUILD_TOOLS}
        told = {each for each in self.relations if PROGRAM_ID in each and "SPDXRef-Package" not in each}
        self.assertEqual(inside | tools, told - {(PART + "lld", "BUILD_TOOL_OF", PROGRAM_ID)})
        self.assertLessEqual({each["SPDXID"] for each in self.parts}, {end for each in told for end in each})

    def test_every_part_has_version_and_origin(self) -> None:
        for part in self.parts:
            with self.subTest(part["name"]):
                self.assertRegex(part["versionInfo"], r"^\d")
                self.assertTrue(part["sourceInfo"])
                purls = [each["referenceLocator"] for each in part["externalRefs"]]
                self.assertTrue(purls)
                for purl in purls:
                    self.assertRegex(purl, r"^pkg:(deb/debian|npm|github/[^/]+)/[^/\s+]+$")

    def test_miniz_is_the_version_that_its_header_tells(self) -> None:
        # The release that is called 3.0.2 calls its interface 11.0.2, each number 8 ahead in its first place.
        header = (THIRD_PARTY / "miniz/miniz.h").read_text(encoding="utf-8")
        told = re.search(r'#define MZ_VERSION "(\d+)(\.\d+\.\d+)"', header)
        assert told
        major, rest = told.groups()
        self.assertEqual(f"{int(major) - 8}{rest}", self.elements[PART + "miniz"]["versionInfo"])


if __name__ == "__main__":
    unittest.main()
