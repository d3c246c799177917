# Copyright the Seedforest authors
# SPDX-License-Identifier: Apache-2.0
"""The report as a job of the engine."""

import summary
import runs

summary.make(runs.read_json("run.json")["batches"], snakemake.config)  # noqa: F821, given by the engine
