# Copyright the Seedforest authors
# SPDX-License-Identifier: Apache-2.0
"""Image foresting transforms: every pixel gets the best path from some seed.

Seeds of equal cost are served in their order, pixels of equal cost first in, first out, and
neighbours in the order of the connectivity; of two paths of equal cost the first one keeps the pixel.
"""

from __future__ import annotations

from typing import Any, Literal, NamedTuple, Optional, Tuple, Union, overload

import numpy as np
from numpy.typing import ArrayLike, NDArray

from . import _core
from ._arguments import (
    Connectivity,
    Function,
    Labels,
    Shape,
    choice,
    connections,
    function_or_address,
    shape_of,
    whole,
)
from ._roots import Seeds, seed_table


class Forest(NamedTuple):
    """The best paths of all pixels, as images."""

    labels: Labels
    """The label of the seed whose path won, 0 where no path arrived."""

    costs: Labels
    """The cost of that path; infinite, 2**31 - 1 (-2**31 for the greatest), where none arrived."""

    predecessors: Labels
    """The pixel before on that path, as ``row * columns + column``; the pixel itself at seeds and
    where no path arrived."""

    def path(self, row: int, column: int) -> NDArray[np.int32]:
        """Rows and columns of the path from a pixel back to its seed, both included; shape (n, 2).

        Examples
        --------
        >>> sf.watershed([[1, 2]], [[0, 0, 1]], return_forest=True).path(0, 1)
        array([[0, 1],
               [0, 0]], dtype=int32)
        """
        shape = shape_of(self.predecessors)
        pixels = _core.path(self.predecessors, pixel_of((row, column), shape))[:, 0]
        return np.stack(np.unravel_index(pixels, shape), axis=1).astype(np.int32)

    def root(self, row: int, column: int) -> Tuple[int, int]:
        """Row and column of the seed of a pixel's path.

        Examples
        --------
        >>> sf.watershed([[1, 2]], [[0, 0, 1]], return_forest=True).root(0, 1)
        (0, 0)
        """
        seed_row, seed_column = self.path(row, column)[-1].tolist()
        return seed_row, seed_column


class Violation(NamedTuple):
    """What is wrong with a forest, and where; the sentence names pixels as (x, y)."""

    row: int
    column: int
    sentence: str


def pixel_of(place: Tuple[int, int], shape: Shape) -> int:
    """The index of the pixel at a row and a column."""
    row, column = whole("row", place[0]), whole("column", place[1])
    if not (0 <= row < shape[0] and 0 <= column < shape[1]):
        raise ValueError(f"row {row}, column {column} is outside the image of shape {shape}")
    return row * shape[1] + column


def _best(best: str) -> bool:
    return choice("best", best, ("least", "greatest")) == "greatest"


def _max_cost(max_cost: Optional[int]) -> Optional[int]:
    return None if max_cost is None else whole("max_cost", max_cost)


@overload
def watershed(
    image: ArrayLike,
    markers: Seeds,
    connectivity: Connectivity = 8,
    mask: Optional[ArrayLike] = None,
    return_forest: Literal[False] = False,
) -> Labels: ...


@overload
def watershed(
    image: ArrayLike,
    markers: Seeds,
    connectivity: Connectivity = 8,
    mask: Optional[ArrayLike] = None,
    *,
    return_forest: Literal[True],
) -> Forest: ...


def watershed(
    image: ArrayLike,
    markers: Seeds,
    connectivity: Connectivity = 8,
    mask: Optional[ArrayLike] = None,
    return_forest: bool = False,
) -> Union[Labels, Forest]:
    """The watershed: each pixel goes to the seed that reaches it over the lowest crest.

    Parameters
    ----------
    image : array of integers, (rows, columns)
        Values of at least 0, for example a gradient. Of several bands the first is used.
    markers : Roots, (n, 3) array of row, column, label, or label image
        Every label gets a region. A label image has the image's shape, and 0 where no seed is. Seeds
        start at the image's value, so that each keeps its pixel.
    connectivity : 4, 8 or (k, 2) array of displacements (row, column)
        Neighbours, in the order in which they are visited.
    mask : array, (rows, columns), optional
        Paths lead only to pixels where it is not 0, and seeds count only where it is above 0.
    return_forest : bool
        Return also the costs, which are the crests' heights, and the predecessors.

    Returns
    -------
    labels : int32 array, or Forest
        0 where no path arrived.

    Examples
    --------
    >>> sf.watershed([[0, 3, 5, 2, 0]], [[0, 0, 1], [0, 4, 2]])
    array([[1, 1, 2, 2, 2]], dtype=int32)
    """
    forest = Forest(
        *_core.watershed(
            image, seed_table(markers, shape_of(image)), connections(connectivity), None, mask
        )
    )
    return forest if return_forest else forest.labels


