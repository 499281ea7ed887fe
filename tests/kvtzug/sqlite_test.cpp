// What is SQLite's own: files and their names, logs, locks, values of any type, memory.
#include "kvtzug/kvtzug.h"
#include "kvtzug/reader_access.h"
#include "kvtzug/sqlite_database.h"
#include "values/conversion.h"
#include "values/runtime_error.h"

#include <gmock/gmock.h>

#include <sys/resource.h>

#include <atomic>
#include <fstream>
#include <set>
#include <sqlite3.h>

namespace kvtdruck::test {
namespace {

using testing::HasSubstr;

/// Another program that has the database open.
class Writer {
  public:
    explicit Writer(const std::filesystem::path& file) { sqlite3_open(file.c_str(), &database_); }
    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;
    ~Writer() { sqlite3_close(database_); }

    void execute(const std::string& sql) const {
        ASSERT_EQ(sqlite3_exec(database_, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK)
            << sqlite3_errmsg(database_);
    }

  private:
    sqlite3* database_ = nullptr;
};

class SqliteFiles : public testing::Test {
  protected:
    std::string errorOf(const String& connection) {
        try {
            nameOfCompany(connection);
        } catch (const RuntimeError& error) {
            EXPECT_EQ(error.number(), -2147467259);
            return error.what();
        }
        ADD_FAILURE() << "no run-time error";
        return {};
    }

    String nameOfCompany(const String& connection) {
        const ReaderAccess reader(library_, u"clsZugFirmaAllg", connection);
        reader.call(u"LeseFirmaAllg", {1.0});
        return reader.text(u"Name1");
    }

    std::set<std::string> files() const {
        std::set<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(folder_.path()))
            names.insert(entry.path().filename().string());
        return names;
    }

    /// A database with one company, whose name is `name`.
    void create(const std::filesystem::path& file, const std::string& name, const std::string& sql = "") const {
        Writer(file).execute(sql +
                             "CREATE TABLE firma (fnr, name1 TEXT, name2 TEXT, name3, kurzbez, strasse, postfach, "
                             "plz, ort, land, bundesland, telefon1, telefon2, fax, waehrung);"
                             "INSERT INTO firma (fnr, name1) VALUES (1, '" +
                             name + "')");
    }

    static std::string monthColumns() {
        std::string columns;
        for (const char* series : {"iumsatzdm_", "sumsatzdm_"})
            for (int month = 1; month <= 12; ++month)
                columns += std::string(", ") + series + (month < 10 ? "0" : "") + std::to_string(month);
        return columns;
    }

