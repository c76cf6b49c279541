#!/usr/bin/env python3
"""What polkit says is what the administrator lock gets: authorization_test.py KIT_CALLER"""
import os
import signal
import sys
import unittest

from private_system import PrivateSystem, polkit_rule, read_line
from talk import Talk, answer_with, main_as_root

PROGRAM = os.path.abspath(sys.argv[1])
NOBODY = 65534
INTERACTION = 3
GRANTED, INVALID_REFERENCE, DENIED, NOT_WITHOUT_ASKING = 0, -60002, -60005, -60007


class Lock(Talk):
    def result(self):
        return int(super().result().split()[0])


class AuthorizationTest(unittest.TestCase):
    def start(self, rule="", with_polkit=True):
        self.system = PrivateSystem()
        self.addCleanup(self.system.close)
        if with_polkit:
            self.system.start_polkit(rule)
        return self.start_lock()

    def start_lock(self):
        return Lock(self.system, PROGRAM, "1000", "1000", user=NOBODY, log="lock.log")

    def test_answered_dialog_counts_for_a_while(self):
        lock = self.start()
        agent = answer_with(self.system, lock.process, "answer")
        self.assertEqual(lock("create"), 0)
        self.assertEqual(lock("copy 0"), NOT_WITHOUT_ASKING)
        self.assertEqual(lock(f"copy {INTERACTION}"), GRANTED)
        self.assertEqual(read_line(agent), "asked com.quorel.modify-preferences")
        self.assertEqual(lock("copy 0"), GRANTED)
        # Another process of the same user gains nothing by it.
        other = self.start_lock()
        other("create")
        self.assertEqual(other("copy 0"), NOT_WITHOUT_ASKING)
        self.assertEqual(other(f"copy {INTERACTION}"), NOT_WITHOUT_ASKING)
        self.assertIn("nobody to ask for a password", self.system.log("lock.log"))

    def test_denied_by_rule(self):
        lock = self.start(polkit_rule("no"))
        lock("create")
        self.assertEqual(lock(f"copy {INTERACTION}"), DENIED)
        self.assertEqual(lock("free 8"), 0)
        self.assertEqual(lock("copy 0"), INVALID_REFERENCE)

    def test_polkit_dying_over_an_open_dialog_refuses(self):
        lock = self.start()
        agent = answer_with(self.system, lock.process, "ignore")
        lock("create")
        lock.begin(f"copy {INTERACTION}")
        self.assertEqual(read_line(agent), "asked com.quorel.modify-preferences")
        self.system.polkit.kill()
        self.assertNotEqual(lock.result(), GRANTED)

    def test_a_hung_bus_is_waited_for_two_seconds_at_most(self):
        lock = self.start(polkit_rule("yes"))
        lock("create")
        self.assertEqual(lock("copy 0"), GRANTED)
        self.system.bus.send_signal(signal.SIGSTOP)
        waited = 0
        for flags in (0, INTERACTION):  # what a click on the padlock asks
            lock.begin(f"copy {flags}")
            status, milliseconds = Talk.result(lock).split()
            self.assertNotEqual(int(status), GRANTED)
            waited += float(milliseconds)
        self.assertLess(waited, 2000)

    def test_create_fails_without_polkit_and_without_bus(self):
        lock = self.start(with_polkit=False)
        self.assertNotEqual(lock("create"), 0)
        self.assertEqual(lock(f"copy {INTERACTION}"), INVALID_REFERENCE)
        self.system.end(self.system.bus)
        self.assertNotEqual(lock("create"), 0)


if __name__ == "__main__":
    main_as_root()
