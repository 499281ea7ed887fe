"""extension.py PROGRAM SCRIPTS ENTRIES DATABASE: tries the Inkscape extension.

A page is drawn with nothing but the extension's actions, saved as an own layout and printed. The window is filled in by
the test, and Inkscape itself runs an action.
"""
import os
import pathlib
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import unittest
import xml.etree.ElementTree as ElementTree

PROGRAM, SCRIPTS, ENTRIES, DATABASE = map(pathlib.Path, sys.argv[1:5])
INKEX = "/usr/share/inkscape/extensions"
SVG = "{http://www.w3.org/2000/svg}"
LABEL = "{http://www.inkscape.org/namespaces/inkscape}label"
EMPTY = """<svg xmlns="http://www.w3.org/2000/svg" xmlns:inkscape="http://www.inkscape.org/namespaces/inkscape"
    xmlns:sodipodi="http://sodipodi.sourceforge.net/DTD/sodipodi-0.dtd" width="210mm" height="297mm"
    viewBox="0 0 210 297"><sodipodi:namedview id="view"/></svg>"""

place = tempfile.TemporaryDirectory()
ROOT = pathlib.Path(place.name)
EXTENSION = ROOT / "share/inkscape/extensions/kvtdruck"
ENVIRONMENT = {**os.environ, "PATH": "/usr/bin:/bin", "PYTHONPATH": INKEX, "XDG_DATA_HOME": str(ROOT / "data"),
               "XDG_CONFIG_HOME": str(ROOT / "config"), "LANG": "C.UTF-8", "PYTHONDONTWRITEBYTECODE": "1"}


def install():
    """The shape in which the program and the extension are installed."""
    EXTENSION.mkdir(parents=True)
    (ROOT / "bin").mkdir()
    (ROOT / "bin/kvtdruck").symlink_to(PROGRAM)
    for file in [*SCRIPTS.glob("*.py"), *ENTRIES.glob("*.inx")]:
        shutil.copy(file, EXTENSION)


def run(*command, **more):
    return subprocess.run([str(word) for word in command], capture_output=True, encoding="utf-8", timeout=300,
                          check=False, **{"env": ENVIRONMENT, **more})


class Document:
    """A drawing that the extension works on."""

    def __init__(self, name="GemeinK", content=EMPTY):
        self.file = ROOT / f"{name}.svg"
        self.file.write_text(content, encoding="utf-8")

    def act(self, action, *arguments, chosen=()):
        """Runs an action, which changes the file; gives what it says."""
        out = ROOT / "out.svg"
        result = run("/usr/bin/python3", EXTENSION / "kvtdruck_layout.py", f"--action={action}", *arguments,
                     *[f"--id={name}" for name in chosen], "--output", out, self.file,
                     env={**ENVIRONMENT, "DOCUMENT_PATH": str(self.file), "DISPLAY": ""})
        if "Traceback" in result.stderr:
            raise AssertionError(result.stderr)
        if result.returncode == 0 and out.is_file() and out.stat().st_size:
            shutil.move(out, self.file)
            self.name_all()
        return result.stderr.strip()

    def name_all(self):
        """Every element has an id, as after Inkscape has opened the file."""
        tree = ElementTree.parse(self.file)
        for number, element in enumerate(tree.iter()):
            if not element.get("id"):
                element.set("id", f"element{number}")
        tree.write(self.file, encoding="utf-8", xml_declaration=True)

    def root(self):
        return ElementTree.parse(self.file).getroot()

    def groups(self, css_class):
        return [group for group in self.root().iter(SVG + "g") if group.get("class") == css_class]

    def layer(self, label):
        return next(group for group in self.root().iter(SVG + "g") if group.get(LABEL) == label)


