# Copyright the Seedforest authors
# SPDX-License-Identifier: Apache-2.0
"""What arrays are taken, what is refused, who owns what comes back."""

import ctypes
import gc
import pickle
import resource
import signal
import subprocess
import sys
import threading
import time

import numpy as np
import pytest

import seedforest as sf

IMAGE = np.arange(35, dtype=np.int32).reshape(5, 7) * 37 % 19


def unaligned(array):
    memory = np.empty(array.nbytes + 1, np.uint8)
    copy = memory[1:].view(array.dtype).reshape(array.shape)
    copy[...] = array
    return copy


def read_only(array):
    copy = array.copy()
    copy.flags.writeable = False
    return copy


class Subclass(np.ndarray):
    pass


@pytest.mark.parametrize(
    "form",
    [
        lambda a: a.astype(np.int8),
        lambda a: a.astype(np.uint16),
        lambda a: a.astype(np.int16),
        lambda a: a.astype(np.uint32),
        lambda a: a.astype(np.int64),
        lambda a: a.astype(np.uint64),
        lambda a: a.astype(">i4"),
        lambda a: a.astype(">i2"),
        lambda a: np.asfortranarray(a),
        lambda a: a[::-1, ::-1].copy()[::-1, ::-1],
        lambda a: np.repeat(a, 2, axis=1)[:, ::2],
        lambda a: a.T.copy().T,
        lambda a: a.view(Subclass),
        lambda a: a[np.newaxis],
        lambda a: a.tolist(),
        unaligned,
        read_only,
    ],
)
def test_every_form_of_the_same_values_gives_the_same_result(form):
    given = form(IMAGE)
    before = np.array(given)
    assert np.array_equal(sf.negative(given), IMAGE.max() - IMAGE)
    assert np.array_equal(sf.dilation(given, 2)[..., 1, 1], IMAGE[:3, :3].max())
    assert np.array_equal(given, before)


@pytest.mark.parametrize(
    "image, error, words",
    [
        (np.zeros((3, 3)), TypeError, "float64: scale and convert"),
        (np.zeros((3, 3), np.float16), TypeError, "float16"),
        (np.zeros((3, 3), complex), TypeError, "complex"),
        (np.array([["a"]]), TypeError, "whole numbers"),
        (np.array([[None]]), TypeError, "whole numbers"),
        (None, ValueError, "shape"),
        (7, ValueError, r"not \(\)"),
        ([1, 2, 3], ValueError, r"not \(3,\)"),
        (np.zeros((2, 2, 2, 2), int), ValueError, "bands, rows, columns"),
        (np.zeros((0, 5), int), ValueError, r"no image of the shape \(0, 5\)"),
        (np.zeros((3, 0), np.uint8), ValueError, r"\(3, 0\)"),
        (np.zeros((0, 3, 3), np.int32), ValueError, r"\(0, 3, 3\)"),
        (np.full((2, 2), 2**31), ValueError, "2147483648 does not fit"),
        (np.full((2, 2), 2**64 - 1, np.uint64), ValueError, "does not fit"),
        (np.full((2, 2), -(2**31) - 1), ValueError, "does not fit"),
        (np.ma.masked_array(IMAGE, IMAGE > 5), ValueError, "masked"),
        (np.broadcast_to(np.int8(1), (2**16, 2**15)), ValueError, r"\(65536, 32768\)"),
    ],
)
def test_what_is_no_image_is_refused(image, error, words):
    with pytest.raises(error, match=words):
        sf.dilation(image, 1)


