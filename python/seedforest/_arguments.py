# Copyright the Seedforest authors
# SPDX-License-Identifier: Apache-2.0
"""What arguments may be, and the forms in which the compiled part takes them."""

from __future__ import annotations

import ctypes
import operator
import os
from typing import Any, Callable, Tuple, Union

import numpy as np
from numpy.typing import ArrayLike, NDArray

Labels = NDArray[np.int32]
"""An image of whole numbers: labels, costs, distances."""

Mask = NDArray[np.bool_]
"""An image of booleans."""

Picture = NDArray[Any]
"""An image with the values of its argument: uint8 for uint8, else int32."""

Shape = Tuple[int, int]
"""The rows and columns of an image."""

Connectivity = Union[int, ArrayLike]
"""4, 8, or a table of displacements."""

Path = Union[str, bytes, "os.PathLike[str]", "os.PathLike[bytes]"]

Function = Union[str, Callable[..., int]]
"""A path cost or a weight."""

_LIMIT = 2**31


def whole(name: str, value: Any) -> int:
    """An argument that has to be a whole number of 32 bits."""
    try:
        number = operator.index(value)
    except TypeError:
        raise TypeError(f"{name} is a whole number, not {value!r}") from None
    if not -_LIMIT <= number < _LIMIT:
        raise ValueError(f"{name} has 32 bits, and {number} does not fit")
    return number


def choice(name: str, value: Any, choices: Tuple[str, ...]) -> str:
    """An argument that has to be one of some words."""
    if value not in choices:
        raise ValueError(f"{name} is one of {', '.join(map(repr, choices))}, not {value!r}")
    return str(value)


def integers(what: str, values: ArrayLike, columns: Tuple[int, ...]) -> NDArray[np.int32]:
    """A table of 32-bit integers whose rows have one of some numbers of columns."""
    table = np.asarray(values)
    if table.size == 0:
        return np.empty((0, columns[0]), np.int32)
    if table.dtype.kind not in "iu":
        raise TypeError(f"{what} are whole numbers, not {table.dtype}")
    if table.ndim != 2 or table.shape[1] not in columns:
        allowed = " or ".join(f"(n, {n})" for n in columns)
        raise ValueError(f"{what} have the shape {allowed}, not {table.shape}")
    if int(table.max()) >= _LIMIT or int(table.min()) < -_LIMIT:
        raise ValueError(f"{what} have 32 bits, and a value does not fit")
    return np.ascontiguousarray(table, np.int32)


def connections(connectivity: Connectivity) -> Union[int, NDArray[np.int32]]:
    """The neighbours, as the compiled part takes them."""
    if isinstance(connectivity, (int, np.integer)):
        return int(connectivity)
    return integers("displacements", connectivity, (2,))


def shape_of(image: ArrayLike) -> Shape:
    """The rows and columns of an image, or a shape that is given in place of one."""
    if isinstance(image, tuple) and all(isinstance(n, (int, np.integer)) for n in image):
        shape: Tuple[int, ...] = tuple(map(int, image))
    else:
        shape = np.shape(image)
    if len(shape) not in (2, 3):
        raise ValueError(
            f"an image has the shape (rows, columns) or (bands, rows, columns), not {shape}"
        )
    rows, columns = shape[-2:]
    if rows < 1 or columns < 1 or rows * columns >= _LIMIT:
        raise ValueError(f"there is no image of the shape {shape}")
    return rows, columns


def together(image: ArrayLike, other: ArrayLike) -> Tuple[ArrayLike, ArrayLike]:
    """Two images of which a third one is made: it has 8 bits only where both have."""
    image, other = np.asanyarray(image), np.asanyarray(other)
    if image.dtype == np.uint8 and other.dtype != np.uint8:
        image = image.astype(np.int32)
    return image, other


def widened(image: ArrayLike) -> ArrayLike:
    """An image whose results need more than 8 bits."""
    image = np.asanyarray(image)
    return image.astype(np.int32) if image.dtype == np.uint8 else image


def color_components(color: ArrayLike) -> Tuple[int, int, int]:
    """A colour as red, green and blue."""
    components = np.asarray(color)
    if components.shape != (3,) or components.dtype.kind not in "iu":
        raise ValueError(f"a colour is (red, green, blue), each 0 to 255, not {color!r}")
    if components.min() < 0 or components.max() > 255:
        raise ValueError(f"a colour is (red, green, blue), each 0 to 255, not {color!r}")
    red, green, blue = map(int, components)
    return red, green, blue


def path_bytes(path: Path) -> bytes:
    """A file's name as the system has it."""
    name = os.fsencode(path)
    if b"\0" in name:
        raise ValueError("a file's name has no null byte")
    return name


def function_or_address(function: Any) -> Any:
    """A name or a callable as it is; of a compiled function its address.

    Compiled are those of ``ctypes`` and of ``numba.cfunc``.
    """
    if isinstance(function, ctypes._CFuncPtr):  # type: ignore[attr-defined]
        return ctypes.cast(function, ctypes.c_void_p).value
    address = getattr(function, "address", None)
    if isinstance(address, int):
        return address
    if isinstance(function, str) or callable(function):
        return function
    raise TypeError(f"a cost or weight is a name or a function, not {function!r}")
