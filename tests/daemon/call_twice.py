#!/usr/bin/env python3
"""Makes the same call twice over one connection, once told to, and says which error comes back first."""
import sys

import dbus
import dbus.mainloop.glib
from gi.repository import GLib

dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
bus = dbus.SystemBus()
sys.stdin.readline()
for _ in range(2):
    bus.call_async("com.quorel.Daemon", "/com/quorel/Communication", "com.quorel.Communication1", "PostNotification",
                   "ssay", ("DaemonMustReloadPrefs", "com.quorel.Daemon", dbus.ByteArray(bytes.fromhex(sys.argv[1]))),
                   lambda: print("accepted", flush=True), lambda error: print(error.get_dbus_name(), flush=True))
GLib.MainLoop().run()
