#!/usr/bin/env python3
"""Known answers of the generators, from their definitions in plain Python.

make_kat.py mcg31m1|mcg59|wh|mt19937|mt2203 writes the file of that name with the ending .kat. Each block is one
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
    code = "<Q" if name == "mcg59" else "<I" if name != "wh" else "<4I"
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
