"""Kiln's networks as estimators of scikit-learn.

A fitted estimator keeps the text of its network file in `network_`: it can be pickled, and written to a
file for the console. The inputs of that network lie between 0 and 1: `scaler_` brings them there.

Estimators are fitted in a console that all those of a thread share.
"""

import csv
import io
import re
import threading
import warnings
from collections.abc import Iterator, Sequence
from contextlib import contextmanager
from dataclasses import dataclass
from numbers import Integral, Real
from typing import Any, Self

import numpy as np
from numpy.typing import ArrayLike, NDArray
from sklearn import base
from sklearn.cluster import AgglomerativeClustering
from sklearn.exceptions import ConvergenceWarning
from sklearn.metrics import pairwise_distances_argmin
from sklearn.preprocessing import MinMaxScaler
from sklearn.utils import check_random_state
from sklearn.utils._param_validation import Interval, StrOptions
from sklearn.utils.multiclass import check_classification_targets
from sklearn.utils.validation import check_is_fitted

from kiln.session import Matrix, Session

TERMS = {2: ["small", "large"], 3: ["small", "medium", "large"]}  # names of so many terms

COUNT = Interval(Integral, 1, None, closed="left")
COUNT_OF_TERMS = Interval(Integral, 2, None, closed="left")
NOT_NEGATIVE = Interval(Real, 0, None, closed="left")
LIMITS = {  # of the parameters of all estimators
    "solver": [StrOptions({"gradient", "rprop", "adam", "levenberg", "genetic"})],
    "penalty": [StrOptions({"quadratic", "forgetting"})],
    "hidden_layer_sizes": ["array-like", COUNT],
    "activation": [StrOptions({"tanh", "sigmoid", "linear", "tanh-gain", "sigmoid-gain", "linear-gain"})],
    "map_size": ["array-like"],
    "n_terms": [COUNT_OF_TERMS],
    "n_output_terms": [COUNT_OF_TERMS, None],
    "radius": [NOT_NEGATIVE, None],
    "validation_fraction": [Interval(Real, 0, 1, closed="neither")],
    "random_state": ["random_state"],
    **dict.fromkeys(["early_stopping", "fixed_terms", "simplify"], ["boolean"]),
    **dict.fromkeys(["max_iter", "batch_size", "n_iter_no_change"], [COUNT]),
    **dict.fromkeys(["population_size", "n_rules", "n_clusters"], [COUNT]),
    **dict.fromkeys(["tol", "decay"], [NOT_NEGATIVE]),
    **dict.fromkeys(["learning_rate", "weight_bound"], [Interval(Real, 0, None, closed="neither")]),
    **dict.fromkeys(["momentum", "mutation"], [Interval(Real, 0, 1, closed="both")]),
}

_own = threading.local()


@contextmanager
def console() -> Iterator[Session]:
    """The console of this thread, with nothing in it."""
    session: Session | None = getattr(_own, "session", None)
    if session is None or not session.alive:
        session = _own.session = Session("--strict")
    session("purge")
    yield session
    session("purge")


def _train(session: Session, line: str) -> dict[str, list[float]]:
    """Trains with the trainer `t`. Returns what its history holds; epochs are counted from 1."""
    try:
        session(line)
    except KeyboardInterrupt:
        warnings.warn("Training interrupted by user.")
    lists = re.findall(r"(\w+) {([^{}]+)}", str(session("query history t")))
    history = {name: [float(number) for number in text.split(",")] for name, text in lists}
    return history or {"epochs": [0], "training": [np.nan]}


def _outputs_of(network: str, kind: str, command: str, inputs: Matrix) -> Matrix:
    """What the command makes of inputs with the network in this file of a kind."""
    with console() as session:
        session.load(kind, "net", network)
        session.data("d", inputs)
        session(f"{command} network net input d output o")
        session("extract source o destination answers inputs {}")
        return session.array("answers")[1]


def _braces(values: Sequence[object]) -> str:
    return "{" + ", ".join(map(str, values)) + "}"


