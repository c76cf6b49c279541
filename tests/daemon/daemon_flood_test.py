#!/usr/bin/env python3
"""Strangers who send whatever they can neither fill the daemon's memory nor keep it from answering."""
import os
import subprocess
import sys
import time

from daemon_case import NOBODY, SANITIZED, DaemonCase, main, preferences, xml
from private_system import read_line, wait_until

SECONDS = 10


class FloodTest(DaemonCase):
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
        self.assertEqual(self.caller().save(xml(preferences(Schedule_Array=[]))), ("", ""))
        flood = self.system.start([sys.executable, f"{os.path.dirname(__file__)}/flood.py", "lists", self.file], user=NOBODY,
                                  stdout=subprocess.PIPE)
        self.assertEqual(read_line(flood), "flooding")
        administrator = self.caller()
        administrator.begin(xml(preferences(Check_Updates=0)))
        memory, pings = [], []
        deadline = time.monotonic() + SECONDS
        while time.monotonic() < deadline:
            pings.append(self.probe())
            memory += (self.memory() for _ in range(10))
        self.assertEqual(administrator.result(), ("", ""))
        self.assertIsNone(flood.poll())
        self.system.end(flood)
        seconds = sorted(seconds if alive else 1 for alive, seconds in pings)
        print(f"At most {max(memory):.0f} MiB; {len(pings)} pings, median {seconds[len(pings) // 2] * 1000:.0f} ms, "
              f"worst {seconds[-1] * 1000:.0f} ms")
        # The bus carries all that is sent, and is slow itself by then; the daemon must add nothing to speak of.
        self.assertLess(seconds[len(pings) // 2], 0.25)
        if not SANITIZED:
            self.assertLess(max(memory), 64)
            wait_until(lambda: self.memory() < 20, "memory is given back")


main()
