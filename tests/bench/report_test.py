"""The report: which peer a tier is held against, which ratios miss their target, what is written; and
that the programs produce the rows that it reads.

    report_test.py FOLDER_OF_REPORT FOLDER_OF_PROGRAMS [unittest arguments]
"""

import contextlib
import io
import json
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

REPORT, PROGRAMS = (pathlib.Path(p) for p in sys.argv[1:3])
del sys.argv[1:3]
sys.path.insert(0, str(REPORT))
sys.dont_write_bytecode = True
import report  # noqa: E402


def canned(rows, context=None):
    """Google Benchmark's JSON of {name: ns per element or (ns, ulp)}, in reverse order, with a mean of
    each row that must not be taken for its least time."""
    runs = []
    for index, (name, value) in enumerate(rows.items()):
        ns, ulp = value if isinstance(value, tuple) else (value, None)
        for aggregate, factor in (("mean", 7), ("min", 1)):
            run = {"run_name": name, "family_index": index, "aggregate_name": aggregate,
                   "per_element": ns * factor * 1e-9}
            if ulp is not None:
                run["ulp"] = ulp
            runs.append(run)
    return json.dumps({"context": context or {"compiler": "GNU 12"}, "benchmarks": runs[::-1]})


def results(rows):
    return report.read_results(canned(rows))[0]


EXP = {
    "Exp/d/ep/n:1024": 0.50, "Exp/d/la/n:1024": 0.55, "Exp/d/ha/n:1024": 0.90,
    "Exp/d/la/n:16": 1.2, "Exp/d/la/n:3": 4.0,
    "Exp/d/peer/SLEEF u10/n:1024": (0.80, 1.0), "Exp/d/peer/SLEEF u10/n:16": (1.5, 1.0),
    "Exp/d/peer/libmvec/n:1024": (0.60, 3.0), "Exp/d/peer/libmvec/n:16": (0.9, 3.0),
    "Exp/d/peer/crude/n:1024": (0.40, 9.0),
    "Exp/s/ha/n:1024": 0.45, "Exp/s/peer/SLEEF u10/n:1024": (0.25, 1.0),
    "Exp/s/peer/libmvec/n:1024": (0.20, 2.9),
    "Ln/d/la/n:1024": 0.50, "Ln/d/peer/SLEEF u35/n:1024": (0.30, 2.3),
    "Ln/d/peer/Highway/n:1024": (0.42, 1.0), "Ln/d/peer/SLEEF u10/n:1024": (0.70, 1.0),
    "Ln/s/la/n:1024": 0.10, "Ln/s/peer/SLEEF u35/n:1024": (0.13, 2.6),
    "Ln/s/peer/Highway/n:1024": (0.16, 0.9),
    "Add/d/plain/n:1024": 0.30, "Add/d/peer/plain loop/n:1024": (0.25, 0.5),
    "Cbrt/d/la/n:1024": 0.70,
}

RANDOM = {
    "MCG31M1/bits/pexquo/n:1000": 0.50, "MCG31M1/bits/pexquo/n:16": 2.0,
    "MCG31M1/bits/peer/std/n:1000": 3.0, "MCG31M1/bits/peer/Boost/n:1000": 2.8,
    "MCG31M1/bits/peer/Boost/n:16": 3.1, "MCG31M1/bits/other/GSL minstd/n:1000": 0.1,
    "MCG31M1/bits/pexquo/n:1000000": 0.7,
    "WH/uniform d/pexquo/n:1000": 0.9, "WH/uniform d clamped/pexquo/n:1000": 1.1,
    "WH/uniform d/peer/plain loop/n:1000": 3.0,
    "NEW/bits/pexquo/n:1000": 5.0, "NEW/bits/peer/std/n:1000": 1.0,
    "R250/bits/pexquo/n:1000": 0.4, "R250/bits/other/GSL gfsr4/n:1000": 1.0,
    "R250/bits/other/GSL r250/n:1000": 2.0,
    "MT19937/gaussian icdf d/pexquo/n:1000": 1.2, "MT19937/gaussian boxmuller d/pexquo/n:1000": 2.0,
    "MT19937/gaussian d/other/Boost/n:1000": 3.6, "MT19937/gumbel f/pexquo/n:1000": 1.5,
    "MT19937/gumbel f/other/std/n:1000": 6.0,
    "MT19937/poisson 3 ptpe i/pexquo/n:1000": 3.0, "MT19937/poisson 3 i/other/std/n:1000": 12.0,
    "MT19937/poisson 1000 i/other/std/n:1000": 1.0,
}

