"""What the tests of the pane on screen share: a desktop with the product's programs for each test case."""
import os
import plistlib
import shutil
import sys
import tempfile
import unittest

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path[:0] = f"{HERE}/../../harness", f"{HERE}/../support"
from desktop import DesktopServers, SettingsApplication, VirtualDisplay, install_modules, wait_for  # noqa: E402
from private_system import PrivateSystem  # noqa: E402
from talk import main_as_root  # noqa: E402

BUILD = os.path.abspath(sys.argv[1]) if len(sys.argv) > 1 else ""
DAYS = ("Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday", "Sunday")
UNLOCKED = '{ NSDocumentBooo = "<rtwzKa38Pmxq 42>"; }'


def schedule(kind, hour, minute, days=DAYS, enabled=1, **more):
    return {"Is Enabled": enabled, "Action Type": f"com.quorel.plugin.{kind}", "Action Hour": hour,
            "Action Minute": minute, **{f"Active On {day}": int(day in days) for day in DAYS}, **more}


def preferences(*schedules, **changes):
    return {"Check Updates": 0, "Check Updates Frequency": 1, "Show In Menu Bar": 1,
            "Enable Network Administration": 0, "Prefs Version": 1, "Schedule Array": list(schedules), **changes}


class PaneCase(unittest.TestCase):
    """Each test has buses, polkit and a folder of its own; programs and application are started as it asks."""

    rule = ""  # of polkit

    def setUp(self):
        self.place = tempfile.mkdtemp()
        os.chmod(self.place, 0o755)
        self.addCleanup(shutil.rmtree, self.place)
        self.root = f"{self.place}/root"
        self.file = f"{self.root}/Library/Preferences/com.quorel.plist"
        os.makedirs(os.path.dirname(self.file))
        install_modules(BUILD, self.root)
        self.system = PrivateSystem()
        self.addCleanup(self.system.close)
        self.system.start_session_bus()
        self.system.start_polkit(self.rule)
        self.display = VirtualDisplay()
        self.addCleanup(self.display.close)
        self.servers = self.application = None

    def store(self, content):
        with open(self.file, "wb") as file:
            if isinstance(content, bytes):
                file.write(content)
            else:
                plistlib.dump(content, file)

    def stored(self):
        try:
            with open(self.file, "rb") as file:
                return plistlib.load(file)
        except OSError:
            return None

    def wait_stored(self, condition):
        return wait_for(lambda: (now := self.stored()) and condition(now) and now,
                        lambda: f"the file stays {self.stored()}")

    def wait_only_stored(self, *schedules, **changes):
        """Waits until the daemon has stored the file; it must then hold this to the letter."""
        before = self.opened
        stored = self.wait_stored(lambda now: now != before)
        self.assertIs(type(stored.pop("Prefs Version")), int)
        wanted = preferences(*schedules, **changes)
        del wanted["Prefs Version"]
        self.assertEqual(stored, wanted)
        self.assertEqual(plistlib.dumps(stored), plistlib.dumps(wanted))  # a truth value is no number there

    def start_daemon(self):
        self.daemon = self.system.start_daemon(f"{BUILD}/daemon/quorel-daemon", self.root)
        return self.daemon

    def start_agent(self, *arguments):
        self.agent = self.system.start_agent(f"{BUILD}/agent/quorel-agent", self.root, *arguments)
        return self.agent

    def open_pane(self, unlocked=True, open_it=True, info=(), user=None, **how):
        """Starts the application, once more with what the last one left, and clicks the pane's icon."""
        if self.application:
            self.application.close()
        home = f"{self.place}/home"
        defaults = f"{home}/Defaults/SystemPreferences.plist"
        if unlocked and not os.path.exists(defaults):
            os.makedirs(os.path.dirname(defaults), exist_ok=True)
            with open(defaults, "w") as file:
                file.write(UNLOCKED)
        environment = dict(self.system.environment(), DISPLAY=self.display.name, LC_ALL="C.UTF-8", HOME=home,
                           TEMP=f"{self.place}/servers", PATH=f"{self.place}/bin:{os.environ['PATH']}")
        if not self.servers:
            self.servers = DesktopServers(environment, user)
            self.addCleanup(self.servers.close)
        self.opened = self.stored()
        self.application = SettingsApplication(BUILD, home, environment, info={"QuorelRoot": self.root, **dict(info)},
                                               user=user, **how)
        self.addCleanup(self.application.close)
        self.screen = self.application.screen
        if open_it:
            self.screen.open_pane()
        return self.screen

    def button(self, title):
        return self.screen.wait(title=title, **{"class": lambda name: name.endswith("Button")})

    def by_tip(self, tip):
        return self.screen.wait(toolTip=tip)

    def wait_enabled(self, title, enabled=True):
        return self.screen.wait(title=title, enabled=enabled)

    def apply(self):
        self.screen.click(self.wait_enabled("Apply"))

    def times(self):
        """Of the rows, as "7:00"."""
        return [row["Infos"]["Time"].split("\u202f")[0] for row in self.screen.rows()]

    def wait_times(self, *times):
        wait_for(lambda: self.times() == list(times), lambda: f"the table stays at {self.times()}, not {times}")

    def wait_sheet(self):
        return wait_for(self.screen.modal, "no sheet opens")

    def wait_no_sheet(self):
        wait_for(lambda: not self.screen.modal(), "the sheet stays open")


main = main_as_root