class ExtensionTest(unittest.TestCase):
    def silently(self, said):
        self.assertEqual(said, "")

    def kvtdruck(self, *arguments):
        return run(ROOT / "bin/kvtdruck", *arguments)

    def test_a_page_that_is_drawn_with_it_prints(self):
        page = Document()
        self.silently(page.act("band", "--band=Seitenkopf"))
        self.silently(page.act("field", "--name=Ueberschrift"))
        self.silently(page.act("band", "--band=Zeile"))
        self.silently(page.act("field", "--name=EKonto", "--name=Bezeichnung", "--name=JWSoll", "--name=JWIst"))
        self.silently(page.act("band", "--band=Summe"))
        self.silently(page.act("chart", "--chart=bars", "--name=JWSoll", "--name=JWIst"))
        self.silently(page.act("band", "--band=Seitenfuß"))
        actual = page.groups("field")[-1]
        self.assertEqual(actual.find(SVG + "text").text, "{{JWIst|#.##0,00}}")
        self.silently(page.act("pattern", "--pattern=#.##0", chosen=[actual.find(SVG + "text").get("id")]))
        self.silently(page.act("condition", "--condition=JWIst > 10000", chosen=[actual.find(SVG + "rect").get("id")]))
        self.assertEqual(page.groups("field")[-1].get("data-if"), "JWIst > 10000")
        self.assertEqual(page.act("check"), "Das Layout der Liste GemeinK ist in Ordnung.")

        layouts = ROOT / "data/kvtdruck/DB/BerichteLLVT"
        layouts.mkdir(parents=True, exist_ok=True)
        shutil.copy(page.file, layouts / "GemeinK.svg")
        pdf = ROOT / "page.pdf"
        printed = self.kvtdruck("drucken", "GemeinK", "-d", DATABASE, "-f", "1", "-j", "2024", "-o", pdf)
        (layouts / "GemeinK.svg").unlink()
        self.assertEqual((printed.returncode, printed.stderr), (0, ""))
        text = run("pdftotext", "-layout", pdf, "-").stdout
        self.assertIn("Gemeinkosten", text)
        self.assertIn("Soll des Jahres", text)  # the chart's legend
        rows = re.findall(r"^ *(\d{4}) +(\S.*?) {2,}([\d.]+,\d\d)( +[\d.]+)? *$", text, re.MULTILINE)
        self.assertGreater(len(rows), 5, text)
        amounts = [int(row[3].replace(".", "")) for row in rows if row[3]]
        self.assertTrue(amounts and len(amounts) < len(rows), "the condition holds for some")
        self.assertTrue(all(amount > 10000 for amount in amounts), amounts)

    def test_a_chosen_rectangle_becomes_the_frame(self):
        page = Document("Umsatz", EMPTY.replace("<sodipodi", """<g inkscape:groupmode="layer" inkscape:label="Zeile"
            id="zeile"><rect class="band" x="0" y="0" width="210" height="200"/><rect id="hier" x="30" y="40" width="50"
            height="7" transform="translate(5,6)"/></g><sodipodi""").replace('id="view"',
            'id="view" inkscape:current-layer="zeile"'))
        self.silently(page.act("field", "--name=FnrName1", chosen=["hier"]))
        field, = page.groups("field")
        self.assertEqual(field.get("transform").replace(" ", ""), "translate(5,6)")
        self.assertEqual(field.find(SVG + "rect").get("id"), "hier")
        self.assertEqual((field.find(SVG + "text").get("x"), field.find(SVG + "text").text), ("30", "{{FnrName1}}"))
        self.assertEqual(page.act("check"), "Das Layout der Liste Umsatz ist in Ordnung.")

    def test_twelve_months_are_one_series(self):
        page = Document("Umsatz")
        self.silently(page.act("band", "--band=Zeile"))
        names = [f"--name={stem}UmsatzDM_{month:02}" for stem in "sI" for month in range(1, 13)]
        self.silently(page.act("chart", "--chart=lines", *names))
        chart, = page.groups("chart")
        self.assertEqual(chart.get("data-series"), "sUmsatzDM_01..12; IUmsatzDM_01..12")
        self.assertEqual(chart.get("data-legend"), "Umsatz Soll; Umsatz Ist")
        self.assertEqual(len(chart.get("data-labels").split(";")), 12)
        self.assertIsNone(chart.get("data-rows"))

    def test_a_group_needs_its_key(self):
        page = Document("MaKost")
        self.assertIn("braucht den Namen", page.act("band", "--band=Gruppenkopf"))
        self.silently(page.act("band", "--band=Gruppenkopf", "--key=Nummer"))
        self.assertEqual(page.layer("Gruppenkopf Nummer").get("data-on"), "Nummer")
        self.assertIn("gibt es schon", page.act("band", "--band=Gruppenkopf", "--key=Nummer"))
        self.silently(page.act("band", "--band=Gruppenkopf", "--key=FJahr"))

    def test_patterns_reach_labels_expressions_and_pieces(self):
        page = Document("Umsatz", EMPTY.replace("<sodipodi", """<g inkscape:groupmode="layer" inkscape:label="Zeile">
            <text id="a" inkscape:label="{{IUmsatzDM|0}}">1234</text><text id="b"><tspan>Soll {{=sUmsatzDM/2|0}} EUR</tspan>
            </text><text id="c"><tspan>{{sUms</tspan><tspan>atzDM}}</tspan></text><text id="d">Worte</text>
            <g class="field" id="f" inkscape:label="{{sUmsatzDM|0}}"><rect width="30" height="5"/><text id="e">99</text></g></g>
            <sodipodi"""))
        self.silently(page.act("pattern", "--pattern=#.##0,0", chosen=["a", "b", "e"]))
        field, = page.groups("field")
        self.assertEqual((field.get(LABEL), "".join(field.itertext()).strip()), ("{{sUmsatzDM|#.##0,0}}", "99"))
        texts = {text.get("id"): text for text in page.root().iter(SVG + "text")}
        self.assertEqual((texts["a"].get(LABEL), texts["a"].text), ("{{IUmsatzDM|#.##0,0}}", "1234"))
        self.assertEqual("".join(texts["b"].itertext()).strip(), "Soll {{=sUmsatzDM/2|#.##0,0}} EUR")
        self.assertIn("auf mehrere Textteile verteilt", page.act("pattern", "--pattern=0", chosen=["c"]))
        self.assertIn("kein Platzhalter", page.act("pattern", "--pattern=0", chosen=["d"]))
        self.assertIn("Zuerst die Felder wählen", page.act("pattern", "--pattern=0"))

    def test_what_is_wrong_is_said_in_german_and_nothing_changes(self):
        page = Document("Umsatz")
        before = page.file.read_text(encoding="utf-8")
        self.assertIn("Zuerst eine Ebene wählen", page.act("field", "--name=FnrName1"))
        self.assertIn("Ein Band „Reihe“ gibt es nicht", page.act("band", "--band=Reihe"))
        self.assertIn("Zuerst die Objekte wählen", page.act("condition", "--condition=1"))
        self.assertEqual(page.file.read_text(encoding="utf-8"), before)
        self.silently(page.act("band", "--band=Zeile"))
        before = page.file.read_text(encoding="utf-8")
        self.assertIn("kennt „IUmsatzDN“ nicht (ähnlich: „IUmsatzDM“)", page.act("field", "--name=IUmsatzDN"))
        self.assertIn("ist keine Zahl", page.act("chart", "--chart=bars", "--name=FnrName1"))
        self.assertIn("Diagrammart „torte“ gibt es nicht", page.act("chart", "--chart=torte", "--name=IUmsatzDM"))
        self.assertIn("grafische Oberfläche", page.act("field"))
        self.assertEqual(page.file.read_text(encoding="utf-8"), before)
        self.assertIn("grafische Oberfläche", Document("Zeichnung").act("check"))

    def test_the_check_says_what_the_program_says(self):
        page = Document("Umsatz-wird-gestaltet-a1b2c3")
        self.silently(page.act("band", "--band=Zeile"))
        self.silently(page.act("field", "--name=IUmsatzDM"))
        text = page.file.read_text(encoding="utf-8")
        page.file.write_text(text.replace("{{IUmsatzDM|", "{{IUmsatzDN|"), encoding="utf-8")
        said = page.act("check")
        self.assertRegex(said, r"Hinweis: Zeile \d+, Ebene „Zeile“, .*Unbekannter Name „IUmsatzDN“")
        self.assertEqual(list(ROOT.glob(".kvtdruck-*")), [], "the copy for the check is gone")

    def test_a_page_without_a_check_would_not_print(self):
        page = Document("Umsatz")
        self.silently(page.act("band", "--band=Zeile"))
        self.silently(page.act("condition", "--condition=IUmsatzDM >", chosen=[page.layer("Zeile").get("id")]))
        self.assertRegex(page.act("check"), "Fehler: .*Ungültiger Ausdruck")


