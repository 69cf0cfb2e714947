#!/usr/bin/python3
"""Runs one of the unpacked servers on a free loopback port with a private configuration:
tools/test-server.py vsftpd|proftpd|pure-ftpd ROOT

Prints "PORT USER PASSWORD" once the server answers and ends it when told to end. The login starts
in ROOT, which Pure-FTPd's user comes to own; uploads, resuming, overwriting and deleting are
allowed, in active and passive mode. CORVANE_TEST_SERVERS names the prefix that
tools/install-test-servers unpacked into.
"""

import ctypes
import glob
import grp
import os
import pathlib
import pwd
import signal
import socket
import subprocess
import sys
import tempfile
import time

PREFIX = pathlib.Path(os.environ.get("CORVANE_TEST_SERVERS")
                      or pathlib.Path(__file__).resolve().parent.parent / "build" / "servers")
ENVIRONMENT = {"LD_LIBRARY_PATH": ":".join(glob.glob(str(PREFIX / "usr/lib/*-linux-gnu")))}
NOBODY = 65534
# "secret" in the cheapest form that the servers take: a costly one would be all that tests measure.
HASH = "$1$corvane$9DdHOUgT/LsPEZVtUVHTY/"

# The launching user serves anonymous logins: the only way that needs neither root nor PAM.
VSFTPD = """listen=YES
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
anon_mkdir_write_enable=YES
anon_other_write_enable=YES
anon_umask=022
anon_world_readable_only=NO
connect_from_port_20=NO
xferlog_enable=NO
secure_chroot_dir={home}
"""

PROFTPD = """ServerType standalone
DefaultAddress 127.0.0.1
SocketBindTight on
Port {port}
UseIPv6 off
UseReverseDNS off
DelayEngine off
User {user}
Group {group}
RootLogin on
UseFtpUsers off
RequireValidShell off
AuthOrder mod_auth_file.c
AuthUserFile {home}/users
AuthGroupFile {home}/groups
AllowOverwrite on
AllowStoreRestart on
AllowRetrieveRestart on
ControlsEngine off
WtmpLog off
TransferLog none
SystemLog none
ScoreboardFile {home}/scoreboard
PidFile {home}/pid
ModulePath {prefix}/usr/lib/proftpd
LoadModule mod_copy.c
"""


def free_port():
    """A port that nobody uses, with the one below free too: active data may come from there."""
    while True:
        with socket.socket() as upper, socket.socket() as lower:
            upper.bind(("127.0.0.1", 0))
            port = upper.getsockname()[1]
            try:
                lower.bind(("127.0.0.1", port - 1))
                return port
            except OSError:
                continue


def private_file(path, text):
    path.touch(mode=0o600)
    path.write_text(text)
    return str(path)


def command(name, root, home, port):
    """The server's command line, its files written into `home`."""
    uid, gid = os.geteuid(), os.getegid()
    values = {"prefix": PREFIX, "port": port, "root": root, "home": home, "user": pwd.getpwuid(uid).pw_name,
              "group": grp.getgrgid(gid).gr_name}
    if name == "vsftpd":
        return [private_file(home / "vsftpd.conf", VSFTPD.format(**values))]
    if name == "proftpd":
        private_file(home / "users", f"tester:{HASH}:{uid}:{gid}::{root}:/bin/false\n")
        private_file(home / "groups", f"testers:x:{gid}:\n")
        return ["-n", "-c", private_file(home / "proftpd.conf", PROFTPD.format(**values))]
    # It refuses root as a login; the chroot ("/./") spares nobody the way down to the tree.
    for path in [root, *root.rglob("*")]:
        os.chown(path, NOBODY, NOBODY, follow_symlinks=False)
    users = private_file(home / "users", f"tester:{HASH}:{NOBODY}:{NOBODY}::{root}/./::::::::::::\n")
    subprocess.run([PREFIX / "usr/bin/pure-pw", "mkdb", users + ".pdb", "-f", users],
                   env=ENVIRONMENT, check=True)
    return ["-4", "-H", "-E", "-c20", "-C20", "-u1", "-S", f"127.0.0.1,{port}",
            "-l", f"puredb:{users}.pdb", "-g", str(home / "pid")]


def answers(port):
    try:
        with socket.create_connection(("127.0.0.1", port), 3) as connection:
            return connection.recv(3) == b"220"
    except OSError:
        return False


def main(name, root):
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(0))
    with tempfile.TemporaryDirectory(prefix="corvane-server-") as folder:
        home, port = pathlib.Path(folder), free_port()
        line = [str(PREFIX / "usr/sbin" / name), *command(name, pathlib.Path(root), home, port)]
        log = open(home / "log", "w+b")
        server = subprocess.Popen(line, env=ENVIRONMENT, stdin=subprocess.DEVNULL,
                                  stdout=log, stderr=log, preexec_fn=lambda: ctypes.CDLL(
                                      None).prctl(1, signal.SIGKILL))  # PR_SET_PDEATHSIG
        try:
            deadline = time.monotonic() + 5
            while not answers(port):
                if server.poll() is not None or time.monotonic() > deadline:
                    log.seek(0)
                    sys.exit(f"{name} did not start: {log.read().decode(errors='replace')}")
                time.sleep(0.01)
            print(port, "anonymous" if name == "vsftpd" else "tester", "secret", flush=True)
            server.wait()
        finally:
            server.kill()
            server.wait()


if __name__ == "__main__":
    main(*sys.argv[1:3])
