#!/usr/bin/python3
"""The programs of the actions "Open", "Message" and "Run": programs_test.py OPEN MESSAGE RUN"""
import os
import plistlib
import subprocess
import sys
import unittest

from fake_browser import FakeBrowser
from notifications import NotificationServer, eventually
from private_system import PrivateSystem

OPEN, MESSAGE, RUN = map(os.path.abspath, sys.argv[1:4])


class ProgramsTest(unittest.TestCase):
    def setUp(self):
        self.system = PrivateSystem()
        self.addCleanup(self.system.close)
        self.place = self.system.place
        self.browser = FakeBrowser(self.place)
        self.system.variables.update(PATH=self.browser.path, HOME=self.place, XDG_DATA_HOME=self.place, XDG_DATA_DIRS="/nowhere",
                                     LC_ALL="C.UTF-8")

    def run_with(self, program, parameters):
        """The exit status and what was said."""
        content = parameters if isinstance(parameters, bytes) else plistlib.dumps(parameters)
        with open(f"{self.place}/said", "w+") as said:
            process = subprocess.Popen([program], env=self.system.environment(), stdin=subprocess.PIPE, stderr=said)
            process.stdin.write(content)
            process.stdin.close()
            eventually("the program ends", lambda: process.poll() is not None)
            said.seek(0)
            return process.returncode, said.read()

    def make(self, name, content="", mode=0o644):
        path = f"{self.place}/{name}"
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "w") as file:
            file.write(content)
        os.chmod(path, mode)
        return path

    def test_opens(self):
        file, odd = self.make("-rf ~ $(reboot).txt"), self.make("photo.pdf", "%PDF", 0o755)
        starter = self.make("applications/chess.desktop")
        own = f"#!/bin/sh\necho $0 $# >> {self.place}/pages; sleep 1000 & echo $! > {self.place}/child\n"
        program, found = self.make("own program", own, 0o755), self.make("bin/player", own, 0o755)
        os.symlink("xdg-open", f"{self.place}/bin/gio")
        for target, opened in (("https://example.org/?a=1&b='$(reboot)'", None), ("HTTP://example.org", None),
                               (f" {file}\n", [file]), ("~/photo.pdf", [odd]), (program, [f"{program} 0"]),
                               ("player", [f"{found} 0"]), ("chess", ["launch", starter]),
                               (starter, ["launch", starter])):
            with self.subTest(target):
                before = len(self.browser.pages())
                self.assertEqual(self.run_with(OPEN, {"Target": target}), (0, ""))
                eventually("it opens", lambda: self.browser.pages()[before:] == (opened or [target]))
                if os.path.exists(f"{self.place}/child"):  # what was opened stays
                    with open(f"{self.place}/child") as child:
                        os.kill(int(child.read()), 9)
                    os.remove(f"{self.place}/child")

    def test_says_what_cannot_be_opened(self):
        failing = self.make("failing", "#!/bin/sh\nexit 3\n", 0o755)
        for parameters, said in ((b"", "nothing is named"), ({}, "nothing is named"), ({"Target": 1}, "nothing is named"),
                                 ({"Target": " \n"}, "nothing is named"), ({"Target": "/no\nwhere"}, "no /no where"),
                                 ({"Target": "-x"}, "no application -x"), ({"Target": ".."}, "no application"),
                                 ({"Target": "bin/player"}, "neither"), ({"Target": "file:///etc/passwd"}, "neither"),
                                 ({"Target": failing}, "ended with status 3")):
            with self.subTest(parameters):
                status, line = self.run_with(OPEN, parameters)
                self.assertEqual(status, 1)
                self.assertIn(said, line)
                self.assertEqual(line.count("\n"), 1)
        self.assertEqual(self.browser.pages(), [])

    def test_runs_with_arguments_as_they_are(self):
        self.make("own program", f"""#!/bin/sh
printf '%s|' "$@" > {self.place}/arguments; readlink /proc/self/fd/0 >> {self.place}/arguments; echo said >&2; exit 7
""", 0o755)
        for arguments, given in ((None, "|"), ("", "|"), ("--all\n$(reboot) *\n\n'é'\n\n", "--all|$(reboot) *||'é'||")):
            with self.subTest(arguments):
                self.assertEqual(self.run_with(RUN, {"Program": "~/own program", "Arguments": arguments or ""}), (7, "said\n"))
                with open(f"{self.place}/arguments") as file:
                    self.assertEqual(file.read(), f"{given}/dev/null\n")
        plain = self.make("plain")
        for program, said in (("", "no program is named"), ("own program", "not a whole path: own program"),
                              ("/no/where", "/no/where: No such"), (plain, "Permission denied"), (3, "no program")):
            with self.subTest(program):
                status, line = self.run_with(RUN, {"Program": program})
                self.assertEqual((status, line.count("\n")), (1, 1))
                self.assertIn(said, line)

    def test_message(self):
        self.system.start_session_bus()
        self.assertEqual(self.run_with(MESSAGE, {"Title": "", "Text": 3}), (1, "there is nothing to say\n"))
        status, line = self.run_with(MESSAGE, {"Title": "Tea"})
        self.assertEqual((status, line[:29], line.count("\n")), (1, "nobody shows notifications: T", 1))
        connection = self.system.connect("session")
        self.addCleanup(connection.close)
        connection.set_exit_on_disconnect(False)
        server = NotificationServer(connection)
        self.addCleanup(server.end)
        for markup, parameters, title, body in (
                (True, {"Title": "<Tea>", "Text": "<b>hot</b> &\nsweet"}, "<Tea>", "&lt;b&gt;hot&lt;/b&gt; &amp;\nsweet"),
                (False, {"Text": "<b>é</b>"}, "Quorel", "<b>é</b>")):
            server.capabilities = ("body", "body-markup") if markup else ("body",)
            self.assertEqual(self.run_with(MESSAGE, parameters), (0, ""))
            self.assertEqual(server.shown.pop()[1:], (title, body, []))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
