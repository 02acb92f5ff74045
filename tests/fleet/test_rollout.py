"""Many sites: the collection ravelink.fleet, run by Ansible."""

import hashlib
import importlib.util
import json
import os
import pwd
import re
import shutil
import signal
import socket
import subprocess
import zlib
from typing import NamedTuple

import pytest

from conftest import BIN, SOURCE, run, source, wait_until

COLLECTIONS = str(SOURCE / "fleet")
MODULE = "ansible_collections/ravelink/fleet/plugins/modules/update.py"


class Ran(NamedTuple):
    status: int
    text: str
    recap: dict     # (changed, failed) by device
    outcomes: dict  # outcome by device
    report: dict


@pytest.fixture
def environment(directory, monkeypatch):
    """Makes Ansible use the built programs and the collection, and write only below the directory."""
    for name, value in {"PATH": f"{BIN}:{os.environ['PATH']}", "HOME": directory.at("@home"),
                        "PWD": str(directory.path), "ANSIBLE_COLLECTIONS_PATH": COLLECTIONS,
                        "ANSIBLE_CONFIG": directory.at("@ansible.cfg"),
                        "RAVELINK_REPORT": directory.at("@report.json")}.items():
        monkeypatch.setenv(name, value)
    directory.write("ansible.cfg", "[defaults]\nforks = 12\ncallbacks_enabled = ravelink.fleet.report\n"
                    "[ssh_connection]\nssh_args = -F none -o ControlMaster=no\n")


class Rollout:
    """Devices press01, press02 ... with these addresses, and an archive for them."""

    def __init__(self, directory, addresses):
        self.directory = directory
        self.archive = directory.at("@update.rvl")
        run([BIN / "ravelink-pack", "-b", SOURCE / "examples/packing/update.conf", "-o", self.archive])
        self.hosts = {f"press{number:02}": {"ravelink_address": address}
                      for number, address in enumerate(addresses, 1)}
        self.gateways = {}

    def start(self, *options, **variables):
        at = self.directory.at
        self.directory.write("hosts.json", json.dumps({"all": {
            "vars": {"ravelink_folder": at("@state"), "ravelink_archive": "update.rvl",
                     "ansible_remote_tmp": at("@tmp"), "ansible_async_dir": at("@async"),
                     "ansible_python_interpreter": "/usr/bin/python3", "ravelink_wait": 0,
                     "ravelink_retry": 0, **variables},
            "children": {"ravelink_devices": {"hosts": self.hosts},
                         "ravelink_gateways": {"hosts": self.gateways}}}}))
        return subprocess.Popen(
            ["ansible-playbook", "-i", at("@hosts.json"), *options, "ravelink.fleet.rollout"], stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)

    def __call__(self, *options, **variables):
        with self.start(*options, **variables) as process:
            text, _ = process.communicate(timeout=300)
        recap = {name: (int(changed), int(failed)) for name, changed, failed in re.findall(
            r"^(press\d+) .* changed=(\d+) .* failed=(\d+)", text, re.M)}
        report = json.loads(self.directory.read("report.json"))
        outcomes = {device["name"]: device["outcome"] for device in report["devices"]}
        return Ran(process.returncode, text, recap, outcomes, report)


@pytest.fixture
def rollout(directory, environment):
    return lambda addresses: Rollout(directory, addresses)


def names(*numbers):
    return [f"press{number:02}" for number in numbers]


def test_updates_each_device_once(rollout, fleet):
    run_all = rollout(fleet.add(12))
    first = run_all()
    assert (first.status, set(first.recap.values())) == (0, {(1, 0)}), first.text
    assert re.search(r"^RAVELINK REPORT  update.rvl [0-9a-f]{12}: 12 updated$", first.text, re.M)
    second = run_all("-v")
    assert (second.status, set(second.recap.values())) == (0, {(0, 0)}), second.text
    assert second.report["counts"] == {"already": 12}
    assert f"  press12  already  {run_all.hosts['press12']['ravelink_address']}  it has this" in second.text
    assert set(fleet.connections.values()) == {1}
    # Another archive; the ledger says when the former one was installed.
    run_all.archive = run_all.directory.write("update.rvl", b"not an archive")
    check = run_all("--check", "--diff")
    assert (check.status, check.report["counts"]) == (0, {"pending": 12})
    assert re.search(r"-[0-9a-f]{64} updated\n\+[0-9a-f]{64} updated", check.text)
    bad = run_all()
    assert (bad.status, bad.report["counts"]) == (2, {"file": 1, "not tried": 11})
    assert set(fleet.connections.values()) == {1}


