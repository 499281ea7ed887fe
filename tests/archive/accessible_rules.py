"""What makes a document accessible, clause by clause: its structure (ISO 32000-1), what PDF/A-3 asks for at level A, and PDF/UA-1
(ISO 14289-1:2014). Numbers in brackets are those of the Matterhorn Protocol 1.1."""
import collections
import functools
import re
from xml.etree import ElementTree

import pikepdf

from archive_rules import DC, annotations_of, property_of
from pdf_file import unicode_map
from rules import Rules
from structure import GROUPING, HEADINGS, STANDARD, Structure, listed

STRUCTURE = Rules("ISO 32000-1")
LEVEL_A = Rules("ISO 19005-3")
UA = Rules("ISO 14289-1")

PDFUAID = "{http://www.aiim.org/pdfua/ns/id/}"
LANGUAGE = r"[A-Za-z]{2,8}(-[A-Za-z0-9]{1,8})*"


@functools.lru_cache(maxsize=1)
def structure_of(file):
    return Structure(file)


def is_private(character):
    return 0xE000 <= ord(character) <= 0xF8FF or ord(character) >= 0xF0000


# --- The structure itself ---

@STRUCTURE.rule("14.7.2")
def hierarchy(file):
    structure = structure_of(file)
    yield from structure.wrong
    for element in structure.elements:
        above = element.parent.dictionary if element.parent else structure.root
        if "/P" not in element.dictionary or element.dictionary.P.objgen != above.objgen:
            yield f"{element.type} does not name the element that it is in"


@STRUCTURE.rule("14.7.2")
def identifiers(file):
    structure = structure_of(file)
    names = [element.id for element in structure.elements if element.id is not None]
    if len(set(names)) != len(names):
        yield "an identifier stands for several elements"
    for element in structure.elements:
        if element.id is not None and (element.id not in structure.names or
                                       structure.names[element.id].objgen != element.dictionary.objgen):
            yield f"{element.id} does not lead to its element"
    if set(structure.names) - set(names):
        yield "identifiers lead to what is not in the structure"


@STRUCTURE.rule("7.9.6")
def sorted_names(file):
    names = list(structure_of(file).names)
    if names != sorted(names):
        yield "the tree of identifiers is not in their order"


@STRUCTURE.rule("7.9.7")
def sorted_numbers(file):
    numbers = list(structure_of(file).parents)
    if numbers != sorted(numbers):
        yield "the tree of parents is not in the order of its numbers"


@STRUCTURE.rule("14.7.4.2")
def marked_content(file):
    structure, shown = structure_of(file), set()
    for painted in structure.painted:
        for mark in painted.marks:
            if "/MCID" in mark.properties:
                key = (painted.page.objgen, int(mark.properties.MCID))
                shown.add(key)
                if key not in structure.owners:
                    yield f"mark {key[1]} of page {key[0]} belongs to no element"
    for key, element in structure.owners.items():
        if key not in shown:
            yield f"{element.type} is shown by mark {key[1]} of page {key[0]}, which is not there"
    total = sum(len(element.contents) for element in structure.elements)
    if total != len(structure.owners):
        yield "a mark belongs to several elements, or to no page"


@STRUCTURE.rule("14.7.4.4")
def parent_tree(file):
    structure = structure_of(file)
    of_pages = collections.defaultdict(list)
    for (page, number), element in structure.owners.items():
        of_pages[page].append((number, element))
    for page in file.pages:
        owners = [getattr(owner, "objgen", None) for owner in structure.parents.get(page.get("/StructParents", -1), [])]
        for number, element in of_pages[page.objgen]:
            if number >= len(owners) or owners[number] != element.dictionary.objgen:
                yield f"mark {number} of page {page.objgen} does not lead to its {element.type}"
    for found in annotations_of(file):
        owner = structure.parents.get(found.get("/StructParent", -1))
        if owner is None or not any(kid.get("/Obj") is not None and kid.Obj.objgen == found.objgen
                                    for kid in listed(owner.get("/K")) if isinstance(kid, pikepdf.Dictionary)):
            yield "an annotation does not lead to its element"
    if structure.parents and structure.root.get("/ParentTreeNextKey", 0) <= max(structure.parents):
        yield "the next number of the tree of parents is taken"


@STRUCTURE.rule("14.6.1")
def nested_marks(file):
    for page in file.pages:
        open_now = []
        for operator, _ in file.content_of(page):
            if operator in ("BT", "BMC", "BDC"):
                open_now.append(operator)
            elif operator in ("ET", "EMC"):
                if not open_now or (open_now.pop() == "BT") != (operator == "ET"):
                    yield f"{operator} on page {page.objgen} ends what is not open"
        if open_now:
            yield f"page {page.objgen} leaves {open_now} open"


