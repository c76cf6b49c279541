#!/usr/bin/env python3
"""What the daemon stores and what it refuses, for a caller that may."""
import os
import plistlib
import shutil
import signal
import subprocess
import time

from daemon_case import DAEMON, INVALID, NOBODY, PREFERENCES, UNKNOWN, DaemonCase, main, preferences, xml
from private_system import SECONDS, wait_until


class SavingTest(DaemonCase):
    def setUp(self):
        super().setUp()
        self.start_daemon()
        self.root_caller = self.caller()

    def save(self, payload, **how):
        return self.root_caller.save(payload, **how)

    def test_stores_what_it_is_sent(self):
        for number, payload in enumerate((xml(PREFERENCES), xml(preferences(Schedule_Array=[])),
                                          plistlib.dumps(PREFERENCES, fmt=plistlib.FMT_BINARY))):
            with self.subTest(number):
                self.assertEqual(self.save(payload), ("", ""))
                self.assertEqual(self.stored(), plistlib.loads(payload))
                self.assertEqual(os.stat(self.file).st_mode & 0o7777, 0o644)
                self.assertEqual(os.listdir(self.folder), ["com.quorel.plist"])
        self.assertEqual(self.logged().count("Preferences of user 0 are stored."), 3)

    def test_refuses_and_names_the_fault(self):
        self.save(xml(PREFERENCES))
        before = self.identity()
        large = preferences(Schedule_Array=[{"k": "x" * 1000}] * 2_500)
        for payload, fault in (
                (b"", "no property list"),
                (b"<plist>" + b"<array>" * 100_000, "no property list"),
                (plistlib.dumps(preferences(Schedule_Array=[{"k": "&" * 1_000_000}]), fmt=plistlib.FMT_BINARY),
                 "file would be larger than 2 MiB"),
                (xml(preferences(**{"Extra\ufdd0": 1})), '"Extra\ufffd" is unknown')):
            with self.subTest(fault=fault, payload=payload[:60]):
                error, text = self.save(payload)
                self.assertEqual(error, INVALID)
                self.assertIn(fault, text)
                self.assertIn(f"Preferences of user 0 are refused: {text}", self.logged())
        error, text = self.save(xml(large))  # not even looked at
        self.assertEqual(error, INVALID)
        self.assertIn("larger than 2 MiB", text)
        self.assertEqual(self.identity(), before)

    def test_no_character_in_a_list_takes_an_answer_from_everybody(self):
        characters = "\ufdd0\U0001fffe\u0085\u2028\u202e"
        self.assertEqual(self.save(xml(preferences(Schedule_Array=[
            {"Is Enabled": 1, "Action Type": f"a{one}", "Active On Monday": 1} for one in characters]))), ("", ""))
        for method, signature, arguments in (("Status", "", ()), ("Upcoming", "u", (100,)), ("Modules", "", ())):
            answer = self.root_caller.call("/com/quorel/Scheduler", "com.quorel.Scheduler1", method, signature, *arguments)
            self.assertEqual(answer, ("", ""))
        self.assertIn("a\ufffd", self.logged())
        self.assertFalse(set(characters) & set(self.logged()))

    def test_journal_is_not_filled(self):
        for _ in range(20):
            self.save(b"")
        self.assertEqual(self.logged().count("are refused"), 5)

    def test_takes_its_own_notification_alone(self):
        for how in ({"name": "UserAgentMustCheckUpdates"}, {"receiver": "com.quorel.UserAgent"}):
            self.assertEqual(self.save(xml(PREFERENCES), **how)[0], UNKNOWN)
        self.assertFalse(os.path.exists(self.folder))

    def test_equal_preferences_take_no_permission_and_no_write(self):
        self.save(xml(PREFERENCES))
        before = self.identity()
        nobody = self.caller(NOBODY)  # without polkit nobody else gets anywhere
        for payload in (xml(PREFERENCES), plistlib.dumps(PREFERENCES, fmt=plistlib.FMT_BINARY)):
            self.assertEqual(nobody.save(payload), ("", ""))
        self.assertEqual(self.identity(), before)
        self.assertNotEqual(nobody.save(xml(preferences(Show_In_Menu_Bar=0))), ("", ""))
        self.assertEqual(self.identity(), before)

    def test_joins_edits_with_those_of_others(self):
        def plan(*names, **options):
            return preferences(Schedule_Array=[{"Action Type": name} for name in names], **options)
        nobody = self.caller(NOBODY)
        unread = {**plan("s"), "Nothing Stored": 1}
        self.assertEqual(self.root_caller.edit(plan("s"), unread), ("", {"Others": 0, "Both": []}))
        self.assertEqual(self.root_caller.edit(plan("s", "a"), plan("s")), ("", {"Others": 0, "Both": []}))
        before = self.identity()
        # Whoever has edited nothing, or what has been stored already, takes no permission.
        for base, sent in ((plan("s", Prefs_Version=3), plan("s")), (unread, plan("s")), (plan("s"), plan("s", "a"))):
            self.assertEqual(nobody.edit(sent, base)[0], "")
        self.assertNotEqual(nobody.edit(plan("s", "b"), plan("s"))[0], "")
        self.assertEqual(self.identity(), before)
        error, joined = self.root_caller.edit(plan("t", Show_In_Menu_Bar=0), plan("s"))
        self.assertEqual((error, self.stored()), ("", plan("t", "a", Show_In_Menu_Bar=0)))
        self.assertEqual(joined["Others"], 1)
        error, joined = self.root_caller.edit(plan("u", "a"), plan("s", "a"))
        self.assertEqual(joined["Both"], [[{"Action Type": "t"}, {"Action Type": "u"}]])
        for sent, base in ((plan("x"), {"a": 1}), (preferences(Extra=1), plan("x"))):
            self.assertEqual(self.root_caller.edit(sent, base)[0], INVALID)

    def test_damaged_file_is_replaced_and_kept(self):
        os.makedirs(self.folder)
        for damage in (b"", b"junk", xml(PREFERENCES)[:100], xml([1])):
            with open(self.file, "wb") as file:
                file.write(damage)
            self.assertEqual(self.save(xml(PREFERENCES)), ("", ""))
            self.assertEqual(self.stored(), PREFERENCES)
            self.assertEqual(self.save(xml(preferences(Show_In_Menu_Bar=0))), ("", ""))
            with open(f"{self.file}.unreadable", "rb") as file:
                self.assertEqual(file.read(), damage)

    def put(self, content, mode=0o644, owner=0):
        with open(f"{self.file}.copy", "wb") as file:
            file.write(content)
        os.chmod(file.name, mode)
        os.chown(file.name, owner, owner)
        os.rename(file.name, self.file)

    def says(self, words, times=1):
        wait_until(lambda: self.logged().count(words) == times, lambda: f"{times} times {words}: {self.logged()}")

    def test_goes_by_the_file_that_root_puts_in_place(self):
        taken = "in place are taken over."
        os.makedirs(self.folder)  # nothing of which was there when the daemon came
        self.put(xml(PREFERENCES))
        self.says(taken)
        self.assertEqual(self.save(xml(PREFERENCES)), ("", ""))
        self.says("are those in place.")
        for content, how, fault in (
                (b"junk", {}, "It is no property list"), (xml([1]), {}, "The preferences are no dictionary"),
                (xml(preferences(Schedule_Array=[{}, 5])), {}, 'In "Schedule Array", entry 2'),
                (xml(PREFERENCES), {"owner": NOBODY}, "Others than root"), (b" " * 3_000_000, {}, "It is larger")):
            self.put(content, **how)
            self.says(f"in place are not taken over: {fault}")
        self.put(xml(PREFERENCES), mode=0o666)  # for the same reason as one before, which is said again
        self.says("Others than root", 2)
        os.chmod(self.file, 0o644)
        self.says(taken, 2)
        self.put(xml(PREFERENCES), owner=NOBODY)
        self.says("Others than root", 3)
        self.assertEqual(self.save(xml(PREFERENCES)), ("", ""))
        self.says("Preferences of user 0 are stored.")
        self.assertEqual(self.save(xml(preferences(Show_In_Menu_Bar=0))), ("", ""))
        time.sleep(1)  # in which the daemon would notice its own replacement
        self.daemon.send_signal(signal.SIGHUP)
        self.says(taken, 3)
        shutil.rmtree(self.folder)
        self.says("There is no preferences file any more")

    def test_second_daemon_ends_with_an_error(self):
        second = subprocess.run([DAEMON, "--root", self.root], env=self.system.environment(), stderr=subprocess.PIPE,
                                timeout=SECONDS)
        self.assertNotEqual(second.returncode, 0)
        self.assertIn(b"cannot start", second.stderr)
        self.assertTrue(self.probe()[0])

    def test_only_the_starting_user_may_be_the_daemon(self):
        self.system.end(self.daemon)
        other = subprocess.run([DAEMON, "--root", self.root], env=self.system.environment(), stderr=subprocess.PIPE,
                               user=NOBODY, timeout=SECONDS)
        self.assertNotEqual(other.returncode, 0)
        self.assertIn(b"refused", other.stderr)

    def test_ends(self):
        for number in (signal.SIGTERM, signal.SIGINT):
            self.daemon.send_signal(number)
            self.assertEqual(self.daemon.wait(SECONDS), 0)
            self.assertNotIn("The bus has gone.", self.logged())
            self.start_daemon()
        self.system.bus.terminate()
        self.assertNotEqual(self.daemon.wait(SECONDS), 0)
        self.assertIn("The bus has gone.", self.logged())

    def test_wrong_arguments(self):
        for arguments in (["--root"], ["--other", "x"], ["x"]):
            ended = subprocess.run([DAEMON, *arguments], stderr=subprocess.DEVNULL, timeout=SECONDS)
            self.assertEqual(ended.returncode, 2)


main()
