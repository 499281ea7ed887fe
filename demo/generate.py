#!/usr/bin/env python3
# long: the sample company, table by table.
"""Writes the sample company: daten.sql (for schema.sql) and the parameter arrays in werte/, beside this file or into the
folder that is given.

Deterministic and without anything beyond the standard library. The company, its people and its figures are invented;
contribution limits, rates and public holidays are the real ones of Saxony (sources: SOURCES below). Figures follow from
each other: months add up to years, shares are shares of the turnover, the arrays are drawn from the same figures.
"""

import datetime
import math
import random
import sys
from pathlib import Path

OUTPUT = Path(sys.argv[1] if len(sys.argv) > 1 else Path(__file__).resolve().parent)
FNR = 1
YEARS = range(2019, 2026)        # turnover and yearly settings
STAFF_YEARS = (2024, 2025)       # employees' months and accounts
COST_YEARS = (2023, 2024, 2025)  # imputed costs and material
MONTHS = range(1, 13)
MONTH_NAMES = ["Januar", "Februar", "März", "April", "Mai", "Juni", "Juli", "August", "September", "Oktober",
               "November", "Dezember"]

SOURCES = """\
Sources of the yearly settings:
  grenzerentenversicherung  monthly contribution limit of the general pension insurance (East; from 2025 one limit for
                            all of Germany): Anlage 2a SGB VI and the Sozialversicherungsrechengrößen-Verordnungen
                            2019 to 2025.
  rentenversicherung        § 158 SGB VI; 18.6 % in all these years (Bekanntmachungen der Beitragssätze).
  arbeitslosenversicherung  § 341 Abs. 2 SGB III; 2.5 % in 2019 and 2.4 % from 2020 to 2022 by the
                            Beitragssatzverordnungen, 2.6 % from 2023.
  pflegeversicherung        § 55 Abs. 1 SGB XI; 3.05 % from 2019 to June 2023, 3.4 % from July 2023 (PUEG; the figure
                            of 2023 here is that of the year's end), 3.6 % in 2025
                            (Pflege-Beitragssatz-Anpassungsverordnung 2025). In Saxony employees bear 0.5 points
                            more than employers, § 58 Abs. 3 SGB XI, because Buß- und Bettag is kept as a holiday.
  krankenversicherung       general rate of 14.6 % (§ 241 SGB V) and the average additional rate of the year (§ 242a
                            SGB V, Bekanntmachungen des Bundesministeriums für Gesundheit).
  grenzeaushilfskraft       § 8 Abs. 1 and 1a SGB IV: 450 to September 2022, 520 from October 2022 (the figure of 2022
                            here is that of the year's end), then 538 in 2024 and 556 in 2025 with the minimum wage.
  grenzegeringverdiener     § 20 Abs. 3 Satz 1 Nr. 1 SGB IV: 325 for trainees.
  steuersatzaushilfe        § 40a Abs. 2 EStG: 2 %.
  erstattungsumlage         U1 of the Minijob-Zentrale (§ 7 AAG): 0.9 % to September 2020, 1.0 % to 2021, 0.9 % in
                            2022, 1.1 % from 2023 (the figure of 2020 here is that of the year's end).
  feiertage                 § 1 Abs. 1 of the Gesetz über Sonn- und Feiertage im Freistaat Sachsen (SächsSFG); Easter
                            by the Gregorian computus.
The other settings are the company's own."""

# limit, temporary staff, unemployment, care, health (with the average additional rate), levy
SOCIAL = {
    2019: (6150, 450, 2.5, 3.05, 14.6 + 0.9, 0.9),
    2020: (6450, 450, 2.4, 3.05, 14.6 + 1.1, 1.0),
    2021: (6700, 450, 2.4, 3.05, 14.6 + 1.3, 1.0),
    2022: (6750, 520, 2.4, 3.05, 14.6 + 1.3, 0.9),
    2023: (7100, 520, 2.6, 3.4, 14.6 + 1.6, 1.1),
    2024: (7450, 538, 2.6, 3.4, 14.6 + 1.7, 1.1),
    2025: (8050, 556, 2.6, 3.6, 14.6 + 2.5, 1.1),
}
HEALTH_LIMIT = {2024: 5175, 2025: 5512.5}  # § 223 Abs. 3 SGB V, monthly
PENSION_RATE = 18.6
DAILY_HOURS = 8
VL = 26.59

rng = random.Random(20190101)


def cents(value):
    return math.floor(value * 100 + 0.5) / 100


def total(values, digits=2):
    return round(sum(values), digits)


def percent(part, whole):
    return round(100 * part / whole, 2) if whole else 0.0


# --- SQL ---------------------------------------------------------------------------------------------------------

def literal(value):
    if value is None:
        return "NULL"
    if isinstance(value, str):
        return "'" + value.replace("'", "''") + "'"
    if isinstance(value, datetime.date):
        return "'" + value.isoformat() + "'"
    text = repr(round(value, 6)) if isinstance(value, float) else str(value)
    return text[:-2] if text.endswith(".0") else text


def insert(table, rows):
    """One INSERT for rows (dicts with the same keys), the columns in lines of readable length."""
    columns = list(rows[0])
    lines = ["INSERT INTO %s (" % table, wrapped(columns) + ")", "VALUES"]
    body = ["(" + wrapped([literal(row[c]) for c in columns], indent="     ").strip() + ")" for row in rows]
    return "\n".join(lines) + "\n    " + ",\n    ".join(body) + ";\n"


def wrapped(words, indent="    ", width=110):
    lines, line = [], indent
    for i, word in enumerate(words):
        piece = word + (", " if i + 1 < len(words) else "")
        if len(line) + len(piece) > width and line.strip():
            lines.append(line.rstrip())
            line = indent
        line += piece
    return "\n".join(lines + [line])


