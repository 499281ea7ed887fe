#include "layout_text.h"
#include "pdf_reader.h"
#include "report_driver.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

namespace kvtdruck::druckwerk {
namespace {

using namespace testing;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class DocumentTest : public ::testing::Test {
  protected:
    void SetUp() override {
        writeFile(folder / "Liste.svg",
                  list(field(5, 20, 40, "{{Name}}") + field(50, 20, 30, "{{Betrag|#.##0,00}}", "", true)));
    }

    std::int32_t start(ReportDriver& driver, std::int32_t mode = 256) {
        driver.variables({{"Jahr", "2010"}, {"Ueberschrift", "Übersicht (2010)"}, {"FnrName1", "Müller & Söhne"}});
        driver.fields({{"Name", "Zeile"}, {"Betrag", "12,5"}});
        return driver.start(folder / "Liste", mode);
    }

    void print(ReportDriver& driver, int lines) {
        ASSERT_EQ(start(driver), 0);
        ASSERT_EQ(driver.page(), 0);
        for (int i = 0; i < lines; ++i)
            ASSERT_EQ(driver.line(), 0);
        ASSERT_EQ(driver.end(), 0);
    }

    std::vector<std::string> files() const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(folder.path()))
            if (entry.path().extension() != ".svg")
                names.push_back(entry.path().filename().string());
        return names;
    }

    TemporaryFolder folder;
    std::filesystem::path pdf = folder / "out.pdf";
    ReportDriver report{pdf};
};

TEST_F(DocumentTest, SaysWhatItIs) {
    print(report, 3);
    check(pdf);
    const std::string info = outputOf("TZ=UTC pdfinfo '" + pdf.string() + "'");
    EXPECT_THAT(info, HasSubstr("Übersicht (2010)"));
    EXPECT_THAT(info, HasSubstr("Müller & Söhne"));
    EXPECT_THAT(info, HasSubstr("Sat Mar  9 14:05:00 2024"));
    EXPECT_THAT(info, HasSubstr("283.46 x 283.46 pts"));
}

TEST_F(DocumentTest, SameInputAndDateGiveTheSameBytes) {
    print(report, 100);
    ReportDriver second(folder / "zweite.pdf");
    print(second, 100);
    EXPECT_EQ(readFile(pdf), readFile(folder / "zweite.pdf"));
    ReportDriver third(folder / "dritte.pdf");
    third.options.printDate.day = 10;
    print(third, 100);
    EXPECT_NE(readFile(pdf), readFile(folder / "dritte.pdf"));
}

TEST_F(DocumentTest, BookmarksForYearsAndNames) {
    writeFile(folder / "Liste.svg", page(layer("Zeile", 20, 10, field(5, 20, 40, "{{Name}}"),
                                               "data-bookmark='{{J}} / {{Name}}' data-new-page='1'")));
    report.fields({{"J", "2010"}, {"Name", "Anna"}});
    ASSERT_EQ(report.start(folder / "Liste"), 0);
    report.page();
    for (const auto& [year, name] :
         {std::pair("2010", "Anna"), {"2010", "Bert"}, {"2010", "Bert"}, {"2011", "Bert"}}) {
        report.fields({{"J", year}, {"Name", name}});
        report.line();
    }
    ASSERT_EQ(report.end(), 0);
    check(pdf);
    const std::string outline = outputOf("qpdf --json --json-key=outlines '" + pdf.string() + "'");
    std::size_t at = 0; // qpdf names the entries below an entry before its own title
    for (const char* title : {"\"Anna\"", "\"Bert\"", "\"2010\"", "\"Bert\"", "\"2011\""}) {
        at = outline.find(std::string("\"title\": ") + title, at + 1);
        EXPECT_NE(at, std::string::npos) << title << " in " << outline;
    }
    EXPECT_THAT(outline, HasSubstr("\"destpageposfrom1\": 4"));
}

TEST_F(DocumentTest, CancellingLeavesNoFile) {
    ASSERT_EQ(start(report), 0);
    report.page();
    for (int i = 0; i < 500; ++i)
        report.line();
    EXPECT_THAT(files(), SizeIs(::testing::Le(1U)))
        << "what is unfinished has no name where the file system allows it";
    report.cancelled = true;
    EXPECT_EQ(report.call(Operation::LlPrint), kEngineCancelled);
    EXPECT_EQ(report.line(), kEngineCancelled);
    EXPECT_EQ(report.call(Operation::LlPrintSetBoxText, {StringView(u"x"), 5}), kEngineCancelled);
    EXPECT_EQ(report.end(), kEngineCancelled);
    EXPECT_THAT(files(), IsEmpty());
    EXPECT_THAT(report.errors, IsEmpty());
}

