#!/usr/bin/env python3
"""A second calculation: every figure that a layout computes (expressions, sums, shares, charts and their legends, amounts
carried forward, page numbers) is computed once more from the database and the files of values, without the engine, and
compared with what stands at its place on the printed pages. A computed figure that is not known here is a failure.

usage: second_calculation.py PROGRAM LAYOUTS DATABASE VALUES LIST
"""
import pathlib
import re
import subprocess
import sys
import tempfile

from computed_figures import CHARTS, CONDITIONS, FIGURES
from german import german
from layout_file import SVG, fills_of, layers_of, written
from pdf_pages import color_of, middle, pages_of
from sample_jobs import jobs_of

FLOWING = ("Gruppenkopf", "Zeile", "Gruppenfuß", "Summe", "Übertrag", "Vortrag")
COUNTERS = {"Seite", "Seiten", "Druckdatum"}
POINT = 72 / 25.4
DESCENT = 2  # points, about, of a word's box below its baseline
GRID = color_of("#d9dfe5")
FILLS = {}  # of the classes that charts name


def fail(text):
    sys.exit(f"{sys.argv[5]}: {text}")


class Field:
    """A text with placeholders in its box, in points on the page as drawn."""

    def __init__(self, element, conditions):
        box = element.find(SVG + "rect")
        text = element.find(SVG + "text")
        self.left, self.right, self.top, self.bottom = sides(box)
        self.y = float(text.get("y")) * POINT
        self.text = written(text, element)
        self.conditions = conditions
        self.computed = "{{=" in self.text

    def shown(self, report, record, rows):
        """The text; None where it is not printed or not known here."""
        if not holds(self.conditions, record, self.computed):
            return None
        unknown = False

        def value(found):
            nonlocal unknown
            what, _, pattern = found[1].partition("|")
            if what.startswith("="):
                number = FIGURES[report][what[1:]](record, rows)
                return "–" if number is None else german(number, pattern)
            content = record.get(what.lower())
            unknown = unknown or content is None or what in COUNTERS
            return german(content, pattern)

        text = re.sub(r"{{([^}]*)}}", value, self.text)
        return None if unknown else re.sub(r"\s+", " ", text).strip()


class Chart:
    def __init__(self, element, conditions):
        self.left, self.right, self.top, self.bottom = sides(element.find(SVG + "rect"))
        self.kind = element.get("data-chart")
        self.series = element.get("data-series")
        self.legend = parts(element.get("data-legend", ""))
        self.colors = [color_of(FILLS.get(color, color)) for color in parts(element.get("data-colors", "#1b3a5c"))]
        self.conditions = conditions


def sides(rect):
    x, y, width, height = (float(rect.get(name)) * POINT for name in ("x", "y", "width", "height"))
    return x, x + width, y, y + height


def parts(text):
    return [part.strip() for part in text.split(";") if part.strip()]


def holds(conditions, record, must_be_known):
    for condition in conditions:
        if condition not in CONDITIONS:
            if must_be_known:
                fail(f"the condition „{condition}“ of a computed figure is not known here")
            return False
        if not CONDITIONS[condition](record):
            return False
    return True


class Band:
    """A layer: its fields by line, and its charts."""

    def __init__(self, label, layer):
        self.label = label
        self.fields, self.charts = [], []
        self.collect(layer, [])
        self.lines = []
        for field in sorted(self.fields, key=lambda field: field.y):
            if not self.lines or field.y - self.lines[-1][0].y > 1.5:
                self.lines.append([])
            self.lines[-1].append(field)

    def collect(self, element, conditions):
        for child in element:
            own = conditions + ([child.get("data-if")] if child.get("data-if") else [])
            kind = child.get("class", "").split()
            if "chart" in kind:
                self.charts.append(Chart(child, own))
            elif "field" in kind and child.find(SVG + "text") is not None:
                self.fields.append(Field(child, own))
            else:
                if child.tag == SVG + "text" and "{{=" in written(child):
                    fail(f"„{written(child)}“ is computed outside of a field")
                self.collect(child, own)


def bands_of(layout):
    return {label: Band(label, layer) for label, layer in layers_of(layout) if label != "Feldliste"}


def check_table(report, bands):
    """What is computed here and nowhere on the layout has changed its meaning, or its place."""
    texts = " ".join(field.text for band in bands.values() for field in band.fields)
    expressions = {what.partition("|")[0] for what in re.findall(r"{{=([^}]*)}}", texts)}
    charts = {chart.series for band in bands.values() for chart in band.charts}
    for known, used in ((FIGURES[report], expressions), (CHARTS.get(report, {}), charts)):
        for what in known:
            if what not in used:
                fail(f"„{what}“ is computed here, but not on the layout")
        for what in used:
            if what not in known:
                fail(f"„{what}“ is computed on the layout, but not here")


