"""The functions: every one in every type and tier is the kernel's, whatever the shape and layout."""

import copy
import ctypes
import math
import os
import pickle
import threading

import numpy as np
import pexquo
import pytest
from pexquo import _pexquo

LIBRARY = ctypes.CDLL(os.environ.get("PEXQUO_LIBRARY", "libpexquo.so.1"))
LETTERS = {"f": "s", "d": "d", "F": "c", "D": "z"}
SUFFIXES = {"f": {"ep": "11", "la": "21", "ha": "HA"}, "d": {"ep": "26", "la": "50", "ha": "HA"}}
FUNCTIONS = _pexquo.functions

# Where NumPy or the mathematics library has the function under the name, or one to be made of it.
REFERENCES = {
    name: getattr(np, name) for name in FUNCTIONS if isinstance(getattr(np, name, None), np.ufunc)
} | {
    "angle": np.angle,
    "nearbyint": np.rint,
    "round_away": lambda x: np.copysign(np.floor(np.abs(x) + 0.5), x),
    "sincos": lambda x: (np.sin(x), np.cos(x)),
    "powx": np.power,
    "pow2o3": lambda x: np.cbrt(x) ** 2,
    "pow3o2": lambda x: np.sqrt(x) ** 3,
    "invsqrt": lambda x: 1 / np.sqrt(x),
    "invcbrt": lambda x: 1 / np.cbrt(x),
    "erf": np.vectorize(math.erf),
    "erfc": np.vectorize(math.erfc),
    "cdfnorm": np.vectorize(lambda x: math.erfc(-x / math.sqrt(2)) / 2),
    "mulbyconj": lambda x, y: x * np.conj(y),
    "cis": lambda x: np.exp(1j * x),
}
INVERSES = {"erfinv": math.erf, "erfcinv": math.erfc,
            "cdfnorminv": lambda x: math.erfc(-x / math.sqrt(2)) / 2}


def loops():
    """(name, tier, types of arguments, types of results) of every loop."""
    for name, function in FUNCTIONS.items():
        for tier in ("ha", "la", "ep"):
            for types in function.ufunc(tier).types:
                arguments, results = types.split("->")
                yield name, tier, arguments, results


def symbol(name, tier, arguments, results):
    """The library's entry; plain functions have no tiers."""
    catalogue = FUNCTIONS[name]._catalogue
    letter = results[0] if arguments[0] in "fd" and results[0] in "FD" else arguments[0]
    plain = f"_pex{LETTERS[letter]}{catalogue}"
    for found in (plain, f"{plain}_{SUFFIXES['f' if letter in 'fF' else 'd'][tier]}"):
        if hasattr(LIBRARY, found):
            return getattr(LIBRARY, found)
    raise LookupError(plain)


class Complex8(ctypes.Structure):
    _fields_ = [("re", ctypes.c_float), ("im", ctypes.c_float)]


class Complex16(ctypes.Structure):
    _fields_ = [("re", ctypes.c_double), ("im", ctypes.c_double)]


def as_number(value):
    real = {"f": ctypes.c_float, "d": ctypes.c_double}
    kind = value.dtype.char
    if kind in real:
        return real[kind](value)
    return (Complex8 if kind == "F" else Complex16)(value.real, value.imag)


def kernel(name, tier, values, results):
    """The library's results, straight from the entry."""
    entry = symbol(name, tier, "".join(v.dtype.char for v in values), results)
    out = [np.empty(values[0].shape, t) for t in results]
    arguments = [v.ctypes.data_as(ctypes.c_void_p) for v in values]
    if name == "powx":
        arguments[1] = as_number(values[1][0])
    ordered = out[::-1] if name == "modf" else out
    entry(ctypes.c_int32(len(values[0])), *arguments,
          *(o.ctypes.data_as(ctypes.c_void_p) for o in ordered))
    return out


def sample(types, n=700, seed=3):
    """Arguments from (0, 1), where every function but arccosh is defined, and some special ones."""
    generator = np.random.default_rng(seed)
    values = []
    for t in types:
        v = generator.uniform(0.01, 0.99, n).astype(t)
        if t in "FD":
            v = v + 1j * generator.uniform(0.01, 0.99, n).astype(t)
        values.append(v.astype(t))
    values[0][5:9] = [0, 2, np.inf, -1]
    return values


def same(a, b):
    return a.dtype == b.dtype and a.shape == b.shape and a.tobytes() == b.tobytes()


