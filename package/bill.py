"""The bill of materials, SPDX 2.3 in JSON."""

import hashlib
import re
import uuid
from pathlib import Path

import parts

DOCUMENT = "SPDXRef-DOCUMENT"
PACKAGE = "SPDXRef-Package"
UNKNOWN = "NOASSERTION"


def _id(*words: str) -> str:
    return "SPDXRef-" + re.sub(r"[^A-Za-z0-9.-]", "-", "-".join(words))


def _checksums(data: bytes) -> list[dict]:
    # SPDX wants SHA-1 of every file; what to rely on is the other.
    return [
        {"algorithm": "SHA1", "checksumValue": hashlib.sha1(data).hexdigest()},
        {"algorithm": "SHA256", "checksumValue": hashlib.sha256(data).hexdigest()},
    ]


def _file(spdx_id: str, name: str, data: bytes) -> dict:
    return {
        "SPDXID": spdx_id,
        "fileName": f"./{name.lstrip('/')}",
        "checksums": _checksums(data),
        "licenseConcluded": UNKNOWN,
        "licenseInfoInFiles": [UNKNOWN],
        "copyrightText": UNKNOWN,
    }


def _package(spdx_id: str, name: str, version: str, files: list[dict], **more) -> dict:
    hashes = sorted(file["checksums"][0]["checksumValue"] for file in files)
    return {
        "SPDXID": spdx_id,
        "name": name,
        "versionInfo": version,
        # Package managers fetch the parts from where the machine is told to; the references name them.
        "downloadLocation": UNKNOWN,
        "filesAnalyzed": True,
        "packageVerificationCode": {"packageVerificationCodeValue": hashlib.sha1("".join(hashes).encode()).hexdigest()},
        "licenseConcluded": UNKNOWN,
        "licenseInfoFromFiles": [UNKNOWN],
        "licenseDeclared": UNKNOWN,
        "copyrightText": UNKNOWN,
        **more,
    }


def _part_package(part: parts.Part, files: list[dict]) -> dict:
    """A part as a package. Its files are those that are used, not all that its makers hand out."""
    comment = {"comment": f"The license's text: LICENSES/{part.key}.txt"} if part.text else {}
    return _package(
        _id("Part", part.key),
        part.name,
        part.version,
        files,
        homepage=part.home,
        sourceInfo=part.origin,
        licenseDeclared=part.license,
        externalRefs=[
            {"referenceCategory": "PACKAGE-MANAGER", "referenceType": "purl", "referenceLocator": purl}
            for purl in part.purls
        ],
        **comment,
    )


def _part_files(part: parts.Part, build: Path) -> list[dict]:
    files = []
    for path in part.files:
        top = next((top for top in (build, parts.THIRD_PARTY) if path.is_relative_to(top)), None)
        name = str(path.relative_to(top) if top else path)
        files.append(_file(_id("File", part.key, name), name, path.read_bytes()))
    return files


def _relations(one: str, kind: str, others: list[dict]) -> list[dict]:
    return [
        {"spdxElementId": one, "relationshipType": kind, "relatedSpdxElement": other["SPDXID"]} for other in others
    ]


def make_bill(
    archive: Path, entries: dict[str, bytes], version: str, date: str, contents: list[parts.Part], build: Path
) -> dict:
    """The bill of one archive: what is in it, and what it was made from and with."""
    data = archive.read_bytes()
    files = [_file(_id("File", name), name, entry) for name, entry in entries.items()]
    (program,) = (file for file in files if file["fileName"] == "./KalvoApkInstaller.exe")
    own = {"packageFileName": archive.name, "supplier": "Organization: KALVO", "primaryPackagePurpose": "APPLICATION"}
    packages = [_package(PACKAGE, "KalvoApkInstaller", version, files, checksums=_checksums(data), **own)]
    relations = _relations(DOCUMENT, "DESCRIBES", packages) + _relations(PACKAGE, "CONTAINS", files)
    for part in contents:
        part_files = _part_files(part, build)
        package = _part_package(part, part_files)
        packages.append(package)
        files += part_files
        relations += _relations(package["SPDXID"], "CONTAINS", part_files)
        for kind in part.relations:
            one, other = (package, program) if kind == parts.BUILD_TOOL else (program, package)
            relations += _relations(one["SPDXID"], kind, [other])
    return {
        "spdxVersion": "SPDX-2.3",
        "dataLicense": "CC0-1.0",
        "SPDXID": DOCUMENT,
        "name": archive.stem,
        "documentNamespace": f"urn:uuid:{uuid.uuid5(uuid.NAMESPACE_OID, hashlib.sha256(data).hexdigest())}",
        "creationInfo": {"created": f"{date}T00:00:00Z", "creators": ["Organization: KALVO", "Tool: scripts-package"]},
        "packages": packages,
        "files": files,
        "relationships": relations,
        # The texts of the licenses that SPDX has no name for.
        "hasExtractedLicensingInfos": [
            {"licenseId": part.license, "name": part.name, "extractedText": part.text().decode()}
            for part in contents
            if part.text and part.license.startswith("LicenseRef-")
        ],
    }
