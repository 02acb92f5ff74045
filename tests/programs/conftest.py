"""The programs under test, and the fixtures of their tests.

RAVELINK_BIN is the directory of the built programs. RAVELINK_EMULATOR is the command that runs programs
of another system or processor. RAVELINK_UPDATER and RAVELINK_SIMULATED_DEVICE replace the commands of these two programs.
"""

import os
import re
import shlex
import subprocess
import time
from pathlib import Path
from typing import NamedTuple

import pytest

SOURCE = Path(__file__).resolve().parents[2]
BIN = Path(os.environ["RAVELINK_BIN"])
EMULATOR = shlex.split(os.environ.get("RAVELINK_EMULATOR", ""))
WINDOWS = bool(EMULATOR) and EMULATOR[0].endswith("run-wine")
QEMU = bool(EMULATOR) and not WINDOWS
VERSION = re.search(r"project\(ravelink VERSION (\S+)", (SOURCE / "CMakeLists.txt").read_text())[1]


def built(name):
    return EMULATOR + [str(BIN / (name + ".exe" if WINDOWS else name))]


UPDATER = shlex.split(os.environ.get("RAVELINK_UPDATER", "")) or built("update_program")
DEVICE = shlex.split(os.environ.get("RAVELINK_SIMULATED_DEVICE", "")) or built("device_program")
WINDOWS_UPDATER = UPDATER[0].endswith("run-wine")
WINDOWS_DEVICE = DEVICE[0].endswith("run-wine")


def source(path):
    return (SOURCE / path).read_text(encoding="utf-8")


def golden(name):
    """Returns the content of a file of expected output, or of input."""
    return source(f"tests/programs/golden/{name}")


class Result(NamedTuple):
    lines: list
    status: int


def run(command, timeout=120, **options):
    """Runs a command, a list or a shell command line, and returns its output and exit status."""
    ended = subprocess.run(command, stdout=subprocess.PIPE, shell=isinstance(command, str),
                           timeout=timeout, check=False, **options)
    assert ended.stdout[-1:] in (b"", b"\n")
    return Result(ended.stdout.decode().splitlines(), ended.returncode)


def wait_until(condition):
    """Waits up to a minute until condition() is true, and returns its value."""
    end = time.monotonic() + 60
    while not (value := condition()):
        assert time.monotonic() < end
        time.sleep(0.01)
    return value


class Directory:
    """A new directory. In arguments and lines "@@" is its path, and "@a" the file "a" in it."""

    def __init__(self, path):
        self.path = path

    def at(self, text):
        return text.replace("@@", str(self.path)).replace("@", f"{self.path}/")

    def hidden(self, line):
        return line.replace(f"{self.path}/", "@").replace(f"{self.path}\\", "@")

    def write(self, name, content):
        file = self.path / name
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_bytes(content if isinstance(content, bytes) else content.encode())
        return str(file)

    def read(self, name):
        return (self.path / name).read_bytes()

    def files(self, below=""):
        """Returns the sorted paths of all entries except directories."""
        top = self.path / below
        return sorted(entry.relative_to(top).as_posix() for entry in top.rglob("*")
                      if entry.is_symlink() or not entry.is_dir())


@pytest.fixture
def directory(tmp_path):
    return Directory(tmp_path)


class Device:
    """ravelink-device with these options. With once it exits after one update on each address."""

    def __init__(self, log, options, count, prefix, once, address, **started):
        self.log = log
        options = [*options, "--once"] if once else options
        with open(log, "wb") as output:
            self.process = subprocess.Popen(
                [*prefix, *DEVICE, "-b", address, *options], stdout=output, **started)
        wait_until(lambda: len(self.addresses) == count or self.process.poll() is not None)

    @property
    def lines(self):
        return self.log.read_text(encoding="utf-8").splitlines()

    @property
    def addresses(self):
        return re.findall(r"Listening on: (.*)\n", self.log.read_text(encoding="utf-8"))

    @property
    def address(self):
        return self.addresses[0]

    @property
    def connections(self):
        return sum("Connection from: " in line for line in self.lines)

    def wait(self):
        """Waits for the device to exit and returns its exit status."""
        return self.process.wait(60)


