// kvtdruck: the component's host on Linux.
#include "cli/batch.h"
#include "cli/cancellation.h"
#include "cli/completion.h"
#include "cli/console.h"
#include "cli/data_source.h"
#include "cli/database_command.h"
#include "cli/import_command.h"
#include "cli/layouts_command.h"
#include "cli/manual.h"
#include "cli/options.h"
#include "cli/outcome.h"
#include "cli/report_list.h"

#include <algorithm>
#include <iostream>
#include <optional>
#include <string>
#include <vector>

namespace kvtdruck::cli {
namespace {

void listCompanies(const std::vector<Company>& companies, bool asJson, Console& console) {
    if (asJson)
        return console.notice(companiesAsJson(companies));
    for (const auto& company : companies)
        console.notice(company.number + "\t" + company.name + "\t" + company.town);
}

int execute(Options options, Console& console) {
    if (!options.connectionString.empty()) // once, before the work is divided among processes
        options.connectionString =
            toUtf8(withPassword(fromUtf8(options.connectionString), options.password, console));
    switch (options.command) {
    case Command::ListReports:
        console.notice(options.asJson            ? reportsAsJson(options.reports)
                       : options.reports.empty() ? describeReports()
                                                 : describeReport(*options.reports.front()));
        return kDone;
    case Command::ListCompanies:
        listCompanies(DataSource(options, console).companies(), options.asJson, console);
        return kDone;
    case Command::Database:
        watchForCancellation();
        return runDatabaseCommand(options, console);
    case Command::Import:
        watchForCancellation();
        return runImport(options, console);
    case Command::Layouts:
        return runLayouts(options, console);
    default:
        watchForCancellation();
        return printAll(options, console);
    }
}

/// What packages and shells ask for.
std::optional<std::string> answerForTools(const Words& words, Console& console) {
    if (words == Words{"handbuch"})
        return manualPage();
    if (!words.empty() && words.front() == "vervollstaendigen")
        return completionsOf({words.begin() + 1, words.end()}, console);
    return std::nullopt;
}

/// A print of a job file that fails does not keep the others from being printed.
int run(int argc, const char* const* argv, Console& console) {
    if (const auto answer = answerForTools({argv + 1, argv + argc}, console)) {
        std::cout << *answer;
        return kDone;
    }
    int worst = kDone;
    for (const auto& options : parseCommandLine(argc, argv)) {
        worst = std::max(worst, withErrorsTold(console, [&] { return execute(options, console); }));
        if (worst == kCancelled)
            break;
    }
    return worst;
}

} // namespace
} // namespace kvtdruck::cli

int main(int argc, char** argv) {
    using namespace kvtdruck::cli;
    int code = kDone;
    {
        Console console;
        code = withErrorsTold(console, [&] { return run(argc, argv, console); });
    }
    if (std::cout.flush())
        return code;
    std::cerr << "Fehler: Die Standardausgabe kann nicht geschrieben werden." << std::endl;
    return code == kDone ? kFailed : code;
}
