"""Talks to a program through a terminal, as a person does.

What the terminal shows goes to the file that the variable TRANSCRIPT names, too.
"""
import fcntl
import os
import pty
import re
import select
import struct
import sys
import termios
import time

PROMPT = b"Kiln>>"
PATIENCE = 20  # seconds
transcript = open(os.environ.get("TRANSCRIPT", os.devnull), "wb")


def resize(terminal, columns):
    fcntl.ioctl(terminal, termios.TIOCSWINSZ, struct.pack("HHHH", 24, columns, 0, 0))


class Session:
    def __init__(self, program, *arguments, until=PROMPT, **environment):
        self.pid, self.terminal = pty.fork()
        if self.pid == 0:
            resize(0, 200)  # lines do not wrap
            os.environ.update({"TERM": "xterm", "LC_ALL": "C.UTF-8", "HOME": os.getcwd(),
                               "XDG_STATE_HOME": ""} | environment)
            os.execv(program, [program, *arguments])
        self.greeting = self.read(until)

    def read(self, until=PROMPT):
        """What is shown until this text stands at the end; the end of the program ends it too."""
        shown, deadline = b"", time.monotonic() + PATIENCE
        while not shown.endswith(until):
            ready, _, _ = select.select([self.terminal], [], [], max(0, deadline - time.monotonic()))
            if not ready:
                sys.exit(f"no {until} behind: {shown}")
            try:
                news = os.read(self.terminal, 4096)
            except OSError:
                break
            transcript.write(news)
            shown += news
        return shown.replace(b"\r\n", b"\n").decode("latin-1")

    def type(self, line):
        os.write(self.terminal, line.encode() + b"\n")

    def say(self, line):
        """Types a line and returns the answer, without the echo of the line."""
        self.type(line)
        return self.read()[len(line) + 1:-len(PROMPT)]

    def press(self, keys):
        """Presses keys one after the other, as a person does."""
        for key in keys:
            os.write(self.terminal, key.encode())
            time.sleep(0.02)

    def end(self, key=b"\x04"):
        """Ends the program by Ctrl-D or another key; returns what is shown and the status."""
        os.write(self.terminal, key)
        shown = self.read()
        _, status = os.waitpid(self.pid, 0)
        return shown, os.waitstatus_to_exitcode(status)

    def interrupt(self, after=0.3):
        time.sleep(after)
        os.write(self.terminal, b"\x03")


def expect(got, pattern):
    if not re.fullmatch(pattern, got, re.DOTALL):
        sys.exit(f"expected {pattern}\ngot      {got!r}")
