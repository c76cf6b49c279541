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
        pages = 0
        for process in processes:
            try:
                with open(f"/proc/{process}/statm") as file:
                    pages += int(file.read().split()[1])
            except (FileNotFoundError, ProcessLookupError):
                pass  # has ended just now
        return pages * os.sysconf("SC_PAGE_SIZE") / 2**20

    def test_flood(self):
        self.system.start_polkit()
        self.start_daemon()
        self.assertEqual(self.caller().save(xml(preferences(Schedule_Array=[]))), ("", ""))
        flood = self.system.start([sys.executable, f"{os.path.dirname(__file__)}/flood.py", self.file], user=NOBODY,
                                  stdout=subprocess.PIPE)
        self.assertEqual(read_line(flood, 60), "flooding")
        administrator = self.caller()
        administrator.begin(xml(preferences(Check_Updates=0)))
        memory, pings = [], []
        deadline = time.monotonic() + SECONDS
        while time.monotonic() < deadline:
            pings.append(self.probe("ping"))
            memory += (self.memory() for _ in range(20))
        self.assertEqual(administrator.result(60), ("", ""))
        self.assertIsNone(flood.poll())
        self.system.end(flood)
        seconds = sorted(seconds if alive else 1 for alive, seconds in pings)
        print(f"At most {max(memory):.0f} MiB; {len(pings)} pings, median {seconds[len(pings) // 2] * 1000:.0f} ms, "
              f"worst {seconds[-1] * 1000:.0f} ms")
        # The bus carries all that is sent, and is slow itself by then; the daemon must add nothing to speak of.
        self.assertLess(seconds[len(pings) // 2], 0.25)
        if not SANITIZED:
            self.assertLess(max(memory), 64)
            wait_until(lambda: self.memory() < 20, "memory is given back", 60)


main()
