#!/usr/bin/python3
"""A restless user of the real windows, and servers that misbehave:
tests/desktop/soak.py PROGRAM [--seconds N] [--seed S]

In the end, once the servers behave, every transfer has to come to its end or say why not. The program
must not have died or frozen, and must have given back its memory, descriptors and threads: it is
compared with itself after a first, short round. Needs a build without sanitizers to judge time and
memory."""

import argparse
import collections
import contextlib
import os
import pathlib
import random
import re
import signal
import subprocess
import sys
import tempfile
import time

HERE = pathlib.Path(__file__).resolve().parent
sys.path.insert(0, str(HERE.parents[1] / "tools"))
from desktop import Failure, Screen, end, private_environment, start, wait_for

FREEZE, GROWTH = 0.1, 1.10
CONNECTION, TRANSFERS, SERVER = "Corvane", "Transfer List", "127.0.0.1"
MOST_WINDOWS = 12
PATIENCE, SETTLE = 30, 9  # seconds, for all transfers to end, and for sessions and threads to go
# The toolkit's: threads that wait 30 s for more to do, and what it keeps mapped from first use on.
STAYS = re.compile(r"Thread \(pooled\)|/usr/share/.*\.cache")
# A bus that starts only what tells a screen reader: no file manager, no keyring.
BUS = """<busconfig><type>session</type><listen>unix:path={0}/bus</listen><servicedir>{0}/services</servicedir>
<policy context="default"><allow send_destination="*"/><allow eavesdrop="true"/><allow own="*"/></policy></busconfig>"""
SERVICES = ("org.a11y.Bus.service", "ca.desrt.dconf.service")
END = re.compile(r", (Finished|Cancelled|Failed(?=.*, Failed: )|Partly failed(?=.* files failed)),")

# How often, and the keys; "=" types a text, a number waits. {letter} begins a name that may be there.
BROWSING = [
    (14, "={letter}", "Return"), (6, "BackSpace"), (4, "alt+Left"), (2, "alt+Right"), (2, "alt+Home"),
    (4, "F5"), (6, "Escape"), (12, "={letter}", "ctrl+d"), (3, "ctrl+a", "ctrl+d"), (4, "shift+Down", "shift+Down", "ctrl+d"),
    (8, "ctrl+u", 0.4, "={upload}", "Return", "Escape"), (4, "={letter}", "F2", "={name}", "Return"),
    (4, "ctrl+m", "={name}", "Return"), (3, "={letter}", "Delete", 0.4, "Return"), (1, "ctrl+a", "Delete", 0.4, "Return"),
    (4, "={letter}", "ctrl+l"), (3, "ctrl+shift+f", 0.3, "=*{letter}*", "Return"), (3, "={letter}", "alt+Return"),
    (1, "ctrl+k"), (2, "={letter}", "shift+Delete", "BackSpace", 1, "ctrl+v"), (2, "={letter}", "ctrl+shift+d"),
    (3, "ctrl+i", "={letter}", 0.3, "Escape", "Escape"), (1, "ctrl+f"), (1, "alt+t"), (2, "ctrl+Return"), (2, "ctrl+x"),
    (3, "ctrl+w"), (3, "Return"), (2, "ctrl+period"), (1, "ctrl+F1"), (1, "ctrl+shift+e")]
TRANSFERRING = [
    (4, "Down"), (2, "Up"), (2, "Home"), (3, "ctrl+a"), (6, "ctrl+period"), (5, "ctrl+r"), (3, "ctrl+p"),
    (3, "ctrl+u"), (3, "ctrl+t"), (2, "alt+Up"), (1, "ctrl+shift+p"), (3, "ctrl+shift+u"), (3, "ctrl+shift+r"),
    (1, "BackSpace"), (2, "space"), (1, "ctrl+w")]
ELSEWHERE = [(6, "Return"), (4, "Escape"), (3, "ctrl+w"), (2, "Tab", "space"), (2, "Down"), (1, "Tab", "={name}")]


class Rows:
    """The rows of the transfer window as a screen reader is told them."""

    def __init__(self, environment):
        os.environ.update(environment)
        import pyatspi
        self.registry = pyatspi.Registry

    def read(self):
        for program in self.registry.getDesktop(0):
            if program is not None and program.name == "Corvane":
                for window in program:
                    if window is not None and TRANSFERS in window.name:
                        return [row.name for each in self.below(window) if each.getRoleName() == "list"
                                for row in each if row is not None]
        return None

    def below(self, one):
        for child in one:
            if child is not None:
                yield child
                if child.getRoleName() != "list":
                    yield from self.below(child)


