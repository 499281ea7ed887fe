# long: a list, with a few lines for each clause of the standard.
"""PDF/A-3, ISO 19005-3:2012: what a file of level b and u must keep, clause by clause."""
import re
import struct
from xml.etree import ElementTree

import pikepdf

from pdf_file import inherited, kind_of, values_of, widths_of
from rules import Rules

ARCHIVE = Rules("ISO 19005-3")
rule = ARCHIVE.rule

RDF = "{http://www.w3.org/1999/02/22-rdf-syntax-ns#}"
DC = "{http://purl.org/dc/elements/1.1/}"
XMP = "{http://ns.adobe.com/xap/1.0/}"
PDF = "{http://ns.adobe.com/pdf/1.3/}"
PDFAID = "{http://www.aiim.org/pdfa/ns/id/}"
KNOWN_SCHEMAS = {RDF, DC, XMP, PDF, PDFAID, "{http://www.aiim.org/pdfa/ns/extension/}",
                 "{http://www.aiim.org/pdfa/ns/schema#}", "{http://www.aiim.org/pdfa/ns/property#}",
                 "{http://ns.adobe.com/xap/1.0/mm/}", "{http://ns.adobe.com/xap/1.0/rights/}"}
FILTERS = {"/ASCIIHexDecode", "/ASCII85Decode", "/FlateDecode", "/RunLengthDecode", "/CCITTFaxDecode", "/JBIG2Decode",
           "/DCTDecode", "/JPXDecode"}
OPERATORS = set("b B b* B* BDC BI BMC BT BX c cm CS cs d d0 d1 Do DP EI EMC ET EX f F f* G g gs h i ID j J K k l m M MP n q "
                "Q re RG rg ri s S SC sc SCN scn sh T* Tc Td TD Tf Tj TJ TL Tm Tr Ts Tw Tz v w W W* y ' \"".split()) | {"INLINE IMAGE"}
BLEND_MODES = {"/Normal", "/Compatible", "/Multiply", "/Screen", "/Overlay", "/Darken", "/Lighten", "/ColorDodge",
               "/ColorBurn", "/HardLight", "/SoftLight", "/Difference", "/Exclusion", "/Hue", "/Saturation", "/Color",
               "/Luminosity"}
ANNOTATIONS = {"/Text", "/Link", "/FreeText", "/Line", "/Square", "/Circle", "/Polygon", "/PolyLine", "/Highlight",
               "/Underline", "/Squiggly", "/StrikeOut", "/Stamp", "/Caret", "/Ink", "/Popup", "/FileAttachment", "/Widget",
               "/PrinterMark", "/TrapNet", "/Watermark", "/Redact"}
ACTIONS = {"/GoTo", "/GoToR", "/GoToE", "/Thread", "/URI", "/Named", "/SubmitForm"}


@rule("6.1.2")
def header(file):
    if not re.match(rb"%PDF-1\.[0-7]\r?\n%[\x80-\xff]{4}", file.data):
        yield "the header line, or four bytes above 127 behind it, is missing"


@rule("6.1.3")
def trailer(file):
    identifier = file.pdf.trailer.get("/ID")
    if identifier is None or len(identifier) != 2 or any(len(bytes(part)) == 0 for part in identifier):
        yield "no file identifier"
    if "/Encrypt" in file.pdf.trailer:
        yield "encrypted"
    if not re.search(rb"%%EOF(\r\n|\n|\r)?\Z", file.data):
        yield "something stands behind the end of the file"


@rule("6.1.4")
def cross_reference(file):
    start = re.search(rb"startxref\s+(\d+)\s+%%EOF\s*\Z", file.data)
    at = int(start[1]) if start else 0
    table = re.match(rb"xref(\r\n|\n|\r)\d+ \d+(\r\n|\n|\r)", file.data[at:at + 60])
    stream = re.match(rb"\d+ \d+ obj[\r\n]+<<", file.data[at:at + 60])
    if not start or not (table or stream):
        yield "the cross-reference table is not where, or what, it should be"


@rule("6.1.6")
def hexadecimal_strings(file):
    outside = re.sub(rb"stream\r?\n.*?endstream", b"", file.data, flags=re.DOTALL)
    outside = re.sub(rb"\((\\.|[^\\()])*\)", b"", outside, flags=re.DOTALL)
    for found in re.finditer(rb"(?<!<)<([0-9A-Fa-f\s]*[^0-9A-Fa-f\s<>][^<>]*|[0-9A-Fa-f\s]*)>(?!>)", outside):
        digits = re.sub(rb"\s", b"", found[1])
        if len(digits) % 2 or not re.fullmatch(rb"[0-9A-Fa-f]*", digits):
            yield f"a string of {len(digits)} digits: {digits[:20]!r}"


