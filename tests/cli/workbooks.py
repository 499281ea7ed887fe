#!/usr/bin/env python3
"""workbooks.py KVTDRUCK LAYOUTS DATABASE VALUES: prints every list as a workbook and as JSON, opens the workbooks in
LibreOffice, which computes every formula itself, and compares.

- The records' sheets hold what the JSON holds, the tables' columns what the fields hold that they show.
- LibreOffice finds the results that the program wrote beside its formulas: it is given workbooks without them.
- The words of the headings are words of the page.
- Heads are frozen, rows can be filtered, each page repeats the headings.
"""
import csv
import json
import math
import pathlib
import re
import subprocess
import sys
import tempfile
import xml.etree.ElementTree as ElementTree
import zipfile

from layout_file import texts_of

MAIN = "{http://schemas.openxmlformats.org/spreadsheetml/2006/main}"
RELATIONS = "{http://schemas.openxmlformats.org/officeDocument/2006/relationships}"
HEAD = 5  # the row of headings, from 0

ACCOUNTS = {"Konten": {"Konto von": "VKonto", "Bezeichnung": "Bezeichnung", "März Soll": "MonatSoll", "Jahr Ist": "JWIst"}}
OVERVIEW = {"Betriebsübersicht": {"Bezeichnung": "Text", "Soll Betrag": "SDM", "Ist %": "IPR", "Abweichung Betrag": "DDM"}}
# Of some columns of each table the field that they show.
TABLES = {
    "Umsatz": {"Umsatz": {"Soll": "sUmsatzDM_", "Ist": "IUmsatzDM_"}},
    "MitUeber": {"Mitarbeiter": {"Nr.": "Nummer", "Name": "Name", "Ort": "Ort"}},
    "Firma": {"Feiertage": {"Feiertag": "Feiertag"}},
    "GemeinK": ACCOUNTS,
    "NeutralA": ACCOUNTS,
    "MaKost": {"Personalkosten": {"Name": "Name", "Bruttolohn Soll": "SBrutto", "Weihnachtsgeld Ist": "IWG"}},
    "MaZeit": {"Arbeitszeiten": {"Anw. Tage Soll": "SAnwTage", "Berechenbar Std Ist": "IBerStdJahr"}},
    "MaStKost": {"Monate": {"Brutto Soll": "SBrutto", "Rückstellung Ist": "IRueck"}},
    "MaStZeit": {"Monate": {"Anw. Std Ist": "IAnwStd", "Std je Tag Soll": "SBerStdTag"}},
    "KalkKo": {},
    "MatUeber": {"Monatswerte": {"Soll Betrag": "SUMMatDM_", "Ist %": "IUMMatpr_"}},
    "Bilanz": {},
    "BsEMa": {"Betriebsübersicht": {"Bezeichnung": "Text", "Ist je Mitarbeiter produktive": "IPMaDM"}},
    "BsEStd": OVERVIEW,
    "BsEGes": OVERVIEW,
    "KalkW": {"Verrechnungssatz": {"Soll Deckungsbeitrag": "SDB", "Ist Verrechnungssatz": "IVer"}},
    "WasWenn": {"Auswirkung": {"Größe": "Text", "Plan": "PDM"}},
    "UmsatzHW": {"Umsatz Handwerk": {"Taglohn": "Taglohn", "Saldo": "Saldo"}},
}
SELECTION = {"GemeinK": ["--jahr", "2024", "--monat", "3"], "NeutralA": ["--jahr", "2024", "--monat", "3"],
             "Umsatz": ["--von", "2023", "--bis", "2025"], "MaStKost": ["--mitarbeiter-von", "5", "--mitarbeiter-bis", "6"]}
# Some facts, by sheet and label: the cell in the column of that heading.
FACTS = {
    "Firma": [("Firmendaten", "Größe", "Urlaubstage", "Wert", lambda v: v["Urlaubstage"])],
    "KalkKo": [("Kosten", "Kostenart", "Abschreibungen", "je Monat", lambda v: v["DAfa"] / 12),
               ("Grundlagen", "Größe", "Eigenkapital", "Wert", lambda v: v["ZEK"])],
    "Bilanz": [("Bilanzkennzahlen", "Größe", "Gesamtkapitalrentabilität", "Wert",
                lambda v: (v["Gewinn"] + v["ZinsFK"]) / v["Bilanz"] * 100)],
    "KalkW": [("Grundlagen", "Größe", "Materialeinsatz", "Abweichung", lambda v: v["IMateinsatz"] - v["SMateinsatz"])],
    "WasWenn": [("Annahmen", "Größe", "Material", "Änderung %", lambda v: v["MatPr"])],
    "MaStKost": [("Kalkulation", "Kalkulation", "Bezahlte Std", "Ist", lambda v: v["IBezStd"])],
}


