# Copyright the Seedforest authors
# SPDX-License-Identifier: Apache-2.0
"""Overlays in matplotlib: colours of regions, contours, seeds.

    python with_matplotlib.py cells.pgm picture.png
"""

import sys

import matplotlib

matplotlib.use("Agg")  # to a file, without a display
import matplotlib.pyplot as plt
import numpy as np

import seedforest as sf

image = sf.imread(sys.argv[1])
seeds = sf.markers(image, 5, steps=2)
labels = sf.watershed(sf.negative(image), seeds, mask=image > 70)

figure, (left, right) = plt.subplots(1, 2, figsize=(10, 5))
left.imshow(image, cmap="gray")
left.imshow(np.ma.masked_equal(labels, 0), cmap="prism", alpha=0.4, interpolation="nearest")
left.scatter(seeds.columns, seeds.rows, s=1, color="white")  # x is the column, y the row
right.imshow(np.moveaxis(sf.overlay(image, labels), 0, -1))  # colours come last in matplotlib
for axes in (left, right):
    axes.set_axis_off()
figure.savefig(sys.argv[2], dpi=120)
