// The kinds of calls that can be made to fail.
#pragma once

#include <cstddef>

namespace kvtdruck::faults {

enum class Kind { Allocate, Open, Read, Write, Sync, Rename, Remove, Process, Sqlite, Odbc, Printer };
inline constexpr std::size_t kKinds = 11;

/// Whether the call that is about to be made is to fail. Counts it.
bool fails(Kind kind);

} // namespace kvtdruck::faults
