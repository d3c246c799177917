# Copyright the Seedforest authors
# SPDX-License-Identifier: Apache-2.0
"""Measurements as a table of pandas.

    python with_pandas.py cells.pgm
"""

import sys

import pandas as pd

import seedforest as sf

image = sf.imread(sys.argv[1])
labels = sf.watershed(sf.negative(image), sf.markers(image, 5, steps=2), mask=image > 70)

table = pd.DataFrame(sf.measure(labels, image)).set_index("label")
print(table.sort_values("area", ascending=False).head(3))
print(table.groupby(pd.cut(table["average"], [0, 100, 150, 255]))["area"].describe()[["count", "mean"]])