COMPLEX = {
    "Abs/c/ha/n:1024": 0.5, "Abs/c/peer/std/n:1024": 5.0, "Abs/c/peer/copy/n:1024": 0.1,
    "Add/z/plain/n:1024": 0.44, "Add/z/peer/std/n:1024": 0.5, "Add/z/peer/copy/n:1024": 0.4,
    "Sin/z/ha/n:1024": 9.0, "Sin/z/peer/std/n:1024": 36.0, "Sin/z/ha/n:16": 9.5,
}


class Judging(unittest.TestCase):
    def test_each_tier_is_held_against_the_fastest_peer_of_its_class(self):
        rows = {(r.function, r.type, r.tier): r for r in report.vector_rows(results(EXP), 1024)}
        cases = [  # entry, peer, limit
            (("Exp", "d", "ep"), "crude", 1.0),
            (("Exp", "d", "la"), "libmvec", 1.0),
            (("Exp", "d", "ha"), "SLEEF u10", 1.0),
            (("Exp", "s", "ha"), "SLEEF u10", 2.0),
            (("Ln", "d", "la"), "Highway", 1.0),
            (("Ln", "s", "la"), "SLEEF u35", 1.0),
            (("Add", "d", "plain"), "plain loop", None),
            (("Cbrt", "d", "la"), None, 1.0),
        ]
        self.assertEqual(list(rows), [entry for entry, _, _ in cases[:3]] + [
            ("Exp", "s", "ha"), ("Ln", "d", "la"), ("Ln", "s", "la"), ("Add", "d", "plain"),
            ("Cbrt", "d", "la")])
        for entry, peer, limit in cases:
            with self.subTest(entry=entry):
                self.assertEqual((rows[entry].peer, rows[entry].limit), (peer, limit))

    def test_misses_of_functions(self):
        misses = report.vector_misses(report.vector_rows(results(EXP), 1024), 1024)
        self.assertEqual([(m.what, round(m.ratio, 3)) for m in misses], [
            ("Exp double EP beside crude", 1.25),
            ("Exp double EP, time of LA over its own", 1.1),
            ("Exp double HA beside SLEEF u10", 1.125),
            ("Ln double LA beside Highway", 1.19)])

    def test_an_equal_time_and_an_exact_gain_meet_their_targets(self):
        rows = report.vector_rows(results({
            "Exp/d/ep/n:1024": 0.5, "Exp/d/la/n:1024": 0.6, "Exp/d/ha/n:1024": 1.0,
            "Exp/d/peer/SLEEF u10/n:1024": (1.0, 1.0), "Exp/s/ha/n:1024": 0.5,
            "Exp/s/peer/SLEEF u10/n:1024": (0.25, 1.0)}), 1024)
        self.assertEqual(report.vector_misses(rows, 1024), [])

    def test_roots_and_entries_that_lead_to_others_have_targets_of_their_own(self):
        rows = report.vector_rows(results({
            "Sqrt/s/ep/n:1024": 0.2, "Sqrt/s/ha/n:1024": 0.2, "Sqrt/s/la/n:1024": 0.2,
            "Sqrt/s/peer/plain loop/n:1024": (0.19, 0.5),
            "Hypot/s/ep/n:1024": 0.21, "Hypot/s/la/n:1024": 0.22,
            "Hypot/d/ep/n:1024": 0.21, "Hypot/d/la/n:1024": 0.22, "Sqrt/d/ha/n:1024": 0.1,
            "Powx/s/ep/n:1024": 0.5, "Powx/s/la/n:1024": 0.5,
            "ErfInv/d/ha/n:1024": 1.5, "ErfInv/d/peer/Boost/n:1024": (20.0, 1.0),
            "ErfInv/d/peer/Boost narrow/n:1024": (10.0, 1.0)}), 1024)
        self.assertEqual([m.what for m in report.vector_misses(rows, 1024)],
                         ["Hypot double EP, time of LA over its own"])
        self.assertEqual(report.narrow_note(rows, 1024),
                         "Beside Boost without promotion: ErfInv d HA 0.15.\n")

    def test_what_stands_above_the_kernels(self):
        self.assertEqual([(m.ratio, m.limit) for m in report.front_misses(FRONT)], [(5.1, "at most 5")])
        self.assertEqual(report.front_misses(FRONT.replace("5.10", "5.00")), [])
        self.assertEqual([m.what for m in report.parallel_misses(PARALLEL)], ["exp, double on two cores"])

    def test_short_calls_cost_their_excess_over_the_elements(self):
        rows = report.vector_rows(results({
            "Exp/d/la/n:1024": 0.5, "Exp/d/la/n:1": 9.0, "Exp/d/la/n:2": 5.0, "Exp/d/la/n:15": 1.1,
            "Exp/d/la/n:16": 9.0, "Ln/d/la/n:1024": 0.5, "Ln/d/la/n:1": 10.0,
            "Ln/d/la/n:4": 3.6}), 1024)
        overheads = {n: round(ns, 6) for n, ns in report.call_overheads(rows[0], 1024).items()}
        self.assertEqual(overheads, {1: 8.5, 2: 9.0, 15: 9.0})
        misses = report.call_misses(rows, 1024)
        self.assertEqual([m.what.split(",")[:2] for m in misses], [["Ln double LA", " call of 4"]])
        self.assertAlmostEqual(misses[0].ratio, 12.4)

    def test_generators_are_held_against_engines_of_their_parameters(self):
        rows = {(r.generator, r.output): r for r in report.random_rows(results(RANDOM), 1000)}
        cases = [
            (("MCG31M1", "bits"), "Boost", 1 / 5),
            (("WH", "uniform d"), "plain loop", 1 / 3),
            (("WH", "uniform d clamped"), "plain loop", 1 / 3),
            (("NEW", "bits"), "std", None),
            (("R250", "bits"), "GSL gfsr4", 1 / 3),
            (("MT19937", "gaussian icdf d"), "Boost", 1 / 3),
            (("MT19937", "gaussian boxmuller d"), "Boost", None),
            (("MT19937", "gumbel f"), "std", 1 / 5),
            (("MT19937", "poisson 3 ptpe i"), "std", 1 / 3),
        ]
        for row, peer, limit in cases:
            with self.subTest(row=row):
                self.assertEqual((rows[row].peer, rows[row].limit), (peer, limit))
        misses = report.random_misses(list(rows.values()), 1000)
        self.assertEqual([(m.what, round(m.ratio, 2)) for m in misses],
                         [("WH uniform d clamped beside plain loop", 0.37),
                          ("R250 bits beside GSL gfsr4", 0.4),
                          ("MT19937 gumbel f beside std", 0.25)])

    def test_tiers_are_drawn_with_the_errors_of_the_accuracy_document(self):
        with tempfile.TemporaryDirectory() as folder:
            document = pathlib.Path(folder) / "accuracy.md"
            document.write_text("| `_pexdExp_HA` | 0.55 ulp | 0.5095 ulp | wide |\n"
                                "| `_pexdExp_26` | 26 bits | 30 bits | wide |\n"
                                "| `_pexsExp_11` | 11 bits | 12.00 bits | wide |\n")
            errors = report.read_errors(document)
        self.assertEqual(errors, {"_pexdExp_HA": 0.5095, "_pexdExp_26": 2**23, "_pexsExp_11": 2**12})
        script = report.tier_plot(results({"Exp/d/ha/n:1024": 0.75, "Exp/d/ep/n:1024": 0.5,
                                           "Exp/d/la/n:1024": 0.6}), errors, "AVX2")
        self.assertIn('0.75\t0.5095\t"HA"', script)
        self.assertNotIn('"LA"', script)  # no error is known

    def test_complex_functions_are_held_against_a_copy_or_the_standard_library(self):
        rows = report.complex_rows(results(COMPLEX), 1024)
        self.assertEqual([(r.function, r.type, r.tier, r.peer, r.limit) for r in rows],
                         [("Abs", "c", "ha", "std", 1 / 12), ("Add", "z", "plain", "copy", 1.2),
                          ("Sin", "z", "ha", "std", 1 / 4)])
        self.assertEqual([(m.what, m.ratio) for m in report.complex_misses(rows, 1024)],
                         [("complex Abs c ha beside std", 0.1)])

    def test_of_several_processes_the_least_counts(self):
        first, second = results({"Exp/d/la/n:1024": 0.5, "Exp/d/la/n:1": 9.0}), results({
            "Exp/d/la/n:1024": 0.6, "Exp/d/la/n:1": 8.0, "Exp/d/la/n:2": 4.0})
        self.assertEqual({n: ns for (_, n), (ns, _) in report.least_of([first, second]).items()},
                         {1024: 0.5, 1: 8.0, 2: 4.0})

    def test_unreadable_results_are_named(self):
        for text in ("{", "[]", '{"benchmarks": [{"aggregate_name": "min"}]}'):
            with self.subTest(text=text), self.assertRaisesRegex(report.Failure, "some.json"):
                report.read_results(text, "some.json")