def test_stops_at_a_failure_and_continues_later(rollout, fleet):
    first, busy, rest = fleet.add(2), fleet.add(1, "status-06-system-busy"), fleet.add(8)
    rest += fleet.add(1, "restart-power-cycle")
    run_all = rollout(first + busy + rest)
    waves = {"ravelink_waves": [1, 4, "100%"]}
    stopped = run_all(**waves)
    assert stopped.status == 2
    changed = [name for name, (changed, failed) in stopped.recap.items() if changed]
    assert changed == names(1, 2, 4, 5) and stopped.recap["press03"] == (0, 1), stopped.text
    assert stopped.report["counts"] == {"updated": 4, "refused": 1, "not tried": 7}
    assert (f"\n  press03  refused  {busy[0]}  > System is busy; may be tried again\n" in stopped.text)
    assert f"press03 ({busy[0]}) refused at the request: > System is busy (exit 12, 1 attempt, 0:0" \
        in stopped.text
    fleet.replace(busy[0])
    resumed = run_all(**waves)
    assert resumed.status == 0 and sum(changed for changed, _ in resumed.recap.values()) == 8
    assert resumed.text.endswith(
        f": 8 updated, 4 already\n  press12  updated  {rest[-1]}; switch it off and on\n"), resumed.text
    assert fleet.connections == {**{address: 1 for address in first + rest}, busy[0]: 2}


def test_contacts_an_unfinished_device_only_on_request(rollout, fleet):
    first, unknown, rest = fleet.add(4), fleet.add(1, "unknown-code"), fleet.add(7)
    run_all = rollout(first + unknown + rest)
    options = {"ravelink_waves": [6, 6], "ravelink_max_fail_percentage": 100}
    stopped = run_all(ravelink_max_failures=0, **options)
    assert stopped.status == 2 and stopped.outcomes["press05"] == "unknown", stopped.text
    assert [name for name, each in stopped.outcomes.items() if each == "not tried"] == names(*range(7, 13))
    assert "do not switch it off, look at it, then ravelink_unfinished=retry\n" in stopped.text
    fleet.replace(unknown[0])
    continued = run_all(**options)
    assert continued.status == 2 and continued.report["counts"] == {
        "unfinished": 1, "already": 5, "updated": 6}, continued.text
    assert fleet.connections[unknown[0]] == 1
    last = run_all(ravelink_unfinished="retry", **options)
    assert last.status == 0 and last.report["counts"] == {"updated": 1, "already": 11}


@pytest.fixture
def gateway(directory):
    """An SSH server on loopback; its host variables."""
    for key in "host", "user":
        run(["ssh-keygen", "-q", "-t", "ed25519", "-N", "", "-f", directory.at(f"@{key}")])
    shutil.copy(directory.at("@user.pub"), directory.at("@keys"))
    if os.getuid() == 0:
        os.makedirs("/run/sshd", exist_ok=True)
    with socket.create_server(("127.0.0.1", 0)) as free:
        port = free.getsockname()[1]
    config = directory.write("sshd", directory.at(
        f"ListenAddress 127.0.0.1:{port}\nHostKey @host\nAuthorizedKeysFile @keys\nStrictModes no\n"
        f"UsePAM no\nPidFile @sshd.pid\nSetEnv PATH={os.environ['PATH']}\n"))
    process = subprocess.Popen(["/usr/sbin/sshd", "-D", "-f", config], stderr=subprocess.DEVNULL)
    wait_until((directory.path / "sshd.pid").exists)
    yield {"ansible_host": "127.0.0.1", "ansible_port": port, "ansible_user": pwd.getpwuid(os.getuid())[0],
           "ansible_ssh_private_key_file": directory.at("@user"), "ansible_ssh_common_args":
           "-o StrictHostKeyChecking=no -o UserKnownHostsFile=/dev/null"}
    process.kill()
    process.wait()


def test_stops_if_a_gateway_is_lost(rollout, fleet, gateway, directory):
    first, busy, rest = fleet.add(2), fleet.add(1, "status-06-system-busy"), fleet.add(9)
    run_all = rollout(first + busy + rest)
    run_all.gateways["gw"] = gateway
    for name in names(2, 6):
        run_all.hosts[name]["ravelink_gateway"] = "gw"
    planned = run_all("--check")
    assert planned.report["counts"] == {"pending": 12}, planned.text
    after = directory.write("after.yml", "- {ansible.builtin.shell: 'kill $(cat %s)', delegate_to: "
                            "localhost, when: inventory_hostname == 'press01'}\n" % directory.at("@sshd.pid"))
    stopped = run_all(ravelink_waves=[1, 4, "100%"], ravelink_after=after)
    assert stopped.status == 2, stopped.text
    assert [stopped.recap[name] for name in names(2, 3)] == [(0, 1), (0, 1)], stopped.text
    assert stopped.report["counts"] == {"updated": 3, "refused": 1, "unreachable": 1, "not tried": 7}
    assert not set(fleet.connections) & set(rest[2:])


