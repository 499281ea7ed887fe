// The list that every way of printing in this folder prints: eight columns, 45 lines a page, on A4.
#pragma once

#include <array>

namespace list {

inline constexpr int kLinesPerPage = 45;
inline constexpr double kPoints = 72 / 25.4; // of a millimetre
inline constexpr double kPageHeight = 297;   // in millimetres, as everything below
inline constexpr double kFirstLine = 30.8;
inline constexpr double kFirstBand = 27;
inline constexpr double kStep = 5.5;
inline constexpr double kSize = 2.75 * kPoints; // of the letters, in points

struct Column {
    const char* name;
    double x; // the left edge of a text, the right edge of a number
    bool number;
    int decimals;
};
inline constexpr std::array<Column, 8> kColumns = {{{"Nummer", 27, true, 0},
                                                    {"Bezeichnung", 30, false, 0},
                                                    {"Ort", 80, false, 0},
                                                    {"Soll", 143, true, 2},
                                                    {"Ist", 163, true, 2},
                                                    {"Abweichung", 178, true, 2},
                                                    {"Prozent", 188, true, 1},
                                                    {"Jahr", 198, true, 0}}};

/// The numbers of record `i` in hundredths, 0 in the columns of texts.
constexpr std::array<long, kColumns.size()> centsOf(long i) {
    return {
        (4000 + i) * 100,     0, 0, i * 731 % 9999999, i * 977 % 9999999, i * 331 % 500000 - 250000, i * 7 % 10000,
        201000 + i % 10 * 100};
}

/// "Bezeichnung des Kontos 7" without its number, and where the record's town is.
inline constexpr const char* kDescription = "Bezeichnung des Kontos ";
constexpr const char* townOf(long i) {
    return i % 3 == 0 ? "Neustadt an der Weinstraße" : "Dresden";
}

} // namespace list
