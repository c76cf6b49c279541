#!/usr/bin/env python3
"""The pane over files that are no preferences, and over a daemon that is not there or dies: programs_test.py BUILD"""
import os
import plistlib
import time

from pane_case import DAYS, PaneCase, main, preferences, schedule, wait_for

DEFAULTS_LOGGED = "No preferences. Creating defaults..."
SEEDED = ["11:00", "7:00"]


def whole(*schedules, **changes):
    return plistlib.dumps(preferences(*schedules, **changes))


class BadFileTest(PaneCase):
    def read_again(self):
        """Without a daemon, leaving the pane saves nothing and coming back reads the file."""
        self.screen.click(self.button("Show All"))
        wait_for(lambda: not self.screen.table(), "the pane does not go")
        self.screen.open_pane()

    def shown(self):
        screen = self.screen
        return (self.times(), screen.find(title="Check for updates")["state"],
                screen.find(toolTip="How often to check")["selected"],
                screen.find(title="Show in the menu bar")["state"])

    def content(self):
        if os.path.isdir(self.file):
            return os.listdir(self.file)
        with open(self.file, "rb") as file:
            return file.read()

    def test_what_is_no_preferences_file(self):
        good = whole(schedule("Sleep", 22, 30))
        self.open_pane()
        self.assertEqual(self.shown(), (SEEDED, 1, 0, 1))
        self.assertFalse(os.path.exists(self.file))
        logged = self.application.log().count(DEFAULTS_LOGGED)
        self.assertEqual(logged, 1)
        for name, content in (("empty", b""), ("truncated", good[:-40]), ("no property list", os.urandom(5000)),
                              ("text", b"Schedule Array"), ("list", plistlib.dumps([1, 2])),
                              ("binary, truncated", plistlib.dumps({"Check Updates": 0}, fmt=plistlib.FMT_BINARY)[:-3]),
                              ("17 MiB", whole(Padding="x" * (17 << 20))), ("directory", None)):
            with self.subTest(name):
                if content is None:
                    os.remove(self.file)
                    os.mkdir(self.file)
                else:
                    self.store(content)
                before = self.content()
                self.read_again()
                self.assertEqual(self.shown(), (SEEDED, 1, 0, 1))
                self.assertEqual(self.content(), before)
                logged += 1
                self.assertEqual(self.application.log().count(DEFAULTS_LOGGED), logged)
        os.rmdir(self.file)
        self.store(plistlib.dumps(preferences(schedule("Sleep", 22, 30)), fmt=plistlib.FMT_BINARY))
        self.read_again()
        self.assertEqual(self.shown(), (["10:30"], 0, 1, 1))

    def test_the_first_save_makes_the_file(self):
        self.start_daemon()
        screen = self.open_pane()
        screen.click(self.button("Show in the menu bar"))
        self.apply()
        every_day = {f"Active On {day}": True for day in DAYS}
        sleep = {"Needs Startup": False, "Needs Wake Up": False, "Only When Idle": False, "Idle Minutes": 15}
        wake_up = {"Needs Startup": False, "Needs Wake Up": True}
        self.wait_only_stored(
            schedule("Sleep", "23", "00", **{"Action Parameters": sleep}) | every_day,
            schedule("WakeUp", "7", "00", **{"Action Parameters": wake_up}) | every_day,
            **{"Check Updates": 1, "Check Updates Frequency": 0, "Show In Menu Bar": 0})

    def test_values_of_the_wrong_kind(self):
        # Check box, item and check box that such a value under the three options' keys shows.
        read_as = ((0, 0, 0), (1, 2, 0), (1, -1, 0), (1, 1, 1))
        odd = (([1], 0), ({"a": 1}, 0), (b"\x00\x01", 0), ("text", 0), (2.9, 1), (-1, 2), (1 << 62, 0), (True, 3),
               ("2 of them", 1))
        names = ("Check Updates", "Check Updates Frequency", "Show In Menu Bar", "Prefs Version")
        self.store(preferences(schedule("Sleep", 22, 30)))
        self.open_pane()
        for value, which in odd:
            with self.subTest(value=value):
                self.store(preferences(schedule("Sleep", 22, 30), **{name: value for name in names}))
                self.read_again()
                self.assertEqual(self.shown(), (["10:30"], *read_as[which]))
        odd = [value for value, _ in odd]
        for value in (*odd, [], [[], 3, "x", {}, {"Action Type": 5}]):
            with self.subTest(schedules=value):
                self.store(preferences(**{"Schedule Array": value}))
                before = self.content()
                self.read_again()
                self.assertEqual(self.times(), [] if isinstance(value, list) and value else SEEDED)
                self.assertEqual(self.content(), before)

        keys = [key for key in schedule("Sleep", 1, 2) if key != "Action Type"] + ["Action Parameters"]
        of_odd_kinds = [schedule("Sleep", 1, 2) | {key: value for key in keys} for value in odd]
        self.store(preferences(schedule("Sleep", 22, 30), *of_odd_kinds, schedule("WakeUp", 6, 15)))
        self.read_again()
        times = self.times()
        self.assertEqual((len(times), times[0], times[-1]), (len(odd) + 2, "10:30", "6:15"))
        self.screen.click_cell(0, "Infos")
        for row in range(1, len(odd) + 1):
            self.screen.key("Down")
            self.screen.wait(rows=lambda rows: rows[row]["selected"])
            self.screen.key("Return")
            self.wait_sheet()
            self.screen.key("Escape")
            self.wait_no_sheet()


