#!/usr/bin/env python3
"""Inkscape extension for the layouts of KVTDruck: inserts bands, fields and charts, sets conditions and patterns, and
checks a layout. What an action needs and was not given as an argument is asked for in a window.
"""
import copy
import difflib
import os
import pathlib
import re
import tempfile
import urllib.parse

import inkex
from inkex import Group, Layer, Rectangle, TextElement

import kvtdruck_program as program
from kvtdruck_program import Refused
from kvtdruck_window import Window

BANDS = ["Hintergrund", "Seitenkopf", "Kopf", "Vortrag", "Gruppenkopf", "Zeile", "Gruppenfuß", "Übertrag", "Summe",
         "Seitenfuß"]
GROUP_BANDS = ["Gruppenkopf", "Gruppenfuß"]
#: Bands that end a table or a part of it: charts of its lines may stand there.
CLOSING_BANDS = ["Summe", "Gruppenfuß"]
#: Heights of new bands, in millimetres.
HEIGHTS = {"Seitenkopf": 30, "Kopf": 8, "Summe": 60, "Seitenfuß": 12}
CHARTS = {"Balken nebeneinander": "bars", "Balken aufeinander": "stacked", "Balken liegend": "horizontal",
          "Linien": "lines", "Balken mit Zielmarke": "target", "Anteile": "share"}
COMPARISONS = ["=", "<>", "<", "<=", ">", ">=", "ist leer", "ist nicht leer"]
GUIDE = {"fill": "none", "stroke": "#4aa3df", "stroke-width": "0.12", "stroke-dasharray": "1, 1"}
FRAME = {"fill": "none", "stroke": "#9aa5b1", "stroke-width": "0.1"}
MONTHS = "Jan; Feb; Mär; Apr; Mai; Jun; Jul; Aug; Sep; Okt; Nov; Dez"
MARGIN = 20
FONT_SIZE = 3
PLACEHOLDER = re.compile(r"\{\{(.*?)\}\}")


def placeholder(name, pattern=""):
    return "{{" + name + ("|" + pattern if pattern else "") + "}}"


def new_text(x, y, content, anchor, has_style):
    """The text of a field; one that is in a layout without a style of its own gets one."""
    text = TextElement(x=f"{x:g}", y=f"{y:g}")
    text.text = content
    if anchor != "start":
        text.set("text-anchor", anchor)
    if not has_style:
        text.style = {"font-family": "'Liberation Sans'", "font-size": f"{FONT_SIZE}px"}
    return text


def with_pattern(content, pattern):
    """All placeholders of a text with another pattern; an expression keeps what stands before it."""
    return PLACEHOLDER.sub(lambda found: placeholder(found.group(1).split("|")[0], pattern), content)


def series_of(names):
    """The series of a chart: twelve months are one series, any other name is one of its own."""
    series = []
    for name in names:
        stem, month = name[:-2], name[-2:]
        if month == "01" and all(f"{stem}{number:02}" in names for number in range(1, 13)):
            series.append(f"{stem}01..12")
        elif f"{stem}01..12" not in series or not month.isdigit():
            series.append(name)
    return series


