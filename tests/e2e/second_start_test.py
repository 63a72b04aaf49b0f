#!/usr/bin/env python3
"""A second start while a copy runs: with no command line it shows the
"already running" box and ends, leaving the first copy alone; with a group that does not exist
the first copy shows the not-found message, and the second start waits
until that box is closed."""

import sys
import time

from x11_session import check, main, poll, write_data_file

# The text as it arrived: lower case, its quotes kept inside the message's own.
NOT_FOUND = 'Group ""nosuch group"" requested on commandline was not found'
# frmMsgBox as designed, in pixels (twips / 15): the copy button and Ok.
COPY_BUTTON = ((240 + 315 // 2) // 15, (1080 + 255 // 2) // 15)
OK_BUTTON = ((3240 + 675 // 2) // 15, (960 + 375 // 2) // 15)


def new_windows(session, before, title=None):
    return [w for w in session.windows()
            if w.id not in before and (title is None or w.name == title) and session.viewable(w.id)]


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
    box = poll(lambda: [w for w in new_windows(session, before) if (w.name or "").startswith("ostrivane(")],
               "the not-found message box")[0]
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
    group = session.start('"BENCH"')
    check(group.wait() == 0, "the group start failed")
    poll(lambda: len(session.marker_windows()) == 2, "the two line windows of the group")

    quit_ = session.start("/quit")
    check(quit_.wait() == 0, "the /quit start failed")
    check(first.wait() == 0, f"the first copy ended with status {first.popen.returncode}")


if __name__ == "__main__":
    sys.exit(main(test))
