# Copyright the Seedforest authors
# SPDX-License-Identifier: Apache-2.0
"""Reads and writes images of every format and depth with the programs in a folder, and with Pillow
as the judge of what is in the files:

    judge_formats.py FOLDER

Grey images go in through `seedforest-seeds labels`, which lists each pixel, and come out through
`seedforest-segment`, where each pixel is a seed; colours go through `seedforest-paint`.
"""
import os
import random
import subprocess
import sys
import tempfile

from PIL import Image

folder = sys.argv[1]
width, height = 13, 7


def run(program, *arguments):
    subprocess.run([os.path.join(folder, "seedforest-" + program), *arguments], check=True,
                   stderr=subprocess.DEVNULL)


def image_of(mode, values):
    image = Image.new(mode, (width, height))
    image.putdata(values)
    return image


def listed(path):
    """The pixels of a grey image as the programs see them."""
    run("seeds", path, "roots", "labels")
    with open("roots", encoding="ascii") as file:
        roots = [[int(word) for word in line.split()] for line in file.readlines()[1:]]
    pixels = [0] * (width * height)
    for x, y, label in roots:
        pixels[y * width + x] = label
    return pixels


def written(pixels, path):
    """The pixels of the grey image that the programs write."""
    with open("roots", "w", encoding="ascii") as file:
        print(len(pixels), file=file)
        for p, label in enumerate(pixels):
            print(p % width, p // width, label, file=file)
    run("segment", "blank.pgm", "roots", path)
    return list(Image.open(path).getdata())


def painted(path, out):
    """The colours of an image, painted with one region and so without a border."""
    run("paint", "--style", "borders", path, "one.pgm", out)
    return list(Image.open(out).getdata())


failures = 0


def expect_equal(what, found, wanted):
    global failures
    if list(found) != list(wanted):
        failures += 1
        print(f"{what}: {list(found)[:5]} ... where Pillow has {list(wanted)[:5]} ...")


def random_values(largest):
    return [random.randint(1, largest) for _ in range(width * height)]


def wide_image(values):
    return Image.frombytes("I;16", (width, height),
                           b"".join(value.to_bytes(2, "little") for value in values))


def judge_grey():
    for bits in 8, 16, 32:
        values = random_values(2 ** min(bits, 31) - 1)
        image = wide_image(values) if bits == 16 else image_of("L" if bits == 8 else "I", values)
        for compression in None, "tiff_lzw", "tiff_deflate", "tiff_adobe_deflate", "packbits":
            image.save("in.tif", compression=compression)
            expect_equal(f"TIFF {bits} {compression}", listed("in.tif"), values)
        for ending in ("pgm", "png", "tif") if bits < 32 else ("tif",):
            if bits < 32:
                (image if bits == 8 else image_of("I", values)).save("in." + ending)
                expect_equal(f"read {ending} {bits}", listed("in." + ending), values)
            expect_equal(f"written {ending} {bits}", written(values, "out." + ending), values)
    image_of("1", [v % 2 * 255 for v in random_values(9)]).save("in.png")
    expect_equal("PNG 1", listed("in.png"), Image.open("in.png").convert("L").getdata())
    smooth = image_of("L", [16 * (p % width) for p in range(width * height)])
    for options in {}, {"progressive": True}:
        smooth.save("in.jpg", **options)
        expect_equal(f"JPEG grey {options}", listed("in.jpg"), Image.open("in.jpg").getdata())


def judge_tiles():
    """Tiled TIFF, which Pillow does not write, by the tool of libtiff where it is installed."""
    values = random_values(65535)
    wide_image(values).save("in.tif")
    for options in ["-t", "-w", "16", "-l", "16"], ["-B"], ["-r", "3", "-c", "zip:2"]:
        try:
            subprocess.run(["tiffcp", *options, "in.tif", "copy.tif"], check=True)
        except FileNotFoundError:
            return
        expect_equal(f"tiffcp {options}", listed("copy.tif"), values)


def judge_colors():
    rgb = [tuple(random.randint(0, 255) for _ in range(3)) for _ in range(width * height)]
    image = image_of("RGB", rgb)
    palette = image.quantize(16)
    with_alpha = image.copy()
    with_alpha.putalpha(image.convert("L"))
    files = {"rgb.png": (image, {}), "palette.png": (palette, {}), "alpha.png": (with_alpha, {}),
             "transparent.png": (palette, {"transparency": 3}), "rgb.ppm": (image, {}),
             "rgb.tif": (image, {}), "rgb-lzw.tif": (image, {"compression": "tiff_lzw"}),
             "alpha.tif": (with_alpha, {}), "rgb.jpg": (image, {}),
             "progressive.jpg": (image, {"progressive": True, "subsampling": 0})}
    for name, (picture, options) in files.items():
        picture.save(name, **options)
        # transparent pixels keep their colours
        wanted = palette if "pal" in name or "transp" in name else Image.open(name)
        for out in "out.ppm", "out.png", "out.tif":
            expect_equal(f"{name} to {out}", painted(name, out), wanted.convert("RGB").getdata())


with tempfile.TemporaryDirectory() as scratch:
    os.chdir(scratch)
    random.seed(1)
    image_of("L", [0] * (width * height)).save("blank.pgm")
    image_of("L", [1] * (width * height)).save("one.pgm")
    judge_grey()
    judge_tiles()
    judge_colors()
print(f"{failures} differences")
sys.exit(1 if failures else 0)
