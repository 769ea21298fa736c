#!/usr/bin/python3
"""SMTP server for the tests on 127.0.0.1: smtp_server.py STORE [options]

Prints its port, then takes mail. Each message received is written to STORE/NNN.json:
  mail_from, rcpt_tos      the envelope
  data                     the message bytes after the server undid the dot-stuffing, base64
  subject, body            as a mail reader decodes them (RFC 2047 words, the charset)
  date                     the Date header as a mail reader parses it, ISO 8601 ("" if unparsable)
Each step of a conversation is appended to STORE/events.log, one line each: "EHLO name",
"HELO name", "STARTTLS", "AUTH mechanism user ok|refused", "QUIT".

Options:
  --starttls CERT KEY      offer STARTTLS with this certificate
  --tls CERT KEY           speak TLS from the first byte
  --auth USER:PASSWORD     require signing in before MAIL
  --mechanisms LIST        offer only these AUTH mechanisms (comma separated, e.g. LOGIN)
  --reject-rcpt ADDRESS    answer RCPT TO this address with 550
  --drop-data              close the connection once the message data is in, without a reply
  --hang                   accept connections and never say a word
"""

import argparse
import asyncio
import base64
import email
import email.policy
import email.utils
import json
import logging
import os
import socket
import ssl
import threading
import warnings

from aiosmtpd.smtp import SMTP, AuthResult, LoginPassword

# Signing in without TLS is what some tests mean to do; the library's warnings say nothing new.
warnings.filterwarnings("ignore")
logging.disable(logging.CRITICAL)

parser = argparse.ArgumentParser()
parser.add_argument("store")
parser.add_argument("--starttls", nargs=2)
parser.add_argument("--tls", nargs=2)
parser.add_argument("--auth")
parser.add_argument("--mechanisms")
parser.add_argument("--reject-rcpt")
parser.add_argument("--drop-data", action="store_true")
parser.add_argument("--hang", action="store_true")
args = parser.parse_args()

if args.hang:  # the kernel completes the handshake; nobody ever answers
    listener = socket.create_server(("127.0.0.1", 0))
    print(listener.getsockname()[1], flush=True)
    threading.Event().wait()


def log(line):
    with open(os.path.join(args.store, "events.log"), "a", encoding="utf-8") as f:
        f.write(line + "\n")


def tls_context(pair):
    context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
    context.load_cert_chain(pair[0], pair[1])
    return context


class Handler:
    count = 0

    async def handle_EHLO(self, server, session, envelope, hostname, responses):
        session.host_name = hostname
        log("EHLO " + hostname)
        return responses

    async def handle_HELO(self, server, session, envelope, hostname):
        session.host_name = hostname
        log("HELO " + hostname)
        return "250 " + server.hostname

    async def handle_QUIT(self, server, session, envelope):
        log("QUIT")
        return "221 Bye"

    async def handle_RCPT(self, server, session, envelope, address, options):
        if args.reject_rcpt and address.lower() == args.reject_rcpt.lower():
            return "550 5.1.1 No such user here"
        envelope.rcpt_tos.append(address)
        return "250 OK"

    async def handle_DATA(self, server, session, envelope):
        if args.drop_data:
            server.transport.abort()
            return "421 never seen"
        Handler.count += 1
        raw = envelope.original_content
        message = email.message_from_bytes(raw, policy=email.policy.default)
        try:
            date = email.utils.parsedate_to_datetime(message["Date"]).isoformat()
        except (TypeError, ValueError):
            date = ""
        record = {
            "mail_from": envelope.mail_from,
            "rcpt_tos": envelope.rcpt_tos,
            "data": base64.b64encode(raw).decode("ascii"),
            "subject": str(message["Subject"] or ""),
            "body": message.get_content(),
            "date": date,
        }
        name = os.path.join(args.store, "%03d.json" % Handler.count)
        with open(name + ".part", "w", encoding="utf-8") as f:
            json.dump(record, f)
        os.replace(name + ".part", name)
        return "250 OK: queued"


def authenticator(server, session, envelope, mechanism, data):
    user, _, password = args.auth.partition(":")
    ok = (isinstance(data, LoginPassword) and data.login == user.encode()
          and data.password == password.encode())
    log("AUTH %s %s %s" % (mechanism, data.login.decode(errors="replace"),
                           "ok" if ok else "refused"))
    return AuthResult(success=ok, handled=False)


class Server(SMTP):
    async def smtp_STARTTLS(self, arg):
        log("STARTTLS")
        await super().smtp_STARTTLS(arg)


def make_protocol():
    options = {"hostname": "mail.test", "timeout": 30}
    if args.starttls:
        options["tls_context"] = tls_context(args.starttls)
    if args.auth:
        options["authenticator"] = authenticator
        options["auth_required"] = True
        options["auth_require_tls"] = False
        if args.mechanisms:
            offered = set(args.mechanisms.upper().split(","))
            options["auth_exclude_mechanism"] = [m for m in ("LOGIN", "PLAIN")
                                                 if m not in offered]
    return Server(Handler(), **options)


async def main():
    loop = asyncio.get_running_loop()
    server = await loop.create_server(
        make_protocol, "127.0.0.1", 0,
        ssl=tls_context(args.tls) if args.tls else None)
    print(server.sockets[0].getsockname()[1], flush=True)
    await server.serve_forever()


asyncio.run(main())
