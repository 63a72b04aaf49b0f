#!/usr/bin/env python3
"""One copy's life on a bare X server. "/quit" with no copy running ends at once and
touches nothing; a plain start writes the data file. A group given on the command line
puts up two line windows per marker at exactly the rectangles of the line geometry, in
the marker's colour (solid, or the cross hatch on white), with its opacity, in front of
the form. Later starts: with no command line the "already running" box of the later copy;
a group that does not exist the running copy's not-found box, captioned after the window
in front, while the sender waits; /stop needs no display; oversize, silent and nested
senders leave the copy alive; an unusable runtime directory is named on standard error."""

import os
import select
import socket
import sys
import time
from collections import Counter

from geometry_rules import alpha, effective, hatch, marker_lines
from x11_session import SCREEN_H, SCREEN_W, TIMEOUT, check, main, poll, rgb_of, write_data_file

GLOBAL = [-2, -2, 255, 1, 100, 0]  # Hlen, Vlen, Colour, Thickness, Opacity, Dotted
BLUE, GREEN, RED, ORANGE, PURPLE, CYAN = 0xFF0000, 0x00FF00, 0x0000FF, 0x0080FF, 0x800080, 0xFFFF00
GROUP_ROW0 = [0, 0, -1, -1, BLUE, -1, -1, -1]
MARKERS = [
    # Hpos, Vpos, Hlen, Vlen, Colour, Thickness, Opacity, Dotted
    [400, 300, -2, -2, GREEN, 3, 60, 0],     # "S" both ways; thickness 3 moves both lines back by one
    [100, 100, 50, 50, -1, -1, -1, -1],      # all inherited: group colour, global thickness etc.
    [701, 501, 21, 11, RED, 1, 50, 0],       # odd lengths: the ties go to the even start
    [5, 600, 100, 0, ORANGE, 1, 100, 0],     # starts left of the screen: clamped; length 0 is 1
    [900, 200, 81, 81, PURPLE, 5, 100, 1],   # dotted: the cross hatch
    [1000, 650, -2, 41, CYAN, 1, 25, 0],     # "S" across, 41 down
    [600, 700, -3, 31, RED, 1, 100, 0],      # a negative length from the file: no horizontal line
]
# The text as it arrived: lower case, its quotes kept inside the message's own.
NOT_FOUND = 'Group ""nosuch group"" requested on commandline was not found'
# frmMsgBox as designed, in pixels (twips / 15): the copy button and Ok.
COPY_BUTTON = ((240 + 315 // 2) // 15, (1080 + 255 // 2) // 15)
OK_BUTTON = ((3240 + 675 // 2) // 15, (960 + 375 // 2) // 15)


def expected_lines():
    """{rect: (rgb, alpha, dotted)} for every line window the group must make."""
    lines = {}
    for m in MARKERS:
        hlen, vlen, colour, thickness, opacity, dotted = effective(m[2:], GROUP_ROW0[2:], GLOBAL)
        for rect in marker_lines(m[0], m[1], hlen, vlen, thickness, 0, 0, SCREEN_W):
            if rect[2] > 0 and rect[3] > 0:  # an empty line window shows nothing
                lines[rect] = (rgb_of(colour), alpha(opacity), dotted != 0)
    return lines


def covered(point, window, stack):
    """Whether a window above this one in the stacking order hides the point."""
    for other in stack:
        if other.id == window.id:
            return False
        ox, oy, ow, oh = other.rect
        if ox <= point[0] < ox + ow and oy <= point[1] < oy + oh:
            return True
    return False


def lines_in_front(session):
    stack = session.windows()
    form = [i for i, w in enumerate(stack) if w.name == "Ostrivane "]
    lines = [i for i, w in enumerate(stack) if w.wm_class[:1] == ["marker"] and session.viewable(w.id)]
    return form and lines and max(lines) < min(form)


def check_lines(session, expected):
    """The line windows at their rectangles, with their opacity and their pixels."""
    windows = poll(lambda: (ws := session.marker_windows()) and len(ws) >= len(expected) and ws,
                   f"{len(expected)} line windows")
    got = sorted(w.rect for w in windows)
    check(got == sorted(expected), f"line windows {got}, expected {sorted(expected)}")
    image = session.screenshot()
    stack = [w for w in session.windows() if session.viewable(w.id)]
    checked = 0
    for window in windows:
        rgb, a, dotted = expected[window.rect]
        opacity = session.cardinal(window.id, "_NET_WM_WINDOW_OPACITY")
        check(opacity == a * 0x01010101, f"opacity of {window.rect} is {opacity}, expected alpha {a}")
        left, top, width, height = window.rect
        for y in range(max(top, 0), min(top + height, SCREEN_H)):
            for x in range(max(left, 0), min(left + width, SCREEN_W), 1 if dotted else 7):
                if covered((x, y), window, stack):
                    continue
                want = rgb if not dotted or hatch(x - left, y - top) else (255, 255, 255)
                check(image.rgb(x, y) == want, f"pixel {x},{y} of {window.rect} is {image.rgb(x, y)}, not {want}")
                checked += 1
    check(checked > 500, f"only {checked} line pixels could be seen")


def message_boxes(session):
    return [w for w in session.windows() if (w.name or "").startswith("ostrivane(") and session.viewable(w.id)]


def no_line_windows(session):
    return not any(w.wm_class[:1] == ["marker"] for w in session.windows())


def first_start(session):
    # Trimmed and lowered before it is looked at, and read before any setting.
    early = session.start("  /QUIT  ")
    check(early.wait() == 0, f"'/QUIT' with no copy running ended with {early.popen.returncode}")
    check(not os.path.exists(session.data_file), "'/quit' with no copy running wrote the data file")
    first = session.start()
    poll(lambda: session.titled("Ostrivane "), "the main form, caption 'Ostrivane ' with its blank")
    with open(session.data_file, "rb") as f:
        text = f.read()
    lines = text.split(b"\r\n")
    check(lines[:3] == [b"[Defaults]", b"Defaults=0,0,-2,-2,255,1,100,0,",
                        f"ScreenRes={SCREEN_W}x{SCREEN_H}".encode()], f"data file of the first run starts {lines[:3]}")
    check(lines[3].startswith(b"PC=") and len(lines[3]) > 3, f"no computer name in {lines[3]!r}")
    check(b"\n" not in text.replace(b"\r\n", b""), "the data file has line ends other than CR LF")
    check(session.marker_windows() == [], "line windows without a group")
    check(session.start("/quit").wait() == 0 and first.wait() == 0, f"the first copy ended with {first.popen.returncode}")
    check(session.titled("Ostrivane ") == [], "the form outlived the program")


def test(session):
    first_start(session)
    expected = expected_lines()
    write_data_file(session.data_file, {"Bench": (GROUP_ROW0, MARKERS, "E2E")})
    first = session.start("Bench")
    check_lines(session, expected)
    form = poll(lambda: session.titled("Ostrivane "), "the main form with the group")[0]
    # The form was raised after the lines went up; the lines must be in front again.
    poll(lambda: lines_in_front(session), "the line windows to stand above the main form")

    # No command line: the later copy's box (told by its title and its owner, as Qt draws
    # its text), and that copy ends once it is closed.
    second = session.start()
    box = poll(lambda: session.titled("Ostrivane"), "the 'already running' box")[0]
    check(session.cardinal(box.id, "_NET_WM_PID") == second.pid, "the 'already running' box is not the later copy's")
    check(second.running(), "the later copy ended before its box was closed")
    session.x("xdotool", "windowfocus", "--sync", box.id)
    session.x("xdotool", "key", "Return")
    check(second.wait() == 0, f"the later copy ended with {second.popen.returncode}")
    check(first.running() and session.viewable(form.id), "the first copy or its form is gone")

    # A group that does not exist: the box names the window in front (the form, as a
    # window manager would have it); the sender waits meanwhile.
    check(session.probe_run("activate", form.id).returncode == 0, "x11_probe activate failed")
    third = session.start('  "NoSuch Group" ')
    box = poll(lambda: message_boxes(session), "the not-found message box")[0]
    check(box.name == "ostrivane(Ostrivane )", f"the message box is captioned {box.name!r}")
    check(session.cardinal(box.id, "_NET_WM_PID") == first.pid, "the not-found box is not the first copy's")
    time.sleep(0.3)
    check(third.running(), "the sender ended while the first copy's box was still open")
    session.click(box.id, *COPY_BUTTON)
    copied = poll(lambda: (text := session.clipboard()) and NOT_FOUND in text and text,
                  "the not-found text on the clipboard")
    check(copied.strip() == NOT_FOUND, f"the message reads {copied!r}")
    session.click(box.id, *OK_BUTTON)
    poll(lambda: not session.viewable(box.id), "the message box to close on Ok")
    check(third.wait() == 0 and first.running(), f"the sender ended with {third.popen.returncode}")

    check(session.start("/STOP", env={"DISPLAY": None}).wait() == 0, "a /stop without a display failed")
    poll(lambda: no_line_windows(session), "every line window, shown or empty, to go on /stop")

    # 40 silent senders, 200 of 1 MiB and one of 4,097 bytes, one past the cap: all closed, the copy lives.
    frames = [b"\0"] * 40 + [b"\0\x10\0\0" + b"x" * (1 << 16)] * 200 + [b"\0\0\x10\x01" + b"x" * 4097]
    senders = [socket.socket(socket.AF_UNIX) for _ in frames]
    for sender, frame in zip(senders, frames):
        sender.connect(os.path.join(session.runtime, "iOstrivanei.socket"))
        sender.send(frame)
    check(select.select(senders[:1], [], [], 1)[0], "the oldest of more than 32 silent senders was kept")
    check(all(select.select([s], [], [], TIMEOUT)[0] for s in senders), "a sender was not closed")
    big = session.start("x" * 4097, env={"DISPLAY": None})
    check(big.wait() == 1 and "4097 characters was refused" in big.output(), "the long command was sent")
    # The group comes back through the same channel, where it was.
    check(session.start('"BENCH"').wait() == 0 and first.running(), "the group start after the flood failed")
    check("4097 bytes was refused" in first.output(), "the copy did not refuse the long frame")
    check_lines(session, expected)

    # Each box runs the next command inside it: four deep, the others are answered and dropped.
    names = [session.start(f"nosuch{n}") for n in range(6)]
    poll(lambda: sum(s.running() for s in names) == 4 and first.output().count("was dropped") == 2, "2 dropped")
    for left in range(4, 0, -1):  # the innermost, on top, first
        session.click(poll(lambda: len(b := message_boxes(session)) == left and b, f"{left} boxes")[0].id, *OK_BUTTON)
    check(all(s.wait() == 0 for s in names), "a sender of a nested command failed")

    check(session.start("/quit").wait() == 0, "the /quit start failed")
    check(first.wait() == 0, f"the first copy ended with status {first.popen.returncode}")
    check(no_line_windows(session), "line windows outlived the program")

    # No XDG_RUNTIME_DIR and a fallback open to all: "already running", and a line that says why.
    fallback = os.path.join(session.tmp, f"ostrivane-{os.getuid()}")
    os.mkdir(fallback)
    os.chmod(fallback, 0o777)
    lost = session.start(env={"XDG_RUNTIME_DIR": None, "TMPDIR": session.tmp})
    poll(lambda: f"{fallback} cannot hold" in lost.output() and "mode 0777" in lost.output(), "the line on stderr")


if __name__ == "__main__":
    sys.exit(main(test))
