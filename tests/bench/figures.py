"""The figures, each with how it is measured. What a round measures is compared with what the same round measured."""

import shutil
import subprocess
import tempfile
import time
from collections.abc import Callable
from dataclasses import dataclass
from pathlib import Path
from statistics import median
from typing import NamedTuple

from driver import pages, places
from driver import program as programs
from driver.answering import Answering
from driver.executable import Executable
from driver.package import write_package
from driver.places import drive_c, home_path, windows_path
from driver.watch import Watch

# What the program itself waits before each adb command and before it looks at a connection.
PAUSE_BEFORE_ADB = 2000.0
PAUSE_BEFORE_POLL = 200.0
ADB_COMMANDS = 6

# Longer than any request takes.
PATIENCE = 120.0

MEBIBYTES = 64
TEXTS = ("line", "lines", "failure")


@dataclass(frozen=True)
class Figure:
    """A row of the table: what was measured, in words, and whether that is enough."""

    name: str
    target: str
    measured: str
    details: str
    reached: bool


def at_most(name: str, target: float, measured: float, form: str, details: str) -> Figure:
    """A figure that had better be small."""
    return Figure(name, f"at most {target:{form}}", f"{measured:{form}}", details, measured <= target)


def at_least(name: str, target: float, measured: float, form: str, details: str) -> Figure:
    """A figure that had better be large."""
    return Figure(name, f"at least {target:{form}}", f"{measured:{form}}", details, measured >= target)


def printed(name: str, measured: str, details: str) -> Figure:
    """A figure that is only to be known."""
    return Figure(name, "printed", measured, details, True)


def archive() -> Path:
    """The tools as the program carries them."""
    return places.build() / "res" / "platform-tools_kalvo.zip"


def milliseconds(action: Callable[[], object]) -> float:
    began = time.perf_counter()
    action()
    return (time.perf_counter() - began) * 1000


def under_launcher(program: str, *arguments: str) -> str:
    """The command line for a program by its path in the home's Windows."""
    return " ".join(f'"{word}"' for word in (home_path(places.launcher()), program, *arguments))


def bench_program(name: str) -> Path:
    """One of this folder's."""
    return places.helper(f"bench/bench-{name}")


class BenchProgram(Answering):
    """One that answers with numbers."""

    def __init__(self, name: str, *arguments: str) -> None:
        super().__init__(bench_program(name), *arguments, patience=PATIENCE)

    def measure(self, *words: object) -> list[float]:
        return [float(number) for number in self.ask("\t".join(map(str, words))).split()]


def install_tools(answering: BenchProgram, folder: Path) -> float:
    """The tools, in an emptied folder of their own."""
    programs.remove_folder(folder)
    return answering.measure("")[0]


def unpacking(rounds: int) -> list[Figure]:
    """CPlatformTools::Install against Info-ZIP's unzip: both write into a folder of the same disk that is not there
    yet. The archive lies on that disk already for unzip; Install writes it first. Of Install the call is timed, of
    unzip the whole program, whose start is the smallest part of it."""
    folder, other = drive_c("bench tools"), drive_c("bench unzip")
    copy = shutil.copy(archive(), drive_c("bench.zip"))

    def unzip() -> float:
        programs.remove_folder(other)
        return milliseconds(lambda: subprocess.run(["unzip", "-q", copy, "-d", other], check=True, timeout=60))

    with BenchProgram("install", windows_path(folder)) as answering:

        def measure() -> tuple[float, float]:
            return install_tools(answering, folder), unzip()

        measure()
        pairs = [measure() for _ in range(rounds)]
    taken = f"{median(a for a, _ in pairs):.1f} ms to {median(b for _, b in pairs):.1f} ms"
    ratio = median(a / b for a, b in pairs)
    return [at_most("`Install`, to `unzip` of the same archive", 0.8, ratio, ".2f", taken)]


