# Copyright the Seedforest authors
# SPDX-License-Identifier: Apache-2.0
"""What the jobs and the engine do to the files of a run: locks, and files that appear whole."""

import errno
import fcntl
import json
import os
import sys
import tempfile

# The step whose record says what a step has to do.
SOURCE = {"seeds": None, "segment": "seeds", "measure": "segment", "paint": "segment"}

WORK = "work"  # beside the results, so that a rename delivers
JOBS_LOCK = ".jobs.lock"  # each job shares it, so that nobody cleans up while one is at work
ENGINE_LOCK = ".engine.lock"


def hold(path, mode=fcntl.LOCK_EX | fcntl.LOCK_NB):
    """Holds a lock until its descriptor is closed or the process ends, however that happens. Throws
    BlockingIOError where another one has it. A file system without locks goes without."""
    descriptor = os.open(path, os.O_RDWR | os.O_CREAT, 0o666)
    try:
        fcntl.flock(descriptor, mode)
    except BlockingIOError:
        os.close(descriptor)
        raise
    except OSError as error:
        if error.errno not in (errno.ENOLCK, errno.EOPNOTSUPP, errno.ENOSYS):
            raise
    return descriptor


def share_jobs_lock():
    hold(JOBS_LOCK, fcntl.LOCK_SH)


def wait_for_jobs():
    """Until those have ended that an engine left behind when it was killed."""
    try:
        os.close(hold(JOBS_LOCK))
    except BlockingIOError:
        print("Waiting for the last jobs of an earlier run", file=sys.stderr, flush=True)
        os.close(hold(JOBS_LOCK, fcntl.LOCK_EX))


def workplace():
    """A private folder, gone at the end of the with statement."""
    os.makedirs(WORK, exist_ok=True)
    return tempfile.TemporaryDirectory(dir=WORK)


def deliver(source, target):
    os.makedirs(os.path.dirname(target) or ".", exist_ok=True)
    os.replace(source, target)


def write_json(value, target):
    with workplace() as place:
        path = os.path.join(place, "value.json")
        with open(path, "w", encoding="ascii") as file:
            json.dump(value, file, indent=1)
        deliver(path, target)


def read_json(path, default=None):
    try:
        with open(path, encoding="ascii") as file:
            return json.load(file)
    except FileNotFoundError:
        return default


def batch_path(batch):
    return f"batches/{batch}.json"


def record_path(step, batch):
    return f"records/{step}/{batch}.json"


def earlier(record):
    """Where the record of a batch with failures waits for the next start."""
    return record.removesuffix(".json") + ".again"


def take_back(record):
    if os.path.exists(record):
        os.replace(record, earlier(record))