class Failure(Exception):
    pass


def demand(condition, text):
    if not condition:
        raise Failure(text)


def number(text):
    try:
        return float(text)
    except ValueError:
        return None


def same(left, right):
    left, right = "" if left is None else str(left), "" if right is None else str(right)
    numbers = number(left), number(right)
    if None not in numbers:
        return math.isclose(*numbers, rel_tol=1e-12, abs_tol=1e-7)
    return left == right


def sheets_of(book):
    """The sheets of a workbook by name: rows of cells, each its value and its formula."""
    with zipfile.ZipFile(book) as archive:
        workbook = ElementTree.fromstring(archive.read("xl/workbook.xml"))
        targets = {r.get("Id"): r.get("Target")
                   for r in ElementTree.fromstring(archive.read("xl/_rels/workbook.xml.rels"))}
        return {s.get("name"): ElementTree.fromstring(archive.read("xl/" + targets[s.get(RELATIONS + "id")]))
                for s in workbook.iter(MAIN + "sheet")}, workbook


def cells_of(sheet):
    rows = []
    for row in sheet.iter(MAIN + "row"):
        cells = []
        for cell in row.iter(MAIN + "c"):
            letters = re.match("[A-Z]+", cell.get("r")).group()
            place = 0
            for letter in letters:
                place = place * 26 + ord(letter) - ord("A") + 1
            cells += [("", None)] * (place - 1 - len(cells))
            formula = cell.find(MAIN + "f")
            value = cell.find(MAIN + "v")
            text = "".join(cell.itertext()) if cell.get("t") == "inlineStr" else "" if value is None else value.text or ""
            cells.append((text, None if formula is None else formula.text))
        rows.append(cells)
    return rows


def without_results(book, bare):
    """A copy of a workbook whose formulas have no results beside them, so that the reader must compute them."""
    with zipfile.ZipFile(book) as source, zipfile.ZipFile(bare, "w") as target:
        for name in source.namelist():
            target.writestr(name, re.sub(r"</f><v>[^<]*</v>", "</f>", source.read(name).decode()))


def opened_in_libreoffice(folder, books):
    """Every sheet of the books as LibreOffice sees it, by book and sheet."""
    # 59 ; 34 " 76 UTF-8; values as they are, not as they look; -1 all sheets
    # (https://help.libreoffice.org/latest/en-US/text/shared/guide/csv_params.html)
    subprocess.run(["soffice", f"-env:UserInstallation={(folder / 'profile').as_uri()}", "--headless", "--convert-to",
                    "csv:Text - txt - csv (StarCalc):59,34,76,1,,1033,false,false,false,false,false,-1", "--outdir",
                    folder / "csv", *books], check=True, stdout=subprocess.DEVNULL)
    sheets = {}
    for file in (folder / "csv").iterdir():
        book, sheet = file.stem.split("-", 1)
        with open(file, encoding="utf-8", newline="") as stream:
            sheets[book, sheet] = list(csv.reader(stream, delimiter=";"))
    return sheets


def column(rows, heading, formulas=False):
    """What stands below a heading, without the sums."""
    headings = [cell[0] for cell in rows[HEAD]]
    demand(heading in headings, f"no column {heading} in {headings}")
    place = headings.index(heading)
    body = [row for row in rows[HEAD + 1:] if not any(c[1] and c[1].startswith("SUBTOTAL") for c in row)]
    return [row[place][0] if place < len(row) else "" for row in body]


def check_records(name, sheets, data):
    for sheet, key in ("Variablen", "variablen"), ("Felder", "datensaetze"):
        expected = []
        for section in data["abschnitte"]:
            expected += [section[key]] if key == "variablen" else section[key]
        if not expected:
            continue
        rows = cells_of(sheets[sheet])
        names = [cell[0] for cell in rows[0]][1:]
        records = [row for row in rows if row[0][0] != "Abschnitt"]
        demand(len(records) == len(expected), f"{name}: {len(records)} records on {sheet} instead of {len(expected)}")
        for row, record in zip(records, expected):
            values = [cell[0] for cell in row][1:] + [""] * len(names)
            for key_, value in zip(names, values):
                demand(same(value, record[key_]), f"{name}: {sheet} {key_}: {value} is not {record[key_]}")


