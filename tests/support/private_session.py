"""Private buses, and programs on them, that end with the test."""
import os
import shutil
import subprocess
import tempfile
import time

import dbus
import dbus.mainloop.glib
from gi.repository import GLib

BUS = """<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:path={place}/{name}</listen>
  <auth>EXTERNAL</auth>
  <servicedir>{place}/services</servicedir>
  <policy context="default">
    <allow user="*"/>
    <allow own="*"/>
    <allow send_destination="*"/>
    <allow receive_sender="*"/>
  </policy>
</busconfig>
"""

dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)


def eventually(what, condition, seconds=20):
    """Serves this process's own D-Bus objects until the condition holds; answers with what it held."""
    deadline = time.monotonic() + seconds
    while True:
        while GLib.MainContext.default().iteration(False):
            pass
        result = condition()
        if result:
            return result
        if time.monotonic() > deadline:
            raise AssertionError(f"not within {seconds} s: {what}")
        time.sleep(0.005)


class PrivateSession:
    """A folder, the buses in it and the processes on them, for one test case. Both buses are missing at first."""

    def __init__(self, test):
        self.place = tempfile.mkdtemp()
        test.addCleanup(shutil.rmtree, self.place)
        os.chmod(self.place, 0o755)
        os.mkdir(f"{self.place}/services")
        self.test = test
        self.started = 0
        self.address = {bus: f"unix:path={self.place}/{bus}" for bus in ("session", "system")}
        self.environment = {
            "PATH": os.environ["PATH"], "LANG": "C.UTF-8", "HOME": self.place,
            "DBUS_SESSION_BUS_ADDRESS": self.address["session"], "DBUS_SYSTEM_BUS_ADDRESS": self.address["system"],
            "JOURNAL_STREAM": "0:0",  # keeps the programs' log out of the computer's
        }
        self.environment.update((key, value) for key, value in os.environ.items() if key.endswith("SAN_OPTIONS"))

    def start_bus(self, name):
        config = f"{self.place}/{name}.conf"
        with open(config, "w") as file:
            file.write(BUS.format(place=self.place, name=name))
        bus = self.start("dbus-daemon", f"--config-file={config}", "--nofork", "--print-address")
        if not bus.stdout.readline():
            raise AssertionError("the bus did not start")
        return bus

    def connect(self, name):
        connection = dbus.bus.BusConnection(self.address[name])
        connection.set_exit_on_disconnect(False)
        self.test.addCleanup(connection.close)
        return connection

    def start(self, *command, log=None, **how):
        """A process with pipes as input and output. What it logs lands in the file `log` of the folder."""
        self.started += 1
        log = log or f"{self.started}.log"
        with open(f"{self.place}/{log}", "w") as errors:
            process = subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=errors,
                                       text=True, env=self.environment, **how)

        def end():
            process.kill()
            process.wait()
            process.stdin.close()
            process.stdout.close()
            # Not every end has a status that tells.
            self.test.assertNotIn("Sanitizer:", self.log(log))
        self.test.addCleanup(end)
        return process

    def log(self, name):
        with open(f"{self.place}/{name}") as file:
            return file.read()
