#!/usr/bin/python3
"""renderers.py FOLDER: poppler, MuPDF and Ghostscript draw the files of a folder alike: nowhere on their first and last pages
is a square of a few millimetres lighter or darker than with another, beyond what comes of smoothing edges in different ways.
A picture of this kind differs by more where a text is missing, bold instead of regular, or has moved by a letter."""
import pathlib
import re
import subprocess
import sys
import tempfile

import pikepdf
from PIL import Image, ImageChops, ImageFilter

RESOLUTION = 144
SQUARE = 16  # pixels: three millimetres
TOLERANCE = 36  # of 255


def draw(tool, pdf, page, target):
    """A page's picture, in which each pixel has the mean colour of the square around it."""
    commands = {
        "poppler": ["pdftoppm", "-r", RESOLUTION, "-singlefile", "-f", page, "-l", page, pdf, target.with_suffix("")],
        "mupdf": ["mutool", "draw", "-q", "-r", RESOLUTION, "-o", target, pdf, page],
        "ghostscript": ["gs", "-q", "-dSAFER", "-dBATCH", "-dNOPAUSE", "-sDEVICE=ppmraw", f"-r{RESOLUTION}", "-dTextAlphaBits=4",
                        "-dGraphicsAlphaBits=4", f"-dFirstPage={page}", f"-dLastPage={page}", f"-sOutputFile={target}", pdf],
    }
    run = subprocess.run([str(word) for word in commands[tool]], capture_output=True, text=True)
    if run.returncode != 0 or not target.exists():
        raise RuntimeError(f"{tool}: {run.stdout}{run.stderr}")
    return Image.open(target).filter(ImageFilter.BoxBlur(SQUARE / 2))


def difference(one, other):
    """The greatest difference of a square's mean colour, allowing for a pixel's shift."""
    size = (min(one.width, other.width), min(one.height, other.height))
    one, other = one.crop((0, 0, *size)), other.crop((0, 0, *size))
    if max(abs(one.width - other.width), abs(one.height - other.height)) > 1:
        return 255
    return max(high for _, high in ImageChops.difference(one, other).getextrema())


def without_a_text(pdf, target):
    """The document with one text of its first page left out, the longest."""
    with pikepdf.open(pdf) as file:
        page = file.pages[0]
        instructions = list(pikepdf.parse_content_stream(page))
        shown = [at for at, instruction in enumerate(instructions) if str(instruction.operator) in ("Tj", "TJ")]
        longest = max(shown, key=lambda at: len(pikepdf.unparse_content_stream([instructions[at]])))
        instructions[longest] = ([pikepdf.String("")], pikepdf.Operator("Tj"))
        page.Contents = file.make_stream(pikepdf.unparse_content_stream(instructions))
        file.save(target)


def pages_of(pdf):
    shown = subprocess.run(["pdfinfo", str(pdf)], capture_output=True, text=True, check=True).stdout
    return int(re.search(r"Pages: +(\d+)", shown)[1])


def main(folder):
    failures, greatest, count = 0, 0, 0
    with tempfile.TemporaryDirectory() as scratch:
        for pdf in sorted(pathlib.Path(folder).glob("*.pdf")):
            for page in sorted({1, pages_of(pdf)}, reverse=True):  # the first one's pictures are needed below
                images = {tool: draw(tool, pdf, page, pathlib.Path(scratch) / f"{pdf.stem}-{page}-{tool}.ppm")
                          for tool in ("poppler", "mupdf", "ghostscript")}
                for tool in ("mupdf", "ghostscript"):
                    found = difference(images["poppler"], images[tool])
                    greatest, count = max(greatest, found), count + 1
                    if found > TOLERANCE:
                        failures += 1
                        print(f"{pdf.name}, page {page}: {tool} differs from poppler by {found}")
            changed = pathlib.Path(scratch) / "changed.pdf"
            without_a_text(pdf, changed)
            found = difference(images["poppler"], draw("poppler", changed, 1, pathlib.Path(scratch) / "changed.ppm"))
            if found <= TOLERANCE:
                failures += 1
                print(f"{pdf.name}: a text that is missing makes a difference of {found} only")
    print(f"{count} comparisons, the greatest difference is {greatest} of 255, {failures} failures")
    return failures + (count == 0)


if __name__ == "__main__":
    sys.exit(main(sys.argv[1]) > 0)
