"""Vector math and random streams with the same bits on every x86-64 processor, on NumPy arrays.

Functions take what NumPy's take and give what NumPy's give: arrays of any shape and layout, scalars,
lists, broadcasting, `out=`, `where=`, `dtype=`, float32, float64, complex64 and complex128. What
NumPy has bears NumPy's name (`exp`, `arcsin`, `power`); everything else the library's own name in
small letters (`erfinv`, `cdfnorm`, `invsqrt`, `sincos`). Integers become floating-point numbers as in
NumPy; of half precision, the result is single.

The keyword `tier` chooses accuracy and speed: "ha" (at most 1 ulp, the default), "la" (a few ulp)
or "ep" (26 bits, in single precision 11). Every tier gives the same bits on every processor.

>>> import numpy as np, pexquo
>>> pexquo.exp([0.0, 1.0])
array([1.        , 2.71828183])
>>> pexquo.cdfnorm(1.96, tier="la")
0.9750021048517795
>>> s = pexquo.Stream("mt2203", member=7, seed=[1, 2])
>>> s.normal(loc=10, scale=2, size=(2, 3)).shape
(2, 3)

Special elements (poles, overflow, arguments outside the domain) warn as NumPy's do, under the rule of
`numpy.errstate`; within `errors()` they are collected one by one instead.
"""

from ._bit_generator import BitGenerator, bit_generator
from ._errors import ElementError, errors
from ._functions import FUNCTIONS as _FUNCTIONS
from ._stream import Stream, generators
from ._threads import get_threads, set_threads
from ._version import __version__

globals().update(_FUNCTIONS)

__all__ = [
    "BitGenerator",
    "ElementError",
    "Stream",
    "bit_generator",
    "errors",
    "generators",
    "get_threads",
    "set_threads",
    *_FUNCTIONS,
]
