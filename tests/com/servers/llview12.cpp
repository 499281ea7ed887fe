// Stands for the engine's viewer: tells that it was started, with its process id and command line, and stays until
// it is ended, or for a minute.
#include "servers/log_file.h"
#include "values/text.h"

#include <windows.h>

int main() {
    const std::wstring_view command = GetCommandLineW();
    kvtdruck::test::appendLine(
        L"KVT_TEST_VIEWERS",
        std::to_string(GetCurrentProcessId()) + " " +
            kvtdruck::toUtf8({reinterpret_cast<const char16_t*>(command.data()), command.size()}));
    Sleep(60'000);
}
