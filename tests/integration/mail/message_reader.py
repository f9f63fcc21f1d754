"""Reads messages with Python's email package, which knows nothing of the library that wrote them.

    message_reader.py PORT

Serves one client on 127.0.0.1. Each message comes as its length in decimal, a line feed and its bytes; the answer has
the same form and tells, entity by entity in the order of the message:

    entity DEPTH
    defect NAME             what the parser found fault with
    header NAME: VALUE      in order of the names, encoded words decoded
    address NAME <ADDRESS>  of From, the name without its quotation marks
    file NAME               of Content-Disposition
    body LENGTH             of an entity without parts, followed by its bytes, decoded, and a line feed

Texts are in UTF-8 with everything but printable ASCII percent-encoded.
"""

import email
import email.header
import email.utils
import socket
import sys


def plain(text):
    encoded = text.encode("utf-8", "surrogateescape")
    return "".join(chr(byte) if 0x20 <= byte < 0x7F and byte != 0x25 else f"%{byte:02X}" for byte in encoded)


def decode(value):
    parts = email.header.decode_header(value)
    return "".join(part.decode(charset or "ascii") if isinstance(part, bytes) else part for part, charset in parts)


def describe(entity, depth, answer):
    def line(text):
        answer.append(text.encode() + b"\n")

    line(f"entity {depth}")
    for defect in entity.defects:
        line(f"defect {type(defect).__name__}")
    for name, value in sorted(entity.items()):
        line(f"header {name}: {plain(decode(value))}")
    if "From" in entity:
        name, address = email.utils.parseaddr(decode(entity["From"]))
        line(f"address {plain(name)} <{address}>")
    if entity.get_content_disposition() is not None:
        line(f"file {plain(entity.get_filename(''))}")
    if entity.is_multipart():
        for part in entity.get_payload():
            describe(part, depth + 1, answer)
    else:
        body = entity.get_payload(decode=True)
        line(f"body {len(body)}")
        answer.append(body + b"\n")


def serve(port):
    with socket.create_server(("127.0.0.1", port)) as server:
        while True:
            client, _ = server.accept()
            with client, client.makefile("rwb") as stream:
                while length := stream.readline():
                    answer = []
                    describe(email.message_from_bytes(stream.read(int(length))), 0, answer)
                    answer = b"".join(answer)
                    stream.write(b"%d\n" % len(answer) + answer)
                    stream.flush()


if __name__ == "__main__":
    serve(int(sys.argv[1]))
