# Copyright the Seedforest authors
# SPDX-License-Identifier: Apache-2.0
"""Shapes: components, contours, skeletons, and shapes that touch. Pixels above 0 belong to one."""

from __future__ import annotations

from typing import Literal, Tuple, Union, overload

from numpy.typing import ArrayLike

from . import _core
from ._arguments import Labels, Mask, choice, shape_of, whole
from ._forest import pixel_of
from ._roots import Roots, Seeds, seed_table


def label(shapes: ArrayLike) -> Labels:
    """The 8-connected components, numbered from 1 in the raster order of their first pixels.

    Parameters
    ----------
    shapes : array, (rows, columns)

    Examples
    --------
    >>> sf.label([[1, 1, 0, 1]])
    array([[1, 1, 0, 2]], dtype=int32)
    """
    labels, _ = _core.components(shapes)
    return labels


def relabel_sequential(labels: ArrayLike) -> Labels:
    """Renumbers the values from 1 in the raster order of their first pixels, 0 like any other.

    Examples
    --------
    >>> sf.relabel_sequential([[7, 0, 7, 9]])
    array([[1, 2, 1, 3]], dtype=int32)
    """
    renumbered, _ = _core.relabel(labels)
    return renumbered


def flat_zones(image: ArrayLike, seeds: Seeds) -> Mask:
    """The 8-connected zones of equal value that hold a seed (flood fill).

    Examples
    --------
    >>> sf.flat_zones([[1, 1, 2, 1, 1]], [[0, 0, 1]])
    array([[ True,  True, False, False, False]])
    """
    return _core.flat_zones(image, seed_table(seeds, shape_of(image)))


def inner_boundaries(labels: ArrayLike) -> Mask:
    """The pixels above 0 that have a 0 among their 4 neighbours.

    Regions that touch are not separated, and the edge of the image is not a border.

    Examples
    --------
    >>> sf.inner_boundaries([[1, 1, 1, 0]])
    array([[False, False,  True, False]])
    """
    return _core.inner_border(labels)


def contours(curves: ArrayLike) -> Labels:
    """Numbers the pixels of thin curves along their course, from 1.

    The last pixel of each curve skips numbers, so that the largest number exceeds the pixels'.

    Examples
    --------
    >>> sf.contours([[0, 0, 0, 0], [1, 1, 1, 0], [0, 0, 0, 0]])
    array([[0, 0, 0, 0],
           [1, 2, 5, 0],
           [0, 0, 0, 0]], dtype=int32)
    """
    numbers, _ = _core.contours(curves)
    return numbers


def contour_differences(
    values: ArrayLike, labels: ArrayLike, absolute: bool = False
) -> Labels:
    """How far apart along their contour the values of neighbouring pixels lie.

    Parameters
    ----------
    values : array of integers, (rows, columns)
        Of each pixel the place of its border pixel along the contour.
    labels : array of integers, (rows, columns)
        The contours' numbers.
    absolute : bool

    Examples
    --------
    >>> sf.contour_differences([[1, 4, 4]], [[1, 1, 1]])
    array([[0, 0, 0]], dtype=int32)
    """
    return _core.contour_differences(values, labels, bool(absolute))


@overload
def skeletonize(
    shape: ArrayLike, scale: int, side: str = "inside", return_scale: Literal[False] = False
) -> Labels: ...


@overload
def skeletonize(
    shape: ArrayLike, scale: int, side: str = "inside", *, return_scale: Literal[True]
) -> Tuple[Labels, int]: ...


def skeletonize(
    shape: ArrayLike, scale: int, side: str = "inside", return_scale: bool = False
) -> Union[Labels, Tuple[Labels, int]]:
    """Multiscale skeleton: the larger the scale, the fewer branches.

    Parameters
    ----------
    shape : array, (rows, columns)
    scale : int
        Pixels stay whose nearest border pixel and that of a neighbour lie at least that far apart
        along the contour.
    side : {'inside', 'outside', 'both'}
    return_scale : bool
        Return also the largest useful scale, -99999 for a shape without interior.

    Returns
    -------
    int32 array
        The squared distance to the border on the skeleton's pixels, 0 elsewhere.

    Examples
    --------
    >>> bar = np.pad(np.ones((5, 9), int), 2)
    >>> sf.skeletonize(bar, 10)[4]
    array([0, 0, 0, 0, 0, 0, 4, 4, 0, 0, 0, 0, 0], dtype=int32)
    """
    number = {"both": 0, "inside": 1, "outside": 2}[
        choice("side", side, ("inside", "outside", "both"))
    ]
    distances, largest_scale = _core.skeleton(shape, whole("scale", scale), number)
    return (distances, largest_scale) if return_scale else distances


def shape_of_skeleton(squared_distances: ArrayLike) -> Mask:
    """The shape that a skeleton's squared distances make: a disc around each of its pixels.

    Examples
    --------
    >>> sf.shape_of_skeleton([[0, 0, 4, 0, 0, 0]])
    array([[ True,  True,  True,  True,  True, False]])
    """
    return _core.shape_of(squared_distances)


def shortest_path(mask: ArrayLike, start: Tuple[int, int], stop: Tuple[int, int]) -> Roots:
    """The shortest 8-connected path within a mask.

    Parameters
    ----------
    mask : array, (rows, columns)
        Paths lead where it is above 0.
    start, stop : (row, column)

    Returns
    -------
    Roots
        The path's pixels in its order: label is the place, from 1, value the squared straight
        distance from where it begins. Empty where there is none.

    Examples
    --------
    >>> list(sf.shortest_path([[1, 0, 1], [0, 1, 0]], (0, 0), (0, 2)))
    [(0, 0, 1), (1, 1, 2), (0, 2, 3)]
    """
    size = shape_of(mask)
    table = _core.shortest_path(mask, pixel_of(start, size), pixel_of(stop, size))
    return Roots._of(table, size)


def split_touching(shape: ArrayLike, h: int = 0) -> Labels:
    """Separates shapes that touch, by a watershed of the distance to the outside.

    Parameters
    ----------
    shape : array, (rows, columns)
        Positions beyond the image do not count as outside.
    h : int
        A neck separates two parts only where its half-width is more than h pixels smaller than that
        of both.

    Returns
    -------
    int32 array
        Labels from 1, a different one for each part; 0 outside.

    Examples
    --------
    >>> shape = [[0, 1, 1, 1, 0, 0, 0, 1, 1, 1, 0], [1] * 11, [0, 1, 1, 1, 0, 0, 0, 1, 1, 1, 0]]
    >>> sf.split_touching(shape)[1]
    array([1, 1, 1, 1, 1, 1, 2, 2, 2, 2, 2], dtype=int32)
    """
    labels, _ = _core.split_touching(shape, whole("h", h))
    return labels
