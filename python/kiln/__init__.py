"""Kiln from Python.

`Session` talks to a console of its own, and needs NumPy alone. The models of `kiln.estimators` follow the
conventions of scikit-learn, which has to be there for them.
"""

from kiln.session import Error, Session

__all__ = ["Error", "Session"]
