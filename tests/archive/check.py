#!/usr/bin/python3
"""check.py FILE…: what a file promises in its metadata, and whether it keeps it. A line for each finding."""
import sys

from archive_rules import ARCHIVE, PDFAID, property_of
from pdf_file import PdfFile


def findings_of(path, every=1):
    file = PdfFile(path, every)
    return list(ARCHIVE.findings(file))


def level_of(path):
    """What the file promises: "PDF/A-3u", or nothing."""
    conformance = property_of(PdfFile(path), f"{PDFAID}conformance")
    return f"PDF/A-3{conformance.lower()}" if conformance else ""


if __name__ == "__main__":
    found = 0
    for path in sys.argv[1:]:
        for finding in findings_of(path):
            found += 1
            print(f"{path}: {finding.clause}: {finding.text}")
        print(path, level_of(path) or "plain")
    sys.exit(found > 0)
