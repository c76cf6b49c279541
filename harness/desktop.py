"""A virtual display, the settings application on it, and a person's hands and eyes for both.

What is on the screen, and where, the application tells itself: a small bundle that it loads (inspector/) answers over a
socket. Everything that is done goes through the X server, as from a mouse and a keyboard.
"""
import glob
import json
import os
import shutil
import socket
import subprocess
import time

from private_system import wait_until as wait_for

APPLICATION = os.path.realpath("/usr/bin/SystemPreferences")  # in its bundle
CONFIG = "/etc/GNUstep/GNUstep.conf"


def end(process):
    if process.poll() is None:
        process.terminate()
        try:
            process.wait(10)
        except subprocess.TimeoutExpired:
            process.kill()
            process.wait()


class VirtualDisplay:
    """An X server without a screen, of the size that the pane must fit."""

    def __init__(self):
        reader, writer = os.pipe()
        self.process = subprocess.Popen(["Xvfb", "-displayfd", str(writer), "-screen", "0", "1024x768x24",
                                         "-nolisten", "tcp"], pass_fds=[writer], stderr=subprocess.DEVNULL)
        os.close(writer)
        with os.fdopen(reader) as answer:
            number = answer.readline().strip()
        if not number:
            raise RuntimeError("Xvfb did not start")
        self.name = f":{number}"

    def screenshot(self, path):
        subprocess.run(["import", "-display", self.name, "-window", "root", path], check=True)

    def picture(self, view):
        """The pixels of a view."""
        x, y, width, height = map(int, view["frame"])
        return subprocess.run(["import", "-display", self.name, "-window", "root", "-crop",
                               f"{width}x{height}+{x}+{y}", "rgb:-"], check=True, stdout=subprocess.PIPE).stdout

    def close(self):
        end(self.process)


class DesktopServers:
    """The pasteboard and the notification center that applications share, reached through the folder TEMP.

    An application starts them itself where there are none. Those that it shares with others, though, go down with the
    display of whoever began them.
    """

    def __init__(self, environment, user=None):
        folder = environment["TEMP"]
        os.makedirs(folder)
        os.chmod(folder, 0o1777)
        names = f"{folder}/GNUstepSecure*/NSMessagePort/names/*"
        self.processes = []
        try:
            for server in ("gdnc", "gpbs"):  # one after the other: at once, each may find the other's half-made folder
                self.processes.append(subprocess.Popen([server, "--no-fork"], env=environment, user=user,
                                                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL))
                wait_for(lambda: len(glob.glob(names)) == len(self.processes), f"{server} does not come up")
        except BaseException:
            self.close()
            raise

    def close(self):
        for process in self.processes:
            end(process)


def install_modules(build, root, extra=()):
    """Where daemon and pane look for modules below a root of their own, as the daemon trusts them: nobody else's, and
    writable by nobody else. Others' are added."""
    with open(f"{build}/CMakeCache.txt") as file:
        (prefix,) = (line.partition("=")[2].strip() for line in file if line.startswith("CMAKE_INSTALL_PREFIX:"))
    shutil.rmtree(f"{root}/{prefix.split('/')[1]}", ignore_errors=True)
    modules = f"{root}{prefix}/lib/quorel/modules"
    shutil.copytree(f"{build}/lib/quorel/modules", modules)
    for module in extra:
        shutil.copytree(module, f"{modules}/{os.path.basename(module)}")
    subprocess.run(["chmod", "-R", "go-w", modules], check=True)


