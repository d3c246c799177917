# Copyright the Seedforest authors
# SPDX-License-Identifier: Apache-2.0
"""Euclidean distances to the outside of shapes and to seeds."""

from __future__ import annotations

from typing import Any, Literal, NamedTuple, Tuple, Union, overload

import numpy as np
from numpy.typing import ArrayLike, NDArray

from . import _core
from ._arguments import Connectivity, Labels, Shape, connections, shape_of
from ._forest import Forest
from ._roots import Seeds, seed_table


@overload
def distance_transform(
    shape: ArrayLike, squared: Literal[True] = True, return_roots: Literal[False] = False
) -> Labels: ...


@overload
def distance_transform(
    shape: ArrayLike, squared: Literal[False], return_roots: Literal[False] = False
) -> NDArray[np.float64]: ...


@overload
def distance_transform(
    shape: ArrayLike, squared: bool = True, *, return_roots: Literal[True]
) -> Tuple[NDArray[Any], Labels]: ...


def distance_transform(
    shape: ArrayLike, squared: bool = True, return_roots: bool = False
) -> Union[NDArray[Any], Tuple[NDArray[Any], Labels]]:
    """The exact Euclidean distance of a shape's pixels to the nearest pixel outside it.

    Parameters
    ----------
    shape : array, (rows, columns)
        Pixels above 0 are inside. Positions beyond the image do not count as outside.
    squared : bool
        Return squared distances, which are whole numbers, or their roots.
    return_roots : bool
        Return also the pixels to which the distances lead.

    Returns
    -------
    distances : int32 array, or float64 array where not squared
        0 outside; infinite, 2**31 - 1 (``numpy.inf``), where nothing is outside.
    roots : int32 array, only with return_roots
        The nearest pixel outside as ``row * columns + column``, of several the first in raster order;
        the pixel itself where nothing is outside.

    Examples
    --------
    >>> sf.distance_transform([[1, 1, 1, 0]])
    array([[9, 4, 1, 0]], dtype=int32)
    """
    nearest = NearestSeeds(*_core.nearest_outside(shape))
    distances: NDArray[Any] = nearest.squared_distances
    if not squared:
        infinite = distances == np.iinfo(np.int32).max
        distances = np.sqrt(distances, where=~infinite, out=np.full(distances.shape, np.inf))
    return (distances, nearest.pixels) if return_roots else distances


class NearestSeeds(NamedTuple):
    """Of each pixel the nearest seed."""

    labels: Labels
    """The seed's label, 0 where there is no seed."""

    squared_distances: Labels
    """To the seed; infinite, 2**31 - 1, where there is none."""

    pixels: Labels
    """The seed's pixel as ``row * columns + column``; the pixel itself where there is none."""


def nearest_seeds(shape: Union[Shape, ArrayLike], seeds: Seeds) -> NearestSeeds:
    """The nearest seed of each pixel, exactly (Voronoi regions, feature transform).

    Parameters
    ----------
    shape : tuple of int, or array
        The image's shape, or the image.
    seeds : Roots, (n, 3) array of row, column, label, or label image
        Of seeds equally near the first one in the list wins.

    Examples
    --------
    >>> sf.nearest_seeds((1, 5), [[0, 0, 1], [0, 4, 2]]).labels
    array([[1, 1, 1, 2, 2]], dtype=int32)
    """
    size = shape_of(shape)
    return NearestSeeds(*_core.nearest_roots(*size, seed_table(seeds, size)))


def distance_forest(
    shape: Union[Shape, ArrayLike], seeds: Seeds, connectivity: Connectivity = 8
) -> Forest:
    """The Euclidean distance transform by propagation, with paths.

    With 8 neighbours some pixels, rarely, go to a seed that is a little farther than their nearest;
    `nearest_seeds` is exact.

    Parameters
    ----------
    shape : tuple of int, or array
        The image's shape, or the image.
    seeds : Roots, (n, 3) array of row, column, label, or label image
    connectivity : 4, 8 or (k, 2) array of displacements (row, column)

    Returns
    -------
    Forest
        Its costs are squared distances.

    Examples
    --------
    >>> sf.distance_forest((1, 5), [[0, 0, 1]]).costs
    array([[ 0,  1,  4,  9, 16]], dtype=int32)
    """
    size = shape_of(shape)
    steps = connections(connectivity)
    return Forest(*_core.distance_forest(*size, seed_table(seeds, size), steps))
