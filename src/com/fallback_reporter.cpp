#include "com/fallback_reporter.h"

#include <windows.h>

#include <shlobj.h>

#include <fstream>
#include <memory>
#include <string>

namespace kvtdruck::com {
namespace {

std::wstring localApplicationData() {
    wchar_t* path = nullptr;
    const auto result = SHGetKnownFolderPath(FOLDERID_LocalAppData, 0, nullptr, &path);
    const std::unique_ptr<wchar_t, decltype(&CoTaskMemFree)> owner(path, CoTaskMemFree);
    return SUCCEEDED(result) ? std::wstring(path) : std::wstring();
}

std::string timestamp() {
    SYSTEMTIME now;
    GetLocalTime(&now);
    char text[32];
    std::snprintf(text, sizeof text, "%04u-%02u-%02u %02u:%02u:%02u", now.wYear, now.wMonth, now.wDay, now.wHour,
                  now.wMinute, now.wSecond);
    return text;
}

// One report is one line: the breaks within a message become blanks.
String singleLine(StringView text) {
    String line(text);
    for (auto& unit : line)
        if (unit == u'\r' || unit == u'\n')
            unit = u' ';
    return line;
}

bool appendToLog(const std::string& line) {
    const auto folder = localApplicationData();
    if (folder.empty())
        return false;
    const auto own = folder + L"\\KVTDruck";
    CreateDirectoryW(own.c_str(), nullptr);
    const std::unique_ptr<void, decltype(&CloseHandle)> file(
        CreateFileW((own + L"\\Fehler.log").c_str(), FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                    OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr),
        CloseHandle);
    DWORD written = 0;
    return file.get() != INVALID_HANDLE_VALUE &&
           WriteFile(file.get(), line.data(), static_cast<DWORD>(line.size()), &written, nullptr) != 0;
}

// A service has no desktop that anybody sees; a box there would wait for ever.
bool desktopIsVisible() {
    USEROBJECTFLAGS flags{};
    DWORD needed = 0;
    const auto station = GetProcessWindowStation();
    return station && GetUserObjectInformationW(station, UOI_FLAGS, &flags, sizeof flags, &needed) &&
           (flags.dwFlags & WSF_VISIBLE) != 0;
}

} // namespace

bool FallbackReporter::fkt_Fehlermeldung(StringView className, StringView procedure, long number, StringView text,
                                         bool runtime) {
    const auto kind = runtime ? u"Laufzeitfehler " + decimal(number) : String(u"Meldung");
    const auto place = String(className) + u"." + String(procedure);
    const bool logged =
        appendToLog(timestamp() + " " + toUtf8(place + u": " + kind + u": " + singleLine(text)) + "\r\n");
    if (desktopIsVisible()) {
        const auto box = String(text) + u"\r\n\r\n(" + place + u", " + kind + u")";
        MessageBoxW(nullptr, reinterpret_cast<const wchar_t*>(box.c_str()), L"KVTDruck",
                    MB_OK | MB_ICONWARNING | MB_SETFOREGROUND);
    }
    return logged;
}

} // namespace kvtdruck::com
