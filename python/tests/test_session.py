"""Sessions: exactness, threads, interruption, and every way to an end."""

import copy
import doctest
import gc
import os
import pathlib
import pickle
import signal
import threading
import time
from concurrent.futures import ThreadPoolExecutor

import numpy as np
import pytest

import kiln
import kiln.session

FOR_EVER = "train alias teacher data d epochs 1000000000"


@pytest.fixture
def session():
    with kiln.Session("-s") as session:
        yield session


@pytest.fixture
def trainer(session):
    session.data("d", [[0.0], [1.0]], [1.0, 0.0])
    session("create MLP alias net inputs 1 layers 2 hidden {} outputs 1 bias true seed 1")
    session("create BPTrainer alias teacher network net")
    return session


def test_examples_of_the_documentation():
    assert doctest.testmod(kiln.session).failed == 0


def test_arrays_come_back_bit_for_bit(session):
    bits = np.random.default_rng(1).integers(0, 2**64, (500, 6), dtype=np.uint64).view(float)
    bits[0] = [-0.0, 5e-324, np.inf, -np.inf, np.nan, 1.7976931348623157e308]
    session.data("d", bits[:, :4], bits[:, 4:])
    session.data("few", np.empty((0, 3)))
    inputs, outputs = session.array("d")
    there = np.hstack([inputs, outputs])
    assert np.array_equal(np.isnan(there), np.isnan(bits))
    assert np.nan_to_num(there, nan=0).tobytes() == np.nan_to_num(bits, nan=0).tobytes()
    assert [side.shape for side in session.array("few")] == [(0, 3), (0, 0)]
    with pytest.raises(ValueError):
        session.data("odd", [[1], [2]], [1])


def test_labels_do_not_cost_the_outputs(session):
    session.load("CSV", "d", 'a,"b, c",k\n1,2,"x ""y""\nz"\n0.1,4,w\n', "outputs {1} labels {k}")
    assert [side.tolist() for side in session.array("d")] == [[[1], [0.1]], [[2], [4]]]


def test_results_are_text_numbers_and_lists(session):
    session.data("d", [[0, 1]], [[1, 0]])
    assert session("query aliasexists d") == "true"
    assert session("query objects") == ["d Data"]
    session("create MLP alias net inputs 2 layers 2 hidden {} outputs 2 bias true seed 1")
    assert sorted(map(sum, session("query confusion network net data d"))) == [0, 1]
    session("create Kohonen alias k inputs 2 dimensions 1 mapdim {2} seed 1")
    session("create KohonenTrainer alias guide network k")
    assert session("train alias guide data d epochs 3 LearningRate 0.1 neighbourhood {1}") is None
    with pytest.raises(kiln.Error, match="^epochs ten is no whole number"):
        session("train alias guide data d epochs ten LearningRate 0.1 neighbourhood {1}")
    with pytest.raises(ValueError):
        session("purge\npurge")


def test_system_commands_write_what_they_like_and_read_nothing(session):
    for text in (r"one\n two", r"a\nKiln>> OK\n\n", "Kiln>> Kiln>>b", "Error: none"):
        first, last = text.split()
        written = session(f" @printf '{first}'; sleep 0.02; printf '{last}'")
        assert written == (first + last).replace(r"\n", "\n")
        assert session("query objects") == []
    assert session("!!") == []
    assert session("@cat") is session("@") is None
    assert session("@printf two") == "two" and "two" in session(" !!")


def test_threads_take_turns(session):
    def round_trip(n):
        session.data(f"d{n}", np.full((n, 1), n))
        return session.array(f"d{n}")[0].tolist()

    with ThreadPoolExecutor(8) as threads:
        assert list(threads.map(round_trip, range(100))) == [[[n]] * n for n in range(100)]


def test_an_interrupted_training_keeps_what_it_has_reached(trainer):
    threading.Timer(0.2, trainer.interrupt).start()
    assert 0 < trainer(FOR_EVER) < 0.1
    assert trainer("query score network net data d").endswith("right 2")


def test_interrupts_at_any_moment_leave_answers_in_their_places(session):
    session.interrupt()
    done = threading.Event()

    def annoy():
        while not done.wait(1e-4):
            session.interrupt()

    thread = threading.Thread(target=annoy)
    thread.start()
    try:
        for n in range(300):
            assert session(f"@echo {n}").strip() == str(n)
            assert session(f"query aliasexists x{n}") == "false"
    finally:
        done.set()
        thread.join()


def test_an_interrupt_from_elsewhere_leaves_answers_in_their_places(session):
    for line, answer in (("query objects", []), ("", None), ("query aliasexists d", "false")):
        for _ in range(2):
            os.kill(session._process.pid, signal.SIGINT)
            time.sleep(0.01)
        assert session(line) == answer


def test_control_c_ends_the_training_and_not_the_session(trainer):
    threading.Timer(0.2, os.kill, (os.getpid(), signal.SIGINT)).start()
    with pytest.raises(KeyboardInterrupt):
        trainer(FOR_EVER)
    assert trainer("query classof net") == "MLP"


def test_a_program_that_ends_says_why():
    session = kiln.Session("-s")
    with pytest.raises(kiln.Error, match="status 0: without a word"):
        session("quit")
    assert not session.alive
    with pytest.raises(kiln.Error, match="kiln has ended"):
        session("purge")
    with pytest.raises(kiln.Error, match="cannot open file nothing.kiln"):
        kiln.Session(pathlib.Path("nothing.kiln"))
    with kiln.Session() as session, pytest.raises(kiln.Error, match="status -9: one"):
        session("@echo one; kill -9 $PPID")


def test_what_cannot_become_a_session(session, monkeypatch):
    for option in ("-q", "-sb", "--quiet", "--batch", "-"):
        with pytest.raises(ValueError):
            kiln.Session(option)
    for duplicate in (copy.copy, copy.deepcopy, pickle.dumps):
        with pytest.raises(TypeError, match="a session cannot be"):
            duplicate(session)
    monkeypatch.setenv("KILN", "/nowhere/kiln")
    with pytest.raises(kiln.Error, match="/nowhere/kiln"):
        kiln.Session()


def test_a_session_that_nobody_holds_ends_its_program():
    session = kiln.Session()
    program = session("@echo $PPID")
    assert os.path.exists(f"/proc/{int(program)}")
    del session
    gc.collect()
    assert not os.path.exists(f"/proc/{int(program)}")


def test_a_forked_process_leaves_the_session_alone(session):
    child = os.fork()
    if child == 0:
        with pytest.raises(kiln.Error, match="belongs to the process"):
            session("purge")
        session.close()
        os._exit(0 if not session.alive else 1)
    assert os.waitpid(child, 0)[1] == 0
    assert session("query objects") == []
