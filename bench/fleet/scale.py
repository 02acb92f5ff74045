"""Measures updates of many simulated devices from one machine, by GNU parallel and by Ansible.

scale.py PROGRAMS OUTPUT: PROGRAMS is the directory of the built programs, OUTPUT the directory for the
tables. The contestants of an engine alternate, as many at once; the first round is discarded, and
medians are compared. Baselines are transfers of the same file by nc for GNU parallel, and the same
updates without the playbook for Ansible.
"""

import ctypes
import json
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

FLEET = pathlib.Path(__file__).resolve().parents[2] / "fleet"
VERDICTS = FLEET / "verdicts"
DEVICES = 1000
AT_ONCE = 100
FILE_SIZE = 8 << 20
ROUNDS = 4
ANSIBLE_DEVICES = 200
FORKS = 50
PR_SET_CHILD_SUBREAPER = 36


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


def by_parallel(command, arguments, at_once=AT_ONCE):
    return usage_of(["parallel", "--will-cite", "-j", str(at_once), command], arguments)


class Ansible:
    """Rollouts on devices, without pauses: one wave."""

    def __init__(self, programs, directory, file, addresses):
        self.directory = directory
        hosts = {f"device{number:03}": {"ravelink_address": address}
                 for number, address in enumerate(addresses)}
        (directory / "hosts.json").write_text(json.dumps({"all": {
            "vars": {"ravelink_archive": str(file), "ravelink_waves": ["100%"],
                     "ansible_python_interpreter": "/usr/bin/python3",
                     "ansible_remote_tmp": str(directory / "tmp"),
                     "ansible_async_dir": str(directory / "async")},
            "children": {"ravelink_devices": {"hosts": hosts}}}}))
        self.environment = {**os.environ, "PATH": f"{programs}:{os.environ['PATH']}",
                            "ANSIBLE_COLLECTIONS_PATH": str(FLEET), "ANSIBLE_FORKS": str(FORKS),
                            "ANSIBLE_DISPLAY_SKIPPED_HOSTS": "False"}

    def __call__(self, folder, *options):
        """Runs the playbook with a ledger below the folder. Returns the seconds, and the CPU seconds of
        Ansible and of the updates that it leaves to run by themselves."""
        before = self.used()
        start = time.perf_counter()
        subprocess.run(["ansible-playbook", "-i", self.directory / "hosts.json", "ravelink.fleet.rollout",
                        "-e", f"ravelink_folder={folder}", *options], check=True,
                       env=self.environment, stdout=subprocess.DEVNULL)
        return time.perf_counter() - start, self.used() - before

    @staticmethod
    def used():
        """Returns the CPU seconds of all processes that have exited, also of orphans."""
        try:
            while os.waitpid(-1, os.WNOHANG)[0]:
                pass
        except ChildProcessError:
            pass
        usage = resource.getrusage(resource.RUSAGE_CHILDREN)
        return usage.ru_utime + usage.ru_stime


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
        content = directory / "content"
        content.mkdir()
        (content / "firmware").write_bytes(os.urandom(FILE_SIZE))
        subprocess.run([programs / "ravelink-pack", "-b", content, "-o", self.file], check=True,
                       stdout=subprocess.DEVNULL)
        # Without this answer, the updater waits for one for two seconds.
        self.answering = directory / "answering.conf"
        self.answering.write_text("header = notify Accepted\n")

    def job(self, logs):
        return f"{self.programs}/ravelink-job -q -o {self.file} -a {{}} -l {logs}/{{}}.jsonl"

    def update(self, addresses, at_once=AT_ONCE):
        """Updates devices as docs/fleet.md does, and checks the outcomes."""
        with tempfile.TemporaryDirectory(dir=self.directory) as logs:
            result = by_parallel(self.job(logs), addresses, at_once)
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


def measure_ansible(programs, directory, scale):
    """Returns the rows of the second table, as Scale.measure does, without memory."""
    with devices(programs, directory, "-s", scale.answering) as addresses:
        addresses = addresses[:ANSIBLE_DEVICES]
        ansible = Ansible(programs, directory, scale.file, addresses)
        results = {"plan": [], "plan and rollout": [], "ravelink-job, by GNU parallel": []}
        for number in range(ROUNDS):
            folder = directory / f"state{number}"
            results["plan"].append(ansible(folder, "--check"))
            results["plan and rollout"].append(ansible(folder))
            results["ravelink-job, by GNU parallel"].append(scale.update(addresses, FORKS))
        for name, rounds in results.items():
            seconds, cpu = map(statistics.median, zip(*rounds[1:]))
            yield name, f"{seconds:.1f}", f"{1000 * cpu / ANSIBLE_DEVICES:.0f}"


def write_table(path, heading, rows):
    with open(path, "w") as table:
        for row in (heading, len(heading) * ("---",), *rows):
            print("| " + " | ".join(row) + " |", file=table)
            print("  ".join(row), flush=True)


def main():
    programs, output = (pathlib.Path(path).resolve() for path in sys.argv[1:3])
    # Each device has a socket, and each connection another one.
    _, most = resource.getrlimit(resource.RLIMIT_NOFILE)
    resource.setrlimit(resource.RLIMIT_NOFILE, (most, most))
    # Updates of Ansible outlive the process that starts them. Their CPU time counts here.
    ctypes.CDLL(None).prctl(PR_SET_CHILD_SUBREAPER, 1, 0, 0, 0)
    os.environ["PARALLEL_SHELL"] = "/bin/sh"
    output.mkdir(parents=True, exist_ok=True)
    with tempfile.TemporaryDirectory() as name:
        directory = pathlib.Path(name)
        scale = Scale(programs, directory)
        write_table(output / "fleet.md", ("run by GNU parallel", "s", "CPU ms each", "MB each"),
                    scale.measure())
        write_table(output / "rollout.md", ("200 devices, 50 forks", "s", "CPU ms each"),
                    measure_ansible(programs, directory, scale))


main()
