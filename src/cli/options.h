// The command line: commands and options, with their German help.
#pragma once

#include "catalog/report_catalog.h"
#include "cli/option_values.h"
#include "cli/password.h"
#include "druckwerk/druckwerk.h"
#include "druckwerk/exits/data_export.h"
#include "druckwerk/exits/printing.h"
#include "values/locale.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace kvtdruck::cli {

enum class Command { Print, Preview, Design, Check, Fields, ListReports, ListCompanies, Database, Import, Layouts };

/// What a batch makes a file of its own for, within a list and a company.
enum class Per { Company, Year, Employee };

struct Options {
    Command command{};
    std::vector<const catalog::ReportEntry*> reports; ///< at least one for every command on a list
    bool allReports = false;                          ///< they were asked for as "alle", or a check of all

    bool blank = false;           ///< a check, and a list of fields, make do without data
    std::string database;         ///< an SQLite file; empty where
    std::string connectionString; ///< an ODBC connection string is given
    PasswordSource password;      ///< for a connection string
    std::vector<double> companies;
    bool allCompanies = false; ///< `companies` is empty then
    catalog::Selections selections;
    std::optional<std::filesystem::path> values; ///< a file of values, or a folder with one for each list

    std::filesystem::path output;                               ///< one file; empty: to a folder, or to a printer
    std::filesystem::path binder;                               ///< one file for everything
    std::filesystem::path outputFolder;                         ///< for the files of a batch
    std::string namePattern;                                    ///< of the files in it; empty for the usual one
    std::optional<Per> per;                                     ///< one file for each
    std::optional<druckwerk::DataFormat> data;                  ///< none: pages
    druckwerk::Formulas formulas = druckwerk::Formulas::Disarm; ///< in CSV files
    std::optional<druckwerk::DataFormat> attachment;            ///< the records as a file within the PDF
    druckwerk::PdfLevel level = druckwerk::PdfLevel::Archive;
    bool accessible = false; ///< the level is to be the highest one
    druckwerk::PrintSettings printing;
    bool askForPrinter = false;
    bool live = false; ///< a designer's layout is checked and printed each time that it is saved
    std::optional<std::filesystem::path> layout; ///< what a check is of, instead of the list's layout
    bool unused = false;             ///< a check names variables and fields that the layout does not print
    bool samplesOnly = false;        ///< a design ends with the values that the layout shows
    bool returnsToInstalled = false; ///< of a layout
    bool takesBack = false;          ///< an earlier layout
    Part part;
    std::int32_t workers = 0; ///< processes that share a batch; 0 for as many as there are processors

    std::optional<std::filesystem::path> record; ///< file for the record of engine calls
    std::optional<std::filesystem::path> folder; ///< application folder
    std::filesystem::path logo;                  ///< of the company, for the letterhead; empty: beside the database
    Locale locale = germanLocale();
    druckwerk::PrintDate printDate;
    bool verbose = false;
    std::vector<std::string> words; ///< what `datenbank` is to do; the table of `einlesen`, and the files
    bool tryOnly = false;           ///< an import that changes nothing
    bool creates = false;           ///< an import makes the database and the tables that are missing
    bool asJson = false;            ///< lists, fields and companies as JSON

    bool hasData() const { return !database.empty() || !connectionString.empty(); }
    /// Whether the component is asked for a designer.
    bool designs() const {
        return command == Command::Design || command == Command::Check || command == Command::Fields;
    }
};

/// What a command line asks for: one thing, or the prints of a job file. Nothing where help or the version was
/// asked for, which is then written to standard output. Options that the command line leaves open are taken from
/// the environment, and then from the user's settings file. Throws a `catalog::UsageError`.
std::vector<Options> parseCommandLine(int argc, const char* const* argv);

} // namespace kvtdruck::cli