@dataclass(eq=False, repr=False, kw_only=True)
class _Trained(base.BaseEstimator):
    """Networks that learn from examples: how they are trained, and how they answer.

    The parameters are those of the commands `create` and `train`; README.md lists them.
    """

    solver: str = "rprop"
    max_iter: int = 200
    tol: float = 0.0
    learning_rate: float = 0.01
    momentum: float = 0.5
    batch_size: int = 1
    penalty: str = "quadratic"
    decay: float = 0.0
    early_stopping: bool = False
    validation_fraction: float = 0.1
    n_iter_no_change: int = 10
    population_size: int = 50
    weight_bound: float = 2.0
    mutation: float = 0.01
    random_state: Any = None

    _parameter_constraints = LIMITS

    def _description(self, inputs: int, outputs: int) -> str:
        """What to `create` for so many inputs and outputs."""
        raise NotImplementedError

    def _conclude(self, session: Session) -> None:
        """What to do with the trained network `net` and its data set `learn`."""

    def _learn(self, inputs: Matrix, targets: Matrix) -> None:
        self._validate_params()
        self.scaler_ = MinMaxScaler().fit(inputs)
        seed = check_random_state(self.random_state).randint(2**31 - 1)
        description = self._description(inputs.shape[1], targets.shape[1])
        with console() as session:
            session.data("given", self.scaler_.transform(inputs), targets)
            session(f"shuffle source given destination all seed {seed}")
            session(f"create {description} alias net seed {seed}")
            history = _train(session, self._training(session, seed))
            self.network_ = session.save("MLP", "net")
            self._conclude(session)
        self.n_iter_ = int(history["epochs"][-1])
        self.loss_curve_, self.loss_ = history["training"], history["training"][-1]
        if self.loss_ > self.tol > 0:
            warnings.warn(f"an error of {self.loss_} after {self.n_iter_} epochs", ConvergenceWarning)

    def _training(self, session: Session, seed: int) -> str:
        """Makes the trainer `t` and the data set `learn`. Returns the command that trains."""
        line = f"train alias t data learn terminating {self.tol}"
        if self.early_stopping:
            shares = _braces([1 - self.validation_fraction, self.validation_fraction])
            stratified = f"shares {shares} stratified {base.is_classifier(self)}"
            session(f"divide source all destination {{learn, judge}} {stratified}")
            line += f" validation judge patience {self.n_iter_no_change}"
        else:
            session("copy source all destination learn")
        if self.solver == "genetic":
            bounds = f"minweight {-self.weight_bound} maxweight {self.weight_bound}"
            session(f"create GATrainer alias t network net population {self.population_size} {bounds}")
            line += f" generations {self.max_iter} mutation {self.mutation} crossover -1"
            return f"{line} selection Tournament seed {seed}"
        session("create BPTrainer alias t network net")
        line += f" epochs {self.max_iter} method {self.solver}"
        if self.decay:
            line += f" penalty {self.penalty} decay {self.decay}"
        if self.solver in ("gradient", "adam"):
            line += f" batch {self.batch_size} LearningRate {self.learning_rate}"
        return line + (f" Momentum {self.momentum}" if self.solver == "gradient" else "")

    def _answers(self, X: ArrayLike) -> Matrix:
        check_is_fitted(self)
        inputs = self.scaler_.transform(self._validate_data(X, reset=False))
        return _outputs_of(self.network_, "MLP", "recall", inputs)


class _Classifier(base.ClassifierMixin):
    """One output for each class, which learns 1 for it and 0 for others."""

    def fit(self, X: ArrayLike, y: ArrayLike) -> Self:
        """Learns classes y (rows,) of inputs X (rows, features)."""
        inputs, classes = self._validate_data(X, y, dtype=np.float64)
        check_classification_targets(classes)
        self.classes_, codes = np.unique(classes, return_inverse=True)
        self._learn(inputs, np.eye(len(self.classes_))[codes])
        return self

    def predict_proba(self, X: ArrayLike) -> Matrix:
        """Shares (rows, classes) of the outputs in their sum, in the order of `classes_`."""
        answers = np.maximum(self._answers(X), 1e-12)
        return answers / answers.sum(axis=1, keepdims=True)

    def predict(self, X: ArrayLike) -> NDArray[Any]:
        """The classes (rows,) of the largest outputs."""
        best = self.predict_proba(X).argmax(axis=1)
        return self.classes_[best]


