"""Receivers that discard a file: raw, by HTTP, or as a device.

Each sink listens on a free loopback port, accepts one connection in its own process and measures the
time from the first byte of the file to the last. It does not process the bytes, so that it is never
the bottleneck.
"""

import multiprocessing
import os
import socket
import struct
import time
import zlib

MAGIC = 0xE8B47CC3
CHUNK_SIZE = 1 << 18  # large enough to empty the socket in one receive


class Sink:
    """Serves one connection on port; result() waits for its end."""

    def __init__(self, serve, cpu):
        """Runs serve(connection) in another process, on the given CPU."""
        listener = socket.create_server(("127.0.0.1", 0))
        self.port = listener.getsockname()[1]
        fork = multiprocessing.get_context("fork")
        self._results, sender = fork.Pipe(duplex=False)
        self._process = fork.Process(target=_run, args=(serve, cpu, listener, sender))
        self._process.start()
        listener.close()
        sender.close()

    def result(self):
        """Returns the result of serve: the seconds of the file, and another value."""
        value = self._results.recv()
        self._process.join()
        return value


def _run(serve, cpu, listener, report):
    os.sched_setaffinity(0, {cpu})
    connection, _ = listener.accept()
    report.send(serve(connection))


def _discard(connection, count):
    """Receives up to count bytes, fewer only at the end of the stream. Returns their number."""
    buffer = bytearray(CHUNK_SIZE)
    received = 0
    while received < count:
        got = connection.recv_into(buffer, min(CHUNK_SIZE, count - received))
        if got == 0:
            break
        received += got
    return received


def _timed(connection, size):
    # Acknowledge at once for every sender: by default, a receiver that has sent data delays it.
    connection.setsockopt(socket.IPPROTO_TCP, socket.TCP_QUICKACK, 1)
    connection.recv(1, socket.MSG_PEEK)
    start = time.perf_counter()
    received = _discard(connection, size)
    seconds = time.perf_counter() - start
    if received != size:
        raise RuntimeError(f"received {received} of {size} bytes")
    return seconds


def raw(size):
    """Receives the file without any protocol."""
    return lambda connection: (_timed(connection, size), None)


def http(size):
    """Receives the file by HTTP PUT."""

    def serve(connection):
        head = connection.recv(65536, socket.MSG_PEEK)
        connection.recv(head.index(b"\r\n\r\n") + 4)
        seconds = _timed(connection, size)
        connection.sendall(b"HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n")
        return seconds, None

    return serve


def device(cpu_time):
    """Receives an update. Calls cpu_time() after the header, just before the file."""

    def notify(connection, code, value):
        words = struct.pack(">3I", MAGIC, code, value)
        connection.sendall(words + struct.pack(">I", zlib.crc32(words)))

    def serve(connection):
        size = struct.unpack(">4I", connection.recv(16, socket.MSG_WAITALL))[1]
        notify(connection, 1, 1)
        connection.recv(16, socket.MSG_WAITALL)
        before = cpu_time()
        # Confirm the header: otherwise the updater waits for a response first.
        notify(connection, 1, 1)
        seconds = _timed(connection, size)
        connection.recv(16, socket.MSG_WAITALL)
        notify(connection, 5, 1)
        return seconds, before

    return serve
