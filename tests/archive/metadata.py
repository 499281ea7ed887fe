#!/usr/bin/python3
"""What archives and readers find of a document without looking at its pages: title, subject, keywords, dates with their
zone, bookmarks, named destinations, links; the colours that it names are sRGB; the plain file has none of the archive's.

usage: metadata.py PROGRAM LAYOUTS SAMPLE_DATABASE FOLDER, with every report of the sample company in FOLDER
"""
import io
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

import pikepdf
from PIL import Image, ImageCms

from check import level_of
from pdf_file import PdfFile

PROGRAM, LAYOUTS, DATABASE, PRINTED = sys.argv[1:]
DATE = "2024-03-09 14:05+01:00"


class Metadata(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def print(self, report, *options, zone="Europe/Berlin"):
        layouts = self.folder / "app" / "DB" / "BerichteLLVT"
        layouts.mkdir(parents=True, exist_ok=True)
        if not (layouts / f"{report}.svg").exists():
            shutil.copy(pathlib.Path(LAYOUTS) / f"{report}.svg", layouts)
        self.layout = layouts / f"{report}.svg"
        pdf = self.folder / "out.pdf"
        run = subprocess.run([PROGRAM, "drucken", report, "-d", DATABASE, "-f", "1", "--ordner", self.folder / "app",
                              "-o", pdf, *options], capture_output=True, text=True, env={**os.environ, "TZ": zone})
        self.assertEqual(run.returncode, 0, run.stderr)
        return pdf

    def test_says_what_it_is(self):
        info = pikepdf.open(self.print("Umsatz", "--jahr", "2024", "--druckdatum", DATE)).trailer.Info
        self.assertEqual(str(info.Title), "Umsatz 2024 – Müller & Söhne GmbH")
        self.assertEqual(str(info.Author), "Müller & Söhne GmbH")
        self.assertEqual(str(info.Subject), "Firma 1 · Jahr 2024; gedruckt am 09.03.2024 um 14:05")
        self.assertEqual(str(info.Keywords), "Umsatz, Müller & Söhne GmbH, 2024")
        self.assertEqual(str(info.CreationDate), "D:20240309140500+01'00'")

    def test_selections_are_named(self):
        pdf = self.print("GemeinK", "--von", "2023", "--bis", "2024", "--konto-von", "4100", "--monat", "3", "--druckdatum", DATE)
        info = pikepdf.open(pdf).trailer.Info
        self.assertEqual(str(info.Title), "Gemeinkosten 2023–2024 – Müller & Söhne GmbH")
        self.assertEqual(str(info.Subject),
                         "Firma 1 · Jahre 2023–2024 · Konten ab 4100 · Monat 3; gedruckt am 09.03.2024 um 14:05")

    def test_the_zone_is_that_of_the_date(self):
        for date, zone, expected in (("9.7.2024 14:05", "Europe/Berlin", "D:20240709140500+02'00'"),
                                     ("9.3.2024 14:05", "Europe/Berlin", "D:20240309140500+01'00'"),
                                     ("9.3.2024", "America/St_Johns", "D:20240309000000-03'30'"),
                                     ("2024-03-09T14:05Z", "Europe/Berlin", "D:20240309140500+00'00'")):
            pdf = self.print("Bilanz", "--werte", pathlib.Path(LAYOUTS).parent / "demo/werte/Bilanz.csv", "--druckdatum", date,
                             zone=zone)
            self.assertEqual(str(pikepdf.open(pdf).trailer.Info.ModDate), expected)

    def test_same_bytes_wherever_the_zone_is_given(self):
        options = ("Umsatz", "--jahr", "2024", "--druckdatum", DATE)
        self.assertEqual(self.print(*options).read_bytes(), self.print(*options, zone="Asia/Tokyo").read_bytes())

    def test_plain_file_has_nothing_of_the_archive(self):
        pdf = self.print("Umsatz", "--pdf", "einfach")
        self.assertEqual(level_of(PdfFile(pdf)), "")
        root = pikepdf.open(pdf).Root
        self.assertNotIn("/Metadata", root)
        self.assertNotIn("/OutputIntents", root)
        self.assertLess(self.print("Umsatz").stat().st_size - self.print("Umsatz", "--pdf", "einfach").stat().st_size, 10_000)

    def test_every_report_has_bookmarks_and_destinations(self):
        files = sorted(pathlib.Path(PRINTED).glob("*.pdf"))
        self.assertEqual(len(files), 18)
        for file in files:
            with self.subTest(file.stem), pikepdf.open(file) as pdf:
                titles = [item.title for item in pdf.open_outline().root]
                self.assertTrue(titles)
                names = pikepdf.NameTree(pdf.Root.Names.Dests)
                pages = [page.objgen for page in pdf.pages]
                self.assertIn(titles[0], list(names))
                for destination in names.values():
                    self.assertIn(destination[0].objgen, pages)

    def test_addresses_are_links(self):
        self.print("Umsatz")
        text = self.layout.read_text(encoding="utf-8")
        at = text.index(">", text.index('inkscape:label="Seitenkopf"')) + 1
        # Behind the brackets and the full stop of a sentence; cut off, it is none; nor is what only looks like one.
        lines = ("(siehe www.kvt-druck.de/a?b=1&amp;c).", "Post: info@kvt-druck.de", "https://kvt-druck.de", "a@b, www.x, 3.14, büro@müller.de")
        shown = "".join(f'<text x="20" y="{60 + 5 * number}">{line}</text>' for number, line in enumerate(lines))
        cut = '<g class="field"><rect x="20" y="85" width="20" height="5" class="rahmen"/><text x="20" y="89">www.kvt-druck.de/zu-lang-fuer-das-feld</text></g>'
        self.layout.write_text(text[:at] + shown + cut + text[at:], encoding="utf-8")
        file = PdfFile(self.print("Umsatz", "--jahr", "2024"))
        links = file.pages[0].Annots
        self.assertEqual([str(link.A.URI) for link in links],
                         ["http://www.kvt-druck.de/a?b=1&c", "mailto:info@kvt-druck.de", "https://kvt-druck.de"])
        box = [float(number) for number in links[1].Rect]
        words = subprocess.run(["pdftotext", "-bbox", self.folder / "out.pdf", "-"], capture_output=True, text=True).stdout
        left, right = (float(words.split(f'{name}="')[1].split('"')[0])
                       for name, words in ((name, words[:words.index(">info@")].rsplit("<word", 1)[1]) for name in ("xMin", "xMax")))
        self.assertAlmostEqual(box[0], left, delta=0.5)
        self.assertAlmostEqual(box[2], right, delta=0.5)

    def test_the_profile_is_srgb(self):
        data = PdfFile(self.print("Umsatz")).profile.read_bytes()
        own = ImageCms.ImageCmsProfile(io.BytesIO(data))
        image = Image.new("RGB", (16, 16))
        image.putdata([(red * 17, green * 17, (red + green) * 8) for red in range(16) for green in range(16)])
        there = ImageCms.profileToProfile(image, own, ImageCms.createProfile("sRGB"))
        for before, after in zip(image.getdata(), there.getdata()):
            for one, other in zip(before, after):
                self.assertLessEqual(abs(one - other), 1, (before, after))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
