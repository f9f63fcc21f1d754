"""A mail server for SmtpServer, on python3-aiosmtpd: keeps each mail in a folder.

    smtp_server.py FOLDER PLAIN STARTTLS TLS CERTIFICATE KEY

Listens on three ports of 127.0.0.1: PLAIN without TLS, STARTTLS where only EHLO, NOOP, QUIT and STARTTLS work before
STARTTLS and then only with a login, and TLS from the start. Of the N-th mail FOLDER gets N.eml, the bytes as they were
sent, without the doubled dots, and N.json, the envelope as a flat JSON object; lists are joined with line feeds.
"""

import asyncio
import itertools
import json
import os
import ssl
import sys

from aiosmtpd.smtp import SMTP, AuthResult, LoginPassword

USER = (b"user", b"secret")
LARGEST_MAIL = 32 << 20


class Handler:
    """Refuses what its names say, keeps the rest."""

    def __init__(self, folder):
        self.folder = folder
        self.numbers = itertools.count(1)

    async def handle_MAIL(self, server, session, envelope, address, options):
        if address.startswith("badsender"):
            return "553 5.1.8 sender refused"
        envelope.mail_from = address
        envelope.mail_options.extend(options)
        return "250 2.1.0 sender fine"

    async def handle_RCPT(self, server, session, envelope, address, options):
        if address.startswith("reject"):
            return "550-5.1.1 nobody here\r\n550 5.1.1 has that name"
        if address.startswith("tempfail"):
            return "451 4.3.0 try later"
        envelope.rcpt_tos.append(address)
        return "250 2.1.5 recipient fine"

    async def handle_DATA(self, server, session, envelope):
        if b"REJECT-DATA" in envelope.original_content:
            return "554 5.6.0 content refused"
        login = session.auth_data.login.decode() if session.auth_data else ""
        fields = {
            "from": envelope.mail_from,
            "recipients": "\n".join(envelope.rcpt_tos),
            "options": "\n".join(envelope.mail_options),
            "greeting": session.host_name,
            "tls": tls_version(server),
            "login": login,
            "clientPort": session.peer[1],
        }
        number = next(self.numbers)
        self.write(f"{number}.eml", envelope.original_content)
        self.write(f"{number}.json", json.dumps(fields, ensure_ascii=False, separators=(",", ":")).encode())
        return f"250 2.0.0 kept as {number}"

    def write(self, name, content):
        with open(os.path.join(self.folder, name), "wb") as file:
            file.write(content)


def tls_version(server):
    connection = server.transport.get_extra_info("ssl_object")
    return connection.version() if connection else ""


def authenticate(server, session, envelope, mechanism, data):
    fine = isinstance(data, LoginPassword) and (data.login, data.password) == USER
    # Not handled: the server itself answers with 535.
    return AuthResult(success=fine, handled=fine, auth_data=data if fine else None)


async def serve(folder, plain, starttls, tls, certificate, key):
    loop = asyncio.get_running_loop()
    handler = Handler(folder)
    context = ssl.create_default_context(ssl.Purpose.CLIENT_AUTH)
    context.load_cert_chain(certificate, key)

    def protocol(**options):
        return lambda: SMTP(handler, hostname="mail.test", ident="test mail server", authenticator=authenticate,
                            enable_SMTPUTF8=True, data_size_limit=LARGEST_MAIL, loop=loop, **options)

    address = "127.0.0.1"
    await loop.create_server(protocol(auth_require_tls=False), address, plain)
    await loop.create_server(protocol(tls_context=context, require_starttls=True, auth_required=True), address, starttls)
    await loop.create_server(protocol(auth_require_tls=False), address, tls, ssl=context)
    await asyncio.Event().wait()


if __name__ == "__main__":
    asyncio.run(serve(sys.argv[1], *map(int, sys.argv[2:5]), *sys.argv[5:7]))
