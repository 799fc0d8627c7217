#!/usr/bin/env python3
"""Signs the built program with Authenticode, and checks a signed one.

    sign.py sign BUILT SIGNED --certificate FILE.p12 --password FILE
    sign.py check BUILT SIGNED

Signing ends with the check: the signature fits the file, its certificates lead from the signer's to
one that is its own issuer, and without the signature SIGNED is BUILT, byte for byte. Whether Windows
trusts the last certificate is not judged. Ends with 0 only if all is right; nothing is asked of the
network. SIGNED is written anew; what fails the check after signing is deleted.

The password stands in a file, which may be a pipe, never among the arguments: those every user of
the machine can read.
"""

import argparse
import subprocess
import tempfile
from pathlib import Path

DESCRIPTION = "KALVO Solvane Android Watch Installer"


def run(*words: str | Path) -> str:
    # Descriptors are handed on, for the certificate and the password may be such: /dev/fd/3.
    done = subprocess.run(words, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, close_fds=False)
    if done.returncode != 0:
        raise SystemExit(f"{done.stdout}\n{words[0]} {words[1]} failed")
    return done.stdout


def sign(built: Path, signed: Path, certificate: Path, password: Path) -> None:
    signed.unlink(missing_ok=True)  # osslsigncode writes over no file
    what = ("-in", built, "-out", signed)
    run("osslsigncode", "sign", "-pkcs12", certificate, "-readpass", password, "-h", "sha256", "-n", DESCRIPTION, *what)


def check(built: Path, signed: Path) -> None:
    with tempfile.TemporaryDirectory() as scratch:
        signature, chain, bare = (Path(scratch) / name for name in ("signature", "chain", "bare"))
        run("osslsigncode", "extract-signature", "-pem", "-in", signed, "-out", signature)
        run("openssl", "pkcs7", "-in", signature, "-print_certs", "-out", chain)
        offline = ("-ignore-cdp", "-ignore-crl")
        run("osslsigncode", "verify", *offline, "-CAfile", chain, "-in", signed)
        run("osslsigncode", "remove-signature", "-in", signed, "-out", bare)
        if bare.read_bytes() != built.read_bytes():
            raise SystemExit(f"{signed} without its signature is not {built}: another program, or {built} has a "
                             "wrong checksum in its header, which signing sets right")


def main() -> None:
    arguments = argparse.ArgumentParser()
    arguments.add_argument("command", choices=("sign", "check"))
    arguments.add_argument("built", type=Path)
    arguments.add_argument("signed", type=Path)
    arguments.add_argument("--certificate", type=Path)
    arguments.add_argument("--password", type=Path)
    given = arguments.parse_args()
    if given.command == "sign":
        sign(given.built, given.signed, given.certificate, given.password)
    try:
        check(given.built, given.signed)
    except SystemExit:
        if given.command == "sign":
            given.signed.unlink()
        raise


if __name__ == "__main__":
    main()
