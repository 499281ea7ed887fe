#include "dataaccess/members.h"

namespace kvtdruck {
namespace {

constexpr RenamedGetter kYear[] = {{u"FuerJahr", u"Jahr"}, {u"Fuerjahr", u"Jahr"}};
constexpr RenamedGetter kAccounts[] = {{u"FuerJahr", u"FJahr"}};
constexpr RenamedGetter kEmployeeMonths[] = {
    {u"Fuerjahr", u"FJahr"},
    {u"IBerSzdTag", u"IBerStdTag"},
    {u"SBerSzdTag", u"SBerStdTag"},
    {u"ISONST", u"ISonst"},
};

} // namespace

const DataClass clsZugUmsatz{u"clsZugUmsatz", u"LeseUmsatzAlle", u"LeseUmsatzVonBis", kYear};
const DataClass clsZugFirmaJahr{u"clsZugFirmaJahr", u"LeseFirmaJahreAlle", u"LeseFirmaJahreVonBis", kYear};
const DataClass clsZugFeiertage{u"clsZugFeiertage", {}, u"LeseFeiertage"};
const DataClass clsZugMitarbeiter{u"clsZugMitarbeiter", u"LeseMitarbeiter", {}};
const DataClass clsZugKonten{u"clsZugKonten", {}, u"LeseKonten", kAccounts};
const DataClass clsZugMitarbeiterMonate{u"clsZugMitarbeiterMonate", {}, u"LeseMitarbeiterMonate", kEmployeeMonths};
const DataClass clsZugKosten{u"clsZugKosten", u"LeseKostenAlle", u"LeseKostenVonBis", kYear};
const DataClass clsZugMaterial{u"clsZugMaterial", u"LeseMaterialAlle", u"LeseMaterialVonBis", kYear};

StringView DataClass::getter(StringView field) const {
    for (const auto& renamed : renamedGetters)
        if (renamed.name == field)
            return renamed.getter;
    return field;
}

} // namespace kvtdruck