class Document(unittest.TestCase):
    def test_tables(self):
        text, plots = report.document(
            {"avx512": (results(EXP), results(RANDOM), results(COMPLEX)),
             "sse4": (results(EXP), {}, {})}, "Machine: M.", 60, 2, 1)
        for line in [
            "| Exp | double | LA | 1.200 / 0.900 | - / - | 0.550 | libmvec (3 ulp) | 0.600 |  | 1 | 0.92 |",
            "| Exp | double | EP | - / - | - / - | 0.500 | crude (9 ulp) | 0.400 | **1.10** | 1 | **1.25** |",
            "| Exp | single | HA | - / - | - / - | 0.450 | SLEEF u10 (1 ulp) | 0.250 |  | 2 | 1.80 |",
            "| Cbrt | double | LA | - / - | - / - | 0.700 | - | - |  | - | - |",
            "| Add | double |  | - / - | - / - | 0.300 | plain loop (0.5 ulp) | 0.250 |  | - | 1.20 |",
            "| MCG31M1 | bits | 2.000 / 3.100 | 0.700 / - | 0.500 | Boost | 2.800 | std 3.000, "
            "GSL minstd 0.100 | 0.20 | 0.18 |",
            "| Abs | c | ha | - | - | 0.500 | 0.100 | 5.000 | std | 0.08 | **0.10** |",
            "| Sin | z | ha | 9.500 | - | 9.000 | - | 36.0 | std | 0.25 | 0.25 |",
            "- AVX-512: Ln double LA beside Highway: 1.19, target at most 1.",
        ]:
            self.assertIn(line, text.splitlines())
        self.assertNotIn("- SSE4:", text)
        self.assertEqual(sorted(plots), ["performance-random-avx512.svg", "performance-vector-avx512.svg",
                                         "performance-vector-sse4.svg"])

    def test_written_from_kept_results_without_the_name_of_the_machine(self):
        with tempfile.TemporaryDirectory() as folder:
            folder = pathlib.Path(folder)
            context = {"compiler": "GNU 12", "host_name": "some-host"}
            for k in (1, 2):
                (folder / f"vector-avx2-{k}.json").write_text(canned(EXP, context))
                (folder / f"random-avx2-{k}.json").write_text(canned(RANDOM, context))
                (folder / f"complex-avx2-{k}.json").write_text(canned(COMPLEX, context))
            (folder / "front.md").write_text(FRONT)
            (folder / "parallel.md").write_text(PARALLEL)
            report.main(["--levels", "avx2", "--raw", str(folder), "--reuse", "--output", str(folder / "out")])
            text = (folder / "out/performance.md").read_text()
            self.assertIn("compiler: GNU 12", text)
            self.assertNotIn("some-host", text)
            for said in (FRONT, PARALLEL, "- exp, double on two cores: 1.79, target at least 1.8.",
                         "- the C interface, largest time added to a call of one element, ns: 5.10"):
                self.assertIn(said, text)
            report.main(["--levels", "avx2", "--raw", str(folder), "--reuse", "--output", str(folder / "out"),
                         "--name", "performance-other"])
            other = (folder / "out/performance-other.md").read_text()
            self.assertEqual(other, text.replace("](performance-", "](performance-other-"))
            for plot in re.findall(r"\]\((.*\.svg)\)", other):
                self.assertTrue((folder / "out" / plot).exists(), plot)
            (folder / "parallel.md").write_text("no cores")
            with self.assertRaisesRegex(report.Failure, "prints no table"):
                report.main(["--levels", "avx2", "--raw", str(folder), "--reuse", "--output", str(folder)])
            for plot in ("vector", "random"):
                picture = folder / f"out/performance-{plot}-avx2.svg"
                self.assertIn(f"]({picture.name})", text)
                self.assertIn("<svg", picture.read_text())
                self.assertLess(picture.stat().st_size, 100_000)


