#!/usr/bin/python3
"""derived.py PROGRAM LAYOUTS DATABASE VALUES: files that are put together (--mappe) or taken apart (--seiten) are what their
metadata say, and plain ones say nothing."""
import pathlib
import subprocess
import sys
import tempfile

from check import findings_of, level_of
from pdf_file import PdfFile

LISTS = ["Umsatz", "MitUeber", "KalkKo", "MaKost"]
CASES = {
    "binder": [*LISTS, "--firma", "1", "--mappe"],
    "pages": ["Umsatz", "--firma", "1", "--seiten", "2-3,5", "--ausgabe"],
    "pages with data": ["Umsatz", "--firma", "1", "--seiten", "1", "--beilage", "csv", "--ausgabe"],
    "pages of values": ["Bilanz", "--firma", "1", "--seiten", "1", "--werte", "Bilanz.csv", "--ausgabe"],
}


def failures_in(program, database, values, folder):
    for case, words in CASES.items():
        for level, options in (("PDF/A-3u", []), ("", ["--pdf", "einfach"])):
            pdf = folder / "out.pdf"
            subprocess.run([program, "drucken", *words, pdf, "--datenbank", database, "--ordner", folder, *options], check=True,
                           capture_output=True, cwd=values)
            file = PdfFile(pdf)
            if level_of(file) != level:
                yield f"{case}: the level is „{level_of(file)}“ and not „{level}“"
            if level:
                yield from (f"{case}: {finding.clause}: {finding.text}" for finding in findings_of(file))
            check = subprocess.run(["qpdf", "--check", pdf], capture_output=True, text=True)
            if check.returncode != 0:
                yield f"{case}: {check.stdout}{check.stderr}"


def main(program, layouts, database, values):
    with tempfile.TemporaryDirectory() as scratch:
        folder = pathlib.Path(scratch)
        own = folder / "DB" / "BerichteLLVT"
        own.mkdir(parents=True)
        for layout in pathlib.Path(layouts).iterdir():
            (own / layout.name).write_bytes(layout.read_bytes())
        failures = list(failures_in(pathlib.Path(program).resolve(), pathlib.Path(database).resolve(), values, folder))
    print("\n".join(failures) or f"{len(CASES)} kinds of files as they say")
    return len(failures)


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]) > 0)
