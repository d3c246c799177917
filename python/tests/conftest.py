# Copyright the Seedforest authors
# SPDX-License-Identifier: Apache-2.0
"""Shared by the tests. SEEDFOREST_BUILD is a folder in which the project was built."""

import os
from pathlib import Path

import numpy as np
import pytest

import seedforest as sf


@pytest.fixture(autouse=True)
def own_folder(tmp_path, monkeypatch):
    """Each test runs in a fresh folder."""
    monkeypatch.chdir(tmp_path)


@pytest.fixture
def build():
    """The folder of the tool and the companion programs."""
    if "SEEDFOREST_BUILD" not in os.environ:
        pytest.skip("no SEEDFOREST_BUILD")
    return Path(os.environ["SEEDFOREST_BUILD"])


def smooth_noise(rows, columns, seed):
    """Grey levels with blobs of all sizes and a little noise."""
    random = np.random.default_rng(seed)
    y, x = np.mgrid[:rows, :columns]
    image = random.integers(0, 9, (rows, columns)).astype(np.int64)
    for _ in range(rows * columns // 120):
        cy, cx = random.integers(0, rows), random.integers(0, columns)
        peak, radius = random.integers(60, 230), random.integers(3, 9)
        image = np.maximum(image, peak - peak * ((x - cx) ** 2 + (y - cy) ** 2) // radius**2)
    return image.clip(0, 255).astype(np.uint8)


@pytest.fixture
def grey():
    return smooth_noise(47, 61, 1)


@pytest.fixture
def color():
    return np.stack([smooth_noise(47, 61, seed) for seed in (2, 3, 4)])


@pytest.fixture
def shape(grey):
    return np.where(grey > 90, 255, 0).astype(np.uint8)


@pytest.fixture
def labels(grey):
    """A mosaic of regions from 1 without gaps."""
    return sf.watershed(sf.gradient(grey), sf.markers(grey, 10))
