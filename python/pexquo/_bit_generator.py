"""NumPy's generators on the library's streams."""

import numpy as np

from . import _pexquo

__all__ = ["BitGenerator", "bit_generator"]


class BitGenerator(np.random.BitGenerator):
    """What `bit_generator` makes."""

    def __init__(self, stream):
        if not isinstance(stream, _pexquo.Stream):
            raise TypeError(f"a bit generator draws from a pexquo.Stream, not {stream!r}")
        super().__init__(0)
        self._stream = stream
        self._lock = stream.lock()
        _pexquo.attach(self.capsule, stream)

    @property
    def stream(self):
        """The stream that is drawn from."""
        return self._stream

    @property
    def lock(self):
        """The stream's lock."""
        return self._lock

    @property
    def state(self):
        """The stream, copied, in a dictionary as NumPy's bit generators have it; set, it takes the
        stream back there."""
        return {"bit_generator": type(self).__name__, "state": self._stream.to_bytes()}

    @state.setter
    def state(self, value):
        if not isinstance(value, dict):
            raise TypeError("state must be a dict")
        if value.get("bit_generator") != type(self).__name__:
            raise ValueError(f"state must be for a {type(self).__name__}")
        self._stream.restore(value["state"])

    def random_raw(self, size=None, output=True):
        """Words of 32 bits, as uint64 like those of NumPy's bit generators of that size."""
        with self.lock:
            return super().random_raw(size, output)

    def __reduce__(self):
        return bit_generator, (self._stream,)


def bit_generator(stream):
    """A bit generator for `numpy.random.Generator` that draws from the stream.

    The 32-bit words of the stream are delivered in their order. A 64-bit integer takes two, the
    first one above; a double takes two, the upper 27 bits of the first above the upper 26 of the
    second: so NumPy makes them of MT19937's words, whose `Generator` this one equals bit for bit.
    Words are the outputs of generators of 32 bits ("mrg32k3a": from 0 to 2^32 - 210); "mcg31m1"
    makes one of the upper 16 bits of two outputs, the first above; "mcg59" gives its upper 32 bits,
    "wh" those of its uniform.

    The stream moves on with what the generator takes: both may be used in turns, and from several
    threads. To keep the state, take `state`, or pickle the stream or the bit generator. (NumPy before
    version 2 can pickle a `Generator` only on bit generators of its own.)

    >>> import numpy as np, pexquo
    >>> g = np.random.Generator(pexquo.bit_generator(pexquo.Stream("mt2203", member=3)))
    >>> sorted(g.permutation(5).tolist())
    [0, 1, 2, 3, 4]
    """
    return BitGenerator(stream)
