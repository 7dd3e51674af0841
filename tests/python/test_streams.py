"""Streams: state, partition, files, pickles, threads."""

import copy
import multiprocessing
import pickle
import threading

import numpy as np
import pexquo
import pytest

NAMES = [n for n in pexquo.generators() if n not in ("sobol", "niederr")]
SKIPPING = ["mcg31m1", "mcg59", "wh", "mrg32k3a"]
LEAPING = ["mcg31m1", "mcg59", "wh"]


def last_member(name, **kwargs):
    return pexquo.Stream(name, member=pexquo.generators()[name][0] - 1, **kwargs)


def test_known_words():
    # The reference code of 2002 seeded by init_by_array, and NumPy's seeding of the same kind.
    words = pexquo.Stream("mt19937", seed=[0x123, 0x234, 0x345, 0x456]).raw(3)
    assert words.tolist() == [1067595299, 955945823, 477289528]
    theirs = np.random.MT19937()
    theirs._legacy_seeding([5, 6])
    assert (pexquo.Stream(seed=[5, 6]).raw(2000) == theirs.random_raw(2000)).all()
    # x' = 1132489760 x mod 2^31 - 1, and 13^13 x mod 2^59.
    x = [1, 1132489760, 1132489760**2 % (2**31 - 1)]
    assert pexquo.Stream("mcg31m1").raw(3).tolist() == x
    low, high = pexquo.Stream("mcg59").raw(2)[1]
    assert int(low) + (int(high) << 32) == 13**13 % 2**59


@pytest.mark.parametrize("name", NAMES)
def test_state_travels_exactly(name):
    s = last_member(name, seed=[3, 2**40])
    s.random(1000)
    s.normal(size=3, method="boxmuller2")  # leaves chunks
    s.normal(size=1, method="boxmuller2", dtype="f4")
    twins = [copy.copy(s), copy.deepcopy(s), s.copy()]
    twins += [pickle.loads(pickle.dumps(s, p)) for p in range(pickle.HIGHEST_PROTOCOL + 1)]
    state = s.to_bytes()
    want = (s.normal(size=5, method="boxmuller2").tolist(), s.raw(50).tolist(),
            s.normal(size=5, method="boxmuller2", dtype="f4").tolist())
    for t in twins:
        assert t.to_bytes() == state and type(t) is pexquo.Stream
        assert (t.generator, t.member, repr(t)) == (s.generator, s.member, repr(s))
        got = (t.normal(size=5, method="boxmuller2").tolist(), t.raw(50).tolist(),
               t.normal(size=5, method="boxmuller2", dtype="f4").tolist())
        assert got == want


class Named(pexquo.Stream):
    pass


def test_subclasses_stay():
    s = Named("mcg59")
    assert type(pickle.loads(pickle.dumps(s))) is type(copy.copy(s)) is Named


def _draw(stream):
    return stream.random(3).tolist()


def test_other_processes():
    s = last_member("mt2203")
    with multiprocessing.get_context("fork").Pool(2) as pool:
        assert pool.map(_draw, [s, s]) == [s.copy().random(3).tolist()] * 2


def test_damaged_pickles():
    state = pexquo.Stream("mcg31m1").to_bytes()
    s = pexquo.Stream("mcg31m1")
    s.normal(method="boxmuller2")
    chunked = s.to_bytes()
    bad = [b"", state[:15], state[:-1], state + b"x", b"X" + state[1:], chunked[:-1],
           state[:3] + b"\1" + state[4:],  # another format
           state[:12] + b"\xff\xff\xff\x7f" + state[16:], state[:6] + b"\0\0" + state[8:],
           chunked[:28] + b"\xff\xff\xff\xff" + chunked[32:]]
    for b in bad:
        with pytest.raises(ValueError, match="not a pickled stream"):
            type(s).__reduce__(s)[0](pexquo.Stream, b)


