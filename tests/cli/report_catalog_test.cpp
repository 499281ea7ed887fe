#include "catalog/report_catalog.h"
#include "catalog/usage_error.h"
#include "cli/report_list.h"

#include "cli/program.h"
#include "manager/clsDruckManager.h"
#include "values/runtime_error.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

namespace kvtdruck::catalog {
namespace {

using enum Selection;

std::vector<Variant> cells(std::string_view list, const Selections& selections) {
    const auto array = parameterArray(*findReport(list), selections);
    std::vector<Variant> result;
    for (std::size_t column = 0; column < array->columns(); ++column)
        result.push_back(array->cell(0, column));
    return result;
}

template <class... Values>
std::vector<Variant> row(Values... values) {
    return {Variant(values)...};
}

constexpr std::int32_t operator""_l(unsigned long long number) {
    return static_cast<std::int32_t>(number);
}

TEST(ReportCatalog, HasTheComponentsListsInItsOrder) {
    std::vector<std::string> names;
    for (const auto& launcher : allLaunchers())
        names.push_back(toUtf8(launcher.listName));
    std::vector<std::string> own;
    for (const auto& report : reports())
        own.emplace_back(report.listName);
    EXPECT_EQ(own, names);
}

TEST(ReportCatalog, YearCellsArePassedAsGiven) {
    EXPECT_EQ(cells("Umsatz", {}), row(true, 0_l, 0_l));
    EXPECT_EQ(cells("Umsatz", {{YearFrom, 2010}, {YearTo, 2012}}), row(false, 2010_l, 2012_l));
    EXPECT_EQ(cells("Umsatz", {{YearTo, 2012}}), row(false, 0_l, 2012_l));
    EXPECT_EQ(cells("Firma", {{Year, 2010}}), row(false, 2010_l, 2010_l));
    EXPECT_EQ(cells("Firma", {{YearFrom, 2010}}), row(false, 2010_l, 9999_l));
}

TEST(ReportCatalog, AccountCells) {
    EXPECT_EQ(cells("GemeinK", {{Year, 2024}}), row(true, 0_l, 0_l, Empty{}, 2024_l));
    EXPECT_EQ(cells("NeutralA", {{Year, 2024}, {AccountFrom, 4000}, {AccountTo, 4999}, {Month, 3}}),
              row(false, 4000_l, 4999_l, 3_l, 2024_l));
}

TEST(ReportCatalog, DesigningSelectsAMonth) {
    EXPECT_EQ(selectionsForDesign(*findReport("GemeinK"), {}), (Selections{{Month, 1}}));
    EXPECT_EQ(selectionsForDesign(*findReport("GemeinK"), {{Month, 3}}), (Selections{{Month, 3}}));
    EXPECT_EQ(selectionsForDesign(*findReport("Umsatz"), {}), Selections{});
}

TEST(ReportCatalog, EmployeeCells) {
    EXPECT_EQ(cells("MaKost", {}), row(true, 0_l, 0_l, true, 1_l, 12_l));
    EXPECT_EQ(cells("MaZeit", {{EmployeeFrom, 7}, {MonthFrom, 3}}), row(false, 7_l, 0_l, false, 3_l, 12_l));
    EXPECT_EQ(cells("MaStKost", {{EmployeeTo, 9}}), row(false, 0_l, 9_l));
    EXPECT_EQ(cells("MitUeber", {}), row(true));
}

TEST(ReportCatalog, ReportsFedByValuesHaveRoomForAllTheirColumns) {
    EXPECT_EQ(cells("Bilanz", {}).size(), 15u);
    EXPECT_EQ(cells("KalkW", {}).size(), 28u);
    EXPECT_EQ(cells("WasWenn", {}).size(), 51u);
    EXPECT_EQ(parameterArray(*findReport("UmsatzHW"), {})->rows(), 2u);
}

TEST(ReportCatalog, RefusesWhatAReportDoesNotKnowOrNeeds) {
    EXPECT_THROW(cells("Umsatz", {{AccountFrom, 1}}), UsageError);
    EXPECT_THROW(cells("MaStKost", {{MonthFrom, 1}}), UsageError);
    EXPECT_THROW(cells("GemeinK", {}), UsageError);
    EXPECT_THROW(cells("GemeinK", {{YearFrom, 2024}}), UsageError);
    EXPECT_THROW(cells("Bilanz", {{Year, 2024}}), UsageError);
    EXPECT_THROW(cells("Umsatz", {{Year, 2024}, {YearTo, 2024}}), UsageError);
}

TEST(ReportCatalog, RefusesNumbersThatWouldBecomeOthersOnTheirWay) {
    EXPECT_EQ(cells("GemeinK", {{AccountFrom, 16777216}, {Year, 2024}})[1], Variant(16777216_l));
    EXPECT_EQ(cells("GemeinK", {{AccountFrom, 16777218}, {Year, 2024}})[1], Variant(16777218_l));
    for (const auto selection : {AccountFrom, AccountTo})
        EXPECT_THROW(cells("GemeinK", {{selection, 16777217}, {Year, 2024}}), UsageError);
    for (const auto selection : {EmployeeFrom, EmployeeTo})
        for (const std::string_view list : {"MaKost", "MaStZeit"})
            EXPECT_THROW(cells(list, {{selection, 999999999}}), UsageError);
    try {
        cells("GemeinK", {{AccountTo, 16777217}, {Year, 2024}});
    } catch (const UsageError& error) {
        EXPECT_STREQ(
            error.what(),
            "--konto-bis 16777217 kann nicht ausgewählt werden: Auswahlen haben einfache Genauigkeit, die ab "
            "16777216 nicht jede Zahl kennt (statt dieser 16777216).");
    }
}

TEST(ReportCatalog, ListNamesAreExactAndTheNearestIsFound) {
    EXPECT_EQ(findReport("umsatz"), nullptr);
    EXPECT_EQ(findReportLike("umsatz"), findReport("Umsatz"));
    EXPECT_EQ(findReportLike("was wäre WENN"), findReport("WasWenn"));
    const std::vector<std::string> words{"Umsatz", "MaKost", "MaZeit"};
    EXPECT_EQ(nearestWord("makosten", words), "MaKost");
    EXPECT_EQ(nearestWord("vollkommen anderes", words), std::nullopt);
}

TEST(ReportList, NamesEveryReportAndItsSelections) {
    const auto text = cli::describeReports();
    for (const auto& report : reports())
        EXPECT_THAT(text, ::testing::HasSubstr(std::string(report.listName) + " "));
    EXPECT_THAT(text, ::testing::HasSubstr("--jahr --von --bis --konto-von --konto-bis --monat\n"));
}

TEST(ReportList, DocumentationHasEveryColumn) {
    const auto text = testing::readFile(KVT_SOURCE_FOLDER "/docs/werte.md");
    for (const auto& report : reports())
        for (const auto& column : report.columns)
            EXPECT_THAT(text, ::testing::HasSubstr("| " + std::to_string(column.column) + " | `" +
                                                   std::string(column.name) + "` | "))
                << report.listName;
}

class ParameterArrayTest : public ::testing::Test {
  protected:
    Variant value(std::int32_t row, std::int32_t column) {
        const std::vector<Variant> arguments{row, column};
        return array_.call(array_.idOf(u"value"), arguments);
    }

