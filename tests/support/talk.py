"""Conversations with a program that answers each line of its input with one line."""
import os
import subprocess
import sys
import unittest

from private_system import SECONDS, read_line


def answer_with(system, process, manner):
    """Answers in this manner when the process's user is asked for a password; see auth_agent.py."""
    agent = system.start([sys.executable, f"{os.path.dirname(__file__)}/auth_agent.py", str(process.pid), manner],
                         stdout=subprocess.PIPE, text=True)
    if read_line(agent) != "ready":
        raise RuntimeError("the answering program does not start")
    return agent


def main_as_root():
    if os.getuid() != 0:
        print("Skipped: only root can cover polkit's folders in a mount namespace.")
        sys.exit(77)
    unittest.main(argv=sys.argv[:1])


class Talk:
    def __init__(self, system, *command, **options):
        self.system = system
        self.command = command
        self.options = options
        self.process = None
        self.open()

    def open(self):
        self.process = self.system.start(self.command, stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True,
                                         bufsize=1, **self.options)

    def begin(self, line):
        if not self.process:
            self.open()
        self.process.stdin.write(line + "\n")

    def result(self, seconds=SECONDS):
        """Who is silent for too long is ended: its answer must not be taken for one to a later question."""
        try:
            return read_line(self.process, seconds)
        except (RuntimeError, TimeoutError):
            self.close()
            raise

    def __call__(self, line):
        self.begin(line)
        return self.result()

    def close(self):
        if self.process:
            self.system.end(self.process)
            self.process = None
