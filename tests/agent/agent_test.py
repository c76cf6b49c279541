#!/usr/bin/python3
"""The agent on a private session bus, with a notification server and an update feed of the test's: agent_test.py AGENT"""
import os
import plistlib
import signal
import subprocess
import sys
import threading
import time
import unittest

import dbus
import dbus.lowlevel

from fake_browser import FakeBrowser
from feed_server import FeedServer, certificate, installed_version, record
from notifications import NOTIFICATIONS, NotificationServer, eventually
from private_system import SECONDS, PrivateSystem

AGENT = os.path.abspath(sys.argv[1])
NAME = "com.quorel.UserAgent"
PATH, INTERFACE = "/com/quorel/Communication", "com.quorel.Communication1"
PREFERENCES = "Library/Preferences/com.quorel.plist"
INSTALLED = installed_version()
DAY = 24 * 60 * 60
UP_TO_DATE, NEWER, UNREACHABLE = (f"Quorel: {what}" for what in (
    "Up to date", "New version available", "Update check failed"))


class AgentTest(unittest.TestCase):
    def setUp(self):
        self.system = PrivateSystem()
        self.addCleanup(self.system.close)
        place = self.system.place
        self.bus = self.system.start_session_bus()
        self.connection = self.connect()
        self.feed = FeedServer(self)
        self.browser = FakeBrowser(place)
        self.state = f"{place}/state/quorel/last-update-check"
        os.makedirs(f"{place}/root/Library/Preferences")
        self.system.variables.update(PATH=self.browser.path, XDG_DATA_DIRS=f"{place}/share", LC_ALL="C.UTF-8", LANGUAGE="")
        self.set_preferences(0)

    def connect(self):
        connection = self.system.connect("session")
        connection.set_exit_on_disconnect(False)
        self.addCleanup(connection.close)
        return connection

    def set_preferences(self, check_updates, frequency=0):
        with open(f"{self.system.place}/root/{PREFERENCES}", "wb") as file:
            plistlib.dump({"Check Updates": check_updates, "Check Updates Frequency": frequency}, file)

    def set_last_check(self, seconds_ago):
        os.makedirs(os.path.dirname(self.state), exist_ok=True)
        with open(self.state, "w") as file:
            file.write("never" if seconds_ago is None else f"{int(time.time()) - seconds_ago}\n")

    def last_check(self):
        with open(self.state) as file:
            return file.read()

    def start_agent(self, *arguments, feed=None):
        return self.system.start_agent(AGENT, f"{self.system.place}/root", "--feed", feed or self.feed.url(),
                                       *arguments, log="agent.log")

    def end(self, agent, number=signal.SIGTERM):
        began = time.monotonic()
        agent.send_signal(number)
        self.assertEqual(agent.wait(SECONDS), 0)
        return time.monotonic() - began

    def show_notifications(self):
        server = NotificationServer(self.connection)
        self.addCleanup(server.end)
        return server

    def call(self, method, signature="", *arguments):
        return self.connection.call_blocking(NAME, PATH, INTERFACE, method, signature, arguments, timeout=SECONDS)

    def answer_when_released(self, body):
        released = threading.Event()
        self.addCleanup(released.set)

        def answer(request):
            released.wait(SECONDS)
            request.answer(body)
        self.feed.answers["/"] = answer
        return released

    def ask(self, name="UserAgentMustCheckUpdates", receiver=NAME):
        self.call("PostNotification", "ssay", name, receiver, b"")

    def test_check_by_hand(self):
        notifications = self.show_notifications()
        self.start_agent()
        for answer, title, body, actions in (
                (record("9.0"), NEWER, "Version 9.0 can be downloaded.", ["https://example.org/download", "Download"]),
                (record(INSTALLED), UP_TO_DATE, "This is the latest version.", []),
                (b"nothing of use", UNREACHABLE, "The update service could not be reached.", []),
                (record("9.0-%n%s<b>&"), NEWER, "Version 9.0-%n%s&lt;b&gt;&amp; can be downloaded.",
                 ["https://example.org/download", "Download"])):
            with self.subTest(title):
                self.feed.answers["/"] = answer
                replaces = 7 if notifications.shown else 0  # one notification of ours at a time
                notifications.shown.clear()
                self.feed.requests.clear()
                self.ask()
                eventually("the user is told", lambda: notifications.shown)
                self.assertEqual(notifications.shown, [(replaces, title, body, actions)])
                self.assertEqual(len(self.feed.requests), 1)

    def test_click_opens_the_settings(self):
        place = self.system.place
        os.makedirs(f"{place}/share/applications")
        with open(f"{place}/share/applications/com.quorel.Settings.desktop", "w") as file:
            file.write(f"[Desktop Entry]\nExec=touch '{place}/opened'\n")
        self.feed.answers["/"] = record(INSTALLED)
        notifications = self.show_notifications()
        notifications.entry = "com.quorel.Settings"
        self.start_agent()
        self.ask()
        eventually("the user is told", lambda: notifications.shown)
        self.assertEqual(notifications.shown[0][3], ["default", "Open Settings"])
        notifications.press("default")
        eventually("they open", lambda: os.path.exists(f"{place}/opened"))

    def test_speaks_the_servers_language_and_the_users(self):
        self.feed.answers["/"] = record("9.0<b>&", "https://example.org/?a=1&b=2")
        notifications = self.show_notifications()
        for capabilities, language, body, actions in (
                (("actions", "body"), "", "Version 9.0<b>& can be downloaded.", ["https://example.org/?a=1&b=2", "Download"]),
                (("body",), "", "Version 9.0<b>& can be downloaded.\nhttps://example.org/?a=1&b=2", []),
                (("body-markup",), "", "Version 9.0&lt;b&gt;&amp; can be downloaded.\n"
                                       "https://example.org/?a=1&amp;b=2", []),
                (("actions", "body"), "fr", "La version 9.0<b>& peut être téléchargée.",
                 ["https://example.org/?a=1&b=2", "Télécharger"])):
            with self.subTest(capabilities):
                notifications.capabilities = capabilities
                self.system.variables.update(self.system.in_language(language))
                agent = self.start_agent()
                self.ask()
                eventually("the user is told", lambda: notifications.shown)
                self.assertEqual(notifications.shown.pop()[2:], (body, actions))
                self.end(agent)

    def test_button_opens_the_page(self):
        page = "https://example.org/get?a=$(id)&b='x';y"
        self.feed.answers["/"] = record(page=page)
        notifications = self.show_notifications()
        self.start_agent()
        self.ask()
        eventually("the user is told", lambda: notifications.shown)
        forger = self.connect()
        signal_message = dbus.lowlevel.SignalMessage("/org/freedesktop/Notifications", NOTIFICATIONS, "ActionInvoked")
        signal_message.append(7, page, signature="us")
        signal_message.set_destination(notifications.client)
        forger.send_message(signal_message)
        forger.flush()
        notifications.ActionInvoked(8, page)  # somebody else's
        notifications.ActionInvoked(7, "default")
        self.call("Ping")
        notifications.ActionInvoked(7, page)
        eventually("the page is opened", self.browser.pages)
        self.assertEqual(self.browser.pages(), [page])
        # A message without a page takes the button away.
        self.feed.answers["/"] = record(INSTALLED)
        self.ask()
        eventually("the user is told", lambda: len(notifications.shown) == 2)
        notifications.ActionInvoked(7, page)
        second = "https://example.org/second"
        self.feed.answers["/"] = record(page=second)
        self.ask()
        eventually("the user is told", lambda: len(notifications.shown) == 3)
        notifications.ActionInvoked(7, second)
        eventually("the second page is opened", lambda: len(self.browser.pages()) > 1)
        self.assertEqual(self.browser.pages(), [page, second])

    def test_without_notifications_the_log_tells(self):
        self.feed.answers["/"] = record("9.0-%n%s")
        self.start_agent()
        self.ask()
        eventually("the log tells", lambda: self.system.log("agent.log").endswith("\n"))
        self.assertIn("Version 9.0-%n%s can be downloaded. https://example.org/download",
                      self.system.log("agent.log"))

    def test_asking_joins_a_periodic_check(self):
        released = self.answer_when_released(record(INSTALLED))
        self.set_preferences(1)
        notifications = self.show_notifications()
        self.start_agent()
        eventually("the feed is asked", lambda: self.feed.requests)
        self.ask()
        released.set()
        eventually("the user is told", lambda: notifications.shown)
        self.assertEqual(notifications.shown[0][1], UP_TO_DATE)
        self.assertEqual(len(self.feed.requests), 1)

    def test_answers_and_ends_while_a_check_runs(self):
        released = self.answer_when_released(record())
        notifications = self.show_notifications()
        agent = self.start_agent()
        self.ask()
        eventually("the feed is asked", lambda: self.feed.requests)
        for _ in range(20):
            self.ask()
        began = time.monotonic()
        self.assertTrue(self.call("Ping"))
        self.assertLess(time.monotonic() - began, 0.5)
        self.assertEqual(notifications.shown, [])
        released.set()
        eventually("the user is told", lambda: notifications.shown)
        self.assertEqual(len(self.feed.requests), 1)
        self.assertEqual(len(notifications.shown), 1)

        released.clear()
        self.ask()
        eventually("the feed is asked again", lambda: len(self.feed.requests) == 2)
        self.assertLess(self.end(agent, signal.SIGINT), 2)

    def test_periodic_checks(self):
        notifications = self.show_notifications()
        for what, preferences, last_check, answer, asked, told in (
                ("due", (1, 0), DAY + 1, record("9.0"), True, True),
                ("not due yet", (1, 0), DAY - 600, record("9.0"), False, False),
                ("failed", (1, 0), None, None, True, False),
                ("switched off", (0, 0), None, record("9.0"), False, False)):
            with self.subTest(what):
                self.set_preferences(*preferences)
                self.set_last_check(last_check)
                before = self.last_check()
                self.feed.answers["/"] = answer
                agent = self.start_agent()
                if asked:
                    eventually("the feed is asked", lambda: self.feed.requests)
                if told:
                    eventually("the user is told", lambda: notifications.shown)
                    self.assertEqual(notifications.shown[0][1], NEWER)
                self.call("Ping")
                # What comes by itself comes at once; there is nothing else to wait for when nothing shall come.
                if not told:
                    time.sleep(0.3)
                    eventually("served", lambda: True)
                self.assertEqual(len(self.feed.requests), int(asked))
                self.assertEqual(len(notifications.shown), int(told))
                self.assertEqual(self.last_check() != before, asked and answer is not None)
                self.end(agent)
                self.feed.requests.clear()
                notifications.shown.clear()

    def test_second_agent_ends_silently_and_bad_arguments_with_an_error(self):
        self.start_agent()
        for arguments, status, said in (([], 0, ""), (["--feed"], 2, "Usage"),
                                        (["--help"], 2, "Usage"), (["now"], 2, "Usage"),
                                        (["--feed", "http://example.org/"], 2, "Not an address"),
                                        (["--feed", "file:///etc/passwd"], 2, "Not an address")):
            with self.subTest(arguments):
                second = subprocess.run([AGENT, *arguments], env=self.system.environment(), stderr=subprocess.PIPE,
                                        text=True, timeout=SECONDS)
                self.assertEqual(second.returncode, status)
                self.assertIn(said, second.stderr) if said else self.assertEqual(second.stderr, "")
        self.assertTrue(self.call("Ping"))

    def test_ends_with_the_bus(self):
        agent = self.start_agent()
        self.bus.kill()
        self.assertEqual(agent.wait(SECONDS), 1)
        self.assertIn("The session bus has gone.", self.system.log("agent.log"))

    def test_trusts_the_given_authorities(self):
        authority = certificate(self.system.place)
        secure = FeedServer(self, authority)
        secure.answers["/"] = record()
        notifications = self.show_notifications()
        for arguments, title in (([], UNREACHABLE), (["--ca-file", authority], NEWER)):
            agent = self.start_agent(*arguments, feed=secure.url())
            self.ask()
            eventually("the user is told", lambda: notifications.shown)
            self.assertEqual(notifications.shown.pop()[1], title)
            self.end(agent)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