# --- Calendar ----------------------------------------------------------------------------------------------------

def easter(year):
    """Easter Sunday by the Gregorian computus (Meeus/Jones/Butcher)."""
    a, b, c = year % 19, year // 100, year % 100
    d, e = b // 4, b % 4
    g = (8 * b + 13) // 25
    h = (19 * a + b - d - g + 15) % 30
    i, k = c // 4, c % 4
    l = (32 + 2 * e + 2 * i - h - k) % 7
    m = (a + 11 * h + 19 * l) // 433
    month = (h + l - 7 * m + 90) // 25
    return datetime.date(year, month, (h + l - 7 * m + 33 * month + 19) % 32)


def holidays(year):
    day = lambda offset: easter(year) + datetime.timedelta(days=offset)
    before = datetime.date(year, 11, 23)  # Buß- und Bettag: the Wednesday before 23 November
    penance = before - datetime.timedelta(days=(before.weekday() - 2 - 1) % 7 + 1)
    return sorted([
        (datetime.date(year, 1, 1), "Neujahr"), (day(-2), "Karfreitag"), (day(1), "Ostermontag"),
        (datetime.date(year, 5, 1), "Tag der Arbeit"), (day(39), "Christi Himmelfahrt"), (day(50), "Pfingstmontag"),
        (datetime.date(year, 10, 3), "Tag der Deutschen Einheit"), (datetime.date(year, 10, 31), "Reformationsfest"),
        (penance, "Buß- und Bettag"), (datetime.date(year, 12, 25), "1. Weihnachtstag"),
        (datetime.date(year, 12, 26), "2. Weihnachtstag")])


def days(year, month=None):
    day = datetime.date(year, month or 1, 1)
    while day.year == year and (month is None or day.month == month):
        yield day
        day += datetime.timedelta(days=1)


def working_days(year, month):
    free = {date for date, _ in holidays(year)}
    return sum(1 for day in days(year, month) if day.weekday() < 5 and day not in free)


# --- Company, turnover, settings ---------------------------------------------------------------------------------

COMPANY = dict(
    fnr=FNR, name1="Müller & Söhne GmbH", name2="Sanitär- und Heizungsbau", name3="Meisterbetrieb seit 1952",
    kurzbez="Müller Söhne", strasse="Löbtauer Gäßchen 14", postfach="10 01 19", plz=1067, ort="Dresden",
    land="Deutschland", bundesland="Sachsen", telefon1="0351 00012-0", telefon2="0351 00012-15", fax="0351 00012-99",
    waehrung="EUR")
SECOND_COMPANY = dict(COMPANY, fnr=2, name1="Elektro Jäger e. K.", name2="", name3="", kurzbez="Jäger",
                      strasse="Am Grünen Grund 3", postfach="", plz=9111, ort="Chemnitz", telefon1="0371 00034-0",
                      telefon2="", fax="")

SEASON = [0.066, 0.064, 0.075, 0.078, 0.080, 0.083, 0.079, 0.082, 0.101, 0.108, 0.101, 0.083]
YEAR_TURNOVER = {2019: 1338000, 2020: 1291000, 2021: 1412000, 2022: 1587000, 2023: 1694000, 2024: 1742000,
                 2025: 1816000}


def turnover(year):
    """Twelve actual and twelve target figures: the target follows the season, the actual figures stray around it."""
    plan = YEAR_TURNOVER[year] * 1.02
    target = [round(plan * share, -2) for share in SEASON]
    actual = [cents(YEAR_TURNOVER[year] * share * rng.uniform(0.93, 1.07)) for share in SEASON]
    if year == 2020:
        actual[3], actual[4] = cents(actual[3] * 0.71), cents(actual[4] * 0.83)
    return actual, target


TURNOVER = {year: turnover(year) for year in YEARS}


def turnover_rows():
    for year, (actual, target) in TURNOVER.items():
        row = dict(fnr=FNR, jahr=year)
        for prefix, months in (("iumsatzdm", actual), ("sumsatzdm", target)):
            row[prefix] = total(months)
            row.update({"%s_%02d" % (prefix, m): months[m - 1] for m in MONTHS})
        yield row


def settings_rows():
    for year in YEARS:
        limit, temporary, unemployment, care, health, levy = SOCIAL[year]
        dates = [date for date, _ in holidays(year)]
        row = dict(fnr=FNR, jahr=year, anzahlfeiertage=len(dates),
                   anzahlfeiertageson=sum(d.weekday() == 6 for d in dates),
                   anzahlfeiertagesam=sum(d.weekday() == 5 for d in dates),
                   jahrestage=sum(1 for _ in days(year)),
                   anzahlsonntage=sum(d.weekday() == 6 for d in days(year)),
                   anzahlsamstage=sum(d.weekday() == 5 for d in days(year)))
        row.update({"arbeitstage%02d" % m: working_days(year, m) for m in MONTHS})
        row.update(grenzerentenversicherung=limit, grenzeaushilfskraft=temporary, grenzegeringverdiener=325,
                   arbeitslosenversicherung=unemployment, pflegeversicherung=care,
                   krankenversicherung=round(health, 2), rentenversicherung=PENSION_RATE, steuersatzaushilfe=2,
                   tagesarbeitszeit=DAILY_HOURS, durchueberstundenzuschlag=25, erstattungsumlage=levy,
                   krankheitstage=9.5, vorgabeurlaubsgeld=40, urlaubstage=28, vorgabeweihnachtsgeld=50, vwl=VL)
        yield row


def holiday_rows():
    for year in YEARS:
        for date, name in holidays(year):
            yield dict(bundesland="Sachsen", jahr=year, fdatum=date, feiertag=name)


# --- Employees ---------------------------------------------------------------------------------------------------

