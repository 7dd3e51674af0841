#!/usr/bin/env python3
"""Runs the benchmark programs and writes docs/performance.md with its plots.

    bench/report.py                          the whole document; takes several minutes
    bench/report.py --name performance-epyc  the same under another name
    bench/report.py --filter '^Ln/' --print  a part of the tables, to the terminal

Every figure is the least of many short repeats, ours and the peers' shuffled in one run, on one
processor. A ratio is our time over the peer's: below 1 we are faster.
"""

import argparse
import collections
import datetime
import json
import os
import pathlib
import re
import shutil
import subprocess
import sys

LEVELS = {"avx512": "AVX-512", "avx2": "AVX2", "sse4": "SSE4"}
JUDGED = ("avx512", "avx2")  # levels whose misses are listed; others are for information
PROGRAMS = {"vector": "pexquo_bench", "random": "pexquo_bench_random", "complex": "pexquo_bench_complex"}
TYPES = {"d": "double", "s": "single"}
TIERS = ("ep", "la", "ha", "plain")
OURS = "pexquo"

# Bounds of the error classes, in ulp; LA is compared with peers of its class.
LA_CLASS = 4.0
LA_CLASS_OF = {("Ln", "d"): 1.0}
HA_CLASS = 1.0
CLASS_SLACK = 1.1
# The most that a ratio may be.
HA_SINGLE_LIMIT = 2.0  # correctly rounded, hence twice SLEEF's time
SCALAR_GAIN = 10.0     # a scalar loop's time over ours, at least
HARDWARE = ("Sqrt", "Inv", "Div", "Pow3o2")  # one instruction each, or little more
HARDWARE_LIMIT = 1.1
EP_GAIN = 1.2          # LA time over EP time, at least, where LA takes longer than a hardware root
ROOTS = ("Hypot",)     # whose LA is a hardware root and a few sums
LEADS_TO_LA = (("Powx", "s"),)  # EP is LA under another name
NARROW = "Boost narrow"  # told not to promote, as Boost does by itself: shown, not a target
FRONT_ADDS = 5.0       # ns that the front may add to a call
PARALLEL_GAIN = 1.8    # of two threads, where memory is not the bound
CALL_OVERHEAD = 10.0   # ns of a call of 1 to 15 elements beyond its elements
# Peer's time over ours, at least: of generators, and of distributions, which are drawn on MT19937.
RANDOM_GAIN = {"MCG31M1": 5.0, "MCG59": 3.0, "WH": 3.0, "R250": 3.0, "MRG32K3A": 4.0,
               "MT19937": 3.0, "MT2203": 3.0, "Sobol": 3.0, "Niederr": 3.0}
DISTRIBUTION_GAIN = {"gaussian": 3.0, "gaussianmv": 8.0, "exponential": 3.0, "laplace": 3.0,
                     "weibull": 5.0, "cauchy": 5.0, "rayleigh": 3.0, "lognormal": 3.0,
                     "gumbel": 5.0, "bernoulli": 4.0, "geometric": 5.0, "gamma": 3.0, "beta": 3.0,
                     "binomial": 3.0, "poisson": 3.0, "poissonv": 3.0, "hypergeometric": 3.0,
                     "negbinomial": 3.0}
# Complex functions: as fast as a copy but for this factor, or faster than std::complex by double (z)
# and single (c).
COPY_LIMIT = 1.2
COPIED = ("Add", "Sub", "Conj", "Mul", "MulByConj")
COMPLEX_GAIN = {"Div": (4.0, 4.0), "Exp": (8.0, 12.0), "Ln": (8.0, 12.0), "Sqrt": (8.0, 12.0),
                "CIS": (8.0, 12.0), "Abs": (8.0, 12.0), "Arg": (8.0, 12.0)}
OTHER_COMPLEX_GAIN = (4.0, 4.0)
NO_TARGET = ("gaussian boxmuller", "gaussianmv boxmuller")  # half of its uniforms go unused


class Failure(Exception):
    """Ends the program with one line and status 2."""


# ---- Results: {(row, n): (ns per element, ulp or None)}; a row is the name without its length. ----


