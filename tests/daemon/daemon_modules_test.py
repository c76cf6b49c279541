#!/usr/bin/env python3
"""What the daemon does with modules' actions: daemon_modules_test.py DAEMON KIT_CALLER STEPPING_DAEMON PLUG_INS AGENT

A stand-in plays the service manager, and runs the programs without a sandbox.
"""
import json
import os
import plistlib
import pty
import select
import shutil
import signal
import subprocess
import sys

import dbus

from acting_case import POLICY, STEPPING_DAEMON, ActingCase, instant
from daemon_case import SUPPORT, main
from schedules import SHUT_DOWN, SLEEP, schedule

PLUG_INS, AGENT = sys.argv[4], os.path.abspath(sys.argv[5])
SYSTEMD, AGENTS = "org.freedesktop.systemd1", "com.quorel.Agents1"
ACTION = "org.example.Act"
WORDS = {"QuorelActionType": ACTION, "QuorelActionProgram": "act", "QuorelActionRunsAs": "system",
         "QuorelActionNames": {"en": "Do it", "fr": "Faites-le"}}
# Waits until it is let go, when there is something that holds it, and ends as it is told.
PROGRAM = """#!/bin/sh
cat > {place}/input
env > {place}/environment
echo begun > {place}/begun
while [ -e {place}/hold ]; do sleep 0.02; done
{end}
"""


