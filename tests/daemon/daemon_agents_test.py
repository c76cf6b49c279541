#!/usr/bin/env python3
"""What users are told of Schedules and say to them: daemon_agents_test.py DAEMON PROBE STEPPING_DAEMON AGENT

The daemon and users' agents together, with stand-ins for logind and for the desktops' notification servers.
"""
import os
import socket
import subprocess
import sys

import dbus
import dbus.service

from acting_case import ActingCase, instant
from daemon_case import BUSY, NOBODY, NOT_AUTHORIZED, main
from notifications import NotificationServer, eventually
from private_system import SECONDS
from schedules import SLEEP, schedule

AGENT = os.path.abspath(sys.argv[4])
OTHER = 1  # the user "daemon"
PATH, INTERFACE = "/com/quorel/Agents", "com.quorel.Agents1"
SCHEDULER = "com.quorel.Scheduler1"
RULE = """polkit.addRule(function(action, subject) {
    if (action.id != 'com.quorel.modify-preferences' && subject.user == 'nobody') return 'yes'; });"""
PLANNED = "Quorel: Sleep, planned for 23:15"
BUTTONS = ("postpone", "Postpone 15 minutes", "skip", "Skip")


def warning(at, buttons=BUTTONS):
    """What a user is shown of the sleep that was planned for 23:15."""
    body = "As planned." if at == "23:15" else "Planned for 23:15."
    return (f"Quorel: Going to sleep at {at}", body, list(buttons), 2, 0)


class IdleMonitor(dbus.service.Object):
    """GNOME's, and a player beside it."""

    def __init__(self, connection):
        self.seconds, self.status = 0, "Paused"
        self.names = [dbus.service.BusName(name, connection)
                      for name in ("org.gnome.Mutter.IdleMonitor", "org.mpris.MediaPlayer2.test")]
        super().__init__(connection, "/org/gnome/Mutter/IdleMonitor/Core")
        self.add_to_connection(connection, "/org/mpris/MediaPlayer2")

    SUPPORTS_MULTIPLE_OBJECT_PATHS = True

    @dbus.service.method("org.gnome.Mutter.IdleMonitor", out_signature="t")
    def GetIdletime(self):
        return self.seconds * 1000

    @dbus.service.method("org.freedesktop.DBus.Properties", in_signature="ss", out_signature="v")
    def Get(self, _, name):
        return self.status


class SessionManager(dbus.service.Object):
    """A desktop's, which sends the computer to sleep unless one of these is held."""

    def __init__(self, connection):
        self.held = []
        super().__init__(dbus.service.BusName("org.gnome.SessionManager", connection), "/org/gnome/SessionManager")

    @dbus.service.method("org.gnome.SessionManager", in_signature="susu", out_signature="u")
    def Inhibit(self, who, window, why, what):
        self.held.append((str(who), int(what)))
        return 7

    @dbus.service.method("org.gnome.SessionManager", in_signature="u")
    def Uninhibit(self, number):
        self.held.remove(("Quorel", {7: 8}[number]))


