#!/usr/bin/python
# SPDX-License-Identifier: MIT

DOCUMENTATION = r"""
module: update
short_description: Installs an update on a networked device
version_added: 1.0.0
author: ravelink maintainers (@ravelink)
description:
  - Runs C(ravelink-job) on this host to install an update archive on a device.
  - Keeps a ledger, one entry for each device. A device that has the archive is not updated again, and
    a device that may be installing is not contacted until a person has looked at it.
  - The entry is locked during an update. The lock outlives a killed module as long as its
    C(ravelink-job) runs.
requirements:
  - ravelink-job
attributes:
  check_mode:
    description: Reads the archive and the ledger, contacts no device and writes nothing.
    support: full
  diff_mode:
    description: Shows the archive and the outcome of the device before and after.
    support: full
  platform:
    description: Target operating systems.
    support: full
    platforms: posix
options:
  archive:
    description:
      - Path of the update archive on this host.
      - In check mode, an archive with I(sha256) may be missing, because it may be copied later.
    type: path
    required: true
  address:
    description: Address of the device, C(HOST) or C(HOST:PORT). The default port is 3007.
    type: str
    required: true
  name:
    description:
      - Name of the device, of its ledger entry and of its log. The default is I(address).
      - In names of files, characters other than C([A-Za-z0-9._-]) become C(_), and a digest follows.
    type: str
  sha256:
    description: SHA-256 that the archive must have. If it differs, no device is contacted.
    type: str
  ledger:
    description: Directory of entries, locks and logs. It is created if missing.
    type: path
    required: true
  force:
    description: Whether to update a device that has this archive, or whose last update is unfinished.
    type: bool
    default: false
  unfinished:
    description:
      - What to do with a device whose last update went beyond the trailer but was not completed. It
        may have been installing since.
      - C(stop) fails without contacting it. C(retry) updates it.
    type: str
    choices: [stop, retry]
    default: stop
  check_archive:
    description: Whether the file must be a valid update archive.
    type: bool
    default: true
  retry:
    description: Further attempts after transient failures, 0 to 100.
    type: int
    default: 3
  wait:
    description: Seconds before the first further attempt, doubled after each, 0 to 300.
    type: int
    default: 10
  connect_timeout:
    description: Seconds for each attempt to connect, 1 to 600.
    type: int
    default: 10
  max_time:
    description: Seconds until the trailer, with all attempts and pauses. 0 is unlimited.
    type: int
    default: 3600
  executable:
    description: Name or path of C(ravelink-job).
    type: path
    default: ravelink-job
"""

EXAMPLES = r"""
- name: Update a device from this computer
  ravelink.fleet.update:
    archive: /srv/updates/update.rvl
    address: 10.1.0.17
    name: press07
    ledger: /var/lib/ravelink/ledger
  delegate_to: localhost

- name: Update a device again after a look at it
  ravelink.fleet.update:
    archive: /srv/updates/update.rvl
    address: 10.1.0.17
    name: press07
    ledger: /var/lib/ravelink/ledger
    unfinished: retry
  delegate_to: localhost
"""

RETURN = r"""
changed:
  description: Whether the trailer was begun, so that the device may have installed the update.
  returned: always
  type: bool
outcome:
  description:
    - The outcome of C(ravelink-job), which is C(updated) on success.
    - C(already) if the device has this archive, C(pending) in check mode if it would be updated.
    - C(unfinished) if it was not contacted because its last update may be in progress.
    - C(locked) if another run is updating it.
  returned: always
  type: str
msg:
  description: Device, outcome, reason and advice in one line.
  returned: always
  type: str
reason:
  description: Why the device was not updated. Empty if it was.
  returned: always
  type: str
advice:
  description: What to do next. Empty if nothing.
  returned: always
  type: str
rc:
  description: Exit status of C(ravelink-job).
  returned: if it ran
  type: int
cause:
  description: Cause of the failure, a word for scripts.
  returned: always
  type: str
step:
  description: Last step of the update.
  returned: if C(ravelink-job) ran
  type: str
transient:
  description: Whether another run may succeed.
  returned: always
  type: bool
power_off:
  description: Whether the device may be switched off, C(yes), C(avoid), C(no) or C(must).
  returned: if C(ravelink-job) ran
  type: str
attempts:
  description: Number of attempts.
  returned: if C(ravelink-job) ran
  type: int
duration:
  description: Seconds of the run.
  returned: if C(ravelink-job) ran
  type: float
restart:
  description: The restart that the device announced.
  returned: if C(ravelink-job) ran
  type: str
error:
  description: The last error of C(ravelink-job), with C(title) and C(message).
  returned: if C(ravelink-job) ran
  type: dict
name:
  description: Name of the device.
  returned: always
  type: str
address:
  description: Address of the device.
  returned: always
  type: str
archive:
  description: Path of the archive.
  returned: always
  type: str
sha256:
  description: SHA-256 of the archive.
  returned: if it is known
  type: str
size:
  description: Size of the archive in bytes.
  returned: if C(ravelink-job) measured it
  type: int
crc:
  description: CRC-32 of the archive.
  returned: if C(ravelink-job) measured it
  type: str
log:
  description: Path of the log of the device, in JSON lines.
  returned: always
  type: str
previous:
  description: The entry of the ledger before this run.
  returned: always
  type: dict
"""

