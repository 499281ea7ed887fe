// The eighteen reports as the command line offers them: which selections each takes and which cells of the
// component's parameter array they fill, or which columns its file of values has.
#pragma once

#include "catalog/parameter_array.h"

#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kvtdruck::catalog {

/// What a user can select by an option.
enum class Selection {
    Year,
    YearFrom,
    YearTo,
    AccountFrom,
    AccountTo,
    Month,
    EmployeeFrom,
    EmployeeTo,
    MonthFrom,
    MonthTo,
};

/// A selection's option on the command line.
struct SelectionOption {
    Selection selection;
    std::string_view option;      ///< such as "--konto-von"
    std::string_view placeholder; ///< such as "KONTO"
    std::string_view help;
    std::int32_t lowest;
    std::int32_t highest;
};

/// All selection options, in the order in which help lists them.
std::span<const SelectionOption> selectionOptions();

/// The values of the options that the user gave.
using Selections = std::map<Selection, std::int32_t>;

/// How one cell of row 0 comes about; the cells of a report stand in the order of their columns.
struct Cell {
    enum class Kind {
        True,       ///< always True
        NoneGiven,  ///< True where neither of the two selections is given
        Value,      ///< the first selection's value, or the fallback
        MustBeGiven ///< the first selection's value, without which the report can't be asked for
    };
    Kind kind;
    Selection first{};
    Selection second{};
    std::optional<std::int32_t> fallback{}; ///< none: Empty
};

/// A range that users can select, and what the component takes of it.
struct Axis {
    enum class Takes {
        OneOrAll, ///< one value, or everything
        One,      ///< one value, which it needs
        Range,    ///< the range as it is
        Nothing   ///< it knows no such selection: its connection shows no more than the range
    };
    Takes takes;
    Selection from; ///< the user's bounds
    Selection to;
    Selection lower; ///< the selections that one value is given in
    Selection upper;
    std::string_view one; ///< such as "Jahr"
    std::string_view many;
};

/// One column of a file of values.
struct ValueColumn {
    enum class Rows { First, Second, Each };
    std::size_t column; ///< from 0
    std::string_view name;
    Rows rows; ///< which rows' cells the report reads
    std::string_view meaning;
};

struct ReportEntry {
    std::string_view listName;
    std::string_view title;
    std::span<const Cell> cells;
    std::span<const Axis> axes;
    /// Not empty for the reports whose figures the host hands over whole.
    std::span<const ValueColumn> columns;
    std::string_view note;       ///< what users should know about the selections; may be empty
    std::int16_t productMode{0}; ///< what the reference data access is to read: docs/data-access.md

    bool isFedByValues() const { return !columns.empty(); }
    /// The axis that begins with `from`; nullptr where the report has none.
    const Axis* axisFrom(Selection from) const;
    /// The size of the smallest array in which the report finds every cell that it reads.
    std::size_t rows() const;
    std::size_t width() const;
    /// The selections that the report takes, in the order of `selectionOptions`.
    std::vector<const SelectionOption*> selections() const;
};

/// All reports, in the component's order.
std::span<const ReportEntry> reports();

/// The report of that list name (letter case matters), or nullptr.
const ReportEntry* findReport(std::string_view listName);

/// The report of that list name or title, in any letter case, or nullptr.
const ReportEntry* findReportLike(std::string_view nameOrTitle);

/// The word that comes closest to a mistyped one (letter case does not matter); none where not even half of it
/// agrees.
std::optional<std::string> nearestWord(std::string_view mistyped, std::span<const std::string> words);

/// The selections as ranges: one year stands for a range of years. Throws a `UsageError` for a selection that the
/// report does not take, or one that contradicts another.
Selections rangesOf(const ReportEntry& report, const Selections& selections);

/// The parameter array of a report that reads its figures itself; all cells are Empty for one that is fed by a file
/// of values, and the designer learns every name from them. Throws a `UsageError` for a selection that the report
/// does not take, or one that it needs.
std::shared_ptr<ParameterArray> parameterArray(const ReportEntry& report, const Selections& selections);

/// The selections with which a report defines every name that its layout may use: a report with months defines
/// their values only for a month that is given.
Selections selectionsForDesign(const ReportEntry& report, Selections selections);

} // namespace kvtdruck::catalog
