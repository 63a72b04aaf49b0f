#!/usr/bin/env python3
"""A group exported through the real save dialog on one screen and imported
through the open dialog on a screen of another size, as on another computer:
the "_Tr" copy is loaded and its lines stand at the rescaled places, rounded
down; the imported file is in the user's trash with its .trashinfo."""

import os
import sys

from geometry_rules import marker_lines
from x11_session import SCREEN_W, SCREEN_H, check, main, poll, write_data_file

ROW0 = [0, 0, -1, -1, -1, -1, -1, -1]
MARKERS = [[512, 400, 100, 80, 0x0000FF, 1, 100, 0], [513, 401, 101, 81, 0x00FF00, 3, 100, 0]]
OTHER_W, OTHER_H = 1600, 1000  # 1.25 times the first screen each way


def menu(session, form, letter):
    """An entry of the Edit menu by its access key."""
    session.x("xdotool", "windowactivate", "--sync", form)
    session.x("xdotool", "key", "alt+e", "sleep", "0.3", "key", letter)


def answer(session, title, *keys):
    wid = session.client(title)
    session.x("xdotool", "windowactivate", "--sync", wid, "sleep", "0.3", "key", *keys)


def choose_file(session, title, path):
    """Types the path into the dialog's file name field, which has the focus."""
    wid = session.client(title)
    session.x("xdotool", "windowactivate", "--sync", wid, "sleep", "0.5", "key", "ctrl+a")
    session.x("xdotool", "type", "--delay", "20", path)
    session.x("xdotool", "key", "Return")


def test(session):
    exported = os.path.join(session.tmp, "Bench_Export.ini")
    session.start_wm()
    write_data_file(session.data_file, {"Bench": (ROW0, MARKERS, "")})
    app = session.start("Bench")
    menu(session, session.client("Ostrivane "), "e")
    choose_file(session, "Save exported file", exported)
    poll(lambda: os.path.exists(exported) and b"[Bench]" in open(exported, "rb").read(), "the exported file")
    text = open(exported, "rb").read().decode("latin-1")
    check(f"ScreenRes={SCREEN_W}x{SCREEN_H}\r\n" in text and "\r\n2=513,401,101,81," in text, text)
    check(session.start("/quit").wait() == 0 and app.wait() == 0, "the program did not end on /quit")

    # Another computer: a larger screen and a data file of its own.
    session.new_screen(OTHER_W, OTHER_H)
    session.start_wm()
    os.remove(session.data_file)
    app = session.start("/show")
    menu(session, session.client("Ostrivane "), "i")
    choose_file(session, "Select exported file", exported)
    answer(session, "Ostrivane", "Return")  # the name proposed, "Bench"
    scaled = [(640, 500, 125, 100, 1), (641, 501, 126, 101, 3)]  # 513 * 1.25 = 641.25, and so on
    want = sorted(r for h, v, hl, vl, t in scaled for r in marker_lines(h, v, hl, vl, t, 0, 0, OTHER_W))
    poll(lambda: sorted(w.rect for w in session.marker_windows()) == want, f"the rescaled lines {want}")
    answer(session, "Ostrivane", "Return")  # the information message
    data = open(session.data_file, "rb").read()
    check(b"[Bench]\r\n" in data and b"\r\n1=512,400,100,80," in data, "the plain copy")
    check(b"[Bench_Tr]\r\n" in data and b"\r\n2=641,501,126,101," in data, "the rescaled copy")
    check(not os.path.exists(exported), "the imported file is still in its place")
    trash = os.path.join(session.data, "Trash")
    check(open(os.path.join(trash, "files", "Bench_Export.ini"), "rb").read().decode("latin-1") == text,
          "the file in the trash")
    info = open(os.path.join(trash, "info", "Bench_Export.ini.trashinfo")).read()
    check(f"Path={exported}\n" in info and "DeletionDate=" in info, info)
    check(session.start("/quit").wait() == 0 and app.wait() == 0, "the program did not end on /quit")


if __name__ == "__main__":
    sys.exit(main(test))
