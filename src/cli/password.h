// The password of a database: not on the command line, where everybody on the machine can read it.
#pragma once

#include "cli/console.h"
#include "values/text.h"

#include <filesystem>

namespace kvtdruck::cli {

/// Where a password may come from beside the connection string itself and the environment.
struct PasswordSource {
    std::filesystem::path file; ///< its first line; empty: none
    bool ask = false;           ///< at the terminal
};

/// `connectionString` with the password from the file, from the terminal, or from the environment variable
/// KVTDRUCK_KENNWORT, the first of them that there is; as it is where there is none, or where it holds one itself.
/// Throws a `RuntimeError` where the file can't be read or others can read it, and where nothing is entered.
String withPassword(const String& connectionString, const PasswordSource& source, Console& console);

} // namespace kvtdruck::cli
