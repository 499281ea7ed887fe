#!/usr/bin/env python3
"""What Inkscape makes of every layout, from one start of it: OUT/LIST-saved.svg as it saves it, OUT/LIST.png as it draws it
without the frames of its bands, which are there for its author: the page, and below it as much of the canvas again.

usage: in_inkscape.py LAYOUTS OUT
"""
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import xml.etree.ElementTree

from layout_file import SVG

RESOLUTION = 127  # five points to the millimetre


def without_guides(layout, copy):
    tree = xml.etree.ElementTree.parse(layout)
    for rect in tree.iter(SVG + "rect"):
        if "band" in rect.get("class", "").split():
            rect.set("style", "stroke:none")
    tree.write(copy, encoding="utf-8")


def actions(layout):
    """Opens, saves and draws a layout; beside it, for what it shares with others is named by its place."""
    page = xml.etree.ElementTree.parse(layout).getroot()
    width, height = (float(page.get(side).removesuffix("mm")) / 25.4 * 96 for side in ("width", "height"))
    saved, copy, drawn = (layout.with_name(f"{layout.stem}{ending}") for ending in ("-saved.svg", "-free.svg", ".png"))
    without_guides(layout, copy)
    yield from (f"file-open:{layout}", f"export-filename:{saved}", "export-do", "file-close")
    yield from (f"file-open:{copy}", f"export-area:0:0:{width}:{2 * height}", f"export-dpi:{RESOLUTION}",
                "export-background:#ffffff", "export-background-opacity:1", f"export-filename:{drawn}", "export-do", "file-close")


def main(layouts, out):
    shutil.rmtree(out, ignore_errors=True)
    pathlib.Path(out).mkdir(parents=True)
    with tempfile.TemporaryDirectory() as scratch:
        folder = pathlib.Path(scratch) / "layouts"
        shutil.copytree(layouts, folder)
        names = [path.stem for path in sorted(folder.glob("[A-Z]*.svg"))]
        lines = [line for name in names for line in actions(folder / f"{name}.svg")]
        environment = {**os.environ, "HOME": scratch, "XDG_CONFIG_HOME": scratch}
        environment.pop("DISPLAY", None)
        run = subprocess.run(["inkscape", "--shell"], input="\n".join([*lines, "quit"]) + "\n", env=environment, capture_output=True,
                             text=True)
        made = [*folder.glob("*-saved.svg"), *folder.glob("*.png")]
        if run.returncode != 0 or len(made) != 2 * len(names) or not names:
            sys.exit(f"Inkscape has not drawn all: {run.stdout}{run.stderr}")
        for file in made:
            shutil.move(file, out)
    print(f"{len(names)} layouts")


if __name__ == "__main__":
    main(*sys.argv[1:])