def read_results(text, origin="results"):
    """The minima in Google Benchmark's JSON, in the programs' order, and its context."""
    if not text.strip():
        return {}, {}  # nothing matched the filter
    try:
        data = json.loads(text)
        results = {}
        for run in sorted(data["benchmarks"], key=lambda run: run["family_index"]):
            if run.get("aggregate_name") != "min":
                continue
            row, _, n = run["run_name"].rpartition("/n:")
            results[row, int(n)] = (run["per_element"] * 1e9, run.get("ulp"))
        return results, data["context"]
    except (ValueError, KeyError, TypeError) as error:
        raise Failure(f"{origin}: no benchmark results: {error}") from None


def least_of(runs):
    """The less of each row's times in several results."""
    merged = dict(runs[0])
    for run in runs[1:]:
        for row, value in run.items():
            merged[row] = min(value, merged.get(row, value), key=lambda v: v[0])
    return merged


def run_program(path, extra):
    command = [str(path), *extra]
    print("measuring: " + " ".join([path.name, *extra[:1]]), file=sys.stderr)
    try:
        done = subprocess.run(command, capture_output=True, text=True, check=False)
    except OSError as error:
        raise Failure(f"{path}: {error.strerror}") from None
    if done.returncode:
        raise Failure((done.stderr.strip() or f"{path} failed").splitlines()[-1])
    return done.stdout


def run_benchmarks(path, level, extra):
    return run_program(path, [f"--level={level}", "--benchmark_format=json", *extra])


# ---- Judging: rows of the tables, and what misses its target. ----

Miss = collections.namedtuple("Miss", "what ratio limit")
VectorRow = collections.namedtuple("VectorRow", "function type tier ours peer peer_ulp peers limit gain least")
RandomRow = collections.namedtuple("RandomRow", "generator output ours peer peers limit")
ComplexRow = collections.namedtuple("ComplexRow", "function type tier ours peer peers limit")


def times_at(results, prefix):
    """{name: {n: (ns, ulp)}} of the rows `prefix`/name."""
    found = collections.defaultdict(dict)
    for (row, n), value in results.items():
        if row.startswith(prefix + "/"):
            found[row[len(prefix) + 1:]][n] = value
    return found


def fastest(peers, n, admitted):
    names = [p for p in peers if n in peers[p] and admitted(p, peers[p][n][1])]
    return min(names, key=lambda p: peers[p][n][0], default=None)


def scalar(name):
    """Whether a peer is a loop of scalar calls, which stands where there is no vector peer."""
    return name.startswith(("C library", "Boost"))


def reference(function, kind, tier, peers, n):
    """The peer that a tier is held against, and the ratio that it may reach (None: no target)."""
    if tier in ("la", "ha") and peers and all(map(scalar, peers)):
        return fastest(peers, n, lambda p, ulp: p != NARROW), 1 / SCALAR_GAIN
    if tier == "ha":
        sleef = lambda p, ulp: p.startswith("SLEEF") and ulp <= HA_CLASS * CLASS_SLACK
        return fastest(peers, n, sleef), 1.0 if kind == "d" else HA_SINGLE_LIMIT
    if tier == "la":
        bound = LA_CLASS_OF.get((function, kind), LA_CLASS)
        slack = CLASS_SLACK if bound < LA_CLASS else 1
        limit = HARDWARE_LIMIT if function in HARDWARE else 1.0
        return fastest(peers, n, lambda p, ulp: ulp <= bound * slack), limit
    limit = HARDWARE_LIMIT if function in HARDWARE else 1.0
    return fastest(peers, n, lambda p, ulp: p != NARROW), limit if tier == "ep" else None


def gain_of_ep(results, function, kind, time, n):
    """LA time over EP time, and what it is to be at least: None where LA already takes as long as the
    hardware's root, or is EP by another name."""
    la, root = results.get((f"{function}/{kind}/la", n)), results.get((f"Sqrt/{kind}/ha", n))
    if not la:
        return None, None
    bound_by_root = root and la[0] <= HARDWARE_LIMIT * root[0]
    free = function in HARDWARE or (function, kind) in LEADS_TO_LA or (
        function in ROOTS and bound_by_root)
    return la[0] / time, None if free else EP_GAIN


