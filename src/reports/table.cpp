#include "reports/table.h"

#include "module/error_rule.h"
#include "values/conversion.h"

#include <cmath>

namespace kvtdruck {
namespace {

Table eachName(std::initializer_list<StringView> names, std::int32_t type, const Source& source) {
    Table table;
    for (const auto name : names)
        table.push_back({String(name), type, source});
    return table;
}

/// Appends the members that a row's value is read from, under the names that the reader gives them.
void appendGetters(std::vector<Member>& getters, const TableRow& row, const DataClass* dataClass) {
    const auto named = [&](StringView name) { return dataClass->getter(name); };
    if (const auto* single = std::get_if<FromGetter>(&row.source)) {
        getters.emplace_back(named(row.name), single->type);
    } else if (std::holds_alternative<FromDateGetter>(row.source)) {
        getters.emplace_back(named(row.name), ValueType::Variant);
    } else if (const auto* several = std::get_if<Composed>(&row.source)) {
        for (const auto getter : several->getters)
            getters.emplace_back(named(getter), ValueType::Text);
    }
}

} // namespace

Table joined(std::initializer_list<Table> parts) {
    Table whole;
    for (const auto& part : parts)
        whole.insert(whole.end(), part.begin(), part.end());
    return whole;
}

Table numbers(ValueType type, std::initializer_list<StringView> names) {
    return eachName(names, kTypeNumeric, FromGetter{type});
}

Table months(ValueType type, StringView stem) {
    Table table;
    for (int month = 1; month <= 12; ++month)
        table.push_back(
            {String(stem) + (month < 10 ? u"0" : u"") + decimal(month), kTypeNumeric, FromGetter{type}});
    return table;
}

Table texts(std::initializer_list<StringView> names) {
    return eachName(names, kTypeText, FromGetter{ValueType::Text});
}

Table dates(std::initializer_list<StringView> names) {
    return eachName(names, kTypeText, FromGetter{ValueType::Date});
}

Table datesOrEmpty(std::initializer_list<StringView> names) {
    return eachName(names, kTypeText, FromDateGetter{});
}

Table companyNumber() {
    return eachName({u"Firmennummer"}, kTypeNumeric, CompanyNumber{});
}

Table currency(StringView name) {
    return eachName({name}, kTypeText, CompanyCurrency{});
}

Table fixedNumber(StringView name, StringView value) {
    return eachName({name}, kTypeNumeric, FixedText{String(value)});
}

Table cells(std::int32_t column, std::initializer_list<StringView> names, std::optional<std::int32_t> row) {
    Table table;
    for (const auto name : names)
        table.push_back({String(name), kTypeNumeric, FromCell{column++, row}});
    return table;
}

Table textCell(std::int32_t column, StringView name) {
    return eachName({name}, kTypeText, FromCell{column, {}});
}

Table composed(StringView name, std::initializer_list<StringView> getters,
               String (*text)(std::span<const String>)) {
    return eachName({name}, kTypeText, Composed{getters, text});
}

BoundTable::BoundTable(const Table& table, const DataClass* dataClass) : table_(table) {
    getters_.reserve(table.size());
    ends_.reserve(table.size());
    for (const auto& row : table) {
        appendGetters(getters_, row, dataClass);
        ends_.push_back(getters_.size());
    }
}

std::span<Member> BoundTable::getters(std::size_t index) {
    const auto begin = index == 0 ? 0 : ends_[index - 1];
    return std::span(getters_).subspan(begin, ends_[index] - begin);
}

String fkt_Datum_Text(const Variant& date, const Locale& locale) noexcept {
    String text;
    skippingErrors([&] {
        if (date.isNull() || equals(date, 0.0, locale))
            return;
        const auto day = coerced(date, ValueType::Date, locale).as<Date>()->days;
        text = shortDateOf(Date{std::trunc(day)}, locale);
    });
    return text;
}

} // namespace kvtdruck
