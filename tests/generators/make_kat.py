#!/usr/bin/env python3
"""Known answers of the generators, from their definitions in plain Python.

make_kat.py mcg31m1|r250|mrg32k3a|mcg59|wh|mt19937|mt2203 writes the file of that name with the ending .kat. Each block is one
stream and the numbers that it gives from its start on:
  stream ID SEED...         identifier and seed words
  leapfrog S K              optional: the stream is part K of S
  skip N                    optional: then moved on by N
  drawn N                   optional: N outputs are drawn before
  words W...                the first ten integer outputs; MCG59 as 64-bit numbers, WH four each
  doubles A B D...          the first ten uniforms on [A, B) in double precision
  floats A B F...           the same in single precision
  crc32 words|doubles|floats N C
                            CRC-32 (as in zlib) of the first N outputs, little-endian bytes, the
                            uniforms on [0, 1)
"""
import struct
import sys
import zlib

WH_ROWS = {
    0: ((125, 117, 127, 126), (16770647, 16770643, 16770623, 16770617)),
    1: ((127, 126, 125, 123), (16770311, 16770283, 16770263, 16770209)),
    2: ((125, 119, 123, 126), (16769807, 16769771, 16769749, 16769663)),
    136: ((126, 127, 125, 124), (16758587, 16758571, 16758563, 16758527)),
    272: ((126, 127, 125, 124), (16766363, 16766359, 16766327, 16766231)),
}
COUNT = 10**6


class Stream:
    def __init__(self, name, ident, seed, leapfrog, skip):
        self.name = name
        if name == "mcg31m1":
            self.a, self.m, seed = [1132489760], [2**31 - 1], seed[:1]
        elif name == "mcg59":
            self.a, self.m = [13**13], [2**59]
            seed = [sum(w << 32 * i for i, w in enumerate(seed[:2]))]
        else:
            member = ident & 0xFFFFF if ident >= 0x100000 else ident - 4
            self.a, self.m = map(list, WH_ROWS[member])
        seed = (list(seed) + [1] * 4)[: len(self.m)]
        self.x = [s % m or 1 for s, m in zip(seed, self.m)]
        if leapfrog:
            self.skip(leapfrog[1])
            self.a = [pow(a, leapfrog[0], m) for a, m in zip(self.a, self.m)]
        self.skip(skip)

    def skip(self, n):
        self.x = [x * pow(a, n, m) % m for x, a, m in zip(self.x, self.a, self.m)]

    def states(self, n):
        x, a, m = self.x, self.a, self.m
        if len(x) == 1:
            (y,), (b,), (k,) = x, a, m
            for _ in range(n):
                yield (y,)
                y = y * b % k
        else:
            for _ in range(n):
                yield x
                x = [v * b % k for v, b, k in zip(x, a, m)]

    def uniform(self, x, a, b):
        if len(x) == 1:
            return float(x[0]) * ((b - a) * (1.0 / self.m[0])) + a
        r = [1.0 / m for m in self.m]
        s = ((x[0] * r[0] + x[1] * r[1]) + x[2] * r[2]) + x[3] * r[3]
        return (s - int(s)) * (b - a) + a


class WordStream:
    """A generator of 32-bit words: m scales them, `outputs` gives them from the start on."""

    def uniform(self, x, a, b):
        return float(x[0]) * ((b - a) * (1.0 / self.m)) + a

    def states(self, n):
        outputs = self.outputs()
        for _ in range(n):
            yield (next(outputs),)


class R250(WordStream):
    m = 2**32

    def __init__(self, seed, skip):
        if len(seed) >= 250:
            self.x = list(seed[:250])
        else:
            s = (list(seed) + [1])[0] or 1
            self.x = [s * pow(69069, k + 1, 2**32) % 2**32 for k in range(250)]
            for t in range(32):
                k = 3 + 7 * t
                self.x[k] = self.x[k] & 0xFFFFFFFF >> t | 0x80000000 >> t

    def outputs(self):
        x = list(self.x)
        while True:
            for i in range(250):
                x[i] ^= x[(i + 103) % 250]
                yield x[i]


class MRG32K3A(WordStream):
    m, m2 = 2**32 - 209, 2**32 - 22853

    def __init__(self, seed, skip):
        w = (list(seed) + [1] * 6)[:6]
        self.x = self.skip([v % self.m for v in w[:3]], (0, 1403580, -810728), skip, self.m)
        self.y = self.skip([v % self.m2 for v in w[3:]], (527612, 0, -1370589), skip, self.m2)

    @staticmethod
    def skip(w, row, n, m):
        """n steps on, by squaring the companion matrix of the row: newest, middle, oldest."""
        if not any(w):
            w = [1, 0, 0]

        def times(a, b):
            return [[sum(p * q for p, q in zip(r, c)) % m for c in zip(*b)] for r in a]

        a = [[0, 1, 0], [0, 0, 1], list(reversed(row))]
        while n:
            if n & 1:
                w = [sum(p * q for p, q in zip(r, w)) % m for r in a]
            a, n = times(a, a), n >> 1
        return w

    def outputs(self):
        (x0, x1, x2), (y0, y1, y2) = self.x, self.y
        while True:
            p1 = (1403580 * x1 - 810728 * x0) % self.m
            p2 = (527612 * y2 - 1370589 * y0) % self.m2
            x0, x1, x2, y0, y1, y2 = x1, x2, p1, y1, y2, p2
            yield (p1 - p2) % self.m


WORDS = {"r250": R250, "mrg32k3a": MRG32K3A}


