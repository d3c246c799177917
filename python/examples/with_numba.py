# Copyright the Seedforest authors
# SPDX-License-Identifier: Apache-2.0
"""A weight of one's own, compiled by numba: as fast as the library's.

    python with_numba.py cells.pgm
"""

import sys
import time

import numba
import numpy as np

import seedforest as sf

image = sf.imread(sys.argv[1]).astype(np.int32)
seeds = sf.markers(image, 5, steps=2)
pixels = image.ravel()


@numba.cfunc("int32(CPointer(int32), int32, int32)")
def climb(values, p, q):
    """Going up costs the difference, going down nothing."""
    return max(values[q] - values[p], 0)


def climb_in_python(p, q):
    """The same, called by the interpreter for each arc."""
    return max(int(pixels[q]) - int(pixels[p]), 0)


def timed(weight):
    """The forest, and how long it took."""
    start = time.perf_counter()
    forest = sf.image_forest(image, seeds, cost="max", weight=weight)
    return forest, time.perf_counter() - start


compiled, seconds = timed(climb)
python, longer = timed(climb_in_python)
assert all(map(np.array_equal, compiled, python))
print(f"the compiled weight is {longer / seconds:.0f} times as fast")
