"""The packages on a machine that never saw them: what their installation, use, upgrade, removal and purge do there.

machine_test.py IMAGE PAYLOAD: the payload holds the packages, two higher versions of them below upgrade/, and single.deb,
an older one with all that they have.
Each case goes on where the one before it left the machine, and puts right what it needs itself.
"""
import base64
import json
import os
import plistlib
import re
import shlex
import sys
import time
import unittest

from machine import Machine

IMAGE, PAYLOAD = sys.argv[1:3]
README = f"{os.path.dirname(os.path.abspath(__file__))}/../../README.md"
with open(README, encoding="utf-8") as text:
    INSTALL = f"cd /root && {re.search('^sudo apt install .*$', text.read(), re.MULTILINE).group()} < /dev/null"
DOCS = f"{os.path.dirname(README)}/docs"
PACKAGES = "quorel quorel-daemon quorel-gnustep quorel-settings"
AUTOSTART = "/etc/xdg/autostart/quorel-agent.desktop"
FILE = "/Library/Preferences/com.quorel.plist"

# A log-in by PAM, of a session that starts what desktops start by itself.
DESK = """[Service]
User=anna
PAMName=login
Environment=XDG_SEAT=seat0 XDG_VTNR=7 XDG_SESSION_TYPE=x11
WorkingDirectory=~
ExecStart=/usr/bin/xinit /usr/bin/openbox-session -- /usr/bin/Xvfb :7 -nolisten tcp
"""


# Where modules of other people lay in older versions.
BEFORE = "/usr/lib/GNUstep/Bundles/Quorel.prefPane/PlugIns"
PROBE = "/usr/lib/quorel/modules/Probe.vxplugin"
PROBE_INFO = """{ QuorelActionType = "com.quorel.plugin.Probe"; QuorelActionNames = { en = Probe; };
    QuorelActionProgram = probe; QuorelActionRunsAs = system; }
"""
PROBE_PROGRAM = """#!/bin/bash
cat
[ $(id -u) -ne 0 ] && echo not root
readlink /proc/self/ns/net
touch /etc/quorel-probe || echo no writing in /etc
touch /home/anna/quorel-probe || echo no writing in /home
"""


def preferences(**changes):
    return {"Check Updates": 0, "Check Updates Frequency": 1, "Show In Menu Bar": 1,
            "Enable Network Administration": 0, "Prefs Version": 1, "Schedule Array": [], **changes}


def schedule(action, hour, minute, **parameters):
    days = {f"Active On {day}": True for day in ("Monday", "Tuesday")}
    return {"Is Enabled": 1, "Action Type": f"com.quorel.plugin.{action}", "Action Hour": hour,
            "Action Minute": minute, "Action Parameters": parameters, **days}


def call(name, method, *arguments, flags=""):
    return shlex.join(["busctl", *flags.split(), "call", f"com.quorel.{name}", "/com/quorel/Communication",
                       "com.quorel.Communication1", method, *map(str, arguments)])


def save(**changes):
    data = plistlib.dumps(preferences(**changes), fmt=plistlib.FMT_BINARY)
    return call("Daemon", "PostNotification", "ssay", "DaemonMustReloadPrefs", "com.quorel.Daemon", len(data), *data)


def anna(command):
    return f"runuser -u anna -- env XDG_RUNTIME_DIR=/run/user/1000 DISPLAY=:7 {command}"


PING = call("Daemon", "Ping")
PING_AGENT = anna(call("UserAgent", "Ping", flags="--user --auto-start=no"))
DAEMON = "systemctl show --value -p MainPID quorel-daemon"
# Where she sits; from systemd 256 on her service manager has one, too.
SESSION = "$(loginctl list-sessions --no-legend | awk '$3 == \"anna\" && $4 == \"seat0\" { print $1 }')"
AGENT = "pgrep -x quorel-agent"
ALARM = "/sys/class/rtc/rtc0/wakealarm"
ON_TERMINAL = " ".join(f"-p Standard{name}=tty" for name in ("Input", "Output", "Error"))
FILES = ("find / -xdev \\( -path /home -o -path /root -o -path /tmp -o -path /var/tmp -o -path /var/log -o -path "
         "/var/cache -o -path /run -o -path /var/lib/apt \\) -prune -o -print | sort")


