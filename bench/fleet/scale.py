"""Measures updates of many simulated devices from one machine, next to transfers of the same file by nc.

scale.py PROGRAMS OUTPUT: PROGRAMS is the directory of the built programs, OUTPUT the directory for the
table. The contestants run by the same engine, as many at once, and alternate; the first round is
discarded, and medians are compared.
"""

import multiprocessing
import os
import pathlib
import re
import resource
import socketserver
import statistics
import subprocess
import sys
import tempfile
import time
from contextlib import contextmanager

VERDICTS = pathlib.Path(__file__).resolve().parents[2] / "fleet/verdicts"
DEVICES = 1000
AT_ONCE = 100
FILE_SIZE = 8 << 20
ROUNDS = 4


class Discard(socketserver.BaseRequestHandler):
    """Receives to the end of a connection."""

    def handle(self):
        buffer = bytearray(1 << 18)
        while self.request.recv_into(buffer):
            pass


class Sink(socketserver.ThreadingTCPServer):
    request_queue_size = AT_ONCE
    daemon_threads = True


@contextmanager
def sink():
    """Yields the address of a receiver that discards all data, in its own process."""
    with Sink(("127.0.0.1", 0), Discard) as server:
        process = multiprocessing.get_context("fork").Process(target=server.serve_forever)
        process.start()
        yield "{}:{}".format(*server.server_address)
        process.kill()
        process.join()


@contextmanager
def devices(programs, directory, *options):
    """Yields the addresses of simulated devices."""
    log = pathlib.Path(tempfile.mkstemp(dir=directory)[1])
    with log.open("w") as output, subprocess.Popen(
            [f"{programs}/ravelink-device", "-b", "127.0.0.1:0", "-n", str(DEVICES), *options],
            stdout=output) as process:
        found = []
        while len(found) < DEVICES:
            if process.poll() is not None:
                raise RuntimeError(log.read_text())
            time.sleep(0.1)
            found = re.findall("Listening on: (.*)\n", log.read_text())
        yield found
        process.terminate()


def usage_of(command, lines):
    """Runs a command with these lines as its input. Returns the seconds, and the CPU seconds of the
    command and of the processes that it has started."""
    start = time.perf_counter()
    process = subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.DEVNULL, text=True)
    process.stdin.write("".join(line + "\n" for line in lines))
    process.stdin.close()
    _, status, usage = os.wait4(process.pid, 0)
    process.returncode = os.waitstatus_to_exitcode(status)
    if process.returncode != 0:
        raise RuntimeError(f"{command} returned {process.returncode}")
    return time.perf_counter() - start, usage.ru_utime + usage.ru_stime


def by_parallel(command, arguments):
    return usage_of(["parallel", "--will-cite", "-j", str(AT_ONCE), command], arguments)


def memory(command):
    """Returns the megabytes of a process. A child of Python would include Python's own."""
    report = subprocess.run(["time", "-f", "%M", "sh", "-c", f"exec {command}"], text=True, check=True,
                            stdout=subprocess.DEVNULL, stderr=subprocess.PIPE).stderr
    return int(report.split()[-1]) / 1024


class Scale:
    def __init__(self, programs, directory):
        self.programs = programs
        self.directory = directory
        self.file = directory / "update.rvl"
        self.file.write_bytes(os.urandom(FILE_SIZE))
        # Without this answer, the updater waits for one for two seconds.
        self.answering = directory / "answering.conf"
        self.answering.write_text("header = notify Accepted\n")

    def job(self, logs):
        return f"{self.programs}/ravelink-job -q -o {self.file} -a {{}} -l {logs}/{{}}.jsonl"

    def update(self, addresses):
        """Updates devices as docs/fleet.md does, and checks the outcomes."""
        with tempfile.TemporaryDirectory(dir=self.directory) as logs:
            result = by_parallel(self.job(logs), addresses)
            listed = self.directory / "devices.txt"
            listed.write_text("\n".join(addresses))
            verdicts = subprocess.run([VERDICTS, listed, logs], check=True, stdout=subprocess.PIPE)
        if verdicts.stdout.count(b"updated\t") != len(addresses):
            raise RuntimeError("not all devices are updated")
        return result

    def measure(self):
        """Returns the rows of the table: name, seconds, CPU milliseconds per device, megabytes."""
        with sink() as receiver, \
                devices(self.programs, self.directory, "-s", self.answering) as answering, \
                devices(self.programs, self.directory) as waiting:
            send = f"nc -N {receiver.replace(':', ' ')} <{self.file}"
            job = self.job(self.directory)
            contestants = {
                "ravelink-job": (lambda: self.update(answering), job.replace("{}", answering[0])),
                "nc": (lambda: by_parallel(f"{send} # {{}}", answering), send),
                "true": (lambda: by_parallel("true {}", answering), "true"),
                "ravelink-job, devices that do not answer the header": (
                    lambda: self.update(waiting), job.replace("{}", waiting[0])),
            }
            results = {name: [] for name in contestants}
            for number in range(ROUNDS):
                for name, (contest, _) in contestants.items():
                    result = contest()
                    if number > 0:
                        results[name].append(result)
            for name, (_, command) in contestants.items():
                seconds, cpu = map(statistics.median, zip(*results[name]))
                yield name, f"{seconds:.1f}", f"{1000 * cpu / DEVICES:.2f}", f"{memory(command):.1f}"


def main():
    programs, output = map(pathlib.Path, sys.argv[1:3])
    # Each device has a socket, and each connection another one.
    _, most = resource.getrlimit(resource.RLIMIT_NOFILE)
    resource.setrlimit(resource.RLIMIT_NOFILE, (most, most))
    os.environ["PARALLEL_SHELL"] = "/bin/sh"
    output.mkdir(parents=True, exist_ok=True)
    with tempfile.TemporaryDirectory() as directory, open(output / "fleet.md", "w") as table:
        for row in (("run by GNU parallel", "s", "CPU ms each", "MB each"), 4 * ("---",),
                    *Scale(programs.resolve(), pathlib.Path(directory)).measure()):
            print("| " + " | ".join(row) + " |", file=table)
            print("  ".join(row), flush=True)


main()
