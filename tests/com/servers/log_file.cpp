#include "servers/log_file.h"

#include "values/text.h"

#include <windows.h>

#include <filesystem>
#include <fstream>

namespace kvtdruck::test {

std::string environment(const wchar_t* name) {
    wchar_t value[4096];
    const auto length = GetEnvironmentVariableW(name, value, static_cast<DWORD>(std::size(value)));
    return length == 0 ? "" : toUtf8({reinterpret_cast<const char16_t*>(value), length});
}

void appendLine(const wchar_t* variable, std::string_view line) {
    const auto path = fromUtf8(environment(variable));
    if (path.empty())
        return;
    std::ofstream file(std::filesystem::path(path), std::ios::binary | std::ios::app);
    file << line << '\n';
}

} // namespace kvtdruck::test
