"""A browser of the test's, found before any other."""
import os

# Writes down what it is given, one argument a line, and the signals that it cannot get.
XDG_OPEN = """#!/usr/bin/python3
import signal, sys
with open("{pages}", "a") as file:
    print(*sys.argv[1:], *signal.pthread_sigmask(signal.SIG_BLOCK, []), sep="\\n", file=file)
"""


class FakeBrowser:
    """`path` is the search path that finds it; a program of any user may start it."""

    def __init__(self, place):
        folder, self._pages = f"{place}/bin", f"{place}/pages"
        self.path = f"{folder}:{os.environ['PATH']}"
        os.makedirs(folder)
        with open(f"{folder}/xdg-open", "w") as file:
            file.write(XDG_OPEN.format(pages=self._pages))
        os.chmod(f"{folder}/xdg-open", 0o755)

    def pages(self):
        try:
            with open(self._pages) as file:
                return file.read().splitlines()
        except FileNotFoundError:
            return []
