#include "reports/table.h"

#include "module/error_rule.h"
#include "values/conversion.h"

#include <cmath>

namespace kvtdruck {
namespace {

Tabelle jeName(std::initializer_list<StringView> namen, std::int32_t typ, const Quelle& quelle) {
    Tabelle tabelle;
    for (const auto name : namen)
        tabelle.push_back({String(name), typ, quelle});
    return tabelle;
}

ValueType werttyp(const Quelle& quelle) {
    const auto* abruf = std::get_if<Abruf>(&quelle);
    return abruf ? abruf->typ : ValueType::Variant;
}

} // namespace

Tabelle verkette(std::initializer_list<Tabelle> teile) {
    Tabelle ganze;
    for (const auto& teil : teile)
        ganze.insert(ganze.end(), teil.begin(), teil.end());
    return ganze;
}

Tabelle zahlen(ValueType typ, std::initializer_list<StringView> namen) {
    return jeName(namen, kTypeNumeric, Abruf{typ});
}

Tabelle monate(ValueType typ, StringView stamm) {
    Tabelle tabelle;
    for (int monat = 1; monat <= 12; ++monat)
        tabelle.push_back({String(stamm) + (monat < 10 ? u"0" : u"") + decimal(monat), kTypeNumeric, Abruf{typ}});
    return tabelle;
}

Tabelle texte(std::initializer_list<StringView> namen) {
    return jeName(namen, kTypeText, Abruf{ValueType::Text});
}

Tabelle datum(std::initializer_list<StringView> namen) {
    return jeName(namen, kTypeText, Abruf{ValueType::Date});
}

Tabelle datumOderLeer(std::initializer_list<StringView> namen) {
    return jeName(namen, kTypeText, Datumsabruf{});
}

Tabelle firmennummer() {
    return jeName({u"Firmennummer"}, kTypeNumeric, Firmennummer{});
}

Tabelle waehrung(StringView name) {
    return jeName({name}, kTypeText, Waehrung{});
}

Tabelle festwert(StringView name, StringView wert) {
    return jeName({name}, kTypeNumeric, Festtext{String(wert)});
}

Tabelle zellen(std::int32_t spalte, std::initializer_list<StringView> namen, std::optional<std::int32_t> zeile) {
    Tabelle tabelle;
    for (const auto name : namen)
        tabelle.push_back({String(name), kTypeNumeric, Zelle{spalte++, zeile}});
    return tabelle;
}

Tabelle textzelle(std::int32_t spalte, StringView name) {
    return jeName({name}, kTypeText, Zelle{spalte, {}});
}

Tabelle errechnet(StringView name, String (*text)(Bericht&)) {
    return jeName({name}, kTypeText, Errechnet{text});
}

GebundeneTabelle::GebundeneTabelle(const Tabelle& tabelle, const Zugklasse* klasse) : tabelle_(tabelle) {
    getter_.reserve(tabelle.size());
    for (const auto& zeile : tabelle) {
        const StringView name = zeile.name;
        getter_.emplace_back(klasse ? klasse->getter(name) : name, werttyp(zeile.quelle));
    }
}

String fkt_Datum_Text(const Variant& datum, const Locale& locale) noexcept {
    String text;
    skippingErrors([&] {
        if (datum.isNull() || equals(datum, 0.0, locale))
            return;
        const auto tag = coerced(datum, ValueType::Date, locale).as<Date>()->days;
        text = shortDateOf(Date{std::trunc(tag)}, locale);
    });
    return text;
}

} // namespace kvtdruck
