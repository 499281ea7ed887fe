#!/usr/bin/env python3
"""One style for all: a report that is printed with another colour in the user's own stil.css has that colour wherever it had
the old one, and is otherwise the same; its letterhead follows as well.

usage: one_style.py PROGRAM LAYOUTS DATABASE LIST [OPTION…]
"""
import pathlib
import subprocess
import sys
import tempfile

from pdf_pages import color_of, contents_of

OLD, NEW = "#1b3a5c", "#7a1f4d"


def fail(text):
    sys.exit(f"{sys.argv[4]}: {text}")


def contents(program, folder, database, report, options):
    pdf = folder / "out.pdf"
    run = subprocess.run([program, "drucken", report, "--datenbank", database, "--firma", "1", "--ordner", folder / "app",
                          "--druckdatum", "2025-01-31", "--ausgabe", pdf, *options], capture_output=True, text=True)
    if run.returncode != 0 or run.stderr:
        fail(run.stderr)
    return list(contents_of(pdf))


def main():
    program, layouts, database, report, *options = sys.argv[1:]
    with tempfile.TemporaryDirectory() as scratch:
        folder = pathlib.Path(scratch)
        before = contents(program, folder, database, report, options)
        own = folder / "app" / "DB" / "BerichteLLVT"
        own.mkdir(parents=True, exist_ok=True)
        style = (pathlib.Path(layouts) / "stil.css").read_text(encoding="utf-8")
        (own / "stil.css").write_text(style.replace(OLD, NEW), encoding="utf-8")
        after = contents(program, folder, database, report, options)
        old, new = color_of(OLD), color_of(NEW)
        if not all(old in page for page in before):
            fail(f"a page has nothing in {OLD}")
        if [page.replace(old, new) for page in before] != after:
            fail(f"{NEW} in stil.css is not all that changes")
        print(f"{report}: {sum(page.count(new) for page in after)} times {NEW} on {len(after)} pages")


main()