D = datetime.date
# number, form of address, first name, surname, kind, marital status, birth, entry, leaving, street, postal code, town,
# hourly wage or monthly salary, administrative percent, leave, hourly rate charged
STAFF = [
    (1, "Herr", "Jürgen", "Müller", "Meister", "verheiratet", D(1968, 4, 17), D(1990, 8, 1), None,
     "Löbtauer Gäßchen 14", 1067, "Dresden", 4950, 60, 30, 74),
    (2, "Herr", "Thomas", "Großmann", "Meister", "verheiratet", D(1979, 11, 2), D(2004, 3, 1), None,
     "Bergblick 7", 1705, "Freital", 4280, 25, 30, 72),
    (3, "Frau", "Heike", "Müller", "Angestellte", "verheiratet", D(1970, 9, 30), D(1994, 5, 1), None,
     "Löbtauer Gäßchen 14", 1067, "Dresden", 3120, 100, 30, 0),
    (4, "Frau", "Özlem", "Yıldız", "Angestellte", "ledig", D(1991, 2, 11), D(2018, 10, 15), None,
     "Elbhöhe 22", 1445, "Radebeul", 2860, 100, 28, 0),
    (5, "Herr", "Sören", "Köhler", "Geselle", "ledig", D(1988, 6, 5), D(2010, 9, 1), None,
     "Zum Mühlgrund 3", 1157, "Dresden", 20.4, 0, 28, 62),
    (6, "Herr", "Jörg", "Weiß", "Geselle", "verheiratet", D(1974, 1, 23), D(1998, 4, 1), None,
     "Kirschallee 41", 1809, "Heidenau", 21.1, 0, 29, 62),
    (7, "Herr", "André", "Schröder", "Geselle", "geschieden", D(1983, 12, 8), D(2012, 2, 1), None,
     "Am Weinhang 9", 1662, "Meißen", 19.9, 0, 28, 62),
    (8, "Herr", "", "Nguyễn", "Geselle", "verheiratet", D(1986, 7, 19), D(2015, 6, 1), None,
     "Lindenstieg 5", 1277, "Dresden", 19.6, 0, 28, 62),
    (9, "Frau", "Anna-Lena", "Förster", "Geselle", "ledig", D(1998, 3, 14), D(2020, 8, 1), None,
     "Wiesengrund 18", 1728, "Bannewitz", 18.7, 0, 28, 60),
    (10, "Herr", "Dirk", "Böhme", "Helfer", "ledig", D(1990, 10, 27), None, None,
     "Alte Gärtnerei 2", 1169, "Dresden", 15.6, 0, 26, 48),
    (11, "Herr", "Felix", "Jäkel", "Auszubildender", "ledig", D(2006, 5, 9), D(2023, 8, 1), None,
     "Sonnenleite 30", 1324, "Dresden", 980, 0, 28, 30),
    (12, "Herr", "Günter", "Lößnitz", "Geselle", "verheiratet", D(1960, 8, 21), D(1985, 9, 1), D(2024, 9, 30),
     "Am Hellerrand 6", 1129, "Dresden", 20.9, 0, 30, 62),
    (20, "Frau", "Änne", "Graßhoff", "Aushilfe", "verwitwet", D(1961, 12, 1), D(2021, 3, 15), None,
     "Käthe-Winkler-Weg 1", 1219, "Dresden", 520, 100, 12, 0),
]


def staff_rows():
    for (number, title, first, surname, kind, status, birth, entry, leaving, street, plz, town, *_) in STAFF:
        reached = number not in (10, 20)
        mail = surname.lower()
        for umlaut, plain in zip("äöüßıỄễ", ("ae", "oe", "ue", "ss", "i", "e", "e")):
            mail = mail.replace(umlaut, plain)
        yield dict(fnr=FNR, nummer=number, anrede=title, vorname=first, name=surname,
                   name3="geb. Lehmann" if number == 3 else "", art=kind, stand=status, geburtsdatum=birth,
                   eintrittsdatum=entry, austrittsdatum=leaving, strasse=street, plz=plz, ort=town, land="Deutschland",
                   telefon1="0351 00012-%d" % (20 + number), telefon2="0170 000%04d" % (1100 + number) if reached else "",
                   telefon3="", fax="0351 00012-99" if kind == "Angestellte" else "",
                   email=mail + "@mueller-soehne.example" if reached else "",
                   homepage="www.mueller-soehne.example" if number == 1 else "", beztel1="dienstlich",
                   beztel2="mobil" if reached else "", beztel3="", bezfax="Büro" if kind == "Angestellte" else "",
                   bezemail="dienstlich" if reached else "", bezhomepage="Firma" if number == 1 else "")


def employed_until(person, year):
    leaving = person[8]
    return 12 if leaving is None or leaving.year > year else leaving.month if leaving.year == year else 0


def spread(amount, weights):
    """Whole and half days over the months, adding up to `amount`."""
    result = [0.0] * 12
    for _ in range(int(amount * 2)):
        month = max(range(12), key=lambda m: amount * weights[m] / sum(weights) - result[m])
        result[month] += 0.5
    return result


def monthly_times(person, year, actual):
    leave, kind = person[14], person[4]
    summer = [1, 1, 1, 2, 2, 3, 6, 6, 1, 2, 1, 6]
    sick = (rng.choice([3, 5, 7.5, 9, 11, 14]) if actual else 9.5) if kind != "Aushilfe" else 0
    sick_weights = [rng.choice([0.1, 0.5, 3]) for _ in MONTHS] if actual else [3, 3, 2, 1, 1, 0.5, 0.5, 0.5, 1, 1, 2, 2]
    training = {"Auszubildender": 60, "Geselle": 2, "Meister": 3}.get(kind, 0)
    leave_days, sick_days = spread(leave, summer), spread(sick, sick_weights)
    training_days = spread(training, [1, 1, 1, 1, 1, 1, 0, 0, 1, 1, 1, 0.5])
    other = [1.0 if actual and rng.random() < 0.07 else 0.0 for _ in MONTHS]
    hours = 2.4 if kind == "Aushilfe" else DAILY_HOURS
    for m in MONTHS:
        i = m - 1
        if m > employed_until(person, year):
            yield dict(arbtage=0, urlt=0, krank=0, ausb=0, sonsttage=0, uebstd=0, hours=hours)
            continue
        busy = SEASON[i] > 0.09 and kind in ("Geselle", "Meister", "Helfer")
        yield dict(arbtage=working_days(year, m), urlt=leave_days[i], krank=sick_days[i], ausb=training_days[i],
                   sonsttage=other[i], uebstd=rng.choice([4, 6, 8, 9.5]) if busy and actual else 6 if busy else 0,
                   hours=hours)