def called(name, tier, values, **kwargs):
    with np.errstate(all="ignore"):
        result = FUNCTIONS[name](*values, tier=tier, **kwargs)
    return list(result) if isinstance(result, tuple) else [result]


@pytest.mark.parametrize("name", FUNCTIONS)
def test_every_type_and_tier_is_the_kernels(name):
    for function, tier, arguments, results in loops():
        if function != name or (name == "conjugate" and arguments in "fd"):
            continue
        values = sample(arguments)
        if name == "powx":
            values[1][:] = values[1][0]
        expected = kernel(name, tier, values, results)
        strided = []
        for v in values:
            wide = np.zeros((len(v), 3), v.dtype)
            wide[:, 1] = v
            strided.append(wide[:, 1])
        unaligned = []
        for v in values:
            raw = np.zeros(v.nbytes + 1, np.uint8)[1:].view(v.dtype)
            raw[:] = v
            unaligned.append(raw)
        layouts = {
            "contiguous": (values, slice(None)),
            "strided": (strided, slice(None)),
            "reversed": ([v[::-1] for v in values], slice(None, None, -1)),
            "swapped bytes": ([v.astype(v.dtype.newbyteorder()) for v in values], slice(None)),
            "unaligned": (unaligned, slice(None)),
            "two dimensions": ([v.reshape(7, 100).T for v in values], None),
        }
        for layout, (given, order) in layouts.items():
            for r, e in zip(called(name, tier, given), expected):
                want = e.reshape(7, 100).T if order is None else e[order]
                assert same(np.ascontiguousarray(r), np.ascontiguousarray(want)), (tier, layout)
        one = called(name, tier, [v[20] for v in values])
        assert all(same(r, e[20]) for r, e in zip(one, expected)), tier


@pytest.mark.parametrize("name", REFERENCES)
def test_names_mean_what_numpy_means(name):
    for function, tier, arguments, results in loops():
        if function != name:
            continue
        values = [v[100:] for v in sample(arguments)]
        if name == "arccosh":
            values = [1 + v for v in values]
        found = called(name, tier, values)
        wide = [v.astype("d" if v.dtype.char in "fd" else "D") for v in values]
        expected = REFERENCES[name](*wide)
        expected = expected if isinstance(expected, tuple) else (expected,)
        relative = {"f": 2.0**-10, "d": 2.0**-25}["f" if arguments[0] in "fF" else "d"]
        if tier != "ep":
            relative = 1e-6 if arguments[0] in "fF" else 1e-14
        for f, e in zip(found, expected, strict=True):
            np.testing.assert_allclose(f, e, rtol=relative, atol=relative, err_msg=f"{tier}")


@pytest.mark.parametrize("name", INVERSES)
def test_inverse_error_functions(name):
    p = np.linspace(0.01, 0.99, 50)
    back = [INVERSES[name](x) for x in FUNCTIONS[name](p)]
    np.testing.assert_allclose(back, p, rtol=4e-15)


def test_no_name_of_numpy_for_something_else():
    compared = {"add", "subtract", "divide", "multiply"} | set(REFERENCES)
    for name in FUNCTIONS:
        assert not hasattr(np, name) or name in compared, name


# ---- As NumPy's functions. ----

CASES = {
    "integers": [1, 2, 3],
    "small integers": np.array([1, 2], np.int8),
    "booleans": np.array([True, False]),
    "large integers": np.array([1, 2], np.uint64),
    "a number": 1,
    "a float": 0.5,
    "a single": np.float32(0.5),
    "a complex": 1 + 2j,
    "no dimension": np.array(0.5),
    "empty": np.zeros((0, 3)),
    "nothing": [],
    "nested": [[1.0, 2.0], [3.0, 4.0]],
    "fortran": np.asfortranarray(np.arange(6.0).reshape(2, 3)),
    "big-endian": np.arange(4, dtype=">f8"),
    "transposed": np.arange(24.0).reshape(2, 3, 4).transpose(2, 0, 1),
    "broadcast": np.broadcast_to(np.arange(3.0), (4, 3)),
    "single strided": np.arange(40, dtype="f4").reshape(8, 5)[::2, 1::3],
}


