#!/usr/bin/env python3
"""quorelctl, as a person sees it: what it tells of the daemon."""
import calendar
import contextlib
import json
import os
import pty
import shutil
import signal
import subprocess
import sys
import time
import unittest

import dbus
import dbus.lowlevel

from ctl_case import NAME, QUORELCTL, CtlCase
from private_system import read_line, wait_until
from schedules import SHUT_DOWN, SLEEP, WAKE_UP, schedule

NOBODY = 65534
SAMPLE = f"{os.path.dirname(os.path.abspath(__file__))}/../../modules/sample/SayMessage.vxplugin"
INTERFACE = "com.quorel.Scheduler1"
FORGERY = "a\x1b[31m\nroot\u202e"
SHOWN = "a\ufffd[31m\ufffdroot\ufffd"
AT = calendar.timegm((2027, 3, 1, 23, 0, 0))
LET_NOBODY = "polkit.addRule(function(action, subject) {{ if (action.id == 'com.quorel.{}') return 'yes'; }});"

# Code, action, arguments; the sentence in English and in French.
SENTENCES = (
    ("slept", SLEEP, {"Until": AT}, "slept until Mon 2027-03-01 23:00", "en veille jusqu’à Mon 2027-03-01 23:00"),
    ("shut-down", SHUT_DOWN, {}, "shut down", "éteint"),
    ("shut-down", SHUT_DOWN, {"Restart": True}, "restarted", "redémarré"),
    ("woke-up", WAKE_UP, {}, "woke up", "réveillé"),
    ("started", WAKE_UP, {}, "started up", "démarré"),
    ("awake-already", WAKE_UP, {}, "was awake already; kept awake for ten minutes",
     "était déjà éveillé ; gardé éveillé dix minutes"),
    ("ran", "x.Y", {"Seconds": 1}, "done in 1 second", "fait en 1 seconde"),
    ("ran", "x.Y", {"Seconds": 7300, "MadeUp": True}, "made up for, in 2 hours", "rattrapé, en 2 heures"),
    ("failed", "x.Y", {"Seconds": 3, "Status": 2, "Reason": FORGERY},
     f"failed with status 2 after 3 seconds: {SHOWN}", f"échec avec le code 2 après 3 secondes : {SHOWN}"),
    ("timed-out", "x.Y", {"Seconds": 600}, "ended at its limit, after 10 minutes", "arrêté à sa limite, après 10 minutes"),
    ("not-started", "x.Y", {"Reason": "gone"}, "could not be started: gone", "n’a pas pu être lancé : gone"),
    ("unknown", "x.Y", {}, "begun; how it ended is not known", "commencé ; on ne sait pas comment cela s’est terminé"),
    ("missed", SLEEP, {"Count": 1, "Cause": "off"}, "missed: the computer was off", "manqué : l’ordinateur était éteint"),
    ("missed", SLEEP, {"Count": 10, "Cause": "asleep"}, "missed 10 times: the computer was asleep",
     "manqué 10 fois : l’ordinateur était en veille"),
    ("skipped", SLEEP, {"By": "bob"}, "skipped by bob", "annulé par bob"),
    ("same-minute", SHUT_DOWN, {}, "not shut down: another sleep or shut-down had the same minute",
     "pas éteint : une autre veille ou extinction avait la même minute"),
    ("wakes-then", SLEEP, {}, "not put to sleep: the computer was to wake up in the same minute",
     "pas mis en veille : l’ordinateur devait se réveiller à la même minute"),
    ("withdrawn", SLEEP, {}, "withdrawn: its schedule was changed or deleted",
     "retiré : sa planification a été modifiée ou supprimée"),
    ("gave-up", SLEEP, {"Hold": "inhibitor", "Who": "rsync", "Why": "copying", "Minutes": 30},
     "not put to sleep: rsync: copying (waited 30 minutes)",
     "pas mis en veille : rsync : copying (après 30 minutes d’attente)"),
    ("gave-up", SLEEP, {"Hold": "use", "Who": "bob (tty3)", "Minutes": 720},
     "not put to sleep: in use by bob (tty3) (waited 12 hours)",
     "pas mis en veille : utilisé par bob (tty3) (après 12 heures d’attente)"),
    ("gave-up", SLEEP, {"Hold": "action", "Who": "org.x.Backup"}, "not put to sleep: Backup under way (waited 0 seconds)",
     "pas mis en veille : Backup en cours (après 0 seconde d’attente)"),
    ("overtaken", SLEEP, {"By": "next"}, "not put to sleep: the next sleep, shut-down or wake-up came",
     "pas mis en veille : la veille, l’extinction ou le réveil suivant est arrivé"),
    ("refused", SLEEP, {"Reason": "stayed-awake"},
     "not put to sleep: refused: the system agreed, and the computer stayed awake",
     "pas mis en veille : refusé : le système a accepté, et l’ordinateur est resté éveillé"),
    ("lid-closed", WAKE_UP, {}, "not woken up: the lid is closed, and there is no external power",
     "pas réveillé : le capot est fermé, sans alimentation externe"),
    ("clock-corrected", SLEEP, {}, "ended: the clock was corrected", "terminé : l’horloge a été corrigée"),
    ("correction", "", {"By": -10800}, "the clock was set back by 3 hours", "l’horloge a été reculée de 3 heures"),
    ("correction", "", {"By": 0}, "the clock was corrected", "l’horloge a été corrigée"),
    ("state-lost", "", {}, "what was stored about the schedules could not be read; begun anew",
     "ce qui était enregistré des planifications est illisible ; repris à neuf"),
    ("clock-behind", "", {"By": 86400}, "the clock is 24 hours behind; nothing runs until it is set, or for ten minutes",
     "l’horloge retarde de 24 heures ; rien ne se fait avant qu’elle soit réglée, dix minutes au plus"),
    ("paused", "", {"Count": 3, "From": AT, "Until": AT + 3600, "By": "bob"},
     "paused from Mon 2027-03-01 23:00 to Tue 2027-03-02 00:00 by bob: 3 left out",
     "suspendu de Mon 2027-03-01 23:00 à Tue 2027-03-02 00:00 par bob : 3 sans effet"),
    ("back-to-sleep", "", {}, "woken for nothing; put back to sleep", "réveillé pour rien ; remis en veille"),
    (FORGERY, SLEEP, {}, SHOWN, SHOWN),
    # Of other kinds than they should be.
    ("missed", SLEEP, {"Count": "x", "Cause": 5}, "missed: ", "manqué : "),
    ("slept", SLEEP, {"Until": 2**62}, f"slept until {2**62}", f"en veille jusqu’à {2**62}"),
)


