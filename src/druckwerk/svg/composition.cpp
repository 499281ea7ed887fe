#include "druckwerk/svg/composition.h"

#include "druckwerk/common/fault.h"
#include "druckwerk/common/geometry.h"
#include "druckwerk/svg/image_extent.h"
#include "druckwerk/svg/limits.h"
#include "druckwerk/svg/svg_inspection.h"
#include "druckwerk/svg/svg_style.h"
#include "platform/posix/input_file.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace kvtdruck::druckwerk {
namespace {

namespace fs = std::filesystem;

constexpr const char* kXlink = "http://www.w3.org/1999/xlink";

std::string readShared(const xmlNode* node, const LayoutFiles& files, const std::string& name) {
    const fs::path file = fileBelow(files, name);
    if (file.empty())
        throw Fault(kLayoutRefused,
                    lineText(node) + ": Verweis nach außen ist nicht erlaubt: " + name.substr(0, 80));
    std::error_code ignored;
    if (!fs::is_regular_file(file, ignored)) // a pipe would be waited for
        throw Fault(kLayoutInvalid, lineText(node) + ": Die Datei „" + name + "“, die das Layout nennt, fehlt");
    try {
        return readInput(file, limits::kFileSize);
    } catch (const std::system_error& error) {
        throw Fault(kLayoutUnreadable, lineText(node) + ": „" + name + "“ kann nicht gelesen werden: " +
                                           reasonForReading(error.code().value()));
    }
}

// --- Style sheets ---

/// The name in an import's rule: url("stil.css"), "stil.css"; "" where there is more, or less.
std::string importedName(std::string_view rule) {
    rule = trimmedAscii(rule);
    if (rule.starts_with("url(") && rule.ends_with(")"))
        rule = trimmedAscii(rule.substr(4, rule.size() - 5));
    for (const char quote : {'"', '\''})
        if (rule.size() > 1 && rule.front() == quote && rule.back() == quote)
            rule = rule.substr(1, rule.size() - 2);
    return rule.find_first_of("\"'() \t\r\n") == std::string_view::npos ? std::string(rule) : "";
}

/// Takes the imports out of a style sheet; gives their names.
std::vector<std::string> takeImports(const xmlNode* node, std::string& sheet) {
    std::vector<std::string> names;
    for (std::size_t at = 0; (at = sheet.find("@import", at)) != std::string::npos;) {
        const auto end = sheet.find(';', at);
        names.push_back(
            end == std::string::npos ? "" : importedName(std::string_view(sheet).substr(at + 7, end - at - 7)));
        if (names.back().empty())
            throw Fault(kLayoutInvalid,
                        lineText(node) + ": @import wird nicht verstanden; es heißt: @import url(\"stil.css\");");
        sheet.erase(at, end + 1 - at);
    }
    return names;
}

/// A sheet whose braces do not match would lose rules without a word.
void checkSheet(const std::string& name, const std::string& sheet) {
    int open = 0;
    int line = 1;
    for (const char c : sheet) {
        line += c == '\n';
        open += c == '{' ? 1 : c == '}' ? -1 : 0;
        if (open < 0 || open > 1)
            break;
    }
    if (open != 0)
        throw Fault(kLayoutMalformed, "„" + name + "“, Zeile " + std::to_string(line) +
                                          ": geschweifte Klammern passen nicht zusammen");
    if (sheet.find("@import") != std::string::npos)
        throw Fault(kLayoutRefused, "„" + name + "“: Verweis nach außen ist nicht erlaubt: @import");
}

std::vector<xmlNode*> elementsOf(xmlNode* root, std::string_view name) {
    std::vector<xmlNode*> found;
    forEachElement(root, [&](xmlNode* node) {
        if (svgName(node) == name)
            found.push_back(node);
    });
    return found;
}

std::string sheetOf(const xmlNode* style) {
    return withoutComments(textWithin(style));
}

/// Each sheet that is imported becomes a style element before the one that imports it.
void importSheets(xmlNode* root, const LayoutFiles& files) {
    for (xmlNode* style : elementsOf(root, "style")) {
        if (hasClass(style, kSampleClass)) {
            removeNode(style); // for drawing programs that import nothing here
            continue;
        }
        std::string own = sheetOf(style);
        if (own.find("@import") == std::string::npos)
            continue;
        for (const auto& name : takeImports(style, own)) {
            const std::string sheet = withoutComments(readShared(style, files, name));
            checkSheet(name, sheet);
            xmlNode* imported = xmlNewDocNode(style->doc, style->ns, style->name, nullptr);
            xmlAddPrevSibling(style, imported);
            xmlSetProp(imported, xml(kFromFile), xml(name));
            xmlNodeAddContent(imported, xml(sheet));
        }
        xmlNodeSetContent(style, nullptr);
        xmlNodeAddContent(style, xml(own));
    }
}

// --- Drawings ---

std::string linkOf(const xmlNode* node) {
    for (const xmlAttr* attr = node->properties; attr != nullptr; attr = attr->next)
        if (viewOf(attr->name) == "href")
            return valueOf(attr);
    return "";
}

bool isDrawing(const std::string& link) {
    return link.size() > 4 && link.substr(link.size() - 4) == ".svg";
}

/// Names of elements become those of this file: two files may have given the same ones.
void setApart(xmlNode* root, const std::string& prefix) {
    forEachElement(root, [&](xmlNode* node) {
        for (xmlAttr* attr = node->properties; attr != nullptr; attr = attr->next) {
            std::string value = valueOf(attr);
            const auto name = viewOf(attr->name);
            if (name == "id")
                value.insert(0, prefix);
            else if (name == "href" && value.starts_with('#'))
                value.insert(1, prefix);
            else
                for (std::size_t at = 0; (at = value.find("url(#", at)) != std::string::npos; at += 5)
                    value.insert(at + 5, prefix);
            if (value != valueOf(attr))
                xmlSetNsProp(node, attr->ns, attr->name, xml(value));
        }
    });
}

Box boxOf(const xmlNode* node) {
    std::array<double, 4> sides{};
    const std::array<const char*, 4> names = {"x", "y", "width", "height"};
    for (std::size_t i = 0; i < sides.size(); ++i)
        sides[i] = parseLength(attribute(node, names[i])).value_or(0);
    return {sides[0], sides[1], sides[2], sides[3]};
}

/// The map from a drawing's own units into the picture's box, which it fills as far as its sides allow.
std::string placement(const Box& view, const Box& box) {
    const double scale = std::min(box.width / view.width, box.height / view.height);
    const Point at{box.x + (box.width - view.width * scale) / 2, box.y + (box.height - view.height * scale) / 2};
    std::array<char, 160> text{};
    std::snprintf(text.data(), text.size(), "translate(%.9g,%.9g) scale(%.9g) translate(%.9g,%.9g)", at.x, at.y,
                  scale, -view.x, -view.y);
    return text.data();
}

/// Drawings put in are no layouts: they have no drawings in turn, and go where they are named.
XmlDocument readDrawing(const xmlNode* picture, const LayoutFiles& files, const std::string& name) {
    XmlError error;
    XmlDocument drawing = parseXml(readShared(picture, files, name), error);
    if (!drawing)
        throw Fault(kLayoutMalformed, "„" + name + "“, Zeile " + std::to_string(error.line) +
                                          ": Datei ist kein wohlgeformtes XML: " + error.reason);
    refuseDeclarations(drawing.get());
    xmlNode* root = xmlDocGetRootElement(drawing.get());
    if (svgName(root) != "svg")
        throw Fault(kLayoutMalformed, "„" + name + "“: Wurzelelement ist nicht <svg>");
    for (const xmlNode* inner : elementsOf(root, "image"))
        if (isDrawing(linkOf(inner)))
            throw Fault(kLayoutRefused, "„" + name + "“, " + lineText(inner) +
                                            ": Eine Zeichnung, die eingefügt wird, fügt keine weitere ein");
    return drawing;
}

/// The layout's own rules count more than those of the drawings that it shows, so they come behind them.
void putSheetsFirst(xmlNode* drawing, const std::string& name) {
    xmlNode* root = xmlDocGetRootElement(drawing->doc);
    for (xmlNode* style : elementsOf(drawing, "style")) {
        if (!hasAttribute(style, kFromFile))
            xmlSetProp(style, xml(kFromFile), xml(name));
        xmlUnlinkNode(style);
        xmlAddPrevSibling(root->children, style);
    }
}

void putIn(xmlNode* picture, const LayoutFiles& files, const std::string& name) {
    const XmlDocument drawing = readDrawing(picture, files, name);
    xmlNode* root = xmlDocGetRootElement(drawing.get());
    const std::string viewBox = attribute(root, "viewBox");
    const auto words = splitWords(viewBox);
    const Box box = boxOf(picture);
    Box view;
    if (words.size() == 4)
        view = {parseLength(words[0]).value_or(0), parseLength(words[1]).value_or(0),
                parseLength(words[2]).value_or(0), parseLength(words[3]).value_or(0)};
    if (view.width <= 0 || view.height <= 0 || box.width <= 0 || box.height <= 0)
        throw Fault(kLayoutInvalid, lineText(picture) + ": „" + name + "“ kann nicht eingefügt werden: " +
                                        (view.width > 0 && view.height > 0 ? "width und height des Bildes fehlen"
                                                                           : "die Datei hat keine viewBox"));
    importSheets(root, files);
    setApart(root, fs::path(name).stem().string() + "-");
    xmlNode* copy = xmlDocCopyNode(root, picture->doc, 1);
    xmlNodeSetName(copy, xml("g"));
    for (const char* gone : {"width", "height", "viewBox", "x", "y", "preserveAspectRatio", "version"})
        xmlUnsetProp(copy, xml(gone));
    xmlSetProp(copy, xml("transform"), xml(placement(view, box)));
    xmlNodeSetName(picture, xml("g"));
    for (const char* gone : {"width", "height", "x", "y", "preserveAspectRatio", "href"})
        xmlUnsetProp(picture, xml(gone));
    if (xmlNs* xlink = xmlSearchNsByHref(picture->doc, picture, xml(kXlink)))
        xmlUnsetNsProp(picture, xlink, xml("href"));
    xmlSetProp(copy, xml(kFromFile), xml(name));
    xmlAddChild(picture, copy);
    putSheetsFirst(copy, name);
}

/// A rectangle of the class "logo" says where the company's picture goes.
void putLogo(xmlNode* place, const fs::path& logo) {
    if (logo.empty())
        return;
    const auto refuse = [&](const std::string& reason) {
        throw Fault(kLayoutInvalid, "Das Logo „" + logo.string() + "“ " + reason);
    };
    std::string picture;
    try {
        picture = readInput(logo, limits::kFileSize);
    } catch (const std::system_error& error) {
        refuse("kann nicht gelesen werden: " + reasonForReading(error.code().value()));
    }
    const auto extent = imageExtent(picture);
    if (!extent)
        refuse("ist weder PNG noch JPEG");
    if (extent->first > limits::kPixels || extent->second > limits::kPixels)
        refuse("ist größer als 8192 Pixel");
    xmlNodeSetName(place, xml("image"));
    for (const char* ofRectangle : {"class", "style"})
        xmlUnsetProp(place, xml(ofRectangle));
    xmlSetProp(place, xml("href"), xml(dataAddress(picture)));
}

/// A picture that lies behind the layout's folder alone: the SVG library looks in that one only.
void carryPicture(xmlNode* picture, const LayoutFiles& files) {
    std::error_code ignored;
    const std::string link = linkOf(picture);
    const fs::path file = fileBelow(files, link);
    if (link.starts_with("data:") || !fs::is_regular_file(file, ignored) ||
        fs::exists(files.folder / link, ignored))
        return;
    const std::string content = readShared(picture, files, link);
    if (!imageExtent(content))
        throw Fault(kLayoutInvalid, lineText(picture) + ": Bild „" + link + "“ ist weder PNG noch JPEG");
    if (xmlNs* xlink = xmlSearchNsByHref(picture->doc, picture, xml(kXlink)))
        xmlUnsetNsProp(picture, xlink, xml("href"));
    xmlSetProp(picture, xml("href"), xml(dataAddress(content)));
}

} // namespace