class Reader:
    """Follows the printed pages from top to bottom."""

    def __init__(self, report, pages):
        self.report = report
        self.pages = pages
        self.lines = [(number, line) for number, page in enumerate(pages) for line in page.lines()]
        self.at = 0
        self.count = 0

    def check_fixed(self, band, page, record):
        for field in band.fields:
            shown = field.shown(self.report, record, [record]) if field.computed else None
            if shown is not None:
                found = page.text_within(field.left, field.right, field.top, field.bottom)
                if found != shown:
                    fail(f"„{field.text}“ is „{shown}“, printed is „{found}“")
                self.count += 1
        for chart in band.charts:
            if holds(chart.conditions, record, True):
                self.check_chart(chart, page, record, [record], chart.top, chart.bottom)

    def check_flowing(self, band, record, rows):
        """Finds the band's lines below what was found before; gives the page of the last one."""
        page = self.lines[self.at - 1][0] if self.at else 0
        down = None
        for fields in band.lines:
            texts = [(field, field.shown(self.report, record, rows)) for field in fields]
            texts = [(field, shown) for field, shown in texts if shown is not None]
            if not texts:
                continue
            page = self.find_line(band, texts)
            down = self.lines[self.at - 1][1][0].bottom - fields[0].y - DESCENT
            self.count += sum(field.computed for field, _ in texts)
        for chart in band.charts:
            if not holds(chart.conditions, record, True):
                continue
            if down is None:
                self.check_chart_below(chart, record, rows)
            else:
                self.check_chart(chart, self.pages[page], record, rows, chart.top + down, chart.bottom + down)
        return page

    def find_line(self, band, texts):
        while self.at < len(self.lines):
            page, line = self.lines[self.at]
            self.at += 1
            if all(words_between(line, field) == shown for field, shown in texts):
                return page
        fail(f"„{band.label}“ does not follow with {[shown for _, shown in texts]}")

    def check_chart_below(self, chart, record, rows):
        """A chart whose band has no lines: below the line that was found last, or on the next page."""
        page, line = self.lines[self.at - 1]
        top = line[0].bottom
        if not any(stroke.color == GRID and stroke.top > top for stroke in self.pages[page].strokes):
            page, top = page + 1, 0
        self.check_chart(chart, self.pages[page], record, rows, top, self.pages[page].height)

    def check_chart(self, chart, page, record, rows, top, bottom):
        series, labels = CHARTS[self.report][chart.series]
        values = [points(record, rows) for points in series]
        if callable(labels):
            labels = labels(record, rows)
        if chart.kind == "share":
            self.check_shares(chart, page, [points[0] for points in values])
        else:
            self.check_axis_chart(chart, page, values, labels, top, bottom)

    def check_shares(self, chart, page, values):
        printed = page.text_within(chart.left, chart.right, chart.top, chart.bottom)
        whole = sum(values)
        x = chart.left
        for name, color, value in zip(chart.legend, chart.colors, values, strict=True):
            shown = f"{name} {german(value / whole * 100, '0,0')} %"
            if shown not in printed:
                fail(f"the chart's legend says „{printed}“, not „{shown}“")
            width = float(value / whole) * (chart.right - chart.left)
            if not any(fill.color == color and abs(fill.left - x) < 0.1 and abs(fill.right - x - width) < 0.1
                       for fill in page.fills):
                fail(f"the chart shows no {width:.1f} points of „{name}“")
            x += width
            self.count += 2

    def check_axis_chart(self, chart, page, values, labels, top, bottom):
        def inside(box):
            return (chart.left - 1 < box.left and box.right < chart.right + 1
                    and top - 3 < box.top and box.bottom < bottom + 3)

        grid = sorted((stroke for stroke in page.strokes if stroke.color == GRID and inside(stroke)),
                      key=lambda stroke: stroke.top)
        if len(grid) < 2:
            fail(f"there is no chart of „{chart.series}“")
        plot = grid[0]
        scale = [(line.top, axis_value(page, line, chart)) for line in (grid[0], grid[-1])]
        (high_at, high), (low_at, low) = scale
        step = (high - low) / (low_at - high_at)
        for index, (points, color) in enumerate(zip(values, chart.colors, strict=True)):
            mark = chart.kind == "lines" or (chart.kind == "target" and index == len(values) - 1)
            drawn = heights(page, chart, color, mark, inside, high_at, low_at, low_at - (0 - low) / step)
            read = [low + (low_at - at) * step for at in drawn]
            if len(read) != len(points):
                fail(f"„{chart.series}“ has {len(points)} points, drawn are {len(read)}")
            for value, shown in zip(points, read):
                if abs(float(value) - shown) > step * 0.05:
                    fail(f"„{chart.series}“ is {value} where {shown} is drawn")
            self.count += len(points)
        legend = page.text_within(chart.left, chart.right, high_at - 60, high_at - 2)
        for name in chart.legend:
            if name not in legend.split():
                fail(f"the legend „{legend}“ lacks „{name}“")
        self.count += len(chart.legend)
        slot = (plot.right - plot.left) / max(1, len(labels))
        for index, label in enumerate(labels):
            left = plot.left + slot * index
            shown = page.text_within(left, left + slot, low_at, low_at + 40)
            if not shown.replace(" ", "").startswith(label.replace(" ", "")):
                fail(f"below the chart stands „{shown}“ instead of „{label}“")
        self.count += len(labels)