@pytest.mark.parametrize("name", NAMES)
def test_files(name, tmp_path):
    s = last_member(name)
    s.normal(size=3, method="boxmuller2")
    for path in (str(tmp_path / "a"), tmp_path / "b", bytes(tmp_path / "c"), tmp_path / "ü"):
        s.save(path)
        t = pexquo.Stream.load(path)
        assert t.normal(size=4, method="boxmuller2").tolist() == s.copy().normal(
            size=4, method="boxmuller2").tolist()
        assert t.member == s.member


def test_bad_files(tmp_path):
    s = pexquo.Stream("mcg59")
    with pytest.raises(FileNotFoundError, match="nowhere"):
        pexquo.Stream.load(tmp_path / "nowhere")
    with pytest.raises(IsADirectoryError):
        pexquo.Stream.load(tmp_path)
    with pytest.raises(FileNotFoundError):
        s.save(tmp_path / "no folder" / "x")
    with pytest.raises(OSError):
        s.save(tmp_path)
    with pytest.raises(OSError, match="No space"):
        s.save("/dev/full")
    with pytest.raises(ValueError, match="null"):
        s.save("a\0b")
    s.save(tmp_path / "s")
    whole = (tmp_path / "s").read_bytes()
    for data, text in ((whole[:-1], "cut short"), (b"", "cut short"), (b"x" * 50, "not a stream"),
                       (whole[:3] + b"\1" + whole[4:], "another format")):
        (tmp_path / "t").write_bytes(data)
        with pytest.raises(ValueError, match=text):
            pexquo.Stream.load(tmp_path / "t")


@pytest.mark.parametrize("name", SKIPPING)
def test_skip(name):
    s = last_member(name, seed=9)
    want = s.copy().raw(1500)
    t = s.copy()
    assert t.skip(700) is t
    t.skip(0).skip(300)
    assert (t.raw(500) == want[1000:]).all()
    far = s.copy().skip(2**64 - 1).skip(1)
    assert (far.raw(3) == s.copy().skip(2**63).skip(2**63).raw(3)).all()


@pytest.mark.parametrize("name", LEAPING)
def test_leapfrog(name):
    s = last_member(name, seed=9)
    want = s.copy().raw(90)
    for k in range(3):
        assert (s.copy().leapfrog(k, 3).raw(30) == want[k::3]).all()


def test_partition_refused():
    for name in ("mt19937", "mt2203", "r250"):
        before = pexquo.Stream(name).random()
        s = pexquo.Stream(name)
        with pytest.raises(NotImplementedError, match="cannot skip"):
            s.skip(1)
        with pytest.raises(NotImplementedError, match="cannot leapfrog"):
            s.leapfrog(0, 2)
        assert s.random() == before
    s = pexquo.Stream("mcg59")
    for n in (-1, 2**64):
        with pytest.raises(ValueError):
            s.skip(n)
    for k, n in ((-1, 2), (2, 2), (0, 0), (0, -1), (0, 2**31)):
        with pytest.raises(ValueError):
            s.leapfrog(k, n)
    for bad in (1.5, "1", None):
        with pytest.raises(TypeError):
            s.skip(bad)


def test_seeds():
    def first(seed):
        return pexquo.Stream("mt19937", seed=seed).raw()

    assert first(2**32 + 5) == first([5, 1]) == first(np.array([5, 1])) == first((5, 1))
    assert first(2**64 + 5) == first([5, 0, 1]) and first([1, 2**95]) == first([1, 0, 0, 2**31])
    assert first(1) == pexquo.Stream("mt19937").raw() == first([1]) != first([1, 7])
    assert first(np.uint32(7)) == first(7)
    assert first(None) != first(None)
    for bad in (-1, [1, -2], []):
        with pytest.raises(ValueError, match="seed"):
            first(bad)
    for bad in (1.5, "1", [1.5]):
        with pytest.raises(TypeError):
            first(bad)


