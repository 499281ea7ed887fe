#include "druckwerk/exits/data_export.h"

#include "cli/program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <ostream>

namespace kvtdruck::druckwerk {

static const char* nameOf(DataFormat format) {
    return format == DataFormat::Csv ? "csv" : format == DataFormat::Xlsx ? "xlsx" : "json";
}

/// For the names of test cases.
void PrintTo(DataFormat format, std::ostream* out) {
    *out << nameOf(format);
}

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using testing::readFile;

constexpr std::int32_t kList = 2;
constexpr std::int32_t kPrint = 256;

class DataExportTest : public ::testing::Test {
  protected:
    DataExportTest() {
        options.output = folder / "daten";
        options.error = [this](const EngineError& error) { errors.push_back(error.message); };
        options.warn = [this](std::string_view text) { warnings.emplace_back(text); };
        options.cancelled = &cancelled;
    }

    Control& control() {
        if (!form) {
            factory = std::make_unique<DataExportFormFactory>(options);
            form = factory->create();
        }
        return form->ll60();
    }
    std::int32_t start() {
        return control().call(Operation::LlPrintWithBoxStart,
                              {kList, u"Layout", kPrint, kList, WindowHandle{}, u"Titel"});
    }
    void variable(StringView name, StringView text, std::int32_t type = kTypeText) {
        EXPECT_EQ(control().call(Operation::LlDefineVariableExt, {name, text, type}), kEngineSuccess);
    }
    void field(StringView name, StringView text, std::int32_t type = kTypeText) {
        EXPECT_EQ(control().call(Operation::LlDefineFieldExt, {name, text, type}), kEngineSuccess);
    }
    std::int32_t record() { return control().call(Operation::LlPrintFields); }
    std::int32_t end() {
        const auto result = control().call(Operation::LlPrintFieldsEnd);
        return result != kEngineSuccess ? result : control().call(Operation::LlPrintEnd, {0});
    }

    /// Two years, the first with two records.
    void printSample() {
        variable(u"Firma", u"Müller & „Söhne“ \"GmbH\"");
        variable(u"Jahr", u"2023", kTypeNumeric);
        field(u"Betrag", u"1234,5", kTypeNumeric);
        field(u"Text", u"a;b\nc");
        ASSERT_EQ(start(), kEngineSuccess);
        EXPECT_EQ(record(), kEngineSuccess);
        field(u"Betrag", u"-1E-05", kTypeNumeric);
        field(u"Text", u"");
        EXPECT_EQ(record(), kEngineSuccess);
        variable(u"Jahr", u"2024", kTypeNumeric);
        field(u"Betrag", u"", kTypeNumeric);
        EXPECT_EQ(record(), kEngineSuccess);
        EXPECT_EQ(end(), kEngineSuccess);
    }

    std::vector<std::string> filesLeft() const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(folder.path()))
            names.push_back(entry.path().filename().string());
        std::ranges::sort(names);
        return names;
    }

    TemporaryFolder folder;
    DataExportOptions options;
    std::vector<std::string> errors;
    std::vector<std::string> warnings;
    std::atomic<bool> cancelled = false;
    std::unique_ptr<DataExportFormFactory> factory;
    std::unique_ptr<Form> form;
};

class EachDataFormat : public DataExportTest, public ::testing::WithParamInterface<DataFormat> {
  protected:
    EachDataFormat() { options.format = GetParam(); }
};

TEST_F(DataExportTest, CsvHasNamesOnceAndVariablesWhereTheyChange) {
    printSample();
    EXPECT_EQ(readFile(options.output), "\xEF\xBB\xBF"
                                        "Variablen;\"Firma\";\"Jahr\"\r\n"
                                        "V;\"Müller & „Söhne“ \"\"GmbH\"\"\";2023\r\n"
                                        "Felder;\"Betrag\";\"Text\"\r\n"
                                        "F;1234,5;\"a;b\nc\"\r\n"
                                        "F;-1E-05;\"\"\r\n"
                                        "V;\"Müller & „Söhne“ \"\"GmbH\"\"\";2024\r\n"
                                        "F;;\"\"\r\n");
}

