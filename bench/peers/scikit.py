"""Trains perceptrons with scikit-learn: stochastic gradient descent, each batch the whole set.

A request is a line
  FILE RATE MOMENTUM PASSES INPUTS HIDDEN... OUTPUTS
where FILE has rows of INPUTS and OUTPUTS doubles; the answer is the seconds of processor
time that training took, or with the argument "wall" those on the clock on the wall.
"""

import sys
import time
import warnings

import numpy
from sklearn.neural_network import MLPRegressor

warnings.filterwarnings("ignore", message=".*Maximum iterations.*")
now = time.perf_counter if "wall" in sys.argv else time.process_time


def answer(path, rate, momentum, passes, inputs, *hidden, outputs):
    rows = numpy.fromfile(path).reshape(-1, inputs + outputs)
    x = numpy.ascontiguousarray(rows[:, :inputs])
    y = numpy.ascontiguousarray(rows[:, inputs:])
    model = MLPRegressor(
        hidden_layer_sizes=hidden, activation="logistic", solver="sgd", alpha=0.0,
        batch_size=len(rows), learning_rate_init=rate, momentum=momentum,
        nesterovs_momentum=False, shuffle=False, max_iter=passes, tol=0.0,
        n_iter_no_change=10**9, random_state=1)
    start = now()
    model.fit(x, y)
    seconds = now() - start
    assert model.n_iter_ == passes
    return seconds


for line in sys.stdin:
    path, rate, momentum, *counts = line.split()
    *counts, outputs = map(int, counts)
    print(answer(path, float(rate), float(momentum), *counts, outputs=outputs), flush=True)
