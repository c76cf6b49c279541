#!/usr/bin/env python3
"""What polkit says is what the administrator lock gets: authorization_test.py PROBE"""
import os
import subprocess
import sys
import time
import unittest

HERE = os.path.dirname(os.path.abspath(__file__))
SUPPORT = os.path.join(HERE, "../support")
sys.path.insert(0, os.path.join(HERE, "../../demo"))
from private_system import PrivateSystem, read_line

PROBE = os.path.abspath(sys.argv[1])
NOBODY = 65534
RIGHT = "system.privilege.admin"
GRANTED, INVALID_SET, INVALID_REFERENCE, DENIED, CANCELED, NOT_WITHOUT_ASKING = 0, -60001, -60002, -60005, -60006, -60007


def rule(answer):
    return ("polkit.addRule(function(action, subject) {"
            f"if (action.id == 'com.quorel.modify-preferences' && subject.user == 'nobody') return '{answer}'; }});")


class Probe:
    def __init__(self, environment, user):
        self.process = subprocess.Popen([PROBE], env=environment, user=user, stdin=subprocess.PIPE,
                                        stdout=subprocess.PIPE, text=True, bufsize=1)

    def begin(self, command):
        self.process.stdin.write(command + "\n")

    def result(self):
        return int(read_line(self.process, 30))

    def __call__(self, command):
        self.begin(command)
        return self.result()

    def close(self):
        self.process.stdin.close()
        self.process.wait()
        self.process.stdout.close()


class AuthorizationTest(unittest.TestCase):
    def start(self, user=NOBODY, rule="", with_polkit=True):
        self.system = PrivateSystem()
        self.addCleanup(self.system.close)
        if with_polkit:
            self.system.start_polkit(rule)
        probe = Probe(self.system.environment(), user)
        self.addCleanup(probe.close)
        return probe

    def answer_with(self, manner, probe):
        agent = self.system.start([sys.executable, f"{SUPPORT}/auth_agent.py", str(probe.process.pid), manner],
                                  stdout=subprocess.PIPE, text=True)
        self.assertEqual(read_line(agent), "ready")
        return agent

    def test_who_gets_in_without_a_dialog(self):
        for user, rules, status in ((0, "", GRANTED),
                                    (NOBODY, "", NOT_WITHOUT_ASKING),
                                    (NOBODY, rule("yes"), GRANTED),
                                    (NOBODY, rule("no"), DENIED)):
            with self.subTest(user=user, rules=rules):
                probe = self.start(user, rule=rules)
                self.assertEqual(probe("create"), 0)
                self.assertEqual(probe(f"copy {RIGHT} 0"), status)
                # With nobody to ask, being allowed to ask changes nothing.
                self.assertEqual(probe(f"copy {RIGHT} 3") == GRANTED, status == GRANTED)
                self.assertEqual(probe("free 8"), 0)
                self.doCleanups()

    def test_refuses_other_rights_and_references(self):
        probe = self.start(user=0)
        self.assertEqual(probe("create"), 0)
        self.assertEqual(probe("copy system.preferences 0"), DENIED)
        self.assertEqual(probe("copy-none 0"), INVALID_SET)
        self.assertEqual(probe("copy-null 0"), INVALID_REFERENCE)
        self.assertEqual(probe("free 0"), 0)
        self.assertEqual(probe("free 0"), INVALID_REFERENCE)

    def test_answered_dialog_counts_for_a_while(self):
        probe = self.start()
        agent = self.answer_with("answer", probe)
        probe("create")
        self.assertEqual(probe(f"copy {RIGHT} 0"), NOT_WITHOUT_ASKING)
        self.assertEqual(probe(f"copy {RIGHT} 3"), GRANTED)
        self.assertEqual(read_line(agent), "asked com.quorel.modify-preferences")
        self.assertEqual(probe(f"copy {RIGHT} 0"), GRANTED)
        # Another process of the same user gains nothing by it.
        other = Probe(self.system.environment(), NOBODY)
        self.addCleanup(other.close)
        other("create")
        self.assertEqual(other(f"copy {RIGHT} 0"), NOT_WITHOUT_ASKING)

    def test_cancelled_dialog_refuses(self):
        probe = self.start()
        self.answer_with("cancel", probe)
        probe("create")
        self.assertEqual(probe(f"copy {RIGHT} 3"), CANCELED)
        self.assertEqual(probe(f"copy {RIGHT} 0"), NOT_WITHOUT_ASKING)

    def test_polkit_dying_over_an_open_dialog_refuses(self):
        probe = self.start()
        agent = self.answer_with("ignore", probe)
        probe("create")
        probe.begin(f"copy {RIGHT} 3")
        self.assertEqual(read_line(agent), "asked com.quorel.modify-preferences")
        self.system.polkit.kill()
        self.assertNotEqual(probe.result(), GRANTED)

    def test_create_fails_without_polkit_and_without_bus(self):
        probe = self.start(with_polkit=False)
        started = time.monotonic()
        self.assertNotEqual(probe("create"), 0)
        self.assertEqual(probe(f"copy {RIGHT} 3"), INVALID_REFERENCE)
        self.system.end(self.system.bus)
        self.assertNotEqual(probe("create"), 0)
        self.assertLess(time.monotonic() - started, 5)


if __name__ == "__main__":
    if os.getuid() != 0:
        print("Skipped: only root can cover polkit's folders in a mount namespace.")
        sys.exit(77)
    unittest.main(argv=sys.argv[:1])
