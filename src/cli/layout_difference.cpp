#include "cli/layout_difference.h"

#include "druckwerk/layout/sample_marks.h"

#include <algorithm>
#include <map>
#include <set>
#include <sstream>

namespace kvtdruck::cli {
namespace {

using namespace druckwerk;

std::string withSingleBlanks(const std::string& text) {
    std::istringstream words(text);
    std::string result;
    for (std::string word; words >> word;)
        result += (result.empty() ? "" : " ") + word;
    return result;
}

/// The text of an element as it is printed: what stands in the place of its placeholders is a sample.
std::string textOf(const xmlNode* node) {
    const auto placeholders = placeholdersBehind(node);
    return placeholders.empty() ? contentOf(node) : placeholders;
}

/// The layer in which an element lies, with ": " behind it.
std::string layerOf(const xmlNode* node) {
    std::string layer;
    for (; node && node->type == XML_ELEMENT_NODE; node = node->parent)
        if (const auto label = layerLabel(node); svgName(node) == "g" && !label.empty())
            layer = label + ": ";
    return layer;
}

bool isSample(const xmlNode* node) {
    for (; node && node->type == XML_ELEMENT_NODE; node = node->parent)
        if (hasClass(node, kSampleClass))
            return true;
    return false;
}

/// The attributes that a drawing program does not give by itself, by their names.
std::string attributesOf(const xmlNode* node) {
    std::map<std::string, std::string> attributes;
    for (const auto* attribute = node->properties; attribute; attribute = attribute->next)
        if (const std::string name(viewOf(attribute->name)); !attribute->ns && name != "id" &&
                                                             name != kSampleAttribute &&
                                                             (name != "display" || !hasAttribute(node, "data-if")))
            attributes[name] = withSingleBlanks(valueOf(attribute));
    std::string text;
    for (const auto& [name, value] : attributes)
        text.append(" ").append(name).append("=\"").append(value).append("\"");
    return text;
}

/// One line for each object and each rule of style.
std::vector<std::string> linesOf(const std::string& svg) {
    XmlError error;
    const auto document = parseXml(svg, error);
    if (!document)
        return {svg};
    std::vector<std::string> lines;
    forEachElement(xmlDocGetRootElement(document.get()), [&](xmlNode* node) {
        const std::string name(svgName(node));
        if (name.empty() || name == "tspan" || name == "metadata" || name == "defs" || isSample(node))
            return;
        if (name == "style") {
            std::istringstream rules(contentOf(node));
            for (std::string rule; std::getline(rules, rule, '}');)
                if (!withSingleBlanks(rule).empty())
                    lines.push_back("style " + withSingleBlanks(rule) + " }");
            return;
        }
        const bool holdsText = name == "text" || name == "title";
        lines.push_back(layerOf(node) + name + attributesOf(node) + (holdsText ? " „" + textOf(node) + "“" : ""));
    });
    return lines;
}

/// Adds what of `lines` is not in `others`, each as often as it is more.
void addMissing(const std::vector<std::string>& lines, const std::vector<std::string>& others, const char* sign,
                std::vector<std::string>& differences) {
    std::multiset<std::string> left(others.begin(), others.end());
    for (const auto& line : lines) {
        const auto found = left.find(line);
        if (found == left.end())
            differences.push_back(sign + line);
        else
            left.erase(found);
    }
}

} // namespace

std::vector<std::string> differencesOf(const std::string& first, const std::string& second) {
    const auto firstLines = linesOf(first);
    const auto secondLines = linesOf(second);
    std::vector<std::string> differences;
    addMissing(firstLines, secondLines, "- ", differences);
    addMissing(secondLines, firstLines, "+ ", differences);
    return differences;
}

} // namespace kvtdruck::cli
