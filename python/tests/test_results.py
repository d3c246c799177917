# Copyright the Seedforest authors
# SPDX-License-Identifier: Apache-2.0
"""Every function against the C++ interface on the same files, by the checksums of results.cpp."""

import os
import subprocess
import zlib

import numpy as np
import pytest

import seedforest as sf


def seed_results(grey, shape):
    size = grey.shape
    yield "frame_seeds", sf.frame_seeds(size)
    yield "frame_seeds label", sf.frame_seeds(grey, label=7)
    yield "regional_maxima", sf.regional_maxima(grey)
    yield "regional_minima", sf.regional_minima(grey)
    yield "regional_maxima_seeds", sf.regional_maxima_seeds(grey)
    yield "regional_minima_seeds", sf.regional_minima_seeds(grey)
    yield "h_maxima", sf.h_maxima(grey, 20)
    yield "h_minima", sf.h_minima(grey, 20)
    yield "markers", sf.markers(grey, 10, steps=2)
    yield "cell_seeds", sf.cell_seeds(grey, 3)
    yield "contour_seeds", sf.contour_seeds(shape)
    yield "contour_seeds objects", sf.contour_seeds(shape, labels="objects")
    yield "skeleton_seeds", sf.skeleton_seeds(shape)
    yield "skeleton_seeds by_curve", sf.skeleton_seeds(shape, by_curve=True)
    yield "seeds_from_labels", sf.seeds_from_labels(grey)
    yield "paint_seeds", sf.paint_seeds(sf.markers(grey, 10))


def forest_results(grey, color, shape):
    roots = sf.markers(grey, 10)
    pixels = grey.astype(int).ravel()
    yield "watershed", sf.watershed(grey, roots, return_forest=True)
    yield "watershed four", sf.watershed(grey, roots, 4, return_forest=True)
    yield "watershed disc", sf.watershed(grey, roots, sf.disc(5), return_forest=True)
    yield "watershed mask", sf.watershed(grey, roots, mask=shape, return_forest=True)
    yield "image_forest", sf.image_forest(color, roots, cost="sum", weight="euclidean")
    yield "image_forest greatest", sf.image_forest(
        grey, roots.start_at(grey), "min", connectivity=sf.window(1), best="greatest"
    )
    yield "image_forest function", sf.image_forest(
        grey, roots, weight=lambda p, q: abs(pixels[p] - pixels[q]), max_cost=300
    )
    yield "scaled_forest", sf.scaled_forest(grey, roots, weight="chamfer", mask=shape)
    for kind in ("euclidean", "gaussian", "step", "watershed"):
        yield kind, np.asarray(sf.arc_weights(color, kind))
    weights = sf.arc_weights(grey, "watershed")
    yield "ArcWeights.forest", weights.forest(roots)
    yield "ArcWeights.scaled_forest", weights.scaled_forest(roots, mask=shape)
    tree = sf.spanning_tree(color, "largest_difference")
    yield "spanning_tree", tree
    yield "SpanningTree.cut", tree.cut(0.4)
    yield "distance_forest", sf.distance_forest(grey, roots)
    yield "nearest_seeds", sf.nearest_seeds(grey.shape, roots)


