"""A PDF as the rules look at it: its bytes, its objects, and what its pages and forms show."""
import collections
import functools
import pathlib
import re
import struct

import pikepdf

# What a text-showing operator shows: the font's dictionary and the codes.
Shown = collections.namedtuple("Shown", "font codes marks")

SHOWING = {"Tj", "TJ", "'", '"'}


class PdfFile:
    """`every`: of the pages only each so many-th has its content read; that goes for files without structure alone."""

    def __init__(self, path, every=1):
        self.data = pathlib.Path(path).read_bytes()
        self.pdf = pikepdf.open(path, inherit_page_attributes=False)
        self.root = self.pdf.Root
        self.every = every
        self._contents = {}

    @functools.cached_property
    def objects(self):
        """Every object that is there, by its number."""
        return {obj.objgen[0]: obj for obj in self.pdf.objects if not is_null(obj)}

    @functools.cached_property
    def streams(self):
        return [obj for obj in self.objects.values() if kind_of(obj) == "stream"]

    @functools.cached_property
    def dictionaries(self):
        """The entries of every dictionary, of direct ones and those of streams as well."""
        found = []
        for obj in self.objects.values():
            add_dictionaries(obj, found)
        return found

    @functools.cached_property
    def pages(self):
        """In the order of the tree. (The library's own list writes into each page what it inherits.)"""
        return list(leaves_of(self.root.Pages))

    def content_of(self, owner):
        """The instructions of a page or of a form, read once: pairs of operator and operands."""
        assert owner.is_indirect, "a page that is no object of its own"
        if owner.objgen not in self._contents:
            self._contents[owner.objgen] = [(str(instruction.operator), instruction.operands)
                                            for instruction in pikepdf.parse_content_stream(owner)]
        return self._contents[owner.objgen]

    @functools.cached_property
    def contents(self):
        """The content of pages, and of the forms that they reach: (owner, own resources or None, instructions)."""
        found, seen = [], set()
        for page in self.pages[::self.every]:
            own = page.get("/Resources")
            found.append((page, own, self.content_of(page)))
            self._add_forms(own, found, seen)
        return found

    def _add_forms(self, resources, found, seen):
        if resources is None or resources.objgen in seen and resources.objgen != (0, 0):
            return
        seen.add(resources.objgen)
        streams = values_of(resources, "/XObject") + values_of(resources, "/Pattern")
        for state in values_of(resources, "/ExtGState"):
            mask = state.get("/SMask")
            if isinstance(mask, pikepdf.Dictionary):
                streams.append(mask.G)
        for stream in streams:
            is_content = isinstance(stream, pikepdf.Stream) and (
                stream.get("/Subtype") == "/Form" or stream.get("/PatternType") == 1)
            if is_content and stream.objgen not in seen:
                seen.add(stream.objgen)
                own = stream.get("/Resources")
                found.append((stream, own, self.content_of(stream)))
                self._add_forms(own, found, seen)

    @functools.cached_property
    def shown(self):
        return [text for _, resources, instructions in self.contents for text in shown_in(resources, instructions)]

    @functools.cached_property
    def fonts(self):
        return [found for found in self.dictionaries if found.get("/Type") == "/Font" and (
            "/DescendantFonts" in found or found.get("/Subtype") in ("/TrueType", "/Type1", "/Type3", "/MMType1"))]

    @functools.cached_property
    def used(self):
        """The fonts that show something, each with its codes."""
        codes = {}
        for text in self.shown:
            key = text.font.objgen
            if key not in codes:
                codes[key] = Font(text.font), set()
            codes[key][1].update(text.codes)
        return list(codes.values())

    @functools.cached_property
    def profile(self):
        """The output intent's profile, or None."""
        for intent in self.root.get("/OutputIntents", []):
            if intent.get("/S") == "/GTS_PDFA1" and "/DestOutputProfile" in intent:
                return intent.DestOutputProfile
        return None

    @functools.cached_property
    def metadata(self):
        stream = self.root.get("/Metadata")
        return stream.read_bytes() if isinstance(stream, pikepdf.Stream) else None


class Entries(dict):
    """What a dictionary holds, read from the library once: each look there takes as long as a hundred looks here."""

    def __init__(self, dictionary):
        super().__init__((key, dictionary.get(key)) for key in dictionary.keys())
        self.objgen = dictionary.objgen


def kind_of(value):
    """"dictionary", "array", "name", …; None of numbers and truth values. (isinstance takes seven times as long.)"""
    return value._type_name if type(value) is pikepdf.Object else None


def is_null(obj):
    return obj is None or kind_of(obj) == "null"


def leaves_of(node):
    if node.get("/Type") == "/Pages":
        for kid in node.Kids:
            yield from leaves_of(kid)
    else:
        yield node


def inherited(page, key):
    while page is not None and key not in page:
        page = page.get("/Parent")
    return page.get(key) if page is not None else None


def values_of(dictionary, key):
    """What the dictionary at `key` of another one holds; nothing where it is not there."""
    inner = dictionary.get(key)
    return [inner[name] for name in inner.keys()] if kind_of(inner) == "dictionary" else []


