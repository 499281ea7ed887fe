#include "reports/reader_report.h"

#include <algorithm>

namespace kvtdruck {
namespace {

constexpr StringView kSeitenwechsel = u"Seitenwechsel";

// As the two comparisons of floating-point numbers see it: NaN differs from nothing.
bool verschieden(double a, double b) {
    return a < b || a > b;
}

} // namespace

Leserbericht::Leserbericht(const Berichtsumgebung& umgebung, Druckauftrag auftrag, StringView klasse,
                           StringView titel, const Leserform& form)
    : Bericht(umgebung, std::move(auftrag), klasse, titel), zugklasse_(form.klasse),
      variablen_(form.variablen, &form.klasse), felder_(form.felder, &form.klasse), wechsel_(form.wechsel) {
    for (const auto getter : form.schluessel)
        schluesselGetter_.emplace_back(getter, ValueType::Double);
}

// Reading
// -----------------------------------------------------------------------------------------------------------

bool Leserbericht::OeffneLeser(std::optional<Leser>& leser, const Zugklasse& klasse, const Lesemeldung& meldung,
                               const std::function<bool()>& lese) {
    return Prozedurrumpf(meldung.prozedur, [&] {
        const bool neu = !leser.has_value();
        if (neu)
            leser.emplace(state(), klasse);
        if ((!neu || leser->Verbinde(auftrag().pADOCon)) && lese())
            return true;
        Melde(meldung.prozedur, meldung.text);
        return false;
    });
}

bool Leserbericht::Lese() {
    if (!OeffneLeser(leser_, zugklasse_, lesemeldung(), [this] { return LeseDaten(); }))
        return false;
    if (!leser().Ende())
        return true;
    Melde(u"fkt_Drucken", u"Es sind keine Daten für den Ausdruck vorhanden.");
    return false;
}

bool Leserbericht::LeseJahre(std::initializer_list<Variant> alle) {
    parray().normalisiereBereich();
    if (parray().ist(0, 0, true))
        return leser().Lese(zugklasse_.leseAlle, alle);
    return leser().Lese(zugklasse_.leseVonBis, {auftrag().pFnr, parray().single(0, 1), parray().single(0, 2)});
}

// Defining
// ----------------------------------------------------------------------------------------------------------

void Leserbericht::BeginneDefinitionen() {
    adapter().LlDefineFieldStart();
    Bericht::BeginneDefinitionen();
}

bool Leserbericht::Definiere_Übergebe_Variablen() {
    return Prozedurrumpf(u"Definiere_Übergebe_Variablen", [this] {
        Definiere(kVariable, variablen_, satz());
        return true;
    });
}

bool Leserbericht::Definiere_Übergebe_Felder() {
    return Prozedurrumpf(u"Definiere_Übergebe_Felder", [this] {
        Definiere(kFeld, felder_, satz());
        return true;
    });
}

bool Leserbericht::DefiniereAlles() {
    return Definiere_Übergebe_Variablen() && Definiere_Übergebe_Felder();
}

bool Leserbericht::DefiniereVorErsterSeite() {
    return Definiere_Übergebe_Variablen();
}

// Printing
// ----------------------------------------------------------------------------------------------------------

bool Leserbericht::DruckeSaetze() {
    leser().MoveFirst();
    schluessel_ = LeseSchluessel();
    for (bool erster = true; !leser().Ende(); erster = false) {
        if (!DruckeSatz(erster))
            return false;
        leser().MoveNext();
    }
    return true;
}

bool Leserbericht::DruckeSatz(bool) {
    if (!Definiere_Übergebe_Felder())
        return false;
    ZeigeFortschritt();
    auto schluessel = LeseSchluessel();
    const bool wechsel =
        !std::equal(schluessel.begin(), schluessel.end(), schluessel_.begin(), std::not_fn(verschieden));
    if (wechsel && !BeginneGruppe())
        return false;
    schluessel_ = std::move(schluessel);
    DruckeZeile();
    return true;
}

bool Leserbericht::BeginneGruppe() {
    const auto seitenwechsel = [this] { Definiere(kFeld, kSeitenwechsel, u"2", kTypeNumeric); };
    if (wechsel_ == Gruppenwechsel::Zeilenliste) {
        if (!Definiere_Übergebe_Variablen())
            return false;
        seitenwechsel();
        return true;
    }
    seitenwechsel();
    if (!Definiere_Übergebe_Variablen())
        return false;
    adapter().LlPrint();
    return true;
}

std::vector<double> Leserbericht::LeseSchluessel() {
    std::vector<double> werte;
    werte.reserve(schluesselGetter_.size());
    for (auto& getter : schluesselGetter_)
        werte.push_back(toDouble(leser().wert(getter), locale()));
    return werte;
}

} // namespace kvtdruck
