#!/usr/bin/python3
"""The data inside: what lies in the document is byte for byte what the data export writes, and its records are those that
the pages were printed from.

usage: attachment.py PROGRAM LAYOUTS SAMPLE_DATABASE SAMPLE_VALUES
"""
import csv
import io
import json
import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

import pikepdf

from check import findings_of, level_of
from pdf_file import PdfFile

PROGRAM, LAYOUTS, DATABASE, VALUES = sys.argv[1:]
KINDS = {"csv": "/text/csv", "json": "/application/json",
         "xlsx": "/application/vnd.openxmlformats-officedocument.spreadsheetml.sheet"}
REPORTS = {"Umsatz": [], "GemeinK": ["--von", "2023", "--bis", "2024", "--monat", "3"], "MaStKost": [], "Firma": [],
           "MitUeber": [], "WasWenn": ["--werte", f"{VALUES}/WasWenn.csv"]}
DATE = "2024-03-09 14:05Z"


class AttachmentTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def run_program(self, report, output, *options):
        layouts = self.folder / "app" / "DB" / "BerichteLLVT"
        layouts.mkdir(parents=True, exist_ok=True)
        (layouts / f"{report}.svg").write_bytes((pathlib.Path(LAYOUTS) / f"{report}.svg").read_bytes())
        return subprocess.run([PROGRAM, "drucken", report, "-d", DATABASE, "-f", "1", "--ordner", self.folder / "app", "-o",
                               self.folder / output, "--druckdatum", DATE, *options], capture_output=True, text=True,
                              env={**os.environ, "TMPDIR": str(self.folder)})

    def print(self, report, output, *options):
        run = self.run_program(report, output, *options)
        self.assertEqual(run.returncode, 0, run.stderr)
        return self.folder / output

    def test_what_lies_in_the_document_is_the_data_export(self):
        for report, options in REPORTS.items():
            for kind, name in KINDS.items():
                with self.subTest(f"{report}, {kind}"):
                    pdf = self.print(report, "out.pdf", "--beilage", kind, *options)
                    exported = self.print(report, f"out.{kind}", *options).read_bytes()
                    file = PdfFile(pdf)
                    filespec = file.root.AF[0]
                    self.assertEqual(filespec.AFRelationship, "/Data")
                    self.assertEqual(str(filespec.UF), f"{report}.{kind}")
                    self.assertEqual(filespec.EF.F.Subtype, name)
                    self.assertEqual(filespec.EF.F.Params.Size, len(exported))
                    self.assertEqual(filespec.EF.F.read_bytes(), exported)
                    self.assertEqual(findings_of(file), [])
                    self.assertEqual(level_of(file), "PDF/A-3u")

    def test_readers_give_it_out(self):
        pdf = self.print("GemeinK", "out.pdf", "--beilage", "csv", "--jahr", "2024")
        listed = subprocess.run(["pdfdetach", "-list", pdf], capture_output=True, text=True, check=True).stdout
        self.assertIn("1: GemeinK.csv", listed)
        subprocess.run(["pdfdetach", "-save", "1", "-o", self.folder / "taken.csv", pdf], check=True)
        lines = (self.folder / "taken.csv").read_text("utf-8-sig").splitlines()
        rows = list(csv.reader(io.StringIO("\n".join(lines)), delimiter=";"))
        heads = next(row for row in rows if row[0] == "Felder")
        records = [row for row in rows if row[0] == "F"]
        text = subprocess.run(["pdftotext", "-layout", pdf, "-"], capture_output=True, text=True, check=True).stdout
        self.assertGreater(len(records), 5)
        for record in records:
            self.assertIn(record[heads.index("Bezeichnung")], text)
            self.assertIn(record[heads.index("VKonto")], text)

    def test_each_record_once_though_pages_turn(self):
        pdf = self.print("MaStKost", "out.pdf", "--beilage", "json")
        with pikepdf.open(pdf) as file:
            text = json.dumps(json.loads(file.Root.AF[0].EF.F.read_bytes()))
            self.assertEqual(len(file.pages), 25)
        plain = json.dumps(json.loads(self.print("MaStKost", "out.json").read_bytes()))
        self.assertEqual(text, plain)

    def test_pages_are_those_without_it(self):
        with_data = pikepdf.open(self.print("GemeinK", "a.pdf", "--beilage", "csv"))
        without = pikepdf.open(self.print("GemeinK", "b.pdf"))
        self.assertEqual([[part.read_bytes() for part in page.Contents] for page in with_data.pages],
                         [[part.read_bytes() for part in page.Contents] for page in without.pages])

    def test_same_bytes_again(self):
        first = self.print("Umsatz", "out.pdf", "--beilage", "xlsx").read_bytes()
        self.assertEqual(first, self.print("Umsatz", "out.pdf", "--beilage", "xlsx").read_bytes())

    def test_the_database_is_read_once(self):
        record = self.folder / "calls.txt"
        self.print("GemeinK", "a.pdf", "--beilage", "csv", "--protokoll", record)
        calls = record.read_text()
        self.print("GemeinK", "b.pdf", "--protokoll", record)
        self.assertEqual(calls, record.read_text())

    def test_nothing_is_left_in_temporary_folders(self):
        self.print("Umsatz", "out.pdf", "--beilage", "csv")
        self.assertEqual(sorted(path.name for path in self.folder.iterdir()), ["app", "out.pdf"])

    def test_where_it_makes_no_sense_it_is_refused(self):
        for output, options in (("out.csv", ["--beilage", "csv"]), ("out.pdf", ["--beilage", "pdf"])):
            run = self.run_program("Umsatz", output, *options)
            self.assertEqual(run.returncode, 2)
            self.assertIn("--beilage", run.stderr)
            self.assertFalse((self.folder / output).exists())


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
