# Copyright the Seedforest authors
# SPDX-License-Identifier: Apache-2.0
"""Morphology with discs, and connected filters, which lower or raise flat zones as a whole."""

from __future__ import annotations

from typing import List, Literal, NamedTuple, Sequence, Tuple, Union, overload

import numpy as np
from numpy.typing import ArrayLike

from . import _core
from ._arguments import (
    Connectivity,
    Labels,
    Picture,
    choice,
    connections,
    shape_of,
    together,
    whole,
    widened,
)
from ._roots import Roots, Seeds, seed_table


def dilation(image: ArrayLike, squared_radius: int) -> Picture:
    """The largest value in the disc around each pixel, band by band.

    Parameters
    ----------
    image : array of integers, (rows, columns) or (bands, rows, columns)
    squared_radius : int
        Of the disc: 1 is the cross of 5 pixels, 2 the 3 x 3 square.

    Returns
    -------
    array
        Of the image's shape, uint8 for uint8, else int32.

    Examples
    --------
    >>> sf.dilation([[0, 0, 5, 0]], 1)
    array([[0, 5, 5, 5]], dtype=int32)
    """
    return _core.dilation(image, whole("squared_radius", squared_radius))


def erosion(image: ArrayLike, squared_radius: int) -> Picture:
    """The smallest value in the disc around each pixel; see `dilation`.

    Examples
    --------
    >>> sf.erosion([[5, 5, 0, 5, 5]], 1)
    array([[5, 0, 0, 0, 5]], dtype=int32)
    """
    return _core.erosion(image, whole("squared_radius", squared_radius))


def opening(image: ArrayLike, squared_radius: int) -> Picture:
    """Removes bright details that do not hold the disc; see `dilation`.

    Examples
    --------
    >>> sf.opening([[0, 5, 0, 4, 4, 4]], 1)
    array([[0, 0, 0, 4, 4, 4]], dtype=int32)
    """
    return _core.opening(image, whole("squared_radius", squared_radius))


def closing(image: ArrayLike, squared_radius: int) -> Picture:
    """Removes dark details that do not hold the disc; see `dilation`.

    Examples
    --------
    >>> sf.closing([[5, 0, 5, 1, 1, 1]], 1)
    array([[5, 5, 5, 1, 1, 1]], dtype=int32)
    """
    return _core.closing(image, whole("squared_radius", squared_radius))


def alternating_filter(image: ArrayLike, steps: int, first: str = "open") -> Picture:
    """Alternating sequential filter: removes small bright and dark details, then larger ones.

    Parameters
    ----------
    image : array of integers, (rows, columns) or (bands, rows, columns)
    steps : int
        Step i opens and closes with a disc of squared radius i.
    first : {'open', 'close'}
        The first operation of each step.

    Examples
    --------
    >>> sf.alternating_filter([[3, 9, 3, 3, 0, 3]], 1)
    array([[3, 3, 3, 3, 0, 0]], dtype=int32)
    """
    close_first = choice("first", first, ("open", "close")) == "close"
    return _core.alternating_filter(image, whole("steps", steps), close_first)


def gradient(image: ArrayLike) -> Labels:
    """Morphological gradient: how much values differ among each pixel and its 8 neighbours.

    It is the largest minus the smallest value, in the band where this is largest.

    Parameters
    ----------
    image : array of integers, (rows, columns) or (bands, rows, columns)

    Returns
    -------
    int32 array, (rows, columns)

    Examples
    --------
    >>> sf.gradient([[1, 1, 1, 6, 6]])
    array([[0, 0, 5, 5, 0]], dtype=int32)
    """
    return _core.gradient(image)


@overload
def reconstruction(
    image: ArrayLike,
    marker: Seeds,
    method: str = "dilation",
    local: bool = False,
    return_labels: Literal[False] = False,
) -> Picture: ...


@overload
def reconstruction(
    image: ArrayLike,
    marker: Seeds,
    method: str = "dilation",
    local: bool = False,
    *,
    return_labels: Literal[True],
) -> Tuple[Picture, Labels]: ...


def reconstruction(
    image: ArrayLike,
    marker: Seeds,
    method: str = "dilation",
    local: bool = False,
    return_labels: bool = False,
) -> Union[Picture, Tuple[Picture, Labels]]:
    """Reconstruction of an image from a marker image, or from seeds.

    The value of a path is the smallest of the marker at its start and the image along it; each pixel
    gets the largest value of all paths. By erosion, smallest and largest are exchanged.

    Parameters
    ----------
    image : array of integers, (rows, columns)
    marker : array of integers, (rows, columns), or Roots
        An image counts as its minimum (by erosion, its maximum) with the image. Seeds start at their
        values; without any, every pixel is -2**31 (2**31 - 1).
    method : {'dilation', 'erosion'}
    local : bool
        From seeds, only along paths on which the image is nowhere below (above) their starting
        value; pixels that no path reaches keep the image's value.
    return_labels : bool
        Return also the label of the seed that reached each pixel.

    Returns
    -------
    array
        From an image uint8 where both are, else int32.

    Examples
    --------
    >>> sf.reconstruction([[5, 9, 3, 8]], [[0, 7, 0, 0]])
    array([[5, 7, 3, 3]], dtype=int32)
    """
    dual = choice("method", method, ("dilation", "erosion")) == "erosion"
    filtered: Tuple[Picture, Labels]
    if isinstance(marker, Roots):
        table = seed_table(marker, shape_of(image))
        filtered = _core.reconstruction_from_roots(widened(image), table, dual, local)
    elif local:
        raise ValueError("reconstruction is local from Roots only")
    else:
        filtered = _core.reconstruction(*together(image, marker), dual)
    return filtered if return_labels else filtered[0]