fs::path fileBelow(const LayoutFiles& files, const std::string& name) {
    const fs::path path(name);
    if (path.is_absolute() || name.find("://") != std::string::npos)
        return {};
    fs::path found;
    for (const auto* folder : {&files.folder, &files.behind}) {
        if (folder == &files.behind && folder->empty())
            continue;
        std::error_code error;
        const auto base = fs::weakly_canonical(*folder, error);
        const auto target = fs::weakly_canonical(*folder / path, error);
        const auto [end, rest] = std::mismatch(base.begin(), base.end(), target.begin(), target.end());
        if (error || end != base.end())
            return {};
        if (found.empty() || (!fs::exists(found, error) && fs::exists(target, error)))
            found = target;
    }
    return found;
}

bool compose(xmlDoc* document, const LayoutFiles& files) {
    xmlNode* root = xmlDocGetRootElement(document);
    if (root == nullptr)
        return false;
    importSheets(root, files);
    for (xmlNode* picture : elementsOf(root, "image"))
        if (const std::string link = linkOf(picture); isDrawing(link))
            putIn(picture, files, link);
    for (xmlNode* picture : elementsOf(root, "image"))
        carryPicture(picture, files);
    auto places = elementsOf(root, "rect");
    std::erase_if(places, [](xmlNode* place) { return !hasClass(place, "logo"); });
    for (xmlNode* place : places)
        putLogo(place, files.logo);
    return !places.empty();
}

