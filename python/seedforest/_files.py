# Copyright the Seedforest authors
# SPDX-License-Identifier: Apache-2.0
"""Image files of the kinds P2, P5 and P6."""

from __future__ import annotations

import numpy as np
from numpy.typing import ArrayLike

from . import _core
from ._arguments import Path, Picture, path_bytes


def imread(path: Path) -> Picture:
    """The image in a PNM file.

    Parameters
    ----------
    path : str or path
        A file of the kind P2, P5 or P6; it need not be seekable.

    Returns
    -------
    ndarray
        Of a P5 uint8, (rows, columns); of a P6 uint8, (3, rows, columns); of a P2 int32.

    Raises
    ------
    OSError
        A file that cannot be read or is none of these.

    Examples
    --------
    >>> sf.imsave("image.pgm", np.array([[1, 2], [3, 4]], np.uint8))
    >>> sf.imread("image.pgm")
    array([[1, 2],
           [3, 4]], dtype=uint8)
    """
    return _core.read(path_bytes(path))


def imdecode(data: bytes) -> Picture:
    """The image in the bytes of a PNM file; see `imread`.

    Examples
    --------
    >>> sf.imdecode(b"P2 3 1 9 1 5 9")
    array([[1, 5, 9]], dtype=int32)
    """
    return _core.decode(bytes(data))


def imsave(path: Path, image: ArrayLike) -> None:
    """Writes an image: uint8 as P5 or, with three bands, P6; other types as P2.

    The file is complete or, after an error, the old one. The declared maximum of a P2 is the largest
    value.

    Parameters
    ----------
    path : str or path
    image : array of integers, (rows, columns) or, of uint8, (3, rows, columns)

    Raises
    ------
    OSError
        The file cannot be written.
    ValueError
        An array that has no form as a file.

    Examples
    --------
    >>> sf.imsave("image.pgm", [[1, 2], [3, 400]])
    >>> print(open("image.pgm").read(), end="")
    P2
    2 2
    400
        1     2     3   400 
    """
    _core.write(_with_a_form(image), path_bytes(path))


def imencode(image: ArrayLike) -> bytes:
    """The bytes of an image's file; see `imsave`.

    Examples
    --------
    >>> sf.imencode(np.array([[48, 49]], np.uint8))
    b'P5\\n2 1\\n255\\n01'
    """
    return _core.encode(_with_a_form(image))


def _with_a_form(image: ArrayLike) -> ArrayLike:
    image = np.asanyarray(image)
    if image.ndim == 3 and (len(image) != 3 or image.dtype != np.uint8):
        raise ValueError(
            "a file holds one band, or three bands of uint8, not an array of shape "
            f"{image.shape} and type {image.dtype}"
        )
    return image
