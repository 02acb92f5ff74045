"""ravelink-job as scripts run it: verdicts, JSON lines, log, signals and terminal."""

import fcntl
import json
import os
import pty
import re
import shlex
import shutil
import signal
import socket
import struct
import subprocess
import termios
import time
import zlib

import pytest

from conftest import QEMU, SOURCE, WINDOWS, built, wait_until

COMMON = "schema:i event:s time:s elapsed:n device:s attempt:i "
ERROR = "title:s message:s source:s status:i? statusName:s?"
# The members of each event, in order. s is a string, i an integer, n a number with three decimals,
# b a truth value, o an object; with ? it may be null.
EVENTS = {
    "start": "program:s version:s pid:i origin:s? address:s? retry:i wait:i connectTimeout:i "
             "maxTime:i check:b",
    "file": "size:i crc:s modified:s sound:b?",
    "connect": "peer:s limit:i",
    "connected": "peer:s local:s",
    "accepted": "after:n",
    "progress": "sent:i total:i percent:i rate:i eta:i? still:n",
    "sent": "sent:i duration:n rate:i",
    "trailer": "",
    "stage": "stage:s count:i",
    "waiting": "silent:n left:i",
    "complete": "restart:s value:i",
    "error": "cause:s title:s message:s step:s source:s status:i? statusName:s?",
    "retry": "outcome:s cause:s wait:i left:i",
    "warning": "cause:s message:s",
    "result": "outcome:s exit:i signal:s? cause:s? step:s trailer:b transient:b powerOff:s "
              "attempts:i sent:i size:i? crc:s? restart:s? duration:n dropped:i error:o? advice:s",
}
TYPES = {"s": str, "i": int, "n": float, "b": bool, "o": dict}
TIME = re.compile(r"\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{3}Z")


def number(text):
    assert re.fullmatch(r"\d+\.\d{3}", text)
    return float(text)


def check_members(members, described):
    rules = [rule.split(":") for rule in described.split()]
    assert list(members) == [name for name, _ in rules]
    for name, kind in rules:
        value = members[name]
        assert type(value) is TYPES[kind[0]] or (value is None and kind.endswith("?")), name
        assert name not in ("time", "modified") or TIME.fullmatch(value)
        assert name != "crc" or value is None or re.fullmatch("0x[0-9A-F]{8}", value)


def parse(stream):
    """Checks a stream of JSON lines, whole or not yet ended, and returns its events."""
    events = []
    for line in stream.decode().splitlines(keepends=True):
        assert line.endswith("\n") and len(line.encode()) < 4096
        event = json.loads(line, parse_float=number)
        check_members(event, COMMON + EVENTS[event["event"]])
        if event["event"] == "result" and event["error"] is not None:
            check_members(event["error"], ERROR)
        events.append(event)
    assert [event["schema"] for event in events] == len(events) * [1]
    assert [event["elapsed"] for event in events] == sorted(event["elapsed"] for event in events)
    subprocess.run(["jq", "-e", "."], input=stream, stdout=subprocess.DEVNULL, check=True)
    return events


def names(events, *without):
    return [event["event"] for event in events if event["event"] not in without]


def of(events, name):
    return [event for event in events if event["event"] == name]


def ended(stream, status):
    """Checks a whole stream and returns its events and its result."""
    events = parse(stream)
    assert names(events)[0] == "start" and names(events).count("result") == 1
    result = events[-1]
    assert result["event"] == "result" and result["exit"] == status, result
    assert result["trailer"] == ("trailer" in names(events))
    described = {**(result["error"] or {}), "step": result["step"], "cause": result["cause"]}
    assert status == 0 or any({**error, **described} == error for error in of(events, "error"))
    return events, result


def log(directory):
    path = directory.path / "log"
    return path.read_bytes() if path.exists() else b""


def logged(directory, event):
    wait_until(lambda: f'"event":"{event}"'.encode() in log(directory))


SLOW = "receiveBuffer = 65536\nheader = notify Accepted\ndata = slow 16384 "