std::string withSheetsShown(const std::string& svg, const LayoutFiles& files) {
    XmlError ignored;
    const XmlDocument document = parseXml(svg, ignored, Cdata::Keep);
    if (!document)
        return svg;
    const auto styles = elementsOf(xmlDocGetRootElement(document.get()), "style");
    std::string sheets;
    try {
        for (const xmlNode* style : styles)
            if (std::string own = sheetOf(style); !hasClass(style, kSampleClass))
                for (const auto& name : takeImports(style, own))
                    sheets += readShared(style, files, name);
    } catch (const Fault&) {
        return svg; // the print says what is wrong
    }
    for (xmlNode* style : styles)
        if (hasClass(style, kSampleClass)) {
            xmlNodeSetContent(style, nullptr);
            xmlNodeAddContent(style, xml(sheets));
        }
    return textOf(document.get());
}

std::vector<std::string> sharedFilesOf(const std::string& svg) {
    XmlError ignored;
    const XmlDocument document = parseXml(svg, ignored);
    std::vector<std::string> names;
    if (!document)
        return names;
    xmlNode* root = xmlDocGetRootElement(document.get());
    for (const xmlNode* picture : elementsOf(root, "image"))
        if (const std::string link = linkOf(picture); isDrawing(link))
            names.push_back(link);
    for (const xmlNode* style : elementsOf(root, "style"))
        if (std::string sheet = sheetOf(style); sheet.find("@import") != std::string::npos)
            for (auto& name : takeImports(style, sheet))
                names.push_back(std::move(name));
    return names;
}

} // namespace kvtdruck::druckwerk
