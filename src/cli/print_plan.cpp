#include "cli/print_plan.h"

#include "catalog/usage_error.h"

#include <algorithm>
#include <limits>
#include <optional>

namespace kvtdruck::cli {
namespace {

using catalog::Axis;
using catalog::Selection;
using catalog::Selections;
using catalog::UsageError;

/// Runs of values that a message names at most.
constexpr std::size_t kMostNamed = 12;

struct Bounds {
    std::optional<std::int32_t> from;
    std::optional<std::int32_t> to;

    bool given() const { return from || to; }
    std::int32_t lower() const { return from.value_or(std::numeric_limits<std::int32_t>::min()); }
    std::int32_t upper() const { return to.value_or(std::numeric_limits<std::int32_t>::max()); }
    bool overlaps(const Extent& extent) const { return extent.last >= lower() && extent.first <= upper(); }
    std::string text() const {
        if (from == to)
            return std::to_string(*from);
        return !to     ? "die Zeit ab " + std::to_string(*from)
               : !from ? "die Zeit bis " + std::to_string(*to)
                       : std::to_string(*from) + "–" + std::to_string(*to);
    }
};

Bounds boundsOf(const Axis& axis, const Selections& ranges) {
    const auto bound = [&](Selection selection) {
        const auto found = ranges.find(selection);
        return found == ranges.end() ? std::nullopt : std::optional(found->second);
    };
    const Bounds bounds{bound(axis.from), bound(axis.to)};
    if (bounds.lower() > bounds.upper())
        throw UsageError("Die Auswahl „" + std::string(axis.many) + " von " + std::to_string(*bounds.from) +
                         " bis " + std::to_string(*bounds.to) + "“ ist verkehrt herum.");
    return bounds;
}

/// "2019–2021, 2023": values that follow each other make a run.
std::string textOf(const std::vector<Extent>& extents) {
    std::vector<Extent> runs;
    for (const auto& extent : extents) {
        if (!runs.empty() && extent.first <= runs.back().last + 1)
            runs.back().last = std::max(runs.back().last, extent.last);
        else
            runs.push_back(extent);
    }
    std::string text;
    for (std::size_t i = 0; i < std::min(runs.size(), kMostNamed); ++i) {
        text += (i == 0 ? "" : ", ") + std::to_string(runs[i].first);
        if (runs[i].last != runs[i].first)
            text += "–" + std::to_string(runs[i].last);
    }
    return runs.size() <= kMostNamed ? text : text + ", … bis " + std::to_string(runs.back().last);
}

/// One value for each extent within the bounds that no earlier value has brought along.
std::vector<std::int32_t> valuesOf(const Axis& axis, const std::vector<Extent>& extents, const Bounds& bounds) {
    std::vector<std::int32_t> values;
    for (const auto& extent : extents) {
        if (!bounds.overlaps(extent) || (!values.empty() && values.back() >= extent.first))
            continue;
        values.push_back(std::max(extent.first, bounds.lower()));
        // The component takes 0 for everything: more would be printed than was asked for.
        if (values.back() == 0)
            throw UsageError(std::string(axis.one) + " 0 kann nicht einzeln gedruckt werden, nur alle " +
                             std::string(axis.many) + " zusammen.");
    }
    return values;
}

std::string labelOf(const Axis& axis, std::int32_t value) {
    const auto number = std::to_string(value);
    return axis.lower == Selection::AccountFrom || axis.lower == Selection::EmployeeFrom
               ? std::string(axis.one) + " " + number
               : number;
}

/// The prints of one axis within the prints of the axes before it.
class AxisSplit {
  public:
    AxisSplit(const Axis& axis, const Selections& ranges, const ExistingValues& existing)
        : axis_(axis), bounds_(boundsOf(axis, ranges)), existing_(existing) {}

    std::vector<SinglePrint> of(const std::vector<SinglePrint>& prints) {
        if (!bounds_.given() && axis_.takes != Axis::Takes::One)
            return prints;
        std::vector<SinglePrint> result;
        for (const auto& print : prints)
            add(print, result);
        if (!result.empty())
            return result;
        if (known_.empty())
            return {withValue(prints.front(), bounds_.from.value_or(bounds_.to.value_or(0)))};
        std::ranges::sort(known_, {}, &Extent::first);
        if (bounds_.from == bounds_.to)
            throw NothingSelected("Keine Daten für " + what() + "; vorhanden: " + textOf(known_) + ".");
        throw NothingSelected("Keine Daten für " + what() + ". " + std::string(axis_.many) +
                              " mit Daten: " + textOf(known_) + ".");
    }

  private:
    void add(const SinglePrint& print, std::vector<SinglePrint>& result) {
        const auto extents = existing_(axis_, print.selections);
        known_.insert(known_.end(), extents.begin(), extents.end());
        if (isTakenWhole()) {
            if (std::ranges::any_of(extents, [this](const Extent& extent) { return bounds_.overlaps(extent); }))
                result.push_back(print);
            return;
        }
        const auto values = valuesOf(axis_, extents, bounds_);
        for (const auto value : values) {
            auto single = withValue(print, value);
            if (values.size() > 1)
                single.bookmark.push_back(labelOf(axis_, value));
            result.push_back(std::move(single));
        }
    }

    bool isTakenWhole() const { return axis_.takes == Axis::Takes::Range || axis_.takes == Axis::Takes::Nothing; }

    SinglePrint withValue(SinglePrint print, std::int32_t value) const {
        if (!isTakenWhole()) {
            print.selections.erase(axis_.from);
            print.selections.erase(axis_.to);
            print.selections[axis_.lower] = print.selections[axis_.upper] = value;
        }
        return print;
    }

    std::string what() const {
        const bool isYear = axis_.from == Selection::YearFrom;
        return isYear ? bounds_.text()
                      : std::string(axis_.one) + " " + std::to_string(bounds_.from.value_or(0)) +
                            (bounds_.from == bounds_.to ? ""
                             : bounds_.to               ? "–" + std::to_string(*bounds_.to)
                                                        : " und folgende");
    }

    const Axis& axis_;
    Bounds bounds_;
    const ExistingValues& existing_;
    std::vector<Extent> known_;
};

} // namespace

std::vector<SinglePrint> planPrints(std::span<const catalog::Axis> axes, const catalog::Selections& ranges,
                                    const ExistingValues& existing) {
    std::vector<SinglePrint> prints{{ranges, {}}};
    for (const auto& axis : axes)
        prints = AxisSplit(axis, ranges, existing).of(prints);
    return prints;
}

} // namespace kvtdruck::cli