@pytest.fixture
def update(directory):
    """Writes the file of an update and returns its path."""
    def write(size=100_000):
        path = directory.write("u", os.urandom(min(size, 100_000)))
        os.truncate(path, size)
        return path
    return write


@pytest.fixture
def scenario(device, directory):
    """Starts a device with an example scenario, or with the lines of one."""
    def start(lines, **how):
        text = lines if "=" in lines else (
            SOURCE / f"examples/scenarios/{lines}.conf").read_text(encoding="utf-8")
        return device("-s", directory.write("s.conf", text), **how)
    return start


def rejected(job, arguments, causes, **options):
    output, errors, status = job(arguments + (" -j" if "-j" not in arguments else ""), **options)
    assert status == 2
    events, result = ended(output, 2)
    assert [(error["cause"], error["step"]) for error in of(events, "error")] == [
        (cause, "commandLine") for cause in causes]
    assert names(events) == ["start", *len(causes) * ["error"], "result"]
    assert [line[:4] for line in errors] == len(causes) * ["*** "]
    assert (result["outcome"], result["step"], result["powerOff"]) == ("usage", "commandLine", "yes")


def test_rejects_addresses_that_could_name_another_device(job, namespace):
    for address in ("10.0.0.7:80x", "10.0.0", "10.0.0.999", "010.0.0.7", "0x0a000007", "10.1",
                    "127.0.0.1:", "127.0.0.1:0", "127.0.0.1:03007", "127.0.0.1:65536",
                    "[::1]:3007", "0.0.0.0", "224.0.0.1", "a..b", "a_b", "10.0.0.7.", "a" * 64):
        rejected(job, f"-o @u -a {address}", ["badAddress"], prefix=namespace)


@pytest.mark.parametrize("arguments, causes", [
    ("u.rvl -o @u -a 127.0.0.1", ["wrongArguments"]),
    ("-o @u -a 127.0.0.1 -k 0", ["badNumber"]),
    ("-o @u -a 127.0.0.1 -w +1", ["badNumber"]),
    ("-o @u -o @u -a 127.0.0.1", ["wrongArguments"]),
    ("-o @u -a 127.0.0.1 -c --CHECK", ["wrongArguments"]),
    ("-o @u -a 127.0.0.1 -t x", ["invalidOption"]),
    ("-o @u -a 127.0.0.1 -n 'a|b'", ["wrongArguments"]),
    ("-o @u -a 127.0.0.1 -l ''", ["wrongArguments"]),
    ("-o @u -a 10.1 -r 101 -m -1", ["wrongArguments", "invalidOption", "badNumber", "badAddress"]),
    ("-o @u -r 3x", ["badNumber", "missingOption"]),
    ("-r 0", ["missingOption", "missingOption"]),
    ("-j x", ["wrongArguments"]),
])
def test_rejects_command_lines(job, arguments, causes):
    rejected(job, arguments, causes)


@pytest.mark.parametrize("arguments, cause", [
    ("-o @none", "fileMissing"),
    ("-o @@", "fileMissing"),
    ("-o @empty", "fileEmpty"),
    ("-o @huge", "fileTooBig"),
    pytest.param("-o /proc/self/mem", "fileUnreadable",
                 marks=pytest.mark.skipif(WINDOWS, reason="no such file")),
    ("-c -o @u", "archiveUnsound"),
    ("-c -o @flipped", "archiveUnsound"),
    ("-o @u -l @@", "logUnwritable"),
    ("-o @u -l @u", "logUnwritable"),
    pytest.param("-o @u -l /dev/full", "logUnwritable",
                 marks=pytest.mark.skipif(WINDOWS, reason="no such device")),
])
def test_connects_only_with_a_good_file_and_log(job, pack, directory, device, update, arguments,
                                                cause):
    update()
    before = directory.read("u")
    directory.write("empty", "")
    directory.write("huge", "")
    os.truncate(directory.path / "huge", 2 ** 31)
    os.utime(directory.path / "huge", (2 ** 32, 2 ** 32))  # after 2038
    archive = bytearray(pack.golden("flipped", "files"))
    archive[-30] ^= 1
    directory.write("flipped", bytes(archive))
    served = device()
    output, errors, status = job(f"{arguments} -a {served.address} -r 3 -j")
    events, result = ended(output, 10)
    assert (status, result["cause"], result["outcome"], result["step"], result["powerOff"]) == (
        10, cause, "file", "file", "yes")
    assert names(events, "file") == ["start", "error", "result"] and len(errors) == 1
    assert served.connections == 0
    assert directory.read("u") == before


