// What every reader class answers, on every kind of database.
#include "kvtzug/database.h"
#include "kvtzug/kvtzug.h"
#include "kvtzug/reader_access.h"
#include "values/conversion.h"
#include "values/runtime_error.h"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>
#include <string>

namespace kvtdruck::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

using Values = std::vector<Variant>;

class Readers : public testing::Test {
  protected:
    void SetUp() override { database_->executeDemoFile("schema.sql"); }

    ReaderAccess reader(StringView className, std::int16_t productMode = 0) {
        return {library_, className, database_->connectionString(), productMode};
    }
    void execute(const std::string& sql) { database_->execute(sql); }
    void insertCompany() { execute("INSERT INTO firma (fnr, name1) VALUES (1, 'Firma')"); }

    std::unique_ptr<Database> database_ = createDatabase();
    int queries_ = 0;
    ReferenceKvtzug library_{[this](StringView) { ++queries_; }};
};

class SampleCompany : public Readers {
  protected:
    void SetUp() override {
        Readers::SetUp();
        database_->executeDemoFile("daten.sql");
    }
};

RuntimeError errorOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const RuntimeError& error) {
        return error;
    }
    ADD_FAILURE() << "no run-time error";
    return RuntimeError(0, u"");
}

std::string textOfError(const std::function<void()>& action) {
    return errorOf(action).what();
}

// --- Members and types

struct Getters {
    std::vector<StringView> texts;
    std::vector<StringView> singles;
    std::vector<StringView> doubles;
    std::vector<StringView> dates;
    std::vector<StringView> optionalDates = {};
    /// Prefixes of twelve months each.
    std::vector<StringView> monthSingles = {};
    std::vector<StringView> monthDoubles = {};
};

std::vector<String> months(StringView prefix) {
    std::vector<String> names;
    for (const auto* month : {u"01", u"02", u"03", u"04", u"05", u"06", u"07", u"08", u"09", u"10", u"11", u"12"})
        names.push_back(String(prefix) + month);
    return names;
}

template <class T>
void expectType(const ReaderAccess& reader, StringView getter) {
    EXPECT_NE(reader.call(getter).as<T>(), nullptr) << toUtf8(getter);
}

void expectGetters(const ReaderAccess& reader, const Getters& getters) {
    for (const auto name : getters.texts)
        expectType<String>(reader, name);
    for (const auto name : getters.singles)
        expectType<float>(reader, name);
    for (const auto name : getters.doubles)
        expectType<double>(reader, name);
    for (const auto name : getters.dates)
        expectType<Date>(reader, name);
    for (const auto name : getters.optionalDates)
        EXPECT_TRUE(reader.call(name).isNull() || reader.call(name).as<Date>()) << toUtf8(name);
    for (const auto prefix : getters.monthSingles)
        for (const auto& name : months(prefix))
            expectType<float>(reader, name);
    for (const auto prefix : getters.monthDoubles)
        for (const auto& name : months(prefix))
            expectType<double>(reader, name);
}

void expectNothing(const ReaderAccess& reader, const Getters& getters) {
    for (const auto name : getters.texts)
        EXPECT_EQ(reader.call(name), Variant(u"")) << toUtf8(name);
    for (const auto name : getters.singles)
        EXPECT_EQ(reader.call(name), Variant(0.0F)) << toUtf8(name);
    for (const auto name : getters.doubles)
        EXPECT_EQ(reader.call(name), Variant(0.0)) << toUtf8(name);
    for (const auto name : getters.dates)
        EXPECT_EQ(reader.call(name), Variant(Date())) << toUtf8(name);
    for (const auto name : getters.optionalDates)
        EXPECT_TRUE(reader.call(name).isNull()) << toUtf8(name);
}

struct ClassCase {
    StringView name;
    StringView operation;
    std::vector<Variant> arguments;
    Getters getters;
};