@pytest.fixture
def device(tmp_path_factory):
    """Starts devices. Those still running after the test are killed."""
    started = []

    def start(*options, count=1, prefix=(), once=True, address="127.0.0.1:0", **how):
        log = tmp_path_factory.mktemp("device") / "log"
        started.append(Device(log, options, count, prefix, once, address, **how))
        return started[-1]

    yield start
    for each in started:
        each.process.kill()
        each.process.wait()


@pytest.fixture
def namespace(directory, monkeypatch):
    """Returns the prefix of commands that run in a network namespace with loopback only."""
    root = run(["unshare", "--net", "true"], stderr=subprocess.DEVNULL).status == 0
    options = ["--net"] if root else ["--map-root-user", "--net"]
    sleeper = subprocess.Popen(["unshare", *options, "sh", "-c",
                               "ip link set lo up && echo up && exec sleep 600"],
                              stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
    if sleeper.stdout.readline() != b"up\n":
        pytest.skip("no network namespaces")
    # Wine's server, which owns the sockets, must run in the namespace.
    wine = directory.path / "wine"
    monkeypatch.setenv("WINEPREFIX", str(wine))
    as_root = [] if root else ["--user", "--preserve-credentials"]
    yield ["nsenter", "--target", str(sleeper.pid), "--net", *as_root]
    if wine.exists():
        run(["wineserver", "-k"], env={**os.environ, "TMPDIR": str(wine)})
    sleeper.kill()
    sleeper.wait()


@pytest.fixture
def ravelink():
    """Runs ravelink with these arguments."""
    return lambda *arguments, **options: run(UPDATER + list(arguments), **options)


class Pack:
    """ravelink-pack in a new directory."""

    banner = f"ravelink-pack {VERSION} (Halvoren) - Update Archives"

    def __init__(self, directory):
        self.directory = directory
        self.command = built("pack_program")

    def __call__(self, arguments, status=0):
        """Runs ravelink-pack, checks its exit status, and returns the lines after the banner."""
        words = [self.directory.at(word) for word in shlex.split(arguments)]
        result = run(self.command + words)
        assert result.status == status, (arguments, result)
        lines = [self.directory.hidden(line) for line in result.lines]
        return lines[1:] if lines[:1] == [self.banner] else lines

    def errors(self, arguments):
        """Returns the lines of a failing run, without "*** " and without the final empty line."""
        *lines, end = self(arguments, 1)
        assert end == "" and all(line.startswith("*** ") for line in lines)
        return [line[4:] for line in lines]

    def golden(self, name, *words):
        """Writes an archive with an independent encoder, and returns its bytes."""
        path = self.directory.at("@" + name)
        subprocess.run(built("write_golden") + [path, *words], check=True)
        return self.directory.read(name)


@pytest.fixture
def pack(directory):
    return Pack(directory)


class Job:
    """ravelink-job with short timeouts. In its arguments "@a" is a file of a new directory."""

    def __init__(self, directory):
        self.directory = directory
        self.command = built("short_timeout_job")

    def start(self, arguments, prefix=(), **options):
        words = map(self.directory.at, shlex.split(arguments))
        how = {"stdout": subprocess.PIPE, "stderr": subprocess.PIPE, **options}
        return subprocess.Popen([*prefix, *self.command, *words], **how)

    def __call__(self, arguments, **options):
        """Returns the output, the lines of errors and the exit status of a run."""
        with self.start(arguments, **options) as process:
            output, errors = process.communicate(timeout=120)
        # Wine reports there that it creates its directory.
        lines = [line for line in (errors or b"").decode().splitlines()
                 if not line.startswith("wine: ")]
        return output, lines, process.returncode


@pytest.fixture
def job(directory):
    return Job(directory)
