"""The documentation: every example runs, the type stubs and the names agree, examples/ works."""

import ast
import doctest
import inspect
import os
import pathlib
import shutil
import subprocess
import sys

import numpy as np
import pexquo
import pytest
from pexquo import _bit_generator, _errors, _stream

FUNCTIONS = pexquo._pexquo.functions
STUB = pathlib.Path(pexquo.__file__).with_name("__init__.pyi")


@pytest.mark.parametrize("module", [pexquo, _stream, _errors, _bit_generator])
def test_docstrings(module):
    result = doctest.testmod(module)
    assert result.attempted > 0 and result.failed == 0


@pytest.mark.parametrize("name", FUNCTIONS)
def test_function_documentation(name):
    doc = FUNCTIONS[name].__doc__
    test = doctest.DocTestParser().get_doctest(doc, {}, name, None, 0)
    assert len(test.examples) >= 2
    with np.errstate(all="raise"):
        assert doctest.DocTestRunner().run(test).failed == 0
    assert max(map(len, doc.splitlines())) <= 100


def test_methods_are_documented():
    for name, method in inspect.getmembers(pexquo.Stream, inspect.isfunction):
        assert name.startswith("_") or method.__doc__, name


def stub_names(body):
    for node in body:
        if isinstance(node, (ast.FunctionDef, ast.ClassDef)):
            yield node.name
        elif isinstance(node, ast.AnnAssign):
            yield node.target.id


def test_stubs_name_everything():
    tree = ast.parse(STUB.read_text())
    names = set(stub_names(tree.body))
    assert {n for n in names if not n.startswith("_")} == set(pexquo.__all__)
    assert STUB.with_name("py.typed").exists()
    (stream,) = [n for n in tree.body if isinstance(n, ast.ClassDef) and n.name == "Stream"]
    stubbed = {n.name: n for n in stream.body if isinstance(n, ast.FunctionDef)}
    for name, method in inspect.getmembers(pexquo.Stream, inspect.isfunction):
        if name.startswith("_") and name != "__init__":
            continue
        arguments = stubbed[name].args
        wanted = [a.arg for a in arguments.posonlyargs + arguments.args + arguments.kwonlyargs]
        assert wanted == list(inspect.signature(method).parameters), name


def test_stubs_are_sound(tmp_path):
    mypy = shutil.which("mypy")
    if mypy is None:
        pytest.skip("mypy is missing")
    run = subprocess.run([mypy, "--strict", f"--cache-dir={tmp_path}", str(STUB)],
                         capture_output=True, text=True)
    assert run.returncode == 0, run.stdout


def test_names_are_there():
    assert len(set(pexquo.__all__)) == len(pexquo.__all__)
    for name in pexquo.__all__:
        assert hasattr(pexquo, name)
    assert pexquo.__version__.count(".") == 2


def test_example():
    folder = os.environ.get("PEXQUO_EXAMPLES")
    if folder is None:
        pytest.skip("PEXQUO_EXAMPLES is not set")
    run = subprocess.run([sys.executable, os.path.join(folder, "quickstart.py")],
                         capture_output=True, text=True)
    assert run.returncode == 0 and run.stderr == ""
    assert "the same bits: True" in run.stdout and "log at (2,) of 0.0: singularity" in run.stdout