class AgentsTest(ActingCase):
    def start(self, *schedules, **script):
        self.system.variables.update(LANG="C.UTF-8", XDG_DATA_DIRS="/nowhere")
        self.system.start_polkit(RULE)
        self.begin(*schedules, **script)

    def log_in(self, user, server=True):
        """The user's session bus and agent; with a server, what it shows."""
        self.system.start_session_bus()
        connection = self.system.connect("session")
        connection.set_exit_on_disconnect(False)
        self.addCleanup(connection.close)
        shown = NotificationServer(connection) if server else None
        self.system.start_agent(AGENT, self.root, user=user, log=f"agent{user}.log")
        return (connection, shown) if server else connection

    def wait_for(self, condition, what):
        try:
            return eventually(what, condition)
        except TimeoutError as error:
            raise AssertionError(f"{error}; the log: {self.logged()}") from None

    def expect(self, server, *notifications):
        """What is seen on a user's screen: title, body, actions, urgency, duration of each."""
        self.wait_for(lambda: list(server.screen.values()) == list(notifications),
                      lambda: f"{notifications} rather than {server.screen}")

    @staticmethod
    def used_by(process):
        """Seconds of the processor."""
        with open(f"/proc/{process.pid}/stat") as file:
            return sum(map(int, file.read().split()[13:15])) / os.sysconf("SC_CLK_TCK")

    def at(self):
        (open_one,) = self.state()["Open"]
        return open_one["At"]

    def test_several_are_warned_and_one_says_no(self):
        self.start(schedule(SLEEP, "23:15"))
        (_, nobodys), (_, others) = self.log_in(NOBODY), self.log_in(OTHER)
        self.reach("23:14", "warned")
        self.expect(nobodys, warning("23:15"))
        self.expect(others, warning("23:15", []))
        nobodys.press("postpone")
        self.expect(others, (PLANNED, "postponed until 23:30 by nobody", [], 1, -1))
        self.reach("23:29", "warned")
        self.expect(nobodys, warning("23:30"))
        bus = self.system.connect()
        self.addCleanup(bus.close)
        scheduler = dbus.Interface(bus.get_object("com.quorel.Daemon", "/com/quorel/Scheduler"), SCHEDULER)
        hasty, later = self.caller(NOBODY), scheduler.Upcoming(2)[1]["Token"]
        while hasty.call("/com/quorel/Scheduler", SCHEDULER, "Postpone", "s", later)[0] == "":
            pass
        nobodys.press("skip")  # which is too much by now; the warning stays
        self.expect(nobodys, (PLANNED, "More than ten changes a minute are not taken.", [], 1, -1),
                    warning("23:30"))
        scheduler.Skip(scheduler.Upcoming(1)[0]["Token"])
        self.expect(others, (PLANNED, "skipped by root", [], 1, -1))
        self.expect(nobodys, (PLANNED, "skipped by root", [], 1, -1))
        self.move_to("23:30")
        self.wait_for(lambda: self.outcomes() == ["skipped"], "skipped")
        self.assertEqual(self.calls("Suspend"), [])

    def test_a_pause_takes_the_warning_away(self):
        self.start(schedule(SLEEP, "23:15"))
        _, server = self.log_in(NOBODY)
        self.reach("23:14", "warned")
        self.expect(server, warning("23:15"))
        root = self.caller(0)
        self.assertEqual(root.call("/com/quorel/Scheduler", SCHEDULER, "Pause", "xx", 0, 0)[0], "")
        self.expect(server, (PLANNED, "Paused until Tue 2027-03-02 05:00, by root", [], 1, -1))

    def test_desktops_are_kept_from_sleep(self):
        self.start(schedule("com.quorel.plugin.StayAwake", "23:15", Until="23:40"))
        connection = self.log_in(NOBODY, server=False)
        self.reach("23:15", "running")
        manager = SessionManager(connection)  # which has come late
        self.wait_for(lambda: manager.held == [("Quorel", 8)], "the session does not count as idle")
        self.move_to("23:40")
        self.wait_for(lambda: manager.held == [], "the desktop may send it to sleep")

    def test_is_postponed_as_often_as_wanted(self):
        self.start(schedule(SLEEP, "23:15"))
        connection, server = self.log_in(NOBODY)
        for before, at, next_one in (("23:14", "23:15", "23:30"), ("23:29", "23:30", "23:45")):
            self.reach(before, "warned")
            self.expect(server, warning(at))
            server.press("postpone")
            self.wait_for(lambda: self.at() == instant(next_one), next_one)
            self.expect(server)
        server.end()
        self.reach("23:44", "warned")
        server = NotificationServer(connection)  # has been restarted; a while later everything is on the screen again
        self.expect(server, warning("23:45"))
        server.CloseNotification(*server.screen)
        server.end()
        self.move_to("23:45")
        self.last("slept")

    def test_idle_as_the_agent_measures_it(self):
        session = {"User": NOBODY, "Name": "nobody", "TTY": "tty7"}
        for seconds, status, held in ((3600, "Paused", False), (899, "Paused", True), (3600, "Playing", True)):
            with self.subTest(seconds=seconds, status=status):
                self.setUp()
                self.start(schedule(SLEEP, "23:15", Only_When_Idle=1), sessions=[session])
                monitor = IdleMonitor(self.log_in(NOBODY, server=False))
                monitor.seconds, monitor.status = seconds, status
                self.reach("23:14", "waiting" if held else "warned")
                if held:
                    monitor.seconds, monitor.status = 901, "Paused"
                    self.reach("23:15", "warned")
                    continue
                monitor.seconds = 3  # somebody has come
                self.wait_for(lambda: self.steps() == ["waiting"], "the warning ends")
                self.assertEqual(self.calls("Suspend"), [])

    def test_idle_as_the_x_server_says(self):
        """The desktop's hint, that all is quiet, counts only where the agent cannot tell."""
        session = {"User": NOBODY, "IdleHint": True, "IdleSinceHint": (instant("23:10") - 3600) * 1_000_000}
        for wayland, step in (("", "waiting"), ("wayland-0", "warned")):
            with self.subTest(wayland=wayland):
                self.setUp()
                display, given = os.pipe()
                self.system.start(["Xvfb", "-displayfd", str(given), "-nolisten", "tcp"], pass_fds=[given],
                                  stderr=subprocess.DEVNULL)
                os.close(given)
                with open(display) as file:
                    self.system.variables.update(DISPLAY=f":{file.readline().strip()}", XAUTHORITY="/dev/null")
                if wayland:
                    self.system.variables["WAYLAND_DISPLAY"] = wayland
                self.start(schedule(SLEEP, "23:15", Only_When_Idle=1), sessions=[session])
                self.log_in(NOBODY, server=False)
                self.reach("23:14", step)

    def test_a_display_that_says_nothing(self):
        """Whoever waited for it would hear and say nothing more."""
        def x_server():
            server = socket.create_server(("127.0.0.1", 0))
            self.system.variables["DISPLAY"] = f"127.0.0.1:{server.getsockname()[1] - 6000}"
            return server

        def compositor():
            server = socket.socket(socket.AF_UNIX)
            server.bind(f"{self.system.place}/compositor")
            os.chmod(server.getsockname(), 0o777)
            server.listen()
            self.system.variables["WAYLAND_DISPLAY"] = server.getsockname()
            return server

        for start in (x_server, compositor):
            with self.subTest(start.__name__):
                self.setUp()
                with start() as server:
                    self.start(schedule(SLEEP, "23:15", Only_When_Idle=1),
                               sessions=[{"User": NOBODY, "IdleHint": False}])
                    self.log_in(NOBODY, server=False)
                    self.move_to("23:14")
                    silent, _ = server.accept()
                    with silent:
                        self.wait_for(lambda: self.steps() == ["waiting"], "it waits")
                        agent = self.system.processes[-1]
                        agent.terminate()
                        self.assertEqual(agent.wait(SECONDS), 0)

    def test_nobody_is_believed_for_another(self):
        self.start(schedule(SLEEP, "23:15", Only_When_Idle=1),
                   sessions=[{"User": NOBODY, "IdleHint": True, "IdleSinceHint": 1_000_000}])
        _, server = self.log_in(NOBODY)
        agent = self.system.processes[-1]
        stranger = self.caller(OTHER)

        def call(method, signature="", *arguments):
            return stranger.call(PATH, INTERFACE, method, signature, *arguments)

        for arguments in (("Work",), ("ReportIdle", "xx", 1, 0), ("ReportAction", "ssis", "a", "ran", 0, "")):
            self.assertEqual(call(*arguments)[0], NOT_AUTHORIZED)
        # Without a session of its own nobody's word counts, neither for the computer nor for another's session.
        self.assertEqual(call("Register"), ("", ""))
        self.reach("23:14", "warned")
        for question in (0, 1, 2, 2**62):
            self.assertEqual(call("ReportIdle", "xx", question, 0), ("", ""))
        self.assertEqual(call("ReportAction", "ssis", "no-such-token", "failed", 1, "\x1b[31m"), ("", ""))
        # One agent a user; its place is free when it has gone.
        second = self.caller(OTHER)
        self.assertEqual(second.call(PATH, INTERFACE, "Register", "")[0], BUSY)
        # Signals straight to one of them, as if from the daemon, logind or the bus, are nobody's.
        bus = self.system.connect()
        self.addCleanup(bus.close)
        before = self.used_by(agent)
        (name,) = (name for name in bus.list_names() if name[0] == ":" and bus.get_unix_user(name) == NOBODY)
        daemon = bus.get_name_owner("com.quorel.Daemon")
        stranger.signal(1000, name, PATH, INTERFACE, "Changed")
        stranger.signal(1, daemon, "/org/freedesktop/login1", "org.freedesktop.login1.Manager", "PrepareForSleep",
                        signature="b", arguments=[True])
        for receiver, gone in ((daemon, name), (name, "com.quorel.Daemon")):
            stranger.signal(1, receiver, "/org/freedesktop/DBus", "org.freedesktop.DBus", "NameOwnerChanged",
                            signature="sss", arguments=[gone, daemon, ""])
        self.assertEqual(self.caller(NOBODY).call(PATH, INTERFACE, "Register", "")[0], BUSY)
        stranger.leave()
        self.wait_for(lambda: second.call(PATH, INTERFACE, "Register", "") == ("", ""), "the place is free")
        self.assertLess(self.used_by(agent) - before, 2)
        self.assertIsNone(agent.poll())
        self.wait_for(lambda: server.screen, "the warning is seen")
        self.move_to("23:15")
        self.last("slept")


main()