    ParameterArray array_{2, 3};
};

TEST_F(ParameterArrayTest, AnswersAsTheArrayObjectOfAHost) {
    const std::vector<Variant> place{1_l, 2_l};
    array_.put(array_.idOf(u"Value"), place, Variant(u"x"));
    EXPECT_EQ(value(1, 2), Variant(u"x"));
    EXPECT_TRUE(value(0, 0).isEmpty());
    const auto count = [&](std::int32_t dimension) {
        const std::vector<Variant> arguments{dimension};
        return array_.call(array_.idOf(u"Count"), arguments);
    };
    EXPECT_EQ(count(1), Variant(2_l));
    EXPECT_EQ(count(2), Variant(3_l));
}

TEST_F(ParameterArrayTest, ForeignCellsAndMembersAreRunTimeErrors) {
    const auto errorOf = [](auto&& call) {
        try {
            call();
        } catch (const RuntimeError& error) {
            return error.number();
        }
        return 0L;
    };
    EXPECT_EQ(errorOf([&] { value(2, 0); }), 9);
    EXPECT_EQ(errorOf([&] { value(0, 3); }), 9);
    EXPECT_EQ(errorOf([&] { value(-1, 0); }), 9);
    EXPECT_EQ(errorOf([&] { array_.idOf(u"Gibtsnicht"); }), 438);
}

TEST(ReportCatalog, EveryColumnOfAFileOfValuesIsExplainedInTheGuide) {
    std::ifstream stream(std::filesystem::path(KVT_SOURCE_FOLDER) / "docs" / "werte.md");
    const std::string guide{std::istreambuf_iterator<char>(stream), {}};
    for (const auto& report : reports()) {
        if (!report.isFedByValues())
            continue;
        const auto begin = guide.find("### " + std::string(report.listName) + " (");
        ASSERT_NE(begin, std::string::npos) << report.listName;
        const auto section = guide.substr(begin, guide.find("\n### ", begin) - begin);
        for (const auto& column : report.columns) {
            const auto row = "| " + std::to_string(column.column) + " | `" + std::string(column.name) + "` | ";
            const auto at = section.find(row);
            ASSERT_NE(at, std::string::npos) << report.listName << ": " << row;
            const auto line = section.substr(at, section.find('\n', at) - at);
            EXPECT_NE(line.find("| " + std::string(column.meaning) + " |"), std::string::npos) << line;
            EXPECT_NE(column.meaning, column.name) << "a name explains nothing";
        }
    }
}

} // namespace
} // namespace kvtdruck::catalog
