"""What the set-up asks of a machine, how the toolchain root is named, and when one is removed."""

import fcntl
import os
import re
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

CHECKOUT = Path(__file__).resolve().parents[2]


class SetupTest(unittest.TestCase):
    """With a checkout of its own, which has only the scripts, and a cache of its own."""

    def setUp(self) -> None:
        self.scratch = Path(self.enterContext(tempfile.TemporaryDirectory()))
        self.checkout = self.scratch / "checkout"
        self.cache = self.scratch / "cache"
        self.stubs = self.scratch / "stubs"
        self.stubs.mkdir()
        shutil.copytree(CHECKOUT / "scripts", self.checkout / "scripts")

    def run_command(self, *command: str | Path) -> subprocess.CompletedProcess[str]:
        environment = {**os.environ, "KALVO_CACHE": str(self.cache), "PATH": f"{self.stubs}:/usr/bin:/bin"}
        return subprocess.run(command, env=environment, capture_output=True, text=True, timeout=30, check=False)

    def run_with(self, libraries: str, script: str) -> str:
        sourced = "; ".join(f". {self.checkout}/scripts/lib/{name}.sh" for name in libraries.split())
        done = self.run_command("bash", "-euo", "pipefail", "-c", f"{sourced}; {script}")
        self.assertEqual(done.returncode, 0, done.stdout + done.stderr)
        return done.stdout

    def stub(self, program: str, script: str) -> None:
        """In the place of a program of the machine."""
        file = self.stubs / program
        file.write_text(f"#!/bin/bash\n{script}\n")
        file.chmod(0o755)


class RootsName(SetupTest):
    def name(self) -> str:
        return self.run_with("common", 'basename "$root"').strip()

    def change(self, pattern: str, replacement: str) -> None:
        recipe = self.checkout / "scripts/lib/recipe.sh"
        changed, times = re.subn(pattern, replacement, recipe.read_text(), flags=re.MULTILINE)
        self.assertGreater(times, 0)
        recipe.write_text(changed)

    def test_stays_with_other_comments_another_order_and_other_files_of_third_parties(self) -> None:
        before = self.name()
        changes = ("^( *)# .*", r"\1# Other words."), ("zip unzip", "unzip zip"), ("miniz.c [0-9a-f]*", "miniz.c 00")
        for change in changes:
            self.change(*change)
            self.assertEqual(self.name(), before, change)

    def test_is_another_with_other_contents(self) -> None:
        changes = (
            ("zip unzip", "zip unzip lzip"),
            ("=trixie", "=forky"),
            ("Nimbus Sans", "Liberation Sans"),
            ("--dpkgopt=path-exclude=/usr/share/info/[*]", ""),
            ("--strip-debug", "--strip-all"),
            ("wineboot -i", "wineboot -u"),
            ("ln -sf", "ln -f"),
            ("mkdir /src", "mkdir /source"),
        )
        names = [self.name()]
        for change in changes:
            self.change(*change)
            names.append(self.name())
        self.assertEqual(len(set(names)), len(changes) + 1, names)


class OldRoots(SetupTest):
    def setUp(self) -> None:
        super().setUp()
        self.other = self.scratch / "other"
        (self.other / "scripts").mkdir(parents=True)

    def make_root(self, name: str) -> Path:
        root = self.cache / name
        (root / "etc").mkdir(parents=True)
        return root

    def note(self, checkout: Path, root: str) -> None:
        notes = self.cache / "checkouts"
        notes.mkdir(parents=True, exist_ok=True)
        (notes / checkout.name).write_text(f"{checkout}\n{root}\n")

    def roots_left(self) -> list[str]:
        self.run_with("common roots", "note_use; remove_unused")
        return sorted(path.name for path in self.cache.iterdir() if path.name != "checkouts")

    def test_one_that_no_checkout_uses_is_removed(self) -> None:
        own = self.run_with("common", 'basename "$root"').strip()
        for name in (own, "debian-others", "debian-gone", "debian-nobodys"):
            self.make_root(name)
        self.note(self.other, "debian-others")
        self.note(self.scratch / "gone", "debian-gone")
        self.assertEqual(self.roots_left(), sorted((own, "debian-others")))
        self.assertFalse((self.cache / "checkouts" / "gone").exists())

    def test_one_of_checkouts_that_leave_no_word_stays(self) -> None:
        self.make_root("root-0123456789ab")
        self.assertEqual(self.roots_left(), ["root-0123456789ab"])

    def test_a_checkout_uses_one_at_a_time(self) -> None:
        self.make_root("debian-before")
        self.run_with("common roots", "root=$cache/debian-before; note_use")
        self.assertEqual(self.roots_left(), [])

    def test_one_in_which_something_runs_stays(self) -> None:
        root = os.open(self.make_root("debian-nobodys"), os.O_RDONLY)
        try:
            fcntl.flock(root, fcntl.LOCK_SH)
            self.assertEqual(self.roots_left(), ["debian-nobodys"])
        finally:
            os.close(root)
        self.assertEqual(self.roots_left(), [])

    def test_what_a_killed_set_up_left_is_removed(self) -> None:
        self.make_root("setup.AbCdEf")
        self.assertEqual(self.roots_left(), [])


