# Copyright the Seedforest authors
# SPDX-License-Identifier: Apache-2.0
"""Image analysis by the Image Foresting Transform, on NumPy arrays.

Seedforest computes seeds, grows regions from them and measures them, exactly and reproducibly to the
last tie: from every interface, on every machine, the same pixels.

    import seedforest as sf
    image = sf.imread("cells.pgm")
    seeds = sf.markers(image, 5, steps=4)
    labels = sf.watershed(sf.negative(image), seeds, mask=sf.threshold(image, 70, 255))
    sf.imsave("cells.ppm", sf.overlay(image, labels))

Where to start
--------------
files       `imread`, `imsave`; any other reader's arrays will do
seeds       `markers`, `h_maxima`, `regional_maxima`, `cell_seeds`, `seeds_from_labels`
regions     `watershed`, `image_forest` (any path cost), `split_touching`, `label`, `merge_regions`
distances   `distance_transform`, `nearest_seeds`, `skeletonize`, `shortest_path`
filters     `area_opening`, `reconstruction`, `opening`, `alternating_filter`, `gradient`
results     `measure`, `overlay`, `label2rgb`
proof       `verify`

What holds for all functions
----------------------------
Images are arrays of shape (rows, columns) or (bands, rows, columns), first row on top; a colour image
is (3, rows, columns). Functions of one band use the first. Pixels are whole numbers of 32 bits:

- int32, C-contiguous, is used as it is, without a copy;
- other integers and booleans, other orders of memory and lists are converted once in each call, and
  values that do not fit are a ValueError;
- floats are a TypeError: scale and round them first, ``(255 * image).round().astype(numpy.uint8)``;
- uint8 means grey levels 0 to 255: `negative`, `regional_minima`, `add` and files depend on it.

Places are row, column; seeds are `Roots` or tables of row, column and label. Labels are from 1, and 0
is none. Distances are squared unless the name says otherwise, and areas count pixels.

Results are new arrays that own their memory; arguments are never changed. Other threads run during a
call, and must not change its arguments. Ctrl-C stops a long one. Nothing is printed.

Errors are ValueError (shapes, sizes, values), TypeError (kinds of arguments), OSError (files) and
MemoryError.
"""

from ._files import (
    imdecode,
    imencode,
    imread,
    imsave,
)
from ._roots import (
    Roots,
    decode_roots,
    encode_roots,
    paint_seeds,
    read_roots,
    seeds_from_labels,
    write_roots,
)
from ._seeds import (
    cell_seeds,
    contour_seeds,
    frame_seeds,
    h_maxima,
    h_minima,
    markers,
    regional_maxima,
    regional_maxima_seeds,
    regional_minima,
    regional_minima_seeds,
    skeleton_seeds,
)
from ._forest import (
    ArcWeights,
    Forest,
    SpanningTree,
    Violation,
    arc_weights,
    disc,
    image_forest,
    scaled_forest,
    spanning_tree,
    verify,
    watershed,
    window,
)
from ._distances import (
    NearestSeeds,
    distance_forest,
    distance_transform,
    nearest_seeds,
)
from ._filters import (
    Connectedness,
    alternating_filter,
    area_closing,
    area_opening,
    closing,
    dilation,
    erosion,
    fuzzy_connectedness,
    fuzzy_connectedness_of_links,
    gradient,
    level,
    level_from_seeds,
    opening,
    reconstruction,
)
from ._shapes import (
    contour_differences,
    contours,
    flat_zones,
    inner_boundaries,
    label,
    relabel_sequential,
    shape_of_skeleton,
    shortest_path,
    skeletonize,
    split_touching,
)
from ._regions import (
    RegionGraph,
    features,
    measure,
    merge_regions,
    region_adjacency,
    region_graph,
    remove_small_regions,
    with_feature,
)
from ._pixelwise import (
    add,
    add_border,
    band_pass,
    complement,
    histogram,
    lower_envelope,
    masked,
    negative,
    remove_border,
    shape_difference,
    shape_union,
    subtract,
    threshold,
    upper_envelope,
)
from ._color import (
    gray2rgb,
    hsv2rgb,
    lab2rgb,
    lab2xyz,
    luv2rgb,
    luv2xyz,
    rgb2hsv,
    rgb2lab,
    rgb2luv,
    rgb2xyz,
    rgb2ycbcr,
    xyz2lab,
    xyz2luv,
    xyz2rgb,
    ycbcr2rgb,
)
from ._pictures import (
    highlight,
    label2rgb,
    overlay,
    paint_circles,
)
from ._core import version as __version__

__all__ = [
    "__version__",
    "ArcWeights",
    "Connectedness",
    "Forest",
    "NearestSeeds",
    "RegionGraph",
    "Roots",
    "SpanningTree",
    "Violation",
    "add",
    "add_border",
    "alternating_filter",
    "arc_weights",
    "area_closing",
    "area_opening",
    "band_pass",
    "cell_seeds",
    "closing",
    "complement",
    "contour_differences",
    "contour_seeds",
    "contours",
    "decode_roots",
    "dilation",
    "disc",
    "distance_forest",
    "distance_transform",
    "encode_roots",
    "erosion",
    "features",
    "flat_zones",
    "frame_seeds",
    "fuzzy_connectedness",
    "fuzzy_connectedness_of_links",
    "gradient",
    "gray2rgb",
    "h_maxima",
    "h_minima",
    "highlight",
    "histogram",
    "hsv2rgb",
    "image_forest",
    "imdecode",
    "imencode",
    "imread",
    "imsave",
    "inner_boundaries",
    "lab2rgb",
    "lab2xyz",
    "label",
    "label2rgb",
    "level",
    "level_from_seeds",
    "lower_envelope",
    "luv2rgb",
    "luv2xyz",
    "markers",
    "masked",
    "measure",
    "merge_regions",
    "nearest_seeds",
    "negative",
    "opening",
    "overlay",
    "paint_circles",
    "paint_seeds",
    "read_roots",
    "reconstruction",
    "region_adjacency",
    "region_graph",
    "regional_maxima",
    "regional_maxima_seeds",
    "regional_minima",
    "regional_minima_seeds",
    "relabel_sequential",
    "remove_border",
    "remove_small_regions",
    "rgb2hsv",
    "rgb2lab",
    "rgb2luv",
    "rgb2xyz",
    "rgb2ycbcr",
    "scaled_forest",
    "seeds_from_labels",
    "shape_difference",
    "shape_of_skeleton",
    "shape_union",
    "shortest_path",
    "skeleton_seeds",
    "skeletonize",
    "spanning_tree",
    "split_touching",
    "subtract",
    "threshold",
    "upper_envelope",
    "verify",
    "watershed",
    "window",
    "with_feature",
    "write_roots",
    "xyz2lab",
    "xyz2luv",
    "xyz2rgb",
    "ycbcr2rgb",
]
