"""numpy.random.Generator on the library's streams."""

import pickle
import threading

import numpy as np
import pexquo
import pytest


def generator(stream):
    return np.random.Generator(pexquo.bit_generator(stream))


DRAWS = [
    lambda g: g.random(1000),
    lambda g: g.random(7, dtype="f4"),
    lambda g: g.normal(size=1000),
    lambda g: g.standard_exponential(100, dtype="f4"),
    lambda g: g.integers(0, 1000, 77),
    lambda g: g.integers(0, 2**60, 77),
    lambda g: g.integers(0, 100, 5, dtype=np.uint8),
    lambda g: g.poisson(3.0, 50),
    lambda g: g.binomial(100, 0.3, 50),
    lambda g: g.gamma(2.0, size=50),
    lambda g: g.permutation(100),
    lambda g: g.choice(50, 10, replace=False),
    lambda g: g.multivariate_normal([0, 1], np.eye(2), 5),
    lambda g: np.frombuffer(g.bytes(40), np.uint8),
]


def test_equals_numpys_own_bit_for_bit():
    theirs = np.random.MT19937()
    theirs._legacy_seeding([5, 6])
    ours, theirs = generator(pexquo.Stream("mt19937", seed=[5, 6])), np.random.Generator(theirs)
    for draw in DRAWS:
        assert (draw(ours) == draw(theirs)).all()


@pytest.mark.parametrize("name", [n for n in pexquo.generators() if n not in ("sobol", "niederr")])
def test_words_in_order(name):
    s = pexquo.Stream(name, seed=123)
    raw, uniforms = s.copy().raw(6000), s.copy().random(3000)
    if name == "mcg31m1":
        words = (raw[0::2] >> 15 << 16) | (raw[1::2] >> 15 & 0xFFFF)
    elif name == "mcg59":
        words = (raw[:, 0].astype(np.uint64) + (raw[:, 1].astype(np.uint64) << 32) >> 27)
    elif name == "wh":
        words = np.floor(uniforms * 2.0**32)
    else:
        words = raw
    words = words[:3000].astype(np.uint64)
    bits = pexquo.bit_generator(s.copy())
    assert isinstance(bits, np.random.BitGenerator)
    assert (bits.random_raw(3000) == words).all()
    draw = np.random.Generator(pexquo.bit_generator(s.copy()))
    assert (draw.integers(0, 2**64, 900, dtype=np.uint64, endpoint=False)
            == (words[0:1800:2] << np.uint64(32)) + words[1:1800:2]).all()
    doubles = ((words[1800::2] >> np.uint64(5)) * 2.0**26 + (words[1801::2] >> np.uint64(6))) / 2.0**53
    assert (draw.random(600) == doubles).all()
    # Each of the 32 bits is fair: 6 standard deviations.
    ones = [(words >> np.uint64(b) & np.uint64(1)).sum() for b in range(32)]
    assert (abs(np.array(ones, float) - 1500) < 6 * np.sqrt(3000) / 2).all()


@pytest.mark.parametrize("name", ["mt19937", "mcg31m1", "mcg59", "wh"])
def test_stream_and_generator_take_turns(name):
    """The stream stands where the generator has read to, not where blocks end."""
    s = pexquo.Stream(name, seed=7)
    outputs = {"mcg31m1": 2}.get(name, 1)
    words = pexquo.bit_generator(s.copy()).random_raw(5000)
    plain = s.copy().raw(5000 * outputs)
    bits = pexquo.bit_generator(s)
    at = 0
    for take, give in ((3, 5), (1024, 1), (0, 7), (1500, 2), (1, 0), (10, 1)):
        assert (bits.random_raw(take) == words[at : at + take]).all()
        at += take
        drawn = s.raw(give * outputs)
        assert (drawn == plain[at * outputs : (at + give) * outputs]).all()
        at += give
    bits.random_raw(10)
    for twin in (s.copy(), pickle.loads(pickle.dumps(s)), pickle.loads(pickle.dumps(bits)).stream):
        assert (twin.raw(outputs) == plain[(at + 10) * outputs : (at + 11) * outputs]).all()


def test_keeps_the_stream_alive():
    g = generator(pexquo.Stream("mt2203", member=9, seed=1))
    want = generator(pexquo.Stream("mt2203", member=9, seed=1)).random(100000)
    assert (g.random(100000) == want).all()


def test_threads():
    s = pexquo.Stream("mt19937", seed=2)
    words = np.sort(s.copy().raw(40 * 900))
    g, drawn = generator(s), []

    def by_generator():
        for _ in range(20):
            drawn.append(g.integers(0, 2**32, 900, dtype=np.uint32))

    def by_stream():
        for _ in range(10):
            drawn.append(s.raw(900))

    threads = [threading.Thread(target=by_generator)]
    threads += [threading.Thread(target=by_stream) for _ in range(2)]
    for t in threads:
        t.start()
    for t in threads:
        t.join()
    assert (np.sort(np.concatenate(drawn)) == words).all()


def test_lock():
    s = pexquo.Stream("mcg59")
    bits = pexquo.bit_generator(s)
    drawn = []
    thread = threading.Thread(target=lambda: drawn.append(s.random()))
    with bits.lock, bits.lock:
        first = s.random()  # by the holder
        thread.start()
        thread.join(0.05)
        assert thread.is_alive() and not drawn
    thread.join()
    assert drawn and drawn[0] != first
    with pytest.raises(RuntimeError, match="not held"):
        bits.lock.release()
    bits.lock.acquire()
    bits.lock.release()


def test_state_is_set():
    s = pexquo.Stream("mt2203", member=3)
    bits = pexquo.bit_generator(s)
    generator = np.random.Generator(bits)
    generator.random(5)
    s.normal(size=3, method="boxmuller2")
    state = bits.state
    want = generator.random(5).tolist(), s.copy().normal(size=3, method="boxmuller2").tolist()
    bits.state = state
    assert bits.stream is s
    assert want == (generator.random(5).tolist(), s.normal(size=3, method="boxmuller2").tolist())
    other = pexquo.bit_generator(pexquo.Stream("mt2203", member=4)).state
    for bad in (other, {}, {"bit_generator": "MT19937", "state": state["state"]},
                {"bit_generator": "BitGenerator", "state": b""}):
        with pytest.raises(ValueError, match="state|pickled stream"):
            bits.state = bad
    with pytest.raises(TypeError):
        bits.state = state["state"]


def test_wrong_streams():
    for bad in (None, 1, np.random.MT19937()):
        with pytest.raises(TypeError, match="draws from a pexquo.Stream"):
            pexquo.bit_generator(bad)