# --- PDF/A-3, level A ---

@LEVEL_A.rule("6.7.2.2")
def marked(file):
    if not file.root.get("/MarkInfo", {}).get("/Marked", False):
        yield "the document does not say that it is tagged"


@LEVEL_A.rule("6.7.3.3")
def has_structure(file):
    if not structure_of(file).elements:
        yield "the document has no structure"


@LEVEL_A.rule("6.7.3.4")
def structure_types(file):
    structure = structure_of(file)
    roles = structure.root.get("/RoleMap", {}) if structure.root is not None else {}
    for role in roles:
        if role[1:] in STANDARD:
            yield f"{role} stands for something else"
    for kind in {element.type for element in structure.elements} - STANDARD:
        if f"/{kind}" not in roles:
            yield f"the type {kind} stands for none"


@LEVEL_A.rule("6.7.4")
def languages(file):
    for found in [file.root, *(element.dictionary for element in structure_of(file).elements)]:
        if "/Lang" in found and not re.fullmatch(LANGUAGE, str(found.Lang)):
            yield f"„{found.Lang}“ is no language"


@LEVEL_A.rule("6.2.11.7.3")
def private_use(file):
    texts = {}
    for text in file.shown:
        if text.font.objgen not in texts:
            texts[text.font.objgen] = unicode_map(text.font)
        private = any(is_private(c) for code in text.codes for c in texts[text.font.objgen].get(code, ""))
        explained = any(len(mark) > 1 and isinstance(mark[1], pikepdf.Dictionary) and "/ActualText" in mark[1] for mark in text.marks)
        is_artifact = any(mark[0] == "/Artifact" for mark in text.marks)
        if private and not explained and not is_artifact:
            yield "a character for private use has no other text"


# --- PDF/UA-1 ---

@UA.rule("5")
def identification(file):  # [06-002]
    if property_of(file, f"{PDFUAID}part") != "1":
        yield "the metadata do not say PDF/UA-1"


@UA.rule("7.1")
def all_tagged(file):  # [01-003, 01-004, 01-005]
    for painted in structure_of(file).painted:
        tagged = sum("/MCID" in mark.properties for mark in painted.marks)
        artifact = any(mark.tag == "Artifact" for mark in painted.marks)
        if not tagged and not artifact:
            yield f"{painted.operator} on page {painted.page.objgen} is neither tagged nor an artifact"
        if tagged and artifact:
            yield f"{painted.operator} on page {painted.page.objgen} is tagged and an artifact"


@UA.rule("7.1")
def not_suspect(file):  # [04-001, 06-...]
    info = file.root.get("/MarkInfo", {})
    if info.get("/Suspects", False) or not info.get("/Marked", False):
        yield "the structure is not to be relied on"


@UA.rule("7.1")
def title(file):  # [06-003, 07-001, 07-002]
    if not file.root.get("/ViewerPreferences", {}).get("/DisplayDocTitle", False):
        yield "readers show the file's name and not the title"
    if not (property_of(file, f"{DC}title") or "").strip():
        yield "no title"


@UA.rule("7.2")
def language(file):  # [11-006]
    if not re.fullmatch(LANGUAGE, str(file.root.get("/Lang", ""))):
        yield "the document does not say its language"


@UA.rule("7.2")
def table_parts(file):  # [09-004]
    allowed = {"THead": {"Table"}, "TBody": {"Table"}, "TFoot": {"Table"}, "TR": {"Table", "THead", "TBody", "TFoot"},
               "TH": {"TR"}, "TD": {"TR"}}
    inside = {"Table": {"THead", "TBody", "TFoot", "TR", "Caption"}, "THead": {"TR"}, "TBody": {"TR"}, "TFoot": {"TR"},
              "TR": {"TH", "TD"}}
    for element in structure_of(file).elements:
        above = element.parent.type if element.parent else "StructTreeRoot"
        if element.type in allowed and above not in allowed[element.type]:
            yield f"{element.type} in {above}"
        for kid in element.kids:
            if element.type in inside and kid.type not in inside[element.type]:
                yield f"{kid.type} in {element.type}"
        if element.type in inside and (element.contents or not element.kids):
            yield f"{element.type} without rows or cells"