class WindowTest(unittest.TestCase):
    """Runs where there is a screen, which is xvfb's."""

    def test_names_are_searched_and_chosen_and_bring_their_pattern(self):
        sys.path[:0] = [str(EXTENSION), INKEX]
        from kvtdruck_window import Window, toolkit
        Gtk = toolkit()
        fields = [{"name": "FnrName1", "art": "Variable", "typ": "Text", "wert": None, "bedeutung": "Firma: Name",
                   "muster": ""},
                  {"name": "IUmsatzDM", "art": "Feld", "typ": "Zahl", "wert": "5", "bedeutung": "Umsatz Ist",
                   "muster": "#.##0,00"}]
        window = Window("Felder", fields, [("pattern", "Muster", ""), ("chart", "Art", "b", ["a", "b"])], True)
        window.search.set_text("umsatz ist")
        while Gtk.events_pending() or len(window.view.get_model()) != 1:
            Gtk.main_iteration()
        window.view.get_selection().select_path(0)
        self.assertEqual(window.values(), {"name": ["IUmsatzDM"], "pattern": "#.##0,00", "chart": "b"})
        from gi.repository import GLib
        GLib.idle_add(lambda: window.dialog.response(Gtk.ResponseType.OK))
        self.assertEqual(window.run()["name"], ["IUmsatzDM"])
        window = Window("Felder", [], [("band", "Band", "Zeile", ["Zeile", "Summe"])])
        GLib.idle_add(lambda: window.dialog.response(Gtk.ResponseType.CANCEL))
        self.assertIsNone(window.run())


