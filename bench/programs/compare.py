"""Measures the programs against baselines, which are common tools for the same work, in one run.

compare.py PROGRAMS OUTPUT: PROGRAMS is the directory of the built programs, OUTPUT the directory for
the tables and the plot. Contestants alternate, the first round is discarded, and medians are
compared: other figures are not comparable on a shared machine. Sender and sink are pinned to a CPU
each.
"""

import csv
import os
import shutil
import statistics
import subprocess
import sys
import tempfile
import time
import zlib

import growth
import micro
import sink

GIB = 1 << 30
ROUNDS = 10
SENDER_CPU, SINK_CPU = 0, 1


class Run:
    """One run of a program, with its duration and CPU time."""

    def __init__(self, command):
        def pin():
            os.sched_setaffinity(0, {SENDER_CPU})

        start = time.perf_counter()
        self.process = subprocess.Popen(
            command, shell=isinstance(command, str), stdin=subprocess.DEVNULL,
            stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, preexec_fn=pin)
        self._start = start

    def wait(self):
        _, status, usage = os.wait4(self.process.pid, 0)
        self.process.returncode = os.waitstatus_to_exitcode(status)
        self.seconds = time.perf_counter() - self._start
        self.cpu = usage.ru_utime + usage.ru_stime
        return self


def elapsed(command):
    """Returns the seconds of a silent run. Starts programs faster than Run, for short runs."""
    null = os.open(os.devnull, os.O_RDWR)
    silence = [(os.POSIX_SPAWN_DUP2, null, stream) for stream in (0, 1, 2)]
    start = time.perf_counter()
    os.waitpid(os.posix_spawnp(command[0], command, os.environ, file_actions=silence), 0)
    seconds = time.perf_counter() - start
    os.close(null)
    return seconds


def run(command):
    finished = Run(command).wait()
    if finished.process.returncode != 0:
        raise RuntimeError(f"{command} returned {finished.process.returncode}")
    return finished


def cpu_time_of(pid):
    """Returns the seconds of CPU time that a process has used."""
    with open(f"/proc/{pid}/schedstat") as file:
        return int(file.read().split()[0]) / 1e9


class Table:
    """Rows of measurements and baselines."""

    def __init__(self):
        self.rows = []
        self.advantages = []  # labels, and how many times better than the baseline

    def add(self, path, unit, measured, baseline, reference, goal, at_least):
        """measured and reference are lists of values; the goal applies to the ratio of medians."""
        value, other = statistics.median(measured), statistics.median(reference)
        ratio = value / other
        self.advantages.append((f"{path}: {baseline}", ratio if at_least else 1 / ratio))
        bound, result = "", ""
        if goal is not None:
            met = ratio >= goal if at_least else ratio <= goal
            bound, result = f"{'>=' if at_least else '<='} {goal}", "met" if met else "missed"
        self.rows.append((path, unit, f"{value:.4g}", baseline, f"{other:.4g}", f"{ratio:.2f}",
                          bound, result))
        print("  ".join(self.rows[-1]), flush=True)

    def limit(self, path, unit, value, goal):
        self.rows.append((path, unit, f"{value:.4g}", "", "", "", f"<= {goal}",
                          "met" if value <= goal else "missed"))
        print("  ".join(self.rows[-1]), flush=True)

    def write(self, directory):
        head = ("path", "unit", "ravelink", "baseline", "its value", "ratio", "goal", "")
        with open(f"{directory}/table.csv", "w", newline="") as file:
            csv.writer(file).writerows([head] + self.rows)
        with open(f"{directory}/table.md", "w") as file:
            for row in [head, ["---"] * len(head)] + self.rows:
                file.write("| " + " | ".join(row) + " |\n")


def rounds(contestants, count=ROUNDS):
    """Runs the contestants alternately. Returns a list of results for each, without the first."""
    results = {name: [] for name in contestants}
    for number in range(count):
        for name, contest in contestants.items():
            result = contest()
            if number > 0:
                results[name].append(result)
    return results


