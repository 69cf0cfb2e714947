"""What the measuring programs share: a private vsftpd and what a child process costs."""

import contextlib
import os
import pathlib
import pwd
import shutil
import signal
import socket
import subprocess
import sys
import tempfile
import time

BUILD = pathlib.Path(os.environ.get("CORVANE_BENCH_BUILD",
                                    pathlib.Path(__file__).parent.parent / "build/bench"))

CONFIGURATION = """listen=YES
listen_ipv6=NO
listen_address=127.0.0.1
listen_port={port}
background=NO
run_as_launching_user=YES
seccomp_sandbox=NO
local_enable=NO
anonymous_enable=YES
no_anon_password=YES
ftp_username={user}
anon_root={root}
allow_writeable_chroot=YES
write_enable=YES
anon_upload_enable=YES
anon_other_write_enable=YES
anon_umask=022
anon_world_readable_only=NO
connect_from_port_20=NO
xferlog_enable=NO
secure_chroot_dir={home}
"""


def program(name):
    path = BUILD / name
    if not path.exists():
        sys.exit(f"no {path}: cmake --preset bench && cmake --build --preset bench")
    return str(path)


def free_port():
    with socket.create_server(("127.0.0.1", 0)) as listener:
        return listener.getsockname()[1]


def answers(port):
    try:
        with socket.create_connection(("127.0.0.1", port), 1) as connection:
            return connection.recv(3) == b"220"
    except OSError:
        return False


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
def vsftpd(root):
    """Serves `root` to the user "anonymous" on a loopback port, which it answers."""
    server = os.environ.get("VSFTPD") or shutil.which("vsftpd", path="/usr/sbin:/usr/bin")
    if server is None:
        sys.exit("no vsftpd: install it, or name it in VSFTPD")
    with folder() as home:
        port = free_port()
        file = home / "vsftpd.conf"
        file.write_text(CONFIGURATION.format(port=port, root=root, home=home,
                                             user=pwd.getpwuid(os.geteuid()).pw_name))
        process = subprocess.Popen([server, str(file)], start_new_session=True)
        try:
            until = time.monotonic() + 5
            while not answers(port):
                if process.poll() is not None or time.monotonic() > until:
                    sys.exit("vsftpd did not start")
                time.sleep(0.05)
            yield port
        finally:
            stop(process)


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