def vector_rows(results, n):
    """Rows in the order of the results; `gain` is LA time over EP time in EP rows, `least` its target."""
    rows = []
    for (row, length), _ in results.items():
        parts = row.split("/")
        if length != n or len(parts) != 3 or parts[2] not in TIERS:
            continue
        function, kind, tier = parts
        ours = {m: v[0] for m, v in times_at(results, f"{function}/{kind}")[tier].items()}
        peers = times_at(results, f"{function}/{kind}/peer")
        peer, limit = reference(function, kind, tier, peers, n)
        gain, least = gain_of_ep(results, function, kind, ours[n], n) if tier == "ep" else (None, None)
        rows.append(VectorRow(function, kind, tier, ours, peer, peers[peer][n][1] if peer else None,
                              peers, limit, gain, least))
    return rows


def vector_misses(rows, n):
    misses = []
    for row in rows:
        what = f"{row.function} {TYPES[row.type]} {row.tier.upper()}"
        if row.peer and row.limit:
            ratio = row.ours[n] / row.peers[row.peer][n][0]
            if ratio > row.limit:
                misses.append(Miss(f"{what} beside {row.peer}", ratio, f"at most {row.limit:g}"))
        if row.least and row.gain < row.least:
            misses.append(Miss(f"{what}, time of LA over its own", row.gain, f"at least {row.least:g}"))
    return misses


def call_overheads(row, n):
    """{length: ns beyond the elements} of the calls of 1 to 15 elements."""
    return {m: t * m - row.ours[n] * m for m, t in sorted(row.ours.items()) if m < 16}


def call_misses(rows, n):
    misses = []
    for row in rows:
        overheads = call_overheads(row, n)
        if overheads and max(overheads.values()) > CALL_OVERHEAD:
            worst = max(overheads, key=overheads.get)
            what = f"{row.function} {TYPES[row.type]} {row.tier.upper()}, call of {worst}, ns beyond its elements"
            misses.append(Miss(what, overheads[worst], f"at most {CALL_OVERHEAD:g}"))
    return misses


def random_target(generator, output):
    """What the peers of a generator's output are called there, and the gain that it is held to."""
    words = output.removesuffix(" clamped").split(" ")
    if words[0] not in DISTRIBUTION_GAIN:
        return " ".join(words), RANDOM_GAIN.get(generator)
    without_target = " ".join(words[:-1]) in NO_TARGET
    parameters = [word for word in words[1:-1] if word[0].isdigit()]  # "2.5,1.5", not a method's name
    return (" ".join([words[0], *parameters, words[-1]]),
            None if without_target else DISTRIBUTION_GAIN[words[0]])


def random_rows(results, n):
    """Clamped uniforms are held against the peers' plain ones: they have no other. Where no peer has
    the generator's parameters, the fastest with others stands for it."""
    rows = []
    for (row, length), _ in results.items():
        parts = row.split("/")
        if length != n or len(parts) != 3 or parts[2] != OURS:
            continue
        generator, output = parts[:2]
        ours = {m: v[0] for m, v in times_at(results, f"{generator}/{output}")[OURS].items()}
        drawn, gain = random_target(generator, output)
        same = times_at(results, f"{generator}/{drawn}/peer")
        others = times_at(results, f"{generator}/{drawn}/other")
        rows.append(RandomRow(generator, output, ours, fastest(same or others, n, lambda p, ulp: True),
                              {**same, **others}, 1 / gain if gain else None))
    return rows


def random_misses(rows, n):
    misses = []
    for row in rows:
        if row.peer and row.limit:
            ratio = row.ours[n] / row.peers[row.peer][n][0]
            if ratio > row.limit:
                misses.append(Miss(f"{row.generator} {row.output} beside {row.peer}", ratio,
                                   f"at most {row.limit:.2f}"))
    return misses


def complex_rows(results, n):
    rows = []
    for (row, length), _ in results.items():
        parts = row.split("/")
        if length != n or len(parts) != 3:
            continue
        function, kind, tier = parts
        ours = {m: v[0] for m, v in times_at(results, f"{function}/{kind}")[tier].items()}
        peers = times_at(results, f"{function}/{kind}/peer")
        peer, limit = "copy", COPY_LIMIT
        if function not in COPIED:
            peer = "std"
            limit = 1 / COMPLEX_GAIN.get(function, OTHER_COMPLEX_GAIN)[kind == "c"]
        rows.append(ComplexRow(function, kind, tier, ours, peer if n in peers.get(peer, {}) else None,
                               peers, limit))
    return rows


