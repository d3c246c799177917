# Copyright the Seedforest authors
# SPDX-License-Identifier: Apache-2.0
"""The example programs, as far as the packages they use are there."""

import os
import subprocess
import sys
from pathlib import Path

import pytest

import seedforest as sf

EXAMPLES = Path(__file__).resolve().parent.parent / "examples"


@pytest.mark.parametrize(
    "name, packages, says",
    [
        ("cells.py", (), ["27 cells, 20 of them whole", "mean area"]),
        ("with_skimage.py", ("skimage",), ["cells are round"]),
        ("with_napari.py", (), ["image 'image' of shape (200, 240)", "points 'seeds'"]),
        ("with_pandas.py", ("pandas",), ["average"]),
        ("with_matplotlib.py", ("matplotlib",), []),
        ("with_dask.py", ("dask", "distributed"), ["that of the image", "cells.pgm: 27 cells"]),
        ("with_numba.py", ("numba",), ["times as fast"]),
    ],
)
def test_example(name, packages, says, build):
    for package in packages:
        pytest.importorskip(package)
    subprocess.run([build / "examples/make_micrograph", "240", "200", "cells.pgm"], check=True)
    done = subprocess.run(
        [sys.executable, EXAMPLES / name, "cells.pgm", "picture.png"],
        stdout=subprocess.PIPE,
        stderr=subprocess.PIPE,
        text=True,
        timeout=120,
        env={**os.environ, "MPLCONFIGDIR": os.getcwd()},
    )
    assert done.returncode == 0, done.stderr
    for words in says:
        assert words in done.stdout
    if name == "cells.py":
        assert Path("cells.csv").read_text().startswith("label,area,average,at_frame\n1,")
        assert sf.imread("cells.ppm").shape == (3, 200, 240)
    if name == "with_matplotlib.py":
        assert Path("picture.png").read_bytes().startswith(b"\x89PNG")
