#include "druckwerk/exits/sheet_table.h"

#include "druckwerk/expression/date_pattern.h"
#include "values/conversion.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <tuple>
#include <utility>

namespace kvtdruck::druckwerk {
namespace {

/// Rows above a table: title, company, selection, units, and an empty one.
constexpr std::size_t kHeadRow = 6;
constexpr int kWholeYear = 13;
/// Columns together that fit upright onto a page and can still be read.
constexpr unsigned kWidestUpright = 110;
constexpr unsigned kRowHeight = 15; // points
constexpr std::string_view kSum = "sum";
constexpr std::string_view kMonthOfRow = "##";

/// The sum of a column's rows below the head that a filter leaves.
std::string subtotal(const std::string& column, std::size_t rows) {
    std::string formula = "SUBTOTAL(9,";
    formula.append(column).append(std::to_string(kHeadRow + 1)).append(":");
    return formula.append(column).append(std::to_string(rows)).append(")");
}

/// How wide a column is that says nothing else, in digits.
unsigned usualWidth(CellFormat format) {
    switch (format) {
    case CellFormat::Text:
        return 18;
    case CellFormat::Amount:
    case CellFormat::AmountDeviation:
        return 14;
    case CellFormat::Date:
    case CellFormat::MonthName:
        return 12;
    default:
        return 10;
    }
}

bool isText(CellFormat format) {
    return format == CellFormat::Text || format == CellFormat::MonthName;
}

String monthName(int month) {
    static const DatePattern pattern(u"MMMM");
    String name;
    pattern.append(dateOf(2000, month, 1), germanLocale(), name);
    return name;
}

/// A name of a month, or of the year behind them; nothing for another number.
std::optional<String> monthText(std::optional<double> number) {
    if (!number || *number < 1 || *number > kWholeYear || *number != std::trunc(*number))
        return std::nullopt;
    return *number == kWholeYear ? String(u"Jahr") : monthName(int(*number));
}

std::string replaced(std::string text, std::string_view part, std::string_view by) {
    for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + by.size()))
        text.replace(at, part.size(), by);
    return text;
}

/// The word before the bar for zero, the one behind it for another number.
String wordFor(std::optional<double> number, std::string_view words) {
    const auto bar = words.find('|');
    return number ? fromUtf8(*number == 0 ? words.substr(0, bar) : words.substr(bar + 1)) : String();
}

std::string twoDigits(int month) {
    return {char('0' + month / 10), char('0' + month % 10)};
}

} // namespace

void NamedCells::Values::set(std::span<const NamedValue> given) {
    values = given;
    if (!takeNames(names, values))
        return;
    places.clear();
    for (std::size_t i = 0; i < names.size(); ++i)
        places[toUtf8(names[i])] = i;
}

const NamedValue* NamedCells::Values::find(std::string_view name) const {
    const auto place = places.find(name);
    return place == places.end() ? nullptr : &values[place->second];
}

void NamedCells::setVariables(std::span<const NamedValue> values) {
    kept_.assign(values.begin(), values.end());
    variables_.set(kept_);
    fields_ = {}; // they belong to the record before
}

const NamedValue* NamedCells::find(std::string_view name) const {
    const auto* field = fields_.find(name);
    return field ? field : variables_.find(name);
}

StringView NamedCells::text(std::string_view name) const {
    const auto* value = find(name);
    return value ? StringView(value->text) : StringView();
}

void SheetTable::section() {
    if (plan_.rows == PlanTable::Rows::Facts)
        facts();
    else if (plan_.rows == PlanTable::Rows::SectionMonths)
        months();
}

void SheetTable::record() {
    if (plan_.rows == PlanTable::Rows::Months)
        months();
    if (plan_.rows != PlanTable::Rows::Records)
        return;
    if (!plan_.skipsYears || number("Monat") != std::optional<double>(kWholeYear))
        row({});
}

void SheetTable::finish() {
    if (sheet_)
        close();
}

void SheetTable::months() {
    for (int month = 1; month <= 12; ++month)
        row({month, nullptr});
}

/// Variables may change without any of these facts.
void SheetTable::facts() {
    std::string now;
    const auto add = [&](std::string_view name) { now += toUtf8(around_.names.text(name)) + "\n"; };
    for (const auto& column : plan_.columns)
        add(column.source);
    for (const auto& fact : plan_.facts)
        for (const auto name : fact.values)
            add(name);
    if (now == lastFacts_)
        return;
    lastFacts_ = now;
    for (const auto& fact : plan_.facts) {
        const auto says = [&](std::string_view name) {
            return !name.empty() && (!around_.names.find(name) || !around_.names.text(name).empty());
        };
        if (std::ranges::any_of(fact.values, says))
            row({0, &fact});
    }
}

