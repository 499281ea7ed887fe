// What is SQLite's own: files, memory.
#include "kvtzug/kvtzug.h"
#include "kvtzug/reader_access.h"
#include "kvtzug/sqlite_database.h"
#include "values/runtime_error.h"

#include <gmock/gmock.h>

#include <sys/resource.h>

#include <fstream>

namespace kvtdruck::test {
namespace {

using testing::HasSubstr;

class SqliteFiles : public testing::Test {
  protected:
    std::string errorOf(const String& connection) {
        try {
            const ReaderAccess reader(library_, u"clsZugFirmaAllg", connection);
            reader.call(u"LeseFirmaAllg", {1.0});
        } catch (const RuntimeError& error) {
            EXPECT_EQ(error.number(), -2147467259);
            return error.what();
        }
        ADD_FAILURE() << "no run-time error";
        return {};
    }

    TemporaryFolder folder_;
    ReferenceKvtzug library_;
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
    EXPECT_THAT(errorOf(sqliteConnection(fromUtf8(file.string()))),
                HasSubstr("Die Daten von clsZugFirmaAllg konnten nicht gelesen werden."));
}

TEST_F(SqliteFiles, APasswordNeverShowsUp) {
    const auto file = folder_.path() / "fehlt.sqlite";
    EXPECT_THAT(errorOf(sqliteConnection(fromUtf8(file.string())) + u";PWD=geheimnis"),
                testing::Not(HasSubstr("geheimnis")));
}

TEST_F(SqliteFiles, UmlautsAndBlanksInTheFileNameAreNoTrouble) {
    SqliteDatabase database;
    database.executeDemoFile("schema.sql");
    const auto file = folder_.path() / "Müller & Söhne.sqlite";
    std::filesystem::copy_file(database.file(), file);
    const ReaderAccess reader(library_, u"clsZugFirmaAllg", sqliteConnection(fromUtf8(file.string())));
    EXPECT_FALSE(reader.truth(u"LeseFirmaAllg", {1.0}));
}

#ifndef __SANITIZE_ADDRESS__ // a sanitizer's own memory grows with every allocation
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
