# Copyright the Seedforest authors
# SPDX-License-Identifier: Apache-2.0
"""How fast the package is beside C++, scikit-image, OpenCV and SciPy.

    python bench.py IMAGE.pgm WATERSHED [ROUNDS]

Times are those of the processor, which another program's load disturbs less than the clock's.
IMAGE.pgm is a large image of 8 bits, for example 4096 x 4096 pixels of make_micrograph, and WATERSHED
the compiled watershed.cpp. Prints the watershed in C++ and from Python in turns, two threads beside two
calls in one, and a table of ten functions on a part of 1024 x 1024 pixels: medians of the rounds, which
take turns too, and the share of equal pixels.
"""

import platform
import statistics
import subprocess
import sys
import tempfile
import threading
import time

import cv2
import numpy as np
import scipy
import scipy.ndimage as ndi
import skimage
from skimage import measure, morphology, segmentation

import seedforest as sf

EIGHT = np.ones((3, 3), bool)


def seconds_of(work):
    """How long the processor takes for a call, the release of its result included."""
    start = time.process_time()
    work()
    return time.process_time() - start


def medians(rounds, *works):
    """The median time of each of some calls, which take turns."""
    times = [[seconds_of(work) for work in works] for _ in range(rounds)]
    return [statistics.median(column) for column in zip(*times)]


