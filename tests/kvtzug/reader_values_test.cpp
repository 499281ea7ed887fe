// What comes out of columns of every kind, and what is said of what goes wrong, on every kind of database.
#include "kvtzug/readers_fixture.h"
#include "values/calendar.h"
#include "values/runtime_error.h"
#include "values/text.h"

#include <gmock/gmock.h>

#include <cmath>
#include <functional>
#include <limits>
#include <string>

namespace kvtdruck::test {
namespace {

using testing::HasSubstr;

std::string textOfError(const std::function<void()>& action) {
    return errorOf(action).what();
}

// --- Values

TEST_F(Readers, NullsAreZerosAndEmptyTexts) {
    execute("INSERT INTO firma (fnr) VALUES (1);\nINSERT INTO umsatz (fnr, jahr) VALUES (1, 2024);\n");
    const auto company = reader(u"clsZugFirmaAllg");
    EXPECT_TRUE(company.truth(u"LeseFirmaAllg", {1.0}));
    EXPECT_EQ(company.call(u"Name1"), Variant(u""));
    EXPECT_EQ(company.call(u"Plz"), Variant(0.0));
    const auto turnover = reader(u"clsZugUmsatz");
    turnover.call(u"LeseUmsatzAlle", {1.0});
    EXPECT_EQ(turnover.call(u"IUmsatzDM_07"), Variant(0.0));
}

TEST_F(Readers, TextsComeAsTheyAre) {
    execute("INSERT INTO firma (fnr, name1, name2, name3, ort) VALUES (1, 'Äöüß \"''; --', ' blanks ', '𝄞 Nguyễn', "
            "'')");
    const auto company = reader(u"clsZugFirmaAllg");
    company.call(u"LeseFirmaAllg", {1.0});
    EXPECT_EQ(company.text(u"Name1"), u"Äöüß \"'; --");
    EXPECT_EQ(company.text(u"Name2"), u" blanks ");
    EXPECT_EQ(company.text(u"Name3"), u"𝄞 Nguyễn");
    EXPECT_EQ(company.text(u"Ort"), u"");
}

TEST_F(Readers, AVeryLongTextComesWholeAndItsNeighboursToo) {
    const auto half = database_->longestText() / 2 - 5;
    const std::string filling(half, 'x');
    insertCompany();
    for (const auto* row : {"(1, 1, 'kurz', 'a')", "(1, 3, 'danach', 'c')"})
        execute(std::string("INSERT INTO mitarbeiter (fnr, nummer, name, ort) VALUES ") + row);
    execute("INSERT INTO mitarbeiter (fnr, nummer, name, ort) VALUES (1, 2, 'ä" + filling + "ö" + filling +
            "ü', 'b')");
    const auto staff = reader(u"clsZugMitarbeiter");
    staff.call(u"LeseMitarbeiter", {1.0, std::int16_t(0)});
    const String x(half, u'x');
    EXPECT_EQ(staff.text(u"Name"), u"kurz");
    staff.call(u"MoveNext");
    EXPECT_TRUE(staff.text(u"Name") == u"ä" + x + u"ö" + x + u"ü");
    EXPECT_EQ(staff.text(u"Ort"), u"b");
    staff.call(u"MoveNext");
    EXPECT_EQ(staff.text(u"Name"), u"danach");
    EXPECT_FALSE(staff.truth(u"MoveNext"));
    staff.call(u"MoveFirst");
    EXPECT_EQ(staff.column(u"Ort"), (Values{u"a", u"b", u"c"}));
}

TEST_F(Readers, TextsAroundTheBuffersEdgeComeWhole) {
    insertCompany();
    for (int length = 120; length <= 136; ++length)
        execute("INSERT INTO mitarbeiter (fnr, nummer, name) VALUES (1, " + std::to_string(length) + ", '" +
                std::string(std::size_t(length), 'n') + "')");
    const auto staff = reader(u"clsZugMitarbeiter");
    staff.call(u"LeseMitarbeiter", {1.0, std::int16_t(0)});
    for (; !staff.truth(u"EOF"); staff.call(u"MoveNext"))
        EXPECT_EQ(staff.text(u"Name").size(), std::size_t(staff.number(u"Nummer")));
}

TEST_F(Readers, ArgumentsAreBoundAndNeverBecomeSql) {
    const std::string name = "O'Neil' OR '1'='1";
    execute(
        "INSERT INTO feiertage (bundesland, jahr, fdatum, feiertag) VALUES ('O''Neil'' OR ''1''=''1', 2024, "
        "'2024-02-29', 'Schalttag');\nINSERT INTO feiertage (bundesland, jahr, fdatum, feiertag) VALUES ('Zürich', "
        "2024, '2024-08-01', 'Nationalfeiertag');\n");
    const auto holidays = reader(u"clsZugFeiertage");
    holidays.call(u"LeseFeiertage", {fromUtf8(name), std::int16_t(2024)});
    EXPECT_EQ(holidays.column(u"FDatum"), Values{dateOf(2024, 2, 29)});
    holidays.call(u"LeseFeiertage", {u"Zürich", std::int16_t(2024)});
    EXPECT_EQ(holidays.column(u"Feiertag"), Values{u"Nationalfeiertag"});
    holidays.call(u"LeseFeiertage", {u"", std::int16_t(2024)});
    EXPECT_TRUE(holidays.truth(u"EOF"));
}

TEST_F(Readers, InfinitiesAndNaNPassWhereTheDatabaseHoldsThem) {
    insertCompany();
    const auto sql = [](const std::string& value) { return value.empty() ? "NULL" : value; };
    execute("INSERT INTO umsatz (fnr, jahr, iumsatzdm, iumsatzdm_01, iumsatzdm_02, sumsatzdm) VALUES (1, 2024, " +
            sql(database_->nan()) + ", " + sql(database_->infinity()) + ", 1e300, -0.125)");
    const auto turnover = reader(u"clsZugUmsatz");
    turnover.call(u"LeseUmsatzAlle", {1.0});
    EXPECT_EQ(std::isnan(turnover.number(u"IUmsatzDM")), !database_->nan().empty());
    EXPECT_EQ(std::isinf(turnover.number(u"IUmsatzDM_01")), !database_->infinity().empty());
    EXPECT_EQ(turnover.number(u"IUmsatzDM_02"), 1e300);
    EXPECT_EQ(turnover.number(u"sUmsatzDM"), -0.125);
    // A company number that is none finds nothing.
    turnover.call(u"LeseUmsatzAlle", {std::numeric_limits<double>::quiet_NaN()});
    EXPECT_TRUE(turnover.truth(u"EOF"));
    turnover.call(u"LeseUmsatzAlle", {std::numeric_limits<double>::infinity()});
    EXPECT_TRUE(turnover.truth(u"EOF"));
}

// --- Connections and errors

TEST_F(Readers, ReadersShareAConnectionWhichClosesWithTheLastHostThatKeepsIt) {
    Connections connections;
    std::weak_ptr<Connection> watched;
    {
        HostConnection host(database_->connectionString());
        {
            HostConnection sameHost(database_->connectionString());
            watched = connections.open(sameHost);
            EXPECT_EQ(connections.open(host), watched.lock());
        }
        EXPECT_FALSE(watched.expired()) << "no reader, but a host that goes on";
        EXPECT_EQ(connections.open(host), watched.lock());
    }
    EXPECT_TRUE(watched.expired());
    HostConnection later(database_->connectionString());
    EXPECT_TRUE(connections.open(later)->alive());
}

TEST_F(Readers, TheProductModeTakesPartInNoOtherSelection) {
    insertCompany();
    EXPECT_TRUE(reader(u"clsZugFirmaAllg", 17).truth(u"LeseFirmaAllg", {1.0}));
}

TEST_F(Readers, MissingTablesAreToldWithClassAndTable) {
    execute("DROP TABLE umsatz");
    const auto turnover = reader(u"clsZugUmsatz");
    const auto error = errorOf([&] { turnover.call(u"LeseUmsatzAlle", {1.0}); });
    EXPECT_EQ(error.number(), -2147467259);
    EXPECT_THAT(error.what(), HasSubstr("Die Daten von clsZugUmsatz konnten nicht gelesen werden. "));
    EXPECT_THAT(error.what(), HasSubstr("umsatz"));
    EXPECT_TRUE(turnover.truth(u"EOF"));
}

TEST_F(Readers, MistakesInCallsAreRuntimeErrors) {
    const auto number = [](const std::function<void()>& action) { return errorOf(action).number(); };
    EXPECT_EQ(number([&] { library_.create(u"clsZugNichts"); }), long(ErrorNumber::CannotCreateObject));
    const ReaderAccess unconnected(library_, u"clsZugUmsatz");
    EXPECT_EQ(number([&] { unconnected.call(u"LeseUmsatzAlle", {1.0}); }), long(ErrorNumber::ObjectNotSet));
    EXPECT_EQ(number([&] {
                  unconnected.call(u"Verbinde", {ObjectRef(), std::int16_t(0)});
              }),
              long(ErrorNumber::ObjectNotSet));
    const auto turnover = reader(u"clsZugUmsatz");
    EXPECT_EQ(number([&] { turnover.call(u"Gewinn"); }), long(ErrorNumber::MemberNotFound));
    EXPECT_EQ(number([&] { turnover.object().call(9999, {}); }), long(ErrorNumber::MemberNotFound));
    EXPECT_EQ(number([&] { turnover.object().call(0, {}); }), long(ErrorNumber::MemberNotFound));
    EXPECT_EQ(number([&] { turnover.object().put(1, {}, 0.0); }), long(ErrorNumber::MemberNotFound));
    EXPECT_EQ(number([&] { turnover.call(u"LeseUmsatzAlle", {}); }), 450);
    EXPECT_EQ(number([&] { turnover.call(u"MoveNext", {1.0}); }), 450);
    EXPECT_EQ(number([&] { turnover.call(u"LeseUmsatzAlle", {u"eins"}); }), long(ErrorNumber::TypeMismatch));
    HostConnection host(u"");
    EXPECT_EQ(number([&] { host.idOf(u"State"); }), long(ErrorNumber::MemberNotFound));
    EXPECT_EQ(number([&] { host.call(host.idOf(u"ConnectionString") + 1, {}); }),
              long(ErrorNumber::MemberNotFound));
    EXPECT_EQ(number([&] { host.put(host.idOf(u"ConnectionString"), {}, u"x"); }),
              long(ErrorNumber::MemberNotFound));
}

TEST_F(Readers, AMissingDriverIsToldByName) {
    const auto text =
        textOfError([&] { ReaderAccess(library_, u"clsZugUmsatz", u"Driver={Gibt es nicht};Database=x"); });
    EXPECT_THAT(text, HasSubstr("Der ODBC-Treiber „Gibt es nicht“ ist nicht eingerichtet"));
}

TEST_F(Readers, AMissingDataSourceIsTold) {
    const auto text = textOfError([&] { ReaderAccess(library_, u"clsZugUmsatz", u"DSN=gibtesnicht"); });
    EXPECT_THAT(text, HasSubstr("Die ODBC-Datenquelle ist nicht eingerichtet."));
}

} // namespace
} // namespace kvtdruck::test
