# Copyright the Seedforest authors
# SPDX-License-Identifier: Apache-2.0
"""Pictures of results, (3, rows, columns): ``numpy.moveaxis(picture, 0, -1)`` for matplotlib."""

from __future__ import annotations

import numpy as np
from numpy.typing import ArrayLike

from . import _core
from ._arguments import Mask, Picture, color_components


def overlay(image: ArrayLike, labels: ArrayLike, color: ArrayLike = (255, 0, 0)) -> Picture:
    """The image with the borders between labels drawn over it, one pixel wide.

    Parameters
    ----------
    image : array of integers, (rows, columns) or, of uint8, (3, rows, columns)
    labels : array of integers, (rows, columns)
    color : (red, green, blue), each 0 to 255

    Returns
    -------
    array, (3, rows, columns)
        uint8, or int32 where a value needs more bits.

    Examples
    --------
    >>> sf.overlay(np.full((1, 4), 9, np.uint8), [[1, 1, 2, 2]])[0]
    array([[  9, 255,   9,   9]], dtype=uint8)
    """
    image = np.asanyarray(image)
    if image.ndim == 3 and (len(image) != 3 or image.dtype != np.uint8):
        raise ValueError(
            "a picture to draw on has one band, or three bands of uint8, not the shape "
            f"{image.shape} and type {image.dtype}"
        )
    return _core.overlay(image, labels, color_components(color))


def highlight(image: ArrayLike, mask: ArrayLike, color: ArrayLike = (255, 0, 0)) -> Picture:
    """The image with the pixels where the mask is above 0 in a colour.

    Parameters
    ----------
    image : array of integers, (rows, columns) or (3, rows, columns)
    mask : array, (rows, columns)
    color : (red, green, blue), each 0 to 255

    Returns
    -------
    array, (3, rows, columns)
        uint8, or int32 where a value needs more bits.

    Examples
    --------
    >>> sf.highlight([[7, 8]], [[0, 1]]).tolist()
    [[[7, 255]], [[7, 0]], [[7, 0]]]
    """
    return _core.highlight(image, mask, color_components(color))


def label2rgb(image: ArrayLike, labels: ArrayLike) -> Picture:
    """The image with every pixel in the average of its region, band by band.

    Parameters
    ----------
    image : array of integers, (rows, columns) or (bands, rows, columns)
    labels : array of integers, (rows, columns)
        Values of at least 0; 0 is a region too.

    Returns
    -------
    array
        Of the image's shape, uint8 for uint8, else int32.

    Examples
    --------
    >>> sf.label2rgb([[2, 4, 9]], [[1, 1, 2]])
    array([[3, 3, 9]], dtype=int32)
    """
    return _core.average_colors(image, labels)


def paint_circles(squared_radii: ArrayLike) -> Mask:
    """Discs around the pixels above 0: all pixels at a squared distance of at most their value.

    From a skeleton's squared distances this restores the shape.

    Examples
    --------
    >>> sf.paint_circles([[0, 0, 1, 0, 0]])
    array([[False,  True,  True,  True, False]])
    """
    return _core.paint_circles(squared_radii)
