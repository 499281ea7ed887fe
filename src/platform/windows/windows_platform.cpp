#include "platform/windows/windows_platform.h"

#include "values/conversion.h"

#include <windows.h>

namespace kvtdruck {

RuntimeError runtimeErrorOf(unsigned long code) {
    switch (code) {
    case ERROR_FILE_NOT_FOUND:
        return RuntimeError(ErrorNumber::FileNotFound);
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_DRIVE:
    case ERROR_BAD_NETPATH:
    case ERROR_BAD_NET_NAME:
        return RuntimeError(ErrorNumber::PathNotFound);
    case ERROR_FILE_EXISTS:
    case ERROR_ALREADY_EXISTS:
        return RuntimeError(ErrorNumber::FileAlreadyExists);
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL:
        return RuntimeError(ErrorNumber::DiskFull);
    case ERROR_ACCESS_DENIED:
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION:
    case ERROR_WRITE_PROTECT:
        return RuntimeError(ErrorNumber::PermissionDenied);
    case ERROR_CRC:
    case ERROR_GEN_FAILURE:
    case ERROR_IO_DEVICE:
        return RuntimeError(ErrorNumber::DeviceIoError);
    case ERROR_NOT_ENOUGH_MEMORY:
    case ERROR_OUTOFMEMORY:
        return RuntimeError(ErrorNumber::OutOfMemory);
    default:
        return RuntimeError(ErrorNumber::PathFileAccess);
    }
}

namespace {

std::wstring wide(StringView text) {
    return {text.begin(), text.end()};
}

String narrow(std::wstring_view text) {
    return {text.begin(), text.end()};
}

void check(BOOL succeeded) {
    if (!succeeded)
        throw runtimeErrorOf(GetLastError());
}

/// `path` without "." and "..", beginning with its drive or share.
std::wstring absolutePath(const std::wstring& path) {
    std::wstring absolute(GetFullPathNameW(path.c_str(), 0, nullptr, nullptr), L'\0');
    const DWORD length =
        GetFullPathNameW(path.c_str(), static_cast<DWORD>(absolute.size()), absolute.data(), nullptr);
    check(length != 0);
    absolute.resize(length);
    return absolute;
}

/// The attributes of the file (not folder) `path`; the run-time error of a missing file or folder where there is
/// none.
DWORD existingFile(const std::wstring& path) {
    const DWORD attributes = GetFileAttributesW(path.c_str());
    check(attributes != INVALID_FILE_ATTRIBUTES);
    if ((attributes & FILE_ATTRIBUTE_DIRECTORY) != 0)
        throw RuntimeError(ErrorNumber::FileNotFound);
    return attributes;
}

class WindowsFileSystem : public FileSystem {
  public:
    bool exists(StringView path) override {
        const DWORD attributes = GetFileAttributesW(nativePath(path).c_str());
        return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
    }

    void remove(StringView path, bool force) override {
        const std::wstring file = nativePath(path);
        const DWORD attributes = existingFile(file);
        const bool readOnly = (attributes & FILE_ATTRIBUTE_READONLY) != 0;
        if (readOnly && !force)
            throw RuntimeError(ErrorNumber::PermissionDenied);
        if (readOnly)
            check(SetFileAttributesW(file.c_str(), attributes & ~static_cast<DWORD>(FILE_ATTRIBUTE_READONLY)));
        if (!DeleteFileW(file.c_str())) {
            const DWORD failure = GetLastError();
            if (readOnly)
                SetFileAttributesW(file.c_str(), attributes);
            throw runtimeErrorOf(failure);
        }
    }

    void rename(StringView path, StringView newName) override {
        if (newName.empty() || newName.find_first_of(u"\\/:") != StringView::npos)
            throw RuntimeError(ErrorNumber::InvalidProcedureCall);
        const std::wstring file = nativePath(path);
        existingFile(file);
        const std::wstring folder = file.substr(0, file.find_last_of(L'\\') + 1);
        check(MoveFileW(file.c_str(), nativePath(narrow(folder) + String(newName)).c_str()));
    }
};

/// One of the user's settings, by its LOCALE_… number.
String localeInfo(LCTYPE type) {
    wchar_t text[128];
    const int length = GetLocaleInfoEx(LOCALE_NAME_USER_DEFAULT, type, text, static_cast<int>(std::size(text)));
    return length > 0 ? narrow({text, static_cast<std::size_t>(length) - 1}) : String();
}

Locale userLocale() {
    Locale locale;
    locale.decimalSign = localeInfo(LOCALE_SDECIMAL);
    locale.thousandsSeparator = localeInfo(LOCALE_STHOUSAND);
    locale.currencySymbol = localeInfo(LOCALE_SCURRENCY);
    locale.shortDate = localeInfo(LOCALE_SSHORTDATE);
    locale.time = localeInfo(LOCALE_STIMEFORMAT);
    locale.am = localeInfo(LOCALE_S1159);
    locale.pm = localeInfo(LOCALE_S2359);
    setTruthWords(locale, toUtf8(localeInfo(LOCALE_SISO639LANGNAME)));
    return locale;
}

} // namespace

std::wstring nativePath(StringView path) {
    if (path.find(u'\0') != StringView::npos)
        throw RuntimeError(ErrorNumber::PathFileAccess);
    constexpr std::wstring_view unlimited = LR"(\\?\)";
    std::wstring given = wide(path);
    if (given.empty() || given.starts_with(unlimited))
        return given;
    std::wstring absolute = absolutePath(given);
    if (absolute.size() < MAX_PATH)
        return absolute;
    return absolute.starts_with(LR"(\\)") ? LR"(\\?\UNC)" + absolute.substr(1) : std::wstring(unlimited) + absolute;
}

Process WindowsProcesses::start(StringView commandLine) {
    std::wstring line = wide(commandLine);
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESHOWWINDOW;
    startup.wShowWindow = SW_SHOWNORMAL;
    PROCESS_INFORMATION process{};
    check(CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &process));
    CloseHandle(process.hThread);
    return {static_cast<std::int32_t>(process.dwProcessId), {process.hProcess, CloseHandle}};
}

void WindowsProcesses::terminate(const Process& process) {
    TerminateProcess(process.hold.get(), 0);
}

WindowsPlatform::WindowsPlatform() : locale_(userLocale()), localeReadAt_(GetTickCount64()) {}

std::unique_ptr<FileSystem> WindowsPlatform::createFileSystem() {
    return std::make_unique<WindowsFileSystem>();
}

Date WindowsPlatform::now() {
    SYSTEMTIME time;
    GetLocalTime(&time);
    return dateOf(time.wYear, time.wMonth, time.wDay, time.wHour, time.wMinute, time.wSecond);
}

const Locale& WindowsPlatform::locale() {
    const std::uint64_t moment = GetTickCount64();
    if (moment - localeReadAt_ >= 1000) {
        localeReadAt_ = moment;
        if (Locale current = userLocale(); current != locale_)
            locale_ = std::move(current);
    }
    return locale_;
}

} // namespace kvtdruck