@UA.rule("7.2")
def table_widths(file):  # rows are of one width, and spans do not overlap
    structure = structure_of(file)
    for table in structure.of("Table"):
        taken, widths = {}, set()
        for number, row in enumerate(structure.rows(table)):
            column = 0
            for cell in row.kids:
                while (number, column) in taken:
                    column += 1
                for down in range(cell.span("RowSpan")):
                    for right in range(cell.span("ColSpan")):
                        if (number + down, column + right) in taken:
                            yield "cells of a table lie over each other"
                        taken[number + down, column + right] = cell
            widths.add(1 + max((right for down, right in taken if down == number), default=-1))
        if len(widths) > 1:
            yield f"rows of a table have {sorted(widths)} columns"


@UA.rule("7.2")
def levels_of_grouping(file):  # [09-...] what shows text is no group
    for element in structure_of(file).elements:
        if element.type in GROUPING and (element.contents or element.objects):
            yield f"{element.type} is shown itself"


@UA.rule("7.3")
def figures(file):  # [13-004]
    for element in structure_of(file).of("Figure"):
        if not str(element.dictionary.get("/Alt", "")).strip() and "/ActualText" not in element.dictionary:
            yield "a figure has no other text"
        box = element.attribute("Layout", "BBox")
        if box is None or len(box) != 4 or not (float(box[0]) < float(box[2]) and float(box[1]) < float(box[3])):
            yield "a figure has no box"


@UA.rule("7.4.2")
def headings(file):  # [14-002, 14-003]
    last = 0
    for element in structure_of(file).of(*HEADINGS):
        level = int(element.type[1:])
        if level > last + 1:
            yield f"H{level} behind {f'H{last}' if last else 'nothing'}"
        last = level


@UA.rule("7.4.4")
def one_kind_of_heading(file):  # [14-006, 14-007]
    if structure_of(file).of("H"):
        yield "headings without level"


@UA.rule("7.5")
def scopes(file):  # [15-003]
    for element in structure_of(file).of("TH"):
        if str(element.attribute("Table", "Scope")) not in ("/Row", "/Column", "/Both"):
            yield "a head cell does not say what it heads"


@UA.rule("7.5")
def headers(file):
    structure = structure_of(file)
    for table in structure.of("Table"):
        heads = {element.id for element in table.walk() if element.type == "TH" and element.id}
        named = set()
        for cell in (element for element in table.walk() if element.type in ("TD", "TH")):
            names = {bytes(name) for name in cell.attribute("Table", "Headers") or []}
            named |= names
            if names - heads:
                yield f"a cell is headed by {sorted(names - heads)[0]}, which is no head of its table"
            if cell.id in names:
                yield "a cell heads itself"
            if cell.type == "TD" and heads and cell.contents and not names and len(cell.parent.kids) > 1:
                yield "a cell says something and has no head"
        if not heads and any(element.contents for element in table.walk()):
            yield "a table has no heads"


@UA.rule("7.8")
def running_heads(file):  # [18-003]: what repeats says whether it is above or below
    for painted in structure_of(file).painted:
        for mark in painted.marks:
            if mark.tag == "Artifact" and mark.properties.get("/Type") == "/Pagination":
                if mark.properties.get("/Subtype") not in ("/Header", "/Footer", "/Watermark", None):
                    yield f"furniture of the kind {mark.properties.get('/Subtype')}"
            elif mark.tag == "Artifact" and painted.operator in ("Tj", "TJ"):
                yield f"a text on page {painted.page.objgen} is an artifact without a reason"


@UA.rule("7.11")
def attached_files(file):  # [21-001]
    for found in file.dictionaries:
        if "/EF" in found and not ("/F" in found and "/UF" in found):
            yield "an embedded file has no name"


@UA.rule("7.16")
def security(file):  # [26-001]
    if "/Encrypt" in file.pdf.trailer:
        yield "encrypted"


@UA.rule("7.18.1")
def annotations(file):  # [28-002, 28-004]
    inside = {found.objgen for element in structure_of(file).of("Link", "Annot", "Form") for found in element.objects}
    for found in annotations_of(file):
        if found.objgen not in inside:
            yield f"{found.get('/Subtype')} is in no element"


@UA.rule("7.18.3")
def tab_order(file):  # [28-008]
    for page in file.pages:
        if page.get("/Annots", []) and page.get("/Tabs") != "/S":
            yield "a page's annotations are not in the order of the structure"


@UA.rule("7.18.5")
def links(file):  # [28-011, 28-012]
    structure = structure_of(file)
    for found in annotations_of(file):
        if found.get("/Subtype") == "/Link":
            if not str(found.get("/Contents", "")).strip():
                yield "a link does not say where it leads"
            if not any(found.objgen == other.objgen for element in structure.of("Link") for other in element.objects):
                yield "a link is in no Link"
    for element in structure.of("Link"):
        if not element.objects or not (element.contents or element.kids):
            yield "a Link without its text or its annotation"
