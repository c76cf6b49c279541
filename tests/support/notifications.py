"""A notification server of a test's own, and waiting that serves it."""
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
        self.entry = "quorel"  # where neither face is installed
        self.shown = []   # whatever came, in its order
        self.screen = {}  # what is seen now, by number: title, body, actions, urgency, duration
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
        assert hints["desktop-entry"] == self.entry  # or desktops would not list it
        self.client = sender
        actions = [str(action) for action in actions]
        self.shown.append((int(replaces), str(title), str(body), actions))
        number = replaces or 7 + len(self.screen)
        self.screen[number] = (str(title), str(body), actions, int(hints.get("urgency", 1)), int(duration))
        return number

    @dbus.service.method(NOTIFICATIONS, in_signature="u")
    def CloseNotification(self, number):
        if self.screen.pop(number, None):
            self.NotificationClosed(number, 3)

    @dbus.service.signal(NOTIFICATIONS, signature="us")
    def ActionInvoked(self, number, action):
        pass

    @dbus.service.signal(NOTIFICATIONS, signature="uu")
    def NotificationClosed(self, number, reason):
        pass

    def press(self, action):
        """On the only notification, which goes then, as with most servers."""
        (number,) = self.screen
        self.ActionInvoked(number, action)
        self.CloseNotification(number)
