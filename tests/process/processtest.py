"""What the tests of the program as it ships have in common: a screen, a clean account, starts and their ends."""

import zipfile
from collections.abc import Collection

import looks
import pages
import places
import program
from bystander import describe
from evidence import ObservedTest
from eyes import Eyes
from person import Person
from start import Start, running
from waiting import wait_for
from wizard import MessageBox

# Until a window is there; the machine may be busy with other tests.
SOON = 40.0

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
OLD_WINDOWS = (
    "This application requires Windows 10 Version 2004 (build 19041) or newer.  Please update Windows on you computer."
)
NOT_INSTALLED = "Unable to install Platform Tools"
NOT_REMOVED = "Unable to unistall Platform Tools"

# The failing steps as the boxes name them.
KNOWN_FOLDER = "CKalvoApkInstaller::GetAppDataLocalFolderPath() > SHGetKnownFolderPath()"
APPEND = "CKalvoApkInstaller::GetAppDataLocalFolderPath() > PathCchAppend()"
CREATE_FOLDER = "CPlatformTools::CreateFolderPath() > SHCreateDirectoryEx()"
CREATE_FILE = "CPlatformTools::WriteZipFileResource() > CreateFile()"
DELETE_FOLDER = "CPlatformTools::DeleteFolder() > SHFileOperation()"
CREATE_PROCESS = "CreateProcess(lpApplicationName, lpCommandLine, ...)"


# What a run does that can be seen: a box, by its caption and text, or a line of the journal.
Event = str | tuple[str, str]


def last_error(method: str, code: int) -> tuple[str, str]:
    """The box about a system call that failed, with the line break at the end of the system's words."""
    return ("Error", f"{method} failed with error {code}: {describe(code)}")


def win32_error(method: str, code: int) -> tuple[str, str]:
    """The same of calls that return their error."""
    return ("Win32 Error", f"{method} failed with error 0x{code:08X}: {describe(code)}\r\n")


def com_error(method: str, code: int) -> tuple[str, str]:
    """The same of calls that return a result of COM: nothing but the system's words, without the stop at their end."""
    return (method, describe(code).rstrip().removesuffix("."))


def exit_process(code: int) -> str:
    """The way out that tears nothing down."""
    return f"ExitProcess code={code}"


def box_line(caption: str, text: str) -> str:
    """How the journal tells of a box without owner and with nothing but the OK button."""
    return f"MessageBoxW owner=none flags=0x00000000 caption={_quoted(caption)} text={_quoted(text)}"


def _quoted(text: str) -> str:
    for character, escaped in (("\\", "\\\\"), ('"', '\\"'), ("\n", "\\n"), ("\r", "\\r"), ("\t", "\\t")):
        text = text.replace(character, escaped)
    return f'"{text}"'


class ProcessTest(ObservedTest):
    """Every test begins on an account where the installer never ran."""

    eyes: Eyes

    @classmethod
    def setUpClass(cls) -> None:
        # For all tests of the class: while it runs, Windows need not start anew for each.
        cls.eyes = cls.enterClassContext(Eyes())

    def setUp(self) -> None:
        self.person = Person(self.eyes)
        self.folder = program.working_folder()
        self.clean_account()

    def clean_account(self) -> None:
        """As if the installer had never run."""
        program.remove_folder(self.folder)

    def start(self, faults: str = "", **how) -> Start:
        """Starts the installer. It is ended with the test."""
        start = self.enterContext(Start(faults, **how))
        self.enterContext(self.observed(self.eyes, start))
        return start

    def start_wizard(self, faults: str = "", **how) -> Start:
        """Starts the installer and waits for its first page."""
        start = self.start(faults, **how)
        self.wait_for_wizard(start)
        return start

    def wait_for_wizard(self, start: Start) -> None:
        self.person.wait_until(
            "the first page", lambda sight: sight.number == 1 or sight.boxes or start.has_ended, SOON
        )
        self.assertFalse(start.has_ended, start.journal)
        self.person.wait_for_page(1)

    def press_escape(self) -> None:
        """In the wizard, which must have the keyboard and goes."""
        sight = self.person.rest()
        assert sight.frame, "there is no wizard"
        self.assertEqual(sight.view.foreground, sight.frame.handle)
        self.person.press("Escape")
        self.person.wait_until("the wizard to go", lambda now: now.frame is None)

    def cancel(self, start: Start) -> None:
        """Leaves the wizard with the Escape key, which must go as it should."""
        self.press_escape()
        self.expect_end(start, 0, *CANCELLED)

    def dismiss_box(self, start: Start, caption: str, text: str) -> None:
        """Waits for a box, which has these words, all to be read, and no owner, and presses Enter."""
        box = self.wait_for_box(start)
        self.assertEqual((box.caption, box.message, box.buttons), (caption, text, ("OK",)))
        self.assertEqual(box.window.owner, 0)
        self.assertEqual(looks.look_at_box(self.eyes, box), [])
        self.person.dismiss(box)

    def wait_for_box(self, start: Start) -> MessageBox:
        sight = self.person.wait_until("a box", lambda sight: sight.boxes or sight.frame or start.has_ended, SOON)
        self.assertEqual(len(sight.boxes), 1, f"{sight}, {start.journal}")
        return self.person.rest().boxes[0]

    def expect_end(self, start: Start, code: int, *events: Event) -> None:
        """Until it has ended: with this exit code, and before it these boxes and calls in order, nothing besides."""
        start.wait()
        start.check_faults()
        journal = [event if isinstance(event, str) else box_line(*event) for event in events]
        self.assertEqual(start.journal, [*journal, f"ended code={code}"])

    def expect_way_out(self, faults: str, code: int, *events: Event, disk: Collection[str] = ()) -> None:
        """A whole run that shows these boxes, ends so and leaves that on the disk, see expect_end."""
        start = self.start(faults)
        for event in events:
            if not isinstance(event, str):
                self.dismiss_box(start, *event)
        self.expect_end(start, code, *events)
        self.assertEqual(sorted(program.left_behind()), sorted(disk))

    def expect_whole_tools(self) -> None:
        """The tools are there, all of them, as they are in the program."""
        self.assertEqual(sorted(program.left_behind()), TOOLS)
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
        self.assertEqual(program.left_behind(), [])
        wait_for(f"the end of {running()}", lambda: not running())

    def leave_tools_behind(self) -> None:
        """What a run leaves that was killed while its wizard was open."""
        self.start_wizard().kill()
        self.assertEqual(sorted(program.left_behind()), TOOLS)
