#!/usr/bin/env python3
"""The edit sheet, used with mouse and keyboard: sheet_test.py BUILD"""
import os
import subprocess

from pane_case import BUILD, DAYS, PaneCase, install_modules, main, preferences, schedule

TIME = ("Hours", "Minutes", "Morning or afternoon")
DAY_TITLES = tuple(day[:3] for day in DAYS)
SEPARATOR = "-----------"
SLEEP_PARAMETERS = {"Needs Startup": False, "Needs Wake Up": False, "Kind": "suspend", "Only When Idle": False,
                    "Idle Minutes": 15}
IDLE = "Only if idle for"
IDLE_MINUTES = "Idle time, from 1 to 999 minutes"
KIND = "How"
MESSAGE_TITLE, MESSAGE = "Title", "Text"
SAMPLE = f"{os.path.dirname(os.path.abspath(__file__))}/../../modules/sample/SayMessage.vxplugin"
FLAGS = ("Turn the computer on", "Wake the computer up")
MAY_BE_CUT = ("Show All", ":")  # the host's; narrower than the margins that cells leave


class SheetTest(PaneCase):
    def setUp(self):
        super().setUp()
        self.schedules = [schedule("Sleep", "22", "30", enabled=0, Remark="kept"),
                          schedule("WakeUp", 6, 15, days=("Monday",))]
        self.store(preferences(*self.schedules))

    def open_row(self, row):
        self.screen.click_cell(row, "Infos", times=2)
        return self.wait_sheet()

    def save(self):
        self.screen.key("Return")
        self.wait_no_sheet()

    def cancel(self):
        self.screen.key("Escape")
        self.wait_no_sheet()

    def wait_time(self, *texts):
        for part, text in zip(TIME, texts):
            self.screen.wait(toolTip=part, value=text)

    def type_over(self, tip, text):
        """Into the field that has the keyboard, whose text is selected."""
        self.screen.wait(toolTip=tip, focused=True)
        self.screen.type(text)
        self.screen.wait(toolTip=tip, value=text)

    def step(self, stepper, up):
        x, y, width, height = stepper["frame"]
        self.screen.click([x, y if up else y + height / 2, width, height / 2])

    def choose(self, title):
        self.screen.choose(self.by_tip("Type of action"), title)

    def test_time_days_and_options_are_edited(self):
        another = schedule("Sleep", 23, 0, **{"Action Parameters": {"Own": "of another"}})
        self.store(preferences(*self.schedules, another))
        self.start_daemon()
        screen = self.open_pane()
        self.open_row(0)
        self.wait_time("10", "30", "PM")

        for tip, right in zip(TIME, ("8", "2", "a")):
            self.type_over(tip, right)
            screen.key("Tab")
        self.wait_time("08", "02", "AM")

        screen.wait(title="All", enabled=False)
        screen.click(self.button("Mon"))
        screen.click(screen.wait(title="All", enabled=True))
        screen.wait(title="Mon", state=1)
        for day in DAY_TITLES[5:]:
            screen.click(self.button(day))
            screen.wait(title=day, state=0)

        screen.click(self.button(IDLE))
        screen.wait(title=IDLE, state=1)
        screen.click(self.by_tip(IDLE_MINUTES), times=2)
        self.type_over(IDLE_MINUTES, "29")
        self.step(screen.wait(toolTip=IDLE_MINUTES, **{"class": "NSStepper"}), up=True)
        screen.wait(toolTip=IDLE_MINUTES, value="30")
        screen.click(self.by_tip(IDLE_MINUTES), times=2)
        self.type_over(IDLE_MINUTES, "45")
        self.save()

        self.assertEqual(screen.rows()[0]["Infos"]["Action"], "After 45 min idle")
        self.wait_times("8:02", "6:15", "11:00")
        self.apply()
        parameters = dict(SLEEP_PARAMETERS, **{"Only When Idle": True, "Idle Minutes": 45})
        edited = schedule("Sleep", 8, 2, days=DAYS[:5], Remark="kept", **{"Action Parameters": parameters})
        self.wait_only_stored(edited, self.schedules[1], another)  # whose line was asked for meanwhile

    def test_adding_types_flags_cancelling_and_deleting(self):
        self.start_daemon()
        screen = self.open_pane()
        screen.click(self.by_tip("Add a schedule"))
        self.wait_sheet()
        self.wait_time("11", "00", "PM")
        self.assertEqual(self.by_tip("Type of action")["title"], "Sleep")
        self.assertIsNotNone(self.by_tip("Sun: wakes the computer up. Power sign: turns it on.")["image"])
        self.choose("Wake Up")
        screen.wait(title="Wake the computer up", enabled=False, state=1)
        screen.wait(value="This action has no options.")
        screen.click(screen.wait(title="Turn the computer on", enabled=True, state=0))
        screen.wait(title="Turn the computer on", state=1)
        self.save()
        self.wait_times("10:30", "6:15", "11:00")
        self.assertTrue(screen.rows()[2]["Infos"]["Startup"])

        # Of what is cancelled nothing stays, nor comes back.
        screen.click(self.by_tip("Add a schedule"))
        self.wait_sheet()
        self.choose("Message")
        screen.click(self.by_tip(MESSAGE))
        screen.wait(toolTip=MESSAGE, focused=True)
        screen.type("tea")
        screen.key("Return")  # ends a line, and not the sheet
        screen.type("time")
        screen.wait(toolTip=MESSAGE, value="tea\ntime")
        screen.click(self.button("Cancel"))
        self.wait_no_sheet()

        screen.click_cell(1, "Infos")
        screen.click(screen.wait(toolTip="Delete the selected schedule", enabled=True))
        self.wait_times("10:30", "11:00")
        self.apply()
        added = schedule("WakeUp", 23, 0, **{"Action Parameters": {"Needs Startup": True, "Needs Wake Up": True}})
        self.wait_only_stored(self.schedules[0], added)

    def test_place_and_tab_order(self):
        heights = []
        self.store(preferences(*self.schedules, schedule("Message", 5, 0, days=("Monday",))))
        screen = self.open_pane()
        for row, options, flags in ((1, (), FLAGS[:1]), (0, (KIND, IDLE, IDLE_MINUTES), ()), (1, (), FLAGS[:1]),
                                    (2, (MESSAGE_TITLE, MESSAGE), FLAGS)):
            sheet = self.open_row(row)
            if row == 0:
                screen.click(self.button(IDLE))
                screen.wait(title=IDLE, state=1)
                screen.click(self.button("Mon"))
                screen.wait(title="Mon", state=0)
                screen.click(self.by_tip("Hours"))
            x, top, width, height = sheet["frame"]
            below = next(window for window in screen.look() if window["title"] == "System Preferences")["frame"]
            self.assertEqual(top, below[1] + 22)
            self.assertTrue(0 <= x and x + width <= 1024 and top + height <= 768, sheet["frame"])
            self.assert_inside_options()
            heights.append(height)
            self.assertEqual(self.tab_round("Hours"), [*TIME, *DAY_TITLES, "Tick all days", "Type of action", *options,
                                                       *flags, "Cancel", "Save"])
            self.cancel()
        # Picking a type leaves the top edge where it is.
        top = self.open_row(1)["frame"][1]
        for title in ("Sleep", "Wake Up", "Sleep"):
            self.choose(title)
            self.assertEqual(screen.modal()["frame"][1], top)
        self.assertEqual(heights[0] - heights[2], 22)

    def assert_inside_options(self):
        views = self.screen.modal()["views"]
        container = next(i for i, view in enumerate(views) if view["class"] == "VXOptionsContainer")
        outer, inner = views[container]["frame"], views[container + 1]["frame"]
        self.assertTrue(outer[0] <= inner[0] and outer[1] <= inner[1] and
                        inner[0] + inner[2] <= outer[0] + outer[2] and inner[1] + inner[3] <= outer[1] + outer[3],
                        (outer, inner))

    def tab_round(self, first):
        """What gets the keyboard, one Tab after the other, until the first one has it again."""
        self.screen.wait(toolTip=first, focused=True)
        names, before = [], None
        while len(names) < 30:
            now = self.screen.wait(focused=True, frame=lambda frame: frame != before)
            name = now.get("toolTip") or now["title"]
            if names and name == first:
                break
            names.append(name)
            before = now["frame"]
            self.screen.key("Tab")
        return names

    def ask_x(self, *command):
        return subprocess.run(command, env=self.screen.environment, check=True, stdout=subprocess.PIPE, text=True).stdout

    def test_sheets_can_be_closed_by_a_window_manager(self):
        # It would end the application instead, were it not told to ask.
        screen = self.open_pane()
        for opener, title in ((lambda: self.open_row(0), "Schedule"),
                              (lambda: screen.click(self.button("About…")), "About Quorel")):
            opener()
            self.wait_sheet()
            windows = self.ask_x("xdotool", "search", "--onlyvisible", "--name", f"^{title}$").split()
            self.assertEqual(len(windows), 1)
            self.assertIn("WM_DELETE_WINDOW", self.ask_x("xprop", "-id", windows[0], "WM_PROTOCOLS"))
            self.cancel()

    def test_modules_of_others(self):
        say = schedule("Sleep", 9, 0, **{"Action Type": "org.example.SayMessage",
                                         "Action Parameters": {"Message": "Tea", "Times": 2, "Own": "kept?"}})
        gone = schedule("Sleep", 9, 1, **{"Action Type": "org.example.Gone"})
        self.store(preferences(gone, self.schedules[0], say))
        install_modules(BUILD, self.root, [f"{BUILD}/modules/sample/class/SayMessage.vxplugin"])
        self.start_daemon()
        screen = self.open_pane()
        self.wait_times("10:30", "9:00")
        self.assertEqual(screen.rows()[1]["Infos"]["Action"], 'Says "Tea", times: 2')

        self.open_row(1)
        self.assertEqual(self.by_tip("Type of action")["items"],
                         ["Shut Down", "Sleep", "Stay Awake", "Wake Up", SEPARATOR, "Message", "Open", "Run", "Say a message"])
        screen.wait(toolTip="What is said", value="Tea")
        screen.wait(toolTip="How many times it is said", title="2")
        screen.wait(title="Wake the computer up", enabled=False, state=1)
        screen.wait(value="Is not said if the computer is off.")
        screen.click(self.button("Turn the computer on"))
        screen.wait(value="Is said even if the computer is off.")
        self.assert_inside_options()
        screen.choose(self.by_tip("How many times it is said"), "5")
        screen.click(self.by_tip("What is said"))
        screen.wait(toolTip="What is said", focused=True)
        screen.key("End")
        screen.type(" time")
        screen.wait(toolTip="What is said", value="Tea time")
        self.save()
        self.wait_times("10:30", "9:00")
        self.assertEqual(screen.rows()[1]["Infos"]["Action"], 'Says "Tea time", times: 5')

        self.apply()
        said = {"Message": "Tea time", "Times": 5, "Needs Startup": True, "Needs Wake Up": True}
        # What the pane does not know it does not show, and does not delete either.
        self.wait_only_stored(gone, self.schedules[0], dict(say, **{"Action Parameters": said}))

    def test_options_of_every_action(self):
        install_modules(BUILD, self.root, [SAMPLE])
        self.start_daemon()
        kinds = ("Sleep", "ShutDown", "StayAwake", "Open", "Run")
        self.store(preferences(*(schedule(kind, 9, 0) for kind in kinds),
                               schedule("Sleep", 9, 0, **{"Action Type": "org.example.SayMessage"})))
        screen = self.open_pane()
        self.open_row(0)
        screen.choose(self.by_tip(KIND), "Hibernate")
        self.save()
        self.open_row(1)
        screen.click(self.button("Restart"))
        screen.wait(title="Restart", state=1)
        self.save()
        self.open_row(2)
        first = [view for view in screen.modal()["views"] if view.get("toolTip") == "Hours"][-1]
        screen.click(first, times=2)
        self.type_over("Hours", "8")
        self.save()
        for row, texts in ((3, (("Open", "https://example.org"),)),
                           (4, (("Program", "/usr/bin/rsync"), ("Arguments", "a b\n/c"))), (5, (("Message", " Tea"),))):
            self.open_row(row)
            for tip, text in texts:
                screen.click(self.by_tip(tip))
                screen.wait(toolTip=tip, focused=True)
                screen.key("End")
                for number, part in enumerate(text.split("\n")):
                    if number:
                        screen.key("Return")
                    screen.type(part)
                screen.wait(toolTip=tip, value=lambda shown, text=text: shown.endswith(text))
            screen.click(self.button("Save"))
            self.wait_no_sheet()
        said = [row["Infos"]["Action"] for row in screen.rows()]
        self.assertEqual(said, ["Hibernate", "Restarts", "Stays awake until 20:00", "https://example.org", "Runs rsync",
                                'Says "Hello Tea"'])
        self.apply()
        stored = self.wait_stored(lambda now: "Kind" in now["Schedule Array"][0].get("Action Parameters", {}))
        parameters = [{key: value for key, value in one["Action Parameters"].items() if not key.startswith("Needs")}
                      for one in stored["Schedule Array"]]
        self.assertEqual(parameters, [dict(Kind="hibernate", **{"Only When Idle": False, "Idle Minutes": 15}),
                                      {"Restart": True, "Only When Idle": False, "Idle Minutes": 15}, {"Until": "20:00"},
                                      {"Target": "https://example.org"},
                                      {"Program": "/usr/bin/rsync", "Arguments": "a b\n/c"},
                                      {"Message": "Hello Tea", "Times": 1}])

    def test_texts_in_both_languages(self):
        texts = {"English": ("Apply", "Check for updates", "About…", "Time:", "Save"),
                 "French": ("Appliquer", "Vérifier les mises à jour", "À propos…", "Heure :", "Enregistrer")}
        own = [schedule(kind, 9, 0) for kind in ("ShutDown", "StayAwake", "Open", "Message", "Run")]
        self.store(preferences(self.schedules[0], *own))
        for language, (apply, check, about, time, save) in texts.items():
            with self.subTest(language=language):
                screen = self.open_pane(languages=(language,))
                self.button(apply)
                self.button(check)
                self.assert_nothing_cut()
                for row in range(6):
                    self.open_row(row)
                    screen.wait(value=time)
                    self.button(save)
                    self.assert_nothing_cut()
                    self.cancel()
                screen.click(self.button(about))
                self.wait_sheet()
                self.assert_nothing_cut()
                self.cancel()
                self.application.close()

    def assert_nothing_cut(self):
        views = [view for window in self.screen.look() for view in window["views"]]
        views += [header for view in views for header in view.get("headers", {}).values()]
        texts = [view.get("title") or view.get("value") for view in views if view.get("cut")]
        self.assertEqual([text for text in texts if text not in MAY_BE_CUT], [])


if __name__ == "__main__":
    main()
