"""What the tests of the program as it ships have in common: a screen, a clean account, starts and their ends."""

import zipfile
from collections.abc import Callable, Collection
from dataclasses import dataclass

from bystander import describe
from driver import pages, places
from driver.evidence import ObservedTest
from driver.person import START, Person
from driver.program import Program, left_behind, remove_folder
from driver.waiting import wait_for
from driver.wine import running
from driver.wizard import MessageBox

# What the journal tells of the teardown, from where it begins.
LOCK = ("ReleaseMutex", "CloseHandle mutex")
COM = ("CoUninitialize", *LOCK)
SOCKETS = ("WSACleanup", *COM)
FINISHED = ("PropertySheetW result=1", *SOCKETS)
CANCELLED = ("PropertySheetW result=0", *SOCKETS)

ZIP = "platform-tools_kalvo.zip"
FOLDER = "platform-tools"
ADB = "platform-tools/adb.exe"
MEMBERS = (ADB, "platform-tools/AdbWinApi.dll", "platform-tools/AdbWinUsbApi.dll")
TOOLS = sorted((ZIP, FOLDER, *MEMBERS))

TITLE = pages.TITLE

# The failing steps as the boxes name them.
KNOWN_FOLDER = "CKalvoApkInstaller::GetAppDataLocalFolderPath() > SHGetKnownFolderPath()"
APPEND = "CKalvoApkInstaller::GetAppDataLocalFolderPath() > PathCchAppend()"
CREATE_FOLDER = "CPlatformTools::CreateFolderPath() > SHCreateDirectoryEx()"
CREATE_FILE = "CPlatformTools::WriteZipFileResource() > CreateFile()"
DELETE_FOLDER = "CPlatformTools::DeleteFolder() > SHFileOperation()"
CREATE_PROCESS = "CreateProcess(lpApplicationName, lpCommandLine, ...)"


@dataclass(frozen=True)
class Box:
    """A box of a run. In its text {} stands for what the system says about the code."""

    caption: str
    form: str
    code: int | None = None
    words: Callable[[int], str] = describe

    @property
    def text(self) -> str:
        return self.form.format(self.words(self.code)) if self.code is not None and "{}" in self.form else self.form

    @property
    def line(self) -> str:
        """How the journal tells of it: without owner and with nothing but the OK button."""
        return f"MessageBoxW owner=none flags=0x00000000 caption={_quoted(self.caption)} text={_quoted(self.text)}"


# What a run does that can be seen: a box, or a line of the journal.
Event = str | Box


def last_error(method: str, code: int) -> Box:
    """The box about a system call that failed, with the line break at the end of the system's words."""
    return Box("Error", f"{method} failed with error {code}: {{}}", code)


def win32_error(method: str, code: int) -> Box:
    """The same of calls that return their error."""
    return Box("Win32 Error", f"{method} failed with error 0x{code:08X}: {{}}\r\n", code)


def com_error(method: str, code: int) -> Box:
    """The same of calls that return a result of COM: nothing but the system's words, without the stop at their end."""
    return Box(method, "{}", code, lambda code: describe(code).rstrip().removesuffix("."))


def exit_process(code: int) -> str:
    """The way out that tears nothing down."""
    return f"ExitProcess code={code}"


def way_out(faults: str, code: int, *events: Event, disk: Collection[str] = ()) -> tuple:
    """A row of a table of tests, see ProcessTest.expect_way_out."""
    return faults, code, events, disk


def sudden_end(faults: str, box: Box, *before: Event, disk: Collection[str] = ()) -> tuple:
    """One in which nothing is torn down and nothing is removed after the box."""
    assert box.code is not None
    return way_out(faults, box.code, *before, box, exit_process(box.code), disk=disk)


def _quoted(text: str) -> str:
    for character, escaped in (("\\", "\\\\"), ('"', '\\"'), ("\n", "\\n"), ("\r", "\\r"), ("\t", "\\t")):
        text = text.replace(character, escaped)
    return f'"{text}"'


NOT_INSTALLED = Box(TITLE, "Unable to install Platform Tools")
NOT_REMOVED = Box(TITLE, "Unable to unistall Platform Tools")
OLD_WINDOWS = Box(
    TITLE,
    "This application requires Windows 10 Version 2004 (build 19041) or newer.  Please update Windows on you computer.",
)


