#include "catalog/values_file.h"
#include "cli/values_input.h"

#include "values/conversion.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kvtdruck::catalog {
namespace {

const ReportEntry& bilanz() {
    return *findReport("Bilanz");
}

std::shared_ptr<ParameterArray> parse(std::string_view text, const ReportEntry& report = bilanz()) {
    return parseValues(report, text, "w.csv");
}

std::string errorOf(std::string_view text, const ReportEntry& report = bilanz()) {
    try {
        parse(text, report);
    } catch (const ValuesError& error) {
        return error.what();
    }
    return "no error";
}

TEST(ValuesFile, KindOfACellFollowsFromItsText) {
    const auto array = parse("1;-1.234,5;+7;1e3;\"8\";Text;;31.12.2024;Wahr;Falsch;\"a\"\"b;c\nd\"; x ;01067\n");
    EXPECT_EQ(array->cell(0, 0), Variant(1.0));
    EXPECT_EQ(array->cell(0, 1), Variant(-1234.5));
    EXPECT_EQ(array->cell(0, 2), Variant(7.0));
    EXPECT_EQ(array->cell(0, 3), Variant(1000.0));
    EXPECT_EQ(array->cell(0, 4), Variant(u"8"));
    EXPECT_EQ(array->cell(0, 5), Variant(u"Text"));
    EXPECT_TRUE(array->cell(0, 6).isEmpty());
    EXPECT_EQ(array->cell(0, 7), Variant(dateOf(2024, 12, 31)));
    EXPECT_EQ(array->cell(0, 8), Variant(true));
    EXPECT_EQ(array->cell(0, 9), Variant(false));
    EXPECT_EQ(array->cell(0, 10), Variant(u"a\"b;c\nd"));
    EXPECT_EQ(array->cell(0, 11), Variant(u"x"));
    EXPECT_EQ(array->cell(0, 12), Variant(1067.0));
}

TEST(ValuesFile, AQuotedNothingIsAnEmptyText) {
    EXPECT_EQ(parse("\"\";1")->cell(0, 0), Variant(u""));
}

TEST(ValuesFile, HeadingPutsColumnsInTheirPlaces) {
    const auto array = parse("Gewinn;-;Jahr\r\n10,5;99;2024\r\n");
    EXPECT_EQ(array->rows(), 1u);
    EXPECT_EQ(array->columns(), 15u);
    EXPECT_EQ(array->cell(0, 1), Variant(2024.0));
    EXPECT_EQ(array->cell(0, 2), Variant(10.5));
    EXPECT_TRUE(array->cell(0, 0).isEmpty());
    EXPECT_TRUE(array->cell(0, 14).isEmpty());
}

TEST(ValuesFile, WithoutHeadingColumnsStandInOrder) {
    const auto array = parse(";2024;10\n;2025;11\n");
    EXPECT_EQ(array->rows(), 2u);
    EXPECT_EQ(array->cell(1, 1), Variant(2025.0));
    EXPECT_EQ(array->columns(), 15u);
}

TEST(ValuesFile, AQuotedNameIsData) {
    const auto array = parse("\"Rechnungen\";\"Saldo\"\n", *findReport("UmsatzHW"));
    EXPECT_EQ(array->rows(), 1u);
    EXPECT_EQ(array->cell(0, 0), Variant(u"Rechnungen"));
}

TEST(ValuesFile, ByteOrderMarkAndBlankLinesAreSkipped) {
    const auto array = parse("\xEF\xBB\xBFJahr;Gewinn\n\n2024;1\n\n");
    EXPECT_EQ(array->rows(), 1u);
    EXPECT_EQ(array->cell(0, 1), Variant(2024.0));
}

TEST(ValuesFile, UmlautsAndSurrogatesArrive) {
    EXPECT_EQ(parse("\"Größe 😀\"")->cell(0, 0), Variant(u"Größe 😀"));
}

TEST(ValuesFile, TextsMayBeWindows1252) {
    EXPECT_EQ(parse("\"Gr\xF6\xDF"
                    "e \x80 \x84x\x93\"")
                  ->cell(0, 0),
              Variant(u"Größe € „x“"));
    EXPECT_THAT(errorOf("1;\x81\n"), ::testing::HasSubstr("Spalte 2: Das Zeichen ist kein UTF-8"));
}

TEST(ValuesFile, ErrorsNameFileLineColumnAndReason) {
    EXPECT_EQ(
        errorOf("Jahr;Gewinn\n2024;1.5\n"),
        "w.csv, Zeile 2, Spalte 2: „1.5“ ist weder eine deutsche Zahl (1.234,5) noch ein Datum (31.12.2024); ein "
        "Text steht in Anführungszeichen.");
    EXPECT_EQ(errorOf("1;2\n3\n"), "w.csv, Zeile 2, Spalte 1: Die Zeile hat 1 statt 2 Spalten.");
    EXPECT_EQ(errorOf("1;\"zwei\nZeilen\"\n3\n"), "w.csv, Zeile 3, Spalte 1: Die Zeile hat 1 statt 2 Spalten.");
    EXPECT_EQ(errorOf("1;\"offen\n"), "w.csv, Zeile 1, Spalte 2: Das schließende Anführungszeichen fehlt.");
    EXPECT_EQ(errorOf("\"a\"b;1\n"),
              "w.csv, Zeile 1, Spalte 1: Nach dem schließenden Anführungszeichen steht noch Text.");
    EXPECT_EQ(errorOf("\"ä\";\xE4\n"),
              "w.csv, Zeile 1, Spalte 2: Das Zeichen ist kein UTF-8; bitte die Datei als UTF-8 speichern.");
    EXPECT_EQ(errorOf("Jahr;Jahr\n1;2\n"),
              "w.csv, Zeile 1, Spalte 2: Die Spalte „Jahr“ steht mehrmals in der Kopfzeile.");
    EXPECT_THAT(
        errorOf("Jahr;Gewin\n1;2\n"),
        ::testing::StartsWith("w.csv, Zeile 1, Spalte 2: Die Liste Bilanz hat keine Spalte „Gewin“; sie kennt "
                              "Jahr, Gewinn, EK"));
    EXPECT_EQ(errorOf("1e999\n"), "w.csv, Zeile 1, Spalte 1: Die Zahl „1e999“ ist zu groß.");
    EXPECT_EQ(errorOf("Jahr\n"), "w.csv: Die Datei enthält keine Werte.");
    EXPECT_EQ(errorOf(""), "w.csv: Die Datei enthält keine Werte.");
}

TEST(ValuesFile, LongCellsAreNoTrouble) {
    constexpr std::size_t kMany = 200'000;
    EXPECT_EQ(errorOf(std::string(kMany, '9') + "\n"),
              "w.csv, Zeile 1, Spalte 1: Die Zahl „" + std::string(60, '9') + "“ ist zu groß.");
    EXPECT_THAT(errorOf(std::string(kMany, '1') + ".5\n"), ::testing::HasSubstr("weder eine deutsche Zahl"));
    EXPECT_EQ(parse(std::string(kMany, 'x') + "\n")->cell(0, 0), Variant(String(kMany, u'x')));
    EXPECT_EQ(parse("0," + std::string(kMany, '0') + "\n")->cell(0, 0), Variant(0.0));
}

TEST(ValuesFile, MemoryIsBounded) {
    EXPECT_THAT(errorOf(std::string(1'000'001, ';')), ::testing::HasSubstr("mehr als 1000000 Felder"));
    EXPECT_THAT(errorOf(std::string(2'000'002, '\n').replace(0, 1, "1")), ::testing::HasSubstr("1000000 Felder"));
}

TEST(ValuesFile, WhatCanNotBeReadSaysWhy) {
    const auto errorOf = [](const char* file) -> std::string {
        try {
            cli::readValues(bilanz(), file);
        } catch (const ValuesError& error) {
            return error.what();
        }
        return "";
    };
    EXPECT_THAT(errorOf("/gibt/es/nicht.csv"), ::testing::HasSubstr("kann nicht gelesen werden: Datei"));
    EXPECT_THAT(errorOf("/"), ::testing::HasSubstr("Die Datei / kann nicht gelesen werden: "));
    EXPECT_EQ(errorOf("/dev/zero"), "Die Datei /dev/zero kann nicht gelesen werden: sie ist größer als 64 MB.");
}

class SampleValues : public ::testing::TestWithParam<const char*> {};

TEST_P(SampleValues, FillTheReportsArray) {
    const auto& report = *findReport(GetParam());
    const auto array = cli::readValues(report, std::string(KVT_SOURCE_FOLDER "/demo/werte/") + GetParam() + ".csv");
    EXPECT_EQ(array->columns(), report.width());
    EXPECT_GE(array->rows(), report.rows());
    for (const auto& column : report.columns) {
        const std::size_t row = column.rows == ValueColumn::Rows::Second ? 1 : 0;
        EXPECT_FALSE(array->cell(row, column.column).isEmpty()) << column.name;
    }
}

INSTANTIATE_TEST_SUITE_P(All, SampleValues,
                         ::testing::Values("Bilanz", "BsEMa", "BsEStd", "BsEGes", "KalkW", "WasWenn", "UmsatzHW"));

} // namespace
} // namespace kvtdruck::catalog
