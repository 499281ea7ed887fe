// What a database lacks for the reports, all of it at once.
#pragma once

#include "kvtzug/source.h"

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace kvtdruck {

struct DatabaseFinding {
    bool error; ///< else a hint: a report prints without it, but less than one may expect
    std::string table;
    std::string text; ///< German
};

struct DatabaseCheck {
    /// What one can say of a table as a whole.
    enum class State { Usable, Empty, Faulty, Missing };

    std::vector<DatabaseFinding> findings;
    std::map<std::string, State> tables;
};

/// Checks tables, columns, kinds of values, keys, references and years. `progress` is told the table in hand. What
/// the source itself refuses becomes a finding; `RuntimeError`s are thrown only where the user has asked to stop.
DatabaseCheck checkDatabase(Connection& connection, const std::function<void(const std::string& table)>& progress,
                            Cancellation cancelled);

} // namespace kvtdruck