class SettingsApplication:
    """SystemPreferences with the pane in a settings home of its own.

    `home` is the folder that takes the place of the user's ~/GNUstep; what lies in it stays. `info` adds keys to the
    pane's information dictionary, `bundles` what the application loads beside it.
    `languages` is None for those of the environment. `as_user` goes to the process (user, group, ...).
    """

    def __init__(self, build, home, environment, info=(), languages=("English",), inspect=True, bundles=(),
                 **as_user):
        self.home = home
        self.socket = f"{home}/inspector"
        pane = f"{home}/Library/Bundles/Quorel.prefPane"
        os.makedirs(f"{home}/Defaults", exist_ok=True)
        shutil.rmtree(pane, ignore_errors=True)
        shutil.copytree(f"{build}/Quorel.prefPane", pane)
        self._add_keys(f"{pane}/Resources/Info-gnustep.plist", dict(info))
        self._write_config(f"{home}/GNUstep.conf")
        environment = dict(environment, GNUSTEP_CONFIG_FILE=f"{home}/GNUstep.conf")
        if inspect:
            bundles = [*bundles, f"{build}/harness/Inspector.bundle"]
            environment["QUOREL_INSPECTOR"] = self.socket
        command = [APPLICATION]
        if languages:
            command += ["-NSLanguages", "(" + ", ".join(languages) + ")"]
        if bundles:
            command += ["-GSAppKitUserBundles", "(" + ", ".join(f'"{bundle}"' for bundle in bundles) + ")"]
        if as_user.get("user") is not None:
            subprocess.run(["chown", "-R", str(as_user["user"]), home], check=True)
        self.log_path = f"{home}/log"
        with open(self.log_path, "w") as log:
            self.process = subprocess.Popen(command, env=environment, stdout=log, stderr=log, **as_user)
        self.screen = Screen(self, environment) if inspect else None

    @staticmethod
    def _add_keys(path, keys):
        with open(path) as file:
            text = file.read()
        lines = "".join(f'    {key} = "{value}";\n' for key, value in keys.items())
        with open(path, "w") as file:
            file.write(text[:text.rindex("}")] + lines + "}\n")

    def _write_config(self, path):
        """The system's configuration with the user's folders moved into the home."""
        with open(CONFIG) as file:
            lines = [line for line in file if not line.startswith("GNUSTEP_USER_CONFIG_FILE")]
        with open(path, "w") as file:
            for line in lines:
                key, _, value = line.partition("=")
                if key.startswith("GNUSTEP_USER_"):
                    line = f"{key}={self.home}/{value.removeprefix('GNUstep/')}"
                file.write(line)

    def log(self):
        with open(self.log_path, errors="replace") as file:
            return file.read()

    def close(self):
        if self.screen and self.screen.stream:
            self.screen.stream.close()
        end(self.process)