@rule("6.1.7.1")
def stream_objects(file):
    for found in re.finditer(rb"/Length (\d+)(?! \d+ R)[^>]*>>\s*stream(\r\n|\n|.)", file.data):
        if found[2] not in (b"\n", b"\r\n"):
            yield "no end of line behind the keyword stream"
        end = found.end() + int(found[1])
        if not re.match(rb"(\r\n|\n|\r)endstream\b", file.data[end:end + 12]):
            yield f"the stream at {found.start()} is not as long as it says"
    for stream in file.streams:
        for key in ("/F", "/FFilter", "/FDecodeParms"):
            if key in stream.keys():
                yield f"a stream's data lie in another file ({key})"


@rule("6.1.7.2")
def filters(file):
    for stream in file.streams:
        names = stream.get("/Filter", pikepdf.Array())
        for name in names if isinstance(names, pikepdf.Array) else [names]:
            if str(name) not in FILTERS:
                yield f"filter {name}"


@rule("6.1.9")
def indirect_objects(file):
    outside = re.sub(rb"stream\r?\n.*?endstream", b"", file.data, flags=re.DOTALL)
    for found in re.finditer(rb"(.|\n|\A)(\d+)(\s+)(\d+)(\s+)obj(.|\n)", outside):
        if found[1] not in b"\r\n" or found[3] != b" " or found[5] != b" " or found[6] not in b"\r\n":
            yield f"object {found[2].decode()} is not spaced as it should be"
    for found in re.finditer(rb"(.)endobj(.|\n|\Z)", outside, flags=re.DOTALL):
        if found[1] not in b"\r\n" or found[2] not in b"\r\n":
            yield "endobj does not stand on a line of its own"


@rule("6.1.12")
def permissions(file):
    for key in file.root.get("/Perms", {}):
        if key not in ("/UR3", "/DocMDP"):
            yield f"permission {key}"


@rule("6.1.13")
def limits(file):
    for _, _, instructions in file.contents:
        depth = deepest = 0
        for operator, _ in instructions:
            depth += (operator == "q") - (operator == "Q")
            deepest = max(deepest, depth)
        if deepest > 28:
            yield f"{deepest} nested graphics states"
    for found in file.dictionaries:
        for key, value in found.items():
            kind = kind_of(value)
            if len(key.encode()) > 128 or kind == "name" and len(str(value).encode()) > 128:
                yield f"a name longer than 127 bytes: {key[:20]}"
            if kind == "string" and len(bytes(value)) > 32767:
                yield f"a string longer than 32,767 bytes: {key}"
    for page in file.pages:
        box = [float(number) for number in inherited(page, "/MediaBox")]
        if not all(3 <= size <= 14400 for size in (box[2] - box[0], box[3] - box[1])):
            yield f"a page of {box}"


@rule("6.2.2")
def content_streams(file):
    for owner, resources, instructions in file.contents:
        used = {}
        for operator, operands in instructions:
            if operator not in OPERATORS:
                yield f"operator {operator}"
            kind = {"Tf": "/Font", "Do": "/XObject", "gs": "/ExtGState", "sh": "/Shading"}.get(operator)
            if kind:
                used[str(operands[0])] = kind
            elif operator in ("BDC", "DP") and isinstance(operands[1], pikepdf.Name):
                used[str(operands[1])] = "/Properties"
        for name, kind in used.items():
            if resources is None or name not in resources.get(kind, {}):
                yield f"{kind} {name} is not among the own resources of {owner.objgen}"


@rule("6.2.3")
def output_intent(file):
    profiles = {intent.DestOutputProfile.objgen for intent in file.root.get("/OutputIntents", [])
                if "/DestOutputProfile" in intent}
    if len(profiles) > 1:
        yield "several profiles"
    for intent in file.root.get("/OutputIntents", []):
        if "/OutputConditionIdentifier" not in intent:
            yield "an output intent does not name its condition"
    if file.profile is not None:
        yield from profile_faults(file.profile, {b"mntr", b"prtr"})


def profile_faults(stream, classes):
    data = stream.read_bytes()
    if len(data) < 132 or struct.unpack(">L", data[:4])[0] != len(data) or data[36:40] != b"acsp":
        yield "the profile is damaged"
        return
    components = {b"GRAY": 1, b"RGB ": 3, b"Lab ": 3, b"CMYK": 4}.get(data[16:20])
    if data[12:16] not in classes:
        yield f"the profile is of class {data[12:16]!r}"
    if data[8] > 4:
        yield f"the profile is of version {data[8]}"
    if components != stream.get("/N"):
        yield f"a profile of {data[16:20]!r} with {stream.get('/N')} components"
    count = struct.unpack(">L", data[128:132])[0]
    tags = {data[132 + 12 * i:136 + 12 * i] for i in range(count)}
    missing = {b"desc", b"cprt", b"wtpt"} - tags
    if missing:
        yield f"the profile lacks {sorted(missing)}"


