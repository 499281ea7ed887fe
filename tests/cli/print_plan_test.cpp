#include "cli/print_plan.h"

#include "catalog/usage_error.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kvtdruck::cli {
namespace {

using catalog::Axis;
using catalog::Selection;
using catalog::Selections;
using catalog::UsageError;
using enum catalog::Selection;
using ::testing::ElementsAre;

class PrintPlan : public ::testing::Test {
  protected:
    /// The prints of a selection, given which years there are, and which accounts or employees in each.
    std::vector<SinglePrint> plan(std::string_view list, const Selections& selections) {
        const auto& report = *catalog::findReport(list);
        return planPrints(
            report.axes, catalog::rangesOf(report, selections), [this](const Axis& axis, const Selections& chosen) {
                ++asked;
                if (axis.from == YearFrom)
                    return years;
                return chosen.contains(Year) && chosen.at(Year) == 2020 ? std::vector<Extent>{} : numbers;
            });
    }

    std::vector<std::int32_t> values(std::string_view list, const Selections& selections, Selection lower,
                                     Selection upper) {
        std::vector<std::int32_t> result;
        for (const auto& print : plan(list, selections)) {
            EXPECT_EQ(print.selections.at(lower), print.selections.at(upper)) << "the component takes one value";
            result.push_back(print.selections.at(lower));
        }
        return result;
    }

    template <class Error = NothingSelected>
    std::string messageOf(std::string_view list, const Selections& selections) {
        try {
            plan(list, selections);
        } catch (const Error& error) {
            return error.what();
        }
        return "";
    }

