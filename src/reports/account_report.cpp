#include "reports/account_report.h"

#include "values/conversion.h"

namespace kvtdruck {
namespace {

const Tabelle kVariablen = verkette({firmennummer(), zahlen(ValueType::Single, {u"FuerJahr"})});
const Tabelle kKonto = verkette({zahlen(ValueType::Double, {u"VKonto", u"EKonto"}), texte({u"Bezeichnung"})});
const Tabelle kMerkmale =
    verkette({zahlen(ValueType::Single, {u"KtoBetrArt", u"FJahr"}), festwert(u"Seitenwechsel", u"1")});
const Tabelle kMonateIst = monate(ValueType::Double, u"MWIst_");
const Tabelle kMonateSoll = monate(ValueType::Double, u"MWSoll_");
/// The fields are defined in parts, between which the amounts stand.
const Tabelle kOhne;

constexpr StringView kMonatsnamen[] = {u"Januar", u"Februar", u"März",      u"April",   u"Mai",      u"Juni",
                                       u"Juli",   u"August",  u"September", u"Oktober", u"November", u"Dezember"};

} // namespace

Kontenbericht::Kontenbericht(const Berichtsumgebung& umgebung, Druckauftrag auftrag, StringView klasse,
                             StringView titel)
    : Leserbericht(umgebung, std::move(auftrag), klasse, titel, {clsZugKonten, kVariablen, kOhne, {u"FJahr"}}),
      konto_(kKonto, &clsZugKonten),
      merkmale_(kMerkmale, &clsZugKonten), jahr_{{u"JWIst", ValueType::Double}, {u"JWSoll", ValueType::Double}} {
    for (std::size_t i = 0; i < kMonateIst.size(); ++i)
        monate_.push_back({{kMonateIst[i].name, ValueType::Double}, {kMonateSoll[i].name, ValueType::Double}});
}

Leserbericht::Lesemeldung Kontenbericht::lesemeldung() const {
    return {u"Lese_Konten", u"Die Konten konnten nicht gelesen werden"};
}

bool Kontenbericht::LeseDaten() {
    parray().normalisiereBereich();
    const bool alle = parray().ist(0, 0, true);
    const auto jahr = parray().single(0, 4);
    const auto untere = alle ? 0.0f : parray().single(0, 1);
    const auto obere = alle ? 0.0f : parray().single(0, 2);
    return leser().Lese(clsZugKonten.leseVonBis, {auftrag().pFnr, jahr, untere, obere});
}

bool Kontenbericht::Definiere_Übergebe_Felder() {
    return Prozedurrumpf(u"Definiere_Übergebe_Felder", [this] {
        Definiere(kFeld, konto_, satz());
        DefiniereBetraege(u"JWIst", u"JWSoll", jahr_);
        Definiere(kFeld, merkmale_, satz());
        const auto monat = Monat();
        if (monat)
            DefiniereMonat(monate_[*monat]);
        Definiere(kFeld, u"MonatText", monat ? kMonatsnamen[*monat] : StringView(), kTypeText);
        Definiere(kFeld, u"Waehrung", waehrung(), kTypeText);
        return true;
    });
}

void Kontenbericht::DefiniereMonat(Betraege& betraege) {
    DefiniereBetraege(u"MonatIst", u"MonatSoll", betraege);
}

void Kontenbericht::DefiniereBetraege(StringView nameIst, StringView nameSoll, Betraege& betraege) {
    const auto faktor = Vorzeichen();
    DefiniereBetrag(nameIst, Betrag(betraege.ist), faktor);
    DefiniereBetrag(nameSoll, Betrag(betraege.soll), faktor);
}

void Kontenbericht::DefiniereBetrag(StringView name, double betrag, std::optional<double> faktor) {
    Definiere(kFeld, name, textOf(faktor ? betrag * *faktor : betrag, locale()), kTypeNumeric);
}

/// The chosen month, counted from 0; nothing where the cell holds no value from 1 to 12.
std::optional<int> Kontenbericht::Monat() {
    const auto zelle = parray().Value(0, 3);
    for (int monat = 1; monat <= 12; ++monat)
        if (equals(zelle, static_cast<double>(monat), locale()))
            return monat - 1;
    return std::nullopt;
}

} // namespace kvtdruck
