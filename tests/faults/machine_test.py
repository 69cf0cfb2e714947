#!/usr/bin/python3
"""Whole transfers on a machine that misbehaves: full and read-only disks, files and descriptors that
the system does not give, target folders that go or lead elsewhere, a slow disk, a clock that jumps.

usage: machine_test.py DRIVER MACHINE_LIBRARY [WORDS_OF_A_CASE]

A row that cannot be finished has to say so, with the right reason, and leave alone what was there and
what is elsewhere. Once all is well again "Retry" has to end with equal files. Nothing may stay open.
"""

import concurrent.futures
import contextlib
import ctypes
import json
import os
import pathlib
import resource
import socket
import subprocess
import sys
import tempfile
import time

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "tools"))
from desktop import Failure, Server, end, start, wait_for

RATE, SIZE, OLD = 100_000, 300_000, b"the old one" * 2000
ISOLATED = "CORVANE_TEST_ISOLATED"
MOUNTS = os.environ.get(ISOLATED) == "yes"
RDONLY, REMOUNT, BIND, DETACH = 1, 32, 4096, 2


def mount(target, kind=None, flags=0, data=""):
    source = str(target).encode() if flags & BIND else b"none"
    if ctypes.CDLL(None, use_errno=True).mount(source, str(target).encode(), kind, flags, data.encode()) != 0:
        raise OSError(ctypes.get_errno(), os.strerror(ctypes.get_errno()))


def unmount(target):
    ctypes.CDLL(None).umount2(str(target).encode(), DETACH)


def files(top):
    return {str(path.relative_to(top)): path.read_bytes() for path in top.rglob("*") if path.is_file()}


class Case:
    """One row of the queue: what it moves, what happens to the machine, what the row says then."""

    def __init__(self, name, what="f", policy="create", early=None, strike=None, heal=None, says=None,
                 environment=None, tries=0, needs_mounts=False, at_least=0.0, kept=True):
        self.name, self.what, self.policy, self.says, self.tries = name, what, policy, says, tries
        self.kept = kept
        self.early, self.strike, self.heal = early, strike, heal
        self.environment, self.needs_mounts, self.at_least = environment or {}, needs_mounts, at_least

    def run(self, folder, server):
        self.top, self.server = folder, server
        self.here, self.elsewhere = folder / "here", folder / "elsewhere"
        for each in (self.here, self.elsewhere):
            each.mkdir()
        if self.early:
            self.early(self)
        self.put_old_files()
        order = ["get", f"{self.server.url}{self.what}", self.here]
        first = self.drive(*order)
        if self.strike:
            wait_for(f"{self.name}: some of it", lambda: first.poll() is not None or sum(
                path.stat().st_size for path in self.here.rglob("*") if path.is_file()) > len(OLD) + 60_000)
            self.process = first
            self.strike(self)
        self.ends(first, self.says)
        self.left_alone()
        if self.says is None:
            return self.is_whole()
        if self.heal:
            self.heal(self)
        self.ends(self.drive(*(["--resume"] if self.kept else order), well=True), None)
        self.left_alone(healed=True)
        return self.is_whole()

    def put_old_files(self):
        if self.policy == "replace":
            (self.here / "f").write_bytes(OLD)

    def drive(self, *words, well=False):
        command = [DRIVER, "queue", self.top / "queue", *words, "--policy", self.policy, "--tries", self.tries,
                   "--silence", 1500, *([] if well else ["--limit", RATE])]
        environment = {**os.environ, "LD_PRELOAD": MACHINE, "MACHINE_LEFT": str(self.top / "left"),
                       "ASAN_OPTIONS": "verify_asan_link_order=0", **({} if well else self.environment)}
        self.begun = time.monotonic()
        return start(command, env=environment, stdout=subprocess.PIPE, stderr=subprocess.STDOUT)

    def ends(self, process, says):
        # A wait that a clock of five hours ago makes endless is caught here, however busy the machine is.
        text = process.communicate(timeout=60)[0].decode()
        took = time.monotonic() - self.begun
        rows = [json.loads(line) for line in text.split("\n") if line.startswith('{"row"')]
        self.expect(process.returncode == (says is not None), f"ended with {process.returncode}: {text}")
        self.expect(len(rows) == 1, f"{len(rows)} rows: {text}")
        self.expect(rows[0]["state"] == ("done" if says is None else "failed"), text)
        self.expect(says is None or says in text, f'does not say "{says}": {text}')
        self.expect("Sanitizer" not in text, text)
        self.expect(took > self.at_least, f"took {took:.1f} s")
        left = (self.top / "left").read_text()
        self.expect(left == LEFT or not LEFT, f"{left} are left, and not {LEFT}")
        return left

    def left_alone(self, healed=False):
        self.expect(not any(self.elsewhere.iterdir()), "written elsewhere")
        if self.policy == "replace" and not healed and self.says:
            aside = self.top / "aside/f"
            stands = (aside if aside.exists() else self.here / "f").read_bytes()
            whole = (self.server.root / "f").read_bytes()
            self.expect(stands == OLD or (aside.exists() and stands == whole), "the old file is harmed")

    def is_whole(self):
        source = self.server.root / self.what
        wanted = files(self.server.root / "t") if self.what == "t/" else {"": source.read_bytes()}
        wanted = {os.path.join(self.what.strip("/"), name).rstrip("/"): data for name, data in wanted.items()}
        found = files(self.here)
        self.expect(found == wanted, f"odd: {sorted(n for n in {*wanted, *found} if wanted.get(n) != found.get(n))}")
        for name in wanted:
            self.expect(int((self.here / name).stat().st_mtime) == 1_000_000_000, f"the time of {name}")

    def expect(self, holds, otherwise):
        if not holds:
            raise Failure(otherwise)


