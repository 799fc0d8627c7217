"""Signing, with a certificate made for it: what is signed holds, and what was changed since does not."""

import json
import os
import shutil
import subprocess
import sys
import unittest
import zipfile
from pathlib import Path

from packing import CHECKOUT, PROGRAM, PackageTest, make_package, sha256

PASSWORD = "open sesame, two"
SIGN = CHECKOUT / "package/sign.py"


def openssl(folder: Path, *words: str) -> None:
    subprocess.run(["openssl", *words], cwd=folder, check=True, capture_output=True)


def make_certificates(folder: Path) -> tuple[Path, Path]:
    """A certificate for signing programs, issued by an authority of our own: in a file with both, and alone."""
    (folder / "extensions").write_text("extendedKeyUsage=codeSigning\n", encoding="ascii")
    new = ("-newkey", "rsa:2048", "-noenc")
    authority, maker = ("-subj", "/CN=An authority"), ("-subj", "/CN=A maker of programs")
    openssl(folder, "req", "-x509", *new, "-keyout", "ca.key", "-out", "ca.pem", *authority, "-days", "2")
    openssl(folder, "req", *new, "-keyout", "key", "-out", "request", *maker)
    issuer = ("-CA", "ca.pem", "-CAkey", "ca.key", "-CAcreateserial")
    openssl(folder, "x509", "-req", "-in", "request", *issuer, "-out", "pem", "-days", "2", "-extfile", "extensions")
    export = ("pkcs12", "-export", "-in", "pem", "-inkey", "key", "-passout", f"pass:{PASSWORD}")
    openssl(folder, *export, "-certfile", "ca.pem", "-out", "maker.p12")
    openssl(folder, *export, "-out", "alone.p12")
    return folder / "maker.p12", folder / "alone.p12"


def make_time_stamper(folder: Path) -> tuple[Path, Path]:
    """The certificate and the key of somebody who stamps times, his own authority."""
    usage = ("-addext", "extendedKeyUsage=critical,timeStamping", "-addext", "keyUsage=digitalSignature")
    words = ("-newkey", "rsa:2048", "-noenc", "-keyout", "clock.key", "-out", "clock.pem", "-days", "2")
    openssl(folder, "req", "-x509", *words, "-subj", "/CN=A clock", *usage)
    return folder / "clock.pem", folder / "clock.key"


