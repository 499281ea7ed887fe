"""The list of list_rows.cpp with ReportLab's canvas: reportlab_list.py ROWS OUTPUT FONTFILE."""
import sys

from reportlab.lib.units import mm
from reportlab.pdfbase import pdfmetrics
from reportlab.pdfbase.ttfonts import TTFont
from reportlab.pdfgen.canvas import Canvas

COLUMNS = [(27, 0), (30, None), (80, None), (143, 2), (163, 2), (178, 2), (188, 1), (198, 0)]


def german(cents, decimals):
    text = f"{abs(cents) / 100:,.{decimals}f}" if decimals else str(abs(cents) // 100)
    return ("-" if cents < 0 else "") + text.translate(str.maketrans(",.", ".,"))


def main():
    rows, output, font = int(sys.argv[1]), sys.argv[2], sys.argv[3]
    pdfmetrics.registerFont(TTFont("Sans", font))
    canvas = Canvas(output, pagesize=(210 * mm, 297 * mm), pageCompression=1)
    for i in range(rows):
        line = i % 45
        if line == 0:
            if i:
                canvas.showPage()
            canvas.setFont("Sans", 2.75 * mm)
        y = (297 - 30.8 - line * 5.5) * mm
        values = [(4000 + i) * 100, f"Bezeichnung des Kontos {i}",
                  "Dresden" if i % 3 else "Neustadt an der Weinstraße", i * 731 % 9999999, i * 977 % 9999999,
                  i * 331 % 500000 - 250000, i * 7 % 10000, 201000 + i % 10 * 100]
        for (x, decimals), value in zip(COLUMNS, values):
            if decimals is None:
                canvas.drawString(x * mm, y, value)
            else:
                canvas.drawRightString(x * mm, y, german(value, decimals))
    canvas.save()


main()
