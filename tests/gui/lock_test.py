#!/usr/bin/env python3
"""The padlock, clicked by an administrator and by others: lock_test.py BUILD"""
import os
import signal

from pane_case import PaneCase, main, preferences, schedule, wait_for
from private_system import read_line
from talk import answer_with

LOCKED, UNLOCKED = "Settings locked", "Settings unlocked"
OPTIONS = ("Check for updates", "Show in the menu bar")
COMMANDS = ("Add a schedule", "Delete the selected schedule", "Edit the selected schedule")


class LockCase(PaneCase):
    def setUp(self):
        super().setUp()
        self.schedules = [schedule("Sleep", 22, 30), schedule("WakeUp", 6, 15), schedule("Sleep", 13, 0)]
        self.store(preferences(*self.schedules, **{"Check Updates": 1}))
        os.chmod(self.root, 0o755)

    def toggle(self):
        self.screen.click(self.by_tip("Lock or unlock the settings"))

    def wait_label(self, text):
        self.screen.wait(value=text)

    def enabled(self):
        """Of everything behind the lock, what can be used."""
        views = {view.get("toolTip") or view.get("title"): view.get("enabled")
                 for window in self.screen.look() for view in window["views"]}
        names = (*OPTIONS, "How often to check", *COMMANDS, "Save the settings", "Discard changes")
        return [name for name in names if views[name]]

    def enabled_cells(self):
        return {cell["enabled"] for row in self.screen.table()["rows"] for cell in row["cells"].values()}

    def assert_locked(self):
        self.wait_label(LOCKED)
        self.assertEqual(self.enabled(), [])
        self.assertEqual(self.enabled_cells(), {False})

    def assert_unlocked(self):
        self.wait_label(UNLOCKED)
        self.assertEqual(self.enabled(), [*OPTIONS, "How often to check", COMMANDS[0]])
        self.assertEqual(self.enabled_cells(), {True})



class AdministratorTest(LockCase):
    def test_locks_and_unlocks(self):
        self.start_daemon()
        screen = self.open_pane(unlocked=False)
        self.assert_locked()
        screen.click_cell(0, "Infos", times=2)
        screen.click_cell(1, "Is Enabled")
        screen.click_cell(2, "Active On Monday")
        screen.drag_row(0, 2)
        screen.key("Down", "End", "Home", "Next", "Prior", "shift+Up", "alt+a", "Delete", "Return")
        # The header is not locked; what it does comes after all of the above.
        screen.click_header("Infos")
        self.wait_times("6:15", "1:00", "10:30")
        self.assertIsNone(screen.modal())
        self.assertFalse(any(row["selected"] for row in screen.table()["rows"]))
        self.assertTrue(all(row["Is Enabled"] and row["Active On Monday"] for row in screen.rows()))
        self.assert_locked()

        locked = self.display.picture(screen.table())
        self.toggle()
        self.assert_unlocked()
        wait_for(lambda: self.display.picture(screen.table()) != locked, "the rows are not drawn anew")
        screen.click(self.button(OPTIONS[0]))
        screen.wait(toolTip="How often to check", enabled=False)
        self.toggle()
        self.assert_locked()
        self.toggle()
        self.wait_label(UNLOCKED)
        screen.wait(toolTip="How often to check", enabled=False)
        self.wait_enabled("Apply", False)
        self.wait_enabled("Revert", False)

        # What was edited before locking is still sent when the pane is left.
        self.toggle()
        self.wait_label(LOCKED)
        screen.click(self.button("Show All"))
        self.wait_only_stored(*(self.schedules[i] for i in (1, 2, 0)))

    def test_an_unlocked_pane_opens_unlocked(self):
        self.open_pane(unlocked=False)
        self.toggle()
        self.wait_label(UNLOCKED)
        self.application.close()
        self.open_pane(unlocked=False)
        self.assert_unlocked()
        self.toggle()
        self.assert_locked()
        self.application.close()
        self.open_pane(unlocked=False)
        self.assert_locked()


class AskedTest(LockCase):
    def test_the_label_says_that_somebody_is_asked(self):
        self.open_pane(unlocked=False, user="nobody")
        label = self.screen.wait(value=LOCKED)
        locked = self.display.picture(label)
        agent = answer_with(self.system, self.application.process, "later")
        self.toggle()
        self.assertEqual(read_line(agent), "asked com.quorel.modify-preferences")
        # The application waits and tells nothing: only its picture can be looked at.
        asking = wait_for(lambda: (now := self.display.picture(label)) != locked and now, "the label stays")
        self.assertGreater(len(set(asking)), 1)
        agent.send_signal(signal.SIGUSR1)
        self.assert_unlocked()
        self.assertNotIn(asking, (locked, self.display.picture(label)))


if __name__ == "__main__":
    main()
