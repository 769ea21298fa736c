#!/usr/bin/python3
"""FTP server for the tests, on 127.0.0.1 only.

Prints the port it listens on as its first line, then serves ROOT until killed.

  ftp_server.py ROOT [--user U] [--password P] [--mode MODE] [--rate BYTES] [--log FILE]
                     [--login-dir DIR]

Modes:
  normal    an ordinary server (read and write)
  readonly  the user may list and read but not store or delete
  full      every STOR is refused with "452 Insufficient storage space."
  throttle  uploads are read at --rate bytes a second (for aborting a transfer)
  hang      accepts connections and never says a word (for time-outs)
--log appends every command line the server receives to FILE.
--login-dir puts the user in DIR (a path under ROOT, such as /www) after logging in, the way
a web space host does, so paths relative to the login directory differ from absolute ones.
"""

import argparse
import logging
import socket
import sys
import threading

from pyftpdlib.authorizers import DummyAuthorizer
from pyftpdlib.handlers import FTPHandler, ThrottledDTPHandler
from pyftpdlib.servers import FTPServer


def serve_silence():
    listener = socket.socket(socket.AF_INET, socket.SOCK_STREAM)
    listener.setsockopt(socket.SOL_SOCKET, socket.SO_REUSEADDR, 1)
    listener.bind(("127.0.0.1", 0))
    listener.listen(8)
    print(listener.getsockname()[1], flush=True)
    held = []
    while True:
        conn, _ = listener.accept()
        held.append(conn)  # kept open, never answered


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("root")
    parser.add_argument("--user", default="seller")
    parser.add_argument("--password", default="secret")
    parser.add_argument("--mode", default="normal",
                        choices=["normal", "readonly", "full", "throttle", "hang"])
    parser.add_argument("--rate", type=int, default=65536)
    parser.add_argument("--log")
    parser.add_argument("--login-dir")
    args = parser.parse_args()

    if args.mode == "hang":
        serve_silence()
        return

    logging.basicConfig(level=logging.WARNING, stream=sys.stderr)
    log_lock = threading.Lock()

    class Handler(FTPHandler):
        def pre_process_command(self, line, cmd, arg):
            if args.log:
                with log_lock, open(args.log, "a", encoding="utf-8") as f:
                    f.write(line + "\n")
            if args.mode == "full" and cmd == "STOR":
                self.respond("452 Insufficient storage space.")
                return
            super().pre_process_command(line, cmd, arg)

        def on_login(self, username):
            if args.login_dir:
                self.fs.cwd = args.login_dir

    authorizer = DummyAuthorizer()
    perm = "elr" if args.mode == "readonly" else "elradfmwMT"
    authorizer.add_user(args.user, args.password, args.root, perm=perm)
    Handler.authorizer = authorizer
    Handler.auth_failed_timeout = 1  # real servers wait too, but not this long in tests
    if args.mode == "throttle":
        dtp = ThrottledDTPHandler
        dtp.read_limit = args.rate
        dtp.write_limit = args.rate
        Handler.dtp_handler = dtp

    server = FTPServer(("127.0.0.1", 0), Handler)
    print(server.socket.getsockname()[1], flush=True)
    server.serve_forever(timeout=0.2)


if __name__ == "__main__":
    main()
