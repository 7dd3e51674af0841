"""errors(): every special element once, with its index, arguments and result."""

import asyncio
import ctypes
import itertools
import os
import threading

import numpy as np
import pexquo
import pytest


def found(function, *args, **kwargs):
    with np.errstate(all="raise"), pexquo.errors() as errors:
        function(*args, **kwargs)
    return errors


@pytest.mark.parametrize("function,args,result,reason", [
    ("log", (0.0,), -np.inf, "singularity"),
    ("log", (-1.0,), np.nan, "domain"),
    ("exp", (1000.0,), np.inf, "overflow"),
    ("exp", (-1000.0,), 0.0, "underflow"),
    ("power", (0.0, -1.0), np.inf, "singularity"),
    ("power", (-1.0, 0.5), np.nan, "domain"),
    ("divide", (1.0, 0.0), np.inf, "singularity"),
    ("divide", (0.0, 0.0), np.nan, "domain"),
    ("arccos", (2.0,), np.nan, "domain"),
    ("multiply", (1e300, 1e300), np.inf, "overflow"),
    ("multiply", (1e-300, 1e-300), 0.0, "underflow"),
    ("sincos", (np.inf,), (np.nan, np.nan), "domain"),
    ("log", (0j,), complex(-np.inf, 0), "singularity"),
    # Overflows for which the kernels have no code.
    ("power", (10.0, 400.0), np.inf, "overflow"),
    ("reciprocal", (1e-310,), np.inf, "overflow"),
    ("divide", (1e300, 1e-300), np.inf, "overflow"),
    ("hypot", (1.7e308, 1.7e308), np.inf, "overflow"),
    # Some tiers compute in extended precision, with flags of its own.
    ("divide", (1 + 1j, 0j), complex(np.nan, np.nan), "singularity"),
])
@pytest.mark.parametrize("tier", ["ha", "la", "ep"])
def test_one_element(function, args, result, reason, tier):
    (error,) = found(getattr(pexquo, function), *args, tier=tier)
    assert error.function == function and error.index == () and error.reason == reason
    assert error.arguments == args
    np.testing.assert_array_equal(error.result, result)


def test_codes_and_flags_in_one_call():
    x = np.array([10.0, -1.0, 10.0, 0.0, 2.0])
    y = np.array([400.0, 0.5, 1.0, -1.0, 5000.0])
    errors = found(pexquo.power, x, y)
    assert [(e.index, e.reason) for e in errors] == [
        ((0,), "overflow"), ((1,), "domain"), ((3,), "singularity"), ((4,), "overflow")]


@pytest.mark.parametrize("tier", ["ha", "la", "ep"])
def test_warnings_do_not_depend_on_the_layout(tier):
    # Contiguous arrays go a shorter way than NumPy's.
    zeros, ones = np.zeros(6, complex), np.full(6, 1 + 1j)
    for a, b in ((ones, zeros), (ones[::2], zeros[::2]), (ones[0], zeros[0])):
        with pytest.warns(RuntimeWarning) as warned:
            pexquo.divide(a, b, tier=tier)
        texts = {str(w.message) for w in warned}
        assert texts == {"divide by zero encountered in divide", "invalid value encountered in divide"}


def layouts(x):
    wide = np.zeros(x.shape + (2,), x.dtype)
    wide[..., 1] = x
    yield x
    yield wide[..., 1]
    yield np.asfortranarray(x)
    yield x[::-1].copy()[::-1]
    yield x.astype(x.dtype.newbyteorder())


@pytest.mark.parametrize("dtype", ["f4", "f8", "c16"])
def test_indices_of_any_layout(dtype):
    x = np.ones((3, 9000), dtype)  # more than one buffer of NumPy's iterators
    places = [(0, 0), (0, 8191), (0, 8192), (1, 17), (2, 8999)]
    for place in places:
        x[place] = 0
    for y in layouts(x):
        with pexquo.errors() as errors:
            r = pexquo.log(y)
        assert [e.index for e in errors] == places
        assert all(e.arguments == (0,) and e.reason == "singularity" for e in errors)
        with np.errstate(all="ignore"):
            assert (r == pexquo.log(y)).all() and r.dtype == np.dtype(dtype)
        assert type(errors[0].arguments[0]) is np.dtype(dtype).type


def test_broadcasting_and_types():
    errors = found(pexquo.power, np.array([[0.0], [1.0]]), [-1, 1, -2])
    assert [e.index for e in errors] == [(0, 0), (0, 2)]
    assert errors[1].arguments == (0.0, -2.0)
    (error,) = found(pexquo.exp, np.array([1, 1000], np.int32))
    assert error.index == (1,) and type(error.result) is np.float64
    (error,) = found(pexquo.exp, [90.0], dtype="f4")
    assert error.reason == "overflow" and type(error.result) is np.float32