def test_reports_each_step_on_output_and_in_the_log(job, pack, directory, device):
    directory.write("log", '{"torn":')
    archive = pack.golden("u", "files")
    served = device()
    output, errors, status = job(f"-c -o @u -a {served.address} -n 'Zürich \x1b' -j -l @log")
    events, result = ended(output, 0)
    assert names(events) == ["start", "file", "connect", "connected", "accepted", "sent",
                             "trailer", "stage", "stage", "stage", "complete", "result"]
    assert [stage["stage"] for stage in of(events, "stage")] == [
        "received", "checked", "processing"]
    assert (status, errors, served.wait()) == (0, [], 0)
    assert log(directory) == b'{"torn":\n' + output
    assert {event["device"] for event in events} == {"Zürich \x1b"}
    file = events[1]
    assert (file["size"], file["crc"], file["sound"]) == (
        len(archive), f"0x{zlib.crc32(archive):08X}", True)
    described = {"outcome": "updated", "cause": None, "step": "done", "trailer": True,
                 "transient": False, "powerOff": "no", "attempts": 1, "sent": len(archive),
                 "size": len(archive), "crc": file["crc"], "restart": "firmware", "dropped": 0}
    assert {**result, **described} == result


@pytest.mark.skipif(WINDOWS or "RAVELINK_SANITIZERS" in os.environ or not shutil.which("strace"),
                    reason="no strace, or none that sanitizers allow")
def test_has_the_trailer_on_disk_before_it_sends_it(job, directory, device, update):
    update()
    prefix = ["strace", "-f", "-o", directory.at("@trace"), "-e",
              "trace=write,fsync,fdatasync,sendto"]
    assert job(f"-o @u -a {device().address} -l @log", prefix=prefix)[2] == 0
    calls = directory.read("trace").decode().splitlines()
    written = next(i for i, call in enumerate(calls) if "trailer" in call)
    after = [re.search(r"(\w+)\(", call)[1] for call in calls[written:] if "(" in call]
    synced = next(i for i, call in enumerate(after) if "sync" in call)
    assert "sendto" not in after[:synced] and "sendto" in after[synced:]


