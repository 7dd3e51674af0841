"""Distributions: made of the stream's uniforms as documented, in NumPy's parameters and shapes."""

import math
from decimal import Decimal
from fractions import Fraction

import numpy as np
import pexquo
import pytest

N = 5000


def uniforms(stream, n, dtype="f8"):
    return stream.copy().random(n, dtype=dtype).astype("f8")


def log(u):
    return np.log(np.maximum(u, 1e-300))


def pairs(u):
    """The second Box-Muller form."""
    r, angle = np.sqrt(-2 * log(u[0::2])), 2 * np.pi * u[1::2]
    return np.stack([r * np.sin(angle), r * np.cos(angle)], axis=1).ravel()


# Name: the call, and what the results are of uniforms u on [0, 1).
CONTINUOUS = {
    "random": (lambda s, **k: s.random(N, **k), lambda u: u),
    "uniform": (lambda s, **k: s.uniform(-2, 3, N, **k), lambda u: -2 + 5 * u),
    "boxmuller2": (lambda s, **k: s.normal(4, 2, N, method="boxmuller2", **k),
                   lambda u: 4 + 2 * pairs(u)),
    "boxmuller": (lambda s, **k: s.normal(4, 2, N // 2, method="boxmuller", **k),
                  lambda u: 4 + 2 * pairs(u)[0::2]),
    "lognormal": (lambda s, **k: s.lognormal(0.5, 0.25, N, **k),
                  lambda u: np.exp(0.5 + 0.25 * pairs(u))),
    "exponential": (lambda s, **k: s.exponential(3, N, **k), lambda u: -3 * log(u)),
    "standard_exponential": (lambda s, **k: s.standard_exponential(N, **k), lambda u: -log(u)),
    "laplace": (lambda s, **k: s.laplace(1, 2, N // 2, **k), None),
    "weibull": (lambda s, **k: s.weibull(1.8, N, **k), lambda u: (-log(u)) ** (1 / 1.8)),
    "cauchy": (lambda s, **k: s.cauchy(1, 2, N, **k), lambda u: 1 + 2 * np.tan(np.pi * (u - 0.5))),
    "standard_cauchy": (lambda s, **k: s.standard_cauchy(N, **k),
                        lambda u: np.tan(np.pi * (u - 0.5))),
    "rayleigh": (lambda s, **k: s.rayleigh(2, N, **k), lambda u: 2 * np.sqrt(-2 * log(u))),
    "gumbel": (lambda s, **k: s.gumbel(1, 2, N, **k), lambda u: 1 - 2 * log(-log(u))),
}


@pytest.mark.parametrize("dtype", ["f8", "f4"])
@pytest.mark.parametrize("name", [n for n in CONTINUOUS if n != "laplace"])
def test_continuous_is_of_the_uniforms(name, dtype):
    call, formula = CONTINUOUS[name]
    s = pexquo.Stream("mt19937", seed=11)
    u = uniforms(s, N, dtype)
    x = call(s, dtype=dtype)
    assert x.dtype == np.dtype(dtype)
    # The accuracy of tangents, roots and logarithms that amplify the error of u is left out.
    usual = (u[: len(x)] > 0.02) & (u[: len(x)] < 0.98)
    np.testing.assert_allclose(x[usual], formula(u)[usual], rtol=2e-6 if dtype == "f8" else 1e-3,
                               atol=1e-6 if dtype == "f8" else 2e-4)


def kolmogorov(x, distribution):
    """The distance of the empirical distribution, in units whose 1.95 has probability 0.001."""
    x = np.sort(np.asarray(x, float))
    f = distribution(x)
    i = np.arange(len(x))
    return max((f - i / len(x)).max(), ((i + 1) / len(x) - f).max()) * math.sqrt(len(x))


NORMAL = np.vectorize(lambda x: math.erfc(-x / math.sqrt(2)) / 2)


@pytest.mark.parametrize("dtype", ["f8", "f4"])
@pytest.mark.parametrize("generator", ["mcg59", "mt2203", "wh", "mrg32k3a"])
def test_fits(generator, dtype):
    s = pexquo.Stream(generator, seed=77)
    for method in ("icdf", "boxmuller", "boxmuller2"):
        x = s.normal(3, 2, 20000, method=method, dtype=dtype)
        assert kolmogorov((x - 3) / 2, NORMAL) < 1.95
    assert kolmogorov(s.standard_normal(20000, dtype=dtype), NORMAL) < 1.95
    x = s.laplace(1, 2, 20000, dtype=dtype)
    assert kolmogorov((x - 1) / 2, lambda z: np.where(z < 0, np.exp(z) / 2, 1 - np.exp(-z) / 2)) < 1.95


def chi_square_excess(x, probabilities):
    """(chi-square - degrees) / sqrt(2 degrees) of the values 0, 1, ...; the last class is the rest."""
    counts = np.bincount(np.minimum(x, len(probabilities) - 1), minlength=len(probabilities))
    expected = np.array(probabilities) * len(x)
    degrees = len(probabilities) - 1
    return (((counts - expected) ** 2 / expected).sum() - degrees) / math.sqrt(2 * degrees)


def with_rest(probabilities):
    return [*probabilities, 1 - sum(probabilities)]


def test_discrete():
    s = pexquo.Stream("mt2203", seed=3)
    dice = s.integers(1, 7, 60000)
    assert dice.dtype == np.int64 and set(dice) == {1, 2, 3, 4, 5, 6}
    assert chi_square_excess(dice - 1, [1 / 6] * 6) < 5
    assert chi_square_excess(s.bernoulli(0.3, 50000), [0.7, 0.3]) < 5
    trials = s.geometric(0.3, 50000)
    assert trials.min() == 1
    assert chi_square_excess(trials - 1, with_rest([0.3 * 0.7**k for k in range(15)])) < 5


# Distributions that a library may or may not have: (call, probabilities or distribution function).
def binomial(n, p):
    return [math.comb(n, k) * p**k * (1 - p) ** (n - k) for k in range(n + 1)]


HARDER = {
    "binomial": (lambda s, n: s.binomial(12, 0.3, n), with_rest(binomial(12, 0.3)[:9])),
    "poisson": (lambda s, n: s.poisson(4.0, n),
                with_rest([math.exp(-4) * 4**k / math.factorial(k) for k in range(12)])),
    "hypergeometric": (lambda s, n: s.hypergeometric(10, 15, 8, n),
                       with_rest([math.comb(10, k) * math.comb(15, 8 - k) / math.comb(25, 8)
                                  for k in range(7)])),
    "negative_binomial": (lambda s, n: s.negative_binomial(3, 0.4, n),
                          with_rest([math.comb(k + 2, k) * 0.4**3 * 0.6**k for k in range(15)])),
    # Of shape 3 and scale 2: 1 - e^-z (1 + z + z^2/2), z = x/2.
    "gamma": (lambda s, n: s.gamma(3.0, 2.0, n),
              lambda x: 1 - np.exp(-x / 2) * (1 + x / 2 + x * x / 8)),
    "standard_gamma": (lambda s, n: s.standard_gamma(1.0, n), lambda x: 1 - np.exp(-x)),
    "chisquare": (lambda s, n: s.chisquare(4.0, n), lambda x: 1 - np.exp(-x / 2) * (1 + x / 2)),
    # With a = 2, b = 3: 6 x^2 - 8 x^3 + 3 x^4.
    "beta": (lambda s, n: s.beta(2.0, 3.0, n), lambda x: 6 * x**2 - 8 * x**3 + 3 * x**4),
}
CATALOGUE_NAMES = {"negative_binomial": "negbinomial", "standard_gamma": "gamma",
                   "chisquare": "gamma"}


@pytest.mark.parametrize("name", HARDER)
def test_harder_ones(name):
    there = CATALOGUE_NAMES.get(name, name) in pexquo._pexquo.distributions()
    assert hasattr(pexquo.Stream, name) == there
    if not there:
        pytest.skip("not in this library")
    call, law = HARDER[name]
    x = call(pexquo.Stream("mt2203", seed=8), 50000)
    if callable(law):
        assert kolmogorov(x, law) < 1.95
    else:
        assert x.dtype == np.int64 and chi_square_excess(x, law) < 5


@pytest.mark.skipif(not hasattr(pexquo.Stream, "poisson"), reason="not in this library")
def test_poisson_of_many_means():
    s = pexquo.Stream("mt2203", seed=8)
    lam = np.tile([0.5, 4.0, 40.0, 4000.0], 20000)
    for method in ("ptpe", "normal"):
        x = s.poisson(lam, method=method).reshape(-1, 4)
        error = np.sqrt(lam[:4] / len(x))  # the standard deviation of the mean
        assert (abs(x.mean(axis=0) - lam[:4]) < 5 * error).all()
        np.testing.assert_allclose(x.var(axis=0), lam[:4], rtol=0.06)
    assert s.poisson([1.0, 2.0], size=(5, 2), dtype=np.int32, method="normal").dtype == np.int32
    with pytest.raises(ValueError, match="poisson: lam must be positive"):
        s.poisson([1.0, -1.0])


def test_multivariate():
    mean, cov = np.array([1.0, -2.0, 0.5]), np.array([[4.0, 1.2, 0], [1.2, 2.0, 0.3], [0, 0.3, 1.0]])
    s = pexquo.Stream("mt19937", seed=2)
    z = s.copy().standard_normal((40000, 3))
    x = s.multivariate_normal(mean, cov, 40000)
    np.testing.assert_allclose(x, mean + z @ np.linalg.cholesky(cov).T, rtol=1e-12, atol=1e-12)
    assert s.multivariate_normal(mean, cov).shape == (3,)
    assert s.multivariate_normal(mean, cov, (2, 4), dtype="f4").shape == (2, 4, 3)
    assert s.multivariate_normal([1], [[4]], 5).shape == (5, 1)
    for bad in ((mean, cov[:2]), (mean, -cov), (mean, cov + np.triu(np.ones((3, 3)), 1)),
                ([], np.zeros((0, 0))), (mean * np.nan, cov), ([mean], cov)):
        with pytest.raises(ValueError, match="multivariate_normal: "):
            s.multivariate_normal(*bad)


# ---- Shapes, types, out. ----


def scalar_calls(s):
    yield s.random, float
    yield s.normal, float
    yield s.gumbel, float
    yield s.rayleigh, float
    yield lambda **k: s.integers(5, **k), int
    yield lambda **k: s.geometric(0.5, **k), int
    yield lambda **k: s.bernoulli(0.5, **k), int


def test_sizes():
    s = pexquo.Stream("mcg59")
    for call, kind in scalar_calls(s):
        assert type(call()) is kind
        for size, shape in ((3, (3,)), ((2, 3), (2, 3)), ([4], (4,)), ((), ()), (0, (0,)),
                            (np.int64(2), (2,)), ((0, 5), (0, 5))):
            x = call(size=size)
            assert x.shape == shape and x.dtype == (float if kind is float else np.int64)
        for bad, error in ((-1, ValueError), ((2, -1), ValueError), (1.5, TypeError),
                           ("3", TypeError)):
            with pytest.raises(error):
                call(size=bad)


def test_numbers_do_not_depend_on_the_request():
    s = pexquo.Stream("wh", member=5, seed=6)
    for name, (call, _) in CONTINUOUS.items():
        method = getattr(s, name, None)
        if method is None or name in ("random", "weibull"):
            continue
        a, b = s.copy(), s.copy()
        whole = getattr(a, name)(size=3000)
        if name == "laplace":  # drawn by 1024
            parts = [getattr(b, name)(size=n) for n in (1024, 1024, 952)]
        else:
            parts = [getattr(b, name)(size=n) for n in (1, 999, 0, 1500, 500)]
        assert (np.concatenate(parts) == whole).all(), name
    a, b = s.copy(), s.copy()
    assert [a.integers(10) for _ in range(50)] == b.integers(10, size=50).tolist()
    a, b = s.copy(), s.copy()
    assert (a.integers(10, size=3000) == b.integers(10, size=3000, dtype=np.int32)).all()


def test_out():
    s = pexquo.Stream("mcg59")
    want = s.copy().normal(1, 2, 6)
    out = np.empty((2, 3))
    assert s.copy().normal(1, 2, out=out) is out and (out.ravel() == want).all()
    assert s.copy().normal(1, 2, size=(2, 3), out=out) is out
    single = np.empty(4, "f4")
    assert s.random(dtype=np.float32, out=single) is single
    integers = np.empty(4, np.int32)
    assert s.integers(3, out=integers, dtype=np.int32) is integers
    assert s.gumbel(out=out) is out
    assert s.normal([0.0, 1.0], out=np.empty(2)).shape == (2,)
    frozen = np.empty(3)
    frozen.flags.writeable = False
    for bad in (single, np.empty(6)[::2], frozen, np.empty(3, ">f8"), [0.0], np.empty(3, int)):
        with pytest.raises(TypeError, match="out must be"):
            s.random(out=bad)
    with pytest.raises(ValueError, match="size must be the shape of out"):
        s.random(3, out=np.empty(4))
    wide = np.full(7, 9.0)
    for bad in (np.empty(2, "f4"), wide[::3][:2], np.empty(2, ">f8"), frozen[:2]):
        with pytest.raises(TypeError, match="out must be"):
            s.normal([0.0, 1.0], out=bad)
    for bad in (wide, wide[:4], np.empty((2, 2))):
        with pytest.raises(TypeError, match="out must be"):
            s.normal([0.0, 1.0], size=(3, 2), out=bad)
    assert (wide == 9).all()


def test_array_parameters():
    s = pexquo.Stream("mcg59", seed=4)
    loc, scale = np.array([[0.0], [10.0]]), np.array([1.0, 2.0, 2.0])
    one = s.copy()
    want = [[one.normal(a, b) for b in scale] for a in loc[:, 0]]
    assert s.copy().normal(loc, scale).tolist() == want
    assert s.copy().normal(loc, scale, size=(2, 3)).tolist() == want
    assert s.normal(loc, scale, size=(4, 2, 3)).shape == (4, 2, 3)
    assert s.copy().exponential([1, 2], dtype="f4").dtype == np.float32
    one = s.copy()
    want = [one.integers(0, n) for n in (5, 500, 50000)]
    assert s.copy().integers([5, 500, 50000]).tolist() == want
    assert s.integers([0, 5], [3, 6], endpoint=True, size=(9, 2)).max(axis=0)[1] <= 6
    assert s.rayleigh([1.0, 2.0]).shape == s.gumbel([1.0, 2.0], 1).shape == (2,)
    assert s.geometric([0.1, 0.9], size=(3, 2)).shape == (3, 2)
    assert s.normal(np.zeros((0, 3)), 1).shape == (0, 3)
    assert type(s.normal(np.array(1.0))) is float
    with pytest.raises(ValueError):
        s.normal([0, 1], [1, 2, 3])
    with pytest.raises(ValueError, match="not compatible"):
        s.normal(loc, scale, size=3)
    with pytest.raises(ValueError, match="scale must be positive"):
        s.normal([0, 1], [1, -1])


@pytest.mark.parametrize("call,message", [
    (lambda s: s.normal(0, 0), "normal: scale must be positive and finite"),
    (lambda s: s.normal(0, -1), "normal: scale must be positive and finite"),
    (lambda s: s.normal(0, math.inf), "normal: scale must be positive and finite"),
    (lambda s: s.normal(math.nan, 1), "normal: loc must be finite"),
    (lambda s: s.normal(0, 1e-300, dtype="f4"), "normal: scale must be positive and finite"),
    (lambda s: s.normal(1e300, dtype="f4"), "normal: loc must be finite"),
    (lambda s: s.normal(method="ziggurat"), "method must be one of: boxmuller boxmuller2 icdf"),
    (lambda s: s.normal(method=2), "method must be one of: boxmuller boxmuller2 icdf"),
    (lambda s: s.uniform(1, 1), "uniform: low must be below high"),
    (lambda s: s.uniform(2, 1), "uniform: low must be below high"),
    (lambda s: s.exponential(0), "exponential: scale must be positive"),
    (lambda s: s.weibull(-1), "weibull: a must be positive"),
    (lambda s: s.rayleigh(0), "rayleigh: scale must be positive"),
    (lambda s: s.lognormal(0, 0), "lognormal: sigma must be positive"),
    (lambda s: s.gumbel(0, 0), "gumbel: scale must be positive"),
    (lambda s: s.gumbel(math.inf), "gumbel: loc must be finite"),
    (lambda s: s.bernoulli(1.5), "bernoulli: p must be from 0 to 1"),
    (lambda s: s.bernoulli(math.nan), "bernoulli: p must be from 0 to 1"),
    (lambda s: s.geometric(0), "geometric: p must be above"),
    (lambda s: s.integers(0), "integers: low must be below high"),
    (lambda s: s.integers(5, 5), "integers: low must be below high"),
    (lambda s: s.integers(0, 2**31), "integers: high must be an integer of 32 bits"),
    (lambda s: s.integers(0, 2.5), "integers: high must be an integer of 32 bits"),
])
def test_refuses(call, message):
    s = pexquo.Stream("mcg59")
    before = s.to_bytes()
    with pytest.raises(ValueError, match=message):
        call(s)
    assert s.to_bytes() == before


def test_refuses_types():
    s = pexquo.Stream("mcg59")
    for bad in (lambda: s.normal("1"), lambda: s.normal(1j), lambda: s.normal(None)):
        with pytest.raises((TypeError, ValueError)):
            bad()
    for dtype in (int, "f2", "g", ">f8", "c16", "nonsense"):
        with pytest.raises(TypeError):
            s.normal(dtype=dtype)
    for dtype in (float, np.int16, np.uint32, ">i8"):
        with pytest.raises(TypeError, match="integers: dtype must be int64 or int32"):
            s.integers(5, dtype=dtype)
    for low, high in ((-1.7e308, 1.7e308), (1.2e308, 1.7e308)):
        with pytest.raises(OverflowError):
            s.uniform(low, high)


def test_array_parameters_take_numpys_sizes():
    s = pexquo.Stream("mcg59")
    for good in (2, (2,), [2], np.int64(2), np.array([2])):
        assert s.normal([0, 1], size=good).shape == (2,)
    for bad in (2.5, "2", [2.0], np.float64(2)):
        with pytest.raises(TypeError):
            s.normal([0, 1], size=bad)
    for bad in (-1, (), 10**20, (3,)):
        with pytest.raises(ValueError):
            s.normal([0, 1], size=bad)
    with pytest.raises(TypeError, match="out must be"):
        s.normal([0, 1], out=[0.0, 0.0])


def test_parameters_of_other_types():
    s = pexquo.Stream("mcg59")

    def first(name, *args):
        return getattr(s.copy(), name)(*args)

    assert first("normal", Fraction(1, 2), Decimal(2)) == first("normal", 0.5, 2.0)
    assert first("normal", [Fraction(1, 2), 10**30]).tolist() == first("normal", [0.5, 1e30]).tolist()
    for bad in (None, [None, 1.0], 1j, ["1"]):
        with pytest.raises(TypeError):
            s.normal(bad)
    third = Fraction(3)
    for name, args in (("rayleigh", (third,)), ("chisquare", (third,)), ("exponential", (third,)),
                       ("hypergeometric", (third, third, third)), ("integers", (0, third))):
        wanted = first(name, *map(float, args))
        assert first(name, *args) == first(name, *([a] for a in args))[0] == wanted
    assert first("integers", 0, third, None, np.int64, True) == first("integers", 4)
    with pytest.raises(ValueError, match="integer of 32 bits"):
        first("integers", 0, 10**30, None, np.int64, True)
    for name in ("rayleigh", "chisquare"):
        with pytest.raises(TypeError, match="parameters must be real numbers"):
            first(name, 1j)
    # Narrow types do not overflow, and round nothing.
    assert first("integers", 0, np.uint8(255), 9, np.int64, True).max() > 100
    assert first("integers", 0, np.array([127], np.int8), 9, np.int64, True).max() > 60
    assert first("hypergeometric", *np.array([[200], [100], [50]], np.uint8)) == first(
        "hypergeometric", [200], [100], [50])
    for dtype in ("f2", "f4", "i1"):
        for name in ("rayleigh", "chisquare"):
            assert first(name, np.array([3], dtype)) == first(name, [3.0])
    assert np.isfinite(first("rayleigh", np.array([6e4], "f2"))).all()


def test_out_over_parameters():
    s = pexquo.Stream("mcg59")
    numbers = np.arange(10.0)
    want = s.copy().normal(numbers[:-1].copy(), 0.5)
    s.copy().normal(numbers[:-1], 0.5, out=numbers[1:])
    assert (numbers[1:] == want).all()
    same = np.arange(10.0)
    want = s.copy().normal(same.copy())
    assert (s.copy().normal(same, out=same) == want).all()


def test_messages_name_the_method():
    s = pexquo.Stream("mcg59")
    for call, message in (
        (lambda: s.chisquare(-1), "chisquare: df must be"),
        (lambda: s.chisquare([1, -1]), "chisquare: df must be"),
        (lambda: s.standard_gamma(-1), "standard_gamma: shape must be"),
        (lambda: s.hypergeometric(8, -5, 3), "hypergeometric: nbad must be"),
        (lambda: s.hypergeometric([8, 8], [5, -5], 3), "hypergeometric: nbad must be"),
        (lambda: s.hypergeometric(8, 5, 14), "hypergeometric: nsample must not exceed"),
        (lambda: s.hypergeometric(8, 5, [13, 14]), "hypergeometric: nsample must not exceed"),
        (lambda: s.multivariate_normal([0], [[1e80]], dtype="f4"), "cov is too large for float32"),
    ):
        with np.errstate(all="ignore"), pytest.raises(ValueError, match=message):
            call()
    for scale in (1.0, 1e-20, 1e20):
        with pytest.raises(ValueError, match="symmetric"):
            s.multivariate_normal([0, 0], np.array([[1, 0.5], [0.4, 1]]) * scale)
        s.multivariate_normal([0, 0], np.array([[1, 0.5], [0.5 + 1e-9, 1]]) * scale)
    for mean, cov in (([1j], [[1]]), ([0], [[1j]]), (["a"], [[1]])):
        with pytest.raises(TypeError):
            s.multivariate_normal(mean, cov)
    for name in ("standard_normal", "standard_exponential", "standard_cauchy"):
        with pytest.raises(TypeError, match=name + ": dtype"):
            getattr(s, name)(dtype="f2")


def test_out_of_any_equal_type():
    out = np.zeros(50, np.longlong)
    assert pexquo.Stream("mcg59").integers(5, out=out) is out and out.max() == 4


def test_extremes():
    top = pexquo.Stream("r250", seed=[2**32 - 1] + [0] * 249)  # the first uniforms are rounded to 1
    assert top.copy().random(dtype=np.float32) == 1 and top.copy().bernoulli(1.0) == 1
    assert top.copy().integers(2**31 - 2, 2**31 - 1) == 2**31 - 2
    assert pexquo.Stream("mcg59", seed=2**64 - 1).integers([6, 6]).max() == 5
    s = pexquo.Stream("mt19937")
    assert s.integers(-(2**31), 2**31 - 1, 1000).min() < -(2**30)
    assert (s.geometric(1.0, 10) == 1).all()
    assert (s.bernoulli(0, 10) == 0).all()
    assert 0.9e9 < s.geometric(1e-12) <= 2**31
