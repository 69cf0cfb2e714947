#!/usr/bin/python3
"""Serves a sample tree on a free loopback port, or the one named with --port, until it is told to end
(SIGTERM, SIGINT).

The login is demo/demo, or the one named with --login, and may do everything. With --certificate the
server offers encryption. The first line on standard output is "PORT ROOT", the port and the directory
that is served; with --log every command and reply follows. SIGUSR1 ends the connections that stand, as
a server does with those that are idle.
"""

import argparse
import logging
import os
import pathlib
import signal
import struct
import sys
import tempfile
import zlib

from pyftpdlib.authorizers import DummyAuthorizer
from pyftpdlib.handlers import DTPHandler, FTPHandler, ThrottledDTPHandler
from pyftpdlib.ioloop import IOLoop
from pyftpdlib.servers import FTPServer

BIG_FILE = "sample 200 MB.bin"


def picture(width, height, red, green, blue):
    """A PNG file: a gradient towards the colour given."""
    rows = bytearray()
    for y in range(height):
        rows.append(0)
        for x in range(width):
            share = (x + y) / (width + height)
            rows += bytes(int(255 - (255 - part) * share) for part in (red, green, blue))

    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))

    header = struct.pack(">IIBBBBB", width, height, 8, 2, 0, 0, 0)
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", zlib.compress(bytes(rows)))
            + chunk(b"IEND", b""))


def make_tree(root):
    texts = {
        "Read me.txt": "A sample server. Everything here may be changed; it is gone when it ends.\n",
        "Documents/Letter to the editor.txt": "Dear editor,\n\nthank you.\n",
        "Documents/Übersicht.txt": "Äpfel, Öl und Süßes\n",
        "Documents/한국어 문서.txt": "안녕하세요\n",
        "Documents/Minutes/January.txt": "Nothing was decided.\n",
        "Documents/Minutes/February.txt": "Nothing was decided, again.\n",
        "Samples/naïve café.txt": "Grüße\n",
        "Samples/견본.txt": "견본\n",
        "Samples/two words.txt": "two words\n",
        "Samples/table.csv": "".join(f"{n},{n * n}\n" for n in range(2000)),
    }
    for name, text in texts.items():
        path = root / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text, encoding="utf-8")
    (root / "Pictures").mkdir()
    for number, colour in enumerate([(180, 40, 40), (40, 140, 60), (40, 60, 180)], 1):
        (root / f"Pictures/Colour {number}.png").write_bytes(picture(160, 120, *colour))
    (root / "Empty folder").mkdir()
    with open(root / "Samples" / BIG_FILE, "wb") as file:
        block = os.urandom(1 << 20)
        for number in range(200):
            file.write(struct.pack(">Q", number) + block[8:])


class Sample:
    """What the sample server adds to a handler of connections."""

    banner = "Sample server ready."
    trace = False

    def pre_process_command(self, line, command, argument):
        if self.trace:
            print("<", command, "..." if command == "PASS" else argument, flush=True)
        super().pre_process_command(line, command, argument)

    def respond(self, text, *arguments, **named):
        if self.trace:
            print(">", text, flush=True)
        super().respond(text, *arguments, **named)


def end_connections(*_):
    for one in list(IOLoop.instance().socket_map.values()):
        if isinstance(one, Sample):
            one.respond("421 You were idle for too long.")
            one.close_when_done()


def handlers(certificate, rate):
    """The class of control connections, which names that of data connections."""
    control, data = FTPHandler, DTPHandler
    if certificate:
        from pyftpdlib.handlers import TLS_DTPHandler, TLS_FTPHandler  # they want pyOpenSSL
        control, data = TLS_FTPHandler, TLS_DTPHandler
    if rate:
        data = type("Data", (ThrottledDTPHandler, data), {"read_limit": rate, "write_limit": rate})
    return type("Handler", (Sample, control), {"certfile": certificate, "dtp_handler": data})


def main():
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(0))
    signal.signal(signal.SIGINT, lambda *_: sys.exit(0))
    signal.signal(signal.SIGUSR1, end_connections)
    logging.basicConfig(level=logging.CRITICAL)
    parser = argparse.ArgumentParser()
    parser.add_argument("--log", action="store_true")
    parser.add_argument("--port", type=int, default=0)
    parser.add_argument("--rate", type=int, default=0, help="bytes in a second")
    parser.add_argument("--login", default="demo:demo", help="NAME:PASSWORD")
    parser.add_argument("--certificate", help="a file with key and certificate")
    options = parser.parse_args()
    with tempfile.TemporaryDirectory(prefix="corvane-demo-") as name:
        root = pathlib.Path(name)
        make_tree(root)
        authorizer = DummyAuthorizer()
        authorizer.add_user(*options.login.split(":", 1), name, perm="elradfmwMT")
        handler = handlers(options.certificate, options.rate)
        handler.authorizer = authorizer
        handler.trace = options.log
        server = FTPServer(("127.0.0.1", options.port), handler)
        try:
            print(server.socket.getsockname()[1], name, flush=True)
            server.serve_forever(handle_exit=False)
        finally:
            server.close_all()


if __name__ == "__main__":
    main()
