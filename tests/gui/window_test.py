#!/usr/bin/env python3
"""The settings window as a program, with real programs behind it, used by keyboard: window_test.py BUILD"""
import subprocess

from pane_case import BUILD, PaneCase, main, preferences, schedule
from private_system import wait_until

SCREEN = {"frame": (0, 0, 1024, 768)}


class WindowTest(PaneCase):
    rule = "polkit.addRule(function() { return 'yes'; });"

    def start(self):
        return subprocess.Popen([f"{BUILD}/qt/quorel-settings", "--root", self.root], env=self.environment)

    def ask_x(self, *command):
        return subprocess.run(["xdotool", *command], env=self.environment, check=False).returncode == 0

    def test_ended_by_a_signal_it_saves_what_was_edited(self):
        self.store(preferences(schedule("Sleep", 22, 30), schedule("WakeUp", 6, 15)))
        self.start_daemon()
        self.environment = dict(self.system.environment(), DISPLAY=self.display.name)
        window = self.start()
        self.addCleanup(window.kill)
        # No window manager gives it the focus.
        wait_until(lambda: self.ask_x("search", "--onlyvisible", "--name", "^Quorel$", "windowfocus"), "no window")
        self.assertEqual(self.start().wait(30), 0)  # a second start leaves it to the first

        def is_ready():
            """Keys go astray until the window has asked polkit. The last Schedule cannot be deleted."""
            self.ask_x("key", "ctrl+Home", "Delete", "ctrl+s")
            return len(self.stored()["Schedule Array"]) == 1

        wait_until(is_ready, "not stored")
        self.ask_x("key", "ctrl+Home")
        wait_until(lambda: self.display.picture(SCREEN) == self.display.picture(SCREEN), "never at rest")
        before = self.display.picture(SCREEN)
        self.ask_x("key", "space")
        wait_until(lambda: self.display.picture(SCREEN) != before, "not switched off")
        window.terminate()
        self.assertEqual(window.wait(30), 0)
        self.wait_stored(lambda now: now["Schedule Array"][0]["Is Enabled"] == 0)


if __name__ == "__main__":
    main()
