// Levels of grouping, and what each layer is to the layout.
#include "druckwerk/layout/reading.h"

namespace kvtdruck::druckwerk {

namespace {

std::vector<std::string> keysOf(const xmlNode* node) {
    const std::string names = attribute(node, "data-on");
    std::vector<std::string> keys;
    for (const auto word : splitWords(names))
        keys.emplace_back(word);
    return keys;
}

std::string joined(const std::vector<std::string>& keys) {
    std::string name;
    for (const auto& key : keys)
        name += key + ",";
    return name;
}

int groupLevel(const Layout& layout, const std::vector<std::string>& keys) {
    const std::string name = joined(keys);
    for (std::size_t i = 0; i < layout.groups.size(); ++i)
        if (layout.groups[i].name == name)
            return static_cast<int>(i);
    return -1;
}

void addGroup(Reading& reading, const std::vector<std::string>& keys, const xmlNode* node) {
    if (keys.empty())
        invalid("Ebene braucht data-on mit dem Namen, bei dessen Wechsel eine Gruppe beginnt");
    if (groupLevel(reading.layout, keys) >= 0)
        return;
    Group& group = reading.layout.groups.emplace_back();
    group.name = joined(keys);
    for (const auto& key : keys) {
        group.keys.push_back(reading.definitions.slotOf(fromUtf8(key)));
        reading.definitions.keep(group.keys.back(), Moment::Printed);
    }
    reading.keep(group.keys, Target{}.moment);
    reading.noteNames(group.keys, reading.placeOf(node, layerLabel(node)), true);
}

} // namespace

bool isKind(std::string_view label, std::string_view kind) {
    return label == kind ||
           (label.size() > kind.size() && label.substr(0, kind.size()) == kind && label[kind.size()] == ' ');
}

void readGroups(Reading& reading, xmlNode* root) {
    forEachChild(root, [&](xmlNode* node) {
        const std::string label = layerLabel(node);
        if (svgName(node) != "g" || (!isKind(label, "Gruppenkopf") && !isKind(label, "Gruppenfuß")))
            return;
        Style style;
        reading.applyStyle(node, label, style);
        reading.located(node, label, [&] {
            if (style.display)
                addGroup(reading, keysOf(node), node);
        });
    });
}

Target targetOf(Layout& layout, const std::string& label, const xmlNode* node) {
    const AggregateScope outermost = layout.groups.empty() ? kTableScope : 0;
    if (label == "Kopf")
        return {&layout.columnHead, kPageScope, Moment::PageBegin, false, false};
    if (label == "Seitenfuß")
        return {&layout.footer, kPageScope, Moment::PageBegin, false, false, true};
    if (label == "Zeile")
        return {&layout.row, kTableScope, Moment::Now, true, false};
    if (label == "Vortrag")
        return {&layout.carriedIn, outermost, Moment::Printed, true, false};
    if (label == "Übertrag")
        return {&layout.carriedOut, outermost, Moment::Printed, true, false};
    if (label == "Summe")
        return {&layout.sum, kTableScope, Moment::Printed, true, true};
    const bool head = isKind(label, "Gruppenkopf");
    if (head || isKind(label, "Gruppenfuß")) {
        const int level = groupLevel(layout, keysOf(node));
        if (level < 0)
            return {nullptr, kTableScope, Moment::Now, true, false}; // reported already
        Group& group = layout.groups[static_cast<std::size_t>(level)];
        return {head ? &group.head : &group.foot, level, head ? Moment::Now : Moment::Printed, true, !head};
    }
    return {};
}

} // namespace kvtdruck::druckwerk
