// More companies than the sample database has.
#pragma once

#include <string>

namespace kvtdruck::testing {

/// SQL that adds `count` companies from number 101 on, each with the first one's imputed costs.
inline std::string manyCompanies(int count) {
    return "INSERT INTO firma SELECT fnr + n.i, name1, name2, name3, kurzbez, strasse, postfach, plz, ort, land, "
           "bundesland, telefon1, telefon2, fax, waehrung FROM firma, (WITH RECURSIVE n(i) AS (SELECT 100 UNION "
           "ALL "
           "SELECT i + 1 FROM n WHERE i < " +
           std::to_string(99 + count) +
           ") SELECT i FROM n) AS n WHERE fnr = 1;\n"
           "INSERT INTO kosten SELECT firma.fnr, jahr, dafa, dsons, dwag, qm, qmpreis, mmietemon, mmietejahr, "
           "priv, "
           "upausch, zek, zpzins, zdmzins FROM kosten, firma WHERE kosten.fnr = 1 AND firma.fnr > 100;\n";
}

} // namespace kvtdruck::testing
