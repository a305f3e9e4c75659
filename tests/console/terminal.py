#!/usr/bin/python3
"""Interrupts kiln at a terminal.

    terminal.py PROGRAM SCRATCH_FOLDER
"""
import os
import shutil
import sys
import time

from terminal_session import PROMPT, Session, expect


def interrupted(session, line, pattern):
    session.type(line)
    session.interrupt(0.7)
    # The terminal drops what is not shown yet.
    expect(session.read(), ".*" + pattern + PROMPT.decode())


def main(program, folder):
    shutil.rmtree(folder, ignore_errors=True)
    os.makedirs(folder)
    os.chdir(folder)
    for n in range(40):  # 2^40 lines
        with open(f"{n}", "w") as script:
            script.write(f"run filename ({n + 1})\n" * 2)
    with open("40", "w") as script:
        script.write("query aliasexists d\n")
    os.mkfifo("fifo")

    with open("objects", "w") as script:
        script.write("""create Data alias d inputs 1 outputs 1 rows 1 labels false
                        append alias d inputs {1} outputs {0.25}
                        create MLP alias net inputs 1 layers 3 hidden {1} outputs 1 bias true seed 1
                        create BPTrainer alias t network net
                        create GATrainer alias g network net minweight -1 maxweight 1 population 50
                        create GATrainer alias slow network net minweight -1 maxweight 1 population 1000000
                        create Kohonen alias k inputs 1 dimensions 1 mapdim {3} seed 1
                        create KohonenTrainer alias kt network k""")
    session = Session(program, "-i", "objects", NO_COLOR="1")
    expect(session.greeting, "(OK\n){8}.*Kiln>>")

    # A training ends after its epoch or generation, with its answer and what it has reached.
    interrupted(session, "train alias t data d epochs 2000000000", r"Result: 0\.000.*\n")
    interrupted(session, "train alias g data d generations 2000000000 terminating -1 seed 1",
                r"Result: .*\n")
    interrupted(session, "train alias kt data d epochs 2000000000 LearningRate 0.1 neighbourhood {1}",
                r"OK\n")
    # A picture without a file is for the terminal, as wide as it is.
    shown = session.say("plot t")
    expect(shown, r"Errors of t\n\n.* epoch\nOK\n")
    expect(str(max(map(len, shown.encode("latin-1").decode().split("\n")))), "1[89]\\d|200")
    # A script ends before its next line; nobody else opens the fifo; at the prompt the line goes.
    interrupted(session, "run filename (0)", r"Error: line 1 of file 0 .*interrupted\n")
    for command in "run", "load Data alias x", "save Data alias d", "log start":
        interrupted(session, command + " filename (fifo)", r"Error: interrupted\n")
    # A fifo that is full keeps whoever writes waiting too.
    reader = os.open("fifo", os.O_RDONLY | os.O_NONBLOCK)
    expect(session.say("create Kohonen alias big inputs 99 dimensions 1 mapdim {99}"), "OK\n")
    interrupted(session, "save Kohonen alias big filename (fifo)", r"Error: interrupted\n")
    os.close(reader)
    os.write(session.terminal, b"destroy d")
    session.interrupt()
    expect(session.read(), r"destroy d\^C\nKiln>>")
    expect(session.say("query aliasexists d"), "Result: true\n")

    # What a terminal would obey is shown instead, in an answer, a hint, a remark, beside a pipe.
    with open("rude", "w") as script:
        script.write("copy source d destination \x1babcde\ndestroy \x1b[2J\x9b2J\x7f\u00e9\n")
    expect(session.say("run filename (rude)"), r".*\^\[\[2J\xc2\?2J\^\?\xc3\xa9 does not exist\n")
    expect(session.say("destroy abcde"), r".*\ndid you mean \^\[abcde\?\n")
    with open("loud", "w") as script:
        script.write("create Tarn alias f inputs 1 condition {2} rules 1 outputs 1 action {2}\n"
                     "retarn network f rules r method \x1bc\n")
    expect(session.say("run filename (loud)"), r"\^\[c\nError: .*")
    expect(str(session.end()), r".*, 0\)")
    session = Session("/bin/sh", "-c", program + " -q objects rude | cat")
    expect(session.greeting, r"Error: line 2 .*\^\[\[2J.*")

    # The second interruption ends the program; where it only carries out commands, the first does.
    session = Session(program, "-i", "objects")
    session.type("train alias slow data d generations 1")
    session.interrupt()
    time.sleep(0.05)
    expect(str(session.end(b"\x03")), r".*, -2\)")
    session = Session(program, "objects", "-e", "train alias t data d epochs 2000000000", "-e", "purge",
                      until=b"OK\r\n" * 8)
    time.sleep(0.3)
    expect(str(session.end(b"\x03")), r".*Result: \S+Error:\S* interrupted\\n', 130\)")


main(os.path.abspath(sys.argv[1]), sys.argv[2])
