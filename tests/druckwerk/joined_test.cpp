// Several jobs in one document.
#include "layout_text.h"
#include "pdf_reader.h"
#include "report_driver.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kvtdruck::druckwerk {
namespace {

using namespace testing;
using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;

class JoinedTest : public ::testing::Test {
  protected:
    void SetUp() override {
        writeFile(folder / "Liste.svg", list(field(5, 20, 40, "{{Name}}")));
        writeFile(
            folder / "Quer.svg",
            "<svg xmlns='http://www.w3.org/2000/svg' xmlns:inkscape='http://www.inkscape.org/namespaces/inkscape' "
            "width='200mm' height='100mm' viewBox='0 0 200 100'>" +
                layer("Zeile", 20, 10, field(5, 20, 40, "{{Name}}"), "data-bookmark='{{Name}}'") + "</svg>");
        report.options.place = &place;
    }

    std::int32_t begin(const std::string& layout, const std::string& name) {
        report.variables({{"Jahr", "2010"}, {"Ueberschrift", "Titel von " + name}});
        report.fields({{"Name", name}});
        return report.start(folder / layout);
    }

    /// One job of `lines` lines; gives its last result.
    std::int32_t print(const std::string& layout, const std::string& name, int lines) {
        if (const auto code = begin(layout, name); code != 0)
            return code;
        report.page();
        for (int i = 0; i < lines; ++i)
            report.line();
        return report.end();
    }

    TemporaryFolder folder;
    std::filesystem::path pdf = folder / "out.pdf";
    JobPlace place;
    ReportDriver report{pdf};
};

TEST_F(JoinedTest, PagesAndBookmarksRunThrough) {
    place = {true, {"Erster"}};
    ASSERT_EQ(print("Liste", "Anna", 10), 0);
    EXPECT_FALSE(std::filesystem::exists(pdf)) << "it is not complete yet";
    place = {false, {"Gruppe", "Zweiter"}};
    ASSERT_EQ(print("Quer", "Bert", 1), 0);
    check(pdf);
    EXPECT_EQ(pagesOf(pdf), 3);
    EXPECT_THAT(textOf(pdf, 2), HasSubstr("Seite 2 von 3"));
    EXPECT_THAT(textOf(pdf, 3), HasSubstr("Bert"));
    const auto info = outputOf("pdfinfo -l 3 '" + pdf.string() + "'");
    EXPECT_THAT(info, AllOf(HasSubstr("Titel von Anna"), HasSubstr("Page    2 size:  283.46 x 283.46"),
                            HasSubstr("Page    3 size:  566.93 x 283.46")));
    const auto outline = outputOf("qpdf --json --json-key=outlines '" + pdf.string() + "'");
    std::size_t at = 0; // qpdf names the entries below an entry before its own title
    for (const char* title : {"\"Erster\"", "\"Bert\"", "\"Zweiter\"", "\"Gruppe\""}) {
        at = outline.find(std::string("\"title\": ") + title, at + 1);
        EXPECT_NE(at, std::string::npos) << title << " in " << outline;
    }
}

TEST_F(JoinedTest, AFailedJobTakesItsPagesOutAgain) {
    writeFile(folder / "Kaputt.svg", "<svg>");
    place.more = true;
    ASSERT_EQ(print("Liste", "Anna", 1), 0);
    EXPECT_EQ(print("Kaputt", "Falsch", 1), kLayoutMalformed);
    ASSERT_EQ(begin("Quer", "Falsch"), 0);
    report.page();
    report.line();
    EXPECT_EQ(report.call(Operation::PrintEnd), 0);
    place.more = false;
    ASSERT_EQ(print("Liste", "Bert", 1), 0);
    check(pdf);
    EXPECT_EQ(pagesOf(pdf), 2);
    EXPECT_THAT(textOf(pdf), AllOf(HasSubstr("Bert"), HasSubstr("Seite 2 von 2"), Not(HasSubstr("Falsch"))));
    EXPECT_THAT(outputOf("qpdf --json --json-key=outlines '" + pdf.string() + "'"), Not(HasSubstr("Falsch")));
}

TEST_F(JoinedTest, AFailedJobLeavesNothingInTheStructure) {
    writeFile(folder / "Blatt.svg", list(field(5, 20, 40, "{{Name}}") + field(50, 20, 40, "www.{{Name}}.de")));
    report.options.level = PdfLevel::Accessible;
    place.more = true;
    ASSERT_EQ(print("Blatt", "anna", 20), 0);
    for (const int lines : {1, 7 * 20}) { // on a page that is still open, and after many that are written
        ASSERT_EQ(begin("Blatt", "falsch"), 0);
        report.page();
        for (int i = 0; i < lines; ++i)
            report.line();
        EXPECT_EQ(report.call(Operation::PrintEnd), 0);
    }
    place.more = false;
    ASSERT_EQ(print("Blatt", "bert", 20), 0);
    check(pdf);
    EXPECT_EQ(levelOf(pdf), "PDF/A-3a, PDF/UA-1");
    EXPECT_EQ(pagesOf(pdf), 6);
    const auto said = outputOf("pdfinfo -struct-text '" + pdf.string() + "' 2>&1");
    EXPECT_THAT(said, AllOf(HasSubstr("anna"), HasSubstr("www.bert.de"), Not(HasSubstr("falsch"))));
}

TEST_F(JoinedTest, ManyPagesMayBeTakenOutAgain) {
    place.more = true;
    ASSERT_EQ(print("Liste", "Anna", 7 * 60), 0);
    ASSERT_EQ(begin("Liste", "Falsch"), 0);
    report.page();
    for (int i = 0; i < 7 * 100; ++i)
        report.line();
    EXPECT_EQ(report.call(Operation::PrintEnd), 0);
    place.more = false;
    ASSERT_EQ(print("Liste", "Bert", 7 * 10), 0);
    check(pdf);
    EXPECT_EQ(pagesOf(pdf), 70);
    EXPECT_THAT(textOf(pdf, 61), AllOf(HasSubstr("Bert"), HasSubstr("Seite 61 von 70")));
}

TEST_F(JoinedTest, WhatIsNotFinishedLeavesNothing) {
    place.more = true;
    ASSERT_EQ(print("Liste", "Anna", 1), 0);
    report.engine.reset();
    EXPECT_FALSE(std::filesystem::exists(pdf));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), {}), 2) << "the layouts alone";
}

