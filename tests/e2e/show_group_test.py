#!/usr/bin/env python3
"""A group given on the command line is loaded and shown: the X server holds
two line windows per marker at exactly the rectangles of the line geometry, in the
marker's colour (solid, or the cross hatch on white), with its opacity.
Later starts stop, show again and end the running copy."""

import sys
from collections import Counter

from geometry_rules import alpha, effective, hatch, marker_lines
from x11_session import SCREEN_H, SCREEN_W, check, main, poll, rgb_of, write_data_file

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


def expected_lines():
    """(rect, rgb, alpha, dotted) for every line window the group must make."""
    lines = []
    for m in MARKERS:
        hpos, vpos = m[0], m[1]
        hlen, vlen, colour, thickness, opacity, dotted = effective(m[2:], GROUP_ROW0[2:], GLOBAL)
        for rect in marker_lines(hpos, vpos, hlen, vlen, thickness, 0, 0, SCREEN_W):
            if rect[2] > 0 and rect[3] > 0:  # an empty line window shows nothing
                lines.append((rect, rgb_of(colour), alpha(opacity), dotted != 0))
    return lines


def covered(point, window, stack):
    """Whether a window above this one in the stacking order hides the point."""
    x, y = point
    for other in stack:
        if other is window:
            return False
        ox, oy, ow, oh = other.rect
        if ox <= x < ox + ow and oy <= y < oy + oh:
            return True
    return False


def lines_in_front(session):
    stack = session.windows()
    form = [i for i, w in enumerate(stack) if w.name == "Ostrivane "]
    lines = [i for i, w in enumerate(stack) if w.wm_class[:1] == ["marker"] and session.viewable(w.id)]
    return form and lines and max(lines) < min(form)


def check_pixels(session, windows, expected):
    image = session.screenshot()
    stack = [w for w in session.windows() if session.viewable(w.id)]
    by_id = {w.id: w for w in stack}
    checked = 0
    for window in windows:
        rect, rgb, _, dotted = expected[window.rect]
        left, top, width, height = rect
        top_window = by_id[window.id]
        for y in range(max(top, 0), min(top + height, SCREEN_H)):
            for x in range(max(left, 0), min(left + width, SCREEN_W), 1 if dotted else 7):
                if covered((x, y), top_window, stack):
                    continue
                want = rgb if not dotted or hatch(x - left, y - top) else (255, 255, 255)
                got = image.rgb(x, y)
                check(got == want, f"pixel {x},{y} of the line {rect} is {got}, expected {want}")
                checked += 1
    check(checked > 500, f"only {checked} line pixels could be seen")


def test(session):
    lines = expected_lines()
    write_data_file(session.data_file, {"Bench": (GROUP_ROW0, MARKERS, "E2E")})
    first = session.start("Bench")

    want = Counter(rect for rect, *_ in lines)
    windows = poll(lambda: (ws := session.marker_windows()) and len(ws) >= len(lines) and ws,
                   f"{len(lines)} line windows")
    got = Counter(w.rect for w in windows)
    check(got == want, f"line windows {sorted(got.elements())}, expected {sorted(want.elements())}")
    check(session.titled("Ostrivane "), "the main form (caption with its trailing blank) is not shown")
    # The form was raised after the lines went up; the lines must be in front again.
    poll(lambda: lines_in_front(session), "the line windows to stand above the main form")

    expected = {rect: (rect, rgb, a, dotted) for rect, rgb, a, dotted in lines}
    for window in windows:
        a = expected[window.rect][2]
        check(session.opacity(window.id) == a * 0x01010101,
              f"opacity of {window.rect} is {session.opacity(window.id)}, expected alpha {a}")
    check_pixels(session, windows, expected)

    stop = session.start("/stop")
    check(stop.wait() == 0, f"the /stop start ended with {stop.popen.returncode}")
    poll(lambda: not any(w.wm_class[:1] == ["marker"] for w in session.windows()),
         "every line window, shown or empty, to go on /stop")
    check(first.running(), "the first copy ended on /stop")

    show = session.start("/SHOW")
    check(show.wait() == 0, "the /show start failed")
    windows = poll(lambda: (ws := session.marker_windows()) and len(ws) >= len(lines) and ws,
                   "the line windows after /show")
    check(Counter(w.rect for w in windows) == want, "the lines came back elsewhere after /show")

    # The library's box names the window in front (here the main form, as a
    # window manager would have it) in its caption.
    form = session.titled("Ostrivane ")[0]
    check(session.probe_run("activate", form.id).returncode == 0, "x11_probe activate failed")
    session.start("nosuch")
    box = poll(lambda: [w for w in session.windows() if (w.name or "").startswith("ostrivane(")],
               "the not-found message box")[0]
    check(box.name == "ostrivane(Ostrivane )", f"the message box is captioned {box.name!r}")
    session.x("xdotool", "windowfocus", "--sync", box.id)
    session.x("xdotool", "key", "Return")
    poll(lambda: not session.viewable(box.id), "the message box to close")

    quit_ = session.start("/quit")
    check(quit_.wait() == 0, "the /quit start failed")
    check(first.wait() == 0, f"the first copy ended with status {first.popen.returncode}")
    check(not any(w.wm_class[:1] == ["marker"] for w in session.windows()), "line windows outlived the program")


if __name__ == "__main__":
    sys.exit(main(test))
