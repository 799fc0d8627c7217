"""The bill of materials: a valid SPDX 2.3 document, and true."""

import hashlib
import io
import re
import unittest
import zipfile
from collections.abc import Iterator
from pathlib import Path

from packing import BUILD, PROGRAM, PackageTest

THIRD_PARTY = Path("/third-party")

# What SPDX 2.3 requires of each kind of element, and what it requires where files were looked into.
DOCUMENT = {"spdxVersion", "dataLicense", "SPDXID", "name", "documentNamespace", "creationInfo"}
CREATION = {"created", "creators"}
PACKAGE = {"SPDXID", "name", "downloadLocation"}
ANALYZED_PACKAGE = PACKAGE | {"packageVerificationCode"}
FILE = {"SPDXID", "fileName", "checksums"}
CHECKSUM = {"algorithm", "checksumValue"}
RELATIONSHIP = {"spdxElementId", "relationshipType", "relatedSpdxElement"}
REFERENCE = {"referenceCategory", "referenceType", "referenceLocator"}
EXTRACTED = {"licenseId", "extractedText"}

# What else it knows of them.
DOCUMENT_MORE = {"packages", "files", "relationships", "hasExtractedLicensingInfos"}
PACKAGE_MORE = {
    "builtDate", "checksums", "comment", "copyrightText", "description", "externalRefs", "filesAnalyzed", "homepage",
    "licenseComments", "licenseConcluded", "licenseDeclared", "licenseInfoFromFiles", "originator", "packageFileName",
    "primaryPackagePurpose", "releaseDate", "sourceInfo", "summary", "supplier", "validUntilDate", "versionInfo",
}
FILE_MORE = {"comment", "copyrightText", "fileTypes", "licenseConcluded", "licenseInfoInFiles", "noticeText"}

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


def real_file(name: str) -> Path:
    """Where a part's file lies: in the build, among what was fetched, or in the system."""
    relative = name.removeprefix("./")
    return next(path for path in (BUILD / relative, THIRD_PARTY / relative, Path("/", relative)) if path.is_file())


