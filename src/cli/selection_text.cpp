#include "cli/selection_text.h"

#include <cmath>

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

} // namespace

std::string periodText(const Selections& ranges) {
    return rangeText(ranges, Selection::YearFrom, Selection::YearTo);
}

std::string selectionText(double company, const Selections& ranges) {
    std::string text = "Firma " + std::to_string(std::llround(company));
    const auto add = [&](const char* name, const std::string& value) {
        if (!value.empty())
            text += std::string(", ") + name + " " + value;
    };
    add("Jahr", periodText(ranges));
    add("Konto", rangeText(ranges, Selection::AccountFrom, Selection::AccountTo));
    add("Mitarbeiter", rangeText(ranges, Selection::EmployeeFrom, Selection::EmployeeTo));
    add("Monat", rangeText(ranges, Selection::Month, Selection::Month));
    add("Monat", rangeText(ranges, Selection::MonthFrom, Selection::MonthTo));
    return text;
}

} // namespace kvtdruck::cli