def starting(rounds: int) -> list[Figure]:
    """From the start of the process to its first page, against Install and an empty dialog added up. Program and
    dialog are started alike."""
    tools = places.working_folder()
    folder = drive_c("bench tools")
    copy = shutil.copy(places.installer(), drive_c("KalvoApkInstaller.exe"))
    installing = under_launcher(windows_path(Path(copy)))
    empty = under_launcher(home_path(bench_program("dialog")), pages.TITLE)
    unpacker = BenchProgram("install", windows_path(folder))
    with BenchProgram("wizard", pages.TITLE) as driver, unpacker as answering:

        def measure() -> tuple[float, float, float]:
            programs.remove_folder(tools)
            page = driver.measure("start", installing)[0]
            return page, install_tools(answering, folder), driver.measure("dialog", empty)[0]

        measure()
        rows = [measure() for _ in range(rounds)]
    programs.remove_folder(tools)
    page, install, dialog = (median(column) for column in zip(*rows))
    ratio = median(a / (b + c) for a, b, c in rows)
    details = f"{page:.0f} ms to {install:.0f} + {dialog:.0f} ms"
    return [at_most("start to first page, to `Install` and an empty dialog", 1.3, ratio, ".2f", details)]


class JobRound(NamedTuple):
    """Milliseconds and KiB of one way through the wizard, and what they are compared with."""

    adb_alone: float
    job: float
    memory: float
    empty_pages: float
    least_memory: float


def job_rounds(rounds: int, driver: BenchProgram, installer: str, empty: str) -> list[JobRound]:
    """The whole way through the wizard, with nobody in front of it who takes time, on a watch that plays along; the
    adb commands of that way alone; and the same way through as many pages with nothing on them."""
    tools = drive_c("bench tools")
    with Watch() as watch:
        package = write_package(places.downloads())
        with BenchProgram("install", windows_path(tools)) as answering:
            install_tools(answering, tools)
        adb = f'"{windows_path(tools)}\\platform-tools\\adb.exe"'
        address = f"{watch.address}:{watch.port}"

        def take_from_watch() -> None:
            assert watch.has_received(package), watch.events
            watch.store.unlink()

        def do_job() -> list[float]:
            words = (watch.address, watch.port, watch.code, watch.pairing_port)
            taken = driver.measure("job", installer, *words)
            take_from_watch()
            return taken

        def run_adb() -> float:
            commands = (
                "kill-server",
                f"pair {watch.address}:{watch.pairing_port} {watch.code}",
                f"connect {address}",
                f'-s {address} install "{windows_path(package)}"',
                "kill-server",
            )
            taken = sum(driver.measure("run", f"{adb} {command}")[0] for command in commands)
            take_from_watch()
            time.sleep(PAUSE_BEFORE_ADB / 1000)
            return taken + driver.measure("run", f"{adb} kill-server")[0]

        def measure() -> JobRound:
            return JobRound(run_adb(), *do_job(), *driver.measure("pages", empty))

        measure()
        return [measure() for _ in range(rounds)]


