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
    (UPDATED + UNKNOWN + "\n\0{\n[]\n", "unknown"),
    (UNKNOWN + START + TRAILER + result("deviceFailed", "true") + REFUSED, "deviceFailed"),
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
    ("@list", "", "Invalid number of arguments: 2 are needed, DEVICES and DIRECTORY, not 1", 2),
    ("@no @", "", 'List not readable: "@no"', 1),
    ("@ @", "", 'List not readable: "@"', 1),
    ("@list @no", "", 'Directory missing: "@no"', 1),
    ("@list @", "@", "Program missing: jq", 1),
    ("@unsafe @", "", 'Bad address: "a/../a" in line 2 of the list', 1),
    ("@list @", "", "Log not readable", 1)])
def test_verdicts_prints_errors_or_all_devices(directory, monkeypatch, arguments, path, error, status):
    directory.write("list", "10.0.0.1\n10.0.0.2")
    directory.write("unsafe", "a\na/../a")
    directory.write("10.0.0.2.jsonl/file", "")
    monkeypatch.setenv("PATH", directory.at(path) or os.environ["PATH"])
    printed = run(["/bin/sh", VERDICTS, *map(directory.at, arguments.split())], stderr=subprocess.STDOUT)
    assert (printed.lines[-1], printed.status) == (directory.at(f"*** {error}"), status)
    assert len(printed.lines) == (2 if error == "Log not readable" else 1)


@pytest.fixture
def recipe(directory, pack, monkeypatch):
    """Starts commands of docs/fleet.md in a directory with an archive. Retries do not wait."""
    directory.write("m.conf", "file[0].origin = m.conf\n")
    pack("-b @m.conf -o @update.rvl")
    job = built("job_program")[0]
    os.chmod(directory.write("bin/ravelink-job", f'#!/bin/sh\nexec {job} -w 0 "$@"\n'), 0o755)
    monkeypatch.setenv("PATH", f"{directory.path}/bin:{SOURCE}/fleet:{os.environ['PATH']}")

    def start(*names, address=""):
        commands = "".join(blocks(source("docs/fleet.md"), f"sh {name}") for name in ("setup", *names))
        return subprocess.Popen(["bash", "-c", commands.replace("10.1.0.12:4000", address)],
                                cwd=directory.path, text=True, stdout=subprocess.PIPE)

    return start


def output(shell):
    return shell.communicate(timeout=300)[0].splitlines()


def test_the_recipe_updates_each_device_once(fleet, recipe, directory):
    devices = fleet.add(10)
    busy, = fleet.add(scenario="status-06-system-busy")
    failing, = fleet.add(scenario="unknown-code")
    directory.write("devices.txt", "\n".join([busy, *devices, failing]))
    assert output(recipe("waves")) == [f"refused\t{busy}"]
    assert fleet.connections == {busy: 6}
    directory.write("devices.txt", "\n".join([*devices, busy, failing]))
    left = [f"refused\t{busy}", f"unknown\t{failing}"]
    assert output(recipe("waves")) == left
    assert output(recipe("report")) == ["      1 refused", "      1 unknown", "     10 updated", *left]
    assert output(recipe("reasons"))[::3] == [f"{busy}: refused", f"{failing}: unknown"]
    fleet.replace(busy)
    assert output(recipe("resume", "report"))[:2] == ["      1 unknown", "     11 updated"]
    assert fleet.connections == {**dict.fromkeys(devices, 1), busy: 13, failing: 1}
    fleet.replace(failing)
    assert output(recipe("again", "report", address=failing)) == ["     12 updated"]


@pytest.mark.slow
def test_the_recipe_resumes_after_a_gentle_stop(fleet, recipe, directory):
    devices = fleet.add(25, "silent-for-a-while")
    directory.write("devices.txt", "\n".join(devices))
    shell = recipe("resume")
    wait_until(lambda: len(fleet.connections) == 20)
    parallel, = Path(f"/proc/{shell.pid}/task/{shell.pid}/children").read_text().split()
    os.kill(int(parallel), signal.SIGHUP)
    assert len(output(shell)) == 5
    assert output(recipe("report"))[:2] == ["      5 none", "     20 updated"]
    assert output(recipe("resume", "report")) == ["     25 updated"]
    assert fleet.connections == dict.fromkeys(devices, 1)
