#include "druckwerk/layout/reading.h"

namespace kvtdruck::druckwerk {

void invalid(const std::string& reason) {
    throw Fault(kLayoutInvalid, reason);
}

void Reading::report(std::int32_t code, const xmlNode* node, const std::string& layer, const std::string& reason,
                     bool error) {
    std::string message = name;
    if (node != nullptr) {
        message += ", Zeile " + std::to_string(lineOf(node));
        if (!layer.empty())
            message += ", Ebene „" + layer + "“";
        const std::string id = attribute(node, "id");
        message += ", <" + std::string(localName(node)) + (id.empty() ? "" : " id=\"" + id + "\"") + ">";
    }
    findings.push_back({error, code, message + ": " + reason});
}

void Reading::applyStyle(const xmlNode* node, Style& style) const {
    for (const xmlAttr* attr = node->properties; attr != nullptr; attr = attr->next)
        if (attr->ns == nullptr)
            style.apply(viewOf(attr->name), valueOf(attr));
    sheet.apply(style, localName(node), attribute(node, "class"), attribute(node, "id"));
    for (const auto& [property, value] : parseDeclarations(attribute(node, "style")))
        style.apply(property, value);
}

void Reading::noteSlots(const std::vector<std::size_t>& slots, Moment moment, bool needed) {
    for (const std::size_t slot : slots) {
        layout.slots.insert(slot);
        if (needed)
            layout.neededSlots.insert(slot);
        if (moment != Moment::Now)
            definitions.keep(slot, moment);
    }
}

} // namespace kvtdruck::druckwerk