def main_job(rounds: int) -> list[Figure]:
    """What the program itself takes of the time and the memory of its whole way."""
    empty = under_launcher(home_path(bench_program("pages")), pages.TITLE)
    installer = under_launcher(windows_path(Path(shutil.copy(places.installer(), places.downloads()))))
    with BenchProgram("wizard", pages.TITLE) as driver:
        rows = job_rounds(rounds, driver, installer, empty)

        def memory_at_first_page() -> tuple[float, float]:
            memory = driver.measure("start", installer)[1]
            programs.remove_folder(places.working_folder())
            return memory, driver.measure("start", empty)[1]

        firsts = [memory_at_first_page() for _ in range(rounds)]
    pauses = ADB_COMMANDS * PAUSE_BEFORE_ADB + PAUSE_BEFORE_POLL
    beyond = median((row.job - pauses - row.adb_alone) / row.job for row in rows) * 100
    share = median((row.job - pauses - row.adb_alone - row.empty_pages) / row.job for row in rows) * 100
    over = median(row.memory - row.least_memory for row in rows) / 1024
    over_at_first = median(memory - least for memory, least in firsts) / 1024
    typical = JobRound(*map(median, zip(*rows)))
    alone = f"adb alone {typical.adb_alone / 1000:.2f} s"
    shares = f"%, of {typical.job / 1000:.2f} s; pauses {pauses / 1000:.1f} s, {alone}"
    empties = f"%; the empty pages take {typical.empty_pages / 1000:.2f} s"
    least = f"14 empty pages have {typical.least_memory / 1024:.1f} MiB"
    carried = f"{archive().stat().st_size / (1 << 20):.1f} MiB"
    written = f"after the archive of {carried} was written out of the program's file"
    at_first = f"{over_at_first:.1f} of it at the first page, {written}"
    return [
        printed("main job: share of the time that is neither a fixed pause nor adb's own", f"{beyond:.1f}", shares),
        at_most("main job: the same without the time for 14 empty pages", 3.0, share, ".1f", empties),
        printed("peak memory through the main job", f"{typical.memory / 1024:.1f} MiB", least),
        printed("peak memory over that of 14 empty pages", f"{over:.1f} MiB", at_first),
    ]


def judging(rounds: int) -> list[Figure]:
    """Adb's output of 64 MiB in one piece, and the same amount in pieces of 1 MiB, in the form that takes longest."""
    with BenchProgram("classify") as classifier:

        def measure(text: str) -> tuple[list[float], list[float]]:
            return classifier.measure(text, MEBIBYTES, 1), classifier.measure(text, 1, MEBIBYTES)

        rows = {}
        for text in TEXTS:
            measure(text)
            rows[text] = [measure(text) for _ in range(rounds)]
    speed = {text: MEBIBYTES * 1.048576 / median(whole[0] for whole, _ in row) * 1000 for text, row in rows.items()}
    growth = max(median(whole[0] / pieces[0] for whole, pieces in row) for row in rows.values())
    stack = {size: max(pair[size][1] for row in rows.values() for pair in row) for size in (0, 1)}
    each = ", ".join(f"{text} {value:.0f}" for text, value in speed.items())
    return [
        at_least("classifying 64 MiB of adb output, MB/s", 300, min(speed.values()), ".0f", each),
        at_most("time for 64 MiB at once, to 64 times 1 MiB", 2.0, growth, ".2f", "1 is linear, 64 would be quadratic"),
        at_most("stack for 64 MiB, to that for 1 MiB", 1.0, stack[0] / stack[1], ".2f", f"{stack[0]:.0f} bytes"),
    ]


def sizes(_: int) -> list[Figure]:
    """The files themselves: the same at every look."""
    program, carried = places.installer().stat().st_size, archive().stat().st_size
    file = Executable(places.installer())
    foreign = [name for name in file.imported_libraries() if name.lower().startswith("lib")]
    symbols = [section.name for section in file.sections if section.name.startswith(("/", ".debug"))]
    assert not foreign and not symbols, f"neither static nor stripped: {foreign} {symbols}"
    with tempfile.TemporaryDirectory() as scratch:
        subprocess.run(["unzip", "-q", archive(), "-d", scratch], check=True)
        zipped = Path(scratch, "zip.zip")
        subprocess.run(["zip", "-9", "-q", "-X", "-D", "-r", zipped, "platform-tools"], check=True, cwd=scratch)
        plain = zipped.stat().st_size
    beyond, less = (program - carried) / 1000, (1 - carried / plain) * 100
    return [
        at_most("program beyond its archive, KB", 255.0, beyond, ".0f", f"{program} - {carried} bytes"),
        at_least("archive smaller than by `zip -9`, %", 2.5, less, ".2f", f"{carried} to {plain} bytes"),
    ]


ALL = {"unpacking": unpacking, "starting": starting, "main_job": main_job, "judging": judging, "sizes": sizes}
