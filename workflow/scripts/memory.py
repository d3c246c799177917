# Copyright the Seedforest authors
# SPDX-License-Identifier: Apache-2.0
"""How much memory the programs need, from the size of an image: docs/batch.md says how it was measured."""

# Bytes a pixel at most, of any image, grey or in colours.
SEEDS = {"regMax": 28, "regMin": 28, "dt": 28, "frame": 16, "labels": 20, "cells": 44, "markers": 48, "split": 66}
SMOOTH = 20  # more, with --smooth
SEGMENT = 60
MERGE = 240  # with a region for every few pixels
MEASURE = 84
PAINT = 56

DECODING = 6  # a row of samples at a time or the whole of an image of 16-bit colours
BASE_MB = 250  # the engine's part of a job, and the programs themselves


def bytes_a_pixel(step, options):
    words = options.split()
    if step == "seeds":
        return SEEDS[words[0]] + (SMOOTH if "--smooth" in options else 0)
    if step == "segment":
        return MERGE if any(word in options for word in ("--min-area", "--similar", "--merge")) else SEGMENT
    return {"measure": MEASURE, "paint": PAINT}[step]


def job_mb(step, options, pixels, file_size):
    needed = (bytes_a_pixel(step, options) + DECODING) * pixels + file_size
    return BASE_MB + needed // 2**20 + 1