    TemporaryFolder folder_;
    std::filesystem::path file_ = folder_.path() / "test.sqlite";
    std::atomic<bool> cancelled_ = false;
    ReferenceKvtzug library_{{}, &cancelled_};
};

TEST_F(SqliteFiles, AMissingFileIsToldAndNotCreated) {
    const auto file = folder_.path() / "fehlt.sqlite";
    EXPECT_THAT(errorOf(sqliteConnection(fromUtf8(file.string()))),
                HasSubstr("Die Datenbank „" + file.string() + "“ konnte nicht geöffnet werden."));
    EXPECT_FALSE(std::filesystem::exists(file));
}

TEST_F(SqliteFiles, AFileThatIsNoDatabaseIsTold) {
    const auto file = folder_.path() / "brief.txt";
    std::ofstream(file) << std::string(5000, 'x');
    EXPECT_THAT(errorOf(sqliteConnection(fromUtf8(file.string()))), HasSubstr("Das ist keine SQLite-Datenbank."));
}

TEST_F(SqliteFiles, AFolderIsNoDatabase) {
    EXPECT_THAT(errorOf(sqliteConnection(fromUtf8(folder_.path().string()))), HasSubstr("Das ist keine Datei."));
}

TEST_F(SqliteFiles, APasswordNeverShowsUp) {
    const auto file = folder_.path() / "fehlt.sqlite";
    EXPECT_THAT(errorOf(sqliteConnection(fromUtf8(file.string())) + u";PWD=geheimnis"),
                testing::Not(HasSubstr("geheimnis")));
}

TEST_F(SqliteFiles, AnErrorFurtherOnShowsWhereTheWalkGetsThere) {
    Writer(file_).execute("CREATE TABLE umsatz (fnr, jahr, iumsatzdm, sumsatzdm" + monthColumns() +
                          "); WITH RECURSIVE years (jahr) AS (SELECT 1 UNION ALL SELECT jahr + 1 FROM years WHERE "
                          "jahr < 3000) INSERT INTO umsatz (fnr, jahr, iumsatzdm) SELECT 1, jahr, "
                          "CASE jahr WHEN 1500 THEN 'viel' ELSE jahr END FROM years");
    const ReaderAccess turnover(library_, u"clsZugUmsatz", sqliteConnection(fromUtf8(file_.string())));
    turnover.call(u"LeseUmsatzAlle", {1.0});
    EXPECT_EQ(turnover.number(u"IUmsatzDM"), 1); // from now on it is fetched with every block
    int walked = 1;
    const auto walk = [&] {
        for (; turnover.truth(u"MoveNext"); ++walked)
            ASSERT_EQ(turnover.number(u"IUmsatzDM"), walked + 1);
    };
    EXPECT_THROW(walk(), RuntimeError);
    EXPECT_EQ(walked, 1024) << "all of the block before";
}

TEST_F(SqliteFiles, AFileNameIsDataWhateverIsInIt) {
    std::set<std::string> names = {
        "Müller & Söhne.sqlite",  "x.sqlite;LoadExt=evil.so", "a;b.sqlite", "Firma 😀.sqlite",
        "a?mode=rwc#b%41.sqlite", "file:c.sqlite?mode=rwc",   ":memory:",   "{a}b}}.sqlite",
        "'\"\\.sqlite",           "Driver=x;NoCreat=0",       " "};
    const auto before = std::filesystem::current_path();
    for (const auto& name : names)
        create(folder_.path() / name, "in a file of its own");
    std::filesystem::current_path(folder_.path());
    for (const auto& name : names) {
        SCOPED_TRACE(name);
        EXPECT_EQ(nameOfCompany(sqliteConnection(fromUtf8(name))), u"in a file of its own");
        EXPECT_EQ(nameOfCompany(sqliteConnection(fromUtf8((folder_.path() / name).string()))),
                  u"in a file of its own");
    }
    std::filesystem::current_path(before);
    EXPECT_EQ(files(), names) << "no other file";
}

TEST_F(SqliteFiles, ConnectionStringsOfItsOdbcDriverGoOn) {
    create(file_, "Firma");
    for (const StringView form : {u"Driver=SQLite3;Database=", u"DRIVER={SQLite3};Timeout=1000;NoCreat=0;database=",
                                  u"Driver=SQLite;Database="})
        EXPECT_EQ(nameOfCompany(String(form) + fromUtf8(file_.string())), u"Firma");
}

TEST_F(SqliteFiles, AWriteAheadLogIsReadAndNoneIsLeftBehind) {
    create(file_, "Firma", "PRAGMA journal_mode = WAL;");
    const std::set<std::string> alone{"test.sqlite"};
    ASSERT_EQ(files(), alone);
    const auto connection = sqliteConnection(fromUtf8(file_.string()));
    const ReaderAccess open(library_, u"clsZugFirmaAllg", connection);
    const auto name = [&] {
        open.call(u"LeseFirmaAllg", {1.0});
        return open.text(u"Name1");
    };
    EXPECT_EQ(name(), u"Firma");
    EXPECT_EQ(files(), alone);
    {
        const Writer writer(file_);
        writer.execute("UPDATE firma SET name1 = 'in the log'");
        EXPECT_EQ(name(), u"in the log") << "by who had it open before there was a log";
        EXPECT_EQ(nameOfCompany(connection), u"in the log");
    }
    EXPECT_EQ(name(), u"in the log") << "and when the log is gone";
}

TEST_F(SqliteFiles, WhatIsWrittenAndLoggedNoMoreIsSeen) {
    create(file_, "Firma", "PRAGMA journal_mode = WAL;");
    const auto connection = sqliteConnection(fromUtf8(file_.string()));
    const ReaderAccess open(library_, u"clsZugFirmaAllg", connection);
    open.call(u"LeseFirmaAllg", {1.0});
    Writer(file_).execute("UPDATE firma SET name1 = 'later', ort = hex(zeroblob(9000))");
    open.call(u"LeseFirmaAllg", {1.0});
    EXPECT_EQ(open.text(u"Name1"), u"later");
}

TEST_F(SqliteFiles, ALockedDatabaseIsTold) {
    create(file_, "Firma");
    const Writer writer(file_);
    writer.execute("BEGIN EXCLUSIVE");
    EXPECT_THAT(errorOf(sqliteConnection(fromUtf8(file_.string())) + u";Timeout=0"),
                HasSubstr("Ein anderes Programm hat die Datenbank gesperrt."));
    writer.execute("COMMIT");
    EXPECT_EQ(nameOfCompany(sqliteConnection(fromUtf8(file_.string()))), u"Firma");
}

TEST_F(SqliteFiles, WaitingForALockEndsWhenTheUserAsks) {
    create(file_, "Firma");
    const Writer writer(file_);
    writer.execute("BEGIN EXCLUSIVE");
    cancelled_ = true;
    EXPECT_THAT(errorOf(sqliteConnection(fromUtf8(file_.string())) + u";Timeout=99999999"),
                HasSubstr("Der Vorgang wurde abgebrochen."));
}

TEST_F(SqliteFiles, AQueryWithoutEndEndsWhenTheUserAsks) {
    Writer(file_).execute(
        "CREATE VIEW firma AS WITH RECURSIVE n (i) AS (SELECT 2 UNION ALL SELECT i + 1 FROM n) "
        "SELECT i AS fnr, '' AS name1, '' AS name2, '' AS name3, '' AS kurzbez, '' AS strasse, '' AS "
        "postfach, 0 AS plz, '' AS ort, '' AS land, '' AS bundesland, '' AS telefon1, '' AS telefon2, "
        "'' AS fax, '' AS waehrung FROM n");
    cancelled_ = true;
    EXPECT_THAT(errorOf(sqliteConnection(fromUtf8(file_.string()))), HasSubstr("Der Vorgang wurde abgebrochen."));
}

TEST_F(SqliteFiles, NumbersMayBeTextsAndTextsNumbers) {
    create(file_, "Firma");
    const Writer writer(file_);
    const ReaderAccess company(library_, u"clsZugFirmaAllg", sqliteConnection(fromUtf8(file_.string())));
    const auto set = [&](const std::string& what) {
        writer.execute("UPDATE firma SET " + what);
        company.call(u"LeseFirmaAllg", {1.0});
    };
    set("plz = '01067', telefon1 = 4930123, telefon2 = 4930123.0, fax = 0.5");
    EXPECT_EQ(company.number(u"Plz"), 1067);
    EXPECT_EQ(company.text(u"Telefon1"), u"4930123");
    EXPECT_EQ(company.text(u"Telefon2"), u"4930123");
    EXPECT_EQ(company.text(u"Fax"), u"0.5");
    set("plz = ''");
    EXPECT_EQ(company.number(u"Plz"), 0);
    for (const std::string none : {"D-01067", "1 067", "12,5", "1e", "nan?"}) {
        writer.execute("UPDATE firma SET plz = '" + none + "'");
        EXPECT_THAT(errorOf(sqliteConnection(fromUtf8(file_.string()))),
                    HasSubstr("Die Spalte „plz“ enthält „" + none + "“; das ist keine Zahl."));
    }
}

TEST_F(SqliteFiles, WhatIsNoDateIsTold) {
    const Writer writer(file_);
    writer.execute("CREATE TABLE feiertage (bundesland TEXT, jahr, fdatum, feiertag TEXT)");
    for (const std::string none : {"'01.05.2024'", "'2024-02-30'", "'2024-05'", "45292", "'2024-05-01x'"}) {
        writer.execute("DELETE FROM feiertage; INSERT INTO feiertage VALUES ('Sachsen', 2024, " + none + ", 'x')");
        try {
            const ReaderAccess holidays(library_, u"clsZugFeiertage", sqliteConnection(fromUtf8(file_.string())));
            holidays.call(u"LeseFeiertage", {u"Sachsen", std::int16_t(2024)});
            ADD_FAILURE() << none;
        } catch (const RuntimeError& error) {
            EXPECT_THAT(error.what(), HasSubstr("das ist kein Datum (JJJJ-MM-TT).")) << none;
        }
    }
    writer.execute("UPDATE feiertage SET fdatum = '2024-05-01 00:00:00'");
    const ReaderAccess holidays(library_, u"clsZugFeiertage", sqliteConnection(fromUtf8(file_.string())));
    holidays.call(u"LeseFeiertage", {u"Sachsen", std::int16_t(2024)});
    EXPECT_EQ(holidays.call(u"FDatum"), Variant(dateOf(2024, 5, 1)));
}

TEST_F(SqliteFiles, AWalkEndsWhenTheUserAsksToStop) {
    SqliteDatabase database;
    database.executeDemoFile("schema.sql");
    database.executeDemoFile("daten.sql");
    const ReaderAccess turnover(library_, u"clsZugUmsatz", database.connectionString());
    turnover.call(u"LeseUmsatzAlle", {1.0});
    ASSERT_TRUE(turnover.truth(u"MoveNext"));
    const auto year = turnover.number(u"Jahr");
    cancelled_ = true;
    EXPECT_TRUE(turnover.truth(u"EOF"));
    EXPECT_FALSE(turnover.truth(u"MoveNext"));
    EXPECT_FALSE(turnover.truth(u"MoveFirst"));
    cancelled_ = false;
    EXPECT_FALSE(turnover.truth(u"EOF"));
    EXPECT_LE(turnover.number(u"Jahr"), year) << "the record in hand stays readable";
}

#ifndef KVT_SANITIZED // a sanitizer's own memory grows with every allocation
TEST(SqliteMemory, StaysFlatHoweverManyRecordsThereAre) {
    SqliteDatabase database;
    database.executeDemoFile("schema.sql");
    database.execute(
        "INSERT INTO firma (fnr, name1) VALUES (1, 'Firma');\n"
        "INSERT INTO umsatz (fnr, jahr, iumsatzdm) WITH RECURSIVE n (i) AS (SELECT 1 UNION ALL SELECT i + 1 "
        "FROM n WHERE i < 100000) SELECT 1, i, i FROM n;\n");
    ReferenceKvtzug library;
    const ReaderAccess turnover(library, u"clsZugUmsatz", database.connectionString());
    const auto peak = [] {
        rusage usage{};
        getrusage(RUSAGE_SELF, &usage);
        return usage.ru_maxrss;
    };
    turnover.call(u"LeseUmsatzVonBis", {1.0, 1.0F, 10000.0F});
    turnover.numbers(u"IUmsatzDM");
    const auto before = peak();
    turnover.call(u"LeseUmsatzAlle", {1.0});
    double sum = 0;
    for (; !turnover.truth(u"EOF"); turnover.call(u"MoveNext"))
        sum += turnover.number(u"IUmsatzDM");
    EXPECT_EQ(sum, 5000050000.0);
    EXPECT_LT(peak() - before, 4096) << "kilobytes more for ten times the records";
}
#endif

} // namespace
} // namespace kvtdruck::test
