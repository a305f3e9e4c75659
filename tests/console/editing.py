#!/usr/bin/python3
"""What a person at a terminal gets beside the answers: editing, completion, history, hints, progress.

    editing.py PROGRAM SCRATCH_FOLDER
"""
import os
import shutil
import signal
import stat
import sys
import termios
import time

from terminal_session import Session, expect, resize

NETWORK = "create MLP alias network1 inputs 1 layers 3 hidden {1} outputs 1 bias on seed 1"


def main(program, folder):
    shutil.rmtree(folder, ignore_errors=True)
    os.makedirs(os.path.join(folder, "a folder"))
    os.chdir(folder)
    with open("a folder/räin.kiln", "w") as script:
        script.write("create Data alias rain inputs 1 outputs 1 rows 1 labels on\npurge\n")

    for name in "hail", ".hidden", "odd)", "o\x01k":
        open("a folder/" + name, "w").close()
    session = Session(program)
    expect(session.greeting, r"Kiln 0\.9: type help, or quit to end\.\n\r?.*Kiln>>")

    # Answers: several lines, a red error, and a hint behind it or behind what is odd.
    expect(session.say("help destroy"), "Result: destroys an object\ndestroy NAME\n.*example: destroy net\n")
    for line, answer in (
            ("CREATE Data", "\x1b[31mError:\x1b[0m unknown argument to create\ndid you mean create?\n"),
            ("help mlp", "\x1b[31mError:\x1b[0m no help for mlp\ndid you mean help create MLP?\n"),
            ("creat Data", "\x1b[31mError:\x1b[0m Unknown command\ndid you mean create?\n"),
            ("create mpl", "\x1b[31mError:\x1b[0m unknown argument to create\ndid you mean MLP?\n"),
            (NETWORK, "OK\n"),
            ("create BPTrainer alias teacher network network1", "OK\n"),
            ("query classof teachr", "\x1b[31mError:\x1b[0m teachr does not exist\ndid you mean teacher?\n"),
            ("create Data alias set1 inputs 1 outputs 1 rows 1.5 labels off", "OK\nrows 1.5 is read as 1\n"),
            ("append alias set1 inputs {1} output {0.25}", "OK\noutput is no tag of append: outputs?\n"),
            ("create Tarn alias fuzzy inputs 1 condition {2} rules 5 outputs 1 action {2} seed 1", "OK\n"),
            ("retarn network fuzzy rules none threshold 9",
             "OK\n0 rules: there are some with ThresholdIn below 0.8998\n"),
            ("retarn network fuzzy rules some", "OK\n2 rules\n"),
            ("help creat", "\x1b[31mError:\x1b[0m no help for creat\ndid you mean create?\n"),
            ("help create mpl", "\x1b[31mError:\x1b[0m no help for create mpl\ndid you mean MLP?\n"),
            ("query nonsense network1", "\x1b[31mError:\x1b[0m unknown query\n")):
        got = session.say(line)
        if got != answer:
            sys.exit(f"{line}\nexpected {answer!r}\ngot      {got!r}")

    # The choices; an alias in a list, the words of a switch, the bracket of a list.
    session.press("run filename (a folder/\t")
    expect(session.read(b"Kiln>>run filename (a folder/"), r".*\na folder/hail +a folder/r\xc3\xa4in.kiln .*")
    session.press("\x15create \t")
    expect(session.read(b"create "), r".*BPTrainer +Data +.*Tarn +\n.*")
    session.press("\x15append inputs {1} alias set1 lab\t\x15recombine sources {se\t}\n")
    expect(session.read(), r".*t1\}\n.*Error:.*")
    session.press("create MLP bias \tn hid\t\t\n")
    expect(session.read(), r".*on hid.*den .*\{\n.*Error:.*")

    # What cannot be completed stays, and so does what can be in several ways.
    lines = (("nonsense al", ""), ("nonsense {se", ""), ("{se", ""), ("recombine {se", ""), ("append inputs {se", ""),
             ("recombine x {se", ""), ("recombine sources {x, se", "t1"), ("help nonsense x", ""),
             ("help create ML", "P"), ("help create MLP al", ""), ("run filename (nowhere/x", ""),
             ("run filename (a folder/o", ""), ("run filename (a folder/.hi", "dden)"), ("run filename (a f", "older/"),
             ("create MLP bias o", ""), ("create MLP inputs al", ""), ("train alias teacher ali", ""),
             ("query classof network1 cla", ""), ("create MLP hidden", ""), ("query classof NETW", "ork1"))
    for typed, _ in lines:
        session.press(typed + "\t\n")
        session.read()
    with open(".kiln_history") as history:
        last = [line.strip().replace("\\040", " ") for line in history][-len(lines):]
    for (typed, rest), line in zip(lines, last):
        if line.lower() != (typed + rest).lower():
            sys.exit(f"{typed} is completed to {line}")

    # A command word, an alias of the right kind, a word, a file in a folder with a blank.
    session.press("help que\tcla\t\x15creat al\t\x15que\tcla\tteac\t\n")
    expect(session.read(), r".*Result: BP\n\r?Kiln>>")
    session.press("tra\tal\tteac\tda\tset\tep\t1 mo\tba\t\n")
    expect(session.read(), r".*tch \nResult: 0\.\d{8}\n\r?Kiln>>")
    session.press("run fi\t\ta f\trä\t\n")
    expect(session.read(), r".*in\.kiln\).*\nOK\n\r?Kiln>>")

    # Editing: a word in the middle is mended; the history reaches over the end of a session.
    session.press("query aliaseists x")
    session.press(["\x1b[D"] * 6 + ["x", "\n"])
    expect(session.read(), r".*Result: false\n\r?Kiln>>")
    expect(str(session.end()), r".*\\n', 0\)")
    history = os.stat(".kiln_history")
    expect(stat.filemode(history.st_mode), "-rw-------")
    session = Session(program, "-i", "-D", "N=200000000", NO_COLOR="1")
    other = Session(program)
    other.say("purge")  # whose line does not replace those of the others
    other.end()
    session.press(["\x1b[A", "\n"])
    expect(session.read(), r".*query aliasexists x.*Result: false\n\r?Kiln>>")
    expect(session.say("creat"), r"Error: Unknown command\ndid you mean create\?\n")

    # Progress is shown after a while, by steps and by time, and gone at the end.
    for line in (NETWORK, "create BPTrainer alias teacher network network1",
                 "create Data alias set1 inputs 1 outputs 1 rows 1 labels off",
                 "append alias set1 inputs {1} outputs {0.25}"):
        expect(session.say(line), "OK\n")
    session.type("train alias teacher data set1 epochs 2000000000")
    session.interrupt(1.0)
    shown = session.read()
    expect(shown, r".*\r\x1b\[Kepoch \d+ of 2000000000   error \S+   \d+ (s|min|h) left.*"
                  r"\r\x1b\[KResult: \S+\n\r?Kiln>>")
    # So is the curve, when the training is to be watched.
    session.type("train alias teacher data set1 epochs 2000000000 watch on")
    session.interrupt(2.2)
    expect(session.read(), r".* left\r\n\x1b\[K +0?\.?\d*\S*[+|\xe2].*\r\x1b\[14A\r\x1b\[Kepoch.*\r\x1b\[JResult: \S+\n\r?Kiln>>")
    with open("slow.kiln", "w") as script:
        script.write("train alias teacher data set1 epochs $N\n")
    session.type("run filename (slow.kiln)")
    session.interrupt(1.0)
    expect(session.read(), r".*\r\x1b\[Kslow.kiln line 1   epoch \d+ of 200000000 .*Result: \S+\n\r?Kiln>>")

    # A line is drawn anew in a window of another size and where others have used the screen, and a program
    # that is ended leaves the terminal as it was.
    session.press("query objects")
    session.read(b"objects")
    for disturb in (lambda: resize(session.terminal, 100), lambda: os.kill(session.pid, signal.SIGCONT)):
        disturb()
        session.read(b"\r\x1b[JKiln>>query objects")
    session.press("\n")
    expect(session.read(), ".*Result: {network1 MLP, .*")
    # Of a line over several rows all is left or drawn anew; what is no character becomes a question mark.
    os.write(session.terminal, b"\xff" * 250)
    time.sleep(0.3)
    resize(session.terminal, 120)
    session.interrupt()
    expect(session.read(b"^C\r\nKiln>>"), r".*\x1b\[\dA\r\x1b\[JKiln>>\?.*")
    os.write(session.terminal, b"x" * 250 + b"\x01")
    session.interrupt()
    expect(session.read(b"^C\r\nKiln>>"), r".*\x1b\[\dB\^C\nKiln>>")
    session.end()
    session = Session(program)
    os.kill(session.pid, signal.SIGTERM)
    os.waitpid(session.pid, 0)
    expect(str(termios.tcgetattr(session.terminal)[3] & termios.ECHO), str(termios.ECHO))
    with open(".kiln_history") as lines:
        expect(lines.read(), r"_HiStOrY_V2_\n.*aliasexists\\040x\npurge\n.*slow.kiln\)\nquery\\040objects\n")

    # A history that leads to anything but a file is left alone.
    os.remove(".kiln_history")
    os.mkfifo(".kiln_history")
    for home in os.getcwd(), "":
        session = Session(program, HOME=home, LC_ALL="", LC_CTYPE="C", LANG="C.UTF-8")
        expect(session.say("purge"), "OK\n")
        session.end()

    # Nothing of it where a terminal is to be treated like a pipe.
    for arguments, environment in (("--plain",), {}), ((), {"TERM": "dumb"}):
        session = Session(program, *arguments, **environment)
        expect(session.greeting, "Kiln>>")
        expect(session.say("creat\ttrue"), r"Error: Unknown command\n")
        expect(str(session.end()), r".*, 0\)")
    Session(program, XDG_STATE_HOME=os.getcwd() + "/state").end()
    expect(str(os.listdir("state/kiln")), r"\['history'\]")


main(os.path.abspath(sys.argv[1]), sys.argv[2])
