#!/usr/bin/env python3
"""What a layout shows in Inkscape is what it prints: the page's head, one row, the page's foot and every chart, compared as
pictures with the sample company's print.

usage: canvas_pictures.py PROGRAM LAYOUTS DATABASE DRAWN LIST [OPTION…], with what Inkscape draws in DRAWN, in_inkscape.py's
"""
import pathlib
import shutil
import subprocess
import sys
import tempfile

from PIL import Image, ImageChops, ImageFilter, ImageStat

from in_inkscape import RESOLUTION
from layout_file import SVG, layers_of

MILLIMETRE = RESOLUTION / 25.4
# What two renderers make of the same page: the mean difference of an area in shades of 256, and the largest anywhere in it,
# each point taken together with those around it.
MEAN = 3
LARGEST = 25
AROUND = 4  # points
# Bands that stand somewhere else on the page than on the canvas. A line as tall as the page, or a page's band, does not.
FLOWING = ("Gruppen", "Summe", "Übertrag", "Vortrag")


def fail(text):
    sys.exit(f"{sys.argv[5]}: {text}")


def printed(program, database, report, options, scratch, whole):
    """The pages of the print, or the first one alone."""
    pdf = scratch / "printed.pdf"
    run = subprocess.run([program, "drucken", report, "--datenbank", database, "--firma", "1", "--ordner", scratch / "app",
                          "--druckdatum", "2025-01-31", "--ausgabe", pdf, *options], capture_output=True, text=True)
    if run.returncode != 0:
        fail(run.stderr)
    subprocess.run(["pdftoppm", "-r", str(RESOLUTION), "-gray", *([] if whole else ["-l", "1"]), pdf, scratch / "page"],
                   check=True)
    return [Image.open(page) for page in sorted(scratch.glob("page*.pgm"))]


def box_of(rect):
    x, y, width, height = (float(rect.get(name)) for name in ("x", "y", "width", "height"))
    return x, y, x + width, y + height


def areas_of(layout):
    """What stands on the first page where it is drawn, and charts that stand where their bands end up."""
    bottom, footer, charts = None, None, []
    for label, layer in layers_of(layout):
        band = next((rect for rect in layer.iter(SVG + "rect") if "band" in rect.get("class", "").split()), None)
        if label == "Zeile":
            bottom = box_of(band)[3] - 0.5  # what is drawn on its lower edge belongs to the next band
        if label == "Seitenfuß":
            footer = box_of(band)
        for element in layer.iter(SVG + "g"):
            if "chart" in element.get("class", "").split() and element.get("display") != "none":
                charts.append((label, box_of(element.find(SVG + "rect"))))
    return bottom, footer, charts


def crop(picture, box, down=0):
    left, top, right, bottom = (round(side * MILLIMETRE) for side in box)
    return picture.crop((left, top + down, right, bottom + down))


def difference(one, other):
    """The mean and the largest."""
    blurred = [picture.filter(ImageFilter.GaussianBlur(AROUND)) for picture in (one, other)]
    statistic = ImageStat.Stat(ImageChops.difference(*blurred))
    return statistic.mean[0], statistic.extrema[0][1]


def compare(what, one, other):
    mean, largest = difference(one, other)
    print(f"{sys.argv[5]}: {what}: {mean:.2f} on average, {largest:.0f} at most")
    if mean > MEAN or largest > LARGEST:
        for name, picture in (("drawn", one), ("printed", other)):
            picture.save(f"canvas-{sys.argv[5]}-{what.split()[0]}-{name}.png")
        fail(f"{what} looks different in Inkscape and in print: {mean:.2f} on average, {largest:.0f} at most")


def place_of(chart, box, pages):
    """Page and shift, in points of the picture, where the chart is nearest to what is drawn: found on smaller pictures first."""
    def nearest(drawn, places):
        there = [(ImageStat.Stat(ImageChops.difference(drawn, page.crop((left, top, left + drawn.width, top + drawn.height)))).mean[0],
                  number, top) for number, page, left, top in places if 0 <= top <= page.height - drawn.height]
        return min(there)[1:]

    left, top = round(box[0] * MILLIMETRE), round(box[1] * MILLIMETRE)
    small = [page.reduce(4) for page in pages]
    number, near = nearest(chart.reduce(4), [(number, page, left // 4, down) for number, page in enumerate(small)
                                             for down in range(page.height)])
    number, found = nearest(chart, [(number, pages[number], left, 4 * near + down) for down in range(-6, 7)])
    return pages[number], found - top


def main():
    program, layouts, database, drawn, report, *options = sys.argv[1:]
    with tempfile.TemporaryDirectory() as scratch:
        scratch = pathlib.Path(scratch)
        folder = scratch / "app" / "DB" / "BerichteLLVT"
        shutil.copytree(layouts, folder)
        layout = folder / f"{report}.svg"
        picture = Image.open(pathlib.Path(drawn) / f"{report}.png").convert("L")
        bottom, footer, charts = areas_of(layout)
        flows = any(label.startswith(FLOWING) for label, _ in charts)
        pages = printed(program, database, report, options, scratch, flows)
        head = (0, 0, picture.width / MILLIMETRE, bottom or footer[1])
        compare("head and row", *(crop(image, head) for image in (picture, pages[0])))
        compare("foot of the page", *(crop(image, footer) for image in (picture, pages[0])))
        for number, (label, box) in enumerate(charts, 1):
            chart = crop(picture, box)
            page, down = place_of(chart, box, pages) if label.startswith(FLOWING) else (pages[0], 0)
            compare(f"chart{number} in {label}", chart, crop(page, box, down))


main()
