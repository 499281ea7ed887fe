#include "cli/outcome.h"

#include "catalog/usage_error.h"
#include "cli/error_report.h"
#include "platform/posix/posix_platform.h"
#include "values/runtime_error.h"

#include <filesystem>

namespace kvtdruck::cli {

int withErrorsTold(Console& console, const std::function<int()>& work) {
    try {
        return work();
    } catch (const catalog::UsageError& error) {
        console.error(std::string(error.what()) + "\nHilfe gibt „kvtdruck --hilfe“.");
        return kWrongUsage;
    } catch (const RuntimeError& error) {
        console.error(forUsers(error.description()));
    } catch (const std::filesystem::filesystem_error& error) {
        console.error(error.path1().string() + ": " + toUtf8(runtimeErrorOf(error.code().value()).description()));
    } catch (const std::exception& error) {
        console.error(error.what());
    }
    return kFailed;
}

} // namespace kvtdruck::cli
