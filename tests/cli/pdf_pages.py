"""What stands on the pages of a PDF, with its place: words, filled boxes, strokes. Points, from the page's upper left."""
import collections
import html
import pathlib
import re
import subprocess
import zlib

Word = collections.namedtuple("Word", "left right top bottom text")
Box = collections.namedtuple("Box", "left right top bottom color")

NUMBER = r"(-?[\d.]+)"
FILL = re.compile(rf"([\d.]+ [\d.]+ [\d.]+) rg {' '.join([NUMBER] * 4)} re f")
STROKE = re.compile(rf"([\d.]+ [\d.]+ [\d.]+) RG {NUMBER} w {' '.join([NUMBER] * 2)} m {' '.join([NUMBER] * 2)} l S")


class Page:
    def __init__(self, height, words, fills, strokes):
        self.height = height
        self.words = words
        self.fills = fills
        self.strokes = strokes

    def lines(self):
        """Words by line, from the top; a line's words from the left."""
        lines = []
        for word in sorted(self.words, key=middle):
            if lines and middle(word) - middle(lines[-1][0]) < 1.5:
                lines[-1].append(word)
            else:
                lines.append([word])
        return [sorted(line) for line in lines]

    def text_within(self, left, right, top, bottom):
        """The words that lie within, on the lines that have their middle there."""
        inside = [word for word in self.words
                  if word.left > left - 0.6 and word.right < right + 0.6 and top < middle(word) < bottom]
        return " ".join(word.text for word in sorted(inside, key=lambda word: (round(middle(word)), word.left)))


def middle(word):
    return (word.top + word.bottom) / 2


def color_of(text):
    """A colour as a layout writes it, as a page's content does."""
    thousandths = [(int(text[at:at + 2], 16) * 1000 + 127) // 255 for at in (1, 3, 5)]
    return " ".join("1" if part == 1000 else "0" if part == 0 else f".{part:03}" for part in thousandths)


def contents_of(pdf):
    """Each page's content, as text."""
    data = pathlib.Path(pdf).read_bytes()
    streams = {int(found[1]): found.end() for found in re.finditer(rb"(\d+) 0 obj\s*<<[^>]*>>\s*stream\r?\n", data)}
    for page in re.finditer(rb"/Type/Page/[^>]*?/Contents(?:\[([^\]]*)\]| ?(\d+ 0 R))", data):
        numbers = [int(number) for number in re.findall(rb"(\d+) 0 R", page[1] or page[2])]
        yield "\n".join(zlib.decompressobj().decompress(data[streams[number]:]).decode("latin-1") for number in numbers)


def words_of(pdf, first=1, last=100_000):
    """For each of the pages its size and its words."""
    boxes = subprocess.run(["pdftotext", "-bbox", "-f", str(first), "-l", str(last), pdf, "-"],
                           capture_output=True, text=True, check=True).stdout
    word = re.compile(r'<word xMin="([-\d.]+)" yMin="([-\d.]+)" xMax="([-\d.]+)" yMax="([-\d.]+)">(.*?)</word>')
    for part in re.findall(r"<page (.*?)</page>", boxes, re.DOTALL):
        width, height = (float(re.search(rf'{name}="([\d.]+)"', part)[1]) for name in ("width", "height"))
        yield width, height, [Word(float(left), float(right), float(top), float(bottom), html.unescape(text))
                              for left, top, right, bottom, text in word.findall(part)]


def pages_of(pdf):
    pages = []
    for (_, height, words), content in zip(words_of(pdf), contents_of(pdf), strict=True):
        fills = []
        for color, *values in FILL.findall(content):
            x, y, width, tall = map(float, values)
            fills.append(Box(x, x + width, height - y - tall, height - y, color))
        strokes = []
        for color, _, *values in STROKE.findall(content):
            x1, y1, x2, y2 = map(float, values)
            strokes.append(Box(x1, x2, height - y1, height - y2, color))
        pages.append(Page(height, words, fills, strokes))
    return pages