class StandIn:
    """Answers in the daemon's name, each method with what it is told: arguments, each behind its type."""

    def __init__(self, system):
        self.answers = {"Pauses": [("aa{sv}", dbus.Array([], "a{sv}"))]}
        self.bus = system.connect()
        self.bus.add_message_filter(self.answer)
        self.bus.request_name(NAME)

    def answer(self, bus, message):
        if message.get_interface() != INTERFACE:
            return dbus.lowlevel.HANDLER_RESULT_NOT_YET_HANDLED
        answer = self.answers[message.get_member()]
        if isinstance(answer, str):
            reply = dbus.lowlevel.ErrorMessage(message, answer, FORGERY)
        else:
            reply = dbus.lowlevel.MethodReturnMessage(message)
            for signature, value in answer:
                reply.append(value, signature=signature)
        bus.send_message(reply)
        return dbus.lowlevel.HANDLER_RESULT_HANDLED


class CtlTest(CtlCase):
    def next(self, number=5):
        return json.loads(self.told("next", str(number), "--json"))["upcoming"]

    def test_shows_what_is_planned(self):
        self.start_daemon(schedule(SLEEP, "23:15"), schedule(WAKE_UP, "07:00", Needs_Startup=1),
                          schedule(SHUT_DOWN, "25:00"), schedule(SHUT_DOWN, "08:00", Restart=1))
        tokens = [one["token"] for one in self.next()]
        self.assertEqual(self.told("next", "3"), f"1  Mon 2027-03-01 23:15  Sleep    {tokens[0]}\n"
                                                 f"2  Tue 2027-03-02 07:00  Wake Up  {tokens[1]}\n"
                                                 f"4  Tue 2027-03-02 08:00  Restart  {tokens[2]}\n")
        none = "but is not set: this daemon sets none, it works below a folder of its own"
        status = (f"            Acts: no: nothing of this computer is asked or touched\n"
                  f"            Next: Mon 2027-03-01 23:15  Sleep (1)\n"
                  f"            Then: Tue 2027-03-02 07:00  Wake Up (2)\n"
                  f"   Wake-up alarm: Tue 2027-03-02 07:00, {none}\n"
                  f"  Start-up alarm: Tue 2027-03-02 06:58, {none}\n"
                  f"           Fault: schedule 3 (Shut Down) does not run: its hour is not between 0 and 23\n")
        version = self.told("--version").split()[1]
        self.assertEqual(self.run_ctl("status"), (5, f"● quorel-daemon {version} is running\n{status}", ""))
        self.assertIn("À venir", self.run_ctl(language="fr")[1])
        self.system.start_session_bus()
        self.system.variables["DISPLAY"] = ":0"
        self.assertIn("Agent: none in this session", self.run_ctl("status")[1])
        session = self.system.connect("session")
        session.set_exit_on_disconnect(False)
        self.addCleanup(session.close)
        session.request_name("com.quorel.UserAgent")
        self.assertNotIn("Agent:", self.run_ctl("status")[1])
        self.assertIs(json.loads(self.run_ctl("status", "--json")[1])["running"], True)
        self.move_to(23, 14)
        wait_until(lambda: self.next()[0]["step"] == "waiting", "it waits")
        self.assertIn("held up: it is not known what speaks against it", self.told("next"))
        follower = self.system.start([QUORELCTL, f"--root={self.root}", "log", "-f"], stdout=subprocess.PIPE)
        self.move_to(23, 45)
        self.assertIn("not put to sleep: it is not known", read_line(follower))
        self.assertIn("not put to sleep: it is not known", self.told("log"))

    def test_coloured_and_wrapped_on_a_terminal_alone(self):
        self.start_daemon(schedule(SLEEP, "23:15"))
        reader, terminal = pty.openpty()
        self.assertEqual(self.run_ctl("status", stdout=terminal)[0], 5)
        os.close(terminal)
        with os.fdopen(reader, "rb", buffering=0) as file, contextlib.suppress(OSError):  # the end of a terminal
            shown = b""
            while data := file.read(10000):  # which hands out a piece at a time
                shown += data
        shown = shown.decode()
        self.assertTrue(shown.startswith("\x1b[0;1;33m●\x1b[0m quorel-daemon"), shown)
        self.assertLessEqual(max(map(len, shown.splitlines()[1:])), 80)
        self.assertNotIn("\x1b", self.run_ctl("status")[1])

    def test_asks_for_a_password_on_its_terminal(self):
        self.system.start_polkit("polkit.addAdminRule(function() { return ['unix-user:root']; });")
        self.start_daemon(schedule(SLEEP, "23:15"))
        reader, terminal = pty.openpty()
        command = ["setsid", "--ctty", "--wait", QUORELCTL, "skip", self.next()[0]["token"]]
        process = self.system.start(command, user=NOBODY, stdin=terminal, stdout=terminal, stderr=terminal)
        os.close(terminal)
        shown = b""
        while b"Password: " not in shown:
            shown += os.read(reader, 1000)  # an error once the program has gone
        while process.poll() is None:  # what is typed before the terminal stops to show it is thrown away
            os.write(reader, b"no such password\n")
            time.sleep(1)
        self.assertEqual(process.returncode, 1)

    def test_tells_how_well_things_stand(self):
        stand_in = StandIn(self.system)
        stand_in.answers["Upcoming"] = [("aa{sv}", dbus.Array([], "a{sv}"))]
        stand_in.answers["Outcomes"] = stand_in.answers["Upcoming"]
        no_clock = dbus.Dictionary({"Fault": "no-clock"}, "sv")
        wanted = dbus.Dictionary({"At": dbus.Int64(AT), "Fault": "moved", "Others": dbus.Int64(AT + 3600)}, "sv")
        well = {"Version": "1", "Acts": True, "Faults": dbus.Array([], "a{sv}"), "WakeAlarm": no_clock,
                "StartupAlarm": dbus.Dictionary({}, "sv")}
        for change, status, words in (
                ({}, 0, "cannot be set: this computer has no clock with an alarm"),
                ({"PlanFault": "It is no file."}, 5, "Plan: the file in place is not used: It is no file."),
                ({"StateFault": "No space"}, 5, "State: cannot be kept: No space"),
                ({"Clock": "behind"}, 5, "Clock: behind; nothing runs"),
                ({"StartupAlarm": wanted}, 5, "23:00, but would come Tue 2027-03-02 00:00: the hardware's clock was set")):
            stand_in.answers["Status"] = [("a{sv}", {**well, **change})]
            found, output, _ = self.run_ctl("status")
            self.assertEqual(found, status, output)
            self.assertIn(words, output)

    def test_says_no(self):
        self.system.start_polkit(LET_NOBODY.format("skip"))
        self.start_daemon(schedule(SLEEP, "23:15"), schedule(SLEEP, "23:30"))
        first, second = (one["token"] for one in self.next(2))
        self.refused(1, "not permitted", "postpone", first, user=NOBODY)
        self.assertEqual(self.told("skip", "1", user=NOBODY),
                         "Skipped: Sleep, Mon 2027-03-01 23:15. Next: Tue 2027-03-02 23:15.\n")
        self.assertIn("Planned again: Sleep", self.told("unskip", "1", user=NOBODY))
        self.refused(4, "Nothing of the kind", "unskip", "1")
        self.told("skip", first)
        self.assertIn("skipped by root\n", self.told("next"))
        self.assertEqual(self.told("postpone", second),
                         "Postponed: Sleep, from Mon 2027-03-01 23:30 to Mon 2027-03-01 23:45.\n")
        self.told("postpone", second)  # is that very postponement again
        self.assertIn("postponed by root, planned for 23:30\n", self.told("next"))
        self.assertEqual(self.next()[1]["atSeconds"], AT + 45 * 60)
        self.refused(2, "no length of time", "postpone", "2", "soon")
        self.refused(2, "a minute to twelve hours", "postpone", "2", "13h")
        self.assertIn("to Tue 2027-03-02 01:15", self.told("postpone", "2", "90m"))
        self.refused(1, "not permitted", "try", "2", user=NOBODY)
        self.assertIn("Tried 2: Sleep", self.told("try", "2"))
        self.refused(1, "Not tried: not at this moment.", "try", "2")
        self.refused(4, "no such occurrence", "skip", "1-2-3")
        self.refused(2, "not in UTF-8", "skip", b"1-\xff")
        for _ in range(4):
            self.told("skip", first)
        self.refused(1, "ten changes", "skip", first)
        self.told("skip", first, user=NOBODY)

    def test_pauses(self):
        self.system.start_polkit(LET_NOBODY.format("pause"))
        self.start_daemon(schedule(SLEEP, "23:15"))
        self.assertEqual(self.told("pause", user=NOBODY),
                         "Paused until Tue 2027-03-02 05:00. First after that: Sleep, Tue 2027-03-02 23:15.\n")
        self.assertEqual(self.next()[0]["dueSeconds"], AT + 15 * 60 + 24 * 3600)
        self.refused(1, "not permitted", "pause", "2027-03-02", "6", "am", user=NOBODY)
        self.refused(1, "not permitted", "pause", "2027-03-02..2027-03-03", user=NOBODY)
        self.assertEqual(self.told("pause", "2027-03-05..2027-03-07", "noon"),
                         "To be paused from Fri 2027-03-05 00:00 until Sun 2027-03-07 12:00. "
                         "First after that: Sleep, Mon 2027-03-08 23:15.\n")
        self.refused(1, "not permitted", "resume", "2", user=NOBODY)
        for command in ("next", "list", "status"):
            self.assertIn("Tue 2027-03-02 05:00, by nobody", self.run_ctl(command)[1])
            self.assertEqual(len(json.loads(self.run_ctl(command, "--json")[1])["pauses"]), 2)
        self.refused(1, "366 days", "pause", "until", "2029-01-01")
        self.refused(2, "Until when?", "pause", "until", "2027-02-30")
        self.refused(1, "not permitted", "resume", "all", user=NOBODY)
        self.assertEqual(self.told("resume", "1", user=NOBODY), "The pause is over. Next: Sleep, Mon 2027-03-01 23:15.\n")
        # What comes first may stand behind hundreds; six pauses and the end of each were more than ten changes.
        for hour in ("6:00", "7:00"):
            self.told("add", "wake-up", hour)
        self.assertIn("Wake Up, Thu 2028-02-24 06:00", self.told("pause", "2028-02-22..2028-02-24"))
        for hours in range(4):
            self.told("pause", f"2027-04-0{hours + 1}..2027-04-0{hours + 1} 12:00")
        self.assertEqual(self.told("resume", "all"), "The pauses are over. Next: Sleep, Mon 2027-03-01 23:15.\n")
        self.refused(4, "Nothing is paused", "resume")

    def test_tells_sentences(self):
        stand_in = StandIn(self.system)
        stand_in.answers["Outcomes"] = [("aa{sv}", [
            {"Code": code, "Action": action, "At": dbus.Int64(AT), "Due": dbus.Int64(AT if action else 0),
             "Arguments": dbus.Dictionary({key: dbus.Int64(value) if type(value) is int else value
                                           for key, value in arguments.items()}, signature="sv", variant_level=1)}
            for code, action, arguments, _, _ in SENTENCES])]
        for language, column in (("en", 3), ("fr", 4)):
            lines = self.told("log", "500", language=language).replace("\u00a0", " ").split("\n")
            for line, sentence in zip(lines, SENTENCES, strict=False):
                with self.subTest(sentence[column]):
                    self.assertTrue(line.startswith("Mon 2027-03-01 23:00  ") and line.endswith("  " + sentence[column]),
                                    line)
            self.assertEqual(len(lines), len(SENTENCES) + 1)

    def test_shows_modules(self):
        stand_in = StandIn(self.system)
        names = dbus.Dictionary({"en": "Back up", "fr": "Sauvegarder\n"}, signature="sv")
        said = {"TimeLimit": dbus.Int64(600), "MakeUp": dbus.Int64(3600), "Needs": dbus.Array(["network", "root"], "v"),
                "Writes": dbus.Array(["/var/a"], "v"), "RunsAs": "system", "Program": "x"}
        stand_in.answers["Modules"] = [("aa{sv}", [
            {"Bundle": "Sleep.vxplugin", "Action": SLEEP, "Names": names},
            {"Bundle": "B.vxplugin", "Action": "org.x.B", "Names": names, **said},
            {"Bundle": FORGERY, "Fault": "no-words"}, {"Bundle": "C", "Action": "org.x.C", "Fault": "untrusted"}])]
        gap = " " * max(len(SHOWN), len("Back up"))
        self.assertEqual(self.told("modules"),
                         f"{'Sleep':{len(gap)}}  {SLEEP}  carried out by the daemon itself\n"
                         f"{'Back up':{len(gap)}}  {'org.x.B':{len(SLEEP)}}  in a sandbox, 10 minutes at most\n"
                         f"{gap}  uses the network\n{gap}  is root\n{gap}  writes /var/a\n"
                         f"{gap}  when missed, made up for within 60 minutes\n"
                         f"{SHOWN:{len(gap)}}  {'':{len(SLEEP)}}  cannot act: it does not say what action it is\n"
                         f"{'C':{len(gap)}}  {'org.x.C':{len(SLEEP)}}  cannot act: it is a link, or others than root could have changed it\n")
        self.assertIn("\nSauvegarder\ufffd", self.told("modules", language="fr"))
        self.assertEqual(json.loads(self.told("modules", "--json"))["modules"][1]["names"]["en"], "Back up")

    def test_checks_a_module_before_it_is_installed(self):
        self.assertEqual(self.told("modules", "--check", SAMPLE + "/"),
                         "Say a message  org.example.SayMessage  in a sandbox, 60 seconds at most\n"
                         "               when missed, made up for within 60 minutes\n")
        self.refused(2, "no option", "next", "--check", SAMPLE)
        for what, by, faults in (
                ("Kind = number", "Kind = count", ["QuorelActionOptions 2 Kind means nothing there"]),
                ("Default = 1", "Default = 1h", ["QuorelActionOptions 2 Default is of the wrong kind"]),
                ("TimeLimit = 60", "TimeLimitt = 0; QuorelActionRunsAs = me",
                 ["QuorelActionRunsAs is there twice", "QuorelActionTimeLimitt means nothing there",
                  "QuorelActionRunsAs makes no sense"]),
                ("QuorelActionProgram = say", "QuorelActionProgram = other", ["its program is missing"]),
                ("{", "", ["its information dictionary cannot be read"])):
            with self.subTest(by):
                folder = f"{self.system.place}/Say.vxplugin"
                shutil.rmtree(folder, ignore_errors=True)
                shutil.copytree(SAMPLE, folder)
                with open(f"{folder}/Resources/Info-gnustep.plist", "r+") as file:
                    words = file.read().replace(what, by, 1)
                    file.seek(0)
                    file.truncate()
                    file.write(words)
                status, output, said = self.run_ctl("modules", "--check", folder)
                self.assertEqual((status, output, said.count("\n")), (1, "", len(faults)), said)
                for fault in faults:
                    self.assertIn(f"quorelctl: {fault}", said)
        self.refused(1, 'ends in ".vxplugin"', "modules", "--check", self.system.place)

    def test_answers_of_another_kind(self):
        stand_in = StandIn(self.system)
        for answer, words in (
                ([("u", 5)], "cannot be understood"), ([], "cannot be understood"),
                ([("a{sv}", {"a": "b"})], "cannot be understood"), ([("as", ["a"])], "cannot be understood"),
                ([("v", dbus.String("x", variant_level=20))], "cannot be understood"),
                ("org.freedesktop.DBus.Error.UnknownMethod", "another version"),
                ("com.quorel.Error.Busy", f"refused: {SHOWN}")):
            with self.subTest(answer):
                stand_in.answers["Upcoming"] = answer
                self.refused(1, words, "next")

    def test_without_a_daemon(self):
        for arguments in (["next"], ["log"], ["skip", "1-2-3"]):
            self.refused(3, "not running", *arguments)
        self.assertEqual(self.run_ctl("status")[:2], (3, "○ quorel-daemon is not running\n"))
        self.assertEqual(self.run_ctl("status", "--json")[:2], (3, '{"format":1,"running":false}\n'))
        self.start_daemon()
        self.assertEqual(self.told("next"), "Nothing is planned.\n")
        self.daemon.send_signal(signal.SIGSTOP)
        self.refused(1, "does not answer", "status")

    def test_opens_the_window_or_else_the_pane(self):
        place = self.system.place
        self.system.variables.update(XDG_DATA_DIRS=f"{place}/share", DISPLAY=":7")
        os.makedirs(f"{place}/share/applications")
        self.refused(1, "Neither the settings window nor the pane", "settings")
        for name in ("quorel", "com.quorel.Settings"):
            with open(f"{place}/share/applications/{name}.desktop", "w") as file:
                file.write(f"[Desktop Entry]\nExec=touch '{place}/{name}'\n")
            self.assertEqual(self.told("settings"), "")
            wait_until(lambda path=f"{place}/{name}": os.path.exists(path), f"{name} is started")

    def test_wrong_command_lines(self):
        for arguments in (["sleep"], ["next", "0"], ["next", "101"], ["log", "x"], ["next", "1", "2"], ["postpone", "1", "2"],
                          ["status", "1"], ["--other"], [FORGERY], ["export", "--json"]):
            status, output, error = self.run_ctl(*arguments)
            self.assertEqual((status, output, "\x1b" in error), (2, "", False), arguments)


if os.getuid() != 0:
    print("Skipped: only root can cover polkit's folders in a mount namespace.")
    sys.exit(77)
unittest.main(argv=sys.argv[:1])
