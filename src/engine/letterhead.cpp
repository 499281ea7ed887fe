// The company letterhead that all layouts share.
#include "dataaccess/record_reader.h"
#include "engine/clsDruckFormular.h"
#include "module/error_rule.h"
#include "values/conversion.h"

namespace kvtdruck {
namespace {

constexpr StringView kTrenner = u", ";

/// Number, name lines, street, postal code and town in one line. The number always leads, and a postal code of 0
/// counts as one; other parts that consist of blanks are left out together with their separator.
class Anschrift {
  public:
    Anschrift(FirmaAllg& firma, const Locale& locale) : firma_(firma), locale_(locale) {}

    String zeile() {
        zeile_ = zahl(u"Fnr");
        zeile_ += kTrenner;
        haengeAn(u"Name1");
        haengeAn(u"Name2");
        haengeAn(u"Strasse");
        haengeAnTeil(zahl(u"Plz"));
        haengeAn(u"Ort");
        if (!trimmed(zeile_).empty())
            zeile_.resize(zeile_.size() - kTrenner.size());
        return zeile_;
    }

  private:
    String zahl(StringView getter) { return textOf(firma_.zahl(getter), locale_); }

    // A text is read once for the emptiness test and once more for appending.
    void haengeAn(StringView getter) {
        if (!trimmed(firma_.text(getter)).empty())
            haengeAnTeil(firma_.text(getter));
    }

    void haengeAnTeil(StringView teil) {
        zeile_ += trimmed(teil);
        zeile_ += kTrenner;
    }

    FirmaAllg& firma_;
    const Locale& locale_;
    String zeile_;
};

} // namespace

bool clsDruckFormular::FKT_DefiniereVariablen_AllgemeineFirmendaten(const ObjectRef& pZuDbFnrAllg,
                                                                    StringView pListenUeberschrift) {
    const Procedure prozedur{u"clsDruckFormular", u"FKT_DefiniereVariablen_AllgemeineFirmendaten"};
    return guarded(state_, prozedur, [&] {
        FirmaAllg firma(state_, pZuDbFnrAllg);
        const auto& locale = state_.locale();
        const auto anschrift = Anschrift(firma, locale).zeile();
        const auto definiere = [&](StringView name, StringView wert) {
            LlDefineVariableExt(name, wert, kTypeText);
        };
        const auto text = [&](StringView name, StringView getter) { definiere(name, firma.text(getter)); };

        text(u"FnrName1", u"Name1");
        text(u"FnrName2", u"Name2");
        text(u"FnrName3", u"Name3");
        text(u"FnrPostfach", u"Postfach");
        text(u"FnrKurzbez", u"Kurzbez");
        text(u"FnrLand", u"Land");
        text(u"FnrFax", u"Fax");
        text(u"FnrOrt", u"Ort");
        definiere(u"FnzPlz", textOf(firma.zahl(u"Plz"), locale)); // so spelled in all layouts
        text(u"FnrStrasse", u"Strasse");
        text(u"FnrTelefon1", u"Telefon1");
        text(u"FnrTelefon2", u"Telefon2");
        definiere(u"FnrAnschriftGes", anschrift);
        definiere(u"Ueberschrift", pListenUeberschrift);
        text(u"FnrWaehrung", u"Waehrung");
        text(u"FnrBundesland", u"Bundesland");
        return true;
    });
}

} // namespace kvtdruck
