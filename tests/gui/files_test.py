#!/usr/bin/env python3
"""The pane over files that are no preferences, or not there at all: files_test.py BUILD"""
import os
import plistlib

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
        for title in ("Apply", "Revert"):  # nothing is edited
            self.assertFalse(self.screen.find(title=title)["enabled"])
        logged = self.application.log().count(DEFAULTS_LOGGED)
        self.assertEqual(logged, 1)
        for name, content in (("truncated", good[:-40]), ("list", plistlib.dumps([1, 2])), ("directory", None)):
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
        odd = ([1], {"a": 1}, b"\x00\x01", "text", 2.9, 1 << 62, True)
        keys = [key for key in schedule("Sleep", 1, 2) if key != "Action Type"] + ["Action Parameters"]
        of_odd_kinds = [schedule("Sleep", 1, 2) | {key: value for key in keys} for value in odd]
        self.store(preferences(schedule("Sleep", 22, 30), *of_odd_kinds, schedule("WakeUp", 6, 15)))
        self.open_pane()
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


if __name__ == "__main__":
    main()