def complex_misses(rows, n):
    misses = []
    for row in rows:
        ratio = row.peer and row.ours[n] / row.peers[row.peer][n][0]
        if ratio and ratio > row.limit:
            misses.append(Miss(f"complex {row.function} {row.type} {row.tier} beside {row.peer}", ratio,
                               f"at most {row.limit:.2f}"))
    return misses


# ---- Tables. ----


def number(x):
    return "-" if x is None else f"{x:.3f}" if x < 10 else f"{x:.1f}"


def table(head, rows):
    left = {"function", "type", "tier", "peer", "generator", "output"}
    lines = ["| " + " | ".join(head) + " |",
             "|" + "|".join("---" if h.split(" ")[0] in left else "---:" for h in head) + "|"]
    return "\n".join(lines + ["| " + " | ".join(cells) + " |" for cells in rows])


def pair(row, n):
    """Ours and the peer's at another length."""
    peer = row.peers.get(row.peer, {}).get(n)
    return f"{number(row.ours.get(n))} / {number(peer and peer[0])}"


def ratio_cell(row, n):
    if not row.peer:
        return "-"
    ratio = row.ours[n] / row.peers[row.peer][n][0]
    return f"**{ratio:.2f}**" if row.limit and ratio > row.limit else f"{ratio:.2f}"


def vector_table(rows):
    cells = []
    for row in rows:
        peer = f"{row.peer} ({row.peer_ulp:g} ulp)" if row.peer else "-"
        gain = "" if row.gain is None else f"**{row.gain:.2f}**" if row.least and row.gain < row.least else f"{row.gain:.2f}"
        cells.append([row.function, TYPES[row.type], row.tier.upper() if row.tier != "plain" else "",
                      pair(row, 16), pair(row, 100000), number(row.ours[1024]), peer,
                      number(row.peers[row.peer][1024][0]) if row.peer else "-", gain,
                      f"{row.limit:g}" if row.limit and row.peer else "-", ratio_cell(row, 1024)])
    return table(["function", "type", "tier", "n = 16", "n = 100000", "n = 1024", "peer", "its time",
                  "LA / EP", "target", "ratio"], cells)


def narrow_note(rows, n):
    """The ratios to Boost without promotion, in a sentence."""
    ratios = [f"{row.function} {row.type} {row.tier.upper()} {row.ours[n] / row.peers[NARROW][n][0]:.2f}"
              for row in rows if n in row.peers.get(NARROW, {})]
    return ratios and "Beside Boost without promotion: " + ", ".join(ratios) + ".\n"


def call_table(rows):
    lengths = range(1, 16)
    cells = [[row.function, TYPES[row.type], row.tier.upper() if row.tier != "plain" else ""] +
             [f"{row.ours[m] * m:.1f}" if m in row.ours else "-" for m in lengths]
             for row in rows if any(m in row.ours for m in lengths)]
    return table(["function", "type", "tier", *map(str, lengths)], cells) if cells else ""


def random_table(rows):
    cells = []
    for row in rows:
        names = [p for p in row.peers if p != row.peer and 1000 in row.peers[p]]
        beside = ", ".join(f"{p} {number(row.peers[p][1000][0])}" for p in names) or "-"
        cells.append([row.generator, row.output, pair(row, 16), pair(row, 1000000),
                      number(row.ours[1000]), row.peer or "-",
                      number(row.peers[row.peer][1000][0]) if row.peer else "-", beside,
                      f"{row.limit:.2f}" if row.limit else "-", ratio_cell(row, 1000)])
    return table(["generator", "output", "n = 16", "n = 1000000", "n = 1000", "peer", "its time",
                  "others", "target", "ratio"], cells)


def complex_table(rows):
    cells = []
    for row in rows:
        times = {p: v[1024][0] for p, v in row.peers.items() if 1024 in v}
        cells.append([row.function, row.type, row.tier, number(row.ours.get(16)),
                      number(row.ours.get(100000)), number(row.ours[1024]), number(times.get("copy")),
                      number(times.get("std")), row.peer or "-", f"{row.limit:.2f}" if row.peer else "-",
                      ratio_cell(row, 1024)])
    return table(["function", "type", "tier", "n = 16", "n = 100000", "n = 1024", "a copy", "std::complex",
                  "peer", "target", "ratio"], cells)


# ---- What stands above the kernels: tables of the programs' own. ----