@rule("6.2.4.2")
def icc_based(file):
    for obj in file.objects.values():
        if isinstance(obj, pikepdf.Array) and len(obj) == 2 and obj[0] == "/ICCBased":
            yield from profile_faults(obj[1], {b"mntr", b"prtr", b"scnr", b"spac"})


@rule("6.2.4.3")
def device_colours(file):
    space = file.profile.read_bytes()[16:20] if file.profile is not None else None
    used = set()
    for _, resources, instructions in file.contents:
        defaults = (resources or {}).get("/ColorSpace", {})
        for operator, operands in instructions:
            name = {"rg": "RGB", "RG": "RGB", "k": "CMYK", "K": "CMYK", "g": "Gray", "G": "Gray"}.get(operator)
            if operator in ("cs", "CS"):
                name = str(operands[0]).removeprefix("/Device") if str(operands[0]).startswith("/Device") else None
            if name and f"/Default{name}" not in defaults:
                used.add(name)
    for found in file.dictionaries:
        for key in ("/ColorSpace", "/CS"):
            value = found.get(key)
            if isinstance(value, pikepdf.Name) and str(value).startswith("/Device"):
                used.add(str(value).removeprefix("/Device"))
    allowed = {b"RGB ": {"RGB", "Gray"}, b"CMYK": {"CMYK", "Gray"}, b"GRAY": {"Gray"}}.get(space, set())
    for name in sorted(used - allowed):
        yield f"Device{name} outside of the output intent"


@rule("6.2.5")
def graphics_states(file):
    for found in states_of(file):
        if "/TR" in found or found.get("/TR2", "/Default") != "/Default" or "/HTP" in found:
            yield "a transfer function or a halftone's phase"
        halftone = found.get("/HT")
        if isinstance(halftone, pikepdf.Dictionary) and halftone.get("/HalftoneType") not in (1, 5):
            yield "a halftone that is not of type 1 or 5"


def states_of(file):
    for found in file.dictionaries:
        yield from values_of(found, "/ExtGState")


@rule("6.2.6")
def rendering_intents(file):
    intents = [found.get("/Intent") for found in file.streams if found.get("/Subtype") == "/Image"]
    intents += [found.get("/RI") for found in states_of(file)]
    intents += [operands[0] for _, _, instructions in file.contents for operator, operands in instructions if operator == "ri"]
    for intent in intents:
        if intent is not None and str(intent) not in ("/RelativeColorimetric", "/AbsoluteColorimetric", "/Perceptual",
                                                      "/Saturation"):
            yield f"rendering intent {intent}"


@rule("6.2.8.1")
def images(file):
    for found in file.streams:
        if found.get("/Subtype") == "/Image":
            if found.get("/Interpolate", False):
                yield "an image asks for interpolation"
            if "/Alternates" in found.keys() or "/OPI" in found.keys():
                yield "an image stands for another one"
            if found.get("/BitsPerComponent", 1) not in (1, 2, 4, 8, 16):
                yield "an image's bits"


@rule("6.2.9")
def external_objects(file):
    for found in file.streams:
        if found.get("/Subtype") == "/Form" and any(key in found.keys() for key in ("/OPI", "/PS", "/Ref", "/Subtype2")):
            yield "a form that is taken from elsewhere, or PostScript"
        if found.get("/Subtype") == "/PS":
            yield "PostScript"


@rule("6.2.10")
def transparency(file):
    for state in states_of(file):
        modes = state.get("/BM", pikepdf.Name.Normal)
        for mode in modes if isinstance(modes, pikepdf.Array) else [modes]:
            if str(mode) not in BLEND_MODES:
                yield f"blend mode {mode}"
    rgb = file.profile is not None and file.profile.read_bytes()[16:20] == b"RGB "
    for found in file.dictionaries:
        space = found.get("/CS") if found.get("/S") == "/Transparency" else None
        if isinstance(space, pikepdf.Name) and space != "/DeviceGray" and not (space == "/DeviceRGB" and rgb):
            yield f"a group blends in {space}"


@rule("6.2.11.2")
def font_types(file):
    for found in file.fonts:
        if found.get("/Subtype") not in ("/Type0", "/Type1", "/MMType1", "/Type3", "/TrueType"):
            yield f"font type {found.get('/Subtype')}"
        if found.get("/Subtype") != "/Type3" and "/BaseFont" not in found:
            yield "a font without a name"


