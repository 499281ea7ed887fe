// Previews: the engine's file, the viewer's process, and what becomes of both.
#include "host.h"

namespace kvtdruck::test {
namespace {

using testing::IsEmpty;
using testing::SizeIs;

bool runs(DWORD process) {
    const HANDLE handle = OpenProcess(PROCESS_QUERY_INFORMATION, FALSE, process);
    if (handle == nullptr)
        return false;
    DWORD code = 0;
    GetExitCodeProcess(handle, &code);
    CloseHandle(handle);
    return code == STILL_ACTIVE;
}

class Previews : public HostTest {
  protected:
    struct Viewer {
        DWORD process;
        std::string command;
    };

    /// The viewer that was started as the `count`-th, once it has told so.
    Viewer viewer(std::size_t count) const {
        EXPECT_TRUE(eventually([&] { return startedViewers().size() >= count; }));
        const auto line = startedViewers().at(count - 1);
        const auto blank = line.find(' ');
        return {static_cast<DWORD>(std::stoul(line.substr(0, blank))), line.substr(blank + 1)};
    }

    /// The preview files that are there.
    std::vector<std::filesystem::path> files() const {
        std::vector<std::filesystem::path> found;
        for (const auto& entry : std::filesystem::directory_iterator(previewFolder()))
            found.push_back(entry.path());
        return found;
    }

    static bool terminate(DruckManager& manager, long window) {
        VARIANT_BOOL result = VARIANT_FALSE;
        EXPECT_EQ(manager.Terminate_Preview(&window, &result), S_OK);
        return result == VARIANT_TRUE;
    }
};

TEST_F(Previews, ViewerShowsTheRenamedFile) {
    const auto manager = readyManager();
    ASSERT_TRUE(print(*manager.get(), L"Umsatz", 1));
    const auto shown = viewer(1);
    ASSERT_THAT(files(), SizeIs(1));
    const auto file = files().front();
    EXPECT_NE(file.filename(), L"Umsatz.ll");
    EXPECT_EQ(shown.command, "llview12.exe \"" + toUtf8(fromUtf8(file.string())) + "\"");
    EXPECT_TRUE(terminate(*manager.get(), 100));
    EXPECT_TRUE(eventually([&] { return !runs(shown.process); }));
    EXPECT_THAT(files(), IsEmpty());
}

TEST_F(Previews, SecondPreviewOfAWindowTakesTheFirstOnesPlace) {
    const auto manager = readyManager();
    ASSERT_TRUE(print(*manager.get(), L"Umsatz", 1));
    const auto first = viewer(1);
    ASSERT_THAT(files(), SizeIs(1));
    const auto firstFile = files().front();
    Sleep(1100); // preview names differ by the second

    ASSERT_TRUE(print(*manager.get(), L"Umsatz", 1));
    const auto second = viewer(2);
    EXPECT_TRUE(eventually([&] { return !runs(first.process); }));
    ASSERT_THAT(files(), SizeIs(1));
    EXPECT_NE(files().front(), firstFile);
    EXPECT_TRUE(runs(second.process));

    EXPECT_TRUE(terminate(*manager.get(), 100));
    EXPECT_TRUE(eventually([&] { return !runs(second.process); }));
    EXPECT_THAT(files(), IsEmpty());
    EXPECT_THAT(reportedErrors(), IsEmpty());
}

TEST_F(Previews, WindowsHaveViewersOfTheirOwn) {
    const auto manager = readyManager();
    ASSERT_TRUE(print(*manager.get(), L"Umsatz", 1, 1, 100));
    const auto first = viewer(1);
    Sleep(1100);
    ASSERT_TRUE(print(*manager.get(), L"Umsatz", 1, 1, 200));
    const auto second = viewer(2);
    EXPECT_TRUE(terminate(*manager.get(), 200));
    EXPECT_TRUE(eventually([&] { return !runs(second.process); }));
    EXPECT_TRUE(runs(first.process));
    EXPECT_TRUE(terminate(*manager.get(), 100));
    EXPECT_TRUE(eventually([&] { return !runs(first.process); }));
}

TEST_F(Previews, ViewerThatTheUserClosedIsNoError) {
    const auto manager = readyManager();
    ASSERT_TRUE(print(*manager.get(), L"Umsatz", 1));
    const auto closed = viewer(1);
    const HANDLE process = OpenProcess(PROCESS_TERMINATE, FALSE, closed.process);
    ASSERT_NE(process, nullptr);
    TerminateProcess(process, 0);
    CloseHandle(process);
    ASSERT_TRUE(eventually([&] { return !runs(closed.process); }));
    EXPECT_TRUE(terminate(*manager.get(), 100));
    EXPECT_THAT(files(), IsEmpty());
    EXPECT_THAT(reportedErrors(), IsEmpty());
}

TEST_F(Previews, EngineThatLeavesNoFileIsReportedAndNoViewerStarts) {
    answer("LlPreviewSetTempPath 1 !5\n");
    const auto manager = readyManager();
    std::filesystem::remove(previewFolder());
    print(*manager.get(), L"Umsatz", 1);
    ASSERT_THAT(reportedErrors(), SizeIs(1));
    EXPECT_THAT(reportedErrors().front(), testing::StartsWith("basLL80|fkt_Aktiviere_Preview|"));
    EXPECT_THAT(startedViewers(), IsEmpty());
}

} // namespace
} // namespace kvtdruck::test