import errno
import fcntl
import hashlib
import json
import os
import platform
import re
import time
from collections import namedtuple

from ansible.module_utils.basic import AnsibleModule

ARGUMENTS = {
    "archive": {"type": "path", "required": True},
    "address": {"type": "str", "required": True},
    "name": {"type": "str"},
    "sha256": {"type": "str"},
    "ledger": {"type": "path", "required": True},
    "force": {"type": "bool", "default": False},
    "unfinished": {"type": "str", "choices": ["stop", "retry"], "default": "stop"},
    "check_archive": {"type": "bool", "default": True},
    "retry": {"type": "int", "default": 3},
    "wait": {"type": "int", "default": 10},
    "connect_timeout": {"type": "int", "default": 10},
    "max_time": {"type": "int", "default": 3600},
    "executable": {"type": "path", "default": "ravelink-job"},
}

# Version of the entries of the ledger.
SCHEMA = 1

GOOD_OUTCOMES = ("updated", "already", "pending")

# Words of the message for steps of ravelink-job that need others than their names.
STEPS = {"commandLine": "command line", "waiting": "wait for completion"}


class Problem(Exception):
    """A failure before the device is contacted."""

    def __init__(self, outcome, cause, message):
        super().__init__(message)
        self.outcome = outcome
        self.cause = cause


def unusable(path, error):
    """Returns the problem of a file of the ledger that cannot be used."""
    return Problem("file", "ledgerUnusable", f"the ledger cannot be used: {path}: {error}")


def utc_now():
    return time.strftime("%Y-%m-%dT%H:%M:%SZ", time.gmtime())


def replace_file(path, value):
    """Writes a value as JSON to a file that replaces the one of this path, through to the disk."""
    temporary = f"{path}.{os.getpid()}"
    with open(temporary, "w", encoding="utf-8") as file:
        json.dump(value, file)
        file.write("\n")
        file.flush()
        os.fsync(file.fileno())
    os.rename(temporary, path)


# The archive

Archive = namedtuple("Archive", "identity, sha256")


def identity_of(path):
    """Returns values that change if the file is replaced or written."""
    status = os.stat(path)
    return [status.st_dev, status.st_ino, status.st_size, status.st_mtime_ns, status.st_ctime_ns]


class Digests:
    """The SHA-256 of the archives that this host has sent: many devices need only one pass."""

    def __init__(self, module):
        self.module = module
        # Never the path of an entry, which ends with .json.
        self.path = os.path.join(module.params["ledger"], ".digests")

    def measure(self, path):
        """Returns the archive of this path."""
        try:
            if os.path.exists(path) and not os.path.isfile(path):
                raise Problem("file", "fileUnreadable", f"the archive is not a file: {path}")
            identity = identity_of(path)
            known = self.read()
            entry = known.get(os.path.realpath(path))
            if entry and entry["identity"] == identity:
                return Archive(identity, entry["sha256"])
            digest = self.module.sha256(path)
            if identity_of(path) != identity:
                raise Problem("file", "fileChanged", f"the archive is being written: {path}")
        except OSError as error:
            cause = "fileMissing" if error.errno == errno.ENOENT else "fileUnreadable"
            raise Problem("file", cause, f"the archive cannot be read: {path}: {error.strerror}")
        # A file that is written again within the resolution of its times keeps its identity.
        if not self.module.check_mode and identity[3] < (time.time() - 2) * 1e9:
            known[os.path.realpath(path)] = {"identity": identity, "sha256": digest}
            replace_file(self.path, known)
        return Archive(identity, digest)

    def read(self):
        try:
            with open(self.path, encoding="utf-8") as file:
                return json.load(file)
        except (OSError, ValueError):
            # Only a cache: the archives are measured again.
            return {}


