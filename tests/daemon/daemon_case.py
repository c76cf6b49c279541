"""What the tests of the real daemon share: daemon_..._test.py DAEMON KIT_CALLER"""
import json
import os
import plistlib
import subprocess
import sys
import unittest

from private_system import PrivateSystem, read_line
from talk import Talk, main_as_root

HERE = os.path.dirname(os.path.abspath(__file__))
SUPPORT = os.path.join(HERE, "../support")
DAEMON, KIT_CALLER = (os.path.abspath(path) for path in sys.argv[1:3])
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


class Caller(Talk):
    """A process of a user that calls the daemon."""

    def __init__(self, system, user):
        super().__init__(system, sys.executable, f"{HERE}/caller.py", user=user)

    def open(self):
        super().open()
        self.bus_name = read_line(self.process)

    def begin(self, payload, name="DaemonMustReloadPrefs", receiver="com.quorel.Daemon", sender=""):
        super().begin(f"{name} {receiver} {payload.hex() or '-'} {sender}")

    def edit(self, content, base):
        """As save, the text of an accepted call being what was joined."""
        super().begin(f"edits {xml(content).hex()} {xml(base).hex()}")
        error, text = self.result()
        return error, text if error else plistlib.loads(bytes.fromhex(text))

    def call(self, path, interface, method, signature, *arguments):
        super().begin(f"call {path} {interface} {method} {signature or '-'} {json.dumps(arguments).encode().hex()}")
        return self.result()

    def signal(self, times, *what, signature="", arguments=()):
        super().begin(" ".join(["signal", str(times), *what, signature or "-", json.dumps(arguments).encode().hex()]))
        return self.result()

    def leave(self):
        """Leaves the bus, without an end of the process."""
        super().begin("leave")

    def result(self):
        """The error's name and text; two empty texts for an accepted call."""
        name, _, text = super().result().partition(" ")
        return name if name != "accepted" else "", text

    def save(self, payload, **how):
        self.begin(payload, **how)
        return self.result()


class DaemonCase(unittest.TestCase):
    policy = ""

    def setUp(self):
        self.system = PrivateSystem(self.policy)
        self.addCleanup(self.system.close)
        self.root = f"{self.system.place}/root"
        self.folder = f"{self.root}/Library/Preferences"
        self.file = f"{self.folder}/com.quorel.plist"
        self.kit = None

    def start_daemon(self):
        self.daemon = self.system.start_daemon(DAEMON, self.root, log="daemon.log")
        return self.daemon

    def caller(self, user=0):
        return Caller(self.system, user)

    def probe(self, command="ping-daemon"):
        """What the pane's side of the channel answers, and in how many seconds. It takes five of silence for an answer:
        longer than any machine needs, and shorter than whatever the daemon waits for."""
        self.kit = self.kit or Talk(self.system, KIT_CALLER, "5000", "120000", stderr=subprocess.DEVNULL)
        answer, milliseconds = self.kit(command).split()
        return answer == "1", float(milliseconds) / 1000

    def stored(self):
        with open(self.file, "rb") as file:
            return plistlib.load(file)

    def identity(self):
        """Changes with every write."""
        status = os.stat(self.file)
        return status.st_ino, status.st_mtime_ns, status.st_ctime_ns

    def logged(self):
        return self.system.log("daemon.log")


main = main_as_root