# The attempts are those that reach the device, of the two allowed. 0: one is allowed, as the device is
# not ready for another.
@pytest.mark.parametrize("lines, exit_status, cause, step, attempts", [
    ("status-06-system-busy", 12, "deviceError", "request", 2),
    ("status-05-data-size-too-big", 12, "deviceError", "request", 1),
    ("status-03-invalid-data-size", 12, "deviceError", "header", 1),
    ("garbage", 12, "notTheProtocol", "request", 1),
    ("answer-of-another-stage", 12, "unexpectedRecord", "request", 1),
    ("silent-request", 12, "noAnswer", "request", 0),
    ("close-before-answer", 12, "connectionEnded", "request", 2),
    ("reset-in-transfer", 13, "connectionReset", "transfer", 2),
    ("close-in-transfer", 13, "connectionEnded", "transfer", 2),
    ("stall", 13, "stalled", "transfer", 0),
    ("receiveBuffer = 65536\ndata = after 65536, notify Error:DataSizeTooBig", 13, "deviceError",
     "transfer", 1),
    ("data = after 65536, notify Complete", 13, "unexpectedRecord", "transfer", 1),
    ("status-12-wrong-file-crc", 14, "deviceError", "waiting", 1),
    ("status-14-ghost-error", 14, "deviceError", "waiting", 1),
    ("status-02-invalid-crc", 14, "deviceError", "waiting", 1),
    ("unknown-code", 15, "unexpectedRecord", "waiting", 1),
    ("wrong-crc", 15, "damagedRecord", "waiting", 1),
    ("close-before-complete", 15, "connectionEnded", "waiting", 1),
    ("reset-before-complete", 15, "connectionReset", "waiting", 1),
    ("silent-complete", 15, "completionTimeout", "waiting", 1),
    ("flood", 15, "completionTimeout", "waiting", 1),
    ("restart-power-cycle", 0, None, "done", 1),
])
def test_gives_a_verdict_and_repeats_only_what_is_safe(job, scenario, update, lines, exit_status,
                                                       cause, step, attempts):
    update(32_000_000)
    served = scenario(lines, once=False)
    output, errors, status = job(f"-o @u -a {served.address} -r {min(attempts, 1)} -w 0 -j")
    is_transient = attempts != 1
    attempts = max(attempts, 1)
    events, result = ended(output, exit_status)
    assert status == exit_status
    # Wine may report a reset as the end of the connection.
    assert result["cause"] == cause or (WINDOWS and {result["cause"], cause} == {
        "connectionReset", "connectionEnded"})
    assert (result["step"], result["attempts"], served.connections) == (step, attempts, attempts)
    assert result["transient"] == is_transient
    assert len(errors) == len(of(events, "error")) == attempts - (exit_status == 0)
    assert len(of(events, "retry")) == attempts - 1
    assert result["trailer"] == (exit_status in (0, 14, 15))
    assert result["trailer"] or not any("Trailer" in line for line in served.lines)
    outcome, power_off = {0: ("updated", "must"), 12: ("refused", "yes"),
                          13: ("brokenOff", "avoid"), 14: ("deviceFailed", "no"),
                          15: ("unknown", "no")}[exit_status]
    if lines in ("status-06-system-busy", "answer-of-another-stage"):
        power_off = "no"  # it may be serving another updater
    if step == "header":
        power_off = "avoid"
    assert (result["outcome"], result["powerOff"]) == (outcome, power_off)
    assert (result["sent"] > 0) == (exit_status != 12)
    assert (cause == "completionTimeout") == bool(of(events, "waiting")) or lines == "flood"
    assert len(of(events, "stage")) <= 5


@pytest.fixture
def unused_address():
    with socket.socket() as unused:
        unused.bind(("127.0.0.1", 0))
        yield f"127.0.0.1:{unused.getsockname()[1]}"


def test_repeats_with_doubled_pauses(job, update, unused_address):
    update()
    output, _, _ = job(f"-o @u -a {unused_address} -r 2 -w 1 -j")
    events, result = ended(output, 11)
    assert [(retry["outcome"], retry["cause"], retry["wait"], retry["left"])
            for retry in of(events, "retry")] == [("notConnected", "connectRefused", 1, 1),
                                                  ("notConnected", "connectRefused", 2, 0)]
    assert result["attempts"] == 3 and result["duration"] >= 3
    assert [event["attempt"] for event in of(events, "connect")] == [1, 2, 3]
    # A pause that would end after the deadline is not begun.
    events, _ = ended(job(f"-o @u -a {unused_address} -r 2 -w 2 -m 2 -j")[0], 11)
    assert "retry" not in names(events)


def test_updates_once_the_device_is_ready(job, directory, device, scenario, update):
    update()
    busy = scenario("status-06-system-busy")
    with job.start(f"-o @u -a {busy.address} -r 9 -w 1 -j") as process:
        busy.wait()
        ready = device(address=busy.address)
        events, result = ended(process.communicate(timeout=60)[0], 0)
    assert result["attempts"] == len(of(events, "connect")) > 1 and ready.wait() == 0


def test_limits_an_attempt_to_connect(job, update):
    update()
    with socket.socket() as full:
        full.bind(("127.0.0.1", 0))
        full.listen(0)
        waiting = [socket.socket() for _ in range(4)]
        for client in waiting:
            client.setblocking(False)
            client.connect_ex(full.getsockname())
        address = f"127.0.0.1:{full.getsockname()[1]}"
        for options, cause in (("-k 1", "connectTimeout"), ("-m 1", "timeUp")):
            _, result = ended(job(f"-o @u -a {address} -j {options}")[0], 11)
            assert (result["cause"], result["step"]) == (cause, "connection")
            assert 0.9 <= result["duration"] < 60
        for client in waiting:
            client.close()


