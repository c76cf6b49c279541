#!/usr/bin/python3
"""The agent's item in the real panels of two desktops, used by mouse: tray_test.py PROBE DAEMON AGENT"""
import os
import plistlib
import re
import subprocess
import sys
import unittest

from desktop import VirtualDisplay
from private_system import PrivateSystem, read_line, wait_until
from schedules import SLEEP, schedule

PROBE, DAEMON, AGENT = map(os.path.abspath, sys.argv[1:4])
WATCHER = "org.kde.StatusNotifierWatcher"
XFCONFD = "/usr/lib/x86_64-linux-gnu/xfce4/xfconf/xfconfd"
HEIGHT = 32

XFCE = f"""<channel name="xfce4-panel" version="1.0">
  <property name="configver" type="int" value="2"/>
  <property name="panels" type="array"><value type="int" value="1"/><property name="panel-1" type="empty">
    <property name="position" type="string" value="p=6;x=0;y=0"/>
    <property name="position-locked" type="bool" value="true"/>
    <property name="length" type="uint" value="100"/>
    <property name="size" type="uint" value="{HEIGHT}"/>
    <property name="plugin-ids" type="array"><value type="int" value="1"/></property>
  </property></property>
  <property name="plugins" type="empty"><property name="plugin-1" type="string" value="systray"/></property>
</channel>"""
LXQT = f"""panels=panel1
[panel1]
plugins=tray
position=Top
panelSize={HEIGHT}
[tray]
type=statusnotifier
"""


