"""What the layouts compute, computed once more: for each report the meaning of every expression and of every chart, from
the values of the database and of the files of values. A record is a dictionary by lower-case column name; `rows` are the
records that a band sums up. None stands for what can't be computed and is printed as a dash."""
from decimal import Decimal

from german import german

MONTH_COLUMNS = [f"{month:02}" for month in range(1, 13)]
SHORT_MONTHS = ["Jan", "Feb", "Mär", "Apr", "Mai", "Jun", "Jul", "Aug", "Sep", "Okt", "Nov", "Dez"]


def total(rows, column):
    return sum((row[column] for row in rows), Decimal(0))


def ratio(part, whole):
    return None if whole == 0 else part / whole


def percent(part, whole):
    return None if whole == 0 else part / whole * 100


def change(actual, target):
    """The deviation in percent of the target's magnitude."""
    return percent(actual - target, abs(target))


def positive(value):
    return max(value, Decimal(0))


def column(name):
    return lambda record, rows: record[name]


def columns(names):
    return lambda record, rows: [record[name] for name in names]


def of_rows(name, chosen=lambda row: True):
    return lambda record, rows: [row[name] for row in rows if chosen(row)]


def sums(*names):
    return {f"sum({name})": lambda record, rows, name=name.lower(): total(rows, name) for name in names}


def turnover():
    figures = {}
    for suffix in ["", *("_" + month for month in MONTH_COLUMNS)]:
        actual, target = "iumsatzdm" + suffix, "sumsatzdm" + suffix
        names = f"IUmsatzDM{suffix}", f"sUmsatzDM{suffix}"
        figures[f"{names[0]}-{names[1]}"] = lambda r, rows, a=actual, t=target: r[a] - r[t]
        figures[f"({names[0]}-{names[1]})/abs({names[1]})*100"] = lambda r, rows, a=actual, t=target: change(r[a], r[t])
        figures[f"{names[0]}/IUmsatzDM*100"] = lambda r, rows, a=actual: percent(r[a], r["iumsatzdm"])
    return figures | {
        "sum(IUmsatzDM)": lambda r, rows: total(rows, "iumsatzdm"),
        "sum(IUmsatzDM)/count()": lambda r, rows: total(rows, "iumsatzdm") / len(rows),
        "sum(IUmsatzDM)-sum(sUmsatzDM)": lambda r, rows: total(rows, "iumsatzdm") - total(rows, "sumsatzdm"),
        "(sum(IUmsatzDM)-sum(sUmsatzDM))/abs(sum(sUmsatzDM))*100":
            lambda r, rows: change(total(rows, "iumsatzdm"), total(rows, "sumsatzdm")),
        "max(IUmsatzDM)": lambda r, rows: max(row["iumsatzdm"] for row in rows),
        "min(IUmsatzDM)": lambda r, rows: min(row["iumsatzdm"] for row in rows),
        "max(Fuerjahr)": lambda r, rows: max(row["jahr"] for row in rows),
        "min(Fuerjahr)": lambda r, rows: min(row["jahr"] for row in rows),
    }


def material():
    figures = {}
    for suffix in [*MONTH_COLUMNS, "Su"]:
        for kind in ("DM", "pr"):
            names = f"IUMMat{kind}_{suffix}", f"SUMMat{kind}_{suffix}"
            figures[f"{names[0]}-{names[1]}"] = lambda r, rows, a=names[0].lower(), t=names[1].lower(): r[a] - r[t]
    return figures


def accounts():
    figures = sums("MonatSoll", "MonatIst", "JWSoll", "JWIst")
    for kind in ("Monat", "JW"):
        actual, target = f"{kind.lower()}ist", f"{kind.lower()}soll"
        figures[f"{kind}Ist-{kind}Soll"] = lambda r, rows, a=actual, t=target: r[a] - r[t]
        figures[f"sum({kind}Ist)-sum({kind}Soll)"] = (
            lambda r, rows, a=actual, t=target: total(rows, a) - total(rows, t))
    figures["(JWIst-JWSoll)/abs(JWSoll)*100"] = lambda r, rows: change(r["jwist"], r["jwsoll"])
    figures["(sum(JWIst)-sum(JWSoll))/abs(sum(JWSoll))*100"] = (
        lambda r, rows: change(total(rows, "jwist"), total(rows, "jwsoll")))
    return figures


def employee_costs():
    figures = sums(*(side + name for side in "SI" for name in ("Brutto", "BruttoGes", "Url", "VWL", "WG")))
    for side in "SI":
        pay, share = f"{side.lower()}brutto", f"{side.lower()}admpr"
        figures[f"sum({side}AdmPr*{side}Brutto)/sum({side}Brutto)"] = lambda r, rows, pay=pay, share=share: ratio(
            sum((row[share] * row[pay] for row in rows), Decimal(0)), total(rows, pay))
    return figures