FACE = {"front": "pexquo_bench_front", "parallel": "pexquo_bench_parallel"}


def front_misses(text):
    largest = re.search(r"front: median [-\d.]+, largest ([-\d.]+)", text)
    if not largest:
        raise Failure("the front's program prints no largest time")
    added = float(largest[1])
    return [Miss("the C interface, largest time added to a call of one element, ns", added,
                 f"at most {FRONT_ADDS:g}")] if added > FRONT_ADDS else []


def parallel_misses(text):
    rows = re.findall(r"^\| ([^|]+) \| [\d.]+ \| [\d.]+ \| ([\d.]+) \|", text, re.M)
    if not rows:
        raise Failure("the parallel program prints no table")
    return [Miss(f"{work} on two cores", float(gain), f"at least {PARALLEL_GAIN:g}")
            for work, gain in rows if float(gain) < PARALLEL_GAIN and not work.startswith("copy")]


# ---- Plots. ----

COLOURS = {OURS: "#d95f02", "ep": "#fdbe85", "la": "#fd8d3c", "ha": "#d94701", "SLEEF u10": "#2c5aa0",
           "SLEEF u35": "#74add1", "libmvec": "#5e4fa2", "Highway": "#66bd63", "std": "#2c5aa0",
           "Boost": "#74add1", "GSL": "#5e4fa2"}
OTHER_COLOUR = "#888888"


def bars(title, clusters, log):
    """A gnuplot script: clusters is {label: {series: ns}}."""
    known = list(COLOURS)
    series = sorted({s for c in clusters.values() for s in c},
                    key=lambda s: (known.index(s) if s in known else len(known), s))
    lines = ["$data << EOD"]
    for label, values in clusters.items():
        lines.append("\t".join([f'"{label}"'] + [f"{values[s]:.4g}" if s in values else "NaN"
                                                   for s in series]))
    lines += ["EOD", f'set title "{title}"', "set style data histogram",
              "set style histogram clustered gap 1.5", "set style fill solid 0.9 noborder",
              'set datafile separator "\\t"', "set xtics rotate by -35 nomirror",
              'set ylabel "ns per element"', "set grid ytics lc rgb '#dddddd'",
              "set key outside top center horizontal", "set border 3", "set ytics nomirror",
              "set logscale y" if log else "set yrange [0:*]"]
    plots = []
    for i, name in enumerate(series):
        colour = COLOURS.get(name, OTHER_COLOUR)
        shown = f"pexquo {name.upper()}" if name in TIERS else name
        plots.append(f"$data using {i + 2}{':xtic(1)' if i == 0 else ''} title '{shown}' lc rgb '{colour}'")
    return "\n".join(lines) + "\nplot " + ", \\\n  ".join(plots) + "\n"


def vector_plot(rows, title):
    clusters = {}
    for row in rows:
        if row.tier == "plain" or 1024 not in row.ours:
            continue
        cluster = clusters.setdefault(f"{row.function} {row.type}", {})
        cluster[row.tier] = row.ours[1024]
        cluster.update({p: v[1024][0] for p, v in row.peers.items() if 1024 in v})
    return bars(f"{title}, arrays of 1024", clusters, log=False) if clusters else None


def random_plot(rows, title):
    clusters = {row.output if random_target(row.generator, row.output)[0] != row.output
                or row.output.split(" ")[0] in DISTRIBUTION_GAIN else f"{row.generator} {row.output}":
                {OURS: row.ours[1000],
                 **{p.split(" ")[0]: v[1000][0] for p, v in row.peers.items() if 1000 in v}}
                for row in rows if not row.output.endswith("clamped")}
    return bars(f"{title}, arrays of 1000", clusters, log=True) if clusters else None


# The functions of the picture of speed against accuracy.
TIER_SHOWN = (("Exp", "d"), ("Ln", "d"), ("Sin", "d"), ("Pow", "d"), ("Exp", "s"), ("Sin", "s"))


SUFFIXES = {("ep", "d"): "26", ("la", "d"): "50", ("ep", "s"): "11", ("la", "s"): "21"}


