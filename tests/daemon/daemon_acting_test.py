#!/usr/bin/env python3
"""What the daemon does with Schedules: daemon_acting_test.py DAEMON PROBE STEPPING_DAEMON"""
import os
import signal
import subprocess
import sys
import time

from acting_case import ActingCase, instant
from daemon_case import DAEMON, HERE, NOBODY, main
from private_system import read_line
from schedules import SHUT_DOWN, SLEEP, WAKE_UP, schedule

ALICES_LOCK = [["sleep", "Upgrades", "installing\x1b[31m", "block"]]
ERROR = "org.freedesktop.login1."


class ActingTest(ActingCase):
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
        in_use = [{"Name": "bob\n", "TTY": "tty3", "Type": "tty", "Class": "user-early"},
                  {"Name": "carol", "Class": "user-incomplete"}]
        idle = [{"Type": "tty", "IdleSinceHint": (instant("23:15") - 3600) * 1_000_000}]
        for changes, cure, patience, words, parameters in (
                ({"inhibitors": ALICES_LOCK}, {"inhibitors": []}, "23:45", "Upgrades: installing\ufffd[31m", {}),
                ({"scheduled": ["reboot", 5]}, {"scheduled": ["", 0]}, "23:45", "a shut-down is planned (reboot)", {}),
                ({"sessions": in_use}, {"sessions": idle}, "35:15", "in use by bob\ufffd (tty3), as far as can be told",
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

    def test_sleeps_whatever_strangers_send(self):
        self.system.start_polkit()
        self.begin(schedule(SLEEP, "23:15"), schedule(SLEEP, "23:45"))
        bus = self.system.connect()
        self.addCleanup(bus.close)
        scheduler = bus.get_object("com.quorel.Daemon", "/com/quorel/Scheduler")
        token = scheduler.Upcoming(2, dbus_interface="com.quorel.Scheduler1")[1]["Token"]
        for manner, minute, before, outcomes in (("calls", "23:15", "23:14", 1), ("reads", "23:45", "23:44", 2)):
            flood = self.system.start([sys.executable, f"{HERE}/flood.py", manner, token], user=NOBODY,
                                      stdout=subprocess.PIPE)
            self.assertEqual(read_line(flood), "flooding")
            self.daemon.send_signal(signal.SIGSTOP)  # as on a computer that is busy with something else
            time.sleep(1)
            self.daemon.send_signal(signal.SIGCONT)
            self.reach(before, "warned")
            self.move_to(minute)
            self.wait_for(lambda: self.outcomes() == ["slept"] * outcomes, "it has slept")
            self.system.end(flood)
        self.assertIsNone(self.daemon.poll())

    def test_sleeps_in_its_own_way_or_not_at_all(self):
        self.begin(schedule(SLEEP, "23:15", Kind="hibernate"), schedule(SLEEP, "23:30", Kind="system"))
        self.hear("schedule 2 (Sleep) does not run: this computer does not have that kind of sleep")
        self.sleep_at_its_minute()
        self.last("slept")
        self.move_to("23:30")
        self.last("refused", Reason="kind-denied")
        self.assertEqual(self.calls("Hibernate") + self.calls("Suspend"), ["Hibernate 1"])

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

    def test_touches_nothing_below_a_folder_of_its_own(self):
        """The program itself, which has no clocks of the test's: what it would ask for at once, it has not asked for."""
        self.start_logind()
        self.daemon = self.system.start_daemon(DAEMON, self.root, log="daemon.log")
        self.save(schedule(SLEEP, "23:15"))
        self.hear("Alarms may not be set in time before sleep")
        self.assertEqual((self.own_locks(), self.script()["calls"]), ([], []))
        status = self.system.connect("system").call_blocking("com.quorel.Daemon", "/com/quorel/Scheduler",
                                                             "com.quorel.Scheduler1", "Status", "", ())
        self.assertEqual((status["Acts"], status["WakeAlarm"]["Fault"], status["Wake Alarm"]["Fault"]), (0, "off", "off"))

    def test_hung_logind(self):
        self.begin(schedule(SLEEP, "23:15"))
        self.logind_process.send_signal(signal.SIGSTOP)
        self.reach("23:14", "looking")
        self.reach("23:14:30", "waiting")
        self.assertTrue(self.probe()[0])

        def gives_up():
            self.write_clocks(*(clock + 30_000 for clock in self.read_clocks()))
            return self.outcomes()
        self.wait_for(gives_up, "it gives up")
        self.last("gave-up", Hold="unknown", Why="no-answer")
        self.logind_process.send_signal(signal.SIGCONT)
        self.assertEqual(self.calls("Suspend"), [])

    # Wake-up, shut-down, saving, restarts.

    def test_keeps_awake_after_a_wake_up(self):
        self.begin(schedule(WAKE_UP, "23:15"))
        self.move_to("23:15")
        self.last("awake-already")
        self.wait_for(lambda: "idle" in self.own_locks(), "it is kept awake")
        self.move_to("23:25")
        self.wait_for(lambda: "idle" not in self.own_locks(), "it may fall asleep")

    def test_stays_awake_until_its_time(self):
        self.begin(schedule("com.quorel.plugin.StayAwake", "23:15", Until="23:40"))
        self.reach("23:15", "running")
        self.wait_for(lambda: "idle" in self.own_locks(), "it stays awake")
        bus = self.system.connect()
        self.addCleanup(bus.close)
        scheduler = bus.get_object("com.quorel.Daemon", "/com/quorel/Scheduler")
        self.assertEqual(scheduler.Upcoming(1, dbus_interface="com.quorel.Scheduler1")[0]["Until"], instant("23:40"))
        self.move_to("23:40")
        self.last("kept-awake", Until=instant("23:40"))
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
        self.move_to("23:18")
        self.last("slept")
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
