#!/usr/bin/env python3
"""A stand-in for logind on a private bus: logind.py CLOCKS

It does what a script says, which a test sets over the bus, and remembers what it was asked. When it sleeps, it moves
the clocks on in the file CLOCKS, which holds milliseconds: the wall clock, time since boot, time awake.
"""
import json
import os
import sys

import dbus
import dbus.mainloop.glib
import dbus.service
from gi.repository import GLib

NAME, PATH = "org.freedesktop.login1", "/org/freedesktop/login1"
MANAGER, TEST = "org.freedesktop.login1.Manager", "com.quorel.Test"
PROPERTIES = "org.freedesktop.DBus.Properties"

SCRIPT = {
    "error": "",                 # what sleep or shut-down is refused with
    "slept": 60_000,             # milliseconds; 0 for a system that says yes and stays awake
    "comes back": True,          # whether the end of sleep is announced
    "inhibitors": [],            # of others: what, who, why, mode
    "scheduled": ["", 0],        # shut-down
    "sessions": [],              # properties of each
    "cannot": [],                # kinds of sleep: Suspend, Hibernate; it has no others, like an old one
}


class Session(dbus.service.Object):
    def __init__(self, bus, number, properties):
        super().__init__(bus, f"{PATH}/session/_{number}")
        self.properties = properties

    @dbus.service.method(PROPERTIES, in_signature="s", out_signature="a{sv}")
    def GetAll(self, _):
        values = {"Name": "alice", "Class": "user", "State": "active", "Type": "x11", "TTY": "", "RemoteHost": "",
                  "Active": True, "IdleHint": False, "IdleSinceHint": 0, **self.properties}
        values["IdleSinceHint"] = dbus.UInt64(values["IdleSinceHint"])
        user = dbus.UInt32(values.pop("User", 1000))
        return {**values, "User": dbus.Struct((user, dbus.ObjectPath("/")), signature="uo"),
                "Scopes": dbus.Array(["x"], signature="s")}


class Seat(dbus.service.Object):
    """Shows the first of the sessions."""

    def __init__(self, manager):
        super().__init__(manager.connection, f"{PATH}/seat/seat0")
        self.manager = manager

    @dbus.service.method(PROPERTIES, in_signature="ss", out_signature="v")
    def Get(self, _, name):
        assert name == "ActiveSession"
        shown = ("0", f"{PATH}/session/_0") if self.manager.sessions else ("", "/")
        return dbus.Struct((shown[0], dbus.ObjectPath(shown[1])), signature="so", variant_level=1)


