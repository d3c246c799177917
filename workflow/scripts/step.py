# Copyright the Seedforest authors
# SPDX-License-Identifier: Apache-2.0
"""One step for one batch: runs a program on each image, in a private folder, and delivers its output by
renaming. An image that fails is noted with the program's own line and does not stop the others.
In the folder of the results: step.py STEP BATCH MEMORY_MB"""

import os
import re
import resource
import shlex
import shutil
import signal
import stat
import subprocess
import sys
import time

import runs

# For each step the files that its program takes, and the one that it makes. The name of an image stays
# whole in it: a.png and a.pgm may lie in one folder.
TAKES = {
    "seeds": ["image"],
    "segment": ["image", "seeds"],
    "measure": ["segment", "image"],
    "paint": ["image", "segment"],
}
MAKES = {
    "seeds": "roots/{}.txt",
    "segment": "labels/{}.tif",
    "measure": "tables/{}.csv",
    "paint": "overlays/{}.png",
}
PRINTS = "measure"  # what the others write, this one prints


class Step:
    def __init__(self, name, images, programs, options, memory_mb):
        self.name = name
        self.images = images
        self.options = shlex.split(options)
        self.memory = memory_mb * 2**20
        program = "seedforest-" + name
        self.program = os.path.join(programs, program) if programs else shutil.which(program) or program

    def path(self, kind, image):
        if kind == "image":
            return os.path.join(self.images, image)
        return os.path.abspath(MAKES[kind].format(image))

    def inputs(self, image):
        return [self.path(kind, image) for kind in TAKES[self.name]]

    def command(self, image, ground):
        output = [] if self.name == PRINTS else ["output" + os.path.splitext(MAKES[self.name])[1]]
        options = [
            str(ground) if pair == ("--background", "ground") else pair[1]
            for pair in zip(["", *self.options], self.options)
        ]
        return [self.program, *self.inputs(image), *output, *options]

    def stamp(self, image, ground):
        """The same as long as the output need not be made again."""
        files = [self.program, *self.inputs(image)]
        return [self.command(image, ground), [seen(path) for path in files]]

    def limit_memory(self):
        # A program that gets no more memory says so; a job that takes more than its share is killed.
        resource.setrlimit(resource.RLIMIT_AS, (self.memory, self.memory))

    def run(self, image, ground):
        """The lines that the program wrote beside its output. Throws Failure, OSError."""
        with runs.workplace() as place:
            output = os.path.join(place, "output" + os.path.splitext(MAKES[self.name])[1])
            with open(output if self.name == PRINTS else os.devnull, "wb") as printed:
                ended = subprocess.run(
                    self.command(image, ground),
                    cwd=place,
                    stdin=subprocess.DEVNULL,
                    stdout=printed,
                    stderr=subprocess.PIPE,
                    preexec_fn=self.limit_memory,
                    env={**os.environ, "LC_ALL": "C"},
                    check=False,
                )
            lines = ended.stderr.decode(errors="replace").splitlines()
            if ended.returncode != 0:
                raise Failure(line_of_failure(lines, ended.returncode, "seedforest-" + self.name))
            runs.deliver(output, self.path(self.name, image))
            return lines

    def entry(self, image, ground, before):
        """What the record says of an image; `before` is what an earlier record said."""
        target = self.path(self.name, image)
        entry = {"image": image, "status": "done", "line": "", "ground": ground}
        started = time.monotonic()
        try:
            entry["stamp"] = self.stamp(image, ground)
            is_made = before.get("status") == "done" and before["stamp"] == entry["stamp"]
            if is_made and os.path.exists(target):
                return {**before, "kept": True}
            for line in self.run(image, ground):
                label = re.fullmatch(r"the ground has label (\d+), .*", line)
                entry["ground"] = int(label[1]) if label else entry["ground"]
        except (Failure, OSError) as error:
            entry.update(status="failed", line=str(error))
            if os.path.lexists(target):
                os.remove(target)  # of an earlier run, with other settings
        entry["seconds"] = round(time.monotonic() - started, 4)
        return entry


class Failure(Exception):
    pass


def seen(path):
    try:
        state = os.stat(path)
    except OSError:
        return None  # the program will say so in its own words
    if not stat.S_ISREG(state.st_mode):
        raise Failure(f"{path}: no regular file")  # a pipe would keep a program waiting
    return [state.st_size, state.st_mtime_ns]


def line_of_failure(lines, status, program):
    """The program's own line; notes may stand before it and advice behind it."""
    if status < 0:
        return f"{program}: ended by {signal.Signals(-status).name}"
    own = [line for line in lines if line.startswith(program + ":")]
    return (own or lines[-1:] or [f"{program}: status {status}"])[0]


def main(name, batch, memory_mb):
    started = time.time()
    runs.share_jobs_lock()
    config = runs.read_json("run.json")["config"]
    step = Step(name, config["images"], config["programs"], config.get(name, ""), int(memory_mb))
    source = runs.read_json(runs.record_path(runs.SOURCE[name], batch)) if runs.SOURCE[name] else None
    target = runs.record_path(name, batch)
    again = runs.earlier(target)
    before = {entry["image"]: entry for entry in runs.read_json(again, {}).get("images", [])}
    entries = []
    for image, ground in given(source, batch):
        entry = step.entry(image, ground, before.get(image, {}))
        entries.append(entry)
        if entry["status"] == "failed":
            print(f"{image!a}: {entry['line']}", file=sys.stderr, flush=True)
    record = {
        "options": config.get(name, ""),
        "after": source["ended"] if source else None,
        "started": started,
        "ended": time.time(),
        "images": entries,
    }
    runs.write_json(record, target)
    if os.path.exists(again):
        os.remove(again)


def given(source, batch):
    """The images of a batch for which all is done so far, each with the label of its ground, or 0."""
    if source is None:
        return [(image, 0) for image in runs.read_json(runs.batch_path(batch))]
    return [(entry["image"], entry["ground"]) for entry in source["images"] if entry["status"] == "done"]


if __name__ == "__main__":
    main(*sys.argv[1:])
