#include "kvtzug/reader_class.h"

#include <initializer_list>
#include <utility>

namespace kvtdruck {
namespace {

/// A column table under construction. A column bears its getter's name unless said otherwise (letter case does not
/// matter to a database).
class Columns {
  public:
    Columns&& texts(std::initializer_list<StringView> getters) && {
        return std::move(*this).add(getters, ColumnType::Text);
    }
    Columns&& singles(std::initializer_list<StringView> getters) && {
        return std::move(*this).add(getters, ColumnType::Single);
    }
    Columns&& doubles(std::initializer_list<StringView> getters) && {
        return std::move(*this).add(getters, ColumnType::Double);
    }
    Columns&& dates(std::initializer_list<StringView> getters) && {
        return std::move(*this).add(getters, ColumnType::Date);
    }

    /// A getter that is fed by a column of another name.
    Columns&& named(StringView getter, StringView column, ColumnType type) && {
        columns_.push_back({String(getter), String(column), type});
        return std::move(*this);
    }

    /// One column per month: the prefix and the month in two digits.
    Columns&& months(StringView prefix, ColumnType type) && {
        for (char16_t month = 1; month <= 12; ++month) {
            const char16_t digits[] = {char16_t(u'0' + month / 10), char16_t(u'0' + month % 10)};
            const auto name = String(prefix) + String(digits, 2);
            columns_.push_back({name, name, type});
        }
        return std::move(*this);
    }

    operator std::vector<Column>() && { return std::move(columns_); }

  private:
    Columns&& add(std::initializer_list<StringView> getters, ColumnType type) && {
        for (const auto getter : getters)
            columns_.push_back({String(getter), String(getter), type});
        return std::move(*this);
    }

