#!/usr/bin/python3
"""check.py FILE…: what a file promises in its metadata, and whether it keeps it. A line for each finding."""
import sys

from accessible_rules import LEVEL_A, PDFUAID, STRUCTURE, UA
from archive_rules import ARCHIVE, PDFAID, property_of
from pdf_file import PdfFile


def findings_of(file):
    """What is wrong with a PdfFile by the standards that it promises to keep."""
    standards = [ARCHIVE]
    if property_of(file, f"{PDFAID}conformance") == "A":
        standards += [LEVEL_A, STRUCTURE]
    if property_of(file, f"{PDFUAID}part") is not None:
        standards += [UA]
    return [finding for standard in standards for finding in standard.findings(file)]


def level_of(file):
    """What a PdfFile promises: "PDF/A-3u", "PDF/A-3a, PDF/UA-1", or nothing."""
    conformance = property_of(file, f"{PDFAID}conformance")
    part = property_of(file, f"{PDFUAID}part")
    return ", ".join(level for level in (conformance and f"PDF/A-3{conformance.lower()}", part and f"PDF/UA-{part}") if level)


if __name__ == "__main__":
    found = 0
    for path in sys.argv[1:]:
        file = PdfFile(path)
        for finding in findings_of(file):
            found += 1
            print(f"{path}: {finding.clause}: {finding.text}")
        print(path, level_of(file) or "plain")
    sys.exit(found > 0)