FRONT = """ns per call of 1 elements, and what the front adds

| function | kernel | front | tier of the call | and error field |
|---|---:|---:|---:|---:|
| vdHypot | 20.26 | 5.10 | 3.88 | 6.65 |

Of 154 functions, added ns, front: median 1.38, largest 5.10; tier of the call: median 1.31, largest 4.68.
"""

PARALLEL = """1000000 elements, 2 threads, least of 50 rounds.

| work | one thread, ns | all cores, ns | gain | of oneTBB |
|---|---:|---:|---:|---:|
| copy, double | 0.241 | 0.203 | 1.19 | - |
| exp, double | 0.875 | 0.483 | 1.79 | 1.80 |
| tan, double | 1.535 | 0.853 | 1.80 | 1.79 |
"""


class Programs(unittest.TestCase):
    """One tiny measurement each."""

    QUICK = ["--benchmark_repetitions=2", "--benchmark_min_time=0.00001"]

    def measure(self, program, pattern):
        return report.read_results(report.run_benchmarks(
            PROGRAMS / program, "sse4", [f"--benchmark_filter={pattern}", *self.QUICK]))

    def test_rows(self):
        cases = [
            ("pexquo_bench", "^Exp/d/(la|peer/SLEEF u10)/n:(3|16)$",
             [("Exp/d/la", 3), ("Exp/d/la", 16), ("Exp/d/peer/SLEEF u10", 16)]),
            ("pexquo_bench_random", "^MCG59/uniform d.*/n:16$",
             [("MCG59/uniform d/pexquo", 16), ("MCG59/uniform d clamped/pexquo", 16),
              ("MCG59/uniform d/peer/std", 16), ("MCG59/uniform d/peer/Boost", 16),
              ("MCG59/uniform d/other/GSL rand48", 16)]),
        ]
        for program, pattern, rows in cases:
            with self.subTest(program=program):
                measured, context = self.measure(program, pattern)
                self.assertEqual(list(measured), rows)
                self.assertEqual(context["level"], "sse4")
                for row, (ns, ulp) in measured.items():
                    self.assertTrue(0.01 < ns < 1e5, (row, ns))  # the unit, not the speed
                    self.assertEqual(ulp, 1.0 if "SLEEF" in row[0] else None)

    def test_bad_options_end_with_one_line_and_status_2(self):
        for program in report.PROGRAMS.values():
            for option, said in (("--level=avx9000", "unknown level 'avx9000'"),
                                 ("--level=", "unknown level ''"), ("--bogus", "'--bogus'")):
                with self.subTest(program=program, option=option):
                    done = subprocess.run([PROGRAMS / program, option], capture_output=True, text=True)
                    self.assertEqual((done.returncode, done.stdout), (2, ""))
                    self.assertRegex(done.stderr, rf"\A{program}: .*{said}.*\n\Z")

    def test_the_report_of_a_filter(self):
        out = io.StringIO()
        with contextlib.redirect_stdout(out), contextlib.redirect_stderr(io.StringIO()):
            report.main(["--programs", str(PROGRAMS), "--levels", "sse4", "--print", "--repeats", "2",
                         "--milliseconds", "0.01", "--filter", "^Exp/d/(la|peer).*/n:(16|1024)$"])
        self.assertIn("| Exp | double | LA |", out.getvalue())
        with self.assertRaisesRegex(report.Failure, "unknown level 'x'"):
            report.main(["--levels", "x", "--print"])


if __name__ == "__main__":
    unittest.main()