    std::vector<Extent> years{{2019, 2019}, {2020, 2020}, {2021, 2021}, {2024, 2024}};
    std::vector<Extent> numbers{{4, 4}, {5, 5}, {7, 7}, {100, 199}, {200, 200}};
    int asked = 0;
};

TEST_F(PrintPlan, WithoutASelectionTheComponentPrintsEverythingAtOnce) {
    for (const char* list : {"Umsatz", "MaStKost", "Firma", "MitUeber", "Bilanz"})
        EXPECT_EQ(plan(list, {}).size(), 1u) << list;
    EXPECT_EQ(asked, 0);
}

TEST_F(PrintPlan, ARangeIsOnePrintForEachValueThatExists) {
    for (const char* list : {"Umsatz", "KalkKo", "MatUeber"})
        EXPECT_THAT(values(list, {{YearFrom, 2020}, {YearTo, 2024}}, YearFrom, YearTo),
                    ElementsAre(2020, 2021, 2024));
    for (const char* list : {"MaKost", "MaZeit", "MaStKost", "MaStZeit"})
        EXPECT_THAT(values(list, {{EmployeeFrom, 5}, {EmployeeTo, 100}}, EmployeeFrom, EmployeeTo),
                    ElementsAre(5, 7, 100));
    EXPECT_THAT(plan("Umsatz", {{YearFrom, 2020}, {YearTo, 2024}})[1].bookmark, ElementsAre("2021"));
    EXPECT_THAT(plan("MaZeit", {{EmployeeFrom, 5}, {EmployeeTo, 7}})[1].bookmark, ElementsAre("Mitarbeiter 7"));
}

TEST_F(PrintPlan, AnOpenRangeReachesToTheEnd) {
    EXPECT_THAT(values("Umsatz", {{YearFrom, 2021}}, YearFrom, YearTo), ElementsAre(2021, 2024));
    EXPECT_THAT(values("Umsatz", {{YearTo, 2020}}, YearFrom, YearTo), ElementsAre(2019, 2020));
}

TEST_F(PrintPlan, OneValueIsOnePrintWithoutABookmark) {
    const auto prints = plan("Umsatz", {{Year, 2024}});
    ASSERT_EQ(prints.size(), 1u);
    EXPECT_THAT(prints[0].bookmark, ElementsAre());
    EXPECT_EQ(prints[0].selections, (Selections{{YearFrom, 2024}, {YearTo, 2024}}));
}

TEST_F(PrintPlan, ARangeThatTheComponentTakesIsLeftAsItIs) {
    const auto prints = plan("Firma", {{YearFrom, 2020}, {YearTo, 2024}});
    ASSERT_EQ(prints.size(), 1u);
    EXPECT_EQ(prints[0].selections, (Selections{{YearFrom, 2020}, {YearTo, 2024}}));
}

TEST_F(PrintPlan, AccountsAreSelectedWithinEachYear) {
    EXPECT_THAT(values("GemeinK", {}, Year, Year), ElementsAre(2019, 2020, 2021, 2024));
    const auto prints = plan("GemeinK", {{YearFrom, 2020}, {YearTo, 2021}, {AccountFrom, 150}, {Month, 3}});
    ASSERT_EQ(prints.size(), 2u) << "no account in 2020";
    EXPECT_EQ(prints[0].selections, (Selections{{Year, 2021}, {AccountFrom, 150}, {AccountTo, 150}, {Month, 3}}));
    EXPECT_EQ(prints[1].selections.at(AccountFrom), 200);
    EXPECT_THAT(prints[1].bookmark, ElementsAre("2021", "Konto 200"));
}

TEST_F(PrintPlan, AnAccountThatStandsForARangeIsPrintedOnce) {
    numbers = {{100, 199}, {150, 180}, {200, 299}};
    EXPECT_THAT(values("GemeinK", {{Year, 2024}, {AccountFrom, 170}, {AccountTo, 250}}, AccountFrom, AccountTo),
                ElementsAre(170, 200));
}

TEST_F(PrintPlan, WhatIsNotThereIsSaidWithWhatIs) {
    EXPECT_EQ(messageOf("Umsatz", {{Year, 2030}}), "Keine Daten für 2030; vorhanden: 2019–2021, 2024.");
    EXPECT_EQ(messageOf("Firma", {{Year, 2030}}), "Keine Daten für 2030; vorhanden: 2019–2021, 2024.");
    EXPECT_EQ(messageOf("GemeinK", {{YearFrom, 2022}, {YearTo, 2023}}),
              "Keine Daten für 2022–2023. Jahre mit Daten: 2019–2021, 2024.");
    EXPECT_EQ(messageOf("KalkKo", {{YearFrom, 2030}}),
              "Keine Daten für die Zeit ab 2030. Jahre mit Daten: 2019–2021, 2024.");
    EXPECT_EQ(messageOf("MaStKost", {{EmployeeFrom, 8}, {EmployeeTo, 9}}),
              "Keine Daten für Mitarbeiter 8–9. Mitarbeiter mit Daten: 4–5, 7, 100–200.");
    EXPECT_EQ(messageOf("GemeinK", {{Year, 2024}, {AccountFrom, 6}, {AccountTo, 6}}),
              "Keine Daten für Konto 6; vorhanden: 4–5, 7, 100–200.");
}

TEST_F(PrintPlan, WhereNothingExistsTheComponentIsAskedAndSaysSo) {
    years.clear();
    EXPECT_THAT(values("Umsatz", {{YearFrom, 2021}}, YearFrom, YearTo), ElementsAre(2021));
    EXPECT_THAT(values("GemeinK", {}, Year, Year), ElementsAre(0));
}

TEST_F(PrintPlan, NothingMoreIsPrintedThanWasAskedFor) {
    numbers = {{0, 0}, {1, 1}};
    EXPECT_EQ(messageOf<UsageError>("MaStKost", {{EmployeeFrom, 0}, {EmployeeTo, 1}}),
              "Mitarbeiter 0 kann nicht einzeln gedruckt werden, nur alle Mitarbeiter zusammen.");
    EXPECT_EQ(messageOf<UsageError>("Umsatz", {{YearFrom, 2024}, {YearTo, 2020}}),
              "Die Auswahl „Jahre von 2024 bis 2020“ ist verkehrt herum.");
}

} // namespace
} // namespace kvtdruck::cli