TEST_F(DataExportTest, CsvDisarmsWhatASpreadsheetWouldRun) {
    const auto exported = [&] {
        form.reset();
        factory.reset();
        field(u"=Name", u"=HYPERLINK(\"http://boese\")");
        field(u"B", u"+49 351 1234");
        field(u"C", u"-");
        field(u"D", u"@SUM(A1)");
        field(u"E", u"\tcmd");
        field(u"F", u"-12,5");
        field(u"G", u"a=b");
        field(u"H", u"-5", kTypeNumeric);
        EXPECT_EQ(start(), kEngineSuccess);
        EXPECT_EQ(record(), kEngineSuccess);
        EXPECT_EQ(end(), kEngineSuccess);
        return readFile(options.output);
    };
    const auto disarmed = exported();
    EXPECT_THAT(disarmed, HasSubstr("Felder;\"'=Name\";\"B\""));
    EXPECT_THAT(disarmed,
                HasSubstr("F;\"'=HYPERLINK(\"\"http://boese\"\")\";\"'+49 351 1234\";\"'-\";\"'@SUM(A1)\";"
                          "\"'\tcmd\";\"-12,5\";\"a=b\";-5\r\n"));
    options.formulas = Formulas::Keep;
    EXPECT_THAT(exported(), HasSubstr("F;\"=HYPERLINK(\"\"http://boese\"\")\";\"+49 351 1234\";\"-\";"));
}

TEST_F(DataExportTest, JsonHasNumbersAsNumbers) {
    options.format = DataFormat::Json;
    printSample();
    const auto parsed =
        testing::run({"jq", "-c", "[.abschnitte[] | [.variablen.Jahr, .variablen.Firma, .datensaetze]]"}, {},
                     readFile(options.output));
    EXPECT_EQ(parsed.output, "[[2023,\"Müller & „Söhne“ \\\"GmbH\\\"\",[{\"Betrag\":1234.5,\"Text\":\"a;b\\nc\"},"
                             "{\"Betrag\":-1e-05,\"Text\":\"\"}]],"
                             "[2024,\"Müller & „Söhne“ \\\"GmbH\\\"\",[{\"Betrag\":null,\"Text\":\"\"}]]]\n")
        << parsed.errors;
}

TEST_F(DataExportTest, XlsxHasASheetOfVariablesAndOneOfFields) {
    options.format = DataFormat::Xlsx;
    printSample();
    const auto part = [&](const std::string& name) {
        return testing::run({"unzip", "-p", options.output.string(), name}).output;
    };
    EXPECT_THAT(part("xl/workbook.xml"), HasSubstr("<sheet name=\"Variablen\" sheetId=\"1\""));
    const auto variables = part("xl/worksheets/sheet1.xml");
    EXPECT_THAT(
        variables,
        HasSubstr("<t xml:space=\"preserve\">Müller &amp; „Söhne“ \"GmbH\"</t></is></c><c r=\"C2\"><v>2023</v>"));
    EXPECT_THAT(variables, HasSubstr("<c r=\"C3\"><v>2024</v>"));
    const auto fields = part("xl/worksheets/sheet2.xml");
    EXPECT_THAT(fields, HasSubstr("<c r=\"A2\"><v>1</v></c><c r=\"B2\"><v>1234.5</v></c>"));
    EXPECT_THAT(fields, HasSubstr("<c r=\"A4\"><v>2</v></c></row>"));
}

TEST_F(DataExportTest, TheNotationIsThatOfTheLocale) {
    options.format = DataFormat::Json;
    options.locale.decimalSign = u".";
    options.locale.thousandsSeparator = u",";
    field(u"Betrag", u"1234.5", kTypeNumeric);
    start();
    record();
    EXPECT_EQ(end(), kEngineSuccess);
    EXPECT_THAT(readFile(options.output), HasSubstr("{\"Betrag\": 1234.5}"));
}