class TrayTest(unittest.TestCase):
    def setUp(self):
        self.system = PrivateSystem()
        self.addCleanup(self.system.close)
        self.system.start_session_bus()
        self.display = VirtualDisplay()
        self.addCleanup(self.display.close)
        self.home = self.system.place
        self.system.variables.update(DISPLAY=self.display.name, HOME=self.home, XDG_RUNTIME_DIR=self.home,
                                     XDG_CONFIG_HOME=self.home, LC_ALL="C.UTF-8", LANGUAGE="", TZ="UTC")
        self.probe = self.system.start([PROBE], log="probe.log", stdin=subprocess.PIPE, stdout=subprocess.PIPE)

    def configure(self, path, text):
        os.makedirs(os.path.dirname(f"{self.home}/{path}"))
        with open(f"{self.home}/{path}", "w") as file:
            file.write(text)

    def tell(self, *words):
        self.probe.stdin.write((" ".join(words) + "\n").encode())
        self.probe.stdin.flush()
        self.assertEqual(self.heard(), "done")

    def heard(self):
        return read_line(self.probe)

    def run_tool(self, *words):
        """What it prints. Nothing when it fails, as those do that look at a window which goes meanwhile."""
        done = subprocess.run(list(map(str, words)), env=self.system.environment(), stdout=subprocess.PIPE,
                              stderr=subprocess.DEVNULL)
        return b"" if done.returncode else done.stdout

    def picture(self, x, y, width, height, *form):
        return self.run_tool("import", "-window", "root", "-crop", f"{width}x{height}+{x}+{y}", "-depth", 8, *form)

    def wait_for_icon(self, there=True):
        """The panel itself is of few colours."""
        def seen():
            colours = self.picture(0, 0, 100, HEIGHT, "-format", "%k", "info:")
            return colours and (int(colours) > 40) == there
        wait_until(seen, f"the icon is {'there' if there else 'gone'}")

    def click(self, x, y, button=1):
        self.run_tool("xdotool", "mousemove", x, y, "sleep", 0.1, "click", button)

    def menu(self):
        """Where the menu is: the one window that is higher than the panel and smaller than the screen."""
        windows = "search", "--onlyvisible", "--name", "", "getwindowgeometry", "--shell", "%@"
        told = wait_until(lambda: self.run_tool("xdotool", *windows), "what windows there are")
        frames = re.findall(r"X=(.*)\nY=(.*)\nWIDTH=(.*)\nHEIGHT=(.*)\n", told.decode())
        return next((list(map(int, frame)) for frame in frames if 2 * HEIGHT < int(frame[3]) < 500), None)

    def lines(self):
        """The middles of the menu's lines of text, from the top."""
        if not (frame := self.menu()):
            return []
        x, y, width, height = frame
        gray = self.picture(x, y, width, height, "gray:-")
        rows = (gray[row * width + 3:(row + 1) * width - 3] for row in range(height))  # without the frame
        inked = "".join("#" if dots and max(dots) - min(dots) > 40 else " " for dots in rows)
        # A separator is thinner.
        return [(x + 40, y + sum(band.span()) // 2) for band in re.finditer("#{5,}", inked)]

    def open_menu(self, count):
        """Its lines, when there are so many of them."""
        self.click(HEIGHT // 3, HEIGHT // 2, button=3)
        return wait_until(lambda: len(lines := self.lines()) == count and lines, f"a menu of {count} lines")

    def choose(self, line):
        self.click(*line)
        answer = self.heard()
        wait_until(lambda: not self.menu(), "the menu is gone")
        return answer

    def labels(self):
        connection = self.system.connect("session")
        self.addCleanup(connection.close)
        items = connection.call_blocking(WATCHER, "/StatusNotifierWatcher", "org.freedesktop.DBus.Properties", "Get",
                                         "ss", (WATCHER, "RegisteredStatusNotifierItems"))
        self.assertEqual(len(items), 1)
        layout = connection.call_blocking(items[0].split("/")[0], "/MenuBar", "com.canonical.dbusmenu", "GetLayout",
                                          "iias", (0, -1, ["label"]))[1]
        return [str(item[1].get("label", "-")) for item in layout[2]]

    def use(self, *panel):
        sleep, backup = "com.quorel.plugin.Sleep|{}|1", "com.acme.Back_up|{}|2"
        wake, more = "com.quorel.plugin.WakeUp|{}|3", "com.acme.More|planned|4"
        self.tell(sleep.format("skipped"), backup.format("planned"), wake.format("planned"), more)
        self.tell("show")  # before there is a panel
        running = self.system.start(panel, log="panel.txt")
        self.wait_for_icon()
        self.assertEqual(self.labels(), [
            "Sleep, Mon 2026-11-23 23:15 (skipped by alice)", "\u2003Undo skip",
            "Back__up, Mon 2026-11-23 23:30", "\u2003Postpone 15 minutes", "\u2003Postpone 1 hour", "\u2003Skip",
            "Wake Up, Mon 2026-11-23 23:45", "\u2003Postpone 15 minutes", "\u2003Postpone 1 hour", "\u2003Skip",
            "-", "Pause until tomorrow", "-", "Check for Updates", "Open Settings"])
        self.click(HEIGHT // 3, HEIGHT // 2)
        self.assertEqual(self.heard(), "settings")
        self.assertEqual(self.choose(self.open_menu(13)[5]), "skip 2 0")
        self.tell(sleep.format("skipped"), backup.format("skipped"), wake.format("planned"), more)
        self.assertEqual(self.choose(self.open_menu(11)[6]), "postpone 3 3600")
        # The panel restarts.
        self.system.end(running)
        self.system.start(panel, log="panel.txt")
        self.wait_for_icon()
        self.tell("gone")
        lines = self.open_menu(3)
        self.click(*lines[0])  # there is nothing to choose in it
        self.assertEqual(self.choose(lines[1]), "check")
        self.tell("hide")
        self.wait_for_icon(False)
        self.tell("show")
        self.wait_for_icon()
        self.assertEqual(self.choose(self.open_menu(3)[2]), "settings")
        self.assertEqual(self.system.log("probe.log"), "")

    def test_xfce(self):
        self.configure("xfce4/xfconf/xfce-perchannel-xml/xfce4-panel.xml", XFCE)
        self.system.start([XFCONFD], name="org.xfce.Xfconf", kind="session")
        self.use("xfce4-panel", "--disable-wm-check")

    def test_lxqt(self):
        self.configure("lxqt/panel.conf", LXQT)
        self.use("lxqt-panel")

    def test_daemon_agent_and_panel(self):
        self.system.start_polkit("polkit.addRule(function() { return 'yes'; });")
        root = f"{self.home}/root"
        self.configure("lxqt/panel.conf", LXQT)
        self.configure("root/Library/Preferences/com.quorel.plist", plistlib.dumps({
            "Show In Menu Bar": 1, "Check Updates": 0, "Check Updates Frequency": 0, "Prefs Version": 0,
            "Enable Network Administration": 0, "Schedule Array": [schedule(SLEEP, "23:15")]}).decode())
        self.configure("share/applications/quorel.desktop", "[Desktop Entry]\nExec=true\n")
        self.system.variables["XDG_DATA_DIRS"] = f"{self.home}/share:/usr/local/share:/usr/share"
        self.system.start_daemon(DAEMON, root, log="daemon.txt")
        self.system.start_agent(AGENT, root, log="agent.txt")
        self.system.start(["lxqt-panel"], log="panel.txt")
        self.wait_for_icon()
        self.click(*self.open_menu(15)[3])
        wait_until(lambda: "(skipped by root)" in self.labels()[0], "it is not this time")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
