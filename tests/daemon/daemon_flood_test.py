#!/usr/bin/env python3
"""Strangers who send whatever they can neither fill the daemon's memory nor keep it from answering."""
import os
import subprocess
import sys
import time

from daemon_case import HERE, NOBODY, DaemonCase, main, preferences, xml
from private_system import read_line, wait_until

RECEIVER = os.path.abspath(sys.argv[3])
SANITIZED = len(sys.argv) > 4
SECONDS = 10
REFUSER = "com.quorel.Test"


class FloodTest(DaemonCase):
    policy = f"""<policy context="default"><allow own="{REFUSER}"/><allow send_destination="{REFUSER}"/></policy>"""

    def ping(self, name):
        """In how many seconds it answers."""
        started = time.monotonic()
        self.assertTrue(self.bus.call_blocking(name, "/com/quorel/Communication", "com.quorel.Communication1", "Ping", "",
                                               (), timeout=60))
        return time.monotonic() - started

    def memory(self):
        """In MiB, of the daemon and the process that reads lists for it."""
        with open(f"/proc/{self.daemon.pid}/task/{self.daemon.pid}/children") as file:
            processes = (self.daemon.pid, *map(int, file.read().split()))
        kibibytes = 0
        for process in processes:
            try:
                with open(f"/proc/{process}/smaps_rollup") as file:
                    # What both have, as the message that is being read, counts once.
                    kibibytes += sum(int(line.split()[1]) for line in file if line.startswith("Pss:"))
            except (FileNotFoundError, ProcessLookupError):
                pass  # has ended just now
        return kibibytes / 1024

    def test_flood(self):
        self.system.start_polkit()
        self.start_daemon()
        refuser = self.system.start([RECEIVER, "system", REFUSER], stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        self.assertEqual(read_line(refuser), "ready")
        self.bus = self.system.connect()
        self.addCleanup(self.bus.close)
        self.assertEqual(self.caller().save(xml(preferences(Schedule_Array=[]))), ("", ""))
        flood = self.system.start([sys.executable, f"{HERE}/flood.py", "lists", self.file], user=NOBODY,
                                  stdout=subprocess.PIPE)
        self.assertEqual(read_line(flood), "flooding")
        administrator = self.caller()
        administrator.begin(xml(preferences(Check_Updates=0)))
        memory, pings = [], {"com.quorel.Daemon": [], REFUSER: []}
        deadline = time.monotonic() + SECONDS
        while time.monotonic() < deadline:
            for name, seconds in pings.items():
                seconds.append(self.ping(name))
                memory += (self.memory() for _ in range(5))
        self.assertEqual(administrator.result(), ("", ""))
        self.assertIsNone(flood.poll())
        self.system.end(flood)
        ours, refusals = (sum(seconds) / len(seconds) for seconds in pings.values())
        print(f"At most {max(memory):.0f} MiB; {len(pings[REFUSER])} pings of each, {ours * 1000:.0f} ms on average, "
              f"{refusals * 1000:.0f} ms of a program that only refuses")
        # The bus carries all that is sent, and is slow itself by then; the daemon must add nothing to speak of, though its
        # turns come late where the processors have other work: 3.5 times as long was seen, reading on the loop takes
        # seconds.
        self.assertLess(ours, 6 * refusals)
        if not SANITIZED:
            self.assertLess(max(memory), 64)
            wait_until(lambda: self.memory() < 20, "memory is given back")


main()
