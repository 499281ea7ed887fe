"""Numbers, months and weekdays as a layout's patterns show them, formatted without the engine."""
import datetime
import decimal
import re

MONTHS = ("Januar", "Februar", "März", "April", "Mai", "Juni", "Juli", "August", "September", "Oktober", "November",
          "Dezember")
DAYS = ("Montag", "Dienstag", "Mittwoch", "Donnerstag", "Freitag", "Samstag", "Sonntag")


def german(value, pattern):
    """A value, a Decimal or the text of one with a comma, as a pattern shows it; other texts as they are."""
    if pattern == "dddd" and (date := re.fullmatch(r"(\d+)\.(\d+)\.(\d+)", value)):
        return DAYS[datetime.date(int(date[3]), int(date[2]), int(date[1])).weekday()]
    if not isinstance(value, decimal.Decimal):
        if not pattern or not re.fullmatch(r"-?\d+(,\d+)?", value or ""):
            return value or ""
        value = decimal.Decimal(value.replace(",", "."))
    if pattern in ("MMM", "MMMM"):
        return MONTHS[int(value) - 1][:3 if pattern == "MMM" else None]
    parts = pattern.split(";")
    part = parts[0]
    sign = "-" if value < 0 and len(parts) < 2 else ""
    if value < 0 and len(parts) > 1:
        part = parts[1]
    places = decimals(part) if re.search("[#0]", part) else decimals(parts[0])
    rounded = abs(value).quantize(decimal.Decimal(1).scaleb(-places), decimal.ROUND_HALF_UP)
    if rounded == 0:
        part = parts[2] if len(parts) > 2 else parts[0]
        sign = ""
    before, figures, after = re.fullmatch(r"([^#0.,]*)([#0.,]*)(.*)", part).groups()
    if not figures:
        return before + after
    whole, _, places = figures.partition(",")
    digits, _, fraction = f"{rounded:f}".partition(".")
    fraction = fraction[:places.count("0")] + fraction[places.count("0"):].rstrip("0")
    digits = digits.lstrip("0").rjust(whole.count("0"), "0")
    if "." in whole:
        digits = re.sub(r"(?<=\d)(?=(\d{3})+$)", ".", digits)
    return (before + sign + digits + ("," + fraction if fraction else "") + after).replace(chr(34), "")


def decimals(part):
    return len(re.sub(r"[^#0,]", "", part).partition(",")[2])
