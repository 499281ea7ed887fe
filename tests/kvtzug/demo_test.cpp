// The sample company holds together: months add up to years, shares fit the turnover, arrays fit the tables.
#include "kvtzug/kvtzug.h"
#include "kvtzug/reader_access.h"
#include "kvtzug/sqlite_database.h"

#include <gmock/gmock.h>

#include <fstream>
#include <map>
#include <sstream>

namespace kvtdruck::test {
namespace {

class SampleFigures : public testing::Test {
  protected:
    void SetUp() override {
        database_.executeDemoFile("schema.sql");
        database_.executeDemoFile("daten.sql");
    }

    ReaderAccess read(StringView className, StringView operation, const std::vector<Variant>& arguments) {
        ReaderAccess reader(library_, className, database_.connectionString());
        reader.call(operation, arguments);
        return reader;
    }

    /// The sum of the twelve months of a series in the record in hand.
    static double monthsOf(const ReaderAccess& reader, const String& prefix) {
        double sum = 0;
        for (char16_t month = 1; month <= 12; ++month)
            sum += reader.number(prefix + char16_t(u'0' + month / 10) + char16_t(u'0' + month % 10));
        return sum;
    }

    SqliteDatabase database_;
    ReferenceKvtzug library_;
};

TEST_F(SampleFigures, MonthsAddUpToYears) {
    const auto turnover = read(u"clsZugUmsatz", u"LeseUmsatzAlle", {1.0});
    for (; !turnover.truth(u"EOF"); turnover.call(u"MoveNext")) {
        EXPECT_NEAR(monthsOf(turnover, u"IUmsatzDM_"), turnover.number(u"IUmsatzDM"), 0.001);
        EXPECT_NEAR(monthsOf(turnover, u"sUmsatzDM_"), turnover.number(u"sUmsatzDM"), 0.001);
    }
    for (const float year : {2024.0F, 2025.0F}) {
        const auto accounts = read(u"clsZugKonten", u"LeseKonten", {1.0, year, 0.0F, 0.0F});
        for (; !accounts.truth(u"EOF"); accounts.call(u"MoveNext")) {
            EXPECT_NEAR(monthsOf(accounts, u"MWIst_"), accounts.number(u"JWIst"), 0.001);
            EXPECT_NEAR(monthsOf(accounts, u"MWSoll_"), accounts.number(u"JWSoll"), 0.001);
        }
    }
}

TEST_F(SampleFigures, EmployeesMonthsAddUpToMonthThirteen) {
    const std::vector<StringView> added = {u"IBrutto",  u"SBrutto",     u"IUrl",       u"IWG",     u"IRV",
                                           u"IKV",      u"IAV",         u"IPflege",    u"IErst",   u"IArbtage",
                                           u"IUrlT",    u"IKrank",      u"IAnwTage",   u"IAnwStd", u"IProdStd",
                                           u"INBerStd", u"IBerStdJahr", u"SBerStdJahr"};
    const auto months = read(u"clsZugMitarbeiterMonate", u"LeseMitarbeiterMonate", {1.0, 0.0F, 0.0F, 1.0F, 13.0F});
    std::vector<double> sums(added.size());
    double grossSoFar = 0;
    int years = 0;
    for (; !months.truth(u"EOF"); months.call(u"MoveNext")) {
        if (months.number(u"Monat") < 13) {
            for (std::size_t i = 0; i < added.size(); ++i)
                sums[i] += months.number(added[i]);
            for (const auto* kind : {u"IBrutto", u"IVWL", u"IUrl", u"IWG", u"ISonst"})
                grossSoFar += months.number(kind);
            EXPECT_NEAR(months.number(u"IBruttoGes"), grossSoFar, 0.001);
            EXPECT_NEAR(months.number(u"IAnwTage"),
                        months.number(u"IArbtage") - months.number(u"IUrlT") - months.number(u"IKrank") -
                            months.number(u"IAusb") - months.number(u"ISonstTage"),
                        0.001);
            continue;
        }
        ++years;
        for (std::size_t i = 0; i < added.size(); ++i)
            EXPECT_NEAR(months.number(added[i]), sums[i], 0.001) << toUtf8(added[i]);
        EXPECT_NEAR(months.number(u"IBruttoGes"), grossSoFar, 0.001);
        std::fill(sums.begin(), sums.end(), 0);
        grossSoFar = 0;
    }
    EXPECT_EQ(years, 25);
}

TEST_F(SampleFigures, MaterialSharesFitTheTurnover) {
    const auto material = read(u"clsZugMaterial", u"LeseMaterialAlle", {1.0, 0.0F});
    for (; !material.truth(u"EOF"); material.call(u"MoveNext")) {
        const auto year = float(material.number(u"Jahr"));
        const auto turnover = read(u"clsZugUmsatz", u"LeseUmsatzVonBis", {1.0, year, year});
        EXPECT_NEAR(monthsOf(material, u"IUMMatDM_"), material.number(u"IUMMatDM_Su"), 0.001);
        EXPECT_NEAR(material.number(u"IUMMatpr_Su"),
                    100 * material.number(u"IUMMatDM_Su") / turnover.number(u"IUmsatzDM"), 0.006);
        EXPECT_NEAR(material.number(u"SUMMatpr_05"),
                    100 * material.number(u"SUMMatDM_05") / turnover.number(u"sUmsatzDM_05"), 0.006);
    }
}

TEST_F(SampleFigures, SettingsFitTheCalendar) {
    const auto settings = read(u"clsZugFirmaJahr", u"LeseFirmaJahreAlle", {1.0});
    for (; !settings.truth(u"EOF"); settings.call(u"MoveNext")) {
        const auto year = std::int16_t(settings.number(u"Jahr"));
        const auto holidays = read(u"clsZugFeiertage", u"LeseFeiertage", {u"Sachsen", year});
        EXPECT_EQ(double(holidays.column(u"FDatum").size()), settings.number(u"AnzahlFeiertage"));
        const auto weekdayHolidays = settings.number(u"AnzahlFeiertage") - settings.number(u"AnzahlFeiertageSon") -
                                     settings.number(u"AnzahlFeiertageSam");
        EXPECT_EQ(monthsOf(settings, u"Arbeitstage"), settings.number(u"Jahrestage") -
                                                          settings.number(u"AnzahlSonntage") -
                                                          settings.number(u"AnzahlSamstage") - weekdayHolidays);
    }
}

TEST_F(SampleFigures, ImputedRentAndInterestFollowFromTheirParts) {
    const auto costs = read(u"clsZugKosten", u"LeseKostenAlle", {1.0, 0.0F});
    for (; !costs.truth(u"EOF"); costs.call(u"MoveNext")) {
        EXPECT_NEAR(costs.number(u"MMieteMon"), costs.number(u"QM") * costs.number(u"QMPreis"), 0.005);
        EXPECT_NEAR(costs.number(u"MMieteJahr"), 12 * costs.number(u"MMieteMon"), 0.005);
        EXPECT_NEAR(costs.number(u"ZDMZins"), costs.number(u"ZEK") * costs.number(u"ZPZins") / 100, 0.005);
    }
}

// --- Parameter arrays

std::vector<std::string> fields(const std::string& line) {
    std::vector<std::string> result;
    std::stringstream stream(line);
    for (std::string field; std::getline(stream, field, ';');)
        result.push_back(field);
    if (line.ends_with(';'))
        result.emplace_back();
    return result;
}

std::vector<std::vector<std::string>> parameterArray(const std::string& name) {
    std::ifstream file(std::filesystem::path(KVT_DEMO) / "werte" / (name + ".csv"));
    EXPECT_TRUE(file) << name;
    std::vector<std::vector<std::string>> lines;
    for (std::string line; std::getline(file, line);)
        lines.push_back(fields(line));
    return lines;
}

TEST(ParameterArrays, HaveTheColumnsThatTheReportsRead) {
    const std::map<std::string, std::map<std::size_t, std::string>> expected = {
        {"Bilanz", {{1, "Jahr"}, {2, "Gewinn"}, {14, "Lager"}}},
        {"BsEMa", {{3, "Jahr"}, {7, "IBMon"}, {8, "Text"}, {9, "SAMaDM"}, {17, "DUMaDM"}}},
        {"BsEStd", {{3, "Jahr"}, {8, "Text"}, {9, "SDM"}, {14, "DPR"}}},
        {"BsEGes", {{3, "Jahr"}, {8, "Text"}, {9, "SDM"}, {14, "DPR"}}},
        {"KalkW", {{1, "Jahr"}, {2, "Text"}, {6, "IBMon"}, {14, "IVer"}, {21, "IMateinsatz"}, {27, "jeMinute"}}},
        {"WasWenn", {{1, "Jahr"}, {6, "Text"}, {18, "SKnz"}, {28, "KULohn"}, {50, "KKostKnz"}}},
        {"UmsatzHW", {{0, "Jahr"}, {1, "Taglohn"}, {8, "Saldo"}, {9, "Text"}}},
    };
    for (const auto& [name, columns] : expected) {
        SCOPED_TRACE(name);
        const auto lines = parameterArray(name);
        ASSERT_GE(lines.size(), 2U);
        EXPECT_EQ(lines[0].size(), columns.rbegin()->first + 1);
        for (const auto& line : lines)
            EXPECT_EQ(line.size(), lines[0].size());
        for (const auto& [column, header] : columns)
            EXPECT_EQ(lines[0][column], header);
    }
}

double germanNumber(std::string text) {
    std::replace(text.begin(), text.end(), ',', '.');
    return std::stod(text);
}

TEST_F(SampleFigures, ArraysShowTheTablesTurnover) {
    const auto turnover = read(u"clsZugUmsatz", u"LeseUmsatzVonBis", {1.0, 2025.0F, 2025.0F});
    const auto trade = parameterArray("UmsatzHW");
    EXPECT_NEAR(germanNumber(trade.back()[8]), turnover.number(u"IUmsatzDM"), 0.001);
    for (std::size_t line = 1; line < trade.size(); ++line) {
        double sum = 0;
        for (std::size_t column = 1; column <= 7; ++column)
            sum += germanNumber(trade[line][column]);
        EXPECT_NEAR(sum, germanNumber(trade[line][8]), 0.001);
    }
    EXPECT_NEAR(germanNumber(parameterArray("Bilanz")[1][4]), turnover.number(u"IUmsatzDM"), 0.001);
    EXPECT_NEAR(germanNumber(parameterArray("BsEGes")[2][11]), turnover.number(u"IUmsatzDM"), 0.001);
}

} // namespace
} // namespace kvtdruck::test