class Screen:
    """What the application shows, and what a person does to it."""

    def __init__(self, application, environment):
        self.application = application
        self.environment = environment
        self.stream = None

    # Looking

    def look(self):
        """Every visible view of every visible window, as the application describes it."""
        if self.stream is None:
            wait_for(self._connect, "the application has no inspector")
        self.stream.write("look\n")
        self.stream.flush()
        answer = self.stream.readline()
        if not answer:
            raise RuntimeError("the application has ended:\n" + self.application.log())
        return json.loads(answer)["windows"]

    def _connect(self):
        if self.application.process.poll() is not None:
            raise RuntimeError("the application has ended:\n" + self.application.log())
        connection = socket.socket(socket.AF_UNIX)
        try:
            connection.connect(self.application.socket)
        except OSError:
            connection.close()
            return False
        connection.settimeout(60)
        self.stream = connection.makefile("rw")
        connection.close()  # with the stream
        return True

    def find(self, **facts):
        """The first view with these facts, or None. A fact is a value or a function of it."""
        for window in self.look():
            for view in window["views"]:
                if all(name in view and (fact(view[name]) if callable(fact) else view[name] == fact)
                       for name, fact in facts.items()):
                    return view
        return None

    def wait(self, **facts):
        return wait_for(lambda: self.find(**facts), lambda: f"nothing on the screen is {facts}")

    def table(self):
        return self.find(**{"class": "VXScheduleTableView"})

    def rows(self):
        """The schedule table: for each row the values under the columns' identifiers."""
        table = self.table()
        return [{name: cell["value"] for name, cell in row["cells"].items()} for row in table["rows"]] if table else []

    def wait_rows(self, condition):
        return wait_for(lambda: (rows := self.rows()) and condition(rows) and rows,
                        lambda: f"the table stays at {self.rows()}")

    def modal(self):
        """The window whose modal loop runs, or None."""
        return next((window for window in self.look() if window["modal"]), None)

    # Doing

    def xdotool(self, *words):
        subprocess.run(["xdotool", *map(str, words)], env=self.environment, check=True)

    def click(self, place, times=1):
        """On a view or a frame."""
        x, y, width, height = place["frame"] if isinstance(place, dict) else place
        self.xdotool("mousemove", int(x + width / 2), int(y + height / 2), "sleep", 0.02,
                     *["mousedown", 1, "sleep", 0.05, "mouseup", 1, "sleep", 0.05] * times)

    def click_cell(self, row, column, times=1):
        self.click(self.table()["rows"][row]["cells"][column], times)

    def click_header(self, column):
        self.click(self.table()["headers"][column])

    def choose(self, pop_up, title):
        """Holds the button down on a pop-up until its menu is there, and lets it go on the item."""
        x, y, width, height = pop_up["frame"]
        self.xdotool("mousemove", int(x + width / 2), int(y + height / 2), "sleep", 0.02, "mousedown", 1)

        def the_item():
            items = (item for window in self.look() for view in window["views"] for item in view.get("menu", ()))
            return next((item for item in items if item["title"] == title and item["frame"][2] < 1024), None)
        wait_for(the_item, f"no menu with {title}")
        self.settle()
        x, y, width, height = the_item()["frame"]
        # A button that is let go soon leaves the menu open.
        self.xdotool("mousemove", int(x + width / 2), int(y + height / 2), "sleep", 0.4, "mouseup", 1)
        self.wait(toolTip=pop_up["toolTip"], title=title)
        self.settle()

    def drag_row(self, row, below, sideways=32):
        """From a row to the gap below another; row -1 stands for the gap at the top. First some points sideways."""
        rows = self.table()["rows"]
        x, y, width, height = rows[row]["cells"]["Infos"]["frame"]
        x, y = int(x + width / 2), int(y + height / 2)
        top = rows[0]["cells"]["Infos"]["frame"][1]
        step = height + 2
        target = int(top + (below + 1) * step) + (3 if below < 0 else 0)  # the header is no place to drop at
        moves = ["mousemove", x, y, "sleep", 0.1, "mousedown", 1, "sleep", 0.1]
        for distance in range(1, sideways + 1):
            moves += ["mousemove", x + distance, y, "sleep", 0.01]
        for part in range(1, 11):
            moves += ["mousemove", x + sideways, round(y + (target - y) * part / 10), "sleep", 0.02]
        self.xdotool(*moves, "sleep", 0.1, "mouseup", 1)

    def key(self, *names):
        self.xdotool("key", "--delay", 30, *names)

    def type(self, text):
        self.xdotool("type", "--delay", 30, text)

    def open_pane(self):
        """Clicks the pane's icon until the pane is there: a first click may only bring the window to the front."""
        def opened():
            if self.table():
                return True
            icon = self.find(**{"class": "SPIcon", "title": "Quorel"})
            if icon:
                self.click(icon)
            wait_until = time.monotonic() + 1.5
            while time.monotonic() < wait_until:
                if self.table():
                    return True
                time.sleep(0.05)
            return False
        wait_for(opened, "the pane did not open")
        self.settle()

    def settle(self):
        """Waits until nothing moves any more: the window grows with the pane it is shown."""
        def frames():
            return [view["frame"] for window in self.look() for view in window["views"]]

        def still():
            before = frames()
            time.sleep(0.15)
            return frames() == before
        wait_for(still, "the screen does not come to rest")