def read_errors(path):
    """{entry: largest measured error in ulp} of the accuracy document; correct bits are turned to ulp."""
    errors = {}
    try:
        text = path.read_text()
    except OSError as error:
        raise Failure(f"{path}: {error.strerror}") from None
    for entry, value, unit in re.findall(r"^\| `(_pex\w+)` \| [^|]+ \| ([\d.]+) (ulp|bits) \|", text, re.M):
        digits = 53 if entry.startswith("_pexd") else 24
        errors.setdefault(entry, float(value) if unit == "ulp" else 2 ** (digits - float(value)))
    return errors


def tier_plot(results, errors, title, n=1024):
    """Time against error, a field for each function: our tiers joined by a line, and the peers."""
    fields = []
    for i, (function, kind) in enumerate(TIER_SHOWN):
        entries = times_at(results, f"{function}/{kind}")
        named = {t: f"_pex{kind}{function}_{SUFFIXES.get((t, kind), 'HA')}" for t in TIERS if t != "plain"}
        ours = [(t.upper(), entries[t][n][0], errors[entry]) for t, entry in named.items()
                if n in entries.get(t, {}) and entry in errors]
        peers = [(p, *v[n]) for p, v in times_at(results, f"{function}/{kind}/peer").items() if n in v]
        if not ours:
            continue
        rows = [f'{ns:.4g}\t{ulp:.4g}\t"{t}"' for t, ns, ulp in ours]
        points = [f"$ours{i} using 1:2 with linespoints pt 7 lc rgb '{COLOURS[OURS]}' title 'pexquo'",
                  f"$ours{i} using 1:2:3 with labels left offset 0.9,0.4 tc rgb '{COLOURS[OURS]}' notitle"]
        for peer, ns, ulp in peers:
            rows += ["EOD", f"$peer{i}{len(points)} << EOD", f"{ns:.4g}\t{ulp:.4g}"]
            points.append(f"$peer{i}{len(points)} using 1:2 with points pt 5 lc rgb "
                          f"'{COLOURS.get(peer, OTHER_COLOUR)}' title '{peer}'")
        fields.append("\n".join([f"$ours{i} << EOD", *rows, "EOD", f'set title "{function}, {TYPES[kind]}"',
                                 "plot " + ", ".join(points)]))
    if not fields:
        return None
    data = 'set datafile separator "\\t"\n'
    style = ("set logscale y\nset format y '%g'\nset xrange [0:*]\nset offsets 0, graph 0.15, graph 0.1, graph 0.1\n"
             "set grid lc rgb '#dddddd'\nset border 3\nset tics nomirror\n"
             "set xlabel 'ns per element'\nset ylabel 'largest error, ulp'\n"
             f"set multiplot layout 2,3 title \"{title}: left and down is better\"\n")
    return data + style + "\n".join(fields) + "\nunset multiplot\n"


def draw(script, path):
    height = 760 if "set multiplot" in script else 420
    head = f"set terminal svg size 1100,{height} font 'sans,12'\nset output '{path}'\n"
    done = subprocess.run(["gnuplot"], input=head + script, text=True, capture_output=True, check=False)
    if done.returncode:
        raise Failure("gnuplot: " + (done.stderr.strip().splitlines() or ["failed"])[-1])


# ---- The document. ----

INTRODUCTION = """# Performance

Written by `bench/report.py`. {machine}

All times are nanoseconds per element (for generators: per output), each the least of {repeats} repeats
of about {milliseconds:g} ms of one thread's processor time in each of {rounds} processes, as where arrays and stack lie
makes some rows of a process slower; the repeats of everything in a table are shuffled. Times vary
from machine to machine and from day to day; ratios of one run are what counts. A ratio is our time
over the peer's: **below 1 we are faster.** Ratios beyond their target are bold.

Peers work at the same vector level. They have no array entries, so each is called in a plain loop
over whole vectors, compiled for the level. The error in brackets is the largest that was seen.
LA is held against the fastest peer of at most 4 ulp (Ln in double, itself within 1 ulp, against the
fastest of at most 1 ulp), HA against SLEEF's function of 1.0 ulp, EP against the fastest peer of
any kind and to 1.2 times the speed of LA (but where LA takes no longer than the hardware root, and
Powx in single precision, whose EP is its LA). HA in single precision is correctly rounded and may
take twice SLEEF's time. Roots, quotients and their like have 1.1 of the hardware's time in a plain loop.
The arithmetic functions, beside a loop left to the compiler, have no target. Functions without a
vector peer are held to a tenth of the time of the C library's or Boost.Math's scalar ones, as a
program gets them; Boost without its promotion to wider types stands below the table.
"""