class Machine(SetupTest):
    """The tests' own machine has nothing of what set-up needs."""

    def setUp(self) -> None:
        super().setUp()
        self.calls = self.scratch / "calls"
        self.calls.touch()
        for program in ("apt-get", "usermod", "sysctl"):
            self.stub(program, f'echo "{program} $*" >>{self.calls}')

    def be(self, number: int, name: str) -> None:
        self.stub("id", f"case $1 in -u) echo {number} ;; *) echo {name} ;; esac")

    def set_up(self) -> str:
        done = self.run_command(self.checkout / "scripts/setup")
        self.assertEqual(done.returncode, 1, done.stdout + done.stderr)
        self.assertEqual(sorted(path.name for path in self.cache.iterdir()), ["checkouts", "lock"])
        return done.stderr

    def test_an_ordinary_user_is_told_everything_at_once(self) -> None:
        self.be(1000, "anna")
        self.stub("unshare", "echo --map-auto")
        said = self.set_up()
        self.assertRegex(said, r"As root, run:\n    apt-get install .*\bmmdebstrap npm xz-utils\b.* uidmap\n")
        self.assertRegex(said, r"\n    usermod --add-subuids (\d+-\d+) --add-subgids \1 anna\n")
        self.assertNotIn("forbidden", said)
        self.assertEqual(self.calls.read_text(), "")

    def test_forbidden_namespaces_are_told_too(self) -> None:
        self.be(1000, "anna")
        self.stub("unshare", "case $1 in --help) echo --map-auto ;; *) echo 'not permitted' >&2; exit 1 ;; esac")
        said = self.set_up()
        self.assertIn("mmdebstrap", said)
        self.assertIn("are forbidden here: not permitted", said)
        self.assertIn("--security-opt", said)

    def test_root_installs(self) -> None:
        self.be(0, "root")
        self.set_up()
        update, install = self.calls.read_text().splitlines()
        self.assertEqual(update, "apt-get update")
        self.assertRegex(install, r"^apt-get install .*\bmmdebstrap npm xz-utils$")

    def test_an_old_unshare_is_named(self) -> None:
        self.be(1000, "anna")
        self.stub("unshare", "echo --map-users")
        self.assertIn("util-linux 2.38", self.set_up())


class DebianMade(SetupTest):
    def made(self, mirror: str = "") -> list[str]:
        """The words and the sources that mmdebstrap is given."""
        self.stub("mmdebstrap", 'printf "%s\\n" "$@"; [ ! -f "${!#}" ] || cat "${!#}"')
        here = f"scratch={self.scratch}; quietly() {{ \"$@\"; }}; {mirror}"
        return self.run_with("common host", f"{here} make_debian trixie DIR --opt").splitlines()

    def test_every_package_must_be_signed(self) -> None:
        keyring = "/usr/share/keyrings/debian-archive-keyring.gpg"
        *options, suite, folder, mirrors, line = self.made()
        self.assertEqual(options, ["--mode=root", f"--keyring={keyring}", "--opt"])
        self.assertEqual((suite, folder, mirrors), ("trixie", "DIR", str(self.scratch / "sources.list")))
        self.assertRegex(line, rf"^deb \[signed-by={re.escape(keyring)}\] \S+ trixie main$")

    def test_of_mmdebstraps_own_sources_one_stays(self) -> None:
        mode, keyring, hook, *rest = self.made("host_mirror() { :; };")
        self.assertEqual((mode, rest), ("--mode=root", ["--opt", "trixie", "DIR"]))
        self.assertTrue(keyring.startswith("--keyring=/"))
        sources = self.scratch / "etc/apt/sources.list"
        sources.parent.mkdir(parents=True)
        sources.write_text("deb a:b trixie main\ndeb a:b trixie-updates main\ndeb a:c trixie-security main\n")
        self.run_command("sh", "-c", hook.removeprefix("--setup-hook="), "hook", self.scratch)
        self.assertEqual(sources.read_text(), "deb a:b trixie main\n")

    def test_the_mirror_is_known_before_the_first_update(self) -> None:
        lists = [path.name for path in Path("/var/lib/apt/lists").iterdir() if path.is_file()]
        self.assertNotRegex(" ".join(lists), "Packages")
        sources = "".join(file.read_text() for file in Path("/etc/apt").rglob("*.list"))
        self.assertIn(self.run_with("common host", "host_mirror").strip().rstrip("/"), sources)


class InRoot(SetupTest):
    """A root of a few programs."""

    PROGRAMS = ("bash", "env", "flock", "touch")
    FOLDERS = ("dev", "proc", "sys", "tmp", "root", "run", "src", "third-party", "wine-prefix")

    def setUp(self) -> None:
        super().setUp()
        root = self.cache / self.run_with("common", 'basename "$root"').strip()
        for folder in (*(root / name for name in self.FOLDERS), self.cache / "third-party"):
            folder.mkdir(parents=True)
        programs = [f"/usr/bin/{name}" for name in self.PROGRAMS]
        needed = subprocess.run(["ldd", *programs], capture_output=True, text=True, check=True).stdout
        for file in {*programs, *re.findall(r"(/\S+) \(0x", needed)}:
            (root / file[1:]).parent.mkdir(parents=True, exist_ok=True)
            shutil.copy(file, root / file[1:])

    def in_root(self, script: str) -> subprocess.CompletedProcess[str]:
        return self.run_command(self.checkout / "scripts/in-root", "bash", "-ec", script)

    def test_the_exit_status_is_the_commands(self) -> None:
        self.assertEqual(self.in_root("exit 7").returncode, 7)

    def test_only_the_checkout_and_memory_can_be_written(self) -> None:
        done = self.in_root("pwd; touch mark /tmp/mark ~/mark; ! touch /usr/mark /third-party/mark /wine-prefix/mark")
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertEqual(done.stdout, "/src\n")
        self.assertEqual(done.stderr.count("Read-only file system"), 3, done.stderr)
        self.assertTrue((self.checkout / "mark").exists())

    def test_it_holds_the_roots_lock(self) -> None:
        done = self.in_root("! flock --exclusive --nonblock / bash -c : && flock --shared --nonblock / bash -c :")
        self.assertEqual(done.returncode, 0, done.stderr)


if __name__ == "__main__":
    unittest.main()
