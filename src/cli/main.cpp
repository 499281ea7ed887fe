// kvtdruck: the component's host on Linux.
#include "cli/batch.h"
#include "cli/cancellation.h"
#include "cli/completion.h"
#include "cli/console.h"
#include "cli/data_source.h"
#include "cli/manual.h"
#include "cli/option_groups.h"
#include "cli/options.h"
#include "cli/outcome.h"
#include "cli/report_list.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <iostream>

namespace kvtdruck::cli {
namespace {

int execute(Options options, Console& console) {
    if (!options.connectionString.empty()) // once, before the work is divided among processes
        options.connectionString =
            toUtf8(withPassword(fromUtf8(options.connectionString), options.password, console));
    switch (options.command) {
    case Command::ListReports:
        console.notice(options.reports.empty() ? describeReports() : describeReport(*options.reports.front()));
        return kDone;
    case Command::ListCompanies:
        for (const auto& company : DataSource(options, console).companies())
            console.notice(company.number + "\t" + company.name + "\t" + company.town);
        return kDone;
    default:
        watchForCancellation();
        return printAll(options, console);
    }
}

/// What packages and shells ask for.
std::optional<std::string> answerForTools(const Words& words, Console& console) {
    if (words == Words{"handbuch"}) {
        Options options;
        CLI::App app;
        addCommands(app, options);
        return manualPage(app);
    }
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
