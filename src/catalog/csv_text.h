// CSV as spreadsheets write it: lines of cells, numbers and dates in German notation.
#pragma once

#include "values/conversion.h"
#include "values/variant.h"

#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace kvtdruck::catalog {

/// A file of values that can't be read or is wrong; the text is German, with file, line, column and reason.
class ValuesError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

struct CsvCell {
    std::string text;
    bool quoted = false;
};

struct CsvLine {
    std::size_t number; ///< of its first line in the file, from 1
    std::vector<CsvCell> cells;
};

/// Where an error is; columns count from 1 as a spreadsheet's do.
struct CsvPlace {
    const std::string& file;
    std::size_t line;
    std::size_t column;

    /// Throws a `ValuesError`.
    [[noreturn]] void fail(const std::string& reason) const;
};

/// The content of a file as UTF-8, which it is or which Windows-1252 becomes.
std::string csvText(std::string_view bytes);

/// The lines of `text` (UTF-8, semicolons) that are not blank. Quoted cells may hold semicolons, line breaks and
/// doubled quotes. Throws a `ValuesError`, also for more cells than `mostCells`.
std::vector<CsvLine> csvLines(std::string_view text, const std::string& file, std::size_t mostCells);

/// As much of a cell as a message shows.
std::string shownText(const std::string& text);

/// "1234,5", "-1.234,5", "1,5E-3"
bool isGermanNumber(std::string_view text);
/// Digits with points and commas between them, whatever they mean.
bool looksLikeNumber(std::string_view text);
/// A digit, or one behind a sign.
bool beginsAsNumber(std::string_view text);
/// "31.12.2024"
std::optional<Date> germanDateIn(std::string_view text);

} // namespace kvtdruck::catalog