TEST_F(DocumentTest, ACancelledJobDoesNotTouchAnEarlierFile) {
    print(report, 3);
    const std::string before = readFile(pdf);
    ASSERT_EQ(start(report), 0);
    report.page();
    report.line();
    report.call(Operation::PrintEnd);
    EXPECT_EQ(readFile(pdf), before);
    EXPECT_THAT(files(), SizeIs(1));
}

TEST_F(DocumentTest, AReportThatStopsLeavesNothingAndTheNextOnePrints) {
    ASSERT_EQ(start(report), 0);
    report.page();
    report.line();
    print(report, 8);
    check(pdf);
    EXPECT_EQ(pagesOf(pdf), 2);
    EXPECT_THAT(files(), SizeIs(1));
    ASSERT_EQ(start(report), 0);
    report.page();
    report.engine.reset();
    EXPECT_THAT(files(), SizeIs(1));
}

TEST_F(DocumentTest, AFolderThatIsNotThereIsAnErrorOnce) {
    report.options.output = folder / "nirgends" / "out.pdf";
    ASSERT_EQ(start(report), 0);
    EXPECT_EQ(report.page(), kOutputFailed);
    EXPECT_EQ(report.line(), kEngineCancelled);
    EXPECT_EQ(report.end(), kEngineCancelled);
    ASSERT_THAT(report.errors, SizeIs(1));
    EXPECT_THAT(report.errors[0].message, HasSubstr("kann nicht geschrieben werden"));
    EXPECT_EQ(report.engine->lastError(), report.errors[0]);
}

TEST_F(DocumentTest, AFullDiskIsAnErrorOnce) {
    report.options.output = "/dev/full";
    ASSERT_EQ(start(report), 0);
    report.page();
    std::int32_t code = 0;
    for (int i = 0; i < 20000 && code == 0; ++i)
        code = report.line();
    report.end();
    ASSERT_THAT(report.errors, SizeIs(1));
    EXPECT_EQ(report.errors[0].code, kOutputFailed);
    EXPECT_THAT(report.errors[0].message, HasSubstr("Datenträger voll"));
    EXPECT_TRUE(std::filesystem::exists("/dev/full"));
}

TEST_F(DocumentTest, PreviewsGoToTheirFolderWithBackslashes) {
    std::string path = (folder / "Vorschau").string() + "\\";
    const String preview = fromUtf8(path);
    ASSERT_EQ(report.call(Operation::LlPreviewSetTempPath, {StringView(preview)}), 0);
    std::string object = (folder.path() / "Liste").string();
    object[object.rfind('/')] = '\\';
    report.variables({{"Jahr", "2010"}});
    report.fields({{"Name", "x"}, {"Betrag", "1"}});
    ASSERT_EQ(report.start(object, 512), 0);
    report.page();
    report.line();
    ASSERT_EQ(report.end(), 0);
    check(folder / "Vorschau/Liste.ll");
    EXPECT_FALSE(std::filesystem::exists(pdf));
    const String name = u"x\\Liste";
    EXPECT_EQ(report.call(Operation::LlPreviewDeleteFiles, {StringView(name), StringView(preview)}), 0);
    EXPECT_FALSE(std::filesystem::exists(folder / "Vorschau/Liste.ll"));
}

TEST_F(DocumentTest, WithoutAFileTheDocumentIsDelivered) {
    report.options.output.clear();
    std::filesystem::path delivered;
    report.options.deliver = [&](const Document& document, std::string&) {
        delivered = document.file;
        EXPECT_EQ(document.title, "Übersicht (2010) – Müller & Söhne");
        EXPECT_EQ(document.pages, 2);
        check(document.file);
        return 0;
    };
    print(report, 10);
    EXPECT_FALSE(delivered.empty());
    EXPECT_FALSE(std::filesystem::exists(delivered));
}

