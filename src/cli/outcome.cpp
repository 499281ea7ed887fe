#include "cli/outcome.h"

#include "catalog/usage_error.h"
#include "cli/cancellation.h"
#include "cli/error_report.h"
#include "platform/posix/memory_watch.h"
#include "platform/posix/posix_platform.h"
#include "values/runtime_error.h"

#include <filesystem>
#include <new>
#include <string_view>

namespace kvtdruck::cli {

namespace {

constexpr std::string_view kNoMemory = "Der Arbeitsspeicher reicht nicht aus.";

int caught(Console& console, const std::function<int()>& work) {
    try {
        return work();
    } catch (const catalog::UsageError& error) {
        console.error(std::string(error.what()) + "\nHilfe gibt „kvtdruck --hilfe“.");
        return kWrongUsage;
    } catch (const RuntimeError& error) {
        console.error(forUsers(error.description()));
    } catch (const std::filesystem::filesystem_error& error) {
        console.error(error.path1().string() + ": " + toUtf8(runtimeErrorOf(error.code().value()).description()));
    } catch (const std::bad_alloc&) {
        console.error(kNoMemory);
    } catch (const std::exception& error) {
        console.error(error.what());
    }
    return cancelled() ? kCancelled : kFailed;
}

} // namespace

int withErrorsTold(Console& console, const std::function<int()>& work) {
    int code = kFailed;
    try {
        code = caught(console, work);
    } catch (const std::bad_alloc&) { // while the message was put together
        console.error(kNoMemory);
    }
    if (!memoryWasRefused())
        return code;
    if (!console.hasFailed()) // a library, or an error report that has found no memory either, has said nothing
        console.error(kNoMemory);
    return code == kDone ? kFailed : code;
}

} // namespace kvtdruck::cli