# Twist matrix word, tempering masks.
MT2203_ROWS = {
    0: (0xAF81055F, 0xDD7EEF80, 0xEFD78000),
    1: (0x832604E1, 0x66AD7F80, 0xEBD58000),
    511: (0xFDEE01FF, 0x8AB47780, 0xEFD70000),
    1023: (0xE1B6093F, 0x9D326E80, 0xEFD58000),
}


class Twister:
    def __init__(self, name, ident, key, skip):
        if name == "mt19937":
            self.n, self.m, self.r, self.u = 624, 397, 31, 11
            self.abc = 0x9908B0DF, 0x9D2C5680, 0xEFC60000
        else:
            self.n, self.m, self.r, self.u = 69, 34, 5, 12
            self.abc = MT2203_ROWS[ident & 0xFFFFF]
        self.skipped = skip
        n, full = self.n, 2**32 - 1
        mt = [19650218]
        for i in range(1, n):
            mt.append(1812433253 * (mt[-1] ^ mt[-1] >> 30) + i & full)
        key = key or [1]
        i = 1
        steps = [(1664525, k + j) for j, k in enumerate(key)] * (n // len(key) + 1)
        for multiplier, add in steps[: max(n, len(key))] + [(1566083941, None)] * (n - 1):
            add = -i if add is None else add
            mt[i] = (mt[i] ^ (mt[i - 1] ^ mt[i - 1] >> 30) * multiplier) + add & full
            i += 1
            if i == n:
                mt[0], i = mt[-1], 1
        mt[0] = 1 << 31
        self.mt = mt

    def states(self, count):
        a, b, c = self.abc
        mt, n, low = self.mt[:], self.n, (1 << self.r) - 1
        for i in range(self.skipped + count):
            k = i % n
            y = mt[k] & ~low | mt[(k + 1) % n] & low
            mt[k] = mt[(k + self.m) % n] ^ y >> 1 ^ (a if y & 1 else 0)
            if i >= self.skipped:
                y = mt[k] ^ mt[k] >> self.u
                y ^= y << 7 & b
                y ^= y << 15 & c
                yield (y ^ y >> 18,)

    def uniform(self, x, a, b):
        return (x[0] - 2.0**31) * ((b - a) * 2.0**-32) + (a + b) * 0.5


def single(x):
    return struct.unpack("<f", struct.pack("<f", x))[0]


def show(name, ident, seed, leapfrog=None, skip=0, drawn=0):
    if name.startswith("mt"):
        s = Twister(name, ident, seed, drawn)
    elif name in WORDS:
        s = WORDS[name](seed, skip)
    else:
        s = Stream(name, ident, seed, leapfrog, skip)
    print(f"\nstream {ident:#x}", *seed)
    if leapfrog:
        print("leapfrog", *leapfrog)
    if skip:
        print("skip", skip)
    if drawn:
        print("drawn", drawn)
    print("words", *(w for x in s.states(10) for w in x))
    for a, b in ((0.0, 1.0), (-1.0, 3.5)):
        us = [s.uniform(x, a, b) for x in s.states(10)]
        print("doubles", a.hex(), b.hex(), *(u.hex() for u in us))
        print("floats", a.hex(), b.hex(), *(single(u).hex() for u in us))
    code = {"mcg59": "<Q", "wh": "<4I"}.get(name, "<I")
    crc = [0, 0, 0]
    for x in s.states(COUNT):
        u = s.uniform(x, 0.0, 1.0)
        crc[0] = zlib.crc32(struct.pack(code, *x), crc[0])
        crc[1] = zlib.crc32(struct.pack("<d", u), crc[1])
        crc[2] = zlib.crc32(struct.pack("<f", u), crc[2])
    for kind, c in zip(("words", "doubles", "floats"), crc):
        print("crc32", kind, COUNT, f"{c:#010x}")


def main():
    name = sys.argv[1]
    print(f"# Known answers of {name}, written by make_kat.py {name}; its head says what the lines mean.")
    if name == "wh":
        show(name, 0x500000, [1])
        show(name, 0x500001, [1, 2, 3, 4])
        show(name, 6, [7777777])
        show(name, 0x500000 + 136, [2**32 - 1] * 4, (10, 3), 2**64 - 1)
        show(name, 276, [3141592653, 2718281828, 1414213562, 1732050807], None, 10**12)
    elif name == "r250":
        show(name, 0x200000, [1])
        show(name, 0x200000, [7777777, 12345])
        show(name, 0x200000, [(k * k * 2654435761 + k) % 2**32 for k in range(250)])
        show(name, 1, [2**32 - 1])
    elif name == "mrg32k3a":
        show(name, 0x300000, [12345] * 6)
        show(name, 0x300000, [2**32 - 1] * 6, None, 2**64 - 1)
        show(name, 0x300000, [0, 0, 0, 1, 2, 3], None, 10**12)
        show(name, 2, [7777777])
    elif name == "mt19937":
        show(name, 0x800000, [0x123, 0x234, 0x345, 0x456])
        show(name, 0x800000, [])
        show(name, 0x800000, [7777777], drawn=620)
        show(name, 0x800000, [i * 2654435761 % 2**32 for i in range(700)], drawn=999)
    elif name == "mt2203":
        show(name, 0x900000, [0x123, 0x234, 0x345, 0x456])
        show(name, 0x900001, [], drawn=65)
        show(name, 0x900000 + 511, [7777777], drawn=1100)
        show(name, 0x900000 + 1023, [i * 2654435761 % 2**32 for i in range(100)], drawn=999)
    else:
        ident = 0x100000 if name == "mcg31m1" else 0x400000
        show(name, ident, [1])
        show(name, ident, [7777777, 12345])
        show(name, ident, [2**32 - 1, 2**32 - 1], (1000, 999), 2**64 - 1)
        show(name, 0 if name == "mcg31m1" else 3, [42], (7, 0))


main()
