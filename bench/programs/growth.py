"""Runs the programs with many items and with four times as many. The second run may take GROWTH times
as long; quadratic time would be 16 times as long."""

import re
import socket
import struct
import subprocess
import tempfile
import time

from micro import GROWTH

FILES = 25_000
UPDATES = 1_000
MAGIC, NO_MAGIC = 0xE8B47CC3, 0x174B833C
CRC = 0x8CDC1683  # of "x"


def pack(programs, count):
    """Returns the seconds for packing count files."""
    with tempfile.TemporaryDirectory() as directory:
        with open(f"{directory}/f", "w") as file:
            file.write("x")
        with open(f"{directory}/manifest", "w") as file:
            file.write(f"file.count = {count}\n")
            file.writelines(f"file[{i}].origin = f\n" for i in range(count))
        start = time.perf_counter()
        subprocess.run([f"{programs}/ravelink-pack", "-b", f"{directory}/manifest", "-o",
                        f"{directory}/archive"], stdout=subprocess.DEVNULL, check=True)
        return time.perf_counter() - start


def update(address, token):
    with socket.create_connection(address) as device:
        device.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
        device.sendall(struct.pack(">IIII", MAGIC, 1, CRC, NO_MAGIC)
                       + struct.pack(">IIII", MAGIC, token, 0x00010000, 1) + b"x"
                       + struct.pack(">IIII", 1, CRC, token, MAGIC))
        device.shutdown(socket.SHUT_WR)
        received = b""
        while chunk := device.recv(4096):
            received += chunk
    if len(received) != 5 * 16:
        raise RuntimeError(f"update {token}: received {received.hex()}")


def store(programs, count):
    """Returns the seconds for sending count updates to a device that stores them in memory."""
    with tempfile.TemporaryDirectory(dir="/dev/shm") as directory:
        with subprocess.Popen([f"{programs}/ravelink-device", "-b", "127.0.0.1:0", "-d", directory],
                              stdout=subprocess.PIPE, text=True) as device:
            device.stdout.readline()
            host, port = re.search(r"([0-9.]+):(\d+)", device.stdout.readline()).groups()
            output = subprocess.Popen(["cat"], stdin=device.stdout, stdout=subprocess.DEVNULL)
            start = time.perf_counter()
            for token in range(1, count + 1):
                update((host, int(port)), token)
            seconds = time.perf_counter() - start
            device.terminate()
            output.wait()
        return seconds


def measure(programs, table):
    for path, work, count in (("pack files", pack, FILES), ("store updates", store, UPDATES)):
        ratio = work(programs, 4 * count) / work(programs, count)
        table.limit(f"{path}, four times as many", "times", ratio, GROWTH)
