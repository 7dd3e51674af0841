#!/usr/bin/env python3
"""Puts every generator through dieharder and a few checks of its own; writes docs/randomness.md.

    scripts/randomness.py [--full] [--program PATH] [--only NAME ...] [--quasi]

Needs the program `pexquo` built and the Debian package dieharder, which nothing else needs. Takes
about 70 seconds of one core for each source; --full runs all of dieharder (hours). --only takes
sources by name, prints what it finds and leaves the document alone; --quasi needs no dieharder and
renews the section on quasi-random points and its picture (by gnuplot).
"""
import argparse
import array
import bisect
import contextlib
import datetime
import pathlib
import shutil
import subprocess
import sys
import tempfile
import textwrap
import threading
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent
SEED = "314159265,271828182,161803398,141421356"
MEMBERS = 8  # of an interleaving

# dieharder's arguments, one run each. Fewer samples than its standard where a run takes long.
TESTS = [
    "-d 0", "-d 2 -p 25", "-d 3", "-d 4", "-d 5", "-d 6", "-d 7 -p 25", "-d 8", "-d 9", "-d 13 -p 50",
    "-d 14", "-d 15", "-d 16 -p 50", "-d 100", "-d 101 -p 50", "-d 102 -p 50", "-d 200 -n 1",
    "-d 200 -n 2 -p 50", "-d 200 -n 4 -p 25", "-d 203 -n 0 -p 50", "-d 203 -n 1 -p 50",
    "-d 203 -n 7 -p 50", "-d 203 -n 31 -p 10",
]

WORDS = ["uniformbits"]
# How a source is fed: what is drawn, and whether two draws make a word.
FED = {
    "words": (WORDS, False, "words"),
    "uniforms": (["uniform", "--type", "i", "--a", "-2147483648", "--b", "2147483647"], False, "32 bits of u"),
    "halves": (["uniform", "--type", "i", "--a", "0", "--b", "65536"], True, "16 bits of u, two to a word"),
}

# Name, generator, members, what is fed, what is known beforehand.
SOURCES = [
    ("MCG31M1", "mcg31m1", [0], "halves",
     "A lattice of one multiplier and a period of 2^31 - 2. A test that takes more than some 10^4 "
     "(the root of the period) draws and looks at many bits of several in a row can find that they "
     "never repeat and lie on few planes; a use of 10^9 draws exhausts it. The words have 31 bits, the "
     "top one of 32 being 0, and uniforms have no 32 bits either: a test of words of 32 bits would fail "
     "for that alone, so two draws make a word."),
    ("R250", "r250", [0], "words",
     "Each bit is a sequence of its own, x[n] = x[n-103] xor x[n-250], linear of degree 250: tests of "
     "rank beyond 250 and of linear complexity fail at once, and so does whatever sees three draws "
     "103 and 250 apart, such as gaps and random walks longer than that. Matrices of 32 x 32 and "
     "6 x 8 are too small to see it. One seed word, which it is given here (fewer than "
     "250 count as one), leaves the low bits far from random for long (above)."),
    ("MRG32K3A", "mrg32k3a", [0], "words",
     "Nothing is expected to fail. The words are below 2^32 - 209; no test of this size sees that."),
    ("MCG59", "mcg59", [0], "uniforms",
     "Nothing is expected to fail in the upper bits of the 59. Bit k of the state repeats after at "
     "most 2^(k-1) draws (the lowest two bits never change), so the low bits of the raw 64-bit words "
     "fail everything. The uniforms have these bits last, where they weigh least."),
    ("WH 0", "wh", [0], "uniforms",
     "Nothing is expected to fail. The raw output is four words below 2^24, the states of the four "
     "congruential generators, and not meant as bits; the uniform is their sum modulo 1."),
    ("WH 272", "wh", [272], "uniforms", "As the other members."),
    (f"WH, {MEMBERS} members", "wh", range(MEMBERS), "uniforms",
     "Members 0, 1 ... in turn, all with one seed. Their first draws are alike (above)."),
    ("MT19937", "mt19937", [0], "words",
     "Linear over GF(2), of degree 19937: tests of rank and linear complexity beyond that fail; those "
     "here are smaller."),
    ("MT2203 0", "mt2203", [0], "words",
     "Linear over GF(2), of degree 2203: tests of rank and linear complexity beyond that fail; those "
     "here are smaller."),
    ("MT2203 1023", "mt2203", [1023], "words", "As the other members."),
    (f"MT2203, {MEMBERS} members", "mt2203", range(MEMBERS), "words",
     "Members 0, 1 ... in turn, all with one seed. Their first words are alike (above)."),
]