def limited(case):
    """The running process may write no further than that; the next one may."""
    resource.prlimit(case.process.pid, resource.RLIMIT_FSIZE, (150_000, resource.RLIM_INFINITY))


def led_elsewhere(what="here"):
    def strike(case):
        (case.top / what).rename(case.top / "aside")
        (case.top / what).symlink_to(case.elsewhere)
    return strike


def led_back(what="here"):
    def heal(case):
        (case.top / what).unlink()
        (case.top / "aside").rename(case.top / what)
    return heal


def small_disk(case):
    mount(case.here, b"tmpfs", 0, "size=200k")


def own_disk(case):
    mount(case.here, b"tmpfs", 0, "size=8m")


def large_disk(case):
    mount(case.here, None, REMOUNT, "size=8m")


def read_only(case):
    case.put_old_files()
    mount(case.here, None, BIND)
    mount(case.here, None, BIND | REMOUNT | RDONLY)
    case.put_old_files = lambda: None


def taken_away(case):
    unmount(case.here)


class Silent(Case):
    """Nothing comes from the server: the row waits for it, then for its next try, then for it again."""

    def run(self, folder, server):
        self.top, self.here = folder, folder
        with socket.create_server(("127.0.0.1", 0)) as mute:
            self.mute = f"ftp://127.0.0.1:{mute.getsockname()[1]}/f"
            self.ends(self.drive("get", self.mute, folder), self.says)


def cases():
    full, large, files_ = "No space left on device", "File too large", "Too many open files"
    gone = "is not there any more"
    for policy in ("create", "replace"):
        yield Case(f"full disk, {policy}", policy=policy, early=small_disk, heal=large_disk, says=full, needs_mounts=True)
        yield Case(f"limit of a file, {policy}", policy=policy, strike=limited, says=large)
        yield Case(f"read-only, {policy}", policy=policy, early=read_only, heal=taken_away, says="Read-only file system",
                   needs_mounts=True)
        yield Case(f"led elsewhere, {policy}", policy=policy, strike=led_elsewhere(), heal=led_back(), says=gone)
    yield Case("unmounted", early=own_disk, strike=taken_away, says=gone, needs_mounts=True)
    yield Case("full disk, tree", "t/", early=small_disk, heal=large_disk, says=full, needs_mounts=True)
    yield Case("led elsewhere, tree", "t/", strike=led_elsewhere(), heal=led_back(), says=gone)
    yield Case("folder led elsewhere, tree", "t/", strike=led_elsewhere("here/t"), heal=led_back("here/t"), says="")
    for begin in (1, 3, 9):
        yield Case(f"no descriptors from socket {begin} on, tree", "t/", environment={"MACHINE_FILES": str(begin)},
                   says=files_, kept=begin > 1)
    yield Case("no steady inode numbers, tree", "t/", environment={"MACHINE_NUMBERS": "1"})
    yield Case("slow disk", environment={"MACHINE_DISK": "100"}, at_least=5)
    for hours in (5, -5):
        clock = {"MACHINE_CLOCK": str(hours * 3600)}
        yield Case(f"clock {hours:+} h", "t/", environment=clock, at_least=0.5)
        yield Silent(f"clock {hours:+} h, silent server", environment=clock, tries=1, says="", at_least=4.5)


def main(words):
    global LEFT
    with tempfile.TemporaryDirectory(prefix="corvane-machine-") as name:
        top = pathlib.Path(name)
        server = Server(top, "--login", "anonymous:")
        server.url = server.url.replace("demo:demo@", "")
        try:
            (server.root / "f").write_bytes(os.urandom(SIZE))
            for number in range(24):
                path = server.root / f"t/{number % 4}/{number}"
                path.parent.mkdir(parents=True, exist_ok=True)
                path.write_bytes(os.urandom(4_000))
            (server.root / "t/0/large").write_bytes(os.urandom(SIZE))
            for path in server.root.rglob("*"):
                os.utime(path, (1_000_000_000, 1_000_000_000))
            LEFT = ""
            well = Case("all is well")
            (top / well.name).mkdir()
            well.run(top / well.name, server)
            LEFT = (top / well.name / "left").read_text()
            return all_of([case for case in cases() if words in case.name], top, server)
        finally:
            end(server.process)


def all_of(wanted, top, server):
    def run(case):
        if case.needs_mounts and not MOUNTS:
            return "left out, for nothing can be mounted here"
        folder = top / case.name
        folder.mkdir()
        try:
            case.run(folder, server)
            return "well"
        except (Failure, OSError, subprocess.TimeoutExpired) as failure:
            return f"FAILED: {failure}"
        finally:
            if case.needs_mounts:
                unmount(folder / "here")

    with concurrent.futures.ThreadPoolExecutor(12) as pool:
        results = list(zip(wanted, pool.map(run, wanted)))
    for case, result in results:
        print(f"{case.name}: {result}")
    return 1 if any(result.startswith("FAILED") for _, result in results) else 0


if __name__ == "__main__":
    DRIVER, MACHINE, WORDS = [*sys.argv[1:], ""][:3]
    if ISOLATED not in os.environ:
        private = ["unshare", "--user", "--map-root-user", "--mount"]
        can = subprocess.run([*private, "true"], stderr=subprocess.DEVNULL, check=False).returncode == 0
        os.environ[ISOLATED] = "yes" if can else "no"
        if can:
            os.execvp(private[0], [*private, sys.executable, *sys.argv])
    sys.exit(main(WORDS))
