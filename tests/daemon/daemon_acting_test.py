#!/usr/bin/env python3
"""What the daemon does with Schedules: daemon_acting_test.py DAEMON PROBE STEPPING_DAEMON

A stand-in plays logind, and the clocks stand still until they are moved here. It is Monday, 1 March 2027.
"""
import calendar
import json
import os
import plistlib
import sys

import dbus

from daemon_case import SUPPORT, DaemonCase, main, preferences, xml
from private_system import wait_until

STEPPING_DAEMON = os.path.abspath(sys.argv[3])
POLICY = """
  <policy user="root"><allow own="org.freedesktop.login1"/></policy>
  <policy context="default"><allow send_destination="org.freedesktop.login1"/></policy>"""
SLEEP, WAKE_UP, SHUT_DOWN = (f"com.quorel.plugin.{name}" for name in ("Sleep", "WakeUp", "ShutDown"))
ALICES_LOCK = [["sleep", "Upgrades", "installing\x1b[31m", "block"]]
ERROR = "org.freedesktop.login1."


def instant(time):
    """Of a time of that Monday, in seconds."""
    hour, minute, second = map(int, f"{time}:0".split(":")[:3])
    return calendar.timegm((2027, 3, 1, hour, minute, second))


def schedule(action, time, **parameters):
    hour, minute = time.split(":")
    return {"Is Enabled": 1, "Action Type": action, "Action Hour": hour, "Action Minute": minute,
            "Active On Monday": True, "Action Parameters": {key.replace("_", " "): parameters[key] for key in parameters}}