@pytest.mark.parametrize(
    "call, error, words",
    [
        (lambda: sf.dilation(IMAGE, 1.5), TypeError, "squared_radius is a whole number"),
        (lambda: sf.dilation(IMAGE, 2**31), ValueError, "does not fit"),
        (lambda: sf.h_maxima(IMAGE, -1), ValueError, "-1"),
        (lambda: sf.watershed(IMAGE, [[5, 0, 1]]), ValueError, "seed 0 at row 5, column 0"),
        (lambda: sf.watershed(IMAGE, [[0, -1, 1]]), ValueError, "column -1"),
        (lambda: sf.watershed(IMAGE, [[0, 0, 2**31]]), ValueError, "32 bits"),
        (lambda: sf.watershed(IMAGE, [[0, 0]]), ValueError, r"not \(1, 2\)"),
        (lambda: sf.watershed(IMAGE, [[0, 0, 1.5]]), TypeError, "float64"),
        (lambda: sf.watershed(IMAGE, sf.frame_seeds((9, 9))), ValueError, r"\(9, 9\)"),
        (lambda: sf.watershed(IMAGE[:, :3], IMAGE[:, :3]), ValueError, "a table or an image"),
        (lambda: sf.watershed(IMAGE, [], mask=IMAGE[1:]), ValueError, "mask"),
        (lambda: sf.watershed(IMAGE, [], connectivity=6), ValueError, "not 6"),
        (lambda: sf.watershed(IMAGE, [], connectivity=[[1]]), ValueError, "displacements"),
        (lambda: sf.watershed(IMAGE, [], connectivity="8"), TypeError, "displacements"),
        (lambda: sf.image_forest(IMAGE, [], cost="product"), ValueError, "'max_local'"),
        (lambda: sf.image_forest(IMAGE, [], weight=None), TypeError, "name or a function"),
        (lambda: sf.image_forest(IMAGE, [], max_cost=-1), ValueError, "-1"),
        (lambda: sf.skeletonize(IMAGE, 1, side="left"), ValueError, "'outside'"),
        (lambda: sf.level(IMAGE, IMAGE.T), ValueError, "size"),
        (lambda: sf.rgb2lab(np.zeros((9, 9, 3), np.uint8)), ValueError, "moveaxis"),
        (lambda: sf.overlay(IMAGE, IMAGE, color=(0, 0, 256)), ValueError, "0 to 255"),
        (lambda: sf.measure(-IMAGE), ValueError, ""),
        (lambda: sf.measure([[10**9, 1]]), ValueError, "relabel_sequential"),
        (lambda: sf.region_graph([[2**31 - 1]]), ValueError, "relabel_sequential"),
        (lambda: sf.region_graph(IMAGE).neighbors(99), ValueError, "no vertex 99"),
        (lambda: sf.RegionGraph(3).labels, ValueError, ""),
        (lambda: sf.imread("missing.pgm"), OSError, "missing.pgm"),
        (lambda: sf.imread("a\0b"), ValueError, "null"),
        (lambda: sf.imdecode(b"P7 1 1"), OSError, "P7"),
        (lambda: sf.imsave("no/folder.pgm", IMAGE), OSError, "no/folder.pgm"),
        (lambda: sf.imsave("x.pgm", np.zeros((2, 3, 3), int)), ValueError, "three bands"),
        (lambda: sf.frame_seeds((2**20, 2**20)), ValueError, "no image"),
        (lambda: sf.add_border(IMAGE, 2**30), (ValueError, MemoryError), ""),
        (lambda: sf._core.watershed(IMAGE, [[1, 2]], 8, None, None), TypeError, "int32"),
        (lambda: sf._core.path(IMAGE, 10**6), ValueError, "path"),
        (lambda: sf.Forest(IMAGE, IMAGE, IMAGE * 0 + 99).path(0, 0), ValueError, "path"),
    ],
)
def test_what_cannot_be_done_is_said_in_a_sentence(call, error, words):
    with pytest.raises(error, match=words):
        call()


