#!/usr/bin/python3
"""The program on a desktop of its own, with window manager, tray, notifications and file manager:
tests/desktop/desktop_test.py PROGRAM"""

import os
import pathlib
import signal
import subprocess
import sys
import tempfile
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "tools"))
from desktop import Screen, Server, end, private_environment, start, try_keys, wait_for

PROGRAM = pathlib.Path(sys.argv.pop(1)).resolve() if len(sys.argv) > 1 else sys.exit(__doc__)
# Where the rows of a browser window in the upper left corner of the screen stand.
FIRST_ROW, ROW = 110, 28
BROWSER = "Samples – demo@127.0.0.1"


class DesktopTest(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory(prefix="corvane-desktop-")))
        self.environment, self.downloads = private_environment(self.folder)
        self.screen = Screen(self.environment, self.folder)
        self.addCleanup(self.screen.close)
        self.server = Server(self.folder)
        self.addCleanup(end, self.server.process)
        bus = self.start("dbus-daemon", "--session", "--nofork", "--print-address", stdout=subprocess.PIPE)
        self.addCleanup(bus.stdout.close)
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = bus.stdout.readline().decode().strip()

    def start(self, *command, **options):
        options.setdefault("stdout", self.screen.output)
        process = start(command, env=self.environment, stderr=self.screen.output, **options)
        self.addCleanup(end, process)
        return process

    def ended(self, *arguments):
        """The exit status and standard error of a start that is to end by itself."""
        done = subprocess.run([PROGRAM, *arguments], env=self.environment, timeout=30,
                              stdin=subprocess.DEVNULL, capture_output=True, check=False)
        return done.returncode, done.stderr.decode()

    def windows(self, title):
        return self.screen.run("xdotool", "search", "--onlyvisible", "--name", title).split()

    def end_program(self):
        """Ends the running program, which need not be our child."""
        pid = int(self.screen.run("xdotool", "getwindowpid", self.screen.window(BROWSER)))
        os.kill(pid, signal.SIGTERM)
        wait_for("the end of the program", lambda: not self.windows(BROWSER))

    def choose_in_tray(self, *keys):
        """Opens the menu of the only icon in the tray and presses keys there."""
        def visible(name):
            return self.screen.run("xdotool", "search", "--onlyvisible", "--class", name).split()

        wait_for("the icon", lambda: visible("corvane"))
        panel, before = visible("trayer")[0], len(visible("corvane"))
        try_keys("the tray's menu",
                 lambda: self.screen.run("xdotool", "mousemove", "--window", panel, 12, 12, "click", 1),
                 lambda: len(visible("corvane")) > before)
        self.screen.run("xdotool", "key", "--delay", 60, *keys)

    @staticmethod
    def in_memory(process, text):
        """Whether a child of ours holds that text where it may write, as a crash would leave it."""
        with open(f"/proc/{process.pid}/maps") as maps, open(f"/proc/{process.pid}/mem", "rb") as memory:
            for area in maps:
                place, rights = area.split()[:2]
                begin, beyond = (int(number, 16) for number in place.split("-"))
                if not rights.startswith("rw") or beyond - begin > 1 << 28:
                    continue  # what a sanitizer reserves for itself
                try:
                    memory.seek(begin)
                    if text in memory.read(beyond - begin):
                        return True
                except (OSError, OverflowError):
                    pass
        return False

    def test_tray_opens_shortcuts(self):
        self.assertEqual(self.ended("-deskbar"), (1, "This desktop has no tray for Corvane's icon.\n"))
        self.start("trayer", "--widthtype", "request", "--height", 24)
        tray = self.start(PROGRAM, "-deskbar")
        program = self.start(PROGRAM, self.server.url + "Samples/")
        browser = self.screen.window(BROWSER)
        wait_for("the listing", lambda: self.server.has("< CWD Samples", "< LIST", "> 226"))
        self.screen.type(browser, "", "ctrl+s")
        self.screen.type(self.screen.window("New Shortcut"), "", "Return")
        wait_for("the shortcut", lambda: not self.windows("New Shortcut"))
        self.assertTrue(end(program))

        shortcut = ["Down", "Down", "Down", "Return"]  # behind the list's first entry
        for count in (1, 2):  # in a program that has to be started first, and in one that runs
            seen = len(self.server.lines())
            self.choose_in_tray(*shortcut)
            wait_for("a browser window", lambda: len(self.windows(BROWSER)) == count)
            wait_for("its listing", lambda: self.server.has(
                "< PASS", "> 230", "< CWD Samples", "< LIST", "> 226", after=seen))
        stored = next((self.folder / "home/config").glob("_LP_*/shortcuts")).read_bytes()
        self.assertIn(b"demo:demo@", stored)
        self.assertFalse(self.in_memory(tray, b"demo:demo@"))
        self.assertTrue(self.in_memory(tray, b"Be Inc."))
        self.assertEqual(self.ended("-deskbar"), (0, "Corvane stands in the tray already.\n"))
        self.choose_in_tray("Up", "Return")
        self.assertEqual(tray.wait(5), 0)
        self.end_program()

    def test_hands_over_notifies_and_reveals(self):
        told = self.folder / "told"
        with open(told, "wb") as output:
            self.start("dunst", "-print", "-conf", "/dev/null", stdout=output)
        program = self.start(PROGRAM)
        self.screen.window("^Corvane$")
        self.assertEqual(self.ended(self.server.url + "Samples/"), (0, ""))
        browser = self.screen.window(BROWSER)
        self.assertEqual(self.windows("Transfer List"), [])
        wait_for("the listing", lambda: self.server.has("< CWD Samples", "< LIST", "> 226"))

        # The download waits for its server until another program's window has the focus.
        seen = len(self.server.lines())
        os.kill(self.server.process.pid, signal.SIGSTOP)
        self.screen.type(browser, "two", "ctrl+d")
        transfers = self.screen.window("Transfer List")
        self.start("thunar", self.folder / "home")
        manager = self.screen.window("home - Thunar")
        self.screen.run("xdotool", "windowactivate", "--sync", manager)
        self.screen.picture(self.folder / "rest.png")  # the toolkit believes in a lost focus later
        os.kill(self.server.process.pid, signal.SIGCONT)
        wait_for("the file", lambda: self.server.has("< RETR two words.txt", "> 226", after=seen))
        self.assertEqual((self.downloads / "two words.txt").read_text(), "two words\n")
        wait_for("the notification", lambda: b"Download finished" in told.read_bytes())
        self.assertIn(b"two words.txt", told.read_bytes())

        try_keys("the folder in the file manager",
                 lambda: self.screen.type(transfers, "", "Home", "Menu", "Up", "Return"),
                 lambda: self.windows("Downloads - Thunar"))
        self.assertTrue(end(program))

    def browse(self, url, title):
        """A browser window of a program of our own, its listing shown."""
        self.start(PROGRAM, url)
        browser = self.screen.window(title)
        wait_for("the listing", lambda: self.server.has("< LIST", "> 226"))
        self.screen.place(browser, 0, 0, 864, 560)
        return browser

    def drag_row(self, start, to):
        """Drags one row of the only browser window onto another, as a hand does."""
        first, last = [("mousemove", 100, FIRST_ROW + ROW * row) for row in (start, to)]
        self.screen.run("xdotool", *first, "mousedown", 1, "mousemove_relative", 15, 0, "sleep", 0.1, *last,
                        "sleep", 0.1, "mousemove_relative", 5, 0, "sleep", 0.1, "mouseup", 1)

    def test_changes_in_place_and_moves_by_drag(self):
        root = self.server.root
        browser = self.browse(self.server.url, "^/ – demo@127.0.0.1")
        self.screen.type(browser, "", "ctrl+m")
        self.screen.type(browser, "A place", "Return")
        wait_for("the directory", (root / "A place").is_dir)
        self.screen.type(browser, "Read", "F2")
        self.screen.type(browser, "Told", "Return")  # over the stem
        wait_for("the new name", (root / "Told.txt").exists)
        self.screen.picture(self.folder / "rest.png")
        try_keys("the move", lambda: self.drag_row(5, 0), (root / "A place/Told.txt").exists)
        self.assertFalse((root / "Told.txt").exists())

    def test_keeps_the_place(self):
        browser = self.browse(self.server.url, "^/ – demo@127.0.0.1")

        def lead(keys, title):
            seen = len(self.server.lines())
            self.screen.type(browser, *keys)
            wait_for(title, lambda: self.windows(title) and self.server.has("> 226", after=seen))
            self.screen.picture(self.folder / "rest.png")

        lead(("Sam", "Return"), BROWSER)
        self.screen.type(browser, "two")
        for back in ("alt+Left", "BackSpace", "alt+Up"):
            lead(("", back), "^/ – demo@127.0.0.1")
            lead(("", "Return"), BROWSER)  # into what is selected: where we came from
        lead(("", "alt+Left"), "^/ – demo@127.0.0.1")
        lead(("", "alt+Right"), BROWSER)
        self.screen.type(browser, "", "ctrl+d")
        wait_for("what was selected before", (self.downloads / "two words.txt").exists)

    def test_comes_back_by_itself(self):
        browser = self.browse(self.server.url + "Samples/", BROWSER)
        wait_for("rest", lambda: self.server.has("< SITE QUOTA", "> 5"))
        seen = len(self.server.lines())
        os.kill(self.server.process.pid, signal.SIGUSR1)
        wait_for("the end of the connection", lambda: self.server.has("> 421", after=seen))
        self.screen.type(browser, "", "F5")
        wait_for("a new login and the listing", lambda: self.server.has(
            "< PASS", "> 230", "< CWD", "< LIST", "> 226", after=seen))
        self.assertEqual(self.screen.run("xdotool", "getactivewindow").strip(), browser)
        self.assertEqual(self.windows(BROWSER), [browser])


if __name__ == "__main__":
    unittest.main(verbosity=2)