std::optional<double> SheetTable::number(std::string_view name) const {
    const auto* value = around_.names.find(name);
    return value ? numberOf(*value, around_.contents) : std::nullopt;
}

void SheetTable::row(const Row& row) {
    if (sheet_ && sheet_->rows() + 2 > kMostRows) // this row and the sums
        close();
    if (!sheet_)
        begin();
    sheet_->beginRow();
    numbers_.assign(columns_.size(), std::nullopt);
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        cell(i, row);
        sums_[i] += numbers_[i].value_or(0);
    }
    sheet_->endRow();
}

std::string SheetTable::sourceOf(const PlanColumn& column, const Row& row) const {
    if (row.month > 0)
        return replaced(std::string(column.source), kMonthOfRow, twoDigits(row.month));
    auto source = std::string(column.source);
    for (std::size_t i = 0; row.fact && i < row.fact->values.size(); ++i)
        source = replaced(std::move(source), "@" + std::to_string(i + 1), row.fact->values[i]);
    return source;
}

/// What a cell says by its place alone.
std::optional<String> SheetTable::textOf(std::string_view source, const Row& row) const {
    if (source == "#")
        return monthName(row.month);
    if (!row.fact)
        return std::nullopt;
    if (source == "@group")
        return fromUtf8(row.fact->group);
    if (source == "@label")
        return fromUtf8(row.fact->label);
    if (source == "@unit")
        return around_.names.find(row.fact->unit) ? String(around_.names.text(row.fact->unit))
                                                  : fromUtf8(row.fact->unit);
    return std::nullopt;
}

void SheetTable::cell(std::size_t at, const Row& row) {
    const auto& column = *columns_[at];
    if (const auto text = textOf(column.source, row))
        return sheet_->text(*text, styleOf(CellFormat::Text, false));
    const auto format = column.format == CellFormat::OfFact && row.fact ? row.fact->format : column.format;
    if (column.source.starts_with('='))
        return formula(at, column.source.substr(1), format, false);
    const auto source = sourceOf(column, row);
    if (const auto* value = around_.names.find(source))
        return column.words.empty() ? this->value(at, *value, format)
                                    : sheet_->text(wordFor(number(source), column.words), kPlain);
    numbers_[at] = valueOf(source, [this](std::string_view name) { return number(name); });
    if (numbers_[at])
        sheet_->number(*numbers_[at], styleOf(format, false));
    else
        sheet_->empty(kPlain);
}

void SheetTable::value(std::size_t at, const NamedValue& value, CellFormat format) {
    const auto content = numberOf(value, around_.contents);
    const auto style = styleOf(format, false);
    if (format == CellFormat::Date) {
        const auto date = dateIn(value.text, around_.contents.locale());
        if (date && date->days >= 1)
            return sheet_->number(date->days, style);
        return date ? sheet_->empty(kPlain) : sheet_->text(around_.fitting(value.text), style);
    }
    if (format == CellFormat::MonthName && content == std::optional(0.0)) // from no month on
        return sheet_->empty(kPlain);
    if (const auto month = monthText(content); month && format == CellFormat::MonthName)
        return sheet_->text(*month, style);
    if (format == CellFormat::PostalCode && content) {
        const auto country = around_.names.text("Land").empty() ? "FnrLand" : "Land";
        const bool german = around_.names.text(country) == u"Deutschland";
        return *content == 0 ? sheet_->empty(kPlain)
                             : sheet_->number(*content, german ? style : styleOf(CellFormat::Whole, false));
    }
    if (!content)
        return sheet_->text(around_.fitting(value.text), style);
    numbers_[at] = content;
    sheet_->number(*content, style);
}

/// A formula whose cells are not all numbers is left out.
void SheetTable::formula(std::size_t at, std::string_view formula, CellFormat format, bool total) {
    const auto row = std::to_string(sheet_->rows());
    bool whole = true;
    const auto cellOf = [&](std::string_view name) {
        const auto found = columnOf(name);
        whole = whole && found && numbers_[*found];
        return found ? columnName(*found) + row : std::string();
    };
    const auto text = spreadsheetFormula(formula, cellOf);
    if (!whole)
        return sheet_->empty(total ? styleOf(format, true) : kPlain);
    numbers_[at] = valueOf(formula, [&](std::string_view name) { return numbers_[*columnOf(name)]; });
    sheet_->formula(text, numbers_[at], styleOf(format, total));
}