    std::vector<Column> columns_;
};

constexpr auto kNumber = ValueType::Double;
constexpr auto kSingle = ValueType::Single;
constexpr auto kInteger = ValueType::Integer;
constexpr auto kText = ValueType::Text;

constexpr StringView kOfCompany = u"fnr = ?";
/// The months of every employee, each with the year and the person that it belongs to.
constexpr StringView kEmployeeMonths = u"mitarbeiter_monate JOIN mitarbeiter_jahre USING (fnr, nummer, fjahr) "
                                       u"JOIN mitarbeiter USING (fnr, nummer)";
constexpr StringView kOfYears = u"fnr = ? AND jahr BETWEEN ? AND ?";

// long: one table, with an entry for each class.
std::vector<ReaderClass> readerClasses() {
    using enum ColumnType;
    return {
        {.name = u"clsZugFirmaAllg",
         .tables = u"firma",
         .columns = Columns()
                        .doubles({u"Fnr", u"Plz"})
                        .texts({u"Name1", u"Name2", u"Name3", u"Kurzbez", u"Strasse", u"Postfach", u"Ort", u"Land",
                                u"Bundesland", u"Telefon1", u"Telefon2", u"Fax", u"Waehrung"}),
         .operations = {{u"LeseFirmaAllg", kOfCompany, {kNumber}, {0}}},
         .key = {u"Fnr"},
         .single = true},

        // Not asked for by any report: hosts list the companies with it.
        {.name = u"clsZugFirmen",
         .tables = u"firma",
         .columns = Columns().doubles({u"Fnr", u"Plz"}).texts({u"Name1", u"Name2", u"Ort"}),
         .operations = {{u"LeseFirmenAlle", u"1 = 1", {}, {}}},
         .key = {u"Fnr"}},

        {.name = u"clsZugUmsatz",
         .tables = u"umsatz",
         .columns = Columns()
                        .singles({u"Jahr"})
                        .doubles({u"IUmsatzDM", u"sUmsatzDM"})
                        .months(u"IUmsatzDM_", Double)
                        .months(u"sUmsatzDM_", Double),
         .operations = {{u"LeseUmsatzAlle", kOfCompany, {kNumber}, {0}},
                        {u"LeseUmsatzVonBis", kOfYears, {kNumber, kSingle, kSingle}, {0, 1, 2}}},
         .key = {u"Jahr"}},

        {.name = u"clsZugFirmaJahr",
         .tables = u"firma_jahre",
         .columns = Columns()
                        .singles({u"Jahr", u"AnzahlFeiertage", u"AnzahlFeiertageSon", u"AnzahlFeiertageSam",
                                  u"Jahrestage", u"AnzahlSonntage", u"AnzahlSamstage"})
                        .months(u"Arbeitstage", Single)
                        .doubles({u"GrenzeRentenversicherung"})
                        .singles({u"GrenzeAushilfskraft", u"GrenzeGeringverdiener", u"Arbeitslosenversicherung",
                                  u"Pflegeversicherung", u"Krankenversicherung", u"Rentenversicherung",
                                  u"SteuersatzAushilfe", u"Tagesarbeitszeit", u"DurchUeberstundenzuschlag",
                                  u"Erstattungsumlage", u"Krankheitstage", u"VorgabeUrlaubsgeld", u"Urlaubstage",
                                  u"VorgabeWeihnachtsgeld", u"VWL"}),
         .operations = {{u"LeseFirmaJahreAlle", kOfCompany, {kNumber}, {0}},
                        {u"LeseFirmaJahreVonBis", kOfYears, {kNumber, kInteger, kInteger}, {0, 1, 2}}},
         .key = {u"Jahr"}},

        {.name = u"clsZugFeiertage",
         .tables = u"feiertage",
         .columns = Columns().dates({u"FDatum"}).texts({u"Feiertag"}),
         .operations = {{u"LeseFeiertage", u"bundesland = ? AND jahr = ?", {kText, kInteger}, {0, 1}}},
         .key = {u"FDatum"}},

        {.name = u"clsZugMitarbeiter",
         .tables = u"mitarbeiter",
         .columns = Columns()
                        .texts({u"Anrede", u"Art", u"Fax", u"Land", u"Vorname", u"Name", u"Ort", u"Stand",
                                u"Strasse", u"Telefon1", u"Telefon2"})
                        .dates({u"Austrittsdatum", u"Eintrittsdatum", u"Geburtsdatum"})
                        .doubles({u"Nummer", u"Plz"}),
         // Year 0 means everybody; another year those who have data of that year.
         .operations =
             {{u"LeseMitarbeiter",
               u"fnr = ? AND (? = 0 OR EXISTS (SELECT 1 FROM mitarbeiter_jahre WHERE mitarbeiter_jahre.fnr = "
               u"mitarbeiter.fnr AND mitarbeiter_jahre.nummer = mitarbeiter.nummer AND "
               u"mitarbeiter_jahre.fjahr = ?))",
               {kNumber, kInteger},
               {0, 1, 1}}},
         .key = {u"Nummer"}},

        {.name = u"clsZugKonten",
         .tables = u"konten",
         .columns = Columns()
                        .doubles({u"VKonto", u"EKonto", u"JWSoll", u"JWIst"})
                        .texts({u"Bezeichnung"})
                        .singles({u"KtoBetrArt", u"FJahr"})
                        .months(u"MWSoll_", Double)
                        .months(u"MWIst_", Double),
         // An account's row may stand for a range of accounts; it belongs to a selection that it overlaps. Product
         // modes 1 and 2 narrow the accounts to overheads or to neutral expenses and income; any other takes both.
         .operations = {{u"LeseKonten",
                         u"fnr = ? AND fjahr = ? AND (? = 0 AND ? = 0 OR ekonto >= ? AND vkonto <= ?) "
                         u"AND (? NOT IN (1, 2) OR kontenart = ?)",
                         {kNumber, kSingle, kSingle, kSingle},
                         {0, 1, 2, 3, 2, 3, kProductMode, kProductMode}}},
         .key = {u"VKonto"}},

        // Hosts learn from these three, which no report asks for either, what can be selected.
        {.name = u"clsZugKontenJahre",
         .tables = u"konten",
         .columns = Columns().singles({u"FJahr"}),
         .operations = {{u"LeseKontenJahre",
                         u"fnr = ? AND (? NOT IN (1, 2) OR kontenart = ?)",
                         {kNumber},
                         {0, kProductMode, kProductMode}}},
         .key = {u"FJahr"},
         .atOnce = 1},

        {.name = u"clsZugMitarbeiterNummern",
         .tables = kEmployeeMonths,
         .columns = Columns().doubles({u"Nummer"}),
         .operations = {{u"LeseMitarbeiterNummern",
                         u"fnr = ? AND monat BETWEEN ? AND ? AND fjahr BETWEEN ? AND ?",
                         {kNumber, kSingle, kSingle},
                         {0, 1, 2, kFirstYear, kLastYear}}},
         .key = {u"Nummer"},
         .distinct = true},

        {.name = u"clsZugMitarbeiterJahre",
         .tables = kEmployeeMonths,
         .columns = Columns().singles({u"FJahr"}),
         .operations = {{u"LeseMitarbeiterJahre", kOfCompany, {kNumber}, {0}}},
         .key = {u"FJahr"},
         .distinct = true},

        {.name = u"clsZugMitarbeiterMonate",
         .tables = kEmployeeMonths,
         .columns =
             Columns()
                 .doubles({u"Nummer"})
                 .singles({u"FJahr", u"Monat"})
                 // The employee.
                 .texts({u"Anrede", u"Art", u"Fax", u"Vorname", u"Name", u"Name3", u"Ort", u"Stand", u"Strasse",
                         u"EMail", u"Homepage", u"BezEMail", u"BezFax", u"BezHomepage", u"BezTel1", u"BezTel2",
                         u"BezTel3"})
                 .named(u"Tel1", u"telefon1", Text)
                 .named(u"Tel2", u"telefon2", Text)
                 .named(u"Tel3", u"telefon3", Text)
                 .named(u"ADat", u"austrittsdatum", OptionalDate)
                 .named(u"EDat", u"eintrittsdatum", OptionalDate)
                 .named(u"GDat", u"geburtsdatum", OptionalDate)
                 .doubles({u"Plz"})
                 // The employee's contract and calculation of the year.
                 .singles({u"ErhAbMon", u"AnzahlMa", u"PraeAbMon", u"TAZeit", u"TAZeitAbMon", u"RUebPr", u"RUebStd",
                           u"SAnzahlMaPr", u"IAnzahlMaPr"})
                 .doubles({u"ErhAbMonDM",  u"ErhAbMonPr",  u"Gehalt",      u"IAnwBerStd",  u"IBezStd",
                           u"IBezStdProd", u"IGesProdStd", u"IProdLk",     u"IPStdVerDM",  u"IStdVerDM",
                           u"IUnProdLk",   u"IKalkULohn",  u"SAnwBerStd",  u"SBezStd",     u"SBezStdProd",
                           u"SGesProdStd", u"SProdLk",     u"SStdVerDM",   u"SUnProdLk",   u"SKalkULohn",
                           u"PraeAbMonDM", u"PraeAbMonPr", u"ProdZuPr",    u"TAZeitAbStd", u"NBerPr",
                           u"NBerStd",     u"StdLohn",     u"KostenSatzHW"})
                 // Costs of the month.
                 .doubles({u"IAV",     u"IBrutto",    u"IBruttoGes", u"IVWL",   u"IWG",    u"IUrl",
                           u"IRV",     u"IKV",        u"IPflege",    u"IErst",  u"IRueck", u"SAV",
                           u"SBrutto", u"SBruttoGes", u"SVWL",       u"SWG",    u"SUrl",   u"SRV",
                           u"SKV",     u"SPflege",    u"SErst",      u"SSonst", u"SRueck"})
                 .singles({u"ISonst"})
                 // Times of the month.
                 .singles({u"IArbtage", u"IUrlT", u"IAusb", u"ISonstTage", u"IAnwTage", u"IKrank", u"SArbtage",
                           u"SUrlT", u"SAusb", u"SSonstTage", u"SAnwTage", u"SKrank"})
                 .doubles({u"IAnwStd", u"IAdmPr", u"IAdmStd", u"IProdStd", u"IUebStd", u"IProdAnwJahr", u"INBerStd",
                           u"IBerStdJahr", u"IBerStdTag", u"SAnwStd", u"SAdmPr", u"SAdmStd", u"SProdStd",
                           u"SUebStd", u"SProdAnwJahr", u"SNBerStd", u"SBerStdJahr", u"SBerStdTag"}),
         // The sign keeps SQLite from searching by the years, from the first of which every block would be read
         // again: it goes on from the key (https://www.sqlite.org/optoverview.html, "Disqualifying WHERE-Clause
         // Terms").
         .operations = {{u"LeseMitarbeiterMonate",
                         u"fnr = ? AND (? = 0 AND ? = 0 OR nummer BETWEEN ? AND ?) AND monat BETWEEN ? AND ? "
                         u"AND +fjahr BETWEEN ? AND ?",
                         {kNumber, kSingle, kSingle, kSingle, kSingle},
                         {0, 1, 2, 1, 2, 3, 4, kFirstYear, kLastYear}}},
         .key = {u"FJahr", u"Nummer", u"Monat"}},

        {.name = u"clsZugKosten",
         .tables = u"kosten",
         .columns =
             Columns().singles({u"Jahr"}).doubles({u"DAfa", u"DSons", u"DWag", u"MMieteJahr", u"MMieteMon", u"Priv",
                                                   u"QM", u"QMPreis", u"UPausch", u"ZEK", u"ZPZins", u"ZDMZins"}),
         .operations = {{u"LeseKostenAlle", kOfCompany, {kNumber, kSingle}, {0}},
                        {u"LeseKostenVonBis", kOfYears, {kNumber, kSingle, kSingle}, {0, 1, 2}}},
         .key = {u"Jahr"}},

        {.name = u"clsZugMaterial",
         .tables = u"material",
         .columns =
             Columns()
                 .singles({u"Jahr"})
                 .doubles({u"SMatVKPr", u"SUJMatDM", u"IMatVKPr", u"IUJMatDM", u"SUMMatDM_Su", u"IUMMatDM_Su"})
                 .singles({u"SUMMatpr_Su", u"IUMMatpr_Su"})
                 .months(u"SUMMatDM_", Double)
                 .months(u"SUMMatpr_", Single)
                 .months(u"IUMMatDM_", Double)
                 .months(u"IUMMatpr_", Single),
         .operations = {{u"LeseMaterialAlle", kOfCompany, {kNumber, kSingle}, {0}},
                        {u"LeseMaterialVonBis", kOfYears, {kNumber, kSingle, kSingle}, {0, 1, 2}}},
         .key = {u"Jahr"}},
    };
}

} // namespace

const std::vector<ReaderClass>& allReaderClasses() {
    static const auto classes = readerClasses();
    return classes;
}

const ReaderClass* findReaderClass(StringView name) {
    for (const auto& candidate : allReaderClasses())
        if (candidate.name == name)
            return &candidate;
    return nullptr;
}

} // namespace kvtdruck