RANDOM_INTRODUCTION = """Peers run the generator's own parameters where a package has them; else, and under `others`, stand
engines with other parameters. The peer of WH is a plain loop over its definition. `integers` are
drawn from [0, 100). Clamped uniforms and integers are held to the same target as the generator's
other outputs. Distributions are drawn on each package's own MT19937, the generator's time included,
in double (d), single (f) or integers (i), with the parameters of `docs/distributions.md`; vectors
(gaussianmv) have dimension 4 and a full factor, by the number.
"""


COMPLEX_INTRODUCTION = """Arrays of complex numbers, double (z) and single (c), beside a loop over std::complex and a copy of as
many bytes as the function reads and writes.
"""


def columns(text):
    return text and text + "\n"


def machine_line(context):
    model = "unknown processor"
    try:
        for line in pathlib.Path("/proc/cpuinfo").read_text().splitlines():
            if line.startswith("model name"):
                model = line.partition(":")[2].strip()
                break
    except OSError:
        pass
    return f"Machine: {model}; compiler: {context.get('compiler', '?')}; date: {datetime.date.today()}."


FRONT_INTRODUCTION = """Calls of the C interface (`v...` functions, default tier) beside the kernels that they lead to: the
time of a kernel's call, and what is added by the function of the thread's mode, with a tier for the
call, and with a tier and an error field. The eight that add most.
"""

PARALLEL_INTRODUCTION = """`pexquo::parallel` with one thread and with all; and oneTBB giving out the same blocks. Two cores can
do no more than memory lets them: see the copy. A generator that cannot skip ahead (MT19937, R250)
is drawn from up to where a thread's share begins.
"""


def document(levels, machine, repeats, rounds, milliseconds, errors={}, face={}, name="performance"):
    """levels: {level: (results of the vector program, of the random program, of the complex one)};
    face: {name in FACE: what the program prints}; name: how the plots' names begin.
    Returns the text and {plot's file name: gnuplot script}."""
    parts, plots, falls_short = [], {}, []
    for kind, misses_of, introduction, title in (
            ("front", front_misses, FRONT_INTRODUCTION, "The C interface"),
            ("parallel", parallel_misses, PARALLEL_INTRODUCTION, "Many cores")):
        if kind in face:
            falls_short += [f"- {m.what}: {m.ratio:.2f}, target {m.limit}." for m in misses_of(face[kind])]
            parts += [f"## {title}\n", introduction, face[kind]]
    for level, (vector, random, compound) in levels.items():
        title = LEVELS[level]
        rows, draws = vector_rows(vector, 1024), random_rows(random, 1000)
        pairs = complex_rows(compound, 1024)
        if level in JUDGED:
            misses = (vector_misses(rows, 1024) + random_misses(draws, 1000) +
                      complex_misses(pairs, 1024) + call_misses(rows, 1024))
            falls_short += [f"- {title}: {m.what}: {m.ratio:.2f}, target {m.limit}." for m in misses]
        for kind, script in (("vector", vector_plot(rows, f"Vector math, {title}")),
                             ("random", random_plot(draws, f"Generators, {title}"))):
            if script:
                plots[f"{name}-{kind}-{level}.svg"] = script
        tiers = tier_plot(vector, errors, f"pexquo's tiers and the peers, {title}")
        if tiers:
            plots[f"{name}-tiers-{level}.svg"] = tiers
        picture = lambda kind: (f"![ns per element]({file})\n" if (file := f"{name}-{kind}-{level}.svg") in plots else "")
        if rows:
            parts += [f"## Vector math, {title}\n", picture("vector"), picture("tiers"),
                      "Under n = 16 and n = 100000: ours / the peer's.\n", columns(vector_table(rows)),
                      narrow_note(rows, 1024)]
            calls = call_table(rows)
            if calls:
                parts += [f"### Short calls, {title}\n", "Nanoseconds per call of 1 to 15 elements.\n",
                          columns(calls)]
        if pairs:
            parts += [f"## Complex functions, {title}\n", COMPLEX_INTRODUCTION,
                      columns(complex_table(pairs))]
        if draws:
            parts += [f"## Generators, {title}\n", picture("random"), RANDOM_INTRODUCTION,
                      columns(random_table(draws))]
    listed = "\n".join(falls_short) if falls_short else "Nothing: every target is met."
    head = [INTRODUCTION.format(machine=machine, repeats=repeats, rounds=rounds,
                                milliseconds=milliseconds),
            "## What falls short\n", listed + "\n"]
    return "\n".join(p for p in head + parts if p), plots


