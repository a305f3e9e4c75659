"""Writes and reads tables of numbers as text with pandas. A request is a line

  save NUMBERS COLUMNS TEXT   writes the rows of COLUMNS doubles in the file NUMBERS to TEXT
  load TEXT                   reads them back

and the answer the seconds of processor time that this took, reading NUMBERS left out.
"""

import sys
import time

import numpy
import pandas


def save(numbers, columns, text):
    frame = pandas.DataFrame(numpy.fromfile(numbers).reshape(-1, int(columns)))
    start = time.process_time()
    frame.to_csv(text, header=False, index=False)
    return time.process_time() - start


def load(text):
    start = time.process_time()
    pandas.read_csv(text, header=None, engine="c")
    return time.process_time() - start


for line in sys.stdin:
    command, *arguments = line.split()
    print({"save": save, "load": load}[command](*arguments), flush=True)
