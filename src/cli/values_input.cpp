#include "cli/values_input.h"

#include "cli/cancellation.h"
#include "platform/posix/input_file.h"
#include "platform/posix/posix_platform.h"

#include <cerrno>
#include <system_error>

namespace kvtdruck::cli {
namespace {

/// More megabytes than the largest list is handed.
constexpr std::size_t kMostOfValues = 64;

} // namespace

std::string readCsv(const std::filesystem::path& file, std::size_t most) {
    try {
        return readInput(file, most << 20U, &cancelled());
    } catch (const std::system_error& error) {
        const auto code = error.code().value();
        throw catalog::ValuesError("Die Datei " + file.string() + " kann nicht gelesen werden: " +
                                   (code == EFBIG ? "sie ist größer als " + std::to_string(most) + " MB."
                                                  : toUtf8(runtimeErrorOf(code).description())));
    }
}

std::shared_ptr<catalog::ParameterArray> readValues(const catalog::ReportEntry& report,
                                                    const std::filesystem::path& file) {
    return catalog::parseValues(report, readCsv(file, kMostOfValues), file.string());
}

} // namespace kvtdruck::cli
