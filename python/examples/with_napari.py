# Copyright the Seedforest authors
# SPDX-License-Identifier: Apache-2.0
"""An image, its seeds and its regions as layers of napari.

    python with_napari.py cells.pgm

napari takes a layer as a tuple of data, options and kind; coordinates are row and column there too.
Without napari, the layers are listed.
"""

import sys

import numpy as np

import seedforest as sf


def layers(path):
    """The layers, from the back to the front."""
    image = sf.imread(path)
    seeds = sf.markers(image, 5, steps=2)
    labels = sf.watershed(sf.negative(image), seeds, mask=image > 70)
    places = np.stack((seeds.rows, seeds.columns), axis=1)
    return [
        (image, {"name": "image"}, "image"),
        (labels, {"name": "cells", "opacity": 0.4}, "labels"),
        (places, {"name": "seeds", "size": 2, "features": {"label": seeds.labels}}, "points"),
    ]


if __name__ == "__main__":
    found = layers(sys.argv[1])
    try:
        import napari
    except ModuleNotFoundError:
        for data, options, kind in found:
            print(f"{kind} '{options['name']}' of shape {data.shape}")
    else:
        viewer = napari.Viewer()
        for layer in found:
            viewer.add_layer(napari.layers.Layer.create(*layer))
        napari.run()
