#include "cli/values_input.h"

#include "cli/cancellation.h"
#include "platform/posix/input_file.h"
#include "platform/posix/posix_platform.h"

#include <cerrno>
#include <system_error>

namespace kvtdruck::cli {
namespace {

constexpr std::size_t kMostBytes = std::size_t{64} << 20;

std::string reasonOf(const std::system_error& error) {
    if (error.code().value() == EFBIG)
        return "sie ist größer als 64 MB, und so viele Werte nimmt keine Liste.";
    return toUtf8(runtimeErrorOf(error.code().value()).description());
}

} // namespace

std::shared_ptr<catalog::ParameterArray> readValues(const catalog::ReportEntry& report,
                                                    const std::filesystem::path& file) {
    std::string text;
    try {
        text = readInput(file, kMostBytes, &cancelled());
    } catch (const std::system_error& error) {
        throw catalog::ValuesError("Die Datei " + file.string() + " kann nicht gelesen werden: " + reasonOf(error));
    }
    return catalog::parseValues(report, text, file.string());
}

} // namespace kvtdruck::cli
