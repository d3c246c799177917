# Copyright the Seedforest authors
# SPDX-License-Identifier: Apache-2.0
"""Images larger than memory, and many images at once, with dask.

    python with_dask.py cells.pgm

What is exact in blocks. An operation that looks at most r pixels far (`dilation`, `erosion`,
`gradient`: the disc's radius; `opening`, `closing`: twice that) is exact with an overlap of r.
Everything whose paths may be long is not: a watershed, components, reconstructions, area openings and
distances see only their block. A region that is larger than the overlap is cut at a seam, a crest
outside the block is not seen, and labels are numbered anew in each block. Below, a cell is counted in
the block that holds its first marker pixel, so that one at a seam counts once as long as it fits into
the overlap with what decides about it.
"""

import sys

import dask.array
import dask.bag
import numpy as np
from distributed import Client, LocalCluster

import seedforest as sf

OVERLAP = 48  # more than the diameter of the largest cell


def cells(image):
    """Labels of bright cells."""
    return sf.watershed(sf.negative(image), sf.markers(image, 5, steps=2), mask=image > 70)


def first_markers(block):
    """1 at the first marker pixel, in raster order, of each cell in a block."""
    seeds = sf.markers(block, 5, steps=2)
    seeds = seeds[block[seeds.rows, seeds.columns] > 70]
    _, first = np.unique(seeds.labels, return_index=True)
    result = np.zeros(block.shape, np.uint8)
    result[seeds.rows[first], seeds.columns[first]] = 1
    return result


def count_in_file(path):
    """What a worker does with one file."""
    return path, len(np.unique(cells(sf.imread(path)))) - 1


def main():
    """Compares blocks with the whole image."""
    image = sf.imread(sys.argv[1])
    large = dask.array.from_array(image, chunks=(100, 120))

    gradient = large.map_overlap(sf.gradient, depth=1, boundary="none", dtype=np.int32)
    assert np.array_equal(gradient.compute(scheduler="threads"), sf.gradient(image))
    print("the gradient in blocks is that of the image")

    found = large.map_overlap(first_markers, depth=OVERLAP, boundary="none", dtype=np.uint8)
    print(f"{int(found.sum().compute())} cells in blocks, {first_markers(image).sum()} in the image")

    with LocalCluster(n_workers=2, threads_per_worker=1, dashboard_address=None) as cluster:
        with Client(cluster) as client:
            files = dask.bag.from_sequence([sys.argv[1]] * 4, npartitions=2)
            for path, count in client.compute(files.map(count_in_file)).result():
                print(f"{path}: {count} cells")


if __name__ == "__main__":
    main()
