// Previews in a viewer of the machine.
#include "cli/program_fixture.h"

#include <gmock/gmock.h>

#include <csignal>
#include <string>

namespace kvtdruck::testing {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::StartsWith;

class Preview : public ProgramTest {
  protected:
    /// A viewer that notes the head of what it shows, and its process, and then does what the test asks of it.
    void installViewer(const std::string& work) const {
        writeScript(folder / "bin" / "evince", "head -c 5 \"$1\" >" + output("kopf") + "\necho $$ >" +
                                                   output("nummer") + ".neu\nmv " + output("nummer") + ".neu " +
                                                   output("nummer") + "\n" + work);
    }
    bool viewerRuns() const {
        const auto number = readFile(output("nummer"));
        return !number.empty() && ::kill(std::stoi(number), 0) == 0;
    }
};

TEST_F(Preview, StaysUntilEnterAndThenEndsTheViewerAndRemovesTheFile) {
    installViewer("exec sleep 1000");
    Program program(command("vorschau", "Umsatz"), environment);
    ASSERT_TRUE(waitUntil([&] { return viewerRuns(); }));
    EXPECT_EQ(readFile(output("kopf")), "%PDF-");
    EXPECT_EQ(previewFiles(), 1u);
    program.write("\n");
    const auto outcome = program.wait();
    EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
    EXPECT_TRUE(waitUntil([&] { return !viewerRuns(); }));
    EXPECT_EQ(previewFiles(), 0u);
}

TEST_F(Preview, ShowsARangeInOneDocument) {
    installViewer("cp \"$1\" " + output("gezeigt.pdf"));
    const auto outcome = run(command("vorschau", "Umsatz", {"--von", "2023", "--bis", "2025"}), environment);
    EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
    EXPECT_THAT(run({"pdfinfo", output("gezeigt.pdf")}).output, HasSubstr("Pages:           3\n"));
    EXPECT_EQ(previewFiles(), 0u);
}

TEST_F(Preview, EndsWhenTheViewerIsClosed) {
    installViewer("exit 0");
    const auto outcome = run(command("vorschau", "Umsatz"), environment);
    EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
    EXPECT_EQ(readFile(output("kopf")), "%PDF-");
    EXPECT_EQ(previewFiles(), 0u);
}

TEST_F(Preview, CtrlCEndsTheViewer) {
    installViewer("exec sleep 1000");
    Program program(command("vorschau", "Umsatz"), environment);
    ASSERT_TRUE(waitUntil([&] { return viewerRuns(); }));
    program.signal(SIGINT);
    EXPECT_EQ(program.wait().exitCode, 130);
    EXPECT_TRUE(waitUntil([&] { return !viewerRuns(); }));
    EXPECT_EQ(previewFiles(), 0u);
}

TEST_F(Preview, WithoutAViewerTheUserLearnsWhereTheFileIs) {
    environment["PATH"] = (folder / "bin").string();
    const auto outcome = run(command("vorschau", "Umsatz"), environment);
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_THAT(outcome.errors, AllOf(HasSubstr("kein PDF-Betrachter installiert"),
                                      HasSubstr("sie liegt in " + layouts().string())));
    ASSERT_EQ(previewFiles(), 1u);
    const auto file = std::filesystem::directory_iterator(layouts() / "Preview")->path();
    EXPECT_EQ(file.extension(), ".pdf");
    EXPECT_THAT(outcome.errors, HasSubstr(file.string()));
    EXPECT_THAT(readFile(file), StartsWith("%PDF-"));
}

TEST_F(Preview, TwoAtOnceBothComeUp) {
    installViewer("cp \"$1\" " + output("gezeigt-$$"));
    Program first(command("vorschau", "Umsatz"), environment);
    Program second(command("vorschau", "Umsatz"), environment);
    for (auto* program : {&first, &second}) {
        const auto outcome = program->wait();
        EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
    }
    std::size_t shown = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder.path()))
        shown += entry.path().filename().string().starts_with("gezeigt-") ? 1 : 0;
    EXPECT_EQ(shown, 2u);
}

} // namespace
} // namespace kvtdruck::testing