def add_dictionaries(obj, found):
    """Adds the entries of an object, where it is a dictionary, and of the direct ones within it."""
    values = ()
    if kind_of(obj) in ("dictionary", "stream"):
        found.append(Entries(obj))
        values = found[-1].values()
    elif kind_of(obj) == "array":
        values = obj
    for value in values:
        if type(value) is pikepdf.Object and not value.is_indirect and value._type_name in ("dictionary", "array"):
            add_dictionaries(value, found)


def shown_in(resources, instructions):
    fonts = resources.get("/Font", {}) if resources is not None else {}
    font, saved, marks = None, [], []
    for operator, operands in instructions:
        if operator == "q":
            saved.append(font)
        elif operator == "Q" and saved:
            font = saved.pop()
        elif operator in ("BDC", "BMC"):
            marks.append(operands)
        elif operator == "EMC" and marks:
            marks.pop()
        elif operator == "Tf":
            font = fonts.get(str(operands[0]))
        elif operator in SHOWING and font is not None:
            parts = operands[-1] if operator == "TJ" else [operands[-1]]
            data = b"".join(bytes(part) for part in parts if isinstance(part, pikepdf.String))
            yield Shown(font, codes_of(font, data), tuple(marks))


def codes_of(font, data):
    if font.get("/Subtype") == "/Type0":
        return [data[at] << 8 | data[at + 1] for at in range(0, len(data) - 1, 2)]
    return list(data)


def unicode_map(font):
    """Code to text, as the font's ToUnicode says; empty without one."""
    stream = font.get("/ToUnicode")
    if not isinstance(stream, pikepdf.Stream):
        return {}
    text = stream.read_bytes().decode("latin-1")
    mapping = {}
    for block in re.findall(r"beginbfchar(.*?)endbfchar", text, re.DOTALL):
        for code, target in re.findall(r"<([0-9A-Fa-f]+)>\s*<([0-9A-Fa-f]*)>", block):
            mapping[int(code, 16)] = bytes.fromhex(target).decode("utf-16-be", "replace")
    for block in re.findall(r"beginbfrange(.*?)endbfrange", text, re.DOTALL):
        for first, last, target in re.findall(r"<([0-9A-Fa-f]+)>\s*<([0-9A-Fa-f]+)>\s*<([0-9A-Fa-f]+)>", block):
            begin = bytes.fromhex(target).decode("utf-16-be", "replace")
            for offset in range(int(last, 16) - int(first, 16) + 1):
                mapping[int(first, 16) + offset] = begin[:-1] + chr(ord(begin[-1]) + offset)
    return mapping


class TrueType:
    """Of an embedded TrueType program: how many glyphs, and how wide."""

    def __init__(self, data):
        self.tables = {}
        for number in range(struct.unpack(">H", data[4:6])[0]):
            tag, _, offset, length = struct.unpack(">4sLLL", data[12 + 16 * number:28 + 16 * number])
            self.tables[tag.decode("latin-1")] = data[offset:offset + length]
        self.glyphs = struct.unpack(">H", self.tables["maxp"][4:6])[0]
        self.units = struct.unpack(">H", self.tables["head"][18:20])[0]
        self.metrics = struct.unpack(">H", self.tables["hhea"][34:36])[0]

    def width(self, glyph):
        at = 4 * min(glyph, self.metrics - 1)
        return struct.unpack(">H", self.tables["hmtx"][at:at + 2])[0] * 1000 / self.units


def widths_of(descendant):
    """/W as code to width."""
    widths, entries, at = {}, list(descendant.get("/W", [])), 0
    while at < len(entries):
        if isinstance(entries[at + 1], pikepdf.Array):
            widths.update({int(entries[at]) + offset: float(width) for offset, width in enumerate(entries[at + 1])})
            at += 2
        else:
            widths.update({code: float(entries[at + 2]) for code in range(int(entries[at]), int(entries[at + 1]) + 1)})
            at += 3
    return widths


class Font:
    """A font's dictionary with what it was embedded with."""

    def __init__(self, dictionary):
        self.dictionary = dictionary
        self.unicode = unicode_map(dictionary)
        self.composite = dictionary.get("/Subtype") == "/Type0"
        self.descendant = dictionary.DescendantFonts[0] if self.composite else dictionary
        self.descriptor = self.descendant.get("/FontDescriptor")
        self.name = str(dictionary.get("/BaseFont", "?"))

    def program(self):
        """The TrueType program, or None."""
        stream = self.descriptor.get("/FontFile2") if self.descriptor is not None else None
        return TrueType(stream.read_bytes()) if isinstance(stream, pikepdf.Stream) else None

    @functools.cached_property
    def map(self):
        mapping = self.descendant.get("/CIDToGIDMap")
        return mapping.read_bytes() if isinstance(mapping, pikepdf.Stream) else None

    def glyph(self, code):
        if self.map is None:
            return code
        return self.map[2 * code] << 8 | self.map[2 * code + 1] if 2 * code + 1 < len(self.map) else 0
