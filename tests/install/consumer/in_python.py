"""Exponentials, a stream and an element error, from Python."""
import sys

import numpy as np
import pexquo

x = pexquo.Stream("mrg32k3a", seed=1).uniform(size=1000)
y = pexquo.exp(x, tier="la")
assert ((0 <= x) & (x < 1)).all()
assert np.allclose(y, np.exp(x), rtol=1e-14, atol=0)
with pexquo.errors() as errors:
    pexquo.log([1.0, 0.0])
assert [e.index for e in errors] == [(1,)], errors
if len(sys.argv) > 1:
    assert pexquo.__version__ == sys.argv[1], pexquo.__version__
print(pexquo.__version__, pexquo.__file__)