std::vector<ClassCase> classes() {
    return {
        {u"clsZugUmsatz",
         u"LeseUmsatzAlle",
         {1.0},
         {{}, {u"Jahr"}, {u"IUmsatzDM", u"sUmsatzDM"}, {}, {}, {}, {u"IUmsatzDM_", u"sUmsatzDM_"}}},
        {u"clsZugFirmaJahr",
         u"LeseFirmaJahreAlle",
         {1.0},
         {{},
          {u"AnzahlFeiertage",
           u"AnzahlFeiertageSon",
           u"AnzahlFeiertageSam",
           u"Jahrestage",
           u"AnzahlSonntage",
           u"AnzahlSamstage",
           u"GrenzeAushilfskraft",
           u"GrenzeGeringverdiener",
           u"Jahr",
           u"Arbeitslosenversicherung",
           u"Pflegeversicherung",
           u"Krankenversicherung",
           u"Rentenversicherung",
           u"SteuersatzAushilfe",
           u"Tagesarbeitszeit",
           u"DurchUeberstundenzuschlag",
           u"Erstattungsumlage",
           u"Krankheitstage",
           u"VorgabeUrlaubsgeld",
           u"Urlaubstage",
           u"VorgabeWeihnachtsgeld",
           u"VWL"},
          {u"GrenzeRentenversicherung"},
          {},
          {},
          {u"Arbeitstage"}}},
        {u"clsZugFeiertage",
         u"LeseFeiertage",
         {u"Sachsen", std::int16_t(2024)},
         {{u"Feiertag"}, {}, {}, {u"FDatum"}}},
        {u"clsZugMitarbeiter",
         u"LeseMitarbeiter",
         {1.0, std::int16_t(0)},
         {{u"Anrede", u"Art", u"Fax", u"Land", u"Vorname", u"Name", u"Ort", u"Stand", u"Strasse", u"Telefon1",
           u"Telefon2"},
          {},
          {u"Nummer", u"Plz"},
          {u"Austrittsdatum", u"Eintrittsdatum", u"Geburtsdatum"}}},
        {u"clsZugKonten",
         u"LeseKonten",
         {1.0, 2024.0F, 0.0F, 0.0F},
         {{u"Bezeichnung"},
          {u"KtoBetrArt", u"FJahr"},
          {u"VKonto", u"EKonto", u"JWSoll", u"JWIst"},
          {},
          {},
          {},
          {u"MWSoll_", u"MWIst_"}}},
        {u"clsZugMitarbeiterMonate",
         u"LeseMitarbeiterMonate",
         {1.0, 0.0F, 0.0F, 1.0F, 13.0F},
         {{u"Anrede",   u"Art",     u"Fax",         u"Vorname", u"Name",    u"Name3",  u"Ort",
           u"Stand",    u"Strasse", u"Tel1",        u"Tel2",    u"Tel3",    u"EMail",  u"Homepage",
           u"BezEMail", u"BezFax",  u"BezHomepage", u"BezTel1", u"BezTel2", u"BezTel3"},
          {u"FJahr",       u"Monat",      u"ErhAbMon", u"AnzahlMa", u"PraeAbMon",   u"TAZeit",
           u"TAZeitAbMon", u"RUebPr",     u"RUebStd",  u"ISonst",   u"SAnzahlMaPr", u"IAnzahlMaPr",
           u"IArbtage",    u"SArbtage",   u"IUrlT",    u"SUrlT",    u"IAusb",       u"SAusb",
           u"ISonstTage",  u"SSonstTage", u"IAnwTage", u"SAnwTage", u"IKrank",      u"SKrank"},
          {u"Nummer",      u"Plz",          u"ErhAbMonDM",  u"ErhAbMonPr",   u"Gehalt",       u"IAnwBerStd",
           u"IAnwStd",     u"IBezStd",      u"IBezStdProd", u"IGesProdStd",  u"IProdLk",      u"IPStdVerDM",
           u"IStdVerDM",   u"IUnProdLk",    u"IKalkULohn",  u"SAnwBerStd",   u"SAnwStd",      u"SBezStd",
           u"SBezStdProd", u"SGesProdStd",  u"SProdLk",     u"SStdVerDM",    u"SUnProdLk",    u"SKalkULohn",
           u"PraeAbMonDM", u"PraeAbMonPr",  u"ProdZuPr",    u"TAZeitAbStd",  u"NBerPr",       u"NBerStd",
           u"StdLohn",     u"KostenSatzHW", u"IAV",         u"IBrutto",      u"IBruttoGes",   u"IVWL",
           u"IWG",         u"IUrl",         u"IRV",         u"IKV",          u"IPflege",      u"IErst",
           u"IRueck",      u"SAV",          u"SBrutto",     u"SBruttoGes",   u"SVWL",         u"SWG",
           u"SUrl",        u"SRV",          u"SKV",         u"SPflege",      u"SErst",        u"SSonst",
           u"SRueck",      u"IAdmPr",       u"SAdmPr",      u"IAdmStd",      u"SAdmStd",      u"IProdStd",
           u"SProdStd",    u"IUebStd",      u"SUebStd",     u"IProdAnwJahr", u"SProdAnwJahr", u"INBerStd",
           u"SNBerStd",    u"IBerStdJahr",  u"SBerStdJahr", u"IBerStdTag",   u"SBerStdTag"},
          {},
          {u"ADat", u"EDat", u"GDat"}}},
        {u"clsZugKosten",
         u"LeseKostenAlle",
         {1.0, 0.0F},
         {{},
          {u"Jahr"},
          {u"DAfa", u"DSons", u"DWag", u"MMieteJahr", u"MMieteMon", u"Priv", u"QM", u"QMPreis", u"UPausch", u"ZEK",
           u"ZPZins", u"ZDMZins"},
          {}}},
        {u"clsZugMaterial",
         u"LeseMaterialAlle",
         {1.0, 0.0F},
         {{},
          {u"Jahr", u"SUMMatpr_Su", u"IUMMatpr_Su"},
          {u"SMatVKPr", u"SUJMatDM", u"IMatVKPr", u"IUJMatDM", u"SUMMatDM_Su", u"IUMMatDM_Su"},
          {},
          {},
          {u"SUMMatpr_", u"IUMMatpr_"},
          {u"SUMMatDM_", u"IUMMatDM_"}}},
    };
}