def image_forest(
    image: ArrayLike,
    seeds: Seeds,
    cost: Function = "max",
    weight: Function = "watershed",
    connectivity: Connectivity = 8,
    mask: Optional[ArrayLike] = None,
    best: str = "least",
    max_cost: Optional[int] = None,
) -> Forest:
    """The forest of the paths of best cost from the seeds, each of which starts at its value.

    Parameters
    ----------
    image : array of integers, (rows, columns) or (bands, rows, columns)
    seeds : Roots, (n, 3) or (n, 4) array of row, column, label, value, or label image
    cost : {'max', 'min', 'sum', 'max_local', 'min_local'} or function
        A path's cost of its cost so far and the arc's weight, ``cost(cost, weight)``. The local ones
        are the starting cost, along arcs of at most (at least) that weight.
    weight : {'watershed', 'euclidean', 'largest_difference', 'chamfer'} or function
        An arc's weight, ``weight(p, q)`` for the pixels p and q as ``row * columns + column``.
        'watershed' is the value of q, 'euclidean' and 'largest_difference' compare all bands, and
        'chamfer' is the length of the step.
    connectivity : 4, 8 or (k, 2) array of displacements (row, column)
    mask : array, (rows, columns), optional
        As for `watershed`.
    best : {'least', 'greatest'}
        Which costs are the best.
    max_cost : int, optional
        The largest cost that occurs or, where weights add up and seeds start at 0, the largest
        weight. The default is enough for the named weights on values of at least 0, and is at least
        65535 for functions. Larger costs are served in remainder order, and their paths may not be
        the best.

    Notes
    -----
    A Python function is called for each arc, 8 times a pixel, with the interpreter's lock: about a
    microsecond each. Compiled functions of ``numba.cfunc`` and ``ctypes`` run without it, at nearly
    the speed of the named ones: ``int cost(int cost, int weight)``, and ``int weight(const int
    *pixels, int p, int q)`` with all bands one after the other. Their types are not checked.

    Examples
    --------
    >>> sf.image_forest([[1, 5, 1, 1, 1]], [[0, 0, 1]], cost="sum").costs
    array([[0, 5, 6, 7, 8]], dtype=int32)
    """
    table = seed_table(seeds, shape_of(image))
    functions = function_or_address(cost), function_or_address(weight)
    steps = connections(connectivity)
    return Forest(
        *_core.forest(image, table, *functions, steps, _best(best), _max_cost(max_cost), mask)
    )


def scaled_forest(
    image: ArrayLike,
    seeds: Seeds,
    cost: Function = "max",
    weight: Function = "watershed",
    connectivity: Connectivity = 8,
    mask: Optional[ArrayLike] = None,
) -> Forest:
    """`image_forest` with weights of 0 to 1000 multiplied by 49, for costs up to 49999.

    Examples
    --------
    >>> sf.scaled_forest([[1, 5, 1, 1, 1]], [[0, 0, 1]]).costs
    array([[  0, 245, 245, 245, 245]], dtype=int32)
    """
    table = seed_table(seeds, shape_of(image))
    functions = function_or_address(cost), function_or_address(weight)
    return Forest(*_core.scaled_forest(image, table, *functions, connections(connectivity), mask))


def verify(
    forest: Forest,
    image: ArrayLike,
    seeds: Seeds,
    cost: Optional[Function] = None,
    weight: Optional[Function] = None,
    connectivity: Connectivity = 8,
    mask: Optional[ArrayLike] = None,
    best: str = "least",
    max_cost: Optional[int] = None,
) -> Optional[Violation]:
    """Proves that a forest consists of best paths.

    Parameters
    ----------
    forest, image, seeds
        The result of `image_forest` or, without `cost` and `weight`, of `watershed`, and what it was
        made from.
    cost, weight, connectivity, mask, best, max_cost
        As in that call.

    Returns
    -------
    Violation or None
        None where all holds; else the first violation in raster order, of the paths before the
        offers. Which of several equal paths won is not checked.

    Examples
    --------
    >>> forest = sf.watershed([[0, 3, 0, 0, 0]], [[0, 0, 1]], return_forest=True)
    >>> sf.verify(forest, [[0, 3, 0, 0, 0]], [[0, 0, 1]]) is None
    True
    """
    shape = shape_of(image)
    table = seed_table(seeds, shape)
    steps = connections(connectivity)
    if cost is None and weight is None:
        found = _core.verify_watershed(*forest, image, table, steps, mask)
    else:
        functions = function_or_address(cost or "max"), function_or_address(weight or "watershed")
        found = _core.verify(
            *forest, image, table, *functions, steps, _best(best), _max_cost(max_cost), mask
        )
    if found is None:
        return None
    row, column = divmod(found[0], shape[1])
    return Violation(row, column, found[1])


