// Tables of variables and fields: what a report hands to its layout, in the layout's order.
#pragma once

#include "control/control.h"
#include "dataaccess/members.h"
#include "dataaccess/record_reader.h"
#include "values/text.h"
#include "values/variant.h"

#include <initializer_list>
#include <optional>
#include <variant>
#include <vector>

namespace kvtdruck {

class Bericht;

// Where a value comes from
// ------------------------------------------------------------------------------------------

/// The company number that the host passed.
struct Firmennummer {};
/// The company's currency text, as read when the report began.
struct Waehrung {};
/// The same text for every record.
struct Festtext {
    String text;
};
/// A getter of the current record, read as `typ` and converted to text.
struct Abruf {
    ValueType typ;
};
/// A date getter whose Null or zero date is the empty text.
struct Datumsabruf {};
/// A cell of the parameter array: in the given row, or in that of the line being printed.
struct Zelle {
    std::int32_t spalte;
    std::optional<std::int32_t> zeile;
};
/// A text that the report composes.
struct Errechnet {
    String (*text)(Bericht&);
};

using Quelle = std::variant<Firmennummer, Waehrung, Festtext, Abruf, Datumsabruf, Zelle, Errechnet>;

// Tables
// ------------------------------------------------------------------------------------------------------------

/// One variable or field: its name, its engine type and its value's source.
struct Definition {
    String name;
    std::int32_t typ;
    Quelle quelle;
};

using Tabelle = std::vector<Definition>;

/// The tables one after another.
Tabelle verkette(std::initializer_list<Tabelle> teile);

/// Numeric: getters of one value type.
Tabelle zahlen(ValueType typ, std::initializer_list<StringView> namen);
/// Numeric: the getters `stamm` + "01" … "12".
Tabelle monate(ValueType typ, StringView stamm);
/// Text: string getters.
Tabelle texte(std::initializer_list<StringView> namen);
/// Text: date getters in the general date text.
Tabelle datum(std::initializer_list<StringView> namen);
/// Text: date getters, where Null or the zero date gives the empty text.
Tabelle datumOderLeer(std::initializer_list<StringView> namen);
/// Numeric: the company number as "Firmennummer".
Tabelle firmennummer();
/// Text: the company's currency.
Tabelle waehrung(StringView name);
/// Numeric: the same value for every record.
Tabelle festwert(StringView name, StringView wert);
/// Numeric: cells of consecutive columns from `spalte` on; of the line's row, or of `zeile`.
Tabelle zellen(std::int32_t spalte, std::initializer_list<StringView> namen,
               std::optional<std::int32_t> zeile = std::nullopt);
/// Text: a cell of the line's row.
Tabelle textzelle(std::int32_t spalte, StringView name);
/// Text: composed by the report.
Tabelle errechnet(StringView name, String (*text)(Bericht&));

// Tables in use
// -----------------------------------------------------------------------------------------------------

/// The record that values are taken from: a reader's current one, or a row of the parameter array.
struct Satz {
    Leser* leser = nullptr;
    std::int32_t zeile = 0;
};

/// A table with the getters of one reader, each of which is looked up once per print.
class GebundeneTabelle {
  public:
    /// `tabelle` outlives the binding; `klasse` names the reader, where there is one.
    explicit GebundeneTabelle(const Tabelle& tabelle, const Zugklasse* klasse = nullptr);

    const Tabelle& zeilen() const { return tabelle_; }
    Mitglied& getter(std::size_t zeile) { return getter_[zeile]; }

  private:
    const Tabelle& tabelle_;
    std::vector<Mitglied> getter_;
};

/// A date as text in the short form; the empty text for Null, for the zero date and for what is no date at all.
String fkt_Datum_Text(const Variant& datum, const Locale& locale) noexcept;

} // namespace kvtdruck
