#!/usr/bin/env python3
"""Plays a recorded conversation against a console program: conversation.py PROGRAM DATA_DIRECTORY CONVERSATION

README.md in this folder describes the format. A command is typed only when the prompt stands there, as a person or
a driving program does, and every line of the answers is compared."""
import os
import re
import select
import shutil
import signal
import subprocess
import sys
import time
from contextlib import suppress
from itertools import zip_longest
from pathlib import Path
from typing import NamedTuple

PROMPT = "Kiln>>"
PATIENCE = 20  # seconds
LONGEST_ANSWER = 1 << 24  # characters


class Step(NamedTuple):
    kind: str  # "type", "file" or "show"
    number: int
    subject: str  # the command, or the name of the file
    lines: list  # numbers and texts: the answer, or the content of the file


class Failure(Exception):
    """Something after which the conversation cannot go on."""


def read_steps(conversation, data):
    steps, answering = [], None
    lines = enumerate(conversation.read_bytes().decode("latin-1").replace("@DATA@", data).split("\n"), 1)
    for number, text in lines:
        if text.startswith(PROMPT):
            answering = Step("type", number, text.removeprefix(PROMPT), [])
            steps.append(answering)
        elif text.startswith(("#file ", "#show ")):
            answering = None  # blocks stand between one answer and the next command
            steps.append(Step(text[1:5], number, text[6:], []))
            for line in lines:
                if line[1] == "#end":
                    break
                steps[-1].lines.append(line)
            else:
                raise Failure(f"{number}: no #end closes this block")
        elif answering and not text.startswith("#"):
            answering.lines.append((number, text))
        elif text and not text.startswith("#"):
            raise Failure(f"{number}: an answer without a command")
    for step in steps:
        while step.kind == "type" and step.lines and not step.lines[-1][1]:
            step.lines.pop()
    return steps


class Player:
    """Plays steps with a program that runs beside us, and counts the lines that differ."""

    def __init__(self, program, name):
        self.name, self.differences, self.at_end = name, 0, False
        self.process = subprocess.Popen([program], stdin=subprocess.PIPE, stdout=subprocess.PIPE, bufsize=0,
                                        start_new_session=True)  # so that its children end with it

    def play(self, steps):
        self.compare(0, "the start of the program", [], self.read_answer())
        for step in steps:
            try:
                self.play_step(step)
            except (OSError, Failure) as failure:
                raise Failure(f"{step.number}: {step.subject}: {failure}") from failure
        self.process.stdin.close()
        self.compare(0, "the end of the input", [], self.read_answer())
        if status := self.process.wait(PATIENCE):
            self.report(0, "the end of the program", "status 0", f"status {status}")

    def play_step(self, step):
        if step.kind == "file":
            content = "".join(text + "\n" for _, text in step.lines)
            Path(step.subject).write_bytes(content.encode("latin-1"))
        elif step.kind == "show":
            self.compare(*step[1:], Path(step.subject).read_bytes().decode("latin-1"))
        else:
            os.write(self.process.stdin.fileno(), step.subject.encode("latin-1") + b"\n")
            self.compare(*step[1:], self.read_answer())
            if self.at_end and step.lines:  # only a command without an answer may end the program
                raise Failure(f"the program has ended: status {self.process.wait(PATIENCE)}")

    def read_answer(self):
        """All that is written until the prompt stands at the end, without it, or until the end of the program."""
        answer, deadline = "", time.monotonic() + PATIENCE
        output = self.process.stdout.fileno()
        while not answer.endswith(PROMPT):
            ready, _, _ = select.select([output], [], [], max(0, deadline - time.monotonic()))
            if not ready or len(answer) > LONGEST_ANSWER or time.monotonic() > deadline:
                raise Failure(f"no prompt follows this answer:\n{answer[:4096]}")
            piece = os.read(output, 65536)
            if not piece:
                self.at_end = True
                return answer
            answer += piece.decode("latin-1")
        return answer.removesuffix(PROMPT)

    def compare(self, number, subject, expected, got):
        if got and not got.endswith("\n"):
            self.report(number, subject, "an end of line", got)
        lines = got.removesuffix("\n").split("\n") if got else []
        for (place, wanted), line in zip_longest(expected, lines, fillvalue=(number, None)):
            if line == (number, None):
                self.report(place, subject, wanted, "nothing")
            elif wanted is None:
                self.report(number, subject, "nothing", line)
            elif not (re.fullmatch(wanted[1:], line) if wanted.startswith("~") else wanted == line):
                self.report(place, subject, wanted, line)

    def report(self, number, subject, expected, got):
        self.differences += 1
        print(f"{self.name}:{number}: {subject}\n  expected: {expected}\n  got:      {got}")

    def stop(self):
        with suppress(ProcessLookupError):
            os.killpg(self.process.pid, signal.SIGKILL)
        self.process.wait()


def main(program, data, conversation):
    os.environ["KILN"] = program = os.path.abspath(program)
    try:
        steps = read_steps(Path(conversation), os.path.abspath(data))
        scratch = Path("scratch", Path(conversation).stem)  # stays, for whoever looks into a failure
        shutil.rmtree(scratch, ignore_errors=True)
        scratch.mkdir(parents=True)
        os.chdir(scratch)
        player = Player(program, conversation)
        try:
            player.play(steps)
        finally:
            player.stop()
    except (OSError, Failure, subprocess.TimeoutExpired) as failure:
        sys.exit(f"{conversation}:{failure}")
    sys.exit(player.differences > 0)


main(*sys.argv[1:])
