#!/usr/bin/python3
"""accessible.py PROGRAM LAYOUTS DATABASE VALUES [REPORT]: of the report, all that is printed is said, and a page looks like that
of a document without structure. Without a report: each fault that is planted into an accessible document is found, and another
reader finds its structure."""
import pathlib
import re
import shutil
import sqlite3
import subprocess
import sys
import tempfile

import pikepdf

import faults
from pdf_file import PdfFile
from said import said_in

LINK = "www.mueller-soehne.example"
MONTHLY = {"GemeinK", "NeutralA"}
BY_VALUES = {"Bilanz", "BsEMa", "BsEStd", "BsEGes", "KalkW", "WasWenn", "UmsatzHW"}
# A sheet for each employee, of whom a few are enough, and one for poppler, which draws a page again for each of its elements.
SHEETS = {"MaStKost", "MaStZeit"}
# What stands below each page, and what is carried from one to the next
FURNITURE = r"(Gedruckt am|Seite \d|Übertrag|Vortrag)"

# „Umsatz- erlöse“, but not „Sanitär- und Heizungsbau“
BROKEN = r"[^\W\d_]- (?!und |oder |bzw\.|bis )[a-zäöüß]"


class Printer:
    def __init__(self, program, layouts, database, values, scratch):
        self.program, self.database, self.values = program, database, pathlib.Path(values)
        self.folder = scratch / "folder"
        target = self.folder / "DB" / "BerichteLLVT"
        target.mkdir(parents=True)
        for layout in pathlib.Path(layouts).glob("*.svg"):
            (target / layout.name).write_bytes(layout.read_bytes())

    def print(self, report, to, *options, database=None, sheets=3):
        own = ["--werte", self.values / f"{report}.csv"] if report in BY_VALUES else []
        own += ["--jahr", "2024", "--monat", "3"] if report in MONTHLY else []
        own += ["--mitarbeiter-von", "1", "--mitarbeiter-bis", str(sheets)] if report in SHEETS else []
        subprocess.run([self.program, "drucken", report, "--datenbank", database or self.database, "--firma", "1", "--ordner",
                        self.folder, "--ausgabe", to, "--druckdatum", "2025-01-02 08:00+01:00", *own, *options],
                       check=True, capture_output=True)
        return to


def output_of(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def linked_document(printer, scratch):
    """With charts, tables, headings, and a link in the letterhead."""
    database = scratch / "linked.sqlite"
    shutil.copy(printer.database, database)
    with sqlite3.connect(database) as connection:
        connection.execute("UPDATE firma SET name2 = ?", [LINK])
    return printer.print("Umsatz", scratch / "linked.pdf", "--barrierefrei", "--jahr", "2024", database=database)


def said_by(path):
    """The texts of poppler's structure output, one for each element."""
    return re.findall(r'^\s*"(.*)"$', output_of("pdfinfo", "-struct-text", path), re.MULTILINE)


def structure_faults(path):
    """What another reader finds: the outline of one page."""
    shown = output_of("pdfinfo", "-struct-text", path)
    kinds = re.findall(r"^\s*(Document|Part|Sect|H\d|P|Figure|Table|THead|TBody|Link)\b", shown, re.MULTILINE)
    first = kinds[:kinds.index("H1") + 1]
    if kinds[:3] != ["Document", "Part", "Sect"] or "Link" not in first:
        yield f"the document begins with {first}"
    if not re.search(r'H1.*\n\s*"Umsatz"\n\s*" \d{4}"', shown):
        yield "the title is not the first heading"
    if not re.search(r'H2.*\n\s*"Umsatz je Monat"\n\s*Figure', shown):
        yield "the chart does not follow its heading"
    if not re.search(r'TH <\w+>:\n\s*/Scope /Row\n\s*"Januar"\n\s*TD:\n\s*/Headers \[\(\w+\) \(\w+\)\]', shown):
        yield "no row that is headed by its month"
    if shown.count(LINK) != 1:
        yield f"the letterhead is said {shown.count(LINK)} times"
    with pikepdf.open(path) as pdf:
        texts = [str(obj.Alt) for obj in pdf.objects if isinstance(obj, pikepdf.Dictionary) and obj.get("/S") == "/Figure"]
    if not any(re.fullmatch(r"Umsatz je Monat 2024: Balkendiagramm\. Soll: höchster \w+ [\d.,]+, niedrigster \w+ [\d.,]+; Ist: "
                            r"höchster Okt 196\.077,88, niedrigster \w+ [\d.,]+", text) for text in texts):
        yield f"the charts say {texts}"


def words_of(text):
    return set(re.findall(r"\w[\w.,]*\w|\w", text))


def broken_words(report, said):
    """A hyphen at the end of a line, and a blank, within a word."""
    for text in said:
        if re.search(BROKEN, text):
            yield f"{report}: broken: {text}"


def run_together(texts):
    """Words of charts are, and readers part a text in different places."""
    return re.sub(r"[-\s]", "", "".join(texts))


def silence(report, plain, accessible, said):
    """Every word of a page is said somewhere, but for furniture."""
    lines = output_of("pdftotext", "-layout", plain, "-").splitlines()
    shown = words_of("\n".join(line for line in lines if not re.search(FURNITURE, line)))
    with pikepdf.open(accessible) as pdf:
        figures = " ".join(str(obj.Alt) for obj in pdf.objects if isinstance(obj, pikepdf.Dictionary) and "/Alt" in obj)
    said = run_together([*said, figures])
    missing = {word for word in shown if word not in said}
    if missing:
        yield f"{report}: never said: {sorted(missing)[:20]}"


def pictures_of(path, folder):
    folder.mkdir()
    subprocess.run(["pdftoppm", "-r", "40", "-l", "4", path, folder / "page"], check=True)
    return [page.read_bytes() for page in sorted(folder.iterdir())]


def report_faults(printer, report, scratch):
    plain = printer.print(report, scratch / "plain.pdf")
    accessible = printer.print(report, scratch / "accessible.pdf", "--barrierefrei")
    again = printer.print(report, scratch / "again.pdf", "--barrierefrei")
    if accessible.read_bytes() != again.read_bytes():
        yield f"{report}: the same is not printed alike"
    said = said_in(PdfFile(accessible))
    yield from silence(report, plain, accessible, said)
    yield from broken_words(report, said)
    if pictures_of(plain, scratch / "plain") != pictures_of(accessible, scratch / "accessible"):
        yield f"{report}: looks different"
    if report in SHEETS:
        accessible = printer.print(report, scratch / "few.pdf", "--barrierefrei", sheets=1)
        said = said_in(PdfFile(accessible))
    if run_together(said_by(accessible)) != run_together(said):
        yield f"{report}: poppler says something else"


def main(program, layouts, database, values, report=None):
    with tempfile.TemporaryDirectory() as scratch:
        scratch = pathlib.Path(scratch)
        printer = Printer(program, layouts, database, values, scratch)
        if report:
            failures = list(report_faults(printer, report, scratch))
        else:
            linked = linked_document(printer, scratch)
            failures = faults.failures_of(linked, faults.ACCESSIBLE, scratch) + list(structure_faults(linked))
    print("\n".join(failures) or (f"{report}: all is said" if report else f"{len(faults.ACCESSIBLE)} faults, each found"))
    return len(failures)


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]) > 0 or len(faults.ACCESSIBLE) < 40)
