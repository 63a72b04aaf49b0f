#!/usr/bin/env python3
"""Help > Check for updates against a local server named by UpdateHost in the
per-user store: the query it sends, and the box for an equal version, a newer
one with its news, a missing page and a server that cuts its reply short."""

import os
import sys
import threading
import time
from http.server import BaseHTTPRequestHandler, ThreadingHTTPServer

from x11_session import Failure, check, main, poll, write_data_file

ROW0 = [0, 0, -1, -1, -1, -1, -1, -1]
MARKER = [800, 550, 100, 100, 0xFF0000, 1, 100, 0]
VERSION = "1.00"  # the build's


def button(left, top, width, height, lines):
    """Where frmMsgBox has a button, in pixels (twips / 15): each line after the first moves it down."""
    return (left + width // 2) // 15, (top + height // 2 + (lines - 1) * 255) // 15
SHORT_NOTICE = "The application has encountered an error"


class Server(ThreadingHTTPServer):
    daemon_threads = True
    answer = (200, b"")
    queries = []


class Handler(BaseHTTPRequestHandler):
    def do_GET(self):
        self.server.queries.append(self.path)
        status, body = self.server.answer
        self.send_response(status)
        self.send_header("Content-Type", "text/html")
        self.send_header("Content-Length", str(len(body) + (100 if status == 206 else 0)))
        self.end_headers()
        self.wfile.write(body)

    def log_message(self, *args):
        pass


def message_box(session):
    found = session.x("xdotool", "search", "--onlyvisible", "--name", r"^ostrivane\(", check_rc=False).split()
    return found[0] if found else None


def ask(session, form, told):
    """The box's text once it holds what the user is to be told, or what it held instead."""
    session.x("xdotool", "windowactivate", "--sync", form)
    session.x("xdotool", "key", "alt+h")
    time.sleep(0.3)
    session.x("xdotool", "key", "c")
    box = poll(lambda: message_box(session), "the answer's box")
    session.x("xdotool", "windowactivate", "--sync", box, "key", "Escape")  # stops the countdown
    lines = told.count("\n") + 1
    session.click(box, *button(240, 1080, 315, 255, lines))  # Copy
    seen = [""]

    def copied():
        seen[0] = (session.clipboard() or "").replace("\r\n", "\n")
        return told in seen[0]
    try:
        poll(copied, "the text", timeout=5)
    except Failure:
        pass  # the check below names what the box held
    session.click(box, *button(3240, 960, 675, 375, lines))  # Ok
    poll(lambda: not session.viewable(box), f"the box telling {told!r} to close")
    return seen[0].strip()


def test(session):
    server = Server(("127.0.0.1", 0), Handler)
    threading.Thread(target=server.serve_forever, daemon=True).start()
    os.makedirs(os.path.join(session.config, "Ostrivane"))
    with open(os.path.join(session.config, "Ostrivane", "settings.ini"), "w") as f:
        f.write(f"[Settings]\nUpdateHost=127.0.0.1:{server.server_address[1]}\n")
    session.start_wm()
    write_data_file(session.data_file, {"Bench": (ROW0, [MARKER], "")})
    app = session.start("Bench")
    form = session.client("Ostrivane ")

    # Neighbours differ, so that a text left on the clipboard cannot pass for the next.
    cases = [
        ((200, b"<html><body>1.00<br>Nothing new</body></html>"), "You have the latest version"),
        ((404, b"<html>gone</html>"), SHORT_NOTICE),
        ((200, b"<HTML><BODY>1.10<BR>Faster <B>lines</B><BR>Fewer &amp; fixes</BODY></HTML>"),
         "Version 1.10 is available\n\nWhat's New:\nFaster lines\nFewer & fixes"),
        ((206, b"<html><body>1.10<br>cut"), SHORT_NOTICE),  # closed before the promised end
    ]
    for answer, told in cases:
        server.answer = answer
        text = ask(session, form, told)
        check(told in text, f"for {answer} the box read {text!r}, not {told!r}")
    query = server.queries[0]
    check(query.startswith(f"/Downloads/GetVersion1.asp?ProdCode=Ostrivane&Version={VERSION}&PcId="),
          f"the query was {query!r}")
    check(query.rsplit("=", 1)[1].isdigit() and len(set(server.queries)) == 1, f"queries: {server.queries}")
    check(app.running(), "the program ended")
    server.shutdown()


if __name__ == "__main__":
    sys.exit(main(test))
