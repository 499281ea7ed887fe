// What every reader class answers, on every kind of database: members, types, selections and orders.
#include "kvtzug/readers_fixture.h"
#include "values/calendar.h"
#include "values/runtime_error.h"
#include "values/text.h"

#include <gmock/gmock.h>

#include <vector>

namespace kvtdruck::test {
namespace {

using testing::ElementsAre;

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

// long: a table, with an entry for each class.
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

} // namespace
} // namespace kvtdruck::test
