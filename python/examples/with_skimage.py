# Copyright the Seedforest authors
# SPDX-License-Identifier: Apache-2.0
"""Regions of seedforest, measured by scikit-image.

    python with_skimage.py cells.pgm
"""

import sys

import numpy as np
from skimage.measure import regionprops_table

import seedforest as sf

image = sf.imread(sys.argv[1])
labels = sf.watershed(sf.negative(image), sf.markers(image, 5, steps=2), mask=image > 70)

properties = ("label", "area", "intensity_mean", "eccentricity", "solidity")
table = regionprops_table(labels, image, properties=properties)
ours = sf.measure(labels, image)
assert np.array_equal(table["area"], ours["area"])
assert np.array_equal(np.floor(table["intensity_mean"]), ours["average"])

round_ones = table["eccentricity"] < 0.7
print(f"{round_ones.sum()} of {len(round_ones)} cells are round")
