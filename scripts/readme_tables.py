#!/usr/bin/env python3
"""Fills the measured tables of README.md from docs/accuracy.md and docs/performance.md."""
import pathlib
import re

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


def speed():
    """The rows of the AVX-512 summary of docs/performance.md, as they stand."""
    text = (ROOT / "docs/performance.md").read_text()
    section = text.split("## ")
    table = []
    for part in section:
        if part.lower().startswith(("vector math, avx-512", "avx-512")):
            table = [line for line in part.splitlines()
                     if line.startswith("|") and "plain loop" not in line]
            break
    if not table:
        raise SystemExit("docs/performance.md: no table for AVX-512")
    return table


def main():
    readme = ROOT / "README.md"
    text = replace(readme.read_text(), "accuracy", accuracy())
    readme.write_text(replace(text, "speed", speed()))


if __name__ == "__main__":
    main()
