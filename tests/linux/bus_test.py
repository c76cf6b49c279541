#!/usr/bin/python3
"""The channel between the programs, on private buses: bus_test.py KIT_CALLER RECEIVER"""
import os
import signal
import subprocess
import sys
import time
import unittest

import dbus

from private_system import PrivateSystem, read_line, wait_until
from talk import Talk

CALLER, RECEIVER = (os.path.abspath(program) for program in sys.argv[1:3])
DAEMON, AGENT, PANE = "com.quorel.Daemon", "com.quorel.UserAgent", "com.quorel.PrefPane"
NOBODY = 65534
SILENCE = 20000  # milliseconds, longer than any machine takes to answer
ME = os.getuid()


def stop(process):
    """Returns when no thread of it runs any more."""
    os.kill(process.pid, signal.SIGSTOP)

    def state(thread):
        with open(f"/proc/{process.pid}/task/{thread}/stat") as file:
            return file.read().rpartition(")")[2].split()[0]
    wait_until(lambda: all(state(thread) == "T" for thread in os.listdir(f"/proc/{process.pid}/task")), "it stops")


class Caller(Talk):
    def __init__(self, system, silence=1000, handling=120000, log="caller.log"):
        super().__init__(system, CALLER, str(silence), str(handling), log=log)

    def result(self):
        result, milliseconds = super().result().split()
        return int(result), float(milliseconds)