def in_two_threads(work):
    """Runs a call in two threads at once."""
    threads = [threading.Thread(target=work) for _ in range(2)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()


def compare_watersheds(path, program, rounds):
    """The watershed of the whole image beside C++ and scikit-image, and in two threads."""
    image = sf.gradient(sf.imread(path))
    seeds = sf.markers(sf.imread(path), 5, steps=2)
    markers = sf.paint_seeds(seeds)
    with tempfile.TemporaryDirectory() as folder:
        sf.imsave(f"{folder}/image.pgm", image)
        sf.write_roots(f"{folder}/roots.txt", seeds)
        command = [program, f"{folder}/image.pgm", f"{folder}/roots.txt"]
        with subprocess.Popen(
            command, stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True, bufsize=1
        ) as cpp:

            def in_cpp():
                cpp.stdin.write("\n")
                return float(cpp.stdout.readline())

            def from_python():
                return seconds_of(lambda: sf.watershed(image, seeds, return_forest=True))

            pairs = [(in_cpp(), from_python()) for _ in range(rounds + 1)][1:]
            cpp.stdin.close()
    ratio = statistics.median(python / cpp for cpp, python in pairs)
    cpp, python = (statistics.median(column) for column in zip(*pairs))
    print(f"watershed of {image.shape}: C++ {cpp:.3f} s, Python {python:.3f} s, ratio {ratio:.3f}")

    def work():
        sf.watershed(image, seeds)

    ratios = []
    for _ in range(rounds):
        start = time.perf_counter()
        work()
        work()
        middle = time.perf_counter()
        in_two_threads(work)
        ratios.append((middle - start) / (time.perf_counter() - middle))
    print(f"two threads, by the clock: {statistics.median(ratios):.2f} times as fast as one")

    start = time.process_time()
    labels = segmentation.watershed(image, markers, connectivity=2)
    other = time.process_time() - start
    share = same_pixels(labels, sf.watershed(image, markers))
    print(f"scikit-image {other:.1f} s, {other / python:.1f} times as long, {share} equal")


def same_pixels(a, b):
    """The share of equal pixels, as text."""
    return f"{100 * np.isclose(a, b, rtol=1e-6).mean():.2f} %"


def ten_functions(image):
    """Of each: its name, our call, the others' calls, and how to compare the first of them."""
    shape = image > 80
    marker = sf.subtract(image, np.full(image.shape, 20, np.uint8))
    footprint = footprint_of(10)
    seeds = sf.markers(image, 5, steps=2)
    gradient = sf.gradient(image).astype(np.uint8)
    labels = sf.watershed(gradient, seeds)
    painted = sf.paint_seeds(seeds)
    rgb = np.ascontiguousarray(np.moveaxis(sf.gray2rgb(gradient), 0, -1))
    index = np.arange(1, labels.max() + 1)
    return {
        "watershed": (
            lambda: sf.watershed(gradient, seeds),
            lambda: segmentation.watershed(gradient, painted, connectivity=2),
            lambda: cv2.watershed(rgb, painted.copy()),
            None,
        ),
        "label": (
            lambda: sf.label(shape),
            lambda: measure.label(shape, connectivity=2),
            lambda: cv2.connectedComponents(shape.view(np.uint8), connectivity=8)[1],
            lambda: ndi.label(shape, EIGHT)[0],
        ),
        "distance_transform": (
            lambda: sf.distance_transform(shape, squared=False),
            None,
            lambda: cv2.distanceTransform(
                shape.view(np.uint8), cv2.DIST_L2, cv2.DIST_MASK_PRECISE
            ),
            lambda: ndi.distance_transform_edt(shape),
        ),
        "dilation, disc of 37 pixels": (
            lambda: sf.dilation(image, 10),
            lambda: morphology.dilation(image, footprint),
            lambda: cv2.dilate(image, footprint),
            lambda: ndi.grey_dilation(image, footprint=footprint),
        ),
        "gradient": (
            lambda: sf.gradient(image),
            None,
            lambda: cv2.morphologyEx(image, cv2.MORPH_GRADIENT, EIGHT.view(np.uint8)),
            lambda: ndi.morphological_gradient(image, size=3),
        ),
        "area_opening, 50 pixels": (
            lambda: sf.area_opening(image, 50),
            lambda: morphology.area_opening(image, 50, connectivity=2),
            None,
            None,
        ),
        "reconstruction": (
            lambda: sf.reconstruction(image, marker),
            lambda: morphology.reconstruction(marker, image),
            None,
            None,
        ),
        "regional_maxima": (
            lambda: sf.regional_maxima(image),
            lambda: morphology.local_maxima(image, connectivity=2),
            None,
            None,
        ),
        "h_maxima, 5 levels": (
            lambda: sf.h_maxima(image, 5),
            lambda: morphology.h_maxima(image, 6, EIGHT) > 0,
            None,
            None,
        ),
        "measure: areas and means": (
            lambda: sf.measure(labels, image)["area"],
            lambda: measure.regionprops_table(labels, image, ["area", "intensity_mean"])["area"],
            None,
            lambda: areas_and_means(image, labels, index),
        ),
    }


def footprint_of(squared_radius):
    """The disc of a squared radius as an array."""
    disc = sf.disc(squared_radius)
    footprint = np.zeros(2 * disc.max(axis=0) + 1, np.uint8)
    footprint[tuple((disc + disc.max(axis=0)).T)] = 1
    return footprint


def areas_and_means(image, labels, index):
    """SciPy's way to measure."""
    ndi.mean(image, labels, index)
    return np.bincount(labels.ravel())[1:]


def print_table(image, rounds):
    """Milliseconds and shares of equal pixels, as a table in Markdown."""
    print("| function | seedforest | scikit-image | OpenCV | SciPy |")
    print("|---|---|---|---|---|")
    for name, works in ten_functions(image).items():
        there = [work for work in works if work is not None]
        times = iter(medians(rounds, *there))
        ours = works[0]()
        cells = []
        for number, work in enumerate(works):
            if work is None:
                cells.append("")
                continue
            cell = f"{1000 * next(times):.1f}"
            if number > 0:
                cell += f" ({same_pixels(ours, np.asarray(work()).astype(ours.dtype))})"
            cells.append(cell)
        print(f"| {name} | {' | '.join(cells)} |", flush=True)


def main():
    """Runs both parts."""
    path, program = sys.argv[1:3]
    rounds = int(sys.argv[3]) if len(sys.argv) > 3 else 5
    cv2.setNumThreads(1)
    print(f"seedforest {sf.__version__}, scikit-image {skimage.__version__}, ", end="")
    print(f"OpenCV {cv2.__version__}, SciPy {scipy.__version__}, NumPy {np.__version__}, ", end="")
    print(f"Python {platform.python_version()}")
    compare_watersheds(path, program, rounds)
    print_table(np.ascontiguousarray(sf.imread(path)[:1024, :1024]), rounds)


if __name__ == "__main__":
    main()