def check_tables(name, sheets, data):
    records = [record for section in data["abschnitte"] for record in section["datensaetze"]]
    for sheet, columns in TABLES[name].items():
        rows = cells_of(sheets[sheet])
        for heading, field in columns.items():
            if field.endswith("_"):
                expected = [record[f"{field}{month:02}"] for record in records for month in range(1, 13)]
            elif sheet == "Monate":
                expected = [record[field] for record in records if record["Monat"] != 13]
            else:
                expected = [record[field] for record in records]
            found = column(rows, heading)
            demand(len(found) == len(expected) and all(map(same, found, expected)),
                   f"{name}: {heading} is {found} instead of {expected}")
    for sheet, key, label, heading, compute in FACTS.get(name, []):
        rows = cells_of(sheets[sheet])
        place = column(rows, key).index(label)
        value = compute(data["abschnitte"][0]["variablen"])
        demand(same(column(rows, heading)[place], value), f"{name}: {label} is not {value}")


def check_look(name, sheets, workbook, layout):
    words = set(re.findall(r"[^\W\d_]{3,}", " ".join(texts_of(ElementTree.parse(layout).getroot()))))
    words |= {left + right.lower() for left in words for right in words if len(right) < 12}  # broken at a hyphen
    words |= {"Jahr", "Wert", "Bereich", "Größe", "Einheit", "Vorname", "Name", "Monat", "Bezeichnung", "März",
              "Geschäftsjahr", "Arbeitstage", "Konto", "PLZ"}
    for sheet, root in sheets.items():
        if sheet.startswith(("Variablen", "Felder")):
            continue
        demand(root.find(f".//{MAIN}pane").get("state") == "frozen", f"{name}: {sheet} is not frozen")
        demand(root.find(f"{MAIN}autoFilter") is not None, f"{name}: {sheet} has no filter")
        titles = [d.text for d in workbook.iter(MAIN + "definedName") if d.get("name") == "_xlnm.Print_Titles"]
        demand(f"'{sheet}'!$6:$6" in titles, f"{name}: {sheet} repeats no headings: {titles}")
        rows = cells_of(root)
        demand("Müller & Söhne GmbH" in rows[1][0][0] and "Firma 1" in rows[2][0][0], f"{name}: {sheet} has no head")
        for text, _ in rows[HEAD]:
            for word in re.findall(r"[^\W\d_]{3,}", text):
                demand(word in words, f"{name}: {sheet}: the page does not say {word}")


def main():
    program, layouts, database, values = sys.argv[1:]
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        books = {}
        for report in TABLES:
            fed = pathlib.Path(values, report + ".csv")
            more = ["--werte", fed] if fed.exists() else SELECTION.get(report, [])
            for ending in "json", "xlsx":
                subprocess.run([program, "drucken", report, "--datenbank", database, "--firma", "1", "--ordner",
                                folder / "app", "--ausgabe", folder / f"{report}.{ending}", *more], check=True)
            without_results(folder / f"{report}.xlsx", folder / f"{report}_.xlsx")
            books[report] = folder / f"{report}.xlsx"
        opened = opened_in_libreoffice(folder, [folder / f"{report}_.xlsx" for report in books])
        formulas = 0
        for report, book in books.items():
            data = json.loads((folder / f"{report}.json").read_text())
            sheets, workbook = sheets_of(book)
            check_records(report, sheets, data)
            check_tables(report, sheets, data)
            check_look(report, sheets, workbook, pathlib.Path(layouts, report + ".svg"))
            for sheet, root in sheets.items():
                seen = opened[f"{report}_", sheet]
                for row, cells in enumerate(cells_of(root)):
                    for place, (value, formula) in enumerate(cells):
                        there = seen[row][place] if row < len(seen) and place < len(seen[row]) else ""
                        formulas += formula is not None
                        date = re.fullmatch(r"\d\d\d\d-\d\d-\d\d|\d\d\.\d\d\.\d{4}|\d+/\d+/\d+", there)
                        demand(same(there, value) or (date and number(value)),
                               f"{report}, {sheet}, row {row + 1}, column {place + 1}: LibreOffice says {there}, "
                               f"the workbook {value} ({formula})")
        demand(formulas > 300, f"only {formulas} formulas")
    print(f"{len(books)} workbooks, {formulas} formulas")


if __name__ == "__main__":
    try:
        main()
    except Failure as failure:
        sys.exit(f"workbooks.py: {failure}")
