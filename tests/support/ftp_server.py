#!/usr/bin/python3
"""FTP server for the tests on 127.0.0.1: ftp_server.py ROOT [hang | UPLOAD_BYTES_A_SECOND]

Prints its port, then lets "seller" (password "secret") in to ROOT/www (made by the caller),
as a web space host does; "hang" accepts connections and never says a word.
"""

import socket
import sys
import threading

from pyftpdlib.authorizers import DummyAuthorizer
from pyftpdlib.handlers import FTPHandler, ThrottledDTPHandler
from pyftpdlib.servers import FTPServer

root = sys.argv[1]
mode = sys.argv[2] if len(sys.argv) > 2 else ""
if mode == "hang":  # the kernel completes the handshake; nobody ever answers
    listener = socket.create_server(("127.0.0.1", 0))
    print(listener.getsockname()[1], flush=True)
    threading.Event().wait()


class Handler(FTPHandler):
    auth_failed_timeout = 0  # real servers make a wrong password wait; tests need not

    def on_login(self, username):
        self.fs.cwd = "/www"


Handler.authorizer = DummyAuthorizer()
Handler.authorizer.add_user("seller", "secret", root, perm="elradfmwMT")
if mode:
    ThrottledDTPHandler.read_limit = int(mode)
    Handler.dtp_handler = ThrottledDTPHandler
server = FTPServer(("127.0.0.1", 0), Handler)
print(server.socket.getsockname()[1], flush=True)
server.serve_forever(timeout=0.2)