def setUpModule():
    global guest
    guest = Machine(IMAGE, PAYLOAD)
    unittest.addModuleCleanup(guest.close)
    guest.run(f"{FILES} > /var/tmp/before; mkdir -p /root/build; ln -s /payload /root/build/package")
    guest.run(f"cat > /etc/systemd/system/desk.service << 'END'\n{DESK}END\nsystemctl daemon-reload")


class PackageTest(unittest.TestCase):
    def stored(self):
        return plistlib.loads(guest.run(f"cat {FILE}").encode())

    def is_up_without_complaint(self):
        guest.wait("systemctl is-active quorel-daemon")
        self.assertEqual(guest.run("systemctl --failed --plain --no-legend"), "")
        self.assertEqual(guest.run("journalctl -q -b -p warning -u quorel-daemon"), "")  # the service manager's words, too
        self.assertEqual(guest.run("journalctl -q -b -o cat | grep 'Rejected.*quorel' | cat"), "")  # the bus's

    def is_refused_and_stays_down(self, command):
        self.assertNotEqual(guest.ask(command)[0], 0, command)
        self.assertEqual(guest.ask("systemctl is-active quorel-daemon")[1], "inactive", command)

    def test_01_installs_as_the_readme_says(self):
        guest.run(INSTALL)
        self.is_up_without_complaint()
        said = guest.run("journalctl -q -b -o cat -u quorel-daemon _COMM=quorel-daemon")
        self.assertEqual(said, "The daemon serves.")
        guest.run("systemd-analyze security --threshold=20 quorel-daemon")  # an exposure of 2.0
        self.assertEqual(guest.run(f"dpkg --verify {PACKAGES}"), "")
        self.assertEqual(guest.run(anna(PING)), "b true")
        self.assertIn("com.quorel.Communication1",
                      guest.run(anna("busctl introspect com.quorel.Daemon /com/quorel/Communication")))

    def test_02_stores_for_root_alone(self):
        guest.run(save(**{"Show In Menu Bar": 0}))
        status, output = guest.ask(anna(save()))
        self.assertNotEqual(status, 0)
        self.assertIn("administrator", output)
        self.assertEqual(self.stored(), preferences(**{"Show In Menu Bar": 0}))

    def test_02a_goes_by_what_root_puts_in_place(self):
        self.addCleanup(guest.run, save(**{"Show In Menu Bar": 0}))
        plan = base64.b64encode(plistlib.dumps(preferences(**{"Schedule Array": [schedule("Sleep", 4, 44)]}))).decode()
        guest.run(f"base64 -d <<< {plan} > /root/plan; install -m 644 /root/plan {FILE}")
        guest.wait("quorelctl next | grep 04:44")
        self.assertEqual(guest.ask("quorelctl status")[0], 0)
        guest.run(f"chown anna {FILE}; chmod 600 {FILE}")
        guest.wait("quorelctl status | grep 'not used: It cannot be read: Permission denied'")
        self.assertEqual(guest.ask("quorelctl status")[0], 5)
        guest.run(f"chown root {FILE}; systemctl reload quorel-daemon")
        guest.wait("quorelctl status > /dev/null")

    def test_02b_starts_on_a_full_disk(self):
        self.addCleanup(guest.run, "rm /fill /fill2; systemctl restart quorel-daemon")
        guest.run("fallocate -l $(df --output=avail -B1 / | tail -1) /fill; cat /dev/zero > /fill2; test -s /fill2")
        guest.run("systemctl restart quorel-daemon")
        self.assertIn("No space left", guest.wait("quorelctl status | grep State:"))

    def test_03_comes_back_however_often_it_is_killed(self):
        before = guest.run(DAEMON)
        guest.run("systemctl kill -s KILL quorel-daemon")
        guest.wait(f"{DAEMON} | grep -vx -e 0 -e {before}")
        for _ in range(7):
            guest.run(f"systemctl kill -s KILL quorel-daemon; {PING}")
        self.assertEqual(guest.run("systemctl --failed --plain --no-legend"), "")

    def test_04_stopped_is_started_by_a_call(self):
        guest.run("systemctl stop quorel-daemon")
        self.assertEqual(guest.run(anna(PING)), "b true")

    def test_05_shuts_down_at_its_minute_and_leaves_the_alarm_set(self):
        # In local time, as beside another system, with two hours between the clocks for who takes it for the world's.
        guest.run("timedatectl set-timezone Europe/Helsinki; timedatectl set-local-rtc 1")
        guest.run(f"systemd-run -q -p User=anna -p PAMName=login -p TTYPath=/dev/tty6 {ON_TERMINAL} sleep 1h")
        guest.run("date -s '2027-03-01 12:00:50'; hwclock --systohc --localtime")
        guest.run(save(**{"Schedule Array": [schedule("WakeUp", 18, 30, **{"Needs Startup": 1}),
                                             schedule("ShutDown", 12, 2)]}))
        guest.wait("grep -a 'Quorel: Shutting down at 12:02' /dev/vcs6")
        guest.wait_state("shutdown")
        is_set = guest.cmos(0x0b) & 0x20
        hour, minute, second = (int(f"{guest.cmos(register):x}") for register in (5, 3, 1))
        guest.start()
        self.assertTrue(is_set, "the alarm is off")
        self.assertLessEqual(abs((hour * 60 + minute) * 60 + second - (18 * 60 + 28) * 60), 1)
        self.is_up_without_complaint()
        self.assertEqual(len(self.stored()["Schedule Array"]), 2)
        self.assertIn("shut-down", guest.run("quorelctl log --json"))

    def test_05a_sets_the_alarm_of_a_clock_in_the_worlds_time_too(self):
        self.addCleanup(guest.run, "timedatectl set-local-rtc 0; rm -f /etc/adjtime; timedatectl set-timezone UTC")
        guest.run("timedatectl set-local-rtc 0; rm /etc/adjtime; date -s '2027-03-01 13:00:00'")
        guest.run(save(**{"Schedule Array": [schedule("WakeUp", 21, 10, **{"Needs Startup": 1})]}))
        rtc = "/sys/class/rtc/rtc0"
        # An earlier plan's alarm may still stand there when a save has been answered.
        ahead = f"$(cat {rtc}/wakealarm) - $(cat {rtc}/since_epoch)"
        until = "$(date -d '21:08:00' +%s) - $(date +%s)"
        guest.wait(f"test -s {rtc}/wakealarm && apart=$((({ahead}) - ({until}))) && test ${{apart#-}} -le 30")
        guest.run("timedatectl set-local-rtc 1")
        self.assertIn("21:08, but would come", guest.wait("quorelctl status | grep 'hardware.s clock was set'"))

    def test_05b_stays_awake_for_a_lock_of_root(self):
        # In its first minute the clock of a machine that nobody has set is not trusted, and a list that is saved waits.
        guest.wait("test $(cut -d. -f1 /proc/uptime) -ge 65")
        guest.run("systemd-run -q --unit=upgrade systemd-inhibit --what=sleep --who=Upgrades --why=installing sleep 1h")
        guest.wait("systemd-inhibit --list | grep -q Upgrades")
        guest.run("date -s '2027-03-01 13:59:30'")
        guest.run(save(**{"Schedule Array": [schedule("Sleep", 14, 0)]}))
        self.assertIn("Upgrades", guest.wait("quorelctl status | grep Upgrades"))
        guest.wait_state("running")
        guest.run("systemctl stop upgrade")
        guest.run(save())
        guest.wait("quorelctl log --json | grep -q withdrawn")

    def test_05c_sleeps_and_wakes_at_the_minute(self):
        guest.run("date -s '2027-03-01 14:58:50'")
        guest.run(save(**{"Schedule Array": [schedule("Sleep", 15, 0), schedule("WakeUp", 15, 2)]}))
        guest.wait_awake()
        guest.wait("quorelctl log --json | grep -q woke-up")
        log = {one["code"]: one for one in json.loads(guest.run("quorelctl log --json"))["outcomes"]}
        at = {code: time.gmtime(log[code]["dueSeconds"])[3:5] for code in ("slept", "woke-up")}
        self.assertEqual(at, {"slept": (15, 0), "woke-up": (15, 2)})
        asleep = guest.run("journalctl -q -o short-unix -u systemd-suspend -u systemd-logind | grep -i 'sleep' | cat")
        woken = log["slept"]["arguments"]["untilSeconds"] - log["woke-up"]["dueSeconds"]
        self.assertLessEqual(abs(woken), 20, asleep)
        self.assertIn("block", guest.run("systemd-inhibit --list | grep Quorel | grep idle"))
        print(guest.run("quorelctl status; quorelctl next; quorelctl log; journalctl -q -u quorel-daemon | tail -20"))
        guest.run(save(**{"Show In Menu Bar": 0}))

    def test_05d_asks_for_a_password_on_the_terminal(self):
        self.addCleanup(guest.run, save(**{"Show In Menu Bar": 0}) + "; systemctl stop ask")
        guest.run(save(**{"Show In Menu Bar": 0, "Schedule Array": [schedule("Sleep", 23, 0)]}))
        token = json.loads(guest.run("quorelctl next --json"))["upcoming"][0]["token"]
        guest.run(f"systemd-run -q --unit=ask -p User=anna -p PAMName=login -p TTYPath=/dev/tty5 {ON_TERMINAL} "
                  f"quorelctl skip {token}")
        guest.wait("grep -a 'AUTHENTICATING FOR com.quorel.skip.*Password' /dev/vcs5")

    def test_06_session_starts_the_agent(self):
        guest.run("systemctl start desk")
        self.assertEqual(guest.wait(PING_AGENT), "b true")
        # It came with the session's own start, and not as a service.
        self.assertEqual(guest.ask(anna("systemctl --user is-active quorel-agent"))[1], "inactive")
        self.assertEqual(guest.ask(anna("/usr/libexec/quorel/quorel-agent")), (0, ""))

    def test_06a_who_sits_at_the_computer_says_no_and_nobody_else(self):
        self.addCleanup(guest.run, save(**{"Show In Menu Bar": 0}))
        guest.run(save(**{"Show In Menu Bar": 0, "Schedule Array": [schedule("Sleep", 23, 0)]}))
        skip = f"skip {json.loads(guest.run('quorelctl next --json'))['upcoming'][0]['token']}"

        def in_session(words):
            return anna(f"systemd-run --user --quiet --wait --pipe quorelctl {words} < /dev/null")

        active = f"loginctl show-session -p Active --value {SESSION}"
        self.assertEqual(guest.run(active), "no")
        for words in (skip, "pause"):  # without a session, and from one that another one hides
            for refused in (anna(f"quorelctl {words} < /dev/null"), in_session(words)):
                self.assertNotEqual(guest.ask(refused)[0], 0, refused)
        guest.run(f"loginctl activate {SESSION}")
        guest.wait(f"{active} | grep yes")
        guest.run(in_session(skip))
        self.assertIn("skipped by anna", guest.run("quorelctl next"))
        self.assertNotEqual(guest.ask(in_session("pause 48h"))[0], 0)  # a change of the plan
        for words in ("pause", "resume"):
            guest.run(in_session(words))

    def test_07_settings_application_loads_the_pane(self):
        guest.run("mkdir -p /home/anna/GNUstep && chown anna: /home/anna/GNUstep")
        command = guest.run("sed -n s/^Exec=//p /usr/share/applications/quorel.desktop").strip()
        guest.run(anna(f"{command} > /dev/null 2>&1 &"))
        guest.wait("grep -q Quorel.prefPane/Quorel$ /proc/$(pgrep -f ^SystemPreferences)/maps")

    def test_07a_settings_window_opens(self):
        guest.run(anna("quorel-settings > /dev/null 2>&1 &"))
        guest.wait(anna("busctl --user status com.quorel.Settings"))
        guest.run("pkill -x quorel-settings")

    def test_08_pane_looks_for_the_daemon_and_starts_nothing(self):
        guest.run("systemctl stop quorel-daemon")
        look = "type='method_call',member='GetNameOwner',arg0='com.quorel.Daemon'"
        guest.run(f'dbus-monitor --system "{look}" | grep -m1 member=GetNameOwner')
        self.assertEqual(guest.ask("systemctl is-active quorel-daemon")[1], "inactive")
        guest.run("systemctl start quorel-daemon; pkill -f ^SystemPreferences")

    def test_08a_runs_a_module_for_the_system_and_one_for_the_user(self):
        guest.run(f"mkdir -p {PROBE}/Resources; cat > {PROBE}/Resources/Info-gnustep.plist << 'END'\n{PROBE_INFO}END\n"
                  f"cat > {PROBE}/Resources/probe << 'END'\n{PROBE_PROGRAM}END\nchmod 755 {PROBE}/Resources/probe")
        guest.run("printf '#!/bin/sh\\nid -un > ~/opened\\n' > /usr/local/bin/mark; chmod 755 /usr/local/bin/mark")
        self.addCleanup(guest.run, f"rm -r {PROBE} /usr/local/bin/mark")
        guest.run("date -s '2027-03-01 16:59:40'")
        probe = schedule("Probe", 17, 0, word="<&>")
        guest.run(save(**{"Show In Menu Bar": 0, "Schedule Array": [
            probe, schedule("Open", 17, 0, Target="/usr/local/bin/mark")]}))
        guest.wait("test $(quorelctl log --json | grep -o 'com.quorel.plugin.[OP]' | wc -l) -ge 2")
        told = json.loads(guest.run("quorelctl log --json"))["outcomes"]
        log = {one["action"]: one for one in told if "action" in one}
        self.assertEqual([log[f"com.quorel.plugin.{name}"]["code"] for name in ("Probe", "Open")], ["ran", "ran"], log)
        said = guest.run("journalctl -q -o cat -u 'quorel-[0-9]*'")
        for words in ("not root", "no writing in /etc", "no writing in /home", "&lt;&amp;&gt;"):
            self.assertIn(words, said)
        self.assertIn("net:[", said)
        self.assertNotIn(guest.run("readlink /proc/1/ns/net"), said)
        self.assertEqual(guest.run("cat /home/anna/opened"), "anna")
        self.assertIn("Probe", guest.run("quorelctl modules"))

    def test_08a_your_script_at_its_time_in_five_minutes(self):
        """The commands of the document, as they stand there."""
        with open(f"{DOCS}/writing-a-module.md", encoding="utf-8") as file:
            begins = file.read().partition("## The description")[0]
        commands = [line for block in re.findall(r"```sh\n(.*?)```", begins, re.DOTALL) for line in block.splitlines()]
        words, = re.findall(r"```\n(\{.*?\})\n```", begins, re.DOTALL)
        self.addCleanup(guest.run, "rm -rf /usr/lib/quorel/modules/Backup.vxplugin ~/Backup.vxplugin")
        guest.run(f"cd ~; {commands[0]}")
        guest.run(f"cat > ~/Backup.vxplugin/Resources/Info-gnustep.plist << 'END'\n{words}\nEND\n"
                  "printf '#!/bin/sh\\necho backed up\\n' > ~/Backup.vxplugin/Resources/say")
        for command in commands[1:3]:
            guest.run(f"cd ~; {command.removeprefix('sudo ')}")
        guest.run("date -s '2027-03-01 17:59:40'")
        guest.run(save(**{"Show In Menu Bar": 0, "Schedule Array": [schedule("x", 18, 0) | {"Action Type": "org.example.Backup"}]}))
        guest.wait("quorelctl log | grep 'Backup.*done in'")
        self.assertIn("backed up", guest.run("journalctl -q -t say"))

    def test_08b_the_warning_has_a_button_for_not_this_time(self):
        self.addCleanup(guest.run, save(**{"Show In Menu Bar": 0}))
        guest.run("printf '[global]\\ndmenu = /bin/grep Skip\\n' > /run/dunstrc")
        guest.run(anna("dunst -config /run/dunstrc > /dev/null 2>&1 &"))
        guest.run("busctl call org.freedesktop.login1 /org/freedesktop/login1/seat/seat0 org.freedesktop.login1.Seat "
                  "SwitchTo u 1; date -s '2027-03-01 17:29:20'")
        guest.run(save(**{"Show In Menu Bar": 0, "Schedule Array": [schedule("Sleep", 17, 30)]}))
        guest.wait("quorelctl next | grep announced")
        # Not to who is elsewhere, but to who comes while there is time.
        self.assertEqual(guest.run(anna("dunstctl count displayed")), "0")
        guest.run(f"loginctl activate {SESSION}")
        guest.wait(anna("dunstctl count displayed | grep -v ^0"))
        guest.run(anna("dunstctl context"))  # a click opens the settings
        guest.wait("quorelctl log | grep 'skipped by anna'")

    def test_09_upgrade_renews_the_daemon_and_leaves_the_rest(self):
        daemon, agent = guest.run(DAEMON), guest.run(AGENT)
        guest.run(f"mkdir -p '{BEFORE}/My Own.vxplugin'")
        guest.run("dpkg --install /payload/upgrade/1/*.deb")
        guest.run(f"test ! -e {BEFORE} && rmdir '/usr/lib/quorel/modules/My Own.vxplugin'")
        guest.wait(f"{DAEMON} | grep -vx -e 0 -e {daemon}")
        self.assertEqual(self.stored(), preferences(**{"Show In Menu Bar": 0}))
        self.assertEqual((guest.run(AGENT), guest.run(PING_AGENT)), (agent, "b true"))
        guest.run("systemctl restart desk")
        guest.wait(PING_AGENT)
        self.assertNotEqual(guest.run(AGENT), agent)

    def test_10_disabled_is_started_by_nobody(self):
        guest.run("systemctl disable --now quorel-daemon")
        for caller in (PING, anna(PING), save()):
            self.is_refused_and_stays_down(caller)
        guest.run("dpkg --install /payload/upgrade/2/*.deb")
        self.is_refused_and_stays_down(PING)
        guest.run("systemctl enable --now quorel-daemon")
        self.assertEqual(guest.run(anna(PING)), "b true")

    def test_11_removal_keeps_what_was_set(self):
        changed = {"Show In Menu Bar": 0, "Schedule Array": [schedule("WakeUp", 18, 30, **{"Needs Startup": 1})]}
        guest.run(save(**changed))
        guest.wait(f"cat {ALARM} | grep .")
        guest.run("systemctl stop desk; cd / && apt-get remove -y quorel-daemon 2>&1")
        self.assertEqual(guest.run(f"cat {ALARM}"), "")
        left = guest.run(f"{FILES} | comm -13 /var/tmp/before - | grep -v -e ^/etc/ -e ^/var/lib/dpkg/ -e "
                         "^/var/lib/systemd/deb-systemd-")
        state = "/var/lib/quorel"
        self.assertEqual(left.split(), ["/Library", os.path.dirname(FILE), FILE, state, f"{state}/state.plist"])
        self.assertEqual(self.stored(), preferences(**changed))

    def test_12_single_package_becomes_several_and_what_was_edited_stays(self):
        guest.run("dpkg --install /payload/single.deb")
        guest.run(save(**{"Show In Menu Bar": 0}))
        guest.run(f"echo '# edited' >> {AUTOSTART}")
        daemon = guest.run(DAEMON)
        self.assertNotEqual(guest.ask("dpkg --install /payload/quorel-daemon_*.deb")[0], 0)
        guest.run("dpkg -B --install /payload/quorel*.deb < /dev/null")  # in the order that apt avoids
        guest.wait(f"{DAEMON} | grep -vx -e 0 -e {daemon}")
        self.assertEqual(self.stored(), preferences(**{"Show In Menu Bar": 0}))
        self.assertEqual(guest.run(f"dpkg --verify {PACKAGES}").split()[1:], ["c", AUTOSTART])
        self.assertEqual(guest.run(f"tail -1 {AUTOSTART}"), "# edited")

    def test_13_each_goes_alone_and_the_last_leaves_nothing(self):
        for package in ("quorel", "quorel-gnustep", "quorel-settings"):
            guest.run(f"apt-get purge -y {package} 2>&1")
        self.assertEqual(guest.run(PING), "b true")
        self.assertEqual(guest.run("dpkg --verify quorel-daemon").split()[1:], ["c", AUTOSTART])
        guest.run("dpkg --install /payload/quorel-settings_*.deb")
        guest.run("apt-get purge -y quorel-daemon quorel-settings 2>&1")
        guest.run("rm /etc/systemd/system/desk.service; systemctl daemon-reload")
        self.assertEqual(guest.run(f"{FILES} | comm -13 /var/tmp/before -"), "")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1] + sys.argv[3:], verbosity=2)