@pytest.mark.skipif(WINDOWS, reason="needs a hosts file of its own")
def test_resolves_names_that_have_one_address(job, directory, device, update, namespace):
    update()
    if subprocess.run([*namespace, "unshare", "--mount", "true"], check=False).returncode != 0:
        pytest.skip("no mounts of its own, as in a changed root")
    hosts = directory.write("hosts", "127.0.0.1 one\n127.0.0.1 two\n127.0.0.2 two\n0.0.0.0 none\n")
    switch = directory.write("nsswitch", "hosts: files\n")
    prefix = [*namespace, "unshare", "--mount", "sh", "-c",
              # Loopback alone does not count as a network to the resolver.
              "ip address add 10.0.0.1/32 dev lo 2>&-; "
              f"mount --bind {hosts} /etc/hosts; mount --bind {switch} /etc/nsswitch.conf; "
              'exec "$@"', "sh"]
    port = device(prefix=namespace).address.split(":")[1]
    for name, status, cause in (("one", 0, None), ("two", 11, "nameAmbiguous"),
                                ("none", 11, "nameUnknown"), ("other.example", 11, "nameUnknown")):
        output, errors, _ = job(f"-o @u -a {name}:{port} -r 3 -w 0 -j", prefix=prefix)
        events, result = ended(output, status)
        assert (result["cause"], result["attempts"]) == (cause, 1)
        if status == 0:
            assert of(events, "connect")[0]["peer"] == f"127.0.0.1:{port}"
        else:
            assert result["error"]["message"].startswith(f'"{name}" has ') and len(errors) == 1


def test_sends_no_trailer_of_a_file_that_changes(job, directory, scenario, update):
    path = update(16_000_000)
    served = scenario(SLOW + "10")
    with job.start(f"-o @u -a {served.address} -j -l @log") as process:
        logged(directory, "accepted")
        with open(path, "r+b") as file:
            file.seek(-1, os.SEEK_END)
            file.write(b"x")
        _, result = ended(process.communicate(timeout=60)[0], 10)
    assert (result["cause"], result["step"], result["powerOff"]) == (
        "fileChanged", "transfer", "avoid")


def test_ends_at_the_deadline_before_the_trailer_only(job, directory, scenario, update):
    update(16_000_000)
    output, _, _ = job(f"-o @u -a {scenario(SLOW + '10').address} -m 2 -r 3 -j")
    events, result = ended(output, 13)
    assert (result["cause"], result["attempts"], result["transient"]) == ("timeUp", 1, False)
    assert result["duration"] >= 1.9
    progress = of(events, "progress")
    assert progress and 0 < progress[0]["percent"] < 100 and progress[0]["rate"] > 0
    update()
    assert ended(job(f"-o @u -a {scenario('complete = wait 1200, notify Complete').address} -m 1 "
                     "-j")[0], 0)


@pytest.fixture
def interrupted(job, directory):
    """Runs a job until its log has the event, sends a signal, and returns the events and result."""
    def run(arguments, event, number):
        with job.start(f"{arguments} -l @log") as process:
            logged(directory, event)
            process.send_signal(number)
            process.communicate(timeout=50)
        assert process.returncode == -number
        events, result = ended(log(directory), 128 + number)
        assert result["signal"] == signal.Signals(number).name[3:]
        return events, result
    return run


@pytest.mark.skipif(WINDOWS, reason="no signals")
def test_ends_by_a_signal(interrupted, directory, scenario, update, unused_address):
    update(50_000_000 if QEMU else 2_000_000_000)
    address = scenario(SLOW + "10").address
    for arguments, event, step, number in (
            (f"-a {address}", "start", "file", signal.SIGTERM),
            (f"-a {unused_address} -r 1 -w 60", "retry", "connection", signal.SIGINT),
            (f"-a {address}", "accepted", "transfer", signal.SIGINT)):
        directory.write("log", "")
        events, result = interrupted(f"-o @u {arguments}", event, number)
        assert (result["outcome"], result["cause"]) == ("interrupted", "interrupted")
        assert result["step"] == step or (step, result["step"]) == ("transfer", "header")
        assert "trailer" not in names(events)
    update()
    directory.write("log", "")
    _, result = interrupted(f"-o @u -a {scenario('silent-complete').address}", "trailer",
                            signal.SIGTERM)
    assert (result["outcome"], result["trailer"], result["powerOff"]) == ("unknown", True, "no")


