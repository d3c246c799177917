# Copyright the Seedforest authors
# SPDX-License-Identifier: Apache-2.0
"""What docstrings, README.md and docs/python.md say is so."""

import doctest
import importlib
import inspect
import pkgutil
import re
import subprocess
from pathlib import Path

import numpy as np
import pytest

import seedforest as sf

PROJECT = Path(__file__).resolve().parents[2]
MODULES = [
    importlib.import_module(f"seedforest.{module.name}")
    for module in pkgutil.iter_modules(sf.__path__)
    if module.name != "_core"
]
PUBLIC = [getattr(sf, name) for name in sf.__all__ if name != "__version__"]


@pytest.mark.parametrize("module", MODULES, ids=lambda module: module.__name__)
def test_docstrings(module):
    assert doctest.testmod(module, extraglobs={"np": np, "sf": sf}).failed == 0


def test_every_function_is_described_with_an_example():
    for thing in PUBLIC:
        text = inspect.getdoc(thing)
        if inspect.isfunction(thing):
            assert ">>>" in text, thing.__name__
        assert text.splitlines()[0].endswith("."), thing.__name__
    page = (PROJECT / "docs/python.md").read_text()
    table = page[page.index("## Functions by task") : page.index("## Errors")]
    for name in re.findall(r"`(\w+)`", sf.__doc__ + table):
        assert hasattr(sf, name), name
    for thing in filter(inspect.isfunction, PUBLIC):
        assert f"`{thing.__name__}`" in table or "2" in thing.__name__, thing.__name__


@pytest.mark.parametrize("page, language", [("README.md", "py"), ("docs/python.md", "python")])
def test_page(build, page, language):
    subprocess.run([build / "examples/make_micrograph", "240", "200", "cells.pgm"], check=True)
    blocks = re.findall(rf"^```{language}\n(.*?)^```", (PROJECT / page).read_text(), re.M | re.S)
    assert blocks
    for number, block in enumerate(blocks):
        exec(compile(block, f"{page}, block {number + 1}", "exec"), {})
    assert Path("cells.ppm").exists()


def test_version():
    recipe = (PROJECT / "CMakeLists.txt").read_text()
    assert f"project(seedforest VERSION {sf.__version__} " in recipe