@overload
def area_opening(
    image: ArrayLike, area: int, return_labels: Literal[False] = False
) -> Picture: ...


@overload
def area_opening(
    image: ArrayLike, area: int, return_labels: Literal[True]
) -> Tuple[Picture, Labels]: ...


def area_opening(
    image: ArrayLike, area: int, return_labels: bool = False
) -> Union[Picture, Tuple[Picture, Labels]]:
    """Lowers each bright peak that covers too few pixels.

    It goes to the highest level at which it covers ``area`` pixels or more.

    Parameters
    ----------
    image : array of integers, (rows, columns)
    area : int
        In pixels; a peak of exactly that area stays.
    return_labels : bool
        Return also the regions of the maxima, with their numbers.

    Examples
    --------
    >>> sf.area_opening([[1, 9, 1, 5, 5, 1]], 2)
    array([[1, 1, 1, 5, 5, 1]], dtype=int32)
    """
    filtered = _core.area_opening(image, whole("area", area))
    return filtered if return_labels else filtered[0]


@overload
def area_closing(
    image: ArrayLike, area: int, return_labels: Literal[False] = False
) -> Picture: ...


@overload
def area_closing(
    image: ArrayLike, area: int, return_labels: Literal[True]
) -> Tuple[Picture, Labels]: ...


def area_closing(
    image: ArrayLike, area: int, return_labels: bool = False
) -> Union[Picture, Tuple[Picture, Labels]]:
    """Raises each dark basin of fewer than ``area`` pixels; see `area_opening`.

    Examples
    --------
    >>> sf.area_closing([[9, 1, 9, 5, 5, 9]], 2)
    array([[9, 9, 9, 5, 5, 9]], dtype=int32)
    """
    filtered = _core.area_closing(image, whole("area", area))
    return filtered if return_labels else filtered[0]


def level(image: ArrayLike, marker: ArrayLike) -> Picture:
    """Levelling of an image towards a marker image.

    Parameters
    ----------
    image, marker : array of integers, (rows, columns)

    Examples
    --------
    >>> sf.level([[0, 9, 0, 0]], [[2, 4, 2, 2]])
    array([[2, 4, 2, 2]], dtype=int32)
    """
    return _core.level(*together(image, marker))


def level_from_seeds(image: ArrayLike, marker: ArrayLike, seeds: Seeds) -> Tuple[Labels, Labels]:
    """Levelling from seeds of label 1, which grow from below, and 2, which grow from above.

    Parameters
    ----------
    image, marker : array of integers, (rows, columns)
        The result starts as the marker.
    seeds : Roots, or (n, 4) array of row, column, label, starting cost

    Returns
    -------
    filtered : int32 array
    labels : int32 array
        Of the seed that reached each pixel, 0 where none did.

    Examples
    --------
    >>> sf.level_from_seeds([[3, 3, 9, 3, 3]], [[1] * 5], [[0, 0, 1, 1]])[0]
    array([[1, 1, 1, 1, 1]], dtype=int32)
    """
    return _core.level_from_roots(image, marker, seed_table(seeds, shape_of(image)))


class Connectedness(NamedTuple):
    """Fuzzy connectedness: of each pixel the object, and how weak the way to it is."""

    labels: Labels
    """The object to which the pixel is connected best, from 1; 0 for none."""

    costs: Labels
    """The cost of the weakest link on the way, 0 to 255; 2**31 - 1 for none."""


def fuzzy_connectedness(
    image: ArrayLike,
    seeds: Seeds,
    objects: Sequence[Tuple[int, int]],
    connectivity: Connectivity = 8,
) -> Connectedness:
    """Relative fuzzy connectedness of objects given by grey level and spread.

    Parameters
    ----------
    image : array of integers, (rows, columns)
    seeds : Roots, (n, 3) array of row, column, label, or label image
        Those of label o belong to object o; others are ignored.
    objects : sequence of (mean, sigma)
        The objects' mean grey levels and the spreads around them, which are not 0.
    connectivity : 4, 8 or (k, 2) array of displacements (row, column)

    Examples
    --------
    >>> sf.fuzzy_connectedness([[9, 9, 8, 1, 1]], [[0, 0, 1], [0, 4, 2]], [(9, 2), (1, 2)]).labels
    array([[1, 1, 1, 2, 2]], dtype=int32)
    """
    pairs: List[Tuple[int, int]] = []
    for mean, sigma in objects:
        pairs.append((whole("a mean", mean), whole("a sigma", sigma)))
    table = seed_table(seeds, shape_of(image))
    return Connectedness(
        *_core.fuzzy_connectedness(image, table, pairs, connections(connectivity))
    )


def fuzzy_connectedness_of_links(
    links: Sequence[ArrayLike], seeds: Seeds, connectivity: Connectivity = 8
) -> Connectedness:
    """Relative fuzzy connectedness with the costs of all links given.

    Parameters
    ----------
    links : sequence of arrays of integers, (displacements, rows, columns)
        For each object the costs, 0 to 255, of the links between a pixel and its neighbours: a band
        for each displacement of the connectivity.
    seeds, connectivity
        As for `fuzzy_connectedness`.

    Examples
    --------
    >>> links = [[[[5, 7]], [[0, 5]]]]
    >>> sf.fuzzy_connectedness_of_links(links, [[0, 0, 1]], [(0, 1), (0, -1)]).costs
    array([[0, 5]], dtype=int32)
    """
    arrays = [np.asanyarray(costs) for costs in links]
    if not arrays:
        raise ValueError("no links at all")
    table = seed_table(seeds, shape_of(arrays[0]))
    return Connectedness(
        *_core.fuzzy_connectedness_of_links(arrays, table, connections(connectivity))
    )
