"""Fits a perceptron of 16-16-2 to 1000 rows for 100 epochs from Python: python_fit.py KILN FOLDER

KILN is the program, FOLDER that of the package. A request is a line
  WHO PASSES
and the answer the seconds of processor time, of this process and of Kiln's, that the passes took:
"kiln" for its estimator, "overhead" for what of these is not its console's training, and "scikit"
for scikit-learn's estimator. Both are trained by Adam in batches of 200.
"""

import os
import sys
import time
import warnings

import numpy

os.environ["KILN"] = sys.argv[1]
os.environ["KILN_THREADS"] = "1"
sys.path.insert(0, sys.argv[2])
import kiln
import kiln.estimators
from kiln.estimators import PerceptronClassifier
from sklearn.neural_network import MLPClassifier

random = numpy.random.default_rng(1)
x = random.random((1000, 16))
y = x[:, 0] + x[:, 1] > 1.0

settings = {"hidden_layer_sizes": (16,), "activation": "tanh", "solver": "adam", "batch_size": 200,
            "max_iter": 100, "tol": 0.0, "random_state": 1}
models = {
    "kiln": PerceptronClassifier(learning_rate=0.01, **settings),
    "scikit": MLPClassifier(learning_rate_init=0.01, alpha=0.0, n_iter_no_change=10**9, **settings),
}
warnings.filterwarnings("ignore", message=".*Maximum iterations.*")
with kiln.estimators.console() as session:
    console = session._process.pid
training = 0.0  # seconds
call = kiln.Session.__call__


def spent():
    with open(f"/proc/{console}/schedstat") as file:
        return time.process_time() + 1e-9 * int(file.read().split()[0])


def timed_call(session, line):
    global training
    start = spent()
    result = call(session, line)
    if line.startswith("train"):
        training += spent() - start
    return result


kiln.Session.__call__ = timed_call
for line in sys.stdin:
    who, passes = line.split()
    training = 0.0
    start = spent()
    for _ in range(int(passes)):
        models.get(who, models["kiln"]).fit(x, y)
    seconds = spent() - start
    print(seconds - (training if who == "overhead" else 0.0), flush=True)