class LayoutExtension(inkex.EffectExtension):
    def add_arguments(self, pars):
        pars.add_argument("--action")
        pars.add_argument("--report", help="the list; otherwise that of the document's name")
        pars.add_argument("--name", action="append", help="a variable or field; may be given several times")
        pars.add_argument("--pattern", help="of numbers and dates")
        pars.add_argument("--band", help="its label")
        pars.add_argument("--key", help="the names whose change begins a new group")
        pars.add_argument("--chart", help="its kind")
        pars.add_argument("--condition", help="an expression; empty: none")

    def effect(self):
        actions = {"band": self.add_band, "field": self.add_fields, "chart": self.add_chart,
                   "condition": self.set_condition, "pattern": self.set_pattern, "check": self.check}
        try:
            actions[self.options.action]()
        except Refused as refused:
            raise inkex.AbortExtension(str(refused)) from None

    # --- the list and its names ---

    def report(self):
        known = program.reports()
        if self.options.report is None:
            path = self.document_path() or self.options.input_file or ""
            self.options.report = pathlib.Path(path).stem.split("-wird-gestaltet-")[0]
        if self.options.report not in known:
            values = Window("Zu welcher Liste gehört das Layout?", [], [("report", "Liste", known[0], known)]).run()
            if values is None:
                raise Refused("Ohne die Liste sind ihre Felder nicht bekannt; die Datei heißt wie sie, "
                              "etwa Umsatz.svg.")
            self.options.report = values["report"]
        return self.options.report

    def known(self, names):
        """The fields of these names."""
        fields = {field["name"]: field for field in program.fields(self.report())}
        for name in names:
            if name not in fields:
                near = difflib.get_close_matches(name, fields, 1)
                raise Refused(f"Die Liste {self.report()} kennt „{name}“ nicht" +
                              (f" (ähnlich: „{near[0]}“)." if near else "."))
        return [fields[name] for name in names]

    def asked(self, title, entries, several=False):
        """Has the user choose names and complete the arguments; false where he cancels."""
        values = Window(title, program.fields(self.report()), entries, several).run()
        if values is not None:
            for key, value in values.items():
                setattr(self.options, key, value)
        return values is not None

    # --- places ---

    def page(self):
        box = self.svg.get_viewbox()
        return box[2], box[3]

    def layer(self):
        layer = self.svg.get_current_layer()
        if layer is None or layer is self.svg or layer.get("inkscape:label") == "Feldliste":
            raise Refused("Zuerst eine Ebene wählen, etwa „Zeile“, oder ein Band einfügen.")
        return layer

    def layers(self):
        return [child for child in self.svg if isinstance(child, Layer)]

    @staticmethod
    def band_of(layer):
        """The rectangle that says where a layer's band is."""
        return next((rect for rect in layer.iter() if isinstance(rect, Rectangle) and "band" in rect.classes), None)

    def has_text_style(self):
        """Whether some style sheet says how texts look."""
        sheets = "".join("".join(style.itertext()) for style in self.svg.xpath("//svg:style"))
        return bool(re.search(r"\btext\b|@import", sheets))

    def new_frame(self, layer, width, height):
        """A frame beside those that the layer has, at the top of its band."""
        band = self.band_of(layer)
        top = float(band.top) if band is not None else float(MARGIN)
        rects = [rect for rect in layer.iter() if isinstance(rect, Rectangle) and rect is not band]
        left = max([float(rect.left) + float(rect.width) + 2 for rect in rects], default=float(MARGIN))
        if left + width > self.page()[0]:
            left = float(MARGIN)
        if band is not None:
            height = min(height, float(band.height))
        frame = Rectangle.new(f"{left:g}", f"{top:g}", f"{width:g}", f"{height:g}")
        frame.style = FRAME
        layer.append(frame)
        return frame

    def frames(self, count, width, height):
        """The rectangles that the user has chosen, or new ones."""
        chosen = [element for element in self.svg.selection if isinstance(element, Rectangle)]
        layer = self.layer() if len(chosen) < count else None
        return chosen[:count] + [self.new_frame(layer, width, height) for _ in range(count - len(chosen))]

    @staticmethod
    def grouped(frame, css_class):
        """A group in the frame's place, with the frame in it."""
        group = Group()
        group.set("class", css_class)
        frame.addprevious(group)
        group.append(frame)
        if frame.get("transform"):
            group.set("transform", frame.pop("transform"))
        return group

    # --- actions ---

    def add_band(self):
        if not self.options.band:
            entries = [("band", "Band", "Zeile", BANDS), ("key", "Gruppenschlüssel (nur für Gruppen)", "")]
            if not self.asked("Band einfügen (für eine Gruppe: ihren Schlüssel wählen)", entries, True):
                return
        label = self.options.band
        kind = label.split(" ")[0]
        if kind not in BANDS:
            raise Refused(f"Ein Band „{label}“ gibt es nicht; es gibt {', '.join(BANDS)}.")
        key = self.options.key or ", ".join(self.options.name or [])
        if kind in GROUP_BANDS and not key:
            raise Refused(f"„{kind}“ braucht den Namen, dessen Wechsel eine neue Gruppe beginnt.")
        if kind in GROUP_BANDS:
            self.known([name.strip() for name in key.split(",")])
            if label == kind:
                label = f"{kind} {key.split(',')[0].strip()}"
        if any(layer.get("inkscape:label") == label for layer in self.layers()):
            raise Refused(f"Die Ebene „{label}“ gibt es schon.")
        layer = Layer.new(label)
        if kind in GROUP_BANDS:
            layer.set("data-on", key)
        layer.append(self.new_band(kind))
        self.svg.append(layer)
        self.svg.namedview.set("inkscape:current-layer", layer.get_id())

    def new_band(self, kind):
        width, height = self.page()
        tall = HEIGHTS.get(kind, 6)
        bottoms = [float(band.top) + float(band.height) for band in map(self.band_of, self.layers())
                   if band is not None and float(band.top) + float(band.height) < height - HEIGHTS["Seitenfuß"]]
        top = 0 if kind in ("Seitenkopf", "Hintergrund") else max(bottoms, default=HEIGHTS["Seitenkopf"])
        if kind == "Seitenfuß":
            top = height - tall
        rect = Rectangle.new(f"{MARGIN:g}", f"{top:g}", f"{width - 2 * MARGIN:g}", f"{tall:g}")
        rect.set("class", "band")
        rect.style = GUIDE
        return rect

    def add_fields(self):
        self.layer()
        if not self.options.name and not self.asked("Felder einfügen", [("pattern", "Muster", "")], True):
            return
        fields = self.known(self.options.name)
        has_style = self.has_text_style()
        for field, frame in zip(fields, self.frames(len(fields), 30, 5)):
            pattern = self.options.pattern if self.options.pattern and len(fields) == 1 else field["muster"]
            is_number = field["typ"] == "Zahl"
            left, top = float(frame.left), float(frame.top)
            group = self.grouped(frame, "field")
            group.append(new_text(left + (float(frame.width) if is_number else 0),
                                  top + float(frame.height) / 2 + FONT_SIZE * 0.35, placeholder(field["name"], pattern),
                                  "end" if is_number else "start", has_style))

    def add_chart(self):
        layer = self.layer()
        if not self.options.name:
            kinds = list(CHARTS)
            if not self.asked("Diagramm einfügen (eine Reihe oder mehrere wählen)",
                              [("chart", "Art", kinds[0], kinds)], True):
                return
        kind = CHARTS.get(self.options.chart, self.options.chart)
        if kind not in CHARTS.values():
            raise Refused(f"Die Diagrammart „{kind}“ gibt es nicht; es gibt {', '.join(CHARTS.values())}.")
        fields = self.known(self.options.name)
        if not fields:
            raise Refused("Ein Diagramm braucht mindestens eine Reihe.")
        texts = [field["name"] for field in fields if field["typ"] != "Zahl"]
        if texts:
            raise Refused(f"„{texts[0]}“ ist keine Zahl und kann nicht gezeichnet werden.")
        series = series_of([field["name"] for field in fields])
        legends = {field["name"]: field["bedeutung"].split(",")[0] for field in fields}
        group = self.grouped(self.frames(1, self.page()[0] - 2 * MARGIN, 60)[0], "chart")
        group.set("data-chart", kind)
        group.set("data-series", "; ".join(series))
        group.set("data-legend", "; ".join(legends[name.removesuffix("..12")] for name in series))
        if any(name.endswith("..12") for name in series):
            group.set("data-labels", MONTHS)
        elif layer.get("inkscape:label", "").split(" ")[0] in CLOSING_BANDS:
            group.set("data-rows", "1")
        if not self.has_text_style():
            group.style = {"font-family": "'Liberation Sans'"}
        group.style["font-size"] = f"{FONT_SIZE}px"

    def set_condition(self):
        if not self.svg.selection:
            raise Refused("Zuerst die Objekte wählen, für die die Bedingung gelten soll.")
        if self.options.condition is None:
            entries = [("comparison", "Vergleich", "<>", COMPARISONS), ("value", "mit", "0")]
            if not self.asked("Bedingung setzen (ohne Namen: aufheben)", entries):
                return
            self.options.condition = self.comparison() if self.options.name else ""
        for element in self.svg.selection:
            owner = self.field_of(element)
            owner.set("data-if", self.options.condition or None)

    def comparison(self):
        field = self.known(self.options.name)[0]
        comparison = self.options.comparison
        if comparison.startswith("ist"):
            return ("nicht " if "nicht" in comparison else "") + f"leer({field['name']})"
        value = self.options.value if field["typ"] == "Zahl" else '"' + self.options.value + '"'
        return f"{field['name']} {comparison} {value}"

    @staticmethod
    def field_of(element):
        """The field or chart that an element is a part of, or the element itself."""
        for group in [element, *element.ancestors()]:
            if isinstance(group, Group) and {"field", "chart"} & set(group.classes):
                return group
        return element

    def set_pattern(self):
        texts = [text for element in self.svg.selection for text in self.field_of(element).iter()
                 if isinstance(text, TextElement)]
        if not texts:
            raise Refused("Zuerst die Felder wählen, deren Muster sich ändern soll.")
        if self.options.pattern is None:
            values = Window("Muster setzen", [], [("pattern", "Muster, etwa #.##0,00 oder TT.MM.JJJJ", "#.##0,00")]).run()
            if values is None:
                return
            self.options.pattern = values["pattern"]
        changed = [self.change_pattern(text) for text in texts]
        if not any(changed):
            raise Refused("In den gewählten Objekten steht kein Platzhalter.")

    def change_pattern(self, text):
        """Changes the placeholders of a text: those that it shows, or those of the label behind which its content is a
        sample, which is its own or its field's. Tells whether there are any."""
        whole = "".join(text.itertext())
        if PLACEHOLDER.search(whole):
            pieces = [piece for piece in text.iter() if piece.text]
            for piece in pieces:
                piece.text = with_pattern(piece.text, self.options.pattern)
            if with_pattern(whole, self.options.pattern) != "".join(text.itertext()):
                raise Refused(f"Der Platzhalter „{whole}“ ist auf mehrere Textteile verteilt; bitte neu schreiben.")
            return True
        for owner in [text, *(group for group in text.ancestors() if "field" in group.classes)]:
            label = owner.get("inkscape:label", "")
            if PLACEHOLDER.search(label):
                owner.set("inkscape:label", with_pattern(label, self.options.pattern))
                return True
        return False

    def linked_from(self, folder):
        """The document as it lies in `folder`: Inkscape hands over a copy that lies elsewhere, with links from there."""
        document = copy.deepcopy(self.document)
        here = os.path.dirname(os.path.realpath(self.options.input_file))
        for picture in document.iter(inkex.addNS("image", "svg")):
            for key in ("href", inkex.addNS("href", "xlink")):
                link = urllib.parse.unquote(picture.get(key, ""))
                if link and ":" not in link and not os.path.isabs(link):
                    picture.set(key, urllib.parse.quote(os.path.relpath(os.path.join(here, link), os.path.realpath(folder))))
        return document

    def check(self):
        """The document as it is drawn, saved or not, lies beside its file for the check, where its pictures are."""
        report = self.report()
        path = self.document_path()
        folder = pathlib.Path(path).parent if path and pathlib.Path(path).is_file() else None
        descriptor, name = tempfile.mkstemp(prefix=".kvtdruck-", suffix=".svg", dir=folder)
        try:
            with os.fdopen(descriptor, "wb") as file:
                (self.linked_from(folder) if folder else self.document).write(file)
            lines = [line.replace(name + ", ", "").replace(name, "Layout")
                     for line in program.findings(report, name)]
        finally:
            os.unlink(name)
        inkex.errormsg("\n".join(lines) if lines else f"Das Layout der Liste {report} ist in Ordnung.")


if __name__ == "__main__":
    LayoutExtension().run()
