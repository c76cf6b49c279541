#!/usr/bin/env python3
"""Calls the daemon as its input says, without waiting for answers: "NAME RECEIVER PAYLOAD [SENDER]", the payload in
hexadecimal digits, or "-"; a sender is claimed in the message, and "-" in its place forbids asking anybody. "call PATH INTERFACE METHOD SIGNATURE ARGUMENTS" is
any call, its arguments as JSON in such digits, "signal TIMES RECEIVER PATH INTERFACE SIGNAL SIGNATURE ARGUMENTS" sends one
straight to its receiver, "edits PAYLOAD BASE" posts edits, and "leave" leaves the bus.

Says its own bus name first, and then for each answer "accepted", or the error's name and text.
"""
import json
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
    told = [bytes(one).hex() for one in reply.get_args_list() if isinstance(one, dbus.Array)]
    print(*(reply.get_error_name(), *reply.get_args_list()) if failed else ("accepted", *told), flush=True)


def obey(*_):
    words = sys.stdin.readline().split()
    if words in ([], ["leave"]):
        bus.close()
        return bool(words)
    if words[0] == "signal":
        for _ in range(int(words[1])):
            signal = dbus.lowlevel.SignalMessage(*words[3:6])
            signal.set_destination(words[2])
            signal.append(*json.loads(bytes.fromhex(words[7])), signature=words[6].strip("-"))
            bus.send_message(signal)
        bus.flush()
        print("accepted", flush=True)
        return True
    if words[0] == "call":
        call = dbus.lowlevel.MethodCallMessage("com.quorel.Daemon", *words[1:4])
        call.append(*json.loads(bytes.fromhex(words[5])), signature=words[4].strip("-"))
        bus.send_message_with_reply(call, answered, 120)
        return True
    if words[0] == "edits":
        call = dbus.lowlevel.MethodCallMessage("com.quorel.Daemon", "/com/quorel/Communication",
                                               "com.quorel.Communication1", "PostEdits")
        call.append("DaemonMustReloadPrefs", "com.quorel.Daemon", *(dbus.ByteArray(bytes.fromhex(word)) for word in words[1:]),
                    signature="ssayay")
        bus.send_message_with_reply(call, answered, 120)
        return True
    name, receiver, payload, *sender = words
    call = dbus.lowlevel.MethodCallMessage("com.quorel.Daemon", "/com/quorel/Communication",
                                           "com.quorel.Communication1", "PostNotification")
    call.append(name, receiver, dbus.ByteArray(bytes.fromhex(payload.replace("-", ""))), signature="ssay")
    call.set_allow_interactive_authorization(sender != ["-"])
    if sender not in ([], ["-"]):
        call.set_sender(sender[0])
    bus.send_message_with_reply(call, answered, 120)
    return True


GLib.io_add_watch(sys.stdin, GLib.PRIORITY_DEFAULT, GLib.IO_IN | GLib.IO_HUP, obey)
GLib.MainLoop().run()
