// What the eighteen reports hand to their layouts, written down independently of their sources.
#pragma once

#include "component/host.h"

#include <string>
#include <vector>

namespace kvtdruck::test {

/// One report. Names are separated by blanks; "#" before a name: text instead of number; "~": a single-precision
/// number instead of a double; "*" at the end: 01 to 12; "=n": taken from column n, the following names from the
/// columns after it.
struct ReportDescription {
    std::string list;
    std::string className; ///< in error reports
    std::string title;
    std::string reader; ///< empty: fed by the parameter array
    std::string read;   ///< the read procedure
    std::string readMessage;
    std::string variableProcedure;
    std::string variables;
    std::string fields;
};

const std::vector<ReportDescription>& allReports();

/// Variables that the letterhead defines before a report's own.
inline constexpr std::size_t kLetterhead = 16;

struct Entry {
    std::string name;
    std::int32_t type;
    bool single;
    std::optional<int> column;
};
std::vector<Entry> entries(const std::string& description);

/// The names of a description with their engine types, in order.
std::vector<std::pair<std::string, std::int32_t>> names(const std::string& description);

/// A world in which the report has `records` records (or rows): the last of them begins a new group.
void fill(World& world, std::size_t records);
/// The parameter array with which a report prints everything.
std::shared_ptr<Array> arrayFor(World& world, const ReportDescription& report, std::size_t rows);

void PrintTo(const ReportDescription& report, std::ostream* out);

} // namespace kvtdruck::test
