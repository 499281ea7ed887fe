#include "druckwerk/layout/broken_words.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace kvtdruck::druckwerk {

namespace {

constexpr double kSameEdge = 1;    // points between the places that two lines are anchored at
constexpr double kNextLine = 1.8;  // of the size, between the baselines of two lines
constexpr double kSameSize = 0.01; // points

bool isSmallLetter(char16_t c) {
    return (c >= u'a' && c <= u'z') || (c >= u'ß' && c <= u'ÿ' && c != u'÷');
}

bool isLetter(char16_t c) {
    return isSmallLetter(c) || (c >= u'A' && c <= u'Z') || (c >= u'À' && c <= u'Þ' && c != u'×');
}

/// Whether the hyphen before it stands for the end of another word: „Soll- und Istkosten“.
bool beginsWithConjunction(StringView text) {
    constexpr std::array<StringView, 6> kConjunctions = {u"und", u"u.", u"oder", u"o.", u"bzw.", u"bis"};
    return std::ranges::find(kConjunctions, text.substr(0, text.find(u' '))) != kConjunctions.end();
}

bool isWhole(const TextItem& text) {
    return text.text.isConstant() && !text.turned && !text.written.empty();
}

bool isBeneath(const TextItem& lower, const TextItem& upper) {
    const double down = lower.baseline.y - upper.baseline.y;
    return lower.anchor == upper.anchor && lower.font == upper.font &&
           std::fabs(lower.size - upper.size) < kSameSize &&
           std::fabs(lower.baseline.x - upper.baseline.x) < kSameEdge && down > 0 && down < kNextLine * upper.size;
}

void join(TextItem& upper, TextItem& lower) {
    const String before = fromUtf8(upper.written);
    const String after = fromUtf8(lower.written);
    if (beginsWithConjunction(after))
        return;
    lower.goesOn = true;
    upper.breaksWord = isLetter(before[before.size() - 2]) && isSmallLetter(after.front());
}

} // namespace

void joinBrokenWords(std::vector<Item>& items) {
    for (Item& item : items) {
        auto* upper = std::get_if<TextItem>(&item.content);
        if (upper == nullptr || !isWhole(*upper) || !upper->written.ends_with('-') || upper->written.size() < 2 ||
            upper->written[upper->written.size() - 2] == ' ')
            continue;
        const auto lower = std::ranges::find_if(items, [&](const Item& other) {
            const auto* text = std::get_if<TextItem>(&other.content);
            return text != nullptr && isWhole(*text) && isBeneath(*text, *upper) &&
                   other.conditions == item.conditions;
        });
        if (lower != items.end())
            join(*upper, std::get<TextItem>(lower->content));
    }
}

} // namespace kvtdruck::druckwerk