class Soak:
    def __init__(self, options, folder, stack):
        self.random, self.folder, self.options = random.Random(options.seed), folder, options
        self.environment, _ = private_environment(folder)
        (folder / "services").mkdir()
        for name in SERVICES:
            (folder / "services" / name).symlink_to(pathlib.Path("/usr/share/dbus-1/services") / name)
        (folder / "bin").mkdir()
        (folder / "bin/xdg-open").symlink_to("/bin/true")
        self.environment["PATH"] = f"{folder}/bin:{self.environment['PATH']}"
        (folder / "bus.conf").write_text(BUS.format(folder))
        self.uploads = []
        for number in range(30):
            path = folder / f"uploads/set {number % 3}/up {number}.dat"
            self.uploads.append(path)
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_bytes(self.random.randbytes(self.random.choice((0, 500, 70_000, 2_000_000))))
        self.log, self.actions = open(folder / "program.log", "wb"), 0
        self.done = []
        self.screen = Screen(self.environment, folder)
        stack.append(self.screen.close)
        bus = self.child(stack, "dbus-daemon", f"--config-file={folder}/bus.conf", "--nofork", "--print-address",
                         stdout=subprocess.PIPE)
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = bus.stdout.readline().decode().strip()
        self.servers = self.child(stack, sys.executable, "-W", "ignore", HERE / "moody_server.py", options.seed,
                                  stdout=subprocess.PIPE)
        ports = [self.servers.stdout.readline().split()[0].decode() for _ in range(3)]
        self.urls = [f"ftp://demo:demo@{SERVER}:{port}/" for port in ports]
        self.program = self.child(stack, options.program)
        self.connection = self.screen.window(f"^{CONNECTION}$")
        self.pulse = self.child(stack, sys.executable, HERE / "pulse.py", folder / "run", FREEZE, self.program.pid,
                                self.screen.children[0].pid, stdout=subprocess.PIPE)

    def child(self, stack, *command, **options):
        process = start(command, env=self.environment, stderr=self.log, **options)
        stack.append(lambda: end(process))
        return process

    def x(self, *words):
        try:
            return self.screen.run("xdotool", *words)
        except subprocess.TimeoutExpired:  # the window has gone
            return ""

    def windows(self):
        """Those that can be used, and their titles."""
        found = self.x("search", "--onlyvisible", "--class", "corvane").split()
        titles = self.x(*[word for each in found for word in ("getwindowname", each)]).split("\n")[:-1]
        pairs = zip(found, titles) if len(found) == len(titles) else []  # else one has just gone
        return [(each, title) for each, title in pairs if title not in ("", CONNECTION)]

    def press(self, window, *steps):
        words = ["windowactivate", window[0], "sleep", "0.05"]
        for step in steps:
            if isinstance(step, str) and step.startswith("="):
                words += ["type", "--delay", "8", "--args", "1", step[1:].format(
                    letter=self.random.choice("dlmnprsu0123456789"), name=f"soak {self.random.randrange(60)}",
                    upload=self.random.choice(self.uploads))]
            else:
                words += ["key", step] if isinstance(step, str) else ["sleep", str(step)]
        self.done.append(f"{window[1]}: {' '.join(words[4:])}")
        self.x(*words)
        self.actions += 1
        if self.program.poll() is not None:
            raise Failure(f"the program ended with {self.program.returncode}")

    def open(self):
        subprocess.run([self.options.program, self.random.choice(self.urls)], env=self.environment, timeout=20,
                       stderr=self.log, check=True)
        self.actions += 1

    def choose(self, table):
        return self.random.choices([row[1:] for row in table], [row[0] for row in table])[0]

    def use(self, until):
        while time.monotonic() < until:
            windows = self.windows()
            browsers = [each for each in windows if SERVER in each[1]]
            if not browsers or (len(windows) < MOST_WINDOWS and self.random.random() < 0.04):
                self.open()
                time.sleep(0.5)
                continue
            kinds = [(6, browsers, BROWSING), (2, [each for each in windows if each[1].startswith(TRANSFERS)], TRANSFERRING),
                     (3, [each for each in windows if each not in browsers and not each[1].startswith(TRANSFERS)], ELSEWHERE)]
            kinds = [each for each in kinds if each[1]]
            _, some, table = self.random.choices(kinds, [each[0] for each in kinds])[0]
            window = self.random.choice(some)
            if len(windows) >= MOST_WINDOWS and self.random.random() < 0.3:
                self.press(window, "Escape", "ctrl+w")
            self.press(window, *self.choose(table))
            time.sleep(self.random.uniform(0, 0.1))

    def warm(self):
        """All that it will do, once, so that what is loaded on first use is there."""
        for kind, table in ((SERVER, BROWSING), (TRANSFERS, TRANSFERRING)):
            for _, *steps in table:
                windows = [each for each in self.windows() if kind in each[1]]
                if windows:
                    self.press(windows[-1], *steps)
                else:
                    self.open()
                    time.sleep(1)

    def rest(self):
        """Lets everything come to its end once the servers behave, and clears up."""
        self.servers.send_signal(signal.SIGUSR1)

        def alone():
            others = [each for each in self.windows() if not each[1].startswith(TRANSFERS)]
            for each in others:
                self.press(each, "Escape", "Escape", "ctrl+w")
            return not others

        wait_for("all windows to close", alone, 15)
        self.press((self.connection, CONNECTION), "ctrl+x")
        window = (self.screen.window(TRANSFERS), TRANSFERS)
        ends = self.rows(window)
        self.press(window, "ctrl+a", "Delete", 0.5, "ctrl+w")
        return ends

    def rows(self, window):
        """How many rows have ended in which way."""
        self.screen.run("dbus-send", "--session", "--dest=org.a11y.Bus", "--print-reply", "/org/a11y/bus",
                        "org.freedesktop.DBus.Properties.Set", "string:org.a11y.Status",
                        "string:ScreenReaderEnabled", "variant:boolean:true")
        rows = Rows(self.environment)
        self.press(window, "ctrl+shift+u", "ctrl+shift+r", 1)
        wait_for("the rows to be told", lambda: rows.read() is not None, 15)

        def ended():
            left = [row for row in rows.read() if not END.search(row)]
            if left:
                self.press(window, "ctrl+a", "ctrl+t", 0.5)
            self.left = left
            return not left

        try:
            wait_for("all rows to end", ended, PATIENCE)
        except Failure as failure:
            raise Failure("\n".join([f"{failure}:", *self.left])) from None
        return collections.Counter(END.search(row)[1] for row in rows.read())

    def measure(self, known=collections.Counter()):
        """Resident KiB, and the names of descriptors and threads, once they have come to rest or are
        as `known`."""
        proc = pathlib.Path(f"/proc/{self.program.pid}")

        def now():
            names = collections.Counter()
            for each in (*(proc / "fd").iterdir(), *(proc / "task").glob("*/comm")):
                with contextlib.suppress(OSError):
                    names[each.read_text().strip() if each.name == "comm" else re.sub("[0-9]+", "", os.readlink(each))] += 1
            return int(re.search(r"VmRSS:\s*(\d+)", (proc / "status").read_text())[1]), names

        memory, names = now()
        until = time.monotonic() + SETTLE
        while time.monotonic() < until and not (known and names <= known):
            time.sleep(0.2)
            resident, seen = now()
            memory, names = min(memory, resident), names & seen
        return memory, names

    def run(self, begin):
        seconds = self.options.seconds
        self.warm()
        self.use(begin + min(seconds / 3, 90))
        self.rest()
        before = self.measure()
        self.servers.send_signal(signal.SIGUSR2)
        self.use(begin + seconds)
        ends = self.rest()
        after = self.measure(before[1])
        self.pulse.terminate()
        beats, *wrong = self.pulse.communicate(timeout=5)[0].decode().splitlines()
        print(f"{self.actions} actions; rows: {dict(ends)}; {beats}; resident {before[0]} KiB, then {after[0]}; "
              f"descriptors and threads {before[1].total()}, then {after[1].total()}")
        if after[0] > GROWTH * before[0]:
            wrong.append("memory is not given back")
        more = after[1] - before[1]
        more["anon_inode:[eventfd]"] -= more["Thread (pooled)"]  # each has one
        wrong += [f"{number} x {name} more" for name, number in (+more).items() if not STAYS.fullmatch(name)]
        if not end(self.program):
            wrong.append("it does not end within two seconds of being asked")
        if wrong:
            raise Failure("; ".join(wrong))


