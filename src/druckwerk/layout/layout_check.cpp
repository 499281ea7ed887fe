#include "druckwerk/layout/layout_check.h"

#include "druckwerk/common/fault.h"
#include "druckwerk/layout/layout.h"

#include <algorithm>

namespace kvtdruck::druckwerk {

namespace {

/// Edits between two names, letter case aside, up to a small limit.
std::size_t distance(const std::string& a, const std::string& b) {
    std::vector<std::size_t> row(b.size() + 1);
    for (std::size_t j = 0; j <= b.size(); ++j)
        row[j] = j;
    for (std::size_t i = 1; i <= a.size(); ++i) {
        std::size_t diagonal = row[0];
        row[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const std::size_t above = row[j];
            const bool same = std::tolower(static_cast<unsigned char>(a[i - 1])) ==
                              std::tolower(static_cast<unsigned char>(b[j - 1]));
            row[j] = std::min({above + 1, row[j - 1] + 1, diagonal + (same ? 0 : 1)});
            diagonal = above;
        }
    }
    return row[b.size()];
}

} // namespace

std::vector<std::string> unknownNames(const Layout& layout, const Definitions& definitions) {
    std::vector<std::string> messages;
    const auto known = definitions.list();
    for (const std::size_t slot : layout.neededSlots) {
        if (definitions.isDefined(slot))
            continue;
        const std::string name = toUtf8(definitions.nameOf(slot));
        const Definition* nearest = nullptr;
        std::size_t least = name.size() < 200 ? std::min<std::size_t>(3, name.size() / 2 + 1) : 0;
        for (const auto& definition : known)
            if (definition.name.size() < 200)
                if (const std::size_t edits = distance(name, definition.name); edits < least) {
                    least = edits;
                    nearest = &definition;
                }
        messages.push_back("Unbekannter Name „" + name + "“" +
                           (nearest == nullptr ? "" : " (ähnlich: „" + nearest->name + "“)"));
    }
    return messages;
}

std::vector<Finding> checkLayout(const std::filesystem::path& file, const std::vector<Definition>& known) {
    Definitions definitions;
    for (const auto& definition : known)
        definitions.define(fromUtf8(definition.name), fromUtf8(definition.value), definition.numeric,
                           definition.field);
    std::vector<Finding> findings;
    try {
        const Layout layout =
            readLayout(readLayoutFile(file), file.string(), file.parent_path(), definitions, findings);
        if (std::any_of(findings.begin(), findings.end(), [](const Finding& finding) { return finding.error; }))
            return findings;
        for (const auto& message : unknownNames(layout, definitions))
            findings.push_back({false, kLayoutInvalid, file.string() + ": " + message});
        for (const auto& definition : known)
            if (layout.slots.count(definitions.slotOf(fromUtf8(definition.name))) == 0)
                findings.push_back({false, kLayoutInvalid,
                                    file.string() + ": " + (definition.field ? "Feld" : "Variable") + " „" +
                                        definition.name + "“ wird nicht gedruckt"});
    } catch (const Fault& fault) {
        findings.push_back({true, fault.code(), fault.what()});
    }
    return findings;
}

} // namespace kvtdruck::druckwerk