def test_ends_by_ctrl_c_on_a_terminal(job, directory, scenario, update):
    update(16_000_000)
    command = [*job.command, "-o", directory.at("@u"), "-l", directory.at("@log"), "-a",
               scenario(SLOW + "10").address]
    # exec: dash would stay as the parent, be interrupted too, and exit with a status of its own.
    with subprocess.Popen(["script", "-qec", "exec " + shlex.join(command), "/dev/null"],
                          stdin=subprocess.PIPE, stdout=subprocess.DEVNULL) as process:
        logged(directory, "accepted")
        process.stdin.write(b"\x03")
        process.stdin.flush()
        assert process.wait(30) == 130
    assert ended(log(directory), 130)[1]["outcome"] == "interrupted"


@pytest.mark.skipif(WINDOWS, reason="a signal, and a pipe of known size")
def test_a_second_signal_ends_it_at_once(job, directory, scenario, update):
    update(16_000_000)
    reader, writer = full_pipe()
    with job.start(f"-o @u -a {scenario(SLOW + '10').address} -j -l @log", stdout=writer) as process:
        logged(directory, "accepted")
        for _ in range(2):
            process.send_signal(signal.SIGINT)
            time.sleep(0.5)
        # The first signal alone would end it after a wait of five seconds for the reader.
        assert process.wait(3) == -signal.SIGINT
    os.close(reader)
    os.close(writer)


def full_pipe():
    reader, writer = os.pipe()
    os.set_blocking(writer, False)
    try:
        while True:
            os.write(writer, 1024 * b"x")
    except BlockingIOError:
        os.set_blocking(writer, True)
    return reader, writer


@pytest.mark.skipif(WINDOWS, reason="a POSIX shell")
@pytest.mark.parametrize("output, events", [
    (">&-", None), ("| head -n 1", None), (">/dev/full", "outputBehind"),
    ("| (ulimit -f unlimited; cat)", "logFailed")])
def test_updates_whatever_happens_to_the_output(job, directory, device, update, output, events):
    update(1_000_000)
    served = device()
    limit = "ulimit -f 2; " if events == "logFailed" else ""
    command = shlex.join([*job.command, "-o", directory.at("@u"), "-j", "-l", directory.at("@log"),
                          "-a", served.address])
    shown = subprocess.run(f"{limit}{command} {output}", shell=True, stdout=subprocess.PIPE,
                           check=False, timeout=60).stdout
    assert served.wait() == 0
    events_shown, result = ended(shown if limit else log(directory), 0)
    assert (result["dropped"] > 0) == (output in ("| head -n 1", ">/dev/full"))
    assert [each["cause"] for each in of(events_shown, "warning")] == (
        ["logFailed"] if limit else ["outputBehind"] if result["dropped"] else [])


@pytest.mark.skipif(WINDOWS, reason="a pipe of known size")
def test_updates_with_a_reader_that_does_not_read(job, directory, scenario, update):
    update(8_000_000)
    reader, writer = full_pipe()
    served = scenario(SLOW + "5")
    assert job(f"-o @u -a {served.address} -j -l @log", stdout=writer)[2] == 0
    os.close(reader)
    os.close(writer)
    _, result = ended(log(directory), 0)
    assert served.wait() == 0 and result["dropped"] > 0


def test_uses_a_log_in_one_run_at_a_time(job, directory, scenario, device, update):
    update(16_000_000)
    served = device()
    with job.start(f"-o @u -a {scenario(SLOW + '10').address} -l @log -m 3") as process:
        logged(directory, "accepted")
        _, result = ended(job(f"-o @u -a {served.address} -l @log -j")[0], 10)
        assert result["cause"] == "logInUse" and served.connections == 0
        process.communicate(timeout=60)
    ended(log(directory), 13)