def test_wrong_streams():
    with pytest.raises(ValueError, match="no generator 'pcg64'; there are mcg31m1"):
        pexquo.Stream("pcg64")
    with pytest.raises(ValueError, match="member must be from 0 to 1023 for mt2203, not 1024"):
        pexquo.Stream("mt2203", member=1024)
    with pytest.raises(ValueError, match="member must be from 0 to 0"):
        pexquo.Stream("mcg59", member=-1)
    with pytest.raises(ValueError, match="dimension is for quasi-random"):
        pexquo.Stream("mcg59", dimension=3)
    with pytest.raises(TypeError):
        pexquo.Stream("mt2203", 3)
    with pytest.raises(TypeError, match="generator must be a name, not 5"):
        pexquo.Stream(5)
    with pytest.raises(TypeError, match="'float' object"):
        pexquo.Stream("mt2203", member=1.5)
    with pytest.raises(ValueError, match="no member"):
        pexquo.Stream("mt2203", member=2**70)


def test_streams_that_were_never_initialised():
    s = pexquo.Stream.__new__(pexquo.Stream)
    for call in (s.random, s.raw, s.copy, lambda: s.generator, lambda: s.member, lambda: repr(s),
                 lambda: s.skip(1), lambda: s.leapfrog(0, 2), lambda: s.normal([0.0, 1.0]),
                 lambda: pexquo.bit_generator(s), lambda: s.multivariate_normal([0], [[1]])):
        with pytest.raises(ValueError, match="never initialised"):
            call()


def test_members_are_different():
    first = {pexquo.Stream("mt2203", member=m).raw(2).tobytes() for m in range(0, 1024, 31)}
    assert len(first) == len(range(0, 1024, 31))


def test_threads_share_a_stream():
    """Every number is given out once, whoever asks, through all ways to draw."""
    s = pexquo.Stream("mt19937", seed=4)
    whole = s.copy().random(8 * 40 * 1000)
    drawn = [[] for _ in range(8)]

    def work(mine):
        for _ in range(40):
            mine.append(s.random(1000))

    threads = [threading.Thread(target=work, args=(d,)) for d in drawn]
    for t in threads:
        t.start()
    for t in threads:
        t.join()
    together = np.concatenate([np.concatenate(d) for d in drawn])
    assert (np.sort(together) == np.sort(whole)).all()
    # Each request got a stretch of the sequence.
    place = {x: i for i, x in enumerate(whole)}
    for d in drawn:
        for part in d:
            at = place[part[0]]
            assert (part == whole[at : at + 1000]).all()


@pytest.mark.skipif(not {"sobol", "niederr"} <= set(pexquo.generators()),
                    reason="no quasi-random generators in this library")
@pytest.mark.parametrize("name", ["sobol", "niederr"])
def test_quasi_random(name):
    points = pexquo.Stream(name, dimension=8).random((256, 8))
    # Any 256 = 2^8 successive points split every axis into evenly filled halves and quarters.
    for column in points.T:
        counts = np.histogram(column, 4, (0, 1))[0]
        assert abs(counts - 64).max() <= 2
    s = pexquo.Stream(name, dimension=8)
    s.random(40)
    assert (pickle.loads(pickle.dumps(s)).random(80) == s.random(80)).all()
    third = s.copy().skip((-120) % 8)
    with pytest.raises(NotImplementedError):
        third.copy().leapfrog(2, 7)
    assert (third.copy().leapfrog(2, 8).random(5) == third.random(40)[2::8]).all()
    most = {"sobol": 40, "niederr": 318}[name]
    assert pexquo.Stream(name).random(2).tolist() == pexquo.Stream(name, dimension=1).random(2).tolist()
    pexquo.Stream(name, dimension=most)
    for bad in (0, -1, most + 1):
        with pytest.raises(ValueError, match="dimension must be from 1 to"):
            pexquo.Stream(name, dimension=bad)
    with pytest.raises(ValueError, match="not a seed"):
        pexquo.Stream(name, seed=5)
