"""One console of Kiln, driven through pipes."""

import csv
import io
import os
import re
import shutil
import signal
import threading
import weakref
from collections.abc import Iterator
from contextlib import AbstractContextManager, contextmanager, suppress
from fcntl import F_DUPFD_CLOEXEC, fcntl
from pathlib import Path
from subprocess import PIPE, STDOUT, Popen, TimeoutExpired
from typing import Any, NoReturn

import numpy as np
from numpy.typing import ArrayLike, NDArray

PROMPT = b"Kiln>>"
GRACE = 1.0  # seconds in which a console that is told to quit has to end

Matrix = NDArray[np.float64]


class Error(Exception):
    """What the console answered behind `Error:`, or what it said before it ended."""


def find_program() -> str:
    """Names the variable KILN, else `kiln` on the path, else the build of the tree around us."""
    built = Path(__file__).resolve().parents[2] / "build" / "kiln"
    return os.environ.get("KILN") or shutil.which("kiln") or str(built)


class Session(AbstractContextManager["Session"]):
    """A console that lives as long as this object, and takes one line at a time.

    Threads may share it: they wait for each other. A process that is forked has to make its own.
    The arguments are options of `kiln`, or files that it carries out first. ValueError is raised for
    those that leave no conversation: without prompts, ended by an error, or with its input read.

    >>> session = Session("--strict")
    >>> session.data("xor", [[0, 0], [0, 1], [1, 0], [1, 1]], [0, 1, 1, 0])
    >>> session("create MLP alias net inputs 2 layers 3 hidden {4} outputs 1 bias true seed 1")
    >>> session("create BPTrainer alias teacher network net")
    >>> session("train alias teacher data xor epochs 2000 LearningRate 0.5 Momentum 0.9")
    0.01104612
    >>> session("recall network net input xor output answers")
    >>> inputs, outputs = session.array("answers")
    >>> outputs.round().ravel()
    array([0., 1., 1., 0.])
    >>> session("destroy teeth")
    Traceback (most recent call last):
    ...
    kiln.session.Error: teeth does not exist
    """

    def __init__(self, *arguments: str | os.PathLike[str]) -> None:
        if any(re.match("-$|-[ishV]*[qb]|--[qb]", os.fspath(argument)) for argument in arguments):
            raise ValueError("a session cannot have the options -q (--quiet), -b (--batch) and -")
        self._pid = os.getpid()
        self._lock = threading.RLock()  # for one call at a time
        self._signals = threading.RLock()  # for whether a call runs that nobody has interrupted
        self._interruptible = False
        self._settled = True  # nothing is left to read
        self._markers = 0
        # Objects go through a file that has no name, so that there is nothing to clean up. It must not
        # be 0, 1 or 2, not even where these are closed, as in the workers of joblib.
        with open(os.memfd_create("kiln")) as file:
            descriptor = fcntl(file.fileno(), F_DUPFD_CLOEXEC, 3)
        self._file = Path(f"/dev/fd/{descriptor}")
        # In a group of its own: Ctrl-C is for us, and we pass it on. Unlike what a shell starts in
        # the background, it must not ignore it.
        command = ["env", "--default-signal=INT", find_program(), "-i", *arguments]
        self._process = Popen(
            command, 0, stdin=PIPE, stdout=PIPE, stderr=STDOUT, pass_fds=[descriptor], start_new_session=True
        )
        self._end = weakref.finalize(self, _end, self._process, descriptor, self._pid)
        _value_of(os.fsdecode(self._read_until(b"\n" + PROMPT).removesuffix(PROMPT)))

    def __call__(self, line: str) -> Any:
        """Carries out a command. Returns None for `OK`, else the result.

        A result is a number, a list (of lists) where it stands in braces, and text otherwise; of
        an `@` line, what the system's command wrote. Such a command has no input.

        Raises Error with the text of an error, or when the program ends; ValueError where there
        is more than one line. Ctrl-C asks the command to end, and raises KeyboardInterrupt when
        it has.
        """
        if "\n" in line or "\0" in line:
            raise ValueError("a command is one line")
        line = re.sub("^ *@", "@exec </dev/null; ", line)
        with self._turn():
            answer = os.fsdecode(self._ask(os.fsencode(line)))
            return answer or None if line.startswith("@") else _value_of(answer)

    def interrupt(self) -> None:
        """Asks the command that another thread has called to end in good order.

        A training ends after its epoch or generation, and keeps what it has reached. Where nothing
        is called, nothing happens.
        """
        with self._signals:
            if self._interruptible:
                self._interruptible = False
                self._process.send_signal(signal.SIGINT)

    def data(self, alias: str, inputs: ArrayLike, outputs: ArrayLike | None = None) -> None:
        """Makes a data set of inputs (rows, m) and outputs (rows, n), digit for digit.

        One dimension of outputs is one column; without outputs, n is 0.
        """
        left = _matrix(inputs)
        right = np.empty((len(left), 0)) if outputs is None else _matrix(outputs)
        if len(left) != len(right):
            raise ValueError(f"{len(left)} rows of inputs but {len(right)} of outputs")
        sizes = f"[Rows={len(left)}]\n[Inputs={left.shape[1]}]\n[ExpectedOutputs={right.shape[1]}]"
        numbers = _hexadecimal(np.hstack([left, right]).ravel())
        self.load("Data", alias, f"[DataSet]\n{sizes}\n[Data]".encode() + numbers + b"[~Data]\n[~DataSet]\n")

    def array(self, alias: str) -> tuple[Matrix, Matrix]:
        """Returns inputs (rows, m) and outputs (rows, n) of a data set, the oldest row first."""
        with self._turn():
            sizes = re.findall(r" (\d+)", self(f"query structureof {alias}"))
            table = io.StringIO(self.save("CSV", alias), newline="")
        inputs, outputs, _, rows = map(int, sizes)
        if rows * (inputs + outputs) == 0:
            return np.empty((rows, inputs)), np.empty((rows, outputs))
        next(csv.reader(table))  # the names of the columns, in which there may be line ends
        columns = range(inputs + outputs)  # without labels
        numbers = np.loadtxt(table, delimiter=",", quotechar='"', comments=None, usecols=columns, ndmin=2)
        return numbers[:, :inputs], numbers[:, inputs:]

    def load(self, kind: str, alias: str, text: str | bytes, tags: str = "") -> Any:
        """Makes an object of the text of a file: `load KIND alias ALIAS`, with more tags."""
        with self._turn():
            self._file.write_bytes(os.fsencode(text))
            return self(f"load {kind} alias {alias} filename ({self._file}) {tags}")

    def save(self, kind: str, alias: str, tags: str = "") -> str:
        """Returns what `save KIND alias ALIAS`, with more tags, writes into a file."""
        with self._turn():
            self._file.write_bytes(b"")
            os.lseek(int(self._file.name), 0, os.SEEK_SET)  # where the console writes
            self(f"save {kind} alias {alias} filename ({self._file}) {tags}")
            return os.fsdecode(self._file.read_bytes())

    @property
    def alive(self) -> bool:
        """Whether there is a program, which this process may talk to."""
        return self._pid == os.getpid() and self._end.alive and self._process.poll() is None

    def close(self) -> None:
        """Ends the program, as does the end of this object; a call at work comes first."""
        if self._pid == os.getpid():
            with self._lock:
                self._end()

    def __exit__(self, *exception: object) -> None:
        self.close()

    def __reduce__(self) -> NoReturn:
        raise TypeError("a session cannot be copied or pickled: make another")

    @contextmanager
    def _turn(self) -> Iterator[None]:
        """Waits for other threads. No lock is safe behind a fork, so that comes first."""
        if self._pid != os.getpid():
            raise Error("this session belongs to the process in which it was made")
        with self._lock:
            if not self._end.alive:
                raise Error("kiln has ended")
            yield

    def _ask(self, line: bytes) -> bytes:
        """Returns the answer to a line."""
        # Of these the last line need not have an end, and may be anything, also a prompt.
        is_free = re.match(rb" *($|@|!!)", line)
        if is_free or not self._settled:
            self._settle()
        self._settled = False
        try:
            with self._signals:
                self._interruptible = True
            self._write(line)
            text = self._read_until(PROMPT if is_free else b"\n" + PROMPT)
        except KeyboardInterrupt:
            self.interrupt()
            self._settle()
            raise
        finally:
            with self._signals:
                interrupted, self._interruptible = not self._interruptible, False
        # The line end and prompt of a signal that came while nothing was carried out, also from elsewhere.
        stray = interrupted or (text.startswith(b"\n") and not is_free)
        if stray or is_free:
            text += self._settle()
        self._settled = True
        text = text.removesuffix(PROMPT)
        return text.replace(b"\n" + PROMPT, b"") if stray else text

    def _settle(self) -> bytes:
        """Returns all that is left to read before the console waits for its next line.

        Nobody can tell from prompts alone: those of a system's command look alike, and a signal that comes
        before or after its command is answered with one more. So this asks for something that has an
        answer of its own. Transcripts hold every command but `log`.
        """
        self._markers += 1
        marker = f"/dev/null/{self._markers}"
        self._write(f"\nlog start filename ({marker})".encode())
        echo = f"Error: cannot open file {marker}\n".encode()
        text = b""
        while echo not in text:
            text += self._read_until(PROMPT)
        self._settled = True
        return text.partition(PROMPT + echo)[0]

    def _write(self, line: bytes) -> None:
        assert self._process.stdin
        rest = memoryview(line + b"\n")
        with suppress(BrokenPipeError):  # when the program has ended; what it said last can be read
            while rest:
                rest = rest[os.write(self._process.stdin.fileno(), rest) :]

    def _read_until(self, end: bytes) -> bytes:
        """Returns what is written until this end of it. Raises Error when the program ends."""
        assert self._process.stdout
        text = bytearray(b"\n")  # a line begins here
        while not text.endswith(end):
            piece = os.read(self._process.stdout.fileno(), 1 << 20)
            if not piece:
                last = text.decode("utf-8", "replace").strip() or "without a word"
                raise Error(f"kiln has ended with status {self._process.wait()}: {last}")
            text += piece
        return bytes(text[1:])


