// The company's yearly settings, one year a page, with the public holidays of that year in the company's federal
// state.
#include "reports/reader_report.h"
#include "reports/report_classes.h"

namespace kvtdruck {
namespace {

const Tabelle kVariablen = verkette({
    firmennummer(),
    zahlen(ValueType::Single, {u"AnzahlFeiertage", u"AnzahlFeiertageSon", u"AnzahlFeiertageSam", u"Jahrestage",
                               u"AnzahlSonntage", u"AnzahlSamstage"}),
    monate(ValueType::Single, u"Arbeitstage"),
    zahlen(ValueType::Double, {u"GrenzeRentenversicherung"}),
    zahlen(ValueType::Single,
           {u"GrenzeAushilfskraft", u"GrenzeGeringverdiener", u"FuerJahr", u"Arbeitslosenversicherung",
            u"Pflegeversicherung", u"Krankenversicherung", u"Rentenversicherung", u"SteuersatzAushilfe",
            u"Tagesarbeitszeit", u"DurchUeberstundenzuschlag", u"Erstattungsumlage", u"Krankheitstage",
            u"VorgabeUrlaubsgeld", u"Urlaubstage", u"VorgabeWeihnachtsgeld", u"VWL"}),
});

/// Of the holiday reader, not of the year reader.
const Tabelle kFelder = verkette({datum({u"FDatum"}), texte({u"Feiertag"})});

class clsDruck_Firma final : public Leserbericht {
  public:
    clsDruck_Firma(const Berichtsumgebung& umgebung, Druckauftrag auftrag)
        : Leserbericht(umgebung, std::move(auftrag), u"clsDruck_Firma", u"Allgemeine Firmendaten",
                       {clsZugFirmaJahr, kVariablen, kFelder}) {}

  private:
    Lesemeldung lesemeldung() const override {
        return {u"Lese_Firmendaten", u"Die Firmendaten konnten nicht gelesen werden"};
    }

    // Unlike the other reports, a range of several years is read as given.
    bool LeseDaten() override {
        if (parray().ist(0, 0, false)) {
            const bool ohneErstes = parray().ist(0, 1, 0.0);
            const bool ohneLetztes = parray().ist(0, 2, 0.0);
            if (ohneErstes && ohneLetztes)
                parray().Value(0, 0, true);
        }
        const bool gelesen = LeseAuswahl();
        if (gelesen && !leser().Ende())
            leser().MoveFirst();
        return gelesen;
    }

    bool LeseAuswahl() {
        if (parray().ist(0, 0, true))
            return leser().Lese(clsZugFirmaJahr.leseAlle, {auftrag().pFnr});
        const auto erstes = roundToInteger(parray().single(0, 1));
        const auto letztes = roundToInteger(parray().single(0, 2));
        return leser().Lese(clsZugFirmaJahr.leseVonBis, {auftrag().pFnr, erstes, letztes});
    }

    bool DefiniereAlles() override {
        return Definiere_Übergebe_Variablen() && Lese_Feiertage() && Definiere_Übergebe_Felder();
    }

    bool DruckeSatz(bool erster) override {
        if (!erster && !BeginneJahr())
            return false;
        ZeigeFortschritt();
        for (; !feiertage_->Ende(); feiertage_->MoveNext()) {
            if (!Definiere_Übergebe_Felder())
                return false;
            DruckeZeile();
        }
        return true;
    }

    bool BeginneJahr() { return Definiere_Übergebe_Variablen() && adapter().LlPrint() != 0 && Lese_Feiertage(); }

    bool Definiere_Übergebe_Variablen() override {
        return Prozedurrumpf(u"Definiere_Übergebe_Variablen_Allg", [this] {
            Definiere(kVariable, variablen(), satz());
            return true;
        });
    }

    bool Definiere_Übergebe_Felder() override {
        return Prozedurrumpf(u"Definiere_Übergebe_Felder", [this] {
            Definiere(kFeld, feiertagsfelder_, {&*feiertage_, 0});
            return true;
        });
    }

    /// The holidays of the current record's year, in the order that the reader gives them.
    bool Lese_Feiertage() {
        const Variant bundesland = firma().text(u"Bundesland");
        const Variant jahr = toInteger(leser().wert(jahr_), locale());
        const Lesemeldung meldung{u"Lese_Feiertage", u"Die Feiertage konnten nicht gelesen werden"};
        return OeffneLeser(feiertage_, clsZugFeiertage, meldung, [&] {
            if (!feiertage_->Lese(clsZugFeiertage.leseVonBis, {bundesland, jahr}))
                return false;
            feiertage_->MoveFirst();
            return true;
        });
    }

    Mitglied jahr_{clsZugFirmaJahr.getter(u"FuerJahr"), ValueType::Single};
    std::optional<Leser> feiertage_;
    GebundeneTabelle feiertagsfelder_{kFelder, &clsZugFeiertage};
};

} // namespace

std::unique_ptr<Bericht> neu_clsDruck_Firma(const Berichtsumgebung& umgebung, Druckauftrag auftrag) {
    return std::make_unique<clsDruck_Firma>(umgebung, std::move(auftrag));
}

} // namespace kvtdruck
