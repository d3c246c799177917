# Copyright the Seedforest authors
# SPDX-License-Identifier: Apache-2.0
"""Seeds made from images."""

from __future__ import annotations

from typing import Literal, Optional, Union, overload

from numpy.typing import ArrayLike

from . import _core
from ._arguments import Labels, Mask, Shape, choice, shape_of, whole
from ._roots import Roots, paint_seeds


def frame_seeds(shape: Union[Shape, ArrayLike], label: Optional[int] = None) -> Roots:
    """A seed at every pixel of an image's frame.

    Parameters
    ----------
    shape : tuple of int, or array
        The image's shape, of at least two rows, or the image.
    label : int, optional
        The label of all; else they are numbered from 1 in the order top, bottom, left, right.

    Examples
    --------
    >>> sf.paint_seeds(sf.frame_seeds((3, 3)))
    array([[1, 2, 3],
           [7, 0, 8],
           [4, 5, 6]], dtype=int32)
    """
    size = shape_of(shape)
    number = None if label is None else whole("label", label)
    return Roots._of(_core.frame_roots(*size, number), size)


@overload
def regional_maxima(image: ArrayLike, labels: Literal[False] = False) -> Mask: ...


@overload
def regional_maxima(image: ArrayLike, labels: Literal[True]) -> Labels: ...


def regional_maxima(image: ArrayLike, labels: bool = False) -> Union[Mask, Labels]:
    """The regional maxima: connected pixels of one value whose neighbours are all lower.

    Parameters
    ----------
    image : array of integers, (rows, columns)
        Neighbours are the 8 around a pixel. 0 is no maximum.
    labels : bool
        Number the maxima, from 1 in the raster order of their first pixels.

    Returns
    -------
    bool array, or int32 array with labels

    Examples
    --------
    >>> sf.regional_maxima([[1, 5, 5, 2, 7]], labels=True)
    array([[0, 1, 1, 0, 2]], dtype=int32)
    """
    return paint_seeds(regional_maxima_seeds(image)) if labels else _core.regional_maxima(image)


@overload
def regional_minima(image: ArrayLike, labels: Literal[False] = False) -> Mask: ...


@overload
def regional_minima(image: ArrayLike, labels: Literal[True]) -> Labels: ...


def regional_minima(image: ArrayLike, labels: bool = False) -> Union[Mask, Labels]:
    """The regional minima: connected pixels of one value whose neighbours are all higher.

    Parameters
    ----------
    image : array of integers, (rows, columns)
        Neighbours are the 8 around a pixel. In an array of uint8, 255 is no minimum.
    labels : bool
        Number the minima, from 1 in the raster order of their first pixels.

    Returns
    -------
    bool array, or int32 array with labels

    Examples
    --------
    >>> sf.regional_minima([[1, 5, 5, 2, 7]])
    array([[ True, False, False,  True, False]])
    """
    return paint_seeds(regional_minima_seeds(image)) if labels else _core.regional_minima(image)


def regional_maxima_seeds(image: ArrayLike) -> Roots:
    """A seed for each pixel of a regional maximum, in raster order.

    Parameters
    ----------
    image : array of integers, (rows, columns)

    Returns
    -------
    Roots
        Labels number the maxima from 1, values are those of the image; `Roots.within` selects.

    Examples
    --------
    >>> sf.regional_maxima_seeds([[1, 5, 5, 2, 7]]).values
    array([5, 5, 7], dtype=int32)
    """
    return Roots._of(_core.regional_maxima_roots(image), shape_of(image))


def regional_minima_seeds(image: ArrayLike) -> Roots:
    """A seed for each pixel of a regional minimum; see `regional_maxima_seeds`.

    Examples
    --------
    >>> sf.regional_minima_seeds([[1, 5, 5, 2, 7]]).columns
    array([0, 3], dtype=int32)
    """
    return Roots._of(_core.regional_minima_roots(image), shape_of(image))


def h_maxima(image: ArrayLike, h: int) -> Mask:
    """The maxima that stand out by more than h grey levels (extended maxima).

    Parameters
    ----------
    image : array of integers, (rows, columns)
        Values may have any sign; a constant image is one maximum.
    h : int
        At least 0.

    Examples
    --------
    >>> sf.h_maxima([[0, 5, 3, 6, 0]], 2)
    array([[False, False, False,  True, False]])
    """
    return _core.h_maxima(image, whole("h", h))


def h_minima(image: ArrayLike, h: int) -> Mask:
    """The minima that stand out by more than h grey levels; see `h_maxima`.

    Examples
    --------
    >>> sf.h_minima([[9, 5, 7, 4, 9]], 2)
    array([[False, False, False,  True, False]])
    """
    return _core.h_minima(image, whole("h", h))


def markers(image: ArrayLike, h: int, steps: int = 0) -> Roots:
    """Markers for a watershed: the maxima that stand out by more than h grey levels.

    Parameters
    ----------
    image : array of integers, (rows, columns)
    h : int
        At least 0.
    steps : int
        The image is smoothed first, by an `alternating_filter` of as many steps.

    Returns
    -------
    Roots
        A connected set of seeds for each maximum, with its number, from 1 in raster order; values 0.

    Examples
    --------
    >>> sf.markers([[0, 5, 3, 6, 0, 9]], 2).labels
    array([1, 2], dtype=int32)
    """
    return Roots._of(_core.markers(image, whole("h", h), whole("steps", steps)), shape_of(image))


def cell_seeds(image: ArrayLike, steps: int) -> Roots:
    """The cells of a micrograph: seeds on bright objects and on the lines between them.

    Parameters
    ----------
    image : array of integers, (rows, columns)
    steps : int
        Of the filter that removes noise first, at most 1000000.

    Returns
    -------
    Roots
        Label 2 for markers, 1 for lines; values 0.

    Examples
    --------
    >>> sf.paint_seeds(sf.cell_seeds([[9, 1, 9]] * 3, 0))
    array([[2, 1, 2],
           [2, 1, 2],
           [2, 1, 2]], dtype=int32)
    """
    return Roots._of(_core.cell_roots(image, whole("steps", steps)), shape_of(image))


def contour_seeds(shapes: ArrayLike, labels: str = "places") -> Roots:
    """The border pixels of shapes, in raster order; values 0.

    Parameters
    ----------
    shapes : array, (rows, columns)
        Pixels above 0 belong to a shape. The edge of the image is not a border.
    labels : {'places', 'objects'}
        The pixel's position along the contour, or the number of its object.

    Examples
    --------
    >>> list(sf.contour_seeds([[0, 0, 0], [0, 1, 0], [0, 0, 0]]))
    [(1, 1, 3)]
    """
    by_object = choice("labels", labels, ("places", "objects")) == "objects"
    return Roots._of(_core.contour_roots(shapes, by_object), shape_of(shapes))


def skeleton_seeds(shapes: ArrayLike, by_curve: bool = False) -> Roots:
    """The border pixels of shapes as seeds for a skeleton.

    Parameters
    ----------
    shapes : array, (rows, columns)
        Pixels above 0 belong to a shape.
    by_curve : bool
        All border pixels in raster order, numbered curve by curve, values 0. Otherwise those next to
        the interior, in the order of following the contours: label is the place in that order, value
        the number of the contour.

    Examples
    --------
    >>> len(sf.skeleton_seeds([[0] * 5, [0, 1, 1, 1, 0], [0, 1, 1, 1, 0], [0, 1, 1, 1, 0], [0] * 5]))
    8
    """
    function = _core.skeleton_roots_by_curve if by_curve else _core.skeleton_roots
    return Roots._of(function(shapes), shape_of(shapes))
