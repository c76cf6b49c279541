#!/usr/bin/env python3
"""CPU time and memory of starting programs with a window: start_time.py COMMAND COMMAND...

Starts each in turn, nine times over, lets it be for some seconds, and ends it. Prints the median of the CPU time of user
and system together, the range, and the resident memory at its end, of which what is its own.
"""
import os
import shlex
import signal
import statistics
import subprocess
import sys
import time

ROUNDS = 9
SECONDS = 5  # until it has drawn its window and heard from whom it asked


def memory(process, key):
    with open(f"/proc/{process}/smaps_rollup", encoding="ascii") as file:
        return sum(int(line.split()[1]) for line in file if line.startswith(key)) / 1024


def start(command):
    process = subprocess.Popen(shlex.split(command), stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    time.sleep(SECONDS)
    resident, own = memory(process.pid, "Rss:"), memory(process.pid, "Private_")
    process.send_signal(signal.SIGTERM)
    _, _, usage = os.wait4(process.pid, 0)
    return usage.ru_utime + usage.ru_stime, resident, own


measured = {command: [] for command in sys.argv[1:]}
for _ in range(ROUNDS):
    for command, results in measured.items():
        results.append(start(command))
for command, results in measured.items():
    times, resident, own = zip(*results)
    print(f"{statistics.median(times):.3f} s ({min(times):.3f} to {max(times):.3f}), {statistics.median(resident):.1f} MiB"
          f" resident, {statistics.median(own):.1f} MiB its own: {command}")
