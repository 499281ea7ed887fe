// From SVG to bands: geometry with all transforms applied, styles computed, placeholders and expressions compiled.
#include "druckwerk/layout/band_builder.h"
#include "druckwerk/layout/layout_inspection.h"
#include "druckwerk/layout/reading.h"
#include "druckwerk/layout/sample_marks.h"

#include <array>
#include <cmath>

namespace kvtdruck::druckwerk {

namespace {

constexpr double kPointsPerUnit = 72.0 / 96;      // of CSS: 96 to the inch
constexpr double kMaximumPage = 2000 * 72 / 25.4; // 2 m

/// The page's size; gives the map from the root's user units to points on the page.
Matrix readPage(Reading& reading, const xmlNode* root) {
    if (svgName(root) != "svg")
        throw Fault(kLayoutMalformed,
                    reading.name + ": Wurzelelement ist nicht <svg> (Namensraum http://www.w3.org/2000/svg)");
    const auto refuse = [&](const char* reason) {
        throw Fault(kLayoutInvalid, reading.name + ", Zeile " + std::to_string(lineOf(root)) + ": " + reason);
    };
    constexpr const char* kBadSize = "Seitengröße fehlt oder ist ungültig (width, height, viewBox)";
    const auto width = parseLength(attribute(root, "width"));
    const auto height = parseLength(attribute(root, "height"));
    if (!width || !height || *width <= 0 || *height <= 0)
        refuse(kBadSize);
    Layout& layout = reading.layout;
    layout.width = *width * kPointsPerUnit;
    layout.height = *height * kPointsPerUnit;
    std::array<double, 4> box = {0, 0, *width, *height};
    const std::string viewBox = attribute(root, "viewBox");
    const auto words = splitWords(viewBox);
    for (std::size_t i = 0; i < words.size() && i < box.size(); ++i)
        box[i] = parseLength(words[i]).value_or(0);
    if ((!words.empty() && words.size() != box.size()) || box[2] <= 0 || box[3] <= 0 ||
        layout.width > kMaximumPage || layout.height > kMaximumPage)
        refuse(kBadSize);
    const double scale = layout.width / box[2];
    if (std::fabs(layout.height / box[3] / scale - 1) > 0.005)
        refuse("viewBox und Seitengröße haben verschiedene Seitenverhältnisse");
    return {scale, 0, 0, scale, -box[0] * scale, -box[1] * scale};
}

void readStyleSheets(Reading& reading, xmlNode* root) {
    forEachElement(root, [&](xmlNode* node) {
        if (svgName(node) != "style")
            return;
        reading.located(node, "", [&] {
            std::string text;
            for (const xmlNode* part = node->children; part != nullptr; part = part->next)
                if (part->content != nullptr)
                    text += reinterpret_cast<const char*>(part->content);
            const std::size_t before = reading.sheet.notUnderstood().size();
            reading.sheet.add(text);
            for (std::size_t i = before; i < reading.sheet.notUnderstood().size(); ++i)
                reading.report(kLayoutInvalid, node, "",
                               "„" + reading.sheet.notUnderstood()[i] + "“ wird nicht verstanden", false);
        });
    });
    for (const auto& selector : reading.sheet.ignored())
        reading.report(kLayoutInvalid, nullptr, "", "Auswahl „" + selector + "“ im Stil wird nicht unterstützt",
                       false);
}

void readLayer(Reading& reading, xmlNode* node, const std::string& label, const Context& root) {
    const Target target = targetOf(reading.layout, label, node);
    BandBuilder builder(reading, label, target, node);
    const Context context = builder.styled(root, node); // a layer's own condition is its band's
    if (!context.style.display)
        return;
    reading.located(node, label, [&] { builder.readAttributes(node); });
    forEachChild(node, [&](xmlNode* child) { builder.readElement(child, context); });
    Band band = builder.finish(node);
    if (target.single != nullptr) {
        if (*target.single)
            reading.report(kLayoutInvalid, node, label, "Ebene gibt es zweimal");
        target.single->emplace(std::move(band));
    } else if (!target.flows) {
        auto& bands = reading.layout.page;
        bands.insert(label == "Hintergrund" ? bands.begin() : bands.end(), std::move(band));
    }
}

/// What lies outside of all layers is printed beneath everything.
void readLoose(Reading& reading, xmlNode* node, const Context& root) {
    BandBuilder builder(reading, "", {}, node);
    builder.readElement(node, root);
    Band band = builder.finish(node);
    if (!band.items.empty())
        reading.layout.page.insert(reading.layout.page.begin(), std::move(band));
}

void readLayers(Reading& reading, xmlNode* svg, const Context& root) {
    bool layers = false;
    forEachChild(svg, [&](xmlNode* node) {
        const std::string label = svgName(node) == "g" ? layerLabel(node) : "";
        layers = layers || !label.empty();
        reading.located(node, label, [&] {
            label.empty() ? readLoose(reading, node, root) : readLayer(reading, node, label, root);
        });
    });
    if (!layers)
        reading.report(kLayoutInvalid, nullptr, "",
                       "Keine Ebenen gefunden; als „Inkscape-SVG“ speichern, nicht als „normales SVG“");
}

Layout readTree(const std::string& source, const std::string& name, const LayoutFiles& files,
                Definitions& definitions, std::vector<Finding>& findings) {
    const SvgFile file(source, files);
    Reading reading{name, definitions, findings};
    Context root;
    root.matrix = readPage(reading, file.root());
    readStyleSheets(reading, file.root());
    reading.applyStyle(file.root(), "", root.style);
    readGroups(reading, file.root());
    readLayers(reading, file.root(), root);
    if (!files.logo.empty() && !file.hasPlaceForLogo())
        findings.push_back(
            {false, kLayoutInvalid,
             name + ", kein Platz für das Logo (ein Rechteck der Klasse „logo“); es fehlt im Druck"});
    inspectNames(file.root(), [&](const xmlNode* node, const std::string& layer, const std::string& message) {
        reading.report(kLayoutInvalid, node, layer, message, false);
    });
    for (const auto& message : inspectPlaces(reading.layout))
        findings.push_back({false, kLayoutInvalid, std::string(name).append(", ").append(message)});
    if (!reading.layout.foreign.empty()) {
        showConditional(file.root()); // the SVG library would leave out what is hidden
        reading.layout.foreignSource = file.text();
    }
    return std::move(reading.layout);
}

} // namespace

Layout readLayout(const std::string& source, const std::string& name, const LayoutFiles& files,
                  Definitions& definitions, std::vector<Finding>& findings) {
    try {
        return readTree(source, name, files, definitions, findings);
    } catch (const Fault& fault) {
        const std::string message = fault.what();
        findings.push_back({true, fault.code(), message.rfind(name, 0) == 0 ? message : name + ", " + message});
        return {};
    }
}

} // namespace kvtdruck::druckwerk
