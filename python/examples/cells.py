# Copyright the Seedforest authors
# SPDX-License-Identifier: Apache-2.0
"""From a micrograph to counted, coloured, measured cells.

    python cells.py cells.pgm

writes cells.ppm, the cells in colours, and cells.csv, a row for each. Any reader's array will do in
place of `seedforest.imread`, for example `skimage.io.imread` for PNG and TIFF.
"""

import csv
import sys

import numpy as np

import seedforest as sf

# %% The image: bright round cells, some of them touching, on a dark ground with noise.
image = sf.imread(sys.argv[1])

# %% What is brighter than the ground. Otsu's threshold splits the histogram where the two parts
# vary least.
counts = sf.histogram(image).astype(float)
levels = np.arange(len(counts))
below, sum_below = np.cumsum(counts), np.cumsum(counts * levels)
above, sum_above = below[-1] - below, sum_below[-1] - sum_below
with np.errstate(divide="ignore", invalid="ignore"):
    contrast = below * above * (sum_below / below - sum_above / above) ** 2
ground = int(np.nanargmax(contrast))
bright = sf.threshold(image, ground + 1, 255)

# %% A marker in each summit that stands out by more than 5 grey levels, after smoothing.
markers = sf.markers(image, 5, steps=2)

# %% Regions grow from the markers and meet where the image is darkest between them.
labels = sf.watershed(sf.negative(image), markers, mask=bright)

# %% The proof that no better regions exist.
forest = sf.watershed(sf.negative(image), markers, mask=bright, return_forest=True)
assert sf.verify(forest, sf.negative(image), markers, mask=bright) is None

# %% Cells at the frame are cut off: they count, but their sizes do not.
at_frame = np.zeros(labels.max() + 1, bool)
for edge in (labels[0], labels[-1], labels[:, 0], labels[:, -1]):
    at_frame[edge] = True

# %% A table, and a picture.
table = sf.measure(labels, image)
whole = ~at_frame[table["label"]]
with open("cells.csv", "w", newline="") as file:
    writer = csv.writer(file)
    writer.writerow([*table, "at_frame"])
    writer.writerows(zip(*table.values(), at_frame[table["label"]].astype(int)))

colors = np.random.default_rng(1).integers(60, 255, (labels.max() + 1, 3))
picture = np.where(labels > 0, (colors[labels].transpose(2, 0, 1) + image) // 2, image)
sf.imsave("cells.ppm", sf.overlay(picture.astype(np.uint8), labels, color=(255, 255, 255)))

print(f"{len(whole)} cells, {whole.sum()} of them whole")
print(f"mean area of these {table['area'][whole].mean():.0f} pixels")
