"""Engines made of plain sockets, for what the simulator doesn't do."""

import os
import pathlib
import socket
import threading

import support

ADDRESS = ("127.0.0.1", 7777)

# How long the system may try to connect to an engine that accepts nobody.
SYSTEM_PATIENCE = 200


class Peer:
    """Gives each connection the next of its replies, as bytes, and keeps the requests as text.

    The last reply is repeated.
    """

    def __init__(self, *replies):
        self.replies = list(replies)
        self.requests = []

    def __enter__(self):
        self.listener = socket.create_server(ADDRESS)
        self.server = threading.Thread(target=self.serve)
        self.server.start()
        return self

    def __exit__(self, *_):
        socket.create_connection(ADDRESS).close()  # a connection without a request is the end
        self.server.join(support.PATIENCE)
        self.listener.close()

    def serve(self):
        while True:
            with self.listener.accept()[0] as connection:
                request = connection.recv(65536)
                if not request:
                    return
                self.requests.append(request.decode())
                reply = self.replies[0] if len(self.replies) == 1 else self.replies.pop(0)
                try:
                    connection.sendall(reply)
                except OSError:
                    pass  # the client has ended


def shorten_connect_timeout():
    """Makes the system give up after seconds, if the network is this test's own.

    Otherwise, or if that takes a privilege that the user lacks, it takes about two minutes.
    """
    try:
        networks = {os.readlink(f"/proc/{process}/ns/net") for process in ["self", os.getppid()]}
        if len(networks) == 2:
            pathlib.Path("/proc/sys/net/ipv4/tcp_syn_retries").write_text("1")
    except OSError:
        pass
