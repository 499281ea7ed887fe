"""Data that a layout must bear: texts of 200 characters, eight-digit negative amounts, empty optional fields, one row, pages
that are exactly full, 10,000 rows."""
import collections
import csv
import itertools
import pathlib
import re
import sqlite3

Case = collections.namedtuple("Case", "name database options")

LONG_END = "zuletzt"
LONG = ("Donaudampfschifffahrtsgesellschaft mit beschränkter Haftung und Söhne " * 3)[:199 - len(LONG_END)] + " " + LONG_END
UNBROKEN = "W" * (200 - len(LONG_END)) + LONG_END
AMOUNT = -12345678.9
KEYS = {"fnr": 1, "jahr": 2024, "fjahr": 2024, "monat": 13, "plz": 1010, "kontenart": 1, "ktobetrart": 0}
DAYS = re.compile(r"[is]?(arbtage|urlt|krank|ausb|sonsttage|anwtage)|anzahl.*|arbeitstage.*|.*tage$|tazeit.*|.*abmon$|anzahlma")
HOURS = re.compile(r".*std.*|.*anwjahr")
SHARES = re.compile(r".*pr(_..)?$|.*versicherung|steuersatz.*|.*zuschlag|erstattungsumlage|vorgabe.*|zpzins")
ARRAYS = ("Bilanz", "BsEMa", "BsEStd", "BsEGes", "KalkW", "WasWenn", "UmsatzHW")
ONE_PAGE_EACH = ("Bilanz", "Umsatz", "KalkKo", "MatUeber", "MaStKost", "MaStZeit")
MANY = 10_000


def is_part_of_long_text(text):
    return text.startswith(LONG[:12]) or text.startswith(UNBROKEN[:6])


def value_of(column, kind, text):
    """A value for a column: None where it may be empty and `text` is."""
    if column in KEYS:
        return KEYS[column]
    if column == "bundesland":  # the company's and its holidays'
        return "Sachsen"
    if kind == "DATE":
        return "2024-12-28" if text else None
    if kind == "TEXT" or kind.startswith("VARCHAR"):
        return text
    if not text:
        return None
    small = SHARES.fullmatch(column) or HOURS.fullmatch(column)
    return 36.5 if DAYS.fullmatch(column) else -1234.56 if small else AMOUNT


class Database:
    def __init__(self, path, schema):
        self.path = path
        path.unlink(missing_ok=True)
        self.connection = sqlite3.connect(path)
        self.connection.execute("PRAGMA synchronous = OFF")
        self.connection.executescript(f"BEGIN; {pathlib.Path(schema).read_text(encoding='utf-8')} COMMIT;")

    def insert(self, table, text, rows):
        """Rows that differ from one another in what each names, all in the same columns, and hold the usual elsewhere."""
        rows = iter(rows)
        first = next(rows)
        columns = [(name, kind.split()[0]) for _, name, kind, *_ in self.connection.execute(f"PRAGMA table_info({table})")]
        values = [f":{name}" if name in first else self.written(value_of(name, kind, text)) for name, kind in columns]
        self.connection.executemany(f"INSERT INTO {table} VALUES ({', '.join(values)})", itertools.chain([first], rows))

    def written(self, value):
        """A value as SQL writes it."""
        return self.connection.execute("SELECT quote(?)", [value]).fetchone()[0]

    def fill(self, report, text, count):
        """A company with as many rows of the report's table as asked for."""
        self.insert("firma", text, [{"name1": text or "Meyer"}])
        numbers = range(1, count + 1)
        if report in ("Umsatz", "KalkKo", "MatUeber"):
            table = {"Umsatz": "umsatz", "KalkKo": "kosten", "MatUeber": "material"}[report]
            self.insert(table, text, ({"jahr": 2000 + number} for number in numbers))
        elif report == "Firma":
            self.insert("firma_jahre", text, [{}])
            self.insert("feiertage", text, ({"fdatum": f"2024-{1 + number // 28 % 12:02}-{1 + number % 28:02}",
                                             "feiertag": text or "Tag"} for number in range(min(count, 300))))
        elif report in ("GemeinK", "NeutralA"):
            kind = 1 if report == "GemeinK" else 2
            self.insert("konten", text, ({"vkonto": 1000 + number, "ekonto": 1000 + number, "kontenart": kind}
                                         for number in numbers))
        else:
            self.fill_staff(report, text, count)
        self.connection.commit()

    def fill_staff(self, report, text, count):
        sheets = report.startswith("MaSt")
        people = range(1, 1 + (max(1, count // 13) if sheets else count))
        self.insert("mitarbeiter", text, ({"nummer": number} for number in people))
        self.insert("mitarbeiter_jahre", text, ({"nummer": number} for number in people))
        self.insert("mitarbeiter_monate", text, ({"nummer": number, "monat": month} for number in people
                                                 for month in (range(1, 14) if sheets else (13,))))


def array_file(path, sample, text, count):
    with pathlib.Path(sample).open(encoding="utf-8", newline="") as file:
        head, first = list(csv.reader(file, delimiter=";"))[:2]

    def cell(name, shown):
        if name in ("-", "Jahr", "jeMinute") or name.endswith("Mon"):
            return shown
        if name == "Text":
            return text
        if not text:
            return ""
        return "-1234,56" if SHARES.fullmatch(name.lower()) else str(AMOUNT).replace(".", ",")

    with path.open("w", encoding="utf-8", newline="") as file:
        writer = csv.writer(file, delimiter=";")
        writer.writerow(head)
        writer.writerows([cell(name, shown) for name, shown in zip(head, first)] for _ in range(count))


def options_of(report):
    return ["--jahr", "2024", "--monat", "12"] if report in ("GemeinK", "NeutralA") else []


def cases(report, database, values, schema, scratch, pages_of_case):
    """`pages_of_case` tells the number of pages that a case prints."""
    def case(name, text, count):
        own = Database(scratch / "own.sqlite", schema)
        own.fill("MitUeber" if report in ARRAYS else report, text, 1 if report in ARRAYS else count)
        own.connection.close()
        path = scratch / "own.csv"
        if report in ARRAYS:
            array_file(path, pathlib.Path(values) / f"{report}.csv", text, count)
        return Case(name, own.path, array_options(report, path))

    yield Case("sample", database, array_options(report, pathlib.Path(values) / f"{report}.csv"))
    yield case("long texts, great amounts", LONG, 3)
    yield case("texts without a blank", UNBROKEN, 3)
    yield case("empty, one row", "", 2 if report == "UmsatzHW" else 1)  # whose year stands in the second row
    if report in ONE_PAGE_EACH:
        return
    least, most = 2, 80
    while most - least > 1:
        middle = (least + most) // 2
        fits = pages_of_case(case("", "Wort", middle)) == 1
        least, most = (middle, most) if fits else (least, middle)
    for count in (least, most, most + 1):
        yield case(f"a full page and more: {count} rows", "Wort", count)
    if report != "Firma":
        yield case("10,000 rows", "Wort", MANY)


def array_options(report, path):
    return ["--werte", path] if report in ARRAYS else options_of(report)
