#!/usr/bin/env python3
"""With a tray host running, the close box only hides the main form in the
tray; a click on the tray icon brings it back, and the icon's popup menu
(right click) ends the program by its last entry, "Exit"."""

import re
import shutil
import sys

from x11_session import Failure, Skip, check, main, poll


def tray_icon(session):
    """The program's icon window, embedded somewhere below the tray panel."""
    out = session.x("xwininfo", "-root", "-tree")
    inside, depth = False, 0
    for line in out.splitlines():
        m = re.match(r'^(\s+)(0x[0-9a-f]+) .*?\((.*)\)\s+(\d+)x(\d+)', line)
        if not m:
            continue
        indent = len(m.group(1))
        if '"panel" "trayer"' in line:
            inside, depth = True, indent
            continue
        if inside and indent <= depth:
            inside = False
        if inside and '"ostrivane"' in m.group(3):
            return m.group(2), int(m.group(4)), int(m.group(5))
    return None


def test(session):
    if shutil.which("trayer") is None:
        raise Skip("trayer is not installed (scripts/install-deps installs it)")
    session.start_other(["trayer", "--edge", "top", "--align", "left", "--widthtype", "pixel",
                         "--width", "120", "--height", "32", "--SetDockType", "false",
                         "--SetPartialStrut", "false"])
    poll(lambda: any(w.wm_class == ["panel", "trayer"] and session.viewable(w.id)
                     for w in session.windows()), "the tray panel")

    app = session.start()
    form = poll(lambda: session.titled("Ostrivane "), "the main form")[0]
    icon, width, height = poll(lambda: tray_icon(session), "the tray icon in the panel")

    # Qt without a window manager now and then drops a WM_DELETE_WINDOW (a
    # bare QWidget on Xvfb does the same), so the box is pressed up to three times.
    for attempt in range(3):
        session.close_box(form.id)
        try:
            poll(lambda: not session.viewable(form.id), "the close box to hide the form", timeout=5)
            break
        except Failure:
            if attempt == 2:
                raise
    check(app.running(), "the close box ended the program")

    session.click(icon, width // 2, height // 2)
    poll(lambda: session.viewable(form.id), "a click on the tray icon to bring the form back")

    before = {w.id for w in session.windows()}
    session.click(icon, width // 2, height // 2, button=3)
    poll(lambda: [w for w in session.windows() if w.id not in before and session.viewable(w.id)],
         "the tray icon's popup menu")
    # Up from no entry selects the last one, Exit.
    session.x("xdotool", "key", "Up", "Return")
    check(app.wait() == 0, f"Exit from the tray menu ended with {app.popen.returncode}")


if __name__ == "__main__":
    sys.exit(main(test))
