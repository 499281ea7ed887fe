#include "dataaccess/members.h"

namespace kvtdruck {
namespace {

constexpr Umbenennung kJahr[] = {{u"FuerJahr", u"Jahr"}, {u"Fuerjahr", u"Jahr"}};
constexpr Umbenennung kKonten[] = {{u"FuerJahr", u"FJahr"}};
constexpr Umbenennung kMitarbeiterMonate[] = {
    {u"Fuerjahr", u"FJahr"},
    {u"IBerSzdTag", u"IBerStdTag"},
    {u"SBerSzdTag", u"SBerStdTag"},
    {u"ISONST", u"ISonst"},
};

} // namespace

const Zugklasse clsZugUmsatz{u"clsZugUmsatz", u"LeseUmsatzAlle", u"LeseUmsatzVonBis", kJahr};
const Zugklasse clsZugFirmaJahr{u"clsZugFirmaJahr", u"LeseFirmaJahreAlle", u"LeseFirmaJahreVonBis", kJahr};
const Zugklasse clsZugFeiertage{u"clsZugFeiertage", {}, u"LeseFeiertage"};
const Zugklasse clsZugMitarbeiter{u"clsZugMitarbeiter", u"LeseMitarbeiter", {}};
const Zugklasse clsZugKonten{u"clsZugKonten", {}, u"LeseKonten", kKonten};
const Zugklasse clsZugMitarbeiterMonate{
    u"clsZugMitarbeiterMonate", {}, u"LeseMitarbeiterMonate", kMitarbeiterMonate};
const Zugklasse clsZugKosten{u"clsZugKosten", u"LeseKostenAlle", u"LeseKostenVonBis", kJahr};
const Zugklasse clsZugMaterial{u"clsZugMaterial", u"LeseMaterialAlle", u"LeseMaterialVonBis", kJahr};

StringView Zugklasse::getter(StringView feld) const {
    for (const auto& ausnahme : ausnahmen)
        if (ausnahme.name == feld)
            return ausnahme.getter;
    return feld;
}

} // namespace kvtdruck
