"""The prints that the second calculation looks at: both sample companies, all years, with the records that each must show,
read from the database and the files of values."""
import collections
import csv
import decimal
import pathlib
import re
import sqlite3

from german import MONTHS

# `sheets`: the record of each page, where a page is a record; `flow`: the flowing bands in print order, each with its
# record and the records that it sums up.
Job = collections.namedtuple("Job", "company options records sheets flow")

LETTERHEAD = "SELECT * FROM firma WHERE fnr = ?"


def single_year(record):
    year = str(int(record["jahr"]))
    return ["--von", year, "--bis", year]


def plain(value):
    """A column's value: numbers exact, dates as they are printed."""
    if isinstance(value, float):
        return decimal.Decimal(repr(value))
    date = re.fullmatch(r"(\d{4})-(\d\d)-(\d\d)", value or "")
    return f"{date[3]}.{date[2]}.{date[1]}" if date else value or ""


class Database:
    def __init__(self, path):
        self.connection = sqlite3.connect(f"file:{path}?mode=ro", uri=True)
        self.connection.row_factory = sqlite3.Row

    def records(self, sql, *values):
        return [{name.lower(): plain(row[name]) for name in row.keys()} for row in self.connection.execute(sql, values)]

    def companies(self):
        return [int(record["fnr"]) for record in self.records("SELECT fnr FROM firma ORDER BY fnr")]


def by_key(records, *names):
    groups = {}
    for record in records:
        groups.setdefault(tuple(record[name] for name in names), []).append(record)
    return list(groups.values())


def sheets(table):
    def jobs(database, company, values):
        records = database.records(f"SELECT * FROM {table} WHERE fnr = ? ORDER BY jahr", company)
        yield Job(company, [], records, records, [])
        for record in records:
            yield Job(company, single_year(record), [record], [record], [])
    return jobs


def accounts(kind, sign):
    def jobs(database, company, values):
        years = database.records("SELECT DISTINCT fjahr FROM konten WHERE fnr = ? ORDER BY fjahr", company)
        years = [int(record["fjahr"]) for record in years] or [2024]
        for year in years:
            for month in (None, *range(1, 13)):
                yield account_job(database, company, year, month, kind, sign)
    return jobs


def account_job(database, company, year, month, kind, sign):
    records = database.records("SELECT * FROM konten WHERE fnr = ? AND fjahr = ? AND kontenart = ? ORDER BY vkonto",
                               company, year, kind)
    for record in records:
        factor = sign if record["ktobetrart"] != 0 else 1
        record["jwist"], record["jwsoll"] = record["jwist"] * factor, record["jwsoll"] * factor
        record["monattext"] = MONTHS[month - 1] if month else ""
        if month:
            record["monatist"] = record[f"mwist_{month:02}"] * factor
            record["monatsoll"] = record[f"mwsoll_{month:02}"] * factor
    options = ["--jahr", str(year)] + (["--monat", str(month)] if month else [])
    flow = [("Zeile", record, []) for record in records]
    return Job(company, options, records, [], flow + [("Gruppenfuß Jahr", records[-1], records)] if records else [])


def turnover(database, company, values):
    """All years, with a page that sums them up, and each year alone."""
    records = database.records("SELECT * FROM umsatz WHERE fnr = ? ORDER BY jahr", company)
    for chosen in (records, *([record] for record in records)):
        flow = [("Zeile", record, [record]) for record in chosen]
        if len(chosen) > 1:
            flow.append(("Summe", chosen[-1], chosen))
        options = single_year(chosen[0]) if len(chosen) == 1 else []
        yield Job(company, options, chosen, [], flow)


EMPLOYEE_MONTHS = """SELECT p.vorname, p.name AS nachname, y.*, m.* FROM mitarbeiter_monate m
    JOIN mitarbeiter_jahre y USING (fnr, nummer, fjahr) JOIN mitarbeiter p USING (fnr, nummer)
    WHERE fnr = ? AND m.monat BETWEEN ? AND ? ORDER BY fjahr, nummer, monat"""


def employee_months(database, company, first, last):
    records = database.records(EMPLOYEE_MONTHS, company, first, last)
    for record in records:
        record["name"] = f"{record['vorname'].strip()} {record['nachname'].strip()}".strip()
        for side in "si":  # as the times report spells it
            record[f"{side}berszdtag"] = record[f"{side}berstdtag"]
    return records


def employees(database, company, values):
    """Costs and times: the whole year, and months, where each employee has a sum as well."""
    for first, last, options in ((13, 13, []), (1, 12, ["--monat-von", "1", "--monat-bis", "12"]),
                                 (3, 5, ["--monat-von", "3", "--monat-bis", "5"])):
        records = employee_months(database, company, first, last)
        flow = []
        for year in by_key(records, "fjahr"):
            for employee in by_key(year, "nummer"):
                flow += [("Zeile", record, []) for record in employee]
                if first != 13:
                    flow.append(("Gruppenfuß Mitarbeiter", employee[-1], employee))
            flow.append(("Gruppenfuß Jahr", year[-1], year))
            if first == 13:  # the chart
                flow.append(("Gruppenfuß Diagramm", year[-1], year))
        yield Job(company, options, records, [], flow)


def master_sheets(database, company, values):
    records = employee_months(database, company, 1, 13)
    groups = by_key(records, "fjahr", "nummer")
    flow = []
    for sheet in groups:
        flow += [("Zeile", record, []) for record in sheet]
    yield Job(company, [], records, [sheet[0] for sheet in groups], flow)


def staff(database, company, values):
    records = database.records("SELECT * FROM mitarbeiter WHERE fnr = ? ORDER BY nummer", company)
    flow = [("Zeile", record, []) for record in records] + [("Summe", records[-1], records)] if records else []
    yield Job(company, [], records, [], flow)


def array(report):
    """A file of values, with each company's letterhead."""
    def jobs(database, company, values):
        path = pathlib.Path(values) / f"{report}.csv"
        with path.open(encoding="utf-8", newline="") as file:
            head, *lines = csv.reader(file, delimiter=";")
        records = [{name.lower(): cell(text) for name, text in zip(head, line) if name != "-"} for line in lines]
        flow = [("Zeile", record, []) for record in records] + [("Summe", records[-1], records)]
        yield Job(company, ["--werte", path], records, [records[0]], flow)
    return jobs


def cell(text):
    return decimal.Decimal(text.replace(",", ".")) if re.fullmatch(r"-?\d+(,\d+)?", text) else text


def company_years(database, company, values):
    records = database.records("SELECT * FROM firma_jahre WHERE fnr = ? ORDER BY jahr", company)
    yield Job(company, [], records, records, [])


JOBS = {
    "Umsatz": turnover, "KalkKo": sheets("kosten"), "MatUeber": sheets("material"), "Firma": company_years,
    "MitUeber": staff, "GemeinK": accounts(1, 1), "NeutralA": accounts(2, -1), "MaKost": employees, "MaZeit": employees,
    "MaStKost": master_sheets, "MaStZeit": master_sheets,
    **{report: array(report) for report in ("Bilanz", "BsEMa", "BsEStd", "BsEGes", "KalkW", "WasWenn", "UmsatzHW")},
}


def jobs_of(report, database, values):
    database = Database(database)
    for company in database.companies():
        yield from JOBS[report](database, company, values)
