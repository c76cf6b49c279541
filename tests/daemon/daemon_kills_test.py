#!/usr/bin/env python3
"""A daemon that is killed, in the middle of a save and of a step of a Schedule: daemon_kills_test.py DAEMON PROBE
STEPPING_DAEMON. QUOREL_KILLS is how many of each there are.
"""
import calendar
import os
import random
import signal
import time

from acting_case import ActingCase, instant
from daemon_case import DAEMON, main, preferences, xml
from private_system import SECONDS, wait_until
from schedules import SLEEP, schedule

KILLS = int(os.environ.get("QUOREL_KILLS", "24"))
HOUR = 60 * 60


class KillsTest(ActingCase):
    def kill(self, how=signal.SIGKILL):
        """Answers with its status. The name is free then."""
        self.daemon.send_signal(how)
        status = self.daemon.wait(SECONDS)
        self.system.end(self.daemon)
        wait_until(lambda: not self.system.owner("com.quorel.Daemon"), "the name is free")
        return status

    def test_killed_while_saving(self):
        """Killed or told to end: at every moment the file is one of those that were sent, whole, and what is said to be
        stored is. Nothing is left beside it, by the next start at the latest."""
        versions = [preferences(Show_In_Menu_Bar=number,
                                Schedule_Array=[{"Action Hour": str(number), "k": "x" * 50_000}] * 4)
                    for number in (0, 1)]
        self.daemon = self.system.start_daemon(DAEMON, self.root, log="daemon.log")
        caller = self.caller()
        began = time.monotonic()
        self.assertEqual(caller.save(xml(versions[0])), ("", ""))  # the first one of a daemon takes longest
        took = time.monotonic() - began
        interrupted = changed = 0
        last = self.stored()
        for kill in range(KILLS):
            sent = versions[versions.index(last) - 1]
            caller.begin(xml(sent))
            if kill % 8 == 1:
                wait_until(lambda: self.stored() == sent, "the save is through")
            elif kill % 8 > 1:
                time.sleep(took * random.random() * 1.5)  # so that every step of a save is hit
            end = signal.SIGKILL if kill % 4 else signal.SIGTERM
            status = self.kill(end)
            left = os.path.exists(f"{self.folder}/.com.quorel.plist.new")
            stored = self.stored()
            self.assertIn(stored, versions)
            if end == signal.SIGTERM:
                self.assertEqual((status, left), (0, False))
            interrupted += left
            changed += stored != last
            last = stored
            self.daemon = self.system.start_daemon(DAEMON, self.root, log="daemon.log")
            self.assertEqual(os.listdir(self.folder), ["com.quorel.plist"])
            error, _ = caller.result()
            if not error:
                self.assertEqual(stored, sent)
        print(f"{KILLS} ends: {interrupted} left a temporary file, {changed} times the save was through")
        self.assertGreater(changed, 0)
        self.assertLess(changed, KILLS)

    def test_killed_in_mid_step(self):
        """A sleep each hour, and a kill at some moment between its warning and its end: none that was called before is
        called again, and each is accounted for exactly once."""
        self.begin(*(schedule(SLEEP, f"{hour:02}:30", days=calendar.day_name) for hour in range(24)))
        due = instant("23:30")
        called = in_time = 0
        for _ in range(KILLS):
            self.at(due - 60)
            self.wait_for(lambda: self.steps() == ["warned"], "warned")
            self.at(due)
            time.sleep(random.random() * 0.1)
            self.kill()
            self.state()  # is whole
            before = len(self.calls("Suspend"))
            self.start_daemon()
            self.wait_for(lambda: self.has_gone_on(due), "accounted for")
            self.assertEqual(self.accounted().count(due), 1)
            if before > called:
                self.assertEqual(len(self.calls("Suspend")), before)
                in_time += 1
            called = len(self.calls("Suspend"))
            due += HOUR
        print(f"{KILLS} kills: {in_time} sleeps were called before")

    def has_gone_on(self, due):
        """Whether it is accounted for; a moment goes by otherwise, since what is warned of anew takes a minute."""
        if due in self.accounted() and not self.steps():
            return True
        self.logind.Pass(1000)
        return False

    def at(self, moment):
        wall, *_ = self.read_clocks()
        self.logind.Pass(max(moment * 1000 - wall, 0))

    def accounted(self):
        return [outcome["Due"] for outcome in self.state()["Outcomes"]]


main()
