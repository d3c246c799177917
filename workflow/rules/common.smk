# Copyright the Seedforest authors
# SPDX-License-Identifier: Apache-2.0

# What the rules ask for: the batches, and the memory of a job; what is done at the start and the end.

import functools
import os
import shlex
import shutil
import sys
import time

from snakemake.common import Mode
from snakemake.exceptions import WorkflowError

sys.path.insert(0, os.path.join(workflow.basedir, "scripts"))
import images
import memory
import runs
import summary

# In the cluster's jobs the workflow is read again: there the folder is not listed once more.
IS_ENGINE = workflow.mode == Mode.default


def absolute_paths(config):
    for key in ("images", "results", "programs"):
        config[key] = os.path.abspath(config[key]) if config[key] else ""
    if os.path.commonpath([config["images"], config["results"]]) == config["images"]:
        raise WorkflowError("the folder for the results lies in that of the images")


@functools.cache
def batches():
    """In the engine all of them, with their images; in a job only names."""
    if not IS_ENGINE:
        return dict.fromkeys(runs.read_json("run.json")["batches"])
    try:
        names = images.list_images(config["images"])
    except OSError as error:
        raise WorkflowError(f"{error.filename}: {error.strerror}")
    return images.batches_of(names, config["batch"], earlier_batches())


def earlier_batches():
    """Those of the last start, unless the size has changed since."""
    before = runs.read_json("run.json")
    if before is None or before["config"]["batch"] != config["batch"]:
        return {}
    return {batch: runs.read_json(runs.batch_path(batch)) for batch in before["batches"]}


def images_in(batch):
    return batches()[batch] if IS_ENGINE else runs.read_json(runs.batch_path(batch))


def input_images(wildcards):
    """The files that the engine watches. What is no file, or has a name that it could not pass on, is left
    to the programs alone."""
    paths = [os.path.join(config["images"], name) for name in images_in(wildcards.batch)]
    return [path for path in paths if images.is_plain(path) and os.path.isfile(path)]


def given_images(wildcards):
    return images_in(wildcards.batch)


def all_records(wildcards):
    return [runs.record_path(step, batch) for batch in batches() for step in summary.steps(config)]


def shell_function(name):
    """Of a script's name and its arguments: runs it with this Python."""
    script = os.path.join(workflow.basedir, "scripts", "")
    command = f'{shlex.quote(sys.executable)} {shlex.quote(script)}"$script".py "$@"'
    text = f"{name}() ( script=$1; shift; exec {command} ); "
    return text.replace("{", "{{").replace("}", "}}")  # the engine fills in what stands in braces


def keep_to_this_machine():
    """Without a cluster no more jobs at a time than the memory takes, unless --resources says how many."""
    if workflow.run_local and IS_ENGINE:
        pages, size = os.sysconf("SC_PHYS_PAGES"), os.sysconf("SC_PAGE_SIZE")
        workflow.global_resources.setdefault("mem_mb", pages * size // 2**20)


@functools.cache
def largest_image(batch):
    """Its pixels, and the bytes of its file."""
    paths = [os.path.join(config["images"], name) for name in images_in(batch)]
    sizes = [(images.pixels_of(path), os.path.getsize(path)) for path in paths if os.path.isfile(path)]
    return max(sizes, default=(0, 0))


def memory_for(step):
    """The function that says how many MB a job of a step needs; twice that after a failure."""

    def mem_mb(wildcards, attempt):
        needed = memory.job_mb(step, config.get(step, ""), *largest_image(wildcards.batch))
        most = min(config["memory_mb"], workflow.global_resources.get("mem_mb", sys.maxsize))
        return min(needed * attempt, most)

    return mem_mb


# ----- the run as a whole


def check_job():
    """A job that a cluster starts only after its engine was killed, and another one started with other
    settings, must not deliver."""
    if runs.read_json("run.json", {}).get("config") != config:
        raise WorkflowError("this job belongs to an earlier run with other settings")


def start_run():
    for step in summary.steps(config):
        program = f"seedforest-{step}"
        if not shutil.which(os.path.join(config["programs"], program)):
            raise WorkflowError(f"no program {program}: set programs to its folder, or put it into the PATH")
    try:
        runs.hold(runs.ENGINE_LOCK)
    except BlockingIOError:
        raise WorkflowError(f"another run is at work in {config['results']}")
    runs.wait_for_jobs()
    shutil.rmtree(runs.WORK, ignore_errors=True)
    os.makedirs("logs/slurm", exist_ok=True)
    for batch, names in batches().items():
        runs.write_json(names, runs.batch_path(batch))
    runs.write_json({"config": config, "batches": list(batches()), "started": time.time()}, "run.json")


def end_run(is_complete):
    """Makes the status 1 where an image failed, and lets the next start try its batch again."""
    where = os.path.abspath("report.html")
    if not is_complete:
        try:
            summary.make(list(batches()), config)
        except OSError as error:
            where = f"no report could be made: {error}"
    failures = summary.failures_of(list(batches()), config)
    if is_complete:  # what was not asked for, as with --until, is no failure
        failures = [failure for failure in failures if failure["image"] or not failure["batch"]]
    for batch in {failure["batch"] for failure in failures if failure["image"]}:
        for step in summary.steps(config):
            runs.take_back(runs.record_path(step, batch))
    for failure in failures[:10]:
        print(summary.sentence(failure), file=sys.stderr)
    if failures:
        raise WorkflowError(f"{summary.count_of(failures)}: {where}")
