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


def _file(spdx_id: str, name: str, data: bytes, concluded: str) -> dict:
    return {
        "SPDXID": spdx_id,
        "fileName": f"./{name.lstrip('/')}",
        "checksums": _checksums(data),
        "licenseConcluded": concluded,
        "licenseInfoInFiles": [UNKNOWN],
        "copyrightText": UNKNOWN,
    }


def _verification_code(files: list[dict]) -> dict:
    hashes = sorted(file["checksums"][0]["checksumValue"] for file in files)
    return {"packageVerificationCodeValue": hashlib.sha1("".join(hashes).encode()).hexdigest()}


def _relation(one: str, kind: str, other: str) -> dict:
    return {"spdxElementId": one, "relationshipType": kind, "relatedSpdxElement": other}


def _part_package(part: parts.Part, files: list[dict]) -> dict:
    """A part as a package. Its files are those that are used, not all that its makers hand out."""
    return {
        "SPDXID": _id("Part", part.key),
        "name": part.name,
        "versionInfo": part.version,
        # Package managers fetch the parts from where the machine is told to; the references name them.
        "downloadLocation": UNKNOWN,
        "homepage": part.home,
        "sourceInfo": part.origin,
        "filesAnalyzed": True,
        "packageVerificationCode": _verification_code(files),
        "licenseConcluded": UNKNOWN,
        "licenseInfoFromFiles": [UNKNOWN],
        "licenseDeclared": part.license,
        "copyrightText": UNKNOWN,
        "externalRefs": [
            {"referenceCategory": "PACKAGE-MANAGER", "referenceType": "purl", "referenceLocator": purl}
            for purl in part.purls
        ],
        **({"comment": f"The license's text: LICENSES/{part.key}.txt"} if part.text else {}),
    }


def _part_file_name(path: Path, build: Path) -> str:
    for top in (build, parts.THIRD_PARTY):
        if path.is_relative_to(top):
            return str(path.relative_to(top))
    return str(path)


def _own_package(name: str, version: str, archive: Path, files: list[dict]) -> dict:
    return {
        "SPDXID": PACKAGE,
        "name": name,
        "versionInfo": version,
        "packageFileName": archive.name,
        "supplier": "Organization: KALVO",
        "downloadLocation": UNKNOWN,
        "filesAnalyzed": True,
        "packageVerificationCode": _verification_code(files),
        "checksums": _checksums(archive.read_bytes()),
        "licenseConcluded": UNKNOWN,
        "licenseInfoFromFiles": [UNKNOWN],
        "licenseDeclared": UNKNOWN,
        "copyrightText": UNKNOWN,
        "primaryPackagePurpose": "APPLICATION",
    }


def _license_references(contents: list[parts.Part]) -> list[dict]:
    """The texts of the licenses that SPDX has no name for."""
    return [
        {"licenseId": part.license, "name": part.name, "extractedText": part.text().decode()}
        for part in contents
        if part.text and part.license.startswith("LicenseRef-")
    ]


def make_bill(
    archive: Path, entries: dict[str, bytes], version: str, date: str, contents: list[parts.Part], build: Path
) -> dict:
    """The bill of one archive: what is in it, and what it was made from and with."""
    own_files = [_file(_id("File", name), name, data, UNKNOWN) for name, data in entries.items()]
    program = _id("File", "KalvoApkInstaller.exe")
    packages = [_own_package("KalvoApkInstaller", version, archive, own_files)]
    files = list(own_files)
    relations = [_relation(DOCUMENT, "DESCRIBES", PACKAGE)]
    relations += [_relation(PACKAGE, "CONTAINS", file["SPDXID"]) for file in own_files]
    for part in contents:
        names = {_part_file_name(path, build): path for path in part.files}
        part_files = [
            _file(_id("File", part.key, name), name, path.read_bytes(), UNKNOWN) for name, path in names.items()
        ]
        package = _part_package(part, part_files)
        packages.append(package)
        files += part_files
        relations += [_relation(package["SPDXID"], "CONTAINS", file["SPDXID"]) for file in part_files]
        for kind in (part.relation, *part.also):
            tool = kind == parts.BUILD_TOOL
            one, other = (package["SPDXID"], program) if tool else (program, package["SPDXID"])
            relations.append(_relation(one, kind, other))
    digest = hashlib.sha256(archive.read_bytes()).hexdigest()
    return {
        "spdxVersion": "SPDX-2.3",
        "dataLicense": "CC0-1.0",
        "SPDXID": DOCUMENT,
        "name": archive.stem,
        "documentNamespace": f"urn:uuid:{uuid.uuid5(uuid.NAMESPACE_OID, digest)}",
        "creationInfo": {"created": f"{date}T00:00:00Z", "creators": ["Organization: KALVO", "Tool: scripts-package"]},
        "packages": packages,
        "files": files,
        "relationships": relations,
        "hasExtractedLicensingInfos": _license_references(contents),
    }
