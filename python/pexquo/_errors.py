"""Element errors, one by one: the context manager `errors` and what it collects."""

import contextlib
import contextvars
from typing import NamedTuple

import numpy as np

from . import _pexquo

__all__ = ["ElementError", "errors"]

_REASONS = {1: "domain", 2: "singularity", 3: "overflow", 4: "underflow"}
_SCALARS = (int, float, complex, np.generic)
_blocks = contextvars.ContextVar("pexquo_errors", default=None)


class ElementError(NamedTuple):
    """One special element of a call.

    Attributes
    ----------
    function : str
        The function's name.
    index : tuple of int
        The element's place in the result, as an index; () of a scalar.
    arguments : tuple
        The element's arguments, as NumPy scalars.
    result : numpy scalar or tuple
        The result; of functions with two results both.
    reason : str
        "domain", "singularity" (a pole), "overflow" or "underflow".
    """

    function: str
    index: tuple
    arguments: tuple
    result: object
    reason: str


class _Block:
    """An errors() block: what it found, and the block around it. Blocks of generators and of tasks
    end in any order, and not always in the context where they began."""

    def __init__(self, outer):
        self.found, self.outer, self.open = [], outer, True


def _innermost():
    block = _blocks.get()
    while block is not None and not block.open:
        block = block.outer
    return block


@contextlib.contextmanager
def errors():
    """Collect the element errors of the calls within, instead of warning of them.

    Yields a list that grows by an `ElementError` for every special element, in the order of the
    calls and, within a call, of the elements in C order. No warning and no exception comes from the
    functions meanwhile, whatever `numpy.errstate` says. Blocks may be nested; the innermost one
    collects. Threads and asyncio tasks have blocks of their own. Of keywords, calls within take `tier=`,
    `out=` and `dtype=`.

    Found is what a warning would tell of: an argument outside the domain, a pole, a result that overflows
    or underflows. Complex functions and plain arithmetic report the floating-point flags that an
    element raises.

    >>> import numpy as np, pexquo
    >>> with pexquo.errors() as found:
    ...     y = pexquo.log([[1.0, 0.0], [-2.0, 4.0]])
    >>> for e in found:
    ...     print(e.function, e.index, *e.arguments, e.result, e.reason)
    log (0, 1) 0.0 -inf singularity
    log (1, 0) -2.0 nan domain
    """
    block = _Block(_innermost())
    _blocks.set(block)
    _pexquo.count_collectors(1)
    try:
        yield block.found
    finally:
        _pexquo.count_collectors(-1)
        block.open = False
        _blocks.set(_innermost())


def _loop_types(ufunc, args, arguments, dtype):
    """The types of the loop that the ufunc takes for these arguments, `args` as they were given: those
    that it takes for arrays of no elements in place of theirs."""
    probes = [
        np.empty(0, a.dtype) if a.ndim else given if isinstance(given, _SCALARS) else a
        for given, a in zip(args, arguments)
    ]
    with np.errstate(all="ignore"):  # scalars are computed
        made = ufunc(*probes) if dtype is None else ufunc(*probes, dtype=dtype)
    wanted = "".join(r.dtype.char for r in (made if ufunc.nout > 1 else (made,)))
    for types in ufunc.types:
        given, results = types.split("->")
        if results == wanted and all(
            np.can_cast(a.dtype, t, "same_kind") for a, t in zip(arguments, given)
        ):
            return [np.dtype(t) for t in given + results]
    raise TypeError(f"ufunc {ufunc.__name__!r} not supported for the input types")


def _wrap_of(args):
    """What makes a result of the kind of the arguments (masked arrays, matrices), as a ufunc takes it."""
    kinds = [
        a
        for a in args
        if hasattr(a, "__array_wrap__") and type(a) is not np.ndarray and not isinstance(a, np.generic)
    ]
    if not kinds:
        return None
    return max(kinds, key=lambda a: getattr(a, "__array_priority__", 0)).__array_wrap__


def _collect(function, tier, ufunc, args, kwargs):
    """A call while an errors() block is open somewhere."""
    block = _innermost()
    if block is None:
        return ufunc(*args, **kwargs)
    kwargs = dict(kwargs)
    out = kwargs.pop("out", None)
    dtype = kwargs.pop("dtype", None)
    if kwargs:
        raise TypeError(
            f"{function.__name__}: only tier=, out= and dtype= are possible within errors(), "
            f"not {', '.join(kwargs)}"
        )
    nin, nout = ufunc.nin, ufunc.nout
    given = list(args[nin:]) if out is None else list(out) if isinstance(out, tuple) else [out]
    results = given + [None] * (nout - len(given))
    if (
        not nin <= len(args) <= nin + nout
        or (out is not None and (len(args) > nin or len(given) != nout))
        or not all(r is None or isinstance(r, np.ndarray) for r in results)
    ):
        return ufunc(*args, out=out)  # raises the usual exception
    arguments = [a if isinstance(a, np.ndarray) else np.asarray(a) for a in args[:nin]]
    types = _loop_types(ufunc, args[:nin], arguments, dtype)
    # Buffered iterators of NumPy 1 leave out single numbers of another type.
    whole = [a.reshape(1) if a is not None and a.ndim == 0 else a for a in arguments + results]
    iterator = np.nditer(
        whole,
        flags=["external_loop", "buffered", "zerosize_ok", "copy_if_overlap"],
        op_flags=[["readonly", "contig", "aligned", "nbo"]] * nin
        + [["writeonly", "allocate", "no_broadcast", "no_subtype", "contig", "aligned", "nbo"]]
        * nout,
        op_dtypes=types,
        order="C",
        casting="same_kind",
    )
    with iterator:
        shape = np.broadcast_shapes(*(a.shape for a in arguments + results if a is not None))
        base = 0
        for operands in iterator if iterator.itersize else ():
            for index, code in function._collect(tier, *operands):
                values = [o[index] for o in operands]
                place = np.unravel_index(base + index, shape) if shape else ()
                block.found.append(
                    ElementError(
                        function.__name__,
                        tuple(int(i) for i in place),
                        tuple(values[:nin]),
                        values[nin] if nout == 1 else tuple(values[nin:]),
                        _REASONS[code],
                    )
                )
            base += len(operands[0])
        made = [r.reshape(shape) for r in iterator.operands[nin:]]
    wrap = _wrap_of(args[:nin])

    def finished(i):
        if results[i] is not None:
            return results[i]
        if wrap is not None:
            return wrap(made[i], (ufunc, args, i))
        return made[i][()] if made[i].ndim == 0 else made[i]

    return finished(0) if nout == 1 else tuple(finished(i) for i in range(nout))


_pexquo.set_collect_hook(_collect)
