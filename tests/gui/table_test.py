#!/usr/bin/env python3
"""The schedule table and the options, used with mouse and keyboard: table_test.py BUILD"""
import os

from pane_case import DAYS, PaneCase, main, preferences, schedule


def hours(stored):
    return [entry["Action Hour"] for entry in stored["Schedule Array"]]


class TableTest(PaneCase):
    def setUp(self):
        super().setUp()
        self.store(preferences(schedule("Sleep", "22", "30"), schedule("WakeUp", 6, 15, days=("Monday",)),
                               schedule("Sleep", 13, 0, enabled=0, Remark="kept"), schedule("WakeUp", 9, 5)))

    def test_an_option_goes_to_the_file_and_back(self):
        self.start_daemon()
        screen = self.open_pane()
        self.assertFalse(screen.find(title="Apply")["enabled"])
        self.assertFalse(screen.find(toolTip="How often to check")["enabled"])
        screen.click(self.button("Check for updates"))
        screen.wait(toolTip="How often to check", enabled=True)
        screen.click(self.wait_enabled("Revert"))
        self.wait_enabled("Apply", False)
        screen.click(self.button("Show in the menu bar"))
        screen.click(self.button("Check for updates"))
        screen.wait(toolTip="How often to check", enabled=True)
        screen.choose(self.by_tip("How often to check"), "Monthly")
        self.apply()
        stored = self.wait_stored(lambda now: now["Show In Menu Bar"] == 0)
        self.assertEqual((stored["Check Updates"], stored["Check Updates Frequency"]), (1, 2))
        self.assertEqual(stored["Schedule Array"][2]["Remark"], "kept")
        self.assertEqual(set(stored), set(preferences()))
        self.wait_enabled("Apply", False)
        self.wait_enabled("Revert", False)

    def test_ticks_sorts_drags_and_applies(self):
        self.start_daemon()
        screen = self.open_pane()
        self.wait_times("10:30", "6:15", "1:00", "9:05")
        screen.click_cell(2, "Is Enabled")
        screen.wait_rows(lambda rows: rows[2]["Is Enabled"] == 1)
        self.wait_enabled("Revert")
        screen.click_cell(1, "Active On Tuesday")
        screen.wait_rows(lambda rows: rows[1]["Active On Tuesday"] == 1)

        screen.click_header("Infos")
        self.wait_times("6:15", "9:05", "1:00", "10:30")
        screen.click_header("Infos")
        self.wait_times("10:30", "1:00", "9:05", "6:15")
        # The direction belongs to the process, not to the column.
        screen.click_header("Active On Wednesday")
        screen.wait_rows(lambda rows: rows[0]["Active On Wednesday"] == 1 and rows[3]["Active On Wednesday"] == 0)
        screen.click_header("Active On Wednesday")
        self.wait_times("6:15", "10:30", "1:00", "9:05")

        screen.drag_row(0, 2)
        self.wait_times("10:30", "1:00", "6:15", "9:05")
        self.apply()
        stored = self.wait_stored(lambda now: hours(now) == ["22", 13, 6, 9])
        self.assertEqual(stored["Schedule Array"][1]["Is Enabled"], 1)
        self.assertEqual(stored["Schedule Array"][2]["Active On Tuesday"], 1)

    def test_the_first_row_dropped_on_itself_leaves_a_pane_that_works(self):
        screen = self.open_pane()
        screen.drag_row(0, -1, sideways=12)  # a slip
        screen.drag_row(0, -1)
        self.wait_times("6:15", "1:00", "9:05")
        screen.click_header("Infos")
        self.wait_times("6:15", "9:05", "1:00")

    def test_without_a_mouse(self):
        """From a locked pane to a stored Schedule."""
        self.start_daemon()
        screen = self.open_pane(unlocked=False)
        screen.key("space")
        screen.wait(value="Settings unlocked")
        self.tab_to(toolTip="Add a schedule")
        screen.key("space")
        self.wait_sheet()
        screen.type("15")
        screen.key("Return")
        self.wait_times("10:30", "6:15", "1:00", "9:05", "3:00")
        screen.wait(rows=lambda rows: rows[4]["selected"])
        screen.key("shift+Tab", "Up", "Up", "space")
        screen.wait_rows(lambda rows: rows[2]["Is Enabled"] == 1)
        screen.xdotool("keydown", "Delete", "sleep", 1.5, "keyup", "Delete")
        self.wait_times("10:30", "6:15", "9:05", "3:00")
        self.tab_to(title="Apply")
        screen.key("space")
        self.wait_stored(lambda now: hours(now) == ["22", 6, 9, 15])

    def tab_to(self, **facts):
        for _ in range(12):
            if self.screen.find(focused=True, **facts):
                return
            self.screen.key("Tab")
            self.screen.settle()
        self.fail(f"Tab does not lead to {facts}")

    def test_edits_outlive_the_application(self):
        self.start_daemon()
        for end in (lambda: self.screen.key("alt+q"), lambda: self.application.process.terminate(),
                    lambda: self.display.close()):
            screen = self.open_pane()
            before = screen.rows()[0]["Is Enabled"]
            screen.click_cell(0, "Is Enabled")
            screen.wait_rows(lambda rows: rows[0]["Is Enabled"] != before)
            end()
            self.wait_stored(lambda now: now["Schedule Array"][0]["Is Enabled"] != before)
            self.application.process.wait(20)

    def test_the_first_save_makes_the_file(self):
        os.remove(self.file)
        self.start_daemon()
        screen = self.open_pane()
        screen.click(self.button("Show in the menu bar"))
        self.apply()
        every_day = {f"Active On {day}": True for day in DAYS}
        sleep = {"Needs Startup": False, "Needs Wake Up": False, "Kind": "suspend", "Only When Idle": False,
                 "Idle Minutes": 15}
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