class _Regressor(base.RegressorMixin, base.MultiOutputMixin):
    """Outputs from 0.1 to 0.9 for the least to the largest number learned, as `target_scaler_` says."""

    def fit(self, X: ArrayLike, y: ArrayLike) -> Self:
        """Learns numbers y (rows,) or (rows, outputs) from inputs X (rows, features)."""
        inputs, numbers = self._validate_data(X, y, dtype=np.float64, multi_output=True, y_numeric=True)
        self._shape = numbers.shape[1:]
        numbers = numbers.reshape(len(numbers), -1)
        self.target_scaler_ = MinMaxScaler((0.1, 0.9)).fit(numbers)
        self._learn(inputs, self.target_scaler_.transform(numbers))
        return self

    def predict(self, X: ArrayLike) -> Matrix:
        """Numbers (rows,) or (rows, outputs), as they were learned."""
        answers = self._answers(X)
        return self.target_scaler_.inverse_transform(answers).reshape(len(answers), *self._shape)


@dataclass(eq=False, repr=False)
class _Perceptron(_Trained):
    hidden_layer_sizes: Sequence[int] = (10,)
    activation: str = "tanh"

    def _description(self, inputs: int, outputs: int) -> str:
        hidden = list(np.atleast_1d(self.hidden_layer_sizes))
        last = "sigmoid" if base.is_classifier(self) else "linear"
        functions = _braces([self.activation] * len(hidden) + [last])
        sizes = f"inputs {inputs} layers {len(hidden) + 2} hidden {_braces(hidden)} outputs {outputs}"
        return f"MLP {sizes} bias true functions {functions}"


@dataclass(eq=False, repr=False, kw_only=True)
class _Tarn(_Trained):
    learning_rate: float = 0.1
    n_terms: int = 3
    n_output_terms: int | None = None
    n_rules: int = 8
    fixed_terms: bool = True
    simplify: bool = True

    @property
    def rules_(self) -> str:
        """The rules that were found, in words, with an empty line between them."""
        return self.rules()

    def rules(self, names: Sequence[str] | None = None) -> str:
        """The same rules with other names (features,) for the inputs, each of its own."""
        check_is_fitted(self)
        if names is None or not _rules_of(self.rule_file_):
            return _rules_of(self.rule_file_)
        if not len({str(name).strip() for name in names} - {""}) == len(names) == self.n_features_in_:
            raise ValueError(f"rules takes {self.n_features_in_} different names, not {list(names)}")
        with console() as session:
            session.load("FuzzyRules", "found", self.rule_file_)
            session("ritarn rules found network net")
            self._make_labels(session, names)
            session("retarn network net labels words rules named")
            return _rules_of(session.save("FuzzyRules", "named"))

    def explain(self, x: ArrayLike) -> list[tuple[float, str]]:
        """How far each rule is met by inputs x (features,), from 0 to 1, and the rule; most first."""
        rules, count = self.rules_, self.n_features_in_
        if np.shape(x) not in ((count,), (1, count)):
            raise ValueError(f"explain takes inputs of shape ({count},), not {np.shape(x)}")
        row = self.scaler_.transform(np.asarray(x).reshape(1, count))[0]
        with console() as session:
            session.load("FuzzyRules", "found", self.rule_file_)
            fired = session(f"query fired rules found inputs {_braces(row)}") if rules else []
        return sorted(zip(fired, rules.split("\n\n")), reverse=True)

    def _description(self, inputs: int, outputs: int) -> str:
        terms = _braces([self.n_terms] * inputs), _braces([self._terms_of_outputs()] * outputs)
        sizes = f"inputs {inputs} condition {terms[0]} outputs {outputs} action {terms[1]}"
        return f"Tarn {sizes} rules {self.n_rules}"

    def _terms_of_outputs(self) -> int:
        return self.n_output_terms or (2 if base.is_classifier(self) else 3)

    def _training(self, session: Session, seed: int) -> str:
        return super()._training(session, seed) + (" freeze {centres}" if self.fixed_terms else "")

    def _conclude(self, session: Session) -> None:
        names = getattr(self, "feature_names_in_", [f"x{i}" for i in range(self.n_features_in_)])
        self._make_labels(session, list(names))
        data = "data learn rounds 10" if self.simplify else ""
        session(f"retarn network net labels words rules found method NodeLocation {data}")
        self.rule_file_ = session.save("FuzzyRules", "found")

    def _make_labels(self, session: Session, names: Sequence[str]) -> None:
        """Makes labels `words` of the network `net`; names may be any text."""
        is_classifier = base.is_classifier(self)
        outputs = (
            self.classes_ if is_classifier else [f"y{i}" for i in range(self.target_scaler_.n_features_in_)]
        )
        names = [str(name) for name in (*names, *outputs)]
        table = io.StringIO()
        # No column is called by what may be the number of another.
        csv.writer(table).writerows([["_" * name.isdigit() + name for name in names], [0] * len(names)])
        columns = _braces(range(self.n_features_in_, len(names)))
        session.load("CSV", "names", table.getvalue(), f"header on outputs {columns}")
        yes = {2: ["no", "yes"]} if is_classifier else TERMS
        words = {"terms": TERMS.get(self.n_terms), "outputterms": yes.get(self._terms_of_outputs())}
        tags = [f"{tag} {_braces(terms)}" for tag, terms in words.items() if terms]
        session(f"labeltarn network net labels words data names {' '.join(tags)}")