class Bill(PackageTest):
    @property
    def elements(self) -> dict[str, dict]:
        return {each["SPDXID"]: each for each in [self.bill, *self.bill["packages"], *self.bill["files"]]}

    def related(self, one: str, kind: str) -> set[str]:
        return {
            each["relatedSpdxElement"]
            for each in self.bill["relationships"]
            if (each["spdxElementId"], each["relationshipType"]) == (one, kind)
        }

    def parts(self) -> Iterator[dict]:
        yield from (each for each in self.bill["packages"] if each["SPDXID"].startswith(PART))

    def require(self, fields: set[str], element: dict) -> None:
        with self.subTest(element.get("SPDXID", str(element)[:60])):
            self.assertEqual(set(), fields - element.keys())
            self.assertEqual([], [key for key in fields if element[key] in ("", [], {}, None)])

    def test_has_what_spdx_requires(self) -> None:
        self.require(DOCUMENT, self.bill)
        self.require(CREATION, self.bill["creationInfo"])
        for package in self.bill["packages"]:
            self.require(ANALYZED_PACKAGE if package.get("filesAnalyzed", True) else PACKAGE, package)
            for reference in package.get("externalRefs", []):
                self.require(REFERENCE, reference)
        for file in self.bill["files"]:
            self.require(FILE, file)
            self.assertIn("SHA1", sums(file))
        for element in [*self.bill["files"], *self.bill["packages"]]:
            for checksum in element.get("checksums", []):
                self.require(CHECKSUM, checksum)
        for relation in self.bill["relationships"]:
            self.require(RELATIONSHIP, relation)
        for extracted in self.bill["hasExtractedLicensingInfos"]:
            self.require(EXTRACTED, extracted)

    def test_has_nothing_that_spdx_does_not_know(self) -> None:
        self.assertEqual(set(), self.bill.keys() - DOCUMENT - DOCUMENT_MORE)
        for package in self.bill["packages"]:
            self.assertEqual(set(), package.keys() - ANALYZED_PACKAGE - PACKAGE_MORE)
        for file in self.bill["files"]:
            self.assertEqual(set(), file.keys() - FILE - FILE_MORE)
        for relation in self.bill["relationships"]:
            self.assertEqual(RELATIONSHIP, relation.keys())

    def test_values_have_the_forms_that_spdx_wants(self) -> None:
        self.assertEqual("SPDX-2.3", self.bill["spdxVersion"])
        self.assertEqual("CC0-1.0", self.bill["dataLicense"])
        self.assertEqual("SPDXRef-DOCUMENT", self.bill["SPDXID"])
        self.assertRegex(self.bill["documentNamespace"], r"^[a-z]+:[^#]+$")
        self.assertRegex(self.bill["creationInfo"]["created"], r"^\d{4}-\d\d-\d\dT\d\d:\d\d:\d\dZ$")
        for creator in self.bill["creationInfo"]["creators"]:
            self.assertRegex(creator, r"^(Person|Organization|Tool): \S")
        for name in self.elements:
            self.assertRegex(name, r"^SPDXRef-[A-Za-z0-9.-]+$")
        for file in self.bill["files"]:
            self.assertRegex(file["fileName"], r"^\./[^/]")
        ids = [each["SPDXID"] for each in [self.bill, *self.bill["packages"], *self.bill["files"]]]
        self.assertEqual(len(ids), len(set(ids)), "an id twice")

    def test_relationships_lead_from_the_document_to_every_element(self) -> None:
        reached, left = set(), {"SPDXRef-DOCUMENT"}
        edges: dict[str, set[str]] = {}
        for each in self.bill["relationships"]:
            self.assertIn(each["relationshipType"], RELATIONS)
            ends = each["spdxElementId"], each["relatedSpdxElement"]
            one, other = reversed(ends) if each["relationshipType"].endswith("_OF") else ends
            edges.setdefault(one, set()).add(other)
        while left:
            reached |= left
            left = set().union(*(edges.get(one, set()) for one in left)) - reached
        self.assertEqual(set(self.elements), reached)

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
        self.assertEqual([], [each["name"] for each in self.parts() if each["licenseDeclared"] in NO_VALUE])

    def test_names_each_file_of_the_archive_with_its_hashes(self) -> None:
        inside = self.related("SPDXRef-Package", "CONTAINS")
        billed = {self.elements[each]["fileName"]: sums(self.elements[each]) for each in inside}
        self.assertEqual({f"./{name}": sums_of(data) for name, data in self.entries.items()}, billed)

    def test_the_package_is_the_archive(self) -> None:
        (described,) = self.related("SPDXRef-DOCUMENT", "DESCRIBES")
        package = self.elements[described]
        self.assertEqual(self.archive.name, package["packageFileName"])
        self.assertEqual(sums_of(self.archive.read_bytes()), sums(package))
        self.assertIn(f"-{package['versionInfo']}-", self.archive.name)

    def test_parts_files_have_the_hashes_of_the_files_that_were_used(self) -> None:
        for part in self.parts():
            files = [self.elements[each] for each in self.related(part["SPDXID"], "CONTAINS")]
            self.assertGreater(len(files), 0, part["name"])
            for file in files:
                with self.subTest(part["name"], file=file["fileName"]):
                    self.assertEqual(sums_of(real_file(file["fileName"]).read_bytes()), sums(file))

    def test_verification_codes_are_those_of_the_files(self) -> None:
        for package in self.bill["packages"]:
            hashes = sorted(sums(self.elements[each])["SHA1"] for each in self.related(package["SPDXID"], "CONTAINS"))
            with self.subTest(package["name"]):
                self.assertEqual(
                    hashlib.sha1("".join(hashes).encode()).hexdigest(),
                    package["packageVerificationCode"]["packageVerificationCodeValue"],
                )

    def test_adb_in_the_program_is_that_of_the_bill(self) -> None:
        data = PROGRAM.read_bytes()
        # The program's resources hold the archive of the tools, uncompressed; its last record is 22 bytes long.
        end = data.rindex(b"PK\5\6") + 22
        with zipfile.ZipFile(io.BytesIO(data[:end])) as tools:
            packed = {Path(name).name: sums_of(tools.read(name)) for name in tools.namelist() if not name.endswith("/")}
        files = [self.elements[each] for each in self.related(PART + "adb", "CONTAINS")]
        self.assertEqual(packed, {Path(file["fileName"]).name: sums(file) for file in files})
        version = self.elements[PART + "adb"]["versionInfo"]
        self.assertGreaterEqual((THIRD_PARTY / "adb/adb.exe").read_bytes().find(f"\0{version}\0".encode()), 0, version)

    def test_says_how_each_part_comes_into_the_program(self) -> None:
        for part, kind in INSIDE.items():
            self.assertIn(PART + part, self.related(PROGRAM_ID, kind))
        inside = self.related(PROGRAM_ID, "CONTAINS") | self.related(PROGRAM_ID, "STATIC_LINK")
        self.assertEqual({PART + part for part in INSIDE}, inside)
        tools = {
            each["spdxElementId"]
            for each in self.bill["relationships"]
            if (each["relationshipType"], each["relatedSpdxElement"]) == ("BUILD_TOOL_OF", PROGRAM_ID)
        }
        self.assertEqual(set(), {PART + tool for tool in BUILD_TOOLS} - tools)
        self.assertEqual({each["SPDXID"] for each in self.parts()}, inside | tools)

    def test_every_part_has_version_and_origin(self) -> None:
        for part in self.parts():
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
