# Copyright the Seedforest authors
# SPDX-License-Identifier: Apache-2.0
"""Regions of a label image: measurements, and graphs of neighbouring regions that merge."""

from __future__ import annotations

from typing import Dict, Optional

import numpy as np
from numpy.typing import ArrayLike, NDArray

from . import _core
from ._arguments import Function, Labels, integers, shape_of, whole


def _dense(labels: ArrayLike) -> ArrayLike:
    """Labels for each of which memory is taken, whether it occurs or not."""
    labels = np.asanyarray(labels)
    largest = int(labels.max()) if labels.size and labels.dtype.kind in "iu" else 0
    if largest > 2**16 + 8 * labels.size:
        raise ValueError(
            f"labels up to {largest} in an image of {labels.size} pixels: number them without gaps, "
            "for example by relabel_sequential"
        )
    return labels


def measure(labels: ArrayLike, image: Optional[ArrayLike] = None) -> Dict[str, NDArray[np.int32]]:
    """Measurements of regions, as columns of a table: ``pandas.DataFrame(seedforest.measure(…))``.

    Parameters
    ----------
    labels : array of integers, (rows, columns)
        Values of at least 0; 0 is no region.
    image : array of integers, (rows, columns) or (bands, rows, columns), optional

    Returns
    -------
    dict of int32 arrays
        'label', from the least; 'area', in pixels; with an image 'average', truncated, or for several
        bands 'average_0', 'average_1' and so on.

    Examples
    --------
    >>> sf.measure([[1, 1, 3]], [[4, 6, 9]])
    {'label': array([1, 3], dtype=int32), 'area': array([2, 1], dtype=int32), 'average': array([5, 9], dtype=int32)}
    """
    labels = _dense(labels)
    table = _core.measure(labels, labels if image is None else image)
    names = ["label", "area"]
    bands = 0 if image is None else table.shape[1] - 2
    names += ["average"] if bands == 1 else [f"average_{b}" for b in range(bands)]
    return {name: table[:, column].copy() for column, name in enumerate(names)}


def features(image: ArrayLike) -> Labels:
    """The bands of an image brought to 0 to 1000 each, as features of its pixels.

    Returns
    -------
    int32 array, (bands, rows, columns), or (rows, columns) for one band

    Examples
    --------
    >>> sf.features([[10, 20, 30]])
    array([[   0,  500, 1000]], dtype=int32)
    """
    return _core.features(image)


def with_feature(features: ArrayLike, image: ArrayLike, band: int = 0) -> Labels:
    """Features with one band more, that of an image, brought to 0 to 1000.

    Examples
    --------
    >>> sf.with_feature(sf.features([[10, 20, 30]]), [[1, 3, 2]]).tolist()
    [[[0, 500, 1000]], [[0, 1000, 500]]]
    """
    return _core.with_feature(features, image, whole("band", band))