class Comparison:
    def __init__(self, programs, directory, output):
        self.programs = programs
        self.directory = directory
        self.output = output
        self.file = f"{directory}/update.rvl"
        self.table = Table()

    def program(self, name):
        return f"{self.programs}/{name}"

    def make_file(self):
        chunk = os.urandom(1 << 20)
        with open(self.file, "wb") as file:
            for number in range(GIB // len(chunk)):
                file.write(number.to_bytes(8, "big") + chunk[8:])
            # Otherwise the system writes it to the disk while the senders are measured.
            os.fsync(file)
        with open(self.file, "rb") as file:
            while file.read(1 << 20):
                pass

    def stream(self, command, serve):
        """Returns the seconds for sending a file to a sink, and the sender's CPU time."""
        receiver = sink.Sink(serve(GIB), SINK_CPU)
        sender = Run(command.format(file=self.file, port=receiver.port)).wait()
        seconds, _ = receiver.result()
        return seconds, sender.cpu

    def update(self):
        """Returns the same for the updater, with CPU time from the header on, and the total."""
        # A file passes the process number to the sink, which is forked before the updater starts.
        path = f"{self.directory}/pid"
        receiver = sink.Sink(sink.device(lambda: cpu_time_of(int(open(path).read()))), SINK_CPU)
        command = [self.program("ravelink"), "-o", self.file, "-a", f"127.0.0.1:{receiver.port}"]
        sender = Run(["sh", "-c", f'echo $$ > {path}; exec "$@"', "sh"] + command).wait()
        seconds, before = receiver.result()
        return seconds, sender.cpu - before, sender.seconds

    def streaming(self):
        baselines = {
            "nc": ("nc -N 127.0.0.1 {port} < {file}", sink.raw),
            "socat": ("socat -u FILE:{file} TCP:127.0.0.1:{port}", sink.raw),
            "curl -T": ("curl -s -H Expect: -T {file} http://127.0.0.1:{port}/", sink.http),
            "sendfile": (self.program("sendfile") + " {file} {port}", sink.raw),
        }
        contestants = {"ravelink": self.update}
        for name, (command, serve) in baselines.items():
            contestants[name] = lambda command=command, serve=serve: self.stream(command, serve)
        results = rounds(contestants)
        measured = results.pop("ravelink")
        for name, reference in results.items():
            main = name == "nc"
            self.table.add("streaming 1 GiB", "GiB/s", [1 / each[0] for each in measured], name,
                           [1 / each[0] for each in reference], 1.08 if main else None, True)
            self.table.add("CPU time of streaming", "s/GiB", [each[1] for each in measured], name,
                           [each[1] for each in reference], 0.92 if main else None, False)

    def session(self):
        def hashed(tool):
            def contest():
                start = time.perf_counter()
                run(f"{tool} {self.file}")
                receiver = sink.Sink(sink.raw(GIB), SINK_CPU)
                run(f"nc -N 127.0.0.1 {receiver.port} < {self.file}")
                seconds = time.perf_counter() - start
                receiver.result()
                return seconds
            return contest

        results = rounds({"ravelink": lambda: self.update()[2],
                          "rhash --crc32, nc": hashed("rhash --crc32"),
                          "cksum, nc": hashed("cksum")})
        measured = [1 / each for each in results.pop("ravelink")]
        for (name, reference), goal in zip(results.items(), (1.6, 0.95)):
            self.table.add("whole session, 1 GiB", "GiB/s", measured, name,
                           [1 / each for each in reference], goal, True)

    def checksum(self):
        def python(size):
            start = time.perf_counter()
            crc = 0
            with open(self.file, "rb", buffering=0) as file:
                while chunk := file.read(size):
                    crc = zlib.crc32(chunk, crc)
            return time.perf_counter() - start

        # fileCrc reads 4 KiB at a time.
        results = rounds({"ravelink": lambda: run([self.program("fileCrc"), self.file]).seconds,
                          "zlib from Python, 4 KiB": lambda: python(1 << 12),
                          "zlib from Python, 256 KiB": lambda: python(1 << 18)})
        measured = [1 / each for each in results.pop("ravelink")]
        for (name, reference), goal in zip(results.items(), (1.3, None)):
            self.table.add("CRC-32 of a file, 1 GiB", "GiB/s", measured, name,
                           [1 / each for each in reference], goal, True)

    def archive(self):
        manifest = f"{self.directory}/manifest"
        archive = f"{self.directory}/archive"
        copy = f"{self.directory}/copy"
        with open(manifest, "w") as file:
            file.write("file.count = 1\nfile[0].origin = update.rvl\n")
        pack = self.program("ravelink-pack")

        def build_and_check():
            built = run([pack, "-b", manifest, "-o", archive]).seconds
            checked = run([pack, "-c", archive]).seconds
            os.remove(archive)
            return built + checked

        def copy_and_check():
            # sync, because ravelink-pack flushes the archive to disk.
            steps = (["cp", self.file, copy], ["sync", copy], ["cksum", copy])
            seconds = sum(run(step).seconds for step in steps)
            os.remove(copy)
            return seconds

        results = rounds({"ravelink": build_and_check, "cp": copy_and_check})
        self.table.add("build and check an archive, 1 GiB", "s", results["ravelink"],
                       "cp, sync, cksum", results["cp"], 1.2, False)

    def start(self):
        os.sched_setaffinity(0, {SENDER_CPU})
        results = rounds({"ravelink": lambda: 1000 * elapsed([self.program("ravelink"), "-h"]),
                          "nc": lambda: 1000 * elapsed(["nc", "-h"])}, 501)
        os.sched_setaffinity(0, {SENDER_CPU, SINK_CPU})
        self.table.add("start, banner and exit", "ms", results["ravelink"], "nc -h", results["nc"],
                       0.9, False)

    def job(self):
        """Updates a device from start to exit, with a file that hardly takes time."""
        small = f"{self.directory}/small"
        with open(small, "wb") as file:
            file.write(b"1")

        def updated_by(name):
            def contest():
                receiver = sink.Sink(sink.device(lambda: 0), SINK_CPU)
                seconds = elapsed([self.program(name), "-o", small, "-a",
                                   f"127.0.0.1:{receiver.port}"])
                receiver.result()
                return 1000 * seconds
            return contest

        os.sched_setaffinity(0, {SENDER_CPU})
        results = rounds({name: updated_by(name) for name in ("ravelink-job", "ravelink")}, 301)
        os.sched_setaffinity(0, {SENDER_CPU, SINK_CPU})
        self.table.add("ravelink-job, update of 1 byte", "ms", results["ravelink-job"], "ravelink",
                       results["ravelink"], 1.2, False)

    def footprint(self):
        """Measures memory by GNU time: that of a child of Python would include Python's own."""

        def memory(serve, *command):
            receiver = sink.Sink(serve, SINK_CPU)
            command = [argument.format(port=receiver.port) for argument in command]
            with open(self.file, "rb") as file:
                report = subprocess.run(["time", "-f", "%M"] + command, stdin=file,
                                      stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True,
                                      check=True).stderr
            receiver.result()
            return int(report.split()[-1]) / 1024

        measured = memory(sink.device(lambda: 0), self.program("ravelink"), "-o", self.file, "-a",
                      "127.0.0.1:{port}")
        reference = memory(sink.raw(GIB), "nc", "-N", "127.0.0.1", "{port}")
        self.table.add("memory, file of 1 GiB", "MB", [measured], "nc", [reference], None, False)
        self.table.limit("memory, file of 1 GiB", "MB", measured, 4)
        measured = memory(sink.device(lambda: 0), self.program("ravelink-job"), "-o", self.file, "-a",
                          "127.0.0.1:{port}")
        self.table.limit("memory of ravelink-job, file of 1 GiB", "MB", measured, 5)
        self.table.limit("stripped program", "KB",
                         os.path.getsize(self.program("ravelink")) / 1000, 400)

    def plot(self):
        """Draws a bar for each baseline, from 1 to how many times better ravelink is."""
        data = f"{self.output}/advantages.dat"
        with open(data, "w") as file:
            for label, advantage in self.table.advantages:
                file.write(f'"{label}" {advantage:.3f}\n')
        script = f"""
set terminal svg size 900,{80 + 22 * len(self.table.advantages)} font "sans,12" background "white"
set output "{self.output}/advantages.svg"
set title "How many times better than each baseline"
set style fill solid 0.6
set logscale x 2
set grid x
set lmargin 44
set yrange [-{len(self.table.advantages)}:1]
plot "{data}" using 2:(-$0):(1):2:(-$0-0.35):(-$0+0.35):ytic(1) with boxxyerror notitle
"""
        subprocess.run(["gnuplot"], input=script, text=True, check=True)


def install(programs, directory):
    """Copies the programs without symbols, as packages contain them. The linker writes them in small
    chunks, which leave them in small pages of the cache: they would start 1 % slower."""
    os.makedirs(directory, exist_ok=True)
    for name in ("fileCrc", "ravelink", "ravelink-job", "ravelink-pack", "sendfile"):
        stripped = f"{directory}/stripped"
        run(["strip", "-o", stripped, f"{programs}/{name}"])
        shutil.copy(stripped, f"{directory}/{name}")
        os.remove(stripped)


def main():
    programs, output = sys.argv[1:3]
    installed = f"{output}/programs"
    install(programs, installed)
    with tempfile.TemporaryDirectory() as directory:
        comparison = Comparison(installed, directory, output)
        comparison.make_file()
        for measure in (comparison.streaming, comparison.session, comparison.checksum,
                        comparison.archive, comparison.start, comparison.job,
                        comparison.footprint):
            measure()
        micro.measure(programs, comparison.table)
        growth.measure(programs, comparison.table)
        comparison.table.write(output)
        comparison.plot()


main()
