#!/usr/bin/env python3
"""A stand-in for a service manager on a private bus: systemd.py ADDRESS

It runs the programs of transient units, without a sandbox, and tells how they end as systemd does. A test may ask it
what it was told.
"""
import contextlib
import json
import os
import signal
import subprocess
import sys

import dbus
import dbus.mainloop.glib
import dbus.service
from gi.repository import GLib

NAME, PATH = "org.freedesktop.systemd1", "/org/freedesktop/systemd1"
MANAGER, TEST, PROPERTIES = f"{NAME}.Manager", "com.quorel.Test", "org.freedesktop.DBus.Properties"


def escaped(name):
    return "".join(c if c.isalnum() and not (i == 0 and c.isdigit()) else f"_{ord(c):02x}" for i, c in enumerate(name))


class Unit(dbus.service.Object):
    def __init__(self, manager, name, properties):
        super().__init__(manager.connection, f"{PATH}/unit/{escaped(name)}")
        self.told = {"LoadState": "loaded", "ActiveState": "active", "Result": "success", "ExecMainCode": dbus.Int32(0),
                     "ExecMainStatus": dbus.Int32(0), "Job": dbus.Struct((dbus.UInt32(0), dbus.ObjectPath("/")))}
        _, command, _ = properties["ExecStart"][0]
        environment = dict(entry.split("=", 1) for entry in properties["Environment"])
        with open("/dev/null", "r+b") as null:
            self.process = subprocess.Popen(list(command), env=environment, cwd="/", stdin=subprocess.PIPE, stdout=null,
                                            stderr=null, start_new_session=True)
        with contextlib.suppress(BrokenPipeError):  # it has read none of it, and has ended
            with self.process.stdin:
                self.process.stdin.write(bytes(properties["StandardInputData"]))
        limit = properties["RuntimeMaxUSec"] // 1000
        self.limit = GLib.timeout_add(min(limit, 2**31 - 1), self.time_out)
        GLib.child_watch_add(self.process.pid, self.ended)

    def time_out(self):
        self.told["Result"] = "timeout"
        os.killpg(self.process.pid, signal.SIGKILL)
        return True

    def ended(self, _, status):
        GLib.source_remove(self.limit)
        killed = status & 127
        self.told["ExecMainCode"] = dbus.Int32(2 if killed else 1)
        self.told["ExecMainStatus"] = dbus.Int32(killed or status >> 8)
        if status and self.told["Result"] == "success":
            self.told["Result"] = "signal" if killed else "exit-code"
        self.told["ActiveState"] = "failed" if status else "inactive"
        self.PropertiesChanged(f"{NAME}.Service", {"Result": self.told["Result"]}, [])

    @dbus.service.method(PROPERTIES, in_signature="s", out_signature="a{sv}")
    def GetAll(self, _):
        return self.told

    @dbus.service.signal(PROPERTIES, signature="sa{sv}as")
    def PropertiesChanged(self, interface, changed, gone):
        pass


class Manager(dbus.service.Object):
    def __init__(self, bus):
        super().__init__(dbus.service.BusName(NAME, bus), PATH)
        self.units, self.told, self.refused = {}, {}, ""

    @dbus.service.method(TEST, in_signature="s", out_signature="s")
    def Refuse(self, text):
        """From now on, unless it is empty. Tells each unit that was asked for, by its name."""
        self.refused = text
        return json.dumps(self.told)

    @dbus.service.method(TEST)
    def Forget(self):
        for unit in self.units.values():
            unit.remove_from_connection()
        self.units.clear()

    @dbus.service.method(MANAGER, in_signature="ssa(sv)a(sa(sv))", out_signature="o")
    def StartTransientUnit(self, name, _, properties, __):
        self.told[name] = {key: bytes(value).decode() if key == "StandardInputData" else value
                           for key, value in properties}
        if self.refused:
            raise dbus.DBusException(self.refused, name="org.freedesktop.DBus.Error.InvalidArgs")
        if name in self.units:
            raise dbus.DBusException(name, name=f"{NAME}.UnitExists")
        self.units[name] = Unit(self, name, dict(properties))
        return dbus.ObjectPath(f"{PATH}/job/1")

    @dbus.service.method(MANAGER)
    def Subscribe(self):
        pass

    @dbus.service.method(MANAGER, in_signature="s")
    def RefUnit(self, name):
        if name not in self.units:
            raise dbus.DBusException(name, name=f"{NAME}.NoSuchUnit")

    @dbus.service.method(MANAGER, in_signature="s")
    def UnrefUnit(self, name):
        if (unit := self.units.pop(name, None)) and unit.process.returncode is None:
            unit.remove_from_connection()


if __name__ == "__main__":
    dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(0))
    manager = Manager(dbus.bus.BusConnection(sys.argv[1]))
    GLib.MainLoop().run()