class Manager(dbus.service.Object):
    def __init__(self, bus, clocks):
        super().__init__(dbus.service.BusName(NAME, bus), PATH)
        self.clocks, self.script, self.sessions, self.locks = clocks, dict(SCRIPT), [], {}
        self.calls, self.under_way = [], False
        self.seat = Seat(self)

    @dbus.service.method(TEST, in_signature="s", out_signature="s")
    def Script(self, changes):
        self.script.update(json.loads(changes))
        for session in self.sessions:
            session.remove_from_connection()
        self.sessions = [Session(self.connection, number, properties)
                         for number, properties in enumerate(self.script["sessions"])]
        return json.dumps({"calls": self.calls, "locks": list(self.locks.values())})

    @dbus.service.method(TEST, in_signature="x")
    def Pass(self, milliseconds):
        """For tests that move the clocks while it may sleep, and move them, too."""
        self.move(milliseconds, milliseconds)

    def move(self, by, awake_by):
        with open(self.clocks) as file:
            wall, boot, awake = map(int, file.read().split())
        with open(self.clocks + ".new", "w") as file:
            file.write(f"{wall + by} {boot + by} {awake + awake_by}")
        os.rename(self.clocks + ".new", self.clocks)

    @dbus.service.method(MANAGER, out_signature="a(ssssuu)")
    def ListInhibitors(self):
        others = [(*lock, 0, 1) for lock in self.script["inhibitors"]]
        return others + [(*lock[:4], 0, lock[4]) for lock in self.locks.values()]

    @dbus.service.method(MANAGER, out_signature="a(susso)")
    def ListSessions(self):
        return [(str(number), 1000, "alice", "seat0", f"{PATH}/session/_{number}")
                for number in range(len(self.sessions))]

    @dbus.service.method(MANAGER, in_signature="ssss", out_signature="h", sender_keyword="sender")
    def Inhibit(self, what, who, why, mode, sender):
        if self.under_way and mode == "delay":
            raise dbus.DBusException("under way", name=f"{NAME}.OperationInProgress")
        kept, given = os.pipe()
        process = self.connection.call_blocking("org.freedesktop.DBus", "/", "org.freedesktop.DBus",
                                                "GetConnectionUnixProcessID", "s", (sender,))
        self.locks[kept] = [what, who, why, mode, process]
        GLib.io_add_watch(kept, GLib.PRIORITY_DEFAULT, GLib.IO_HUP, self.released)
        answer = dbus.types.UnixFd(given)
        os.close(given)
        return answer

    def released(self, kept, _):
        os.close(kept)
        del self.locks[kept]
        return False

    @dbus.service.method(PROPERTIES, in_signature="ss", out_signature="v")
    def Get(self, _, name):
        assert name == "ScheduledShutdown"
        kind, at = self.script["scheduled"]
        return dbus.Struct((kind, dbus.UInt64(at)), signature="st", variant_level=1)

    @dbus.service.method(PROPERTIES, in_signature="s", out_signature="a{sv}")
    def GetAll(self, _):
        return {"LidClosed": False, "OnExternalPower": True}

    @dbus.service.method(MANAGER, in_signature="t")
    def SuspendWithFlags(self, flags):
        self.begin("Suspend", flags, self.PrepareForSleep, self.sleep)

    @dbus.service.method(MANAGER, in_signature="t")
    def HibernateWithFlags(self, flags):
        self.begin("Hibernate", flags, self.PrepareForSleep, self.sleep)

    @dbus.service.method(MANAGER, out_signature="s")
    def CanSuspend(self):
        return "na" if "Suspend" in self.script["cannot"] else "yes"

    @dbus.service.method(MANAGER, out_signature="s")
    def CanHibernate(self):
        return "na" if "Hibernate" in self.script["cannot"] else "yes"

    @dbus.service.method(MANAGER, in_signature="t")
    def PowerOffWithFlags(self, flags):
        self.begin("PowerOff", flags, self.PrepareForShutdown, lambda: None)

    @dbus.service.method(MANAGER, in_signature="t")
    def RebootWithFlags(self, flags):
        self.begin("Reboot", flags, self.PrepareForShutdown, lambda: None)

    @dbus.service.signal(MANAGER, signature="b")
    def PrepareForSleep(self, begins):
        pass

    @dbus.service.signal(MANAGER, signature="b")
    def PrepareForShutdown(self, begins):
        pass

    def begin(self, call, flags, announce, then):
        self.calls.append(f"{call} {flags}")
        if self.script["error"]:
            raise dbus.DBusException("The script says so.", name=self.script["error"])
        self.under_way = True
        GLib.idle_add(announce, True)
        GLib.timeout_add(20, self.when_unlocked, then)

    def when_unlocked(self, then):
        if any(lock[3] == "delay" for lock in self.locks.values()):
            return True
        then()
        return False

    def sleep(self):
        self.calls.append("slept")
        self.move(self.script["slept"], 0)
        self.under_way = False
        if self.script["comes back"]:
            self.PrepareForSleep(False)


if __name__ == "__main__":
    dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
    manager = Manager(dbus.bus.BusConnection(os.environ["DBUS_SYSTEM_BUS_ADDRESS"]), sys.argv[1])
    GLib.MainLoop().run()