def kept(name, options, measure):
    """What `measure` gives, kept with --raw; with --reuse what it gave before."""
    raw = options.raw and options.raw / name
    if options.reuse:
        try:
            return raw.read_text()
        except OSError as error:
            raise Failure(f"{raw}: {error.strerror}") from None
    text = measure()
    if raw:
        raw.parent.mkdir(parents=True, exist_ok=True)
        raw.write_text(text)
    return text


def main(arguments):
    root = pathlib.Path(__file__).resolve().parent.parent
    parser = argparse.ArgumentParser(description="Runs the benchmarks and writes docs/performance.md.")
    parser.add_argument("--programs", type=pathlib.Path, default=root / "build/release/bin",
                        help="folder of the programs (default: build/release/bin)")
    parser.add_argument("--levels", default=",".join(LEVELS), help="default: %(default)s")
    parser.add_argument("--filter", default="", help="regular expression on row names")
    parser.add_argument("--repeats", type=int, default=60)
    parser.add_argument("--rounds", type=int, default=2, help="processes for each table (default: %(default)s)")
    parser.add_argument("--milliseconds", type=float, default=1.0, help="of a repeat")
    parser.add_argument("--cpu", type=int, help="run on this processor (default: the first allowed)")
    parser.add_argument("--raw", type=pathlib.Path, help="keep the raw results in this folder")
    parser.add_argument("--reuse", action="store_true", help="do not measure: read --raw again")
    parser.add_argument("--print", action="store_true", help="to the terminal, without plots")
    parser.add_argument("--output", type=pathlib.Path, default=root / "docs", help="default: docs")
    parser.add_argument("--name", default="performance",
                        help="of the document and the beginning of its plots' names (default: %(default)s)")
    options = parser.parse_args(arguments)
    if options.rounds < 1:
        raise Failure("--rounds must be at least 1")
    if options.reuse and not options.raw:
        raise Failure("--reuse needs --raw")
    names = options.levels.split(",")
    for level in names:
        if level not in LEVELS:
            raise Failure(f"unknown level '{level}': {', '.join(LEVELS)}")
    if not options.print and not shutil.which("gnuplot"):
        raise Failure("gnuplot is missing; install gnuplot-nox, or use --print")
    try:
        allowed = sorted(os.sched_getaffinity(0))
        os.sched_setaffinity(0, {allowed[0] if options.cpu is None else options.cpu})
    except OSError:
        raise Failure(f"no processor {options.cpu}") from None

    extra = [f"--benchmark_repetitions={options.repeats}",
             f"--benchmark_min_time={options.milliseconds / 1000:g}"]
    if options.filter:
        extra.append(f"--benchmark_filter={options.filter}")
    levels, context = {}, {}
    for level in names:
        measured = []
        for kind, program in PROGRAMS.items():
            runs = []
            for k in range(options.rounds):
                text = kept(f"{kind}-{level}-{k + 1}.json", options,
                            lambda: run_benchmarks(options.programs / program, level, extra))
                results, found = read_results(text, f"{program}, {LEVELS[level]}")
                context = found or context
                runs.append(results)
            measured.append(least_of(runs))
        levels[level] = measured
    if not context:
        raise Failure("no benchmark matches the filter")
    os.sched_setaffinity(0, allowed)  # the threads of one program
    face = {} if options.filter else {
        kind: kept(f"{kind}.md", options, lambda: run_program(options.programs / program, []))
        for kind, program in FACE.items()}
    text, plots = document(levels, machine_line(context), options.repeats, options.rounds, options.milliseconds,
                           {} if options.print else read_errors(root / "docs/accuracy.md"), face, options.name)
    if options.print:
        print(text)
        return
    options.output.mkdir(parents=True, exist_ok=True)
    for name, script in plots.items():
        draw(script, options.output / name)
    (options.output / f"{options.name}.md").write_text(text)


if __name__ == "__main__":
    try:
        main(sys.argv[1:])
    except Failure as failure:
        print(f"report.py: {failure}", file=sys.stderr)
        sys.exit(2)