# The ledger

class Ledger:
    """The entry, the lock and the log of one device."""

    def __init__(self, module, name):
        self.check_mode = module.check_mode
        self.directory = module.params["ledger"]
        plain = re.sub(r"[^A-Za-z0-9._-]", "_", name)[:100]
        if plain != name:
            plain += "-" + hashlib.sha256(name.encode("utf-8", "surrogateescape")).hexdigest()[:12]
        self.entry_path = os.path.join(self.directory, plain + ".json")
        self.lock_path = os.path.join(self.directory, plain + ".lock")
        self.log_path = os.path.join(self.directory, plain + ".jsonl")
        self.lock = None

    def open(self):
        """Locks the entry, in check mode only for a moment. Returns whether no other run holds it."""
        try:
            if self.check_mode:
                return self.check()
            os.makedirs(self.directory, exist_ok=True)
            self.lock = os.open(self.lock_path, os.O_RDWR | os.O_CREAT | os.O_CLOEXEC, 0o644)
            # Runs in check mode hold it for a moment.
            deadline = time.monotonic() + 2
            while not self.try_lock(fcntl.LOCK_EX):
                if time.monotonic() > deadline:
                    return False
                time.sleep(0.1)
            return True
        except OSError as error:
            raise unusable(error.filename or self.lock_path, error.strerror)

    def check(self):
        existing = os.path.abspath(self.directory)
        while not os.path.lexists(existing):
            existing = os.path.dirname(existing)
        if not os.path.isdir(existing):
            raise unusable(existing, "it is not a directory")
        if not os.access(existing, os.W_OK | os.X_OK):
            raise unusable(existing, "it is not writable")
        if not os.path.exists(self.lock_path):
            return True
        self.lock = os.open(self.lock_path, os.O_RDONLY | os.O_CLOEXEC)
        free = self.try_lock(fcntl.LOCK_SH)
        os.close(self.lock)
        return free

    def try_lock(self, kind):
        try:
            fcntl.flock(self.lock, kind | fcntl.LOCK_NB)
            return True
        except BlockingIOError:
            return False

    def read(self):
        """Returns the entry, or None. An entry of a run that was killed gets the outcome of its log."""
        try:
            with open(self.entry_path, encoding="utf-8") as file:
                entry = json.load(file)
            if entry["schema"] != SCHEMA:
                raise unusable(self.entry_path, f"its schema {entry['schema']} is unknown")
            if entry["outcome"] == "sending":
                result = result_of(self.events(entry["offset"]))
                entry.update(outcome=result["outcome"], exit=result["exit"],
                             unfinished=is_unfinished(result, entry))
            # An entry without one of these is damaged.
            return {key: entry[key] for key in (
                "schema", "name", "address", "archive", "sha256", "size", "crc", "outcome", "exit",
                "started", "ended", "log", "offset", "unfinished")}
        except FileNotFoundError:
            return None
        except OSError as error:
            raise unusable(self.entry_path, error.strerror)
        except (ValueError, KeyError, TypeError):
            raise unusable(self.entry_path, "it is damaged; look at the device, then remove this file")

    def write(self, entry):
        try:
            replace_file(self.entry_path, entry)
        except OSError as error:
            raise unusable(self.entry_path, error.strerror)

    def log_size(self):
        return os.path.getsize(self.log_path) if os.path.exists(self.log_path) else 0

    def events(self, offset):
        """Returns the events of the log from an offset in bytes."""
        if not os.path.exists(self.log_path):
            return []
        with open(self.log_path, "rb") as file:
            file.seek(offset)
            return parse_events(file.read().decode("utf-8", "replace"))


# ravelink-job