@rule("6.2.11.3")
def composite_fonts(file):
    for found in file.fonts:
        if found.get("/Subtype") != "/Type0":
            continue
        encoding, descendant = found.get("/Encoding"), found["/DescendantFonts"][0]
        if str(encoding) not in ("/Identity-H", "/Identity-V") and not isinstance(encoding, pikepdf.Stream):
            yield f"encoding {encoding} is not in the file"
        if descendant.get("/Subtype") == "/CIDFontType2" and not isinstance(
                descendant.get("/CIDToGIDMap"), (pikepdf.Stream, pikepdf.Name)):
            yield f"{found.get('/BaseFont')} has no map from codes to glyphs"


@rule("6.2.11.4.1")
def embedded_fonts(file):
    for font, codes in file.used:
        if font.dictionary.get("/Subtype") == "/Type3":
            continue
        if font.descriptor is None or not any(key in font.descriptor for key in ("/FontFile", "/FontFile2", "/FontFile3")):
            yield f"{font.name} is not embedded"
            continue
        program = font.program()
        if program and font.composite:
            lacking = [code for code in codes if font.glyph(code) >= program.glyphs]
            if lacking:
                yield f"{font.name} lacks the glyphs of the codes {lacking[:5]}"


@rule("6.2.11.5")
def font_widths(file):
    for font, codes in file.used:
        program = font.program() if font.composite else None
        if program:
            stated, default = widths_of(font.descendant), float(font.descendant.get("/DW", 1000))
            wrong = [code for code in codes if abs(stated.get(code, default) - program.width(font.glyph(code))) > 1]
            if wrong:
                yield f"{font.name}: the codes {sorted(wrong)[:5]} are not as wide as stated"


@rule("6.2.11.6")
def simple_truetype(file):
    for font, _ in file.used:
        if font.dictionary.get("/Subtype") == "/TrueType" and not int(font.descriptor.get("/Flags", 0)) & 4:
            encoding = font.dictionary.get("/Encoding")
            base = encoding.get("/BaseEncoding") if isinstance(encoding, pikepdf.Dictionary) else encoding
            if str(base) not in ("/WinAnsiEncoding", "/MacRomanEncoding"):
                yield f"{font.name} has no encoding"


@rule("6.2.11.7.2")
def unicode_texts(file):
    for font, codes in file.used:
        encoding = font.dictionary.get("/Encoding")
        if str(encoding) in ("/WinAnsiEncoding", "/MacRomanEncoding") and "/ToUnicode" not in font.dictionary:
            continue
        missing = [code for code in codes if not font.unicode.get(code)]
        if missing:
            yield f"{font.name}: the codes {sorted(missing)[:5]} have no text"
        wrong = [code for code in codes if set(font.unicode.get(code, "")) & {"\0", "\ufeff", "\ufffe"}]
        if wrong:
            yield f"{font.name}: the codes {sorted(wrong)[:5]} are no text"


@rule("6.2.11.8")
def no_notdef(file):
    for font, codes in file.used:
        if font.composite:
            wrong = [code for code in codes if font.glyph(code) == 0]
            if wrong:
                yield f"{font.name}: the codes {sorted(wrong)[:5]} show .notdef"


def annotations_of(file):
    for page in file.pages:
        yield from page.get("/Annots", [])


@rule("6.3.1")
def annotation_types(file):
    for found in annotations_of(file):
        if found.get("/Subtype") not in ANNOTATIONS:
            yield f"annotation {found.get('/Subtype')}"


@rule("6.3.2")
def annotation_flags(file):
    for found in annotations_of(file):
        flags = int(found.get("/F", 0))
        if found.get("/Subtype") != "/Popup" and (not flags & 4 or flags & (1 | 2 | 32 | 256)):
            yield f"{found.get('/Subtype')} with flags {flags}"


@rule("6.3.3")
def annotation_appearances(file):
    for found in annotations_of(file):
        if found.get("/Subtype") not in ("/Popup", "/Link") and "/AP" not in found:
            yield f"{found.get('/Subtype')} has no appearance"


@rule("6.4")
def forms(file):
    form = file.root.get("/AcroForm", {})
    if form.get("/NeedAppearances", False) or "/XFA" in form:
        yield "a form whose look the reader makes"


@rule("6.5.1")
def actions(file):
    for found in file.dictionaries:
        if "/S" in found and (found.get("/Type") == "/Action" or "/URI" in found or "/JS" in found):
            if str(found["/S"]) not in ACTIONS:
                yield f"action {found['/S']}"
    if "/JavaScript" in file.root.get("/Names", {}):
        yield "scripts"


