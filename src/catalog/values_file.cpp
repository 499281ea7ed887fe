#include "catalog/values_file.h"

#include "values/conversion.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <optional>
#include <string_view>

namespace kvtdruck::catalog {
namespace {

/// How much of a cell a message shows.
constexpr std::size_t kShownOfText = 60;
/// More than the largest report can be handed: memory is bounded, whatever the file holds.
constexpr std::size_t kMostCells = 1'000'000;

struct RawCell {
    std::string text;
    bool quoted = false;
};

struct Line {
    std::size_t number; ///< of its first line in the file, from 1
    std::vector<RawCell> cells;
};

/// Where an error is; columns count from 1 as a spreadsheet's do.
struct Place {
    const std::string& file;
    std::size_t line;
    std::size_t column;

    [[noreturn]] void fail(const std::string& reason) const {
        throw ValuesError(file + ", Zeile " + std::to_string(line) + ", Spalte " + std::to_string(column) + ": " +
                          reason);
    }
};

/// The length of the UTF-8 sequence at the start of `text`, or 0 where it is none.
std::size_t sequenceLength(std::string_view text) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned lead = byte(0);
    const std::size_t length = lead < 0x80                   ? 1
                               : lead >= 0xc2 && lead < 0xe0 ? 2
                               : lead >= 0xe0 && lead < 0xf0 ? 3
                               : lead >= 0xf0 && lead < 0xf5 ? 4
                                                             : 0;
    if (length == 0 || length > text.size())
        return 0;
    for (std::size_t i = 1; i < length; ++i)
        if ((byte(i) & 0xc0) != 0x80)
            return 0;
    return length;
}

/// Splits a file into lines and cells. Quoted cells may hold semicolons, line breaks and doubled quotes.
class Scanner {
  public:
    Scanner(std::string_view text, const std::string& file) : text_(text), file_(file) {
        if (text_.starts_with("\xEF\xBB\xBF"))
            text_.remove_prefix(3);
    }

    std::vector<Line> lines() {
        std::vector<Line> result;
        while (position_ < text_.size()) {
            Line line{lineNumber_, {}};
            do
                line.cells.push_back(cell(line.cells.size() + 1));
            while (take(';'));
            endLine(line.cells.size());
            const bool blank = line.cells.size() == 1 && line.cells[0].text.empty() && !line.cells[0].quoted;
            if (!blank)
                result.push_back(std::move(line));
        }
        return result;
    }

  private:
    RawCell cell(std::size_t column) {
        const Place place{file_, lineNumber_, column};
        if (++cells_ > kMostCells)
            place.fail("Die Datei hat mehr als 1.000.000 Felder; so viele Werte nimmt keine Liste.");
        while (peek() == ' ')
            ++position_;
        if (peek() == '"')
            return quotedCell(place);
        RawCell result;
        while (position_ < text_.size() && peek() != ';' && peek() != '\n' && peek() != '\r')
            takeCharacter(result.text, place);
        result.text.erase(result.text.find_last_not_of(' ') + 1);
        return result;
    }

    RawCell quotedCell(const Place& place) {
        RawCell result{{}, true};
        ++position_;
        for (;;) {
            if (position_ == text_.size())
                place.fail("Das schließende Anführungszeichen fehlt.");
            if (peek() == '"' && !text_.substr(position_).starts_with("\"\""))
                break;
            if (peek() == '"')
                ++position_;
            takeCharacter(result.text, place);
        }
        ++position_;
        while (peek() == ' ')
            ++position_;
        if (position_ < text_.size() && peek() != ';' && peek() != '\n' && peek() != '\r')
            place.fail("Nach dem schließenden Anführungszeichen steht noch Text.");
        return result;
    }

    void takeCharacter(std::string& target, const Place& place) {
        const auto length = sequenceLength(text_.substr(position_));
        if (length == 0)
            place.fail("Das Zeichen ist kein UTF-8; bitte die Datei als UTF-8 speichern.");
        if (peek() == '\n')
            ++lineNumber_;
        target += text_.substr(position_, length);
        position_ += length;
    }

