// Files and processes on Linux: real ones.
#include "platform/posix/posix_platform.h"

#include "platform/posix/lazy_function.h"
#include "platform/posix/temporary_folder.h"
#include "values/conversion.h"
#include "values/printers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

using namespace kvtdruck;
namespace fs = std::filesystem;

namespace {

/// A folder of its own for each test; its path is given as the component would write it.
class Folder : public TemporaryFolder {
  public:
    fs::path write(std::string_view name, std::string_view content = "") const {
        fs::path file = *this / name;
        fs::create_directories(file.parent_path());
        std::ofstream(file) << content;
        return file;
    }

    /// An executable shell script.
    fs::path script(std::string_view name, const std::string& body) const {
        fs::path file = write(name, "#!/bin/sh\n" + body + "\n");
        fs::permissions(file, fs::perms::owner_all);
        return file;
    }
};

String backslashed(const fs::path& path) {
    String text = fromUtf8(path.string());
    for (char16_t& letter : text)
        if (letter == u'/')
            letter = u'\\';
    return text;
}

/// Waits until `condition` holds; gives up, and false, after far longer than it can take.
bool eventually(const std::function<bool()>& condition) {
    for (int attempt = 0; attempt < 3000; ++attempt) {
        if (condition())
            return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return false;
}

std::string contentOf(const fs::path& file) {
    std::ostringstream content;
    content << std::ifstream(file).rdbuf();
    return content.str();
}

class Files : public testing::Test {
  protected:
    long removing(const fs::path& path, bool force = false) {
        return errorOf([&] { files->remove(backslashed(path), force); });
    }
    long renaming(const fs::path& path, StringView name) {
        return errorOf([&] { files->rename(backslashed(path), name); });
    }

    Folder folder;
    PosixPlatform platform;
    std::unique_ptr<FileSystem> files = platform.createFileSystem();
};

TEST_F(Files, ExistenceOfFilesNotFolders) {
    const fs::path file = folder.write("DB/Übersicht für März.ll");
    EXPECT_TRUE(files->exists(backslashed(file)));
    EXPECT_TRUE(files->exists(fromUtf8(file.string())));
    EXPECT_FALSE(files->exists(backslashed(folder / "DB")));
    EXPECT_FALSE(files->exists(backslashed(folder / "DB/übersicht für März.ll")));
    EXPECT_FALSE(files->exists(backslashed(folder / "nirgends/x.ll")));
    EXPECT_FALSE(files->exists(u""));
    fs::create_symlink("fort", folder / "Verweis");
    EXPECT_FALSE(files->exists(backslashed(folder / "Verweis")));
}

TEST_F(Files, Remove) {
    const fs::path file = folder.write("Prüfung.ll");
    EXPECT_EQ(removing(file), 0);
    EXPECT_FALSE(fs::exists(file));
    EXPECT_EQ(removing(file), 53);
    EXPECT_EQ(removing(file, true), 53);
    EXPECT_EQ(removing(folder / "nirgends/x.ll"), 76);
    EXPECT_EQ(removing(folder.path()), 53);
    EXPECT_TRUE(fs::exists(folder.path()));
    EXPECT_EQ(removing(folder.write("Datei") / "darunter"), 76);
    EXPECT_EQ(removing("kein Ordner im Namen und keine Datei"), 53);
}

TEST_F(Files, RemoveReadOnlyOnlyByForce) {
    const fs::path file = folder.write("Umsatz.lsp");
    fs::permissions(file, fs::perms::owner_read | fs::perms::group_read);
    EXPECT_EQ(removing(file), 70);
    EXPECT_TRUE(fs::exists(file));
    EXPECT_EQ(removing(file, true), 0);
    EXPECT_FALSE(fs::exists(file));
}

TEST_F(Files, Rename) {
    const fs::path file = folder.write("Umsatz.ll", "Inhalt");
    EXPECT_EQ(renaming(file, u"Umsatz01022010 Größe.ll"), 0);
    EXPECT_FALSE(fs::exists(file));
    EXPECT_EQ(contentOf(folder / "Umsatz01022010 Größe.ll"), "Inhalt");
}

TEST_F(Files, RenameFails) {
    const fs::path file = folder.write("a.ll", "a");
    const fs::path other = folder.write("b.ll", "b");
    EXPECT_EQ(renaming(file, u"b.ll"), 58);
    EXPECT_EQ(contentOf(other), "b");
    EXPECT_EQ(renaming(folder / "c.ll", u"d.ll"), 53);
    EXPECT_EQ(renaming(folder / "nirgends/c.ll", u"d.ll"), 76);
    EXPECT_EQ(renaming(file, u""), 5);
    EXPECT_EQ(renaming(file, u"..\\d.ll"), 5);
    EXPECT_EQ(renaming(file, u"x/d.ll"), 5);
    EXPECT_EQ(renaming(file, String(300, u'x')), 75);
    EXPECT_EQ(contentOf(file), "a");
}

TEST_F(Files, PathsThatNoSystemTakes) {
    const String withNul = backslashed(folder.write("a")) + String(1, u'\0') + u".ll";
    EXPECT_EQ(errorOf([&] { files->remove(withNul, true); }), 75);
    EXPECT_EQ(errorOf([&] { files->exists(withNul); }), 75);
    EXPECT_TRUE(fs::exists(folder / "a"));
    EXPECT_EQ(removing(folder / std::string(300, 'x')), 75);
    EXPECT_FALSE(files->exists(String(300, u'x')));
}

TEST_F(Files, LongAndDeepPaths) {
    std::string deep;
    for (int level = 0; level < 20; ++level)
        deep += "Ordner mit einem langen Namen äöü/";
    const fs::path file = folder.write(deep + "x.ll");
    EXPECT_TRUE(files->exists(backslashed(file)));
    EXPECT_EQ(renaming(file, u"y.ll"), 0);
    EXPECT_EQ(removing(folder / (deep + "y.ll")), 0);
}

TEST(SystemErrors, BecomeRuntimeErrors) {
    const std::vector<std::pair<int, long>> cases{{ENOENT, 53}, {ENOTDIR, 76}, {EEXIST, 58},       {ENOSPC, 61},
                                                  {EDQUOT, 61}, {EFBIG, 61},   {EACCES, 70},       {EPERM, 70},
                                                  {EROFS, 70},  {EBUSY, 70},   {ETXTBSY, 70},      {EIO, 57},
                                                  {ENOMEM, 7},  {EAGAIN, 7},   {ENAMETOOLONG, 75}, {ELOOP, 75}};
    for (const auto& [code, number] : cases)
        EXPECT_EQ(runtimeErrorOf(code).number(), number) << code;
}

TEST(SystemErrors, TheFullDiskAsTheSystemReportsIt) {
    std::FILE* const full = std::fopen("/dev/full", "w");
    ASSERT_NE(full, nullptr);
    std::fputs("x", full);
    errno = 0;
    EXPECT_NE(std::fclose(full), 0);
    EXPECT_EQ(runtimeErrorOf(errno).number(), 61);
}

class RealProcesses : public testing::Test {
  protected:
    void SetUp() override {
        const char* const path = std::getenv("PATH");
        originalPath = path != nullptr ? path : "";
        setenv("PATH", (folder.path().string() + ":" + originalPath).c_str(), 1);
    }
    void TearDown() override { setenv("PATH", originalPath.c_str(), 1); }

    /// A program that writes its arguments, one a line, to `arguments` and then does `rest`.
    void installProgram(std::string_view name, const std::string& rest = "") {
        folder.script(name, "printf '%s\\n' \"$@\" > '" + (folder / "tmp").string() + "'\nmv '" +
                                (folder / "tmp").string() + "' '" + arguments().string() + "'\n" + rest);
    }
    fs::path arguments() { return folder / "arguments"; }
    std::string writtenArguments() {
        EXPECT_TRUE(eventually([&] { return fs::exists(arguments()); }));
        return contentOf(arguments());
    }

    Folder folder;
    std::string originalPath;
    PosixProcesses processes{{"kein-betrachter", "betrachter"}};
};

TEST_F(RealProcesses, StartsByNameAndPassesQuotedArguments) {
    installProgram("programm");
    processes.start(uR"(programm  ein "zwei drei" vier"fünf "sechs ""  C:\x)");
    EXPECT_EQ(writtenArguments(), "ein\nzwei drei\nvierfünf sechs\n\nC:\\x\n");
}

TEST_F(RealProcesses, StartsByPathInQuotes) {
    installProgram("Mein Programm");
    processes.start(u"\"" + fromUtf8((folder / "Mein Programm").string()) + u"\" a");
    EXPECT_EQ(writtenArguments(), "a\n");
}

TEST_F(RealProcesses, ProgramThatIsNotThere) {
    EXPECT_EQ(errorOf([&] { processes.start(u"gibt-es-nicht x"); }), 53);
    EXPECT_EQ(errorOf([&] { processes.start(u"/gibt/es/nicht"); }), 53);
    EXPECT_EQ(errorOf([&] { processes.start(u""); }), 5);
    EXPECT_EQ(errorOf([&] { processes.start(u"\"\" x"); }), 5);
}

TEST_F(RealProcesses, ProgramThatMayNotBeStarted) {
    folder.write("nur-daten", "x");
    EXPECT_EQ(errorOf([&] { processes.start(fromUtf8((folder / "nur-daten").string())); }), 70);
}

TEST_F(RealProcesses, TerminateEndsTheProcess) {
    const auto process = processes.start(u"sleep 1000");
    const auto id = process.id;
    EXPECT_TRUE(processes.isRunning(id));
    EXPECT_EQ(kill(id, 0), 0);
    processes.terminate(process);
    EXPECT_TRUE(eventually([&] { return !processes.isRunning(id); }));
    // It is gone altogether, not waiting to be asked after.
    EXPECT_EQ(kill(id, 0), -1);
    processes.terminate(process);
}

TEST_F(RealProcesses, EndedProcessesLeaveNoTrace) {
    const auto id = processes.start(u"true").id;
    EXPECT_TRUE(eventually([&] { return !processes.isRunning(id); }));
    EXPECT_EQ(waitpid(id, nullptr, WNOHANG), -1);
    EXPECT_EQ(errno, ECHILD);
}

TEST_F(RealProcesses, ForeignProcessesAreLeftAlone) {
    const pid_t foreign = fork();
    ASSERT_GE(foreign, 0);
    if (foreign == 0) {
        pause();
        _exit(0);
    }
    processes.terminate({foreign});
    processes.terminate({0});
    processes.terminate({-1});
    EXPECT_EQ(waitpid(foreign, nullptr, WNOHANG), 0);
    kill(foreign, SIGKILL);
    int status = 0;
    ASSERT_EQ(waitpid(foreign, &status, 0), foreign);
    EXPECT_EQ(WTERMSIG(status), SIGKILL);
}

TEST_F(RealProcesses, OutliveTheirStarter) {
    std::int32_t id = 0;
    {
        PosixProcesses starter({});
        id = starter.start(u"sleep 1000").id;
    }
    EXPECT_EQ(kill(id, 0), 0);
    EXPECT_EQ(getsid(id), id) << "a session of its own, so that no terminal takes it along";
    kill(id, SIGKILL);
    EXPECT_EQ(waitpid(id, nullptr, 0), id);
}

TEST_F(RealProcesses, InheritNoOpenFiles) {
    const fs::path list = folder / "list";
    folder.script("lister", "ls /proc/$$/fd > '" + (folder / "tmp").string() + "'\nmv '" +
                                (folder / "tmp").string() + "' '" + list.string() + "'\nsleep 1000");
    const int open = dup2(STDIN_FILENO, 50);
    ASSERT_EQ(open, 50);
    const auto process = processes.start(u"lister");
    ASSERT_TRUE(eventually([&] { return fs::exists(list); }));
    EXPECT_THAT(contentOf(list), testing::Not(testing::HasSubstr("50")));
    processes.terminate(process);
    close(open);
}

TEST_F(RealProcesses, PreviewViewerIsTheFirstInstalledOne) {
    installProgram("betrachter");
    processes.start(uR"(llview12.exe "\tmp\Prüfung Nr 1.ll")");
    EXPECT_EQ(writtenArguments(), "/tmp/Prüfung Nr 1.ll\n");
}

TEST_F(RealProcesses, PreviewViewerByPathAndInAnyCase) {
    installProgram("betrachter");
    processes.start(uR"("C:\Programme\LLVIEW12.EXE" "\tmp\x.ll")");
    EXPECT_EQ(writtenArguments(), "/tmp/x.ll\n");
}

TEST_F(RealProcesses, PreviewViewersAreLookedForOnTheUsualPathOrWhereTheyAreSaidToBe) {
    const fs::path own = folder.script("eigener", "exit 0");
    EXPECT_EQ(PosixProcesses({"sh", own.string()}).viewer(), "sh");
    EXPECT_EQ(PosixProcesses({(folder / "fehlt").string(), own.string()}).viewer(), own.string());
    unsetenv("PATH");
    EXPECT_EQ(PosixProcesses({"eigener", "sh"}).viewer(), "sh");
}

TEST_F(RealProcesses, NoViewerInstalledNamesWhatWasLookedFor) {
    fs::create_directories(folder / "betrachter"); // a folder is no program
    folder.write("kein-betrachter");               // nor is a file that can't be run
    try {
        processes.start(uR"(llview12.exe "\tmp\x.ll")");
        FAIL() << "no viewer is installed";
    } catch (const RuntimeError& error) {
        EXPECT_EQ(error.number(), 53);
        EXPECT_EQ(error.description(), u"Datei nicht gefunden: kein PDF-Betrachter installiert (gesucht: "
                                       u"kein-betrachter, betrachter)");
    }
}

TEST(Libraries, ThatAreMissingAreNamed) {
    EXPECT_NE(addressOf("libm.so.6", "cos"), nullptr);
    for (const char* library : {"libfehlt.so.9", "libm.so.6"}) {
        try {
            addressOf(library, "kvtdruck_gibt_es_nicht");
            FAIL() << library;
        } catch (const std::runtime_error& error) {
            EXPECT_THAT(error.what(), testing::StartsWith("Die Bibliothek „" + std::string(library) +
                                                          "“ kann nicht geladen werden: "));
        }
    }
}

TEST(Surroundings, ClockAndMessagesCanBeReplaced) {
    int messages = 0;
    PosixPlatform platform(
        {.clock = [] { return dateOf(2010, 2, 1, 10, 20, 30); }, .pendingMessages = [&] { ++messages; }});
    EXPECT_EQ(platform.now(), dateOf(2010, 2, 1, 10, 20, 30));
    platform.processPendingMessages();
    EXPECT_EQ(messages, 1);
}

TEST(Surroundings, DefaultsAreGermanAndTheSystemsClock) {
    setenv("TZ", "Europe/Berlin", 1);
    tzset();
    PosixPlatform platform;
    EXPECT_EQ(platform.locale(), germanLocale());
    platform.processPendingMessages();
    const std::time_t before = std::time(nullptr);
    const Date now = platform.now();
    const std::time_t after = std::time(nullptr);
    const auto local = [](std::time_t moment) {
        std::tm parts{};
        localtime_r(&moment, &parts);
        return dateOf(parts.tm_year + 1900, parts.tm_mon + 1, parts.tm_mday, parts.tm_hour, parts.tm_min,
                      parts.tm_sec)
            .days;
    };
    EXPECT_LE(local(before), now.days);
    EXPECT_LE(now.days, local(after));
    EXPECT_EQ(PosixPlatform(localeByName("en-US")).locale(), localeByName("en-US"));
}

} // namespace
