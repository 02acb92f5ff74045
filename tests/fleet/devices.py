"""Fleets of simulated devices."""

import re
import signal
from collections import Counter
from contextlib import contextmanager

import pytest

from conftest import SOURCE, wait_until


class Fleet:
    """Simulated devices, each of which accepts one update after another."""

    def __init__(self, start):
        self._start = start
        self._processes = []

    def add(self, count=1, scenario=None, address="127.0.0.1:0"):
        """Starts devices in one process and returns their addresses. A scenario is an example's name
        or a path."""
        options = ["-s", str(SOURCE / "examples/scenarios" / f"{scenario}.conf")] if scenario else []
        self._processes.append(self._start("-n", str(count), *options, count=count, once=False,
                                           address=address))
        return self._processes[-1].addresses

    def replace(self, address, scenario=None):
        """Stops the process of a device and starts a single device at its address."""
        old = [each for each in self._processes if each.addresses == [address]][-1]
        old.process.kill()
        old.wait()
        self.add(1, scenario, address)

    @contextmanager
    def frozen(self, text):
        """Stops the last process when its log contains the text, and lets it go on afterwards."""
        process = self._processes[-1]
        wait_until(lambda: text in "".join(process.lines))
        process.process.send_signal(signal.SIGSTOP)
        yield
        process.process.send_signal(signal.SIGCONT)

    @property
    def connections(self):
        """The number of connections to each address so far; 0 for unknown addresses."""
        counts = Counter()
        for process in self._processes:
            log = "\n".join(process.lines)
            addresses = dict(re.findall(r"^(.*)- Listening on: (.*)", log, re.M))
            counts.update(addresses[prefix]
                          for prefix in re.findall(r"^(.*)- Connection from: ", log, re.M))
        return counts


@pytest.fixture
def fleet(device):
    return Fleet(device)
