#!/usr/bin/python3
"""The channel between the programs, on private buses: bus_test.py CALLER RECEIVER [SANITIZERS]"""
import os
import signal
import socket
import sys
import time
import unittest

import dbus

from private_session import PrivateSession, eventually

CALLER, RECEIVER = (os.path.abspath(program) for program in sys.argv[1:3])
SANITIZED = len(sys.argv) > 3
DAEMON, AGENT, PANE = "com.quorel.Daemon", "com.quorel.UserAgent", "com.quorel.PrefPane"
NOBODY = 65534
ME = os.getuid()


def stop(process):
    """Returns when no thread of it runs any more."""
    os.kill(process.pid, signal.SIGSTOP)

    def state(thread):
        with open(f"/proc/{process.pid}/task/{thread}/stat") as file:
            return file.read().rpartition(")")[2].split()[0]
    eventually("it stops", lambda: all(state(thread) == "T" for thread in os.listdir(f"/proc/{process.pid}/task")))


class Caller:
    def __init__(self, session, silence=1000, handling=120000, log="caller"):
        self.process = session.start(CALLER, str(silence), str(handling), log=log, bufsize=1)

    def begin(self, command):
        self.process.stdin.write(command + "\n")

    def result(self):
        result, milliseconds = self.process.stdout.readline().split()
        return int(result), float(milliseconds)

    def __call__(self, command):
        self.begin(command)
        return self.result()


