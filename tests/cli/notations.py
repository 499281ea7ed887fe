#!/usr/bin/env python3
"""Prints a report in the notations of several countries: the pages show the same figures and dates, written as each
country writes them, and data files hold the same numbers to the last bit.

usage: notations.py PROGRAM LAYOUTS DATABASE LIST [OPTION…]
"""
import json
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import zipfile

# Decimal sign, thousands separator, the order of a date written in numbers and its separator, True and False.
NOTATIONS = {
    "de-DE": (",", ".", "dmy", ".", "Wahr", "Falsch"),
    "de-AT": (",", "\u00a0", "dmy", ".", "Wahr", "Falsch"),
    "de-CH": (".", "’", "dmy", ".", "Wahr", "Falsch"),
    "en-US": (".", ",", "mdy", "/", "True", "False"),
    "fr-FR": (",", "\u202f", "dmy", "/", "Vrai", "Faux"),
}


def fail(text):
    sys.exit(f"{sys.argv[4]}: {text}")


def run(*command):
    result = subprocess.run([str(part) for part in command], capture_output=True, text=True)
    if result.returncode != 0:
        fail(f"{command}: exit code {result.returncode}, {result.stderr}")
    return result.stdout


def plain(text, notation):
    """The text of the pages without blanks, numbers without separators and with a decimal comma, dates as
    day·month·year."""
    decimal, thousands, order, separator, true, false = NOTATIONS[notation]
    text = re.sub(rf"\b{true}\b", "Wahr", re.sub(rf"\b{false}\b", "Falsch", text))

    def date(found):
        parts = dict(zip(order, found.groups()))
        return f"{int(parts['d'])}·{int(parts['m'])}·{parts['y']}"

    mark = re.escape(separator)
    text = re.sub(rf"(?<!\d)(\d\d?){mark}(\d\d?){mark}(\d{{4}})(?!\d)", date, text)

    def number(found):
        return found[0].replace(thousands, "").replace(decimal, ",")

    # A separator that is a blank parts a number into words: words are compared run together.
    if not thousands.isspace():
        text = re.sub(rf"\d+(?:{re.escape(thousands)}\d{{3}})*(?:{re.escape(decimal)}\d+)?", number, text)
    return "".join(text.split())


def numbers(value):
    """The numbers of a JSON document, with the names that lead to them."""
    if isinstance(value, dict):
        for name, inner in value.items():
            yield from ((f"{name}.{rest}", number) for rest, number in numbers(inner))
    elif isinstance(value, list):
        for index, inner in enumerate(value):
            yield from ((f"{index}.{rest}", number) for rest, number in numbers(inner))
    elif isinstance(value, (int, float)):
        yield "", float(value).hex()


def cells(workbook):
    with zipfile.ZipFile(workbook) as archive:
        for name in sorted(archive.namelist()):
            if name.startswith("xl/worksheets/sheet"):
                for cell, number in re.findall(r'<c r="(\w+)"[^>]*><v>([^<]*)</v>', archive.read(name).decode()):
                    yield name, cell, float(number).hex()


def compare(kind, notation, expected, found):
    if expected != found:
        at = next((i for i, pair in enumerate(zip(expected, found)) if pair[0] != pair[1]), min(len(expected), len(found)))
        fail(f"{kind} in {notation}: {found[max(0, at - 30):at + 30]!r} instead of {expected[max(0, at - 30):at + 30]!r}")


def main():
    program, layouts, database, report, *options = sys.argv[1:]
    expected = {}
    figures = 0
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        (folder / "app" / "DB").mkdir(parents=True)
        shutil.copytree(layouts, folder / "app" / "DB" / "BerichteLLVT")
        for notation in NOTATIONS:
            for kind in ("pdf", "json", "xlsx"):
                output = folder / f"{notation}.{kind}"
                run(program, "drucken", report, "--firma", "1", "--datenbank", database, "--ordner", folder / "app",
                    "--druckdatum", "28.02.2025 14:05", "--locale", notation, "--format", kind, "--ausgabe", output,
                    *options)
            found = {
                "page": plain(run("pdftotext", "-raw", folder / f"{notation}.pdf", "-"), notation),
                "JSON": list(numbers(json.loads((folder / f"{notation}.json").read_text(encoding="utf-8")))),
                "XLSX": list(cells(folder / f"{notation}.xlsx")),
            }
            for kind, values in found.items():
                compare(kind, notation, expected.setdefault(kind, values), values)
        figures = len(re.findall(r"\d,\d", expected["page"]))
    if not figures or not expected["JSON"] or not expected["XLSX"]:
        fail("nothing was compared")
    print(f"{report}: {figures} decimal figures on the pages, {len(expected['JSON'])} numbers in data files")


main()