def finish_times(row, admin, lost):
    row["anwtage"] = row["arbtage"] - row["urlt"] - row["krank"] - row["ausb"] - row["sonsttage"]
    row["anwstd"] = round(row["anwtage"] * row["hours"], 2)
    row["admpr"] = admin
    row["admstd"] = round(row["anwstd"] * admin / 100, 2)
    row["prodstd"] = round(row["anwstd"] - row["admstd"], 2)
    row["prodanwjahr"] = round(row["prodstd"] + row["uebstd"], 2)
    row["nberstd"] = round(row["prodanwjahr"] * lost / 100, 2)
    row["berstdjahr"] = round(row["prodanwjahr"] - row["nberstd"], 2)
    row["berstdtag"] = round(row["berstdjahr"] / row["anwtage"], 2) if row["anwtage"] else 0.0


def pay_of(person, year):
    rise = 1.0 if year == STAFF_YEARS[0] else 1.03
    pay = person[12]
    if person[4] == "Aushilfe":
        return SOCIAL[year][1]
    return round(pay * rise, 2)


def monthly_costs(person, year, month, times, actual):
    kind, pay = person[4], pay_of(person, year)
    row = dict.fromkeys(("brutto", "vwl", "url", "wg", "sonst", "rv", "kv", "av", "pflege", "erst", "rueck"), 0.0)
    if not times["arbtage"]:
        return row
    hourly = pay < 100
    row["brutto"] = cents(pay * (times["arbtage"] * times["hours"] + times["uebstd"] * 1.25) if hourly else pay)
    regular = pay * 21 * DAILY_HOURS if hourly else pay
    if kind != "Aushilfe":
        row["vwl"] = VL
        row["url"] = cents(regular * 0.4) if month == 6 else 0.0
        row["wg"] = cents(regular * 0.5) if month == 11 else 0.0
        row["sonst"] = float(rng.choice([0, 0, 0, 25, 60])) if actual else 0.0
    gross = sum(row[k] for k in ("brutto", "vwl", "url", "wg", "sonst"))
    limit, _, unemployment, care, health, levy = SOCIAL[year]
    if kind == "Aushilfe":  # flat contributions of a minijob: § 249b SGB V, § 172 Abs. 3 SGB VI
        row["kv"], row["rv"] = cents(gross * 0.13), cents(gross * 0.15)
    else:
        for key, rate, ceiling in (("rv", PENSION_RATE / 2, limit), ("av", unemployment / 2, limit),
                                   ("kv", health / 2, HEALTH_LIMIT[year]),
                                   ("pflege", care / 2 - 0.5, HEALTH_LIMIT[year])):
            row[key] = cents(min(gross, ceiling) * rate / 100)
    row["erst"] = cents(min(row["brutto"], limit) * levy / 100)
    row["rueck"] = cents(regular / 21 * (person[14] / 12 - times["urlt"]) * 0.25) if kind != "Aushilfe" else 0.0
    return row


DAY_KEYS = ("arbtage", "urlt", "krank", "ausb", "sonsttage", "anwtage")
HOUR_KEYS = ("anwstd", "admstd", "prodstd", "uebstd", "prodanwjahr", "nberstd", "berstdjahr")
COST_KEYS = ("brutto", "vwl", "url", "wg", "sonst", "rv", "kv", "av", "pflege", "erst", "rueck")
GROSS_KEYS = COST_KEYS[:5]
LOST = {"I": 9.0, "S": 7.5}


def series(person, year, actual):
    """The thirteen rows of one series."""
    admin = person[13]
    rows, gross = [], 0.0
    for month, times in zip(MONTHS, monthly_times(person, year, actual)):
        finish_times(times, admin, LOST["I" if actual else "S"])
        row = dict(times, **monthly_costs(person, year, month, times, actual))
        gross = round(gross + sum(row[k] for k in GROSS_KEYS), 2)
        row["bruttoges"] = gross
        rows.append(row)
    year_row = {k: total(r[k] for r in rows) for k in DAY_KEYS + HOUR_KEYS + COST_KEYS}
    year_row.update(admpr=admin, bruttoges=gross, hours=rows[0]["hours"])
    year_row["berstdtag"] = round(year_row["berstdjahr"] / year_row["anwtage"], 2) if year_row["anwtage"] else 0.0
    return rows + [year_row]


def all_series():
    return {(person[0], year): (series(person, year, True), series(person, year, False))
            for year in STAFF_YEARS for person in STAFF if employed_until(person, year)}


SERIES = all_series()
PEOPLE = {person[0]: person for person in STAFF}


def labour(row):
    return total(row[k] for k in COST_KEYS)