def test_results_are_those_of_outside():
    x = np.array([0.5, -1.0, 2.0])
    with pexquo.errors() as errors:
        assert type(pexquo.exp(1.0)) is np.float64
        assert pexquo.exp([]).shape == (0,)
        out = np.empty(3)
        assert pexquo.sqrt(x, out=out) is out
        big = np.empty(3, ">f8")
        assert pexquo.sqrt(x, big) is big
        sine, cosine = pexquo.sincos(x)
        again = x.copy()
        pexquo.sqrt(again, out=again)
        shifted = np.append(x, 9.0)
        pexquo.sqrt(shifted[:3], out=shifted[1:])
    for r in (out, big, again, shifted[1:]):
        np.testing.assert_array_equal(r, [np.sqrt(0.5), np.nan, np.sqrt(2.0)])
    np.testing.assert_array_equal(sine, pexquo.sin(x))
    np.testing.assert_array_equal(cosine, pexquo.cos(x))
    assert [e.index for e in errors] == [(1,)] * 4
    assert all(e.arguments == (-1.0,) for e in errors)


MIXED = [2, 100000, 2.5, 1e300, 1 + 2j, True, np.int8(3), np.uint16(9), np.float16(2), np.float32(2.5),
         np.complex64(1j), np.array(3), np.array(2.5, "f4"), np.array(2.5, ">f8"), [1, 2], [1.5, 2],
         *(np.array([1, 2], t) for t in ("i1", "u2", "i4", "f2", "f4", ">f4", "f8", "c8", "?"))]


@pytest.mark.parametrize("name", ["add", "power", "arctan2", "exp", "absolute", "cis", "sincos"])
def test_types_and_numbers_are_those_of_outside(name):
    """Of arguments of different types, and of single numbers among arrays."""
    function = getattr(pexquo, name)

    def outcome(args, dtype):
        try:
            with np.errstate(all="ignore"):
                results = function(*args) if dtype is None else function(*args, dtype=dtype)
        except TypeError:
            return TypeError
        results = results if isinstance(results, tuple) else (results,)
        return [(type(r), np.asarray(r).dtype, np.asarray(r).tobytes()) for r in results]

    for args in itertools.product(MIXED, repeat=function.nin):
        for dtype in (None, "f4", "f8", "c16"):
            with pexquo.errors():
                within = outcome(args, dtype)
            assert within == outcome(args, dtype), (args, dtype)


def test_single_result_of_another_type():
    out = np.array(7, np.float32)
    with pexquo.errors() as errors:
        assert pexquo.log(0, out=out) is out
    assert out == -np.inf and errors[0].index == () and errors[0].arguments == (0.0,)


def test_wrong_calls():
    with pexquo.errors():
        for bad in (lambda: pexquo.exp("a"), lambda: pexquo.exp(), lambda: pexquo.exp(1, 2, 3),
                    lambda: pexquo.exp(1.0, where=True), lambda: pexquo.cdfnorm(1j)):
            with pytest.raises(TypeError):
                bad()
        with pytest.raises(ValueError):
            pexquo.exp([1.0, 2.0], out=np.empty(3))
        with pytest.raises(ValueError):
            pexquo.power(np.ones(2), np.ones(3))


def test_nesting_and_after():
    with pexquo.errors() as outer:
        pexquo.log(0.0)
        with pexquo.errors() as inner:
            pexquo.log(-1.0)
        pexquo.exp(1000.0)
    assert [e.reason for e in outer] == ["singularity", "overflow"]
    assert [e.reason for e in inner] == ["domain"]
    with pytest.raises(RuntimeError), pexquo.errors():
        raise RuntimeError
    with pytest.warns(RuntimeWarning, match="divide by zero encountered in log"):
        pexquo.log(0.0)
    assert len(outer) == 2


def test_other_threads_and_tasks_have_their_own():
    seen = {}

    def work():
        with np.errstate(divide="raise"):
            try:
                pexquo.log(0.0)
            except FloatingPointError:
                seen["thread"] = True

    with pexquo.errors() as errors:
        thread = threading.Thread(target=work)
        thread.start()
        thread.join()

    async def task(x):
        with pexquo.errors() as own:
            await asyncio.sleep(0)
            pexquo.log(x)
            await asyncio.sleep(0)
        return own

    async def both():
        return await asyncio.gather(task(0.0), task(-1.0))

    a, b = asyncio.run(both())
    assert seen and not errors
    assert [e.reason for e in a] == ["singularity"] and [e.reason for e in b] == ["domain"]


