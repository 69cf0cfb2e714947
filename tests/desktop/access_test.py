#!/usr/bin/python3
"""The program as a screen reader and somebody without a mouse meet it, over the accessibility bus of
a desktop of its own: tests/desktop/access_test.py PROGRAM"""

import os
import pathlib
import re
import signal
import subprocess
import sys
import tempfile
import unittest
from importlib.util import find_spec

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "tools"))
from desktop import Failure, Screen, Server, end, private_environment, start, wait_for

PROGRAM = pathlib.Path(sys.argv.pop(1)).resolve() if len(sys.argv) > 1 else sys.exit(__doc__)

ROLES = {"check box", "combo box", "list", "page tab", "page tab list", "password text", "push button",
         "radio button", "spin button", "text", "toggle button", "tree"}
# What these hold is reached with the arrows, or is a part of how the toolkit draws them.
WHOLES = {"list", "tree", "combo box", "menu bar", "page tab list"}
PARTS = {"table cell", "list item", "page tab"}
DRAWN = {"filler", "menu item", "scroll bar", "progress bar"}
FRAME_ROLES = {"frame", "dialog"}
READ_ONLY = {"text Text", "text Log"}
VERSION = re.search(r"project\(\w+\s+VERSION (\d+\.\d+)", (ROOT / "CMakeLists.txt").read_text())[1]

TOOLS = ["push button Back", "push button Parent Dir", "push button Home", "push button Refresh Listing",
         "text Remote path", "check box Filter"]
PANE = ["push button Upload", "check box Use this connection.", "push button Not encrypted"]
FORM = ["text Host", "text Username", "password text Password", "text Path", "text Port",
        "check box Passive Connection", "combo box Encryption"]
QUEUE = ["spin button Transfers in all", "spin button Transfers for each server", "spin button Connections for each",
         "spin button Download at most", "spin button Upload at most", "spin button Try again",
         "spin button times, first after", "combo box If a file is there already",
         "check box Compare with the server’s checksum where it has one",
         "check box Replace files on the server only by whole ones", "check box Keep the time of files"]
ENDS = ["push button Cancel", "push button Save"]


class Reader:
    """Listens on the bus: what has got the focus, and what is told unasked."""

    def __init__(self, bus, loop):
        self.bus, self.context, self.events = bus, loop.MainContext.default(), []
        for kind in ("state-changed:focused", "state-changed:checked", "property-change:accessible-name",
                     "property-change:accessible-value"):
            bus.Registry.registerEventListener(self.note, f"object:{kind}")

    def note(self, event):
        try:
            source = event.source
            while event.type.endswith("focused") and source.getRoleName() in PARTS:
                source = source.parent
            self.events.append((event.type.rsplit(":", 1)[1], event.detail1, self.told(source)))
        except Exception:  # what told it is gone
            pass

    @staticmethod
    def told(one):
        name = one.name
        if one.getRoleName() == "combo box":
            for relation in one.getRelationSet():
                name = relation.getTarget(0).name
        return f"{one.getRoleName()} {name}".strip(" :")

    def wait(self, what, found, limit=10):
        def turn():
            while self.context.iteration(False):
                pass
            return found()
        return wait_for(what, turn, limit)

    def hears(self, what, kind="accessible-name"):
        """Waits until something is told that holds these words."""
        try:
            self.wait(f'"{what}" to be told', lambda: any(
                kind == each and what in told for each, _, told in self.events))
        except Failure as failure:
            raise Failure(f"{failure}, but {self.events[-9:]}") from None

    def focus(self):
        got = self.wait("a focus", lambda: [
            told for kind, on, told in self.events if kind == "focused" and on], 5)
        return got[-1]

    def has(self, one, *states):
        held = one.getState()
        return all(held.contains(getattr(self.bus, f"STATE_{each}")) for each in states)

    def window(self, title):
        def find():
            desktop = self.bus.Registry.getDesktop(0)
            for program in [each for each in desktop if each is not None and each.name == "Corvane"]:
                for window in program:
                    if window is not None and title in window.name and self.has(window, "SHOWING", "ACTIVE"):
                        return window
            return None
        return self.wait(f'an active window "{title}" on the bus', find)

    def controls(self, one):
        """What can be pressed or take the focus, as it stands in the tree."""
        for child in one:
            if child is None or not self.has(child, "SHOWING"):
                continue
            role = child.getRoleName()
            acts = "Action" in self.bus.listInterfaces(child) and child.queryAction().nActions > 0
            if role not in DRAWN and (acts or self.has(child, "FOCUSABLE")):
                yield child
            if role not in WHOLES:
                yield from self.controls(child)


class AccessTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = pathlib.Path(cls.enterClassContext(tempfile.TemporaryDirectory(prefix="corvane-access-")))
        cls.environment, cls.downloads = private_environment(cls.folder)
        cls.environment["QT_LINUX_ACCESSIBILITY_ALWAYS_ON"] = "1"
        cls.screen = Screen(cls.environment, cls.folder)
        cls.addClassCleanup(cls.screen.close)
        cls.server = Server(cls.folder)
        cls.addClassCleanup(end, cls.server.process)
        bus = cls.start("dbus-daemon", "--session", "--nofork", "--print-address", stdout=subprocess.PIPE)
        cls.addClassCleanup(bus.stdout.close)
        cls.environment["DBUS_SESSION_BUS_ADDRESS"] = bus.stdout.readline().decode().strip()
        os.environ.update(cls.environment)
        import pyatspi  # looks for the bus at once
        from gi.repository import GLib
        cls.reader = Reader(pyatspi, GLib)
        cls.start(PROGRAM)

    @classmethod
    def start(cls, *command, **options):
        options.setdefault("stdout", cls.screen.output)
        process = start(command, env=cls.environment, stderr=cls.screen.output, **options)
        cls.addClassCleanup(end, process)
        return process

    def press(self, *keys):
        self.reader.wait("nothing", lambda: True)
        self.reader.events.clear()
        self.screen.run("xdotool", "key", "--delay", 40, *keys)

    def activate(self, title, *keys):
        self.screen.run("xdotool", "windowactivate", "--sync", self.screen.window(title))
        self.press(*keys)

    def close(self, title, key="ctrl+w"):
        self.press(key)
        wait_for(f'"{title}" to go', lambda: not self.screen.run("xdotool", "search", "--onlyvisible", "--name", title))

    def browse(self, title, url=None):
        self.press("Escape")
        subprocess.run([PROGRAM, url or self.server.url + "Samples/"], env=self.environment, timeout=20, check=True)
        self.reader.window(title)

    def ring(self, count):
        """What Tab leads to, and back to where it began."""
        seen = []
        for _ in range(count):
            self.press("Tab")
            seen.append(self.reader.focus())
        self.press("Tab")
        self.assertEqual(self.reader.focus(), seen[0])
        self.press("shift+Tab")
        self.assertEqual(self.reader.focus(), seen[-1])
        return seen

    def look(self, title, *expected):
        """A window's controls: role, name, state, and that Tab leads to each in this order."""
        window = self.reader.window(title)
        with self.subTest(window.name, first=expected[0]):
            self.assertIn(window.getRoleName(), FRAME_ROLES)
            controls = list(self.reader.controls(window))
            usable = []
            for each in controls:
                told = self.reader.told(each)
                if each.getRoleName() == "label" and told not in expected:
                    continue  # its text can be selected with the mouse
                self.assertTrue(told in expected or each.getRoleName() in ROLES, told)
                self.assertNotEqual(told, each.getRoleName(), "a name")
                self.assertNotIn("<", each.description)
                self.assertEqual(self.reader.has(each, "ENABLED"), self.reader.has(each, "SENSITIVE"), told)
                # The arrows lead from the chosen one of a group to the others.
                beside = each.getRoleName() == "radio button" and not self.reader.has(each, "CHECKED")
                if self.reader.has(each, "ENABLED", "FOCUSABLE") and not beside:
                    usable.append(told)
                    editable = self.reader.has(each, "EDITABLE")
                    self.assertEqual(editable, "text" in each.getRoleName() and told not in READ_ONLY, told)
            self.assertCountEqual(usable, expected)
            if len(expected) > 1:
                ring = self.ring(len(expected))
                first = ring.index(expected[0])
                self.assertEqual((*ring[first:], *ring[:first]), expected)
        return window

    def menus(self, title):
        """Every item has a name, and the arrows lead to each that can be chosen."""
        window = self.reader.window(title)
        bar = next(each for each in window if each.getRoleName() == "menu bar")
        self.press("alt+f")
        for menu in bar:
            with self.subTest(window.name, menu=menu.name):
                items = [self.reader.told(each) for each in menu[0]
                         if each.getRoleName() != "separator" and self.reader.has(each, "ENABLED")]
                self.assertNotIn("menu item", items)
                seen = [self.reader.focus()]
                for _ in items[1:]:
                    self.press("Down")
                    seen.append(self.reader.focus())
                self.assertEqual(seen, items)
            self.press("Right")
        self.press("Escape", "Escape")

    def test_connection_windows(self):
        self.activate("^Corvane$")
        self.look("Corvane", *FORM, "push button Shortcuts", "push button Connect")
        self.menus("Corvane")
        self.press("alt+c")
        self.reader.hears("label Please enter the address of the server.")
        self.press("Down")
        self.assertEqual(self.reader.focus(), "list Recent connections")
        self.press("Escape")
        self.activate("^Corvane$", "alt+e", "r")
        self.look("Preferences", "text Default Password", "text Download Folder", "push button Select Folder",
                  "text Program for Text", "check box Show Transfer Window on new transfer.",
                  "check box Remove transfer item after transfer is done.",
                  "check box Show a notification when transfers end.", "check box Show in the tray at login.",
                  "check box Always use same connection to transfer files.", "check box Classic style",
                  "combo box Buffer Size", *ENDS, "page tab list Misc")
        self.press("alt+u")
        self.look("Preferences", "text Login Success", "text Login Failure", "text Upload Sound",
                  "text Download Sound", "push button Select Sound", *ENDS, "page tab list Sound")
        self.press("alt+x")
        self.look("Preferences", "check box Enable Proxy", *ENDS, "page tab list Proxy")
        self.press("space")
        self.look("Preferences", "check box Enable Proxy", "combo box Proxy Kind", "text Proxy Host",
                  "text Proxy Port", "text Proxy Username", "password text Proxy Password", *ENDS,
                  "page tab list Proxy")
        self.press("alt+e")
        self.look("Preferences", "check box Keep idle connections open",
                  "spin button Connecting to an address", "spin button Beginning the encryption",
                  "spin button A reply of the server", "spin button The next data", *ENDS,
                  "page tab list Connections")
        self.press("alt+a")
        self.look("Preferences", *QUEUE, *ENDS, "page tab list Transfers")
        self.press("alt+y")
        self.look("Preferences", "radio button Where the server offers it",
                  "check box Ask before a password goes unencrypted",
                  "check box Keep them in the desktop’s keyring", *ENDS, "page tab list Security")
        self.close("Preferences", "Escape")
        self.activate("^Corvane$", "alt+f", "a")
        self.look("About", f"label Corvane, version {VERSION}")
        self.close("About", "Escape")
        self.activate("^Corvane$", "alt+e", "s")
        self.look("Shortcuts", "push button New Shortcut", "push button Edit", "push button Remove",
                  "text Search the shortcuts", "push button Save", "tree Shortcuts")
        self.press("ctrl+n")
        self.look("New Shortcut", "text Label", *FORM, "push button More", "push button Cancel", "push button Add")
        self.close("New Shortcut", "Escape")
        self.close("Shortcuts")

    def test_browser_windows(self):
        os.kill(self.server.process.pid, signal.SIGSTOP)
        self.browse("Connecting")
        self.look("Connecting", "push button Stop", "push button Cancel")
        os.kill(self.server.process.pid, signal.SIGCONT)
        for told in ("Logged in as demo. Done.", "label Status: Connected.", "label 5 items"):
            self.reader.hears(told)
        self.look("Samples", *TOOLS, "tree Remote directory", *PANE)
        self.press("t", "w")
        self.reader.hears("label two words.txt")
        listing = next(each for each in self.reader.controls(self.reader.window("Samples"))
                       if each.getRoleName() == "tree").queryTable()
        for row, *texts in (1, "sample 200 MB.bin", "209.7 MB"), (3, "two words.txt", "10 B"):
            cells = [listing.getAccessibleAt(row, column) for column in (0, 1)]
            self.assertEqual([self.reader.told(each) for each in cells], [f"table cell {text}" for text in texts])
            self.assertEqual([self.reader.has(each, "SELECTED") for each in cells], [row == 3] * 2)
        self.look("Samples", *TOOLS, "tree Remote directory", "push button Download", *PANE)
        for key, field in (("F2", "text New name"), ("ctrl+m", "text Name of the new directory")):
            self.press(key)
            self.assertEqual(self.reader.focus(), field)
            self.press("Escape")
            self.assertEqual(self.reader.focus(), "tree Remote directory")
        self.press("ctrl+i")
        self.look("Samples", *TOOLS, "text Filter", "push button Close the filter", "tree Remote directory",
                  "push button Download", *PANE)
        self.press("x")
        self.reader.hears("label 3 of 5 items")
        self.press("Escape")
        self.assertEqual(self.reader.focus(), "tree Remote directory")
        self.press("Delete")
        self.look("Delete", "push button Delete", "push button Cancel")
        self.close("Delete", "Escape")
        self.press("ctrl+l")
        self.look("two words.txt", "combo box Encoding", "text Text")
        self.press("ctrl+f")
        self.look("two words.txt", "combo box Encoding", "text Find", "push button Previous",
                  "push button Next", "text Text")
        self.close("two words.txt")
        self.press("ctrl+shift+e")
        self.look("is not encrypted", "push button Close")
        self.close("Security", "Escape")
        self.press("ctrl+k")
        self.look("Log", "text Log")
        self.close("Log")
        self.menus("Samples")
        self.close("Samples")

    def test_transfer_windows(self):
        self.browse("Samples")
        self.reader.hears("label 5 items")
        self.press("t", "w", "ctrl+d")
        self.reader.hears("list item two words.txt, Finished")
        self.press("ctrl+x")
        self.look("Transfer List", "push button Remove Finished", "list Transfers")
        self.menus("Transfer List")
        self.activate("Samples", "ctrl+d")
        self.look("“two words.txt” is there already.", "radio button Skip", "push button Cancel",
                  "push button Skip")
        self.press("Escape")
        self.assertEqual(self.reader.focus(), "tree Remote directory")
        self.press("s")
        self.reader.hears("label sample 200 MB.bin")
        self.press("alt+t")
        self.reader.hears("check box Use this connection.", "checked")
        self.press("ctrl+d")
        self.reader.hears("progress bar Progress", "accessible-value")
        os.kill(self.server.process.pid, signal.SIGSTOP)
        self.look("Samples", "tree Remote directory", PANE[1], "push button Cancel", PANE[2])
        os.kill(self.server.process.pid, signal.SIGCONT)
        self.reader.hears("push button Clear")
        self.close("Samples")

    def test_without_connection(self):
        server = Server(pathlib.Path(self.enterContext(tempfile.TemporaryDirectory(prefix="corvane-access-"))))
        self.addCleanup(end, server.process)
        self.browse("Not connected", server.url.replace(":demo@", ":wrong@"))
        self.look("Not connected", "text Username", "password text Password", "push button What Is Wrong?",
                  "push button Close", "push button Try Again")
        self.close("Not connected")
        self.browse("/ – demo", server.url)
        self.reader.hears("label 5 items")
        end(server.process)
        self.press("F5")
        self.reader.hears("alert The connection to 127.0.0.1 was lost.")
        self.reader.hears("label Status: Connection lost.")
        self.look("Not connected", "text Remote path", "push button What Is Wrong?", "push button Connect Again", "tree Remote directory", PANE[1])
        self.close("Not connected")


if __name__ == "__main__":
    if find_spec("pyatspi") is None:
        print("There is no pyatspi here to listen on the accessibility bus with.")
        sys.exit(77)
    unittest.main(verbosity=2, warnings="ignore")