TEST_F(SampleCompany, EveryClassAnswersItsGettersWithTheirTypes) {
    for (const auto& [name, operation, arguments, getters] : classes()) {
        SCOPED_TRACE(toUtf8(name));
        const auto access = reader(name);
        EXPECT_TRUE(access.truth(operation, arguments));
        ASSERT_FALSE(access.truth(u"EOF"));
        expectGetters(access, getters);
    }
}

TEST_F(SampleCompany, AtTheEndOfDataEveryGetterGivesItsTypesZero) {
    for (const auto& [name, operation, arguments, getters] : classes()) {
        SCOPED_TRACE(toUtf8(name));
        const auto access = reader(name);
        expectNothing(access, getters);
        access.call(operation, arguments);
        while (access.truth(u"MoveNext")) {
        }
        EXPECT_TRUE(access.truth(u"EOF"));
        EXPECT_FALSE(access.truth(u"MoveNext"));
        expectNothing(access, getters);
        expectGetters(access, getters);
    }
}

TEST_F(SampleCompany, GeneralCompanyDataHoldOneCompany) {
    const auto company = reader(u"clsZugFirmaAllg");
    EXPECT_TRUE(company.truth(u"LeseFirmaAllg", {1.0}));
    EXPECT_EQ(company.number(u"Fnr"), 1);
    EXPECT_EQ(company.text(u"Name1"), u"Müller & Söhne GmbH");
    EXPECT_EQ(company.number(u"Plz"), 1067);
    EXPECT_EQ(company.text(u"Bundesland"), u"Sachsen");
    EXPECT_EQ(company.text(u"Waehrung"), u"EUR");
    for (const auto* name : {u"Name2", u"Name3", u"Kurzbez", u"Strasse", u"Postfach", u"Ort", u"Land", u"Telefon1",
                             u"Telefon2", u"Fax"})
        expectType<String>(company, name);
    EXPECT_FALSE(company.truth(u"LeseFirmaAllg", {99.0}));
    EXPECT_EQ(company.text(u"Name1"), u"");
    EXPECT_EQ(errorOf([&] { company.call(u"EOF"); }).number(), long(ErrorNumber::MemberNotFound));
}

TEST_F(SampleCompany, CompaniesAreListedByNumber) {
    const auto companies = reader(u"clsZugFirmen");
    EXPECT_TRUE(companies.truth(u"LeseFirmenAlle"));
    EXPECT_EQ(companies.column(u"Name1"), (Values{u"Müller & Söhne GmbH", u"Elektro Jäger e. K."}));
}

