"""What a command may rely on in a home, and the machine outside it."""

import os
import subprocess
import unittest
import uuid
from pathlib import Path

from driver.waiting import wait_for

HERE = Path(__file__).parent
HOME = str(HERE / "home")
TEMPLATE = Path("/wine-prefix")
WITH_SCREEN = ("--dpi", "96")
PROBE = Path(os.environ["KALVO_BUILD"]) / "wine" / "tests" / "probe.exe"


def in_home(script: str, *switches: str) -> subprocess.CompletedProcess[str]:
    """Runs a shell script in a home of its own, by default one without a screen."""
    command = [HOME, *(switches or ("--no-display",)), "bash", "-ec", script]
    return subprocess.run(command, stdin=subprocess.DEVNULL, capture_output=True, text=True, timeout=60)


def runs(mark: str) -> bool:
    """Whether any process of this machine has the mark in its command line."""
    for process in Path("/proc").glob("[0-9]*/cmdline"):
        try:
            if mark in process.read_text(errors="replace"):
                return True
        except OSError:  # it has just ended
            pass
    return False


class Home(unittest.TestCase):
    def check(self, script: str, *switches: str) -> str:
        done = in_home(script, *switches)
        self.assertEqual(done.returncode, 0, done.stdout + done.stderr)
        return done.stdout.strip()

    def test_the_watch_answers_from_the_other_host_and_nothing_leads_further(self) -> None:
        self.check("ping -c 1 -W 2 192.168.1.100 && ping -c 1 -W 2 192.168.1.1")
        addresses = self.check("$KALVO_WATCH_HOST hostname -I").split()
        self.assertIn("192.168.1.100", addresses)
        self.assertNotIn("192.168.1.2", addresses)
        for where in ("", "$KALVO_WATCH_HOST "):
            links = self.check(f"{where}ip -o link | cut -d: -f2 | cut -d@ -f1")
            self.assertEqual(links.split(), ["lo", "lan"])
        self.assertEqual(self.check("ip route show default").split()[:3], ["default", "via", "192.168.1.1"])
        self.assertEqual(self.check("$KALVO_WATCH_HOST ip route show default"), "")

    def test_the_computer_knows_its_own_name_and_no_name_server(self) -> None:
        self.assertIn("192.168.1.2", self.check("getent hosts $(uname -n)"))
        self.assertNotIn("nameserver", self.check("cat /etc/resolv.conf"))

    def test_there_is_a_screen_and_windows_alone_orders_what_is_on_it(self) -> None:
        # Windows' desktop goes with the last program on it.
        ask = "wine notepad & timeout 30 xdotool search --sync --name Desktop getwindowname"
        self.assertEqual(self.check(ask, *WITH_SCREEN), "home - Wine Desktop")
        self.assertEqual(self.check("echo ${DISPLAY-none}"), "none")

    def test_windows_is_a_copy_of_the_template_with_its_own_registry(self) -> None:
        mark = f"mark-{uuid.uuid4()}"
        before = (TEMPLATE / "user.reg").read_bytes()
        self.check(
            f'touch "$WINEPREFIX/drive_c/{mark}"; '
            rf"wine reg add 'HKCU\Software\{mark}' /f; wineserver -w; grep {mark} $WINEPREFIX/user.reg"
        )
        self.assertFalse((TEMPLATE / "drive_c" / mark).exists())
        self.assertEqual((TEMPLATE / "user.reg").read_bytes(), before)

    def test_what_windows_shares_with_the_template_cannot_be_written(self) -> None:
        """Its programs are links to Wine's own."""
        program = "$WINEPREFIX/drive_c/windows/notepad.exe"
        for write in (f"echo >>{program}", r"wine cmd /c 'copy /y C:\windows\win.ini C:\windows\notepad.exe'"):
            with self.subTest(write):
                self.check(f"[ -L {program} ]; if {write}; then exit 1; fi; [ -L {program} ]")

    def test_windows_believes_in_the_resolution(self) -> None:
        ask = r"echo $KALVO_DPI; wine reg query 'HKCU\Control Panel\Desktop' /v LogPixels"
        said = self.check(ask, "--no-display", "--dpi", "144").splitlines()
        self.assertEqual(said[0], "144")
        self.assertIn("0x90", said[-1])
        self.assertEqual(self.check("echo $KALVO_DPI"), "96")

    def test_a_program_that_crashes_is_gone_at_once(self) -> None:
        """A debugger would show a box, hold what the program held, and have the keyboard."""
        status = self.check(f"wine {PROBE} crash 2>/dev/null || echo status $?; ps -A -o args=", *WITH_SCREEN)
        self.assertIn("status ", status)
        self.assertNotIn("winedbg", status)

    def test_the_exit_status_is_the_commands(self) -> None:
        for switches in (("--no-display",), WITH_SCREEN):
            self.assertEqual(in_home("exit 7", *switches).returncode, 7)

    def test_a_wrong_command_line_is_refused(self) -> None:
        for arguments in ((), ("--no-display",), ("--dpi", "many", "true"), ("--dpi",), ("--other", "true")):
            with self.subTest(arguments):
                done = subprocess.run([HOME, *arguments], capture_output=True, text=True, timeout=30)
                self.assertEqual(done.returncode, 125)
                self.assertIn("usage: home", done.stderr)

    def test_homes_stand_side_by_side(self) -> None:
        listen = (
            "import socket; s = socket.create_server(('192.168.1.100', 6000)); print('up', flush=True); "
            "c, _ = s.accept(); c.sendall(b'{mark}')"
        )
        call = "import socket; print(socket.create_connection(('192.168.1.100', 6000)).recv(99).decode())"
        homes = []
        for mark in ("first", "second"):
            listener = f"""exec 3< <($KALVO_WATCH_HOST python3 -c "{listen.format(mark=mark)}"); head -n 1 <&3"""
            script = f"""{listener}; read -r; python3 -c "{call}" """
            command = [HOME, "--no-display", "bash", "-ec", script]
            home = subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
            homes.append(self.enterContext(home))
        # Nobody calls before both listen.
        self.assertEqual([home.stdout.readline() for home in homes if home.stdout], ["up\n", "up\n"])
        self.assertEqual([home.communicate("go\n", timeout=60)[0].strip() for home in homes], ["first", "second"])

    def test_what_it_started_ends_with_it(self) -> None:
        mark = f"mark-{uuid.uuid4()}"
        # The sleeper holds the pipe that this test reads to its end, which it must come to long before the sleeper's.
        runs_inside = f'until grep -qa "^{mark}" /proc/$!/cmdline; do sleep 0.01; done; echo sleeps'
        said = self.check(f"(exec -a {mark} sleep 300) & {runs_inside}; wine cmd /c ver")
        self.assertIn("sleeps", said)
        self.assertFalse(runs(mark))

    def test_killing_it_ends_everything(self) -> None:
        mark = f"mark-{uuid.uuid4()}"
        with subprocess.Popen([HOME, "bash", "-ec", f"exec -a {mark} sleep 300"], stdin=subprocess.DEVNULL) as home:
            try:
                wait_for("the sleeper", lambda: runs(f"{mark}\0"), 60)
            finally:
                home.kill()
        wait_for("the sleeper to end", lambda: not runs(mark))

    def test_no_mount_and_no_network_stays(self) -> None:
        def state() -> tuple[str, str]:
            mounts = Path("/proc/self/mounts").read_text()
            return mounts, subprocess.run(["ip", "-o", "link"], capture_output=True, text=True, check=True).stdout

        before = state()
        self.check("true", *WITH_SCREEN)
        self.assertEqual(state(), before)


class TestProgramsOfWindows(unittest.TestCase):
    """What makes a test program's run a success."""

    # What GoogleTest does when the last test is done.
    THE_END = "del %TEST_PREMATURE_EXIT_FILE%"

    def test_the_exit_status_counts_and_an_end_before_the_last_test_is_a_failure(self) -> None:
        for status in (0, 5):
            done = in_home(f"{HERE / 'gtest'} cmd.exe /c '{self.THE_END} & exit {status}'")
            self.assertEqual(done.returncode, status)
            early = in_home(f"{HERE / 'gtest'} cmd.exe /c 'exit {status}'")
            self.assertEqual(early.returncode, 1)
            self.assertIn(f"cmd.exe ended before its last test, with status {status}", early.stderr)


if __name__ == "__main__":
    unittest.main()
