#!/usr/bin/env python3
"""The options dialog on a running display: a press 25 pixels beside a line
passes, until OK (by Enter) with a grab proximity of 30 typed in; then, with
the group back, it takes the line. The placement cross takes the thickness and
colour typed for it. A new data directory is made on Yes, the data file moves
there, and the group in use stays on the screen."""

import os
import sys
import time

from geometry_rules import marker_lines
from x11_session import SCREEN_W, Target, check, main, poll, rgb_of, write_data_file

ROW0 = [0, 0, -1, -1, -1, -1, -1, -1]
MARKER = [800, 550, 100, 100, 0xFF0000, 1, 100, 0]  # its vertical line: x 800, y 500 to 599
# Places on the dialog's client area, in pixels.
GRAB_PROXIMITY = (130, 152)
ADD_COLOUR, ADD_THICKNESS = (248, 117), (306, 117)


def lines_at(hpos):
    return sorted(marker_lines(hpos, 550, 100, 100, 1, 0, 0, SCREEN_W))


def replace_text(session, dialog, at, text):
    session.click(dialog, *at)
    session.x("xdotool", "key", "End", *["BackSpace"] * 8)
    session.x("xdotool", "type", text)


def open_options(session, form):
    session.x("xdotool", "windowactivate", "--sync", form)
    session.x("xdotool", "key", "alt+f")
    time.sleep(0.3)
    session.x("xdotool", "key", "o")
    dialog = session.client("Options")
    time.sleep(0.5)  # a click before the dialog is drawn goes nowhere
    return dialog


def answer_with_default(session, count):
    """Return on each of the next count message boxes, titled with the program's name."""
    for _ in range(count):
        box = session.client("Ostrivane")
        session.x("xdotool", "windowactivate", "--sync", box, "key", "Return")
        poll(lambda: not session.viewable(box), "a message box to close")


def test(session):
    session.start_wm()
    write_data_file(session.data_file, {"Bench": (ROW0, [MARKER], "")})
    target = Target(session, (600, 515, 400, 185))  # below the dialog, which it would cover
    session.start("Bench")
    form = session.client("Ostrivane ")
    poll(lambda: sorted(w.rect for w in session.marker_windows()) == lines_at(800), "the group's lines")

    session.x("xdotool", "mousemove", "825", "520", "click", "1")
    check(target.take(2) == ["press 825 520", "release 825 520"], "a press 25 pixels off the line did not pass")

    dialog = open_options(session, form)
    replace_text(session, dialog, GRAB_PROXIMITY, "30")
    replace_text(session, dialog, ADD_THICKNESS, "5")
    replace_text(session, dialog, ADD_COLOUR, "255")
    session.x("xdotool", "key", "Return")  # the default button
    poll(lambda: not session.viewable(dialog), "the dialog to close on Enter")
    data = open(session.data_file, "rb").read()
    check(b"AddMarkerColour=255\r\nAddMarkerThickness=5\r\n" in data and b"GrabProximity=30\r\n" in data,
          f"the data file after OK: {data!r}")
    # The group in use comes back after the dialog, and its lines with it.
    poll(lambda: sorted(w.rect for w in session.marker_windows()) == lines_at(800), "the group's lines again")

    # The same press now takes the line and drags it.
    session.x("xdotool", "mousemove", "825", "520", "mousedown", "1")
    time.sleep(0.3)
    session.x("xdotool", "mousemove", "860", "520")
    time.sleep(1)  # several ticks of the drag
    session.x("xdotool", "mouseup", "1")
    poll(lambda: sorted(w.rect for w in session.marker_windows()) == lines_at(860), "the grabbed line at x 860")
    check(target.take() == [], "the window beneath saw the press that grabbed the line")

    # The placement cross: four arms 5 pixels thick, in red, around the pointer.
    session.x("xdotool", "windowactivate", "--sync", form)
    session.x("xdotool", "key", "ctrl+m")
    poll(lambda: not session.viewable(form), "the form to hide for the placement")
    session.x("xdotool", "mousemove", "290", "240", "sleep", "0.2", "mousemove", "300", "250")
    cross = (0, 248, 290, 5), (310, 248, SCREEN_W - 310, 5), (298, 0, 5, 240), (298, 260, 5, 800 - 260)
    poll(lambda: set(cross) <= {w.rect for w in session.marker_windows()}, "the cross arms of thickness 5")
    pixel = session.screenshot().rgb(100, 250)
    check(pixel == rgb_of(255), f"the cross is {pixel}, not red")
    session.x("xdotool", "click", "1")
    poll(lambda: session.viewable(form), "the form back after the placement")

    # A new data directory: "create it?" Yes, "moved" OK, "delete the empty old one?" No.
    session.x("xdotool", "windowactivate", "--sync", form, "key", "ctrl+g")  # nothing unsaved
    old_dir, new_dir = os.path.dirname(session.data_file), os.path.join(session.tmp, "moved data")
    dialog = open_options(session, form)
    session.click(dialog, 200, 19)
    session.x("xdotool", "key", "ctrl+a", "type", new_dir)
    session.x("xdotool", "key", "Return")
    answer_with_default(session, 3)
    moved = os.path.join(new_dir, "ostrivane.ini")
    poll(lambda: os.path.exists(moved) and b"[Bench]" in open(moved, "rb").read(), "the data file in the new directory")
    check(not os.path.exists(session.data_file) and os.path.isdir(old_dir), "the old file stayed, or its directory went")
    poll(lambda: len(session.marker_windows()) == 4, "the group's lines from the moved file")


if __name__ == "__main__":
    sys.exit(main(test, tools=("xwininfo", "xprop", "xdotool", "xwd")))
