# Copyright the Seedforest authors
# SPDX-License-Identifier: Apache-2.0
"""Operations on each pixel by itself. Bounds are inclusive."""

from __future__ import annotations

from typing import Optional

import numpy as np
from numpy.typing import ArrayLike, NDArray

from . import _core
from ._arguments import Mask, Picture, shape_of, together, whole, widened


def threshold(image: ArrayLike, lo: int, hi: int) -> Mask:
    """Where lo <= value <= hi.

    Examples
    --------
    >>> sf.threshold([[1, 5, 9]], 5, 255)
    array([[False,  True,  True]])
    """
    return _core.threshold(image, whole("lo", lo), whole("hi", hi))


def band_pass(image: ArrayLike, lo: int, hi: int) -> NDArray[np.int32]:
    """The value where lo <= value <= hi, 0 elsewhere.

    Examples
    --------
    >>> sf.band_pass([[1, 5, 9]], 2, 6)
    array([[0, 5, 0]], dtype=int32)
    """
    return _core.band_pass(image, whole("lo", lo), whole("hi", hi))


def negative(image: ArrayLike) -> NDArray[np.int32]:
    """255 minus the value for uint8, the largest value minus the value for other types.

    Examples
    --------
    >>> sf.negative([[1, 5, 9]])
    array([[8, 4, 0]], dtype=int32)
    >>> sf.negative(np.array([[1, 5, 9]], np.uint8))
    array([[254, 250, 246]], dtype=int32)
    """
    return _core.negative(image)


def complement(shape: ArrayLike) -> Mask:
    """Where a shape is not: the pixels that are not above 0.

    Examples
    --------
    >>> sf.complement([[1, 0, -1]])
    array([[False,  True,  True]])
    """
    return _core.complement(shape)


def shape_difference(a: ArrayLike, b: ArrayLike) -> Mask:
    """Where a is above 0 and b is 0.

    Examples
    --------
    >>> sf.shape_difference([[1, 1, 0]], [[0, 1, 1]])
    array([[ True, False, False]])
    """
    return _core.shape_difference(a, b)


def shape_union(a: ArrayLike, b: ArrayLike) -> Mask:
    """Where a or b is above 0.

    Examples
    --------
    >>> sf.shape_union([[1, 0, 0]], [[0, 0, 1]])
    array([[ True, False,  True]])
    """
    return _core.shape_union(a, b)


def masked(image: ArrayLike, mask: ArrayLike, fill: int = 0) -> Picture:
    """The image where the mask is above 0, ``fill`` elsewhere.

    Parameters
    ----------
    image : array of integers, (rows, columns) or (bands, rows, columns)
    mask : array, (rows, columns)
    fill : int

    Returns
    -------
    array
        Of the image's shape, uint8 for uint8 and a fill of 0 to 255, else int32.

    Examples
    --------
    >>> sf.masked([[1, 5, 9]], [[1, 0, 1]], fill=-1)
    array([[ 1, -1,  9]], dtype=int32)
    """
    value = whole("fill", fill)
    return _core.masked(image if 0 <= value <= 255 else widened(image), mask, value)


def add_border(image: ArrayLike, width: int) -> Picture:
    """The image with ``width`` rows and columns of 0 added on each side.

    Examples
    --------
    >>> sf.add_border([[5]], 1)
    array([[0, 0, 0],
           [0, 5, 0],
           [0, 0, 0]], dtype=int32)
    """
    return _core.add_border(image, whole("width", width))


def remove_border(image: ArrayLike, width: int) -> Picture:
    """The image with ``width`` rows and columns removed on each side.

    Examples
    --------
    >>> sf.remove_border([[0, 0, 0], [0, 5, 0], [0, 0, 0]], 1)
    array([[5]], dtype=int32)
    """
    return _core.remove_border(image, whole("width", width))


def upper_envelope(a: ArrayLike, b: ArrayLike) -> Picture:
    """The larger value of two images.

    Examples
    --------
    >>> sf.upper_envelope([[1, 5]], [[3, 3]])
    array([[3, 5]], dtype=int32)
    """
    return _core.upper_envelope(*together(a, b))


def lower_envelope(a: ArrayLike, b: ArrayLike) -> Picture:
    """The smaller value of two images.

    Examples
    --------
    >>> sf.lower_envelope([[1, 5]], [[3, 3]])
    array([[1, 3]], dtype=int32)
    """
    return _core.lower_envelope(*together(a, b))


def add(image: ArrayLike, k: int) -> Picture:
    """Values plus k, at least 0, and at most 255 for uint8 in one band.

    Examples
    --------
    >>> sf.add(np.array([[1, 250]], np.uint8), 10)
    array([[ 11, 255]], dtype=uint8)
    """
    return _core.add(image, whole("k", k))


def subtract(a: ArrayLike, b: ArrayLike) -> Picture:
    """Values of a minus those of b, at least 0.

    Examples
    --------
    >>> sf.subtract([[5, 5]], [[3, 9]])
    array([[2, 0]], dtype=int32)
    """
    return _core.subtract(*together(a, b))


def histogram(image: ArrayLike, mask: Optional[ArrayLike] = None) -> NDArray[np.float32]:
    """How many pixels have each value, from 0 to the largest.

    Parameters
    ----------
    image : array of integers, (rows, columns)
        Values of at least 0.
    mask : array, (rows, columns), optional
        Count where it is above 0.

    Returns
    -------
    float32 array
        Counts are exact up to 2**24.

    Examples
    --------
    >>> sf.histogram([[0, 2, 2]])
    array([1., 0., 2.], dtype=float32)
    """
    everywhere = np.ones(shape_of(image), np.uint8) if mask is None else mask
    return _core.histogram(image, everywhere)
