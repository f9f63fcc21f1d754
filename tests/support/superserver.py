"""Starts a program for each connection, which becomes the program's standard input and output, as inetd does.

Arguments: the number of ports of 127.0.0.1 to listen at, the ports, then the program's path and arguments.
"""

import os
import selectors
import socket
import sys

count = int(sys.argv[1])
ports = [int(port) for port in sys.argv[2 : 2 + count]]
program = sys.argv[2 + count :]

selector = selectors.DefaultSelector()
for port in ports:
    listener = socket.socket()
    listener.setsockopt(socket.SOL_SOCKET, socket.SO_REUSEADDR, 1)
    listener.bind(("127.0.0.1", port))
    listener.listen(128)
    selector.register(listener, selectors.EVENT_READ)


def reap():
    """Takes note of the programs that have ended."""
    try:
        while os.waitpid(-1, os.WNOHANG)[0] != 0:
            pass
    except ChildProcessError:
        pass


while True:
    for key, _ in selector.select():
        connection, _ = key.fileobj.accept()
        with connection:
            inherited = [(os.POSIX_SPAWN_DUP2, connection.fileno(), stream) for stream in (0, 1)]
            os.posix_spawn(program[0], program, os.environ, file_actions=inherited)
    reap()
