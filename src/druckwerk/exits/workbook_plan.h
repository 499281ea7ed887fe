// What a workbook shows of a report: tables as a controller wants them, told as data. Texts are UTF-8.
#pragma once

#include <array>
#include <span>
#include <string_view>

namespace kvtdruck::druckwerk {

/// How a cell's value is shown. Shares and deviations in percent are numbers of percent, as the reports hand them
/// over.
enum class CellFormat {
    Text,
    Whole,            ///< a number without decimals, such as a year or an account
    Amount,           ///< two decimals: amounts, hours
    AmountDeviation,  ///< the same with its sign
    Percent,          ///< one decimal
    PercentDeviation, ///< the same with its sign
    Rate,             ///< two decimals, a dash for nothing: rates as they are entered
    Days,             ///< one decimal
    Date,
    MonthName,  ///< of 1 to 12; 13 is the year
    PostalCode, ///< five digits in Germany
    OfFact,     ///< that of the row's `PlanFact`
};

/// A column. `source` says what its cells hold:
///
/// - "JWIst": the value of that field or variable; "##" in a name stands for the month in two digits;
/// - "QM*QMPreis": a number computed from them (see `valueOf`);
/// - "=JWIst-JWSoll": a formula on the cells of the same row, each named by the source of its column;
/// - "#": the month, in tables with a row for each; "@group", "@label", "@unit", "@1" to "@4": what a `PlanFact`
///   says.
///
/// `total` is the cell below: "sum" adds up the rows that the filter shows, an expression computes it from the sums
/// of other columns, any other text stands as it is; empty for none.
struct PlanColumn {
    std::string_view heading; ///< "{}" in it stands for the text of the field `onlyWith`
    std::string_view source;
    CellFormat format = CellFormat::Text;
    std::string_view total{};
    std::string_view onlyWith{}; ///< the column is left out where this field has no text
    unsigned width = 0;          ///< in digits; 0 for what the format takes
    std::string_view words{};    ///< in the place of a number: "what 0 is|what any other is"
};

/// A row of a table that lists what a report has once for a year or an employee.
struct PlanFact {
    std::string_view group;
    std::string_view label;
    CellFormat format = CellFormat::Amount;   ///< of the values
    std::string_view unit{};                  ///< a variable's name gives its text
    std::array<std::string_view, 4> values{}; ///< sources
};

/// A table, which has a sheet of its own.
struct PlanTable {
    enum class Rows {
        Records,       ///< one for each record
        Months,        ///< one for each month of a record
        SectionMonths, ///< one for each month of the variables
        Facts          ///< those of `facts`, for the variables
    };
    std::string_view name; ///< of the sheet, at most 25 letters
    Rows rows;
    std::span<const PlanColumn> columns;
    std::span<const PlanFact> facts{};
    bool skipsYears = false; ///< leaves out the records of month 13, which the sums stand for
};

/// The tables of a report, in the order of their sheets.
using WorkbookPlan = std::span<const PlanTable>;

} // namespace kvtdruck::druckwerk
