#!/usr/bin/env python3
"""CPU time of importing a plan, storing included: import_cost.py QUORELCTL QUOREL-DAEMON MODULES FOLDER-OF-MODULES

On a private bus. Each of twenty imports replaces all 2,500 Schedules. Prints the mean of the client's CPU time, user and
system together, and of the daemon's with the processes that read and store for it.
"""
import glob
import os
import resource
import shutil
import subprocess
import sys

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "../harness"))
from private_system import PrivateSystem

ROUNDS = 20
SCHEDULES = 2500
QUORELCTL, DAEMON, MODULES, FOLDER = sys.argv[1:5]


def plan(hours):
    return "".join(f"wake-up {(hours + number // 60) % 24}:{number % 60:02} mon-fri\n" for number in range(SCHEDULES))


def spent(process):
    """By it and its children that have ended, in seconds."""
    with open(f"/proc/{process.pid}/stat", encoding="ascii") as file:
        return sum(map(int, file.read().rsplit(")", 1)[1].split()[11:15])) / os.sysconf("SC_CLK_TCK")


def children():
    usage = resource.getrusage(resource.RUSAGE_CHILDREN)
    return usage.ru_utime + usage.ru_stime


system = PrivateSystem()
try:
    root = f"{system.place}/root"
    os.makedirs(f"{root}/Library/Preferences")
    for description in glob.glob(f"{MODULES}/*/Info-gnustep.plist"):
        resources = f"{root}{FOLDER}/{os.path.basename(os.path.dirname(description))}.vxplugin/Resources"
        os.makedirs(resources)
        shutil.copy(description, resources)
    daemon = system.start_daemon(DAEMON, root, stderr=subprocess.DEVNULL)
    client, before = [], spent(daemon)
    for number in range(ROUNDS):
        with open(f"{system.place}/plan", "w", encoding="ascii") as file:
            file.write(plan(number))
        start = children()
        subprocess.run([QUORELCTL, f"--root={root}", "import", file.name], env=system.environment(), check=True,
                       stdout=subprocess.DEVNULL)
        client.append(children() - start)
    size = os.path.getsize(f"{root}/Library/Preferences/com.quorel.plist")
    print(f"{SCHEDULES} Schedules, {size / 1e6:.1f} MB: quorelctl {sum(client) / ROUNDS * 1000:.0f} ms"
          f" ({min(client) * 1000:.0f} to {max(client) * 1000:.0f}), the daemon {(spent(daemon) - before) / ROUNDS * 1000:.0f} ms")
finally:
    system.close()
