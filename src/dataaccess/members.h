// The members of the host's data-access library, one table per class. A host whose library spells a name
// differently changes one line here.
#pragma once

#include "values/text.h"

#include <span>

namespace kvtdruck {

/// A variable or field that is fed by a getter of another name.
struct RenamedGetter {
    StringView name;
    StringView getter;
};

/// One reader class of the library. A getter bears the name of the variable or field that it feeds, but for
/// `renamedGetters`.
struct DataClass {
    StringView name;
    /// Reads every record of the company.
    StringView readAll;
    /// Reads the records of a range.
    StringView readRange;
    std::span<const RenamedGetter> renamedGetters = {};

    /// The getter that feeds the variable or field `name`.
    StringView getter(StringView field) const;
};

extern const DataClass clsZugUmsatz;
extern const DataClass clsZugFirmaJahr;
extern const DataClass clsZugFeiertage;
extern const DataClass clsZugMitarbeiter;
extern const DataClass clsZugKonten;
extern const DataClass clsZugMitarbeiterMonate;
extern const DataClass clsZugKosten;
extern const DataClass clsZugMaterial;

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
