"""ravelink-device, run as users run it."""

import os
import re
import resource
import shlex
import shutil
import socket
import subprocess

import pytest

from conftest import DEVICE, UPDATER, VERSION, WINDOWS_DEVICE, golden, run, wait_until
from test_pack import with_valid_crc

BANNER = f"ravelink-device {VERSION} (Halvoren) - Simulated Device"


def test_logs_and_stores_many_updates_at_once(device, directory):
    """More devices than a server socket has addresses. They answer the header, which saves waiting."""
    count = 34
    # Terminals interpret U+061C as a direction mark.
    stored = directory.path / "a=\u061C"
    stored.mkdir()
    update = directory.write("u", "x")
    scenario = directory.write("s.conf", "header = notify Accepted, wait 300\n"
                                         "complete = cut 3 Complete, notify Complete")
    served = device("-v", "-n", str(count), "-d", str(stored), "-s", scenario, count=count)
    updaters = [subprocess.Popen([*UPDATER, "-o", update, "-a", address],
                                 stdout=subprocess.DEVNULL) for address in served.addresses]
    assert [updater.wait(60) for updater in updaters] == count * [0]
    assert served.wait() == 0
    files = list(stored.iterdir())
    assert len(files) == count and all(file.read_bytes() == b"x" for file in files)
    log = re.sub(r"(127\.0\.0\.1)[:-].*", r"\1", "\n".join(served.lines)).replace("\\", "/")
    lines = [re.sub(r"[0-9]+\.[0-9]{3} s", "TIME", line[5:])
             for line in log.splitlines() if line.startswith("[34] ")]
    expected = golden("device.log").replace("DIRECTORY", str(directory.path))
    assert lines == expected.splitlines()


@pytest.mark.skipif(WINDOWS_DEVICE, reason="no signals")
def test_leaves_no_partial_update_when_interrupted(device, directory):
    stored = directory.path / "stored"
    stored.mkdir()
    scenario = directory.write("s.conf", "header = notify Accepted\ndata = wait 600000")
    served = device("-d", str(stored), "-s", scenario)
    command = [*UPDATER, "-o", directory.write("u", "x"), "-a", served.address]
    with subprocess.Popen(command, stdout=subprocess.DEVNULL) as updater:
        wait_until(lambda: len(list(stored.iterdir())) == 1)
        # A process often receives the same signal twice: by itself and with its group.
        served.process.terminate()
        served.process.terminate()
        assert served.wait() == 1
        updater.kill()
    assert list(stored.iterdir()) == []
    assert served.lines[-1] == "*** Stopped: Update aborted: the device is stopping"


@pytest.mark.skipif(WINDOWS_DEVICE, reason="no such limits and paths")
@pytest.mark.parametrize("options, limited, line", [
    ("-n 1 -c", {"env": {**os.environ, "TMPDIR": "a=\x01"}},
     '*** Update not checked: "a=?/": No such file or directory'),
    ("-c -d a=\x01", {},
     '*** Update not stored: "a=?/127.0.0.1-PORT-1.rvl": No such file or directory'),
    ("-m 9999", {}, "  Sent: Error, value 0x00000005"),
    ("-d .", {"preexec_fn": lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (8192, 8192))},
     '*** Update not stored: "./127.0.0.1-PORT-1.rvl": File too large'),
])
def test_reports_updates_not_stored_or_checked(device, directory, ravelink, options, limited, line):
    # Wins over the shipped scenario.
    directory.write("silent-request.conf", "header = notify Accepted")
    update = directory.write("u", 10_000 * "x")
    gone = directory.path / "a=\x01"
    gone.mkdir()
    served = device("-s", "silent-request.conf", *options.split(), cwd=directory.path, **limited)
    shutil.rmtree(gone)
    ravelink("-o", update, "-a", served.address)
    assert served.wait() == 1
    assert line in [re.sub(r"\.1-[0-9]+-", ".1-PORT-", each) for each in served.lines]


def test_rejects_another_updater_as_its_scenario_specifies(device, directory, ravelink):
    served = device("-s", directory.write("s", "busy = notify ErrorAlt:SystemBusy"))
    address, port = served.address.split(":")
    update = directory.write("u", "x")
    with socket.create_connection((address, int(port))):
        wait_until(lambda: served.connections)
        assert ravelink("-o", update, "-a", served.address).lines[-2] == (
            "*** > System is busy: The system is now busy and the update procedure must be postponed")
        wait_until(lambda: any("rejected" in line for line in served.lines))
    assert served.wait() == 1
    assert [line.partition(".")[0] for line in served.lines[3:]] == [
        "busy 1: - Connection from: 127", "busy 1: - Request: 1",
        "busy 1:   Sent: ErrorAlt, value 0x00000006",
        "busy 1: *** Update rejected: The device reported an error",
        "*** Connection ended: The updater closed the connection before the end"]


def test_logs_one_verdict_on_each_archive(device, directory, pack, ravelink):
    served = device("-t", "other", "-s", "answer-to-header.conf", once=False)
    good = pack.golden("u", "files", "x")
    for archive in (with_valid_crc(good[:24] + b"1" + good[25:]),
                    pack.golden("u", "sample", "0x00020000", "3")):
        ravelink("-o", directory.write("u", archive), "-a", served.address)
    assert [line for line in served.lines if line.startswith("- Archive")] == [
        "- Archive: invalid (wrong offset of file[0])",
        '- Archive: valid, but for target ""']


@pytest.mark.skipif(WINDOWS_DEVICE, reason="no such ports")
def test_reports_ports_reserved_for_root(namespace):
    unprivileged = [*namespace, "setpriv", "--bounding-set", "-net_bind_service", *DEVICE]
    assert run([*unprivileged, "-b", "127.0.0.1:1023"]).lines[1] == (
        "*** Unable to listen: The address 127.0.0.1:1023 cannot be used: no permission for ports "
        "below 1024")


@pytest.mark.parametrize("arguments, error, status", [
    ("-x", "Invalid option: -x ", 2),
    ("-b nowhere", 'Bad address: "nowhere" is not an IPv4 address in the form IP:Port', 2),
    ("-b 127.0.0.1:65536", 'Invalid port: The port in "127.0.0.1:65536" must be from 0 to 65535', 2),
    ("-b TAKEN", "Unable to listen: The address TAKEN cannot be used: already in use", 1),
    ("-b 192.0.2.1 -n 1",  # reserved for documentation
     "Unable to listen: The address 192.0.2.1:3007 cannot be used: not an address of this computer",
     1),
    ("-b 127.0.0.1:65535 -n 2", "Bad count: -n must be from 1 to 1, not 2", 2),
    ("-m 2147483648", "Bad size: -m must be from 1 to 2147483647, not 2147483648", 2),
    ("-n 0", "Bad count: -n must be from 1 to 1000, not 0", 2),
    ("-d @a=\u061C", 'Directory missing: Cannot find the directory "@a=?" to store updates in', 1),
    ("-s @a=\u061C", 'Scenario not readable: "@a=?": No such file or directory', 1),
])
def test_reports_errors_before_it_listens(directory, arguments, error, status):
    with socket.create_server(("127.0.0.1", 0)) as listener:
        taken = f"127.0.0.1:{listener.getsockname()[1]}"

        def at(text):
            return directory.at(text).replace("TAKEN", taken)

        result = run(DEVICE + shlex.split(at(arguments)))
    assert result.lines[:2] == [BANNER, "*** " + at(error)]
    assert len(result.lines) == (18 if arguments == "-x" else 2)
    assert result.status == status
