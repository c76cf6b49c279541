"""A bus of the system's kind with the real polkitd on it, on private sockets, knowing one action and chosen rules.

polkitd reads fixed folders. They are covered by empty ones, in a mount namespace that only this process and its
children see: run it inside "unshare --mount", as root.
"""
import os
import shutil
import subprocess
import tempfile
import time

import dbus

BUS = """<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>system</type>
  <listen>unix:path={socket}</listen>
  <auth>EXTERNAL</auth>
  <policy context="default">
    <allow user="*"/>
    <allow own="*"/>
    <allow send_destination="*"/>
    <allow receive_sender="*"/>
  </policy>
</busconfig>
"""

ACTIONS = "/usr/share/polkit-1/actions"
RULES = ("/etc/polkit-1/rules.d", "/usr/share/polkit-1/rules.d")


class PolkitSession:
    """Ends with close(); several may follow each other."""

    def __init__(self, action_file, rule="", with_polkit=True):
        self.place = tempfile.mkdtemp()
        os.chmod(self.place, 0o755)
        self.address = f"unix:path={self.place}/bus"
        self.processes = []
        self.mounts = []
        try:
            self._start_bus()
            if with_polkit:
                self._start_polkit(action_file, rule)
        except BaseException:
            self.close()
            raise

    def environment(self):
        return dict(os.environ, DBUS_SYSTEM_BUS_ADDRESS=self.address)

    def connect(self):
        return dbus.bus.BusConnection(self.address)

    def close(self):
        for process in reversed(self.processes):
            process.terminate()
            process.wait()
        for mount in reversed(self.mounts):
            subprocess.run(["umount", mount], check=True)
        shutil.rmtree(self.place)

    def _start_bus(self):
        config = f"{self.place}/bus.conf"
        with open(config, "w") as file:
            file.write(BUS.format(socket=f"{self.place}/bus"))
        bus = subprocess.Popen(["dbus-daemon", f"--config-file={config}", "--nofork", "--print-address"],
                               stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        self.processes.append(bus)
        if not bus.stdout.readline():
            raise RuntimeError("the bus did not start")
        bus.stdout.close()

    def _start_polkit(self, action_file, rule):
        for name, folder in (("actions", ACTIONS), ("rules", RULES[0]), ("no-rules", RULES[1])):
            cover = f"{self.place}/{name}"
            os.mkdir(cover)
            subprocess.run(["mount", "--bind", cover, folder], check=True)
            self.mounts.append(folder)
        shutil.copy(action_file, ACTIONS)
        with open(f"{RULES[0]}/50-test.rules", "w") as file:
            file.write(rule)
        watcher = self.connect()
        polkit = subprocess.Popen(["/usr/lib/polkit-1/polkitd", "--no-debug"], env=self.environment(),
                                  stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self.processes.append(polkit)
        authority = "org.freedesktop.PolicyKit1"
        for _ in range(1000):
            if watcher.name_has_owner(authority):
                break
            if polkit.poll() is not None:
                raise RuntimeError("polkitd did not start")
            time.sleep(0.01)
        watcher.close()
