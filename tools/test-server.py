#!/usr/bin/python3
"""Runs one of the unpacked servers on a free loopback port with a private configuration:
tools/test-server.py vsftpd|proftpd|pure-ftpd ROOT [--tls explicit|implicit] [--max-tls 1.2|1.3]
                     [--ipv6 | --address ADDRESS]

It listens on 127.0.0.1, with --ipv6 on ::1, or on the address that is named. With --tls it offers encryption with a
certificate made for "localhost", and with --tls implicit it begins with that (which Pure-FTPd
cannot); data connections have to resume the session where the server can ask for that. Prints
"PORT USER PASSWORD" once the server answers and ends it when told to end. The login starts in ROOT,
which Pure-FTPd's user comes to own; uploads, resuming, overwriting and deleting are allowed, in
active and passive mode. CORVANE_TEST_SERVERS names the prefix that tools/install-test-servers
unpacked into.
"""

import argparse
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
VSFTPD_TLS = """ssl_enable=YES
allow_anon_ssl=YES
require_ssl_reuse=YES
ssl_ciphers=HIGH
rsa_cert_file={home}/certificate
rsa_private_key_file={home}/certificate
implicit_ssl={implicit}
"""

PROFTPD_TLS = """LoadModule mod_tls.c
TLSEngine on
TLSLog none
TLSRSACertificateFile {home}/certificate
TLSRSACertificateKeyFile {home}/certificate
TLSOptions {options}
"""

# Servers leave it to the library which versions they speak.
OPENSSL = """openssl_conf = top
[top]
ssl_conf = ssl
[ssl]
system_default = default
[default]
MaxProtocol = TLSv{version}
"""

VSFTPD = """listen={ipv4}
listen_ipv6={ipv6}
listen_address{six}={address}
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
DefaultAddress {address}
SocketBindTight on
Port {port}
UseIPv6 {on}
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
LoadModule mod_digest.c
"""


def free_port(address):
    """A port that nobody uses, with the one below free too: active data may come from there."""
    while True:
        family = socket.AF_INET6 if ":" in address else socket.AF_INET
        with socket.socket(family) as upper, socket.socket(family) as lower:
            upper.bind((address, 0))
            port = upper.getsockname()[1]
            try:
                lower.bind((address, port - 1))
                return port
            except OSError:
                continue


def private_file(path, text):
    path.touch(mode=0o600)
    path.write_text(text)
    return str(path)


def make_certificate(home):
    """Certificate and key in one file, for "localhost" and its addresses."""
    path = private_file(home / "certificate", "")
    subprocess.run(["openssl", "req", "-x509", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:P-256",
                    "-nodes", "-days", "2", "-subj", "/CN=localhost", "-addext",
                    "subjectAltName=DNS:localhost,IP:127.0.0.1,IP:::1",
                    "-keyout", home / "key", "-out", home / "chain"],
                   check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    pathlib.Path(path).write_bytes((home / "key").read_bytes() + (home / "chain").read_bytes())


def command(name, root, home, address, port, tls):
    """The server's command line, its files written into `home`."""
    uid, gid = os.geteuid(), os.getegid()
    six = ":" in address
    values = {"prefix": PREFIX, "address": address, "port": port, "root": root, "home": home,
              "user": pwd.getpwuid(uid).pw_name, "group": grp.getgrgid(gid).gr_name,
              "ipv4": "NO" if six else "YES", "ipv6": "YES" if six else "NO",
              "six": "6" if six else "", "on": "on" if six else "off"}
    if name == "vsftpd":
        text = VSFTPD + (VSFTPD_TLS if tls else "")
        values["implicit"] = "YES" if tls == "implicit" else "NO"
        return [private_file(home / "vsftpd.conf", text.format(**values))]
    if name == "proftpd":
        private_file(home / "users", f"tester:{HASH}:{uid}:{gid}::{root}:/bin/false\n")
        private_file(home / "groups", f"testers:x:{gid}:\n")
        text = PROFTPD + (PROFTPD_TLS if tls else "")
        values["options"] = "UseImplicitSSL" if tls == "implicit" else "NoEmptyFragments"
        return ["-n", "-c", private_file(home / "proftpd.conf", text.format(**values))]
    # It refuses root as a login; the chroot ("/./") spares nobody the way down to the tree.
    for path in [root, *root.rglob("*")]:
        os.chown(path, NOBODY, NOBODY, follow_symlinks=False)
    users = private_file(home / "users", f"tester:{HASH}:{NOBODY}:{NOBODY}::{root}/./::::::::::::\n")
    subprocess.run([PREFIX / "usr/bin/pure-pw", "mkdb", users + ".pdb", "-f", users],
                   env=ENVIRONMENT, check=True)
    return ["-6" if six else "-4", "-H", "-E", "-c20", "-C20", "-u1", "-S", f"{address},{port}",
            "-l", f"puredb:{users}.pdb", "-g", str(home / "pid"),
            *(["-Y", "1", "-2", str(home / "certificate")] if tls else [])]


def answers(address, port, tls):
    try:
        with socket.create_connection((address, port), 3) as connection:
            return tls == "implicit" or connection.recv(3) == b"220"
    except OSError:
        return False


def main(name, root, address, tls, version):
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(0))
    with tempfile.TemporaryDirectory(prefix="corvane-server-") as folder:
        home, port = pathlib.Path(folder), free_port(address)
        if tls:
            make_certificate(home)
            ENVIRONMENT["OPENSSL_CONF"] = private_file(home / "openssl", OPENSSL.format(version=version))
        line = [str(PREFIX / "usr/sbin" / name), *command(name, pathlib.Path(root), home, address, port, tls)]
        log = open(home / "log", "w+b")
        server = subprocess.Popen(line, env=ENVIRONMENT, stdin=subprocess.DEVNULL,
                                  stdout=log, stderr=log, preexec_fn=lambda: ctypes.CDLL(
                                      None).prctl(1, signal.SIGKILL))  # PR_SET_PDEATHSIG
        try:
            deadline = time.monotonic() + 5
            while not answers(address, port, tls):
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
    arguments = argparse.ArgumentParser()
    arguments.add_argument("name")
    arguments.add_argument("root")
    arguments.add_argument("--tls", choices=["explicit", "implicit"])
    arguments.add_argument("--max-tls", choices=["1.2", "1.3"], default="1.3")
    arguments.add_argument("--ipv6", dest="address", action="store_const", const="::1")
    arguments.add_argument("--address")
    arguments.set_defaults(address="127.0.0.1")
    given = arguments.parse_args()
    main(given.name, given.root, given.address, given.tls, given.max_tls)
