#!/usr/bin/env python3
"""Disks that do not take the file, or take their time."""
import os
import plistlib
import subprocess

from daemon_case import FAILED, KIT_CALLER, PREFERENCES, STORAGE_FAILED, DaemonCase, main, preferences, xml
from private_system import wait_until


class FailuresTest(DaemonCase):
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


class FullBusTest(DaemonCase):
    policy = '<limit name="max_match_rules_per_connection">0</limit>'

    def test_a_bus_that_takes_no_more_rules(self):
        """What it cannot hear of is refused; nothing else is."""
        self.start_daemon()
        self.assertEqual(self.caller().save(xml(PREFERENCES))[0], FAILED)
        self.assertEqual(self.caller().call("/com/quorel/Agents", "com.quorel.Agents1", "Register", "")[0], FAILED)
        self.assertTrue(self.probe()[0])
        self.assertIsNone(self.daemon.poll())


main()
