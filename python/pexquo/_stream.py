"""Random streams and their distributions."""

import operator
import os

import numpy as np

from . import _pexquo

__all__ = ["Stream", "generators"]

_draw = _pexquo.draw


def generators():
    """What `Stream` takes as a generator: a dictionary from names to (members, description).

    >>> import pexquo
    >>> pexquo.generators()["mt2203"]
    (1024, 'Mersenne twisters of period 2^2203 - 1, each its own')
    """
    return _pexquo.generators()


def _words(seed):
    """Seeds as 32-bit words: an integer gives as many as it needs, low words first."""
    if seed is None:
        return [int(w) for w in np.frombuffer(os.urandom(32), np.uint32)]
    try:
        seeds = [operator.index(seed)]
    except TypeError:
        seeds = [operator.index(s) for s in seed]
    words = []
    for s in seeds:
        if s < 0:
            raise ValueError(f"seed must not be negative, not {s}")
        words.append(s & 0xFFFFFFFF)
        while s := s >> 32:
            words.append(s & 0xFFFFFFFF)
    if not words:
        raise ValueError("seed must have at least one word")
    return words


def _available(name, catalogue, arguments, **kwargs):
    """The distribution, or None where the library does not have it."""
    try:
        return _pexquo.Distribution(name, catalogue, arguments, **kwargs)
    except LookupError:
        return None


def _numbers(parameter):
    """A parameter as an array of real numbers."""
    array = np.asarray(parameter)
    if array.dtype.kind == "O":  # fractions, decimals, large integers
        array = np.array([float(x) for x in array.flat], np.float64).reshape(array.shape)
    if array.dtype.kind not in "biuf":
        raise TypeError("parameters must be real numbers")
    return array


def _shape(size):
    """The shape that an argument `size` means."""
    try:
        return (operator.index(size),)
    except TypeError:
        if not np.iterable(size):
            raise TypeError(f"size must be an integer or a shape, not {size!r}") from None
    return tuple(operator.index(n) for n in size)


_RANDOM = _pexquo.Distribution("random", "uniform", ["0", "1"])
_UNIFORM = _pexquo.Distribution("uniform", "uniform", ["low", "high"])
_INTEGERS = _pexquo.Distribution("integers", "uniform", ["low", "high"], integers=True)
_NORMAL = _pexquo.Distribution("normal", "gaussian", ["loc", "scale"])
_STANDARD_NORMAL = _pexquo.Distribution("standard_normal", "gaussian", ["", ""])
_MULTIVARIATE = _pexquo.Distribution("multivariate_normal", "gaussianmv", [])
_EXPONENTIAL = _pexquo.Distribution("exponential", "exponential", ["", "scale"])
_STANDARD_EXPONENTIAL = _pexquo.Distribution("standard_exponential", "exponential", ["", ""])
_LAPLACE = _pexquo.Distribution("laplace", "laplace", ["loc", "scale"])
_WEIBULL = _pexquo.Distribution("weibull", "weibull", ["a", "", ""])
_CAUCHY = _pexquo.Distribution("cauchy", "cauchy", ["loc", "scale"])
_STANDARD_CAUCHY = _pexquo.Distribution("standard_cauchy", "cauchy", ["", ""])
_RAYLEIGH = _pexquo.Distribution("rayleigh", "rayleigh", ["", "scale"])
_LOGNORMAL = _pexquo.Distribution("lognormal", "lognormal", ["mean", "sigma", "", ""])
_GUMBEL = _pexquo.Distribution("gumbel", "gumbel", ["loc", "scale"], mirrored=True)  # of least values
_BERNOULLI = _pexquo.Distribution("bernoulli", "bernoulli", ["p"], integers=True)
_GEOMETRIC = _pexquo.Distribution("geometric", "geometric", ["p"], integers=True, shift=1)
_GAMMA = _available("gamma", "gamma", ["shape", "", "scale"])
_STANDARD_GAMMA = _available("standard_gamma", "gamma", ["shape", "", ""])
_CHISQUARE = _available("chisquare", "gamma", ["df", "", ""])
_BETA = _available("beta", "beta", ["a", "b", "", ""])
_BINOMIAL = _available("binomial", "binomial", ["n", "p"], integers=True)
_POISSON = _available("poisson", "poisson", ["lam"], integers=True)
_HYPERGEOMETRIC = _available(
    "hypergeometric", "hypergeometric", ["ngood + nbad", "nsample", "ngood"], integers=True
)
_NEGATIVE_BINOMIAL = _available(
    "negative_binomial", "negbinomial", ["n", "p"], integers=True
)