def employee_times():
    figures = sums(*(side + name for side in "SI" for name in (
        "AnwTage", "Krank", "UrlT", "Ausb", "SonstTage", "ProdStd", "UebStd", "NBerStd", "BerStdJahr")))
    for side in "SI":
        hours, days = f"{side.lower()}berstdjahr", f"{side.lower()}anwtage"
        figures[f"sum({side}BerStdJahr)/sum({side}AnwTage)"] = (
            lambda r, rows, hours=hours, days=days: ratio(total(rows, hours), total(rows, days)))
    return figures


IMPUTED = ("dafa", "dwag", "dsons", "mmietejahr", "upausch", "zdmzins")


def imputed(record):
    return sum(record[name] for name in IMPUTED)


def imputed_costs():
    whole = "DAfa+DWag+DSons+MMieteJahr+UPausch+ZDMZins"
    figures = {whole: lambda r, rows: imputed(r), f"({whole})/12": lambda r, rows: imputed(r) / 12,
               f"({whole})/({whole})*100": lambda r, rows: Decimal(100)}
    for name in ("DAfa", "MMieteJahr", "UPausch", "ZDMZins", "DWag", "DSons"):
        figures[f"{name}/12"] = lambda r, rows, name=name.lower(): r[name] / 12
        figures[f"{name}/({whole})*100"] = lambda r, rows, name=name.lower(): percent(r[name], imputed(r))
    return figures


def balance_sheet():
    equity, turnover_, whole, fixed = "wenn(EK>0;EK;0)", "wenn(Umsatz>0;Umsatz;0)", "wenn(Bilanz>0;Bilanz;0)", \
        "wenn(Anlage>0;Anlage;0)"

    def cash_flow(r):
        return r["gewinn"] + r["abschr"]

    return {
        f"Gewinn/{equity}*100": lambda r, rows: percent(r["gewinn"], positive(r["ek"])),
        f"Gewinn/{turnover_}*100": lambda r, rows: percent(r["gewinn"], positive(r["umsatz"])),
        f"(Gewinn+ZinsFK)/{whole}*100": lambda r, rows: percent(r["gewinn"] + r["zinsfk"], positive(r["bilanz"])),
        f"EK/{whole}*100": lambda r, rows: percent(r["ek"], positive(r["bilanz"])),
        f"FK/{equity}*100": lambda r, rows: percent(r["fk"], positive(r["ek"])),
        "Gewinn+Abschr": lambda r, rows: cash_flow(r),
        f"(Gewinn+Abschr)/{turnover_}*100": lambda r, rows: percent(cash_flow(r), positive(r["umsatz"])),
        f"EK/{fixed}*100": lambda r, rows: percent(r["ek"], positive(r["anlage"])),
        f"(EK+LFK)/{fixed}*100": lambda r, rows: percent(r["ek"] + r["lfk"], positive(r["anlage"])),
        "Cash/wenn(FK>LFK;FK-LFK;0)*100": lambda r, rows: percent(r["cash"], positive(r["fk"] - r["lfk"])),
        f"Mat/{turnover_}*100": lambda r, rows: percent(r["mat"], positive(r["umsatz"])),
        "Mat/wenn(Lager>0;Lager;0)": lambda r, rows: ratio(r["mat"], positive(r["lager"])),
        "360*Lager/wenn(Mat>0;Mat;0)": lambda r, rows: ratio(360 * r["lager"], positive(r["mat"])),
    }


def calculation_values():
    names = ("Mateinsatz", "BerStd", "GewMat", "MatSt", "MatZu", "GewMatStd")
    return {f"I{name}-S{name}": lambda r, rows, name=name.lower(): r["i" + name] - r["s" + name] for name in names}


FIGURES = {
    "Umsatz": turnover(),
    "MitUeber": {"count()": lambda r, rows: Decimal(len(rows))},
    "Firma": {"+".join("Arbeitstage" + month for month in MONTH_COLUMNS):
              lambda r, rows: sum(r["arbeitstage" + month] for month in MONTH_COLUMNS)},
    "GemeinK": accounts(),
    "NeutralA": accounts(),
    "MaKost": employee_costs(),
    "MaZeit": employee_times(),
    "MaStKost": {},
    "MaStZeit": {},
    "KalkKo": imputed_costs(),
    "MatUeber": material(),
    "Bilanz": balance_sheet(),
    "BsEMa": {},
    "BsEStd": {},
    "BsEGes": {},
    "KalkW": calculation_values(),
    "WasWenn": {},
    "UmsatzHW": {},
}


def monthly(stem):
    return columns([f"{stem}_{month}" for month in MONTH_COLUMNS])


def row_texts(record, rows):
    return [row["text"] for row in rows]


def working_days(record, rows):
    return [f"{name} {german(record['arbeitstage' + month], '0,#')}" for name, month in zip(SHORT_MONTHS, MONTH_COLUMNS)]


def of_whole_year(target, actual):
    """The employees of a whole year for whom there is something to show."""
    return lambda row: row["monat"] == 13 and (row[target] != 0 or row[actual] != 0)


def names_of(chosen):
    return lambda record, rows: [row["name"] for row in rows if chosen(row)]


