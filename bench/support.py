"""What the measuring programs share: a private vsftpd, the clients that carry a tree, and what a
child process costs."""

import contextlib
import ctypes
import fcntl
import os
import pathlib
import random
import shutil
import signal
import socket
import struct
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


def end_with_parent():
    ctypes.CDLL(None).prctl(1, signal.SIGTERM)  # PR_SET_PDEATHSIG


def stop(process):
    """Ends a process that leads a group of its own, with what it has started."""
    with contextlib.suppress(ProcessLookupError):
        os.killpg(process.pid, signal.SIGTERM)
    process.wait(10)


def bring_up(device):
    """A network device of the network that this process is in."""
    request, up = 0x8914, 0x1  # SIOCSIFFLAGS, IFF_UP
    with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as any_socket:
        fcntl.ioctl(any_socket, request, struct.pack("16sH22x", device, up))


def own_network():
    """Puts this process and its children into a new network, which is empty but for loopback; False
    where it may not."""
    new_network = 0x40000000  # CLONE_NEWNET
    if ctypes.CDLL(None, use_errno=True).unshare(new_network) != 0:
        return False
    bring_up(b"lo")
    return True


def install_servers():
    subprocess.run([ROOT / "tools/install-test-servers"], check=True)


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
    install_servers()
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


def make_tree(top, files, folders):
    """Files of 1 to 16 KiB, spread evenly."""
    for number in range(files):
        path = top / f"folder {number % folders}" / f"file {number}.dat"
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(os.urandom(random.randint(1 << 10, 16 << 10)))


def contents(top):
    return {path.relative_to(top): path.is_dir() or path.read_bytes() for path in top.rglob("*")}


def lftp(host, port, command, passive="yes"):
    return ["lftp", "-c", f"set cmd:interactive no; set net:max-retries 1; set ftp:passive-mode {passive};"
            f"open -u anonymous,x ftp://{host}:{port}; {command}"]


def rclone(host, port):
    """How to call it; the server is ":ftp:". Nothing where it is not installed."""
    if not shutil.which("rclone"):
        return None
    secret = subprocess.run(["rclone", "obscure", "x"], check=True, capture_output=True, text=True)
    return ["rclone", "--config", "/dev/null", "--ftp-host", host, "--ftp-port", str(port), "--ftp-user",
            "anonymous", "--ftp-pass", secret.stdout.strip(), "-q", "--log-file", "/dev/null"]


def tree_clients(host, port, root, local, counts):
    """For each direction the folder that each run makes, and the commands by client and number of
    connections. `root` holds "tree", and `local` "upload"."""
    ours = program("bench/corvane-drive")
    served = f"ftp://anonymous:x@{host}:{port}{root}"  # vsftpd shows the machine's own paths
    sent = str(local / "upload")
    peer = rclone(host, port)
    if not peer:
        print("rclone is not installed: without it")

    def all_of(arguments, mirror, copy):
        commands = {}
        for count in counts:
            commands["ours", count] = [ours, *arguments, "--connections", str(count)]
            commands["lftp", count] = lftp(host, port, mirror.format(count))
        if peer:
            commands["rclone", 8] = [*peer, "copy", *copy, "--transfers", "8"]
        return commands

    return {
        "download": (local / "tree", all_of(["get", f"{served}/tree/", str(local)],
                                            f"mirror -P{{}} --no-perms tree {local}/tree",
                                            [f":ftp:{root}/tree", f"{local}/tree"])),
        "upload": (root / "upload", all_of(["put", f"{served}/", sent],
                                           f"mirror -R -P{{}} --no-perms {sent} upload",
                                           [sent, f":ftp:{root}/upload"])),
    }


def ratios(walls, name):
    """Of the median wall time to that of the best peer with one connection, or with several."""
    single = name[1] == 1
    peers = {peer: wall for peer, wall in walls.items()
             if not peer[0].startswith("ours") and (peer[1] == 1) == single}
    best = min(peers, key=peers.get)
    return f"{walls[name] / walls[best]:.2f} of {best[0]} {best[1]}"


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