def _draw_broadcast(stream, distribution, dtype, method, size, out, parameters):
    """Parameters that are arrays: element by element, in C order."""
    arrays = [_numbers(p) for p in parameters]
    shape = np.broadcast_shapes(*(a.shape for a in arrays))
    if out is not None and not isinstance(out, np.ndarray):
        raise TypeError("out must be an array")
    one = size is None and out is None and shape == ()
    if size is None and out is not None:
        size = out.shape
    if size is None:
        size = shape
    else:
        size = _shape(size)
        if np.broadcast_shapes(shape, size) != size:
            raise ValueError(
                f"Output size {size} is not compatible with broadcast dimensions of inputs {shape}."
            )
    columns = tuple(np.ascontiguousarray(np.broadcast_to(a, size), np.float64) for a in arrays)
    result_type = distribution.result_type(dtype)
    if out is None:
        out = np.empty(size, result_type)
    elif out.dtype != result_type or out.shape != size or not out.flags.carray:
        raise TypeError(f"out must be a writable C-contiguous {result_type} array of shape {size}")
    else:  # that elements written leave those to be read alone
        columns = tuple(c.copy() if np.may_share_memory(c, out) else c for c in columns)
    _pexquo.draw_each(stream, distribution, method, out, columns)
    return out.item() if one else out


_pexquo.set_broadcast_hook(_draw_broadcast)