class BusTest(unittest.TestCase):
    def setUp(self):
        self.system = PrivateSystem()
        self.addCleanup(self.system.close)
        self.system.start_session_bus()

    def start_receiver(self, bus, name, **how):
        receiver = self.system.start([RECEIVER, bus, name], stdin=subprocess.PIPE, stdout=subprocess.PIPE, **how)
        self.assertEqual(read_line(receiver), "ready")
        return receiver

    def connect(self):
        connection = self.system.connect("session")
        self.addCleanup(connection.close)
        return connection

    def ping(self, connection, name):
        return connection.call_blocking(name, "/com/quorel/Communication", "com.quorel.Communication1", "Ping", "", (),
                                        timeout=60)

    def test_answers_without_waiting(self):
        # What could be started by its name must not be, not even by accident.
        for name in (DAEMON, AGENT):
            with open(f"{self.system.services}/{name}.service", "w") as file:
                file.write(f"[D-BUS Service]\nName={name}\nExec=/bin/touch {self.system.place}/started\n")
        caller = Caller(self.system, SILENCE)
        commands = ("ping-daemon", f"ping-agent {ME}", "post-daemon Accept", f"post-agent {ME} Accept")
        for expected in (0, 1):
            for command in commands:
                with self.subTest(command, expected=expected):
                    times = []
                    for _ in range(20):
                        result, milliseconds = caller(command)
                        self.assertEqual(result, expected)
                        times.append(milliseconds)
                    print(f"{command}, result {expected}: median {sorted(times)[10]:.2f} ms, worst {max(times):.2f} ms")
                    self.assertLess(sorted(times)[10], SILENCE)
            if not expected:
                self.start_receiver("system", DAEMON)
                self.start_receiver("session", AGENT)
        self.assertFalse(os.path.exists(f"{self.system.place}/started"))

    def test_silence_is_bounded(self):
        """Whoever is silent, be it a program or the bus: a second at most for each answer that is waited for."""
        receiver = self.start_receiver("system", DAEMON)
        caller, patient = Caller(self.system), Caller(self.system, SILENCE)
        # Seconds for a ping and for a notification at least; a notification is followed by a ping.
        for silence, asker, ping, post in ((lambda: stop(receiver), caller, 0.9, 1.8),
                                           (lambda: stop(self.system.bus), caller, 0.9, 0.9),
                                           (lambda: self.system.end(self.system.bus), patient, 0, 0)):
            silence()
            for command, least in (("ping-daemon", ping), ("post-daemon Accept", post)):
                with self.subTest(command, seconds=least):
                    result, milliseconds = asker(command)
                    self.assertEqual(result, 0)
                    self.assertGreater(milliseconds, least * 1000)
                    self.assertLess(milliseconds, SILENCE)

    def test_death_is_noticed_at_once(self):
        caller = Caller(self.system, SILENCE)
        for command in ("ping-daemon", "post-daemon Hold"):
            with self.subTest(command):
                receiver = self.start_receiver("system", DAEMON)
                stop(receiver)
                caller.begin(command)
                # Long enough for the question to be asked; one asked later gets the same answer.
                time.sleep(0.2)
                receiver.kill()
                result, milliseconds = caller.result()
                self.assertEqual(result, 0)
                self.assertLess(milliseconds, SILENCE)
                if "post" in command:
                    self.assertIn("Hold was not handled", self.system.log("caller.log"))
                wait_until(lambda: not self.system.owner(DAEMON), "the name is free")

    def test_what_becomes_of_a_notification(self):
        self.start_receiver("system", DAEMON)
        caller = Caller(self.system, silence=1000, handling=3000)
        for name, expected, least, logged in (
                ("daemon Accept", 1, 0, ""),
                ("daemon Refuse", 0, 0, f"Refuse was refused: {DAEMON} 0 :1."),
                ("edits Refuse", 0, 0, f"Refuse was refused: {DAEMON} 0+"),
                ("daemon Drop", 0, 0, "Drop was refused: The call was not handled."),
                ("daemon Late", 1, 1.4, ""),     # kept alive by pings
                ("daemon Hold", 0, 2.9, "Hold was not handled: no answer.")):
            with self.subTest(name):
                before = len(self.system.log("caller.log"))
                result, milliseconds = caller(f"post-{name}")
                self.assertEqual(result, expected)
                self.assertGreaterEqual(milliseconds, least * 1000)
                log = self.system.log("caller.log")[before:]
                self.assertEqual(log[:len(logged)] if logged else log, logged)
        # Patient, since the bus itself takes a while to pass on what is large.
        patient = Caller(self.system, SILENCE)
        self.assertEqual(patient("post-daemon Accept 2000000")[0], 1)
        self.assertEqual(patient("post-daemon Accept 3000000")[0], 0)
        self.assertIn("Accept was not sent: the user information takes more than 2 MiB.", self.system.log("caller.log"))
        self.assertEqual(caller("ping-daemon")[0], 1)

    @unittest.skipIf(ME != 0, "only root can start an agent as somebody else")
    def test_an_agent_of_somebody_else_does_not_count(self):
        caller = Caller(self.system)
        self.start_receiver("session", AGENT, user=NOBODY)
        self.assertEqual(caller(f"ping-agent {ME}")[0], 0)
        self.assertEqual(caller(f"post-agent {ME} Accept")[0], 0)
        self.assertEqual(caller(f"ping-agent {NOBODY}")[0], 1)

    def test_the_panes_own_end(self):
        connection = self.connect()
        for observer, expected in (("true", True), ("false", False), ("none", False)):
            with self.subTest(observer):
                caller = Caller(self.system)
                caller(f"open {observer}")
                caller(f"open {observer}")  # once more changes nothing
                self.assertEqual(self.ping(connection, PANE), expected)
                with self.assertRaises(dbus.DBusException) as refused:
                    connection.call_blocking(PANE, "/com/quorel/Communication", "com.quorel.Communication1",
                                             "PostNotification", "ssay", ("Any", PANE, b""), timeout=60)
                self.assertEqual(refused.exception.get_dbus_name(), "com.quorel.Error.UnknownNotification")
                # A second pane does without the name, and stays usable.
                second = Caller(self.system, log="second.log")
                second("open true")
                self.assertEqual(self.system.log("second.log"), "")
                self.assertEqual(self.ping(connection, PANE), expected)
                for pane in (second, caller):
                    self.assert_ends(pane.process)
                wait_until(lambda: not self.system.owner(PANE, "session"), "the name is free")

    def test_opening_the_own_end_is_bounded(self):
        stop(self.system.session)
        milliseconds = Caller(self.system)("open true")[1]
        self.assertLess(milliseconds, SILENCE)
        self.assertIn("No own end", self.system.log("caller.log"))

    def test_threads_together(self):
        receiver = self.start_receiver("system", DAEMON)
        caller = Caller(self.system, SILENCE)
        caller("open true")
        connection = self.connect()
        caller.begin("together 8 50")
        for _ in range(100):
            self.assertTrue(self.ping(connection, PANE))
        self.assertEqual(caller.result()[0], 800)
        for process in (caller.process, receiver):
            self.assert_ends(process)  # what a sanitizer has found shows here

    def assert_ends(self, process):
        process.stdin.close()
        self.assertEqual(process.wait(60), 0)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