@rule("6.5.2")
def triggers(file):
    for found in [file.root, *file.pages, *annotations_of(file)]:
        if "/AA" in found:
            yield "something happens by itself (/AA)"


@rule("6.6.2")
def metadata(file):
    if file.metadata is None:
        yield "no metadata"
        return
    head = file.metadata[:200]
    if not head.startswith(b"<?xpacket begin=") or b"bytes=" in head or b"encoding=" in head.split(b"?>")[0]:
        yield "the packet's head"
    try:
        tree = ElementTree.fromstring(strip_packet(file.metadata))
    except ElementTree.ParseError as error:
        yield f"the metadata are no XML: {error}"
        return
    for element in tree.iter():
        if element.tag.split("}")[0] + "}" not in KNOWN_SCHEMAS | {"{adobe:ns:meta/}", "{http://www.aiim.org/pdfua/ns/id/}"}:
            yield f"{element.tag} is of no schema that the file knows"
    uses_ua = b"pdfuaid:part>" in file.metadata
    if uses_ua and b"<pdfaSchema:prefix>pdfuaid</pdfaSchema:prefix>" not in file.metadata:
        yield "pdfuaid has no extension schema"


def strip_packet(packet):
    return re.sub(rb"<\?xpacket.*?\?>", b"", packet)


def property_of(file, name):
    """A property's text: its own, or that of the items of its array. Metadata that are no XML have none."""
    if file.metadata is None:
        return None
    try:
        found = ElementTree.fromstring(strip_packet(file.metadata)).find(f".//{name}")
    except ElementTree.ParseError:
        return None
    if found is None:
        return None
    items = [item.text or "" for item in found.iter(f"{RDF}li")]
    return items[0] if len(items) == 1 else "; ".join(items) if items else found.text


@rule("6.6.3")
def information(file):
    info = file.pdf.trailer.get("/Info", {})
    for key, name in (("/Title", f"{DC}title"), ("/Author", f"{DC}creator"), ("/Subject", f"{DC}description"),
                      ("/Keywords", f"{PDF}Keywords"), ("/Creator", f"{XMP}CreatorTool"), ("/Producer", f"{PDF}Producer")):
        stated = str(info.get(key)) if key in info else None
        if stated is not None and stated != property_of(file, name):
            yield f"{key} „{stated}“ is „{property_of(file, name)}“ in the metadata"
    for key, name in (("/CreationDate", f"{XMP}CreateDate"), ("/ModDate", f"{XMP}ModifyDate")):
        stated = str(info.get(key)) if key in info else None
        if stated is not None and digits(stated) != digits(property_of(file, name)):
            yield f"{key} „{stated}“ is „{property_of(file, name)}“ in the metadata"


def digits(date):
    """The digits of a date in either notation, and whether its zone lies behind UTC."""
    text = (date or "").removeprefix("D:")
    return re.sub(r"\D", "", text), bool(re.search(r"-\d\d[:']?\d\d'?$", text) and ("T" in text or text[:8].isdigit()))


@rule("6.6.4")
def identification(file):
    if property_of(file, f"{PDFAID}part") != "3" or property_of(file, f"{PDFAID}conformance") not in ("A", "U", "B"):
        yield "the metadata do not say PDF/A-3"


@rule("6.8")
def embedded_files(file):
    associated = [found.objgen for found in file.root.get("/AF", [])]
    for found in file.dictionaries:
        if "/EF" not in found:
            continue
        if found.get("/AFRelationship") not in ("/Source", "/Data", "/Alternative", "/Supplement", "/Unspecified"):
            yield "an embedded file does not say what it is to the document"
        if "/F" not in found or "/UF" not in found:
            yield "an embedded file has no name"
        if "/Subtype" not in found["/EF"].F.keys():
            yield "an embedded file does not say its kind"
        if found.objgen not in associated:
            yield "an embedded file belongs to nothing"
    if "/EmbeddedFiles" in file.root.get("/Names", {}) and not associated:
        yield "the document names no associated files"


@rule("6.9")
def optional_content(file):
    for found in file.root.get("/OCProperties", {}).get("/Configs", []):
        if "/Name" not in found:
            yield "a configuration of layers has no name"


@rule("6.10")
def presentations(file):
    if "/AlternatePresentations" in file.root.get("/Names", {}) or any("/PresSteps" in page for page in file.pages):
        yield "an alternate presentation"


@rule("6.11")
def requirements(file):
    if "/Requirements" in file.root:
        yield "the document asks something of its reader"
