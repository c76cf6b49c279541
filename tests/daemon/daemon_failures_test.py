#!/usr/bin/env python3
"""A daemon that dies, and disks that do not take the file."""
import os
import plistlib
import signal
import subprocess
import time

from daemon_case import KIT_CALLER, PREFERENCES, STORAGE_FAILED, DaemonCase, main, preferences, xml
from private_system import SECONDS, wait_until

ENDS = 200
SECONDS_OF_ENDING = 20


class FailuresTest(DaemonCase):
    def test_ended_while_saving(self):
        """Killed or told to end: at every moment the file is one of those that were sent, whole, and what is said to be
        stored is. Nothing is left beside it, by the next start at the latest."""
        versions = [preferences(Show_In_Menu_Bar=number,
                                Schedule_Array=[{"Action Hour": str(number), "k": "x" * 50_000}] * 4)
                    for number in (0, 1)]
        self.start_daemon()
        caller = self.caller()
        started = time.monotonic()
        self.assertEqual(caller.save(xml(versions[0])), ("", ""))  # the first one of a daemon takes longest
        took = time.monotonic() - started
        interrupted = changed = ends = 0
        last = self.stored()
        deadline = time.monotonic() + SECONDS_OF_ENDING
        while ends < ENDS and time.monotonic() < deadline:
            sent = versions[versions.index(last) - 1]
            caller.begin(xml(sent))
            time.sleep(took * (ends % 40) / 15)  # so that every step of a save is hit
            end = signal.SIGKILL if ends % 4 else signal.SIGTERM
            self.daemon.send_signal(end)
            status = self.daemon.wait(SECONDS)
            left = os.path.exists(f"{self.folder}/.com.quorel.plist.new")
            stored = self.stored()
            self.assertIn(stored, versions)
            if end == signal.SIGTERM:
                self.assertEqual((status, left), (0, False))
            interrupted += left
            changed += stored != last
            last = stored
            self.system.end(self.daemon)
            wait_until(lambda: not self.system.owner("com.quorel.Daemon"), "the name is free")
            self.start_daemon()
            self.assertEqual(os.listdir(self.folder), ["com.quorel.plist"])
            error, _ = caller.result()
            if not error:
                self.assertEqual(stored, sent)
            ends += 1
        print(f"A save took {took * 1000:.0f} ms. {ends} ends: {interrupted} left a temporary file, "
              f"{changed} times the save was through")
        self.assertGreater(ends, 20)
        self.assertGreater(changed, 0)
        self.assertLess(changed, ends)

    def test_a_disk_that_takes_its_time(self):
        """Each sync takes a second: pings are answered all the while, and the save is answered as stored."""
        self.system.variables["LD_PRELOAD"] = f"{os.path.dirname(KIT_CALLER)}/libslow_disk.so"
        self.start_daemon()
        del self.system.variables["LD_PRELOAD"]
        caller = self.caller()
        for check_updates in (0, 1):
            sent = preferences(Check_Updates=check_updates)
            wait_until(lambda: self.probe()[0], "the state of the Schedules has been synced, too")
            caller.begin(xml(sent))
            pings = [self.probe()[0]]
            while not self.is_stored(sent):
                pings.append(self.probe()[0])
            self.assertEqual(caller.result(), ("", ""))
            self.assertEqual(set(pings), {True})

    def is_stored(self, sent):
        return os.path.exists(self.file) and self.stored() == sent

    def test_disks_that_do_not_take_the_file(self):
        """Read-only, and full; afterwards, with room again, the same daemon saves."""
        os.makedirs(self.folder)
        self.system.mount("-t", "tmpfs", "-o", "size=64k", "none", self.folder)
        self.start_daemon()
        caller = self.caller()
        self.assertEqual(caller.save(xml(PREFERENCES)), ("", ""))
        small = xml(preferences(Check_Updates=0))
        large = xml(preferences(Schedule_Array=[{"k": "x" * 200_000}]))
        for payload, options, words in ((large, None, "No space left"), (small, "remount,ro", "Read-only")):
            if options:
                subprocess.run(["mount", "-o", options, self.folder], check=True)
            error, text = caller.save(payload)
            self.assertEqual(error, STORAGE_FAILED)
            self.assertIn(words, text)
            self.assertEqual(self.stored(), PREFERENCES)
            self.assertEqual(os.listdir(self.folder), ["com.quorel.plist"])
            self.assertIn(words, self.logged())
        subprocess.run(["mount", "-o", "remount,rw", self.folder], check=True)
        self.assertEqual(caller.save(small), ("", ""))
        self.assertEqual(self.stored(), plistlib.loads(small))


main()
