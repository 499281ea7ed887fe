#include "druckwerk/layout/layout_inspection.h"

#include "druckwerk/layout/sample_marks.h"
#include "values/letters.h"

#include <algorithm>
#include <array>
#include <map>
#include <span>

namespace kvtdruck::druckwerk {

namespace {

constexpr double kTolerance = 1 * 72 / 25.4; // a millimetre

using Words = std::span<const std::string_view>;

constexpr std::array<std::string_view, 10> kBands = {"Kopf",       "Vortrag",    "Gruppenkopf", "Zeile",
                                                     "Gruppenfuß", "Übertrag",   "Summe",       "Seitenfuß",
                                                     "Seitenkopf", "Hintergrund"};
constexpr std::array<std::string_view, 5> kClasses = {"field", "chart", "band", "logo", kSampleClass};

enum class Owner : std::uint8_t { Any, Part, Layer, Field, Chart };

const std::map<std::string_view, Owner>& attributes() {
    static const std::map<std::string_view, Owner> kAttributes = {
        {"data-if", Owner::Any},        {"data-on", Owner::Layer},       {"data-new-page", Owner::Layer},
        {"data-repeat", Owner::Layer},  {"data-bookmark", Owner::Layer}, {"data-fit", Owner::Field},
        {"data-alone", Owner::Layer},   {"data-align", Owner::Field},    {"data-grow", Owner::Field},
        {"data-chart", Owner::Chart},   {"data-series", Owner::Chart},   {"data-rows", Owner::Chart},
        {"data-labels", Owner::Chart},  {"data-legend", Owner::Chart},   {"data-colors", Owner::Chart},
        {"data-format", Owner::Chart},  {"data-lines", Owner::Chart},    {"data-values", Owner::Chart},
        {"data-unit", Owner::Chart},    {"data-scale", Owner::Chart},    {"data-class", Owner::Part},
        {"data-class-if", Owner::Part}, {kSampleAttribute, Owner::Any}};
    return kAttributes;
}

/// German words that come to mind for what has an English name here.
const std::map<std::string_view, std::string_view>& germanWords() {
    static const std::map<std::string_view, std::string_view> kWords = {{"data-wenn", "data-if"},
                                                                        {"data-bedingung", "data-if"},
                                                                        {"data-gruppe", "data-on"},
                                                                        {"data-bei", "data-on"},
                                                                        {"data-neue-seite", "data-new-page"},
                                                                        {"data-seitenwechsel", "data-new-page"},
                                                                        {"data-wiederholen", "data-repeat"},
                                                                        {"data-lesezeichen", "data-bookmark"},
                                                                        {"data-anpassen", "data-fit"},
                                                                        {"data-umbruch", "data-fit"},
                                                                        {"data-wachsen", "data-grow"},
                                                                        {"data-diagramm", "data-chart"},
                                                                        {"data-reihen", "data-series"},
                                                                        {"data-zeilen", "data-rows"},
                                                                        {"data-beschriftung", "data-labels"},
                                                                        {"data-legende", "data-legend"},
                                                                        {"data-farben", "data-colors"},
                                                                        {"data-linien", "data-lines"},
                                                                        {"data-werte", "data-values"},
                                                                        {"data-einheit", "data-unit"},
                                                                        {"data-skala", "data-scale"},
                                                                        {"data-klasse", "data-class"},
                                                                        {"feld", "field"},
                                                                        {"diagramm", "chart"},
                                                                        {"streifen", "band"}};
    return kWords;
}

/// The word that was probably meant; "" where none is near.
std::string_view nearWord(std::string_view word, Words known, std::size_t most) {
    if (const auto german = germanWords().find(word); german != germanWords().end())
        return german->second;
    constexpr std::size_t kLongestWord = 100;
    std::string_view nearest;
    std::size_t least = most + 1;
    for (const auto& candidate : known) {
        const std::size_t edits = word.size() < kLongestWord ? editDistance(word, candidate) : least;
        if (edits < least || (edits == least && edits <= most && candidate.starts_with(word))) {
            nearest = candidate;
            least = edits;
        }
    }
    return nearest;
}

std::string similar(std::string_view word) {
    return word.empty() ? "" : " (ähnlich: „" + std::string(word) + "“)";
}

class NameInspection {
  public:
    explicit NameInspection(const ReportSlip& report) : report_(report) {}

    void inspect(xmlNode* root) {
        forEachChild(root, [&](xmlNode* node) {
            const std::string label = svgName(node) == "g" ? layerLabel(node) : "";
            if (!label.empty())
                inspectLayer(node, label);
            inspectElements(node, label);
        });
    }

  private:
    void inspectLayer(xmlNode* node, const std::string& label) {
        const std::string_view first = std::string_view(label).substr(0, label.find(' '));
        const bool group = first == "Gruppenkopf" || first == "Gruppenfuß";
        if (group || std::find(kBands.begin(), kBands.end(), label) != kBands.end())
            return;
        const std::size_t most = label.size() < 6 ? 1 : 2;
        if (const auto near = nearWord(label, kBands, most); !near.empty())
            return report_(node, label,
                           "Ebene „" + label + "“ gibt es nicht, sie wird auf jede Seite gedruckt" + similar(near));
        bool band = false;
        forEachElement(node, [&](const xmlNode* element) { band = band || hasClass(element, "band"); });
        if (band)
            report_(node, label,
                    "Ebene „" + label +
                        "“ hat ein Rechteck der Klasse „band“, aber keinen Namen wie "
                        "„Zeile“ oder „Summe“; sie wird auf jede Seite gedruckt");
    }

