#!/usr/bin/env python3
"""A local SMTP server for the mail tests; runs until its standard input closes.

Prints one JSON line with its loopback ports:
  plain:  accepts everything except the recipient reject@example.com (550), offers no STARTTLS
  auth:   as plain, but wants AUTH with user "user" and password "secret"
  hang:   accepts connections and never answers
  closed: a port nobody listens on
Each message is saved to DIR as N.json (recipients, decoded headers, body and attachments);
EHLO, AUTH and STARTTLS are appended to DIR/log.txt.
"""
import asyncio
import base64
import email
import email.policy
import json
import os
import socket
import sys
import threading

from aiosmtpd.controller import Controller
from aiosmtpd.smtp import SMTP, AuthResult

REJECTED = "reject@example.com"


class Recorder:
    def __init__(self, folder):
        self.folder = folder
        self.count = 0
        self.lock = threading.Lock()

    def log(self, line):
        with self.lock, open(os.path.join(self.folder, "log.txt"), "a", encoding="utf-8") as f:
            f.write(line + "\n")

    async def handle_EHLO(self, server, session, envelope, hostname, responses):
        self.log("EHLO " + hostname)
        session.host_name = hostname
        return responses

    async def handle_RCPT(self, server, session, envelope, address, options):
        if address == REJECTED:
            return "550 5.1.1 no such mailbox here"
        envelope.rcpt_tos.append(address)
        return "250 OK"

    async def handle_DATA(self, server, session, envelope):
        msg = email.message_from_bytes(envelope.content, policy=email.policy.default)
        parts = []
        body = b""
        for part in msg.walk():
            if part.is_multipart():
                continue
            if part.get_filename():
                parts.append({
                    "filename": part.get_filename(),
                    "type": part.get_content_type(),
                    "bytes": base64.b64encode(part.get_payload(decode=True)).decode(),
                })
            elif part.get_content_type() == "text/plain":
                body = part.get_payload(decode=True)
        record = {
            "rcpt": envelope.rcpt_tos,
            "to": str(msg["To"]),
            "subject": str(msg["Subject"]),
            "date": str(msg["Date"]),
            "message_id": str(msg["Message-ID"]),
            "body": base64.b64encode(body).decode(),
            "attachments": parts,
        }
        with self.lock:
            self.count += 1
            name = os.path.join(self.folder, "%03d.json" % self.count)
        with open(name, "w", encoding="utf-8") as f:
            json.dump(record, f)
        return "250 OK queued"


def authenticator(recorder):
    def check(server, session, envelope, mechanism, auth_data):
        login = getattr(auth_data, "login", b"") or b""
        password = getattr(auth_data, "password", b"") or b""
        recorder.log("AUTH %s %s" % (mechanism, login.decode(errors="replace")))
        return AuthResult(success=(login == b"user" and password == b"secret"), handled=False)
    return check


class LoggingSMTP(SMTP):
    async def smtp_STARTTLS(self, arg):
        self.event_handler.log("STARTTLS")
        return await super().smtp_STARTTLS(arg)


class AuthController(Controller):
    def factory(self):
        return LoggingSMTP(self.handler, authenticator=authenticator(self.handler),
                           auth_require_tls=False, auth_required=True, **self.SMTP_kwargs)


class PlainController(Controller):
    def factory(self):
        return LoggingSMTP(self.handler, **self.SMTP_kwargs)


def free_port():
    with socket.socket() as s:
        s.bind(("127.0.0.1", 0))
        return s.getsockname()[1]


def start_hanging():
    sock = socket.socket()
    sock.bind(("127.0.0.1", 0))
    sock.listen(16)
    held = []

    def accept():
        while True:
            conn, _ = sock.accept()
            held.append(conn)  # never answered, never closed

    threading.Thread(target=accept, daemon=True).start()
    return sock.getsockname()[1]


def main():
    folder = sys.argv[1]
    os.makedirs(folder, exist_ok=True)
    recorder = Recorder(folder)
    plain = PlainController(recorder, hostname="127.0.0.1", port=free_port())
    plain.start()
    auth = AuthController(recorder, hostname="127.0.0.1", port=free_port())
    auth.start()
    ports = {"plain": plain.port, "auth": auth.port, "hang": start_hanging(),
             "closed": free_port()}
    print(json.dumps(ports), flush=True)
    sys.stdin.read()
    plain.stop()
    auth.stop()


if __name__ == "__main__":
    main()
