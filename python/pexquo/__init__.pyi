from contextlib import AbstractContextManager
from os import PathLike
from typing import Any, Literal, Mapping, NamedTuple, Protocol

import numpy as np
from numpy.typing import ArrayLike, DTypeLike, NDArray

_Tier = Literal["ha", "la", "ep"]
_Size = int | tuple[int, ...] | list[int] | None
_Method = Literal["boxmuller", "boxmuller2", "icdf"]
_Out = NDArray[Any] | None
_Path = str | bytes | PathLike[str] | PathLike[bytes]

__version__: str

class _Function(Protocol):
    __name__: str
    nin: int
    nout: int
    types: list[str]
    def ufunc(self, tier: _Tier = "ha") -> np.ufunc: ...

class _Unary(_Function, Protocol):
    def __call__(
        self, a: ArrayLike, /, out: Any = None, *, tier: _Tier = "ha", **kwargs: Any
    ) -> Any: ...

class _Binary(_Function, Protocol):
    def __call__(
        self, a: ArrayLike, b: ArrayLike, /, out: Any = None, *, tier: _Tier = "ha", **kwargs: Any
    ) -> Any: ...

class _UnaryTwo(_Function, Protocol):
    def __call__(
        self, a: ArrayLike, /, out: Any = (None, None), *, tier: _Tier = "ha", **kwargs: Any
    ) -> tuple[Any, Any]: ...

class ElementError(NamedTuple):
    function: str
    index: tuple[int, ...]  # type: ignore[assignment]  # in place of tuple's method
    arguments: tuple[Any, ...]
    result: Any
    reason: Literal["domain", "singularity", "overflow", "underflow"]

def errors() -> AbstractContextManager[list[ElementError]]: ...
def generators() -> dict[str, tuple[int, str]]: ...
def get_threads() -> int: ...
def set_threads(n: int) -> None: ...

class BitGenerator(np.random.BitGenerator):
    def __init__(self, stream: Stream) -> None: ...
    @property
    def stream(self) -> Stream: ...
    @property
    def state(self) -> Mapping[str, Any]: ...
    @state.setter
    def state(self, value: Mapping[str, Any]) -> None: ...

def bit_generator(stream: Stream) -> BitGenerator: ...

