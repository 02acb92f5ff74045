"""Measures the programs beside what a user would take instead, in one run.

compare.py PROGRAMS OUTPUT: PROGRAMS is the folder of the built programs, OUTPUT the folder for the
tables and the plot. Contestants take turns, the first round is dropped, and medians count: nothing
else is comparable on a machine that others use as well. Sender and sink have a processor each.
"""

import csv
import os
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
    """What one run of a program cost."""

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
    """Seconds of a program without a word; cheaper to start than Run, for what takes no time."""
    nothing = os.open(os.devnull, os.O_RDWR)
    quiet = [(os.POSIX_SPAWN_DUP2, nothing, stream) for stream in (0, 1, 2)]
    start = time.perf_counter()
    os.waitpid(os.posix_spawnp(command[0], command, os.environ, file_actions=quiet), 0)
    seconds = time.perf_counter() - start
    os.close(nothing)
    return seconds


def run(command):
    done = Run(command).wait()
    if done.process.returncode != 0:
        raise RuntimeError(f"{command} ended with {done.process.returncode}")
    return done


def cpu_time_of(pid):
    """Seconds that a process has had of a processor."""
    with open(f"/proc/{pid}/schedstat") as file:
        return int(file.read().split()[0]) / 1e9


class Table:
    """Rows of measures, each beside its peer's."""

    def __init__(self):
        self.rows = []
        self.advantages = []  # how many times better than a peer we are, with what to call it

    def add(self, path, unit, ours, peer, theirs, goal, at_least):
        """ours and theirs are lists of measures; a goal is for the ratio of their medians."""
        mine, other = statistics.median(ours), statistics.median(theirs)
        ratio = mine / other
        self.advantages.append((f"{path}: {peer}", ratio if at_least else 1 / ratio))
        wanted, verdict = "", ""
        if goal is not None:
            met = ratio >= goal if at_least else ratio <= goal
            wanted, verdict = f"{'>=' if at_least else '<='} {goal}", "met" if met else "missed"
        self.rows.append((path, unit, f"{mine:.4g}", peer, f"{other:.4g}", f"{ratio:.2f}", wanted,
                          verdict))
        print("  ".join(self.rows[-1]), flush=True)

    def limit(self, path, unit, value, goal):
        self.rows.append((path, unit, f"{value:.4g}", "", "", "", f"<= {goal}",
                          "met" if value <= goal else "missed"))
        print("  ".join(self.rows[-1]), flush=True)

    def write(self, folder):
        head = ("path", "unit", "ravelink", "peer", "peer's", "ratio", "goal", "")
        with open(f"{folder}/table.csv", "w", newline="") as file:
            csv.writer(file).writerows([head] + self.rows)
        with open(f"{folder}/table.md", "w") as file:
            for row in [head, ["---"] * len(head)] + self.rows:
                file.write("| " + " | ".join(row) + " |\n")


def rounds(contestants, count=ROUNDS):
    """Runs the contestants in turn; a list of results for each, without the first round's."""
    results = {name: [] for name in contestants}
    for number in range(count):
        for name, contest in contestants.items():
            result = contest()
            if number > 0:
                results[name].append(result)
    return results


