# Copyright the Seedforest authors
# SPDX-License-Identifier: Apache-2.0
"""Seed pixels, and the text files that hold them."""

from __future__ import annotations

from typing import Any, Iterator, Optional, Tuple, Union

import numpy as np
from numpy.typing import ArrayLike, NDArray

from . import _core
from ._arguments import Labels, Path, Shape, integers, path_bytes, shape_of, whole


class Roots:
    """Seed pixels of an image: each with a label and the cost at which its paths start.

    Roots of equal cost are served in their order. Objects are not changed by any function; parts of
    them come by indexing with a slice, a mask or an array of indices, like those of an array, and
    ``numpy.asarray(roots)`` is the table of row, column and label.

    Parameters
    ----------
    table : (n, 3) or (n, 4) array of integers
        Row, column and label of each seed, and its value, 0 where the column is missing.
    shape : tuple of int, or array
        The image's shape, or the image.

    Raises
    ------
    ValueError
        A seed outside the image.

    Examples
    --------
    >>> roots = sf.Roots([[0, 0, 1], [2, 3, 2]], shape=(3, 4))
    >>> len(roots), roots.rows, roots.columns, roots.labels
    (2, array([0, 2], dtype=int32), array([0, 3], dtype=int32), array([1, 2], dtype=int32))
    """

    __slots__ = ("_table", "_shape")
    __hash__ = None  # type: ignore[assignment]

    _table: NDArray[np.int32]
    _shape: Shape

    def __init__(self, table: ArrayLike, shape: Union[Shape, ArrayLike]) -> None:
        self._shape = shape_of(shape)
        seeds = integers("seeds", table, (3, 4))
        rows, columns = seeds[:, 0].astype(np.int64), seeds[:, 1]
        outside = (rows < 0) | (rows >= self._shape[0])
        outside |= (columns < 0) | (columns >= self._shape[1])
        if outside.any():
            first = int(outside.argmax())
            raise ValueError(
                f"seed {first} at row {rows[first]}, column {columns[first]} is outside the image "
                f"of shape {self._shape}"
            )
        self._table = np.zeros((len(seeds), 3), np.int32)
        self._table[:, 0] = rows * self._shape[1] + columns
        self._table[:, 1 : seeds.shape[1] - 1] = seeds[:, 2:]

    @classmethod
    def _of(cls, table: NDArray[np.int32], shape: Shape) -> Roots:
        roots = cls.__new__(cls)
        roots._table = table
        roots._shape = shape
        return roots

    @property
    def shape(self) -> Shape:
        """Rows and columns of the image."""
        return self._shape

    @property
    def pixels(self) -> NDArray[np.int32]:
        """The index of each seed's pixel, ``row * columns + column``."""
        return self._table[:, 0].copy()

    @property
    def rows(self) -> NDArray[np.int32]:
        """The row of each seed."""
        return (self._table[:, 0] - self.columns) // np.int32(self._shape[1])

    @property
    def columns(self) -> NDArray[np.int32]:
        """The column of each seed."""
        return np.fmod(self._table[:, 0], np.int32(self._shape[1]))

    @property
    def labels(self) -> NDArray[np.int32]:
        """The label of each seed."""
        return self._table[:, 1].copy()

    @property
    def values(self) -> NDArray[np.int32]:
        """The cost at which each seed's paths start."""
        return self._table[:, 2].copy()

    def start_at(self, cost: Union[int, ArrayLike]) -> Roots:
        """The same seeds with other values.

        Parameters
        ----------
        cost : int, or array of integers, (rows, columns)
            The value of all seeds, or an image: each seed gets its value there.

        Examples
        --------
        >>> sf.Roots([[0, 1, 1]], shape=(1, 3)).start_at([[5, 6, 7]]).values
        array([6], dtype=int32)
        """
        table = self._table.copy()
        if np.ndim(cost) == 0:
            table[:, 2] = whole("cost", cost)
        else:
            if shape_of(cost) != self._shape:
                raise ValueError(f"an image of shape {shape_of(cost)}, not {self._shape}")
            table[:, 2] = integers("costs", np.reshape(cost, (-1, 1)), (1,))[self._table[:, 0], 0]
        return Roots._of(table, self._shape)

    def within(self, lo: int, hi: int) -> Roots:
        """The seeds whose values are lo to hi, both included.

        Examples
        --------
        >>> sf.regional_maxima_seeds([[3, 1, 9, 1]]).within(5, 255).labels
        array([2], dtype=int32)
        """
        values = self._table[:, 2]
        return self[(values >= whole("lo", lo)) & (values <= whole("hi", hi))]

    def __len__(self) -> int:
        return len(self._table)

    def __getitem__(self, which: Any) -> Roots:
        table = self._table[which]
        if table.ndim != 2:
            table = table.reshape(1, 3)
        return Roots._of(np.ascontiguousarray(table), self._shape)

    def __iter__(self) -> Iterator[Tuple[int, int, int]]:
        for row, column, label in np.asarray(self).tolist():
            yield row, column, label

    def __add__(self, other: Roots) -> Roots:
        if not isinstance(other, Roots):
            return NotImplemented
        if other._shape != self._shape:
            raise ValueError(f"seeds of images of the shapes {self._shape} and {other._shape}")
        return Roots._of(np.concatenate((self._table, other._table)), self._shape)

    def __eq__(self, other: object) -> bool:
        if not isinstance(other, Roots):
            return NotImplemented
        return self._shape == other._shape and np.array_equal(self._table, other._table)

    def __array__(self, dtype: Any = None, copy: Optional[bool] = None) -> NDArray[Any]:
        table: NDArray[Any] = np.stack((self.rows, self.columns, self._table[:, 1]), axis=1)
        return table if dtype is None else table.astype(dtype)

    def __repr__(self) -> str:
        count = len(np.unique(self._table[:, 1]))
        return f"<Roots: {len(self)} seeds with {count} labels in an image of shape {self._shape}>"


