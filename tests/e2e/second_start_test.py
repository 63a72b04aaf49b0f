#!/usr/bin/env python3
"""A second start while a copy runs: with no command line it shows the "already running" box
and ends, leaving the first copy alone; with a group that does not exist the first copy
shows the not-found message, and the second start waits until that box is closed. A start
that forwards needs no display; oversize, silent and nested senders leave the copy alive; an
unusable runtime directory is named on standard error."""

import os
import select
import socket
import sys
import time

from x11_session import TIMEOUT, check, main, poll, write_data_file

# The text as it arrived: lower case, its quotes kept inside the message's own.
NOT_FOUND = 'Group ""nosuch group"" requested on commandline was not found'
# frmMsgBox as designed, in pixels (twips / 15): the copy button and Ok.
COPY_BUTTON = ((240 + 315 // 2) // 15, (1080 + 255 // 2) // 15)
OK_BUTTON = ((3240 + 675 // 2) // 15, (960 + 375 // 2) // 15)


def new_windows(session, before, title=None):
    return [w for w in session.windows()
            if w.id not in before and (title is None or w.name == title) and session.viewable(w.id)]


def message_boxes(session):
    return [w for w in new_windows(session, ()) if (w.name or "").startswith("ostrivane(")]


def test(session):
    write_data_file(session.data_file, {"Bench": ([0, 0, -1, -1, -1, -1, -1, -1],
                                                  [[300, 300, 40, 40, 255, 1, 100, 0]], "")})
    first = session.start()
    form = poll(lambda: session.titled("Ostrivane "), "the first copy's main form")[0]
    before = {w.id for w in session.windows()}

    # No command line: the plain box with the title, and this copy ends once it is closed.
    # (Its text is drawn by Qt and cannot be read back here; the box is told
    # by its title and by the process that owns it.)
    second = session.start()
    box = poll(lambda: new_windows(session, before, "Ostrivane"), "the 'already running' box")[0]
    check(session.pid_of(box.id) == second.pid, "the 'already running' box is not the second copy's")
    check(second.running(), "the second copy ended before its box was closed")
    session.x("xdotool", "windowfocus", "--sync", box.id)
    session.x("xdotool", "key", "Return")
    check(second.wait() == 0, f"the second copy ended with {second.popen.returncode}")
    check(first.running(), "the first copy ended too")
    check(session.titled("Ostrivane ") and session.viewable(form.id), "the first copy's form is gone")

    # A group that does not exist: the first copy reports it; the sender waits meanwhile.
    before = {w.id for w in session.windows()}
    third = session.start('  "NoSuch Group" ')
    box = poll(lambda: message_boxes(session), "the not-found message box")[0]
    check(session.pid_of(box.id) == first.pid, "the not-found box is not the first copy's")
    time.sleep(0.3)
    check(third.running(), "the sender ended while the first copy's box was still open")
    session.click(box.id, *COPY_BUTTON)
    copied = poll(lambda: (text := session.clipboard()) and NOT_FOUND in text and text,
                  "the not-found text on the clipboard")
    check(copied.strip() == NOT_FOUND, f"the message reads {copied!r}")
    session.click(box.id, *OK_BUTTON)
    poll(lambda: not session.viewable(box.id), "the message box to close on Ok")
    check(third.wait() == 0, f"the sender ended with {third.popen.returncode}")
    check(first.running(), "the first copy ended after the message")
    check(session.marker_windows() == [], "a group was shown though none was found")

    # The group that does exist still comes up through the same channel.
    check(session.start('"BENCH"').wait() == 0, "the group start failed")
    poll(lambda: len(session.marker_windows()) == 2, "the two line windows of the group")
    check(session.start("/stop", env={"DISPLAY": None}).wait() == 0, "a /stop without a display failed")
    poll(lambda: session.marker_windows() == [], "the lines to go on /stop")

    # 40 silent senders, 200 of 1 MiB and a 9,816-character name: all closed, the copy lives.
    frames = [b"\0"] * 40 + [b"\0\x10\0\0" + b"x" * (1 << 16)] * 200 + [b"\0\0\x26\x58" + b"x" * 9816]
    senders = [socket.socket(socket.AF_UNIX) for _ in frames]
    for sender, frame in zip(senders, frames):
        sender.connect(os.path.join(session.runtime, "iOstrivanei.socket"))
        sender.send(frame)
    check(select.select(senders[:1], [], [], 1)[0], "the oldest of more than 32 silent senders was kept")
    check(all(select.select([s], [], [], TIMEOUT)[0] for s in senders), "a sender was not closed")
    big = session.start("x" * 9816, env={"DISPLAY": None})
    check(big.wait() == 1 and "9816 characters was refused" in big.output(), "the long command was sent")
    check(session.start("/show").wait() == 0 and first.running() and "9816 bytes was refused" in first.output(),
          "the copy is gone")
    poll(lambda: len(session.marker_windows()) == 2, "the lines after the flood")

    # Each box runs the next command inside it: four deep, the others are answered and dropped.
    names = [session.start(f"nosuch{n}") for n in range(6)]
    poll(lambda: sum(s.running() for s in names) == 4 and first.output().count("was dropped") == 2, "2 dropped")
    for left in range(4, 0, -1):  # the innermost, on top, first
        session.click(poll(lambda: len(b := message_boxes(session)) == left and b, f"{left} boxes")[0].id, *OK_BUTTON)
    check(all(s.wait() == 0 for s in names), "a sender of a nested command failed")

    check(session.start("/quit").wait() == 0, "the /quit start failed")
    check(first.wait() == 0, f"the first copy ended with status {first.popen.returncode}")

    # No XDG_RUNTIME_DIR and a fallback open to all: "already running", and a line that says why.
    fallback = os.path.join(session.tmp, f"ostrivane-{os.getuid()}")
    os.mkdir(fallback)
    os.chmod(fallback, 0o777)
    lost = session.start(env={"XDG_RUNTIME_DIR": None, "TMPDIR": session.tmp})
    poll(lambda: f"{fallback} cannot hold" in lost.output() and "mode 0777" in lost.output(), "the line on stderr")


if __name__ == "__main__":
    sys.exit(main(test))
