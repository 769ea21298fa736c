#!/usr/bin/python3
"""Forwarding HTTP proxy for the tests on 127.0.0.1: http_proxy.py LOGFILE

Prints its port on the first line. Takes GET requests in absolute form and CONNECT tunnels,
appends each request line it forwards to LOGFILE ("GET http://127.0.0.1:4711/page.htm HTTP/1.1",
"CONNECT 127.0.0.1:4712 HTTP/1.1"), and forwards only to this machine: any other host is
answered 403 and not logged, so nothing a test does can reach another network.
"""

import http.server
import select
import socket
import sys
import threading
from urllib.parse import urlsplit

log_file = sys.argv[1]
log_lock = threading.Lock()
LOCAL = {"127.0.0.1", "localhost", "::1"}


def log(line):
    with log_lock, open(log_file, "a") as f:
        f.write(line + "\n")


def relay(a, b):
    """Copies both ways until either side closes."""
    sockets = [a, b]
    while True:
        readable, _, broken = select.select(sockets, [], sockets, 30)
        if broken or not readable:
            return
        for s in readable:
            data = s.recv(65536)
            if not data:
                return
            (b if s is a else a).sendall(data)


class Handler(http.server.BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"

    def log_message(self, format, *arguments):
        pass

    def refuse(self, code):
        self.send_response(code)
        self.send_header("Content-Length", "0")
        self.send_header("Connection", "close")
        self.end_headers()
        self.close_connection = True

    def do_CONNECT(self):
        host, _, port = self.path.rpartition(":")
        if host.strip("[]") not in LOCAL:
            return self.refuse(403)
        log(self.requestline)
        try:
            upstream = socket.create_connection((host.strip("[]"), int(port)), timeout=10)
        except (OSError, ValueError):
            return self.refuse(502)
        self.send_response(200, "Connection established")
        self.end_headers()
        self.wfile.flush()
        with upstream:
            relay(self.connection, upstream)
        self.close_connection = True

    def do_GET(self):
        parts = urlsplit(self.path)
        if parts.scheme != "http" or parts.hostname not in LOCAL:
            return self.refuse(403)
        log(self.requestline)
        target = (parts.path or "/") + ("?" + parts.query if parts.query else "")
        lines = ["GET %s HTTP/1.1" % target]
        for name, value in self.headers.items():
            if name.lower() not in ("proxy-connection", "connection", "keep-alive"):
                lines.append("%s: %s" % (name, value))
        lines.append("Connection: close")
        request = ("\r\n".join(lines) + "\r\n\r\n").encode("latin-1")
        try:
            upstream = socket.create_connection((parts.hostname, parts.port or 80), timeout=10)
        except OSError:
            return self.refuse(502)
        # The answer goes back as it came; the closed upstream connection marks its end.
        with upstream:
            upstream.sendall(request)
            upstream.settimeout(None)
            while True:
                data = upstream.recv(65536)
                if not data:
                    break
                self.wfile.write(data)
        self.close_connection = True


class Server(http.server.ThreadingHTTPServer):
    daemon_threads = True


server = Server(("127.0.0.1", 0), Handler)
print(server.server_address[1], flush=True)
server.serve_forever(poll_interval=0.2)