class Signature(PackageTest):
    certificate: Path
    certificate_alone: Path
    password: Path
    signed: Path

    @classmethod
    def setUpClass(cls) -> None:
        super().setUpClass()
        cls.certificate, cls.certificate_alone = make_certificates(cls.folder)
        cls.password = cls.folder / "password"
        cls.password.write_text(PASSWORD + "\n", encoding="ascii")
        cls.signed = cls.folder / "signed.exe"
        done = cls.sign(cls.signed)
        assert done.returncode == 0, done.stderr

    @classmethod
    def sign(
        cls, signed: Path, password: Path | None = None, certificate: Path | None = None, **surroundings
    ) -> subprocess.CompletedProcess:
        secret = ("--certificate", certificate or cls.certificate, "--password", password or cls.password)
        words = [str(word) for word in (sys.executable, "-B", SIGN, "sign", PROGRAM, signed, *secret)]
        return subprocess.run(words, capture_output=True, text=True, **surroundings)

    def check(self, signed: Path) -> subprocess.CompletedProcess:
        words = [str(word) for word in (sys.executable, "-B", SIGN, "check", PROGRAM, signed)]
        return subprocess.run(words, capture_output=True, text=True)

    def changed(self, offset: int, source: Path) -> Path:
        data = bytearray(source.read_bytes())
        data[offset] ^= 1
        changed = self.folder / "changed.exe"
        changed.write_bytes(data)
        return changed

    def test_what_is_signed_is_verified(self) -> None:
        self.assertEqual(0, self.check(self.signed).returncode)

    def test_is_the_makers_by_the_authority(self) -> None:
        verify = ["osslsigncode", "verify", "-ignore-crl", "-CAfile", str(self.folder / "ca.pem"), "-in", str(self.signed)]
        answer = subprocess.run(verify, capture_output=True, text=True)
        self.assertEqual(0, answer.returncode, answer.stdout)
        self.assertIn("Subject: /CN=A maker of programs", answer.stdout)
        self.assertIn("Message digest algorithm  : SHA256", answer.stdout)

    def test_an_unsigned_program_is_not_verified(self) -> None:
        self.assertNotEqual(0, self.check(PROGRAM).returncode)

    def test_a_changed_byte_fails(self) -> None:
        size = PROGRAM.stat().st_size
        for offset in (0x50, size // 2, size - 1):
            with self.subTest(offset=offset):
                answer = self.check(self.changed(offset, self.signed))
                self.assertNotEqual(0, answer.returncode)
                self.assertIn("MISMATCH", answer.stderr)

    def test_a_changed_byte_of_the_signature_fails(self) -> None:
        # Its last bytes may be padding.
        self.assertNotEqual(0, self.check(self.changed(self.signed.stat().st_size - 64, self.signed)).returncode)

    def test_a_well_signed_other_program_fails(self) -> None:
        other = self.folder / "other.exe"
        sign = ["osslsigncode", "sign", "-pkcs12", self.certificate, "-readpass", self.password]
        source = self.changed(PROGRAM.stat().st_size // 2, PROGRAM)
        subprocess.run([*map(str, sign), "-in", source, "-out", other], check=True, capture_output=True)
        self.assertIn("without its signature is not", self.check(other).stderr)

    def test_without_the_signature_the_bytes_are_those_of_the_hashes(self) -> None:
        bare = self.folder / "bare.exe"
        words = ["osslsigncode", "remove-signature", "-in", str(self.signed), "-out", str(bare)]
        subprocess.run(words, check=True, capture_output=True)
        lines = (self.output / "SHA256SUMS").read_text(encoding="ascii").splitlines()
        hashes = {name: value for value, name in (line.split() for line in lines)}
        self.assertEqual(hashes[PROGRAM.name], sha256(bare.read_bytes()))

    def test_a_time_stamp_added_later_is_packed_as_well(self) -> None:
        certificate, key = make_time_stamper(self.folder)
        stamped = self.folder / "stamped.exe"
        stamp = ["osslsigncode", "add", "-TSA-certs", certificate, "-TSA-key", key, "-in", self.signed, "-out", stamped]
        subprocess.run([*map(str, stamp)], check=True, capture_output=True)
        self.assertNotEqual(sha256(self.signed.read_bytes()), sha256(stamped.read_bytes()))
        answer = self.check(stamped)
        self.assertEqual(0, answer.returncode, answer.stderr)

    def test_the_signed_package_differs_in_the_program_alone(self) -> None:
        output = self.folder / "package of the signed"
        make_package(output, "--program", str(self.signed))
        with zipfile.ZipFile(output / self.archive.name) as archive:
            entries = {name: sha256(archive.read(name)) for name in archive.namelist()}
        unsigned = {name: sha256(data) for name, data in self.entries.items()}
        self.assertEqual(unsigned | {PROGRAM.name: sha256(self.signed.read_bytes())}, entries)
        subprocess.run(["sha256sum", "--check", "--strict", "--quiet", "SHA256SUMS"], cwd=output, check=True)
        remark = (output / "SHA256SUMS").read_text(encoding="ascii").splitlines()[-1]
        bare = sha256(PROGRAM.read_bytes())
        self.assertEqual(f"# {PROGRAM.name} without its signature: {bare}", remark)
        (paper,) = output.glob("*.spdx.json")
        bill = json.loads(paper.read_text(encoding="utf-8"))
        (program,) = (each for each in bill["files"] if each["fileName"] == f"./{PROGRAM.name}")
        self.assertIn(sha256(self.signed.read_bytes()), [each["checksumValue"] for each in program["checksums"]])

    def test_a_wrong_password_leaves_nothing(self) -> None:
        wrong = self.folder / "wrong"
        wrong.write_text("guessed\n", encoding="ascii")
        signed = self.folder / "not signed.exe"
        self.assertNotEqual(0, self.sign(signed, wrong).returncode)
        self.assertFalse(signed.exists())

    def test_a_certificate_without_its_issuers_leaves_nothing(self) -> None:
        signed = self.folder / "not signed.exe"
        answer = self.sign(signed, certificate=self.certificate_alone)
        self.assertIn("unable to get local issuer certificate", answer.stderr)
        self.assertNotEqual(0, answer.returncode)
        self.assertFalse(signed.exists())

    def test_the_password_may_come_through_a_pipe_and_is_no_argument(self) -> None:
        spy = self.folder / "spy"
        spy.mkdir()
        heard = self.folder / "heard"
        for name in ("osslsigncode", "openssl"):
            script = f'#!/bin/sh\necho "$0 $*" >>"{heard}"\nexec {shutil.which(name)} "$@"\n'
            (spy / name).write_text(script, encoding="ascii")
            (spy / name).chmod(0o755)
        reading, writing = os.pipe()
        with open(reading, "rb") as password:
            os.write(writing, PASSWORD.encode())
            os.close(writing)
            done = self.sign(
                self.folder / "by pipe.exe",
                Path(f"/dev/fd/{password.fileno()}"),
                pass_fds=[password.fileno()],
                env={**os.environ, "PATH": f"{spy}:{os.environ['PATH']}"},
            )
        self.assertEqual(0, done.returncode, done.stderr)
        self.assertIn("osslsigncode sign", heard.read_text())
        self.assertNotIn(PASSWORD, heard.read_text())


if __name__ == "__main__":
    unittest.main()