class InkscapeTest(unittest.TestCase):
    def test_inkscape_finds_the_actions_and_runs_one(self):
        profile = ROOT / "profile"
        (profile / "extensions").mkdir(parents=True)
        (profile / "extensions/kvtdruck").symlink_to(EXTENSION)
        environment = {**ENVIRONMENT, "INKSCAPE_PROFILE_DIR": str(profile)}
        listed = run("inkscape", "--action-list", env=environment).stdout
        actions = re.findall(r"^kvtdruck\.(\w+)\s", listed, re.MULTILINE)
        self.assertEqual(sorted(actions), ["band", "chart", "check", "condition", "field", "pattern"])

        # What the check says stands in a window of Inkscape's, which nobody closes here: that it was asked for shows.
        calls = ROOT / "calls"
        program = ROOT / "bin/kvtdruck"
        program.unlink()
        program.write_text(f'#!/bin/sh\n{PROGRAM} "$@"\ncode=$?\necho "$* $code" >> {calls}\nexit $code\n', encoding="utf-8")
        program.chmod(0o755)
        page = ROOT / "Umsatz.svg"
        shutil.copy(SCRIPTS.parent / "layouts/Umsatz.svg", page)
        with subprocess.Popen(["inkscape", "--batch-process", "--actions=kvtdruck.check", str(page)], env=environment,
                              stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, start_new_session=True) as inkscape:
            try:
                end = time.monotonic() + 300
                while time.monotonic() < end and not (calls.is_file() and "pruefen" in calls.read_text()):
                    time.sleep(0.1)
            finally:
                os.killpg(inkscape.pid, signal.SIGKILL)
        self.assertRegex(calls.read_text(), r"pruefen Umsatz --layout \S+\.svg 0\n")


if __name__ == "__main__":
    install()
    with place:
        unittest.main(argv=sys.argv[:1], verbosity=2)
