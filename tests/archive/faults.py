#!/usr/bin/python3
# long: a list, with a few lines for each fault.
"""faults.py FILE: each fault that is planted into a sound file is found, under its clause, and the file itself is sound."""
import pathlib
import re
import sys
import tempfile

import pikepdf
from pikepdf import Array, Dictionary, Name, Stream, String

from check import findings_of
from pdf_file import PdfFile

FAULTS = []


def fault(clause):
    """A fault in the objects: `function` changes the open file."""
    def add(function):
        FAULTS.append((clause, function, False))
        return function
    return add


def bytes_fault(clause):
    """A fault in the bytes: `function` gives others, of the same length where offsets matter."""
    def add(function):
        FAULTS.append((clause, function, True))
        return function
    return add


def page_content(pdf, operators, resources=None):
    """A page more, that consists of `operators`."""
    pdf.add_blank_page(page_size=(595, 842))
    page = pdf.pages[-1].obj
    page.Contents = pdf.make_stream(operators)
    page.Resources = resources or Dictionary()
    return page


def annotate(pdf, **entries):
    annotation = Dictionary(Type=Name.Annot, Subtype=Name.Link, Rect=Array([0, 0, 9, 9]), F=4)
    for key, value in entries.items():
        annotation[f"/{key}"] = value
    pdf.pages[0].obj.Annots = Array([pdf.make_indirect(annotation)])


def first_font(pdf):
    fonts = pdf.pages[0].obj.Resources.Font
    return fonts[sorted(fonts.keys())[0]]


def replace_metadata(pdf, old, new):
    packet = pdf.Root.Metadata.read_bytes()
    assert old in packet, old
    pdf.Root.Metadata.write(packet.replace(old, new))


def image(pdf, **entries):
    stream = Stream(pdf, b"\0\0\0")
    stream.stream_dict = Dictionary(Type=Name.XObject, Subtype=Name.Image, Width=1, Height=1, BitsPerComponent=8,
                                    ColorSpace=Name.DeviceRGB)
    for key, value in entries.items():
        stream[f"/{key}"] = value
    page_content(pdf, b"/I Do", Dictionary(XObject=Dictionary(I=pdf.make_indirect(stream))))


def state(pdf, **entries):
    page_content(pdf, b"/G gs", Dictionary(ExtGState=Dictionary(G=Dictionary(**entries))))


def attach(pdf, leave_out=(), associate=True):
    data = Stream(pdf, b"a;b")
    data.Type, data.Subtype = Name.EmbeddedFile, Name("/text/csv")
    filespec = Dictionary(Type=Name.Filespec, F=String("a.csv"), UF=String("a.csv"), AFRelationship=Name.Data,
                               EF=Dictionary(F=pdf.make_indirect(data)))
    for key in leave_out:
        del filespec[key]
    reference = pdf.make_indirect(filespec)
    names = pdf.Root.get("/Names", Dictionary())
    names.EmbeddedFiles = Dictionary(Names=Array([String("a.csv"), reference]))
    pdf.Root.Names = names
    if associate:
        pdf.Root.AF = Array([reference])


@bytes_fault("6.1.2")
def header_without_binary(data):
    return data[:10] + b"    " + data[14:]


@bytes_fault("6.1.2")
def header_of_another_kind(data):
    return b"%PDF-2.0" + data[8:]


@bytes_fault("6.1.3")
def bytes_behind_the_end(data):
    return data + b"behind"


@fault("6.1.3")
def no_identifier(pdf):
    del pdf.trailer["/ID"]


@bytes_fault("6.1.6")
def odd_string(data):
    at = data.index(b"/Title<") + len(b"/Title<")
    return data[:at] + b"F E" + data[at + 3:]


@bytes_fault("6.1.7.1")
def stream_with_a_wrong_length(data):
    at = data.index(b"/Length ") + len(b"/Length ")
    return data[:at] + (b"1" if data[at:at + 1] != b"1" else b"2") + data[at + 1:]


@fault("6.1.7.1")
def data_elsewhere(pdf):
    pdf.pages[0].obj.Contents[0].FFilter = Name.FlateDecode


@fault("6.1.7.2")
def lzw(pdf):
    stream = Stream(pdf, b"\x80\x0b\x60\x50\x22\x0c\x0c\x85\x01")
    stream.Filter = Name.LZWDecode
    pdf.Root.PieceInfo = Dictionary(A=pdf.make_indirect(stream))


@bytes_fault("6.1.9")
def object_badly_spaced(data):
    at = data.index(b" 0 obj\n<<")
    return data[:at] + b"\t0 obj\n" + data[at + 7:]