def _rules_of(file: str) -> str:
    return file.partition("[RuleList]")[2].partition("[~RuleList]")[0].strip()


class PerceptronClassifier(_Classifier, _Perceptron):
    """A perceptron that tells classes apart.

    >>> from sklearn.datasets import load_iris
    >>> X, y = load_iris(return_X_y=True)
    >>> model = PerceptronClassifier(hidden_layer_sizes=(6,), random_state=1).fit(X[::2], y[::2])
    >>> model.score(X[1::2], y[1::2]) > 0.9
    True
    """


class PerceptronRegressor(_Regressor, _Perceptron):
    """A perceptron that learns numbers. Its last layer is linear.

    >>> X = np.linspace(0, 6, 50)[:, np.newaxis]
    >>> model = PerceptronRegressor(solver="levenberg", max_iter=50, random_state=1).fit(X, np.sin(X))
    >>> model.score(X, np.sin(X)) > 0.99
    True
    """


class TarnClassifier(_Classifier, _Tarn):
    """A fuzzy network that tells classes apart, and says why.

    >>> X = np.random.default_rng(1).random((200, 2))
    >>> model = TarnClassifier(random_state=1).fit(X, np.where(X[:, 0] > 0.5, "warm", "cold"))
    >>> print(model.rules(["temperature", "humidity"]).partition(" and")[0])
    if <temperature is small 2.06908>
      then <cold is yes 11.1833>
    >>> degree, rule = model.explain([0.9, 0.5])[0]
    >>> degree > 0.5, "<warm is yes" in rule or "<cold is no" in rule
    (True, True)
    """


class TarnRegressor(_Regressor, _Tarn):
    """A fuzzy network that learns numbers, and says why.

    >>> X = np.random.default_rng(1).random((200, 2))
    >>> model = TarnRegressor(solver="levenberg", max_iter=30, random_state=1).fit(X, 7 * X[:, 1])
    >>> model.score(X, 7 * X[:, 1]) > 0.99, "x1" in model.rules_, "x0" in model.rules_
    (True, True, False)
    """


