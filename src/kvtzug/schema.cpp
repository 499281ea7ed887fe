#include "kvtzug/schema.h"
#include "values/letters.h"

#include <algorithm>
#include <utility>

namespace kvtdruck {
namespace {

using Kind = SchemaColumn::Kind;

/// A table under construction.
class Table {
  public:
    Table(const char* name, const char* meaning) : table_{name, meaning, {}} {}

    Table&& key(const char* name, const char* meaning, Kind kind = Kind::Number) && {
        return std::move(*this).add(name, kind, true, meaning);
    }
    Table&& text(const char* name, const char* meaning) && {
        return std::move(*this).add(name, Kind::Text, false, meaning);
    }
    Table&& date(const char* name, const char* meaning) && {
        return std::move(*this).add(name, Kind::Date, false, meaning);
    }
    Table&& number(const char* name, const char* meaning) && {
        return std::move(*this).add(name, Kind::Number, false, meaning);
    }
    /// A number that readers select by.
    Table&& selected(const char* name, const char* meaning) && {
        auto&& table = std::move(*this).add(name, Kind::Number, false, meaning);
        table_.columns.back().isSelected = true;
        return std::move(table);
    }
    /// The target and the actual figure of the same thing.
    Table&& pair(const std::string& name, const std::string& meaning) && {
        return std::move(*this)
            .add("s" + name, Kind::Number, false, meaning + ", Soll")
            .add("i" + name, Kind::Number, false, meaning + ", Ist");
    }
    /// One column for each month: the prefix and two digits.
    Table&& months(const std::string& prefix, const std::string& meaning) && {
        static constexpr const char* kNames[] = {"Januar",    "Februar", "März",     "April",
                                                 "Mai",       "Juni",    "Juli",     "August",
                                                 "September", "Oktober", "November", "Dezember"};
        for (int month = 1; month <= 12; ++month)
            std::move(*this).add(prefix + char('0' + month / 10) + char('0' + month % 10), Kind::Number, false,
                                 meaning + ", " + kNames[month - 1]);
        return std::move(*this);
    }

    operator SchemaTable() && { return std::move(table_); }

  private:
    Table&& add(std::string name, Kind kind, bool isKey, std::string meaning) && {
        table_.columns.push_back({std::move(name), kind, isKey, isKey, std::move(meaning)});
        return std::move(*this);
    }