class DaemonTest(PaneCase):
    def setUp(self):
        super().setUp()
        self.store(preferences(schedule("Sleep", 22, 30), schedule("WakeUp", 6, 15)))

    def test_edits_stay_until_there_is_a_daemon(self):
        screen = self.open_pane()
        screen.click_cell(0, "Is Enabled")
        screen.wait_rows(lambda rows: rows[0]["Is Enabled"] == 0)
        self.apply()
        screen.settle()
        self.wait_enabled("Apply")
        self.wait_enabled("Revert")
        self.assertEqual(screen.rows()[0]["Is Enabled"], 0)
        self.start_daemon()
        self.apply()
        self.wait_only_stored(schedule("Sleep", 22, 30, enabled=0), schedule("WakeUp", 6, 15))
        self.wait_enabled("Apply", False)

    def test_a_daemon_that_dies_while_the_pane_saves(self):
        screen = self.open_pane()
        for milliseconds in (0, 1, 2, 4, 8, 16):
            with self.subTest(milliseconds=milliseconds):
                self.start_daemon()
                flag = self.stored()["Schedule Array"][0]["Is Enabled"]
                shown = screen.rows()[0]["Is Enabled"]
                screen.click_cell(0, "Is Enabled")
                screen.wait_rows(lambda rows: rows[0]["Is Enabled"] == 1 - shown)
                x, y, width, height = self.wait_enabled("Apply")["frame"]
                screen.xdotool("mousemove", int(x + width / 2), int(y + height / 2), "mousedown", 1, "sleep", 0.05,
                               "mouseup", 1)
                time.sleep(milliseconds / 1000)
                self.daemon.kill()
                self.system.end(self.daemon)
                screen.settle()
                # Saved or not, the file is whole, and the pane shows it or still has the edit.
                stored = self.stored()
                self.assertEqual(set(stored), set(preferences()))
                self.assertIn(stored["Schedule Array"][0]["Is Enabled"], (flag, 1 - shown))
                if screen.find(title="Apply")["enabled"]:
                    self.assertEqual(screen.rows()[0]["Is Enabled"], 1 - shown)
                else:
                    self.assertEqual(screen.rows()[0]["Is Enabled"], stored["Schedule Array"][0]["Is Enabled"])


if __name__ == "__main__":
    main()
