#!/usr/bin/env python3
"""The left button over the whole screen, under a window manager. A press off
the lines, or on a line with grabbing switched off, reaches the window
beneath; "Add Marker" fixes a marker at the press, which the window beneath
never sees; a press near a vertical line drags it to where the pointer
rested, a crosshair while it is held, the form back at the end only if it
was in front, and Save Group writes the place; a program killed in mid-drag
leaves the button to the others; a failing hit test shows its run-time error
box, which takes the click that closes it."""

import os
import re
import signal
import sys
import time

from geometry_rules import marker_lines
from x11_session import SCREEN_W, Target, check, main, poll, write_data_file

ROW0 = [0, 0, -1, -1, -1, -1, -1, -1]
MARKER = [800, 550, 100, 100, 0x0000FF, 1, 100, 0]  # its vertical line: x 800, y 500 to 599


def lines_of(*markers):
    """The rectangles of the markers' line windows, (Hpos, Vpos, Hlen, Vlen) each."""
    return sorted(r for m in markers for r in marker_lines(*m, 1, 0, 0, SCREEN_W))


def pointer_shape(session):
    return session.probe_run("cursor").stdout.strip()


def drag(session, start, end, kill=None):
    """The pointer's shape while the line is held."""
    x, y = start
    session.x("xdotool", "mousemove", str(x), str(y), "mousedown", "1")
    time.sleep(0.3)
    session.x("xdotool", "mousemove", str(end[0]), str(end[1]))
    time.sleep(1)  # several ticks of the drag, also on a slow build
    shape = pointer_shape(session)
    if kill:
        os.kill(kill.pid, signal.SIGKILL)
        kill.wait()
    session.x("xdotool", "mouseup", "1")
    return shape


def click(session, x, y):
    session.x("xdotool", "mousemove", str(x), str(y), "click", "1")


def settle(session, lines, what):
    poll(lambda: sorted(w.rect for w in session.marker_windows()) == lines, what)


def test(session):
    session.start_wm()
    write_data_file(session.data_file, {"Bench": (ROW0, [MARKER], "")})
    target = Target(session, (600, 400, 400, 300))
    app = session.start("Bench")
    form = session.client("Ostrivane ")
    settle(session, lines_of((800, 550, 100, 100)), "the group's lines")

    click(session, 650, 450)
    check(target.take(2) == ["press 650 450", "release 650 450"], "a press off the lines did not pass")

    # Placing: the cross follows the pointer, the press fixes the marker and stays ours.
    session.x("xdotool", "windowactivate", "--sync", form)
    session.x("xdotool", "key", "ctrl+m")
    poll(lambda: not session.viewable(form), "the form to hide for the placement")
    session.x("xdotool", "mousemove", "690", "640", "sleep", "0.2", "mousemove", "700", "650")
    poll(lambda: len(session.marker_windows()) == 6, "the placement cross")
    click(session, 700, 650)
    added = (700, 650, -2, -2)
    settle(session, lines_of((800, 550, 100, 100), added), "the new marker's lines")
    check(target.take() == [], "the press that placed the marker reached the window beneath")
    poll(lambda: session.viewable(form), "the form back after the placement")

    # A drag with the form in front: the form comes back, and the place is saved.
    session.x("xdotool", "windowactivate", "--sync", form)
    normal = pointer_shape(session)
    held = drag(session, (803, 520), (850, 520))
    check(held != normal, f"the pointer during a drag is {held}, as before it")
    poll(lambda: pointer_shape(session) == normal, "the pointer's own shape after the drag")
    settle(session, lines_of((850, 550, 100, 100), added), "the dragged line at x 850")
    check(target.take() == [], "the window beneath saw the drag")
    poll(lambda: session.viewable(form), "the form back after a drag that began with it in front")
    session.x("xdotool", "windowactivate", "--sync", form)
    session.x("xdotool", "key", "ctrl+g")
    poll(lambda: re.search(rb"\n1=850,550,.*\n2=700,650,", open(session.data_file, "rb").read()), "the saved group")

    # With another window in front the form stays away; a kill in mid-drag frees the button.
    session.start_other(["xlogo", "-geometry", "100x100+1100+50"])
    session.x("xdotool", "windowactivate", "--sync", session.client("xlogo"))
    drag(session, (853, 520), (900, 520))
    settle(session, lines_of((900, 550, 100, 100), added), "the dragged line at x 900")
    time.sleep(0.5)
    check(not session.viewable(form), "the form came back after a drag that began behind another window")
    drag(session, (903, 520), (950, 520), kill=app)
    target.take()
    click(session, 650, 450)
    check(target.take(2) == ["press 650 450", "release 650 450"], "the button is still held by the killed program")

    write_data_file(session.data_file, {"Bench": (ROW0, [MARKER], "")}, ["AllowGrabMarkers=0"])
    app = session.start("Bench")
    settle(session, lines_of((800, 550, 100, 100)), "the group's lines after a new start")
    click(session, 800, 520)
    check(target.take(2) == ["press 800 520", "release 800 520"], "with grabbing off a press on a line did not pass")
    check(session.start("/quit").wait() == 0 and app.wait() == 0, "the program did not end on /quit")

    # 40000 does not fit the hit test's 16 bits. The box comes up where the target was.
    target.proc.kill()
    write_data_file(session.data_file, {"Bench": (ROW0, [[800, 550, 40000, 100, 255, 1, 100, 0]], "")})
    app = session.start("Bench")
    poll(lambda: session.marker_windows(), "the group's lines")
    click(session, 650, 450)
    box = session.client("Ostrivane")
    time.sleep(1)  # a click before the box is drawn goes nowhere
    geometry = dict(v.split("=") for v in session.x("xdotool", "getwindowgeometry", "--shell", box).split())
    session.click(box, int(geometry["WIDTH"]) - 50, int(geometry["HEIGHT"]) - 22)  # its Ok
    check(app.wait() == 1, f"the run-time error ended the program with {app.popen.returncode}")


if __name__ == "__main__":
    sys.exit(main(test, tools=("xwininfo", "xprop", "xdotool", "xlogo")))