@pytest.mark.parametrize("case", CASES)
def test_result_is_of_numpys_kind(case):
    x = CASES[case]
    ours, theirs = pexquo.exp(x), np.exp(x)
    # NumPy has half precision for small integers.
    expected = np.float32 if theirs.dtype == np.float16 else theirs.dtype
    assert type(ours) is type(expected.type() if np.ndim(x) == 0 else theirs)
    assert ours.dtype == expected and ours.shape == theirs.shape
    assert ours.strides == theirs.strides or expected == np.float32
    np.testing.assert_allclose(ours, theirs, rtol=1e-6 if theirs.dtype.itemsize < 8 else 1e-14,
                               atol=1e-2 if theirs.dtype == np.float16 else 0)


BINARY = {
    "rows and columns": (np.arange(1.0, 5).reshape(4, 1), np.arange(3.0)),
    "a float": (np.arange(1.0, 2000), 2.5),
    "an integer": (np.arange(1.0, 2000), 3),
    "a large integer": (np.arange(1.0, 20), 2**60),
    "a number first": (2, np.arange(5.0)),
    "single and float": (np.arange(1, 5, dtype="f4"), 2.5),
    "single and double": (np.arange(1, 5, dtype="f4"), np.arange(4.0)),
    "two numbers": (2.0, 3),
    "complex": (np.array([1j, 2]), 2.0),
    "single and a double scalar": (np.arange(1, 5, dtype="f4"), np.float64(2)),
    "empty": (np.zeros((0, 3)), 2.0),
    "one and many": (np.ones(1), np.arange(5.0)),
    "no dimension": (np.arange(5.0), np.array(2.0)),
}


@pytest.mark.parametrize("case", BINARY)
def test_binary_broadcasts(case):
    with np.errstate(all="ignore"):
        ours, theirs = pexquo.power(*BINARY[case]), np.power(*map(np.asarray, BINARY[case]))
        theirs = np.power(*BINARY[case]) if theirs.dtype.kind not in "iu" else theirs.astype(float)
    assert ours.dtype == theirs.dtype and np.shape(ours) == np.shape(theirs)
    np.testing.assert_allclose(ours, theirs, rtol=1e-6 if ours.dtype.itemsize == 4 else 1e-13)


def test_powx_takes_arrays_of_exponents():
    x = np.arange(1.0, 3000)
    y = np.repeat([0.5, 2.0, 2.0, -1.5], 1000)[: len(x)]
    each = np.array([pexquo.powx(a, b) for a, b in zip(x.tolist(), y.tolist())])
    assert same(pexquo.powx(x, y), each)
    assert same(pexquo.powx(x[::2], y[::2]), each[::2])


def test_refuses_other_types():
    for bad in ("text", np.longdouble(1), np.array([None]), np.array(["a"])):
        with pytest.raises(TypeError):
            pexquo.exp(bad)
    with pytest.raises(TypeError):
        pexquo.cdfnorm(1j)
    with pytest.raises(TypeError):
        pexquo.cis(1j)
    with pytest.raises(TypeError):
        pexquo.exp()
    with pytest.raises(TypeError):
        pexquo.exp(1.0, nonsense=2)
    for tier in ("HA", "", None, 3, "h"):
        with pytest.raises(ValueError, match="tier must be 'ha', 'la' or 'ep'"):
            pexquo.exp(1.0, tier=tier)


class Wrapped:
    def __array__(self, dtype=None):
        return np.array([0.0, 1.0])


def test_takes_what_makes_itself_an_array():
    assert same(pexquo.exp(Wrapped()), pexquo.exp([0.0, 1.0]))
    assert same(pexquo.exp(memoryview(np.array([0.0, 1.0]))), pexquo.exp([0.0, 1.0]))


def test_subclasses_keep_their_class():
    masked = np.ma.masked_array([1.0, 2.0], [True, False])
    assert isinstance(pexquo.exp(masked), np.ma.MaskedArray)


# ---- out=, in place, overlap. ----


def test_out():
    x = np.linspace(0, 1, 50)
    want = pexquo.exp(x)
    for out in (np.empty(50), np.empty((50, 2))[:, 1], np.empty(50, ">f8"), np.empty(50, "c16")):
        got = pexquo.exp(x, out=out, tier="ha")
        assert got is out
        np.testing.assert_array_equal(out, want)
    out = np.empty(50)
    assert pexquo.exp(x, out) is out and same(out, want)
    assert pexquo.exp(x, out=(out,)) is out
    zero = np.empty(())
    assert pexquo.exp(1.0, out=zero) is zero and zero == np.e
    sine, cosine = np.empty(50), np.empty(50, "f4")
    assert pexquo.sincos(x, out=(sine, cosine))[1] is cosine
    assert same(sine, pexquo.sin(x)) and same(cosine, pexquo.cos(x).astype("f4"))
    assert same(pexquo.sincos(x, out=(None, None))[0], sine)
    where = np.arange(50) % 2 == 0
    got = pexquo.exp(x, out=np.zeros(50), where=where)
    assert same(got, np.where(where, want, 0))