class Stream(_pexquo.Stream):
    """A stream of random numbers: a generator and its state.

    Parameters
    ----------
    generator : str
        The generator's name, a key of `generators()`: "mt19937", "mt2203", "mrg32k3a" and so on.
    member : int
        The member of a family of generators, each with parameters of its own. Members seeded alike
        start alike ("mt2203" with some 200 numbers, "wh" with a few, which are small): give each a seed
        such as [run, member], and let "wh" skip 1000 numbers first.
    seed : int, sequence of int or None
        Words of 32 bits; larger integers count as several, low words first. None asks the operating
        system for a seed that nobody else has. The default, 1, makes programs repeatable. Each factor
        of 2 in the seed halves the period of "mcg59", which is 2**57 of odd ones.
    dimension : int
        Of quasi-random generators, instead of a seed: the length of a point, whose coordinates come
        one after the other. 1 by default.

    A stream is the same on every machine: equal seeds give equal bits. Threads may share a stream,
    which a lock guards; for independent sequences give each a member of its own, or skip. Streams
    pickle and copy with their whole state.

    Distributions take NumPy's argument names. `size` is an integer or a shape, None for one number;
    parameters may be arrays, which broadcast with each other and draw element by element. Where
    `dtype` is given it is float64 or float32, of integers int64 or int32; `out` is a C-contiguous
    array to fill.

    >>> import numpy as np, pexquo
    >>> s = pexquo.Stream("mt2203", member=7, seed=[1, 2])
    >>> s
    <pexquo.Stream: mt2203, member 7>
    >>> s.generator, s.member
    ('mt2203', 7)
    >>> s.random(3)
    array([0.84660706, 0.43394016, 0.59478664])
    >>> import copy, pickle
    >>> twin, other = copy.copy(s), pickle.loads(pickle.dumps(s))
    >>> s.normal() == twin.normal() == other.normal()
    True
    """

    def __init__(self, generator="mt19937", *, member=0, seed=1, dimension=None):
        if not isinstance(generator, str):
            raise TypeError(f"generator must be a name, not {generator!r}")
        member = operator.index(member)
        if not -(2**63) <= member < 2**63:
            raise ValueError(f"there is no member {member} of {generator}")
        most = _MOST_COORDINATES.get(generator.lower())
        if most is None:
            if dimension is not None:
                raise ValueError(f"dimension is for quasi-random generators, not {generator}")
            words = _words(seed)
        else:
            if not (isinstance(seed, int) and seed == 1):
                raise ValueError(f"{generator} takes a dimension, not a seed")
            words = [1 if dimension is None else operator.index(dimension)]
            if not 1 <= words[0] <= most:
                raise ValueError(f"dimension must be from 1 to {most}, not {dimension}")
        super().__init__(generator, member, words)

    # ---- State. ----

    def __repr__(self):
        members = generators()[self.generator][0]
        member = f", member {self.member}" if members > 1 else ""
        return f"<pexquo.Stream: {self.generator}{member}>"

    def __reduce__(self):
        return _restore, (type(self), self.to_bytes())

    def __copy__(self):
        return _restore(type(self), self.to_bytes())

    def __deepcopy__(self, memo):
        return self.__copy__()

    def copy(self):
        """A stream that goes on as this one does, independently of it.

        >>> import pexquo
        >>> s = pexquo.Stream("mcg59")
        >>> s.copy().random() == s.random()
        True
        """
        return self.__copy__()

    def save(self, path):
        """Write the stream to a file, which any language's `load` takes.

        >>> import pexquo, tempfile, os
        >>> s = pexquo.Stream("mrg32k3a", seed=5)
        >>> with tempfile.TemporaryDirectory() as folder:
        ...     s.save(os.path.join(folder, "stream"))
        ...     again = pexquo.Stream.load(os.path.join(folder, "stream"))
        >>> again.random() == s.random()
        True
        """
        self.to_file(_file_name(path))

    @classmethod
    def load(cls, path):
        """The stream that `save` wrote. ValueError for a file that is none, else OSError."""
        stream = cls.__new__(cls)
        _pexquo.Stream.__init__(stream, path=_file_name(path))
        return stream

    def skip(self, n):
        """Move on by n elements of the generator's sequence, in little time whatever n, and return
        the stream. NotImplementedError of generators that cannot: the Mersenne twisters and R250.

        >>> import pexquo
        >>> s = pexquo.Stream("mrg32k3a")
        >>> t = s.copy().skip(1000)
        >>> s.random(1001)[1000] == t.random()
        True
        """
        n = operator.index(n)
        if not 0 <= n < 2**64:
            raise ValueError(f"skip: n must be from 0 to 2**64 - 1, not {n}")
        super().skip(n)
        return self

    def leapfrog(self, k, n):
        """From now on deliver elements k, k + n, k + 2 n ... of the sequence, and return the stream.
        NotImplementedError of generators that cannot.

        >>> import pexquo
        >>> s = pexquo.Stream("mcg31m1")
        >>> t = s.copy().leapfrog(1, 3)
        >>> s.random(6)[1::3].tolist() == t.random(2).tolist()
        True
        """
        k, n = operator.index(k), operator.index(n)
        if not 0 <= k < n < 2**31:
            raise ValueError(f"leapfrog: k must be from 0 to n - 1, n below 2**31; not {k}, {n}")
        super().leapfrog(k, n)
        return self

    # ---- Uniform. ----

    def raw(self, size=None):
        """The generator's own output words, as uint32: one number each of most generators; of
        "mcg59" two, of "wh" four words in a last dimension.

        >>> import pexquo
        >>> pexquo.Stream("mt19937", seed=5489).raw(2).dtype
        dtype('uint32')
        """
        shape = () if size is None else tuple(np.atleast_1d(size).tolist())
        if self.raw_words > 1:
            shape += (self.raw_words,)
        out = np.empty(shape, np.uint32)
        _pexquo.draw_raw(self, out)
        return int(out) if out.ndim == 0 else out

    def random(self, size=None, dtype=np.float64, out=None):
        """Uniform on [0, 1): the generator's own scaled output, which rounding may make 1 (in float32
        one of 2^25).

        >>> import pexquo
        >>> pexquo.Stream("mcg59").random((2, 2)).shape
        (2, 2)
        """
        return _draw(self, _RANDOM, dtype, None, size, out, 0.0, 1.0)

    def uniform(self, low=0.0, high=1.0, size=None, *, dtype=np.float64, out=None):
        """Uniform on [low, high); rounding may give high itself.

        >>> import pexquo
        >>> x = pexquo.Stream("mcg59").uniform(-1, [1, 10], size=(1000, 2))
        >>> bool((x[:, 0] < 1).all()), bool((x[:, 1] > 1).any())
        (True, True)
        """
        return _draw(self, _UNIFORM, dtype, None, size, out, low, high)

    def integers(self, low, high=None, size=None, dtype=np.int64, endpoint=False, *, out=None):
        """Integers from low to high - 1 (high with endpoint=True), or from 0 to low - 1. All bounds,
        high + 1 too with endpoint=True, lie within 32 bits; for wider ones see `bit_generator`. One
        double uniform each.

        >>> import pexquo
        >>> sorted(set(pexquo.Stream("mt19937").integers(1, 6, 1000, endpoint=True).tolist()))
        [1, 2, 3, 4, 5, 6]
        """
        if high is None:
            low, high = 0, low
        if endpoint:
            high = np.add(_numbers(high), 1, dtype=np.float64)
        return _draw(self, _INTEGERS, dtype, None, size, out, low, high)

    # ---- Normal. ----

    def standard_normal(self, size=None, dtype=np.float64, out=None, *, method="icdf"):
        """Normal with mean 0 and standard deviation 1: see `normal`."""
        return _draw(self, _STANDARD_NORMAL, dtype, method, size, out, 0.0, 1.0)

    def normal(
        self, loc=0.0, scale=1.0, size=None, *, dtype=np.float64, method="icdf", out=None
    ):
        """Normal with mean loc and standard deviation scale.

        Methods: "icdf" (the default) inverts one uniform for each number, which also suits
        quasi-random streams and skipping; "boxmuller2" makes two numbers of two uniforms and keeps
        the second for the next call; "boxmuller" makes one of two.

        >>> import pexquo
        >>> x = pexquo.Stream("mt19937").normal(10, 2, size=100000, method="boxmuller2")
        >>> bool(abs(x.mean() - 10) < 0.03), bool(abs(x.std() - 2) < 0.03)
        (True, True)
        """
        return _draw(self, _NORMAL, dtype, method, size, out, loc, scale)

    def multivariate_normal(self, mean, cov, size=None, *, dtype=np.float64, method="icdf"):
        """Normal vectors with that mean and covariance matrix (symmetric, positive definite), by its
        Cholesky factor. Methods are those of `normal`.

        >>> import numpy as np, pexquo
        >>> cov = [[2.0, 0.5], [0.5, 1.0]]
        >>> x = pexquo.Stream("mt19937").multivariate_normal([1, 2], cov, size=100000)
        >>> bool(np.abs(np.cov(x.T) - cov).max() < 0.05)
        True
        """
        dtype = _NORMAL.result_type(dtype)
        mean = np.ascontiguousarray(_numbers(mean), dtype)
        cov = _numbers(cov).astype(np.float64)
        if mean.ndim != 1 or mean.size == 0 or cov.shape != (mean.size, mean.size):
            raise ValueError("multivariate_normal: mean must be a vector, cov a matrix of its order")
        if not (np.isfinite(mean).all() and np.isfinite(cov).all()):
            raise ValueError("multivariate_normal: mean and cov must be finite")
        if not np.allclose(cov, cov.T, atol=1e-8 * np.abs(cov).max()):
            raise ValueError("multivariate_normal: cov must be symmetric")
        try:
            factor = np.ascontiguousarray(np.linalg.cholesky(cov), dtype)
        except np.linalg.LinAlgError:
            raise ValueError("multivariate_normal: cov must be positive definite") from None
        if not np.isfinite(factor).all():
            raise ValueError(f"multivariate_normal: cov is too large for {np.dtype(dtype)}")
        shape = () if size is None else tuple(np.atleast_1d(size).tolist())
        out = np.empty(shape + (mean.size,), dtype)
        _pexquo.draw_multivariate(self, _MULTIVARIATE, method, mean, factor, out)
        return out

    # ---- Other continuous distributions. ----

    def standard_exponential(self, size=None, dtype=np.float64, out=None):
        """Exponential with mean 1."""
        return _draw(self, _STANDARD_EXPONENTIAL, dtype, None, size, out, 0.0, 1.0)

    def exponential(self, scale=1.0, size=None, *, dtype=np.float64, out=None):
        """Exponential with mean scale.

        >>> import pexquo
        >>> bool(abs(pexquo.Stream("mt19937").exponential(3, 100000).mean() - 3) < 0.05)
        True
        """
        return _draw(self, _EXPONENTIAL, dtype, None, size, out, 0.0, scale)

    def laplace(self, loc=0.0, scale=1.0, size=None, *, dtype=np.float64, out=None):
        """Laplace, two-sided exponential about loc."""
        return _draw(self, _LAPLACE, dtype, None, size, out, loc, scale)

    def weibull(self, a, size=None, *, dtype=np.float64, out=None):
        """Weibull of shape a and scale 1."""
        return _draw(self, _WEIBULL, dtype, None, size, out, a, 0.0, 1.0)

    def standard_cauchy(self, size=None, *, dtype=np.float64, out=None):
        """Cauchy about 0 with half-width 1."""
        return _draw(self, _STANDARD_CAUCHY, dtype, None, size, out, 0.0, 1.0)

    def cauchy(self, loc=0.0, scale=1.0, size=None, *, dtype=np.float64, out=None):
        """Cauchy about loc; scale is half the width at half the height."""
        return _draw(self, _CAUCHY, dtype, None, size, out, loc, scale)

    def rayleigh(self, scale=1.0, size=None, *, dtype=np.float64, out=None):
        """Rayleigh with density x / scale^2 exp(-x^2 / (2 scale^2))."""
        beta = (
            scale * _SQRT2
            if isinstance(scale, float)
            else np.multiply(_numbers(scale), _SQRT2, dtype=np.float64)
        )
        return _draw(self, _RAYLEIGH, dtype, None, size, out, 0.0, beta)

    def lognormal(self, mean=0.0, sigma=1.0, size=None, *, dtype=np.float64, out=None):
        """e to normal numbers with that mean and standard deviation."""
        return _draw(self, _LOGNORMAL, dtype, None, size, out, mean, sigma, 0.0, 1.0)

    def gumbel(self, loc=0.0, scale=1.0, size=None, *, dtype=np.float64, out=None):
        """Gumbel of largest values, as NumPy's: loc - scale log(-log(u)).

        >>> import pexquo
        >>> x = pexquo.Stream("mt19937").gumbel(size=100000)
        >>> bool(abs(x.mean() - 0.5772) < 0.02)
        True
        """
        return _draw(self, _GUMBEL, dtype, None, size, out, loc, scale)

    # ---- Discrete distributions. ----

    def bernoulli(self, p, size=None, *, dtype=np.int64, out=None):
        """1 with probability p (as a single-precision number), else 0.

        >>> import pexquo
        >>> pexquo.Stream("mt19937").bernoulli(1.0, 3)
        array([1, 1, 1])
        """
        return _draw(self, _BERNOULLI, dtype, None, size, out, p)

    def geometric(self, p, size=None, *, out=None):
        """The number of trials up to the first success, 1 at least, as in NumPy. (The library's C
        interface counts the failures before it, one less.)

        >>> import pexquo
        >>> x = pexquo.Stream("mt19937").geometric(0.25, 100000)
        >>> int(x.min()), bool(abs(x.mean() - 4) < 0.05)
        (1, True)
        """
        return _draw(self, _GEOMETRIC, np.int64, None, size, out, p)

    # ---- Distributions by rejection, where the library has them. ----

    if _GAMMA is not None:

        def gamma(self, shape, scale=1.0, size=None, *, dtype=np.float64, out=None):
            """Gamma of that shape and scale, mean shape scale."""
            return _draw(self, _GAMMA, dtype, None, size, out, shape, 0.0, scale)

        def standard_gamma(self, shape, size=None, dtype=np.float64, out=None):
            """Gamma of that shape and scale 1."""
            return _draw(self, _STANDARD_GAMMA, dtype, None, size, out, shape, 0.0, 1.0)

        def chisquare(self, df, size=None, *, dtype=np.float64, out=None):
            """Chi-square with df degrees of freedom."""
            shape = np.divide(_numbers(df), 2.0, dtype=np.float64)
            return _draw(self, _CHISQUARE, dtype, None, size, out, shape, 0.0, 2.0)

    if _BETA is not None:

        def beta(self, a, b, size=None, *, dtype=np.float64, out=None):
            """Beta with exponents a - 1 of x and b - 1 of 1 - x."""
            return _draw(self, _BETA, dtype, None, size, out, a, b, 0.0, 1.0)

    if _BINOMIAL is not None:

        def binomial(self, n, p, size=None, *, dtype=np.int64, out=None):
            """Successes in n trials of probability p."""
            return _draw(self, _BINOMIAL, dtype, None, size, out, n, p)

    if _POISSON is not None:

        def poisson(
            self, lam=1.0, size=None, *, dtype=np.int64, method="ptpe", out=None
        ):
            """Poisson with mean lam.

            Method "ptpe" is exact; "normal" takes one uniform a count and approximates it by a
            normal number from lam = 27 on, which serves arrays of many means best.
            """
            return _draw(self, _POISSON, dtype, method, size, out, lam)

    if _HYPERGEOMETRIC is not None:

        def hypergeometric(self, ngood, nbad, nsample, size=None, *, dtype=np.int64, out=None):
            """Good ones among nsample drawn, without putting back, from ngood and nbad."""
            ngood, nbad, nsample = _numbers(ngood), _numbers(nbad), _numbers(nsample)
            total = np.add(ngood, nbad, dtype=np.float64)
            if np.less(nbad, 0).any():
                raise ValueError("hypergeometric: nbad must be an integer from 0 to 2147483647")
            if np.less(total, nsample).any():
                raise ValueError("hypergeometric: nsample must not exceed ngood + nbad")
            return _draw(self, _HYPERGEOMETRIC, dtype, None, size, out, total, nsample, ngood)

    if _NEGATIVE_BINOMIAL is not None:

        def negative_binomial(self, n, p, size=None, *, dtype=np.int64, out=None):
            """Failures before the n-th success of probability p."""
            return _draw(self, _NEGATIVE_BINOMIAL, dtype, None, size, out, n, p)


_SQRT2 = 2.0**0.5
# Of the quasi-random generators.
_MOST_COORDINATES = {"sobol": 40, "niederr": 318}


def _restore(cls, state):
    stream = cls.__new__(cls)
    _pexquo.Stream.__init__(stream, state)
    return stream


def _file_name(path):
    name = os.fsencode(path)
    if b"\0" in name:
        raise ValueError("a file's name must not hold a null character")
    return name