def test_int32_is_used_without_a_copy_and_outlived():
    image = np.zeros((2000, 2000), np.int32)
    before = resource.getrusage(resource.RUSAGE_SELF).ru_maxrss
    assert not sf.band_pass(image, 1, 1).any()
    grown = 1024 * (resource.getrusage(resource.RUSAGE_SELF).ru_maxrss - before)
    assert grown < 1.5 * image.nbytes  # the result, and no copy of the image
    result = sf.negative(IMAGE.copy())  # the argument is gone at once
    gc.collect()
    assert np.array_equal(result, 18 - IMAGE)
    part = sf.watershed(IMAGE, [[0, 0, 1]])[2:, 1:3]  # the whole is gone, its memory is not
    gc.collect()
    assert part.all() and part.base is not None


def test_arrays_may_be_dropped_and_results_changed():
    labels = sf.label(IMAGE > 5)
    labels[:] = 7
    assert labels.flags.owndata is False and labels.flags.writeable
    roots = sf.markers(IMAGE, 3)
    roots.labels[:] = 99
    assert 99 not in roots.labels


def test_ten_thousand_calls_do_not_grow():
    image = np.tile(IMAGE, (20, 20))
    roots = sf.markers(image, 5)

    def work(n):
        for _ in range(n):
            sf.watershed(image, roots, return_forest=True)
            sf.dilation(image.astype(np.uint8), 1)
            with pytest.raises(ValueError):
                sf.watershed(image, roots, mask=IMAGE)

    work(30)
    before = resource.getrusage(resource.RUSAGE_SELF).ru_maxrss
    for _ in range(10000):
        sf.negative(IMAGE)
        sf.image_forest(IMAGE, [[0, 0, 1]])
    work(300)
    assert resource.getrusage(resource.RUSAGE_SELF).ru_maxrss - before < 4096


def test_uint8_stays_and_means_grey_levels():
    image = np.array([[0, 200, 255]], np.uint8)
    for result in (sf.dilation(image, 1), sf.area_opening(image, 2), sf.add(image, 100)):
        assert result.dtype == np.uint8
    assert sf.negative(image).tolist() == [[255, 55, 0]]
    assert sf.upper_envelope(image, [[300, 0, 0]]).tolist() == [[300, 200, 255]]
    assert sf.masked(image, image, fill=-5).tolist() == [[-5, 200, 255]]
    assert sf.reconstruction(image, sf.Roots([], (1, 3))).tolist() == [[-(2**31)] * 3]
    assert sf.gray2rgb([[300]]).tolist() == [[[300]]] * 3
    assert sf.regional_maxima(np.eye(2, dtype=bool)).dtype == bool


def test_roots():
    roots = sf.Roots([[4, 6, 1, 5], [0, 3, 2, 9], [2, 2, 2, 7]], IMAGE)
    assert roots == pickle.loads(pickle.dumps(roots)) and roots != roots[:2]
    assert list(roots[roots.labels == 2]) == [(0, 3, 2), (2, 2, 2)] == list(roots[1:])
    assert list(roots[0] + roots[-1]) == [(4, 6, 1), (2, 2, 2)]
    assert roots.within(6, 9).values.tolist() == [9, 7]
    assert roots.start_at(IMAGE).values.tolist() == IMAGE[[4, 0, 2], [6, 3, 2]].tolist()
    assert np.array_equal(np.asarray(roots), [[4, 6, 1], [0, 3, 2], [2, 2, 2]])
    outside = sf.decode_roots("1\n-1 -1 5\n", IMAGE)
    assert (outside.rows[0], outside.columns[0]) == (-1, -1)
    with pytest.raises(ValueError):
        sf.watershed(IMAGE, outside)


def test_seeds_in_every_form_give_the_same_labels():
    table = [[0, 0, 1], [4, 6, 2]]
    roots = sf.Roots(table, IMAGE)
    image = sf.paint_seeds(roots)
    results = [sf.watershed(IMAGE, seeds) for seeds in (table, roots, image, np.array(table))]
    assert all(np.array_equal(result, results[0]) for result in results)
    assert not sf.watershed(IMAGE, []).any()


def compiled_difference():
    """The weight |q - p| as a C callback."""
    signature = ctypes.CFUNCTYPE(ctypes.c_int, ctypes.POINTER(ctypes.c_int), *[ctypes.c_int] * 2)
    return signature(lambda pixels, p, q: abs(pixels[p] - pixels[q]))