def filter_results(grey, color):
    yield "dilation", sf.dilation(color, 5)
    yield "erosion", sf.erosion(color, 5)
    yield "opening", sf.opening(grey, 4)
    yield "closing", sf.closing(grey, 4)
    yield "alternating_filter", sf.alternating_filter(grey, 3)
    yield "alternating_filter close", sf.alternating_filter(grey, 3, first="close")
    yield "gradient", sf.gradient(color)
    low, maxima = sf.subtract(grey, sf.dilation(grey, 2)), sf.regional_maxima_seeds(grey)
    maxima = maxima.within(100, 200)
    high = sf.dilation(grey, 9)
    yield "reconstruction", sf.reconstruction(grey, low, return_labels=True)
    yield "reconstruction erosion", sf.reconstruction(grey, high, "erosion", return_labels=True)
    for name, local in (("seeds", False), ("local", True)):
        yield f"reconstruction {name}", sf.reconstruction(
            grey, maxima, local=local, return_labels=True
        )
        yield f"reconstruction {name} erosion", sf.reconstruction(
            grey, maxima, "erosion", local=local, return_labels=True
        )
    yield "area_opening", sf.area_opening(grey, 9, return_labels=True)
    yield "area_closing", sf.area_closing(grey, 9, return_labels=True)
    yield "level", sf.level(grey, sf.opening(grey, 4))
    ends = [[0, 5, 1, 10], [700 // 61, 700 % 61, 2, 90]]
    yield "level_from_seeds", sf.level_from_seeds(grey, sf.opening(grey, 4), ends)
    yield "fuzzy_connectedness", sf.fuzzy_connectedness(grey, ends, [(200, 40), (90, 30)])
    links = [np.asarray(sf.arc_weights(grey, "watershed"))]
    yield "fuzzy_connectedness_of_links", sf.fuzzy_connectedness_of_links(links, ends)


def shape_results(grey, shape):
    yield "label", sf.label(shape)
    yield "relabel_sequential", sf.relabel_sequential(grey)
    yield "flat_zones", sf.flat_zones(grey, [[0, 3, 1], [500 // 61, 500 % 61, 2]])
    yield "inner_boundaries", sf.inner_boundaries(shape)
    yield "contours", sf.contours(sf.inner_boundaries(shape))
    yield "contour_differences", sf.contour_differences(grey, shape)
    yield "contour_differences absolute", sf.contour_differences(grey, shape, absolute=True)
    skeleton = sf.skeletonize(shape, 8)
    yield "skeletonize", skeleton
    yield "skeletonize both", sf.skeletonize(shape, 8, side="both")
    yield "skeletonize outside", sf.skeletonize(shape, 8, side="outside")
    yield "shape_of_skeleton", sf.shape_of_skeleton(skeleton)
    yield "paint_circles", sf.paint_circles(skeleton)
    yield "shortest_path", sf.shortest_path(sf.complement(shape), (0, 0), (0, 1))
    yield "split_touching", sf.split_touching(shape, 1)


def region_results(grey, color, labels):
    yield "measure", np.stack(list(sf.measure(labels, color).values()), axis=1)
    yield "features", sf.features(color)
    yield "with_feature", sf.with_feature(sf.features(color), grey)
    graph = sf.region_graph(labels, color)
    yield "region_graph", sf.region_graph(labels)
    yield "region_graph image", graph
    yield "with_averages", graph.with_averages(grey)
    yield "with_areas", graph.with_areas()
    yield "with_volumes", graph.with_volumes(grey)
    yield "with_gradients", graph.with_gradients()
    yield "with_rescaled", graph.with_areas().with_rescaled()
    yield "paint", graph.paint()
    yield "spanning_tree regions", graph.spanning_tree()
    yield "cut_into", graph.spanning_tree("smaller").cut_into(3)
    yield "cut_above", graph.spanning_tree("watershed").cut_above(100)
    yield "merge_to", sf.merge_regions(labels, color, n=4)
    yield "merge_below", sf.merge_regions(labels, color, weight=90)
    yield "remove_small", sf.remove_small_regions(labels, color, area=60)
    yield "merge_similar", graph.merge_similar(80)
    yield "merge_similar_colors", sf.merge_regions(labels, color, distance=30)
    grown = graph.forest([[1, 1], [5, 2]])
    yield "RegionGraph.forest", grown
    yield "collapsed", grown.collapsed()


def pixel_results(grey, color, shape, labels):
    yield "threshold", sf.threshold(grey, 100, 180)
    yield "band_pass", sf.band_pass(grey, 100, 180)
    yield "negative", sf.negative(grey)
    yield "negative labels", sf.negative(labels)
    yield "complement", sf.complement(shape)
    yield "shape_difference", sf.shape_difference(grey, shape)
    yield "shape_union", sf.shape_union(shape, labels)
    yield "masked", sf.masked(color, shape, fill=9)
    yield "add_border", sf.add_border(color, 3)
    yield "remove_border", sf.remove_border(color, 3)
    yield "add", sf.add(grey, 30)
    yield "subtract", sf.subtract(grey, sf.erosion(grey, 2))
    yield "upper_envelope", sf.upper_envelope(shape, grey)
    yield "lower_envelope", sf.lower_envelope(shape, grey)
    yield "histogram", sf.histogram(grey, shape).astype(int)
    yield "overlay", sf.overlay(color, labels, color=(1, 2, 3))
    yield "overlay grey", sf.overlay(grey, labels)
    yield "highlight", sf.highlight(grey, shape, color=(9, 8, 7))
    yield "label2rgb", sf.label2rgb(color, labels)


def color_results(grey, color):
    for space in ("xyz", "ycbcr", "hsv", "lab", "luv"):
        there = getattr(sf, f"rgb2{space}")(color)
        yield f"rgb2{space}", there
        yield f"{space}2rgb", getattr(sf, f"{space}2rgb")(there)
    for space in ("lab", "luv"):
        yield f"xyz2{space}", getattr(sf, f"xyz2{space}")(sf.rgb2xyz(color))
        yield f"{space}2xyz", getattr(sf, f"{space}2xyz")(getattr(sf, f"rgb2{space}")(color))
    yield "gray2rgb", sf.gray2rgb(grey)


def arrays_of(result):
    if isinstance(result, sf.Roots):
        return [np.stack((result.pixels, result.labels, result.values), axis=1)]
    if isinstance(result, sf.RegionGraph):
        return [result.edges(), result.data]
    return result if isinstance(result, tuple) else [result]


def checksum(result):
    values = [np.ravel(array).astype("<i4") for array in arrays_of(result)]
    return zlib.adler32(np.concatenate(values).tobytes())


@pytest.mark.skipif("SEEDFOREST_RESULTS" not in os.environ, reason="no compiled results.cpp")
def test_every_function_gives_the_result_of_cpp(grey, color, shape, labels):
    sf.imsave("grey.pgm", grey)
    sf.imsave("color.ppm", color)
    sf.imsave("shape.pgm", shape)
    sf.imsave("labels.pgm", labels)
    told = subprocess.run(
        os.environ["SEEDFOREST_RESULTS"], check=True, stdout=subprocess.PIPE, text=True
    )
    expected = dict(line.rsplit(" ", 1) for line in told.stdout.splitlines())
    actual = {}
    for results in (
        seed_results(grey, shape),
        forest_results(grey, color, shape),
        filter_results(grey, color),
        shape_results(grey, shape),
        region_results(grey, color, labels),
        pixel_results(grey, color, shape, labels),
        color_results(grey, color),
    ):
        actual.update((name, str(checksum(result))) for name, result in results)
    assert len(actual) > 100
    assert actual == expected
