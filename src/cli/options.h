// The command line: commands and options, with their German help.
#pragma once

#include "catalog/report_catalog.h"
#include "druckwerk/druckwerk.h"
#include "druckwerk/exits/data_export.h"
#include "druckwerk/exits/printing.h"
#include "values/locale.h"

#include <filesystem>
#include <optional>
#include <string>

namespace kvtdruck::cli {

enum class Command { Print, Preview, Design, Check, ListReports, ListCompanies };

struct Options {
    Command command{};
    const catalog::ReportEntry* report = nullptr; ///< set for every command on a list; may be set for `ListReports`

    std::string database;         ///< an SQLite file; empty where
    std::string connectionString; ///< an ODBC connection string is given
    double company = 0;
    catalog::Selections selections;
    std::optional<std::filesystem::path> valuesFile;

    std::filesystem::path output;              ///< empty: to a printer
    std::optional<druckwerk::DataFormat> data; ///< none: pages
    druckwerk::PrintSettings printing;
    bool askForPrinter = false;
    bool unused = false; ///< a check names variables and fields that the layout does not print

    std::optional<std::filesystem::path> record; ///< file for the record of engine calls
    std::optional<std::filesystem::path> folder; ///< application folder
    Locale locale = germanLocale();
    druckwerk::PrintDate printDate;
};

/// What a command line asks for. Nothing where help or the version was asked for, which is then written to standard
/// output. Throws a `catalog::UsageError`.
std::optional<Options> parseCommandLine(int argc, const char* const* argv);

} // namespace kvtdruck::cli
