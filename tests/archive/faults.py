#!/usr/bin/python3
"""faults.py FILE: each fault that is planted into a sound file is found, under its clause, and the file itself is sound."""
import pathlib
import sys
import tempfile

import pikepdf
from pikepdf import Array, Dictionary, Name, Stream, String

from check import findings_of

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


def main(path):
    failures = [f"the sound file: {finding}" for finding in findings_of(path)]
    sound = pathlib.Path(path)
    with tempfile.TemporaryDirectory() as folder:
        target = pathlib.Path(folder) / "planted.pdf"
        planted(None, False, sound, target)
        failures += [f"the sound file, saved again: {finding}" for finding in findings_of(target)]
        for clause, function, in_bytes in FAULTS:
            planted(function, in_bytes, sound, target)
            try:
                found = findings_of(target)
            except Exception as error:
                failures.append(f"{function.__name__}: {error!r}")
                continue
            if not any(finding.clause.endswith(f", {clause}") and "cannot be judged" not in finding.text
                       for finding in found):
                failures.append(f"{function.__name__} is not found under {clause}: {found}")
    print("\n".join(failures) or f"{len(FAULTS)} faults, each found")
    return len(failures)


if __name__ == "__main__":
    sys.exit(main(sys.argv[1]) > 0 or len(FAULTS) < 40)