@pytest.fixture
def pausing(directory):
    """A scenario that leaves time to stop the device after the trailer."""
    return directory.write("pausing.conf", "trailer = wait 3000, notify Received\n")[:-len(".conf")]


def test_leaves_updates_running_when_interrupted(rollout, fleet, pausing):
    run_all = rollout(fleet.add(1, pausing))
    with run_all.start() as process, fleet.frozen("Trailer"):
        process.send_signal(signal.SIGINT)
        assert process.wait(60) == 99
        during = run_all()
        assert (during.status, during.outcomes) == (2, {"press01": "locked"}), during.text
        assert " locked: another run is updating it" in during.text
    wait_until(lambda: run_all("--check").outcomes != {"press01": "locked"})
    after = run_all()
    assert (after.status, after.outcomes) == (0, {"press01": "already"}), after.text
    assert set(fleet.connections.values()) == {1}


def test_sends_nothing_after_bad_input(rollout, fleet, directory):
    run_all = rollout(fleet.add(3))
    for variables, outcome, text in [
            ({"ravelink_sha256": 64 * "0"}, "file", "the archive %s has the SHA-256" % run_all.archive),
            ({"ravelink_archive": directory.at("@none")}, "file", "the archive cannot be read"),
            ({"ravelink_folder": run_all.archive}, "file", "it is not a directory"),
            ({"ravelink_retry": "many"}, "error", "'retry' is of type"),
            # Of one device only; the others are not updated either.
            ({"ravelink_address": "10.0.0.999:1"}, "usage", "Bad address"),
            ({"ravelink_address": "{{ nothing }}"}, "error", "'nothing' is undefined"),
            ({"ravelink_gateway": "127.0.0.2"}, "unreachable", "Failed to connect")]:
        of_one = {"ravelink_address", "ravelink_gateway"} & {*variables}
        host = dict(run_all.hosts["press02"])
        run_all.hosts["press02"].update(variables if of_one else {})
        ran = run_all(**({} if of_one else variables))
        run_all.hosts["press02"] = host
        others = "not tried" if of_one else outcome
        assert ran.outcomes == {"press01": others, "press02": outcome, "press03": others}, ran.text
        assert ran.status == 2
        assert re.search(rf"(?m)^  press02  {outcome}  .*{re.escape(text)}", ran.text), ran.text
    # The archive changes between two waves.
    after = directory.write("after.yml", "- {ansible.builtin.copy: {dest: '%s', content: other}, delegate_to"
                            ": localhost}\n" % run_all.archive)
    ran = run_all(ravelink_after=after, ravelink_waves=[1, 2])
    assert ran.outcomes == {"press01": "updated", "press02": "file", "press03": "file"}, ran.text
    assert sum(fleet.connections.values()) == 1


class Module:
    """The module by itself, for an archive and a device of a new directory."""

    def __init__(self, directory):
        self.directory = directory
        self.archive = directory.write("update.rvl", "an update")
        self.arguments = {"archive": self.archive, "address": "127.0.0.1", "name": "press 07",
                          "ledger": directory.at("@ledger"), "check_archive": False, "retry": 0}
        self.sha256 = hashlib.sha256(b"an update").hexdigest()
        # A space is not used in names of files.
        self.entry = "ledger/press_07-%s.json" % hashlib.sha256(b"press 07").hexdigest()[:12]

    def start(self, **arguments):
        file = self.directory.write("arguments", json.dumps(
            {"ANSIBLE_MODULE_ARGS": {**self.arguments, **arguments}}))
        return subprocess.Popen(["/usr/bin/python3", SOURCE / "fleet" / MODULE, file],
                                stdout=subprocess.PIPE, text=True)

    def __call__(self, **arguments):
        with self.start(**arguments) as process:
            return json.loads(process.communicate(timeout=60)[0])

    def check(self, **arguments):
        return self(_ansible_check_mode=True, **arguments)


@pytest.fixture
def module(directory, environment):
    return Module(directory)


SENDING = {"outcome": "sending", "offset": 7}
UPDATED = {"outcome": "updated"}
STUCK = {"unfinished": True}
TRAILER, RESULT = '{"event":"trailer"}\n', '{"event":"result","outcome":"%s","exit":0,"trailer":%s}\n'


