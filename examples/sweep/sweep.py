#!/usr/bin/python3
"""All trials in Python: sweep.py [SCHEDULER].

They go to the machines behind a scheduler of Dask, or else to two workers on this one. The best
network is left in best.net.
"""

import logging
import sys
from pathlib import Path

import joblib
from dask.distributed import Client, LocalCluster

import kiln

HERE = Path(__file__).resolve().parent


def trial(seed: str, hidden: str, rate: str) -> tuple[float, str]:
    """Returns the error of a trial and the text of its network file."""
    given = {"DATA": HERE.parent / "iris", "SEED": seed, "HIDDEN": hidden, "RATE": rate, "NAME": "/dev/null"}
    options = [f"-D{name}={value}" for name, value in given.items()]
    with kiln.Session("--strict", "-j1", *options, f"{HERE}/trial.kiln") as session:
        score = session("query score network net data judge").split()
        return float(score[score.index("error") + 1]), session.save("MLP", "net")


def main(scheduler: str | None = None) -> None:
    trials = [line.split() for line in (HERE / "trials.txt").read_text().splitlines()]
    cluster = scheduler or LocalCluster(
        2, threads_per_worker=1, dashboard_address=None, silence_logs=logging.ERROR
    )
    with Client(cluster), joblib.parallel_backend("dask"):
        results = joblib.Parallel()(joblib.delayed(trial)(*given) for given in trials)
    best = min(range(len(trials)), key=lambda number: results[number][0])
    seed, hidden, rate = trials[best]
    Path("best.net").write_text(results[best][1])
    print(f"trial {best + 1}: seed {seed} hidden {hidden} rate {rate}, error {results[best][0]}")


if __name__ == "__main__":
    main(*sys.argv[1:])