@pytest.mark.parametrize("out,error", [
    (np.empty(49), ValueError), (np.empty((50, 2)), ValueError), (np.empty(50, "f4"), None),
    (np.empty(50, int), TypeError), ([0.0] * 50, TypeError), ((np.empty(50),) * 2, ValueError),
])
def test_out_that_does_not_fit(out, error):
    x = np.linspace(0, 1, 50)
    if error is None:
        assert pexquo.exp(x, out=out) is out
        return
    with pytest.raises(error):
        pexquo.exp(x, out=out)


def test_out_that_is_read_only():
    out = np.empty(5)
    out.flags.writeable = False
    with pytest.raises(ValueError):
        pexquo.exp(np.zeros(5), out=out)


@pytest.mark.parametrize("n", [10, 700, 20000])
def test_overlap_is_as_if_there_were_none(n):
    pairs = {
        "same": lambda a: (a[:n], a[:n]),
        "one on": lambda a: (a[:n], a[1 : n + 1]),
        "one back": lambda a: (a[1 : n + 1], a[:n]),
        "reversed": lambda a: (a[:n], a[n - 1 :: -1]),
        "interleaved": lambda a: (a[: 2 * n : 2], a[:n]),
        "spread": lambda a: (a[:n], a[: 2 * n : 2]),
        "transposed": lambda a: (a[:9].reshape(3, 3), a[:9].reshape(3, 3).T),
    }
    source = np.random.default_rng(1).uniform(0, 1, 2 * n + 2)
    for name, pair in pairs.items():
        a = source.copy()
        x, out = pair(a)
        want = pexquo.exp(x.copy())
        pexquo.exp(x, out=out)
        assert (out == want).all(), name
        a = source.copy()
        x, out = pair(a)
        y = a[: x.size].reshape(x.shape)
        want = pexquo.hypot(x.copy(), y.copy())
        pexquo.hypot(x, y, out=out)
        assert (out == want).all(), name


def test_overlap_of_two_results():
    a = np.linspace(0, 1, 1000)
    sine, cosine = pexquo.sincos(a)
    b = np.empty(1000)
    pexquo.sincos(a, out=(a, b))
    assert same(a, sine) and same(b, cosine)


# ---- errstate. ----


@pytest.mark.parametrize("call,flag,text", [
    (lambda f: f([0.0]), "divide", "divide by zero encountered in log"),
    (lambda f: f(0.0), "divide", "divide by zero encountered in log"),
    (lambda f: f(np.zeros(2000)), "divide", "divide by zero encountered in log"),
    (lambda f: f(np.zeros((5, 5))[::2, ::2]), "divide", "divide by zero encountered in log"),
    (lambda f: f(-1.0), "invalid", "invalid value encountered in log"),
    (lambda f: pexquo.exp([1000.0]), "over", "overflow encountered in exp"),
    (lambda f: pexquo.exp(np.full(900, 100, "f4")), "over", "overflow encountered in exp"),
    (lambda f: pexquo.exp(-800.0), "under", "underflow encountered in exp"),
    (lambda f: pexquo.power([0.0], -1), "divide", "divide by zero encountered in power"),
    (lambda f: pexquo.multiply(1e300, 1e300), "over", "overflow encountered in multiply"),
    (lambda f: pexquo.erfinv(1.0, tier="ep"), "divide", "divide by zero encountered in erfinv"),
])
def test_errstate(call, flag, text):
    quiet = {k: "ignore" for k in ("divide", "over", "under", "invalid")}
    with np.errstate(**(quiet | {flag: "warn"})), pytest.warns(RuntimeWarning, match=text):
        call(pexquo.log)
    with np.errstate(**(quiet | {flag: "raise"})), pytest.raises(FloatingPointError, match=text):
        call(pexquo.log)
    seen = []
    with np.errstate(**(quiet | {flag: "call"}), call=lambda *args: seen.append(args[0])):
        call(pexquo.log)
    assert len(seen) == 1
    with np.errstate(**{k: "raise" for k in quiet} | {flag: "ignore"}):
        call(pexquo.log)


