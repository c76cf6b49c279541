#!/usr/bin/env python3
"""The lights, the update check and the about sheet, with programs that come, go and hang: status_test.py BUILD"""
import signal

from pane_case import PaneCase, main, preferences, schedule, wait_for
from fake_browser import FakeBrowser
from feed_server import FeedServer, installed_version, record

CYCLE = 10  # seconds between two looks at the programs
SILENCE = 1  # seconds for which a program that hangs is waited for
SLACK = 3  # seconds, for a busy machine


class StatusCase(PaneCase):
    def setUp(self):
        super().setUp()
        self.store(preferences(schedule("Sleep", 22, 30), schedule("WakeUp", 6, 15)))

    def wait_lights(self, daemon, agent, seconds=2 * SILENCE + SLACK):
        def word(alive):
            return "running" if alive else "not running"
        texts = (f"Daemon {word(daemon)}", f"User agent {word(agent)}")
        wait_for(lambda: all(self.screen.find(value=text) for text in texts), f"the lights are not {texts}", seconds)
        images = [self.by_tip(f"Status of the {program}")["image"] for program in ("daemon", "user agent")]
        self.assertEqual(images[0] == images[1], daemon == agent)

    def press(self, title):
        self.screen.settle()
        self.screen.click(self.button(title))

    def hang(self, *programs):
        for program in programs:
            program.send_signal(signal.SIGSTOP)


class LightsTest(StatusCase):
    def test_lights_follow_the_programs(self):
        self.open_pane()
        self.wait_lights(daemon=False, agent=False)
        self.start_daemon()
        self.start_agent()
        self.wait_lights(daemon=True, agent=True, seconds=CYCLE + SLACK)
        self.hang(self.daemon)
        self.system.end(self.agent)
        self.wait_lights(daemon=False, agent=False, seconds=CYCLE + SILENCE + SLACK)
        self.daemon.send_signal(signal.SIGCONT)
        self.wait_lights(daemon=True, agent=False, seconds=CYCLE + SLACK)

    def test_quits_while_programs_hang(self):
        self.start_daemon()
        self.start_agent()
        screen = self.open_pane()
        self.wait_lights(daemon=True, agent=True)
        self.hang(self.daemon, self.agent)
        # In the middle of a cycle: the agent is being waited for.
        wait_for(lambda: screen.find(value="Daemon not running"), "no cycle begins", CYCLE + SILENCE + SLACK)
        screen.key("alt+w")
        self.assertEqual(self.application.process.wait(SILENCE + SLACK), 0, self.application.log())


class UpdateTest(StatusCase):
    page = "https://example.org/download?a=1&b=%20"

    def setUp(self):
        super().setUp()
        self.feed = FeedServer(self)
        self.browser = FakeBrowser(self.place)

    def check(self, *texts):
        """Looks for an update and waits for an alert that says this."""
        self.press("Check Now")
        self.wait_sheet()
        for text in texts:
            self.screen.wait(value=text)

    def answer(self, title):
        self.press(title)
        self.wait_no_sheet()

    def test_what_a_check_says(self):
        self.open_pane(info={"QuorelUpdateFeed": self.feed.url("/pane")})
        newer = "Download version 9.9%n%s?"
        self.feed.answers["/pane"] = record("9.9%n%s", self.page)
        self.check("New version available", newer)
        self.answer("OK")
        wait_for(self.browser.pages, "no page is opened")
        self.assertEqual(self.browser.pages(), [self.page])

        self.feed.answers["/pane"] = record("1.0")
        self.check("Up to date", "You have the latest version of Quorel.")
        self.assertIsNone(self.screen.find(title="Cancel"))
        self.answer("OK")

        # The agent does it instead where there is one.
        asked = len(self.feed.requests)
        self.feed.answers["/agent"] = record("9.9")
        self.start_agent("--feed", self.feed.url("/agent"))
        self.press("Check Now")
        wait_for(lambda: len(self.feed.requests) > asked, "the agent does not ask")
        self.screen.settle()
        self.assertEqual([path for path, _ in self.feed.requests[asked:]], ["/agent"])
        self.assertIsNone(self.screen.modal())
        self.assertEqual(self.browser.pages(), [self.page])

    def test_about(self):
        screen = self.open_pane()
        button = self.button("About…")
        before = self.display.picture(button)
        screen.click(button)
        self.wait_sheet()
        screen.wait(value=f"version {installed_version()} (1)")
        # It must not look pressed for as long as the sheet is there.
        wait_for(lambda: self.display.picture(button) == before, "the button stays down", 5)

        def hangs_from():
            below = next(window for window in screen.look() if window["title"] == "System Preferences")["frame"]
            x, y, width, _ = screen.modal()["frame"]
            return y == below[1] + 22 and abs(2 * x + width - 2 * below[0] - below[2]) <= 1 and below
        place = wait_for(hangs_from, "it hangs from the title bar", 20)
        screen.xdotool("search", "--name", "^System Preferences$", "windowmove", place[0] - 30, place[1] + 40)
        wait_for(lambda: hangs_from() not in (False, place), "it goes where the window goes", 20)
        self.answer("OK")


if __name__ == "__main__":
    main()
