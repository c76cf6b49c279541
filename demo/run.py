#!/usr/bin/env python3
"""The pane in the settings application, with the product's programs behind it: run.py BUILD USER

Everything runs on private sockets, and keeps its files in BUILD/run. Run it as root inside "unshare --mount"; the
settings application and the agent run as USER. Without a display it makes one real edit on a virtual one; the exit
status tells whether the daemon stored it.
"""
import contextlib
import os
import plistlib
import pwd
import shutil
import signal
import subprocess
import sys

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "../harness"))

from desktop import DesktopServers, SettingsApplication, VirtualDisplay, install_modules
from feed_server import FeedServer, record
from private_system import PrivateSystem, polkit_rule, wait_until

HERE = os.path.dirname(os.path.abspath(__file__))


class Ends(contextlib.ExitStack):
    """What is to be ended at last, in the manner of a test case."""
    addCleanup = contextlib.ExitStack.callback


def has_display():
    return "DISPLAY" in os.environ and subprocess.run(
        ["xdpyinfo"], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL).returncode == 0


def stored(path):
    with open(path, "rb") as file:
        return plistlib.load(file)


def show_plan(build, environment):
    """What the daemon makes of what was saved."""
    for command in ("status", "next"):
        print(f"$ quorelctl {command}", flush=True)
        subprocess.run([f"{build}/ctl/quorelctl", command], env=environment)


def follow(application, path, told):
    """Until the window is closed, tells of each save. The application's exit status."""
    seen = os.stat(path).st_ino  # each save is a file of its own
    while True:
        try:
            return application.process.wait(1)
        except subprocess.TimeoutExpired:
            if seen != (seen := os.stat(path).st_ino):
                told()


def edit(screen, display, path, screenshot):
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
    build, user = os.path.abspath(sys.argv[1]), pwd.getpwnam(sys.argv[2])
    place = f"{build}/run"
    path = f"{place}/root/Library/Preferences/com.quorel.plist"
    os.makedirs(os.path.dirname(path), exist_ok=True)
    if not os.path.exists(path):
        shutil.copy(f"{HERE}/preferences.plist", path)

    signal.signal(signal.SIGTERM, lambda *_: sys.exit(1))
    with Ends() as ends:
        ends.callback(subprocess.run, ["chown", "-R", f"{user.pw_uid}:{user.pw_gid}", place], check=False)
        try:
            return show(build, user, place, path, ends)
        except KeyboardInterrupt:
            return 0


def show(build, user, place, path, ends):
    """What runs until it is ended. The exit status."""
    root, home = f"{place}/root", f"{place}/settings"
    as_user = {"user": user.pw_uid, "group": user.pw_gid, "extra_groups": []}
    feed = FeedServer(ends)
    feed.answers["/latest.plist"] = record("1.1", "https://example.org/quorel")  # a version that nobody has
    feed_address = feed.url("/latest.plist")
    system = PrivateSystem()
    ends.callback(system.close)
    system.start_session_bus()
    system.start_polkit(polkit_rule("yes", user.pw_name))
    install_modules(build, root)
    system.start_daemon(f"{build}/daemon/quorel-daemon", root)
    system.start_agent(f"{build}/agent/quorel-agent", root, "--feed", feed_address, **as_user)
    environment = dict(system.environment(), HOME=user.pw_dir)
    info = {"QuorelRoot": root, "QuorelUpdateFeed": feed_address}
    if has_display():
        application = SettingsApplication(build, home, environment, info=info, languages=None, inspect=False,
                                          bundles=[f"{build}/QuorelOpener.bundle"], **as_user)
        ends.callback(application.close)
        print(f"Preferences: {path}\nPress Ctrl-C or close the window to end.", flush=True)
        show_plan(build, environment)
        return follow(application, path, lambda: show_plan(build, environment))

    display = VirtualDisplay()
    ends.callback(display.close)
    environment.update(DISPLAY=display.name, TEMP=f"{system.place}/servers")
    ends.callback(DesktopServers(environment, user.pw_uid).close)
    application = SettingsApplication(build, home, environment, info=info, **as_user)
    ends.callback(application.close)
    screenshot = f"{place}/screenshot.png"
    done = edit(application.screen, display, path, screenshot)
    with open(path) as file:
        print(file.read())
    show_plan(build, environment)
    print(f"No display: one edit was made on a virtual one, and {'stored' if done else 'NOT stored'}.")
    print(f"Preferences: {path}\nScreenshot:  {screenshot}")
    return 0 if done else 1


if __name__ == "__main__":
    sys.exit(main())
