// What is SQLite's own: files and their names, logs, locks, values of any type, rows that come in, memory.
#include "kvtzug/kvtzug.h"
#include "kvtzug/odbc.h"
#include "kvtzug/reader_access.h"
#include "kvtzug/sqlite_database.h"
#include "kvtzug/table_import.h"
#include "values/conversion.h"
#include "values/runtime_error.h"

#include <gmock/gmock.h>

#include <sys/resource.h>

#include <array>
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
                                  u"Driver=SQLite;Database=", u"Driver=SQLite3;Timeout=bald;Database=",
                                  u"Driver=SQLite3;Timeout=99999999999999999999;Database="})
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

TEST_F(SqliteFiles, AFileWithAWriteAheadLogMayHaveAnyName) {
    const std::set<std::string> names{"Jahr 2024?mode=rwc#%41.sqlite", "Grün & Söhne.sqlite"};
    for (const auto& name : names) {
        create(folder_.path() / name, "Firma", "PRAGMA journal_mode = WAL;");
        EXPECT_EQ(nameOfCompany(sqliteConnection(fromUtf8((folder_.path() / name).string()))), u"Firma") << name;
    }
    EXPECT_EQ(files(), names);
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
    for (const std::string none :
         {"'01.05.2024'", "'2024-02-30'", "'2024-05'", "45292", "'2024-05-01x'", "'2024-1x-01'", "'2024-00-10'",
          "'Mai2-05-01'", "'2024-05-x1'", "'2024-05 01'"}) {
        writer.execute("DELETE FROM feiertage; INSERT INTO feiertage VALUES ('Sachsen', 2024, " + none + ", 'x')");
        try {
            const ReaderAccess holidays(library_, u"clsZugFeiertage", sqliteConnection(fromUtf8(file_.string())));
            holidays.call(u"LeseFeiertage", {u"Sachsen", std::int16_t(2024)});
            ADD_FAILURE() << none;
        } catch (const RuntimeError& error) {
            EXPECT_THAT(error.what(), HasSubstr("das ist kein Datum (JJJJ-MM-TT).")) << none;
        }
    }
    const ReaderAccess holidays(library_, u"clsZugFeiertage", sqliteConnection(fromUtf8(file_.string())));
    for (const std::string same : {"2024-05-01 00:00:00", "2024-05-01T00:00:00", "2024-05-01"}) {
        writer.execute("UPDATE feiertage SET fdatum = '" + same + "'");
        holidays.call(u"LeseFeiertage", {u"Sachsen", std::int16_t(2024)});
        EXPECT_EQ(holidays.call(u"FDatum"), Variant(dateOf(2024, 5, 1))) << same;
    }
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

TEST_F(SqliteFiles, TextKeysAreFoundAsNumbersAndOtherTablesAreLeftAlone) {
    Writer(file_).execute("CREATE TABLE umsatz (fnr TEXT, jahr REAL, notiz TEXT, iumsatzdm REAL);"
                          "INSERT INTO umsatz VALUES ('07', 2024, 'vorläufig', 1);"
                          "CREATE TABLE umsatz2 (fnr TEXT, iumsatzdm REAL); INSERT INTO umsatz2 VALUES ('07', 2);"
                          "CREATE TABLE umsatzX (fnr TEXT, iumsatzdm REAL); INSERT INTO umsatzX VALUES ('07', 3);");
    const auto connection = openConnection(sqliteConnection(fromUtf8(file_.string())), nullptr);
    const auto turnover = [&](StringView table, const Parameter& number) -> std::optional<double> {
        const auto query = connection->query(
            u"Fehler.", u"SELECT iumsatzdm FROM " + String(table) + u" WHERE fnr = ?", {CellType::Number});
        query->execute(std::array{number});
        return query->step() ? query->number(0) : std::nullopt;
    };
    EXPECT_EQ(turnover(u"umsatz", 7.0), 1);
    EXPECT_EQ(turnover(u"Umsatz", 7.0), 1);
    EXPECT_EQ(turnover(u"umsatz2", String(u"07")), 2);
    EXPECT_EQ(turnover(u"umsatzX", String(u"07")), 3);
    EXPECT_EQ(turnover(u"umsatz2", String(u"7")), std::nullopt);
}

TEST_F(SqliteFiles, TheOdbcDriversColumnsAreOfTheirKinds) {
    create(file_, "Firma",
           "CREATE TABLE arten (a CHAR(3), b VARCHAR(3), c TEXT, d LONGVARCHAR, e DATE, f TIMESTAMP, "
           "g DATETIME, h INTEGER, i SMALLINT, j TINYINT, k BIGINT, l BIT, m REAL, n FLOAT, "
           "o DOUBLE, p NUMERIC, q BLOB);");
    const auto connection = std::make_shared<OdbcConnection>(u"Driver={" + fromUtf8(KVT_SQLITE_ODBC) +
                                                             u"};Database=" + fromUtf8(file_.string()));
    std::string kinds;
    for (const auto& column : connection->columnsOf(u"arten"))
        kinds += !column.type ? '?' : "zdt"[std::size_t(*column.type)];
    EXPECT_EQ(kinds, "ttttdddzzzzzzzzz?");
    try {
        connection->columnsOf(u"fehlt");
        ADD_FAILURE() << "no run-time error";
    } catch (const RuntimeError& error) {
        EXPECT_THAT(error.what(), HasSubstr("„fehlt“ kann nicht gelesen werden."));
    }
}

TEST_F(SqliteFiles, ThroughOdbcAMissingFileIsMadeOnlyWhereTheConnectionSaysSo) {
    const auto driver = u"Driver={" + fromUtf8(KVT_SQLITE_ODBC) + u"};Database=";
    const auto file = folder_.path() / "Grün.sqlite";
    const auto connection = driver + fromUtf8(file.string());
    EXPECT_THAT(errorOf(connection),
                HasSubstr("Die Datenbank „" + file.string() + "“ konnte nicht geöffnet werden."));
    EXPECT_FALSE(std::filesystem::exists(file));
    const auto wanted = folder_.path() / "neu.sqlite";
    const OdbcConnection opened(driver + fromUtf8(wanted.string()) + u";NoCreat=0");
    EXPECT_TRUE(std::filesystem::exists(wanted));
    EXPECT_THAT(errorOf(driver + String(20000, u'ü')), HasSubstr("konnte nicht geöffnet werden."))
        << "32767 bytes are less than it takes";
}

// --- Rows that come in

class SqliteImport : public SqliteFiles {
  protected:
    using Rows = std::vector<std::vector<TableImport::Value>>;

    /// What one says to rows of `table`; "" where all of them came in.
    std::string told(const std::string& table, const std::vector<std::string>& columns, const Rows& rows,
                     bool creates = true, bool tries = false) const {
        try {
            TableImport import(file_, *findTable(table), columns, creates, tries, nullptr);
            for (const auto& row : rows)
                import.put(row);
            import.commit();
        } catch (const std::runtime_error& error) {
            return error.what();
        }
        return "";
    }
};

TEST_F(SqliteImport, NothingStaysOfADatabaseThatCouldNotBeMade) {
    EXPECT_EQ(told("firma", {"fnr"}, {}, false),
              "Die Datenbank „" + file_.string() + "“ gibt es nicht; --anlegen legt sie an.");
    EXPECT_EQ(told("umsatz", {"fnr", "jahr"}, {{7.0, 2024.0}}), "Es gibt keine Zeile in firma, zu der sie gehört.");
    EXPECT_EQ(files(), std::set<std::string>());
    EXPECT_EQ(told("firma", {"fnr"}, {{7.0}}, true, true), "");
    EXPECT_EQ(files(), std::set<std::string>()) << "it was tried alone";
    file_ = folder_.path() / "fehlt" / "test.sqlite";
    EXPECT_EQ(told("firma", {"fnr"}, {}), "Die Datenbank „" + file_.string() + "“ kann nicht angelegt werden.");
}

TEST_F(SqliteImport, WhatIsNoDatabaseIsToldAndStays) {
    const std::string letter(5000, 'x');
    std::ofstream(file_) << letter;
    EXPECT_EQ(told("firma", {"fnr"}, {{1.0}}), "Das ist keine SQLite-Datenbank.");
    EXPECT_EQ(std::filesystem::file_size(file_), letter.size());
    file_ = folder_.path();
    EXPECT_EQ(told("firma", {"fnr"}, {{1.0}}), "Die Datenbank meldet: unable to open database file");
}

TEST_F(SqliteImport, ForeignTablesAndViewsAreTold) {
    Writer(file_).execute("CREATE VIEW firma AS SELECT 1 AS fnr; CREATE TABLE umsatz (fnr, jahr)");
    EXPECT_EQ(told("firma", {"fnr"}, {{1.0}}),
              "„firma“ ist in dieser Datenbank eine Sicht; eingelesen wird nur in Tabellen.");
    EXPECT_EQ(told("kosten", {"fnr", "jahr"}, {}, false),
              "Die Tabelle „kosten“ fehlt in der Datenbank; --anlegen legt sie an.");
    EXPECT_EQ(told("umsatz", {"fnr", "jahr", "iumsatzdm"}, {}, false),
              "Die Datenbank meldet: table umsatz has no column named iumsatzdm");
    EXPECT_EQ(told("umsatz", {"fnr", "jahr"}, {{1.0, 2024.0}}, false), "");
}

TEST_F(SqliteImport, RowsOfKeysAloneAndEmptyCellsComeInAndChange) {
    ASSERT_EQ(told("firma", {"fnr"}, {{7.0}}), "");
    {
        TableImport keys(file_, *findTable("firma"), {"fnr"}, false, false, nullptr);
        EXPECT_EQ(keys.put({7.0}), TableImport::Effect::Changed);
        EXPECT_EQ(keys.put({8.0}), TableImport::Effect::Added);
        keys.commit();
    }
    const std::vector<std::string> columns{"fnr", "name1", "plz"};
    ASSERT_EQ(told("firma", columns, {{1.0, std::string("Grün"), 4109.0}}), "");
    const auto connection = sqliteConnection(fromUtf8(file_.string()));
    EXPECT_EQ(nameOfCompany(connection), u"Grün");
    ASSERT_EQ(told("firma", columns, {{1.0, std::monostate(), 4109.0}}), "");
    EXPECT_EQ(nameOfCompany(connection), u"");
}

TEST_F(SqliteImport, EndsWhenTheUserAsks) {
    TableImport import(file_, *findTable("firma"), {"fnr"}, true, true, &cancelled_);
    import.put({0.0});
    cancelled_ = true;
    const auto many = [&] {
        for (int number = 1; number < 100'000; ++number)
            import.put({double(number)});
    };
    EXPECT_THAT(many, testing::ThrowsMessage<std::runtime_error>("Der Vorgang wurde abgebrochen."));
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