class Comparison:
    def __init__(self, programs, folder, output):
        self.programs = programs
        self.folder = folder
        self.output = output
        self.file = f"{folder}/update.rvl"
        self.table = Table()

    def program(self, name):
        return f"{self.programs}/{name}"

    def make_file(self):
        piece = os.urandom(1 << 20)
        with open(self.file, "wb") as file:
            for number in range(GIB // len(piece)):
                file.write(number.to_bytes(8, "big") + piece[8:])
        with open(self.file, "rb") as file:
            while file.read(1 << 20):
                pass

    def stream(self, command, serve):
        """Seconds and processor seconds of a file's way to a sink."""
        taker = sink.Sink(serve(GIB), SINK_CPU)
        sender = Run(command.format(file=self.file, port=taker.port)).wait()
        seconds, _ = taker.result()
        return seconds, sender.cpu

    def update(self):
        """The same for the updater: its processor time counts from the header on."""
        pid = []
        # The sink is forked before there is a process to ask for: the pid goes through a file.
        path = f"{self.folder}/pid"
        taker = sink.Sink(sink.device(lambda: cpu_time_of(int(open(path).read()))), SINK_CPU)
        command = [self.program("ravelink"), "-o", self.file, "-a", f"127.0.0.1:{taker.port}"]
        sender = Run(["sh", "-c", f'echo $$ > {path}; exec "$@"', "sh"] + command).wait()
        seconds, before = taker.result()
        return seconds, sender.cpu - before, sender.seconds

    def streaming(self):
        peers = {
            "nc": ("nc -N 127.0.0.1 {port} < {file}", sink.raw),
            "socat": ("socat -u FILE:{file} TCP:127.0.0.1:{port}", sink.raw),
            "curl -T": ("curl -s -H Expect: -T {file} http://127.0.0.1:{port}/", sink.http),
            "sendfile": (self.program("sendfile") + " {file} {port}", sink.raw),
        }
        contestants = {"ravelink": self.update}
        for name, (command, serve) in peers.items():
            contestants[name] = lambda command=command, serve=serve: self.stream(command, serve)
        results = rounds(contestants)
        ours = results.pop("ravelink")
        for name, theirs in results.items():
            main = name == "nc"
            self.table.add("streaming 1 GiB", "GiB/s", [1 / each[0] for each in ours], name,
                           [1 / each[0] for each in theirs], 1.08 if main else None, True)
            self.table.add("processor time of it", "s/GiB", [each[1] for each in ours], name,
                           [each[1] for each in theirs], 0.92 if main else None, False)

    def session(self):
        def hashed(tool):
            def contest():
                start = time.perf_counter()
                run(f"{tool} {self.file}")
                taker = sink.Sink(sink.raw(GIB), SINK_CPU)
                run(f"nc -N 127.0.0.1 {taker.port} < {self.file}")
                seconds = time.perf_counter() - start
                taker.result()
                return seconds
            return contest

        results = rounds({"ravelink": lambda: self.update()[2],
                          "rhash --crc32, nc": hashed("rhash --crc32"),
                          "cksum, nc": hashed("cksum")})
        ours = [1 / each for each in results.pop("ravelink")]
        for (name, theirs), goal in zip(results.items(), (1.6, 0.95)):
            self.table.add("whole session, 1 GiB", "GiB/s", ours, name,
                           [1 / each for each in theirs], goal, True)

    def checksum(self):
        def python(size):
            start = time.perf_counter()
            crc = 0
            with open(self.file, "rb", buffering=0) as file:
                while piece := file.read(size):
                    crc = zlib.crc32(piece, crc)
            return time.perf_counter() - start

        # Ours reads 4 KiB at a time.
        results = rounds({"ours": lambda: run([self.program("fileCrc"), self.file]).seconds,
                          "zlib from Python, 4 KiB": lambda: python(1 << 12),
                          "zlib from Python, 256 KiB": lambda: python(1 << 18)})
        ours = [1 / each for each in results.pop("ours")]
        for (name, theirs), goal in zip(results.items(), (1.3, None)):
            self.table.add("CRC-32 of a file, 1 GiB", "GiB/s", ours, name,
                           [1 / each for each in theirs], goal, True)

    def archive(self):
        manifest = f"{self.folder}/manifest"
        archive = f"{self.folder}/archive"
        copy = f"{self.folder}/copy"
        with open(manifest, "w") as file:
            file.write("file.count = 1\nfile[0].origin = update.rvl\n")
        pack = self.program("ravelink-pack")

        def ours():
            made = run([pack, "-b", manifest, "-o", archive]).seconds
            checked = run([pack, "-c", archive]).seconds
            os.remove(archive)
            return made + checked

        def theirs():
            # ravelink-pack has the archive on disk before it ends.
            steps = (["cp", self.file, copy], ["sync", copy], ["cksum", copy])
            seconds = sum(run(step).seconds for step in steps)
            os.remove(copy)
            return seconds

        results = rounds({"ours": ours, "cp": theirs})
        self.table.add("archive made and checked, 1 GiB", "s", results["ours"],
                       "cp, sync, cksum",
                       results["cp"], 1.2, False)

    def start(self):
        os.sched_setaffinity(0, {SENDER_CPU})
        results = rounds({"ours": lambda: 1000 * elapsed([self.program("ravelink"), "-h"]),
                          "nc": lambda: 1000 * elapsed(["nc", "-h"])}, 501)
        os.sched_setaffinity(0, {SENDER_CPU, SINK_CPU})
        self.table.add("start, banner and end", "ms", results["ours"], "nc -h", results["nc"], 0.9,
                       False)

    def footprint(self):
        """Memory as GNU time tells it: a child of ours would count our own as well."""

        def memory(serve, *command):
            taker = sink.Sink(serve, SINK_CPU)
            command = [word.format(port=taker.port) for word in command]
            with open(self.file, "rb") as file:
                told = subprocess.run(["time", "-f", "%M"] + command, stdin=file,
                                      stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True,
                                      check=True).stderr
            taker.result()
            return int(told.split()[-1]) / 1024

        ours = memory(sink.device(lambda: 0), self.program("ravelink"), "-o", self.file, "-a",
                      "127.0.0.1:{port}")
        theirs = memory(sink.raw(GIB), "nc", "-N", "127.0.0.1", "{port}")
        self.table.add("memory, file of 1 GiB", "MB", [ours], "nc", [theirs], None, False)
        self.table.limit("memory, file of 1 GiB", "MB", ours, 4)
        stripped = f"{self.folder}/stripped"
        run(["strip", "-o", stripped, self.program("ravelink")])
        self.table.limit("stripped program", "KB", os.path.getsize(stripped) / 1000, 400)

    def plot(self):
        """A bar for each peer, from 1 to how many times better than it we are."""
        data = f"{self.output}/advantages.dat"
        with open(data, "w") as file:
            for label, advantage in self.table.advantages:
                file.write(f'"{label}" {advantage:.3f}\n')
        script = f"""
set terminal svg size 900,{80 + 22 * len(self.table.advantages)} font "sans,12" background "white"
set output "{self.output}/advantages.svg"
set title "How many times better than each peer"
set style fill solid 0.6
set logscale x 2
set grid x
set lmargin 44
set yrange [-{len(self.table.advantages)}:1]
plot "{data}" using 2:(-$0):(1):2:(-$0-0.35):(-$0+0.35):ytic(1) with boxxyerror notitle
"""
        subprocess.run(["gnuplot"], input=script, text=True, check=True)


def main():
    programs, output = sys.argv[1:3]
    os.makedirs(output, exist_ok=True)
    with tempfile.TemporaryDirectory() as folder:
        comparison = Comparison(programs, folder, output)
        comparison.make_file()
        for measure in (comparison.streaming, comparison.session, comparison.checksum,
                        comparison.archive, comparison.start, comparison.footprint):
            measure()
        micro.measure(programs, comparison.table)
        growth.measure(programs, comparison.table)
        comparison.table.write(output)
        comparison.plot()


main()