class ArcWeights:
    """The weights of all arcs of an image, a band for each displacement; see `arc_weights`."""

    __slots__ = ("_weights",)

    def __init__(self, weights: _core.ArcWeights) -> None:
        self._weights = weights

    @property
    def shape(self) -> Tuple[int, int, int]:
        """Displacements, rows and columns."""
        return self._weights.shape

    def __array__(self, dtype: Any = None, copy: Optional[bool] = None) -> NDArray[Any]:
        return np.asarray(self._weights.array(), dtype)

    def forest(self, seeds: Seeds, cost: str = "max", max_cost: int = 1000) -> Forest:
        """The forest of least costs from the seeds, each of which starts at its value.

        Examples
        --------
        >>> sf.arc_weights([[1, 5, 1, 1, 1]], "watershed").forest([[0, 0, 1]]).costs
        array([[0, 5, 5, 5, 5]], dtype=int32)
        """
        table = seed_table(seeds, self.shape[1:])
        return Forest(*self._weights.forest(table, cost, whole("max_cost", max_cost)))

    def scaled_forest(self, seeds: Seeds, mask: ArrayLike, cost: str = "max") -> Forest:
        """The same with weights multiplied by 49, within a mask; see `scaled_forest`.

        Examples
        --------
        >>> weights = sf.arc_weights([[1, 5, 1, 1, 1]], "watershed")
        >>> weights.scaled_forest([[0, 0, 1]], mask=[[1, 1, 1, 0, 0]]).labels
        array([[1, 1, 1, 0, 0]], dtype=int32)
        """
        return Forest(*self._weights.scaled_forest(seed_table(seeds, self.shape[1:]), cost, mask))


def arc_weights(
    image: ArrayLike, kind: str = "euclidean", connectivity: Connectivity = 8
) -> ArcWeights:
    """The weights of all arcs of an image, computed in advance.

    Parameters
    ----------
    image : array of integers, (rows, columns) or (bands, rows, columns)
    kind : {'euclidean', 'gaussian', 'step', 'watershed'}
    connectivity : 4, 8 or (k, 2) array of displacements (row, column)

    Returns
    -------
    ArcWeights
        ``numpy.asarray`` of it is the table of weights, (displacements, rows, columns); a negative
        weight means no arc.

    Examples
    --------
    >>> np.asarray(sf.arc_weights([[1, 5]], "watershed", connectivity=[(0, 1)]))
    array([[ 5, -1]], dtype=int32)
    """
    kinds = {
        "euclidean": _core.euclidean_weights,
        "gaussian": _core.gaussian_weights,
        "step": _core.step_weights,
        "watershed": _core.watershed_weights,
    }
    return ArcWeights(kinds[choice("kind", kind, tuple(kinds))](image, connections(connectivity)))


class SpanningTree(NamedTuple):
    """A minimum spanning tree of an image's pixels; see `spanning_tree`."""

    costs: Labels
    """49 times the weight of each pixel's arc to its predecessor."""

    predecessors: Labels
    """The pixel at the other end of that arc, as ``row * columns + column``."""

    def cut(self, fraction: float) -> Labels:
        """Cuts the tree at the weights above a fraction of the largest.

        Returns
        -------
        int32 array
            In each part the index of one of its pixels; `relabel_sequential` numbers them from 1.

        Examples
        --------
        >>> sf.relabel_sequential(sf.spanning_tree([[1, 1, 9, 9]]).cut(0.5))
        array([[1, 1, 2, 2]], dtype=int32)
        """
        return _core.cut(self.costs, self.predecessors, float(fraction))


def spanning_tree(
    image: ArrayLike, weight: Function = "euclidean", connectivity: Connectivity = 8
) -> SpanningTree:
    """The minimum spanning tree of an image's pixels from the first one (Prim's algorithm).

    Parameters
    ----------
    image : array of integers, (rows, columns) or (bands, rows, columns)
    weight : name or function
        As for `image_forest`; weights of 0 to 1000.
    connectivity : 4, 8 or (k, 2) array of displacements (row, column)

    Examples
    --------
    >>> sf.spanning_tree([[1, 1, 9]]).predecessors
    array([[0, 0, 1]], dtype=int32)
    """
    return SpanningTree(
        *_core.spanning_tree(image, function_or_address(weight), connections(connectivity))
    )


def disc(squared_radius: int) -> NDArray[np.int32]:
    """The displacements (row, column) of at most a squared length, for `connectivity`.

    Examples
    --------
    >>> sf.disc(1).tolist()
    [[0, -1], [-1, 0], [0, 0], [1, 0], [0, 1]]
    """
    return _core.disc(whole("squared_radius", squared_radius))


def window(radius: int) -> NDArray[np.int32]:
    """The displacements (row, column) of a square of 2 radius + 1 pixels a side.

    Examples
    --------
    >>> len(sf.window(2))
    25
    """
    return _core.window(whole("radius", radius))