TEST_F(JoinedTest, JobsOfOneLayoutShareItsPictures) {
    const auto picture =
        "<linearGradient id='v'><stop offset='0' stop-color='#f00'/><stop offset='1'/></linearGradient>"
        "<rect x='1' y='1' width='9' height='9' fill='url(#v)'/>";
    writeFile(folder / "Bild.svg", list(field(5, 20, 40, "{{Name}}"), layer("Hintergrund", 0, 5, picture)));
    writeFile(folder / "Bild2.svg", list(field(5, 20, 40, "{{Name}}"), layer("Hintergrund", 0, 6, picture)));
    place.more = true;
    ASSERT_EQ(print("Bild", "Anna", 1), 0);
    ASSERT_EQ(print("Bild2", "Bert", 1), 0);
    place.more = false;
    ASSERT_EQ(print("Bild", "Cleo", 1), 0);
    check(pdf);
    const auto objects = outputOf("qpdf --qdf --object-streams=disable '" + pdf.string() + "' - | strings");
    EXPECT_THAT(objects, AllOf(HasSubstr("/X0 Do"), HasSubstr("/X1 Do"), Not(HasSubstr("/X2 "))));
}

TEST_F(JoinedTest, APrinterGetsOneDocument) {
    int delivered = 0;
    report.options.output.clear();
    report.options.deliver = [&](const Document& document, std::string&) {
        ++delivered;
        EXPECT_EQ(document.pages, 2);
        EXPECT_EQ(document.title, "Titel von Anna");
        return 0;
    };
    place.more = true;
    ASSERT_EQ(print("Liste", "Anna", 1), 0);
    EXPECT_EQ(delivered, 0);
    place.more = false;
    ASSERT_EQ(print("Liste", "Bert", 1), 0);
    EXPECT_EQ(delivered, 1);
}

} // namespace
} // namespace kvtdruck::druckwerk
