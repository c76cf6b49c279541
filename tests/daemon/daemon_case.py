"""What the tests of the real daemon share: daemon_..._test.py DAEMON PROBE [SANITIZERS]"""
import os
import plistlib
import subprocess
import sys
import unittest

HERE = os.path.dirname(os.path.abspath(__file__))
SUPPORT = os.path.join(HERE, "../support")
sys.path.insert(0, os.path.join(HERE, "../../demo"))
from private_system import PrivateSystem, read_line

DAEMON, PROBE = (os.path.abspath(path) for path in sys.argv[1:3])
SANITIZED = len(sys.argv) > 3
NOBODY = 65534
BUSY, FAILED, INVALID, NOT_AUTHORIZED, STORAGE_FAILED, UNKNOWN = (
    f"com.quorel.Error.{name}" for name in ("Busy", "Failed", "InvalidPreferences", "NotAuthorized", "StorageFailed",
                                            "UnknownNotification"))

PREFERENCES = {
    "Check Updates": 1,
    "Check Updates Frequency": -1,
    "Show In Menu Bar": 1,
    "Enable Network Administration": 0,
    "Prefs Version": -2**63,
    "Schedule Array": [{"Is Enabled": 1, "Action Type": "com.quorel.plugin.Sleep", "Action Hour": "23",
                        "Action Minute": "00", "Active On Monday": True, "own": {"été": [b"\0", 1.5]}}],
}


def preferences(**changes):
    """The preferences with some values replaced; "_" stands for a blank, None removes."""
    changed = {**PREFERENCES, **{key.replace("_", " "): value for key, value in changes.items()}}
    return {key: value for key, value in changed.items() if value is not None}


def xml(content):
    return plistlib.dumps(content)


class Caller:
    """A process of a user that calls the daemon, one call at a time."""

    def __init__(self, system, user=0):
        self.system = system
        self.process = system.start([sys.executable, f"{HERE}/caller.py"], user=user, stdin=subprocess.PIPE,
                                    stdout=subprocess.PIPE, text=True, bufsize=1)
        self.bus_name = read_line(self.process)

    def begin(self, payload, name="DaemonMustReloadPrefs", receiver="com.quorel.Daemon"):
        self.process.stdin.write(f"{name} {receiver} {payload.hex() or '-'}\n")

    def result(self, seconds=60):
        """The error's name and text; two empty texts for an accepted call."""
        name, _, text = read_line(self.process, seconds).partition(" ")
        return name if name != "accepted" else "", text

    def save(self, payload, **how):
        self.begin(payload, **how)
        return self.result()

    def close(self):
        self.system.end(self.process)


class DaemonCase(unittest.TestCase):
    policy = ""

    def setUp(self):
        self.system = PrivateSystem(self.policy)
        self.addCleanup(self.system.close)
        self.root = f"{self.system.place}/root"
        self.folder = f"{self.root}/Library/Preferences"
        self.file = f"{self.folder}/com.quorel.plist"
        self.log = f"{self.system.place}/log"
        self.addCleanup(lambda: self.assertNotIn("Sanitizer", self.logged()))

    def start_daemon(self):
        with open(self.log, "a") as log:
            self.daemon = self.system.start_daemon(DAEMON, self.root, stderr=log)
        return self.daemon

    def caller(self, user=0):
        return Caller(self.system, user)

    def probe(self, *arguments):
        """What the pane's side of the channel answers, and in how many seconds."""
        output = subprocess.run([PROBE, *arguments], env=self.system.environment(), stdout=subprocess.PIPE,
                                stderr=subprocess.DEVNULL, check=True, timeout=60).stdout
        answer, milliseconds = output.split()
        return answer == b"yes", float(milliseconds) / 1000

    def stored(self):
        with open(self.file, "rb") as file:
            return plistlib.load(file)

    def identity(self):
        """Changes with every write."""
        status = os.stat(self.file)
        return status.st_ino, status.st_mtime_ns, status.st_ctime_ns

    def logged(self):
        if not os.path.exists(self.log):
            return ""
        with open(self.log) as log:
            return log.read()


def main():
    if os.getuid() != 0:
        print("Skipped: only root can cover polkit's folders in a mount namespace.")
        sys.exit(77)
    unittest.main(argv=sys.argv[:1])