@fault("6.1.12")
def unknown_permission(pdf):
    pdf.Root.Perms = Dictionary(UR=Dictionary())


@fault("6.1.13")
def too_many_states(pdf):
    page_content(pdf, b"q " * 29 + b"Q " * 29)


@fault("6.1.13")
def page_too_small(pdf):
    pdf.pages[0].obj.MediaBox = Array([0, 0, 2, 2])


@fault("6.1.13")
def name_too_long(pdf):
    pdf.Root[f"/{'a' * 128}"] = 1


@fault("6.2.2")
def inherited_resources(pdf):
    page = pdf.pages[0].obj
    pdf.Root.Pages.Resources = page.Resources
    del page["/Resources"]


@fault("6.2.2")
def unknown_operator(pdf):
    page_content(pdf, b"BX 1 unknown EX")


@fault("6.2.3")
def two_profiles(pdf):
    copy = Stream(pdf, pdf.Root.OutputIntents[0].DestOutputProfile.read_bytes())
    copy.N = 3
    pdf.Root.OutputIntents.append(Dictionary(Type=Name.OutputIntent, S=Name.GTS_PDFA1, OutputConditionIdentifier=String("x"),
                                             DestOutputProfile=pdf.make_indirect(copy)))


@fault("6.2.3")
def damaged_profile(pdf):
    profile = pdf.Root.OutputIntents[0].DestOutputProfile
    profile.write(profile.read_bytes()[:-4])


@fault("6.2.3")
def profile_with_wrong_components(pdf):
    pdf.Root.OutputIntents[0].DestOutputProfile.N = 4


@fault("6.2.4.2")
def damaged_colour_space(pdf):
    profile = Stream(pdf, b"none")
    profile.N = 3
    page_content(pdf, b"/C cs", Dictionary(ColorSpace=Dictionary(C=pdf.make_indirect(Array([Name.ICCBased, profile])))))


@fault("6.2.4.3")
def no_output_intent(pdf):
    del pdf.Root["/OutputIntents"]


@fault("6.2.4.3")
def cmyk(pdf):
    page_content(pdf, b"0 0 0 1 k")


@fault("6.2.4.3")
def cmyk_image(pdf):
    image(pdf, ColorSpace=Name.DeviceCMYK)


@fault("6.2.5")
def transfer_function(pdf):
    state(pdf, TR=Name.Identity)


@fault("6.2.6")
def unknown_intent(pdf):
    page_content(pdf, b"/Nice ri")


@fault("6.2.8.1")
def interpolation(pdf):
    image(pdf, Interpolate=True)


@fault("6.2.9")
def reference_form(pdf):
    form = Stream(pdf, b"")
    form.stream_dict = Dictionary(Type=Name.XObject, Subtype=Name.Form, BBox=Array([0, 0, 1, 1]), Ref=Dictionary(F=String("a.pdf")),
                                  Resources=Dictionary())
    page_content(pdf, b"/F Do", Dictionary(XObject=Dictionary(F=pdf.make_indirect(form))))


@fault("6.2.10")
def unknown_blend_mode(pdf):
    state(pdf, BM=Name.Nice)


@fault("6.2.10")
def blending_in_cmyk(pdf):
    pdf.pages[0].obj.Group = Dictionary(S=Name.Transparency, CS=Name.DeviceCMYK)


@fault("6.2.11.3")
def no_glyph_map(pdf):
    del first_font(pdf).DescendantFonts[0]["/CIDToGIDMap"]


@fault("6.2.11.3")
def unknown_encoding(pdf):
    first_font(pdf).Encoding = Name("/UniGB-UTF16-H")


@fault("6.2.11.4.1")
def font_not_embedded(pdf):
    del first_font(pdf).DescendantFonts[0].FontDescriptor["/FontFile2"]


