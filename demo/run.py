#!/usr/bin/env python3
"""The window, or the pane in SystemPreferences, with the product's programs behind it: run.py BUILD USER window|pane

Everything runs on private sockets, and keeps its files in BUILD/run. Run it as root inside "unshare --mount"; the
windows and the agent run as USER. Without a display it makes one real edit in each of the two on a virtual one; the
exit status tells whether the daemon stored both.
"""
import contextlib
import os
import plistlib
import pwd
import shutil
import signal
import subprocess
import sys
import time

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "../harness"))

from desktop import DesktopServers, SettingsApplication, VirtualDisplay, end, install_modules
from feed_server import FeedServer, record
from private_system import PrivateSystem, polkit_rule, wait_until

HERE = os.path.dirname(os.path.abspath(__file__))


class Ends(contextlib.ExitStack):
    """What is to be ended at last, in the manner of a test case."""
    addCleanup = contextlib.ExitStack.callback


def has_display():
    return "WAYLAND_DISPLAY" in os.environ or ("DISPLAY" in os.environ and subprocess.run(
        ["xdpyinfo"], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL).returncode == 0)


def stored(path):
    with open(path, "rb") as file:
        return plistlib.load(file)


def show_plan(build, root, environment):
    """What the daemon makes of what was saved."""
    for command in ("status", "list"):
        print(f"$ quorelctl {command}", flush=True)
        subprocess.run([f"{build}/ctl/quorelctl", f"--root={root}", command], env=environment)


def follow(application, path, told):
    """Until the window is closed, tells of each save. The application's exit status."""
    seen = os.stat(path).st_ino  # each save is a file of its own
    while True:
        try:
            return application.process.wait(1)
        except subprocess.TimeoutExpired:
            if seen != (seen := os.stat(path).st_ino):
                told()


def write_entry(system, command):
    """What the tray and notifications open."""
    os.makedirs(f"{system.place}/share/applications")
    with open(f"{system.place}/share/applications/com.quorel.Settings.desktop", "w", encoding="utf-8") as file:
        file.write(f"[Desktop Entry]\nExec={command}\n")
    system.variables["XDG_DATA_DIRS"] = f"{system.place}/share:/usr/local/share:/usr/share"


class Window:
    """The settings window as a process of its own."""

    def __init__(self, build, root, feed, environment, **as_user):
        self.environment = environment
        self.process = subprocess.Popen([f"{build}/qt/quorel-settings", "--root", root, "--feed", feed],
                                        env=environment, **as_user)

    def press(self, key):
        subprocess.run(["xdotool", "key", key], env=self.environment, check=True)

    def close(self):
        end(self.process)


def edit_in_window(window, path, screenshot, display):
    """Switches the first Schedule over by keyboard, and applies that. True when the daemon has stored it."""
    before = stored(path)["Schedule Array"][0]["Is Enabled"]

    def is_stored():
        return stored(path)["Schedule Array"][0]["Is Enabled"] != before

    try:
        # No window manager gives it the focus.
        focus = ["xdotool", "search", "--onlyvisible", "--name", "^Quorel$", "windowfocus"]
        wait_until(lambda: subprocess.run(focus, check=False, env=window.environment).returncode == 0, "no window", 60)
        time.sleep(3)  # until it has asked polkit
        for key in ("ctrl+Home", "space", "ctrl+s"):
            window.press(key)
        wait_until(is_stored, "not stored", 30)
        return True
    except TimeoutError:
        return False
    finally:
        display.screenshot(screenshot)


def edit_in_pane(screen, display, path, screenshot):
    """Unlocks the pane, toggles an option and applies it. True when the daemon has stored it."""
    before = stored(path)["Show In Menu Bar"]
    screen.open_pane()
    if not screen.find(title="Show in the menu bar", enabled=True):
        screen.click(screen.wait(toolTip="Lock or unlock the settings"))
    screen.wait(value="Daemon running")
    screen.wait(value="User agent running")
    screen.click(screen.wait(title="Show in the menu bar", enabled=True))
    screen.click(screen.wait(title="Apply", enabled=True))
    try:
        wait_until(lambda: stored(path)["Show In Menu Bar"] != before, "not stored", 10)
        screen.wait(title="Apply", enabled=False)
        return True
    except TimeoutError:
        return False
    finally:
        display.screenshot(screenshot)


def main():
    build, user, face = os.path.abspath(sys.argv[1]), pwd.getpwnam(sys.argv[2]), sys.argv[3]
    place = f"{build}/run"
    path = f"{place}/root/Library/Preferences/com.quorel.plist"
    os.makedirs(os.path.dirname(path), exist_ok=True)
    if not os.path.exists(path):
        shutil.copy(f"{HERE}/preferences.plist", path)

    signal.signal(signal.SIGTERM, lambda *_: sys.exit(1))
    with Ends() as ends:
        ends.callback(subprocess.run, ["chown", "-R", f"{user.pw_uid}:{user.pw_gid}", place], check=False)
        try:
            return show(build, user, face, place, path, ends)
        except KeyboardInterrupt:
            return 0


def show(build, user, face, place, path, ends):
    """What runs until it is ended. The exit status."""
    root, home = f"{place}/root", f"{place}/settings"
    as_user = {"user": user.pw_uid, "group": user.pw_gid, "extra_groups": []}
    feed = FeedServer(ends)
    feed.answers["/latest.plist"] = record("99", "https://example.org/quorel")  # a version that nobody has
    feed_address = feed.url("/latest.plist")
    system = PrivateSystem()
    ends.callback(system.close)
    system.start_session_bus()
    system.start_polkit(polkit_rule("yes", user.pw_name))
    install_modules(build, root)
    write_entry(system, f"{build}/qt/quorel-settings --root '{root}' --feed {feed_address}")
    system.start_daemon(f"{build}/daemon/quorel-daemon", root)
    system.start_agent(f"{build}/agent/quorel-agent", root, "--feed", feed_address, **as_user)
    environment = dict(system.environment(), HOME=user.pw_dir)
    info = {"QuorelRoot": root, "QuorelUpdateFeed": feed_address}
    if has_display():
        if face == "pane":
            application = SettingsApplication(build, home, environment, info=info, languages=None, inspect=False,
                                              bundles=[f"{build}/QuorelOpener.bundle"], **as_user)
        else:
            application = Window(build, root, feed_address, environment, **as_user)
        ends.callback(application.close)
        print(f"Preferences: {path}\nPress Ctrl-C or close the window to end.", flush=True)
        show_plan(build, root, environment)
        return follow(application, path, lambda: show_plan(build, root, environment))

    display = VirtualDisplay()
    ends.callback(display.close)
    environment.update(DISPLAY=display.name, TEMP=f"{system.place}/servers")
    ends.callback(DesktopServers(environment, user.pw_uid).close)
    window = Window(build, root, feed_address, environment, **as_user)
    ends.callback(window.close)
    done = {"window": edit_in_window(window, path, f"{place}/window.png", display)}
    window.close()
    application = SettingsApplication(build, home, environment, info=info, **as_user)
    ends.callback(application.close)
    done["pane"] = edit_in_pane(application.screen, display, path, f"{place}/pane.png")
    show_plan(build, root, environment)
    print("No display: one edit was made in each face on a virtual one.")
    for face, is_stored in done.items():
        print(f"In the {face}: {'stored' if is_stored else 'NOT stored'}. {place}/{face}.png shows it.")
    print(f"Preferences: {path}")
    return 0 if all(done.values()) else 1


if __name__ == "__main__":
    sys.exit(main())
