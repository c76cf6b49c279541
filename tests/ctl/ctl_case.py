"""What the tests of quorelctl share: ..._test.py STEPPING_DAEMON QUORELCTL

The clocks stand still until they are moved. It is Monday, 1 March 2027, 23:00, and nobody plays logind."""
import calendar
import os
import plistlib
import subprocess
import sys
import time
import unittest

import dbus.mainloop.glib
from gi.repository import GLib

from private_system import PrivateSystem

STEPPING_DAEMON, QUORELCTL = (os.path.abspath(path) for path in sys.argv[1:3])
NAME = "com.quorel.Daemon"


class CtlCase(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
        os.environ["TZ"] = "UTC"
        self.system = PrivateSystem()
        self.addCleanup(self.system.close)
        self.environment = {}
        for name in ("DISPLAY", "WAYLAND_DISPLAY"):  # of who runs the test
            os.environ.pop(name, None)
        self.clocks, self.root = f"{self.system.place}/clocks", f"{self.system.place}/root"

    def move_to(self, hour, minute):
        wall = calendar.timegm((2027, 3, 1, hour, minute, 0)) * 1000
        with open(f"{self.clocks}.new", "w") as file:
            file.write(f"{wall} {wall} {wall}")
        os.rename(f"{self.clocks}.new", self.clocks)

    def start_daemon(self, *schedules):
        self.move_to(23, 0)
        folder = f"{self.root}/Library/Preferences"
        os.makedirs(folder)
        with open(f"{folder}/com.quorel.plist", "wb") as file:
            plistlib.dump({"Check Updates": 0, "Check Updates Frequency": 1, "Show In Menu Bar": 1, "Prefs Version": 1,
                           "Enable Network Administration": 0, "Schedule Array": list(schedules)}, file)
        self.daemon = self.system.start([STEPPING_DAEMON, self.clocks, self.root], name=NAME, stderr=subprocess.DEVNULL)

    def run_ctl(self, *arguments, language="", user=0, stdout=subprocess.PIPE):
        environment = dict(self.system.environment(), LC_ALL="C.UTF-8", LANGUAGE="", TERM="xterm")
        environment.update(self.system.in_language(language) if language else {})
        environment.update(self.environment)
        process = subprocess.Popen([QUORELCTL, f"--root={self.root}", *arguments], env=environment, user=user, stdout=stdout,
                                   stderr=subprocess.PIPE, text=True)
        while process.poll() is None:
            GLib.MainContext.default().iteration(False)  # a stand-in answers
            time.sleep(0.005)
        output, error = process.communicate()
        return process.returncode, output, error

    def told(self, *arguments, **options):
        status, output, error = self.run_ctl(*arguments, **options)
        self.assertEqual((status, error), (0, ""))
        return output

    def refused(self, status, words, *arguments, **options):
        found, output, error = self.run_ctl(*arguments, **options)
        self.assertEqual((found, output), (status, ""), error)
        self.assertIn(words, error)
