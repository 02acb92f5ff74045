# GNU General Public License v3.0 or later, as the classes of Ansible that this imports
# SPDX-License-Identifier: GPL-3.0-or-later

DOCUMENTATION = r"""
name: report
type: aggregate
short_description: Reports a rollout by device
version_added: 1.0.0
author: ravelink maintainers (@ravelink)
description:
  - At the end of a playbook, also of one that was aborted, lists each device of the group
    C(ravelink_devices) that failed or needs something, with what to do next, and with C(-v) the others
    too.
  - If the variable C(RAVELINK_REPORT) is set, writes the same as JSON to that file.
requirements:
  - enabling in the configuration, C(callbacks_enabled = ravelink.fleet.report)
options:
  report:
    description: The file to write.
    type: path
    env:
      - name: RAVELINK_REPORT
"""

import json
import os
from collections import Counter

from ansible import context
from ansible.plugins.callback import CallbackBase

MODULE = "ravelink.fleet.update"
GOOD = ("updated", "already", "pending")
NOT_TRIED = "not tried"


class CallbackModule(CallbackBase):
    CALLBACK_VERSION = 2.0
    CALLBACK_TYPE = "aggregate"
    CALLBACK_NAME = "ravelink.fleet.report"
    CALLBACK_NEEDS_ENABLED = True

    def __init__(self):
        super().__init__()
        # The last result of each device by its name, in the order of the inventory.
        self.devices = {}

    def v2_playbook_on_play_start(self, play):
        variables = play.get_variable_manager().get_vars(play=play)
        devices = set(variables["groups"].get("ravelink_devices", []))
        for name in variables["ansible_play_hosts_all"]:
            if name in devices:
                self.devices.setdefault(name, {"outcome": NOT_TRIED})

    def v2_runner_on_ok(self, result):
        self.note(result, "")

    def v2_runner_on_failed(self, result, ignore_errors=False):
        self.note(result, "error")

    def v2_runner_on_unreachable(self, result):
        self.note(result, "unreachable")

    def note(self, result, failure):
        """Keeps what a result means for its device. failure names a bad one that has no outcome."""
        device = self.devices.get(result._host.get_name())
        if device is None:
            return
        values = result._result
        if result._task.resolved_action == MODULE:
            device.clear()
            device.update(outcome=failure or "error", msg=values.get("msg", ""))
            if "outcome" in values:
                device.update(values)
            if device["outcome"] == "pending" and not context.CLIARGS["check"]:
                device["outcome"] = NOT_TRIED
        elif failure and device["outcome"] == "updated":
            device.update(outcome="afterFailed", reason=values.get("msg", ""))

    def v2_playbook_on_stats(self, stats):
        if not self.devices:
            return
        known = next((device for device in self.devices.values() if device.get("sha256")), {})
        counts = Counter(device["outcome"] for device in self.devices.values())
        order = [*GOOD, *sorted(set(counts) - {*GOOD, NOT_TRIED}), NOT_TRIED]
        text = ", ".join(f"{counts[outcome]} {outcome}" for outcome in order if counts[outcome])
        archive = f"{os.path.basename(known['archive'])} {known['sha256'][:12]}: " if known else ""
        self._display.display(f"RAVELINK REPORT  {archive}{text}")
        for name, device in self.devices.items():
            quiet = device["outcome"] in (*GOOD, NOT_TRIED) and not device.get("advice")
            if not quiet or self._display.verbosity > 0:
                self._display.display(self.line(name, device))
        path = self.get_option("report")
        if path:
            self.write(path, known, counts)

    @staticmethod
    def line(name, device):
        parts = [name, device["outcome"], device.get("address"), device.get("reason", device.get("msg"))]
        advice = device.get("advice", "").replace("unfinished=", "ravelink_unfinished=")
        return "  " + "  ".join(part for part in parts if part) + (f"; {advice}" if advice else "")

    def write(self, path, known, counts):
        keys = ("address", "outcome", "msg", "reason", "advice", "cause", "step", "transient", "power_off",
                "attempts", "duration", "restart", "log")
        report = {
            "schema": 1, "archive": known.get("archive"), "sha256": known.get("sha256"), "counts": counts,
            "devices": [{"name": name, **{key: device.get(key) for key in keys}}
                        for name, device in self.devices.items()]}
        try:
            with open(path, "w", encoding="utf-8") as file:
                json.dump(report, file, indent=2)
                file.write("\n")
        except OSError as error:
            self._display.warning(f"The report cannot be written: {error}")
