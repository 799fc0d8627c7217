"""Makes one small mistake at a time in the product, and looks whether a unit test turns red.

    mutate.py COUNT SEED

Works on the checkout that it stands in, which must be built; scripts/mutate gives it a copy. The seed decides which
mistakes are made. A mistake that no unit test notices is printed with its lines: it is a gap in the tests, makes no
difference, or is noticed by the tests of the whole program, which are not run here.
"""

import random
import subprocess
import sys
import time
from collections import Counter
from pathlib import Path

from changes import Change, changes_of

CHECKOUT = Path(__file__).resolve().parents[2]
FOLDERS = ("app", "tools", "adb", "net", "wizard")
PROGRAMS = ("unit-wizard", "unit-app", "unit-tools", "unit-net", "unit-adb", "unit-res")


def run(*command: str) -> subprocess.CompletedProcess:
    return subprocess.run(command, cwd=CHECKOUT, stdin=subprocess.DEVNULL, capture_output=True, text=True, check=False)


def chosen(count: int, seed: int) -> list[Change]:
    """That many changes in as many lines, file by file: each file is then compiled as it was only once."""
    files = sorted(file for folder in FOLDERS for file in (CHECKOUT / folder).rglob("*.*") if file.suffix in (".cpp", ".h"))
    lines = [line for file in files for line in changes_of(CHECKOUT, file.relative_to(CHECKOUT))]
    choice = random.Random(seed)
    changes = []
    for line in choice.sample(lines, min(count, len(lines))):
        # By kind first, else a long text would have nothing but its characters changed.
        kind = choice.choice(sorted({change.kind for change in line}))
        changes.append(choice.choice([change for change in line if change.kind == kind]))
    return sorted(changes, key=lambda change: (str(change.file), change.line))


def verdict_of(program: str) -> str:
    """What one program of tests says of the sources as they are."""
    built = run("cmake", "--build", "build", "--target", program)
    if built.returncode != 0:
        return "did not compile"
    tested = run("ctest", "--test-dir", "build", "-R", f"^{program}$", "--output-on-failure", "--no-tests=error")
    if tested.returncode == 0:
        return ""
    return f"caught by {program}" + (", in which it hangs" if "***Timeout" in tested.stdout else "")


def verdict(folder: str) -> str:
    """The same of all programs, of the folder's own first; the first that is red ends it."""
    programs = sorted(PROGRAMS, key=lambda program: program != f"unit-{folder}")
    return next(filter(None, map(verdict_of, programs)), "survived")


def judge(change: Change) -> str:
    file = CHECKOUT / change.file
    as_it_was = file.read_bytes()
    lines = as_it_was.decode("utf-8").split("\n")
    lines[change.line] = change.after
    try:
        file.write_text("\n".join(lines), encoding="utf-8")
        return verdict(change.file.parts[0])
    finally:
        file.write_bytes(as_it_was)


def tell(number: int, change: Change, said: str, seconds: float) -> None:
    print(f"{number:3}  {change.file}:{change.line + 1}  {change.kind}: {said} ({seconds:.0f} s)", flush=True)
    print(f"     - {change.before.strip()}\n     + {change.after.strip()}", flush=True)


def main(count: int, seed: int) -> int:
    if (said := verdict("")) != "survived":
        print(f"without any change: {said}", file=sys.stderr)
        return 1
    verdicts = []
    for number, change in enumerate(chosen(count, seed), start=1):
        begin = time.monotonic()
        said = judge(change)
        verdicts.append((change, said))
        tell(number, change, said, time.monotonic() - begin)
    counts = Counter(said.partition(",")[0].split(" by ")[0] for _, said in verdicts)
    print(f"seed {seed}, {len(verdicts)} changes:", ", ".join(f"{counts[said]} {said}" for said in sorted(counts)))
    for change, said in verdicts:
        if said == "survived":
            print(f"  {change.file}:{change.line + 1}\n    - {change.before.strip()}\n    + {change.after.strip()}")
    return 0


if __name__ == "__main__":
    sys.exit(main(*map(int, sys.argv[1:])))