    void endLine(std::size_t column) {
        const Place place{file_, lineNumber_, column};
        take('\r');
        if (position_ < text_.size() && !take('\n'))
            place.fail("Ein einzelner Wagenrücklauf steht in der Zeile.");
        ++lineNumber_;
    }

    char peek() const { return position_ < text_.size() ? text_[position_] : '\0'; }
    bool take(char c) {
        const bool there = position_ < text_.size() && peek() == c;
        position_ += there ? 1 : 0;
        return there;
    }

    std::string_view text_;
    const std::string& file_;
    std::size_t position_ = 0;
    std::size_t lineNumber_ = 1;
    std::size_t cells_ = 0;
};

// Cells are judged sign by sign: a regular expression of the library recurses for every sign of its input.

std::size_t countDigits(std::string_view text) {
    return std::min(text.find_first_not_of("0123456789"), text.size());
}

/// Takes the digits at the beginning of `text`; gives how many there were.
std::size_t takeDigits(std::string_view& text) {
    const std::size_t count = countDigits(text);
    text.remove_prefix(count);
    return count;
}

bool take(std::string_view& text, std::string_view anyOf) {
    const bool there = !text.empty() && anyOf.find(text[0]) != std::string_view::npos;
    text.remove_prefix(there ? 1 : 0);
    return there;
}

/// "1234,5", "-1.234,5", "1,5E-3"
bool isGermanNumber(std::string_view text) {
    take(text, "+-");
    const std::size_t leading = takeDigits(text);
    if (leading == 0 || (leading > 3 && text.starts_with('.')))
        return false;
    while (take(text, "."))
        if (takeDigits(text) != 3)
            return false;
    if (take(text, ",") && takeDigits(text) == 0)
        return false;
    if (take(text, "eE")) {
        take(text, "+-");
        if (takeDigits(text) == 0)
            return false;
    }
    return text.empty();
}

/// Digits with points and commas between them, whatever they mean.
bool looksLikeNumber(std::string_view text) {
    take(text, "+-");
    return text.find_first_not_of("0123456789.,") == std::string_view::npos &&
           text.find_first_of("0123456789") != std::string_view::npos;
}

std::optional<Date> dateIn(std::string_view text) {
    constexpr std::array<std::size_t, 3> kLongest = {2, 2, 4};
    std::array<int, 3> parts{};
    for (std::size_t i = 0; i < parts.size(); ++i) {
        const std::size_t count = countDigits(text);
        if (count == 0 || count > kLongest[i] || (i == 2 && count != kLongest[i]))
            return std::nullopt;
        std::from_chars(text.data(), text.data() + count, parts[i]);
        text.remove_prefix(count);
        if (i < 2 && !take(text, "."))
            return std::nullopt;
    }
    constexpr int kFirstYear = 100; // of Automation's calendar
    return !text.empty() || parts[2] < kFirstYear ? std::nullopt : dayIfAny(parts[2], parts[1], parts[0]);
}

/// The value of a cell without quotes.
Variant valueOf(const std::string& text, const Place& place) {
    if (text.empty())
        return {};
    if (isGermanNumber(text)) {
        const auto value = numberIn(fromUtf8(text), germanLocale());
        if (value && std::isfinite(*value))
            return *value;
        place.fail("Die Zahl „" + text.substr(0, kShownOfText) + "“ ist zu groß.");
    }
    if (const auto date = dateIn(text))
        return *date;
    if (looksLikeNumber(text))
        place.fail("„" + text.substr(0, kShownOfText) +
                   "“ ist weder eine deutsche Zahl (1.234,5) noch ein Datum (31.12.2024); ein Text steht in "
                   "Anführungszeichen.");
    if (text == "Wahr" || text == "Falsch")
        return text == "Wahr";
    return fromUtf8(text);
}

const ValueColumn* findColumn(const ReportEntry& report, const std::string& name) {
    const auto found = std::ranges::find(report.columns, name, &ValueColumn::name);
    return found == report.columns.end() ? nullptr : &*found;
}

/// A column that the report does not read.
constexpr std::string_view kUnread = "-";

/// Whether the line names columns: it holds no number, and one of its cells is a column's name without quotes.
bool isHeading(const ReportEntry& report, const Line& line) {
    const auto isNumber = [](const RawCell& cell) {
        std::string_view text = cell.text;
        take(text, "+-");
        return !cell.quoted && countDigits(text) > 0;
    };
    const auto isName = [&](const RawCell& cell) { return !cell.quoted && findColumn(report, cell.text); };
    return std::ranges::none_of(line.cells, isNumber) && std::ranges::any_of(line.cells, isName);
}

std::string namesOf(const ReportEntry& report) {
    std::string names;
    for (const auto& column : report.columns)
        names += (names.empty() ? "" : ", ") + std::string(column.name);
    return names;
}

/// For each of a line's cells the array's column; none for a cell that is passed over.
using Columns = std::vector<std::optional<std::size_t>>;

Columns columnsOf(const ReportEntry& report, const Line& heading, const std::string& file) {
    Columns columns;
    for (std::size_t i = 0; i < heading.cells.size(); ++i) {
        const Place place{file, heading.number, i + 1};
        const auto& name = heading.cells[i].text;
        if (name == kUnread) {
            columns.emplace_back();
            continue;
        }
        const auto* column = findColumn(report, name);
        if (!column)
            place.fail("Die Liste " + std::string(report.listName) + " hat keine Spalte „" + name +
                       "“; sie kennt " + namesOf(report) + ".");
        if (std::ranges::find(columns, std::optional(column->column)) != columns.end())
            place.fail("Die Spalte „" + name + "“ steht mehrmals in der Kopfzeile.");
        columns.emplace_back(column->column);
    }
    return columns;
}

Columns columnsInOrder(std::size_t count) {
    Columns columns;
    for (std::size_t i = 0; i < count; ++i)
        columns.emplace_back(i);
    return columns;
}

/// Columns that the array needs for a file without a heading, which may hold more than the report reads.
std::size_t widthOf(const ReportEntry& report, const Columns& columns) {
    return std::max(report.width(), std::ranges::max(columns).value_or(0) + 1);
}

} // namespace

