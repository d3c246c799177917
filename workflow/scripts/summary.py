# Copyright the Seedforest authors
# SPDX-License-Identifier: Apache-2.0
"""What a run made of a folder: one table of all objects, a list of failures, and a page with both in
numbers and pictures. Made from the records, so that it can be made at any time, of any part.
In the folder of the results: summary.py"""

import collections
import csv
import math
import os
import time
import urllib.parse

import jinja2

import runs


def steps(config):
    return ["seeds", "segment", "measure"] + (["paint"] if config["paint"] != "none" else [])


def records_of(batches, config):
    """Of each batch its records by step; None where the job has not ended well, or did so before the
    settings changed or the step before it was done again."""
    for batch in batches:
        records = {None: {"ended": None}}
        for step in steps(config):
            record, source = runs.read_json(runs.record_path(step, batch)), records[runs.SOURCE[step]]
            is_of_now = (
                record is not None
                and source is not None
                and record["after"] == source["ended"]
                and record["options"] == config.get(step, "")
            )
            records[step] = record if is_of_now else None
        del records[None]
        yield records


def failures_of(batches, config):
    """Dictionaries of batch, image, step, line. The image is empty where a whole job failed."""
    if not batches:
        return [{"batch": "", "image": "", "step": "list", "line": f"no images in {config['images']}"}]
    found = []
    for batch, records in zip(batches, records_of(batches, config)):
        for step, record in records.items():
            if record is not None:
                found += [
                    {"batch": batch, "image": entry["image"], "step": step, "line": entry["line"]}
                    for entry in record["images"]
                    if entry["status"] == "failed"
                ]
            elif runs.SOURCE[step] is None or records[runs.SOURCE[step]] is not None:
                line = f"the job did not end; logs/{step}/{batch}.log may say why"
                found.append({"batch": batch, "image": "", "step": step, "line": line})
    return found


def done_images(batches, config, step):
    """Sorted: what is made of them does not depend on the batches."""
    return sorted(
        entry["image"]
        for records in records_of(batches, config)
        for entry in (records[step] or {"images": []})["images"]
        if entry["status"] == "done"
    )


# ----- the table of all objects


def table_of(image):
    return open(f"tables/{image}.csv", encoding="ascii")


def columns_of(tables):
    """Those of all tables: an image in colours has others than a grey one."""
    columns = {"label": None, "area": None}
    for image in tables:
        with table_of(image) as table:
            columns.update(dict.fromkeys(table.readline().rstrip("\n").split(",")))
    return list(columns)


def rows_of(table, columns):
    """The lines below the names, with all columns. Their cells are plain numbers."""
    names = next(table).rstrip("\n").split(",")
    for line in table:
        if names != columns:
            cells = dict(zip(names, line.rstrip("\n").split(",")))
            line = ",".join(cells.get(name, "") for name in columns) + "\n"
        yield line


def write_objects(tables, target):
    """One table of all, the image in front of each row. Returns how many rows each image has, and how
    many objects are in each class of areas."""
    columns = columns_of(tables)
    counts, classes = {}, collections.Counter()
    with open(target, "w", newline="", encoding="utf-8", errors="surrogateescape") as file:
        file.write(",".join(["image", *columns]) + "\n")
        for image in tables:
            with table_of(image) as table:
                rows = list(rows_of(table, columns))
            counts[image] = len(rows)
            classes.update(class_of(int(row.split(",", 2)[1])) for row in rows)
            name = quoted(image)
            file.writelines(f"{name},{row}" for row in rows)
    return counts, classes


def quoted(name):
    return '"' + name.replace('"', '""') + '"' if set(name) & set(',"\r\n') else name


def write_failures(failures, target):
    with open(target, "w", newline="", encoding="utf-8", errors="surrogateescape") as file:
        out = csv.DictWriter(file, ["batch", "image", "step", "line"], lineterminator="\n")
        out.writeheader()
        out.writerows(failures)


def class_of(area):
    return math.floor(2 * math.log2(area))  # two classes for each doubling


def bars_of(classes):
    if not classes:
        return []
    most = max(classes.values())
    return [
        {"from": math.ceil(2 ** (k / 2)), "count": classes[k], "share": classes[k] / most}
        for k in range(min(classes), max(classes) + 1)
    ]


# ----- the page


def times_of(batches, config):
    """For each step: images, seconds of the programs, the slowest image; what an earlier start had done
    is left out."""
    since = runs.read_json("run.json")["started"]
    times = {step: {"images": 0, "seconds": 0.0, "slowest": (0.0, "")} for step in steps(config)}
    for records in records_of(batches, config):
        for step, record in records.items():
            if record is None or record["ended"] < since:
                continue
            new = [(entry["seconds"], entry["image"]) for entry in record["images"] if "kept" not in entry]
            times[step]["images"] += len(new)
            times[step]["seconds"] += sum(seconds for seconds, _ in new)
            times[step]["slowest"] = max([times[step]["slowest"], *new])
    return times, time.time() - since


def sample_of(names, count):
    """So many of them, from begin to end."""
    return names[:: math.ceil(len(names) / count)] if names and count else []


def make(batches, config):
    """Writes objects.csv, failures.csv and report.html."""
    failures = failures_of(batches, config)
    times, wall = times_of(batches, config)
    images = [name for batch in batches for name in runs.read_json(runs.batch_path(batch))]
    painted = done_images(batches, config, "paint") if "paint" in steps(config) else []
    with runs.workplace() as place:
        made = {name: os.path.join(place, name) for name in ("objects.csv", "failures.csv", "report.html")}
        counts, classes = write_objects(done_images(batches, config, "measure"), made["objects.csv"])
        write_failures(failures, made["failures.csv"])
        page = template().render(
            config=config,
            images=len(images),
            whole=len(set(counts).intersection(painted) if "paint" in steps(config) else counts),
            objects=sum(counts.values()),
            failures=failures,
            failure_count=count_of(failures),
            bars=bars_of(classes),
            times=times,
            wall=wall,
            made=time.strftime("%Y-%m-%d %H:%M:%S"),
            pictures=sample_of(painted, config["thumbnails"]),
            counts=counts,
        )
        with open(made["report.html"], "w", encoding="utf-8", errors="backslashreplace") as file:
            file.write(page)
        for name, path in made.items():
            runs.deliver(path, name)


def template():
    folder = os.path.dirname(os.path.abspath(__file__))
    environment = jinja2.Environment(
        loader=jinja2.FileSystemLoader(folder), autoescape=True, trim_blocks=True, lstrip_blocks=True
    )
    environment.filters["link"] = lambda name: urllib.parse.quote(os.fsencode(name))
    return environment.get_template("report.html.jinja")


def count_of(failures):
    return f"{len(failures)} failure" + ("s" if len(failures) > 1 else "")


def sentence(failure):
    where = failure["image"] or (f"batch {failure['batch']}" if failure["batch"] else "")
    return ": ".join(part for part in (where, failure["step"], failure["line"]) if part)


if __name__ == "__main__":
    run = runs.read_json("run.json")
    make(run["batches"], run["config"])
