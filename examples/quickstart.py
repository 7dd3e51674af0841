"""A first look at pexquo in Python: functions, their errors, and random streams."""
import pickle

import numpy as np

import pexquo

# Functions take what NumPy's take: any shape and type, lists and numbers.
x = np.linspace(0, 4, 5)
print("x:          ", x)
print("erf(x):     ", pexquo.erf(x).round(6))
print("cdfnorm(1.96):", round(pexquo.cdfnorm(1.96), 6))

# Three tiers of accuracy: how far are they from the most accurate?
x = np.random.default_rng(1).uniform(0, 10, 100_000)
exact = pexquo.exp(x)
for tier in ("ha", "la", "ep"):
    error = np.abs(pexquo.exp(x, tier=tier) / exact - 1).max()
    print(f"exp in tier {tier}: within {error:.1e} of the best")

# Special elements, one by one, instead of warnings.
with pexquo.errors() as found:
    pexquo.log([1.0, 2.0, 0.0, -3.0])
for e in found:
    print(f"{e.function} at {e.index} of {e.arguments[0]}: {e.reason}, result {e.result}")

# A stream is the same on every machine; members of a family are independent.
s = pexquo.Stream("mt2203", member=7, seed=[1, 2])
print("pi is about", 4 * (np.hypot(*s.random((2, 1_000_000))) < 1).mean().round(3))
print("heights:", s.normal(loc=175, scale=8, size=4).round(1))

# A stream that is kept goes on where it was.
kept = pickle.dumps(s)
print("the same bits:", bool((pickle.loads(kept).random(1000) == s.random(1000)).all()))

# NumPy's own methods on the stream.
g = np.random.Generator(pexquo.bit_generator(s))
print("a hand of cards:", g.choice(52, size=5, replace=False))