def year_rows():
    for (number, year), (actual, target) in SERIES.items():
        person = PEOPLE[number]
        kind, admin, pay = person[4], person[13], pay_of(person, year)
        hourly = pay < 100
        i, s = actual[12], target[12]
        months = employed_until(person, year)
        row = dict(fnr=FNR, nummer=number, fjahr=year,
                   anzahlma=round(months / 12 * (0.3 if kind == "Aushilfe" else 1), 2),
                   sanzahlmapr=100 - admin, ianzahlmapr=percent(i["prodstd"], i["anwstd"]),
                   gehalt=0 if hourly else pay,
                   stdlohn=pay if hourly else round(pay / (21 * i["hours"]), 2),
                   erhabmon=1 if year == STAFF_YEARS[1] else 0,
                   erhabmondm=round(pay - person[12], 2) if year == STAFF_YEARS[1] else 0,
                   erhabmonpr=percent(pay - person[12], person[12]) if year == STAFF_YEARS[1] else 0,
                   praeabmon=0, praeabmondm=0, praeabmonpr=0, tazeit=i["hours"],
                   tazeitabmon=0, tazeitabstd=0, ruebpr=25, ruebstd=i["uebstd"], nberpr=LOST["I"],
                   nberstd=i["nberstd"], prodzupr=0)
        for prefix, data in (("i", i), ("s", s)):
            paid = round(data["arbtage"] * data["hours"] + data["uebstd"], 2)
            productive = data["prodanwjahr"] / (data["anwstd"] + data["uebstd"]) if data["anwstd"] else 0
            cost = labour(data)
            row[prefix + "anwberstd"] = data["berstdjahr"]
            row[prefix + "bezstd"] = paid
            row[prefix + "bezstdprod"] = round(paid * productive, 2)
            row[prefix + "gesprodstd"] = data["prodanwjahr"]
            row[prefix + "prodlk"] = round(cost * productive, 2)
            row[prefix + "unprodlk"] = round(cost - row[prefix + "prodlk"], 2)
            row[prefix + "stdverdm"] = person[15] if prefix == "i" else round(person[15] * 1.02, 2)
            row[prefix + "kalkulohn"] = 60000 if number == 1 else 0
        row["ipstdverdm"] = round(labour(i) / i["berstdjahr"], 2) if i["berstdjahr"] else 0
        row["kostensatzhw"] = round(row["ipstdverdm"] * 1.35, 2)
        yield row


def month_rows():
    for (number, year), (actual, target) in SERIES.items():
        last = employed_until(PEOPLE[number], year)
        for month in [*range(1, last + 1), 13]:
            row = dict(fnr=FNR, nummer=number, fjahr=year, monat=month)
            for key in COST_KEYS + ("bruttoges",) + DAY_KEYS + HOUR_KEYS + ("admpr", "berstdtag"):
                row["i" + key] = actual[month - 1][key]
                row["s" + key] = target[month - 1][key]
            yield row


# --- Accounts, imputed costs, material ---------------------------------------------------------------------------

# first and last account, kind (1 overheads, 2 neutral), name, code (0 expense, 1 income), target of the year, how it
# falls on the months
EVEN, QUARTERS, WINTER, ONCE = "even", "quarters", "winter", "once"
ACCOUNTS = [
    (4120, 4129, 1, "Gehälter Verwaltung (nicht verrechnet)", 0, 14400, EVEN),
    (4138, 4138, 1, "Beiträge zur Berufsgenossenschaft", 0, 13800, ONCE),
    (4210, 4219, 1, "Miete und Pacht Lagerplatz", 0, 10200, EVEN),
    (4230, 4230, 1, "Heizung", 0, 5400, WINTER),
    (4240, 4249, 1, "Gas, Strom, Wasser", 0, 6900, EVEN),
    (4250, 4250, 1, "Reinigung", 0, 4200, EVEN),
    (4260, 4260, 1, "Instandhaltung betrieblicher Räume", 0, 3600, QUARTERS),
    (4360, 4369, 1, "Versicherungen", 0, 12600, QUARTERS),
    (4380, 4389, 1, "Beiträge (Innung, Handwerkskammer)", 0, 3200, QUARTERS),
    (4510, 4510, 1, "Kfz-Steuer", 0, 2350, ONCE),
    (4520, 4520, 1, "Kfz-Versicherungen", 0, 11200, QUARTERS),
    (4530, 4539, 1, "Laufende Kfz-Betriebskosten", 0, 33600, EVEN),
    (4540, 4540, 1, "Kfz-Reparaturen", 0, 13200, EVEN),
    (4570, 4570, 1, "Leasing Fahrzeuge", 0, 21600, EVEN),
    (4610, 4619, 1, "Werbekosten", 0, 9000, QUARTERS),
    (4630, 4639, 1, "Geschenke und Bewirtung", 0, 1800, QUARTERS),
    (4660, 4669, 1, "Reisekosten und Auslösungen", 0, 7800, EVEN),
    (4805, 4809, 1, "Wartung und Reparatur Maschinen", 0, 6600, EVEN),
    (4830, 4839, 1, "Abschreibungen auf Sachanlagen", 0, 38400, EVEN),
    (4855, 4855, 1, "Geringwertige Wirtschaftsgüter", 0, 4500, QUARTERS),
    (4910, 4910, 1, "Porto", 0, 960, EVEN),
    (4920, 4929, 1, "Telefon, Mobilfunk, Internet", 0, 5400, EVEN),
    (4930, 4939, 1, "Bürobedarf", 0, 3000, EVEN),
    (4945, 4945, 1, "Fortbildung", 0, 4800, QUARTERS),
    (4950, 4959, 1, "Rechts-, Beratungs- und Buchführungskosten", 0, 14400, EVEN),
    (4964, 4964, 1, "Software und Wartung EDV", 0, 7200, EVEN),
    (4970, 4970, 1, "Nebenkosten des Geldverkehrs", 0, 1200, EVEN),
    (4985, 4985, 1, "Werkzeuge und Kleingeräte", 0, 9600, EVEN),
    (4989, 4989, 1, "Erstattungen der Umlage U1", 1, -6300, EVEN),
    (2110, 2119, 2, "Zinsaufwendungen kurzfristig", 0, 1900, QUARTERS),
    (2120, 2129, 2, "Zinsaufwendungen langfristig", 0, 8700, QUARTERS),
    (2150, 2150, 2, "Spenden", 0, 750, ONCE),
    (2310, 2319, 2, "Verluste aus Anlagenabgang", 0, 1400, ONCE),
    (2400, 2409, 2, "Forderungsverluste", 0, 4200, QUARTERS),
    (2500, 2509, 2, "Außerordentliche Erträge", 1, 1100, ONCE),
    (2650, 2659, 2, "Zinserträge", 1, 640, QUARTERS),
    (2700, 2709, 2, "Sonstige betriebliche Erträge", 1, 5200, QUARTERS),
    (2720, 2729, 2, "Erlöse aus Anlagenverkäufen", 1, 3900, ONCE),
    (2732, 2732, 2, "Korrektur Vorjahr (Steuererstattung)", 1, -820, ONCE),
]
SHAPES = {EVEN: [1] * 12, QUARTERS: [4, 0, 0, 4, 0, 0, 4, 0, 0, 4, 0, 0],
          WINTER: [6, 6, 5, 3, 1, 0, 0, 0, 1, 3, 5, 6], ONCE: [0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0]}


