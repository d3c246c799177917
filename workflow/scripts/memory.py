# Copyright the Seedforest authors
# SPDX-License-Identifier: Apache-2.0
"""How much memory the programs need, from the size of an image."""


def job_mb(step, options, pixels, bands, file_size):
    return 1000
