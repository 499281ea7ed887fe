// Files, processes, messages and locale on Windows: real ones.
#include "platform/windows/windows_platform.h"

#include "values/conversion.h"
#include "values/printers.h"

#include <gmock/gmock.h>

#include <windows.h>

#include <cwchar>
#include <functional>
#include <string>
#include <vector>

using namespace kvtdruck;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

std::wstring wide(const String& text) {
    return {text.begin(), text.end()};
}

String narrow(const std::wstring& text) {
    return {text.begin(), text.end()};
}

/// A folder of its own for each test.
class Folder {
  public:
    Folder() {
        wchar_t temporary[MAX_PATH];
        GetTempPathW(MAX_PATH, temporary);
        static int count = 0;
        path_ = std::wstring(temporary) + L"kvtdruck-" + std::to_wstring(GetCurrentProcessId()) + L"-" +
                std::to_wstring(++count);
        CreateDirectoryW(path_.c_str(), nullptr);
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    ~Folder() { removeTree(LR"(\\?\)" + path_); }

    String operator/(StringView name) const { return narrow(path_) + u'\\' + String(name); }

    String write(StringView name) const {
        String file = *this / name;
        const HANDLE handle =
            CreateFileW(nativePath(file).c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
        EXPECT_NE(handle, INVALID_HANDLE_VALUE);
        CloseHandle(handle);
        return file;
    }

  private:
    static void removeTree(const std::wstring& path) {
        WIN32_FIND_DATAW found;
        const HANDLE search = FindFirstFileW((path + L"\\*").c_str(), &found);
        if (search != INVALID_HANDLE_VALUE) {
            do {
                const std::wstring name = found.cFileName;
                if (name == L"." || name == L"..")
                    continue;
                SetFileAttributesW((path + L"\\" + name).c_str(), FILE_ATTRIBUTE_NORMAL);
                if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0)
                    removeTree(path + L"\\" + name);
                else
                    DeleteFileW((path + L"\\" + name).c_str());
            } while (FindNextFileW(search, &found));
            FindClose(search);
        }
        RemoveDirectoryW(path.c_str());
    }

    std::wstring path_;
};

class Files : public testing::Test {
  protected:
    long removing(const String& path, bool force = false) {
        return errorOf([&] { files->remove(path, force); });
    }
    long renaming(const String& path, StringView name) {
        return errorOf([&] { files->rename(path, name); });
    }