# Generator, words of an output, and the bits looked at: word, bit, name.
BITS = [
    ("mcg31m1", 1, [(0, 30, "top of 31"), (0, 0, "lowest")]),
    ("r250", 1, [(0, 31, "top"), (0, 0, "lowest")]),
    ("mrg32k3a", 1, [(0, 31, "top"), (0, 0, "lowest")]),
    ("mcg59", 2, [(1, 26, "top of 59"), (0, 12, "12"), (0, 4, "4"), (0, 0, "lowest")]),
    ("wh:0", 4, [(0, 23, "top of the first component"), (0, 0, "lowest of the first component")]),
    ("mt19937", 1, [(0, 31, "top"), (0, 0, "lowest")]),
    ("mt2203:0", 1, [(0, 31, "top"), (0, 0, "lowest")]),
    ("mt2203:1023", 1, [(0, 31, "top"), (0, 0, "lowest")]),
]
LENGTH = 50000  # bits: more than twice the largest degree, 19937


def command(program, generator, what, count, seed=SEED):
    return [program, "draw", *what, "--generator", generator, "--seed", seed, "--count", str(count),
            "--format", "raw"]


def drawn(program, generator, what, count, kind, seed=SEED):
    """A finite request as an array."""
    numbers = array.array(kind)
    numbers.frombytes(subprocess.run(command(program, generator, what, count, seed), check=True,
                                     capture_output=True).stdout)
    return numbers


# ---- The batteries. ----

