#!/usr/bin/env python3
"""Idleness as desktops' compositors tell it: daemon_compositors_test.py DAEMON PROBE STEPPING_DAEMON AGENT

The compositors are real and without a screen, input comes by their own means, logind is a stand-in. What the agent
measures takes its time: a minute, the least that a Schedule can ask for.
"""
import os
import shutil
import sys
import threading
import time

from acting_case import ActingCase
from daemon_case import NOBODY, main
from private_system import wait_until
from schedules import SLEEP, schedule

AGENT = os.path.abspath(sys.argv[4])
RULE = """polkit.addRule(function(action, subject) {
    if (action.id != 'com.quorel.modify-preferences' && subject.user == 'nobody') return 'yes'; });"""
SOCKET = "wayland-test"
KWIN = ("--virtual", "--socket", SOCKET), ("org.freedesktop.ScreenSaver", "/ScreenSaver",
                                           "org.freedesktop.ScreenSaver", "SimulateUserActivity")
MUTTER = (("--headless", "--wayland", "--no-x11", "--virtual-monitor", "800x600", "--wayland-display", SOCKET),
          ("org.gnome.Mutter.IdleMonitor", "/org/gnome/Mutter/IdleMonitor/Core", "org.gnome.Mutter.IdleMonitor",
           "ResetIdletime"))


class CompositorsTest(ActingCase):
    def log_in(self, program, arguments):
        folder = f"{self.system.place}/compositor"
        os.mkdir(folder, 0o700)
        copy = shutil.copy(shutil.which(program), self.system.place)  # without privileges that are not to be had here
        os.chown(folder, NOBODY, NOBODY)
        self.system.start_session_bus()
        self.system.variables.update(LANG="C.UTF-8", HOME=folder, XDG_RUNTIME_DIR=folder, XDG_CONFIG_HOME=folder,
                                     XDG_CACHE_HOME=folder, MUTTER_DEBUG_RESET_IDLETIME="1")
        for name in ("DISPLAY", "WAYLAND_DISPLAY"):
            self.system.variables.pop(name, None)
        compositor = self.system.start([copy, *arguments], user=NOBODY, log="compositor.txt")
        wait_until(lambda: compositor.poll() is not None or os.path.exists(f"{folder}/{SOCKET}"), "a compositor")
        self.assertIsNone(compositor.poll(), self.system.log("compositor.txt"))
        self.system.variables["WAYLAND_DISPLAY"] = SOCKET
        self.system.start_agent(AGENT, self.root, user=NOBODY, log="agent.log")

    def use(self, means):
        """Input goes on until the function that is returned is called."""
        connection, ended = self.system.connect("session"), threading.Event()
        connection.set_exit_on_disconnect(False)

        def go_on():
            while not ended.is_set():
                connection.call_blocking(*means, "", ())
                ended.wait(0.2)
            connection.close()

        user = threading.Thread(target=go_on)
        user.start()

        def end():
            ended.set()
            user.join()
        self.addCleanup(end)
        return end

    def check(self, program, arguments, means):
        self.system.start_polkit(RULE)
        self.begin(schedule(SLEEP, "23:15", Only_When_Idle=1, Idle_Minutes=1),
                   sessions=[{"User": NOBODY, "Name": "nobody", "Type": "wayland", "TTY": ""}])
        self.log_in(program, arguments)
        end = self.use(means)
        self.reach("23:14", "waiting")
        end()
        time.sleep(63)
        self.reach("23:16", "warned")
        end = self.use(means)  # somebody has come
        self.wait_for(lambda: self.steps() == ["waiting"], "the warning ends")
        end()
        time.sleep(63)
        self.reach("23:18", "warned")
        self.move_to("23:19")
        self.last("slept")

    def test_kwin(self):
        self.check("kwin_wayland", *KWIN)

    def test_mutter(self):
        self.check("mutter", *MUTTER)


main()
