#!/usr/bin/env python3
"""Computes and measures the tables of docs/many-machines.md and writes them into it.

    scripts/stream_layout.py [--check] [LIBRARY]    (build/release/lib/libpexquo.so)

With --check it writes nothing and fails when a table is not what the page has; times aside, all of
them are the same on every machine.
"""
import array
import ctypes
import math
import pathlib
import re
import sys
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent
PAGE = ROOT / "docs/many-machines.md"
IDS = {"MCG31M1": 0x100000, "R250": 0x200000, "MRG32K3A": 0x300000, "MCG59": 0x400000,
       "WH": 0x500000, "MT19937": 0x800000, "MT2203": 0x900000}
MCG59_MULTIPLIER = 13**13
MCG59_PERIOD = 2**57  # of an odd seed: the multiplier is 5 modulo 8


class Library:
    """The entries that the measurements need."""

    def __init__(self, path):
        lib = ctypes.CDLL(path)
        self.create = lib["__quoNewStreamEx"]
        self.delete = lib["__quoDeleteStream"]
        self.skip = lib["__quoSkipAheadStream"]
        self.skip.argtypes = [ctypes.c_void_p, ctypes.c_uint64]
        self.name = lib["__quoGetStreamStateBrng"]
        self.name.argtypes = [ctypes.c_void_p]
        self.uniform = lib["_quodRngUniform"]
        self.uniform.argtypes = [ctypes.c_uint32, ctypes.c_void_p, ctypes.c_int32, ctypes.c_void_p,
                                 ctypes.c_double, ctypes.c_double]

    def stream(self, identifier, *seeds):
        stream = ctypes.c_void_p()
        words = (ctypes.c_uint32 * len(seeds))(*seeds)
        if self.create(ctypes.byref(stream), identifier, len(seeds), words) != 0:
            raise SystemExit(f"no stream of generator {identifier:#x}")
        return stream

    def draw(self, stream, count):
        numbers = array.array("d", bytes(8 * count))
        address, _ = numbers.buffer_info()
        if self.uniform(0, stream, count, address, 0, 1) != 0:
            raise SystemExit("no numbers")
        return numbers


def least_time(call, calls, repeats=30):
    """Seconds of one call, the least of several repeats."""
    best = math.inf
    for _ in range(repeats):
        start = time.perf_counter()
        for _ in range(calls):
            call()
        best = min(best, time.perf_counter() - start)
    return best / calls


def duration(seconds):
    for unit, size in (("years", 365.25 * 86400), ("days", 86400), ("hours", 3600),
                       ("minutes", 60), ("s", 1), ("ms", 1e-3), ("us", 1e-6)):
        if seconds >= size:
            return f"{seconds / size:.3g} {unit}"
    return f"{seconds / 1e-9:.3g} ns"


def log2(number):
    """Exponent of two of a whole number of any size."""
    shift = max(0, number.bit_length() - 60)
    return shift + math.log2(number >> shift)


def power(number):
    exponent = log2(number)
    return f"2^{exponent:.0f}" if abs(exponent - round(exponent)) < 5e-3 else f"2^{exponent:.2f}"


def wh_moduli():
    text = (ROOT / "quo_sub_kernel/wh/wh_tables.h").read_text()
    table = re.search(r"uint32_t _quo_WH_M\[[^=]*= *\{(.*?)\};", text, re.S)[1]
    numbers = [int(n) for n in re.findall(r"\b\d{8}\b", table)]
    return [numbers[i:i + 4] for i in range(0, len(numbers), 4)]


def mt2203_twists():
    text = (ROOT / "quo_sub_kernel/mt2203/mt2203_table.cc").read_text()
    return [int(row[0], 16) for row in
            re.findall(r"(0x[0-9A-Fa-f]{8}), (0x[0-9A-Fa-f]{8}), (0x[0-9A-Fa-f]{8})", text)]


