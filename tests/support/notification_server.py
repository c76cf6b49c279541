"""Who shows notifications on a session bus: one of the test's."""
import dbus
import dbus.mainloop.glib
import dbus.service
from gi.repository import GLib

from private_system import wait_until

NOTIFICATIONS = "org.freedesktop.Notifications"
dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)


def eventually(what, condition):
    """Serves this process's own D-Bus objects until the condition holds."""
    def served():
        while GLib.MainContext.default().iteration(False):
            pass
        return condition()
    return wait_until(served, what)


class NotificationServer(dbus.service.Object):
    def __init__(self, connection):
        self.capabilities = ("actions", "body", "body-markup")
        self.shown = []
        self.name = dbus.service.BusName(NOTIFICATIONS, connection)
        super().__init__(connection, "/org/freedesktop/Notifications")

    def end(self):
        if self.name:
            self.remove_from_connection()
            self.name = None  # and is given back

    @dbus.service.method(NOTIFICATIONS, out_signature="as")
    def GetCapabilities(self):
        return dbus.Array(self.capabilities, signature="s")

    @dbus.service.method(NOTIFICATIONS, in_signature="susssasa{sv}i", out_signature="u",
                         sender_keyword="sender")
    def Notify(self, program, replaces, icon, title, body, actions, hints, duration, sender):
        self.client = sender
        self.shown.append((int(replaces), str(title), str(body), [str(action) for action in actions]))
        return replaces or 7

    @dbus.service.signal(NOTIFICATIONS, signature="us")
    def ActionInvoked(self, number, action):
        pass
