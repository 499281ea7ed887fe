#!/usr/bin/env python3
"""Prints a report with data that nobody hopes for and reads the boxes of its pages: nothing overlaps, nothing leaves the page,
nothing is cut without an ellipsis, no number is given up; with the sample company's data no text is smaller than 7 pt.

usage: page_boxes.py PROGRAM LAYOUTS SAMPLE_DATABASE SAMPLE_VALUES SCHEMA LIST
"""
import pathlib
import re
import subprocess
import sys
import tempfile

import hostile_data
from pdf_pages import Page, contents_of, middle, words_of

MARGIN = 5 * 72 / 25.4
OVERLAP = (0.6, 1.6)  # points, of boxes that only touch: a box holds room above and below its letters
SMALLEST_TEXT = 7
SAMPLE = 12  # pages from the beginning and from the end of a long print


def fail(text):
    sys.exit(f"{sys.argv[6]}: {text}")


def check_overlaps(name, number, words):
    """Words from the top; each is compared with those that begin before it ends."""
    words = sorted(words, key=lambda word: word.top)
    for at, word in enumerate(words):
        for other in words[at + 1:]:
            if other.top > word.bottom - OVERLAP[1]:
                break
            if min(word.right, other.right) - max(word.left, other.left) > OVERLAP[0]:
                fail(f"{name}, page {number}: „{word.text}“ and „{other.text}“ overlap")


def check_page(name, number, page, width):
    for word in page.words:
        if not (MARGIN < word.left and word.right < width - MARGIN and MARGIN < word.top
                and word.bottom < page.height - MARGIN):
            fail(f"{name}, page {number}: „{word.text}“ leaves the page")
        if "##" in word.text:
            fail(f"{name}, page {number}: a number does not fit: „{word.text}“")
    check_overlaps(name, number, page.words)
    check_cuts(name, number, page)


def check_cuts(name, number, page):
    """A long text is there to its end, goes on in a line below, or ends with an ellipsis."""
    runs = []
    for line in page.lines():
        for word in line:
            if runs and abs(middle(runs[-1][-1]) - middle(word)) < 1.5 and word.left - runs[-1][-1].right < 4:
                runs[-1].append(word)
            else:
                runs.append([word])
    for run in runs:
        text = " ".join(word.text for word in run)
        if not hostile_data.is_part_of_long_text(text) or text.endswith(("…", hostile_data.LONG_END)):
            continue
        if not any(0 < middle(other[0]) - middle(run[0]) < 20 and other[0].left < run[-1].right
                   and other[-1].right > run[0].left for other in runs):
            fail(f"{name}, page {number}: „{text}“ is cut")


def check_sizes(pdf):
    for content in contents_of(pdf):
        for size in re.findall(r"/F\d+ ([\d.]+) Tf", content):
            if float(size) < SMALLEST_TEXT:
                fail(f"a text of {size} pt")


def main():
    program, layouts, database, values, schema, report = sys.argv[1:]
    pages = 0
    with tempfile.TemporaryDirectory() as scratch:
        scratch = pathlib.Path(scratch)
        folder = scratch / "folder" / "DB" / "BerichteLLVT"
        folder.mkdir(parents=True)
        (folder / f"{report}.svg").write_bytes((pathlib.Path(layouts) / f"{report}.svg").read_bytes())
        pdf = scratch / "out.pdf"

        def printed(case):
            run = subprocess.run([program, "drucken", report, "--datenbank", case.database, "--firma", "1", "--ordner",
                                  scratch / "folder", "--ausgabe", pdf, *case.options], capture_output=True, text=True)
            if run.returncode != 0:
                fail(f"{case.name}: {run.stderr}")
            shown = subprocess.run(["pdfinfo", pdf], capture_output=True, text=True, check=True).stdout
            return int(re.search(r"Pages: +(\d+)", shown)[1])

        for case in hostile_data.cases(report, database, values, schema, scratch, printed):
            last = printed(case)
            if case.name == "sample":
                check_sizes(pdf)
            for begin, end in ((1, last),) if last <= 2 * SAMPLE else ((1, SAMPLE), (last - SAMPLE + 1, last)):
                for number, (width, height, words) in enumerate(words_of(pdf, begin, end), begin):
                    check_page(case.name, number, Page(height, words, [], []), width)
                    pages += 1
    print(f"{report}: {pages} pages without a flaw")


main()
