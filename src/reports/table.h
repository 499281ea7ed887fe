// Tables of variables and fields: what a report hands to its layout, in the layout's order.
#pragma once

#include "control/control.h"
#include "dataaccess/member.h"
#include "dataaccess/members.h"
#include "dataaccess/record_reader.h"
#include "values/text.h"
#include "values/variant.h"

#include <initializer_list>
#include <optional>
#include <span>
#include <variant>
#include <vector>

namespace kvtdruck {

// Where a value comes from

/// The company number that the host passed.
struct CompanyNumber {};
/// The company's currency text, as read when the report began.
struct CompanyCurrency {};
/// The same text for every record.
struct FixedText {
    String text;
};
/// A getter of the current record, read as `type` and converted to text.
struct FromGetter {
    ValueType type;
};
/// A date getter whose Null or zero date is the empty text.
struct FromDateGetter {};
/// A cell of the parameter array: in the given row, or in that of the line being printed.
struct FromCell {
    std::int32_t column;
    std::optional<std::int32_t> row;
};
/// A text composed of the texts of some getters of the current record.
struct Composed {
    std::vector<StringView> getters;
    String (*text)(std::span<const String> texts);
};

using Source =
    std::variant<CompanyNumber, CompanyCurrency, FixedText, FromGetter, FromDateGetter, FromCell, Composed>;

// Tables

/// One variable or field: its name, its engine type and its value's source.
struct TableRow {
    String name;
    std::int32_t type;
    Source source;
};

using Table = std::vector<TableRow>;

/// The tables one after another.
Table joined(std::initializer_list<Table> parts);

/// Numeric: getters of one value type.
Table numbers(ValueType type, std::initializer_list<StringView> names);
/// Numeric: the getters `stem` + "01" … "12".
Table months(ValueType type, StringView stem);
/// Text: string getters.
Table texts(std::initializer_list<StringView> names);
/// Text: date getters in the general date text.
Table dates(std::initializer_list<StringView> names);
/// Text: date getters, where Null or the zero date gives the empty text.
Table datesOrEmpty(std::initializer_list<StringView> names);
/// Numeric: the company number as "Firmennummer".
Table companyNumber();
/// Text: the company's currency.
Table currency(StringView name);
/// Numeric: the same value for every record.
Table fixedNumber(StringView name, StringView value);
/// Numeric: cells of consecutive columns from `column` on; of the line's row, or of `row`.
Table cells(std::int32_t column, std::initializer_list<StringView> names,
            std::optional<std::int32_t> row = std::nullopt);
/// Text: a cell of the line's row.
Table textCell(std::int32_t column, StringView name);
/// Text: composed of the texts of `getters`.
Table composed(StringView name, std::initializer_list<StringView> getters, String (*text)(std::span<const String>));

// Tables in use

/// The record that values are taken from: a reader's current one, or a row of the parameter array.
struct Record {
    RecordReader* reader = nullptr;
    std::int32_t row = 0;
};

/// A table with the getters of one reader, each of which is looked up once per print.
class BoundTable {
  public:
    /// `table` outlives the binding; `dataClass` names the reader, where there is one.
    explicit BoundTable(const Table& table, const DataClass* dataClass = nullptr);

    std::size_t size() const { return table_.size(); }
    const TableRow& row(std::size_t index) const { return table_[index]; }
    /// The getters that feed the row, in the order in which its source names them.
    std::span<Member> getters(std::size_t index);

  private:
    const Table& table_;
    std::vector<Member> getters_;
    std::vector<std::size_t> ends_; ///< of each row's getters
};

/// A date as text in the short form; the empty text for Null, for the zero date and for what is no date at all.
String fkt_Datum_Text(const Variant& date, const Locale& locale) noexcept;

} // namespace kvtdruck
