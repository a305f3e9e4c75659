"""Trains perceptrons with scikit-learn until an error is small enough.

A request is a line
  SOLVER LEARN JUDGED INPUTS HIDDEN OUTPUTS ERROR SEED
where the files LEARN and JUDGED have rows of INPUTS and OUTPUTS doubles; the answer is the
seconds of processor time until the root mean square error on JUDGED is below ERROR, or inf.
"""

import sys
import time
import warnings

import numpy
from sklearn.neural_network import MLPRegressor

warnings.filterwarnings("ignore")


def seconds_of(action, *arguments):
    start = time.process_time()
    action(*arguments)
    return time.process_time() - start


def adam(model, x, y, has_arrived):
    """Epoch by epoch, looking at the error in between."""
    seconds = 0.0
    for _ in range(1000):
        seconds += seconds_of(model.partial_fit, x, y)
        if has_arrived(model):
            return seconds
    return float("inf")


def lbfgs(model, x, y, has_arrived):
    """Nothing can look in between: ever longer trainings, of which the first that arrives counts."""
    iterations = 5
    while iterations <= 3000:
        model.set_params(max_iter=iterations)
        seconds = seconds_of(model.fit, x, y)
        if has_arrived(model):
            return seconds
        if model.n_iter_ < iterations:
            break
        iterations = int(iterations * 1.25) + 1
    return float("inf")


def answer(solver, learn, judged, inputs, hidden, outputs, error, seed):
    def load(path):
        rows = numpy.fromfile(path).reshape(-1, inputs + outputs)
        targets = rows[:, inputs:] if outputs > 1 else rows[:, inputs]
        return numpy.ascontiguousarray(rows[:, :inputs]), numpy.ascontiguousarray(targets)

    x, y = load(learn)
    unseen, expected = load(judged)

    def has_arrived(model):
        return numpy.sqrt(((model.predict(unseen) - expected) ** 2).mean()) < error

    model = MLPRegressor(
        hidden_layer_sizes=(hidden,), activation="tanh", solver=solver, alpha=0.0,
        learning_rate_init=0.01, max_fun=10**9, tol=0.0, n_iter_no_change=10**9,
        random_state=seed)
    return {"adam": adam, "lbfgs": lbfgs}[solver](model, x, y, has_arrived)


for line in sys.stdin:
    solver, learn, judged, inputs, hidden, outputs, error, seed = line.split()
    print(answer(solver, learn, judged, int(inputs), int(hidden), int(outputs), float(error),
                 int(seed)), flush=True)