std::optional<std::size_t> SheetTable::columnOf(std::string_view source) const {
    const auto found = std::ranges::find(columns_, source, [](const auto* column) { return column->source; });
    return found == columns_.end() ? std::nullopt : std::optional(std::size_t(found - columns_.begin()));
}

void SheetTable::begin() {
    columns_.clear();
    for (const auto& column : plan_.columns)
        if (column.onlyWith.empty() || !around_.names.text(column.onlyWith).empty())
            columns_.push_back(&column);
    sums_.assign(columns_.size(), 0);
    SheetLook look;
    look.headRow = kHeadRow;
    for (const auto* column : columns_)
        look.widths.push_back(column->width > 0 ? column->width : usualWidth(column->format));
    look.landscape = std::accumulate(look.widths.begin(), look.widths.end(), 0U) > kWidestUpright;
    const auto continued = ++sheets_ > 1 ? " " + std::to_string(sheets_) : std::string();
    sheet_ = &around_.addSheet(std::string(plan_.name) + continued, look);
    headings(look);
}

/// The units, and the months that the figures are of.
String SheetTable::units() const {
    const auto& names = around_.names;
    auto text = names.text("FnrWaehrung").empty() ? String() : u"Beträge in " + String(names.text("FnrWaehrung"));
    for (const auto& [word, first, last] :
         {std::tuple(u"Soll ", "SVMon", "SBMon"), std::tuple(u"Ist ", "IVMon", "IBMon")}) {
        const auto from = monthText(number(first));
        const auto to = monthText(number(last));
        if (from && to)
            text += (text.empty() ? u"" : u" · ") + String(word) + *from + (*from == *to ? u"" : u"–" + *to);
    }
    return text;
}

void SheetTable::headings(const SheetLook& look) {
    const auto& names = around_.names;
    const auto line = [this](const String& text, CellStyle style) {
        sheet_->beginRow();
        sheet_->text(around_.fitting(text), style);
        sheet_->endRow();
    };
    const auto more = names.text("FnrName2");
    line(String(names.text("Ueberschrift")), kTitle);
    line(String(names.text("FnrName1")) + (more.empty() ? u"" : u", ") + String(more), kBold);
    line(u"Firma " + String(names.text("Firmennummer")) + u" · " + fromUtf8(around_.selection), kPlain);
    line(units(), kPlain);
    line({}, kPlain);
    std::vector<String> texts;
    std::size_t lines = 1;
    for (const auto* column : columns_) {
        const auto only = toUtf8(names.text(column->onlyWith));
        texts.push_back(fromUtf8(replaced(std::string(column->heading), "{}", only)));
        const auto width = look.widths[texts.size() - 1];
        lines = std::max(lines, (texts.back().size() + width - 2) / (width - 1));
    }
    sheet_->beginRow(unsigned(lines) * kRowHeight);
    for (std::size_t i = 0; i < columns_.size(); ++i)
        sheet_->text(texts[i], isText(columns_[i]->format) ? kHeading : kNumberHeading);
    sheet_->endRow();
}

void SheetTable::close() {
    sheet_->filterRows();
    if (std::ranges::any_of(columns_, [](const auto* column) { return !column->total.empty(); })) {
        const auto rows = sheet_->rows();
        sheet_->beginRow();
        numbers_.assign(columns_.size(), std::nullopt);
        for (std::size_t i = 0; i < columns_.size(); ++i)
            if (columns_[i]->total == kSum)
                numbers_[i] = sums_[i];
        for (std::size_t i = 0; i < columns_.size(); ++i) {
            const auto& column = *columns_[i];
            const auto style = styleOf(column.format, true);
            if (column.total == kSum)
                sheet_->formula(subtotal(columnName(i), rows), sums_[i], style);
            else if (column.total.starts_with('='))
                formula(i, column.total.substr(1), column.format, true);
            else if (column.total.empty())
                sheet_->empty(style);
            else
                sheet_->text(fromUtf8(column.total), style);
        }
        sheet_->endRow();
    }
    sheet_ = nullptr;
}

} // namespace kvtdruck::druckwerk
