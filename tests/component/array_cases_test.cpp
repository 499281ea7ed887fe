// Cells of the host's parameter array: what the reports that are fed by it do with them.
#include "component/cases.h"
#include "values/conversion.h"

#include <algorithm>

namespace kvtdruck::test {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::StartsWith;

std::vector<std::string> arrayFedLists() {
    std::vector<std::string> lists;
    for (const auto& report : allReports())
        if (report.reader.empty())
            lists.push_back(report.list);
    return lists;
}

class ArrayFed : public Cases, public ::testing::WithParamInterface<std::string> {
  protected:
    bool print(const std::function<void(Array&)>& change, std::size_t rows = 1) {
        return printValues(GetParam(), change, rows);
    }
};

INSTANTIATE_TEST_SUITE_P(All, ArrayFed, ::testing::ValuesIn(arrayFedLists()),
                         [](const auto& each) { return each.param; });

/// The columns of the array that the report reads, found by what a print asks for.
std::set<std::size_t> columnsRead(const std::string& list) {
    static const std::map<std::string, std::set<std::size_t>> columns = [] {
        const auto span = [](std::set<std::size_t> set, std::size_t from, std::size_t to) {
            for (auto column = from; column <= to; ++column)
                set.insert(column);
            return set;
        };
        std::map<std::string, std::set<std::size_t>> result;
        result["Bilanz"] = span({}, 1, 14);
        result["BsEMa"] = span({}, 3, 17);
        result["BsEStd"] = span({}, 3, 14);
        result["BsEGes"] = span({}, 3, 14);
        result["KalkW"] = span({}, 1, 27);
        result["WasWenn"] = span({}, 1, 50);
        result["UmsatzHW"] = span({}, 1, 9);
        return result;
    }();
    return columns.at(list);
}

TEST_P(ArrayFed, EachMissingColumnIsReportedOnce) {
    const auto columns = columnsRead(GetParam());
    for (std::size_t width = 0; width <= *columns.rbegin(); ++width) {
        reports().clear();
        EXPECT_FALSE(print([&](Array& values) {
            for (auto& row : values.cells)
                row.resize(width);
        })) << width;
        ASSERT_EQ(reports().size(), 1u);
        EXPECT_EQ(reports()[0].className, named(GetParam()).className);
        EXPECT_EQ(reports()[0].number, 9);
    }
    EXPECT_TRUE(print([&](Array& values) {
        for (auto& row : values.cells)
            row.resize(*columns.rbegin() + 1);
    })) << "further columns are not read";
}

TEST_P(ArrayFed, ANullIsReportedWhereItIsRead) {
    for (const auto column : columnsRead(GetParam())) {
        SCOPED_TRACE(column);
        reports().clear();
        const bool done = print([&](Array& values) { values.cells[0][column] = Null{}; });
        if (GetParam() == "KalkW" && column == 27) {
            EXPECT_TRUE(done) << "a comparison with Null is no match";
            continue;
        }
        EXPECT_FALSE(done);
        ASSERT_EQ(reports().size(), 1u);
        EXPECT_EQ(reports()[0].number, 94);
        EXPECT_THAT(reports()[0].procedure, StartsWith("Definiere_Übergebe_"));
    }
}

TEST_P(ArrayFed, TextsPassLetterByLetterAndEmptyIsAnEmptyText) {
    EXPECT_TRUE(print([&](Array& values) {
        for (const auto column : columnsRead(GetParam()))
            if (!(GetParam() == "KalkW" && column == 27))
                values.cells[0][column] = u" x\"1.5 ";
    }));
    EXPECT_THAT(calls(), Contains(::testing::HasSubstr("\" x\\\"1.5 \"")));
    host.world.engineCalls.clear();
    EXPECT_TRUE(print([&](Array& values) {
        for (auto& row : values.cells)
            std::fill(row.begin(), row.end(), Variant());
    }));
    const auto name = names(named(GetParam()).variables).back().first;
    EXPECT_THAT(calls(), Contains(variable(name, "")));
    EXPECT_TRUE(reports().empty());
}

TEST_P(ArrayFed, PrintsAsManyRowsAsTheArrayAnswers) {
    for (const std::size_t rows : {std::size_t{0}, std::size_t{1}, std::size_t{3}}) {
        host.world.engineCalls.clear();
        EXPECT_TRUE(print([](Array&) {}, rows));
        const auto lines = std::count(calls().begin(), calls().end(), "LlPrintFields() = 0");
        EXPECT_EQ(static_cast<std::size_t>(lines), GetParam() == "Bilanz" ? 1 : rows);
    }
}

TEST_P(ArrayFed, MoreRowsThanTheCounterHoldsAreAnOverflow) {
    if (GetParam() == "Bilanz") {
        EXPECT_TRUE(print([](Array& values) { values.count = 40000; })) << "the sheet asks for no rows";
        return;
    }
    EXPECT_FALSE(print([](Array& values) { values.count = 32769; }));
    EXPECT_THAT(reports(),
                ElementsAre(runtimeError(named(GetParam()).className, "fkt_Drucken", ErrorNumber::Overflow)));
}

TEST_F(Cases, RowZeroOfTheTotalCarriesTheHours) {
    EXPECT_TRUE(printValues("BsEGes", [](Array& values) {
        values.cells[0][9] = 1600.0;
        values.cells[0][14] = u"-1,5";
    }));
    EXPECT_THAT(calls(), Contains(variable("SStd", "1600")));
    EXPECT_THAT(calls(), Contains(field("SDM", "1600")));
    EXPECT_THAT(calls(), Contains(variable("DStdPr", "-1,5")));
    EXPECT_THAT(calls(), Contains(field("DPR", "-1,5")));
}

TEST_F(Cases, TheUnitSwitchChoosesTheTitle) {
    const std::pair<Variant, const char*> cases[] = {{0.0, "Stunde"}, {Variant(), "Stunde"}, {u"0", "Stunde"},
                                                     {1.0, "Minute"}, {60.0, "Minute"},      {true, "Minute"}};
    for (const auto& [cell, unit] : cases) {
        host.world.engineCalls.clear();
        EXPECT_TRUE(
            printValues("KalkW", [&, unitSwitch = cell](Array& values) { values.cells[0][27] = unitSwitch; }));
        EXPECT_THAT(calls(),
                    Contains(variable("Ueberschrift", std::string("Kalkulationswerte je ") + unit, kTypeText)));
    }
    EXPECT_FALSE(printValues("KalkW", [](Array& values) { values.cells[0][27] = u"je Stunde"; }));
    EXPECT_THAT(reports(),
                ElementsAre(runtimeError("clsDruck_Kalkwerte", "fkt_Drucken", ErrorNumber::TypeMismatch)));
}

TEST_F(Cases, TheCurrencyMarkerOfTheWhatIfReport) {
    host.world.readers["clsZugFirmaAllg"].values[u"Waehrung"] = {u"CHF"};
    const std::tuple<Variant, const char*, std::int32_t> cases[] = {{u"EUR", "CHF", kTypeText},
                                                                    {u"eur", "eur", kTypeNumeric},
                                                                    {Variant(), "", kTypeNumeric},
                                                                    {12.5, "12,5", kTypeNumeric}};
    for (const auto& [cell, text, type] : cases) {
        host.world.engineCalls.clear();
        EXPECT_TRUE(printValues("WasWenn", [&, marker = cell](Array& values) { values.cells[0][18] = marker; }));
        EXPECT_THAT(calls(), Contains(field("FWaehr", text, type)));
    }
    EXPECT_THAT(calls(), Contains(variable("SKnz", "12,5"))) << "the same cell is a variable, too";
}

TEST_F(Cases, TheTradeTurnoversYearStandsInRowOne) {
    EXPECT_TRUE(printValues(
        "UmsatzHW", [](Array& values) { values.cells[1][0] = std::int16_t{2024}; }, 2));
    EXPECT_THAT(calls(), Contains(variable("Jahr", "2024")));
    EXPECT_EQ(std::count(calls().begin(), calls().end(), "LlPrintFields() = 0"), 2) << "row 1 is a line as well";
    EXPECT_FALSE(printValues("UmsatzHW", [](Array& values) { values.cells.resize(1); }));
    EXPECT_THAT(reports(), ElementsAre(runtimeError("clsDruckUmsatzHW", "Definiere_Übergebe_Variablen",
                                                    ErrorNumber::SubscriptOutOfRange)));
}

} // namespace
} // namespace kvtdruck::test