def test_prints_lines_for_people(job, directory, device, update, unused_address):
    update()
    output, errors, _ = job(f"-o @u -a {device().address}")
    assert output.decode().splitlines()[-2:] == [
        "The device is updated and it will restart itself if needed.",
        "Result: updated (exit 0). Let the device restart."]
    assert output.startswith(b"ravelink-job ") and not errors and b"\r" not in output
    output, errors, _ = job(f"-o @u -a {unused_address} -r 1 -w 0")
    assert output.decode().splitlines()[-1] == (
        "Result: notConnected (exit 11) at the connection; it may be tried again. "
        "Check the address, the cable and the power of the device.")
    assert len(errors) == 2
    assert job(f"-o @u -a {unused_address} -q")[0] == b""
    assert job("-v")[1:] == job("--HELP -o @u")[1:] == ([], 0)


def on_terminal(command, columns, stream, **variables):
    """Returns what a command prints to a terminal of that width: as its output, or its errors."""
    reader, terminal = pty.openpty()
    fcntl.ioctl(terminal, termios.TIOCSWINSZ, struct.pack("HHHH", 24, columns, 0, 0))
    shown = b""
    with subprocess.Popen(command, stdin=subprocess.DEVNULL, env={**os.environ, **variables},
                          **{"stdout": subprocess.DEVNULL, stream: terminal}):
        os.close(terminal)
        try:
            while part := os.read(reader, 4096):
                shown += part
        except OSError:  # the command has ended
            pass
    os.close(reader)
    return shown.decode().replace("\r\n", "\n")


BAR = re.compile(r"\r  Sending \[#*\.*\] +\d+%  \d+\.\d of 7\.6 MiB  \d+\.\d MiB/s  \d+:\d\d left")
NARROW = re.compile(r"\r  Sending \d+%  \d+\.\d of 7\.6 MiB")


@pytest.mark.skipif(WINDOWS, reason="a Win32 console is no stream")
@pytest.mark.parametrize("columns, options, stream, variables, shown", [
    (100, "", "stdout", {"TERM": "xterm"}, BAR),
    (100, "", "stdout", {"TERM": "xterm", "NO_COLOR": "1"}, BAR),
    (100, "-j", "stderr", {"TERM": "xterm"}, BAR),
    (40, "", "stdout", {"TERM": "xterm"}, NARROW),
    (100, "", "stdout", {"TERM": "dumb"}, None),
    (100, "-j -q", "stderr", {"TERM": "xterm"}, None),
])
def test_redraws_one_line_on_a_terminal(job, directory, scenario, update, columns, options, stream,
                                        variables, shown):
    update(8_000_000)
    served = scenario(SLOW + "3")
    text = on_terminal([*job.command, "-o", directory.at("@u"), "-a", served.address,
                        *options.split()], columns, stream, **variables)
    assert served.wait() == 0 and "\x1B" not in text
    if shown is None:
        assert "\r" not in text and ("  Sending " in text) == (stream == "stdout")
    else:
        assert shown.search(text) and "\r  Waiting for the device  0:0" in text
        drawn = [line for part in text.split("\n") for line in part.split("\r")[1:-1]]
        assert all(len(line) < columns for line in drawn)
        assert text.endswith("\r" if stream == "stderr" else "Let the device restart.\n")


# The default timeouts: minutes of waiting, so only ./dev test slow runs these.
@pytest.mark.slow
@pytest.mark.skipif(WINDOWS, reason="takes minutes")
@pytest.mark.parametrize("lines, waiting", [("silent-complete", 30), ("flood", 0)])
def test_waits_five_minutes_for_the_end(job, scenario, update, lines, waiting):
    update()
    job.command = built("job_program")
    output = job.start(f"-o @u -a {scenario(lines).address} -r 3 -j").communicate(timeout=390)[0]
    events, result = ended(output, 15)
    assert (result["cause"], result["attempts"]) == ("completionTimeout", 1)
    assert 300 <= result["duration"] < 360 and abs(len(of(events, "waiting")) - waiting) <= 1
    assert len(of(events, "stage")) <= 305