class ProcessTest(ObservedTest):
    """Every test begins on an account where the installer never ran."""

    def setUp(self) -> None:
        self.person = Person()
        self.folder = places.working_folder()
        self.clean_account()
        self._boxes = 0

    def clean_account(self) -> None:
        """As if the installer had never run."""
        remove_folder(self.folder)

    def lay(self, *names: str, text: str = "mine") -> None:
        """Files that somebody else has put into the working folder."""
        for name in names:
            file = self.folder / name
            file.parent.mkdir(parents=True, exist_ok=True)
            file.write_text(text)

    def start(self, faults: str = "", largest_file: int | None = None) -> Program:
        """Starts the installer. It is ended with the test."""
        start = self.enterContext(Program(faults, largest_file=largest_file))
        self.enterContext(self.observed(start))
        return start

    def start_wizard(self, faults: str = "") -> Program:
        """Starts the installer and waits for its first page."""
        start = self.start(faults)
        self.wait_for_wizard(start)
        return start

    def wait_for_wizard(self, start: Program) -> None:
        self.person.wait_until(
            "the first page", lambda sight: sight.number == 1 or sight.boxes or start.has_ended, START
        )
        self.assertFalse(start.has_ended, start.journal)
        self.person.wait_for_first_page()

    def wizard_process(self) -> int:
        """The number of the installer's process, whose wizard is open and at rest."""
        frame = self.person.rest().frame
        assert frame, "there is no wizard"
        return frame.process

    def press_escape(self) -> None:
        """In the wizard, which must have the keyboard and goes."""
        self.person.wait_for_keyboard()
        self.person.press("Escape")
        self.person.wait_until("the wizard to go", lambda now: now.frame is None)

    def cancel(self, start: Program) -> None:
        """Leaves the wizard with the Escape key, which must go as it should."""
        self.press_escape()
        self.expect_end(start, 0, *CANCELLED)

    def dismiss_box(self, start: Program, expected: Box) -> None:
        """Waits for a box, which has these words, all to be read, and no owner, and presses Enter."""
        box = self.wait_for_box(start)
        self.assertEqual((box.caption, box.message), (expected.caption, expected.text))
        self.assertEqual(box.window.owner, 0)
        self._boxes += 1
        self.expect_sound(box, f"{self.id().rpartition('.test_')[2]}-{self._boxes}")
        self.person.dismiss(box)

    def wait_for_box(self, start: Program) -> MessageBox:
        sight = self.person.wait_until("a box", lambda sight: sight.boxes or sight.frame or start.has_ended, START)
        self.assertEqual(len(sight.boxes), 1, f"{sight}, {start.journal}")
        return self.person.rest().boxes[0]

    def expect_end(self, start: Program, code: int, *events: Event) -> None:
        """Until it has ended: with this exit code, and before it these boxes and calls in order, nothing besides."""
        start.wait()
        start.check_faults()
        journal = [event if isinstance(event, str) else event.line for event in events]
        self.assertEqual(start.journal, [*journal, f"ended code={code}"])

    def expect_boxes_and_end(self, start: Program, code: int, *events: Event) -> None:
        """The same; each box is read and dismissed."""
        for event in events:
            if isinstance(event, Box):
                self.dismiss_box(start, event)
        self.expect_end(start, code, *events)

    def expect_way_out(self, faults: str, code: int, *events: Event, disk: Collection[str] = ()) -> None:
        """A whole run that shows these boxes, ends so and leaves that on the disk."""
        self.expect_boxes_and_end(self.start(faults), code, *events)
        self.expect_left(*disk)

    def check(self, faults: str, code: int, events: Collection[Event], disk: Collection[str]) -> None:
        self.expect_way_out(faults, code, *events, disk=disk)

    def expect_left(self, *names: str) -> None:
        """That and no more is in the working folder, and adb has ended."""
        self.assertEqual(sorted(left_behind(self.folder)), sorted(names))

    def expect_whole_tools(self) -> None:
        """The tools are there, all of them, as they are in the program."""
        self.expect_left(*TOOLS)
        self.assertIn((self.folder / ZIP).read_bytes(), places.installer().read_bytes())
        with zipfile.ZipFile(self.folder / ZIP) as archive:
            self.assertEqual(tuple(archive.namelist()), MEMBERS)
            for name in MEMBERS:
                self.assertEqual((self.folder / name).read_bytes(), archive.read(name), name)

    def expect_good_run(self) -> None:
        """A run in which nothing goes wrong, whatever was there before: the tools come and go."""
        start = self.start_wizard()
        self.expect_whole_tools()
        self.cancel(start)
        self.expect_nothing_left()

    def expect_nothing_left(self) -> None:
        """No file, and soon no process."""
        self.expect_left()
        wait_for(f"the end of {running()}", lambda: not running())

    def leave_tools_behind(self) -> None:
        """What a run leaves that was killed while its wizard was open."""
        self.start_wizard().kill()
        self.expect_left(*TOOLS)
