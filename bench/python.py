#!/usr/bin/env python3
"""Times the Python package beside NumPy's own functions and generators; writes
docs/performance-python.md.

    bench/python.py [--package FOLDER] [--output FILE] [--print]

FOLDER is where `pexquo` is imported from (default: build/release/python). Both sides take turns on the
same processor; a time is the least of many repeats, a ratio ours over NumPy's.
"""
import argparse
import datetime
import os
import pathlib
import sys
import time

import report

LENGTHS = (1, 100, 1000, 1000000)
REPEATS = 15
BATCH_NS = 2e6
TIERS = ("ha", "la", "ep")
# NumPy's functions, with the range of their arguments.
FUNCTIONS = {
    "exp": (-10, 10),
    "log": (0.01, 100),
    "sin": (-10, 10),
    "cos": (-10, 10),
    "tan": (-1.5, 1.5),
    "power": (0.1, 10),
    "sqrt": (0.1, 100),
    "cbrt": (0.1, 100),
    "hypot": (0.1, 100),
    "log1p": (0.01, 100),
    "arctan": (-10, 10),
    "arctan2": (-10, 10),
    "tanh": (-5, 5),
}
# Those of one argument that are timed with several threads.
THREADED = ("exp", "log", "sin", "tan", "cbrt", "arctan")
# Of streams and of numpy.random.Generator alike.
DISTRIBUTIONS = {
    "random": {},
    "normal": {},
    "standard_normal": {},
    "exponential": {},
    "laplace": {},
    "gumbel": {},
    "lognormal": {},
    "weibull": {"a": 1.8},
    "geometric": {"p": 0.3},
    "integers": {"low": 0, "high": 100},
}
BIT_GENERATORS = ("MT19937", "PCG64", "SFC64")


def least(calls):
    """Nanoseconds of one call of each, the least of repeats taken in turns."""
    counts, best = [], [float("inf")] * len(calls)
    for call in calls:
        call()
        start = time.perf_counter_ns()
        call()
        counts.append(max(1, int(BATCH_NS / max(1, time.perf_counter_ns() - start))))
    for _ in range(REPEATS):
        for i, call in enumerate(calls):
            start = time.perf_counter_ns()
            for _ in range(counts[i]):
                call()
            best[i] = min(best[i], (time.perf_counter_ns() - start) / counts[i])
    return best


def function_rows(numpy, pexquo):
    generator = numpy.random.default_rng(1)
    for dtype in (numpy.float64, numpy.float32):
        for name, (low, high) in FUNCTIONS.items():
            ours, theirs = getattr(pexquo, name), getattr(numpy, name)
            for n in LENGTHS:
                args = [generator.uniform(low, high, n).astype(dtype) for _ in range(ours.nin)]
                calls = [lambda t=t: ours(*args, tier=t) for t in TIERS]
                *times, peer = least([*calls, lambda: theirs(*args)])
                yield [f"{name} {dtype.__name__}", str(n), report.number(peer / n),
                       *(f"{report.number(t / n)} ({t / peer:.2f})" for t in times)]


def distribution_rows(numpy, pexquo):
    stream = pexquo.Stream("mt19937", seed=1)
    generators = [numpy.random.Generator(getattr(numpy.random, b)(1)) for b in BIT_GENERATORS]
    for name, parameters in DISTRIBUTIONS.items():
        for n in LENGTHS:
            calls = [lambda g=g: getattr(g, name)(**parameters, size=n)
                     for g in (stream, *generators)]
            ours, *peers = least(calls)
            yield [name, str(n), report.number(ours / n), *(report.number(p / n) for p in peers),
                   f"{ours / min(peers):.2f}"]


def thread_rows(numpy, pexquo, threads):
    generator = numpy.random.default_rng(1)
    n = LENGTHS[-1]

    def row(title, ours, theirs):
        def call(count):
            pexquo.set_threads(count)
            ours()

        one, shared, peer = least([lambda: call(1), lambda: call(threads), theirs])
        pexquo.set_threads(1)
        return [title, *(report.number(t / n) for t in (peer, one, shared)), f"{one / shared:.2f}",
                f"{shared / peer:.2f}"]

    for name in THREADED:
        ours, theirs = getattr(pexquo, name), getattr(numpy, name)
        x = generator.uniform(*FUNCTIONS[name], n)
        yield row(f"{name} {x.dtype}", lambda: ours(x), lambda: theirs(x))
    theirs = numpy.random.Generator(numpy.random.MT19937(1))
    for name in ("mt19937", "mrg32k3a"):
        ours = pexquo.Stream(name, seed=1)
        yield row(f"normal, {name}", lambda: ours.normal(size=n), lambda: theirs.normal(size=n))


def processor():
    for line in pathlib.Path("/proc/cpuinfo").read_text(encoding="ascii").splitlines():
        if line.startswith("model name"):
            return line.partition(":")[2].strip()
    return "unknown"


def main():
    root = pathlib.Path(__file__).resolve().parent.parent
    parser = argparse.ArgumentParser(description="Times the Python package beside NumPy.")
    parser.add_argument("--package", type=pathlib.Path, default=root / "build/release/python")
    parser.add_argument("--output", type=pathlib.Path, default=root / "docs/performance-python.md")
    parser.add_argument("--print", action="store_true", help="to the terminal instead")
    options = parser.parse_args()
    os.environ.setdefault("OPENBLAS_NUM_THREADS", "1")
    sys.path.insert(0, str(options.package))
    try:
        import numpy
        import pexquo
    except ImportError as error:
        raise report.Failure(f"{error}; build the target pexquo_python") from None
    functions = report.table(["function", "n", "NumPy", *TIERS], list(function_rows(numpy, pexquo)))
    threads = len(os.sched_getaffinity(0))
    shared = report.table(["function", "NumPy", "one thread", "all", "gain", "all / NumPy"],
                          list(thread_rows(numpy, pexquo, threads)))
    random = report.table(["method", "n", "pexquo", *(f"NumPy {b}" for b in BIT_GENERATORS), "ratio"],
                          list(distribution_rows(numpy, pexquo)))
    text = (
        "# The Python package beside NumPy\n\n"
        f"Written by `bench/python.py`. Machine: {processor()}; Python "
        f"{sys.version.split()[0]}; NumPy {numpy.__version__}; date: {datetime.date.today()}.\n\n"
        "Nanoseconds per element of a call on contiguous arrays that makes its result array, the call\n"
        "itself included; in parentheses the ratio of ours to NumPy's, below 1 where we are faster.\n"
        "NumPy's vector functions (errors up to 4 ulp) belong beside tier `la`.\n\n"
        f"## Functions\n\n{functions}\n\n"
        f"## Many cores\n\nArrays of {LENGTHS[-1]}, tier `ha`, and draws, after `set_threads({threads})`;\n"
        "NumPy's draws are of its MT19937.\n\n"
        f"{shared}\n\n"
        "## Random numbers\n\nStreams of MT19937; the ratio is to the fastest of NumPy's three.\n\n"
        f"{random}\n"
    )
    if options.print:
        print(text)
    else:
        options.output.write_text(text, encoding="utf-8")


if __name__ == "__main__":
    try:
        main()
    except report.Failure as failure:
        print(f"python.py: {failure}", file=sys.stderr)
        sys.exit(2)
