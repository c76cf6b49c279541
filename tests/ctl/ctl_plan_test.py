#!/usr/bin/env python3
"""quorelctl and the plan: ctl_plan_test.py STEPPING_DAEMON QUORELCTL MODULES FOLDER-OF-MODULES"""
import json
import os
import plistlib
import shutil
import subprocess
import sys
import time
import unittest

from ctl_case import QUORELCTL, CtlCase
from schedules import SLEEP, schedule

MODULES, FOLDER = sys.argv[3:5]
ROOT = os.path.dirname(MODULES)
NOBODY = 65534
BACKUP = schedule("org.x.Backup", "7:05", Own=b"\0") | {"own": 1.5}


class PlanTest(CtlCase):
    def setUp(self):
        super().setUp()
        for name in ("Sleep", "WakeUp"):
            resources = f"{self.root}{FOLDER}/{name}.vxplugin/Resources"
            os.makedirs(resources)
            shutil.copy(f"{MODULES}/{name}/Info-gnustep.plist", resources)
        self.text = f"{self.system.place}/plan.txt"

    def plan(self):
        """A line each, without the options."""
        return [" ".join(line.split()) for line in self.told("export").splitlines()[1:]]

    def stored(self):
        with open(f"{self.root}/Library/Preferences/com.quorel.plist", "rb") as file:
            return plistlib.load(file)

    def test_changes_the_plan_in_words(self):
        self.start_daemon(schedule(SLEEP, "23:15", Only_When_Idle=1))
        for command, answer, plan in (
                ("add wake-up 6:45 am weekdays start-up=yes", "Added 2: Wake Up, Mon–Fri 06:45",
                 ["23:15 mon,tue sleep only-when-idle=yes", "06:45 mon-fri wake-up start-up=yes"]),
                ("set 1 11pm +wed idle-minutes=5", "Changed 1: Sleep, Mon–Wed 23:00, after 5 min idle",
                 ["23:00 mon-wed sleep only-when-idle=yes idle-minutes=5", "06:45 mon-fri wake-up start-up=yes"]),
                ("disable 2 1", "Switched off 2: ",
                 ["23:00 mon-wed sleep off only-when-idle=yes idle-minutes=5", "06:45 mon-fri wake-up off start-up=yes"]),
                ("enable sleep 23:00", "Switched on 1: Sleep",
                 ["23:00 mon-wed sleep only-when-idle=yes idle-minutes=5", "06:45 mon-fri wake-up off start-up=yes"]),
                ("set Wake up 6:45 to on sat", "Before: 06:45 mon-fri wake-up off start-up=yes",
                 ["23:00 mon-wed sleep only-when-idle=yes idle-minutes=5", "06:45 sat wake-up start-up=yes"]),
                ("remove 1", "Removed 1: 23:00 mon-wed sleep only-when-idle=yes idle-minutes=5",
                 ["06:45 sat wake-up start-up=yes"]),
                ("add wake-up 6:45 sat start-up=yes", "Added 2: ", ["06:45 sat wake-up start-up=yes"] * 2),
                ("disable 1 2", "Switched off 1: ", ["06:45 sat wake-up off start-up=yes"] * 2)):
            with self.subTest(command):
                self.assertIn(answer, self.told(*command.split()))
                self.assertEqual(self.plan(), plan)
        self.assertIn("Réveil", self.told("list", language="fr"))
        listed = json.loads(self.told("enable", "1", "--json"))["schedules"][0]
        self.assertEqual((listed["number"], listed["time"], listed["days"]), (1, "06:45", ["sat"]))
        self.assertIn("T06:45:00", listed["next"])

    def test_refuses_what_cannot_be_taken(self):
        self.start_daemon(schedule(SLEEP, "23:15"), schedule(SLEEP, "23:15", days=["Friday"]))
        before = self.stored()
        for command, status, words in (
                ("add", 2, "Actions are: shut-down, sleep"), ("add sleep 25:00", 2, "no time of day"),
                ("add slep 9:00", 2, "no action"), ("add org.x.Y 9:00", 2, "no action"),
                ("add sleep 9:00 lunch", 2, "stands behind"), ("skip 3", 4, "the plan has 2"),
                ("add sleep 9:00 idle-minutes=0", 2, "Allowed: 1-999"), ("set 1", 2, "Which one"),
                ("set 3 9:00", 4, "the plan has 2"), ("remove sleep 23:15", 4, "give the number"),
                ("enable sleep 9:00", 4, "no such schedule"), ("disable 1 x", 2, "Which one"),
                ("import /nowhere", 1, "cannot be read"),
                ("import /tmp", 1, "\"/tmp\" cannot be read"), ("add sleep 9:00 --other", 2, "no option")):
            with self.subTest(command):
                self.refused(status, words, *command.split())
        self.refused(1, "not permitted", "remove", "1", user=NOBODY)
        self.assertEqual(self.stored(), before)

    def test_export_and_import(self):
        self.start_daemon(BACKUP, schedule(SLEEP, "23:15", Only_When_Idle="1"))
        before = self.stored()
        self.told("export", self.text)
        self.assertEqual(self.run_ctl("import", self.text)[1], "Nothing changes.\n")
        self.assertEqual(self.stored(), before)
        with open(self.text, "a") as file:
            file.write("x\n7:00 sleep idle-minutes=x\n")
        self.refused(2, f"{self.text}:5:12: ", "import", self.text)
        with open(self.text) as file:
            text = file.read().replace("x\n7:00", "8:00").replace("=x", "=5").replace("yes", "no", 1)
        with open(self.text, "w") as file:
            file.write(text)
        for dry in (["--dry-run"], []):
            self.assertEqual(self.stored(), before)
            status, output, _ = self.run_ctl("import", self.text, *dry)
            self.assertEqual((status, "+ 08:00 daily sleep idle-minutes=5\n" in output), (0, True), output)
        self.assertEqual(json.loads(self.run_ctl("import", self.text, "--json")[1])["changed"], False)
        self.assertEqual(self.stored()["Schedule Array"][:2], before["Schedule Array"])

    def test_edit(self):
        self.start_daemon(schedule(SLEEP, "23:15"))
        self.environment = {"EDITOR": "kill -INT $PPID; sed -i s/23:15/22:00/", "TMPDIR": self.system.place}
        self.assertIn("+ 22:00 mon,tue sleep\nStored.\n", self.told("edit"))
        self.environment["EDITOR"] = "sed -i 's/22:00/2200x/'"
        status, _, error = self.run_ctl("edit")
        kept = error.split("kept in ")[1].strip()[:-1]
        with open(kept) as file:
            self.assertIn("2200x  mon,tue  sleep\n#! ^ \"2200x\" is no time of day", file.read())
        self.assertEqual((status, self.plan()), (2, ["22:00 mon,tue sleep"]))
        self.environment["EDITOR"] = "sed -i s/22:00/21:00/ $1; false"
        self.refused(1, "editor has failed; nothing is stored.\nquorelctl: The text is kept in", "edit")

    def test_fifty_at_once(self):
        self.start_daemon()
        environment = dict(self.system.environment(), LC_ALL="C.UTF-8")
        left, told = set(range(50)), []
        deadline = time.monotonic() + 200  # where much else is done, the daemon is busy for longer than is waited for it
        while left and time.monotonic() < deadline:
            adding = {minute: subprocess.Popen([QUORELCTL, f"--root={self.root}", "add", "sleep", f"12:{minute:02}"],
                                               env=environment, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True)
                      for minute in left}
            told = [process.communicate()[1] for process in adding.values()]
            left -= {minute for minute, process in adding.items() if process.returncode == 0}
            stored = sorted(one["Action Minute"] for one in self.stored()["Schedule Array"])
            self.assertEqual(stored, [minute for minute in range(50) if minute not in left], told)
        self.assertEqual(left, set(), told)

    @unittest.skipUnless(shutil.which("ansible-playbook"), "needs ansible-core")
    def test_a_fleet_by_ansible(self):
        """With the playbook that is told to administrators, on this computer alone."""
        self.start_daemon(schedule(SLEEP, "23:15"))
        place = self.system.place
        with open(f"{ROOT}/docs/administration.md", encoding="utf-8") as file:
            playbook = file.read().split("```yaml\n")[1].split("```")[0]
        for path, text in (("playbook.yml", playbook), ("plan.txt", "8:00 sleep idle-minutes=5\n"),
                           ("quorelctl", f'#!/bin/sh\nexec {QUORELCTL} --root={self.root} "$@"\n')):
            with open(f"{place}/{path}", "w", encoding="utf-8") as file:
                file.write(text)
        os.chmod(f"{place}/quorelctl", 0o755)
        command = ["ansible-playbook", "-i", "localhost,", "-c", "local", "-e", "ansible_become=false",
                   "-e", "ansible_python_interpreter=/usr/bin/python3", f"{place}/playbook.yml"]
        environment = {**os.environ, **self.system.environment(), "LC_ALL": "C.UTF-8", "HOME": place,
                       "PATH": f"{place}:{os.environ['PATH']}"}
        for flags, text, expected, plan in (
                (["--check"], "", "changed=1", "23:15 mon,tue sleep"), ([], "", "changed=1", "08:00 daily sleep idle-minutes=5"),
                ([], "", "changed=0", "08:00 daily sleep idle-minutes=5"),
                ([], "8:00 slep\n", "failed=1", "08:00 daily sleep idle-minutes=5")):
            if text:
                with open(f"{place}/plan.txt", "w", encoding="utf-8") as file:
                    file.write(text)
            run = subprocess.run([*command, *flags], env=environment, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                                 text=True)
            self.assertIn(expected, run.stdout)
            self.assertEqual(self.plan(), [plan], run.stdout)

    def test_completes(self):
        self.start_daemon(schedule(SLEEP, "23:15"))
        for typed, found in (("ex", {"export"}), ("add sleep only", {"only-when-idle=yes", "only-when-idle=no"}),
                             ("set ", {"--json", "1"}), ("set 1 idle", {"idle-minutes="}), ("import --d", {"--dry-run", "/files"})):
            self.assertEqual(set(self.told("complete", *typed.split(" ")).split()), found)


if os.getuid() != 0:
    print("Skipped: only root can cover polkit's folders in a mount namespace.")
    sys.exit(77)
unittest.main(argv=sys.argv[:1])
