#!/usr/bin/env python3
"""Fills the measured tables of README.md from docs/accuracy.md and docs/performance.md."""
import pathlib
import re
import statistics

ROOT = pathlib.Path(__file__).resolve().parent.parent
COLUMNS = [("d", "HA"), ("d", "50"), ("d", "26"), ("s", "HA"), ("s", "21"), ("s", "11")]


def rows(path):
    """The cells of every table row of a document."""
    for line in path.read_text().splitlines():
        if line.startswith("| ") and not line.startswith("|---"):
            yield [cell.strip() for cell in line.strip("|").split("|")]


def accuracy():
    """Function, then the largest errors of its six entries."""
    errors = {}
    for cells in rows(ROOT / "docs/accuracy.md"):
        entry = re.fullmatch(r"`_pex([ds])(\w+)_(\w+)`", cells[0])
        if entry and len(cells) == 7:
            kind, function, tier = entry.groups()
            errors.setdefault(function, {})[kind, tier] = cells[2]
    table = ["| function | double HA | LA | EP | single HA | LA | EP |", "|---|---|---|---|---|---|---|"]
    for function, by_entry in errors.items():
        table.append("| " + " | ".join([function] + [by_entry.get(c, "-") for c in COLUMNS]) + " |")
    return table


def replace(text, name, table):
    """Puts the table between the markers of its name."""
    pattern = re.compile(rf"(<!-- {name} -->\n).*?(<!-- end of {name} -->)", re.S)
    filled, count = pattern.subn(lambda m: m[1] + "\n".join(table) + "\n" + m[2], text)
    if count != 1:
        raise SystemExit(f"README.md: the markers of {name} are missing")
    return filled


def performance_table(*heads):
    """The cells of the AVX-512 table under the first head that docs/performance.md has, and the
    number of each column by its name."""
    text = (ROOT / "docs/performance.md").read_text()
    part = next((p for p in text.split("## ") if p.lower().startswith(heads)), "")
    lines = [line for line in part.splitlines() if line.startswith("| ")]
    cells = [[cell.strip() for cell in line.strip("|").split("|")] for line in lines]
    if len(cells) < 2:
        raise SystemExit(f"docs/performance.md: no table of {heads[0]}")
    return cells[1:], {name: k for k, name in enumerate(cells[0])}


def speed():
    """One row for each tiered function and type from the AVX-512 table of docs/performance.md."""
    cells, columns = performance_table("vector math, avx-512", "avx-512")
    found = {}
    for row in cells:
        tier = row[columns["tier"]]
        if tier not in ("EP", "LA", "HA"):
            continue
        ours, peer = row[columns["n = 1024"]], row[columns["peer"]]
        text = ours
        if peer and tier != "EP":
            text += f" ({row[columns['ratio']]} of {peer.split(' (')[0]})"
        found.setdefault((row[0], row[1]), {})[tier] = text
    table = ["| function | type | EP | LA | HA |", "|---|---|---:|---|---|"]
    for (function, kind), tiers in found.items():
        table.append("| " + " | ".join([function, kind] + [tiers.get(t, "-") for t in ("EP", "LA", "HA")])
                     + " |")
    return table


def random():
    """Raw words, doubles and floats of each generator, then each distribution on MT19937."""
    cells, columns = performance_table("generators, avx-512")
    found = {}
    for row in cells:
        generator, output = row[0], row[1]
        words = output.split(" ")
        if words[-1] in ("clamped", "integers"):
            continue
        kind = words[-1] if len(words) > 1 else "bits"
        kind = "bits" if kind == "i" else kind
        name = generator if words[0] in ("bits", "uniform") else " ".join(words[:-1])
        ratio, peer = row[columns["ratio"]], row[columns["peer"]]
        text = row[columns["n = 1000"]]
        if peer != "-":
            text += f" ({ratio} of {peer})"
        found.setdefault(name, {})[kind] = text
    table = ["| | integers | double | single |", "|---|---|---|---|"]
    for name, kinds in found.items():
        table.append("| " + " | ".join([name] + [kinds.get(k, "-") for k in ("bits", "d", "f")]) + " |")
    return table


def ratios(cells, columns, ours):
    """Rows that have a target, with our time over the peer's."""
    for row in cells:
        if row[columns["target"]] != "-" and row[columns["its time"]] != "-":
            yield row, float(row[columns[ours]]) / float(row[columns["its time"]])


def numbers():
    """Accuracy and speed of the whole in three lines."""
    worst = max((float(cells[2].split()[0]), cells[0]) for cells in rows(ROOT / "docs/accuracy.md")
                if re.fullmatch(r"`_pexd\w+_HA`", cells[0]) and len(cells) == 7)
    cells, columns = performance_table("vector math, avx-512", "avx-512")
    high = [ratio for row, ratio in ratios(cells, columns, "n = 1024")
            if row[columns["tier"]] == "HA" and row[columns["type"]] == "double"
            and row[columns["peer"]].startswith("SLEEF")]
    drawn = [ratio for _, ratio in ratios(*performance_table("generators, avx-512"), "n = 1000")]
    return [f"- **{worst[0]:.2f} ulp** is the largest error of any HA function in double precision, found"
            f" against MPFR.",
            f"- **{1 / statistics.geometric_mean(high):.1f} times** as fast as SLEEF's functions of 1.0 ulp: the"
            f" {len(high)} HA functions in double precision that it has, by the geometric mean.",
            f"- **{1 / statistics.geometric_mean(drawn):.1f} times** as fast as the fastest of the C++ library,"
            f" Boost and GSL: generators and distributions, by the geometric mean of {len(drawn)}."]


def main():
    readme = ROOT / "README.md"
    text = replace(readme.read_text(), "accuracy", accuracy())
    text = replace(text, "numbers", numbers())
    text = replace(text, "speed", speed())
    readme.write_text(replace(text, "random", random()))


if __name__ == "__main__":
    main()
