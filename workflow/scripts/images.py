# Copyright the Seedforest authors
# SPDX-License-Identifier: Apache-2.0
"""The images in a folder, in batches, and what their headers say of their size."""

import os
import struct

ENDINGS = (".pgm", ".ppm", ".pnm", ".png", ".tif", ".tiff", ".jpg", ".jpeg")


def list_images(folder):
    """Paths from the folder, sorted. Hidden files and folders are left out."""

    def fail(error):
        raise error

    found = []
    for where, folders, files in os.walk(folder, onerror=fail):
        folders[:] = [name for name in folders if not name.startswith(".")]
        inside = os.path.relpath(where, folder)
        found += [
            os.path.normpath(os.path.join(inside, name))
            for name in files
            if name.lower().endswith(ENDINGS) and not name.startswith(".")
        ]
    return sorted(found)


def batches_of(names, size, earlier):
    """Names in batches, by number. Images stay in their earlier batches and new ones make new batches, so
    that nothing else is computed again."""
    wanted = set(names)
    batches = {batch: [name for name in members if name in wanted] for batch, members in earlier.items()}
    wanted.difference_update(*batches.values())
    new = [name for name in names if name in wanted]
    first = max(map(int, earlier), default=0) + 1
    for start in range(0, len(new), size):
        batches[f"{first + start // size:05}"] = new[start : start + size]
    return {batch: members for batch, members in batches.items() if members}


def is_plain(name):
    """Whether the engine can pass on a path: it writes lists of them, a line for each, and fills in what
    stands in braces."""
    return name.isprintable() and not set("{}") & set(name)


# ----- sizes


def pixels_of(path):
    """By the header; 0 where that cannot be read: the programs will say why."""
    try:
        with open(path, "rb") as file:
            head = file.read(32)
            if head[:2] in (b"P2", b"P5", b"P6"):
                return pnm_pixels(head, file)
            if head[:8] == b"\x89PNG\r\n\x1a\n":
                width, height = struct.unpack(">II", head[16:24])
                return width * height
            if head[:2] == b"\xff\xd8":
                return jpeg_pixels(file)
            if head[:2] in (b"II", b"MM"):
                return tiff_pixels(head, file)
    except (OSError, struct.error, LookupError, ValueError):
        pass
    return 0


def pnm_pixels(head, file):
    file.seek(0)
    lines = file.read(4096)[2:].split(b"\n")
    words = b" ".join(line for line in lines if not line.startswith(b"#")).split()
    pixels = max(0, int(words[0])) * max(0, int(words[1]))
    if head[:2] == b"P2":
        return pixels
    # A header can announce anything: no more than the file holds is ever read.
    return min(pixels, os.fstat(file.fileno()).st_size // (3 if head[:2] == b"P6" else 1))


def jpeg_pixels(file):
    file.seek(2)
    while True:
        marker, length = struct.unpack(">HH", file.read(4))
        if 0xFFC0 <= marker <= 0xFFCF and marker not in (0xFFC4, 0xFFC8, 0xFFCC):
            _, height, width = struct.unpack(">BHH", file.read(5))
            return width * height
        file.seek(length - 2, os.SEEK_CUR)


def tiff_pixels(head, file):
    order = "<" if head[:2] == b"II" else ">"
    is_big = struct.unpack(order + "H", head[2:4])[0] == 43
    start, count, entry = ("Q", "Q", "HHQ") if is_big else ("I", "H", "HHI")

    def read(form):
        return struct.unpack(order + form, file.read(struct.calcsize(order + form)))

    file.seek(struct.unpack(order + start, head[8:16] if is_big else head[4:8])[0])
    tags = {}
    for _ in range(read(count)[0]):
        tag, kind, _ = read(entry)
        value = file.read(8 if is_big else 4)
        tags[tag] = struct.unpack_from(order + {3: "H", 4: "I", 16: "Q"}.get(kind, "B"), value)[0]
    return tags[256] * tags[257]
