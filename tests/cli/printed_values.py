#!/usr/bin/env python3
"""Reads a printed report back: every value that its layout shows of every record stands on the record's page, in German
form, beside what the layout puts on the same line, records follow one another down the page, and no text is cut.

usage: printed_values.py PROGRAM LAYOUTS DATABASE DRAWN LIST [OPTION…], with what Inkscape saves in DRAWN, in_inkscape.py's

Prints the report with its layout and with the layout as Inkscape saves it, and compares. What the engine was given comes
from the program's own record of engine calls; numbers are formatted once more.
"""
import json
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

from german import german
from layout_file import SVG, layers_of, written

# Bands that show sums, or values of more than one record.
OTHER_BANDS = ("Gruppenkopf", "Gruppenfuß", "Summe", "Übertrag", "Vortrag", "Seitenfuß", "Feldliste")
# Conditions that are understood here: comparisons of a name with a text, a number or another name, with „und“ and „oder“
# between them.
COMPARISON = re.compile(r"(\w+) (=|<>|<|>) (?:'([^']*)'|(\d+)|([A-Za-z]\w*))")
ENGINE_NAMES = {"Seite", "Seiten", "Druckdatum", "Seitenzeile", "Zeile"}


def fail(text):
    sys.exit(f"{sys.argv[5]}: {text}")


def records_by_page(record):
    """The values that the layout sees with each printed record, page by page."""
    pages, values = [], {}
    for line in record.read_text(encoding="utf-8").splitlines():
        if define := re.fullmatch(r"LlDefine(?:Variable|Field)Ext\((.*)\) = 0", line):
            name, value, _ = json.loads("[" + define[1] + "]")
            values[name] = value
        elif line == "LlPrint() = 0":
            pages.append([])
        elif line == "LlPrintFields() = 0":
            pages[-1].append(dict(values))
    return pages


def shown_lines(layout):
    """For the line band and for what stands on every page: lines of fields from left to right, each its text with
    placeholders and its condition."""
    bands = {"Zeile": [], "Seite": []}
    for label, layer in layers_of(layout):
        if label.startswith(OTHER_BANDS) or layer.get("data-if"):
            continue
        for field in layer.iter(SVG + "g"):
            text = field.find(SVG + "text")
            if field.get("class") != "field" or text is None:
                continue
            words = written(text, field)
            names = re.findall(r"{{(\w+)(?:\|[^}]*)?}}", words)
            condition = condition_of(field.get("data-if"))
            if names and len(names) == words.count("{{") and not ENGINE_NAMES.intersection(names) and condition is not None:
                bands["Zeile" if label == "Zeile" else "Seite"].append(
                    (float(text.get("y")), float(text.get("x")), (words, condition)))
    return {band: list(grouped(sorted(texts, key=lambda item: item[:2]))) for band, texts in bands.items()}


def grouped(texts):
    line = []
    for y, x, text in texts:
        if line and y - line[0][0] > 1:
            yield [text for _, _, text in sorted(line, key=lambda item: item[1])]
            line = []
        line.append((y, x, text))
    if line:
        yield [text for _, _, text in sorted(line, key=lambda item: item[1])]


def condition_of(text):
    """A condition as alternatives, each a list of comparisons; None where it is not understood here."""
    alternatives = []
    for alternative in (text or "").split(" oder ") if text else []:
        alternatives.append([COMPARISON.fullmatch(part) for part in alternative.split(" und ")])
    return None if None in sum(alternatives, []) else alternatives


def compares(comparison, values):
    name, sign, word, figure, other = comparison.groups()
    value = values.get(name, "")
    wanted = values.get(other, "") if other else word or figure or ""
    if sign in "<>" and sign != "<>":
        value, wanted = (float(text.replace(",", ".")) for text in (value, wanted))
        return value < wanted if sign == "<" else value > wanted
    return (value == wanted) == (sign == "=")


def filled(field, values):
    """The text that a field shows of a record; empty where its condition does not hold."""
    text, alternatives = field
    if alternatives and not any(all(compares(part, values) for part in alternative) for alternative in alternatives):
        return ""
    shown = re.sub(r"{{(\w+)(?:\|([^}]*))?}}", lambda found: german(values.get(found[1], ""), found[2]), text)
    return re.sub(r"\s+", " ", shown).strip()


def holds(line, texts):
    at = 0
    for text in texts:
        at = line.find(text, at)
        if at < 0:
            return False
        at += len(text)
    return True


def check_page(number, text, records, bands):
    """Compares a page with its records; gives the number of values found."""
    lines = [re.sub(r"\s+", " ", line).strip() for line in text.splitlines()]
    count = 0
    for wanted in bands["Seite"]:
        texts = [shown for shown in (filled(field, records[0]) for field in wanted) if shown]
        if not any(holds(line, texts) for line in lines):
            fail(f"page {number} does not show {texts}\n{text}")
        count += len(texts)
    after = 0
    for values in records:
        for wanted in bands["Zeile"]:
            texts = [shown for shown in (filled(field, values) for field in wanted) if shown]
            place = next((i for i in range(after, len(lines)) if holds(lines[i], texts)), None)
            if place is None:
                fail(f"page {number} does not show {texts} after its line {after}\n{text}")
            after = place
            count += len(texts)
        after += 1 if bands["Zeile"] else 0
    return count


def text_of(pdf):
    return subprocess.run(["pdftotext", "-layout", pdf, "-"], capture_output=True, text=True, check=True).stdout


def main():
    program, layouts, database, drawn, report, *options = sys.argv[1:]
    with tempfile.TemporaryDirectory() as scratch:
        scratch = pathlib.Path(scratch)

        def printed(name, layout):
            folder = scratch / name / "DB" / "BerichteLLVT"
            folder.mkdir(parents=True)
            shutil.copy(layout, folder / f"{report}.svg")
            pdf = scratch / f"{name}.pdf"
            run = subprocess.run([program, "drucken", report, "--datenbank", database, "--firma", "1", "--ordner",
                                  scratch / name, "--ausgabe", pdf, "--protokoll", scratch / f"{name}.txt", *options],
                                 capture_output=True, text=True)
            if run.returncode != 0:
                fail(run.stderr)
            return pdf

        layout = pathlib.Path(layouts) / f"{report}.svg"
        pdf = printed("own", layout)
        pages = records_by_page(scratch / "own.txt")
        bands = shown_lines(layout)
        shown = text_of(pdf)
        printed_pages = shown.split("\f")[:-1]
        if len(printed_pages) < len(pages):
            fail(f"there are not {len(pages)} pages")
        count = sum(check_page(number, printed_pages[number - 1], records, bands)
                    for number, records in enumerate(pages, 1) if records)
        if count == 0:
            fail("the layout shows nothing that could be read back")
        if "…" in shown:
            fail("a text of the sample company is cut")
        for number, text in enumerate(printed_pages, 1):
            if f"Seite {number} von {len(printed_pages)}" not in text:
                fail(f"page {number} of {len(printed_pages)} is not numbered")

        saved = pathlib.Path(drawn) / f"{report}-saved.svg"
        if "sodipodi" not in saved.read_text(encoding="utf-8"):
            fail("Inkscape has not saved the layout as its own")
        if text_of(printed("saved", saved)) != shown:
            fail("the layout does not print the same after Inkscape has saved it")
        print(f"{report}: {count} values on {len(pages)} pages")


main()
