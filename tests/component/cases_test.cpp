// Selections, signs, months, names: what single reports do with what they are given.
#include "component/cases.h"
#include "values/conversion.h"

#include <algorithm>
#include <limits>

namespace kvtdruck::test {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::Not;
using ::testing::StartsWith;

// Selections

struct Range {
    Cells before;
    Cells after;
    std::optional<std::pair<float, float>> bounds; ///< none: everything is read
};

std::vector<Range> ranges() {
    return {
        {{false, 0.0, 0.0}, {true, 0.0, 0.0}, {}},
        {{false, 2010.0, 2012.0}, {false, 2010.0, 2010.0}, {{2010.0f, 2010.0f}}},
        {{false, 0.0, 2012.0}, {false, 2012.0, 2012.0}, {{2012.0f, 2012.0f}}},
        {{false, 2010.0, 0.0}, {false, 2010.0, 2010.0}, {{2010.0f, 2010.0f}}},
        {{true, 2010.0, 2012.0}, {true, 2010.0, 2012.0}, {}},
        {{Empty{}, Empty{}, Empty{}}, {true, Empty{}, Empty{}}, {}},
        {{u"0", u"2.010", 1.0}, {u"0", u"2.010", u"2.010"}, {{2010.0f, 2010.0f}}},
        {{std::int16_t{0}, std::int32_t{7}, 9.0f},
         {std::int16_t{0}, std::int32_t{7}, std::int32_t{7}},
         {{7.0f, 7.0f}}},
        {{std::int16_t{-1}, 3.0, 4.0}, {std::int16_t{-1}, 3.0, 4.0}, {}},
        {{std::int16_t{5}, 3.0, 4.0}, {std::int16_t{5}, 3.0, 4.0}, {{3.0f, 4.0f}}}, // neither True nor False
    };
}

TEST_F(Cases, YearsAreEverythingOrOne) {
    for (const std::string list : {"Umsatz", "KalkKo", "MatUeber"}) {
        for (const auto& range : ranges()) {
            SCOPED_TRACE(list + " " + ::testing::PrintToString(range.bounds));
            EXPECT_TRUE(print(list, range.before));
            EXPECT_EQ(array->cells[0], range.after) << "the host's own array is changed";
            if (range.bounds)
                EXPECT_EQ(read(list), (Cells{7.0, range.bounds->first, range.bounds->second}));
            else if (list == "Umsatz")
                EXPECT_EQ(read(list), (Cells{7.0}));
            else
                EXPECT_EQ(read(list), (Cells{7.0, 0.0f}));
        }
    }
}

TEST_F(Cases, AccountsAreAllOrOneOfTheYear) {
    for (const std::string list : {"GemeinK", "NeutralA"}) {
        for (auto range : ranges()) {
            for (auto* cells : {&range.before, &range.after})
                cells->insert(cells->end(), {1.0, 2024.0});
            EXPECT_TRUE(print(list, range.before));
            EXPECT_EQ(array->cells[0], range.after);
            // Other than the years, anything but True reads the bounds.
            const auto bounds = range.bounds.value_or(std::pair{0.0f, 0.0f});
            EXPECT_EQ(read(list), (Cells{7.0, 2024.0f, bounds.first, bounds.second}));
        }
    }
}

TEST_F(Cases, EmployeesAreAllOrOne) {
    for (const std::string list : {"MaKost", "MaZeit", "MaStKost", "MaStZeit"}) {
        const bool sheet = list.starts_with("MaSt");
        for (auto range : ranges()) {
            if (range.before[0] == Variant(std::int16_t{5}))
                range.bounds.reset(); // only False reads the numbers here
            for (auto* cells : {&range.before, &range.after})
                cells->insert(cells->end(), {false, 1.0, 6.0});
            EXPECT_TRUE(print(list, range.before));
            EXPECT_EQ(array->cells[0], range.after);
            const auto bounds = range.bounds.value_or(std::pair{0.0f, 0.0f});
            EXPECT_EQ(read(list), (Cells{7.0, bounds.first, bounds.second, 1.0f, sheet ? 13.0f : 6.0f}));
        }
    }
    EXPECT_TRUE(print("MaKost", {true, 0.0, 0.0, true, 2.0, 5.0}));
    EXPECT_EQ(read("MaKost"), (Cells{7.0, 0.0f, 0.0f, 13.0f, 13.0f})) << "the whole year";
}

TEST_F(Cases, TheCompanyReportReadsARangeAsGiven) {
    EXPECT_TRUE(print("Firma", {false, 2010.0, 2012.4}));
    EXPECT_EQ(array->cells[0], (Cells{false, 2010.0, 2012.4}));
    EXPECT_EQ(read("Firma"), (Cells{7.0, std::int16_t{2010}, std::int16_t{2012}}));
    EXPECT_TRUE(print("Firma", {false, 0.0, 2012.0}));
    EXPECT_EQ(read("Firma"), (Cells{7.0, std::int16_t{0}, std::int16_t{2012}}));
    EXPECT_TRUE(print("Firma", {false, 0.0, 0.0}));
    EXPECT_EQ(array->cells[0][0], Variant(true));
    EXPECT_FALSE(print("Firma", {false, 1.0, 40000.0}));
    EXPECT_THAT(reports(), ElementsAre(runtimeError("clsDruck_Firma", "Lese_Firmendaten", ErrorNumber::Overflow)));
}

TEST_F(Cases, AGroupBeginsWhereAKeyGrowsOrShrinks) {
    auto& months = host.world.readers[named("MaKost").reader];
    months.count = 6;
    months.values[u"FJahr"] = {2024.0, 2024.0, 2023.0, 2025.0, std::numeric_limits<double>::quiet_NaN(), 2020.0};
    EXPECT_TRUE(print("MaKost", {true, 0.0, 0.0, true, 0.0, 0.0}));
    EXPECT_EQ(std::count(calls().begin(), calls().end(), field("Seitenwechsel", "2")), 2)
        << "what is no number differs from nothing";
}

TEST_F(Cases, OnlyTrueAllowsTheEmployeeList) {
    for (const Variant& cell : {Variant(false), Variant(), Variant(1.0), Variant(Null{})}) {
        reports().clear();
        EXPECT_FALSE(print("MitUeber", Cells{cell}));
        EXPECT_THAT(reports(), ElementsAre(message("clsDruck_MitarbeiterUebersicht", "Lese_Mitarbeiter",
                                                   "Die Mitarbeiter konnten nicht gelesen werden.")));
    }
    EXPECT_TRUE(print("MitUeber", Cells{std::int16_t{-1}}));
    EXPECT_EQ(read("MitUeber"), (Cells{7.0, std::int16_t{0}}));
    EXPECT_THAT(calls(), Contains(variable("UebMitte", "Für alle Jahre", kTypeText)));
    EXPECT_THAT(calls(), Contains(variable("Fuerjahr", "0")));
}

TEST_F(Cases, CellsThatCannotBeComparedAreErrorsOfTheReadProcedure) {
    for (const auto& report : allReports()) {
        if (report.reader.empty() || report.list == "MitUeber")
            continue;
        SCOPED_TRACE(report.list);
        reports().clear();
        EXPECT_FALSE(print(report.list, {false, u"viele", 0.0, 1.0, 2.0, 3.0}));
        EXPECT_THAT(reports(), ElementsAre(runtimeError(report.className, report.read, ErrorNumber::TypeMismatch)));
        reports().clear();
        EXPECT_FALSE(print(report.list, Cells{false}));
        EXPECT_THAT(reports(),
                    ElementsAre(runtimeError(report.className, report.read, ErrorNumber::SubscriptOutOfRange)));
    }
}

TEST_F(Cases, NullTakesTheBranchThatNeedsNoMatch) {
    EXPECT_FALSE(print("Umsatz", {false, Null{}, 2012.0}));
    EXPECT_EQ(array->cells[0][2], Variant(Null{})) << "the lower bound overwrites the upper one";
    EXPECT_THAT(reports(),
                ElementsAre(runtimeError("clsDruck_Umsatz", "Lese_Umsatz", ErrorNumber::InvalidUseOfNull)));
    reports().clear();
    EXPECT_FALSE(print("Umsatz", {Null{}, Null{}, 0.0})) << "neither False nor True: the years are read";
    EXPECT_EQ(reports().size(), 1u);
}

// Accounts

TEST_F(Cases, TheMonthsAmountsAndNameFollowTheCell) {
    set("GemeinK", u"MWIst_03", 33.5);
    set("GemeinK", u"MWSoll_03", -3.0);
    for (const Variant& month : {Variant(3.0), Variant(u"3"), Variant(std::int16_t{3})}) {
        host.world.engineCalls.clear();
        EXPECT_TRUE(print("GemeinK", {true, 0.0, 0.0, month, 2024.0}));
        EXPECT_THAT(calls(), Contains(field("MonatIst", "33,5")));
        EXPECT_THAT(calls(), Contains(field("MonatSoll", "-3")));
        EXPECT_THAT(calls(), Contains(field("MonatText", "März", kTypeText)));
    }
    for (const std::string list : {"GemeinK", "NeutralA"}) {
        for (const Variant& month : {Variant(13.0), Variant(), Variant(0.0), Variant(2.5), Variant(Null{})}) {
            host.world.engineCalls.clear();
            EXPECT_TRUE(print(list, {true, 0.0, 0.0, month, 2024.0}));
            EXPECT_FALSE(defines("MonatIst"));
            EXPECT_FALSE(defines("MonatSoll"));
            EXPECT_THAT(calls(), Contains(field("MonatText", "", kTypeText)));
        }
        EXPECT_FALSE(print(list, {true, 0.0, 0.0, u"März", 2024.0}));
        EXPECT_EQ(reports().back(),
                  runtimeError(named(list).className, "Definiere_Übergebe_Felder", ErrorNumber::TypeMismatch));
    }
}

TEST_F(Cases, MonthNames) {
    const char* names[] = {"Januar", "Februar", "März",      "April",   "Mai",      "Juni",
                           "Juli",   "August",  "September", "Oktober", "November", "Dezember"};
    for (int month = 1; month <= 12; ++month) {
        host.world.engineCalls.clear();
        EXPECT_TRUE(print("GemeinK", {true, 0.0, 0.0, std::int32_t{month}, 2024.0}));
        EXPECT_THAT(calls(), Contains(field("MonatText", names[month - 1], kTypeText)));
    }
}

TEST_F(Cases, NeutralExpensesReverseTheSignOfEveryKindButZero) {
    set("NeutralA", u"JWIst", 1500.0);
    set("NeutralA", u"JWSoll", -200.0);
    set("NeutralA", u"MWIst_03", 12.0);
    set("NeutralA", u"MWSoll_03", 0.0);
    const Cells row{true, 0.0, 0.0, 3.0, 2024.0};
    set("NeutralA", u"KtoBetrArt", 0.0f);
    EXPECT_TRUE(print("NeutralA", row));
    EXPECT_THAT(calls(), Contains(field("JWIst", "1500")));
    EXPECT_THAT(calls(), Contains(field("JWSoll", "-200")));
    EXPECT_THAT(calls(), Contains(field("MonatIst", "12")));
    for (const float kind : {1.0f, -1.0f, 0.5f}) {
        host.world.engineCalls.clear();
        set("NeutralA", u"KtoBetrArt", kind);
        EXPECT_TRUE(print("NeutralA", row));
        EXPECT_THAT(calls(), Contains(field("JWIst", "-1500")));
        EXPECT_THAT(calls(), Contains(field("JWSoll", "200")));
        EXPECT_THAT(calls(), Contains(field("MonatIst", "-12")));
        EXPECT_THAT(calls(), Contains(field("MonatSoll", "0"))) << "no negative zero";
        EXPECT_THAT(calls(), Contains(field("KtoBetrArt", toUtf8(textOf(kind, germanLocale())))));
    }
    host.world.engineCalls.clear();
    EXPECT_TRUE(print("GemeinK", row));
    EXPECT_THAT(calls(), Contains(field("JWIst", "1500"))) << "overheads keep theirs";
}

TEST_F(Cases, TheMonthsAmountsAreTakenOneByOneOrBothAtFirst) {
    const std::pair<const char*, bool> reportsAndFirstDefined[] = {{"GemeinK", true}, {"NeutralA", false}};
    for (const auto& [list, firstDefined] : reportsAndFirstDefined) {
        set(list, u"MWSoll_03", u"keine Zahl");
        host.world.engineCalls.clear();
        reports().clear();
        EXPECT_FALSE(print(list, {true, 0.0, 0.0, 3.0, 2024.0}));
        EXPECT_EQ(defines("MonatIst"), firstDefined);
        EXPECT_FALSE(defines("MonatSoll"));
        EXPECT_THAT(reports(), ElementsAre(runtimeError(named(list).className, "Definiere_Übergebe_Felder",
                                                        ErrorNumber::TypeMismatch)));
    }
}

// Employees

TEST_F(Cases, NamesAreTrimmedAndJoined) {
    const std::tuple<StringView, StringView, const char*> cases[] = {{u" Jörg ", u" Müller", "Jörg Müller"},
                                                                     {u"", u" Groß ", "Groß"},
                                                                     {u"   ", u"Klein", "Klein"},
                                                                     {u"Uwe", u"", "Uwe "}};
    for (const std::string list : {"MaKost", "MaZeit"}) {
        for (const auto& [first, last, expected] : cases) {
            host.world.engineCalls.clear();
            set(list, u"Vorname", first);
            set(list, u"Name", last);
            EXPECT_TRUE(print(list, {true, 0.0, 0.0, true}));
            EXPECT_THAT(calls(), Contains(field("Name", expected, kTypeText)));
        }
    }
}

TEST_F(Cases, GettersOfOtherNamesFeedTheirFields) {
    set("MaZeit", u"IBerStdTag", 7.5);
    set("MaZeit", u"SBerStdTag", 8.25);
    set("MaZeit", u"IKrank", 2.5f);
    EXPECT_TRUE(print("MaZeit", {true, 0.0, 0.0, true}));
    EXPECT_THAT(calls(), Contains(field("IBerSzdTag", "7,5")));
    EXPECT_THAT(calls(), Contains(field("SBerSzdTag", "8,25")));
    EXPECT_THAT(calls(), Contains(field("IKrank", "2,5")));
    set("MaStKost", u"ISonst", 3.0f);
    EXPECT_TRUE(print("MaStKost", {true, 0.0, 0.0}));
    EXPECT_THAT(calls(), Contains(field("ISONST", "3")));
}

TEST_F(Cases, MasterSheetsLeaveMissingDatesEmpty) {
    for (const std::string list : {"MaStKost", "MaStZeit"}) {
        for (const Variant& missing :
             {Variant(Null{}), Variant(Date{0}), Variant(), Variant(0.0), Variant(u"kein Datum")}) {
            host.world.engineCalls.clear();
            set(list, u"ADat", missing);
            EXPECT_TRUE(print(list, {true, 0.0, 0.0}));
            EXPECT_THAT(calls(), Contains(variable("ADat", "", kTypeText)));
        }
        set(list, u"GDat", Date{0.5});
        set(list, u"EDat", dateOf(2021, 12, 31, 12, 30, 0));
        EXPECT_TRUE(print(list, {true, 0.0, 0.0}));
        EXPECT_THAT(calls(), Contains(variable("GDat", "30.12.1899", kTypeText))) << "a time alone is no zero date";
        EXPECT_THAT(calls(), Contains(variable("EDat", "31.12.2021", kTypeText)));
        EXPECT_FALSE(defines("Seitenwechsel")) << "defined at a break alone";
    }
}

TEST_F(Cases, TheEmployeeListHasGeneralDateTexts) {
    set("MitUeber", u"Eintrittsdatum", dateOf(2015, 4, 1));
    set("MitUeber", u"Austrittsdatum", Date{0});
    set("MitUeber", u"Plz", 1067.0);
    EXPECT_TRUE(print("MitUeber", Cells{true}));
    EXPECT_THAT(calls(), Contains(field("Eintrittsdatum", "01.04.2015", kTypeText)));
    EXPECT_THAT(calls(), Contains(field("Austrittsdatum", "00:00:00", kTypeText)));
    EXPECT_THAT(calls(), Contains(field("Plz", "1067")));
}

// The company's years

TEST_F(Cases, AYearWithoutHolidaysPrintsItsPage) {
    fill(host.world, 2);
    auto& holidays = host.world.readers["clsZugFeiertage"];
    holidays.count = 0;
    EXPECT_TRUE(print("Firma", {true, 0.0, 0.0}));
    EXPECT_EQ(std::count(calls().begin(), calls().end(), "LlPrint() = 0"), 2);
    EXPECT_THAT(calls(), Not(Contains(StartsWith("LlPrintFields()"))));
    EXPECT_THAT(calls(), Contains(field("FDatum", "00:00:00", kTypeText)));
    ASSERT_EQ(holidays.reads.size(), 2u);
    EXPECT_EQ(holidays.reads[0], (Cells{u"Sachsen", std::int16_t{2023}}));
    EXPECT_EQ(holidays.reads[1], (Cells{u"Sachsen", std::int16_t{2024}}));
}

TEST_F(Cases, HolidaysThatCannotBeReadStopTheReport) {
    for (const StringView operation : {u"Verbinde", u"LeseFeiertage"}) {
        Host fresh;
        fill(fresh.world, 1);
        fresh.world.readers["clsZugFeiertage"].answers[String(operation)] = false;
        EXPECT_FALSE(fresh.print({.list = u"Firma", .array = fresh.world.array({{true, 0.0, 0.0}})}));
        EXPECT_THAT(fresh.world.reports, ElementsAre(message("clsDruck_Firma", "Lese_Feiertage",
                                                             "Die Feiertage konnten nicht gelesen werden")));
    }
}

TEST_F(Cases, TheProgressCounterStartsAgain) {
    host.world.readers["clsZugUmsatz"].count = 250;
    EXPECT_TRUE(print("Umsatz", {true, 0.0, 0.0}));
    std::vector<std::string> steps;
    for (const auto& call : calls())
        if (call.starts_with("LlPrintSetBoxText"))
            steps.push_back(call.substr(call.find(", ") + 2));
    ASSERT_EQ(steps.size(), 250u);
    EXPECT_EQ(steps[0], "2) = 0");
    EXPECT_EQ(steps[99], "101) = 0");
    EXPECT_EQ(steps[100], "1) = 0");
    EXPECT_EQ(steps[101], "2) = 0");
}

// Values

TEST_F(Cases, NumbersTravelInTheUsersNotation) {
    set("KalkKo", u"DAfa", 1234.5);
    EXPECT_TRUE(print("KalkKo", {true, 0.0, 0.0}));
    EXPECT_THAT(calls(), Contains(variable("DAfa", "1234,5")));
    host.world.userLocale.decimalSign = u".";
    EXPECT_TRUE(print("KalkKo", {true, 0.0, 0.0}));
    EXPECT_THAT(calls(), Contains(variable("DAfa", "1234.5")));
}

TEST_F(Cases, AGetterThatGivesNoNumberIsATypeMismatch) {
    for (const Variant& value : {Variant(Null{}), Variant(u"viel")}) {
        reports().clear();
        set("KalkKo", u"DAfa", value);
        EXPECT_FALSE(print("KalkKo", {true, 0.0, 0.0}));
        EXPECT_THAT(reports(), ElementsAre(runtimeError("clsDruck_KalkKosten", "Definiere_Übergebe_Variablen",
                                                        ErrorNumber::TypeMismatch)));
    }
}

TEST_F(Cases, AYearOutsideAnIntegerIsAnOverflowBetweenProcedures) {
    set("Umsatz", u"Jahr", 40000.0f);
    EXPECT_FALSE(print("Umsatz", {true, 0.0, 0.0}));
    EXPECT_THAT(reports(), ElementsAre(runtimeError("clsDruck_Umsatz", "fkt_Drucken", ErrorNumber::Overflow)));
}

TEST_F(Cases, YearsRoundToTheEvenNumber) {
    set("Umsatz", u"Jahr", 2010.5f);
    EXPECT_TRUE(print("Umsatz", {true, 0.0, 0.0}));
    EXPECT_THAT(calls(), Contains(variable("Fuerjahr", "2010")));
}

} // namespace
} // namespace kvtdruck::test
