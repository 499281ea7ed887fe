#!/usr/bin/python3
"""A document of 10,000 pages is what it promises: its structure as a whole, and the content of each hundredth page.

usage: long_document.py PROGRAM LAYOUTS SCHEMA
"""
import os
import pathlib
import re
import subprocess
import sys
import tempfile

sys.path.append(str(pathlib.Path(__file__).resolve().parent.parent / "cli"))

import hostile_data  # noqa: E402
from check import findings_of, level_of  # noqa: E402
from pdf_file import PdfFile  # noqa: E402

PAGES = 10_000
ROWS = 29 * PAGES  # of the account list, which has about that many on a page

# Strings, arrays and dictionaries end where they should (ISO 32000-1, 7.3.4, 7.3.6, 7.3.7).
STRING = rb"\((?:[^\\()]++|\\.)*+\)|<[0-9A-Fa-f]*+>"
CONTENT = re.compile(rb"(?:[^()<>\[\]]++|%b|\[(?:[^()<>\[\]]++|%b)*+\]|<<|>>)*+" % (STRING, STRING), re.DOTALL)


def main():
    program, layouts, schema = sys.argv[1:]
    with tempfile.TemporaryDirectory() as scratch:
        scratch = pathlib.Path(scratch)
        folder = scratch / "folder" / "DB" / "BerichteLLVT"
        folder.mkdir(parents=True)
        (folder / "GemeinK.svg").write_bytes((pathlib.Path(layouts) / "GemeinK.svg").read_bytes())
        own = hostile_data.Database(scratch / "own.sqlite", schema)
        own.fill("GemeinK", "Wort", ROWS)
        own.connection.close()
        pdf = scratch / "out.pdf"
        subprocess.run([program, "drucken", "GemeinK", "--datenbank", own.path, "--firma", "1", "--jahr", "2024", "--ordner",
                        scratch / "folder", "--ausgabe", pdf], check=True, capture_output=True)
        file = PdfFile(pdf, every=100)
        failures = [f"{finding.clause}: {finding.text}" for finding in findings_of(file)]
        pages = len(file.pages)
        if pages < PAGES:
            failures.append(f"only {pages} pages")
        if level_of(file) != "PDF/A-3u":
            failures.append(f"the level is „{level_of(file)}“")
        broken = [number for number, page in enumerate(file.pages, 1)
                  if not CONTENT.fullmatch(b"\n".join(part.read_bytes() for part in page.Contents))]
        if broken:
            failures.append(f"the contents of {len(broken)} pages can't be read, first that of {broken[0]}")
        # Every object and every stream is read; --check would, for 25 seconds, look at every word of the contents as well.
        check = subprocess.run(["qpdf", "--decode-level=all", "--stream-data=uncompress", pdf, os.devnull], capture_output=True,
                               text=True)
        if check.returncode != 0:
            failures.append(check.stdout + check.stderr)
    print("\n".join(failures) or f"{pages} pages as they say")
    return len(failures)


if __name__ == "__main__":
    sys.exit(main() > 0)