TEST_F(DocumentTest, ARefusingPrinterIsAnError) {
    report.options.output.clear();
    report.options.deliver = [](const Document&, std::string& message) {
        message = "Drucker antwortet nicht";
        return std::int32_t{kPrintingFailed};
    };
    ASSERT_EQ(start(report), 0);
    report.page();
    report.line();
    EXPECT_EQ(report.end(), kPrintingFailed);
    ASSERT_THAT(report.errors, SizeIs(1));
    EXPECT_EQ(report.errors[0].message, "Drucker antwortet nicht");
}

TEST_F(DocumentTest, TheOptionsDialogChoosesTheFileOrCancels) {
    report.options.optionsDialog = [&](OptionsRequest& request, std::string&) {
        EXPECT_EQ(request.listName, "Liste");
        EXPECT_EQ(request.output, pdf);
        request.output = folder / "gewählt.pdf";
        return 0;
    };
    ASSERT_EQ(start(report), 0);
    ASSERT_EQ(report.call(Operation::LlPrintOptionsDialog, {WindowHandle{}, StringView(u"Liste")}), 0);
    report.page();
    report.line();
    ASSERT_EQ(report.end(), 0);
    check(folder / "gewählt.pdf");
    EXPECT_FALSE(std::filesystem::exists(pdf));
}

TEST_F(DocumentTest, ProgressReportsTextPercentAndPage) {
    std::string seen;
    report.options.progress = [&](const Progress& progress) {
        seen = std::string(progress.text) + " " + std::to_string(progress.percent) + " " +
               std::to_string(progress.page);
    };
    ASSERT_EQ(start(report), 0);
    report.page();
    report.call(Operation::LlPrintSetBoxText, {StringView(u"Liste"), 42});
    EXPECT_EQ(seen, "Liste 42 1");
}

TEST_F(DocumentTest, OperationsOutOfOrderAreErrors) {
    EXPECT_EQ(report.call(Operation::LlPrint), kWrongOrder);
    EXPECT_EQ(report.call(Operation::LlPrintEnd, {0}), kWrongOrder);
    EXPECT_EQ(report.call(Operation::PrintEnd), 0);
    ASSERT_EQ(start(report), 0);
    EXPECT_EQ(report.call(Operation::LlPrintFields), kWrongOrder);
    EXPECT_EQ(report.call(Operation::LlDefineVariableExt, {5}), kWrongArguments);
    EXPECT_EQ(report.call(Operation::LlPreviewDisplay), kNotOffered);
    EXPECT_EQ(report.call(Operation::LlDefineLayout, {WindowHandle{}, StringView(u"t"), 2, StringView(u"x")}),
              kDesignFailed);
    EXPECT_EQ(report.call(Operation::LlSetPrinterToDefault, {2, StringView(u"x")}), 0);
}

TEST_F(DocumentTest, TheDesignerGetsLayoutAndDefinitions) {
    DesignRequest seen;
    report.options.design = [&](const DesignRequest& request, std::string&) {
        seen = request;
        return 0;
    };
    report.variables({{"Jahr", "2010"}});
    report.fields({{"Name", "Anna"}});
    ASSERT_EQ(report.call(Operation::LlDefineLayout,
                          {WindowHandle{}, StringView(u"Titel"), 2, StringView(u"a\\b\\Liste")}),
              0);
    EXPECT_EQ(seen.title, "Titel");
    EXPECT_EQ(seen.layout, "a/b/Liste.svg");
    ASSERT_THAT(seen.definitions, SizeIs(2));
    EXPECT_TRUE(seen.definitions[0].numeric);
    EXPECT_TRUE(seen.definitions[1].field);
    EXPECT_EQ(seen.definitions[1].value, "Anna");
}

TEST_F(DocumentTest, AJobWithoutAPageIsOnePage) {
    ASSERT_EQ(start(report), 0);
    ASSERT_EQ(report.end(), 0);
    check(pdf);
    EXPECT_EQ(pagesOf(pdf), 1);
}

#ifndef KVT_SANITIZED // which keeps memory that was released
TEST_F(DocumentTest, MemoryDoesNotGrowWithTheLines) {
    const auto peak = [] {
        rusage usage{};
        getrusage(RUSAGE_SELF, &usage);
        return usage.ru_maxrss; // KiB
    };
    print(report, 2000);
    const auto before = peak();
    print(report, 200000);
    EXPECT_LT(peak() - before, 4096) << "200,000 lines on 28,572 pages";
}
#endif

} // namespace
} // namespace kvtdruck::druckwerk
