"""Estimators: the rules of scikit-learn, its tools around them, and what only these can tell."""

import doctest
import itertools
import os
import pickle
import signal
import threading

import numpy as np
import pytest

pytest.importorskip("sklearn", reason="scikit-learn is missing")
from sklearn.base import clone
from sklearn.datasets import load_diabetes, load_iris
from sklearn.exceptions import ConvergenceWarning
from sklearn.model_selection import GridSearchCV, cross_val_score
from sklearn.pipeline import make_pipeline
from sklearn.preprocessing import StandardScaler
from sklearn.utils.estimator_checks import parametrize_with_checks

import kiln.estimators
from kiln.estimators import KohonenMap, PerceptronClassifier, PerceptronRegressor
from kiln.estimators import TarnClassifier, TarnRegressor

IRIS = load_iris(return_X_y=True)
KINDS = [PerceptronClassifier, PerceptronRegressor, TarnClassifier, TarnRegressor, KohonenMap]


@parametrize_with_checks([*(kind() for kind in KINDS), *(kind(solver="genetic") for kind in KINDS[:2])])
def test_what_scikit_learn_asks_of_an_estimator(estimator, check):
    check(estimator)


def test_examples_of_the_documentation():
    assert doctest.testmod(kiln.estimators).failed == 0
    assert doctest.testfile("../README.md").failed == 0


@pytest.mark.parametrize("solver", ["gradient", "rprop", "adam", "levenberg", "genetic"])
def test_every_solver_learns_and_keeps_its_errors(solver):
    for model, data in (
        (PerceptronClassifier(), IRIS),
        (TarnClassifier(decay=1e-4, simplify=False), IRIS),
        (PerceptronRegressor(4, early_stopping=True), load_diabetes(return_X_y=True)),
    ):
        model.set_params(solver=solver, max_iter=40, random_state=1).fit(*data)
        assert model.score(*data) > (0.85 if len(data[0]) == 150 else 0.1)
        assert len(model.loss_curve_) == model.n_iter_ <= 40
        assert model.loss_ == model.loss_curve_[-1] < model.loss_curve_[0]


def test_tools_around_estimators():
    model = PerceptronClassifier(random_state=1)
    assert cross_val_score(make_pipeline(StandardScaler(), model), *IRIS).mean() > 0.9
    best = GridSearchCV(model, {"hidden_layer_sizes": [2, (6,)]}, n_jobs=2).fit(*IRIS).best_estimator_
    copy = pickle.loads(pickle.dumps(best))
    assert np.array_equal(copy.predict_proba(IRIS[0]), best.predict_proba(IRIS[0]))
    assert clone(best).fit(*IRIS).network_ == best.network_

    # The console can go on with the network, on the same inputs from 0 to 1.
    with kiln.Session("-s") as session:
        session.load("MLP", "net", best.network_)
        session.data("d", best.scaler_.transform(IRIS[0]), np.eye(3)[IRIS[1]])
        assert session("query score network net data d").endswith(f"right {150 * best.score(*IRIS):.0f}")


def test_tables_keep_the_names_of_their_columns():
    table = pytest.importorskip("pandas", reason="pandas is missing").DataFrame(IRIS[0], columns=[*"abcd"])
    places = KohonenMap((4, 3)).set_output(transform="pandas").fit_transform(table)
    assert list(places) == ["kohonenmap0", "kohonenmap1"] and len(places) == 150
    model = TarnClassifier(random_state=1).fit(table, IRIS[1])
    assert "<d is " in model.rules_ and model.explain(table.iloc[0]) == model.explain(IRIS[0][0])


def test_wrong_parameters_are_named():
    wrong = {
        "solver": "sgd",
        "penalty": "l2",
        "max_iter": 0,
        "hidden_layer_sizes": 0,
        "activation": "relu",
        "simplify": "no",
        "n_rules": 2.5,
        "map_size": 5,
    }
    for kind, name in itertools.product(KINDS, wrong):
        if name in kind().get_params():
            with pytest.raises(ValueError, match=f"'{name}' parameter of {kind.__name__}"):
                kind(**{name: wrong[name]}).fit(*IRIS)


def test_warnings():
    with pytest.warns(ConvergenceWarning):
        PerceptronClassifier(max_iter=1, tol=1e-6).fit(*IRIS)
    threading.Timer(0.3, os.kill, (os.getpid(), signal.SIGINT)).start()
    with pytest.warns(UserWarning, match="interrupted"):
        model = PerceptronClassifier(max_iter=10**9).fit(*IRIS)
    assert model.score(*IRIS) > 0.9


def test_rules_speak_of_what_the_network_knows():
    inputs = np.random.default_rng(1).random((300, 2)) * [40, 100]
    model = TarnClassifier(random_state=1).fit(inputs, np.where(inputs[:, 0] > 20, "warm", "cold"))
    assert "<x0 is " in model.rules_ and "x1" not in model.rules_
    assert model.rules(["degrees C", "%"]) == model.rules_.replace("x0", "degrees_C")
    degree, rule = model.explain([40, 50])[0]
    assert degree > 0.8 and "<x0 is large" in rule and ("warm is yes" in rule or "cold is no" in rule)
    assert model.rules([1, 2]) == model.rules_.replace("x0", "_1")
    for names in (["one"], ["same", "same"], ["", "b"]):
        with pytest.raises(ValueError, match="2 different names"):
            model.rules(names)
    with pytest.raises(ValueError, match=r"shape \(2,\), not \(3, 2\)"):
        model.explain(inputs[:3])
    model.rule_file_ = model.rule_file_.replace(model.rules_, "")
    assert (model.rules_, model.rules(["a", "b"]), model.explain([1, 2])) == ("", "", [])


def test_a_map_is_measured_in_the_units_of_its_inputs():
    small = KohonenMap(map_size=(4, 3), n_clusters=3, random_state=1).fit(IRIS[0])
    large = KohonenMap(map_size=(4, 3), n_clusters=3, random_state=1).fit(100 * IRIS[0] - 7)
    assert np.isclose(large.quantisation_error_, 100 * small.quantisation_error_)
    distances = np.linalg.norm(IRIS[0][:, np.newaxis] - small.prototypes_, axis=2)
    assert np.isclose(small.quantisation_error_, distances.min(axis=1).mean())
    assert np.array_equal(small.transform(IRIS[0]) @ [3, 1], distances.argmin(axis=1))
    assert np.array_equal(small.predict(IRIS[0]), large.labels_) and set(small.labels_) == {0, 1, 2}
    corner, *beside = small.prototypes_[[0, 1, 3]]
    assert np.isclose(small.u_matrix_[0, 0], np.linalg.norm(beside - corner, axis=1).mean())
