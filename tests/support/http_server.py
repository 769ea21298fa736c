#!/usr/bin/python3
"""HTTP/1.1 server for the tests on 127.0.0.1: http_server.py ROOT [--pieces N] [--gap SECONDS]

Prints its port on the first line, then serves the files of ROOT byte for byte (text/html).

A request target (path and query, as sent) names one flat file in ROOT: drop the leading "/",
write every byte outside A-Z a-z 0-9 "." "-" as "_" and two upper-case hex digits, and use
"index.htm" when nothing is left. So "/aw-cgi/eBayISAPI.dll?ViewItem&item=123" is the file
"aw-cgi_2FeBayISAPI.dll_3FViewItem_26item_3D123". A target written in absolute form
("http://host:port/path") is taken by its path. A missing file answers 404.

Every request target is appended, one line each, to ROOT/requests.log before it is answered.

Targets for faults and checks (TARGET below is another target, "/page.htm"):
  /_test/stall            reads the request and never answers (until the client goes away)
  /_test/cut/N            declares N bytes, sends the first N/2 and closes the connection
  /_test/status/CODE      answers CODE (404, 500...) with a short HTML body
  /_test/unsized/TARGET   the page of TARGET with no Content-Length; the close ends it
  /_test/slow/TARGET      the page of TARGET, with its length, in --pieces pieces (default 8)
                          sent --gap seconds apart (default 0.15)
  /_test/redirect/TARGET  302 to TARGET
  /_test/headers          the request's header lines as the body (text/plain)
"""

import argparse
import http.server
import os
import re
import threading
import time
from urllib.parse import urlsplit

parser = argparse.ArgumentParser()
parser.add_argument("root")
parser.add_argument("--pieces", type=int, default=8)
parser.add_argument("--gap", type=float, default=0.15)
args = parser.parse_args()

log_lock = threading.Lock()
SAFE = re.compile(rb"[A-Za-z0-9.\-]")


def file_name(target):
    raw = target.encode("latin-1", "replace")
    if raw.startswith(b"/"):
        raw = raw[1:]
    name = "".join(chr(b) if SAFE.match(bytes([b])) else "_%02X" % b for b in raw)
    return name or "index.htm"


def origin_form(target):
    if target.startswith(("http://", "https://")):
        parts = urlsplit(target)
        return (parts.path or "/") + ("?" + parts.query if parts.query else "")
    return target


class Handler(http.server.BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"

    def log_message(self, format, *arguments):
        pass

    def page(self, target):
        try:
            with open(os.path.join(args.root, file_name(target)), "rb") as f:
                return f.read()
        except OSError:
            return None

    def answer(self, code, body, content_type="text/html", length=True):
        self.send_response(code)
        self.send_header("Content-Type", content_type)
        if length:
            self.send_header("Content-Length", str(len(body)))
        else:
            self.send_header("Connection", "close")
            self.close_connection = True
        self.end_headers()
        self.wfile.write(body)

    def missing(self):
        self.answer(404, b"<html><body>Not Found</body></html>")

    def do_GET(self):
        target = origin_form(self.path)
        with log_lock, open(os.path.join(args.root, "requests.log"), "a") as log:
            log.write(target + "\n")

        if target == "/_test/stall":
            while self.rfile.read(1):  # b"" once the client has closed
                pass
            self.close_connection = True
            return
        if target.startswith("/_test/cut/"):
            size = int(target[len("/_test/cut/"):])
            self.send_response(200)
            self.send_header("Content-Type", "text/html")
            self.send_header("Content-Length", str(size))
            self.end_headers()
            self.wfile.write(b"x" * (size // 2))
            self.close_connection = True
            return
        if target.startswith("/_test/status/"):
            code = int(target[len("/_test/status/"):])
            self.answer(code, b"<html><body>Status %d</body></html>" % code)
            return
        if target == "/_test/headers":
            self.answer(200, bytes(self.headers), "text/plain")
            return
        for mode in ("unsized", "slow", "redirect"):
            prefix = "/_test/" + mode
            if target.startswith(prefix + "/"):
                inner = target[len(prefix):]
                if mode == "redirect":
                    self.send_response(302)
                    self.send_header("Location", inner)
                    self.send_header("Content-Length", "0")
                    self.end_headers()
                    return
                body = self.page(inner)
                if body is None:
                    self.missing()
                elif mode == "unsized":
                    self.answer(200, body, length=False)
                else:
                    self.send_response(200)
                    self.send_header("Content-Type", "text/html")
                    self.send_header("Content-Length", str(len(body)))
                    self.end_headers()
                    step = max(1, -(-len(body) // max(1, args.pieces)))
                    for start in range(0, len(body), step):
                        if start:
                            time.sleep(args.gap)
                        self.wfile.write(body[start:start + step])
                        self.wfile.flush()
                return

        body = self.page(target)
        if body is None:
            self.missing()
        else:
            self.answer(200, body)


class Server(http.server.ThreadingHTTPServer):
    daemon_threads = True


server = Server(("127.0.0.1", 0), Handler)
print(server.server_address[1], flush=True)
server.serve_forever(poll_interval=0.2)
