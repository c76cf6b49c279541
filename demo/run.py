#!/usr/bin/env python3
"""The pane in the settings application, with the product's programs behind it: run.py BUILD USER

Everything runs on private sockets, and keeps its files in BUILD/run. Run it as root inside "unshare --mount"; the
settings application and the agent run as USER. Without a display it makes one real edit on a virtual one; the exit
status tells whether the daemon stored it.
"""
import http.server
import os
import plistlib
import pwd
import shutil
import signal
import subprocess
import sys
import threading
import time

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, f"{HERE}/../tests/support")
from desktop import SettingsApplication, VirtualDisplay, wait_for  # noqa: E402
from private_system import PrivateSystem  # noqa: E402

LET_IN = """polkit.addRule(function(action, subject) {{
    if (action.id == "com.quorel.modify-preferences" && subject.user == "{user}") return polkit.Result.YES;
}});"""


class Feed:
    """An update feed on this computer, which announces a version that nobody has."""

    def __init__(self):
        record = plistlib.dumps({"Version": "1.1", "URL": "https://example.org/quorel"})

        class Handler(http.server.BaseHTTPRequestHandler):
            def do_GET(self):
                self.send_response(200)
                self.send_header("Content-Length", str(len(record)))
                self.end_headers()
                self.wfile.write(record)

            def log_message(self, *_):
                pass

        self.server = http.server.HTTPServer(("127.0.0.1", 0), Handler)
        self.address = f"http://127.0.0.1:{self.server.server_port}/latest.plist"
        threading.Thread(target=self.server.serve_forever, daemon=True).start()

    def close(self):
        self.server.shutdown()


def has_display():
    return "DISPLAY" in os.environ and subprocess.run(
        ["xdpyinfo"], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL).returncode == 0


def stored(path):
    with open(path, "rb") as file:
        return plistlib.load(file)


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
        wait_for(lambda: stored(path)["Show In Menu Bar"] != before, "not stored", 10)
        screen.wait(title="Apply", enabled=False)
        return True
    except TimeoutError:
        return False
    finally:
        display.screenshot(screenshot)


def main():
    build, user = os.path.abspath(sys.argv[1]), pwd.getpwnam(sys.argv[2])
    place = f"{build}/run"
    root, home = f"{place}/root", f"{place}/settings"
    path = f"{root}/Library/Preferences/com.quorel.plist"
    os.makedirs(os.path.dirname(path), exist_ok=True)
    if not os.path.exists(path):
        shutil.copy(f"{HERE}/preferences.plist", path)
    as_user = {"user": user.pw_uid, "group": user.pw_gid, "extra_groups": []}

    to_close = []
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(1))
    try:
        feed = Feed()
        to_close.append(feed)
        system = PrivateSystem()
        to_close.append(system)
        system.start_session_bus()
        system.start_polkit(LET_IN.format(user=user.pw_name))
        system.start_daemon(f"{build}/daemon/quorel-daemon", root)
        system.start_agent(f"{build}/agent/quorel-agent", root, "--feed", feed.address, **as_user)
        environment = dict(system.environment(), HOME=user.pw_dir)
        info = {"QuorelRoot": root, "QuorelUpdateFeed": feed.address}
        if has_display():
            application = SettingsApplication(build, home, environment, info=info, languages=None, inspect=False,
                                              bundles=[f"{build}/demo/Opener.bundle"], **as_user)
            to_close.append(application)
            print(f"Preferences: {path}\nPress Ctrl-C or close the window to end.", flush=True)
            return application.process.wait()
        display = VirtualDisplay()
        to_close.append(display)
        environment["DISPLAY"] = display.name
        application = SettingsApplication(build, home, environment, info=info, **as_user)
        to_close.append(application)
        screenshot = f"{place}/screenshot.png"
        done = edit(application.screen, display, path, screenshot)
        with open(path) as file:
            print(file.read())
        print(f"No display: one edit was made on a virtual one, and {'stored' if done else 'NOT stored'}.")
        print(f"Preferences: {path}\nScreenshot:  {screenshot}")
        return 0 if done else 1
    except KeyboardInterrupt:
        return 0
    finally:
        for each in reversed(to_close):
            each.close()
        subprocess.run(["chown", "-R", f"{user.pw_uid}:{user.pw_gid}", place], check=False)


if __name__ == "__main__":
    sys.exit(main())
