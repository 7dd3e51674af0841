"""The threads that share a call on a large array."""

import operator
import os

from . import _pexquo

_MOST = 4096


def set_threads(n):
    """Lets `n` threads share each call of a function on a large array; 0 for all cores.

    One thread is the default. The results are the same bits whatever the number, and so are the
    warnings. It holds for the whole process and from the next call on; calls of fewer than 32768
    elements, calls within `errors()`, and calls from a second Python thread meanwhile are done by the
    calling thread alone. Streams are not shared: give each Python thread one of its own.

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