PAID = of_whole_year("sbrutto", "ibrutto")
PRODUCTIVE = of_whole_year("sprodstd", "iprodstd")
BORROWED = lambda r, rows: [r["fk"] - r["lfk"]]

# By report and series: the values of each series, and the labels.
CHARTS = {
    "Umsatz": {"sUmsatzDM_01..12; IUmsatzDM_01..12": ([monthly("sumsatzdm"), monthly("iumsatzdm")], SHORT_MONTHS),
               "sUmsatzDM; IUmsatzDM": ([of_rows("sumsatzdm"), of_rows("iumsatzdm")],
                                        lambda record, rows: [str(row["jahr"]).partition(".")[0] for row in rows])},
    "Firma": {"Arbeitstage01..12": ([columns(["arbeitstage" + month for month in MONTH_COLUMNS])], working_days)},
    "MatUeber": {
        "SUMMatDM_01..12; IUMMatDM_01..12": ([monthly("summatdm"), monthly("iummatdm")], SHORT_MONTHS),
        "SUMMatpr_01..12; IUMMatpr_01..12": ([monthly("summatpr"), monthly("iummatpr")], SHORT_MONTHS)},
    "KalkKo": {"DAfa, MMieteJahr, UPausch, ZDMZins, DWag, DSons": (
        [columns(["dafa", "mmietejahr", "upausch", "zdmzins", "dwag", "dsons"])],
        ["Abschreibungen", "Miete", "Unternehmerlohn", "Zinsen", "Wagnisse", "Sonstige"])},
    "MaKost": {"IBrutto; SBrutto": ([of_rows("ibrutto", PAID), of_rows("sbrutto", PAID)], names_of(PAID))},
    "MaZeit": {"IProdStd; SProdStd": (
        [of_rows("iprodstd", PRODUCTIVE), of_rows("sprodstd", PRODUCTIVE)], names_of(PRODUCTIVE))},
    "Bilanz": {
        "EK; LFK; =FK-LFK": ([columns(["ek"]), columns(["lfk"]), BORROWED], []),
        "EK; LFK; =FK-LFK; =Bilanz-EK-FK": (
            [columns(["ek"]), columns(["lfk"]), BORROWED, lambda r, rows: [r["bilanz"] - r["ek"] - r["fk"]]], [])},
    "BsEMa": {"IAMaDM; SAMaDM": ([of_rows("iamadm"), of_rows("samadm")], row_texts)},
    "BsEStd": {"IDM; SDM": ([of_rows("idm"), of_rows("sdm")], row_texts)},
    "BsEGes": {"IDM; SDM": ([lambda r, rows: [row["idm"] for row in rows[1:]],
                             lambda r, rows: [row["sdm"] for row in rows[1:]]],
                            lambda r, rows: [row["text"] for row in rows[1:]])},
    "KalkW": {"IVer; SVer": ([of_rows("iver"), of_rows("sver")], row_texts)},
    "WasWenn": {"=SDM/1000; =PDM/1000": (
        [lambda r, rows: [row["sdm"] / 1000 for row in rows], lambda r, rows: [row["pdm"] / 1000 for row in rows]],
        row_texts)},
    "UmsatzHW": {"Taglohn, WartRechnungen, Rechnungen, AbgrAZ, OffeneAZ, SchlussRechnung, Gutschrift": (
        [columns(["taglohn", "wartrechnungen", "rechnungen", "abgraz", "offeneaz", "schlussrechnung", "gutschrift"])],
        ["Taglohn", "Wartungsrechnungen", "Rechnungen", "Abgerechnete Abschläge", "Offene Abschläge",
         "Schlussrechnungen", "Gutschriften"])},
}

RESULTS = ("Deckungsbeitrag", "Betriebsergebnis", "Kalkulatorisches Ergebnis")

CONDITIONS = {
    "MonatText <> ''": lambda r: r["monattext"] != "",
    "MonatText = ''": lambda r: r["monattext"] == "",
    " oder ".join(f"Text = '{result}'" for result in RESULTS): lambda r: r["text"] in RESULTS,
    " und ".join(f"Text <> '{result}'" for result in RESULTS): lambda r: r["text"] not in RESULTS,
    "Text <> 'Summe'": lambda r: r["text"] != "Summe",
    "Text = 'Summe'": lambda r: r["text"] == "Summe",
    "Monat = 13": lambda r: r["monat"] == 13,
    "Monat < 13": lambda r: r["monat"] < 13,
    "EK >= 0 und LFK >= 0 und FK >= LFK und EK+FK < Bilanz+0,005":
        lambda r: 0 <= r["ek"] and 0 <= r["lfk"] <= r["fk"] and r["ek"] + r["fk"] <= r["bilanz"],
    "Bilanz-EK-FK < 0,005": lambda r: r["bilanz"] == r["ek"] + r["fk"],
    "Bilanz-EK-FK >= 0,005": lambda r: r["bilanz"] > r["ek"] + r["fk"],
}