TEST_F(SampleCompany, LetterCaseOfAMemberNameDoesNotMatter) {
    const auto turnover = reader(u"clsZugUmsatz");
    auto& object = turnover.object();
    EXPECT_EQ(object.idOf(u"IUmsatzDM_01"), object.idOf(u"iumsatzdm_01"));
    EXPECT_NE(object.idOf(u"IUmsatzDM_01"), object.idOf(u"sUmsatzDM_01"));
}

// --- Selections and orders

TEST_F(SampleCompany, TurnoverComesByYear) {
    const auto turnover = reader(u"clsZugUmsatz");
    turnover.call(u"LeseUmsatzAlle", {1.0});
    EXPECT_THAT(turnover.numbers(u"Jahr"), ElementsAre(2019, 2020, 2021, 2022, 2023, 2024, 2025));
    EXPECT_TRUE(turnover.truth(u"LeseUmsatzVonBis", {1.0, 2021.0F, 2023.0F}));
    EXPECT_THAT(turnover.numbers(u"Jahr"), ElementsAre(2021, 2022, 2023));
}

TEST_F(SampleCompany, ASelectionWithoutRecordsIsReadAllTheSame) {
    const auto turnover = reader(u"clsZugUmsatz");
    EXPECT_TRUE(turnover.truth(u"LeseUmsatzAlle", {2.0}));
    EXPECT_TRUE(turnover.truth(u"EOF"));
    EXPECT_FALSE(turnover.truth(u"MoveFirst"));
}

TEST_F(SampleCompany, YearsOfSettingsCostsAndMaterialComeInOrder) {
    const auto settings = reader(u"clsZugFirmaJahr");
    settings.call(u"LeseFirmaJahreVonBis", {1.0, std::int16_t(2020), std::int16_t(2022)});
    EXPECT_THAT(settings.numbers(u"Jahr"), ElementsAre(2020, 2021, 2022));
    const auto costs = reader(u"clsZugKosten");
    costs.call(u"LeseKostenAlle", {1.0, 0.0F});
    EXPECT_THAT(costs.numbers(u"Jahr"), ElementsAre(2023, 2024, 2025));
    costs.call(u"LeseKostenVonBis", {1.0, 2024.0F, 2024.0F});
    EXPECT_THAT(costs.numbers(u"Jahr"), ElementsAre(2024));
    const auto material = reader(u"clsZugMaterial");
    material.call(u"LeseMaterialAlle", {1.0, 0.0F});
    EXPECT_THAT(material.numbers(u"Jahr"), ElementsAre(2023, 2024, 2025));
    material.call(u"LeseMaterialVonBis", {1.0, 2025.0F, 2025.0F});
    EXPECT_THAT(material.numbers(u"Jahr"), ElementsAre(2025));
}

TEST_F(SampleCompany, HolidaysAreThoseOfTheStateAndYearByDate) {
    const auto holidays = reader(u"clsZugFeiertage");
    holidays.call(u"LeseFeiertage", {u"Sachsen", std::int16_t(2024)});
    EXPECT_EQ(holidays.column(u"FDatum"),
              (Values{dateOf(2024, 1, 1), dateOf(2024, 3, 29), dateOf(2024, 4, 1), dateOf(2024, 5, 1),
                      dateOf(2024, 5, 9), dateOf(2024, 5, 20), dateOf(2024, 10, 3), dateOf(2024, 10, 31),
                      dateOf(2024, 11, 20), dateOf(2024, 12, 25), dateOf(2024, 12, 26)}));
    holidays.call(u"LeseFeiertage", {u"Bayern", std::int16_t(2024)});
    EXPECT_TRUE(holidays.truth(u"EOF"));
}

TEST_F(SampleCompany, MonthThirteenIsTheYearsTotal) {
    const auto months = reader(u"clsZugMitarbeiterMonate");
    months.call(u"LeseMitarbeiterMonate", {1.0, 5.0F, 5.0F, 1.0F, 13.0F});
    double sum = 0;
    for (int month = 1; month <= 12; ++month, months.call(u"MoveNext")) {
        ASSERT_EQ(months.number(u"Monat"), month);
        sum += months.number(u"IBrutto");
    }
    EXPECT_EQ(months.number(u"Monat"), 13);
    EXPECT_NEAR(months.number(u"IBrutto"), sum, 0.001);

    months.call(u"LeseMitarbeiterMonate", {1.0, 5.0F, 5.0F, 13.0F, 13.0F});
    EXPECT_THAT(months.numbers(u"FJahr"), ElementsAre(2024, 2025));
}

