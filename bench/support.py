"""What the measuring programs share: a private vsftpd and what a child process costs."""

import contextlib
import os
import pathlib
import shutil
import signal
import subprocess
import sys
import tempfile
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent
BUILD = pathlib.Path(os.environ.get("CORVANE_BENCH_BUILD", ROOT / "build/bench"))


def program(name):
    path = BUILD / name
    if not path.exists():
        sys.exit(f"no {path}: cmake --preset bench && cmake --build --preset bench")
    return str(path)


def stop(process):
    """Ends a process that leads a group of its own, with what it has started."""
    with contextlib.suppress(ProcessLookupError):
        os.killpg(process.pid, signal.SIGTERM)
    process.wait(10)


@contextlib.contextmanager
def folder():
    """A temporary folder; TMPDIR says on which disk."""
    path = pathlib.Path(tempfile.mkdtemp(prefix="corvane-bench-"))
    try:
        yield path
    finally:
        shutil.rmtree(path)


@contextlib.contextmanager
def vsftpd(root, tls=False):
    """Serves `root` to the user "anonymous" on a loopback port, which it answers; with `tls` it
    offers encryption."""
    subprocess.run([ROOT / "tools/install-test-servers"], check=True)
    options = ["--tls", "explicit"] if tls else []
    server = subprocess.Popen([sys.executable, ROOT / "tools/test-server.py", "vsftpd", str(root), *options],
                              stdout=subprocess.PIPE, start_new_session=True)
    try:
        line = server.stdout.readline().split()
        if not line:
            sys.exit("vsftpd did not start")
        yield int(line[0])
    finally:
        stop(server)


def timed(command):
    """Runs a client; wall seconds and seconds of CPU. Ends this program when the client fails."""
    begin = time.perf_counter()
    process = subprocess.Popen(command, stdout=subprocess.DEVNULL)
    _, status, usage = os.wait4(process.pid, 0)
    wall = time.perf_counter() - begin
    process.returncode = os.waitstatus_to_exitcode(status)
    if process.returncode != 0:
        sys.exit(f"failed: {command}")
    return wall, usage.ru_utime + usage.ru_stime