def left_behind(folder):
    """The programs that run in the home of this one."""
    found = []
    for each in pathlib.Path("/proc").glob("[0-9]*"):
        with contextlib.suppress(OSError):
            if f"HOME={folder}/" in (each / "environ").read_text(errors="replace"):
                found.append((each / "comm").read_text().strip())
    return found


def main():
    parser = argparse.ArgumentParser(usage=__doc__)
    parser.add_argument("program", type=lambda text: pathlib.Path(text).resolve())
    parser.add_argument("--seconds", type=float, default=150)
    parser.add_argument("--seed", type=int, default=time.time_ns() % 1_000_000)
    options = parser.parse_args()
    print(f"seed {options.seed}, {options.seconds:.0f} s", flush=True)
    stack, begin = [], time.monotonic()
    with tempfile.TemporaryDirectory(prefix="corvane-soak-", ignore_cleanup_errors=True) as name:
        try:
            soak = Soak(options, pathlib.Path(name), stack)
            try:
                soak.run(begin)
            except (Failure, subprocess.SubprocessError) as failure:
                print(*soak.done[-20:], (pathlib.Path(name) / "program.log").read_text(errors="replace")[-3000:], sep="\n")
                print(f"corvane: the soak with seed {options.seed} FAILED: {failure}")
                return 1
        finally:
            for each in reversed(stack):
                each()
        try:
            wait_for("what was started to end", lambda: not left_behind(name), 5)
        except Failure as failure:
            print(f"corvane: {failure}: {left_behind(name)}")
            return 1
    print(f"corvane: the soak with seed {options.seed} passed after {time.monotonic() - begin:.0f} s")
    return 0


if __name__ == "__main__":
    sys.stdout.reconfigure(line_buffering=True)
    sys.exit(main())
