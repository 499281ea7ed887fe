// How readers walk through their records, on every kind of database.
#include "kvtzug/readers_fixture.h"
#include "values/calendar.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace kvtdruck::test {
namespace {

class ManyYears : public Readers {
  protected:
    static constexpr int kYears = 3000;

    void SetUp() override {
        Readers::SetUp();
        insertCompany();
        std::string rows;
        for (int year = 1; year <= kYears; ++year)
            rows +=
                (rows.empty() ? "(1, " : ", (1, ") + std::to_string(year) + ", " + std::to_string(year * 1.5) + ")";
        execute("INSERT INTO umsatz (fnr, jahr, iumsatzdm) VALUES " + rows);
    }
};

TEST_F(ManyYears, RecordsComeOnceEachAcrossBlocks) {
    const auto turnover = reader(u"clsZugUmsatz");
    turnover.call(u"LeseUmsatzAlle", {1.0});
    int year = 0;
    for (; !turnover.truth(u"EOF"); turnover.call(u"MoveNext")) {
        ASSERT_EQ(turnover.number(u"Jahr"), ++year);
        ASSERT_EQ(turnover.number(u"IUmsatzDM"), year * 1.5);
    }
    EXPECT_EQ(year, kYears);
}

TEST_F(ManyYears, MoveFirstAsksTheDatabaseOnlyWhenTheFirstRecordIsNoLongerInHand) {
    const auto turnover = reader(u"clsZugUmsatz");
    turnover.call(u"LeseUmsatzAlle", {1.0});
    EXPECT_EQ(queries_, 1);
    EXPECT_TRUE(turnover.truth(u"MoveFirst"));
    EXPECT_TRUE(turnover.truth(u"MoveNext"));
    EXPECT_TRUE(turnover.truth(u"MoveFirst"));
    EXPECT_EQ(turnover.number(u"Jahr"), 1);
    EXPECT_EQ(queries_, 1);
    turnover.column(u"Jahr");
    const auto before = queries_;
    EXPECT_TRUE(turnover.truth(u"MoveFirst"));
    EXPECT_EQ(queries_, before + 1);
    EXPECT_EQ(turnover.number(u"Jahr"), 1);
    EXPECT_EQ(turnover.numbers(u"Jahr").size(), std::size_t(kYears));
}

TEST_F(ManyYears, YearsOfAccountsComeOnceEachHoweverManyAccountsThereAre) {
    std::string rows;
    for (int account = 1; account <= 3000; ++account)
        rows += (rows.empty() ? "(1, " : ", (1, ") + std::to_string(2020 + account % 3 * 2) + ", " +
                std::to_string(account) + ", " + std::to_string(account) + ", " + std::to_string(1 + account % 2) +
                ")";
    execute("INSERT INTO konten (fnr, fjahr, vkonto, ekonto, kontenart) VALUES " + rows);
    const auto years = reader(u"clsZugKontenJahre");
    years.call(u"LeseKontenJahre", {1.0});
    EXPECT_THAT(years.numbers(u"FJahr"), testing::ElementsAre(2020, 2022, 2024));
    years.call(u"MoveFirst");
    EXPECT_THAT(years.numbers(u"FJahr"), testing::ElementsAre(2020, 2022, 2024));
}

TEST_F(ManyYears, AReaderMayGoAnywhereOnItsWalk) {
    auto turnover = std::make_unique<ReaderAccess>(reader(u"clsZugUmsatz"));
    turnover->call(u"LeseUmsatzAlle", {1.0});
    turnover->call(u"MoveNext"); // the next rows are on their way
    turnover->call(u"LeseUmsatzVonBis", {1.0, 5.0f, 2000.0f});
    EXPECT_EQ(turnover->numbers(u"Jahr").size(), 1996u);
    turnover->call(u"LeseUmsatzAlle", {1.0});
    turnover->call(u"MoveNext");
    turnover.reset();
}

TEST_F(ManyYears, AGetterThatIsFirstUsedFarIntoTheDataGivesItsValue) {
    const auto turnover = reader(u"clsZugUmsatz");
    turnover.call(u"LeseUmsatzAlle", {1.0});
    for (int year = 1; year < 2500; ++year)
        turnover.call(u"MoveNext");
    EXPECT_EQ(turnover.number(u"IUmsatzDM"), 2500 * 1.5);
    EXPECT_EQ(turnover.number(u"Jahr"), 2500);
    const auto before = queries_;
    EXPECT_EQ(turnover.numbers(u"IUmsatzDM").back(), kYears * 1.5);
    EXPECT_LE(queries_, before + 1) << "known from then on";
}

/// What is shown stays whole, and what follows is not lost.
TEST_F(ManyYears, ARecordThatGoesWhileItIsInHandKeepsItsValues) {
    const auto turnover = reader(u"clsZugUmsatz");
    turnover.call(u"LeseUmsatzAlle", {1.0});
    for (int year = 1; year < 2000; ++year)
        turnover.call(u"MoveNext");
    ASSERT_EQ(turnover.number(u"Jahr"), 2000);
    execute("DELETE FROM umsatz WHERE jahr = 2000");
    EXPECT_EQ(turnover.number(u"IUmsatzDM"), 0) << "nobody has asked for it in time";
    EXPECT_EQ(turnover.number(u"SUmsatzDM"), 0);
    EXPECT_EQ(turnover.number(u"Jahr"), 2000);
    EXPECT_TRUE(turnover.truth(u"MoveNext"));
    EXPECT_EQ(turnover.number(u"Jahr"), 2001);
    EXPECT_EQ(turnover.number(u"IUmsatzDM"), 3001.5);
}

TEST_F(Readers, MoreDaysThanAreReadAtOnceComeOnceEach) {
    const auto two = [](int number) { return std::to_string(100 + number).substr(1); };
    std::string rows;
    Values days;
    for (const int year : {2021, 2022, 2023, 2024})
        for (int month = 1; month <= 12; ++month)
            for (int day = 1; day <= 28; ++day) {
                rows += (rows.empty() ? "('Sachsen', 2024, '" : ", ('Sachsen', 2024, '") + std::to_string(year) +
                        "-" + two(month) + "-" + two(day) + "', 'x')";
                days.emplace_back(dateOf(year, month, day));
            }
    execute("INSERT INTO feiertage (bundesland, jahr, fdatum, feiertag) VALUES " + rows);
    const auto holidays = reader(u"clsZugFeiertage");
    holidays.call(u"LeseFeiertage", {u"Sachsen", std::int16_t(2024)});
    EXPECT_EQ(holidays.column(u"FDatum"), days);
}

TEST_F(ManyYears, ReadersWalkIndependently) {
    const auto outer = reader(u"clsZugUmsatz");
    const auto inner = reader(u"clsZugUmsatz");
    outer.call(u"LeseUmsatzAlle", {1.0});
    for (int year = 1; year <= kYears; year += 500) {
        while (outer.number(u"Jahr") < year)
            outer.call(u"MoveNext");
        inner.call(u"LeseUmsatzVonBis", {1.0, float(year), float(year)});
        EXPECT_EQ(inner.numbers(u"Jahr"), std::vector<double>{double(year)});
        EXPECT_EQ(outer.number(u"Jahr"), year);
    }
}

} // namespace
} // namespace kvtdruck::test
