#!/usr/bin/python3
"""said.py FILE: what an accessible document says, a line for each element, in the order in which it is read."""
import sys

from pdf_file import PdfFile
from structure import Structure


def said_in(file):
    structure = Structure(file)
    return [text for text in map(structure.said, structure.elements) if text]


if __name__ == "__main__":
    print("\n".join(said_in(PdfFile(sys.argv[1]))))
