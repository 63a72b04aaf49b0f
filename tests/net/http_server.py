#!/usr/bin/env python3
"""A local web server for the HTTP client's tests and benchmark.

Listens on a free port of 127.0.0.1 and prints "port pid" on its first line.
  /Downloads/GetVersion1.asp  the update page (200)
  /redirect                   302 to the update page
  /fail                       500
  /big?size=N&pause=MS        N bytes (default 5 MB) in 64 KB pieces, MS ms apart
  /cut                        announces 100000 bytes, sends 5000 and closes
  /echo                       the request line, its Content-Type and its body
  anything else               404
"""
import os
import sys
import time
from http.server import BaseHTTPRequestHandler, ThreadingHTTPServer
from urllib.parse import parse_qs, urlsplit

UPDATE_PAGE = (b"<html><head><title>Version</title></head>"
               b"<BODY>1.0<BR>What's new: <B>nothing</B></BODY></html>")


class Handler(BaseHTTPRequestHandler):
    def log_message(self, *args):
        pass

    def head(self, status, length, headers=()):
        self.send_response(status)
        for name, value in headers:
            self.send_header(name, value)
        self.send_header("Content-Length", str(length))
        self.end_headers()

    def reply(self, status, body, headers=()):
        self.head(status, len(body), headers)
        self.wfile.write(body)

    def do_GET(self):
        url = urlsplit(self.path)
        if url.path == "/Downloads/GetVersion1.asp":
            self.reply(200, UPDATE_PAGE)
        elif url.path == "/redirect":
            self.reply(302, b"moved", headers=[("Location", "/Downloads/GetVersion1.asp?from=redirect")])
        elif url.path == "/fail":
            self.reply(500, b"failed")
        elif url.path == "/big":
            query = parse_qs(url.query)
            size = int(query.get("size", [5 * 1024 * 1024])[0])
            pause = float(query.get("pause", [0])[0]) / 1000
            self.head(200, size)
            piece = bytes(range(256)) * 256
            for sent in range(0, size, len(piece)):
                self.wfile.write(piece[:size - sent])
                if pause:
                    time.sleep(pause)
        elif url.path == "/cut":
            self.head(200, 100000)
            self.wfile.write(b"<html>" + b"x" * 4994)
            self.wfile.flush()
            self.close_connection = True
        else:
            self.reply(404, b"not here")

    def do_POST(self):
        body = self.rfile.read(int(self.headers.get("Content-Length", 0)))
        text = "%s %s|%s|" % (self.requestline, self.headers.get("Content-Type"), self.headers.get("User-Agent"))
        self.reply(200, text.encode() + body)


def main():
    server = ThreadingHTTPServer(("127.0.0.1", 0), Handler)
    server.daemon_threads = True
    print(server.server_address[1], os.getpid(), flush=True)
    server.serve_forever()


if __name__ == "__main__":
    sys.exit(main())