class RegionGraph:
    """A graph of regions, or of any things: vertices with integers, edges with weights.

    `region_graph` makes one of a label image. Vertices are numbered from 0; vertex v is the region of
    label v, and label 0 is no region. Two threads must not use a graph at once: the second one gets a
    ValueError.

    Parameters
    ----------
    n : int
        A graph of the vertices 0 to n without edges and without a label image.
    data_size : int
        The integers on each vertex, 0 at first.

    Examples
    --------
    >>> graph = sf.RegionGraph(2)
    >>> graph.insert_edge(0, 2, 5)
    >>> graph.edges()
    array([[0, 2, 5]], dtype=int32)
    """

    __slots__ = ("_graph",)

    _graph: _core.RegionGraph

    def __init__(self, n: int, data_size: int = 0) -> None:
        self._graph = _core.RegionGraph(whole("n", n), whole("data_size", data_size))

    @classmethod
    def _of(cls, graph: _core.RegionGraph) -> RegionGraph:
        made = cls.__new__(cls)
        made._graph = graph
        return made

    def __len__(self) -> int:
        return self._graph.size()

    def copy(self) -> RegionGraph:
        """A copy with edges and data; the lists are in the same order."""
        return RegionGraph._of(self._graph.copy())

    def edges(self) -> NDArray[np.int32]:
        """All edges, each once; columns u <= v and weight."""
        return self._graph.edges()

    def neighbors(self, vertex: int) -> NDArray[np.int32]:
        """A vertex's edges, from the youngest to the oldest; columns target and weight.

        Examples
        --------
        >>> sf.region_graph([[1, 2, 3]]).neighbors(2)
        array([[3, 0],
               [1, 0]], dtype=int32)
        """
        return self._graph.neighbors(whole("vertex", vertex))

    def insert_edge(self, u: int, v: int, weight: int = 0) -> None:
        """Inserts an edge, unless there is one already.

        Examples
        --------
        >>> graph = sf.RegionGraph(2)
        >>> graph.insert_edge(0, 2, 5)
        """
        self._graph.insert_edge(whole("u", u), whole("v", v), whole("weight", weight))

    def remove_edge(self, u: int, v: int) -> None:
        """Removes an edge, if there is one."""
        self._graph.remove_edge(whole("u", u), whole("v", v))

    @property
    def data(self) -> NDArray[np.int32]:
        """A copy of the integers on the vertices, a row for each; may be set as a whole."""
        return self._graph.data()

    @data.setter
    def data(self, values: ArrayLike) -> None:
        self._graph.set_data(integers("data", values, (np.shape(values)[-1],)))

    @property
    def labels(self) -> Labels:
        """A copy of the label image."""
        return self._graph.labels()

    def with_averages(self, image: ArrayLike) -> RegionGraph:
        """The graph with the averages of an image's bands as data.

        Examples
        --------
        >>> sf.region_graph([[1, 1, 2]]).with_averages([[4, 6, 9]]).data
        array([[0],
               [5],
               [9]], dtype=int32)
        """
        return RegionGraph._of(self._graph.with_averages(image))

    def with_rescaled(self) -> RegionGraph:
        """The graph with each column of data brought to 0 to 1000."""
        return RegionGraph._of(self._graph.with_rescaled())

    def with_areas(self) -> RegionGraph:
        """The graph with the regions' areas, in pixels, as data.

        Examples
        --------
        >>> sf.region_graph([[1, 1, 2]]).with_areas().data
        array([[0],
               [2],
               [1]], dtype=int32)
        """
        return RegionGraph._of(self._graph.with_areas())

    def with_volumes(self, image: ArrayLike) -> RegionGraph:
        """The graph with the regions' volumes below the largest value (255 for uint8) as data."""
        return RegionGraph._of(self._graph.with_volumes(image))

    def with_gradients(self) -> RegionGraph:
        """The graph with how far data varies over a region and its neighbours as data."""
        return RegionGraph._of(self._graph.with_gradients())

    def collapsed(self) -> RegionGraph:
        """The graph of the regions that the first column of data numbers."""
        return RegionGraph._of(self._graph.collapsed())

    def paint(self) -> Labels:
        """An image with a band for each column of data: its value on each pixel's region.

        Examples
        --------
        >>> sf.region_graph([[1, 1, 2]]).with_areas().paint()
        array([[2, 2, 1]], dtype=int32)
        """
        return self._graph.paint()

    def spanning_tree(self, weight: Function = "euclidean") -> RegionGraph:
        """The minimum spanning tree by weights of 0 to 1000.

        Parameters
        ----------
        weight : {'euclidean', 'smaller', 'watershed'} or function
            Of the data of an edge's ends, or ``weight(u, v)``.

        Examples
        --------
        >>> graph = sf.region_graph([[1, 2, 3]], [[0, 9, 10]])
        >>> graph.spanning_tree().edges()
        array([[  1,   2, 900],
               [  2,   3, 100]], dtype=int32)
        """
        return RegionGraph._of(self._graph.spanning_tree(weight))

    def merge_to(self, n: int) -> Labels:
        """Merged regions, n of them: the spanning tree by distance, cut at its heaviest edges.

        Returns
        -------
        int32 array
            Labels from 1; label 0 stays 0.
        """
        return self._graph.merge_to(whole("n", n))

    def merge_below(self, weight: int) -> Labels:
        """Merged regions: the spanning tree by distance, cut at edges heavier than a weight."""
        return self._graph.merge_below(whole("weight", weight))

    def cut_into(self, n: int) -> Labels:
        """`merge_to` of a graph that is a spanning tree."""
        return self._graph.cut_into(whole("n", n))

    def cut_above(self, weight: int) -> Labels:
        """`merge_below` of a graph that is a spanning tree."""
        return self._graph.cut_above(whole("weight", weight))

    def remove_small(self, area: int, weight: Function = "euclidean") -> Labels:
        """Labels in which regions of fewer pixels joined the neighbour at the lightest edge."""
        return self._graph.remove_small(whole("area", area), weight)

    def merge_similar(self, threshold: int, weight: Function = "euclidean") -> Labels:
        """Labels of regions merged across all edges of at most a weight."""
        return self._graph.merge_similar(whole("threshold", threshold), weight)

    def merge_similar_colors(self, image: ArrayLike, distance: int) -> Labels:
        """Labels of regions merged, the two neighbours of the nearest average colours first.

        This ends when they are farther apart than a distance; averages follow.
        """
        return self._graph.merge_similar_colors(image, whole("distance", distance))

    def forest(
        self,
        seeds: ArrayLike,
        cost: Function = "max",
        weight: Function = "euclidean",
        max_cost: int = 1000,
    ) -> RegionGraph:
        """The forest of the paths of least cost from regions.

        Parameters
        ----------
        seeds : (n, 2) or (n, 3) array of vertex, label, starting cost
        cost, weight
            As for `image_forest` and `spanning_tree`.
        max_cost : int
            Costs beyond it are served in remainder order.

        Returns
        -------
        RegionGraph
            With label, cost and predecessor as data.

        Examples
        --------
        >>> graph = sf.region_graph([[1, 2, 3]], [[0, 9, 10]])
        >>> graph.forest([[1, 5], [3, 6]]).data[1:, 0]
        array([5, 6, 6], dtype=int32)
        """
        table = integers("seeds", seeds, (2, 3))
        roots = np.zeros((len(table), 3), np.int32)
        roots[:, : table.shape[1]] = table
        return RegionGraph._of(self._graph.forest(roots, cost, weight, whole("max_cost", max_cost)))


