#!/usr/bin/env python3
"""Stands for the desktop's password dialog of one process: auth_agent.py PID (answer|later|cancel|ignore).

Says "ready" once registered and "asked ACTION" for each question; "later" answers when it gets SIGUSR1. Answering
without a password is root's privilege.
"""
import signal
import sys

import dbus
import dbus.mainloop.glib
import dbus.service
from gi.repository import GLib

PATH = "/test/Agent"


class Cancelled(dbus.DBusException):
    _dbus_error_name = "org.freedesktop.PolicyKit1.Error.Cancelled"


class Agent(dbus.service.Object):
    def __init__(self, bus, authority, manner):
        super().__init__(bus, PATH)
        self.authority = authority
        self.manner = manner

    @dbus.service.method("org.freedesktop.PolicyKit1.AuthenticationAgent", in_signature="sssa{ss}sa(sa{sv})",
                         async_callbacks=("done", "failed"))
    def BeginAuthentication(self, action, message, icon, details, cookie, identities, done, failed):
        print("asked", action, flush=True)

        def answer():
            # The newer call wants the agent's user, whom older polkits take from the agent and newer ones from the process.
            self.authority.AuthenticationAgentResponse(cookie, identities[0], reply_handler=done, error_handler=failed)
            return GLib.SOURCE_REMOVE

        if self.manner == "answer":
            answer()
        elif self.manner == "later":
            GLib.unix_signal_add(GLib.PRIORITY_DEFAULT, signal.SIGUSR1, answer)
        elif self.manner == "cancel":
            failed(Cancelled("the user pressed Cancel"))

    @dbus.service.method("org.freedesktop.PolicyKit1.AuthenticationAgent", in_signature="s")
    def CancelAuthentication(self, cookie):
        print("cancelled", flush=True)


def start_time(pid):
    with open(f"/proc/{pid}/stat") as file:
        return int(file.read().rpartition(")")[2].split()[19])


pid = int(sys.argv[1])
dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
bus = dbus.SystemBus()
authority = dbus.Interface(bus.get_object("org.freedesktop.PolicyKit1", "/org/freedesktop/PolicyKit1/Authority"),
                           "org.freedesktop.PolicyKit1.Authority")
agent = Agent(bus, authority, sys.argv[2])
subject = ("unix-process", {"pid": dbus.UInt32(pid), "start-time": dbus.UInt64(start_time(pid))})
authority.RegisterAuthenticationAgent(subject, "en_GB.UTF-8", PATH)
print("ready", flush=True)
GLib.MainLoop().run()