def test_blocks_end_in_any_order():
    def open_block():
        with pexquo.errors() as errors:
            yield errors

    first, second = open_block(), open_block()
    a, b = next(first), next(second)
    first.close()
    pexquo.log(0.0)
    assert (len(a), len(b)) == (0, 1)
    second.close()
    held, release = threading.Event(), threading.Event()

    def elsewhere():
        with pexquo.errors():
            held.set()
            release.wait()

    thread = threading.Thread(target=elsewhere)
    thread.start()
    held.wait()
    with pytest.warns(RuntimeWarning, match="divide by zero"):
        pexquo.log(0.0)
    release.set()
    thread.join()
    assert (len(a), len(b)) == (0, 1)


def test_a_block_may_end_in_another_thread():
    def open_block():
        with pexquo.errors() as errors:
            yield errors

    block, raised = open_block(), []

    def close():
        try:
            block.close()
        except Exception as error:
            raised.append(error)

    next(block)
    thread = threading.Thread(target=close)
    thread.start()
    thread.join()
    assert not raised
    with pytest.warns(RuntimeWarning, match="divide by zero"):
        pexquo.log(0.0)


def test_tasks_outlive_their_block():
    async def late(gate):
        await gate.wait()
        with np.errstate(divide="raise"), pytest.raises(FloatingPointError):
            pexquo.log(0.0)

    async def main():
        gate = asyncio.Event()
        with pexquo.errors() as ended:
            task = asyncio.create_task(late(gate))
            await asyncio.sleep(0)
        with pexquo.errors() as other:
            gate.set()
            await task
        return ended, other

    assert asyncio.run(main()) == ([], [])


def test_results_larger_than_the_arguments():
    out = np.empty((2, 3))
    with pexquo.errors() as errors:
        assert pexquo.log([1.0, 0.0, 2.0], out=out) is out
    assert [e.index for e in errors] == [(0, 1), (1, 1)]
    assert (out == [[0.0, -np.inf, pexquo.log(2.0)]] * 2).all()


def test_subclasses():
    x = np.ma.array([0.0, 1.0, 2.0], mask=[True, False, False])
    with pexquo.errors() as errors:
        y = pexquo.log(x)
        m = pexquo.hypot(np.ones((1, 1)).view(np.matrix) * 3, 4.0)
    assert type(y) is np.ma.MaskedArray and y.mask.tolist() == [True, False, False]
    assert len(errors) == 1
    assert type(m) is np.matrix and m.tolist() == [[5.0]]


def test_wrong_results():
    with pexquo.errors():
        for bad, exception in (([0.0], TypeError), ((), ValueError), ((None, None), ValueError)):
            with pytest.raises(exception):
                pexquo.log([1.0], out=bad)
        with pytest.raises(TypeError):
            pexquo.sincos([1.0], out=np.empty(1))


def test_random_numbers_report_nothing():
    with pexquo.errors() as errors:
        pexquo.Stream("mcg31m1").normal(size=10000, method="boxmuller")
    assert not errors


LIBRARY = ctypes.CDLL(os.environ.get("PEXQUO_LIBRARY", "libpexquo.so.1"))
LIBRARY._pexGetErrorCallBack.restype = ctypes.c_void_p
LIBRARY._pexSetErrorCallBack.argtypes = [ctypes.c_void_p]


def test_mode_and_callback_of_the_thread_stay():
    """Other code in the thread, here through ctypes, finds what it left."""
    seen = []
    callback = ctypes.CFUNCTYPE(ctypes.c_int, ctypes.c_void_p)(lambda record: seen.append(1) or 0)
    address = ctypes.cast(callback, ctypes.c_void_p).value
    zero, result = ctypes.c_double(0), ctypes.c_double(1)
    states = []

    def kernel():
        LIBRARY._pexClearErrStatus()
        LIBRARY._pexdLn_HA(1, ctypes.byref(zero), ctypes.byref(result))
        assert result.value == -np.inf and LIBRARY._pexGetErrStatus() == 2

    def work(mode, pointer):
        LIBRARY._pexSetErrorCallBack(pointer)
        LIBRARY._pexSetMode(mode)
        before = LIBRARY._pexGetMode(), LIBRARY._pexGetErrorCallBack()
        kernel()
        with np.errstate(all="ignore"):
            assert pexquo.log(0.0) == -np.inf
        with pexquo.errors() as errors:
            pexquo.log([0.0, -1.0])
        states.append((len(errors), before, (LIBRARY._pexGetMode(), LIBRARY._pexGetErrorCallBack())))
        kernel()

    for mode, pointer in ((0x1A02, None), (0x1A02, address), (0x100, None), (0x0A02, None),
                          (0x1000, address), (0x1A03, None)):
        thread = threading.Thread(target=work, args=(mode, pointer))
        thread.start()
        thread.join()
    assert len(states) == 6 and all(count == 2 for count, _, _ in states)
    assert all(after[0] == before[0] for _, before, after in states)
    # A thread in the default state may keep the module's callback, which does nothing for others.
    assert all(after[1] == before[1] for _, before, after in states[1:])
    assert len(seen) == 4
