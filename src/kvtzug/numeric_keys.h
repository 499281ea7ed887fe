// Keys that a foreign database keeps as texts: they are compared and ordered as the numbers that they are.
#pragma once

#include "values/text.h"

#include <map>

namespace kvtdruck {

class Connection;

/// Looks once at each table of a connection that is asked for.
class NumericKeys {
  public:
    /// `connection` outlives it.
    explicit NumericKeys(Connection& connection) : connection_(connection) {}

    /// The query with each table that keeps keys as texts replaced by one whose keys are numbers.
    String adapted(StringView sql);

  private:
    const String& standIn(const String& table);

    Connection& connection_;
    std::map<String, String> standIns_; ///< by table; itself where all is as it should be
};

} // namespace kvtdruck