Seeds = Union[Roots, ArrayLike]
"""Roots, an (n, 3) or (n, 4) table, or an image of labels."""


def seed_table(seeds: Seeds, shape: Shape) -> NDArray[np.int32]:
    """Seeds of an image of a shape as the compiled part takes them."""
    if isinstance(seeds, Roots):
        if seeds.shape != shape:
            raise ValueError(f"seeds of an image of shape {seeds.shape}, and an image of {shape}")
        return seeds._table
    array = np.asanyarray(seeds)
    if array.shape == shape:
        if shape[1] in (3, 4):
            raise ValueError(
                f"markers of shape {shape} can be a table or an image of labels: give "
                "Roots(table, shape) or seeds_from_labels(labels)"
            )
        return _core.roots_of(array)
    return Roots(array, shape)._table


def seeds_from_labels(labels: ArrayLike) -> Roots:
    """A seed for each pixel above 0 of a label image, in raster order.

    Parameters
    ----------
    labels : array of integers, (rows, columns)

    Returns
    -------
    Roots
        With the pixel's value as label, and value 0.

    Examples
    --------
    >>> list(sf.seeds_from_labels([[0, 7], [8, 0]]))
    [(0, 1, 7), (1, 0, 8)]
    """
    return Roots._of(_core.roots_of(labels), shape_of(labels))


def paint_seeds(seeds: Seeds, shape: Union[Shape, ArrayLike, None] = None) -> Labels:
    """The label image that has each seed's label at its pixel and 0 elsewhere.

    Parameters
    ----------
    seeds : Roots, or (n, 3) array of row, column, label
        Of several seeds at one pixel the last one's label is painted.
    shape : tuple of int, or array, optional
        The image's shape, or the image. Roots know it.

    Examples
    --------
    >>> sf.paint_seeds([[0, 1, 7]], shape=(2, 2))
    array([[0, 7],
           [0, 0]], dtype=int32)
    """
    if shape is None:
        if not isinstance(seeds, Roots):
            raise ValueError("seeds that are no Roots need the shape of their image")
        shape = seeds.shape
    rows, columns = shape_of(shape)
    return _core.paint_roots(seed_table(seeds, (rows, columns)), rows, columns)


def read_roots(path: Path, shape: Union[Shape, ArrayLike]) -> Roots:
    """The seeds in a roots file: a line with their number, then "x y label" for each.

    Parameters
    ----------
    path : str or path
    shape : tuple of int, or array
        The image's shape, or the image.

    Raises
    ------
    OSError
        A file that cannot be read, or that does not start with a valid count.

    Examples
    --------
    >>> sf.write_roots("seeds.txt", sf.Roots([[1, 2, 7]], shape=(3, 4)))
    >>> list(sf.read_roots("seeds.txt", shape=(3, 4)))
    [(1, 2, 7)]
    """
    size = shape_of(shape)
    return Roots._of(_core.read_roots(path_bytes(path), *size), size)


def write_roots(path: Path, roots: Roots) -> None:
    """Writes a roots file. Values are not stored.

    The file is complete or, after an error, the old one.

    Parameters
    ----------
    path : str or path
    roots : Roots

    Raises
    ------
    OSError
        The file cannot be written.

    Examples
    --------
    >>> sf.write_roots("seeds.txt", sf.Roots([[1, 2, 7]], shape=(3, 4)))
    >>> print(open("seeds.txt").read(), end="")
    1
    2 1 7
    """
    _core.write_roots(_table_of(roots), *roots.shape, path_bytes(path))


def decode_roots(text: Union[str, bytes], shape: Union[Shape, ArrayLike]) -> Roots:
    """The seeds in the text of a roots file; see `read_roots`.

    Examples
    --------
    >>> list(sf.decode_roots("1\\n2 1 7\\n", shape=(3, 4)))
    [(1, 2, 7)]
    """
    size = shape_of(shape)
    data = text.encode() if isinstance(text, str) else bytes(text)
    return Roots._of(_core.decode_roots(data, *size), size)


def encode_roots(roots: Roots) -> str:
    """The text of a roots file; see `write_roots`.

    Examples
    --------
    >>> sf.encode_roots(sf.Roots([[1, 2, 7]], shape=(3, 4)))
    '1\\n2 1 7\\n'
    """
    return _core.encode_roots(_table_of(roots), *roots.shape).decode()


def _table_of(roots: Roots) -> NDArray[np.int32]:
    if not isinstance(roots, Roots):
        raise TypeError("a roots file holds Roots: Roots(table, shape) makes them of a table")
    return roots._table
