#include "druckwerk/layout/layout_check.h"

#include "druckwerk/common/fault.h"
#include "druckwerk/layout/layout.h"
#include "values/letters.h"

#include <algorithm>

namespace kvtdruck::druckwerk {

std::vector<std::string> unknownNames(const Layout& layout, const Definitions& definitions) {
    std::vector<std::string> messages;
    const auto known = definitions.list();
    for (const auto& [slot, use] : layout.names) {
        if (definitions.isDefined(slot))
            continue;
        const std::string name = toUtf8(definitions.nameOf(slot));
        const Definition* nearest = nullptr;
        std::size_t least = name.size() < 200 ? std::min<std::size_t>(3, name.size() / 2 + 1) : 0;
        for (const auto& definition : known)
            if (definition.name.size() < 200)
                if (const std::size_t edits = editDistance(name, definition.name); edits < least) {
                    least = edits;
                    nearest = &definition;
                }
        if (!use.needed && nearest == nullptr)
            continue; // the condition tells when it is there
        messages.push_back(use.place + ": Unbekannter Name „" + name + "“" +
                           (nearest == nullptr ? "" : " (ähnlich: „" + nearest->name + "“)"));
    }
    return messages;
}

std::vector<Finding> checkLayout(const LayoutText& source, const std::vector<Definition>& known, bool unused,
                                 const std::filesystem::path& behind) {
    Definitions definitions;
    for (const auto& definition : known)
        definitions.define(fromUtf8(definition.name), fromUtf8(definition.value), definition.numeric,
                           definition.field);
    std::vector<Finding> findings;
    const auto name = source.file.string();
    const Layout layout = readLayout(source.text, name, {source.file.parent_path(), behind}, definitions, findings);
    if (std::any_of(findings.begin(), findings.end(), [](const Finding& finding) { return finding.error; }))
        return findings;
    for (const auto& message : unknownNames(layout, definitions))
        findings.push_back({false, kLayoutInvalid, message});
    for (const auto& definition : known)
        if (unused && !layout.names.contains(definitions.slotOf(fromUtf8(definition.name))))
            findings.push_back({false, kLayoutInvalid,
                                name + ": " + (definition.field ? "Feld" : "Variable") + " „" + definition.name +
                                    "“ wird nicht gedruckt",
                                true});
    return findings;
}

std::vector<Finding> checkLayout(const std::filesystem::path& file, const std::vector<Definition>& known,
                                 bool unused, const std::filesystem::path& behind) {
    try {
        return checkLayout(LayoutText{readLayoutFile(file), file}, known, unused, behind);
    } catch (const Fault& fault) {
        return {{true, fault.code(), fault.what()}};
    }
}

bool hasMistakes(const std::filesystem::path& file, const std::filesystem::path& behind) {
    const auto findings = checkLayout(file, {}, false, behind);
    return std::any_of(findings.begin(), findings.end(),
                       [](const Finding& finding) { return finding.error && finding.code != kLayoutUnreadable; });
}

} // namespace kvtdruck::druckwerk
