# Copyright the Seedforest authors
# SPDX-License-Identifier: Apache-2.0
"""The same seeds, labels and pictures as the tool and the companion programs on the same files."""

import subprocess
from pathlib import Path

import numpy as np
import pytest

import seedforest as sf


def run(*command):
    """Runs a program that has to succeed."""
    subprocess.run(list(map(str, command)), check=True, stdout=subprocess.PIPE)


@pytest.fixture(params=["P5", "P2", "P2 of a larger maximum"])
def image(request, grey):
    """An image as a file image.pgm, and as an array."""
    sf.imsave("image.pgm", grey if request.param == "P5" else grey.astype(int))
    if "larger" in request.param:
        text = Path("image.pgm").read_text()
        Path("image.pgm").write_text(text.replace(f"\n{grey.max()}\n", "\n999\n", 1))
    return sf.imread("image.pgm")


@pytest.mark.parametrize(
    "option, seeds",
    [
        ("regMax 100 200", lambda image: sf.regional_maxima_seeds(image).within(100, 200)),
        ("regMin 0 60", lambda image: sf.regional_minima_seeds(image).within(0, 60)),
        ("dt", sf.contour_seeds),
        ("labels", sf.seeds_from_labels),
        ("frame 0", sf.frame_seeds),
        ("frame 1 7", lambda image: sf.frame_seeds(image, label=7)),
        ("cells 2", lambda image: sf.cell_seeds(image, 2)),
        ("cells 5", lambda image: sf.cell_seeds(image, 5)),
    ],
)
def test_seeds_of_the_tool(build, image, option, seeds):
    run(build / "seedforest", "image.pgm", "roots.txt", *option.split())
    made = seeds(image)
    sf.write_roots("mine.txt", made)
    assert Path("mine.txt").read_bytes() == Path("roots.txt").read_bytes()
    assert len(made) > 0
    read = sf.read_roots("roots.txt", image)
    assert list(read) == list(made)


def test_joined_roots(build, image):
    frame, maxima = sf.frame_seeds(image), sf.regional_maxima_seeds(image)
    sf.write_roots("a.txt", frame)
    sf.write_roots("b.txt", maxima)
    run(build / "seedforest", "image.pgm", "joined.txt", "join", "a.txt", "b.txt")
    assert Path("joined.txt").read_text() == sf.encode_roots(frame + maxima)


def test_regions_tables_and_pictures_of_the_companions(build, image):
    run(build / "seedforest-seeds", "image.pgm", "seeds.txt", "markers", 10, "--quiet")
    seeds = sf.markers(image, 10)
    assert sf.encode_roots(seeds) == Path("seeds.txt").read_text()

    run(build / "seedforest-segment", "image.pgm", "seeds.txt", "labels.pgm")
    labels = sf.watershed(sf.gradient(image), seeds)
    assert np.array_equal(sf.imread("labels.pgm"), labels)

    options = ("--on", "negative", "--connectivity", 4, "--threshold", 70)
    run(build / "seedforest-segment", "image.pgm", "seeds.txt", "cells.pgm", *options)
    cells = sf.watershed(sf.negative(image), seeds, connectivity=4, mask=image > 70)
    assert np.array_equal(sf.imread("cells.pgm"), cells)

    command = [build / "seedforest-measure", "labels.pgm", "image.pgm"]
    table = subprocess.run(command, check=True, stdout=subprocess.PIPE, text=True).stdout
    header, *rows = (line.split(",") for line in table.splitlines())
    measures = sf.measure(labels, image)
    for name in ("label", "area"):
        assert [int(row[header.index(name)]) for row in rows] == measures[name].tolist()

    for style, picture in (("borders", sf.overlay), ("average", sf.label2rgb)):
        run(build / "seedforest-paint", "image.pgm", "labels.pgm", "picture.ppm", "--style", style)
        expected = picture(sf.gray2rgb(image), labels)
        assert np.array_equal(sf.imread("picture.ppm"), expected)
