#!/usr/bin/python3
"""How long the program's windows take to notice something: pulse.py FOLDER LIMIT PROGRAM DISPLAY

Sends the program with that process number, whose socket stands below the folder, empty requests,
which it refuses on the thread of its windows. When it is told to end, or the program has, it prints
how many there were, the slowest in milliseconds, and when others were slower than the limit. What
that thread, the display and this process have waited for a processor is not counted, so that other
programs do not matter. A process of its own shares no interpreter with whoever uses the windows."""

import os
import pathlib
import signal
import socket
import sys
import time


def main(folder, limit, *processes):
    place = next(path for path in pathlib.Path(folder).rglob("*") if path.is_socket())
    schedules = [pathlib.Path(f"/proc/{each}/task/{each}/schedstat") for each in (*processes, os.getpid())]
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(0))
    slow, count, worst = [], 0, 0.0

    def waited():
        return sum(int(each.read_text().split()[1]) for each in schedules) / 1e9

    try:
        while True:
            time.sleep(0.01)
            with socket.socket(socket.AF_UNIX) as line:
                line.connect(str(place))
                time.sleep(0.01)
                before, begin = waited(), time.monotonic()
                line.sendall(b"\n")
                if not line.recv(100):
                    continue  # it hangs up after a second: then the accepting itself was slow
                took = time.monotonic() - begin - (waited() - before)
            count, worst = count + 1, max(worst, took)
            if took > float(limit):
                slow.append(f"slow: {took * 1000:.0f} ms at {time.strftime('%T')}")
    except OSError:  # the program has ended
        pass
    finally:
        print(f"{count} beats, the slowest {worst * 1000:.0f} ms", *slow, sep="\n", flush=True)


if __name__ == "__main__":
    main(*sys.argv[1:])
