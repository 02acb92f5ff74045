"""Many devices from one machine: fleet/verdicts, and the recipe for GNU parallel in docs/fleet.md."""

import pytest

from conftest import SOURCE, run

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