TEST_F(DataExportTest, WhatIsNoNumberStaysText) {
    options.format = DataFormat::Json;
    for (const StringView text : {u"1,#INF", u"-1,#IND", u"1,#QNAN", u"acht"})
        field(text, text, kTypeNumeric);
    start();
    record();
    EXPECT_EQ(end(), kEngineSuccess);
    EXPECT_THAT(readFile(options.output),
                HasSubstr(R"({"1,#INF": "1,#INF", "-1,#IND": "-1,#IND", "1,#QNAN": "1,#QNAN", "acht": "acht"})"));
}

TEST_F(DataExportTest, WhatIsNoNumberIsReportedOnce) {
    field(u"Betrag", u"12.34", kTypeNumeric);
    start();
    record();
    field(u"Betrag", u"acht", kTypeNumeric);
    record();
    EXPECT_EQ(end(), kEngineSuccess);
    EXPECT_THAT(warnings, ElementsAre("Der Inhalt von „Betrag“: „12.34“ ist keine Zahl wie 1.234,5"));
}

TEST_P(EachDataFormat, CharactersThatTheFormatCannotHoldAreReplaced) {
    const String odd = String(u"<x") + char16_t(0xd800) + u"y" + char16_t(0xdc00) + char16_t(1) + char16_t(0xfffe) +
                       char16_t(0xffff) + u"\U0001F600>";
    field(u"Text", odd);
    start();
    EXPECT_EQ(record(), kEngineSuccess);
    EXPECT_EQ(end(), kEngineSuccess);
    const auto file = options.output.string();
    const std::string xml = "import sys, xml.dom.minidom as xml, zipfile\n"
                            "book = zipfile.ZipFile(sys.argv[1])\n"
                            "[xml.parseString(book.read(name)) for name in book.namelist()]";
    const auto checked = GetParam() == DataFormat::Csv
                             ? testing::run({"iconv", "-f", "UTF-8", "-t", "UTF-16", file})
                         : GetParam() == DataFormat::Json ? testing::run({"jq", ".", file})
                                                          : testing::run({"python3", "-c", xml, file});
    EXPECT_EQ(checked.exitCode, 0) << checked.errors;
}

TEST_F(DataExportTest, XlsxKeepsLineEndsBlanksAndWhatLooksEscaped) {
    options.format = DataFormat::Xlsx;
    field(u"Text", u" _x0041_\r\n ");
    start();
    record();
    EXPECT_EQ(end(), kEngineSuccess);
    const auto sheet = testing::run({"unzip", "-p", options.output.string(), "xl/worksheets/sheet2.xml"}).output;
    EXPECT_THAT(sheet, HasSubstr("<t xml:space=\"preserve\"> _x005F_x0041_&#13;\n </t>"));
}

TEST_F(DataExportTest, XlsxShortensWhatACellCannotHoldAndSaysSo) {
    options.format = DataFormat::Xlsx;
    field(u"Text", String(1'000'000, u'x'));
    start();
    EXPECT_EQ(record(), kEngineSuccess);
    EXPECT_EQ(end(), kEngineSuccess);
    EXPECT_THAT(warnings, ElementsAre(HasSubstr("32.767")));
}

TEST_F(DataExportTest, FieldStartForgetsFields) {
    field(u"Alt", u"1");
    control().call(Operation::LlDefineFieldStart);
    field(u"Neu", u"2");
    start();
    record();
    EXPECT_EQ(end(), kEngineSuccess);
    EXPECT_THAT(readFile(options.output), HasSubstr("Felder;\"Neu\"\r\nF;\"2\"\r\n"));
}

TEST_F(DataExportTest, ANewFieldBeginsNewNames) {
    field(u"A", u"1");
    start();
    record();
    field(u"B", u"2");
    record();
    EXPECT_EQ(end(), kEngineSuccess);
    EXPECT_THAT(readFile(options.output),
                HasSubstr("Felder;\"A\"\r\nF;\"1\"\r\nFelder;\"A\";\"B\"\r\nF;\"1\";\"2\"\r\n"));
}

TEST_F(DataExportTest, JobsThatShareAFileGoOnInIt) {
    options.format = DataFormat::Json;
    JobPlace place{true, {}};
    options.place = &place;
    printSample();
    EXPECT_FALSE(std::filesystem::exists(options.output)) << "it is not complete yet";
    form = factory->create();
    place.more = false;
    printSample();
    const auto years = testing::run({"jq", "-c", "[.abschnitte[].variablen.Jahr]"}, {}, readFile(options.output));
    EXPECT_EQ(years.output, "[2023,2024,2023,2024]\n") << years.errors;
    EXPECT_THAT(filesLeft(), ElementsAre("daten"));
}

TEST_F(DataExportTest, AFailedJobDropsTheSharedFile) {
    JobPlace place{true, {}};
    options.place = &place;
    printSample();
    form = factory->create();
    ASSERT_EQ(start(), kEngineSuccess);
    EXPECT_EQ(control().call(Operation::PrintEnd), kEngineSuccess);
    form.reset();
    EXPECT_THAT(filesLeft(), ElementsAre());
}

TEST_F(DataExportTest, OperationsOutsideOfAJobAreErrors) {
    EXPECT_EQ(record(), kWrongOrder);
    EXPECT_EQ(control().call(Operation::LlDefineLayout, {WindowHandle{}, u"Titel", kList, u"Layout"}), kNotOffered);
    EXPECT_EQ(errors.size(), 2u);
}

TEST_P(EachDataFormat, ACancelledJobLeavesTheOldFile) {
    testing::writeFile(options.output, "alt");
    field(u"Text", u"x");
    start();
    record();
    cancelled = true;
    EXPECT_EQ(record(), kEngineCancelled);
    EXPECT_EQ(control().call(Operation::LlPrintFieldsEnd), kEngineCancelled);
    EXPECT_EQ(control().call(Operation::PrintEnd), kEngineSuccess);
    EXPECT_EQ(readFile(options.output), "alt");
    EXPECT_THAT(filesLeft(), ElementsAre("daten"));
}

TEST_P(EachDataFormat, AnUnfinishedJobLeavesNothing) {
    field(u"Text", u"x");
    start();
    record();
    form.reset();
    EXPECT_TRUE(filesLeft().empty());
}

TEST_P(EachDataFormat, AFailingJobIsReportedOnceAndEndsLikeACancelledOne) {
    options.output = "/gibt/es/nicht";
    field(u"Text", u"x");
    EXPECT_EQ(start(), kOutputFailed);
    EXPECT_EQ(record(), kEngineCancelled);
    EXPECT_EQ(end(), kEngineCancelled);
    EXPECT_THAT(errors, ElementsAre("/gibt/es/nicht kann nicht geschrieben werden: den Ordner gibt es nicht"));
}

TEST_P(EachDataFormat, AFullDeviceIsAnError) {
    options.output = "/dev/full";
    field(u"Text", u"x");
    start();
    record();
    EXPECT_EQ(end(), kOutputFailed);
    EXPECT_THAT(errors, ElementsAre("/dev/full kann nicht geschrieben werden: Datenträger voll"));
    EXPECT_TRUE(std::filesystem::is_character_file("/dev/full"));
}

INSTANTIATE_TEST_SUITE_P(All, EachDataFormat,
                         ::testing::Values(DataFormat::Csv, DataFormat::Xlsx, DataFormat::Json),
                         [](const auto& test) { return nameOf(test.param); });

} // namespace

} // namespace kvtdruck::druckwerk
