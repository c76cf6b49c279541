"""What tests of Schedules that are carried out share: a stand-in for logind, and clocks that stand still until they are
moved here: ..._test.py DAEMON PROBE STEPPING_DAEMON. It is Monday, 1 March 2027.
"""
import calendar
import json
import os
import plistlib
import sys

import dbus

from daemon_case import SUPPORT, DaemonCase, preferences, xml
from private_system import wait_until

STEPPING_DAEMON = os.path.abspath(sys.argv[3])
POLICY = """
  <policy user="root"><allow own="org.freedesktop.login1"/></policy>
  <policy context="default"><allow send_destination="org.freedesktop.login1"/></policy>"""


def instant(time):
    """Of a time of that Monday, in seconds."""
    hour, minute, second = map(int, f"{time}:0".split(":")[:3])
    return calendar.timegm((2027, 3, 1, hour, minute, second))


class ActingCase(DaemonCase):
    policy = POLICY

    def setUp(self):
        super().setUp()
        os.environ["TZ"] = "UTC"
        self.clocks = f"{self.system.place}/clocks"
        self.rtc = f"{self.root}/sys/class/rtc/rtc0"
        self.state_file = f"{self.root}/var/lib/quorel/state.plist"
        self.write_clocks(instant("23:10") * 1000, 5_000_000, 5_000_000)
        self.logind = None

    # The surroundings.

    def write_clocks(self, *clocks):
        with open(f"{self.clocks}.new", "w") as file:
            file.write(" ".join(map(str, clocks)))
        os.rename(f"{self.clocks}.new", self.clocks)

    def read_clocks(self):
        with open(self.clocks) as file:
            return tuple(map(int, file.read().split()))

    def move_to(self, time):
        """The computer is awake meanwhile."""
        wall, boot, awake = self.read_clocks()
        by = instant(time) * 1000 - wall
        self.write_clocks(wall + by, boot + by, awake + by)

    def start_logind(self, **script):
        program = [sys.executable, f"{SUPPORT}/logind.py", self.clocks]
        self.logind_process = self.system.start(program, name="org.freedesktop.login1")
        bus = self.system.connect()
        self.addCleanup(bus.close)
        self.logind = dbus.Interface(bus.get_object("org.freedesktop.login1", "/org/freedesktop/login1"),
                                     "com.quorel.Test")
        self.script(**script)

    def script(self, **changes):
        """What it was asked, and which locks are held."""
        return json.loads(self.logind.Script(json.dumps({key.replace("_", " "): changes[key] for key in changes})))

    def calls(self, name):
        return [call for call in self.script()["calls"] if call.startswith(name)]

    def own_locks(self):
        return [lock[0] for lock in self.script()["locks"]]

    def start_daemon(self):
        program = ["prlimit", "--nofile=1024", STEPPING_DAEMON, self.clocks, self.root]  # what a service is given
        self.daemon = self.system.start(program, name="com.quorel.Daemon", log="daemon.log")
        if self.logind:
            self.wait_for(lambda: "sleep:shutdown" in self.own_locks(), "the daemon holds sleep up for a moment")

    def begin(self, *schedules, **script):
        self.start_logind(**script)
        self.start_daemon()
        self.save(*schedules)

    def save(self, *schedules):
        caller = self.caller()
        self.assertEqual(caller.save(xml(preferences(Schedule_Array=list(schedules)))), ("", ""))
        # What is stored is taken over before anything else is answered; only then may the clocks move.
        caller.call("/com/quorel/Scheduler", "com.quorel.Scheduler1", "Status", "")

    # What there is to see.

    def wait_for(self, condition, what):
        try:
            return wait_until(condition, what)
        except TimeoutError as error:
            raise AssertionError(f"{error}; the log: {self.logged()}") from None

    def state(self):
        with open(self.state_file, "rb") as file:
            return plistlib.load(file)

    def steps(self):
        return [open_one["Step"] for open_one in self.state()["Open"]]

    def outcomes(self):
        return [outcome["Code"] for outcome in self.state()["Outcomes"]]

    def reach(self, time, step):
        self.move_to(time)
        self.wait_for(lambda: self.steps() == [step], f"{step} at {time}")

    def hear(self, words):
        self.wait_for(lambda: words in self.logged(), words)

    def last(self, code, **arguments):
        """Waits for this outcome to be the last."""
        self.wait_for(lambda: self.outcomes()[-1:] == [code], code)
        found = self.state()["Outcomes"][-1]["Arguments"]
        self.assertEqual({key: found[key] for key in arguments}, arguments)
        self.assertEqual(self.steps(), [])