def mix(pipes, halves, sink):
    """Writes a number of each pipe in turn, whole or its lower half, until the reader is gone."""
    size = 1 << 14
    kind, step = ("H", 2) if halves else ("I", 1)
    mixed = array.array(kind, bytes(4 * size * len(pipes) // step))
    with contextlib.suppress(BrokenPipeError), sink:
        while True:
            for k, pipe in enumerate(pipes):
                mixed[k::len(pipes)] = array.array(kind, pipe.read(4 * size))[::step]
            sink.write(mixed)


@contextlib.contextmanager
def words_of(program, generator, members, fed):
    """A pipe of 32-bit words without end."""
    what, halves, _ = FED[fed]
    name = generator if generator not in ("wh", "mt2203") else generator + ":{}"
    writers = [subprocess.Popen(command(program, name.format(m), what, "1e15"), stdout=subprocess.PIPE,
                                stderr=subprocess.DEVNULL) for m in members]
    mixer = None
    try:
        if len(writers) > 1 or halves:
            last = subprocess.Popen(["cat"], stdin=subprocess.PIPE, stdout=subprocess.PIPE)
            mixer = threading.Thread(target=mix, args=([w.stdout for w in writers], halves, last.stdin))
            mixer.start()
            writers.append(last)
        yield writers[-1].stdout
    finally:
        for writer in reversed(writers):  # the mixer ends when nobody reads what it writes
            writer.terminate()
            writer.wait()
            if mixer is not None:
                mixer.join()
            writer.stdout.close()


def dieharder(pipe, arguments):
    """Test, n-tuple, p-value and assessment of each line of a run that reads on from the pipe."""
    text = subprocess.run(["dieharder", "-g", "200", *arguments.split()], stdin=pipe, check=True,
                          capture_output=True, text=True).stdout
    lines = [[cell.strip() for cell in line.split("|")] for line in text.splitlines()]
    return [(c[0], int(c[1]), float(c[4]), c[5]) for c in lines
            if len(c) >= 6 and c[5] in ("PASSED", "WEAK", "FAILED")]


def battery(pipe, full):
    """Each line of each run, and for the weak ones the p-value of one repetition."""
    results = []
    for arguments in ["-a"] if full else TESTS:
        lines = dieharder(pipe, arguments)
        if not lines:
            raise SystemExit(f"dieharder {arguments} reported nothing")
        again = []
        if not full and any(line[3] == "WEAK" for line in lines):
            again = dieharder(pipe, arguments)
        for k, line in enumerate(lines):
            results.append((*line, again[k][2] if again and line[3] == "WEAK" else None))
    return results


def gathered(results):
    """Rows of a table: the lines of a test together."""
    tests = {}
    for test, ntuple, p, assessment, again in results:
        tests.setdefault(test, []).append((ntuple, p, assessment, again))
    for test, lines in tests.items():
        odd = [f"WEAK: {p:.6f}" + (f" at n = {ntuple}" if len(set(line[0] for line in lines)) > 1 else "")
               + (f" (repeated: {again:.4f})" if again is not None else "")
               for ntuple, p, assessment, again in lines if assessment == "WEAK"]
        failed = [ntuple for ntuple, _, assessment, _ in lines if assessment == "FAILED"]
        if failed and len(failed) == len(lines):
            odd.append("FAILED")
        elif failed:
            odd.append(f"{len(failed)} FAILED, n = {', '.join(map(str, dict.fromkeys(failed)))}")
        ps = [line[1] for line in lines]
        span = f"{ps[0]:.4f}" if len(ps) == 1 else f"{len(ps)} from {min(ps):.4f} to {max(ps):.4f}"
        yield f"| {test} | {span} | {'; '.join(odd) or 'passed'} |"


# ---- Checks of our own. ----

def linear_complexity(bits):
    """Berlekamp and Massey over GF(2): J. L. Massey, IEEE Trans. Information Theory 15 (1969)."""
    connection, former = 1, 1  # polynomials, coefficient i in bit i
    length, gap, window = 0, 1, 0  # window: bit i is bits[n - i]
    for n, bit in enumerate(bits):
        window = window << 1 | bit
        if (connection & window).bit_count() & 1:
            longer = connection ^ former << gap
            if 2 * length <= n:
                length, former, gap = n + 1 - length, connection, 0
            connection = longer
        gap += 1
    return length


def complexities(program):
    for generator, words, bits in BITS:
        outputs = drawn(program, generator, WORDS, LENGTH, "I")
        for word, bit, name in bits:
            yield generator, name, linear_complexity(x >> bit & 1 for x in outputs[word::words])


def changes(program, seed, bits, blocks):
    """For each bit of R250, the part of the draws of each block in which it is not as it was."""
    words = drawn(program, "r250", WORDS, blocks[-1][1], "I", seed)
    for bit in bits:
        yield bit, [sum((x ^ y) >> bit & 1 for x, y in zip(words[a:b], words[a + 1:b])) / (b - a - 1)
                    for a, b in blocks]


def alike_words(program, first, last, pairs=64):
    """The part of the bits in which words first to last - 1 of two members with one seed differ."""
    differing = 0
    for k in range(pairs):
        seed = str(1 + 1000003 * k)
        x, y = (drawn(program, f"mt2203:{m}", WORDS, last, "I", seed)[first:] for m in (16 * k, 16 * k + 1))
        differing += sum((a ^ b).bit_count() for a, b in zip(x, y))
    return differing / (32 * pairs * (last - first))


def alike_uniforms(program, members=65):
    """Mean distance around the circle of draws 0 to 5 of neighbouring members with one seed."""
    draws = [drawn(program, f"wh:{m}", ["uniform"], 6, "d") for m in range(members)]
    for k in range(6):
        gaps = [abs(a[k] - b[k]) for a, b in zip(draws, draws[1:])]
        yield k, sum(min(g, 1 - g) for g in gaps) / len(gaps)


# ---- Quasi-random points. ----

def points(program, generator, count, coordinates):
    """Two coordinates, counted from 1, of the first points."""
    if generator == "mt19937":
        u = drawn(program, generator, ["uniform"], 2 * count, "d")
        return list(zip(u[::2], u[1::2]))
    arguments = [program, "draw", generator, "--dimension", str(max(coordinates)), "--count", str(count)]
    rows = subprocess.run(arguments, check=True, capture_output=True, text=True).stdout.splitlines()
    return [tuple(float(row.split("\t")[k - 1]) for k in coordinates) for row in rows]


def star_discrepancy(pairs):
    """The greatest difference between the part of the points in a box from the origin and its area."""
    pairs = sorted(pairs)
    heights, most = [0.0, 1.0], 0.0
    for i in range(len(pairs) + 1):
        left = pairs[i - 1][0] if i else 0.0
        right = pairs[i][0] if i < len(pairs) else 1.0
        for k in range(len(heights) - 1):
            most = max(most, k / len(pairs) - left * heights[k], right * heights[k + 1] - k / len(pairs))
        if i < len(pairs):
            bisect.insort(heights, pairs[i][1])
    return most


PLOT = """set terminal svg size 760,400 font 'sans,12' background 'white' noenhanced
set output '{file}'
set multiplot layout 1,2
set size square
set xrange [0:1]
set yrange [0:1]
set tics 0.25 out nomirror format '%g'
set grid lc rgb '#dddddd'
unset key
set title '{count} points of MT19937'
plot '{random}' with points pt 7 ps 0.35 lc rgb '#b2182b'
set title '{count} points of Sobol, coordinates 1 and 2'
plot '{sobol}' with points pt 7 ps 0.35 lc rgb '#2166ac'
"""


def draw_picture(program, file, count=256):
    with tempfile.TemporaryDirectory() as folder:
        files = {}
        for name, generator in (("random", "mt19937"), ("sobol", "sobol")):
            files[name] = f"{folder}/{name}"
            lines = (f"{x!r} {y!r}\n" for x, y in points(program, generator, count, (1, 2)))
            pathlib.Path(files[name]).write_text("".join(lines))
        subprocess.run(["gnuplot"], check=True, text=True, input=PLOT.format(file=file, count=count, **files))


QUASI_HEAD = "## Quasi-random points"
QUASI = QUASI_HEAD + """

Sobol and Niederr, `pexquo draw sobol --dimension 8`, are no random generators, and the tests above are
not for them: their points are as evenly spread as can be. Each coordinate of 2^m points in a row, from
a multiple of 2^m on, falls once into each interval of length 2^-m, and boxes in several dimensions
have their share likewise. The mean of a smooth function of few coordinates over n such points misses
its integral by little more than 1/n, over random ones by 1/sqrt(n).

![256 points of the square, pseudo-random and of Sobol](quasi-points.svg)

The star discrepancy of the first n points of the square, the greatest difference between the part of
the points in a box from the origin and the area of the box:

| n | {sources} |
|---:|{rules}|
{lines}

So use them where an integral is wanted, with as many coordinates as one evaluation takes numbers
(`draw gaussian --generator sobol --dimension 8` takes one for each, by inversion). Do not where numbers
have to be independent, nor with a method that takes a varying number of them. Points are best taken by
powers of 2. The last coordinates are the worst: some of their pairs need thousands of points to become
even, and are worse than random ones before that.

"""
PAIRS = [("MT19937", "mt19937", (1, 2)), ("Sobol 1, 2", "sobol", (1, 2)), ("Sobol 7, 8", "sobol", (7, 8)),
         ("Sobol 39, 40", "sobol", (39, 40)), ("Niederr 7, 8", "niederr", (7, 8)),
         ("Niederr 317, 318", "niederr", (317, 318))]


def quasi_section(program):
    draw_picture(program, ROOT / "docs/quasi-points.svg")
    lines = []
    for count in (64, 256, 1024, 4096):
        lines.append([str(count)] + [f"{star_discrepancy(points(program, generator, count, pair)):.4f}"
                                     for _, generator, pair in PAIRS])
    return QUASI.format(sources=" | ".join(name for name, _, _ in PAIRS), lines=table(lines),
                        rules="|".join(["---:"] * len(PAIRS)))


def replace_quasi_section(program):
    file = ROOT / "docs/randomness.md"
    before, _, rest = file.read_text().partition(QUASI_HEAD)
    after = rest[rest.index("\n## "):]
    file.write_text(before + wrapped(quasi_section(program).rstrip()) + "\n" + after)


# ---- The document. ----

HEAD = """# How random are the generators?

Written by `scripts/randomness.py`, which measures every figure here: {date}, dieharder {version},
{what}, seed words {seed}.

A source is one sequence without end, and each test reads on where the one before it stopped. It is
fed either the generator's words of 32 bits as they are, or, where the words are not meant as 32
random bits, its uniforms u: 32 bits of each, floor((2^32 - 1) u) with the top bit inverted, or
floor(2^16 u) of two draws in a word.

The p-values are uniform for ideal bits; dieharder calls one WEAK when it or its complement is below
0.005, and FAILED below 10^-6. Of the {count} p-values {one_percent:.0f} would be WEAK by chance, often
several of one test together; {weak} are, and {failed} FAILED. A test with a WEAK p-value is repeated
once, further on, and the new p-value is in brackets: WEAK twice is a finding{twice}. dieharder's own
notes on its tests: diehard_opso, diehard_oqso and diehard_dna are suspect, diehard_sums is faulty
("do not use"); they stand here for the record.

"""

R250_SEED = """## R250 and its seed

One seed word s makes the state of R250 of the words s 69069^k, whose low bits hardly change, and the
recurrence takes long to mix them. The part of the draws in which a bit is not what it was before, with
the seed word 1, and at the end with the whole state, 250 words of MT19937, for a seed; 0.5 is due:

| bit | {blocks} |
|---|{rules}|
{lines}

So seed R250 with 250 words from elsewhere, or use its upper bits alone, as the uniforms do.

"""

ADVICE = """## Members with one seed

MT2203 members with the same seed start from the same 69 words and each applies its own recurrence to
them. The words they draw first are therefore alike; the part of the bits that differ, over 64 pairs
of neighbours, against 0.5 of unrelated words:

| words | differing bits |
|---|---:|
{words}

WH members with the same seed start from the same four states. The mean distance of the draws of
neighbours (of 65 members), around the circle, against 0.25 of unrelated uniforms:

| draw | distance |
|---|---:|
{draws}

So give each member its own seed, or pass over the first few hundred draws of every stream.

"""

LINEAR = f"""## Linear complexity

The length of the shortest linear recurrence over GF(2) (Berlekamp-Massey) that makes one bit of
{LENGTH} successive outputs; {LENGTH // 2} is what random bits have. A generator that is linear over
GF(2) shows its degree, and the low bits of MCG59 their short periods. Bits are those of the raw
outputs, counted from the lowest.

| generator | bit | complexity |
|---|---|---:|
"""


def wrapped(text):
    """Its paragraphs in lines of at most 100 characters; tables and headings stay."""
    return "\n\n".join(p if p.startswith(("|", "#")) else textwrap.fill(p, 100) for p in text.split("\n\n"))


def table(lines):
    return "\n".join("| " + " | ".join(cells) + " |" for cells in lines)


def document(program, found, full):
    everything = [line for results, _ in found.values() for line in results]
    count = {a: sum(line[3] == a for line in everything) for a in ("PASSED", "WEAK", "FAILED")}
    version = subprocess.run(["dpkg-query", "-W", "-f=${Version}", "dieharder"], capture_output=True,
                             text=True).stdout or "of unknown version"
    twice = [f"{name} in {line[0]}" for name, (results, _) in found.items() for line in results
             if line[4] is not None and min(line[4], 1 - line[4]) < 0.005]
    seconds = sum(s for _, s in found.values()) / len(found)
    text = HEAD.format(
        date=datetime.date.today(), version=version, seed=SEED.replace(",", ", "), count=len(everything),
        one_percent=len(everything) / 100, weak=count["WEAK"], failed=count["FAILED"] or "none",
        twice=f" ({'; '.join(twice)})" if twice else " (there is none)",
        what=("all its tests" if full else
              f"a choice of its tests, {seconds:.0f} seconds for a source on a busy machine (`--full` runs all)"))
    text += "| source | fed | p-values | weak | failed |\n|---|---|---:|---:|---|\n"
    lines = []
    for name, _, _, fed, _ in SOURCES:
        if name not in found:
            continue
        results = found[name][0]
        failed = sorted({line[0] for line in results if line[3] == "FAILED"})
        lines.append([name, FED[fed][2], str(len(results)), str(sum(line[3] == "WEAK" for line in results)),
                      ", ".join(failed) or "none"])
    text += table(lines) + "\n\n" + LINEAR
    text += table([g, bit, str(c)] for g, bit, c in complexities(program)) + "\n\n"
    blocks = [(0, 1000), (1000, 10000), (10000, 100000), (100000, 1000000)]
    state = ",".join(map(str, drawn(program, "mt19937", WORDS, 250, "I")))
    lines = [(which, bit, parts) for which, seed, bits in (("", "1", range(5)), (", 250 seed words", state, (0, 1)))
             for bit, parts in changes(program, seed, bits, blocks)]
    text += R250_SEED.format(
        blocks=" | ".join(f"{a} to {b - 1}" for a, b in blocks), rules="|".join(["---:"] * len(blocks)),
        lines=table([f"{bit}{which}", *(f"{part:.4f}" for part in parts)] for which, bit, parts in lines))
    blocks = [(0, 69), (69, 138), (138, 207), (207, 276), (276, 2000)]
    text += ADVICE.format(
        words=table([f"{a} to {b - 1}", f"{alike_words(program, a, b):.4f}"] for a, b in blocks),
        draws=table([str(k), f"{d:.4f}"] for k, d in alike_uniforms(program)))
    text += quasi_section(program)
    text += "## Test by test\n"
    for name, _, _, fed, known in SOURCES:
        if name in found:
            rows = "\n".join(gathered(found[name][0]))
            text += (f"\n### {name}\n\n{known} Fed: {FED[fed][2]}.\n\n"
                     f"| test | p | assessment |\n|---|---|---|\n{rows}\n")
    return wrapped(text.rstrip()) + "\n"


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawTextHelpFormatter)
    parser.add_argument("--full", action="store_true", help="all tests of dieharder")
    parser.add_argument("--program", default=str(ROOT / "build/release/bin/pexquo"))
    parser.add_argument("--only", nargs="+", metavar="NAME", help="sources: "
                        + "; ".join(s[0] for s in SOURCES))
    parser.add_argument("--quasi", action="store_true", help="renew the section on quasi-random points alone")
    options = parser.parse_args()
    if options.quasi:
        replace_quasi_section(options.program)
        return
    if not shutil.which("dieharder"):
        sys.exit("dieharder is missing: apt-get install dieharder")
    if not shutil.which(options.program):
        sys.exit(f"{options.program} is missing: build the target pexquo_program, or say --program PATH")
    found = {}
    for name, generator, members, fed, _ in SOURCES:
        if options.only and name not in options.only:
            continue
        begin = time.monotonic()
        with words_of(options.program, generator, members, fed) as pipe:
            results = battery(pipe, options.full)
        found[name] = (results, time.monotonic() - begin)
        print(f"{name}: {found[name][1]:.0f} s", *gathered(results), sep="\n", flush=True)
    if not found:
        sys.exit("no such source")
    text = document(options.program, found, options.full)
    if options.only:
        print(text)
    else:
        (ROOT / "docs/randomness.md").write_text(text)


if __name__ == "__main__":
    main()
