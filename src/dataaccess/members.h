// The members of the host's data-access library, one table per class. A host whose library spells a name
// differently changes one line here.
#pragma once

#include "values/text.h"

#include <span>

namespace kvtdruck {

/// A variable or field that is fed by a getter of another name.
struct Umbenennung {
    StringView name;
    StringView getter;
};

/// One reader class of the library. A getter bears the name of the variable or field that it feeds, but for
/// `ausnahmen`.
struct Zugklasse {
    StringView name;
    /// Reads every record of the company.
    StringView leseAlle;
    /// Reads the records of a range.
    StringView leseVonBis;
    std::span<const Umbenennung> ausnahmen = {};

    /// The getter that feeds the variable or field `name`.
    StringView getter(StringView feld) const;
};

extern const Zugklasse clsZugUmsatz;
extern const Zugklasse clsZugFirmaJahr;
extern const Zugklasse clsZugFeiertage;
extern const Zugklasse clsZugMitarbeiter;
extern const Zugklasse clsZugKonten;
extern const Zugklasse clsZugMitarbeiterMonate;
extern const Zugklasse clsZugKosten;
extern const Zugklasse clsZugMaterial;

/// The company's general data, which every report is handed.
inline constexpr StringView clsZugFirmaAllg = u"clsZugFirmaAllg";
inline constexpr StringView kLeseFirmaAllg = u"LeseFirmaAllg";

/// Operations that all classes share; the cursor is missing from the general data.
inline constexpr StringView kVerbinde = u"Verbinde";
inline constexpr StringView kEOF = u"EOF";
inline constexpr StringView kMoveFirst = u"MoveFirst";
inline constexpr StringView kMoveNext = u"MoveNext";

/// The host's parameter array.
inline constexpr StringView kValue = u"Value";
inline constexpr StringView kCount = u"Count";

} // namespace kvtdruck