def test_functions_as_weights():
    flat = IMAGE.ravel()
    seeds = [[0, 0, 1], [4, 6, 2]]
    named = sf.image_forest(IMAGE, seeds)
    python = sf.image_forest(IMAGE, seeds, cost=max, weight=lambda p, q: flat[q])
    assert all(map(np.array_equal, named, python))
    differences = sf.image_forest(IMAGE, seeds, weight=lambda p, q: abs(int(flat[p] - flat[q])))
    compiled = sf.image_forest(IMAGE, seeds, weight=compiled_difference())
    assert all(map(np.array_equal, differences, compiled))
    assert sf.verify(compiled, IMAGE, seeds, weight=compiled_difference()) is None
    costs = compiled.costs.copy()
    costs[2, 3] += 1
    violation = sf.verify(compiled._replace(costs=costs), IMAGE, seeds, weight=compiled_difference())
    assert violation is not None
    two = np.stack((IMAGE, IMAGE * 2)).astype(np.int64)
    signature = ctypes.CFUNCTYPE(ctypes.c_int, ctypes.POINTER(ctypes.c_int), *[ctypes.c_int] * 2)
    second = sf.image_forest(two, seeds, weight=signature(lambda pixels, p, q: pixels[35 + q]))
    assert np.array_equal(second.costs[IMAGE.shape[0] // 2 :], 2 * named.costs[2:])


@pytest.mark.parametrize("returned", ["no number", 1.5, 2**31])
def test_a_weight_that_fails_ends_the_call(returned):
    with pytest.raises((TypeError, ValueError)):
        sf.image_forest(IMAGE, [[0, 0, 1]], weight=lambda p, q: returned)
    with pytest.raises(ZeroDivisionError):
        sf.image_forest(IMAGE, [[0, 0, 1]], weight=lambda p, q: p // 0)


def test_a_graph_is_used_by_one_call_at_a_time():
    graph = sf.region_graph(IMAGE + 1, IMAGE)

    def weight(u, v):
        graph.insert_edge(1, 2)
        return 1

    with pytest.raises(ValueError, match="in use"):
        graph.spanning_tree(weight)
    tree = graph.spanning_tree(lambda u, v: abs(u - v))
    assert len(tree.edges()) == 18
    data = graph.data
    data[3] = 77
    graph.data = data
    assert graph.copy().data[3] == 77


def test_two_threads_work_at_once():
    image = np.tile(IMAGE, (150, 110))
    roots = sf.markers(image, 5)
    expected = sf.watershed(image, roots)
    ticks, results = [], []

    def work():
        results.append(np.array_equal(sf.watershed(image, roots), expected))

    threads = [threading.Thread(target=work) for _ in range(2)]
    for thread in threads:
        thread.start()
    while any(thread.is_alive() for thread in threads):
        ticks.append(time.monotonic())
        time.sleep(0.001)
    assert results == [True, True]
    assert len(ticks) > 10  # this thread ran all the while


LONG_CALL = """
import signal, numpy as np, seedforest as sf
signal.signal(signal.SIGINT, signal.default_int_handler)  # ignored where the tests run in the background
image = np.random.default_rng(1).integers(0, 1000, (6000, 6000)).astype(np.int32)
print("ready", flush=True)
try:
    sf.alternating_filter(image, 1000000)
except KeyboardInterrupt:
    print("stopped", flush=True)
"""


def test_ctrl_c_stops_a_long_call():
    with subprocess.Popen([sys.executable, "-c", LONG_CALL], stdout=subprocess.PIPE) as process:
        assert process.stdout.readline() == b"ready\n"
        time.sleep(0.5)
        process.send_signal(signal.SIGINT)
        try:
            assert process.communicate(timeout=60)[0] == b"stopped\n"
        finally:
            process.kill()
