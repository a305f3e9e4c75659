#!/usr/bin/env python3
"""Lets one call of the system after the other fail under a session that loads, trains and saves
objects of each kind, and ends sessions while they save.

    try_faults.py KILN LIBRARY DATA SCRATCH

Whatever fails, every file is as it was before or whole, nothing else is left in the folder, an error
tells of what was not done, and the session answers to its last line."""

import errno
import os
import pathlib
import random
import shutil
import signal
import subprocess
import sys
import time

kiln, library, data, scratch = (pathlib.Path(path).resolve() for path in sys.argv[1:])
session = f"""\
load Data alias d filename ({data}/xor.dat)
load TarnLabels alias words filename ({data}/sailing.labels)
load FuzzyRules alias r filename ({data}/sailing.rules)
load Tarn alias fuzzy filename ({data}/tarn.net)
load Kohonen alias som filename ({data}/map.net)
create MLP alias net layers 3 outputs 1 inputs 2 hidden {{2}} bias on seed 1
create BPTrainer alias teacher network net
train alias teacher data d epochs 3 LearningRate 0.5
gettrained source teacher destination taught
log start filename (../transcript)
create GATrainer alias breeder network net minweight -1 maxweight 1 population 4
train alias breeder data d generations 2 seed 1
gettrained source breeder destination bred
retarn network fuzzy rules read
load CSV alias table filename (table.csv) labels {{word}}
save Data alias d filename (d.dat)
save CSV alias d filename (d.csv)
save TarnLabels alias words filename (words.labels)
save FuzzyRules alias r filename (r.rules)
save Tarn alias fuzzy filename (fuzzy.net)
save Kohonen alias som filename (map.net)
save MLP alias taught filename (net.net)
save C alias taught filename (net.c)
save FCL alias read filename (read.fcl)
save MLP alias bred filename (bred.net)
save CSV alias table filename (table.csv)
log stop
""".splitlines()
names = [line.split("(")[1].rstrip(")") for line in session if line.startswith("save")]
old = b"word;number\nstood;1\nbefore;2\n"
last = "query structureof nobody"
reasons = {
    "open": [errno.EIO, errno.ENOSPC], "write": [0, errno.EINTR, errno.ENOSPC],
    "fsync": [errno.EIO], "close": [errno.EIO], "fchmod": [errno.EPERM], "rename": [errno.EIO],
    "malloc": [errno.ENOMEM]}


def fresh(folder):
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir(parents=True)
    for name in names:
        (folder / name).write_bytes(old)
    return folder


def run(lines, fault=""):
    """What a session says; its files stand in SCRATCH/work, and SCRATCH/told if a call has failed."""
    (scratch / "told").unlink(missing_ok=True)
    environment = {"LD_PRELOAD": library, "KILN_FAULT": fault, "KILN_FAULT_TOLD": scratch / "told"}
    return subprocess.run([kiln], input="\n".join(lines) + "\n", cwd=fresh(scratch / "work"),
                          env=environment, text=True, capture_output=True, timeout=60)


def texts():
    return {path.name: path.read_bytes() for path in (scratch / "work").iterdir()}


def faults():
    """Every session in which one call fails, until one has no call left that could."""
    for call, numbers in reasons.items():
        for reason in numbers:
            count = 1
            while True:
                fault = f"{call} {count} {reason}"
                ended = run([*session, last, last], fault)  # the first may be what fails
                if not (scratch / "told").exists():
                    break
                yield fault, ended
                count += 1
            print(f"{call}: {count - 1} calls failed by {errno.errorcode.get(reason, 'half')}", flush=True)


def complaint(fault, ended, whole, sound):
    """What is wrong about a session in which a call has failed; None if all is well."""
    if ended.returncode != 0 or sound not in ended.stdout:
        return f"ended by {ended.returncode}: {ended.stderr}"
    found = texts()
    if found.keys() != set(names):
        return f"files {sorted(found.keys() ^ set(names))}"
    torn = [name for name in names if found[name] not in whole[name]]
    if torn:
        return f"torn: {torn}"
    is_harm = fault.startswith(("open", "fsync", "rename")) or fault.endswith(f" {errno.ENOSPC}")
    if ended.stdout.count("Error") < 2 and (is_harm or any(text == old for text in found.values())):
        return "no error tells what was not done"
    return None


def try_faults():
    """One command that did nothing is no fault: a network that was not trained is saved untrained."""
    whole = {name: {old} for name in names}
    for left_out in range(len(session) + 1):
        sound = run([*session[:left_out], *session[left_out + 1:], last]).stdout
        for name, text in texts().items():
            whole[name].add(text)
    if any(len(kinds) < 2 for kinds in whole.values()) or sound.count("Error") != 1:
        sys.exit("the session does not work without a fault:\n" + sound)
    answer = sound.splitlines()[-2]
    return [f"{fault}: {wrong}" for fault, ended in faults()
            if (wrong := complaint(fault, ended, whole, answer))]


def saves(names):
    """A session that saves its networks, of the same size, in turn to one file."""
    made = [f"create MLP alias {name} layers 3 inputs 50 hidden {{200}} outputs 1 bias on seed {seed}"
            for seed, name in enumerate("ab")]
    return [*made, *(f"save MLP alias {name} filename (net.net)" for name in names)]


def kill(way, whole):
    """Ends such a session some saves and a part of a save after its start, however long these take. Returns
    what the file then holds, whether a save was under way, as far as it shows, and what is wrong."""
    file = fresh(scratch / "work") / "net.net"
    with subprocess.Popen([kiln], stdin=subprocess.PIPE, stdout=subprocess.DEVNULL, cwd=file.parent,
                          text=True) as session_to_end:
        session_to_end.stdin.write("\n".join(saves("ab" * 500)) + "\n")
        session_to_end.stdin.flush()
        for _ in range(random.randint(1, 4)):
            start, before = time.monotonic(), file.stat().st_ino
            while session_to_end.poll() is None and file.stat().st_ino == before:
                time.sleep(0.001)
        time.sleep(random.uniform(0, time.monotonic() - start))
        session_to_end.send_signal(way)
    text = file.read_bytes()
    left = [path.name for path in file.parent.glob(".kiln*")]
    if text not in whole:
        return text, bool(left), f"{way.name}: a torn file of {len(text)} bytes"
    return text, bool(left), f"{way.name}: left {left}" if left and way == signal.SIGTERM else None


def try_kills():
    """A temporary file that is left shows that the program was killed before it renamed it. Nothing is
    left where the program could end in order, whose moments to end are as many and as random."""
    whole = []
    for name in "ab":
        run(saves(name))
        whole.append(texts()["net.net"])
    kills = [(way, *kill(way, whole)) for way in [signal.SIGKILL, signal.SIGTERM] * 30]
    halfway = sum(was_saving for way, _, was_saving, _ in kills if way == signal.SIGKILL)
    found = {text for _, text, _, _ in kills}
    print(f"{halfway} of 30 were killed halfway through a save", flush=True)
    if halfway < 5 or not found.issuperset(whole):
        sys.exit("too few sessions were killed while they saved, or always in one place")
    return [wrong for *_, wrong in kills if wrong]


wrongs = try_faults() + try_kills()
print(*wrongs, f"{len(wrongs)} faults did harm", sep="\n")
sys.exit(bool(wrongs))
