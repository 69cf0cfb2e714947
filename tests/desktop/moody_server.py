#!/usr/bin/python3
"""Servers that misbehave at random: moody_server.py SEED

Prints "PORT ROOT" for each of three: a patient one, a slow one and a wild one. They delay, fall silent,
close, reset, cut data, refuse, and talk nonsense. From SIGUSR1 on they behave, and end what they keep
waiting; from SIGUSR2 on they are moody again, with all files back in their places."""

import contextlib
import logging
import pathlib
import random
import runpy
import signal
import socket
import struct
import sys
import tempfile

from pyftpdlib.authorizers import DummyAuthorizer
from pyftpdlib.ioloop import IOLoop
from pyftpdlib.servers import FTPServer

DEMO = runpy.run_path(str(pathlib.Path(__file__).resolve().parents[2] / "tools/demo-server.py"))
MOODS = {"delay": 8, "silence": 1, "close": 1, "reset": 1, "421": 1, "450": 3, "550": 3, "nonsense": 1}
DATA_MOODS = {"cut": 4, "reset data": 4, "stall": 2}
WILDNESS = (1, 3, 8)  # how many of a thousand commands each weight stands for
RULED_OUT = {"421", "450", "550", "nonsense"}  # before the login, which would only keep everybody out
calm = False


def reset(channel):
    channel.socket.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, struct.pack("ii", 1, 0))
    channel.close()


class Moody:
    """What the moods add to a handler of connections."""

    wildness = 1
    held = None  # commands that came since one is kept waiting
    silent = False

    def mood(self, moods):
        roll = random.uniform(0, 1000) / self.wildness
        for name, weight in moods.items():
            roll -= weight
            if roll < 0:
                return name
        return "well"

    def pre_process_command(self, line, command, argument):
        if self.silent or self._closed:
            return None
        if self.held is not None:
            return self.held.append((line, command, argument))
        if command in ("PORT", "EPRT"):  # this server's library loses sockets where it connects itself
            return self.respond("502 There is no way in.")
        mood = "well" if calm else self.mood(MOODS)
        if mood in RULED_OUT and not self.authenticated:
            mood = "well"
        if mood == "delay":
            self.held = []
            return self.ioloop.call_later(random.uniform(0.05, 3), self.go_on, line, command, argument)
        if mood == "silence":
            self.silent = True
            return None
        if mood == "close":
            return self.close()
        if mood == "reset":
            return reset(self)
        if mood != "well":
            self.respond({"421": "421 Going down.", "450": "450 Not now.", "550": "550 I would rather not.",
                          "nonsense": "299 \x16\x03 what?"}[mood])
            return self.close_when_done() if mood == "421" else None
        if not calm and command in ("RETR", "STOR", "LIST", "MLSD", "APPE"):
            mood = self.mood(DATA_MOODS)
            if mood != "well":
                self.ioloop.call_later(random.uniform(0, 1), self.spoil, mood)
        return super().pre_process_command(line, command, argument)

    def go_on(self, line, command, argument):
        if self._closed:
            return
        held, self.held = self.held, None
        super().pre_process_command(line, command, argument)
        for each in held:
            if not self._closed:
                self.pre_process_command(*each)

    def spoil(self, mood):
        data = self.data_channel
        if calm or data is None or self._closed:
            return None
        if mood == "cut":
            data.close()
            return self.respond("426 That was it.")
        self.silent = True  # nothing more is said about it
        return data.del_channel() if mood == "stall" else reset(data)

    def relent(self):
        if self.silent:
            self.close()


def make_tree(root):
    for name, size in {"large.bin": 30_000_000, "notes.txt": 3000, "photos/a.jpg": 400_000}.items():
        (root / name).parent.mkdir(parents=True, exist_ok=True)
        (root / name).write_bytes(random.randbytes(size))
    for number in range(40):
        for name in (f"docs/{number} page.txt", f"photos/{number % 4}/{number}.jpg", f"many/{'deep/' * (number % 6)}{number}"):
            path = root / name
            with contextlib.suppress(OSError):  # another entry may have that name by now
                path.parent.mkdir(parents=True, exist_ok=True)
                path.write_bytes(random.randbytes(random.choice((0, 10, 4000, 90_000))))
    (root / "many/rows").mkdir(exist_ok=True)
    for number in range(1500):
        (root / f"many/rows/entry {number}").touch()


def main(seed):
    random.seed(seed)
    logging.basicConfig(level=logging.CRITICAL)
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(0))
    with contextlib.ExitStack() as stack:
        servers, roots = [], []
        for wildness in WILDNESS:
            name = stack.enter_context(tempfile.TemporaryDirectory(prefix="corvane-moody-", ignore_cleanup_errors=True))
            authorizer = DummyAuthorizer()
            authorizer.add_user("demo", "demo", name, perm="elradfmwMT")
            kind = DEMO["handlers"](None, 0)
            handler = type("Handler", (Moody, kind), {"wildness": wildness, "authorizer": authorizer})
            roots.append(pathlib.Path(name))
            make_tree(roots[-1])
            servers.append(FTPServer(("127.0.0.1", 0), handler))
            print(servers[-1].socket.getsockname()[1], name, flush=True)

        wanted = [False]

        def look():  # between two events: a signal may come within one
            global calm
            before, calm = calm, wanted[-1]
            if before and not calm:
                for root in roots:
                    make_tree(root)
            if calm and not before:
                for one in list(IOLoop.instance().socket_map.values()):
                    if isinstance(one, Moody):
                        one.relent()

        signal.signal(signal.SIGUSR1, lambda *_: wanted.append(True))
        signal.signal(signal.SIGUSR2, lambda *_: wanted.append(False))
        IOLoop.instance().call_every(0.1, look)
        servers[0].serve_forever(handle_exit=False)


if __name__ == "__main__":
    main(int(sys.argv[1]))
