"""The logical structure of a PDF: its elements, and what of the pages shows them."""
import collections
import functools

import pikepdf

from pdf_file import SHOWING, inherited, kind_of, shown_in, unicode_map

# ISO 32000-1, 14.8.4, what this writer uses and what checkers know
GROUPING = {"Document", "Part", "Art", "Sect", "Div", "BlockQuote", "Caption", "TOC", "TOCI", "Index", "NonStruct", "Private"}
HEADINGS = {"H1", "H2", "H3", "H4", "H5", "H6"}
BLOCKS = HEADINGS | {"P", "H", "L", "LI", "Lbl", "LBody", "Table", "TR", "TH", "TD", "THead", "TBody", "TFoot"}
INLINE = {"Span", "Quote", "Note", "Reference", "BibEntry", "Code", "Link", "Annot", "Ruby", "RB", "RT", "RP", "Warichu", "WT",
          "WP", "Figure", "Formula", "Form"}
STANDARD = GROUPING | BLOCKS | INLINE
PAINTING = SHOWING | {"f", "F", "f*", "S", "s", "B", "B*", "b", "b*", "Do", "sh", "INLINE IMAGE", "EI"}

# A stretch of a page's content that paints: the marks around it, the innermost last, each with tag and properties.
Painted = collections.namedtuple("Painted", "page operator marks")
Mark = collections.namedtuple("Mark", "tag properties")


class Element:
    def __init__(self, dictionary, parent):
        self.dictionary, self.parent = dictionary, parent
        self.kids, self.contents, self.objects = [], [], []

    @functools.cached_property
    def type(self):
        return str(self.dictionary.get("/S", "/?"))[1:]

    @functools.cached_property
    def id(self):
        return bytes(self.dictionary["/ID"]) if "/ID" in self.dictionary else None

    def attribute(self, owner, name):
        """An attribute's value, or None."""
        attributes = self.dictionary.get("/A")
        for found in listed(attributes):
            if kind_of(found) == "dictionary" and found.get("/O") == f"/{owner}" and f"/{name}" in found:
                return found[f"/{name}"]
        return None

    def span(self, name):
        return int(self.attribute("Table", name) or 1)

    def inside(self, kind):
        """The nearest element of that type around this one, or None."""
        found = self.parent
        while found is not None and found.type != kind:
            found = found.parent
        return found

    def walk(self):
        yield self
        for kid in self.kids:
            yield from kid.walk()


class Structure:
    def __init__(self, file):
        self.file = file
        self.root = file.root.get("/StructTreeRoot")
        self.wrong = []  # what can't be read
        self.tops = [self._read(kid, None, set()) for kid in listed(self.root.get("/K"))] if self.root is not None else []

    def _read(self, dictionary, parent, above):
        element = Element(dictionary, parent)
        if dictionary.objgen in above and dictionary.objgen != (0, 0):
            self.wrong.append("an element lies within itself")
            return element
        page = dictionary.get("/Pg")
        for kid in listed(dictionary.get("/K")):
            if isinstance(kid, int):
                element.contents.append((page, kid))
            elif kind_of(kid) != "dictionary":
                self.wrong.append(f"a kid of {element.type} is {kid!r}")
            elif kid.get("/Type") == "/MCR":
                element.contents.append((kid.get("/Pg", page), int(kid.MCID)))
            elif kid.get("/Type") == "/OBJR":
                element.objects.append(kid.Obj)
            else:
                element.kids.append(self._read(kid, element, above | {dictionary.objgen}))
        return element

    @functools.cached_property
    def elements(self):
        """In the order in which they are read."""
        return [element for top in self.tops for element in top.walk()]

    def of(self, *types):
        return [element for element in self.elements if element.type in types]

    @functools.cached_property
    def owners(self):
        """Which element a mark belongs to: (page, number of the mark)."""
        return {(page.objgen, number): element for element in self.elements for page, number in element.contents
                if page is not None}

    @functools.cached_property
    def painted(self):
        found = []
        for page in self.file.pages:
            marks = []
            for operator, operands in self.file.content_of(page):
                if operator in ("BMC", "BDC"):
                    marks.append(Mark(str(operands[0])[1:], operands[1] if len(operands) > 1 else pikepdf.Dictionary()))
                elif operator == "EMC":
                    marks = marks[:-1]
                elif operator in PAINTING:
                    found.append(Painted(page, operator, tuple(marks)))
        return found

    @functools.cached_property
    def texts(self):
        """What each mark says: (page, number of the mark)."""
        found, maps = collections.defaultdict(str), {}
        for page in self.file.pages:
            for text in shown_in(inherited(page, "/Resources"), self.file.content_of(page)):
                properties = next((mark[1] for mark in reversed(text.marks) if len(mark) > 1 and "/MCID" in mark[1]), None)
                if properties is None:
                    continue
                key = (page.objgen, int(properties.MCID))
                if "/ActualText" in properties:
                    found[key] = str(properties.ActualText)
                else:
                    codes = maps.setdefault(text.font.objgen, unicode_map(text.font))
                    found[key] += "".join(codes.get(code, "\ufffd") for code in text.codes)
        return found

    def said(self, element):
        """What the element says itself, without those in it; a soft hyphen parts no word."""
        texts = (self.texts[page.objgen, number] for page, number in element.contents if page is not None)
        return "".join(texts).replace("\u00ad", "")

    @functools.cached_property
    def parents(self):
        """The tree from numbers to elements."""
        return dict(numbers_of(self.root.get("/ParentTree"), "/Nums")) if self.root is not None else {}

    @functools.cached_property
    def names(self):
        """The tree from names to elements."""
        return {bytes(name): element for name, element in numbers_of(self.root.get("/IDTree"), "/Names")} if self.root is not None else {}

    def rows(self, table):
        """A table's rows, whatever groups them."""
        for kid in table.kids:
            if kid.type == "TR":
                yield kid
            elif kid.type in ("THead", "TBody", "TFoot"):
                yield from (row for row in kid.kids if row.type == "TR")


def listed(value):
    if value is None:
        return []
    return list(value) if kind_of(value) == "array" else [value]


def numbers_of(node, key):
    if node is None:
        return
    entries = list(node.get(key, []))
    for at in range(0, len(entries), 2):
        yield entries[at], entries[at + 1]
    for kid in node.get("/Kids", []):
        yield from numbers_of(kid, key)