@pytest.mark.parametrize("entry, log, arguments, expected", [
    (None, "", {}, "pending"),
    (UPDATED, "", {}, "already"),
    (UPDATED, "", {"address": "127.0.0.1:3007"}, "already"),
    (UPDATED, "", {"address": "127.0.0.1:3008"}, "pending"),
    (UPDATED, "", {"force": True}, "pending"),
    ({**UPDATED, "sha256": "0"}, "", {}, "pending"),
    ({"outcome": "refused"}, "", {}, "pending"),
    ({"outcome": "refused", **STUCK}, "", {}, "unfinished"),
    ({"outcome": "unknown", **STUCK}, "", {"unfinished": "retry"}, "pending"),
    ({"outcome": "unknown", **STUCK}, "", {"force": True}, "pending"),
    # A killed run: its part of the log decides.
    (SENDING, "", {}, "pending"),
    (SENDING, TRAILER[:7] + RESULT % ("updated", "true"), {}, "already"),
    (SENDING, TRAILER + '{"event":"sent"}\n' + TRAILER + '{"ev', {}, "unfinished"),
    (SENDING, 7 * "\n" + TRAILER, {}, "unfinished"),
    ({**SENDING, "offset": len(TRAILER)}, TRAILER, {}, "pending"),
    ({**SENDING, **STUCK}, "", {}, "unfinished"),
    (SENDING, 7 * "\n" + RESULT % ("deviceFailed", "true"), {}, "unfinished"),
    ({"schema": 2}, "", {}, "file"),
    ({"outcome": None, "sha256": []}, "", {"ledger": "@update.rvl/x"}, "file"),
    ("{", "", {}, "file"),
    ('{"schema": 1}', "", {}, "file"),
])
def test_ledger_decides_about_a_device(module, entry, log, arguments, expected):
    at = module.directory.at
    whole = {"schema": 1, "name": "press 07", "address": "127.0.0.1", "archive": "", "sha256":
             module.sha256, "size": 9, "crc": "", "outcome": "", "exit": 0, "started": "", "ended": "",
             "log": "", "offset": 0, "unfinished": False}
    if entry:
        module.directory.write(module.entry, entry if isinstance(entry, str) else json.dumps(
            {**whole, **entry}))
        module.directory.write(module.entry + "l", log)
    before = module.directory.files()
    ended = module.check(**{name: at(value) if isinstance(value, str) else value
                            for name, value in arguments.items()})
    assert ended["outcome"] == expected, ended
    assert ended.get("failed", False) == (expected not in ("already", "pending"))
    assert ended["changed"] == (expected == "pending")
    assert module.directory.files() == sorted({*before, "arguments"})


def test_keeps_the_lock_of_a_killed_module(module, fleet, pausing):
    [module.arguments["address"]] = fleet.add(1, pausing)
    process = module.start()
    with fleet.frozen("Trailer"):
        process.kill()
        process.wait()
        assert module.check()["outcome"] == module()["outcome"] == "locked"
    wait_until(lambda: module.check()["outcome"] == "already")
    assert sum(fleet.connections.values()) == 1


def test_documents_arguments_and_results(module, fleet):
    shown = run(["ansible-doc", "--json", "ravelink.fleet.update"]).lines
    documented = json.loads("".join(shown))["ravelink.fleet.update"]
    spec = importlib.util.spec_from_file_location("update", SOURCE / "fleet" / MODULE)
    loaded = importlib.util.module_from_spec(spec)
    spec.loader.exec_module(loaded)
    options = {name: {key: option[key] for key in ("type", "required", "default", "choices")
                      if key in option}
               for name, option in documented["doc"]["options"].items()}
    assert options == loaded.ARGUMENTS
    playbook = source("fleet/ansible_collections/ravelink/fleet/playbooks/rollout.yml")
    own = " ".join(re.findall(r"(?:register|groups|hosts): ravelink_\w+|ravelink_\w+:", playbook))
    used = set(re.findall(r"ravelink_\w+", playbook)) - set(re.findall(r"ravelink_\w+", own))
    table = " ".join(re.findall(r"^\| (`ravelink_.*?) \|", source("docs/fleet.md"), re.M))
    assert used == set(re.findall(r"ravelink_\w+", table))
    [module.arguments["address"]] = fleet.add()
    ended = module()
    assert ended["outcome"] == "updated" and ended["changed"] and not ended.get("failed")
    assert set(ended) - {"invocation"} <= set(documented["return"])
    assert ended["previous"] is None and ended["crc"] == f"0x{zlib.crc32(b'an update'):08X}"
