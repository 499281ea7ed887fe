// kvtdruck: the component's host on Linux.
#include "catalog/usage_error.h"
#include "cli/cancellation.h"
#include "cli/console.h"
#include "cli/options.h"
#include "cli/report_list.h"
#include "cli/report_run.h"
#include "platform/posix/posix_platform.h"

#include <filesystem>
#include <iostream>

namespace kvtdruck::cli {
namespace {

int run(int argc, const char* const* argv, Console& console) {
    const auto options = parseCommandLine(argc, argv);
    if (!options)
        return kDone;
    switch (options->command) {
    case Command::ListReports:
        console.notice(options->report ? describeReport(*options->report) : describeReports());
        return kDone;
    case Command::ListCompanies:
        return listCompanies(*options, console);
    default:
        watchForCancellation();
        return runReport(*options, console);
    }
}

int guardedRun(int argc, const char* const* argv) {
    Console console;
    try {
        return run(argc, argv, console);
    } catch (const catalog::UsageError& error) {
        console.error(std::string(error.what()) + "\nHilfe gibt „kvtdruck --hilfe“.");
        return kWrongUsage;
    } catch (const RuntimeError& error) {
        console.error(toUtf8(error.description()));
    } catch (const std::filesystem::filesystem_error& error) {
        console.error(error.path1().string() + ": " + toUtf8(runtimeErrorOf(error.code().value()).description()));
    } catch (const std::exception& error) {
        console.error(error.what());
    }
    return kFailed;
}

} // namespace
} // namespace kvtdruck::cli

int main(int argc, char** argv) {
    const int code = kvtdruck::cli::guardedRun(argc, argv);
    if (std::cout.flush())
        return code;
    std::cerr << "Fehler: Die Standardausgabe kann nicht geschrieben werden." << std::endl;
    return code == kvtdruck::cli::kDone ? kvtdruck::cli::kFailed : code;
}
