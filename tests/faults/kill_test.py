#!/usr/bin/python3
"""Kills the driver again and again in the middle of its transfers, which the next one goes on with:
trees and large files, up and down at once, against a real server.

usage: kill_test.py DRIVER [KILLS [SEED]]

After each kill whatever the kept queue calls done has to be whole, and nothing may touch it any
more; in the end everything has to be equal to its source. In every other round the files replace
others, and each of them has to be one or the other at any time.
"""

import contextlib
import hashlib
import json
import os
import pathlib
import random
import shutil
import signal
import sqlite3
import subprocess
import sys
import tempfile
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
SERVERS = pathlib.Path(os.environ.get("CORVANE_TEST_SERVERS") or ROOT / "build/servers")
FILES, FOLDERS, LARGE = 400, 12, 24 << 20
FILE, DIRECTORY = 1, 2
MOVED, DONE = 3, 4  # states of jobs
PACE = 12 << 20     # bytes a second, so that there is something to kill


def make(top):
    """A tree with an empty folder, and a large file beside it."""
    for number in range(FILES):
        path = top / "tree" / f"f{number % FOLDERS}" / f"g{number % 3}" / f"{number} ö.dat"
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(os.urandom(random.randint(0, 60 << 10)))
    (top / "tree" / "nothing").mkdir()
    (top / "large").write_bytes(os.urandom(LARGE))


def hashed(path):
    return hashlib.sha256(path.read_bytes()).digest()


def contents(top):
    return {str(path.relative_to(top)): path.is_dir() or hashed(path) for path in top.rglob("*")}


def mark(path):
    """Another one when somebody has written the file, or put another in its place."""
    status = path.stat()
    return status.st_ino, status.st_mtime_ns, status.st_ctime_ns


def done(queue, folder):
    """The files that the kept queue calls done: pairs of paths on the server and here."""
    for part in ("", "-wal"):
        if os.path.exists(f"{queue}{part}"):
            shutil.copy(f"{queue}{part}", f"{folder}/copy{part}")
    with contextlib.closing(sqlite3.connect(f"{folder}/copy")) as database:
        assert database.execute("PRAGMA quick_check").fetchone() == ("ok",)
        rows = [row for row, in database.execute("SELECT id FROM rows")]
        jobs = database.execute("SELECT row, id, parent, kind, state, remote, ifnull(local, remote),"
                                " place FROM jobs ORDER BY row, id").fetchall()
    for path in pathlib.Path(folder).glob("copy*"):
        path.unlink()
    places, pairs = {}, []
    for row, job, parent, kind, state, remote, local, place in jobs:
        if parent is not None:
            above, below = places[row, parent]
            remote, local = f"{above}/{remote}", f"{below}/{local}"
        places[row, job] = place, local
        if kind == FILE and state in (MOVED, DONE):
            pairs.append((remote, local))
    return rows, pairs