@dataclass(eq=False, repr=False)
class KohonenMap(
    base.ClassNamePrefixFeaturesOutMixin, base.TransformerMixin, base.ClusterMixin, base.BaseEstimator
):
    """A map on which rows that are alike stand near each other.

    Units whose prototypes are alike are joined to `n_clusters` clusters. All features are scaled alike, so
    that distances keep their proportions; `radius` is half the map along each side unless it is given.

    >>> X = [[0, 0], [0, 1], [5, 5], [5, 6]]
    >>> model = KohonenMap(map_size=(3, 2), n_clusters=2, random_state=1).fit(X)
    >>> model.labels_[0] == model.labels_[1] != model.labels_[2] == model.labels_[3]
    True
    >>> model.u_matrix_.shape, model.transform(X).shape
    ((3, 2), (4, 2))
    """

    map_size: Sequence[int] = (8, 8)
    n_clusters: int = 8
    max_iter: int = 100
    learning_rate: float = 0.2
    radius: float | None = None
    random_state: Any = None

    _parameter_constraints = LIMITS

    def fit(self, X: ArrayLike, y: object = None) -> Self:
        """Lays inputs X (rows, features) out on the map."""
        self._validate_params()
        inputs = self._validate_data(X, dtype=np.float64)
        self._least, self._span = inputs.min(), np.ptp(inputs) or 1.0
        seed = check_random_state(self.random_state).randint(2**31 - 1)
        size = list(self.map_size)
        reach = _braces([side / 2 if self.radius is None else self.radius for side in size])
        shape = f"inputs {inputs.shape[1]} dimensions {len(size)} mapdim {_braces(size)}"
        rate = f"LearningRate {self.learning_rate} neighbourhood {reach}"
        with console() as session:
            session.data("d", self._scaled(inputs))
            session(f"create Kohonen alias net {shape} seed {seed}")
            session("create KohonenTrainer alias t network net")
            history = _train(session, f"train alias t data d epochs {self.max_iter} {rate}")
            score = session("query score network net data d").split()
            self.network_ = session.save("Kohonen", "net")
        self.n_iter_ = int(history["epochs"][-1])
        self.quantisation_error_ = float(score[3]) * self._span
        self.topographic_error_ = float(score[5])
        self.prototypes_ = self._least + self._span * _prototypes_in(self.network_)
        self._n_features_out = len(size)
        self._find_clusters(self._units(X))
        return self

    def transform(self, X: ArrayLike) -> Matrix:
        """Coordinates (rows, dimensions) of the nearest units, counted from 0."""
        return self._places(X)

    def predict(self, X: ArrayLike) -> NDArray[np.int64]:
        """The clusters (rows,) of the nearest units."""
        return self.unit_labels_[self._units(X)]

    @property
    def u_matrix_(self) -> Matrix:
        """Mean distances (map_size) of each prototype to those of the units beside it."""
        check_is_fitted(self)
        grid = self.prototypes_.reshape(*self.map_size, -1)
        total, count = np.zeros(grid.shape[:-1]), np.zeros(grid.shape[:-1])
        for axis in range(total.ndim):
            steps = np.linalg.norm(np.diff(grid, axis=axis), axis=-1).swapaxes(0, axis)
            for sums, terms in ((total, steps), (count, 1)):
                sums.swapaxes(0, axis)[1:] += terms
                sums.swapaxes(0, axis)[:-1] += terms
        return total / np.maximum(count, 1)

    def _scaled(self, inputs: Matrix) -> Matrix:
        return (inputs - self._least) / self._span

    def _places(self, X: ArrayLike) -> Matrix:
        check_is_fitted(self)
        inputs = self._scaled(self._validate_data(X, dtype=np.float64, reset=False))
        return _outputs_of(self.network_, "Kohonen", "map", inputs)

    def _units(self, X: ArrayLike) -> NDArray[np.int64]:
        return np.ravel_multi_index(tuple(self._places(X).astype(int).T), tuple(self.map_size))

    def _find_clusters(self, units: NDArray[np.int64]) -> None:
        """Joins the units that are nearest to rows; each other goes with the most alike of these."""
        winners = np.unique(units)
        joining = AgglomerativeClustering(min(self.n_clusters, len(winners)))
        clusters = joining.fit_predict(self.prototypes_[winners]) if len(winners) > 1 else np.zeros(1, int)
        nearest = pairwise_distances_argmin(self.prototypes_, self.prototypes_[winners])
        self.unit_labels_ = clusters[nearest]
        self.labels_ = self.unit_labels_[units]


def _prototypes_in(file: str) -> Matrix:
    """Prototypes (units, features) from the file of a map, whose matrix has a row for each feature."""
    matrix = file.partition("[Matrix Weights ]")[2].partition("[~Matrix]")[0]
    return np.loadtxt(matrix.splitlines(), comments="/*", ndmin=2).T