@fault("6.2.11.4.1")
def glyphs_missing(pdf):
    mapping = first_font(pdf).DescendantFonts[0].CIDToGIDMap
    mapping.write(b"\xf0\xf0" * (len(mapping.read_bytes()) // 2))


@fault("6.2.11.5")
def wrong_widths(pdf):
    descendant = first_font(pdf).DescendantFonts[0]
    descendant.W = Array([1, Array([float(width) + 3 for width in descendant.W[1]])])


@fault("6.2.11.7.2")
def no_unicode(pdf):
    del first_font(pdf)["/ToUnicode"]


@fault("6.2.11.7.2")
def byte_order_mark_as_text(pdf):
    stream = first_font(pdf).ToUnicode
    text = stream.read_bytes()
    at = text.index(b"<0001><") + 7
    stream.write(text[:at] + b"FEFF" + text[at + 4:])


@fault("6.2.11.8")
def notdef(pdf):
    mapping = first_font(pdf).DescendantFonts[0].CIDToGIDMap
    mapping.write(b"\0\0" * (len(mapping.read_bytes()) // 2))


@fault("6.3.1")
def film(pdf):
    annotate(pdf, Subtype=Name.Movie, AP=Dictionary())


@fault("6.3.2")
def link_that_is_not_printed(pdf):
    annotate(pdf, F=0)


@fault("6.3.2")
def hidden_note(pdf):
    annotate(pdf, Subtype=Name.Text, F=6, AP=Dictionary())


@fault("6.3.3")
def note_without_appearance(pdf):
    annotate(pdf, Subtype=Name.Text)


@fault("6.4")
def form_without_appearances(pdf):
    pdf.Root.AcroForm = Dictionary(Fields=Array([]), NeedAppearances=True)


@fault("6.5.1")
def launching(pdf):
    annotate(pdf, A=Dictionary(Type=Name.Action, S=Name.Launch, F=String("a")))


@fault("6.5.1")
def script(pdf):
    pdf.Root.OpenAction = Dictionary(Type=Name.Action, S=Name.JavaScript, JS=String("app.alert(1)"))


@fault("6.5.2")
def trigger(pdf):
    pdf.pages[0].obj.AA = Dictionary(O=Dictionary(Type=Name.Action, S=Name.URI, URI=String("http://a.b")))


@fault("6.6.2")
def no_metadata(pdf):
    del pdf.Root["/Metadata"]


@fault("6.6.2")
def foreign_schema(pdf):
    replace_metadata(pdf, b"<dc:format>", b'<x:own xmlns:x="http://own/">1</x:own><dc:format>')


@fault("6.6.2")
def broken_metadata(pdf):
    replace_metadata(pdf, b"</dc:format>", b"")


@fault("6.6.3")
def another_title(pdf):
    pdf.trailer.Info.Title = String("Another")


@fault("6.6.3")
def another_date(pdf):
    pdf.trailer.Info.ModDate = String("D:20200101000000+01'00'")


@fault("6.6.4")
def not_identified(pdf):
    replace_metadata(pdf, b"<pdfaid:part>3<", b"<pdfaid:part>9<")


@fault("6.8")
def attachment_without_relation(pdf):
    attach(pdf, ["/AFRelationship"])


@fault("6.8")
def attachment_without_name(pdf):
    attach(pdf, ["/UF"])


@fault("6.8")
def attachment_of_nothing(pdf):
    attach(pdf, associate=False)


@fault("6.10")
def presentation_steps(pdf):
    pdf.pages[0].obj.PresSteps = Dictionary()


@fault("6.11")
def demands(pdf):
    pdf.Root.Requirements = Array([])


# --- Faults in a document that is accessible ---

ACCESSIBLE = []


def accessible_fault(clause):
    def add(function):
        ACCESSIBLE.append((clause, function, False))
        return function
    return add


def elements(pdf, *types):
    """The elements of these types, in the order of their objects."""
    return [obj for obj in pdf.objects if isinstance(obj, Dictionary) and "/S" in obj and "/P" in obj and str(obj.S)[1:] in types]


def data_cell(pdf):
    """A cell that says something and has heads."""
    return next(cell for cell in elements(pdf, "TD") if "/K" in cell and "/Headers" in cell.get("/A", {}))


def content_of(pdf):
    """Changes the first page's content: gives its bytes and what takes the new ones."""
    page = pdf.pages[0].obj
    streams = list(page.Contents)
    return streams[0].read_bytes(), streams[0].write


def linked(pdf):
    return next(page.obj for page in pdf.pages if "/Annots" in page.obj)


@accessible_fault("14.7.2")
def wrong_parent(pdf):
    data_cell(pdf).P = pdf.Root.StructTreeRoot.K


@accessible_fault("14.7.2")
def element_in_itself(pdf):
    row = elements(pdf, "TR")[0]
    row.K.append(row)


@accessible_fault("14.7.2")
def name_twice(pdf):
    heads = elements(pdf, "TH")
    heads[0].ID = heads[1].ID


@accessible_fault("14.7.2")
def name_that_leads_nowhere(pdf):
    del elements(pdf, "TH")[0]["/ID"]


@accessible_fault("7.9.6")
def names_out_of_order(pdf):
    names = pdf.Root.StructTreeRoot.IDTree.Kids[0].Names
    names[0], names[2] = names[2], names[0]
    names[1], names[3] = names[3], names[1]


@accessible_fault("7.9.7")
def numbers_out_of_order(pdf):
    numbers = pdf.Root.StructTreeRoot.ParentTree.Kids[0].Nums
    numbers[0], numbers[2] = numbers[2], numbers[0]
    numbers[1], numbers[3] = numbers[3], numbers[1]


@accessible_fault("14.7.4.2")
def mark_of_nobody(pdf):
    del data_cell(pdf)["/K"]


@accessible_fault("14.7.4.2")
def mark_that_is_not_there(pdf):
    data_cell(pdf).K.append(9999)


@accessible_fault("14.7.4.2")
def mark_of_two(pdf):
    cell = data_cell(pdf)
    pdf.Root.StructTreeRoot.K.K.append(pdf.make_indirect(Dictionary(S=Name.P, P=pdf.Root.StructTreeRoot.K, Pg=cell.Pg, K=cell.K)))


@accessible_fault("14.7.4.4")
def wrong_owner(pdf):
    owners = pdf.Root.StructTreeRoot.ParentTree.Kids[0].Nums[1]
    owners[0] = owners[len(owners) - 1]


@accessible_fault("14.7.4.4")
def page_without_owners(pdf):
    del pdf.pages[0].obj["/StructParents"]


@accessible_fault("14.7.4.4")
def link_without_owner(pdf):
    del linked(pdf).Annots[0]["/StructParent"]


@accessible_fault("14.7.4.4")
def number_taken_twice(pdf):
    pdf.Root.StructTreeRoot.ParentTreeNextKey = 0


@accessible_fault("14.6.1")
def mark_over_a_text_object(pdf):
    data, write = content_of(pdf)
    write(data.replace(b"EMC\nET", b"ET\nEMC", 1))


@accessible_fault("14.6.1")
def mark_without_end(pdf):
    data, write = content_of(pdf)
    write(data + b"/P BMC\n")


@accessible_fault("6.7.2.2")
def not_marked(pdf):
    del pdf.Root["/MarkInfo"]


@accessible_fault("6.7.3.3")
def no_structure(pdf):
    del pdf.Root["/StructTreeRoot"]


@accessible_fault("6.7.3.4")
def unknown_type(pdf):
    data_cell(pdf).S = Name("/Zelle")


@accessible_fault("6.7.3.4")
def standard_type_replaced(pdf):
    pdf.Root.StructTreeRoot.RoleMap = Dictionary({"/P": Name.Span})


@accessible_fault("6.7.4")
def unknown_language(pdf):
    data_cell(pdf).Lang = String("de_DE")


@accessible_fault("6.2.11.7.3")
def private_character(pdf):
    stream = first_font(pdf).ToUnicode
    text = stream.read_bytes()
    stream.write(re.sub(rb"(<[0-9A-F]{4}>)<[0-9A-F]{4}>", rb"\1<E000>", text))


@accessible_fault("5")
def unknown_part(pdf):
    replace_metadata(pdf, b"<pdfuaid:part>1<", b"<pdfuaid:part>7<")


@accessible_fault("6.6.2")
def undescribed_property(pdf):
    replace_metadata(pdf, b"<pdfaSchema:prefix>pdfuaid<", b"<pdfaSchema:prefix>another<")


@accessible_fault("7.1")
def untagged_text(pdf):
    data, write = content_of(pdf)
    write(re.sub(rb"/P<</MCID \d+>>BDC\n(.*?)EMC\n", rb"\1", data, count=1, flags=re.DOTALL))


@accessible_fault("7.1")
def artifact_within_tags(pdf):
    data, write = content_of(pdf)
    write(re.sub(rb"(/P<</MCID \d+>>BDC\n)(.*?)EMC\n", rb"\1/Artifact BMC\n\2EMC\nEMC\n", data, count=1, flags=re.DOTALL))


@accessible_fault("7.1")
def suspect(pdf):
    pdf.Root.MarkInfo.Suspects = True


@accessible_fault("7.1")
def title_not_shown(pdf):
    pdf.Root.ViewerPreferences.DisplayDocTitle = False


@accessible_fault("7.1")
def no_title(pdf):
    packet = pdf.Root.Metadata.read_bytes()
    pdf.Root.Metadata.write(re.sub(rb"<dc:title>.*?</dc:title>\n", b"", packet))


@accessible_fault("7.2")
def no_language(pdf):
    del pdf.Root["/Lang"]


@accessible_fault("7.2")
def cell_without_row(pdf):
    elements(pdf, "TR")[0].S = Name.Div


@accessible_fault("7.2")
def table_without_rows(pdf):
    elements(pdf, "TBody")[0].K = Array([])


@accessible_fault("7.2")
def row_too_short(pdf):
    row = elements(pdf, "TR")[-1]
    row.K = Array(list(row.K)[:-1])


@accessible_fault("7.2")
def span_too_wide(pdf):
    data_cell(pdf).A.ColSpan = 2


@accessible_fault("7.2")
def group_with_text(pdf):
    elements(pdf, "P")[0].S = Name.Sect


@accessible_fault("7.3")
def figure_without_text(pdf):
    del elements(pdf, "Figure")[0]["/Alt"]


@accessible_fault("7.3")
def figure_without_box(pdf):
    del elements(pdf, "Figure")[0].A["/BBox"]


@accessible_fault("7.4.2")
def heading_left_out(pdf):
    elements(pdf, "H2")[0].S = Name.H3


@accessible_fault("7.4.2")
def first_heading_of_second_level(pdf):
    elements(pdf, "H1")[0].S = Name.H2


@accessible_fault("7.4.4")
def heading_without_level(pdf):
    elements(pdf, "H2")[0].S = Name.H


@accessible_fault("7.5")
def head_without_scope(pdf):
    del elements(pdf, "TH")[0].A["/Scope"]


@accessible_fault("7.5")
def cell_without_heads(pdf):
    del data_cell(pdf).A["/Headers"]


@accessible_fault("7.5")
def heads_of_nobody(pdf):
    data_cell(pdf).A.Headers = Array([String("none")])


@accessible_fault("7.5")
def head_of_itself(pdf):
    head = elements(pdf, "TH")[0]
    head.A.Headers = Array([head.ID])


@accessible_fault("7.5")
def table_without_heads(pdf):
    for head in elements(pdf, "TH"):
        head.S = Name.TD


@accessible_fault("7.8")
def unknown_furniture(pdf):
    data, write = content_of(pdf)
    write(data + b"/Artifact<</Type/Pagination/Subtype/Nice>>BDC\n0 0 1 1 re f\nEMC\n")


@accessible_fault("7.11")
def attached_without_name(pdf):
    attach(pdf, ["/UF"])


@accessible_fault("7.18.1")
def link_outside_of_structure(pdf):
    link = elements(pdf, "Link")[0]
    link.K = Array([kid for kid in link.K if not isinstance(kid, Dictionary)])


@accessible_fault("7.18.3")
def tabs_in_another_order(pdf):
    linked(pdf).Tabs = Name.R


@accessible_fault("7.18.5")
def link_without_words(pdf):
    del linked(pdf).Annots[0]["/Contents"]


@accessible_fault("7.18.5")
def link_in_a_paragraph(pdf):
    elements(pdf, "Link")[0].S = Name.Span


def planted(function, in_bytes, sound, target):
    if in_bytes:
        target.write_bytes(function(sound.read_bytes()))
        return
    with pikepdf.open(sound) as pdf:
        if function:
            function(pdf)
        pdf.save(target, static_id=True, fix_metadata_version=False, compress_streams=False,
                 stream_decode_level=pikepdf.StreamDecodeLevel.none)
    if function is no_identifier:  # the library writes one in any case
        target.write_bytes(target.read_bytes().replace(b"/ID [", b"/Id ["))


def failures_of(path, faults, folder):
    failures = [f"the sound file: {finding}" for finding in findings_of(PdfFile(path))]
    sound = pathlib.Path(path)
    target = pathlib.Path(folder) / "planted.pdf"
    planted(None, False, sound, target)
    failures += [f"the sound file, saved again: {finding}" for finding in findings_of(PdfFile(target))]
    for clause, function, in_bytes in faults:
        planted(function, in_bytes, sound, target)
        try:
            found = findings_of(PdfFile(target))
        except Exception as error:
            failures.append(f"{function.__name__}: {error!r}")
            continue
        if not any(finding.clause.endswith(f", {clause}") and "cannot be judged" not in finding.text for finding in found):
            failures.append(f"{function.__name__} is not found under {clause}: {found}")
    return failures


def main(path):
    with tempfile.TemporaryDirectory() as folder:
        failures = failures_of(path, FAULTS, folder)
    print("\n".join(failures) or f"{len(FAULTS)} faults, each found")
    return len(failures)


if __name__ == "__main__":
    sys.exit(main(sys.argv[1]) > 0 or len(FAULTS) < 40)
