"""A peer that takes a file and drops it: raw, by HTTP, or as a device does.

Each sink listens on a free port of the loopback, takes one connection in a process of its own, and
tells how long it was from the file's first byte to its last. It does nothing else with the bytes, so
that it is never what is measured.
"""

import multiprocessing
import os
import socket
import struct
import time
import zlib

MAGIC = 0xE8B47CC3
PIECE = 1 << 18  # a receive that large empties what has come


class Sink:
    """Serves one connection; port is where, result() waits for its end."""

    def __init__(self, serve, cpu):
        """serve(connection) is what it does, on a processor of its own."""
        listener = socket.create_server(("127.0.0.1", 0))
        self.port = listener.getsockname()[1]
        fork = multiprocessing.get_context("fork")
        self._near, far = fork.Pipe(duplex=False)
        self._process = fork.Process(target=_run, args=(serve, cpu, listener, far))
        self._process.start()
        listener.close()
        far.close()

    def result(self):
        """Seconds from the file's first byte to its last, and what serve adds to them."""
        answer = self._near.recv()
        self._process.join()
        return answer


def _run(serve, cpu, listener, report):
    os.sched_setaffinity(0, {cpu})
    connection, _ = listener.accept()
    report.send(serve(connection))


def _drop(connection, count):
    """Takes count bytes, or all until the end; the number taken."""
    room = bytearray(PIECE)
    taken = 0
    while taken < count:
        got = connection.recv_into(room, min(PIECE, count - taken))
        if got == 0:
            break
        taken += got
    return taken


def _timed(connection, size):
    # All senders get the same receiver: one that has answered before would acknowledge later.
    connection.setsockopt(socket.IPPROTO_TCP, socket.TCP_QUICKACK, 1)
    connection.recv(1, socket.MSG_PEEK)
    start = time.perf_counter()
    taken = _drop(connection, size)
    seconds = time.perf_counter() - start
    if taken != size:
        raise RuntimeError(f"{taken} bytes came of {size}")
    return seconds


def raw(size):
    """The file and nothing else."""
    return lambda connection: (_timed(connection, size), None)


def http(size):
    """A file that is put by HTTP."""

    def serve(connection):
        head = connection.recv(65536, socket.MSG_PEEK)
        connection.recv(head.index(b"\r\n\r\n") + 4)
        seconds = _timed(connection, size)
        connection.sendall(b"HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n")
        return seconds, None

    return serve


def device(cpu_time):
    """An update; cpu_time() is asked when the header has come, just before the file."""

    def notify(connection, code, value):
        words = struct.pack(">3I", MAGIC, code, value)
        connection.sendall(words + struct.pack(">I", zlib.crc32(words)))

    def serve(connection):
        size = struct.unpack(">4I", connection.recv(16, socket.MSG_WAITALL))[1]
        notify(connection, 1, 1)
        connection.recv(16, socket.MSG_WAITALL)
        before = cpu_time()
        # An answer to the header spares the updater the wait for one.
        notify(connection, 1, 1)
        seconds = _timed(connection, size)
        connection.recv(16, socket.MSG_WAITALL)
        notify(connection, 5, 1)
        return seconds, before

    return serve