def accounts(year):
    growth = 1 if year == STAFF_YEARS[0] else 1.03
    for first, last, kind, name, code, plan, shape in ACCOUNTS:
        weights = SHAPES[shape]
        target = [round(plan * growth * w / sum(weights), 2) for w in weights]
        actual = [cents(t * rng.uniform(0.85, 1.14)) for t in target]
        yield first, last, kind, name, code, target, actual


ACCOUNT_FIGURES = {year: list(accounts(year)) for year in STAFF_YEARS}


def account_rows():
    for year, figures in ACCOUNT_FIGURES.items():
        for first, last, kind, name, code, target, actual in sorted(figures):
            row = dict(fnr=FNR, fjahr=year, vkonto=first, ekonto=last, kontenart=kind, bezeichnung=name,
                       ktobetrart=code, jwsoll=total(target), jwist=total(actual))
            row.update({"mwsoll_%02d" % m: target[m - 1] for m in MONTHS})
            row.update({"mwist_%02d" % m: actual[m - 1] for m in MONTHS})
            yield row


IMPUTED = {2023: (41200, 3100, 8400, 420, 6.9, 3600, 57000, 262000, 4.25),
           2024: (43800, 3300, 8700, 420, 7.1, 3600, 58800, 276000, 4.5),
           2025: (45600, 3500, 9050, 460, 7.25, 3900, 60000, 291500, 4.5)}


def imputed(year):
    depreciation, others, risks, area, price, private, wage, equity, rate = IMPUTED[year]
    rent = round(area * price, 2)
    return dict(dafa=depreciation, dsons=others, dwag=risks, qm=area, qmpreis=price, mmietemon=rent,
                mmietejahr=round(12 * rent, 2), priv=private, upausch=wage, zek=equity, zpzins=rate,
                zdmzins=round(equity * rate / 100, 2))


def imputed_total(year):
    row = imputed(year)
    return total(row[k] for k in ("dafa", "dsons", "dwag", "mmietejahr", "upausch", "zdmzins"))


def material(year):
    actual = [cents(amount * rng.uniform(0.355, 0.415)) for amount in TURNOVER[year][0]]
    target = [round(amount * 0.38, 2) for amount in TURNOVER[year][1]]
    return actual, target


MATERIAL = {year: material(year) for year in COST_YEARS}


def material_rows():
    for year, (actual, target) in MATERIAL.items():
        row = dict(fnr=FNR, jahr=year)
        for prefix, months, sales in (("s", target, TURNOVER[year][1]), ("i", actual, TURNOVER[year][0])):
            row[prefix + "matvkpr"] = row[prefix + "ummatpr_su"] = percent(sum(months), sum(sales))
            row[prefix + "ujmatdm"] = row[prefix + "ummatdm_su"] = total(months)
            row.update({"%summatdm_%02d" % (prefix, m): months[m - 1] for m in MONTHS})
            row.update({"%summatpr_%02d" % (prefix, m): percent(months[m - 1], sales[m - 1]) for m in MONTHS})
        yield row


# --- Parameter arrays --------------------------------------------------------------------------------------------

def german(value):
    if value is None:
        return ""
    if isinstance(value, str):
        return '"' + value.replace('"', '""') + '"'
    return literal(value).replace(".", ",")


def write_array(name, columns, rows):
    """Columns by number; what a report does not read stays empty."""
    width = max(columns) + 1
    lines = [";".join(columns.get(i, "-") for i in range(width))]
    lines += [";".join(german(row.get(i)) for i in range(width)) for row in rows]
    (OUTPUT / "werte" / (name + ".csv")).write_text("\n".join(lines) + "\n", encoding="utf-8")


YEAR = 2025


def figures(actual):
    """The year's result from the same figures that the tables hold."""
    side = 0 if actual else 1
    accounts_of = lambda kind: total(sum(a[6 if actual else 5]) * (-1 if a[4] and kind == 2 else 1)
                                     for a in ACCOUNT_FIGURES[YEAR] if a[2] == kind)
    staff = [s[side][12] for (_, year), s in SERIES.items() if year == YEAR]
    productive = [r for r in year_rows() if r["fjahr"] == YEAR]
    prefix = "i" if actual else "s"
    result = dict(sales=total(TURNOVER[YEAR][side]), material=total(MATERIAL[YEAR][side]),
                  hours=total(r["berstdjahr"] for r in staff),
                  wages=total(r[prefix + "prodlk"] for r in productive),
                  unproductive=total(r[prefix + "unprodlk"] for r in productive),
                  overheads=accounts_of(1), neutral=accounts_of(2), imputed=imputed_total(YEAR))
    result["margin"] = round(result["sales"] - result["material"] - result["wages"], 2)
    result["operating"] = round(result["margin"] - result["unproductive"] - result["overheads"], 2)
    result["result"] = round(result["operating"] - result["imputed"], 2)
    result["profit"] = round(result["operating"] - result["neutral"], 2)
    return result


