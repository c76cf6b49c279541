#!/usr/bin/env python3
"""Calls the daemon as its input says, without waiting for answers: "NAME RECEIVER PAYLOAD [SENDER]", the payload in
hexadecimal digits, or "-"; a sender is claimed in the message. "leave" leaves the bus.

Says its own bus name first, and then for each answer "accepted", or the error's name and text.
"""
import sys

import dbus
import dbus.lowlevel
import dbus.mainloop.glib
from gi.repository import GLib

bus = dbus.SystemBus(mainloop=dbus.mainloop.glib.DBusGMainLoop())
bus.set_exit_on_disconnect(False)
print(bus.get_unique_name(), flush=True)


def answered(reply):
    failed = reply.get_type() == dbus.lowlevel.MESSAGE_TYPE_ERROR
    print(*(reply.get_error_name(), *reply.get_args_list()) if failed else ("accepted",), flush=True)


def obey(*_):
    words = sys.stdin.readline().split()
    if words in ([], ["leave"]):
        bus.close()
        return bool(words)
    name, receiver, payload, *sender = words
    call = dbus.lowlevel.MethodCallMessage("com.quorel.Daemon", "/com/quorel/Communication",
                                           "com.quorel.Communication1", "PostNotification")
    call.append(name, receiver, dbus.ByteArray(bytes.fromhex(payload.replace("-", ""))), signature="ssay")
    if sender:
        call.set_sender(sender[0])
    bus.send_message_with_reply(call, answered, 120)
    return True


GLib.io_add_watch(sys.stdin, GLib.PRIORITY_DEFAULT, GLib.IO_IN | GLib.IO_HUP, obey)
GLib.MainLoop().run()
