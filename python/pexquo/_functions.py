"""The functions of the library, as NumPy users call them, with their documentation."""

import textwrap

from . import _pexquo

_TIERS = {"ha": "high accuracy", "la": "low accuracy", "ep": "enhanced performance"}
_TYPES = {"d": "float64", "s": "float32", "z": "complex128", "c": "complex64"}


def _bound(tier, value):
    return f"{value:.0f} correct bits" if tier == "ep" else f"{value:.4g} ulp"


def _bounds(rows):
    """The table of error bounds by tier and type."""
    cells = {}
    for row in rows:
        cells.update(row["bounds"])
    lines = []
    for tier in _TIERS:
        parts = [
            f"{_TYPES[letter]} {_bound(tier, cells[letter, tier])}"
            for letter in "dszc"
            if (letter, tier) in cells
        ]
        if parts:
            lines += textwrap.wrap(
                f'"{tier}": ' + ", ".join(parts), 88, subsequent_indent=" " * 6
            )
    return lines


def _document(function):
    rows = [r for r in _pexquo.rows() if r[1]["name"] == function._catalogue]
    names = "a" if function.nin == 1 else "a, b"
    out = "out=None" if function.nout == 1 else "out=(None, None)"
    real = [row for is_complex, row in rows if not is_complex]
    complex_ = [row for is_complex, row in rows if is_complex]
    lines = [f"{function.__name__}({names}, /, {out}, *, tier='ha', **kwargs)", ""]
    formula = rows[0][1]["formula"]
    lines.append(f"{formula}, element by element.")
    for title, group in (("", real), ("Of complex numbers: ", complex_)):
        for row in group:
            if row["notes"]:
                lines += [""] + textwrap.wrap(title + row["notes"], 92)
    if any("eport" in row["notes"] or "code" in row["notes"] for _, row in rows):
        lines += ["", "Reports and codes are those of the C interface; here warnings and `errors()` follow the"]
        lines += ["floating-point flags of IEEE 754: invalid, divide by zero, overflow, underflow."]
    bounds = _bounds([row for _, row in rows])
    if bounds:
        lines += ["", "Largest errors by tier (ulp of each part; `ep` promises bits):", ""]
        lines += ["    " + line for line in bounds]
    lines += ["", "Types: " + " ".join(function.types), ""]
    from ._examples import EXAMPLES

    example = EXAMPLES.get(function.__name__)
    if example is not None:
        lines += [">>> import pexquo"] + example.strip().splitlines() + [""]
    return "\n".join(lines)


_pexquo.set_document_hook(_document)

FUNCTIONS = dict(_pexquo.functions)
FUNCTIONS["abs"] = FUNCTIONS["absolute"]
FUNCTIONS["conj"] = FUNCTIONS["conjugate"]