OVERVIEW = [("Umsatz", "sales"), ("Material", "material"), ("Produktive Lohnkosten", "wages"),
            ("Deckungsbeitrag", "margin"), ("Unproduktive Lohnkosten", "unproductive"),
            ("Gemeinkosten", "overheads"), ("Betriebsergebnis", "operating"),
            ("Kalkulatorische Kosten", "imputed"), ("Kalkulatorisches Ergebnis", "result")]


def write_arrays():
    target, actual = figures(False), figures(True)
    period = {3: YEAR, 4: 1, 5: 12, 6: 1, 7: 12}
    period_names = {3: "Jahr", 4: "SVMon", 5: "SBMon", 6: "IVMon", 7: "IBMon", 8: "Text"}

    fixed, stock, cash, equity = 268400, 61300, 74850.4, 291500
    total_assets = 548000
    write_array("Bilanz", dict(enumerate(["-", "Jahr", "Gewinn", "EK", "Umsatz", "ZinsFK", "Bilanz", "Abschr", "Rueckst",
                                          "FK", "LFK", "Anlage", "Cash", "Mat", "Lager"])),
                [{1: YEAR, 2: actual["profit"], 3: equity, 4: actual["sales"],
                  5: total(sum(a[6]) for a in ACCOUNT_FIGURES[YEAR] if a[0] in (2110, 2120)), 6: total_assets,
                  7: total(sum(a[6]) for a in ACCOUNT_FIGURES[YEAR] if a[0] == 4830), 8: 21700,
                  9: total_assets - equity, 10: 148000, 11: fixed, 12: cash, 13: actual["material"], 14: stock}])

    heads = {"A": 12.0, "P": 8.0, "U": 4.0}
    columns = dict(period_names)
    columns.update({9 + 3 * i + j: "%s%sMaDM" % (prefix, letter)
                    for i, prefix in enumerate("SID") for j, letter in enumerate("APU")})
    rows = []
    for text, key in OVERVIEW:
        row = {} if rows else dict(period)
        row[8] = text
        for j, letter in enumerate("APU"):
            s, i = (cents(side[key] / heads[letter]) for side in (target, actual))
            row[9 + j], row[12 + j], row[15 + j] = s, i, round(i - s, 2)
        rows.append(row)
    write_array("BsEMa", columns, rows)

    columns = dict(period_names)
    columns.update({9: "SDM", 10: "SPR", 11: "IDM", 12: "IPR", 13: "DDM", 14: "DPR"})

    def overview_row(text, s, i, s_share, i_share):
        return {8: text, 9: s, 10: s_share, 11: i, 12: i_share, 13: round(i - s, 2), 14: percent(i - s, abs(s))}

    share = lambda side, key: percent(side[key], side["sales"])
    per_hour = [overview_row(text, cents(target[key] / target["hours"]), cents(actual[key] / actual["hours"]),
                             share(target, key), share(actual, key)) for text, key in OVERVIEW]
    per_hour[0] |= period
    write_array("BsEStd", columns, per_hour)

    whole = [overview_row("Berechenbare Stunden", target["hours"], actual["hours"], 100, 100)]
    whole += [overview_row(text, target[key], actual[key], share(target, key), share(actual, key))
              for text, key in OVERVIEW]
    whole[0] |= period
    write_array("BsEGes", columns, whole)

    write_calculation(target, actual)
    write_what_if(target)
    write_trade_turnover()


def write_calculation(target, actual):
    columns = {1: "Jahr", 2: "Text", 3: "SVMon", 4: "SBMon", 5: "IVMon", 6: "IBMon", 7: "SDBPr", 8: "SDB", 9: "SVerPr",
               10: "SVer", 11: "IDBPr", 12: "IDB", 13: "IVerPr", 14: "IVer", 15: "SMateinsatz", 16: "SBerStd",
               17: "SGewMat", 18: "SMatSt", 19: "SMatZu", 20: "SGewMatStd", 21: "IMateinsatz", 22: "IBerStd",
               23: "IGewMat", 24: "IMatSt", 25: "IMatZu", 26: "IGewMatStd", 27: "jeMinute"}
    material_profit = {id(side): cents(side["material"] * 0.18) for side in (target, actual)}
    # What an hour must bring: its wages and every cost behind it, less the profit on material.
    steps = [("Produktive Lohnkosten", ["wages"]),
             ("mit unproduktiven Lohnkosten", ["wages", "unproductive"]),
             ("mit Gemeinkosten", ["wages", "unproductive", "overheads"]),
             ("mit kalkulatorischen Kosten", ["wages", "unproductive", "overheads", "imputed"])]
    rows = []
    for text, keys in steps:
        row = {2: text}
        for side, first in ((target, 7), (actual, 11)):
            revenue = (side["sales"] - side["material"] - material_profit[id(side)]) / side["hours"]
            cost = sum(side[k] for k in keys) / side["hours"]
            margin = revenue - cost
            net = cost - material_profit[id(side)] / side["hours"]
            row[first], row[first + 1] = percent(margin, revenue), cents(margin)
            row[first + 2], row[first + 3] = percent(net, revenue), cents(net)
        rows.append(row)
    head = {1: YEAR, 3: 1, 4: 12, 5: 1, 6: 12, 27: 0}
    for side, first in ((target, 15), (actual, 21)):
        profit = material_profit[id(side)]
        head.update({first: side["material"], first + 1: side["hours"], first + 2: profit,
                     first + 3: cents(side["material"] / side["hours"]), first + 4: 18,
                     first + 5: cents(profit / side["hours"])})
    rows[0].update(head)
    write_array("KalkW", columns, rows)