    SchemaTable table_;
};

constexpr auto kCompany = "Nummer der Firma";
constexpr auto kYear = "Jahr";
constexpr auto kFinancialYear = "Geschäftsjahr";
constexpr auto kEmployee = "Personalnummer";

SchemaTable firma() {
    return Table("firma", "Die Firmen, für den Briefkopf jeder Liste.")
        .key("fnr", kCompany)
        .text("name1", "Name")
        .text("name2", "Name, zweite Zeile")
        .text("name3", "Name, dritte Zeile")
        .text("kurzbez", "Kurzbezeichnung")
        .text("strasse", "Straße und Hausnummer")
        .text("postfach", "Postfach")
        .number("plz", "Postleitzahl; eine Zahl oder ein Text aus Ziffern")
        .text("ort", "Ort")
        .text("land", "Land; bei „Deutschland“ hat die Postleitzahl fünf Stellen")
        .text("bundesland", "Bundesland, geschrieben wie in der Tabelle feiertage")
        .text("telefon1", "Telefon")
        .text("telefon2", "Telefon, zweite Nummer")
        .text("fax", "Telefax")
        .text("waehrung", "Währung der Beträge, etwa EUR");
}

SchemaTable umsatz() {
    return Table("umsatz", "Umsatz eines Jahres und seiner Monate, in Währung.")
        .key("fnr", kCompany)
        .key("jahr", kYear)
        .number("iumsatzdm", "Umsatz Ist des Jahres")
        .months("iumsatzdm_", "Umsatz Ist")
        .number("sumsatzdm", "Umsatz Soll des Jahres")
        .months("sumsatzdm_", "Umsatz Soll");
}

SchemaTable firmaJahre() {
    return Table("firma_jahre",
                 "Vorgaben einer Firma für ein Jahr. Beitragssätze sind die vollen Sätze, Arbeitgeber "
                 "und Arbeitnehmer zusammen.")
        .key("fnr", kCompany)
        .key("jahr", kYear)
        .number("anzahlfeiertage", "Feiertage an Werktagen, Tage")
        .number("anzahlfeiertageson", "Feiertage an Sonntagen, Tage")
        .number("anzahlfeiertagesam", "Feiertage an Samstagen, Tage")
        .number("jahrestage", "Tage des Jahres")
        .number("anzahlsonntage", "Sonntage, Tage")
        .number("anzahlsamstage", "Samstage, Tage")
        .months("arbeitstage", "Arbeitstage, Tage")
        .number("grenzerentenversicherung", "Beitragsbemessungsgrenze der Rentenversicherung je Monat, Währung")
        .number("grenzeaushilfskraft", "Verdienstgrenze einer Aushilfskraft je Monat, Währung")
        .number("grenzegeringverdiener", "Verdienstgrenze eines Geringverdieners je Monat, Währung")
        .number("arbeitslosenversicherung", "Beitragssatz der Arbeitslosenversicherung, Prozent")
        .number("pflegeversicherung", "Beitragssatz der Pflegeversicherung, Prozent")
        .number("krankenversicherung", "Beitragssatz der Krankenversicherung mit Zusatzbeitrag, Prozent")
        .number("rentenversicherung", "Beitragssatz der Rentenversicherung, Prozent")
        .number("steuersatzaushilfe", "Pauschaler Steuersatz für Aushilfen, Prozent")
        .number("tagesarbeitszeit", "Arbeitszeit je Tag, Stunden")
        .number("durchueberstundenzuschlag", "Durchschnittlicher Überstundenzuschlag, Prozent")
        .number("erstattungsumlage", "Erstattungsumlage (U1, U2), Prozent")
        .number("krankheitstage", "Krankheitstage je Mitarbeiter, Tage")
        .number("vorgabeurlaubsgeld", "Urlaubsgeld, Prozent eines Monatslohns")
        .number("urlaubstage", "Urlaubstage je Mitarbeiter, Tage")
        .number("vorgabeweihnachtsgeld", "Weihnachtsgeld, Prozent eines Monatslohns")
        .number("vwl", "Vermögenswirksame Leistungen je Monat, Währung");
}

SchemaTable feiertage() {
    return Table("feiertage", "Gesetzliche Feiertage eines Bundeslandes.")
        .key("bundesland", "Bundesland, geschrieben wie in der Tabelle firma", Kind::Text)
        .key("jahr", kYear)
        .key("fdatum", "Datum", Kind::Date)
        .text("feiertag", "Name des Feiertags");
}

SchemaTable mitarbeiter() {
    return Table("mitarbeiter", "Die Mitarbeiter einer Firma.")
        .key("fnr", kCompany)
        .key("nummer", kEmployee)
        .text("anrede", "Anrede")
        .text("vorname", "Vorname")
        .text("name", "Nachname")
        .text("name3", "Namenszusatz")
        .text("art", "Art der Beschäftigung, etwa Geselle")
        .text("stand", "Familienstand")
        .date("geburtsdatum", "Geburtsdatum")
        .date("eintrittsdatum", "Eintritt")
        .date("austrittsdatum", "Austritt; leer, solange beschäftigt")
        .text("strasse", "Straße und Hausnummer")
        .number("plz", "Postleitzahl; eine Zahl oder ein Text aus Ziffern")
        .text("ort", "Ort")
        .text("land", "Land")
        .text("telefon1", "Telefon")
        .text("telefon2", "Telefon, zweite Nummer")
        .text("telefon3", "Telefon, dritte Nummer")
        .text("fax", "Telefax")
        .text("email", "E-Mail-Adresse")
        .text("homepage", "Internetadresse")
        .text("beztel1", "wofür telefon1 ist, etwa dienstlich")
        .text("beztel2", "wofür telefon2 ist")
        .text("beztel3", "wofür telefon3 ist")
        .text("bezfax", "wofür fax ist")
        .text("bezemail", "wofür email ist")
        .text("bezhomepage", "wofür homepage ist");
}

SchemaTable mitarbeiterJahre() {
    return Table("mitarbeiter_jahre", "Vertrag und Kalkulation eines Mitarbeiters in einem Geschäftsjahr.")
        .key("fnr", kCompany)
        .key("nummer", kEmployee)
        .key("fjahr", kFinancialYear)
        .number("anzahlma", "Anteil an einer Vollzeitstelle, 1 für eine ganze")
        .pair("anzahlmapr", "Produktiver Anteil, Prozent")
        .number("gehalt", "Gehalt je Monat, Währung; 0 bei Stundenlohn")
        .number("stdlohn", "Stundenlohn, Währung")
        .number("erhabmon", "Erhöhung ab diesem Monat, 1 bis 12; 0 für keine")
        .number("erhabmondm", "Erhöhung, Währung")
        .number("erhabmonpr", "Erhöhung, Prozent")
        .number("praeabmon", "Prämie ab diesem Monat, 1 bis 12; 0 für keine")
        .number("praeabmondm", "Prämie, Währung")
        .number("praeabmonpr", "Prämie, Prozent")
        .number("tazeit", "Arbeitszeit je Tag, Stunden")
        .number("tazeitabmon", "Andere Arbeitszeit ab diesem Monat, 1 bis 12; 0 für keine")
        .number("tazeitabstd", "Arbeitszeit je Tag ab diesem Monat, Stunden")
        .number("ruebpr", "Überstundenzuschlag, Prozent")
        .number("ruebstd", "Überstunden des Jahres, Stunden")
        .number("nberpr", "Nicht berechenbare Zeit, Prozent")
        .number("nberstd", "Nicht berechenbare Zeit des Jahres, Stunden")
        .number("prodzupr", "Zuschlag auf den produktiven Lohn, Prozent")
        .pair("anwberstd", "Berechenbare Stunden der Anwesenheit")
        .pair("bezstd", "Bezahlte Stunden")
        .pair("bezstdprod", "Produktiver Teil der bezahlten Stunden")
        .pair("gesprodstd", "Produktive Stunden mit Überstunden")
        .pair("prodlk", "Produktive Lohnkosten, Währung")
        .pair("unprodlk", "Unproduktive Lohnkosten, Währung")
        .pair("stdverdm", "Verrechnungssatz je Stunde, Währung")
        .number("ipstdverdm", "Lohnkosten je berechenbarer Stunde, Währung, Ist")
        .pair("kalkulohn", "Kalkulatorischer Unternehmerlohn, Währung")
        .number("kostensatzhw", "Kostensatz des Handwerks je Stunde, Währung");
}

SchemaTable mitarbeiterMonate() {
    return Table("mitarbeiter_monate", "Kosten (in Währung) und Zeiten eines Mitarbeiters in einem Monat; Monat 13 "
                                       "ist die Summe des Jahres.")
        .key("fnr", kCompany)
        .key("nummer", kEmployee)
        .key("fjahr", kFinancialYear)
        .key("monat", "Monat, 1 bis 12; 13 für das Jahr")
        .pair("brutto", "Bruttolohn")
        .pair("vwl", "Vermögenswirksame Leistungen")
        .pair("url", "Urlaubsgeld")
        .pair("wg", "Weihnachtsgeld")
        .pair("sonst", "Sonstiges Entgelt")
        .pair("bruttoges", "Diese fünf zusammen, von Januar an aufgelaufen")
        .pair("rv", "Rentenversicherung, Anteil des Arbeitgebers")
        .pair("kv", "Krankenversicherung, Anteil des Arbeitgebers")
        .pair("av", "Arbeitslosenversicherung, Anteil des Arbeitgebers")
        .pair("pflege", "Pflegeversicherung, Anteil des Arbeitgebers")
        .pair("erst", "Erstattungsumlage")
        .pair("rueck", "Rückstellung für nicht genommenen Urlaub")
        .pair("arbtage", "Arbeitstage")
        .pair("urlt", "Urlaubstage")
        .pair("krank", "Krankheitstage")
        .pair("ausb", "Tage der Ausbildung")
        .pair("sonsttage", "Sonstige freie Tage")
        .pair("anwtage", "Tage der Anwesenheit")
        .pair("anwstd", "Stunden der Anwesenheit")
        .pair("admpr", "Verwaltung, Prozent der Anwesenheit")
        .pair("admstd", "Stunden der Verwaltung")
        .pair("prodstd", "Produktive Stunden")
        .pair("uebstd", "Überstunden")
        .pair("prodanwjahr", "Produktive Stunden mit Überstunden")
        .pair("nberstd", "Nicht berechenbare Stunden")
        .pair("berstdjahr", "Berechenbare Stunden")
        .pair("berstdtag", "Berechenbare Stunden je Tag der Anwesenheit");
}

SchemaTable konten() {
    return Table("konten", "Konten oder Kontenbereiche eines Geschäftsjahres, in Währung.")
        .key("fnr", kCompany)
        .key("fjahr", kFinancialYear)
        .key("vkonto", "Erstes Konto der Zeile")
        .selected("ekonto", "Letztes Konto der Zeile; das erste, wo es nur eines ist")
        .selected("kontenart", "1 Gemeinkosten, 2 neutrale Aufwendungen und Erträge")
        .text("bezeichnung", "Bezeichnung")
        .number("ktobetrart", "0 Aufwand, sonst Ertrag")
        .number("jwsoll", "Soll des Jahres")
        .number("jwist", "Ist des Jahres")
        .months("mwsoll_", "Soll")
        .months("mwist_", "Ist");
}

SchemaTable kosten() {
    return Table("kosten", "Kalkulatorische Kosten eines Jahres, in Währung.")
        .key("fnr", kCompany)
        .key("jahr", kYear)
        .number("dafa", "Abschreibungen")
        .number("dsons", "Sonstige kalkulatorische Kosten")
        .number("dwag", "Wagnisse")
        .number("qm", "Eigene Räume, Quadratmeter")
        .number("qmpreis", "Miete je Quadratmeter und Monat")
        .number("mmietemon", "Kalkulatorische Miete je Monat")
        .number("mmietejahr", "Kalkulatorische Miete je Jahr")
        .number("priv", "Privatanteil; er steht nachrichtlich und zählt nicht mit")
        .number("upausch", "Unternehmerlohn, pauschal")
        .number("zek", "Eigenkapital")
        .number("zpzins", "Zinssatz, Prozent")
        .number("zdmzins", "Zinsen auf das Eigenkapital");
}

SchemaTable material() {
    return Table("material",
                 "Materialeinsatz eines Jahres und seiner Monate, in Währung und in Prozent des Umsatzes.")
        .key("fnr", kCompany)
        .key("jahr", kYear)
        .pair("matvkpr", "Anteil am Verkaufspreis, Prozent")
        .pair("ujmatdm", "Materialeinsatz des Jahres, Währung")
        .pair("ummatdm_su", "Summe der Monate, Währung")
        .pair("ummatpr_su", "Summe der Monate, Prozent des Umsatzes")
        .months("summatdm_", "Materialeinsatz Soll, Währung")
        .months("summatpr_", "Materialeinsatz Soll, Prozent des Umsatzes")
        .months("iummatdm_", "Materialeinsatz Ist, Währung")
        .months("iummatpr_", "Materialeinsatz Ist, Prozent des Umsatzes");
}

} // namespace

std::string SchemaTable::yearColumn() const {
    for (const auto* year : {"jahr", "fjahr"})
        if (find(year))
            return year;
    return {};
}

const SchemaColumn* SchemaTable::find(std::string_view column) const {
    const auto found = std::ranges::find_if(
        columns, [&](const SchemaColumn& own) { return asciiLower(own.name) == asciiLower(column); });
    return found == columns.end() ? nullptr : &*found;
}

const std::vector<SchemaTable>& schema() {
    static const std::vector<SchemaTable> tables{
        firma(),  umsatz(), firmaJahre(), feiertage(), mitarbeiter(), mitarbeiterJahre(), mitarbeiterMonate(),
        konten(), kosten(), material()};
    return tables;
}

const SchemaTable* findTable(std::string_view name) {
    const auto& tables = schema();
    const auto found = std::ranges::find_if(
        tables, [&](const SchemaTable& table) { return asciiLower(table.name) == asciiLower(name); });
    return found == tables.end() ? nullptr : &*found;
}

const SchemaTable* parentOf(const SchemaTable& table) {
    if (!table.isOfCompany() || table.name == "firma")
        return nullptr;
    return findTable(table.name == "mitarbeiter_monate"  ? "mitarbeiter_jahre"
                     : table.name == "mitarbeiter_jahre" ? "mitarbeiter"
                                                         : "firma");
}

} // namespace kvtdruck