SPECIAL = [0.0, -0.0, 0.5, 1.0, -1.0, 2.0, -2.0, 3.0, 710.0, -746.0, 1e10, 1e300, -1e300, 1e-300,
           5e-324, np.inf, -np.inf, np.nan]


def kinds_of_errors(call):
    kinds = set()
    with np.errstate(divide="call", over="call", invalid="call", under="ignore",
                     call=lambda kind, _: kinds.add(kind)):
        call()
    return kinds


@pytest.mark.parametrize("name", [n for n in REFERENCES if isinstance(getattr(np, n, None), np.ufunc)])
def test_errors_of_special_elements_are_numpys(name):
    ours, theirs = FUNCTIONS[name], getattr(np, name)
    parts = SPECIAL[:14:2] + SPECIAL[14:17]
    arguments = {
        ("d", 1): [(x,) for x in SPECIAL],
        ("d", 2): [(x, y) for x in SPECIAL for y in SPECIAL],
        # NumPy's complex functions disagree with each other on parts that are NaN.
        ("D", 1): [(complex(x, y),) for x in parts for y in parts],
    }
    for types in ours.types:
        for values in arguments.get((types[0], ours.nin), []):
            if name == "power" and np.isinf(values[1]):
                continue  # exact limits, which some C libraries call overflow
            given = [np.array([v]) for v in values]
            expected = kinds_of_errors(lambda: theirs(*given))
            for tier in ("ha", "ep"):
                assert kinds_of_errors(lambda: ours(*given, tier=tier)) == expected, values
                copy = given[0].copy()
                if types[0] == types[-1] and ours.nout == 1:
                    in_place = kinds_of_errors(lambda: ours(copy, *given[1:], copy, tier=tier))
                    assert in_place == expected, values


def test_ordinary_elements_raise_nothing():
    with np.errstate(all="raise"):
        for name, tier, arguments, _ in loops():
            values = [v[100:] for v in sample(arguments)]
            if name == "arccosh" and arguments in "fd":
                values = [1 + v for v in values]
            FUNCTIONS[name](*values, tier=tier)
            FUNCTIONS[name](*(v[0] for v in values), tier=tier)


def test_nan_is_no_error():
    with np.errstate(all="raise"):
        assert math.isnan(pexquo.log(math.nan))
        assert np.isnan(pexquo.exp([math.nan, 1.0])[0])


# ---- The objects. ----


def test_objects_pickle_and_show():
    assert pickle.loads(pickle.dumps(pexquo.exp)) is pexquo.exp
    assert copy.deepcopy(pexquo.exp) is pexquo.exp
    assert repr(pexquo.arcsin) == "<function pexquo.arcsin>"
    assert pexquo.exp.__name__ == "exp" and pexquo.exp.__module__ == "pexquo"
    assert pexquo.exp.nin == 1 and pexquo.sincos.nout == 2
    assert pexquo.abs is pexquo.absolute and pexquo.conj is pexquo.conjugate
    x = np.arange(1.0, 1001)
    add = pexquo.add.ufunc()
    assert add.reduce(x) == 500500 and same(add.accumulate(x), np.add.accumulate(x))
    assert same(add.reduce(x.reshape(20, 50), axis=0), x.reshape(20, 50).sum(axis=0))
    assert same(pexquo.multiply.ufunc("ep").outer([1.0, 2.0], [3.0]), np.array([[3.0], [6.0]]))


def test_tiers_differ():
    x = np.linspace(0.1, 3, 5000)
    for name in ("exp", "log", "sin", "cdfnorm", "cbrt"):
        ha, la, ep = (FUNCTIONS[name](x, tier=t) for t in ("ha", "la", "ep"))
        assert same(ha, FUNCTIONS[name](x))
        assert (ha != la).any() and (la != ep).any()


def test_threads():
    x = np.random.default_rng(5).uniform(0.1, 2, 30000)
    want = pexquo.log(x)
    failures = []

    def work():
        for _ in range(30):
            with np.errstate(all="raise"):
                if not same(pexquo.log(x), want):
                    failures.append("values")
            try:
                with np.errstate(divide="raise"):
                    pexquo.log(np.zeros(3000))
                failures.append("no exception")
            except FloatingPointError:
                pass

    threads = [threading.Thread(target=work) for _ in range(4)]
    for t in threads:
        t.start()
    for t in threads:
        t.join()
    assert not failures
