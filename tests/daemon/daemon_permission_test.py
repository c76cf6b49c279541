#!/usr/bin/env python3
"""Who may change the preferences, with the real polkitd."""
import os
import signal
import subprocess
import sys

from daemon_case import (BUSY, NOBODY, NOT_AUTHORIZED, PREFERENCES, SUPPORT, DaemonCase, main, preferences, xml)
from private_system import read_line, wait_until

CHANGED = preferences(Show_In_Menu_Bar=0)
ASKED = "asked com.quorel.modify-preferences"


def rule(answer):
    return ("polkit.addRule(function(action, subject) {"
            f"if (action.id == 'com.quorel.modify-preferences' && subject.user == 'nobody') return '{answer}'; }});")


class PermissionTest(DaemonCase):
    def start(self, rules=""):
        """The daemon with preferences stored."""
        self.polkit = self.system.start_polkit(rules)
        self.start_daemon()
        self.assertEqual(self.caller().save(xml(PREFERENCES)), ("", ""))
        self.before = self.identity()

    def answer_with(self, manner, caller):
        agent = self.system.start([sys.executable, f"{SUPPORT}/auth_agent.py", str(caller.process.pid), manner],
                                  stdout=subprocess.PIPE, text=True)
        self.assertEqual(read_line(agent), "ready")
        return agent

    def assert_unchanged(self):
        self.assertEqual(self.identity(), self.before)
        self.assertEqual(self.stored(), PREFERENCES)

    def assert_asked(self, agent):
        self.assertEqual(read_line(agent), ASKED)

    def test_refused_by_rule_and_without_anybody_to_ask(self):
        for rules in (rule("no"), ""):
            with self.subTest(rules):
                self.start(rules)
                error, _ = self.caller(NOBODY).save(xml(CHANGED))
                self.assertEqual(error, NOT_AUTHORIZED)
                self.assert_unchanged()
                self.assertIn(f"Preferences of user {NOBODY} are refused: ", self.logged())
                self.doCleanups()
                self.setUp()

    def test_let_in_by_rule(self):
        self.start(rule("yes"))
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
        agent = self.answer_with("answer", nobody)
        self.assertEqual(nobody.save(xml(CHANGED)), ("", ""))
        self.assert_asked(agent)
        self.assertEqual(self.stored(), CHANGED)
        self.system.end(agent)
        self.assertEqual(nobody.save(xml(PREFERENCES)), ("", ""))
        other = self.caller(NOBODY)
        self.assertEqual(other.save(xml(CHANGED))[0], NOT_AUTHORIZED)
        self.assertEqual(self.stored(), PREFERENCES)

    def test_cancelled_dialog_refuses(self):
        self.start()
        nobody = self.caller(NOBODY)
        agent = self.answer_with("cancel", nobody)
        error, text = nobody.save(xml(CHANGED))
        self.assert_asked(agent)
        self.assertEqual(error, NOT_AUTHORIZED)
        self.assertIn("dismissed", text)
        self.assert_unchanged()

    def test_invalid_preferences_ask_nobody(self):
        self.start()
        nobody = self.caller(NOBODY)
        agent = self.answer_with("answer", nobody)
        nobody.save(xml(preferences(Extra=1)))
        nobody.save(xml(PREFERENCES))
        self.system.end(nobody.process)
        agent.send_signal(signal.SIGTERM)
        self.assertNotIn(ASKED, agent.stdout.read())
        self.assert_unchanged()

    def test_everybody_else_is_served_while_somebody_is_asked(self):
        self.start()
        nobody = self.caller(NOBODY)
        agent = self.answer_with("ignore", nobody)
        nobody.begin(xml(CHANGED))
        self.assert_asked(agent)
        alive, seconds = self.probe("ping")
        self.assertTrue(alive)
        self.assertLess(seconds, 0.5)
        saved = preferences(Check_Updates=0)
        self.assertEqual(self.caller().save(xml(saved)), ("", ""))
        self.assertEqual(self.stored(), saved)

    def test_caller_that_leaves_while_asked_changes_nothing(self):
        self.start()
        nobody = self.caller(NOBODY)
        agent = self.answer_with("later", nobody)
        nobody.begin(xml(CHANGED))
        self.assert_asked(agent)
        name = nobody.bus_name
        nobody.process.kill()
        nobody.process.wait()
        wait_until(lambda: not self.system.owner(name), "the caller has left the bus")
        self.assertEqual(read_line(agent), "cancelled")  # the dialog goes too
        agent.send_signal(signal.SIGUSR1)
        wait_until(lambda: "are dropped: the sender has gone" in self.logged(), "the daemon has noticed")
        self.assert_unchanged()

    def test_few_calls_of_a_user_wait(self):
        self.start()
        waiting = [self.caller(NOBODY) for _ in range(4)]
        for one in waiting:
            agent = self.answer_with("ignore", one)
            one.begin(xml(CHANGED))
            self.assert_asked(agent)
        self.assertEqual(self.caller(NOBODY).save(xml(CHANGED))[0], BUSY)
        self.assertEqual(self.caller("daemon").save(xml(CHANGED))[0], NOT_AUTHORIZED)  # had its turn
        self.assertEqual(self.caller().save(xml(CHANGED)), ("", ""))

    def test_one_call_of_a_sender_waits(self):
        self.start()
        twice = self.system.start([sys.executable, f"{os.path.dirname(__file__)}/call_twice.py", xml(CHANGED).hex()],
                                  user=NOBODY, stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
        agent = self.answer_with("ignore", type("Twice", (), {"process": twice}))
        twice.stdin.write("\n")
        twice.stdin.flush()
        self.assert_asked(agent)
        self.assertEqual(read_line(twice), BUSY)

    def test_polkit_absent_or_dying_refuses(self):
        self.start(rule("yes"))
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
        # A sender field made up by the client: the bus overwrites it.
        code = ("import sys, dbus, dbus.lowlevel as low\n"
                "bus = dbus.SystemBus()\n"
                "call = low.MethodCallMessage('com.quorel.Daemon', '/com/quorel/Communication',"
                " 'com.quorel.Communication1', 'PostNotification')\n"
                "call.append('DaemonMustReloadPrefs', 'com.quorel.Daemon',"
                " dbus.ByteArray(bytes.fromhex(sys.argv[2])), signature='ssay')\n"
                "call.set_sender(sys.argv[1])\n"
                "try: bus.send_message_with_reply_and_block(call, 10); print('accepted')\n"
                "except dbus.DBusException as error: print(error.get_dbus_name())\n")
        forger = self.system.start([sys.executable, "-c", code, root.bus_name, xml(CHANGED).hex()], user=NOBODY,
                                   stdout=subprocess.PIPE, text=True)
        self.assertEqual(read_line(forger), NOT_AUTHORIZED)
        self.assert_unchanged()


main()
