#include "reports/array_report.h"

namespace kvtdruck {

bool ArrayReport::Definiere_Übergebe_Variablen() {
    return guardedProcedure(u"Definiere_Übergebe_Variablen", [this] {
        define(kVariable, variables_, Record{});
        return true;
    });
}

bool ArrayReport::Definiere_Übergebe_Felder(std::int16_t row) {
    return guardedProcedure(u"Definiere_Übergebe_Felder", [&] {
        defineFields(row);
        return true;
    });
}

void ArrayReport::defineFields(std::int16_t row) {
    define(kField, fields_, Record{nullptr, row});
}

bool ArrayReport::defineAll() {
    return Definiere_Übergebe_Variablen() && Definiere_Übergebe_Felder(0);
}

bool ArrayReport::printRecords() {
    // The row counter is a 16-bit integer: an array with more rows than it can count is an overflow.
    const auto last = roundToInteger(static_cast<double>(parray().Count(1)) - 1);
    for (std::int32_t row = 0; row <= last; ++row) {
        if (!Definiere_Übergebe_Felder(static_cast<std::int16_t>(row)))
            return false;
        showProgress();
        printLine();
    }
    return true;
}

} // namespace kvtdruck
