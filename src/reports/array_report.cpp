#include "reports/array_report.h"

namespace kvtdruck {

bool Feldbericht::Definiere_Übergebe_Variablen() {
    return Prozedurrumpf(u"Definiere_Übergebe_Variablen", [this] {
        Definiere(kVariable, variablen_, Satz{});
        return true;
    });
}

bool Feldbericht::Definiere_Übergebe_Felder(std::int16_t zeile) {
    return Prozedurrumpf(u"Definiere_Übergebe_Felder", [&] {
        DefiniereFelder(zeile);
        return true;
    });
}

void Feldbericht::DefiniereFelder(std::int16_t zeile) {
    Definiere(kFeld, felder_, Satz{nullptr, zeile});
}

bool Feldbericht::DefiniereAlles() {
    return Definiere_Übergebe_Variablen() && Definiere_Übergebe_Felder(0);
}

bool Feldbericht::DruckeSaetze() {
    // The row counter is a 16-bit integer: an array with more rows than it can count is an overflow.
    const auto letzte = roundToInteger(static_cast<double>(parray().Count(1)) - 1);
    for (std::int32_t zeile = 0; zeile <= letzte; ++zeile) {
        if (!Definiere_Übergebe_Felder(static_cast<std::int16_t>(zeile)))
            return false;
        ZeigeFortschritt();
        DruckeZeile();
    }
    return true;
}

} // namespace kvtdruck