std::shared_ptr<ParameterArray> parseValues(const ReportEntry& report, std::string_view text,
                                            const std::string& file) {
    auto lines = Scanner(text, file).lines();
    Columns columns;
    if (!lines.empty() && isHeading(report, lines.front())) {
        columns = columnsOf(report, lines.front(), file);
        lines.erase(lines.begin());
    } else if (!lines.empty()) {
        columns = columnsInOrder(lines.front().cells.size());
    }
    if (lines.empty())
        throw ValuesError(file + ": Die Datei enthält keine Werte.");

    auto array = std::make_shared<ParameterArray>(lines.size(), widthOf(report, columns));
    for (std::size_t row = 0; row < lines.size(); ++row) {
        const auto& line = lines[row];
        if (line.cells.size() != columns.size())
            Place{file, line.number, line.cells.size()}.fail("Die Zeile hat " + std::to_string(line.cells.size()) +
                                                             " statt " + std::to_string(columns.size()) +
                                                             " Spalten.");
        for (std::size_t i = 0; i < columns.size(); ++i) {
            if (!columns[i])
                continue;
            const auto& cell = line.cells[i];
            array->cell(row, *columns[i]) =
                cell.quoted ? Variant(fromUtf8(cell.text)) : valueOf(cell.text, {file, line.number, i + 1});
        }
    }
    return array;
}

} // namespace kvtdruck::catalog
