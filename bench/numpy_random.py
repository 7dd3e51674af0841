#!/usr/bin/env python3
"""Times NumPy's Generator beside the library's distributions on MT19937; writes
docs/performance-numpy.md.

    bench/numpy_random.py [--programs FOLDER] [--output FILE]

Needs Debian's python3-numpy and the built pexquo_bench_random. Both sides run one after the other on
the same processor, nanoseconds of one thread's processor time per number, the least of many repeats.
"""
import argparse
import pathlib
import sys
import time

import report

LENGTHS = (1000, 1000000)
BIT_GENERATORS = ("MT19937", "PCG64", "SFC64")
# What the library draws, and the call that draws it there.
ROWS = {
    "bits": lambda g, n: g.integers(0, 2**32, size=n, dtype="uint32"),
    "uniform d": lambda g, n: g.random(n),
    "uniform f": lambda g, n: g.random(n, dtype="float32"),
    "integers": lambda g, n: g.integers(0, 100, size=n, dtype="int32"),
    "gaussian icdf d": lambda g, n: g.standard_normal(n),
    "gaussian boxmuller2 d": lambda g, n: g.standard_normal(n),
    "gaussian icdf f": lambda g, n: g.standard_normal(n, dtype="float32"),
    "gaussian boxmuller2 f": lambda g, n: g.standard_normal(n, dtype="float32"),
    "exponential d": lambda g, n: g.standard_exponential(n),
    "exponential f": lambda g, n: g.standard_exponential(n, dtype="float32"),
    "laplace d": lambda g, n: g.laplace(size=n),
    "weibull d": lambda g, n: g.weibull(1.8, size=n),
    "cauchy d": lambda g, n: g.standard_cauchy(n),
    "rayleigh d": lambda g, n: g.rayleigh(size=n),
    "lognormal d": lambda g, n: g.lognormal(0, 0.5, size=n),
    "gumbel d": lambda g, n: g.gumbel(size=n),
    "geometric i": lambda g, n: g.geometric(0.3, size=n),
    "bernoulli i": lambda g, n: g.binomial(1, 0.3, size=n),
    "gamma 0.5 d": lambda g, n: g.standard_gamma(0.5, size=n),
    "gamma 2.5 d": lambda g, n: g.standard_gamma(2.5, size=n),
    "gamma 0.5 f": lambda g, n: g.standard_gamma(0.5, size=n, dtype="float32"),
    "gamma 2.5 f": lambda g, n: g.standard_gamma(2.5, size=n, dtype="float32"),
    "beta 0.5,0.5 d": lambda g, n: g.beta(0.5, 0.5, size=n),
    "beta 2.5,1.5 d": lambda g, n: g.beta(2.5, 1.5, size=n),
    "binomial 20,0.3 i": lambda g, n: g.binomial(20, 0.3, size=n),
    "binomial 1000,0.4 i": lambda g, n: g.binomial(1000, 0.4, size=n),
    "poisson 3 ptpe i": lambda g, n: g.poisson(3, size=n),
    "poisson 1000 ptpe i": lambda g, n: g.poisson(1000, size=n),
    "hypergeometric 100,30,20 i": lambda g, n: g.hypergeometric(20, 80, 30, size=n),
    "hypergeometric 100000,3000,40000 i": lambda g, n: g.hypergeometric(40000, 60000, 3000, size=n),
    "negbinomial 5,0.4 i": lambda g, n: g.negative_binomial(5, 0.4, size=n),
    "negbinomial 500,0.1 i": lambda g, n: g.negative_binomial(500, 0.1, size=n),
}


def least(call, n):
    """Nanoseconds per number of the fastest of some batches."""
    batch = max(1, 200000 // n)
    best = float("inf")
    for _ in range(12):
        start = time.process_time_ns()
        for _ in range(batch):
            call()
        best = min(best, (time.process_time_ns() - start) / (batch * n))
    return best


def ours(program):
    names = "|".join(ROWS)
    text = report.run_program(program, "avx512", [
        f"--benchmark_filter=^MT19937/({names})/pexquo/n:(1000|1000000)$",
        "--benchmark_repetitions=12", "--benchmark_min_time=0.002"])
    results, context = report.read_results(text, program)
    return {(row.split("/")[1], n): value[0] for (row, n), value in results.items()}, context


def main():
    root = pathlib.Path(__file__).resolve().parent.parent
    parser = argparse.ArgumentParser(description="Times NumPy's Generator beside the library.")
    parser.add_argument("--programs", type=pathlib.Path, default=root / "build/release/bin")
    parser.add_argument("--output", type=pathlib.Path, default=root / "docs/performance-numpy.md")
    options = parser.parse_args()
    try:
        import numpy
    except ImportError:
        raise report.Failure("NumPy is missing; install python3-numpy") from None
    times, context = ours(options.programs / "pexquo_bench_random")
    rows = []
    for output, draw in ROWS.items():
        for n in LENGTHS:
            if (output, n) not in times:
                continue
            peers = []
            for name in BIT_GENERATORS:
                generator = numpy.random.Generator(getattr(numpy.random, name)(1))
                peers.append(least(lambda: draw(generator, n), n))
            rows.append([output, str(n), report.number(times[output, n])] +
                        [report.number(t) for t in peers] + [f"{times[output, n] / min(peers):.2f}"])
    options.output.write_text(
        "# Random numbers beside NumPy\n\nWritten by `bench/numpy_random.py`. " +
        report.machine_line(context).rstrip(".") + f"; NumPy {numpy.__version__}.\n\n"
        "Nanoseconds per number of the library on MT19937 and of NumPy's Generator on three of its bit\n"
        "generators; the ratio is ours over NumPy's fastest, below 1 where we are faster.\n\n" +
        report.table(["output", "n", "pexquo", *(f"NumPy {b}" for b in BIT_GENERATORS), "ratio"], rows) +
        "\n")


if __name__ == "__main__":
    try:
        main()
    except report.Failure as failure:
        print(f"numpy_random.py: {failure}", file=sys.stderr)
        sys.exit(2)
