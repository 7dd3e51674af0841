"""The threads that share a call on a large array or a long draw."""

import operator
import os

from . import _pexquo

_MOST = 4096


def set_threads(n):
    """Lets `n` threads share each call on a large array, functions and draws; 0 for all cores.

    One thread is the default. The results are the same bits whatever the number, and so are the
    warnings and where streams go on. It holds for the whole process and from the next call on. Calls of
    fewer than 32768 elements, calls within `errors()`, and calls from a second Python thread meanwhile are
    done by the calling thread alone.

    Streams of all generators are shared that can skip ahead, and of "mt19937", "mt2203" and "r250" those
    draws that take longer than the generator itself (not `random`, `uniform`, `integers`, `bernoulli`); but
    not distributions that take as many outputs as they need (gamma, beta, the discrete ones but
    geometric), nor parameters that are arrays.

    >>> import numpy as np, pexquo
    >>> x = np.linspace(0, 1, 1000000)
    >>> alone = pexquo.exp(x)
    >>> pexquo.set_threads(2)
    >>> np.array_equal(pexquo.exp(x), alone)
    True
    >>> pexquo.set_threads(1)
    """
    n = operator.index(n)
    if not 0 <= n <= _MOST:
        raise ValueError(f"set_threads: n must be from 0 to {_MOST}, not {n}")
    _pexquo.set_threads(n or len(os.sched_getaffinity(0)))


def get_threads():
    """How many threads share a call on a large array.

    >>> import pexquo
    >>> pexquo.get_threads()
    1
    """
    return _pexquo.threads()