class Round:
    """All of it from nothing to its end. `server` and `here` hold "out", from where things go."""

    def __init__(self, driver, port, server, here, replaces):
        self.here, self.server = here, server
        self.queue = here / "queue.sqlite"
        for top in (server / "in", here / "in"):
            shutil.rmtree(top, ignore_errors=True)
            top.mkdir()
        self.queue.unlink(missing_ok=True)
        self.sides = [(server / "out", here / "in"), (here / "out", server / "in")]
        self.old = {}
        if replaces:
            for source, target in self.sides:
                for path in [source / "large", *(source / "tree").rglob("1*.dat")]:
                    aside = target / path.relative_to(source)
                    aside.parent.mkdir(parents=True, exist_ok=True)
                    aside.write_bytes(os.urandom(random.randint(1, 90 << 10)))
                    self.old[aside] = hashed(aside)
        url = f"ftp://anonymous@127.0.0.1:{port}{server}"
        self.command = [driver, "queue", self.queue, "--limit", str(PACE), "--tries", "3",
                        "--policy", "replace" if replaces else "create"]
        self.first = ["get", f"{url}/out/tree/", here / "in", "put", f"{url}/in/", here / "out/large",
                      "put", f"{url}/in/", here / "out/tree", "get", f"{url}/out/large", here / "in"]
        self.marks = {}
        self.sources = {}

    def run(self, seconds):
        """Whether it came to its end before it was killed."""
        command = self.command + (self.first or ["--resume"])
        with open(self.here / "said", "w+") as said, open(self.here / "errors", "a+") as errors:
            process = subprocess.Popen([str(word) for word in command], stdout=said, stderr=errors)
            try:
                code = process.wait(seconds)
            except subprocess.TimeoutExpired:
                process.kill()
                code = process.wait()
            said.seek(0)
            # The last line may have been cut.
            rows = [json.loads(line) for line in said if line.endswith("}\n")]
        if self.queue.exists() and self.rows():
            self.first = None
        bad = [row for row in rows if row["state"] != "done"]
        if bad or code not in (0, -signal.SIGKILL):
            sys.exit(f"{code}: {bad}\n{(self.here / 'errors').read_text()[-3000:]}")
        return code == 0

    def rows(self):
        return done(self.queue, self.here)[0]

    def check(self):
        for remote, local in done(self.queue, self.here)[1]:
            down = local.startswith(f"{self.here / 'in'}/")
            source, target = map(pathlib.Path, (remote, local) if down else (local, remote))
            if target in self.marks:
                continue
            if not target.exists() or hashed(source) != hashed(target):
                sys.exit(f"{target} is called done, and is not")
            self.marks[target] = mark(target)
        for target, known in self.marks.items():
            if mark(target) != known:
                sys.exit(f"{target} was done, and was written again")
        for target, old in self.old.items():
            source = next(at / target.relative_to(to) for at, to in self.sides if target.is_relative_to(to))
            if not target.exists() or hashed(target) not in (old, hashed(source)):
                sys.exit(f"{target} is neither the old file nor the new one")

    def check_end(self):
        self.check()
        for source, target in self.sides:
            wanted, found = contents(source), contents(target)
            if wanted != found:
                odd = [name for name in wanted.keys() | found.keys() if wanted.get(name) != found.get(name)]
                sys.exit(f"{target} is not {source}: {odd[:10]} of {len(odd)}")
        if self.rows():
            sys.exit("something is left in the queue")


@contextlib.contextmanager
def served(root):
    server = subprocess.Popen([sys.executable, ROOT / "tools/test-server.py", "vsftpd", root],
                              stdout=subprocess.PIPE, start_new_session=True)
    try:
        line = server.stdout.readline().split()
        if not line:
            sys.exit("the server did not start")
        yield int(line[0])
    finally:
        with contextlib.suppress(ProcessLookupError):
            os.killpg(server.pid, signal.SIGTERM)
        server.wait()


def main(driver, kills=20, seed=None):
    if not (SERVERS / "usr/sbin/vsftpd").exists():
        print("there is no server to try it with: tools/install-test-servers")
        sys.exit(77)
    seed = int(seed) if seed else time.time_ns() % 1_000_000
    print(f"seed {seed}", flush=True)
    random.seed(seed)
    with tempfile.TemporaryDirectory(prefix="corvane-kill-") as folder:
        server, here = pathlib.Path(folder, "server"), pathlib.Path(folder, "here")
        for top in (server, here):
            make(top / "out")
        left, rounds, files = int(kills), 0, 0
        with served(server) as port:
            while left > 0:
                one = Round(driver, port, server, here, rounds % 2 == 1)
                while not one.run(random.uniform(0.05, 0.9) if left > 0 else 60):
                    if left <= 0:
                        sys.exit("it does not come to its end")
                    one.check()
                    left -= 1
                one.check_end()
                rounds, files = rounds + 1, files + len(one.marks)
    print(f"{kills} kills in {rounds} rounds; {files} files were done before a kill, and stayed so")


if __name__ == "__main__":
    main(*sys.argv[1:])
