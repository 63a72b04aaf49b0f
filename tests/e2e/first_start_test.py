#!/usr/bin/env python3
"""The first start on a machine: "/quit" with no copy running ends at once
and touches nothing; a plain start creates the data file, shows the main
form and keeps running until a later start says "/quit"."""

import os
import sys

from x11_session import SCREEN_H, SCREEN_W, check, main, poll


def test(session):
    # Trimmed and lowered before it is looked at, and read before any setting.
    early = session.start("  /QUIT  ")
    check(early.wait() == 0, f"'/QUIT' with no copy running ended with {early.popen.returncode}")
    check(not os.path.exists(session.data_file), "'/quit' with no copy running wrote the data file")
    check(session.titled("Ostrivane ") == [], "'/quit' with no copy running showed the form")

    first = session.start()
    poll(lambda: session.titled("Ostrivane "), "the main form, caption 'Ostrivane ' with its blank")
    check(first.running(), "the program ended after its start")
    with open(session.data_file, "rb") as f:
        text = f.read()
    lines = text.split(b"\r\n")
    check(lines[:3] == [b"[Defaults]", b"Defaults=0,0,-2,-2,255,1,100,0,",
                        f"ScreenRes={SCREEN_W}x{SCREEN_H}".encode()],
          f"data file of the first run starts {lines[:3]}")
    check(lines[3].startswith(b"PC=") and len(lines[3]) > 3, f"no computer name in {lines[3]!r}")
    check(b"\n" not in text.replace(b"\r\n", b""), "the data file has line ends other than CR LF")
    check(session.marker_windows() == [], "line windows without a group")

    quit_ = session.start("/quit")
    check(quit_.wait() == 0, "the /quit start failed")
    check(first.wait() == 0, f"the first copy ended with status {first.popen.returncode}")
    check(session.titled("Ostrivane ") == [], "the form outlived the program")


if __name__ == "__main__":
    sys.exit(main(test))
