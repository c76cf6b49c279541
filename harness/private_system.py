"""The product's surroundings on private sockets: a bus of the system's kind, a session bus, the real polkitd, and the
programs. Everything ends with close(); several may follow each other.

polkitd reads fixed folders. They are covered by empty ones, in a mount namespace that only this process and its
children see: whoever calls start_polkit must run inside "unshare --mount", as root.
"""
import contextlib
import os
import pwd
import select
import shutil
import signal
import subprocess
import tempfile
import time

import dbus

RESOURCES = os.path.join(os.path.dirname(os.path.abspath(__file__)), "../resources/linux")

BUS = """<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>{kind}</type>
  <listen>unix:path={socket}</listen>
  <auth>EXTERNAL</auth>
  <servicedir>{services}</servicedir>
  {policy}
</busconfig>
"""

# As the system's own configuration has it: neither names nor calls unless another file allows them.
SYSTEM_POLICY = """<policy context="default">
    <allow user="*"/>
    <deny own="*"/>
    <deny send_type="method_call"/>
    <allow send_type="signal"/>
    <allow send_requested_reply="true" send_type="method_return"/>
    <allow send_requested_reply="true" send_type="error"/>
    <allow receive_type="method_call"/>
    <allow receive_type="method_return"/>
    <allow receive_type="error"/>
    <allow receive_type="signal"/>
    <allow send_destination="org.freedesktop.DBus"/>
  </policy>
  <include ignore_missing="yes">/usr/share/dbus-1/system.d/org.freedesktop.PolicyKit1.conf</include>
  <include>{product_policy}</include>"""

# For several users, since the programs of one may be tried by another.
SESSION_POLICY = """<policy context="default">
    <allow user="*"/>
    <allow own="*"/>
    <allow send_destination="*"/>
    <allow receive_sender="*"/>
  </policy>"""

POLKIT = "org.freedesktop.PolicyKit1"
POLKITD = "/usr/lib/polkit-1/polkitd"
ACTIONS = "/usr/share/polkit-1/actions"
RULES = ("/etc/polkit-1/rules.d", "/usr/share/polkit-1/rules.d")

SECONDS = 60  # for whatever should happen at once, on a computer that has much else to do


def polkit_rule(answer, user="nobody"):
    """What polkit says to this user who wants to change the preferences: "yes" or "no"."""
    return ("polkit.addRule(function(action, subject) {"
            f"if (action.id == 'com.quorel.modify-preferences' && subject.user == '{user}') return '{answer}'; }});")


def wait_until(condition, what, seconds=SECONDS):
    """The condition's first answer that is true, as soon as there is one. `what` may be a function."""
    deadline = time.monotonic() + seconds
    while not (answer := condition()):
        if time.monotonic() > deadline:
            raise TimeoutError(f"not within {seconds} s: {what() if callable(what) else what}")
        time.sleep(0.01)
    return answer


def read_line(process, seconds=SECONDS):
    """The next line that a program writes, without its end. Nothing else may read from the program."""
    deadline = time.monotonic() + seconds
    line = b""
    while not line.endswith(b"\n"):
        if not select.select([process.stdout], [], [], max(0, deadline - time.monotonic()))[0]:
            raise TimeoutError(f"not within {seconds} s: a line of {process.args[:2]}")
        byte = os.read(process.stdout.fileno(), 1)
        if not byte:
            raise RuntimeError(f"{process.args[:2]} has ended")
        line += byte
    return line[:-1].decode()


