"""Calls on large arrays, and fills of them, that several threads share."""

import os
import threading
import warnings

import numpy as np
import pexquo
import pytest
from pexquo import _pexquo

N = 3 * 16384 + 77  # three shares and a part of one


@pytest.fixture(autouse=True)
def one_thread_afterwards():
    yield
    pexquo.set_threads(1)


def alone_and_shared(call, threads=3):
    results = []
    for n in (1, threads):
        pexquo.set_threads(n)
        results.append(call())
    return results


def same(a, b):
    if isinstance(a, tuple):
        return len(a) == len(b) and all(map(same, a, b))
    return a.dtype == b.dtype and a.shape == b.shape and a.tobytes() == b.tobytes()


def arguments(function, types):
    generator = np.random.default_rng(5)
    values = []
    for t in types[:function.nin]:
        v = generator.uniform(0.01, 0.99, N)
        values.append((v + 1j * v[::-1] if t in "FD" else v).astype(t))
    values[0][[0, 16384, N - 1]] = [2, 0, np.inf]
    return values


@pytest.mark.parametrize("name", _pexquo.functions)
def test_the_bits_of_one_thread(name):
    function = _pexquo.functions[name]
    for types in function.types:
        values = arguments(function, types)
        with np.errstate(all="ignore"):
            alone, shared = alone_and_shared(lambda: function(*values))
        assert same(alone, shared), types


X = np.random.default_rng(6).uniform(-0.9, 0.9, 2 * N)
LAYOUTS = {
    "strided": lambda: pexquo.exp(X[::2]),
    "reversed": lambda: pexquo.exp(X[::-1]),
    "two dimensions": lambda: pexquo.exp(X.reshape(2, N).T),
    "broadcast": lambda: pexquo.add(X.reshape(2, N), X[:N]),
    "cast": lambda: pexquo.exp(X.astype(np.float32), dtype=np.float64),
    "a constant": lambda: pexquo.power(abs(X), 0.3),
    "in place": lambda: (lambda y: pexquo.exp(y, out=y))(X.copy()),
    "shifted in place": lambda: (lambda y: pexquo.exp(y[:-1], out=y[1:]))(X.copy()),
    "where": lambda: pexquo.exp(X, out=np.zeros_like(X), where=X > 0),
    "reduced": lambda: np.array(pexquo.hypot.ufunc().reduce(X)),
    "accumulated": lambda: pexquo.hypot.ufunc().accumulate(X),
    "inner loop": lambda: pexquo.hypot.ufunc().reduce(X.reshape(2, N)),
}


@pytest.mark.parametrize("layout", LAYOUTS)
def test_layouts(layout):
    alone, shared = alone_and_shared(LAYOUTS[layout])
    assert same(alone, shared)


@pytest.mark.parametrize("place", [0, 16384, N - 1])
@pytest.mark.parametrize("value, kind", [(0, "divide by zero"), (-1, "invalid value")])
def test_warnings_are_the_callers(place, value, kind):
    x = np.ones(N)
    x[place] = value
    pexquo.set_threads(3)
    with pytest.warns(RuntimeWarning, match=kind):
        pexquo.log(x)
    with np.errstate(all="ignore"):
        pexquo.log(x)
    with warnings.catch_warnings():
        warnings.simplefilter("error")
        pexquo.log(np.ones(N))  # nothing is left of it in any thread


def test_errors_are_collected_in_order():
    x = np.ones(N)
    places = [1, 16384, 20000, N - 1]
    x[places] = -1
    pexquo.set_threads(3)
    with pexquo.errors() as errors:
        pexquo.log(x)
    assert [e.index for e in errors] == [(i,) for i in places]


def test_calls_from_many_threads():
    pexquo.set_threads(3)
    x = np.linspace(0.1, 5, N)
    expected, wrong = pexquo.log(x), []

    def work():
        for _ in range(20):
            if not np.array_equal(pexquo.log(x), expected):
                wrong.append(1)

    workers = [threading.Thread(target=work) for _ in range(4)]
    for worker in workers:
        worker.start()
    for worker in workers:
        worker.join()
    assert not wrong


@pytest.mark.filterwarnings("ignore:This process")
def test_a_forked_child_goes_on_alone():
    pexquo.set_threads(3)
    x = np.linspace(0.1, 5, N)
    expected = pexquo.log(x)
    child = os.fork()
    if child == 0:
        os._exit(0 if np.array_equal(pexquo.log(x), expected) else 1)
    assert os.waitstatus_to_exitcode(os.waitpid(child, 0)[1]) == 0


def test_numbers_of_threads():
    assert pexquo.get_threads() == 1
    pexquo.set_threads(np.int64(5))
    assert pexquo.get_threads() == 5
    pexquo.set_threads(0)
    assert pexquo.get_threads() == len(os.sched_getaffinity(0))
    for wrong, error in ((-1, ValueError), (4097, ValueError), (1.5, TypeError), ("2", TypeError)):
        with pytest.raises(error):
            pexquo.set_threads(wrong)
    assert pexquo.get_threads() == len(os.sched_getaffinity(0))


# ---- Streams. ----

DRAWS = {
    "random": lambda s, n, t: s.random(n, dtype=t),
    "uniform": lambda s, n, t: s.uniform(-2, 3, n, dtype=t),
    "icdf": lambda s, n, t: s.normal(4, 2, n, dtype=t),
    "boxmuller": lambda s, n, t: s.normal(4, 2, n, dtype=t, method="boxmuller"),
    "boxmuller2": lambda s, n, t: s.normal(4, 2, n, dtype=t, method="boxmuller2"),
    "exponential": lambda s, n, t: s.exponential(3, n, dtype=t),
    "laplace": lambda s, n, t: s.laplace(1, 2, n, dtype=t),
    "weibull": lambda s, n, t: s.weibull(1.8, n, dtype=t),
    "cauchy": lambda s, n, t: s.cauchy(1, 2, n, dtype=t),
    "rayleigh": lambda s, n, t: s.rayleigh(2, n, dtype=t),
    "lognormal": lambda s, n, t: s.lognormal(0.5, 0.25, n, dtype=t),
    "gumbel": lambda s, n, t: s.gumbel(1, 2, n, dtype=t),
    "integers": lambda s, n, t: s.integers(0, 100, n, dtype=t.replace("f", "i")),
    "bernoulli": lambda s, n, t: s.bernoulli(0.3, n, dtype=t.replace("f", "i")),
    "geometric": lambda s, n, t: s.geometric(0.3, n),
    "gamma": lambda s, n, t: s.gamma(2.5, 2, n, dtype=t),
    "poisson": lambda s, n, t: s.poisson(20, n),
}


QUASI_RANDOM = ("sobol", "niederr")


@pytest.mark.parametrize("generator", pexquo.generators())
def test_streams_give_the_bits_of_one_thread_and_go_on_so(generator):
    for name, draw in DRAWS.items():
        for dtype in ("f8", "f4"):
            kept = []

            def fill():
                how = {"dimension": 7} if generator in QUASI_RANDOM else {"seed": 17}
                stream = pexquo.Stream(generator, **how)
                stream.random(5)
                numbers = [draw(stream, n, dtype) for n in (N, 3, N + 1)]
                # Where the circle of R250's words begins is its own business.
                words = stream.copy().raw(600).tolist() if generator == "r250" else stream.to_bytes()
                kept.append((words, stream.normal(size=3, method="boxmuller2").tolist()))
                return tuple(numbers)

            alone, shared = alone_and_shared(fill)
            assert same(alone, shared), (name, dtype)
            assert kept[0] == kept[1], (name, dtype)