def region_graph(labels: ArrayLike, image: Optional[ArrayLike] = None) -> RegionGraph:
    """The graph of the regions of a label image: an edge between any two that meet.

    Parameters
    ----------
    labels : array of integers, (rows, columns)
        From 1 without gaps; 8-neighbours meet.
    image : array of integers, (rows, columns) or (bands, rows, columns), optional
        The averages of its bands, rescaled to 0 to 1000 over all regions, become the vertices' data,
        by which they merge.

    Examples
    --------
    >>> sf.region_graph([[1, 2], [3, 3]]).edges()
    array([[1, 3, 0],
           [1, 2, 0],
           [2, 3, 0]], dtype=int32)
    """
    if image is None:
        return RegionGraph._of(_core.region_graph(_dense(labels)))
    return RegionGraph._of(_core.region_graph_with(_dense(labels), image))


def region_adjacency(labels: ArrayLike) -> NDArray[np.int32]:
    """Which regions meet: rows of two labels, the smaller first.

    Examples
    --------
    >>> sf.region_adjacency([[1, 2], [3, 3]])
    array([[1, 3],
           [1, 2],
           [2, 3]], dtype=int32)
    """
    return np.ascontiguousarray(region_graph(labels).edges()[:, :2])


def merge_regions(
    labels: ArrayLike,
    image: ArrayLike,
    n: Optional[int] = None,
    weight: Optional[int] = None,
    distance: Optional[int] = None,
) -> Labels:
    """Merges neighbouring regions of like values.

    Parameters
    ----------
    labels : array of integers, (rows, columns)
        From 1 without gaps.
    image : array of integers, (rows, columns) or (bands, rows, columns)
    n, weight, distance : int
        One of the three: merge to n regions; or across all edges of the spanning tree up to a
        weight, with averages rescaled to 0 to 1000; or the two nearest average colours first, as
        long as these are no farther apart than a distance.

    Returns
    -------
    int32 array
        Labels from 1.

    Examples
    --------
    >>> sf.merge_regions([[1, 2, 3]], [[10, 11, 90]], n=2)
    array([[1, 1, 2]], dtype=int32)
    """
    if [n, weight, distance].count(None) != 2:
        raise ValueError("merge_regions needs one of n, weight and distance")
    if distance is not None:
        return region_graph(labels).merge_similar_colors(image, distance)
    graph = region_graph(labels, image)
    if n is not None:
        return graph.merge_to(n)
    return graph.merge_below(whole("weight", weight))


def remove_small_regions(
    labels: ArrayLike, image: Optional[ArrayLike] = None, area: int = 2
) -> Labels:
    """Gives regions of fewer pixels than ``area`` to the neighbour of the most similar averages.

    Parameters
    ----------
    labels : array of integers, (rows, columns)
        From 1 without gaps.
    image : array of integers, optional
        Without it, all neighbours are alike.
    area : int

    Examples
    --------
    >>> sf.remove_small_regions([[1, 1, 2, 3, 3]], [[5, 5, 8, 9, 9]], area=2)
    array([[1, 1, 2, 2, 2]], dtype=int32)
    """
    alike = np.zeros(shape_of(labels), np.uint8)
    return region_graph(labels, alike if image is None else image).remove_small(area)