class ModulesTest(ActingCase):
    policy = POLICY + POLICY.replace("org.freedesktop.login1", SYSTEMD)

    def setUp(self):
        super().setUp()
        self.place = self.system.place
        self.systemd = None

    def add_module(self, end="exit 0", **words):
        resources = f"{self.root}{PLUG_INS}/Act.vxplugin/Resources"
        os.makedirs(resources, exist_ok=True)
        with open(f"{resources}/Info-gnustep.plist", "wb") as file:
            plistlib.dump({**WORDS, **{f"QuorelAction{key}": value for key, value in words.items()}}, file)
        with open(f"{resources}/act", "w") as file:
            file.write(PROGRAM.format(place=self.place, end=end))
        os.chmod(f"{resources}/act", 0o755)

    def start_systemd(self, kind="system"):
        self.system.start([sys.executable, f"{SUPPORT}/systemd.py", self.system.addresses[kind]], name=SYSTEMD, kind=kind)
        bus = self.system.connect(kind)
        self.addCleanup(bus.close)
        self.systemd = dbus.Interface(bus.get_object(SYSTEMD, "/org/freedesktop/systemd1"), "com.quorel.Test")

    def hold(self, holds):
        path = f"{self.place}/hold"
        open(path, "w").close() if holds else os.remove(path)

    def begin_action(self, *others, **script):
        """At its minute."""
        self.begin(schedule(ACTION, "23:15", text="é"), *others, **script)
        self.move_to("23:15")

    def has_begun(self):
        self.wait_for(lambda: os.path.exists(f"{self.place}/begun"), "the program runs")

    def test_runs_at_its_minute(self):
        self.add_module(Needs=["network"], Writes=["/var/lib"], TimeLimit=60)
        self.hold(True)
        self.start_systemd()
        self.begin_action(schedule(SLEEP, "23:15"))
        self.has_begun()
        self.assertIn(["sleep", "block"], [[lock[0], lock[3]] for lock in self.script()["locks"]])
        with open(f"{self.place}/input", "rb") as file:
            self.assertEqual(plistlib.load(file), {"text": "é"})
        (name, told), = json.loads(self.systemd.Refuse("")).items()
        token = name.removeprefix("quorel-").removesuffix(".service")
        with open(f"{self.place}/environment") as file:
            environment = dict(line.split("=", 1) for line in file.read().splitlines())
        self.assertEqual({key: environment[key] for key in environment if key.startswith("QUOREL_")},
                         {"QUOREL_ACTION": ACTION, "QUOREL_OCCURRENCE": token, "QUOREL_MADE_UP": "0",
                          "QUOREL_DUE": str(instant("23:15"))})
        promised = {"DynamicUser": 1, "NoNewPrivileges": 1, "ProtectSystem": "strict", "ProtectHome": "yes",
                    "PrivateDevices": 1, "CapabilityBoundingSet": 0, "ReadWritePaths": ["/var/lib"],
                    "RuntimeMaxUSec": 60_000_000, "CollectMode": "inactive-or-failed"}
        self.assertEqual({key: told[key] for key in promised}, promised)
        self.assertNotIn("PrivateNetwork", told)
        # Sleep has its minute, too, and waits.
        self.wait_for(lambda: self.steps() == ["running", "waiting"], "sleep waits")
        self.hold(False)
        self.wait_for(lambda: "ran" in self.outcomes(), "it has ended")
        self.hear("Do it of Mon 2027-03-01 23:15: done in")
        self.wait_for(lambda: self.steps() == ["warned"], "nothing holds sleep up")
        self.assertEqual(self.own_locks(), ["sleep:shutdown"])

    def test_shut_down_is_told_on_terminals(self):
        """Not sleep, and not within graphical sessions."""
        terminals = [pty.openpty() for _ in range(3)]
        names = [os.ttyname(own).removeprefix("/dev/") for _, own in terminals]
        self.start_systemd()
        self.begin(schedule(SLEEP, "23:15"), schedule(SHUT_DOWN, "23:30"), sessions=[
            {"Type": "tty", "TTY": names[0], "RemoteHost": "far"}, {"Type": "x11", "TTY": names[1]},
            {"Type": "tty", "TTY": f"x/../{names[2]}"}])
        self.reach("23:14", "warned")
        self.move_to("23:15")
        self.last("slept")
        self.reach("23:29", "warned")
        self.wait_for(lambda: select.select([terminals[0][0]], [], [], 0)[0], "the terminal is told")
        self.assertIn(b"Quorel: Shutting down at 23:30", os.read(terminals[0][0], 1000))
        self.assertEqual([name for name in json.loads(self.systemd.Refuse("")) if "tells" in name],
                         [f"quorel-tells-{names[0].replace('/', '-')}.service"])

    def test_ends_of_all_kinds(self):
        for end, words, code, arguments in (
                ("exit 3", {}, "failed", {"Status": 3, "Reason": ""}),
                ("kill -9 $$", {}, "failed", {"Status": 9, "Reason": "signal"}),
                ("trap '' TERM; sleep 1000", {"TimeLimit": 1}, "timed-out", {}),
                ("exit 226", {}, "not-started", {"Reason": "no-sandbox"}),
                (None, {}, "not-started", {"Reason": "no-program"}),
                ("exit 0", {"Writes": ["/a/b"]}, "not-started", {"Reason": "/a/b: No such file or directory"}),
                ("refused", {}, "not-started", {"Reason": "refused"}),
                ("no manager", {}, "not-started", {"Reason": "no-manager"})):
            with self.subTest(end):
                self.setUp()
                self.add_module(end, **words)
                if end != "no manager":
                    self.start_systemd()
                    self.systemd.Refuse("refused" if end == "refused" else "")
                self.begin(schedule(ACTION, "23:15"))
                if not end:  # gone since the list was read
                    os.remove(f"{self.root}{PLUG_INS}/Act.vxplugin/Resources/act")
                self.move_to("23:15")
                self.last(code, **arguments)
                self.wait_for(lambda: self.own_locks() == ["sleep:shutdown"], "sleep is let go")

    def test_the_sample_runs_from_a_copied_folder(self):
        shutil.copytree(f"{SUPPORT}/../../modules/sample/SayMessage.vxplugin",
                        f"{self.root}{PLUG_INS}/SayMessage.vxplugin")
        self.start_systemd()
        self.begin(schedule("org.example.SayMessage", "23:15", Message="Tea", Times=2),
                   schedule("org.example.SayMessage", "23:16", Message=3))
        self.move_to("23:15")
        self.last("ran")
        self.move_to("23:16")
        self.last("failed", Status=1, Reason="")

    def test_many_of_one_minute(self):
        self.add_module()
        self.start_systemd()
        many = 150  # more than the bus lets a program call at a time
        self.begin(*(schedule(ACTION, "23:15", number=number) for number in range(many)))
        self.move_to("23:15")
        self.wait_for(lambda: self.outcomes() == ["ran"] * many, "all have run")

    def test_lets_through_64_kib(self):
        program = f"{self.place}/program"
        with open(program, "w") as file:
            file.write("#!/bin/sh\nyes &\nyes | head -c 100000 >&2\nexit 5\n")
        os.chmod(program, 0o755)
        runner = f"{os.path.dirname(STEPPING_DAEMON)}/quorel-run-module"
        run = subprocess.run([runner, program], stdout=subprocess.PIPE, timeout=60)
        written, _, note = run.stdout.partition(b"\n[")
        self.assertEqual((run.returncode, len(written) // 1024), (5, 64))
        self.assertEqual(note, b"Quorel: the rest of the output is left out.]\n")

    def test_finds_it_again(self):
        for is_found in (True, False):
            with self.subTest(is_found=is_found):
                self.setUp()
                self.add_module()
                self.hold(True)
                self.start_systemd()
                self.begin_action()
                self.has_begun()
                self.daemon.send_signal(signal.SIGKILL)
                self.daemon.wait()
                if not is_found:
                    self.systemd.Forget()
                self.start_daemon()
                self.hold(False)
                self.last("ran" if is_found else "unknown")
                os.remove(f"{self.place}/begun")  # was not begun again

    def test_nobody_there_to_run_it(self):
        for sessions, reason in (([], "nobody"), ([{"Class": "greeter", "User": 0}], "nobody"),
                                 ([{"User": 0}], "no-agent")):
            with self.subTest(sessions):
                self.setUp()
                self.add_module(RunsAs="user")
                self.begin_action(sessions=sessions)
                self.last("not-started", Reason=reason)

    def test_runs_in_the_session(self):
        self.add_module("exit 4", RunsAs="user", TimeLimit=60, MakeUp=600)
        self.system.start_session_bus()
        self.start_systemd("session")
        self.begin(schedule(ACTION, "23:15", text="é"), sessions=[{"User": 0}])
        os.environ["XDG_CURRENT_DESKTOP"], os.environ["OTHER"] = "test", "x"
        self.system.start_agent(AGENT, self.root)
        self.wait_for(self.is_taken, "the agent is registered")
        self.hold(True)
        self.reach("23:19", "make-up")
        self.move_to("23:21")
        self.has_begun()
        with open(f"{self.place}/environment") as file:
            environment = dict(line.split("=", 1) for line in file.read().splitlines())
        self.assertEqual((environment["XDG_CURRENT_DESKTOP"], environment["QUOREL_MADE_UP"]), ("test", "1"))
        self.assertNotIn("OTHER", environment)
        (_, told), = json.loads(self.systemd.Refuse("")).items()
        self.assertEqual((told["KillMode"], told["RuntimeMaxUSec"]), ("process", 60_000_000))
        self.assertNotIn("DynamicUser", told)
        # It goes on while the daemon is restarted, and ends then.
        self.daemon.send_signal(signal.SIGKILL)
        self.daemon.wait()
        self.start_daemon()
        self.assertEqual(self.steps(), ["running"])
        self.hold(False)
        self.last("failed", Status=4)

    def is_taken(self):
        """Whether the user has an agent. Who asks is one otherwise, until it leaves: the real one tries again."""
        bus = self.system.connect()
        try:
            dbus.Interface(bus.get_object("com.quorel.Daemon", "/com/quorel/Agents"), AGENTS).Register()
            return False
        except dbus.DBusException as error:
            return error.get_dbus_name() == "com.quorel.Error.Busy"
        finally:
            bus.close()


main()
