"""Signing, with a certificate made for it: what is signed holds, and what was changed since does not."""

import os
import shutil
import sys
import unittest
from pathlib import Path

from packing import CHECKOUT, PROGRAM, PackageTest, bill_in, entries_of, hashes, make_package, run, sha256

PASSWORD = "open sesame, two"
SIGN = (sys.executable, "-B", CHECKOUT / "package/sign.py")


def make_certificate(folder: Path, name: str, subject: str, *words: str) -> None:
    """NAME.pem and its NAME.key."""
    new = ("-newkey", "rsa:2048", "-noenc", "-keyout", f"{name}.key", "-out", f"{name}.pem", "-subj", f"/CN={subject}")
    run("openssl", "req", "-x509", *new, "-days", "2", *words, cwd=folder)


class Signature(PackageTest):
    certificate: Path
    certificate_alone: Path
    password: Path
    signed: Path

    @classmethod
    def setUpClass(cls) -> None:
        super().setUpClass()
        cls.certificate, cls.certificate_alone = cls.make_certificates()
        cls.password = cls.folder / "password"
        cls.password.write_text(PASSWORD + "\n", encoding="ascii")
        cls.signed = cls.folder / "signed.exe"
        cls.sign(cls.signed)

    @classmethod
    def make_certificates(cls) -> tuple[Path, Path]:
        """A certificate for signing programs, issued by an authority of our own: in a file with both, and alone."""
        usage = ("-addext", "extendedKeyUsage=codeSigning", "-addext", "basicConstraints=critical,CA:FALSE")
        make_certificate(cls.folder, "authority", "An authority")
        make_certificate(
            cls.folder, "maker", "A maker of programs", "-CA", "authority.pem", "-CAkey", "authority.key", *usage
        )
        export = ("-export", "-in", "maker.pem", "-inkey", "maker.key", "-passout", f"pass:{PASSWORD}")
        run("openssl", "pkcs12", *export, "-certfile", "authority.pem", "-out", "maker.p12", cwd=cls.folder)
        run("openssl", "pkcs12", *export, "-out", "alone.p12", cwd=cls.folder)
        return cls.folder / "maker.p12", cls.folder / "alone.p12"

    @classmethod
    def sign(cls, signed: Path, password: Path | None = None, certificate: Path | None = None, **surroundings) -> str:
        secret = ("--certificate", certificate or cls.certificate, "--password", password or cls.password)
        return run(*SIGN, "sign", PROGRAM, signed, *secret, **surroundings)

    def check(self, signed: Path, well: bool = True) -> str:
        return run(*SIGN, "check", PROGRAM, signed, well=well)

    def changed(self, offset: int, source: Path) -> Path:
        data = bytearray(source.read_bytes())
        data[offset] ^= 1
        changed = self.folder / "changed.exe"
        changed.write_bytes(data)
        return changed

    def test_what_is_signed_is_verified_and_the_makers_by_the_authority(self) -> None:
        self.check(self.signed)
        authority = ("-ignore-crl", "-CAfile", self.folder / "authority.pem")
        said = run("osslsigncode", "verify", *authority, "-in", self.signed)
        self.assertIn("Subject: /CN=A maker of programs", said)
        self.assertIn("Message digest algorithm  : SHA256", said)

    def test_what_was_changed_since_is_not_verified(self) -> None:
        size = PROGRAM.stat().st_size
        for offset in (0x50, size // 2, size - 1):
            with self.subTest(offset=offset):
                self.assertIn("MISMATCH", self.check(self.changed(offset, self.signed), well=False))
        # The signature's last bytes may be padding.
        self.check(self.changed(self.signed.stat().st_size - 64, self.signed), well=False)

    def test_another_program_is_not_verified_unsigned_or_well_signed(self) -> None:
        self.check(PROGRAM, well=False)
        other = self.folder / "other.exe"
        source = self.changed(PROGRAM.stat().st_size // 2, PROGRAM)
        signer = ("-pkcs12", self.certificate, "-readpass", self.password)
        run("osslsigncode", "sign", *signer, "-in", source, "-out", other)
        self.assertIn("without its signature is not", self.check(other, well=False))

    def test_a_time_stamp_added_later_is_packed_as_well(self) -> None:
        usage = ("-addext", "extendedKeyUsage=critical,timeStamping", "-addext", "keyUsage=digitalSignature")
        make_certificate(self.folder, "clock", "A clock", *usage)
        clock = ("-TSA-certs", self.folder / "clock.pem", "-TSA-key", self.folder / "clock.key")
        stamped = self.folder / "stamped.exe"
        run("osslsigncode", "add", *clock, "-in", self.signed, "-out", stamped)
        self.assertNotEqual(sha256(self.signed.read_bytes()), sha256(stamped.read_bytes()))
        self.check(stamped)

    def test_the_signed_package_differs_in_the_program_alone(self) -> None:
        output = self.folder / "package of the signed"
        make_package(output, "--program", self.signed)
        signed = sha256(self.signed.read_bytes())
        self.assertEqual(
            hashes(self.entries) | {PROGRAM.name: signed}, hashes(entries_of(output / self.archive.name))
        )
        run("sha256sum", "--check", "--strict", "--quiet", "SHA256SUMS", cwd=output)
        remark = (output / "SHA256SUMS").read_text(encoding="ascii").splitlines()[-1]
        self.assertEqual(f"# {PROGRAM.name} without its signature: {sha256(PROGRAM.read_bytes())}", remark)
        (program,) = (each for each in bill_in(output)["files"] if each["fileName"] == f"./{PROGRAM.name}")
        self.assertIn(signed, [each["checksumValue"] for each in program["checksums"]])

    def test_what_cannot_be_signed_leaves_nothing(self) -> None:
        wrong = self.folder / "wrong"
        wrong.write_text("guessed\n", encoding="ascii")
        signed = self.folder / "not signed.exe"
        for what, said, secret in (
            ("a wrong password", "Wrong password", {"password": wrong}),
            ("without its issuers", "unable to get local issuer certificate", {"certificate": self.certificate_alone}),
        ):
            with self.subTest(what):
                self.assertIn(said, self.sign(signed, **secret, well=False))
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
            self.sign(
                self.folder / "by pipe.exe",
                Path(f"/dev/fd/{password.fileno()}"),
                pass_fds=[password.fileno()],
                env={**os.environ, "PATH": f"{spy}:{os.environ['PATH']}"},
            )
        self.assertIn("osslsigncode sign", heard.read_text())
        self.assertNotIn(PASSWORD, heard.read_text())


if __name__ == "__main__":
    unittest.main()
