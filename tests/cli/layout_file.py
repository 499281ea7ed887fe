"""What a layout says, whatever it shows in a drawing program."""
import re
import xml.etree.ElementTree

SVG = "{http://www.w3.org/2000/svg}"
INKSCAPE = "{http://www.inkscape.org/namespaces/inkscape}"
LABEL = INKSCAPE + "label"


def layers_of(layout):
    """Label and element of each layer."""
    for element in xml.etree.ElementTree.parse(layout).getroot():
        if element.tag == SVG + "g" and element.get(INKSCAPE + "groupmode") == "layer":
            yield element.get(LABEL), element


def written(text, field=None):
    """The words of a text, with placeholders in the place of what it shows; `field` is the one that it lies in."""
    shown = " ".join("".join(text.itertext()).split())
    labels = [owner.get(LABEL) or "" for owner in (text, field) if owner is not None]
    return next((words for words in (shown, *labels) if "{{" in words), shown)


def texts_of(element, field=None):
    """The words of all texts within an element, except what only a drawing program shows."""
    for child in element:
        classes = child.get("class", "").split()
        if child.tag == SVG + "text":
            yield written(child, field)
        elif "sample" not in classes:
            yield from texts_of(child, child if "field" in classes else field)


def fills_of(layout):
    """The fill colour of each class in the style sheet beside a layout."""
    sheet = (layout.parent / "stil.css").read_text(encoding="utf-8")
    return dict(re.findall(r"\.(\w+) {[^}]*fill: (#\w+)", sheet))
