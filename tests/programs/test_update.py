"""ravelink as a user runs it."""

import os
import shutil
import subprocess
import time

import pytest

from conftest import (SOURCE, UPDATER, VERSION, WINDOWS_DEVICE, WINDOWS_UPDATER, golden, run,
                      wait_until)

BANNER = f"ravelink {VERSION} (Halvoren) - Ethernet Updater"
USAGE = golden("usage.txt").splitlines()
DONE = "The device is updated and it will restart itself if needed."


def missing(path):
    return [f'*** Update file missing: Cannot find the file "{path}". Please provide the correct '
            "path", ""]


def bad_port(address):
    return [f"*** Invalid port: The address provided ({address}) does not contain a valid port. "
            "Please use the form IP|Port", ""]


def unreachable(address, port):
    return [f"- Connecting to: {address}:{port} ...",
            f"*** Connection failed: Unable to connect to ({address}|{port}). Please check the "
            "address and try again", ""]


@pytest.mark.parametrize("arguments, lines", [
    ("", ["*** Origin file name missing: Please provide the correct -o option", ""]),
    ("-h", USAGE),
    ("--HELP -o @u -a 127.0.0.1", USAGE),
    ("--bad=1 -h x", ["*** Invalid option: --bad 1", "*** Invalid number of arguments: -h x", "",
                      *USAGE]),
    ("-o @none", missing("@none")),
    ("-o @100%1=%s.rvl", missing("@100%1: %s.rvl")),
    ("-o @@", missing("@@")),
    ("-t x -i y -o @u",
     ["*** Sensor IP address missing: Please provide the correct -a option", ""]),
    ("-o=@u --address=10.0.0:7",
     ["*** Bad address: The address provided (10.0.0|7) is not a valid IPv4 address. Please use "
      "the form IP:Port", ""]),
    ("--origin @u -a 127.0.0.1:65536", bad_port("127.0.0.1|65536")),
    ("-o @u -a 127.0.0.1:0", bad_port("127.0.0.1|0")),
    ("-o @u -a=127.0.0.1:-9999999999", bad_port("127.0.0.1|-9999999999")),
    # No connection can be made to 127.0.0.0.
    ("-o @u -a 127.0.0.0:65535", unreachable("127.0.0.0", 65535)),
    ("-o @u -a 127.0.0.0:1", unreachable("127.0.0.0", 1)),
    # An octet too big leaves an address to try, without a port.
    ("-o @u -a 127.0.0.999:1", unreachable("127.0.0.0", 3007)),
])
def test_command_lines_that_reach_no_device(ravelink, directory, arguments, lines):
    directory.write("u", "x")
    result = ravelink(*directory.at(arguments).split())
    assert result.lines == [BANNER, *map(directory.at, lines)]
    assert result.status == 0


@pytest.fixture
def tmux(directory):
    """Returns a function that runs tmux commands with a server of its own."""
    if shutil.which("tmux") is None:
        pytest.skip("no tmux to read a screen from")
    command = ["tmux", "-f", "/dev/null", "-S", directory.at("@socket")]
    yield lambda *arguments: run(command + list(arguments), stderr=subprocess.DEVNULL).lines
    run(command + ["kill-server"], stderr=subprocess.DEVNULL)


def test_overwrites_reports_on_a_terminal(device, directory, tmux):
    update = directory.write("u", 600_000 * "x")
    command = " ".join([*UPDATER, "-o", update, "-a", device().address])
    tmux("new-session", "-d", "-x", "80", "-y", "24", command + "; sleep 60")
    wait_until(lambda: any("restart itself" in line for line in tmux("capture-pane", "-p")))
    # Terminals may end the colour after the text or before the next one.
    assert [line.replace("\x1B[39m", "") for line in tmux("capture-pane", "-ep")[3:6]] == [
        "- The device has accepted our request.", "- File completely sent: \x1B[92m585.9 KB",
        "  The update process may take a while. Please wait..."]


@pytest.mark.parametrize("output", ["| head -1", ">&-", "> /dev/full", pytest.param(
    "<&- >&- 2>&-", marks=pytest.mark.skipif(
        WINDOWS_UPDATER, reason="Wine mistakes its connection to the server for standard output"))])
def test_updates_with_the_output_closed(device, directory, output):
    update = directory.write("u", 1_000_000 * "x")
    served = device()
    run(f"{' '.join(UPDATER)} -o {update} -a {served.address} {output}")
    assert served.wait() == 0


def test_updates_with_the_terminal_closed(device, directory, tmux):
    update = directory.write("zürich.rvl", 1_000_000 * "x")
    served = device("-s", directory.write("s.conf", "header = notify Accepted\ndata = wait 1000"))
    # Windows has no such signal, but it ends Wine.
    ignored = "trap '' HUP; " if WINDOWS_UPDATER else ""
    tmux("new-session", "-d", f"{ignored}{' '.join(UPDATER)} -o {update} -a {served.address}")
    wait_until(lambda: any("Header" in line for line in served.lines))
    tmux("kill-server")
    assert served.wait() == 0


def test_needs_loopback_only_and_reports_an_unreachable_peer(device, directory, namespace):
    update = directory.write("u", "x")
    command = [*namespace, *UPDATER, "-o", update, "-a"]
    assert run(command + ["10.0.0.7"]).lines == [BANNER, *unreachable("10.0.0.7", 3007)]
    served = device(prefix=namespace)
    assert run(command + [served.address]).lines[-1] == DONE
    assert served.wait() == 0
    assert served.lines[-1] == "- The update is complete."


# The default timeouts: minutes of waiting, so only ./dev test slow runs these.
@pytest.mark.slow
@pytest.mark.skipif(WINDOWS_UPDATER or WINDOWS_DEVICE, reason="takes minutes")
@pytest.mark.parametrize("scenario, at_least, at_most, end, waits", [
    ("silent-request", 10, 15, "*** Connection timeout: ", 0),
    ("restart-firmware", 2, 7, DONE, 0),
    ("stall", 60, 65, "*** Timeout sending the file: ", 0),
    ("silent-trailer", 300, 305, "*** Timeout error: ", 30),
    # A wait that begins before the five minutes are over lasts its 10 s.
    ("processing-forever", 300, 315, "*** Timeout error: ", 0),
])
def test_keeps_its_timeouts(device, directory, ravelink, scenario, at_least, at_most, end, waits):
    """Waits neither less nor much longer than documented."""
    update = directory.write("u", 16_000_000 * "x")
    served = device("-s", str(SOURCE / f"examples/scenarios/{scenario}.conf"))
    start = time.monotonic()
    lines = [line for line in ravelink("-o", update, "-a", served.address, timeout=400).lines
             if line]
    assert at_least <= time.monotonic() - start <= at_most
    assert lines[-1].startswith(end)
    assert sum(line.startswith("  System is still updating. ") for line in lines) == waits
    timeouts = sum(line.startswith("*** Connection timeout: ") for line in lines)
    assert timeouts == waits + (at_least == 10)
