#!/usr/bin/env python3
"""A daemon that dies, and disks that do not take the file."""
import os
import plistlib
import subprocess
import time

from daemon_case import PREFERENCES, STORAGE_FAILED, DaemonCase, main, preferences, xml
from private_system import SECONDS

KILLS = 200
SECONDS_OF_KILLING = 20


class FailuresTest(DaemonCase):
    def test_killed_while_saving(self):
        """At every moment the file is one of those that were sent, whole; nothing is left beside it."""
        versions = [preferences(Show_In_Menu_Bar=number,
                                Schedule_Array=[{"Action Hour": str(number), "k": "x" * 50_000}] * 4)
                    for number in (0, 1)]
        payloads = [xml(version) for version in versions]
        self.start_daemon()
        caller = self.caller()
        started = time.monotonic()
        self.assertEqual(caller.save(payloads[0]), ("", ""))  # the first one of a daemon takes longest
        took = time.monotonic() - started
        interrupted = changed = kills = 0
        last = self.stored()
        deadline = time.monotonic() + SECONDS_OF_KILLING
        while kills < KILLS and time.monotonic() < deadline:
            caller.begin(payloads[versions.index(last) - 1])
            time.sleep(took * (kills % 40) / 15)  # so that every step of a save is hit
            self.daemon.kill()
            self.daemon.wait()
            interrupted += os.path.exists(f"{self.folder}/.com.quorel.plist.new")
            stored = self.stored()
            self.assertIn(stored, versions)
            changed += stored != last
            last = stored
            self.system.end(self.daemon)
            self.start_daemon()
            self.assertEqual(os.listdir(self.folder), ["com.quorel.plist"])
            caller.result()
            kills += 1
        print(f"A save took {took * 1000:.0f} ms. {kills} kills: {interrupted} left a temporary file, "
              f"{changed} times the save was through")
        self.assertGreater(kills, 20)
        self.assertGreater(changed, 0)
        self.assertLess(changed, kills)

    def test_ends_after_the_write_under_way(self):
        """A save that is told to be stored is stored, however soon the end comes."""
        for number in range(30):
            self.start_daemon()
            caller = self.caller()
            sent = preferences(Check_Updates=number, Schedule_Array=[{"k": "x" * 500_000}])
            caller.begin(xml(sent))
            time.sleep(0.001 * number)
            self.daemon.terminate()
            self.assertEqual(self.daemon.wait(SECONDS), 0)
            error, _ = caller.result()
            if not error:
                self.assertEqual(self.stored(), sent)
            if os.path.exists(self.folder):
                self.assertNotIn(".com.quorel.plist.new", os.listdir(self.folder))
            self.system.end(self.daemon)
            caller.close()

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
