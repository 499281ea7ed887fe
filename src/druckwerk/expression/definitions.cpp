#include "druckwerk/expression/definitions.h"

#include "values/conversion.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace kvtdruck::druckwerk {

namespace {

/// As `==`, which the library compares letter by letter.
bool isSame(StringView left, StringView right) {
    return left.size() == right.size() &&
           (left.empty() || std::memcmp(left.data(), right.data(), left.size() * sizeof(char16_t)) == 0);
}

} // namespace

std::size_t Definitions::slotOf(StringView name) {
    if (const auto found = index_.find(name); found != index_.end())
        return found->second;
    slots_.push_back(std::make_unique<Slot>());
    slots_.back()->name = name;
    index_.emplace(slots_.back()->name, slots_.size() - 1);
    return slots_.size() - 1;
}

void Definitions::define(StringView name, StringView value, bool numeric, bool field) {
    std::size_t slot = slots_.empty() ? 0 : slots_[last_]->successor;
    if (slot >= slots_.size() || !isSame(slots_[slot]->name, name)) {
        slot = slotOf(name);
        slots_[last_]->successor = slot;
    }
    last_ = slot;
    Slot& defined = *slots_[slot];
    if (!defined.values[0].defined)
        order_.push_back(slot);
    defined.values[0].set(value);
    defined.numeric = numeric;
    defined.field = field;
}

void Definitions::forget(bool fields) {
    std::erase_if(order_, [&](std::size_t slot) {
        if (slots_[slot]->field != fields)
            return false;
        slots_[slot]->values = {};
        return true;
    });
}

std::optional<Date> Definitions::date(std::size_t slot, Moment moment, bool monthAlone) const {
    const String& text = value(slot, moment).text;
    if (monthAlone)
        if (const Number month = Number::parse(text, locale());
            month.scale == 0 && month.digits >= 1 && month.digits <= 12)
            return dateOf(2000, static_cast<int>(month.digits), 1);
    const auto date = dateIn(text, locale());
    if (!date && !trimmed(text).empty())
        contents_.reportNoDate(slots_[slot]->name, text);
    const bool timeAlone = date && date->days != 0 && std::trunc(date->days) == 0;
    return timeAlone ? std::nullopt : date;
}

void Definitions::keep(std::size_t slot, Moment moment) {
    auto& slots = kept_[static_cast<std::size_t>(moment)];
    if (std::find(slots.begin(), slots.end(), slot) == slots.end())
        slots.push_back(slot);
}

void Definitions::mark(Moment moment) {
    for (const std::size_t slot : kept_[static_cast<std::size_t>(moment)])
        slots_[slot]->values[static_cast<std::size_t>(moment)] = slots_[slot]->values[0];
}

void Definitions::release() {
    for (std::size_t moment = 1; moment < kept_.size(); ++moment) {
        for (const std::size_t slot : kept_[moment])
            slots_[slot]->values[moment] = {};
        kept_[moment].clear();
    }
    contents_.forgetReports();
}

std::vector<Definition> Definitions::list() const {
    std::vector<Definition> definitions;
    for (const std::size_t slot : order_) {
        const Slot& defined = *slots_[slot];
        definitions.push_back(
            {toUtf8(defined.name), toUtf8(defined.values[0].text), defined.numeric, defined.field});
    }
    return definitions;
}

StringView Definitions::textOf(StringView name) const {
    const auto found = index_.find(name);
    return found == index_.end() ? StringView() : StringView(slots_[found->second]->values[0].text);
}

} // namespace kvtdruck::druckwerk
