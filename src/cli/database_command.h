// kvtdruck datenbank: what a database of one's own lacks, and how it is made readable.
#pragma once

#include "cli/console.h"
#include "cli/options.h"

namespace kvtdruck::cli {

/// The products that `datenbank vorlage` knows.
std::vector<std::string> databaseProducts();

/// Whether `datenbank` with these words reads a database; throws a `catalog::UsageError` for words that mean
/// nothing.
bool readsDatabase(const std::vector<std::string>& words);

/// Does what the words of `datenbank` ask for; gives the program's exit code.
int runDatabaseCommand(const Options& options, Console& console);

} // namespace kvtdruck::cli
