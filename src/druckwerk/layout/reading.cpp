#include "druckwerk/layout/reading.h"

#include <algorithm>

namespace kvtdruck::druckwerk {

void invalid(const std::string& reason) {
    throw Fault(kLayoutInvalid, reason);
}

bool Context::always() const {
    return std::all_of(conditions.begin(), conditions.end(),
                       [](const auto& condition) { return condition->element == kOfLook; });
}

void Reading::report(std::int32_t code, const xmlNode* node, const std::string& layer, const std::string& reason,
                     bool error) {
    std::string message = (node == nullptr ? name : placeOf(node, layer)) + ": " + reason;
    const bool known = std::any_of(findings.begin(), findings.end(),
                                   [&](const Finding& finding) { return finding.message == message; });
    if (!known) // an element's style may be asked for more than once
        findings.push_back({error, code, std::move(message)});
}

void Reading::applyStyle(const xmlNode* node, const std::string& layer, Style& style) {
    const auto apply = [&](const std::string& property, const std::string& value) {
        if (!style.apply(property, value))
            report(kLayoutInvalid, node, layer,
                   "„" + property + ": " + value.substr(0, 80) + "“ wird nicht verstanden", false);
    };
    for (const xmlAttr* attr = node->properties; attr != nullptr; attr = attr->next)
        if (attr->ns == nullptr)
            apply(std::string(viewOf(attr->name)), valueOf(attr));
    sheet.apply(style, localName(node), attribute(node, "class"), attribute(node, "id"));
    for (const auto& [property, value] : parseDeclarations(attribute(node, "style")))
        apply(property, value);
}

std::string Reading::placeOf(const xmlNode* node, const std::string& layer) const {
    const std::string id = attribute(node, "id");
    return name + ", " + lineText(node) + (layer.empty() ? "" : ", Ebene „" + layer + "“") + ", <" +
           std::string(localName(node)) + (id.empty() ? "" : " id=\"" + id + "\"") + ">";
}

void Reading::noteNames(const std::vector<std::size_t>& slots, const std::string& place, bool needed) {
    for (const std::size_t slot : slots) {
        auto& use = layout.names.try_emplace(slot, Layout::NameUse{place}).first->second;
        use.needed = use.needed || needed;
    }
}

void Reading::keep(const std::vector<std::size_t>& slots, Moment moment) {
    for (const std::size_t slot : slots)
        if (moment != Moment::Now)
            definitions.keep(slot, moment);
}

} // namespace kvtdruck::druckwerk
