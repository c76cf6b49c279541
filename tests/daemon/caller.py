#!/usr/bin/env python3
"""Calls the daemon as its input says: "NAME RECEIVER PAYLOAD", the payload in hexadecimal digits, or "-".

Says its own bus name first, and then for each call "accepted", or the error's name and text.
"""
import sys

import dbus

bus = dbus.SystemBus()
print(bus.get_unique_name(), flush=True)
for line in sys.stdin:
    name, receiver, payload = line.split()
    try:
        bus.call_blocking("com.quorel.Daemon", "/com/quorel/Communication", "com.quorel.Communication1",
                          "PostNotification", "ssay",
                          (name, receiver, dbus.ByteArray(bytes.fromhex(payload.replace("-", "")))), timeout=60)
        print("accepted", flush=True)
    except dbus.DBusException as error:
        print(error.get_dbus_name(), error.get_dbus_message(), flush=True)
