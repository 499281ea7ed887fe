// A designer with the printed pages beside it: what happens at each save, whatever way the editor saves.
#include "cli/program_fixture.h"

#include <gmock/gmock.h>

#include <csignal>
#include <fstream>

#include <sys/stat.h>

namespace kvtdruck::testing {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

/// A page with a heading and a figure.
constexpr const char* kLayout = R"(<svg xmlns="http://www.w3.org/2000/svg"
    xmlns:inkscape="http://www.inkscape.org/namespaces/inkscape" width="100mm" height="100mm" viewBox="0 0 100 100">
  <style>text { font-family: 'Liberation Sans'; font-size: 3px }</style>
  <g inkscape:groupmode="layer" inkscape:label="Seitenkopf">
    <text x="10" y="10">HEADING</text>
    <text x="10" y="20">Umsatz {{IUmsatzDM|#.##0,00}}</text>
  </g>
</svg>
)";

/// An editor that stays until the test ends it, a viewer that stays until it is ended, and a test that saves.
class LiveDesign : public ProgramTest {
  protected:
    LiveDesign() {
        environment["DISPLAY"] = ":0";
        std::filesystem::create_directories(layouts());
        writeFile(layouts() / "Umsatz.svg", kLayout);
        EXPECT_EQ(::mkfifo(ending().c_str(), 0600), 0);
        writeScript(folder / "bin" / "inkscape", "for file; do :; done\necho \"$file\" > " + output("opened.tmp") +
                                                     "\nmv " + output("opened.tmp") + " " + output("opened") +
                                                     "\nread line < " + ending() + "\n");
        writeScript(folder / "bin" / "evince", "trap 'echo ended >> " + output("viewer") +
                                                   "; exit' TERM\necho \"$1\" >> " + output("viewer") +
                                                   "\nwhile :; do sleep 0.05; done\n");
    }

    std::string ending() const { return output("ending"); }
    /// No viewer of this machine, and none of the test's either.
    void hideViewers() {
        std::filesystem::remove(folder / "bin" / "evince");
        for (const auto* tool : {"sh", "mv", "sleep"})
            std::filesystem::create_symlink("/bin/" + std::string(tool), folder / "bin" / tool);
        environment["PATH"] = (folder / "bin").string();
    }
    /// A viewer of that name that tells which file it shows, and whenever it is asked to read it anew.
    void addViewer(const std::string& name) const {
        writeScript(folder / "bin" / name, "trap 'echo reads anew >> " + output("viewer") +
                                               "' HUP\ntrap exit TERM\necho \"$1\" >> " + output("viewer") +
                                               "\nwhile :; do sleep 0.05; done\n");
    }
    std::vector<std::string> live(const std::vector<std::string>& more = {}) const {
        auto result = command("gestalten", "Umsatz", {"--jahr", "2024", "--live"});
        result.insert(result.end(), more.begin(), more.end());
        return result;
    }
    void endEditor() const { writeFile(ending(), "\n"); }

    /// The file that the editor was opened on; waits for it.
    std::filesystem::path copy() const {
        EXPECT_TRUE(waitUntil([&] { return std::filesystem::exists(output("opened")); }));
        return firstLine("opened");
    }
    /// The pages' file, as the viewer was told; waits for it.
    std::filesystem::path pages() const {
        EXPECT_TRUE(waitUntil([&] { return !firstLine("viewer").empty(); }));
        return firstLine("viewer");
    }
    std::string firstLine(const std::string& file) const {
        const auto text = readFile(output(file));
        return text.substr(0, text.find('\n'));
    }
    bool pagesShow(const std::string& text) const {
        return waitUntil([&] {
            return run({"pdftotext", pages().string(), "-"}).output.find(text) != std::string::npos;
        });
    }

    /// The layout as the editor shows it, with another heading.
    static std::string withHeading(std::string svg, const std::string& heading) {
        const std::string_view old = "HEADING";
        const auto at = svg.find(old);
        EXPECT_NE(at, std::string::npos);
        return svg.replace(at, old.size(), heading);
    }
    static void saveByRename(const std::filesystem::path& file, const std::string& text) {
        writeFile(file.string() + "~", text);
        std::filesystem::rename(file.string() + "~", file);
    }
    std::string ownLayout() const { return readFile(layouts() / "Umsatz.svg"); }
    std::size_t filesBesideLayouts() const {
        const std::filesystem::directory_iterator files(layouts());
        return std::size_t(std::count_if(begin(files), end(files), [](const auto& entry) {
            return entry.is_regular_file() && entry.path().filename() != "Umsatz.svg";
        }));
    }
};

TEST_F(LiveDesign, PrintsAtOnceAndAtEachSaveAndShowsThePagesInOneViewer) {
    Program program(live(), environment);
    const auto file = copy();
    ASSERT_TRUE(pagesShow("HEADING"));
    const auto shown = readFile(file);
    writeFile(file, withHeading(shown, "An seinem Platz"));
    EXPECT_TRUE(pagesShow("An seinem Platz"));
    saveByRename(file, withHeading(shown, "Umbenannt"));
    EXPECT_TRUE(pagesShow("Umbenannt"));
    const auto printed = pages();
    endEditor();
    const auto outcome = program.wait();
    EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
    EXPECT_EQ(outcome.errors, "");
    EXPECT_THAT(outcome.output, HasSubstr("ist in Ordnung"));
    EXPECT_THAT(ownLayout(), HasSubstr("Umbenannt"));
    EXPECT_THAT(ownLayout(), Not(HasSubstr("Feldliste")));
    EXPECT_FALSE(std::filesystem::exists(printed));
    EXPECT_TRUE(waitUntil([&] { return readFile(output("viewer")) == printed.string() + "\nended\n"; }));
    EXPECT_EQ(previewFiles(), 0U);
    EXPECT_EQ(filesBesideLayouts(), 0U);
}

TEST_F(LiveDesign, FindingsAppearWhileTheEditorIsOpenAndThePagesFollow) {
    Program program(live(), environment);
    const auto file = copy();
    writeFile(file, withHeading(readFile(file), "Neu {{IUmsatzDN}}"));
    EXPECT_TRUE(waitUntil([&] {
        return program.errors().find("Unbekannter Name „IUmsatzDN“ (ähnlich: „IUmsatzDM“)") != std::string::npos;
    }));
    EXPECT_THAT(program.errors(), HasSubstr((layouts() / "Umsatz.svg").string()))
        << "the layout's own name, not the copy's";
    EXPECT_TRUE(pagesShow("Neu"));
    endEditor();
    EXPECT_EQ(program.wait().exitCode, 0);
}

TEST_F(LiveDesign, ASaveThatDoesNotPrintKeepsTheLastPages) {
    Program program(live(), environment);
    const auto file = copy();
    const auto shown = readFile(file);
    writeFile(file, withHeading(shown, "Gelungen"));
    ASSERT_TRUE(pagesShow("Gelungen"));
    const auto before = readFile(pages());
    writeFile(file, withHeading(shown, "{{Ueberschrift"));
    EXPECT_TRUE(waitUntil([&] { return program.output().find("Nicht gedruckt") != std::string::npos; }));
    EXPECT_THAT(program.errors(), HasSubstr("Platzhalter ohne Ende"));
    EXPECT_EQ(readFile(pages()), before);
    endEditor();
    EXPECT_EQ(program.wait().exitCode, 1) << "the last save does not print";
}

TEST_F(LiveDesign, AFileInTheMakingIsWaitedFor) {
    Program program(live(), environment);
    const auto file = copy();
    ASSERT_TRUE(pagesShow("HEADING"));
    const auto whole = withHeading(readFile(file), "In zwei Teilen");
    writeFile(file, whole.substr(0, whole.size() / 2));
    std::ofstream(file, std::ios::binary | std::ios::app) << whole.substr(whole.size() / 2);
    EXPECT_TRUE(pagesShow("In zwei Teilen"));
    // Away for a while, as where an editor makes its backup first.
    std::filesystem::rename(file, file.string() + ".bak");
    auto again = whole;
    again.replace(again.find("In zwei Teilen"), 14, "Noch einmal");
    writeFile(file, again);
    EXPECT_TRUE(pagesShow("Noch einmal"));
    std::filesystem::remove(file.string() + ".bak");
    endEditor();
    const auto outcome = program.wait();
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(outcome.exitCode, 0);
}

TEST_F(LiveDesign, WhatStaysDamagedIsSaid) {
    Program program(live(), environment);
    const auto file = copy();
    const auto shown = readFile(file);
    writeFile(file, shown.substr(0, shown.size() / 2));
    EXPECT_TRUE(waitUntil([&] { return program.errors().find("kein wohlgeformtes XML") != std::string::npos; }));
    writeFile(file, withHeading(shown, "Wieder heil"));
    EXPECT_TRUE(pagesShow("Wieder heil"));
    endEditor();
    EXPECT_EQ(program.wait().exitCode, 0);
}

TEST_F(LiveDesign, OfManySavesTheLastOneIsShown) {
    Program program(live(), environment);
    const auto file = copy();
    const auto shown = readFile(file);
    for (int i = 1; i <= 40; ++i) {
        const auto text = withHeading(shown, "Stand " + std::to_string(i) + ".");
        i % 2 == 0 ? saveByRename(file, text) : writeFile(file, text);
    }
    EXPECT_TRUE(pagesShow("Stand 40."));
    endEditor();
    const auto outcome = program.wait();
    EXPECT_EQ(outcome.errors, "");
    EXPECT_THAT(ownLayout(), HasSubstr("Stand 40."));
}

TEST_F(LiveDesign, WhatIsSavedLastIsPrintedThoughTheEditorEndsAtOnce) {
    Program program(live(), environment);
    const auto file = copy();
    ASSERT_TRUE(pagesShow("HEADING"));
    writeFile(file, withHeading(readFile(file), "{{Ueberschrift"));
    endEditor();
    const auto outcome = program.wait();
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_THAT(outcome.errors, HasSubstr("Platzhalter ohne Ende"));
}

TEST_F(LiveDesign, CtrlCEndsEverythingAndKeepsWhatWasSavedWhole) {
    Program program(live(), environment);
    const auto file = copy();
    const auto shown = readFile(file);
    writeFile(file, withHeading(shown, "Ganz"));
    ASSERT_TRUE(pagesShow("Ganz"));
    const auto printed = pages();
    writeFile(file, shown.substr(0, shown.size() / 2));
    program.signal(SIGINT);
    EXPECT_EQ(program.wait().exitCode, 130);
    EXPECT_THAT(ownLayout(), HasSubstr(">Ganz</text>"));
    EXPECT_THAT(ownLayout(), HasSubstr("</svg>"));
    EXPECT_FALSE(std::filesystem::exists(printed));
    EXPECT_EQ(filesBesideLayouts(), 0U);
    EXPECT_TRUE(waitUntil([&] { return readFile(output("viewer")) == printed.string() + "\nended\n"; }));
}

TEST_F(LiveDesign, AViewerThatHasToBeToldIsTold) {
    hideViewers();
    addViewer("mupdf");
    addViewer("qpdfview"); // which needs the user
    Program program(live(), environment);
    const auto file = copy();
    ASSERT_TRUE(waitUntil([&] { return !firstLine("viewer").empty(); }));
    EXPECT_THAT(readFile(output("viewer")), Not(HasSubstr("reads anew")));
    writeFile(file, withHeading(readFile(file), "Neu"));
    EXPECT_TRUE(waitUntil([&] { return readFile(output("viewer")).find("reads anew") != std::string::npos; }));
    endEditor();
    const auto outcome = program.wait();
    EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
    EXPECT_THAT(outcome.output, Not(HasSubstr("qpdfview")));
}

TEST_F(LiveDesign, WhereTheViewerShowsNothingNewTheUserIsTold) {
    hideViewers();
    addViewer("qpdfview");
    Program program(live(), environment);
    copy();
    EXPECT_TRUE(waitUntil([&] {
        return program.output().find("qpdfview zeigt neue Seiten erst nach der Taste F5") != std::string::npos;
    }));
    endEditor();
    EXPECT_EQ(program.wait().exitCode, 0);
}

TEST_F(LiveDesign, WithoutAViewerThePagesAreNamed) {
    hideViewers();
    Program program(live(), environment);
    copy();
    EXPECT_TRUE(
        waitUntil([&] { return program.errors().find("kein PDF-Betrachter installiert") != std::string::npos; }));
    EXPECT_THAT(program.errors(), HasSubstr("Die Seiten liegen in " + layouts().string()));
    endEditor();
    EXPECT_EQ(program.wait().exitCode, 0);
}

TEST_F(LiveDesign, ValuesMustBeInAFile) {
    auto arguments = command("gestalten", "Bilanz", {"--werte", "/dev/stdin", "--live"});
    const auto outcome = run(arguments, environment, "1\n");
    EXPECT_EQ(outcome.exitCode, 2);
    EXPECT_THAT(outcome.errors, HasSubstr("--live liest die Werte bei jedem Druck neu"));
}

} // namespace
} // namespace kvtdruck::testing