TEST_F(SampleCompany, MonthsComeByYearThenNumberThenMonth) {
    const auto months = reader(u"clsZugMitarbeiterMonate");
    months.call(u"LeseMitarbeiterMonate", {1.0, 0.0F, 0.0F, 1.0F, 13.0F});
    std::vector<std::tuple<double, double, double>> keys;
    for (; !months.truth(u"EOF"); months.call(u"MoveNext"))
        keys.emplace_back(months.number(u"FJahr"), months.number(u"Nummer"), months.number(u"Monat"));
    EXPECT_GT(keys.size(), 300U);
    EXPECT_TRUE(std::is_sorted(keys.begin(), keys.end()));

    months.call(u"LeseMitarbeiterMonate", {1.0, 4.0F, 5.0F, 2.0F, 3.0F});
    EXPECT_THAT(months.numbers(u"Nummer"), ElementsAre(4, 4, 5, 5, 4, 4, 5, 5));
}

TEST_F(SampleCompany, DatesOfEmployeesAreNullOrTheZeroDateWhereMissing) {
    const auto months = reader(u"clsZugMitarbeiterMonate");
    months.call(u"LeseMitarbeiterMonate", {1.0, 10.0F, 10.0F, 13.0F, 13.0F});
    EXPECT_TRUE(months.call(u"EDat").isNull());
    EXPECT_EQ(months.call(u"GDat"), Variant(dateOf(1990, 10, 27)));
    months.call(u"LeseMitarbeiterMonate", {1.0, 12.0F, 12.0F, 13.0F, 13.0F});
    EXPECT_EQ(months.call(u"ADat"), Variant(dateOf(2024, 9, 30)));

    const auto staff = reader(u"clsZugMitarbeiter");
    staff.call(u"LeseMitarbeiter", {1.0, std::int16_t(0)});
    EXPECT_EQ(staff.call(u"Eintrittsdatum"), Variant(dateOf(1990, 8, 1)));
    EXPECT_EQ(staff.call(u"Austrittsdatum"), Variant(Date()));
}

TEST_F(SampleCompany, EmployeesOfAYearAreThoseWithDataOfThatYear) {
    const auto staff = reader(u"clsZugMitarbeiter");
    staff.call(u"LeseMitarbeiter", {1.0, std::int16_t(0)});
    EXPECT_THAT(staff.numbers(u"Nummer"), ElementsAre(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 20));
    staff.call(u"LeseMitarbeiter", {1.0, std::int16_t(2025)});
    EXPECT_THAT(staff.numbers(u"Nummer"), ElementsAre(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 20));
}

TEST_F(SampleCompany, AccountsComeByNumberAndCoverTheirRanges) {
    const auto accounts = reader(u"clsZugKonten");
    accounts.call(u"LeseKonten", {1.0, 2024.0F, 0.0F, 0.0F});
    const auto all = accounts.numbers(u"VKonto");
    EXPECT_EQ(all.size(), 39U);
    EXPECT_TRUE(std::is_sorted(all.begin(), all.end()));
    accounts.call(u"LeseKonten", {1.0, 2024.0F, 4125.0F, 4125.0F});
    EXPECT_THAT(accounts.numbers(u"VKonto"), ElementsAre(4120));
    accounts.call(u"LeseKonten", {1.0, 2025.0F, 4230.0F, 4250.0F});
    EXPECT_THAT(accounts.numbers(u"VKonto"), ElementsAre(4230, 4240, 4250));
    accounts.call(u"LeseKonten", {1.0, 1999.0F, 0.0F, 0.0F});
    EXPECT_TRUE(accounts.truth(u"EOF"));
}

TEST_F(SampleCompany, ProductModesOneAndTwoNarrowTheAccounts) {
    const auto count = [&](std::int16_t productMode) {
        const auto accounts = reader(u"clsZugKonten", productMode);
        accounts.call(u"LeseKonten", {1.0, 2024.0F, 0.0F, 0.0F});
        return accounts.column(u"VKonto").size();
    };
    EXPECT_EQ(count(1), 29U);
    EXPECT_EQ(count(2), 10U);
    EXPECT_EQ(count(7), 39U);
}

// --- The cursor

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