class PrivateSystem:
    """Has a system bus at once. Only the user who starts it may be the product's daemon on it."""

    def __init__(self, policy=""):
        """`policy` allows more on the system bus."""
        self.place = tempfile.mkdtemp()
        os.chmod(self.place, 0o755)
        self.state = f"{self.place}/state"  # where programs of any user keep what a user's home would
        self.services = f"{self.place}/services"  # of both buses: what they can start
        os.mkdir(self.state)
        os.mkdir(self.services)
        os.chmod(self.state, 0o1777)
        self.processes = []
        self.mounts = []
        self.addresses = {}
        self.variables = {"XDG_STATE_HOME": self.state}  # of the programs' environment
        self.polkit = None
        self._watchers = {}
        try:
            self.bus = self._start_bus("system", SYSTEM_POLICY.format(product_policy=self._own_policy()) + policy)
        except BaseException:
            self.close()
            raise

    def environment(self):
        """What a program must be started with."""
        names = {"system": "DBUS_SYSTEM_BUS_ADDRESS", "session": "DBUS_SESSION_BUS_ADDRESS"}
        return dict(os.environ, **self.variables,
                    **{names[kind]: address for kind, address in self.addresses.items()})

    def in_language(self, language):
        """Variables with which programs speak it ("" is English), with dates as in the locale C.UTF-8, in which newer
        libraries do not translate."""
        locales = f"{self.place}/locales"
        if not os.path.exists(locales):
            os.mkdir(locales)
            subprocess.run(["localedef", "-i", "en_US", "-f", "UTF-8", f"{locales}/en_US.UTF-8"], check=True)
            with open(f"{locales}/leaks", "w", encoding="utf-8") as file:
                file.write("leak:argz_add_sep\n")  # which is the C library's own, once LOCPATH is set
        return {"LANGUAGE": language, "LOCPATH": locales, "LC_ALL": "", "LC_CTYPE": "C.UTF-8", "LC_TIME": "C.UTF-8",
                "LC_MESSAGES": "en_US.UTF-8",
                "LSAN_OPTIONS": f"suppressions={locales}/leaks:print_suppressions=0"}

    def connect(self, kind="system"):
        return dbus.bus.BusConnection(self.addresses[kind])

    def owner(self, name, kind="system"):
        """The unique name of who owns the name; nothing when nobody does."""
        if kind not in self._watchers:
            self._watchers[kind] = self.connect(kind)
        watcher = self._watchers[kind]
        try:
            return watcher.get_name_owner(name)
        except dbus.exceptions.DBusException as error:
            if error.get_dbus_name() != "org.freedesktop.DBus.Error.NameHasNoOwner":
                raise
            return None

    def start_session_bus(self):
        """Programs that are started from now on have it."""
        if "session" in self._watchers:
            self._watchers.pop("session").close()
        self.session = self._start_bus("session", SESSION_POLICY)
        return self.session

    def start_polkit(self, rule=""):
        """Knows the product's action alone, and this rule."""
        for name, folder in (("actions", ACTIONS), ("rules", RULES[0]), ("no-rules", RULES[1])):
            cover = f"{self.place}/{name}"
            os.mkdir(cover)
            self.mount("--bind", cover, folder)
        shutil.copy(f"{RESOURCES}/com.quorel.policy", ACTIONS)
        with open(f"{RULES[0]}/50-test.rules", "w") as file:
            file.write(rule)
        self.polkit = self.start([POLKITD, "--no-debug"], name=POLKIT, stdout=subprocess.DEVNULL,
                                 stderr=subprocess.DEVNULL)
        return self.polkit

    def start_daemon(self, program, root, **options):
        return self.start([program, "--root", root], name="com.quorel.Daemon", **options)

    def start_agent(self, program, root, *arguments, **options):
        return self.start([program, "--root", root, *arguments], name="com.quorel.UserAgent", kind="session",
                          **options)

    def start(self, arguments, name=None, kind="system", log=None, **options):
        """Starts a program; where a name is given, waits until the program owns it. `log` names a file of this folder
        to which it writes its errors."""
        before = self.owner(name, kind) if name else None
        with contextlib.ExitStack() as ends:
            if log:
                options["stderr"] = ends.enter_context(open(f"{self.place}/{log}", "a"))
            process = subprocess.Popen(arguments, env=self.environment(), **options)
        self.processes.append(process)

        def is_up():
            if process.poll() is not None:
                raise RuntimeError(f"{arguments[0]} ended with {process.returncode}: {self.log(log)[-2000:]}")
            return self.owner(name, kind) not in (None, before)

        if name:
            wait_until(is_up, f"{arguments[0]} owns {name}")
        return process

    def log(self, name):
        try:
            with open(f"{self.place}/{name}") as file:
                return file.read()
        except FileNotFoundError:
            return ""

    def end(self, process):
        """Ends one of the programs, a stopped one too; answers with its status."""
        if process.poll() is None:
            process.terminate()
            process.send_signal(signal.SIGCONT)
            try:
                process.wait(SECONDS)
            except subprocess.TimeoutExpired:
                process.kill()
                process.wait()
        for stream in (process.stdin, process.stdout, process.stderr):
            if stream:
                stream.close()
        if process in self.processes:
            self.processes.remove(process)
        return process.returncode

    def mount(self, *arguments):
        """The last argument is where."""
        subprocess.run(["mount", *arguments], check=True)
        self.mounts.append(arguments[-1])

    def close(self):
        for watcher in self._watchers.values():
            watcher.close()
        self._watchers.clear()
        for process in reversed(list(self.processes)):
            self.end(process)
        while self.mounts:
            subprocess.run(["umount", self.mounts.pop()], check=True)
        logs = "".join(self.log(name) for name in os.listdir(self.place) if name.endswith(".log"))
        shutil.rmtree(self.place, ignore_errors=True)
        if "Sanitizer:" in logs:  # not every end has a status that tells
            raise AssertionError(logs)

    def _own_policy(self):
        with open(f"{RESOURCES}/com.quorel.Daemon.conf") as file:
            policy = file.read()
        path = f"{self.place}/com.quorel.Daemon.conf"
        with open(path, "w") as file:
            file.write(policy.replace('user="root"', f'user="{pwd.getpwuid(os.getuid()).pw_name}"'))
        return path

    def _start_bus(self, kind, policy):
        socket = f"{self.place}/{kind}{len(self.processes)}"
        config = f"{socket}.conf"
        with open(config, "w") as file:
            file.write(BUS.format(kind=kind, socket=socket, services=self.services, policy=policy))
        bus = subprocess.Popen(["dbus-daemon", f"--config-file={config}", "--nofork", "--print-address"],
                               stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        self.processes.append(bus)
        if not bus.stdout.readline():
            raise RuntimeError("the bus did not start")
        self.addresses[kind] = f"unix:path={socket}"
        return bus