def words_between(line, field):
    return " ".join(word.text for word in line if word.left > field.left - 0.6 and word.right < field.right + 0.6)


def axis_value(page, line, chart):
    """The number beside a line of the grid."""
    numbers = [word for word in page.words if word.right < line.left and word.left > chart.left - 1
               and abs(middle(word) - line.top) < 3]
    if len(numbers) != 1:
        fail(f"beside the axis of „{chart.series}“ stand {[word.text for word in numbers]}")
    return float(numbers[0].text.replace(".", "").replace(",", "."))


def heights(page, chart, color, mark, inside, high_at, low_at, zero_at):
    """Where the points of a series are drawn: the ends of its bars, its marks or the dots of its line."""
    drawn = []
    if mark and chart.kind == "target":
        drawn = [(stroke.left, stroke.top) for stroke in page.strokes if stroke.color == color and inside(stroke)
                 and high_at - 1 < stroke.top < low_at + 1]
    for fill in page.fills:
        if mark and chart.kind == "target":
            continue
        if fill.color != color or not inside(fill) or fill.bottom < high_at - 2:
            continue
        if chart.kind == "lines":
            if abs(fill.right - fill.left - 2.6) < 0.05:
                drawn.append((fill.left, (fill.top + fill.bottom) / 2))
        elif fill.bottom > high_at:
            drawn.append((fill.left, fill.bottom if fill.bottom > zero_at + 0.05 else fill.top))
    return [at for _, at in sorted(drawn)]


def check_flow(reader, bands, flow):
    """The flowing bands in the order in which they must stand, and what is carried forward where a page ends."""
    carried = "Übertrag" in bands
    group = []
    page = None
    for label, record, rows in flow:
        if label == "Zeile" and carried:
            place = reader.at
            found = reader.check_flowing(bands[label], record, rows)
            if group and page is not None and found != page:
                last = reader.at
                reader.at = place
                reader.check_flowing(bands["Übertrag"], group[-1], group)
                if reader.check_flowing(bands["Vortrag"], group[-1], group) != found:
                    fail("the amount carried forward stands on another page")
                reader.at = last
            group.append(record)
        elif label in bands:
            found = reader.check_flowing(bands[label], record, rows)
            if label == "Gruppenfuß Jahr":
                group = []
        page = found if label in bands else page


def printed(program, database, report, job, scratch):
    pdf = scratch / f"{report}.pdf"
    run = subprocess.run([program, "drucken", report, "--datenbank", database, "--firma", str(job.company), "--ordner",
                          scratch / "folder", "--ausgabe", pdf, *job.options], capture_output=True, text=True)
    if not job.records:
        if run.returncode != 1 or "Es sind keine Daten" not in run.stderr:
            fail(f"company {job.company} has no data, but: {run.returncode} {run.stderr}")
        return None
    if run.returncode != 0 or run.stderr:
        fail(run.stderr)
    return pdf


def main():
    program, layouts, database, values, report = sys.argv[1:]
    FILLS.update(fills_of(pathlib.Path(layouts) / f"{report}.svg"))
    bands = bands_of(pathlib.Path(layouts) / f"{report}.svg")
    check_table(report, bands)
    count = 0
    with tempfile.TemporaryDirectory() as scratch:
        scratch = pathlib.Path(scratch)
        folder = scratch / "folder" / "DB" / "BerichteLLVT"
        folder.mkdir(parents=True)
        (folder / f"{report}.svg").write_bytes((pathlib.Path(layouts) / f"{report}.svg").read_bytes())
        for job in jobs_of(report, database, values):
            pdf = printed(program, database, report, job, scratch)
            if pdf is None:
                continue
            pages = pages_of(pdf)
            reader = Reader(report, pages)
            if job.sheets and len(job.sheets) != len(pages):
                fail(f"{len(pages)} pages for {len(job.sheets)} sheets")
            for number, page in enumerate(pages):
                if f"Seite {number + 1} von {len(pages)}" not in " ".join(word.text for word in page.words):
                    fail(f"page {number + 1} is not numbered")
                reader.count += 2
                record = job.sheets[number] if job.sheets else job.records[0]
                for band in bands.values():
                    if not band.label.startswith(FLOWING):
                        reader.check_fixed(band, page, record)
            check_flow(reader, bands, job.flow)
            count += reader.count
    print(f"{report}: {count} computed figures are the same")


main()
