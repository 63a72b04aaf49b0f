#!/usr/bin/env python3
"""Under a window manager and with a tray host: the main form's outer frame
stands at 1000/1000 twips; the close box only hides the form in the tray and
a click on the tray icon brings it back; RestoreOnStop brings back a form
that HideOnGo sent away; neither is left minimised by the manager's late
report of a minimise; the icon's popup menu ends the program by its last
entry, "Exit"."""

import re
import shutil
import sys
import time

from x11_session import Failure, Skip, check, main, poll, write_data_file


def tray_icon(session):
    """The program's icon window, embedded somewhere below the tray panel."""
    inside, depth = False, 0
    for line in session.x("xwininfo", "-root", "-tree").splitlines():
        m = re.match(r'^(\s+)(0x[0-9a-f]+) .*?\((.*)\)\s+(\d+)x(\d+)', line)
        if not m:
            continue
        if '"panel" "trayer"' in line:
            inside, depth = True, len(m.group(1))
        elif inside and len(m.group(1)) <= depth:
            inside = False
        elif inside and '"ostrivane"' in m.group(3):
            return m.group(2), int(m.group(4)), int(m.group(5))
    return None


def close_to_tray(session, form):
    # Qt now and then drops a WM_DELETE_WINDOW (a bare QWidget on Xvfb does
    # the same), so the box is pressed up to four times; a loaded machine
    # takes its time.
    for attempt in range(4):
        session.close_box(form)
        try:
            return poll(lambda: not session.viewable(form), "the close box to hide the form", timeout=8)
        except Failure:
            if attempt == 3:
                raise


def normal(session, wid):
    """Mapped, and neither iconic nor hidden in the manager's eyes."""
    state = session.x("xprop", "-id", wid, "WM_STATE", "_NET_WM_STATE")
    return session.viewable(wid) and "Iconic" not in state and "_NET_WM_STATE_HIDDEN" not in state


def test(session):
    if shutil.which("trayer") is None:
        raise Skip("trayer is not installed (scripts/install-deps installs it)")
    session.start_wm()
    session.start_other(["trayer", "--edge", "top", "--align", "left", "--widthtype", "pixel", "--width", "120",
                         "--height", "32", "--SetDockType", "false", "--SetPartialStrut", "false"])
    write_data_file(session.data_file, {"Bench": ([0, 0, -1, -1, -1, -1, -1, -1],
                                                  [[300, 300, 40, 40, 255, 1, 100, 0]], "")},
                    ["HideOnGo=1", "RestoreOnStop=1"])

    app = session.start()
    form = session.client("Ostrivane ")
    extents = poll(lambda: re.findall(r"\d+", session.x("xprop", "-id", form, "_NET_FRAME_EXTENTS").split("=")[-1]),
                   "the frame extents")
    info = session.x("xwininfo", "-id", form)
    client = [int(re.search(rf"Absolute upper-left {axis}:\s+(-?\d+)", info).group(1)) for axis in "XY"]
    frame = (client[0] - int(extents[0]), client[1] - int(extents[2]))
    check(frame == (67, 67), f"the form's frame stands at {frame}, its client area at {client}")

    icon, width, height = poll(lambda: tray_icon(session), "the tray icon in the panel")
    for _ in range(3):
        check(session.start("bench").wait() == 0, "the group start failed")
        poll(lambda: not session.viewable(form), "HideOnGo to hide the form")
        check(session.start("/stop").wait() == 0, "the /stop start failed")
        poll(lambda: normal(session, form), "RestoreOnStop to bring the form back")
        time.sleep(0.5)
        check(normal(session, form), "the form went back to the task bar after RestoreOnStop")

        close_to_tray(session, form)
        check(app.running(), "the close box ended the program")
        session.click(icon, width // 2, height // 2)
        poll(lambda: normal(session, form), "a click on the tray icon to bring the form back")
        time.sleep(0.5)
        check(normal(session, form), "the form went back to the task bar after a tray click")

    before = set(session.x("xdotool", "search", "--onlyvisible", "--name", "", check_rc=False).split())
    session.click(icon, width // 2, height // 2, button=3)
    poll(lambda: set(session.x("xdotool", "search", "--onlyvisible", "--name", "", check_rc=False).split()) - before,
         "the tray icon's popup menu")
    # Up from no entry selects the last one, Exit.
    session.x("xdotool", "key", "Up", "Return")
    check(app.wait() == 0, f"Exit from the tray menu ended with {app.popen.returncode}")


if __name__ == "__main__":
    sys.exit(main(test))