def parse_events(text):
    """Returns the events of JSON lines. A damaged line is skipped: a killed job leaves one."""
    events = []
    for line in text.splitlines():
        try:
            event = json.loads(line)
        except ValueError:
            continue
        if isinstance(event, dict) and "event" in event:
            events.append(event)
    return events


def result_of(events):
    """Returns the event "result" of a run, or one in its place if the run was killed."""
    for event in events:
        if event["event"] == "result":
            return event
    trailer = any(event["event"] == "trailer" for event in events)
    return {"outcome": "unknown" if trailer else "brokenOff", "exit": None, "cause": "killed",
            "step": "trailer" if trailer else "transfer", "trailer": trailer,
            "transient": not trailer, "powerOff": "no" if trailer else "yes"}


def is_unfinished(result, previous):
    """Whether the device may be installing: from a trailer on, until an update is completed."""
    if result["outcome"] == "updated":
        return False
    return result["trailer"] or bool(previous and previous["unfinished"])


def job_options(arguments, log):
    """Returns the options of ravelink-job, without the archive."""
    options = ["--json", "--quiet", f"--log={log}"]
    if arguments["check_archive"]:
        options.append("--check")
    for name in ("address", "name", "retry", "wait", "connect_timeout", "max_time"):
        options.append(f"--{name.replace('_', '-')}={arguments[name]}")
    return options


def find_job(module, arguments, log):
    """Returns the path of ravelink-job, which has accepted the options.

    It gets a command line without an archive, so it ends with an error and contacts no device.
    """
    executable = module.get_bin_path(arguments["executable"])
    if not executable:
        raise Problem("internal", "jobMissing", f"{arguments['executable']} is not installed")
    status, output, errors = module.run_command([executable] + job_options(arguments, log),
                                                handle_exceptions=False)
    found = [event for event in parse_events(output) if event["event"] == "error"]
    if status != 2 or not found:
        raise Problem("internal", "jobMissing", f"{executable} does not run: {errors.strip()}")
    for event in found:
        if event["cause"] != "missingOption":
            raise Problem("usage", event["cause"], f"{event['title']}: {event['message']}")
    return executable


def with_port(address):
    return address if ":" in address else address + ":3007"


