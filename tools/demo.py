#!/usr/bin/python3
"""Shows the client with the sample server: tools/demo.py PROGRAM.

With a display the window is the user's. Without one a virtual display is started and the main job
is done through the real controls: a directory is entered, a file downloaded and compared with the
server's, and a picture of the screen saved as build/demo.png.
"""

import filecmp
import os
import pathlib
import sys
import tempfile

from desktop import (TOOLS, Failure, Screen, Server, end, private_environment, start, try_keys,
                     wait_for)

PICTURE = TOOLS.parent / "build" / "demo.png"
DIRECTORY, FILE = "Samples", "sample 200 MB.bin"


def drive(screen, server, client, downloads):
    browser = screen.window("demo@127.0.0.1")
    print("opened a browser window")
    screen.place(browser, 4, 24, 760, 840)
    wait_for("the listing", lambda: server.has("< LIST", "> 226"))

    seen = len(server.lines())
    try_keys(f"entering {DIRECTORY}", lambda: screen.type(browser, DIRECTORY, "Return"),
             lambda: server.has(f"< CWD {DIRECTORY}", "> 250", "< LIST", "> 226", after=seen))
    print(f'entered the directory "{DIRECTORY}" with type-ahead and Return')

    try_keys(f"downloading {FILE}", lambda: screen.type(browser, FILE[:6], "ctrl+d"),
             lambda: server.has(f"< RETR {FILE}", after=seen))
    print(f'started the download of "{FILE}" with Ctrl+D')
    transfers = screen.window("Transfer List")
    screen.place(transfers, 776, 24, 496, 400)

    original, copy = server.root / DIRECTORY / FILE, downloads / FILE
    wait_for("the whole file", lambda: client.poll() is not None or copy.exists()
             and copy.stat().st_size == original.stat().st_size
             and server.has(f"< RETR {FILE}", "> 226", after=seen), 30)
    if client.poll() is not None:
        raise Failure(f"the client ended with code {client.returncode}")
    if not filecmp.cmp(original, copy, shallow=False):
        raise Failure(f"{copy} differs from the server's file")
    print(f"downloaded {copy.stat().st_size} bytes, equal to the server's byte by byte")


def alone(program, folder):
    """The demo without anybody watching."""
    environment, downloads = private_environment(folder)
    server = screen = client = None
    try:
        server = Server(folder)
        print(f"started the sample server at {server.url}")
        screen = Screen(environment, folder)
        print(f"started the virtual display {environment['DISPLAY']}")
        client = start([program, server.url], env=environment)
        try:
            drive(screen, server, client, downloads)
        finally:
            screen.picture(PICTURE)
            print(f"saved {PICTURE.relative_to(TOOLS.parent)}")
        if not end(client):
            raise Failure("the client did not end within two seconds of being asked")
        print("ended the client")
    finally:
        if client:
            end(client)
        if screen:
            screen.close()
        if server:
            end(server.process)


def watched(program, folder):
    # Elsewhere a client that runs already would take the request, and the demo would be over.
    environment = {**os.environ, "XDG_RUNTIME_DIR": str(folder)}
    if wayland := os.environ.get("WAYLAND_DISPLAY"):
        environment["WAYLAND_DISPLAY"] = os.path.join(os.environ.get("XDG_RUNTIME_DIR", ""), wayland)
    server = Server(folder)
    print(f"corvane: the sample server is {server.url}, it ends with the client")
    try:
        return start([program, server.url], env=environment).wait()
    except KeyboardInterrupt:
        return 0
    finally:
        end(server.process)


def main():
    with tempfile.TemporaryDirectory(prefix="corvane-demo-") as name:
        if os.environ.get("DISPLAY") or os.environ.get("WAYLAND_DISPLAY"):
            return watched(sys.argv[1], pathlib.Path(name))
        try:
            alone(sys.argv[1], pathlib.Path(name))
        except Failure as failure:
            print(f"corvane: the demo FAILED: {failure}")
            return 1
        print("corvane: the demo passed")
        return 0


if __name__ == "__main__":
    sys.stdout.reconfigure(line_buffering=True)
    sys.exit(main())
