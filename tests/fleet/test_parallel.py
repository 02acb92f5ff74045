"""Many devices from one machine: fleet/verdicts, and the recipe for GNU parallel in docs/fleet.md."""

import os
import signal
import subprocess
from pathlib import Path

import pytest

from conftest import SOURCE, built, run, source, wait_until
from test_documents import blocks

VERDICTS = str(SOURCE / "fleet/verdicts")
START, TRAILER = '{"event":"start","address":"x"}\n', '{"event":"trailer"}\n'


def result(outcome, trailer="false"):
    return f'{{"event":"result","outcome":"{outcome}","trailer":{trailer}}}\n'


UNKNOWN, UPDATED = (START + TRAILER + result(each, "true") for each in ("unknown", "updated"))
REFUSED = START + result("refused")
LOGS = (  # the last one has no final line feed
    (START + '{"event":"connect"}\n', "brokenOff"), (START + TRAILER, "unknown"), (UPDATED, "updated"),
    (REFUSED, "refused"), (UNKNOWN + REFUSED, "unknown"), (UNKNOWN + START, "unknown"),
    (UNKNOWN + UPDATED + REFUSED, "refused"), (START + TRAILER + "7\n" + START, "unknown"),
    (UPDATED + UNKNOWN + "\n\0{\n[]\n", "unknown"), (START + result("deviceFailed", "true"),
                                                     "deviceFailed"),
    (REFUSED + UPDATED[:-2], "unknown"), (START + TRAILER[:-2], "brokenOff"))


def test_verdicts_follow_from_logs(directory):
    for number, (log, _) in enumerate(LOGS):
        directory.write(f"logs/10.0.0.{number}.jsonl", log)
    lines = [f"10.0.0.{number}\tPress {number}" for number, _ in enumerate(LOGS)]
    devices = directory.write("devices", "\r\n".join(
        ["\uFEFF# Hall 1", *lines, "", " # x", lines[0], "10.0.0.0:3007", "P7", "p7:3007", "p7:1"]))
    expected = [f"{outcome}\t10.0.0.{number}" for number, (_, outcome) in enumerate(LOGS)]
    assert run([VERDICTS, devices, directory.at("@logs")]) == (
        [*expected, "none\tP7", "none\tp7:1"], 0)


@pytest.mark.parametrize("arguments, path, error, status", [
    ("@devices", None, "Invalid number of arguments: 2 are needed, DEVICES and DIRECTORY, not 1", 2),
    ("@no @", None, 'List not readable: "@no"', 1),
    ("@ @", None, 'List not readable: "@"', 1),
    ("@devices @no", None, 'Directory missing: "@no"', 1),
    ("@devices @", "/var/empty", "Program missing: jq", 1),
    ("@unsafe @", None, 'Bad address: "../a" in line 2 of the list', 1),
    ("@devices @", None, "Log not readable", 1),
])
def test_verdicts_reports_errors(directory, monkeypatch, arguments, path, error, status):
    directory.write("devices", "10.0.0.1\n10.0.0.2")
    directory.write("unsafe", "a\n../a")
    directory.write("10.0.0.2.jsonl/file", "")
    if path:
        monkeypatch.setenv("PATH", path)
    errors = directory.write("errors", "")
    with open(errors, "w") as stderr:
        result = run(["/bin/sh", VERDICTS, *map(directory.at, arguments.split())], stderr=stderr)
    assert result == ([], status)
    assert directory.read("errors").decode().endswith(directory.at(f"*** {error}\n"))


class Recipe:
    """Runs commands of docs/fleet.md in a directory with an archive."""

    def __init__(self, directory, pack):
        self.directory = directory
        directory.write("m.conf", "file[0].origin = m.conf\n")
        pack("-b @m.conf -o @update.rvl")
        # Retries do not wait.
        job = directory.write("bin/ravelink-job", '#!/bin/sh\nexec "$JOB" -w 0 "$@"\n')
        os.chmod(job, 0o755)
        self.environment = {**os.environ, "JOB": built("job_program")[0], "PATH": os.pathsep.join(
            [os.path.dirname(job), str(SOURCE / "fleet"), os.environ["PATH"]])}

    def start(self, *names, address=""):
        commands = "".join(blocks(source("docs/fleet.md"), f"sh {name}") for name in names)
        return subprocess.Popen(
            ["bash", "-c", commands.replace("10.1.0.12:4000", address)], text=True,
            cwd=self.directory.path, env=self.environment, stdout=subprocess.PIPE)

    def __call__(self, *names, **options):
        """Runs the blocks with these names after the first one, and returns their output."""
        return self.start("setup", *names, **options).communicate(timeout=120)[0].splitlines()

    def list(self, *addresses):
        self.directory.write("devices.txt", "\n".join(addresses))


@pytest.fixture
def recipe(directory, pack):
    return Recipe(directory, pack)


def test_the_recipe_updates_each_device_once(fleet, recipe):
    devices = fleet.add(10)
    busy, = fleet.add(scenario="status-06-system-busy")
    failing, = fleet.add(scenario="unknown-code")
    recipe.list(busy, *devices, failing)
    assert recipe("waves") == [f"refused\t{busy}"]
    assert fleet.connections == {busy: 6}
    recipe.list(*devices, busy, failing)
    assert recipe("waves") == [f"refused\t{busy}", f"unknown\t{failing}"]
    assert recipe("report") == ["      1 refused", "      1 unknown", "     10 updated",
                                f"refused\t{busy}", f"unknown\t{failing}"]
    assert [line[:2] for line in recipe("reasons")] == [busy[:2], "  ", "  ", failing[:2], "  ", "  "]
    fleet.replace(busy)
    assert recipe("resume", "report")[:2] == ["      1 unknown", "     11 updated"]
    assert fleet.connections == {**dict.fromkeys(devices, 1), busy: 13, failing: 1}
    fleet.replace(failing)
    recipe("again", address=failing)
    assert recipe("report") == ["     12 updated"]


@pytest.mark.slow
def test_the_recipe_resumes_after_a_gentle_stop(fleet, recipe):
    devices = fleet.add(25, "silent-for-a-while")
    recipe.list(*devices)
    with recipe.start("setup", "resume") as shell:
        wait_until(lambda: len(fleet.connections) == 20)
        parallel, = Path(f"/proc/{shell.pid}/task/{shell.pid}/children").read_text().split()
        os.kill(int(parallel), signal.SIGHUP)
        assert len(shell.stdout.readlines()) == 5
    assert recipe("report")[:2] == ["      5 none", "     20 updated"]
    assert recipe("resume", "report") == ["     25 updated"]
    assert fleet.connections == dict.fromkeys(devices, 1)