def write_what_if(target):
    names = ["-", "Jahr", "SVMon", "SBMon", "IVMon", "IBMon", "Text", "SDM", "PDM", "DDM", "DPr", "UPMa", "UStd", "WMa",
             "WStd", "SVer", "IVer", "TVer", "SKnz", "BerStd", "BerStdPr", "BerStdErh", "ProdLK", "ProdLKPr",
             "ProdLKErh", "UProdLK", "UProdLKPr", "UProdLKErh", "KULohn", "KULohnPr", "KULohnErh", "Mat", "MatPr",
             "MatErh", "MatKnz", "VGem", "VGemPr", "VGemErh", "VGemKnz", "FGem", "FGemPr", "FGemErh", "FGemKnz", "Aufw",
             "AufwPr", "AufwErh", "AufwKnz", "KKost", "KKostPr", "KKostErh", "KKostKnz"]
    variable, fixed = cents(target["overheads"] * 0.35), cents(target["overheads"] * 0.65)
    expenses, wage = 12400.0, IMPUTED[YEAR][6]
    # stem, first column, present value, change in percent, marker
    items = [(19, target["hours"], 2, False), (22, target["wages"], 3, False), (25, target["unproductive"], 3, False),
             (28, wage, 0, False), (31, target["material"], 4, True), (35, variable, 1.5, True), (39, fixed, 2, True),
             (43, expenses, 0, True), (47, round(target["imputed"] - wage, 2), 0, True)]
    head, raised = {}, {}
    for column, value, change, marked in items:
        raised[column] = cents(value * change / 100)
        head.update({column: value, column + 1: change, column + 2: raised[column]})
        if marked:
            head[column + 3] = 1 if change else 0
    before = {k: target[k] for k in ("sales", "material", "wages", "unproductive", "overheads", "imputed")}
    rate = lambda sales, goods, hours: cents((sales - goods * 1.18) / hours)
    after = dict(before, material=before["material"] + raised[31], wages=before["wages"] + raised[22],
                 unproductive=before["unproductive"] + raised[25],
                 overheads=before["overheads"] + raised[35] + raised[39],
                 sales=before["sales"] * 1.02)
    for side in (before, after):
        side["margin"] = side["sales"] - side["material"] - side["wages"]
        side["operating"] = side["margin"] - side["unproductive"] - side["overheads"]
        side["result"] = side["operating"] - side["imputed"]
    rows = []
    for text, key in OVERVIEW:
        s, p = cents(before[key]), cents(after[key])
        rows.append({6: text, 7: s, 8: p, 9: round(p - s, 2), 10: percent(p - s, abs(s)), 18: "EUR"})
    old, new = rate(before["sales"], before["material"], target["hours"]), \
        rate(after["sales"], after["material"], target["hours"] + raised[19])
    rows[0].update(head)
    rows[0].update({1: YEAR, 2: 1, 3: 12, 4: 1, 5: 12, 11: 8, 12: target["hours"], 13: 8,
                    14: round(target["hours"] + raised[19], 2), 15: old, 16: new, 17: round(new - old, 2)})
    write_array("WasWenn", dict(enumerate(names)), rows)


def write_trade_turnover():
    """The year's turnover by kind of invoice: the kinds add up to the month's turnover, the balance."""
    columns = dict(enumerate(["Jahr", "Taglohn", "WartRechnungen", "Rechnungen", "AbgrAZ", "OffeneAZ",
                              "SchlussRechnung", "Gutschrift", "Saldo", "Text"]))
    rows = []
    for m in MONTHS:
        amount = TURNOVER[YEAR][0][m - 1]
        parts = [cents(amount * part) for part in (0.055, 0.09, 0.31, -0.14, 0.2)]
        credit = -cents(amount * rng.uniform(0.004, 0.015))
        final = round(amount - total(parts) - credit, 2)
        rows.append({0: YEAR, 9: MONTH_NAMES[m - 1], 8: amount, 7: credit, 6: final} |
                    {1 + i: part for i, part in enumerate(parts)})
    rows.append({0: YEAR, 9: "Summe"} | {c: total(r[c] for r in rows) for c in range(1, 9)})
    write_array("UmsatzHW", columns, rows)


# --- Output ------------------------------------------------------------------------------------------------------

def main():
    comment = lambda text: "".join(("-- " + line).rstrip() + "\n" for line in text.splitlines())
    sections = [
        ("The sample company, generated by generate.py. People and figures are invented.\n\n" + SOURCES, None, ()),
        ("The second company has no figures: its reports have nothing to print.", "firma", [COMPANY, SECOND_COMPANY]),
        ("Turnover: i actual, s target.", "umsatz", turnover_rows()),
        ("Settings of the years.", "firma_jahre", settings_rows()),
        ("Public holidays of Saxony.", "feiertage", holiday_rows()),
        ("Employees.", "mitarbeiter", staff_rows()),
        ("Contracts and calculations of the years.", "mitarbeiter_jahre", year_rows()),
        ("Costs and times of the months; month 13 is the year's total.", "mitarbeiter_monate", month_rows()),
        ("Overheads and neutral accounts.", "konten", account_rows()),
        ("Imputed costs.", "kosten", (dict(fnr=FNR, jahr=year, **imputed(year)) for year in COST_YEARS)),
        ("Material.", "material", material_rows()),
    ]
    text = "\n".join(comment(title) + (insert(table, list(rows)) if table else "") for title, table, rows in sections)
    (OUTPUT / "werte").mkdir(parents=True, exist_ok=True)
    (OUTPUT / "daten.sql").write_text(text, encoding="utf-8")
    write_arrays()


if __name__ == "__main__":
    main()