    Folder folder;
    WindowsPlatform platform;
    std::unique_ptr<FileSystem> files = platform.createFileSystem();
};

TEST_F(Files, ExistenceOfFilesNotFolders) {
    const String file = folder.write(u"Übersicht für März.ll");
    EXPECT_TRUE(files->exists(file));
    EXPECT_FALSE(files->exists(folder / u"."));
    EXPECT_FALSE(files->exists(folder / u"nirgends\\x.ll"));
    EXPECT_FALSE(files->exists(u""));
}

TEST_F(Files, Remove) {
    const String file = folder.write(u"Prüfung.ll");
    EXPECT_EQ(removing(file), 0);
    EXPECT_FALSE(files->exists(file));
    EXPECT_EQ(removing(file), 53);
    EXPECT_EQ(removing(file, true), 53);
    EXPECT_EQ(removing(folder / u"nirgends\\x.ll"), 76);
    EXPECT_EQ(removing(folder / u"."), 53);
}

TEST_F(Files, RemoveReadOnlyOnlyByForce) {
    const String file = folder.write(u"Umsatz.lsp");
    SetFileAttributesW(wide(file).c_str(), FILE_ATTRIBUTE_READONLY);
    EXPECT_EQ(removing(file), 70);
    EXPECT_TRUE(files->exists(file));
    EXPECT_EQ(removing(file, true), 0);
    EXPECT_FALSE(files->exists(file));
}

TEST_F(Files, RemoveAFileInUse) {
    const String file = folder.write(u"Umsatz.ll");
    SetFileAttributesW(wide(file).c_str(), FILE_ATTRIBUTE_READONLY);
    const HANDLE user = CreateFileW(wide(file).c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(user, INVALID_HANDLE_VALUE);
    EXPECT_EQ(removing(file, true), 70);
    CloseHandle(user);
    EXPECT_NE(GetFileAttributesW(wide(file).c_str()) & FILE_ATTRIBUTE_READONLY, 0U);
    EXPECT_EQ(removing(file, true), 0);
}

TEST_F(Files, Rename) {
    const String file = folder.write(u"Umsatz.ll");
    EXPECT_EQ(renaming(file, u"Umsatz01022010 Größe.ll"), 0);
    EXPECT_FALSE(files->exists(file));
    EXPECT_TRUE(files->exists(folder / u"Umsatz01022010 Größe.ll"));
}

TEST_F(Files, RenameFails) {
    const String file = folder.write(u"a.ll");
    folder.write(u"b.ll");
    EXPECT_EQ(renaming(file, u"b.ll"), 58);
    EXPECT_EQ(renaming(folder / u"c.ll", u"d.ll"), 53);
    EXPECT_EQ(renaming(folder / u"nirgends\\c.ll", u"d.ll"), 76);
    EXPECT_EQ(renaming(file, u""), 5);
    EXPECT_EQ(renaming(file, u"..\\d.ll"), 5);
    EXPECT_EQ(renaming(file, u"x/d.ll"), 5);
    EXPECT_EQ(errorOf([&] { files->remove(file + String(1, u'\0') + u".x", true); }), 75);
    EXPECT_TRUE(files->exists(file));
}

TEST_F(Files, LongPaths) {
    String deep = folder / u"Ordner";
    for (int level = 0; level < 10; ++level) {
        CreateDirectoryW(nativePath(deep).c_str(), nullptr);
        deep += u"\\Ordner mit einem langen Namen äöü";
    }
    CreateDirectoryW(nativePath(deep).c_str(), nullptr);
    ASSERT_GT(deep.size(), 260U);
    const String file = folder.write(StringView(deep).substr((folder / u"").size()).data() + String(u"\\x.ll"));
    EXPECT_TRUE(files->exists(file));
    EXPECT_EQ(renaming(file, u"y.ll"), 0);
    EXPECT_EQ(removing(deep + u"\\y.ll"), 0);
    EXPECT_FALSE(files->exists(deep + u"\\y.ll"));
}

TEST(NativePath, TakesThePrefixOnlyWhereItIsNeeded) {
    EXPECT_EQ(nativePath(u"C:\\a\\b.ll"), L"C:\\a\\b.ll");
    EXPECT_EQ(nativePath(u"C:\\a\\..\\b.ll"), L"C:\\b.ll");
    const String name(300, u'x');
    EXPECT_EQ(nativePath(u"C:\\a\\..\\" + name), L"\\\\?\\C:\\" + wide(name));
    EXPECT_EQ(nativePath(u"\\\\server\\share\\" + name), L"\\\\?\\UNC\\server\\share\\" + wide(name));
    EXPECT_EQ(nativePath(u"\\\\?\\C:\\" + name), L"\\\\?\\C:\\" + wide(name));
}

TEST(SystemErrors, BecomeRuntimeErrors) {
    const std::vector<std::pair<unsigned long, long>> cases{
        {ERROR_FILE_NOT_FOUND, 53},    {ERROR_PATH_NOT_FOUND, 76},   {ERROR_INVALID_DRIVE, 76},
        {ERROR_BAD_NETPATH, 76},       {ERROR_ALREADY_EXISTS, 58},   {ERROR_FILE_EXISTS, 58},
        {ERROR_DISK_FULL, 61},         {ERROR_HANDLE_DISK_FULL, 61}, {ERROR_ACCESS_DENIED, 70},
        {ERROR_SHARING_VIOLATION, 70}, {ERROR_WRITE_PROTECT, 70},    {ERROR_IO_DEVICE, 57},
        {ERROR_NOT_ENOUGH_MEMORY, 7},  {ERROR_INVALID_NAME, 75}};
    for (const auto& [code, number] : cases)
        EXPECT_EQ(runtimeErrorOf(code).number(), number) << code;
}

/// The exit code of process `id`, STILL_ACTIVE while it runs; nothing is left of it, too, when it can't be opened.
DWORD exitCode(std::int32_t id) {
    const HANDLE process = OpenProcess(PROCESS_QUERY_INFORMATION, FALSE, static_cast<DWORD>(id));
    if (process == nullptr)
        return 0;
    DWORD code = 0;
    GetExitCodeProcess(process, &code);
    CloseHandle(process);
    return code;
}

TEST(Processes, StartAndTerminate) {
    WindowsProcesses processes;
    // Without arguments the command interpreter waits for input that never comes.
    const auto process = processes.start(u"cmd.exe /c pause");
    EXPECT_EQ(exitCode(process.id), static_cast<DWORD>(STILL_ACTIVE));
    processes.terminate(process);
    EXPECT_EQ(WaitForSingleObject(process.hold.get(), 30000), WAIT_OBJECT_0);
    EXPECT_EQ(exitCode(process.id), 0U);
    processes.terminate(process);
    processes.terminate({});
}

TEST(Processes, IdOfAnEndedProcessIsNobodyElsesWhileItIsHeld) {
    WindowsProcesses processes;
    const auto ended = processes.start(u"cmd.exe /c exit 3");
    EXPECT_EQ(WaitForSingleObject(ended.hold.get(), 30000), WAIT_OBJECT_0);
    EXPECT_EQ(exitCode(ended.id), 3U) << "the system still knows it";
    processes.terminate(ended);
    EXPECT_EQ(exitCode(ended.id), 3U);
}

TEST(Processes, PassTheCommandLineOn) {
    Folder folder;
    WindowsPlatform platform;
    const String file = folder / u"Ergebnis für Größe.txt";
    const auto process = platform.processes().start(u"cmd.exe /c echo x> \"" + file + u"\"");
    EXPECT_EQ(WaitForSingleObject(process.hold.get(), 30000), WAIT_OBJECT_0);
    EXPECT_TRUE(platform.createFileSystem()->exists(file));
}

TEST(Processes, ProgramThatIsNotThere) {
    WindowsProcesses processes;
    EXPECT_EQ(errorOf([&] { processes.start(u"gibt-es-nicht.exe \"x\""); }), 53);
}

TEST(Surroundings, LocaleOfTheUser) {
    WindowsPlatform platform;
    wchar_t sign[8];
    ASSERT_GT(GetLocaleInfoW(LOCALE_USER_DEFAULT, LOCALE_SDECIMAL, sign, 8), 0);
    EXPECT_EQ(wide(platform.locale().decimalSign), sign);
    wchar_t shortDate[80];
    ASSERT_GT(GetLocaleInfoW(LOCALE_USER_DEFAULT, LOCALE_SSHORTDATE, shortDate, 80), 0);
    EXPECT_EQ(wide(platform.locale().shortDate), shortDate);
    const bool germanUser = PRIMARYLANGID(GetUserDefaultLangID()) == LANG_GERMAN;
    EXPECT_EQ(platform.locale().trueText == u"Wahr", germanUser);
}

TEST(Surroundings, LocaleFollowsTheUsersChange) {
    WindowsPlatform platform;
    const String before = platform.locale().decimalSign;
    const std::wstring changed = before == u"," ? L"." : L",";
    ASSERT_TRUE(SetLocaleInfoW(LOCALE_USER_DEFAULT, LOCALE_SDECIMAL, changed.c_str()));
    for (int attempt = 0; attempt < 600 && wide(platform.locale().decimalSign) != changed; ++attempt)
        Sleep(50); // the settings are read once a second
    EXPECT_EQ(wide(platform.locale().decimalSign), changed);
    SetLocaleInfoW(LOCALE_USER_DEFAULT, LOCALE_SDECIMAL, wide(before).c_str());
}

TEST(Surroundings, Clock) {
    WindowsPlatform platform;
    SYSTEMTIME before;
    SYSTEMTIME after;
    GetLocalTime(&before);
    const Date now = platform.now();
    GetLocalTime(&after);
    const auto date = [](const SYSTEMTIME& time) {
        return dateOf(time.wYear, time.wMonth, time.wDay, time.wHour, time.wMinute, time.wSecond).days;
    };
    EXPECT_LE(date(before), now.days);
    EXPECT_LE(now.days, date(after));
}

class Messages : public testing::Test {
  protected:
    Messages() {
        WNDCLASSW windowClass{};
        windowClass.lpszClassName = L"kvtdruck-test";
        windowClass.lpfnWndProc = receive;
        RegisterClassW(&windowClass);
        window =
            CreateWindowW(windowClass.lpszClassName, L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
        EXPECT_NE(window, nullptr);
        SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    }
    ~Messages() override {
        DestroyWindow(window);
        UnregisterClassW(L"kvtdruck-test", nullptr);
    }

    void post(UINT message) { EXPECT_TRUE(PostMessageW(window, message, 0, 0)); }

    WindowsPlatform platform;
    HWND window = nullptr;
    std::vector<UINT> arrived;
    std::function<void(UINT)> handler; ///< called for each message that arrives

  private:
    static LRESULT CALLBACK receive(HWND window, UINT message, WPARAM first, LPARAM second) {
        auto* const self = reinterpret_cast<Messages*>(GetWindowLongPtrW(window, GWLP_USERDATA));
        if (self == nullptr || (message < WM_APP && message != WM_TIMER))
            return DefWindowProcW(window, message, first, second);
        self->arrived.push_back(message);
        if (self->handler)
            self->handler(message);
        return 0;
    }
};

TEST_F(Messages, PendingOnesArriveOnceAndQuitStays) {
    post(WM_APP);
    post(WM_APP + 1);
    EXPECT_THAT(arrived, IsEmpty());
    platform.processPendingMessages();
    EXPECT_THAT(arrived, ElementsAre(WM_APP, WM_APP + 1));
    PostQuitMessage(7);
    platform.processPendingMessages();
    MSG message;
    ASSERT_TRUE(PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE));
    EXPECT_EQ(message.message, static_cast<UINT>(WM_QUIT));
    EXPECT_EQ(message.wParam, 7U);
}

TEST_F(Messages, OneThatIsPostedAnewByItsHandlerWaitsForTheNextPass) {
    handler = [this](UINT message) { post(message); };
    post(WM_APP);
    for (std::size_t pass = 1; pass <= 3; ++pass) {
        platform.processPendingMessages();
        EXPECT_EQ(arrived.size(), pass);
    }
}

TEST_F(Messages, PassWithinAPassTakesWhatIsPendingThen) {
    handler = [this](UINT message) {
        if (message != WM_APP)
            return;
        post(WM_APP + 2);
        platform.processPendingMessages();
        EXPECT_THAT(arrived, ElementsAre(WM_APP, WM_APP + 1, WM_APP + 2));
        post(WM_APP + 3);
    };
    post(WM_APP);
    post(WM_APP + 1);
    platform.processPendingMessages();
    EXPECT_THAT(arrived, ElementsAre(WM_APP, WM_APP + 1, WM_APP + 2));
    platform.processPendingMessages();
    EXPECT_EQ(arrived.back(), WM_APP + 3);
}

TEST_F(Messages, TimersThatAreDueArriveAndSlowHandlersDoNotKeepThePass) {
    handler = [](UINT) { Sleep(30); };
    SetTimer(window, 1, 10, nullptr);
    Sleep(50);
    platform.processPendingMessages();
    EXPECT_THAT(arrived, testing::SizeIs(testing::AllOf(testing::Ge(1U), testing::Le(2U))))
        << "the first that became due meanwhile ends the pass";
    KillTimer(window, 1);
}

} // namespace
