# Copyright the Seedforest authors
# SPDX-License-Identifier: Apache-2.0
"""Conversions between colour spaces.

An image has the shape (3, rows, columns); ``numpy.moveaxis(image, -1, 0)`` makes it of one whose
colours come last. RGB has 0 to 255; the components of the other spaces are whole numbers in the forms
that ``image/imColor.h`` describes.
"""

from __future__ import annotations

import numpy as np
from numpy.typing import ArrayLike

from . import _core
from ._arguments import Labels, Picture


def _three_bands(image: ArrayLike) -> ArrayLike:
    image = np.asanyarray(image)
    if image.ndim != 3 or len(image) != 3:
        raise ValueError(
            f"a colour image has the shape (3, rows, columns), not {image.shape}; "
            "numpy.moveaxis(image, -1, 0) moves colours that come last"
        )
    return image


def rgb2xyz(rgb: ArrayLike) -> Labels:
    """RGB as XYZ.

    Examples
    --------
    >>> sf.rgb2xyz([[[255]], [[0]], [[0]]]).ravel()
    array([6757, 3484,  316], dtype=int32)
    """
    return _core.rgb2xyz(_three_bands(rgb))


def xyz2rgb(xyz: ArrayLike) -> Picture:
    """XYZ as RGB.

    Examples
    --------
    >>> sf.xyz2rgb(sf.rgb2xyz([[[255]], [[0]], [[0]]])).ravel()
    array([255,   0,   0], dtype=uint8)
    """
    return _core.xyz2rgb(_three_bands(xyz))


def xyz2lab(xyz: ArrayLike) -> Labels:
    """XYZ as CIE L*a*b*.

    Examples
    --------
    >>> sf.xyz2lab(sf.rgb2xyz([[[255]], [[0]], [[0]]])).ravel()
    array([53, 67, 64], dtype=int32)
    """
    return _core.xyz2lab(_three_bands(xyz))


def lab2xyz(lab: ArrayLike) -> Labels:
    """CIE L*a*b* as XYZ.

    Examples
    --------
    >>> sf.lab2xyz(sf.rgb2lab([[[255]], [[0]], [[0]]])).ravel()
    array([6028,    0,  370], dtype=int32)
    """
    return _core.lab2xyz(_three_bands(lab))


def xyz2luv(xyz: ArrayLike) -> Labels:
    """XYZ as CIE L*u*v*.

    Examples
    --------
    >>> sf.xyz2luv(sf.rgb2xyz([[[255]], [[0]], [[0]]])).ravel()
    array([ 53, 174,  37], dtype=int32)
    """
    return _core.xyz2luv(_three_bands(xyz))


def luv2xyz(luv: ArrayLike) -> Labels:
    """CIE L*u*v* as XYZ.

    Examples
    --------
    >>> sf.luv2xyz(sf.rgb2luv([[[255]], [[0]], [[0]]])).ravel()
    array([6693, 3448,  343], dtype=int32)
    """
    return _core.luv2xyz(_three_bands(luv))


def rgb2ycbcr(rgb: ArrayLike) -> Labels:
    """RGB as YCbCr.

    Examples
    --------
    >>> sf.rgb2ycbcr([[[255]], [[0]], [[0]]]).ravel()
    array([ 76,  90, 240], dtype=int32)
    """
    return _core.rgb2ycbcr(_three_bands(rgb))


def ycbcr2rgb(ycbcr: ArrayLike) -> Picture:
    """YCbCr as RGB.

    Examples
    --------
    >>> sf.ycbcr2rgb(sf.rgb2ycbcr([[[255]], [[0]], [[0]]])).ravel()
    array([248,  -6,  -6], dtype=int32)
    """
    return _core.ycbcr2rgb(_three_bands(ycbcr))


def rgb2hsv(rgb: ArrayLike) -> Labels:
    """RGB as HSV.

    Examples
    --------
    >>> sf.rgb2hsv([[[255]], [[0]], [[0]]]).ravel()
    array([    0, 16384, 16384], dtype=int32)
    """
    return _core.rgb2hsv(_three_bands(rgb))


def hsv2rgb(hsv: ArrayLike) -> Picture:
    """HSV as RGB.

    Raises
    ------
    ValueError
        A pixel of saturation 0 that has a hue.

    Examples
    --------
    >>> sf.hsv2rgb(sf.rgb2hsv([[[255]], [[0]], [[0]]])).ravel()
    array([255,   0,   0], dtype=uint8)
    """
    return _core.hsv2rgb(_three_bands(hsv))


def rgb2lab(rgb: ArrayLike) -> Labels:
    """RGB as CIE L*a*b*.

    Examples
    --------
    >>> sf.rgb2lab([[[255]], [[0]], [[0]]]).ravel()
    array([53, 67, 64], dtype=int32)
    """
    return _core.rgb2lab(_three_bands(rgb))


def lab2rgb(lab: ArrayLike) -> Picture:
    """CIE L*a*b* as RGB.

    Examples
    --------
    >>> sf.lab2rgb(sf.rgb2lab([[[255]], [[0]], [[0]]])).ravel()
    array([255,   0,  11], dtype=uint8)
    """
    return _core.lab2rgb(_three_bands(lab))


def rgb2luv(rgb: ArrayLike) -> Labels:
    """RGB as CIE L*u*v*.

    Examples
    --------
    >>> sf.rgb2luv([[[255]], [[0]], [[0]]]).ravel()
    array([ 53, 174,  37], dtype=int32)
    """
    return _core.rgb2luv(_three_bands(rgb))


def luv2rgb(luv: ArrayLike) -> Picture:
    """CIE L*u*v* as RGB.

    Examples
    --------
    >>> sf.luv2rgb(sf.rgb2luv([[[255]], [[0]], [[0]]])).ravel()
    array([252,   0,   0], dtype=uint8)
    """
    return _core.luv2rgb(_three_bands(luv))


def gray2rgb(image: ArrayLike) -> Picture:
    """Three equal bands of an image's first one; uint8, or int32 where a value needs more bits.

    Examples
    --------
    >>> sf.gray2rgb([[7, 8]])
    array([[[7, 8]],
    <BLANKLINE>
           [[7, 8]],
    <BLANKLINE>
           [[7, 8]]], dtype=uint8)
    """
    return _core.gray2rgb(image)