class ActingTest(DaemonCase):
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
        self.daemon = self.system.start([STEPPING_DAEMON, self.clocks, self.root], name="com.quorel.Daemon",
                                        log="daemon.log")
        if self.logind:
            self.wait_for(lambda: "sleep:shutdown" in self.own_locks(), "the daemon holds sleep up for a moment")

    def begin(self, *schedules, **script):
        self.start_logind(**script)
        self.start_daemon()
        self.save(*schedules)

    def save(self, *schedules):
        self.assertEqual(self.caller().save(xml(preferences(Schedule_Array=list(schedules)))), ("", ""))

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

    # Sleep.

    def sleep_at_its_minute(self):
        self.reach("23:14", "warned")
        self.move_to("23:14:59")
        self.assertEqual(self.calls("Suspend"), [])
        self.move_to("23:15")

    def test_sleeps_at_its_minute(self):
        self.begin(schedule(SLEEP, "23:15"))
        self.sleep_at_its_minute()
        self.last("slept", Until=instant("23:16"))
        self.assertEqual(self.calls("Suspend"), ["Suspend 1"])
        self.wait_for(lambda: self.own_locks() == ["sleep:shutdown"], "the lock is taken again")
        self.hear("Sleep of Mon 2027-03-01 23:15: slept until Mon 2027-03-01 23:16")

    def test_waits_for_what_speaks_against_it(self):
        in_use = [{"Name": "bob\n", "TTY": "tty3", "Type": "tty"}]
        idle = [{"Type": "tty", "IdleSinceHint": (instant("23:15") - 3600) * 1_000_000}]
        for changes, cure, patience, words, parameters in (
                ({"inhibitors": ALICES_LOCK}, {"inhibitors": []}, "23:45", "Upgrades: installing\ufffd[31m", {}),
                ({"scheduled": ["reboot", 5]}, {"scheduled": ["", 0]}, "23:45", "a shut-down is planned (reboot)", {}),
                ({"sessions": in_use}, {"sessions": idle}, "35:15", "in use by bob\ufffd (tty3)",
                 {"Only_When_Idle": 1})):
            for ends in (True, False):
                with self.subTest(words, ends=ends):
                    self.setUp()
                    self.begin(schedule(SLEEP, "23:15", **parameters), **changes)
                    self.reach("23:14", "waiting")
                    if ends:
                        self.script(**cure)
                        self.reach("23:15", "warned")
                        self.move_to("23:16")
                        self.last("slept")
                    else:
                        self.move_to(patience)
                        self.last("gave-up")
                        self.hear("not put to sleep: ")
                        self.hear(f"{words} (waited ")
                    self.assertEqual(self.calls("Suspend"), ["Suspend 1"] if ends else [])

    def test_takes_no_for_an_answer(self):
        for script, times, outcome, arguments in (
                ({"error": ERROR + "OperationInProgress"}, 1, "overtaken", {"By": "other"}),
                ({"error": ERROR + "BlockedByInhibitorLock"}, 2, "refused", {"Reason": "The script says so."}),
                ({"error": "org.freedesktop.DBus.Error.AccessDenied"}, 2, "refused", {"Reason": "The script says so."}),
                ({"slept": 0}, 2, "refused", {"Reason": "stayed-awake"})):
            with self.subTest(script):
                self.setUp()
                self.begin(schedule(SLEEP, "23:15"), **script)
                self.sleep_at_its_minute()
                self.last(outcome, **arguments)
                self.assertEqual(self.calls("Suspend"), ["Suspend 1"] * times)

    def test_without_logind(self):
        self.start_daemon()
        self.save(schedule(SLEEP, "23:15"))
        self.reach("23:14", "waiting")
        self.move_to("23:46")
        self.last("gave-up", Hold="unknown")
        self.start_logind()
        self.wait_for(lambda: self.own_locks() == ["sleep:shutdown"], "a lock of the logind that has come")

    # Wake-up, shut-down, saving, restarts.

    def test_keeps_awake_after_a_wake_up(self):
        self.begin(schedule(WAKE_UP, "23:15"))
        self.move_to("23:15")
        self.last("awake-already")
        self.wait_for(lambda: "idle" in self.own_locks(), "it is kept awake")
        self.move_to("23:25")
        self.wait_for(lambda: "idle" not in self.own_locks(), "it may fall asleep")

    def test_shuts_down(self):
        for parameters, call, words in (({}, "PowerOff", ": shut down"), ({"Restart": 1}, "Reboot", ": restarted")):
            with self.subTest(call):
                self.setUp()
                self.begin(schedule(SHUT_DOWN, "23:15", **parameters))
                self.reach("23:14", "warned")
                self.move_to("23:15")
                self.last("shut-down")
                self.assertEqual(self.calls(call), [f"{call} 1"])
                self.hear(words)

    def test_arms_the_hardware_clock(self):
        os.makedirs(self.rtc)
        shown = instant("23:10") + 3600  # in local time, an hour ahead
        for name, content in (("since_epoch", f"{shown}\n"), ("wakealarm", "")):
            with open(f"{self.rtc}/{name}", "w") as file:
                file.write(content)

        def alarm():
            with open(f"{self.rtc}/wakealarm") as file:
                return int(file.read() or 0)

        self.begin({**schedule(WAKE_UP, "23:50", Needs_Startup=1)}, schedule(SLEEP, "23:15"), comes_back=False)
        at = shown + 40 * 60 - 120  # in time for 23:50
        self.wait_for(lambda: alarm() == at, "armed when saved")
        self.sleep_at_its_minute()
        self.wait_for(lambda: self.calls("slept"), "it sleeps")
        self.assertEqual(alarm(), 0)
        self.move_to("23:17")
        self.wait_for(alarm, "armed again")

    def test_goes_on_after_a_restart(self):
        self.begin(schedule(SLEEP, "23:15"), inhibitors=ALICES_LOCK)
        self.reach("23:14", "waiting")
        self.system.end(self.daemon)
        self.start_daemon()
        self.assertEqual(self.steps(), ["waiting"])
        self.save()
        self.last("withdrawn")
        self.system.end(self.daemon)
        with open(self.state_file, "wb") as file:
            file.write(b"damage")
        self.start_daemon()
        self.hear("what was stored about the schedules could not be read")
        self.last("state-lost")


main()