def _end(process: Popen[bytes], descriptor: int, pid: int) -> None:
    """Ends the program of a session that is gone; in a forked process, only lets go of it."""
    assert process.stdin and process.stdout
    os.close(descriptor)
    if pid == os.getpid():
        with suppress(BrokenPipeError):
            process.stdin.write(b"quit\n")  # more than the end of the pipe, which forks hold too
        try:
            process.wait(GRACE)
        except TimeoutExpired:
            process.kill()
            process.wait()
    process.stdin.close()
    process.stdout.close()


# The sign and first digit of numbers, and their exponents, by the 12 bits in front of their fractions.
HEADS = np.array([b" %c0x%d." % (b"+-"[code >> 11], code & 2047 > 0) for code in range(4096)])
TAILS = np.array([b"p%+05d" % (max(code & 2047, 1) - 1023) for code in range(4096)])


def _hexadecimal(numbers: NDArray[np.float64]) -> bytes:
    """The numbers as C writes them, with a blank before each."""
    bits = numbers.view(np.uint64)
    text = np.empty(len(bits), "S6, S13, S6")
    text["f0"], text["f2"] = HEADS[bits >> 52], TAILS[bits >> 52]
    text["f1"] = np.frombuffer(bits.astype(">u8").tobytes().hex().encode(), "S3, S13")["f1"]
    odd = ~np.isfinite(numbers)
    text[odd] = [(f"{number:6}".encode(), b" " * 13, b" " * 6) for number in numbers[odd]]
    return text.tobytes()


def _matrix(values: ArrayLike) -> Matrix:
    array = np.asarray(values, np.float64)
    array = array[:, np.newaxis] if array.ndim == 1 else array
    if array.ndim != 2:
        raise ValueError(f"an array of rows and columns, not of {array.ndim} dimensions")
    return array


def _value_of(answer: str) -> Any:
    """The result in the last line of an answer; epochs of a map stand in front of it."""
    last = answer.rstrip("\n").rpartition("\n")[2]
    match = re.fullmatch(r"(?:\d+ )*(?:OK|Result: (?P<result>.*)|Error: (?P<error>.*))", last)
    if not match:
        return answer or None
    if match["error"] is not None:
        raise Error(match["error"])
    return None if match["result"] is None else _parsed(match["result"])


def _parsed(text: str) -> Any:
    if text.startswith("{") and text.endswith("}"):
        elements = re.findall(r"\{[^{}]*\}|[^,{}\s][^,{}]*", text[1:-1])
        return [_parsed(element) for element in elements]
    for number in (int, float):
        with suppress(ValueError):
            return number(text)
    return text
