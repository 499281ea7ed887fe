// Which tables of the reference data access the lists read.
#pragma once

#include <array>
#include <string_view>

namespace kvtdruck::cli {

/// The tables that a list reads besides `firma`; the first of them must have rows.
struct ListTables {
    std::string_view listName;
    std::array<const char*, 3> tables;
};
inline constexpr std::array<const char*, 3> kEmployeeMonths{"mitarbeiter_monate", "mitarbeiter_jahre",
                                                            "mitarbeiter"};
inline constexpr std::array kListTables{
    ListTables{"Umsatz", {"umsatz"}},
    ListTables{"MitUeber", {"mitarbeiter", "mitarbeiter_jahre"}},
    ListTables{"Firma", {"firma_jahre", "feiertage"}},
    ListTables{"GemeinK", {"konten"}},
    ListTables{"NeutralA", {"konten"}},
    ListTables{"MaKost", kEmployeeMonths},
    ListTables{"MaZeit", kEmployeeMonths},
    ListTables{"MaStKost", kEmployeeMonths},
    ListTables{"MaStZeit", kEmployeeMonths},
    ListTables{"KalkKo", {"kosten"}},
    ListTables{"MatUeber", {"material"}},
};

} // namespace kvtdruck::cli
