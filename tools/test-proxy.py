#!/usr/bin/python3
"""Runs a proxy on a free loopback port: tools/test-proxy.py microsocks|tinyproxy [LOGIN]

Prints "PORT USER PASSWORD" once it answers and ends it when told to end. With LOGIN it lets in
nobody but that user; without, USER and PASSWORD are of no use.
"""

import ctypes
import pathlib
import signal
import socket
import subprocess
import sys
import tempfile
import time

USER, PASSWORD = "tester", "secret"

TINYPROXY = """Port {port}
Listen 127.0.0.1
Allow 127.0.0.1
Timeout 60
MaxClients 50
LogFile "{home}/log"
"""


def free_port():
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


def command(name, port, login, home):
    if name == "microsocks":
        return [name, "-i", "127.0.0.1", "-p", str(port), *(["-u", USER, "-P", PASSWORD] if login else [])]
    file = home / "tinyproxy.conf"
    file.write_text(TINYPROXY.format(port=port, home=home) + (f"BasicAuth {USER} {PASSWORD}\n" if login else ""))
    return [name, "-d", "-c", str(file)]


def answers(port):
    try:
        socket.create_connection(("127.0.0.1", port), 3).close()
        return True
    except OSError:
        return False


def main(name, login=False):
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(0))
    with tempfile.TemporaryDirectory(prefix="corvane-proxy-") as folder:
        port = free_port()
        proxy = subprocess.Popen(command(name, port, login, pathlib.Path(folder)), stdin=subprocess.DEVNULL,
                                 stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                                 preexec_fn=lambda: ctypes.CDLL(None).prctl(1, signal.SIGKILL))  # PR_SET_PDEATHSIG
        try:
            deadline = time.monotonic() + 5
            while not answers(port):
                if proxy.poll() is not None or time.monotonic() > deadline:
                    sys.exit(f"{name} did not start")
                time.sleep(0.01)
            print(port, USER, PASSWORD, flush=True)
            proxy.wait()
        finally:
            proxy.kill()
            proxy.wait()


if __name__ == "__main__":
    main(*sys.argv[1:3])
