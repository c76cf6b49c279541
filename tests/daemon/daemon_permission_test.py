#!/usr/bin/env python3
"""Who may change the preferences, with the real polkitd."""
import signal

from daemon_case import (BUSY, NOBODY, NOT_AUTHORIZED, PREFERENCES, DaemonCase, main, preferences, xml)
from private_system import polkit_rule, read_line, wait_until
from talk import answer_with

CHANGED = preferences(Show_In_Menu_Bar=0)
ASKED = "asked com.quorel.modify-preferences"


class PermissionTest(DaemonCase):
    def start(self, rules=""):
        """The daemon with preferences stored."""
        self.polkit = self.system.start_polkit(rules)
        self.start_daemon()
        self.assertEqual(self.caller().save(xml(PREFERENCES)), ("", ""))
        self.before = self.identity()

    def assert_unchanged(self):
        self.assertEqual(self.identity(), self.before)
        self.assertEqual(self.stored(), PREFERENCES)

    def assert_asked(self, agent):
        self.assertEqual(read_line(agent), ASKED)

    def test_refused_by_rule_without_anybody_to_ask_and_cancelled(self):
        for rules, cancelled, reason in ((polkit_rule("no"), False, ""), ("", False, ""), ("", True, "dismissed")):
            with self.subTest(rules, cancelled=cancelled):
                self.start(rules)
                nobody = self.caller(NOBODY)
                if cancelled:
                    answer_with(self.system, nobody.process, "cancel")
                error, text = nobody.save(xml(CHANGED))
                self.assertEqual(error, NOT_AUTHORIZED)
                self.assertIn(reason, text)
                self.assert_unchanged()
                self.assertIn(f"Preferences of user {NOBODY} are refused: ", self.logged())
                self.doCleanups()
                self.setUp()

    def test_let_in_by_rule(self):
        self.start(polkit_rule("yes"))
        self.assertEqual(self.caller(NOBODY).save(xml(CHANGED)), ("", ""))
        self.assertEqual(self.stored(), CHANGED)
        self.assertIn(f"Preferences of user {NOBODY} are stored.", self.logged())

    def test_root_passes_whatever_polkit_says(self):
        self.start("polkit.addRule(function(action, subject) { return 'no'; });")
        self.assertEqual(self.caller().save(xml(CHANGED)), ("", ""))
        self.assertEqual(self.stored(), CHANGED)

    def test_answered_dialog_lets_in_this_caller_for_a_while(self):
        self.start()
        nobody = self.caller(NOBODY)
        agent = answer_with(self.system, nobody.process, "answer")
        self.assertEqual(nobody.save(xml(CHANGED)), ("", ""))
        self.assert_asked(agent)
        self.assertEqual(self.stored(), CHANGED)
        self.system.end(agent)
        self.assertEqual(nobody.save(xml(PREFERENCES)), ("", ""))
        other = self.caller(NOBODY)
        self.assertEqual(other.save(xml(CHANGED))[0], NOT_AUTHORIZED)
        self.assertEqual(self.stored(), PREFERENCES)

    def test_nobody_is_asked_in_vain_or_against_the_senders_will(self):
        self.start()
        nobody = self.caller(NOBODY)
        agent = answer_with(self.system, nobody.process, "answer")
        nobody.save(xml(preferences(Extra=1)))
        nobody.save(xml(PREFERENCES))
        self.assertEqual(nobody.save(xml(CHANGED), sender="-")[0], NOT_AUTHORIZED)
        self.system.end(nobody.process)
        agent.send_signal(signal.SIGTERM)
        self.assertNotIn(ASKED, agent.stdout.read())
        self.assert_unchanged()

    def test_everybody_else_is_served_while_somebody_is_asked(self):
        self.start()
        nobody = self.caller(NOBODY)
        agent = answer_with(self.system, nobody.process, "ignore")
        nobody.begin(xml(CHANGED))
        self.assert_asked(agent)
        self.assertTrue(self.probe()[0])
        saved = preferences(Check_Updates=0)
        self.assertEqual(self.caller().save(xml(saved)), ("", ""))
        self.assertEqual(self.stored(), saved)

    def test_caller_that_leaves_while_asked_changes_nothing(self):
        self.start()
        nobody = self.caller(NOBODY)
        agent = answer_with(self.system, nobody.process, "later")
        nobody.begin(xml(CHANGED))
        self.assert_asked(agent)
        nobody.leave()
        self.assertEqual(read_line(agent), "cancelled")
        agent.send_signal(signal.SIGUSR1)
        wait_until(lambda: "are dropped: the sender has gone" in self.logged(), "the daemon has noticed")
        self.assertTrue(self.probe()[0])
        self.assert_unchanged()

    def test_few_calls_wait(self):
        self.start()
        waiting = [self.caller(NOBODY) for _ in range(4)]
        for one in waiting:
            agent = answer_with(self.system, one.process, "ignore")
            one.begin(xml(CHANGED))
            self.assert_asked(agent)
            self.assertEqual(one.save(xml(CHANGED))[0], BUSY)  # one call of a connection
        self.assertEqual(self.caller(NOBODY).save(xml(CHANGED))[0], BUSY)
        self.assertEqual(self.caller("daemon").save(xml(CHANGED))[0], NOT_AUTHORIZED)  # had its turn
        self.assertEqual(self.caller().save(xml(CHANGED)), ("", ""))

    def test_polkit_absent_or_dying_refuses(self):
        self.start(polkit_rule("yes"))
        nobody = self.caller(NOBODY)
        self.system.end(self.polkit)
        self.assertEqual(nobody.save(xml(CHANGED))[0], NOT_AUTHORIZED)
        self.assert_unchanged()

    def test_nothing_in_a_call_speaks_for_somebody_else(self):
        """The identity is the connection's: no field of a message, and no other bus name, takes its place."""
        self.start()
        root = self.caller()
        nobody = self.caller(NOBODY)
        forged = {"sender": root.bus_name, "uid": 0}
        error, _ = nobody.save(xml(preferences(**forged)))
        self.assertNotEqual(error, "")
        for receiver in (root.bus_name, "com.quorel.Daemon"):
            error, _ = nobody.save(xml(CHANGED), receiver=receiver)
            self.assertNotEqual(error, "")
        error, _ = nobody.save(xml(CHANGED), sender=root.bus_name)  # the bus overwrites it
        self.assertEqual(error, NOT_AUTHORIZED)
        self.assert_unchanged()


main()
