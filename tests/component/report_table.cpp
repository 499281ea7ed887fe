#include "component/report_table.h"

#include "values/conversion.h"

#include <ostream>
#include <sstream>

namespace kvtdruck::test {
namespace {

const std::string kMonthRow = "Firmennummer ~Fuerjahr";
const std::string kMasterSheet =
    "Firmennummer ~Fuerjahr #Anrede #ADat #Art #EDat #Fax #GDat #Vorname #Name Nummer #Ort Plz #Stand "
    "#Strasse #Tel1 #Tel2 ~ErhAbMon ErhAbMonDM ErhAbMonPr Gehalt IAnwBerStd IAnwStd IBezStd IBezStdProd "
    "IGesProdStd IProdLk IPStdVerDM IStdVerDM IUnProdLk IKalkULohn SAnwBerStd SAnwStd SBezStd SBezStdProd "
    "SGesProdStd SProdLk SStdVerDM SUnProdLk SKalkULohn ~AnzahlMa ~PraeAbMon PraeAbMonDM PraeAbMonPr "
    "ProdZuPr ~TAZeit ~TAZeitAbMon TAZeitAbStd NBerPr NBerStd ~RUebPr ~RUebStd ~SAnzahlMaPr ~IAnzahlMaPr "
    "StdLohn #Name3 KostenSatzHW #Tel3 #EMail #Homepage #BezEMail #BezFax #BezHomepage #BezTel1 #BezTel2 "
    "#BezTel3";
const std::string kAccountFields =
    "VKonto EKonto #Bezeichnung JWIst JWSoll ~KtoBetrArt ~FJahr Seitenwechsel MonatIst "
    "MonatSoll #MonatText #Waehrung";
const std::string kPeriod = "Firmennummer Jahr=3 SVMon SBMon IVMon IBMon";
const std::string kVariables = "Definiere_Übergebe_Variablen";
const std::string kNoEmployees = "Die Mitarbeiter konnten nicht gelesen werden.";
const std::string kNoAccounts = "Die Konten konnten nicht gelesen werden";

} // namespace

// long: the table, with an entry for each report.
const std::vector<ReportDescription>& allReports() {
    static const std::vector<ReportDescription> reports{
        {"Umsatz", "clsDruck_Umsatz", "Umsatz", "clsZugUmsatz", "Lese_Umsatz",
         "Die Umsatzdaten konnten nicht gelesen werden", "Definiere_Übergebe_Variablen_Jahr",
         "Firmennummer Fuerjahr", "#Waehrung IUmsatzDM IUmsatzDM_* sUmsatzDM sUmsatzDM_*"},
        {"MitUeber", "clsDruck_MitarbeiterUebersicht", "Mitarbeiter-Übersicht", "clsZugMitarbeiter",
         "Lese_Mitarbeiter", kNoEmployees, kVariables, "Firmennummer Fuerjahr #UebMitte",
         "#Anrede #Austrittsdatum #Art #Eintrittsdatum #Fax #Geburtsdatum #Land #Vorname #Name Nummer #Ort Plz "
         "#Stand "
         "#Strasse #Telefon1 #Telefon2"},
        {"Firma", "clsDruck_Firma", "Allgemeine Firmendaten", "clsZugFirmaJahr", "Lese_Firmendaten",
         "Die Firmendaten konnten nicht gelesen werden", "Definiere_Übergebe_Variablen_Allg",
         "Firmennummer ~AnzahlFeiertage ~AnzahlFeiertageSon ~AnzahlFeiertageSam ~Jahrestage ~AnzahlSonntage "
         "~AnzahlSamstage "
         "~Arbeitstage* GrenzeRentenversicherung ~GrenzeAushilfskraft ~GrenzeGeringverdiener ~FuerJahr "
         "~Arbeitslosenversicherung ~Pflegeversicherung ~Krankenversicherung ~Rentenversicherung "
         "~SteuersatzAushilfe "
         "~Tagesarbeitszeit ~DurchUeberstundenzuschlag ~Erstattungsumlage ~Krankheitstage ~VorgabeUrlaubsgeld "
         "~Urlaubstage "
         "~VorgabeWeihnachtsgeld ~VWL",
         "#FDatum #Feiertag"},
        {"GemeinK", "clsDruck_GemeinK", "Gemeinkosten", "clsZugKonten", "Lese_Konten", kNoAccounts, kVariables,
         "Firmennummer ~FuerJahr", kAccountFields},
        {"NeutralA", "clsDruck_NeutralA", "Neutrale Aufwendungen", "clsZugKonten", "Lese_Konten", kNoAccounts,
         kVariables, "Firmennummer ~FuerJahr", kAccountFields},
        {"MaKost", "clsDruck_MitarbeiterKosten", "Mitarbeiter-Kosten", "clsZugMitarbeiterMonate",
         "Lese_Mitarbeiter", kNoEmployees, kVariables, kMonthRow,
         "#Name Seitenwechsel Nummer ~FJahr IBrutto SBrutto IBruttoGes SBruttoGes IUrl SUrl IVWL SVWL IWG SWG "
         "IAdmPr "
         "SAdmPr ~Monat"},
        {"MaZeit", "clsDruck_MitarbeiterZeiten", "Mitarbeiter-Zeiten", "clsZugMitarbeiterMonate",
         "Lese_Mitarbeiter", kNoEmployees, kVariables, kMonthRow,
         "Seitenwechsel ~FJahr #Name Nummer ~Monat IAdmPr ~IAnwTage ~IKrank ~ISonstTage ~IUrlT ~IAusb IProdStd "
         "IUebStd "
         "INBerStd IBerStdJahr IBerSzdTag SAdmPr ~SAnwTage ~SKrank ~SSonstTage ~SUrlT ~SAusb SProdStd SUebStd "
         "SNBerStd "
         "SBerStdJahr SBerSzdTag"},
        {"MaStKost", "clsDruck_MitarbeiterStammKosten", "Mitarbeiter-Stammblatt-Kosten", "clsZugMitarbeiterMonate",
         "Lese_Mitarbeiter", kNoEmployees, kVariables, kMasterSheet,
         "IAV IBrutto IBruttoGes IVWL IWG IUrl IRV IKV IPflege IErst ~ISONST IRueck SAV SBrutto SBruttoGes SVWL "
         "SWG "
         "SUrl SRV SKV SPflege SErst SSonst SRueck ~Monat"},
        {"MaStZeit", "clsDruck_MitarbeiterStZeiten", "Mitarbeiter-Stammblatt-Zeiten", "clsZugMitarbeiterMonate",
         "Lese_Mitarbeiter", kNoEmployees, kVariables, kMasterSheet,
         "~SArbtage ~SUrlT ~SAusb ~SSonstTage ~SAnwTage SAnwStd SAdmPr SAdmStd SProdStd SUebStd SProdAnwJahr "
         "SNBerStd "
         "SBerStdJahr SBerStdTag ~SKrank ~IArbtage ~IUrlT ~IAusb ~ISonstTage ~IAnwTage IAnwStd IAdmPr IAdmStd "
         "IProdStd "
         "IUebStd IProdAnwJahr INBerStd IBerStdJahr IBerStdTag ~Monat ~IKrank"},
        {"KalkKo", "clsDruck_KalkKosten", "Kalkulatorische Kosten", "clsZugKosten", "Lese_Kosten",
         "Die Kosten konnten nicht gelesen werden.", kVariables,
         "Seitenwechsel Firmennummer ~FuerJahr DAfa DSons DWag MMieteJahr MMieteMon Priv QM QMPreis UPausch ZEK "
         "ZPZins "
         "ZDMZins",
         ""},
        {"MatUeber", "clsDruck_MatUeber", "Materialübersicht", "clsZugMaterial", "Lese_Material",
         "Das Material konnten nicht gelesen werden.", kVariables,
         "Firmennummer ~Fuerjahr SMatVKPr SUJMatDM IMatVKPr IUJMatDM",
         "#FWaehr SUMMatDM_* ~SUMMatpr_* SUMMatDM_Su ~SUMMatpr_Su IUMMatDM_* ~IUMMatpr_* IUMMatDM_Su ~IUMMatpr_Su "
         "Seitenwechsel"},
        {"Bilanz", "clsDruck_Bilanz", "Bilanzkennzahlen", "", "", "", kVariables,
         "Firmennummer Jahr=1 Gewinn EK Umsatz ZinsFK Bilanz Abschr Rueckst FK LFK Anlage Cash Mat Lager", ""},
        {"BsEMa", "clsDruck_BsEMa", "Betriebsübersicht Mitarbeiter", "", "", "", kVariables, kPeriod,
         "#FWaehr #Text=8 SAMaDM SPMaDM SUMaDM IAMaDM IPMaDM IUMaDM DAMaDM DPMaDM DUMaDM"},
        {"BsEStd", "clsDruck_BsEStd", "Betriebsübersicht je Stunde", "", "", "", kVariables, kPeriod,
         "#Text=8 SDM SPR IDM IPR DDM DPR #FWaehr"},
        {"BsEGes", "clsDruck_BsEGes", "Betriebsübersicht Gesamt", "", "", "", kVariables,
         kPeriod + " SStd=9 IStd=11 DStd=13 DStdPr", "#FWaehr #Text=8 SDM SPR IDM IPR DDM DPR"},
        {"KalkW", "clsDruck_Kalkwerte", "Kalkulationswerte je Minute", "", "", "", kVariables,
         "Firmennummer Jahr=1 SVMon=3 SBMon IVMon IBMon"
         " SMateinsatz=15 SBerStd SGewMat SMatSt SMatZu SGewMatStd IMateinsatz IBerStd IGewMat IMatSt IMatZu "
         "IGewMatStd",
         "#Text=2 #FWaehr SDBPr=7 SDB SVerPr SVer IDBPr IDB IVerPr IVer"},
        {"WasWenn", "clsDruck_WasWenn", "Was Wäre Wenn", "", "", "", kVariables,
         "Firmennummer Jahr=1 SVMon SBMon IVMon IBMon"
         " UPMa=11 UStd WMa WStd SVer IVer TVer SKnz BerStd BerStdPr BerStdErh ProdLK ProdLKPr ProdLKErh UProdLK "
         "UProdLKPr UProdLKErh KULohn KULohnPr KULohnErh Mat MatPr MatErh MatKnz VGem VGemPr VGemErh VGemKnz "
         "FGem FGemPr FGemErh FGemKnz Aufw AufwPr AufwErh AufwKnz KKost KKostPr KKostErh KKostKnz",
         "#Text=6 SDM PDM DDM DPr FWaehr=18"},
        {"UmsatzHW", "clsDruckUmsatzHW", "Umsatz Handwerk", "", "", "", kVariables, "Firmennummer Jahr=0",
         "Taglohn=1 WartRechnungen Rechnungen AbgrAZ OffeneAZ SchlussRechnung Gutschrift Saldo #Text"},
    };
    return reports;
}

std::vector<Entry> entries(const std::string& description) {
    std::vector<Entry> result;
    std::optional<int> column;
    std::istringstream words(description);
    for (std::string word; words >> word;) {
        Entry entry{word, kTypeNumeric, word.front() == '~', {}};
        if (word.front() == '#')
            entry.type = kTypeText;
        if (entry.single || entry.type == kTypeText)
            entry.name.erase(0, 1);
        if (const auto sign = entry.name.find('='); sign != std::string::npos) {
            column = std::stoi(entry.name.substr(sign + 1));
            entry.name.erase(sign);
        }
        if (column && (entry.name != "FWaehr" || word.find('=') != std::string::npos))
            entry.column = (*column)++;
        if (entry.name.back() != '*') {
            result.push_back(entry);
            continue;
        }
        const auto stem = entry.name.substr(0, entry.name.size() - 1);
        for (int month = 1; month <= 12; ++month) {
            entry.name = stem + (month < 10 ? "0" : "") + std::to_string(month);
            result.push_back(entry);
        }
    }
    return result;
}

std::vector<std::pair<std::string, std::int32_t>> names(const std::string& description) {
    std::vector<std::pair<std::string, std::int32_t>> result;
    for (const auto& entry : entries(description))
        result.emplace_back(entry.name, entry.type);
    return result;
}

void fill(World& world, std::size_t records) {
    const auto perRecord = [&](const Variant& before, const Variant& last) {
        std::vector<Variant> values(records, before);
        if (records > 1)
            values.back() = last;
        return values;
    };
    for (const char* reader : {"clsZugUmsatz", "clsZugFirmaJahr", "clsZugMitarbeiter", "clsZugKonten",
                               "clsZugMitarbeiterMonate", "clsZugKosten", "clsZugMaterial"}) {
        auto& data = world.readers[reader];
        data.count = records;
        data.values = {{u"Jahr", perRecord(2023.0f, 2024.0f)},
                       {u"FJahr", perRecord(2023.0f, 2024.0f)},
                       {u"Nummer", {5.0}},
                       {u"Vorname", perRecord(u" Jörg ", u"  ")},
                       {u"Name", perRecord(u"Müller ", u" Groß")},
                       {u"KtoBetrArt", perRecord(0.0f, 1.0f)},
                       {u"ADat", perRecord(Null{}, dateOf(2020, 2, 29))},
                       {u"EDat", perRecord(Date{0}, dateOf(2021, 12, 31, 12, 30, 0))},
                       {u"GDat", {dateOf(1980, 1, 2)}},
                       {u"Eintrittsdatum", {dateOf(2015, 4, 1)}},
                       {u"Austrittsdatum", {Date{0}}},
                       {u"Geburtsdatum", {dateOf(1980, 1, 2)}}};
    }
    auto& holidays = world.readers["clsZugFeiertage"];
    holidays.count = 2;
    holidays.values = {{u"FDatum", {dateOf(2023, 1, 1), dateOf(2023, 10, 3)}},
                       {u"Feiertag", {u"Neujahr", u"Tag der Deutschen Einheit"}}};
}

std::shared_ptr<Array> arrayFor(World& world, const ReportDescription& report, std::size_t rows) {
    if (!report.reader.empty())
        return world.array({{true, Variant(0.0), Variant(0.0), Variant(3.0), Variant(2024.0), Variant(6.0)}});
    std::vector<std::vector<Variant>> cells;
    for (std::size_t row = 0; row < std::max<std::size_t>(rows, 2); ++row) {
        cells.emplace_back();
        for (int column = 0; column <= 50; ++column)
            cells.back().push_back(Variant(1000.0 * static_cast<double>(row) + column + 0.5));
    }
    auto array = world.array(std::move(cells));
    array->count = static_cast<std::int32_t>(rows);
    return array;
}

void PrintTo(const ReportDescription& report, std::ostream* out) {
    *out << report.list;
}

} // namespace kvtdruck::test
