"""Conversations with a program that answers each line of its input with one line."""
import subprocess

from private_system import SECONDS, read_line


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