class BusTest(unittest.TestCase):
    def setUp(self):
        self.session = PrivateSession(self)

    def start_buses(self):
        self.system = self.session.start_bus("system")
        self.session.start_bus("session")

    def start_receiver(self, bus, name, **how):
        receiver = self.session.start(RECEIVER, bus, name, **how)
        self.assertEqual(receiver.stdout.readline(), "ready\n")
        return receiver

    def ping(self, connection, name):
        return connection.call_blocking(name, "/com/quorel/Communication", "com.quorel.Communication1", "Ping", "", (),
                                        timeout=5)

    def test_answers_within_milliseconds(self):
        self.start_buses()
        # What could be started by its name must not be, not even by accident.
        for name in (DAEMON, AGENT):
            with open(f"{self.session.place}/services/{name}.service", "w") as file:
                file.write(f"[D-BUS Service]\nName={name}\nExec=/bin/touch {self.session.place}/started\n")
        caller = Caller(self.session)
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
                    self.assertLess(sorted(times)[10], 100)
            if not expected:
                self.start_receiver("system", DAEMON)
                self.start_receiver("session", AGENT)
        self.assertFalse(os.path.exists(f"{self.session.place}/started"))

    def test_silence_is_bounded(self):
        """Whoever is silent, be it a program or the bus: a second at most for each answer that is waited for."""
        def stopped_program():
            self.start_buses()
            stop(self.start_receiver("system", DAEMON))

        def stopped_bus():
            self.start_buses()
            self.start_receiver("system", DAEMON)
            stop(self.system)

        def listen(backlog):
            server = socket.socket(socket.AF_UNIX)
            self.addCleanup(server.close)
            server.bind(f"{self.session.place}/system")
            server.listen(backlog)

        def mute_bus():
            listen(10)

        def clogged_bus():
            listen(0)
            client = socket.socket(socket.AF_UNIX)
            self.addCleanup(client.close)
            client.connect(f"{self.session.place}/system")

        def no_bus():
            pass

        # Seconds for a ping and for a notification; a notification is followed by a ping.
        for situation, ping, post in ((stopped_program, (0.9, 1.6), (1.8, 2.8)), (stopped_bus, (0.9, 1.6), (0.9, 1.6)),
                                      (mute_bus, (0.9, 1.6), (0.9, 1.6)), (clogged_bus, (0, 0.2), (0, 0.2)),
                                      (no_bus, (0, 0.2), (0, 0.2))):
            self.session = PrivateSession(self)
            situation()
            caller = Caller(self.session)
            for command, (least, most) in (("ping-daemon", ping), ("post-daemon Accept", post)):
                with self.subTest(situation.__name__, command=command):
                    result, milliseconds = caller(command)
                    print(f"{situation.__name__}, {command}: {milliseconds:.0f} ms")
                    self.assertEqual(result, 0)
                    self.assertGreater(milliseconds, least * 1000)
                    self.assertLess(milliseconds, most * 1000)

    def test_death_is_noticed_at_once(self):
        self.start_buses()
        caller = Caller(self.session, silence=20000)
        for command in ("ping-daemon", "post-daemon Hold"):
            with self.subTest(command):
                receiver = self.start_receiver("system", DAEMON)
                stop(receiver)
                caller.begin(command)
                watcher = self.session.connect("system")
                # Long enough for the question to be asked; one asked later gets the same answer.
                time.sleep(0.2)
                receiver.kill()
                result, milliseconds = caller.result()
                self.assertEqual(result, 0)
                self.assertLess(milliseconds, 5000)
                if "post" in command:
                    self.assertIn("Hold was not handled", self.session.log("caller"))
                eventually("the name is free", lambda: not watcher.name_has_owner(DAEMON))

    def test_what_becomes_of_a_notification(self):
        self.start_buses()
        self.start_receiver("system", DAEMON)
        caller = Caller(self.session, silence=1000, handling=3000)
        for name, expected, least, most, logged in (
                ("Accept", 1, 0, 1, ""),
                ("Refuse", 0, 0, 1, f"Refuse was refused: {DAEMON} 0 :1."),
                ("Drop", 0, 0, 1, "Drop was refused: The notification was not handled."),
                ("Late", 1, 1.4, 3, ""),     # kept alive by pings
                ("Hold", 0, 2.9, 4.5, "Hold was not handled: no answer.")):
            with self.subTest(name):
                before = len(self.session.log("caller"))
                result, milliseconds = caller(f"post-daemon {name}")
                self.assertEqual(result, expected)
                self.assertGreaterEqual(milliseconds, least * 1000)
                self.assertLess(milliseconds, most * 1000)
                log = self.session.log("caller")[before:]
                self.assertEqual(log[:len(logged)] if logged else log, logged)
        # Patient, since the bus itself takes a while to pass on what is large.
        patient = Caller(self.session, silence=20000)
        self.assertEqual(patient("post-daemon Accept 2000000")[0], 1)
        self.assertEqual(patient("post-daemon Accept 3000000")[0], 0)
        self.assertIn("Accept was not sent: the user information takes more than 2 MiB.", self.session.log("caller"))
        self.assertEqual(caller("ping-daemon")[0], 1)

    def test_only_the_users_own_agent_counts(self):
        self.start_buses()
        caller = Caller(self.session)
        self.start_receiver("session", AGENT)
        self.assertEqual(caller(f"ping-agent {ME + 1}")[0], 0)
        self.assertEqual(caller(f"post-agent {ME + 1} Accept")[0], 0)

    @unittest.skipIf(ME != 0, "only root can start an agent as somebody else")
    def test_an_agent_of_somebody_else_does_not_count(self):
        self.start_buses()
        caller = Caller(self.session)
        self.start_receiver("session", AGENT, user=NOBODY)
        self.assertEqual(caller(f"ping-agent {ME}")[0], 0)
        self.assertEqual(caller(f"post-agent {ME} Accept")[0], 0)
        self.assertEqual(caller(f"ping-agent {NOBODY}")[0], 1)

    def test_the_panes_own_end(self):
        self.start_buses()
        connection = self.session.connect("session")
        for observer, expected in (("true", True), ("false", False), ("none", False)):
            with self.subTest(observer):
                caller = Caller(self.session)
                caller(f"open {observer}")
                caller(f"open {observer}")  # once more changes nothing
                self.assertEqual(self.ping(connection, PANE), expected)
                with self.assertRaises(dbus.DBusException) as refused:
                    connection.call_blocking(PANE, "/com/quorel/Communication", "com.quorel.Communication1",
                                             "PostNotification", "ssay", ("Any", PANE, b""), timeout=5)
                self.assertEqual(refused.exception.get_dbus_name(), "com.quorel.Error.UnknownNotification")
                # A second pane does without the name, and stays usable.
                second = Caller(self.session, log="second")
                second("open true")
                self.assertEqual(self.session.log("second"), "")
                self.assertEqual(self.ping(connection, PANE), expected)
                for pane in (second, caller):
                    pane.process.stdin.close()
                    self.assertEqual(pane.process.wait(10), 0)
                    pane.process.stdin = open(os.devnull, "w")
                eventually("the name is free", lambda: not connection.name_has_owner(PANE))

    def test_opening_the_own_end_is_bounded(self):
        server = socket.socket(socket.AF_UNIX)
        self.addCleanup(server.close)
        server.bind(f"{self.session.place}/session")
        server.listen(10)
        milliseconds = Caller(self.session)("open true")[1]
        self.assertLess(milliseconds, 2500)
        self.assertIn("No own end", self.session.log("caller"))

    def test_threads_together(self):
        self.start_buses()
        receiver = self.start_receiver("system", DAEMON)
        caller = Caller(self.session, silence=20000)
        caller("open true")
        connection = self.session.connect("session")
        caller.begin("together 8 50")
        for _ in range(100):
            self.assertTrue(self.ping(connection, PANE))
        self.assertEqual(caller.result()[0], 800)
        for process in (caller.process, receiver):
            process.stdin.close()
            self.assertEqual(process.wait(30), 0)  # what a sanitizer has found shows here
            process.stdin = open(os.devnull, "w")

    def test_many_calls_leave_nothing_behind(self):
        self.start_buses()
        receiver = self.start_receiver("system", DAEMON)
        caller = Caller(self.session, silence=20000)

        def footprint():
            result = []
            for process in (caller.process, receiver):
                with open(f"/proc/{process.pid}/status") as file:
                    lines = dict(line.split(":", 1) for line in file)
                result.append((len(os.listdir(f"/proc/{process.pid}/fd")), int(lines["VmRSS"].split()[0])))
            return result
        self.assertEqual(caller("together 1 500")[0], 1000)
        before = footprint()
        result, milliseconds = caller("ping-daemon-often 10000")
        self.assertEqual(caller("together 1 3000")[0], 6000)
        after = footprint()
        print(f"10000 pings: {milliseconds / 10000:.3f} ms each; files and KiB, notifications included: {before} -> {after}")
        self.assertEqual(result, 10000)
        for (files, memory), (files_then, memory_then) in zip(before, after):
            self.assertEqual(files_then, files)
            if not SANITIZED:  # a sanitizer keeps what is freed
                self.assertLess(memory_then, memory + 256)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