class Update:
    """One run of the module."""

    def __init__(self, module):
        self.module = module
        self.arguments = dict(module.params, name=module.params["name"] or module.params["address"])
        self.ledger = Ledger(module, self.arguments["name"])
        self.archive = Archive(None, None)
        self.previous = None

    def run(self):
        try:
            executable = find_job(self.module, self.arguments, self.ledger.log_path)
            if not self.ledger.open():
                self.end("locked", "another run is updating it", cause="locked")
            self.measure()
            self.previous = self.ledger.read()
            self.decide()
            self.send(executable)
        except Problem as problem:
            self.end(problem.outcome, str(problem), cause=problem.cause)
        except OSError as error:
            self.end("internal", str(error), cause="internal")

    def measure(self):
        path, expected = self.arguments["archive"], (self.arguments["sha256"] or "").lower()
        try:
            self.archive = Digests(self.module).measure(path)
        except Problem as problem:
            if not (problem.cause == "fileMissing" and expected and self.module.check_mode):
                raise
            self.archive = Archive(None, expected)
        if expected and expected != self.archive.sha256:
            raise Problem("file", "wrongSha256",
                          f"the archive {path} has the SHA-256 {self.archive.sha256}, not {expected}")

    def decide(self):
        """Ends the run if the device is not to be updated."""
        entry = self.previous
        if entry and not self.arguments["force"]:
            if entry["unfinished"] and self.arguments["unfinished"] != "retry":
                self.end("unfinished", f"its update of {entry['started']} may be in progress",
                         cause="unfinished", power_off="no",
                         advice="do not switch it off, look at it, then unfinished=retry")
            same = (entry["sha256"] == self.archive.sha256
                    and with_port(entry["address"]) == with_port(self.arguments["address"]))
            if entry["outcome"] == "updated" and same:
                self.end("already", f"it has this archive since {entry['ended']}")
        if self.module.check_mode:
            self.end("pending", "", changed=True)

    def send(self, executable):
        arguments, log = self.arguments, self.ledger.log_path
        entry = {"schema": SCHEMA, "name": arguments["name"], "address": arguments["address"],
                 "archive": arguments["archive"], "sha256": self.archive.sha256, "size": None,
                 "crc": None, "outcome": "sending", "exit": None, "started": utc_now(),
                 "ended": None, "log": log, "offset": self.ledger.log_size(),
                 "unfinished": bool(self.previous and self.previous["unfinished"])}
        self.ledger.write(entry)
        # The job inherits the lock, so the device stays locked if the job outlives this module.
        _status, output, _errors = self.module.run_command(
            [executable, f"--origin={arguments['archive']}"] + job_options(arguments, log),
            pass_fds=[self.ledger.lock], handle_exceptions=False)
        events = parse_events(output)
        if not any(event["event"] == "result" for event in events):
            events = self.ledger.events(entry["offset"])
        result = result_of(events)
        if result["trailer"] and self.archive_has_changed():
            # The archive that was measured may not be the one that was sent.
            result.update(outcome="unknown", cause="fileChanged", transient=False)
        entry.update(outcome=result["outcome"], exit=result["exit"], ended=utc_now(),
                     size=result.get("size"), crc=result.get("crc"),
                     unfinished=is_unfinished(result, entry))
        self.ledger.write(entry)
        keys = ("cause", "step", "transient", "attempts", "duration", "restart", "error", "size", "crc")
        self.end(result["outcome"], reason_of(result), figures_of(result),
                 rc=result["exit"], power_off=result["powerOff"], changed=result["trailer"],
                 advice=advise(result, entry["unfinished"]), **{key: result.get(key) for key in keys})

    def archive_has_changed(self):
        try:
            return identity_of(self.arguments["archive"]) != self.archive.identity
        except OSError:
            return True

    def end(self, outcome, reason, figures="", advice="", **values):
        """Exits with these values, as a failure unless the outcome is a good one."""
        name, address = self.arguments["name"], self.arguments["address"]
        step = values.get("step")
        good = outcome in GOOD_OUTCOMES
        message = name if name == address else f"{name} ({address})"
        message += f" {outcome}"
        message += f" at the {STEPS.get(step, step)}" if step and not good else ""
        message += f": {reason}" if reason else ""
        message += f" ({figures})" if figures else ""
        message += f"; {advice}" if advice else ""
        message += f"; log: {self.ledger.log_path} on {platform.node()}" if step and not good else ""
        values = {"changed": False, "cause": None, "transient": False, **values,
                  "outcome": outcome, "reason": reason, "advice": advice, "msg": message,
                  "name": name, "address": address, "archive": self.arguments["archive"],
                  "sha256": self.archive.sha256, "log": self.ledger.log_path,
                  "previous": self.previous}
        if self.module._diff:
            values["diff"] = self.diff("updated" if outcome == "pending" else outcome, values["changed"])
        if good:
            self.module.exit_json(**values)
        self.module.fail_json(**values)

    def diff(self, outcome, changed):
        entry = self.previous
        before = f"{entry['sha256']} {entry['outcome']}\n" if entry else ""
        after = f"{self.archive.sha256} {outcome}\n" if changed else before
        path = self.ledger.entry_path
        return {"before": before, "after": after, "before_header": path, "after_header": path}


def reason_of(result):
    """Returns why a run has failed."""
    return result["error"]["title"] if result.get("error") else result["cause"] or ""


def figures_of(result):
    """Returns the exit status, the attempts and the minutes and seconds of a run."""
    if "duration" not in result:
        return ""
    attempts = result["attempts"]
    minutes, seconds = divmod(int(result["duration"]), 60)
    return (f"exit {result['exit']}, {attempts} attempt{'' if attempts == 1 else 's'}, "
            f"{minutes}:{seconds:02}")


def advise(result, unfinished):
    """Returns what to do next with the device, or an empty string."""
    if result["outcome"] == "updated":
        return "switch it off and on" if result["powerOff"] == "must" else ""
    if unfinished:
        words = {"no": "do not switch it off, ", "avoid": "avoid switching it off, "}
        return f"{words.get(result['powerOff'], '')}look at it, then unfinished=retry"
    return "may be tried again" if result["transient"] else result["advice"].rstrip(".")


def main():
    Update(AnsibleModule(argument_spec=ARGUMENTS, supports_check_mode=True)).run()


if __name__ == "__main__":
    main()