def generators(library):
    """Period, way, and what it costs to get to a stream's place."""
    m1, m2 = 2**32 - 209, 2**32 - 22853
    rows = wh_moduli()
    assert len(rows) == 273 and len({m for row in rows for m in row}) == 1092
    twists = mt2203_twists()
    assert len(twists) == len(set(twists)) == 1024
    wh_period = min(math.lcm(*(m - 1 for m in row)) for row in rows)
    periods = [("MRG32K3A", power((m1**3 - 1) * (m2**3 - 1) // 2)),
               ("WH", f"{power(wh_period)} at least"), ("MCG59", power(MCG59_PERIOD)),
               ("MCG31M1", "2^31 - 2"), ("MT2203", "2^2203 - 1"), ("MT19937", "2^19937 - 1"),
               ("R250", "2^250 - 1")]
    table = ["| generator | members | period | skip-ahead | new stream | one uniform |",
             "|---|---:|---|---:|---:|---:|"]
    figures = {}
    for name, period in periods:
        stream = library.stream(IDS[name], 1976, 1)
        call = least_time(lambda: library.name(stream), 1000)
        skip = "-"
        if library.skip(stream, 1) == 0:
            # As many bits set as not.
            skip = duration(least_time(lambda: library.skip(stream, 0x5555AAAA3333CCCC), 200) - call)
        numbers = array.array("d", bytes(8 * 10000))
        address, _ = numbers.buffer_info()
        uniform = least_time(lambda: library.uniform(0, stream, 10000, address, 0, 1), 10) / 10000
        figures[name] = uniform
        words = (ctypes.c_uint32 * 2)(1976, 1)

        def renew():
            library.delete(ctypes.byref(stream))
            library.create(ctypes.byref(stream), IDS[name], 2, words)
        new = least_time(renew, 200) - 2 * call
        members = {"WH": 273, "MT2203": 1024}.get(name, 1)
        table.append(f"| {name} | {members} | {period} | {skip} | {duration(new)} | "
                     f"{uniform * 1e9:.2f} ns |")
        library.delete(ctypes.byref(stream))
    return table, figures


def blocks(figures):
    """How long the blocks are when all ranks share what one skip reaches."""
    table = ["| ranks | MCG59: block | drawn in | MRG32K3A: block | drawn in |",
             "|---:|---|---:|---|---:|"]
    for exponent in (6, 10, 13, 16, 20):
        cells = [f"{2**exponent}"]
        for name, reach in (("MCG59", MCG59_PERIOD), ("MRG32K3A", 2**64)):
            length = reach >> exponent
            cells += [power(length), duration(length * figures[name])]
        table.append("| " + " | ".join(cells) + " |")
    return table


def shortest(distance):
    """The shortest vector (v1, v2) with v1 + v2 A^distance = 0 modulo the period of MCG59: the pairs
    (u(n), u(n + distance)) lie on at most |v1| + |v2| lines. Gauss's reduction."""
    m = MCG59_PERIOD
    a, b = (m, 0), (-pow(MCG59_MULTIPLIER, distance, m), 1)
    norm = lambda v: v[0] * v[0] + v[1] * v[1]
    if norm(a) < norm(b):
        a, b = b, a
    while True:
        dot, size = a[0] * b[0] + a[1] * b[1], norm(b)
        q = (2 * dot + size) // (2 * size)
        a = (a[0] - q * b[0], a[1] - q * b[1])
        if norm(a) >= size:
            return b
        a, b = b, a


def merit(vector):
    """Its length relative to the bound that no lattice passes."""
    return math.hypot(*vector) / math.sqrt(2 / math.sqrt(3) * MCG59_PERIOD)


def spread(library, name, length, ranks=1024, draws=2000):
    """The variance of the mean of `ranks` streams at that distance, over that of unrelated ones."""
    sums = [0.0] * draws
    for rank in range(ranks):
        stream = library.stream(IDS[name], 1977, 1)
        library.skip(stream, rank * length % 2**64)
        sums = [s + u for s, u in zip(sums, library.draw(stream, draws))]
        library.delete(ctypes.byref(stream))
    means = [s / ranks for s in sums]
    return sum((m - 0.5) ** 2 for m in means) / draws * 12 * ranks


def distances(library):
    table = ["| block | merit | lines | MCG59 | MRG32K3A | WH |", "|---|---:|---:|---:|---:|---:|"]
    for label, length in (("10^9", 10**9), ("10^12", 10**12), ("10^12 + 1", 10**12 + 1),
                          ("2^20", 2**20), ("2^30", 2**30), ("2^30 + 1", 2**30 + 1),
                          ("2^40", 2**40), ("2^40 + 1", 2**40 + 1), ("2^47", 2**47),
                          ("2^47 - 1", 2**47 - 1)):
        vectors = [shortest(length * d) for d in range(1, 1024)]
        lines = min(abs(v[0]) + abs(v[1]) for v in vectors)
        least = min(map(merit, vectors))
        cells = [f"{spread(library, name, length):.3f}" for name in ("MCG59", "MRG32K3A", "WH")]
        table.append(f"| {label} | {least:.2g} | {lines:.2g} | " + " | ".join(cells) + " |")
    return table


def chance(value):
    return "below 10^-100" if value == 0 else f"{value:.2g}" if value > 1e-4 else f"{value:.1e}"


def overlaps():
    """Streams started at random: n of length L on a cycle of P overlap with probability
    1 - (1 - n L / P)^(n - 1)."""
    table = ["| streams | numbers each | MCG59 | WH, one member | MRG32K3A | R250 |",
             "|---:|---|---:|---:|---:|---:|"]
    for n, length in ((64, 1e9), (1024, 1e9), (1024, 1e12), (8192, 1e12), (65536, 1e12)):
        cells = []
        for exponent in (57, 92.98, 191, 250):
            part = n * length / 2.0**exponent
            cells.append("1" if part >= 1 else chance(-math.expm1((n - 1) * math.log1p(-part))))
        table.append(f"| {n} | 10^{math.log10(length):.0f} | " + " | ".join(cells) + " |")
    return table


def seeds():
    """Equal seeds among n random ones of b bits: 1 - (1 - 1/2^b) (1 - 2/2^b) ..."""
    table = ["| streams | 32-bit seeds | 64-bit seeds |", "|---:|---:|---:|"]
    for n in (64, 1024, 8192, 65536, 2**20):
        cells = [chance(-math.expm1(sum(math.log1p(-k / 2.0**bits) for k in range(1, n))))
                 for bits in (32, 64)]
        table.append(f"| {n} | " + " | ".join(cells) + " |")
    return table


def replace(text, name, table):
    pattern = re.compile(rf"(<!-- {name} -->\n).*?(<!-- end of {name} -->)", re.S)
    filled, count = pattern.subn(lambda m: m[1] + "\n".join(table) + "\n" + m[2], text)
    if count != 1:
        raise SystemExit(f"{PAGE.name}: the markers of {name} are missing")
    return filled


def main():
    arguments = sys.argv[1:]
    check = arguments[:1] == ["--check"]
    path = arguments[check] if len(arguments) > check else ROOT / "build/release/lib/libpexquo.so"
    library = Library(str(path))
    tables = {"distances": distances(library), "overlaps": overlaps(), "seeds": seeds()}
    if not check:
        tables["generators"], figures = generators(library)
        tables["blocks"] = blocks(figures)
    page = PAGE.read_text()
    filled = page
    for name, table in tables.items():
        filled = replace(filled, name, table)
    if check and filled != page:
        raise SystemExit(f"{PAGE.name} is not what this library gives: run scripts/stream_layout.py")
    if not check:
        PAGE.write_text(filled)


if __name__ == "__main__":
    main()