class Stream:
    @property
    def generator(self) -> str: ...
    @property
    def member(self) -> int: ...
    def __init__(
        self,
        generator: str = "mt19937",
        *,
        member: int = 0,
        seed: ArrayLike | None = 1,
        dimension: int | None = None,
    ) -> None: ...
    def copy(self) -> Stream: ...
    def save(self, path: _Path) -> None: ...
    @classmethod
    def load(cls, path: _Path) -> Stream: ...
    def skip(self, n: int) -> Stream: ...
    def leapfrog(self, k: int, n: int) -> Stream: ...
    def raw(self, size: _Size = None) -> Any: ...
    def random(self, size: _Size = None, dtype: DTypeLike = ..., out: _Out = None) -> Any: ...
    def uniform(
        self,
        low: ArrayLike = 0.0,
        high: ArrayLike = 1.0,
        size: _Size = None,
        *,
        dtype: DTypeLike = ...,
        out: _Out = None,
    ) -> Any: ...
    def integers(
        self,
        low: ArrayLike,
        high: ArrayLike | None = None,
        size: _Size = None,
        dtype: DTypeLike = ...,
        endpoint: bool = False,
        *,
        out: _Out = None,
    ) -> Any: ...
    def standard_normal(
        self,
        size: _Size = None,
        dtype: DTypeLike = ...,
        out: _Out = None,
        *,
        method: _Method = "icdf",
    ) -> Any: ...
    def normal(
        self,
        loc: ArrayLike = 0.0,
        scale: ArrayLike = 1.0,
        size: _Size = None,
        *,
        dtype: DTypeLike = ...,
        method: _Method = "icdf",
        out: _Out = None,
    ) -> Any: ...
    def multivariate_normal(
        self,
        mean: ArrayLike,
        cov: ArrayLike,
        size: _Size = None,
        *,
        dtype: DTypeLike = ...,
        method: _Method = "icdf",
    ) -> Any: ...
    def standard_exponential(
        self, size: _Size = None, dtype: DTypeLike = ..., out: _Out = None
    ) -> Any: ...
    def exponential(
        self,
        scale: ArrayLike = 1.0,
        size: _Size = None,
        *,
        dtype: DTypeLike = ...,
        out: _Out = None,
    ) -> Any: ...
    def laplace(
        self,
        loc: ArrayLike = 0.0,
        scale: ArrayLike = 1.0,
        size: _Size = None,
        *,
        dtype: DTypeLike = ...,
        out: _Out = None,
    ) -> Any: ...
    def weibull(
        self, a: ArrayLike, size: _Size = None, *, dtype: DTypeLike = ..., out: _Out = None
    ) -> Any: ...
    def standard_cauchy(
        self, size: _Size = None, *, dtype: DTypeLike = ..., out: _Out = None
    ) -> Any: ...
    def cauchy(
        self,
        loc: ArrayLike = 0.0,
        scale: ArrayLike = 1.0,
        size: _Size = None,
        *,
        dtype: DTypeLike = ...,
        out: _Out = None,
    ) -> Any: ...
    def rayleigh(
        self,
        scale: ArrayLike = 1.0,
        size: _Size = None,
        *,
        dtype: DTypeLike = ...,
        out: _Out = None,
    ) -> Any: ...
    def lognormal(
        self,
        mean: ArrayLike = 0.0,
        sigma: ArrayLike = 1.0,
        size: _Size = None,
        *,
        dtype: DTypeLike = ...,
        out: _Out = None,
    ) -> Any: ...
    def gumbel(
        self,
        loc: ArrayLike = 0.0,
        scale: ArrayLike = 1.0,
        size: _Size = None,
        *,
        dtype: DTypeLike = ...,
        out: _Out = None,
    ) -> Any: ...
    def bernoulli(
        self, p: ArrayLike, size: _Size = None, *, dtype: DTypeLike = ..., out: _Out = None
    ) -> Any: ...
    def geometric(self, p: ArrayLike, size: _Size = None, *, out: _Out = None) -> Any: ...
    def gamma(
        self,
        shape: ArrayLike,
        scale: ArrayLike = 1.0,
        size: _Size = None,
        *,
        dtype: DTypeLike = ...,
        out: _Out = None,
    ) -> Any: ...
    def standard_gamma(
        self, shape: ArrayLike, size: _Size = None, dtype: DTypeLike = ..., out: _Out = None
    ) -> Any: ...
    def chisquare(
        self, df: ArrayLike, size: _Size = None, *, dtype: DTypeLike = ..., out: _Out = None
    ) -> Any: ...
    def beta(
        self,
        a: ArrayLike,
        b: ArrayLike,
        size: _Size = None,
        *,
        dtype: DTypeLike = ...,
        out: _Out = None,
    ) -> Any: ...
    def binomial(
        self,
        n: ArrayLike,
        p: ArrayLike,
        size: _Size = None,
        *,
        dtype: DTypeLike = ...,
        out: _Out = None,
    ) -> Any: ...
    def poisson(
        self,
        lam: ArrayLike = 1.0,
        size: _Size = None,
        *,
        dtype: DTypeLike = ...,
        method: Literal["ptpe", "normal"] = "ptpe",
        out: _Out = None,
    ) -> Any: ...
    def hypergeometric(
        self,
        ngood: ArrayLike,
        nbad: ArrayLike,
        nsample: ArrayLike,
        size: _Size = None,
        *,
        dtype: DTypeLike = ...,
        out: _Out = None,
    ) -> Any: ...
    def negative_binomial(
        self,
        n: ArrayLike,
        p: ArrayLike,
        size: _Size = None,
        *,
        dtype: DTypeLike = ...,
        out: _Out = None,
    ) -> Any: ...

add: _Binary
subtract: _Binary
multiply: _Binary
square: _Unary
absolute: _Unary
ceil: _Unary
floor: _Unary
trunc: _Unary
rint: _Unary
nearbyint: _Unary
round_away: _Unary
modf: _UnaryTwo
exp: _Unary
expm1: _Unary
log: _Unary
log10: _Unary
log1p: _Unary
sin: _Unary
cos: _Unary
sincos: _UnaryTwo
tan: _Unary
power: _Binary
powx: _Binary
pow2o3: _Unary
pow3o2: _Unary
sqrt: _Unary
invsqrt: _Unary
cbrt: _Unary
invcbrt: _Unary
reciprocal: _Unary
divide: _Binary
hypot: _Binary
arccos: _Unary
arcsin: _Unary
arctan: _Unary
arctan2: _Binary
arccosh: _Unary
arcsinh: _Unary
arctanh: _Unary
cosh: _Unary
sinh: _Unary
tanh: _Unary
erf: _Unary
erfc: _Unary
cdfnorm: _Unary
erfinv: _Unary
erfcinv: _Unary
cdfnorminv: _Unary
mulbyconj: _Binary
conjugate: _Unary
angle: _Unary
cis: _Unary
abs: _Unary
conj: _Unary