    void inspectElements(xmlNode* top, const std::string& layer) {
        forEachElement(top, [&](xmlNode* node) {
            for (const xmlAttr* attr = node->properties; attr != nullptr; attr = attr->next) {
                const std::string name = reinterpret_cast<const char*>(attr->name);
                if (name.starts_with("data-"))
                    inspectAttribute(node, layer, name, node == top && !layer.empty());
            }
            inspectClass(node, layer);
        });
    }

    void inspectAttribute(const xmlNode* node, const std::string& layer, const std::string& name, bool isLayer) {
        const auto found = attributes().find(name);
        if (found == attributes().end()) {
            std::vector<std::string_view> known;
            for (const auto& [attribute, owner] : attributes())
                known.push_back(attribute);
            return report_(node, layer,
                           "Attribut „" + name + "“ gibt es nicht" + similar(nearWord(name, known, 3)));
        }
        const bool fits = found->second == Owner::Any || (found->second == Owner::Part && !isLayer) ||
                          (found->second == Owner::Layer && isLayer) ||
                          (found->second == Owner::Field && hasClass(node, "field")) ||
                          (found->second == Owner::Chart && hasClass(node, "chart"));
        if (!fits)
            report_(node, layer,
                    "Attribut „" + name + "“ gilt nur für " +
                        (found->second == Owner::Layer   ? "Ebenen"
                         : found->second == Owner::Part  ? "Elemente in einer Ebene"
                         : found->second == Owner::Field ? "Felder (class=\"field\")"
                                                         : "Diagramme (class=\"chart\")"));
    }

    /// An element that has a class with a meaning may have any other beside it.
    void inspectClass(const xmlNode* node, const std::string& layer) {
        const auto name = svgName(node);
        const auto has = [&](std::string_view known) { return hasClass(node, known); };
        if ((name != "g" && name != "rect") || std::any_of(kClasses.begin(), kClasses.end(), has))
            return;
        const std::string classes = attribute(node, "class");
        for (const auto word : splitWords(classes))
            if (const auto near = nearWord(asciiLower(word), kClasses, 1); !near.empty())
                report_(node, layer, "Klasse „" + std::string(word) + "“ hat keine Wirkung" + similar(near));
    }

    const ReportSlip& report_;
};

/// One band with what it may not leave.
class PlaceInspection {
  public:
    PlaceInspection(const Layout& layout, std::vector<std::string>& messages)
        : layout_(layout), messages_(messages) {}

    void band(const Band& band, bool flows) {
        for (const Item& item : band.items)
            if (const auto* text = std::get_if<TextItem>(&item.content))
                inspectText(*text, band, flows);
            else if (const auto* chart = std::get_if<std::unique_ptr<Chart>>(&item.content))
                inspectBox((*chart)->box, (*chart)->line, "Diagramm", band, flows);
    }

    void report(const Band& band, int line, const std::string& message) {
        messages_.push_back("Zeile " + std::to_string(line) +
                            (band.label.empty() ? "" : ", Ebene „" + band.label + "“") + ": " + message);
    }

  private:
    void inspectText(const TextItem& text, const Band& band, bool flows) {
        if (text.turned || text.text.isConstant())
            return;
        if (text.box)
            return inspectBox(*text.box, text.line, "Feld", band, flows);
        const Point at = text.baseline;
        if (at.x < -kTolerance || at.x > layout_.width + kTolerance ||
            (!flows && (at.y < -kTolerance || at.y > layout_.height + kTolerance)))
            report(band, text.line, "Text liegt außerhalb der Seite");
    }

    void inspectBox(const Box& box, int line, const std::string& what, const Band& band, bool flows) {
        if (box.x < -kTolerance || box.right() > layout_.width + kTolerance ||
            (!flows && (box.y < -kTolerance || box.bottom() > layout_.height + kTolerance)))
            report(band, line, what + " ragt über den Rand der Seite hinaus");
        else if (flows && (box.y < band.top - kTolerance || box.bottom() > band.bottom() + kTolerance))
            report(band, line, what + " ragt aus dem Rechteck der Ebene hinaus");
    }

    const Layout& layout_;
    std::vector<std::string>& messages_;
};

} // namespace

void inspectNames(xmlNode* root, const ReportSlip& report) {
    NameInspection(report).inspect(root);
}

std::vector<std::string> inspectPlaces(const Layout& layout) {
    std::vector<std::string> messages;
    PlaceInspection inspection(layout, messages);
    for (const Band& band : layout.page)
        inspection.band(band, false);
    for (const auto* band : {&layout.columnHead, &layout.footer})
        if (*band)
            inspection.band(**band, false);
    for (const auto* band : {&layout.row, &layout.carriedIn, &layout.carriedOut, &layout.sum})
        if (*band)
            inspection.band(**band, true);
    for (const Group& group : layout.groups)
        for (const auto* band : {&group.head, &group.foot})
            if (*band) {
                inspection.band(**band, true);
                if (!layout.row)
                    inspection.report(**band, (*band)->line, "ohne eine Ebene „Zeile“ wird die Ebene nie gedruckt");
            }
    if (layout.row && layout.row->top > layout.flowBottom() - kTolerance)
        inspection.report(*layout.row, layout.row->line, "über dem Seitenfuß ist kein Platz für eine Zeile");
    return messages;
}

} // namespace kvtdruck::druckwerk
