#include "cli/selection_text.h"

namespace kvtdruck::cli {
namespace {

using catalog::Selection;
using catalog::Selections;

std::string rangeText(const Selections& ranges, Selection from, Selection to) {
    const auto first = ranges.find(from);
    const auto last = ranges.find(to);
    const auto value = [](const auto& found) { return std::to_string(found->second); };
    if (first == ranges.end() && last == ranges.end())
        return {};
    if (first == ranges.end() || last == ranges.end())
        return first == ranges.end() ? "bis " + value(last) : "ab " + value(first);
    return first->second == last->second ? value(first) : value(first) + "–" + value(last);
}

std::string rangeText(const Selections& ranges, const catalog::Axis& axis) {
    const auto text = rangeText(ranges, axis.from, axis.to);
    if (text.empty())
        return "alle " + std::string(axis.many);
    const bool isOne =
        ranges.contains(axis.from) && ranges.contains(axis.to) && ranges.at(axis.from) == ranges.at(axis.to);
    return std::string(isOne ? axis.one : axis.many) + " " + text;
}

constexpr catalog::Axis kMonths{catalog::Axis::Takes::Range,
                                Selection::MonthFrom,
                                Selection::MonthTo,
                                Selection::MonthFrom,
                                Selection::MonthTo,
                                "Monat",
                                "Monate"};

} // namespace

std::string periodText(const Selections& ranges) {
    return rangeText(ranges, Selection::YearFrom, Selection::YearTo);
}

std::string selectionText(const catalog::ReportEntry& report, const Selections& ranges) {
    std::string text;
    const auto add = [&text](const std::string& part) { text += (text.empty() ? "" : " · ") + part; };
    for (const auto& axis : report.axes)
        add(rangeText(ranges, axis));
    if (const auto month = ranges.find(Selection::Month); month != ranges.end())
        add("Monat " + std::to_string(month->second));
    if (ranges.contains(Selection::MonthFrom) || ranges.contains(Selection::MonthTo))
        add(rangeText(ranges, kMonths));
    return text.empty() ? std::string(report.isFedByValues() ? "aus einer Wertedatei" : "ohne Auswahl") : text;
}

} // namespace kvtdruck::cli
